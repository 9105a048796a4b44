// Shared pieces of the view and window tests: a window on a virtual clock
// with a null backend, and a view that logs what reaches it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace zel::testing {

struct WindowFixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelNullPlatformWindow platform{loop};
  ZelWindow window{loop, {400, 300}};

  WindowFixture() { window.setPlatformWindow(&platform); }
  ~WindowFixture() { window.setPlatformWindow(nullptr); }
  ZelView& root() { return *window.contentView(); }
};

using Log = std::vector<std::string>;

class ProbeView : public ZelView {
 public:
  ProbeView(std::string name, CGRect frame, Log* log = nullptr) : ZelView(frame), name_(std::move(name)), log_(log) {}

  bool handlesMouse = true;
  bool handlesKeys = false;
  std::string keyEquivalent;  // characters this view takes as a key equivalent
  bool acceptsResponder = false;
  bool firstMouse = false;
  std::function<std::unique_ptr<ZelMenu>()> menu;
  ZelColor color = ZelColor::grey(0.5);
  int draws = 0;
  CGRect lastDirty = CGRectNull;
  CGPoint lastLocalPoint;

  void mouseDown(const ZelEvent& e) override { mouse("down", e) ? void() : ZelView::mouseDown(e); }
  void mouseDragged(const ZelEvent& e) override { mouse("drag", e) ? void() : ZelView::mouseDragged(e); }
  void mouseUp(const ZelEvent& e) override { mouse("up", e) ? void() : ZelView::mouseUp(e); }
  void rightMouseDown(const ZelEvent& e) override { mouse("right", e) ? void() : ZelView::rightMouseDown(e); }
  bool keyDown(const ZelEvent& e) override {
    if (!handlesKeys) return ZelView::keyDown(e);
    note("key " + e.characters);
    return true;
  }
  bool flagsChanged(const ZelEvent& e) override {
    if (!handlesKeys) return ZelView::flagsChanged(e);
    note("flags");
    return true;
  }
  bool performKeyEquivalent(const ZelEvent& e) override {
    note("equiv?");
    if (!keyEquivalent.empty() && e.charactersIgnoringModifiers == keyEquivalent) {
      note("equiv " + e.characters);
      return true;
    }
    return ZelView::performKeyEquivalent(e);
  }
  bool acceptsFirstResponder() const override { return acceptsResponder; }
  bool acceptsFirstMouse(const ZelEvent&) const override { return firstMouse; }
  std::unique_ptr<ZelMenu> menuForEvent(const ZelEvent& e) override {
    return menu ? menu() : ZelView::menuForEvent(e);
  }
  void drawRect(ZelGraphicsContext& ctx, CGRect dirty) override {
    ++draws;
    lastDirty = dirty;
    ctx.setFillColor(color);
    ctx.fillRect(bounds());
  }

 private:
  bool mouse(const char* what, const ZelEvent& e) {
    if (!handlesMouse) return false;
    lastLocalPoint = convertPointFromView(e.locationInWindow, nullptr);
    note(what);
    return true;
  }
  // Entries read "name:what".
  void note(const std::string& what) {
    if (log_) log_->push_back(name_ + ":" + what);
  }

  std::string name_;
  Log* log_;
};

inline std::unique_ptr<ProbeView> probe(std::string name, CGRect frame, Log* log = nullptr) {
  return std::make_unique<ProbeView>(std::move(name), frame, log);
}

inline ZelEvent click(ZelEventType type, double x, double y, ZelEventModifierFlags flags = 0) {
  return ZelEvent::mouse(type, {x, y}, flags);
}

}  // namespace zel::testing
