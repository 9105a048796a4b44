// A 2-D affine transform (the layers only ever scale and translate, so the
// platform's 3-D layer transform reduces to this). Points map as
// x' = a·x + c·y + tx, y' = b·x + d·y + ty.
#pragma once

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

struct ZelAffineTransform {
  double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

  static constexpr ZelAffineTransform identity() { return {}; }
  static constexpr ZelAffineTransform translation(double x, double y) { return {1, 0, 0, 1, x, y}; }
  static constexpr ZelAffineTransform scaling(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }

  bool isIdentity() const { return *this == ZelAffineTransform{}; }

  // This transform applied after `first` (first, then this).
  constexpr ZelAffineTransform after(const ZelAffineTransform& first) const {
    return {a * first.a + c * first.b,   b * first.a + d * first.b,
            a * first.c + c * first.d,   b * first.c + d * first.d,
            a * first.tx + c * first.ty + tx, b * first.tx + d * first.ty + ty};
  }
  constexpr ZelAffineTransform translatedBy(double x, double y) const { return after(translation(x, y)); }
  constexpr ZelAffineTransform scaledBy(double sx, double sy) const { return after(scaling(sx, sy)); }

  constexpr CGPoint apply(CGPoint p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
  // The bounding box of the transformed rectangle.
  CGRect apply(const CGRect& r) const;
  // Inverse; the identity when the transform is not invertible.
  ZelAffineTransform inverted() const;

  friend bool operator==(const ZelAffineTransform&, const ZelAffineTransform&) = default;
};

inline CGRect ZelAffineTransform::apply(const CGRect& r0) const {
  if (CGRectIsNull(r0)) return r0;
  CGRect r = CGRectStandardize(r0);
  CGPoint p[4] = {apply(r.origin), apply(CGPoint{r.origin.x + r.size.width, r.origin.y}),
                  apply(CGPoint{r.origin.x, r.origin.y + r.size.height}),
                  apply(CGPoint{r.origin.x + r.size.width, r.origin.y + r.size.height})};
  double x0 = p[0].x, x1 = p[0].x, y0 = p[0].y, y1 = p[0].y;
  for (const CGPoint& q : p) {
    x0 = std::min(x0, q.x); x1 = std::max(x1, q.x);
    y0 = std::min(y0, q.y); y1 = std::max(y1, q.y);
  }
  return {{x0, y0}, {x1 - x0, y1 - y0}};
}

inline ZelAffineTransform ZelAffineTransform::inverted() const {
  double det = a * d - b * c;
  if (det == 0 || !std::isfinite(det)) return {};
  double ia = d / det, ib = -b / det, ic = -c / det, id = a / det;
  return {ia, ib, ic, id, -(ia * tx + ic * ty), -(ib * tx + id * ty)};
}

ZEL_NAMESPACE_END
