// Turning a ZelPath into cairo's current path.
#pragma once

#include <cairo.h>

#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

// Appends `path` to cr's current path in cr's user space. ArcTo draws the
// platform's tangent arc: a line from the current point to where a circle of
// the radius touches the first leg, then the arc to where it touches the
// second leg (a straight line to the corner when the legs are collinear or
// the radius is zero). Arc runs counter-clockwise (increasing angle) unless
// `clockwise`, joined to the current point by a line. Ellipse adds a closed
// clockwise subpath starting at its maximum-x point; a degenerate rectangle
// adds nothing.
void ZelCairoAppendPath(cairo_t* cr, const ZelPath& path);

// The tangent-arc geometry: given the current point, the corner, the point
// the second leg runs to and the radius, where the arc starts and ends and
// its centre. `valid` is false when there is no arc (collinear legs, zero
// radius or zero-length legs).
struct ZelTangentArc {
  bool valid = false;
  CGPoint start, end, centre;
  double startAngle = 0, endAngle = 0;
  bool counterClockwise = true;  // increasing angle
};
ZelTangentArc ZelTangentArcThroughCorner(CGPoint current, CGPoint corner, CGPoint towards, double radius);

ZEL_NAMESPACE_END
