#include "toolkit/cairo/ZelCairoPath.h"

#include <cmath>

ZEL_NAMESPACE_BEGIN

namespace {

struct Vec {
  double x, y;
};

Vec unit(CGPoint from, CGPoint to, double* length) {
  double dx = to.x - from.x, dy = to.y - from.y;
  *length = std::hypot(dx, dy);
  return *length > 0 ? Vec{dx / *length, dy / *length} : Vec{0, 0};
}

void appendArcTo(cairo_t* cr, const ZelPathElement& e) {
  if (!cairo_has_current_point(cr)) {
    cairo_move_to(cr, e.p1.x, e.p1.y);
    return;
  }
  double x, y;
  cairo_get_current_point(cr, &x, &y);
  ZelTangentArc arc = ZelTangentArcThroughCorner({x, y}, e.p1, e.p2, e.radius);
  if (!arc.valid) {
    cairo_line_to(cr, e.p1.x, e.p1.y);
    return;
  }
  cairo_line_to(cr, arc.start.x, arc.start.y);
  if (arc.counterClockwise) {
    cairo_arc(cr, arc.centre.x, arc.centre.y, e.radius, arc.startAngle, arc.endAngle);
  } else {
    cairo_arc_negative(cr, arc.centre.x, arc.centre.y, e.radius, arc.startAngle, arc.endAngle);
  }
}

void appendEllipse(cairo_t* cr, const CGRect& r0) {
  CGRect r = CGRectStandardize(r0);
  if (CGRectIsNull(r) || !(r.size.width > 0) || !(r.size.height > 0)) return;
  cairo_matrix_t saved;
  cairo_get_matrix(cr, &saved);
  cairo_new_sub_path(cr);
  cairo_translate(cr, r.origin.x + r.size.width / 2, r.origin.y + r.size.height / 2);
  cairo_scale(cr, r.size.width / 2, r.size.height / 2);
  cairo_arc_negative(cr, 0, 0, 1, 0, -2 * M_PI);  // clockwise, as the platform adds ellipses
  cairo_set_matrix(cr, &saved);
  cairo_close_path(cr);
}

void appendArc(cairo_t* cr, const ZelPathElement& e) {
  if (!(e.radius > 0)) {
    if (cairo_has_current_point(cr)) cairo_line_to(cr, e.p1.x, e.p1.y);
    else cairo_move_to(cr, e.p1.x, e.p1.y);
    return;
  }
  if (e.clockwise) cairo_arc_negative(cr, e.p1.x, e.p1.y, e.radius, e.startAngle, e.endAngle);
  else cairo_arc(cr, e.p1.x, e.p1.y, e.radius, e.startAngle, e.endAngle);
}

}  // namespace

ZelTangentArc ZelTangentArcThroughCorner(CGPoint current, CGPoint corner, CGPoint towards, double radius) {
  ZelTangentArc arc;
  double len1, len2;
  Vec u1 = unit(corner, current, &len1);  // from the corner back along the first leg
  Vec u2 = unit(corner, towards, &len2);  // from the corner along the second leg
  double cosTheta = u1.x * u2.x + u1.y * u2.y;
  if (!(radius > 0) || len1 == 0 || len2 == 0 || std::fabs(cosTheta) > 1 - 1e-12) return arc;
  double halfAngle = std::acos(cosTheta) / 2;
  double tangentDistance = radius / std::tan(halfAngle);
  double centreDistance = radius / std::sin(halfAngle);
  Vec bisector{u1.x + u2.x, u1.y + u2.y};
  double bl = std::hypot(bisector.x, bisector.y);
  arc.valid = true;
  arc.start = {corner.x + u1.x * tangentDistance, corner.y + u1.y * tangentDistance};
  arc.end = {corner.x + u2.x * tangentDistance, corner.y + u2.y * tangentDistance};
  arc.centre = {corner.x + bisector.x / bl * centreDistance, corner.y + bisector.y / bl * centreDistance};
  arc.startAngle = std::atan2(arc.start.y - arc.centre.y, arc.start.x - arc.centre.x);
  arc.endAngle = std::atan2(arc.end.y - arc.centre.y, arc.end.x - arc.centre.x);
  // Travelling current → corner → towards: a left turn sweeps with growing angle.
  double cross = (corner.x - current.x) * (towards.y - corner.y) - (corner.y - current.y) * (towards.x - corner.x);
  arc.counterClockwise = cross > 0;
  return arc;
}

void ZelCairoAppendPath(cairo_t* cr, const ZelPath& path) {
  using T = ZelPathElement::Type;
  for (const ZelPathElement& e : path.elements()) {
    switch (e.type) {
      case T::MoveTo: cairo_move_to(cr, e.p1.x, e.p1.y); break;
      case T::LineTo:
        if (cairo_has_current_point(cr)) cairo_line_to(cr, e.p1.x, e.p1.y);
        else cairo_move_to(cr, e.p1.x, e.p1.y);
        break;
      case T::ArcTo: appendArcTo(cr, e); break;
      case T::Arc: appendArc(cr, e); break;
      case T::Ellipse: appendEllipse(cr, e.rect); break;
      case T::Close: cairo_close_path(cr); break;
    }
  }
}

ZEL_NAMESPACE_END
