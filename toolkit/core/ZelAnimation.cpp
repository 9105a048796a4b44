#include "toolkit/core/ZelAnimation.h"

#include <cmath>

ZEL_NAMESPACE_BEGIN

ZelAnimatedProperty ZelAnimatedPropertyForKeyPath(std::string_view keyPath) {
  if (keyPath == "opacity") return ZelAnimatedProperty::Opacity;
  if (keyPath == "transform") return ZelAnimatedProperty::Transform;
  if (keyPath == "transform.scale") return ZelAnimatedProperty::TransformScale;
  if (keyPath == "lineDashPhase") return ZelAnimatedProperty::LineDashPhase;
  if (keyPath == "backgroundColor") return ZelAnimatedProperty::BackgroundColor;
  return ZelAnimatedProperty::None;
}

namespace {

double mix(double a, double b, double f) { return a + (b - a) * f; }

struct Interpolator {
  double f;
  ZelAnimationValue operator()(double a, double b) const { return mix(a, b, f); }
  ZelAnimationValue operator()(const ZelAffineTransform& a, const ZelAffineTransform& b) const {
    return ZelAffineTransform{mix(a.a, b.a, f),   mix(a.b, b.b, f),   mix(a.c, b.c, f),
                              mix(a.d, b.d, f),   mix(a.tx, b.tx, f), mix(a.ty, b.ty, f)};
  }
  ZelAnimationValue operator()(const ZelColor& a, const ZelColor& b) const {
    return ZelColor{mix(a.red, b.red, f), mix(a.green, b.green, f), mix(a.blue, b.blue, f),
                    mix(a.alpha, b.alpha, f)};
  }
  template <class A, class B>
  ZelAnimationValue operator()(const A& a, const B&) const { return a; }
};

}  // namespace

ZelAnimationValue ZelInterpolate(const ZelAnimationValue& a, const ZelAnimationValue& b, double fraction) {
  return std::visit(Interpolator{fraction}, a, b);
}

ZelBasicAnimation::ZelBasicAnimation(std::string_view keyPath) { setKeyPath(keyPath); }

void ZelBasicAnimation::setKeyPath(std::string_view keyPath) {
  keyPath_ = keyPath;
  property_ = ZelAnimatedPropertyForKeyPath(keyPath);
}

double ZelBasicAnimation::activeDuration() const {
  double repeats = repeatCount_ > 0 ? double(repeatCount_) : 1.0;
  if (std::isinf(repeats)) return std::numeric_limits<double>::infinity();
  return std::max(duration_, 0.0) * (autoreverses_ ? 2 : 1) * repeats;
}

std::optional<double> ZelBasicAnimation::fractionAt(double localTime) const {
  if (localTime < 0 || !(localTime < activeDuration())) return std::nullopt;
  double span = duration_ * (autoreverses_ ? 2 : 1);
  double phase = std::fmod(localTime, span);
  if (autoreverses_ && phase > duration_) phase = span - phase;
  return timing_.evaluate(phase / duration_);
}

ZelAnimationValue ZelBasicAnimation::valueAt(double localTime, const ZelAnimationValue& base) const {
  std::optional<double> fraction = fractionAt(localTime);
  if (!fraction) return base;
  const ZelAnimationValue& from = from_ ? *from_ : base;
  const ZelAnimationValue& to = to_ ? *to_ : base;
  if (from.index() != base.index() || to.index() != base.index()) return base;
  return ZelInterpolate(from, to, *fraction);
}

ZEL_NAMESPACE_END
