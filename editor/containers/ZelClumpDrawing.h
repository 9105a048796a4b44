// Drawing and animation helpers of the containers: the power box's header and
// footer line, the layout's edges, and the transforms with which the editor
// slides and scales its drawers.
//
// Threading: main thread only (they read the current theme and touch views).
#pragma once

#include <span>
#include <vector>

#include "layout/engine/ZelPluginLayout.h"
#include "toolkit/core/ZelAffineTransform.h"
#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

// Strokes side `edge` of `rect` (0 min-x, 1 min-y, 2 max-x, 3 max-y) 2 points
// wide in the current theme's background colour at alpha 0.8, over an opaque
// black shadow of blur 4 around it. The context's state is restored after.
void ZelFillGenericHeaderFooterOnEdge(ZelGraphicsContext& ctx, int edge, CGRect rect);

// Draws every edge of `layout`, both end points shifted first by
// (+frame.x / 2, −frame.y / 2). thinFill: half-point filled hairlines in the
// current fill colour; otherwise one stroked segment per edge with the
// current stroke settings.
void drawEdgesForContext(ZelGraphicsContext& ctx, const ZelPluginLayout& layout, CGRect frame, bool thinFill);

// One step of a view transform.
//   Scale: x and y factors.
//   Translate: x and y fractions of the view's bounds width and height; the
//   translation is floor(fraction × size) points.
struct ZelTransformStep {
  enum class Kind { Scale, Translate };
  Kind kind = Kind::Scale;
  double x = 1, y = 1;

  static constexpr ZelTransformStep scale(double sx, double sy) { return {Kind::Scale, sx, sy}; }
  static constexpr ZelTransformStep translate(double fx, double fy) { return {Kind::Translate, fx, fy}; }
};

// The steps of a property-list array of arrays such as
// (("scale", 0.8, 0.8), ("translate", 0, -1)); elements that are not such a
// step (unknown names, missing numbers) are skipped. Scale factors are read
// in single precision.
std::vector<ZelTransformStep> ZelTransformStepsFromArray(const ZelPlist& steps);

// The identity with each step applied in order (each step acts on points
// before the steps already applied, as the platform's transform-building
// calls do).
ZelAffineTransform ZelTransformFromArray(const ZelView& view, std::span<const ZelTransformStep> steps);
ZelAffineTransform ZelTransformFromArray(const ZelView& view, const ZelPlist& steps);

// Sets the view layer's transform to `to` at once (no implicit animation),
// then animates "transform" from `from` to `to` over `duration` seconds,
// ease-out, removed on completion, under the key "transform". A view
// without a layer is given one first.
void ZelAnimateViewToFromDuration(ZelView& view, std::span<const ZelTransformStep> to,
                                  std::span<const ZelTransformStep> from, double duration);
void ZelAnimateViewToFromDuration(ZelView& view, const ZelPlist& to, const ZelPlist& from, double duration);

ZEL_NAMESPACE_END
