#include "theme/ZelBorderSpec.h"

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

void ZelBorderRectWithBorderSpec(ZelGraphicsContext& ctx, const ZelPlist& spec, CGRect rect) {
  // Element order: top, right, bottom, left (y up).
  static constexpr CGRectEdge kSides[4] = {CGRectMaxYEdge, CGRectMaxXEdge, CGRectMinYEdge, CGRectMinXEdge};
  for (std::size_t i = 0; i < 4; ++i) {
    if (spec[i].integerValue() == 0) continue;
    CGPoint start, end;
    CGRectEdgeAsTwoPoints(kSides[i], &start, &end, rect);
    const bool vertical = kSides[i] == CGRectMaxXEdge || kSides[i] == CGRectMinXEdge;
    ctx.fillRect(vertical ? CGRectMake(start.x, start.y, 0.5, CGRectGetHeight(rect))
                          : CGRectMake(start.x, start.y, CGRectGetWidth(rect), 0.5));
  }
}

ZEL_NAMESPACE_END
