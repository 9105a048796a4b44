#include "editor/ZelContainerStyle.h"

#include "toolkit/widgets/ZelSymbolButton.h"
#include "theme/ZelUITheme.h"

ZEL_NAMESPACE_BEGIN

std::unique_ptr<ZelSymbolButton> ZelMakeContainerButton(CGRect frame, const char* glyph, double size) {
  return std::make_unique<ZelSymbolButton>(frame, glyph, size, ZelUITheme::theme()->symbolColor());
}

void ZelRecolourContainerButton(ZelSymbolButton* button) {
  if (button) button->resetGlyph(button->glyphString(), ZelUITheme::theme()->symbolColor());
}

void ZelDrawContainerHairline(ZelGraphicsContext& ctx, CGRectEdge edge, CGRect rect) {
  ctx.setFillColor(ZelUITheme::theme()->textColor().withAlpha(kZelContainerHairlineAlpha));
  const double x = edge == CGRectMaxXEdge ? CGRectGetMaxX(rect) - 0.5 : CGRectGetMinX(rect);
  const double y = edge == CGRectMaxYEdge ? CGRectGetMaxY(rect) - 0.5 : CGRectGetMinY(rect);
  const bool vertical = edge == CGRectMinXEdge || edge == CGRectMaxXEdge;
  ctx.fillRect(vertical ? CGRectMake(x, CGRectGetMinY(rect), 0.5, CGRectGetHeight(rect))
                        : CGRectMake(CGRectGetMinX(rect), y, CGRectGetWidth(rect), 0.5));
}

ZEL_NAMESPACE_END
