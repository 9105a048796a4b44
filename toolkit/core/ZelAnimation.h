// Keyed basic animations of a layer property: from/to values, duration,
// pacing, auto-reverse, repeat, removal on completion and a completion
// callback. An animation is a value: ZelLayer::addAnimation copies it, and
// the layer computes presentation values from the run loop's clock.
//
// Key paths: "opacity" (double), "transform" (ZelAffineTransform),
// "transform.scale" (double: the uniform scale of the layer's transform),
// "lineDashPhase" (double, shape layers), "backgroundColor" (ZelColor).
// A value of the wrong type for its key path, or an unknown key path, leaves
// the property as it is.
//
// Threading: the UI thread only.
#pragma once

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "toolkit/core/ZelAffineTransform.h"
#include "toolkit/core/ZelTimingFunction.h"
#include "toolkit/foundation/ZelColor.h"

ZEL_NAMESPACE_BEGIN

using ZelAnimationValue = std::variant<double, ZelAffineTransform, ZelColor>;

// The animatable properties, parsed once from the key path.
enum class ZelAnimatedProperty { None, Opacity, Transform, TransformScale, LineDashPhase, BackgroundColor };
ZelAnimatedProperty ZelAnimatedPropertyForKeyPath(std::string_view keyPath);

// Linear interpolation between two values of the same alternative (a when
// the alternatives differ). Transforms and colours interpolate component-wise.
ZelAnimationValue ZelInterpolate(const ZelAnimationValue& a, const ZelAnimationValue& b, double fraction);

class ZelBasicAnimation {
 public:
  // Called once when the animation stops: finished is true when it ran its
  // whole active duration, false when it was removed or replaced before.
  using Completion = std::function<void(bool finished)>;

  ZelBasicAnimation() = default;
  explicit ZelBasicAnimation(std::string_view keyPath);

  const std::string& keyPath() const { return keyPath_; }
  void setKeyPath(std::string_view keyPath);
  ZelAnimatedProperty property() const { return property_; }

  // Without a from value the animation starts from the value beneath it (the
  // model value, or what earlier animations of the layer make of it); without
  // a to value it ends there.
  const std::optional<ZelAnimationValue>& fromValue() const { return from_; }
  const std::optional<ZelAnimationValue>& toValue() const { return to_; }
  void setFromValue(std::optional<ZelAnimationValue> v) { from_ = std::move(v); }
  void setToValue(std::optional<ZelAnimationValue> v) { to_ = std::move(v); }

  double duration() const { return duration_; }  // seconds of one pass; default 0.25
  void setDuration(double seconds) { duration_ = seconds; }
  const ZelTimingFunction& timingFunction() const { return timing_; }  // default linear
  void setTimingFunction(const ZelTimingFunction& f) { timing_ = f; }
  bool autoreverses() const { return autoreverses_; }  // each repeat runs forth and back
  void setAutoreverses(bool on) { autoreverses_ = on; }
  // Number of repeats (fractions allowed; 0 means once; infinity forever).
  float repeatCount() const { return repeatCount_; }
  void setRepeatCount(float count) { repeatCount_ = count; }
  bool isRemovedOnCompletion() const { return removedOnCompletion_; }  // default true
  void setRemovedOnCompletion(bool on) { removedOnCompletion_ = on; }
  const Completion& completion() const { return completion_; }
  void setCompletion(Completion c) { completion_ = std::move(c); }
  // Moves the completion out (the layer does so when it runs it).
  Completion takeCompletion() { return std::move(completion_); }

  // Seconds from the begin time to the end: duration × (2 if autoreverses)
  // × max(repeatCount, 1 when 0); infinity for an endless animation.
  double activeDuration() const;
  // The paced fraction (0 = from, 1 = to) at `localTime` seconds after the
  // begin time, or nothing when the animation is not active then (before 0
  // or at/after the active duration): then it contributes nothing.
  std::optional<double> fractionAt(double localTime) const;
  // The animated value at `localTime` over `base` (the value beneath).
  ZelAnimationValue valueAt(double localTime, const ZelAnimationValue& base) const;

 private:
  std::string keyPath_;
  ZelAnimatedProperty property_ = ZelAnimatedProperty::None;
  std::optional<ZelAnimationValue> from_, to_;
  double duration_ = 0.25;
  ZelTimingFunction timing_;
  bool autoreverses_ = false;
  float repeatCount_ = 0;
  bool removedOnCompletion_ = true;
  Completion completion_;
};

inline constexpr float ZelRepeatForever = std::numeric_limits<float>::infinity();

ZEL_NAMESPACE_END
