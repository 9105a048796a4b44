// Views for the X11 backend tests: a scene that draws fills, an ellipse and
// text (for comparing pixels with the offscreen backend), and a view that
// records the events it receives.
#pragma once

#include <memory>
#include <vector>

#include "toolkit/core/ZelView.h"

namespace zeltest {

class SwatchView : public zel::ZelView {
 public:
  SwatchView(zel::CGRect frame, zel::ZelColor color, std::string label = {})
      : ZelView(frame), color_(color), label_(std::move(label)) {}
  void drawRect(zel::ZelGraphicsContext& ctx, zel::CGRect) override {
    ++draws;
    ctx.setFillColor(color_);
    ctx.fillRect(bounds());
    if (label_.empty()) return;
    ctx.setFillColor(zel::ZelColor::grey(0.95));
    ctx.fillEllipseInRect(zel::CGRectMake(bounds().size.width - 70, 10, 50, 50));
    ctx.drawText(label_, zel::ZelFont{zel::ZelFontFace::Medium, 15}, zel::CGPointMake(12, bounds().size.height - 30));
  }
  int draws = 0;

 private:
  zel::ZelColor color_;
  std::string label_;
};

// A background with text, a half-transparent square and a smaller one.
inline std::unique_ptr<SwatchView> makeScene(zel::CGSize size) {
  auto root = std::make_unique<SwatchView>(zel::CGRectMake(0, 0, size.width, size.height),
                                           zel::ZelColor::rgb(0.15, 0.2, 0.3), "Gain 1.5 dB");
  auto square = std::make_unique<SwatchView>(zel::CGRectMake(20.25, 15.5, 60, 40), zel::ZelColor::rgb(0.9, 0.2, 0.1));
  square->setAlphaValue(0.5);
  root->addSubview(std::move(square));
  root->addSubview(std::make_unique<SwatchView>(zel::CGRectMake(100, 20, 7, 5), zel::ZelColor::rgb(0.1, 0.8, 0.3)));
  return root;
}

class RecorderView : public zel::ZelView {
 public:
  using ZelView::ZelView;
  bool acceptsFirstResponder() const override { return true; }
  bool acceptsFirstMouse(const zel::ZelEvent&) const override { return true; }
  bool keyDown(const zel::ZelEvent& e) override { return record(e); }
  bool keyUp(const zel::ZelEvent& e) override { return record(e); }
  bool flagsChanged(const zel::ZelEvent& e) override { return record(e); }
  bool scrollWheel(const zel::ZelEvent& e) override { return record(e); }
  void mouseDown(const zel::ZelEvent& e) override { record(e); }
  void mouseDragged(const zel::ZelEvent& e) override { record(e); }
  void mouseUp(const zel::ZelEvent& e) override { record(e); }
  void rightMouseDown(const zel::ZelEvent& e) override { record(e); }

  std::vector<zel::ZelEvent> events;

 private:
  bool record(const zel::ZelEvent& e) {
    events.push_back(e);
    return true;
  }
};

}  // namespace zeltest
