// Animation pacing: a cubic Bézier from (0, 0) to (1, 1) with two control
// points, mapping the fraction of an animation's duration that has elapsed
// to the fraction of the change that is shown. Values, copied freely.
#pragma once

#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelTimingFunction {
 public:
  // Linear pacing.
  constexpr ZelTimingFunction() = default;
  constexpr ZelTimingFunction(double x1, double y1, double x2, double y2) : x1_(x1), y1_(y1), x2_(x2), y2_(y2) {}

  static constexpr ZelTimingFunction linear() { return {0, 0, 1, 1}; }
  static constexpr ZelTimingFunction easeIn() { return {0.42, 0, 1, 1}; }
  static constexpr ZelTimingFunction easeOut() { return {0, 0, 0.58, 1}; }
  static constexpr ZelTimingFunction easeInEaseOut() { return {0.42, 0, 0.58, 1}; }
  // The pacing of implicit animations.
  static constexpr ZelTimingFunction defaultTiming() { return {0.25, 0.1, 0.25, 1}; }
  // By name: "linear", "easeIn", "easeOut", "easeInEaseOut", "default";
  // an unknown name gives linear.
  static ZelTimingFunction named(std::string_view name);

  // The shown fraction for an elapsed fraction x (clamped to 0 ... 1):
  // the curve's parameter t with X(t) = x is found by Newton's method, with
  // bisection when Newton stalls, to 1e-9; the result is Y(t).
  double evaluate(double x) const;

  double x1() const { return x1_; }
  double y1() const { return y1_; }
  double x2() const { return x2_; }
  double y2() const { return y2_; }
  friend bool operator==(const ZelTimingFunction&, const ZelTimingFunction&) = default;

 private:
  double x1_ = 0, y1_ = 0, x2_ = 1, y2_ = 1;
};

ZEL_NAMESPACE_END
