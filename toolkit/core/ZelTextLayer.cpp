#include "toolkit/core/ZelTextLayer.h"

ZEL_NAMESPACE_BEGIN

void ZelTextLayer::setString(std::string utf8) {
  if (utf8 == string_) return;
  CGRect before = areaBeforeChange();
  string_ = std::move(utf8);
  contentChanged(before);
}

void ZelTextLayer::setFont(const ZelFont& font) {
  if (font == font_) return;
  CGRect before = areaBeforeChange();
  font_ = font;
  contentChanged(before);
}

void ZelTextLayer::setForegroundColor(const ZelColor& c) {
  if (c == foreground_) return;
  CGRect before = areaBeforeChange();
  foreground_ = c;
  contentChanged(before);
}

void ZelTextLayer::setAlignment(ZelTextAlignment a) {
  if (a == alignment_) return;
  CGRect before = areaBeforeChange();
  alignment_ = a;
  contentChanged(before);
}

void ZelTextLayer::drawContent(ZelGraphicsContext& ctx) {
  if (string_.empty() || foreground_.alpha <= 0) return;
  ZelTextMetrics metrics = ctx.measureText(string_, font_);
  double width = frame().size.width, x = 0;
  if (alignment_ == ZelTextAlignment::Center) x = (width - metrics.width) / 2;
  else if (alignment_ == ZelTextAlignment::Right) x = width - metrics.width;
  ctx.setFillColor(foreground_);
  ctx.drawText(string_, font_, {x, frame().size.height - metrics.ascent});
}

CGRect ZelTextLayer::contentExtent() const {
  // Glyph ink may reach a little past the measured box.
  double slack = font_.pointSize / 4;
  return CGRectInset(bounds(), -slack, -slack);
}

int ZelTextLayer::contentDrawCount() const { return string_.empty() ? 0 : 1; }

ZEL_NAMESPACE_END
