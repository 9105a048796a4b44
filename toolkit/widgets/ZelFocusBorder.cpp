#include "toolkit/widgets/ZelFocusBorder.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kPeriod = 5;             // points of one dash and its gap
constexpr double kStrokeAlpha = 0.7;
constexpr double kPhaseShiftDuration = 2.0;  // seconds for two periods

}  // namespace

ZelDashFit ZelFitDashesToOutline(CGSize size, double rounding) {
  ZelDashFit fit;
  fit.length = 2 * (size.width + size.height) - 8 * rounding + 2 * std::numbers::pi * rounding;
  fit.periods = std::max(1L, std::lround(fit.length / kPeriod));
  if (!(fit.length > 0)) return fit;  // a degenerate outline keeps [3, 2]
  double n = static_cast<double>(fit.periods);
  fit.dash = 3 * fit.length / (kPeriod * n);
  fit.gap = 2 * fit.length / (kPeriod * n);
  return fit;
}

ZelFocusBorder::ZelFocusBorder() {
  ZelTransaction setup;  // a new border starts hidden, without fading out
  setup.setDisableActions(true);
  setFillColor(std::nullopt);
  setLineWidth(2);
  setLineDashPhase(0);
  ZelLayer::setOpacity(0);
  setLineDashPattern({3, 2});
  setLineCap(ZelLineCap::Butt);
  setLineJoin(ZelLineJoin::Round);
}

void ZelFocusBorder::setOpacity(double opacity) {
  ZelLayer::setOpacity(opacity);
  animate(opacity > 0);
}

void ZelFocusBorder::animate(bool on) {
  ZelDashFit fit = ZelFitDashesToOutline(frame().size, rounding_);
  setLineDashPattern({fit.dash, fit.gap});
  if (!on || !(fit.length > 0)) {
    removeAnimationForKey("PhaseShift");
    return;
  }
  ZelBasicAnimation shift("lineDashPhase");
  shift.setFromValue(0.0);
  shift.setToValue(2 * fit.length / static_cast<double>(fit.periods));
  shift.setDuration(kPhaseShiftDuration);
  shift.setTimingFunction(ZelTimingFunction::linear());  // a steady crawl, no pulsing
  shift.setRepeatCount(ZelRepeatForever);
  addAnimation(shift, "PhaseShift");
}

void ZelFocusBorder::updateWithFrame(CGRect frame, double rounding) {
  rounding_ = rounding;
  setFrame(frame);
  setPath(ZelPath::roundedRectAtOrigin(frame.size, rounding));
}

void ZelFocusBorder::setStrokeNSColor(ZelColor color) {
  strokeNSColor_ = color;
  setStrokeColor(color.withAlpha(kStrokeAlpha));
}

ZEL_NAMESPACE_END
