#include "toolkit/core/ZelTimingFunction.h"

#include <algorithm>
#include <cmath>

ZEL_NAMESPACE_BEGIN

namespace {

// One coordinate of the cubic Bézier with end points 0 and 1 and control
// values p1, p2, at parameter t.
double bezier(double p1, double p2, double t) {
  double u = 1 - t;
  return 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t;
}

double bezierSlope(double p1, double p2, double t) {
  double u = 1 - t;
  return 3 * u * u * p1 + 6 * u * t * (p2 - p1) + 3 * t * t * (1 - p2);
}

constexpr double kEpsilon = 1e-9;

}  // namespace

ZelTimingFunction ZelTimingFunction::named(std::string_view name) {
  if (name == "easeIn") return easeIn();
  if (name == "easeOut") return easeOut();
  if (name == "easeInEaseOut") return easeInEaseOut();
  if (name == "default") return defaultTiming();
  return linear();
}

double ZelTimingFunction::evaluate(double x) const {
  x = std::clamp(x, 0.0, 1.0);
  if (x1_ == y1_ && x2_ == y2_) return x;  // a straight line
  // With control x values in 0 ... 1, X(t) is monotonic, so the root is unique.
  double t = x;
  for (int i = 0; i < 8; ++i) {
    double error = bezier(x1_, x2_, t) - x;
    if (std::fabs(error) < kEpsilon) return bezier(y1_, y2_, t);
    double slope = bezierSlope(x1_, x2_, t);
    if (std::fabs(slope) < 1e-7) break;
    t -= error / slope;
    if (t < 0 || t > 1) break;
  }
  double lo = 0, hi = 1;
  t = x;
  while (hi - lo > kEpsilon) {
    double value = bezier(x1_, x2_, t);
    if (std::fabs(value - x) < kEpsilon) break;
    (value < x ? lo : hi) = t;
    t = (lo + hi) / 2;
  }
  return bezier(y1_, y2_, t);
}

ZEL_NAMESPACE_END
