#include "products/vantry/sketch/ZelVantryParameterSketch.h"

#include <algorithm>
#include <cmath>

#include "theme/ZelUITheme.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

namespace {

constexpr ZelSketchTraits kVantryTraits{300, true, false, {10, 16}};
constexpr double kCurveAlpha = 0.8;
// The screen behind the curve: the theme's text colour (dark on the light
// theme, light on the dark one), a little beyond the plot at the sides and
// over the whole height a curve may reach (it is clipped to -1 ... 2 plot
// heights), so 0 dB sits at its centre and nothing falls outside it.
constexpr double kScreenAlpha = 0.85;
constexpr double kScreenMargin = 4;
constexpr double kScreenAir = 2;
constexpr double kScreenCornerRadius = 4;
// ln 10 and ln (20000 / 10): the graph runs from 10 Hz to 20 kHz.
constexpr double kLogLowestFrequency = 2.302585092994046;
constexpr double kLogFrequencySpan = 7.600902459542081;
// A filter term never exceeds 96 dB of power.
constexpr float kTermCap = 3981071616.0f;
// The graph shows -7.5 dB ... +7.5 dB.
constexpr float kHalfRangeDB = 7.5f;
constexpr float kRangeDB = 15.0f;
// The stamp keeps at least 15 % of its resolution.
constexpr double kStampMinimumScale = 0.15;

float valueAt(std::span<const float> values, std::size_t pid) { return pid < values.size() ? values[pid] : 0.0f; }

bool changedAt(std::span<const std::uint8_t> changes, std::size_t pid) {
  return pid < changes.size() && changes[pid] != 0;
}

// 1 / sqrt(min(x^exponent + 1, cap)): a Butterworth magnitude.
float butterworthMagnitude(float ratio, float exponent) {
  return 1.0f / std::sqrt(std::min(std::pow(ratio, exponent) + 1.0f, kTermCap));
}

}  // namespace

ZelVantryParameterSketch::ZelVantryParameterSketch(CGRect frame, const ZelConfig* config)
    : ZelParameterSketch(frame, config, kVantryTraits) {
  for (std::size_t k = 0; k < kGraphPoints; ++k) {
    const double position = static_cast<double>(k) / static_cast<double>(kGraphPoints - 1);
    graphFreqs_[k] = static_cast<float>(std::exp(position * kLogFrequencySpan + kLogLowestFrequency));
  }
}

ZelVantryParameterSketch::~ZelVantryParameterSketch() = default;

void ZelVantryParameterSketch::addPaths() {
  if (curve_) return;
  auto screen = std::make_unique<ZelLayer>();
  screen->setImplicitAnimationsEnabled(false);
  screen->setCornerRadius(kScreenCornerRadius);
  screen_ = layer()->addSublayer(std::move(screen));
  auto shape = styledShapeLayerWithAlpha(kCurveAlpha);
  shape->setFrame(layer()->bounds());
  curve_ = static_cast<ZelShapeLayer*>(layer()->addSublayer(std::move(shape)));
  layer()->setMasksToBounds(true);
  placeScreen();
}

void ZelVantryParameterSketch::placeScreen() {
  if (!screen_ || !curve_) return;
  const CGRect plot = getPathBounds(curve_);
  if (CGRectIsNull(plot)) {
    screen_->setFrame(CGRectZero);
    return;
  }
  screen_->setFrame(CGRectIntegral(CGRectInset(plot, -kScreenMargin, -(plot.size.height + kScreenAir))));
}

void ZelVantryParameterSketch::setFrame(CGRect frame) {
  ZelParameterSketch::setFrame(frame);
  if (!curve_) return;
  curve_->setFrame(layer()->bounds());
  placeScreen();
  if (drawn_) updatePath(curve_, true, graphPointsY_.data(), kGraphPoints);
}

void ZelVantryParameterSketch::colorSketchWithPrimaryColor(ZelColor color) {
  if (curve_) curve_->setStrokeColor(color.withAlpha(kCurveAlpha));
  if (screen_) screen_->setBackgroundColor(ZelUITheme::theme()->textColor().withAlpha(kScreenAlpha));
}

void ZelVantryParameterSketch::setPowerbox(ZelSketchHost* powerbox) {
  ZelParameterSketch::setPowerbox(powerbox);
  ZelLayer* stamp = powerbox ? powerbox->logoStampLayer() : nullptr;
  if (!stamp) return;
  stamp->setShouldRasterize(true);
  stamp->setMagnificationFilter(ZelImageFilter::Nearest);
  stamp->setRasterizationScale(backingScale());
}

double ZelVantryParameterSketch::stampRasterizationScale(float degradePercent, float mixPercent,
                                                          double backingScale) {
  double amount = static_cast<double>(degradePercent) * 0.01 * static_cast<double>(mixPercent) * 0.01;
  amount = amount > 0 ? std::min(amount, 1.0) : 0.0;  // NaN reads as 0
  const double r = std::pow(amount, 0.25);
  return ((1.0 - r) * (1.0 - kStampMinimumScale) + kStampMinimumScale) * backingScale;
}

void ZelVantryParameterSketch::updateStamp(float degradePercent, float mixPercent) {
  ZelLayer* stamp = powerbox() ? powerbox()->logoStampLayer() : nullptr;
  if (stamp) stamp->setRasterizationScale(stampRasterizationScale(degradePercent, mixPercent, backingScale()));
}

void ZelVantryParameterSketch::computeResponse(const float* freqs, float lowCut, float highCut, float slope,
                                               float* scratch, float* out) {
  const float order = std::max(slope / 6.0f, 1.0f);
  const float exponent = 2.0f * order;
  for (std::size_t k = 0; k < kGraphPoints; ++k) scratch[k] = butterworthMagnitude(lowCut / freqs[k], exponent);
  for (std::size_t k = 0; k < kGraphPoints; ++k) {
    const float amplitude = scratch[k] * butterworthMagnitude(freqs[k] / highCut, exponent);
    const float decibels = 20.0f * std::log10(amplitude);
    out[k] = (decibels + kHalfRangeDB) / kRangeDB;
  }
}

void ZelVantryParameterSketch::getFrameForParameterValues(std::span<const float> values, std::span<const float>,
                                                          std::span<const std::uint8_t> changes) {
  if (changedAt(changes, kDegradePid) || changedAt(changes, kMixPid))
    updateStamp(valueAt(values, kDegradePid), valueAt(values, kMixPid));
  if (!changedAt(changes, kLowCutPid) && !changedAt(changes, kHighCutPid) && !changedAt(changes, kSlopePid)) return;
  computeResponse(graphFreqs_.data(), valueAt(values, kLowCutPid), valueAt(values, kHighCutPid),
                  valueAt(values, kSlopePid), gainsScratch_.data(), graphPointsY_.data());
  drawn_ = true;
  updatePath(curve_, true, graphPointsY_.data(), kGraphPoints);
}

ZEL_PRODUCT_NAMESPACE_END
