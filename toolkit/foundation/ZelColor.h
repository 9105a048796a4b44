// A colour as the drawing code uses it: RGB or grey components in 0 ... 1
// with alpha, in double precision (single-precision constants widened).
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

struct ZelColor {
  double red = 0, green = 0, blue = 0, alpha = 1;

  static constexpr ZelColor grey(double white, double alpha = 1) { return {white, white, white, alpha}; }
  static constexpr ZelColor rgb(double r, double g, double b, double a = 1) { return {r, g, b, a}; }
  constexpr ZelColor withAlpha(double a) const { return {red, green, blue, a}; }
  friend bool operator==(const ZelColor&, const ZelColor&) = default;
};

ZEL_NAMESPACE_END
