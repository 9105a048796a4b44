#include "app/standalone/ZelNoticeView.h"

ZEL_NAMESPACE_BEGIN

void ZelNoticeView::setText(std::string text) {
  if (text == text_) return;
  text_ = std::move(text);
  setNeedsDisplay();
}

void ZelNoticeView::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (text_.empty()) return;
  // Mid grey reads on the light and the dark theme alike.
  ctx.setFillColor(ZelColor::grey(0.5, 0.9));
  ctx.drawText(text_, ZelFont{ZelFontFace::Medium, kFontSize}, {kInset, kBaseline});
}

ZEL_NAMESPACE_END
