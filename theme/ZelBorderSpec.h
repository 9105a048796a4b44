// The half-point sides that a description's border spec ("border", "labelBorder") asks for.
#pragma once

#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

// Fills up to four half-point sides of `rect` in the context's current fill.
// `spec` is an array of four integers; a non-zero element draws its side:
// 0 the maximum-y side, 1 the maximum-x side, 2 the minimum-y side, 3 the
// minimum-x side. Each side is a rectangle at the side's first point, 0.5
// thick and as long as the side. Missing elements (or a spec that is not an
// array) draw nothing.
void ZelBorderRectWithBorderSpec(ZelGraphicsContext& ctx, const ZelPlist& spec, CGRect rect);

ZEL_NAMESPACE_END
