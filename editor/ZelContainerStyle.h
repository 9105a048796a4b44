// What the power box, the preset bar and the drawers share so that they look
// like one design with the clumps: the size and colour of their symbol
// buttons and the half-point hairlines that separate them.
// Threading: main thread only (drawing and views).
#pragma once

#include <memory>

#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

class ZelSymbolButton;

// Glyph size of the containers' buttons and of the drawers' miniatures.
inline constexpr double kZelContainerButtonGlyphSize = 18;
inline constexpr double kZelMiniatureGlyphSize = 14;
// The alpha of the hairlines between regions (the clumps' own).
inline constexpr double kZelContainerHairlineAlpha = static_cast<double>(0.45f);

// A symbol button showing `glyph` (UTF-8) at `size` in the current theme's
// symbol colour. The caller owns it.
std::unique_ptr<ZelSymbolButton> ZelMakeContainerButton(CGRect frame, const char* glyph, double size);
// Re-colours a button with the current theme (after a theme change);
// nullptr is fine.
void ZelRecolourContainerButton(ZelSymbolButton* button);
// Fills a half-point hairline along one side of `rect` (0 min-x, 1 min-y,
// 2 max-x, 3 max-y) in the theme's text colour at the hairline alpha.
void ZelDrawContainerHairline(ZelGraphicsContext& ctx, CGRectEdge edge, CGRect rect);

ZEL_NAMESPACE_END
