#include "toolkit/core/ZelTextLayer.h"

ZEL_NAMESPACE_BEGIN

void ZelTextLayer::setString(std::string utf8) { changeContent(string_, std::move(utf8)); }

void ZelTextLayer::setFont(const ZelFont& font) { changeContent(font_, font); }

void ZelTextLayer::setForegroundColor(const ZelColor& c) { changeContent(foreground_, c); }

void ZelTextLayer::setAlignment(ZelTextAlignment a) { changeContent(alignment_, a); }

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
