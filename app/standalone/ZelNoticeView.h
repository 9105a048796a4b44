// A few words of small grey text in the editor's bottom-left corner, just
// above the preset bar, under the Filter panel's Slope: what the app has to
// say about its sound (no server, the server went away). The whole story
// goes to stderr; this only keeps it in sight.
// It takes no events (clicks go to the editor under it) and draws nothing
// while its text is empty.
//
// Ownership: a plain view. Threading: main thread only.
#pragma once

#include <string>

#include "toolkit/core/ZelView.h"

ZEL_NAMESPACE_BEGIN

class ZelNoticeView final : public ZelView {
 public:
  static constexpr double kFontSize = 9;
  static constexpr double kInset = 8;     // from the left edge, points
  static constexpr double kBaseline = 5;  // from the view's bottom edge, points
  // Where it sits in the host view: above the preset bar, as wide as the
  // Filter panel.
  static constexpr CGRect kFrame{{0, 30}, {140, 16}};

  ZelNoticeView() : ZelView(kFrame) { setIdentifier("notice"); }

  const std::string& text() const { return text_; }
  void setText(std::string text);

  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  ZelView* hitTest(CGPoint) override { return nullptr; }

 private:
  std::string text_;
};

ZEL_NAMESPACE_END
