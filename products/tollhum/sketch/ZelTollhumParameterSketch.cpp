#include "products/tollhum/sketch/ZelTollhumParameterSketch.h"

#include <algorithm>
#include <cmath>

#include "products/tollhum/unit/ZelTollhumResonance.h"
#include "theme/ZelUITheme.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr ZelSketchTraits kTollhumTraits{200, true, true, {4, 4}};
constexpr double kScreenAlpha = 0.85;
constexpr double kScreenCornerRadius = 4;
constexpr double kGap = 6;  // between the spectrum and the meter
constexpr double kBarGap = 4;
constexpr float kScaleMarks[] = {0, -12, -24, -48};

float valueAt(std::span<const float> values, int pid) {
  return pid >= 0 && static_cast<std::size_t>(pid) < values.size() ? values[pid]
                                                                    : tollhum::kParameters[pid].initial;
}

void readMeter(void* context, float* levels, std::uint32_t count) {
  static_cast<const tollhum::Meter*>(context)->readValues(levels, static_cast<int>(count));
}

}  // namespace

ZelMeteringCallback ZelTollhumMeteringCallbackFor(const tollhum::Meter* meter) {
  if (!meter) return {};
  const ZelMeteringFunction function = &readMeter;
  return {reinterpret_cast<void*>(function), const_cast<tollhum::Meter*>(meter)};
}

ZelTollhumParameterSketch::ZelTollhumParameterSketch(CGRect frame, const ZelConfig* config)
    : ZelParameterSketch(frame, config, kTollhumTraits) {
  for (int c = 0; c < 2; ++c)
    reading_.peak[c] = reading_.hold[c] = reading_.rms[c] = tollhum::Meter::kFloorDb;
}

ZelTollhumParameterSketch::~ZelTollhumParameterSketch() = default;

double ZelTollhumParameterSketch::meterPosition(float db) {
  if (!(db > kMeterFloorDb)) return 0;
  return std::min<double>((db - kMeterFloorDb) / (kMeterCeilingDb - kMeterFloorDb), 1.0);
}

std::size_t ZelTollhumParameterSketch::computeStems(std::span<const float> values, std::span<Stem, kMaxStems> stems) {
  using namespace tollhum;
  const StringSettings s{valueAt(values, tollhum::param::Note), valueAt(values, tollhum::param::Fine), valueAt(values, tollhum::param::Chord),
                         valueAt(values, tollhum::param::Decay), valueAt(values, tollhum::param::Tone), valueAt(values, tollhum::param::Detune)};
  const float cut = valueAt(values, tollhum::param::InputCut);
  const double root = PitchToHertz(s.note + s.fine / 100.0);
  const double highest = std::min(root * std::exp2(kOctavesShown - kOctavesBelow), 0.45 * kDrawingSampleRate);
  std::size_t n = 0;
  for (int k = 0; k < kStrings; ++k) {
    const double f = PitchToHertz(StringPitch(s, k, 0));
    for (std::size_t h = 1; h <= kHarmonics && n < kMaxStems; ++h) {
      const double hertz = f * static_cast<double>(h);
      if (hertz > highest) break;
      const double gain = WetMagnitude(s, cut, 0, hertz, kDrawingSampleRate);
      stems[n++] = {hertz, 20 * std::log10(std::max(gain, 1e-9))};
    }
  }
  return n;
}

void ZelTollhumParameterSketch::addPaths() {
  if (stemsLayer_) return;
  auto screen = std::make_unique<ZelLayer>();
  screen->setImplicitAnimationsEnabled(false);
  screen->setCornerRadius(kScreenCornerRadius);
  screen_ = layer()->addSublayer(std::move(screen));
  auto shape = [this](double alpha, double width) {
    auto s = styledShapeLayerWithAlpha(alpha);
    s->setImplicitAnimationsEnabled(false);
    s->setLineWidth(width);
    s->setFrame(layer()->bounds());
    return static_cast<ZelShapeLayer*>(layer()->addSublayer(std::move(s)));
  };
  scaleLayer_ = shape(0.35, 1);
  stemsLayer_ = shape(0.8, 1.5);
  rmsLayer_ = shape(0.6, 0);
  rmsLayer_->setStrokeColor(std::nullopt);
  peakLayer_ = shape(0.9, 2);
  peakLayer_->setLineCap(ZelLineCap::Butt);
  layer()->setMasksToBounds(true);
  placeLayers();
}

CGRect ZelTollhumParameterSketch::spectrumRect() const {
  const CGRect b = CGRectInset(layer()->bounds(), pathInset().width, pathInset().height);
  if (CGRectIsEmpty(b)) return CGRectZero;
  const double side = std::floor(std::min(b.size.width, b.size.height * 0.4));
  return CGRectMake(std::floor(CGRectGetMidX(b) - side / 2), CGRectGetMaxY(b) - side, side, side);
}

CGRect ZelTollhumParameterSketch::meterRect() const {
  const CGRect b = CGRectInset(layer()->bounds(), pathInset().width, pathInset().height);
  const CGRect top = spectrumRect();
  if (CGRectIsEmpty(b) || CGRectIsEmpty(top)) return CGRectZero;
  const double height = std::max(0.0, CGRectGetMinY(top) - kGap - CGRectGetMinY(b));
  return CGRectMake(top.origin.x, b.origin.y, top.size.width, height);
}

void ZelTollhumParameterSketch::placeLayers() {
  if (!screen_) return;
  const CGRect all = CGRectInset(layer()->bounds(), pathInset().width - 2, pathInset().height - 2);
  screen_->setFrame(CGRectIsEmpty(all) ? CGRectZero : CGRectIntegral(all));
  for (ZelShapeLayer* s : {scaleLayer_, stemsLayer_, rmsLayer_, peakLayer_}) s->setFrame(layer()->bounds());
  // The meter's scale: a mark across both bars at each level.
  scratch_.clear();
  const CGRect m = meterRect();
  if (!CGRectIsEmpty(m)) {
    for (float db : kScaleMarks) {
      const double y = std::floor(m.origin.y + meterPosition(db) * m.size.height) + 0.5;
      scratch_.moveTo({m.origin.x, y});
      scratch_.lineTo({CGRectGetMaxX(m), y});
    }
  }
  scaleLayer_->exchangePath(scratch_);
  drawStems();
  drawMeter();
}

void ZelTollhumParameterSketch::setFrame(CGRect frame) {
  ZelParameterSketch::setFrame(frame);
  placeLayers();
}

void ZelTollhumParameterSketch::colorSketchWithPrimaryColor(ZelColor color) {
  for (ZelShapeLayer* s : {scaleLayer_, stemsLayer_, peakLayer_})
    if (s) s->setStrokeColor(color.withAlpha(s == scaleLayer_ ? 0.35 : 0.85));
  if (rmsLayer_) rmsLayer_->setFillColor(color.withAlpha(0.55));
  if (screen_) screen_->setBackgroundColor(ZelUITheme::theme()->textColor().withAlpha(kScreenAlpha));
}

void ZelTollhumParameterSketch::getFrameForParameterValues(std::span<const float> values, std::span<const float>,
                                                           std::span<const std::uint8_t>) {
  stemCount_ = computeStems(values, std::span<Stem, kMaxStems>(stems_));
  stemsComputed_ = true;
  drawStems();
}

void ZelTollhumParameterSketch::drawStems() {
  if (!stemsLayer_) return;
  if (!stemsComputed_) {
    stemCount_ = computeStems({}, std::span<Stem, kMaxStems>(stems_));
    stemsComputed_ = true;
  }
  scratch_.clear();
  const CGRect r = spectrumRect();
  if (!CGRectIsEmpty(r) && stemCount_ > 0) {
    const double root = stems_[0].hertz;
    for (std::size_t i = 0; i < stemCount_; ++i) {
      const double octave = std::log2(stems_[i].hertz / root) + kOctavesBelow;
      const double x = std::floor(r.origin.x + std::clamp(octave / kOctavesShown, 0.0, 1.0) * r.size.width) + 0.5;
      const double level = std::clamp((stems_[i].gainDb - kStemFloorDb) / (kStemCeilingDb - kStemFloorDb), 0.0, 1.0);
      scratch_.moveTo({x, r.origin.y});
      scratch_.lineTo({x, r.origin.y + std::max(level * r.size.height, 1.0)});
    }
  }
  stemsLayer_->exchangePath(scratch_);
}

void ZelTollhumParameterSketch::updateMeterWithDuration(double) {
  float values[tollhum::Meter::kValueCount];
  if (!meteringCallback().read(values, tollhum::Meter::kValueCount)) return;
  tollhum::MeterReading next;
  // Levels from a host are taken as they come, but a non-finite one reads
  // as the floor.
  for (float& v : values)
    if (!std::isfinite(v)) v = tollhum::Meter::kFloorDb;
  for (int c = 0; c < 2; ++c) next.peak[c] = values[c], next.hold[c] = values[2 + c], next.rms[c] = values[4 + c];
  if (std::equal(std::begin(next.peak), std::end(next.rms), std::begin(reading_.peak))) return;
  reading_ = next;
  drawMeter();
}

void ZelTollhumParameterSketch::setChannels(std::uint32_t channelsIn, std::uint32_t channelsOut) {
  (void)channelsIn;
  const int bars = channelsOut == 1 ? 1 : 2;
  if (bars == meterBars_) return;
  meterBars_ = bars;
  drawMeter();
}

void ZelTollhumParameterSketch::drawMeter() {
  if (!rmsLayer_) return;
  const CGRect m = meterRect();
  const double barWidth = std::floor((m.size.width - kBarGap * (meterBars_ - 1)) / meterBars_);
  scratch_.clear();
  if (!CGRectIsEmpty(m) && barWidth > 0) {
    for (int c = 0; c < meterBars_; ++c) {
      const double x = m.origin.x + c * (barWidth + kBarGap);
      const double rms = meterPosition(reading_.rms[c]) * m.size.height;
      if (rms > 0) scratch_.addRect(CGRectMake(x, m.origin.y, barWidth, rms));
    }
  }
  rmsLayer_->exchangePath(scratch_);
  scratch_.clear();
  if (!CGRectIsEmpty(m) && barWidth > 0) {
    for (int c = 0; c < meterBars_; ++c) {
      const double x = m.origin.x + c * (barWidth + kBarGap);
      if (reading_.peak[c] > kMeterFloorDb) {
        const double y = m.origin.y + meterPosition(reading_.peak[c]) * m.size.height;
        scratch_.moveTo({x, y});
        scratch_.lineTo({x + barWidth, y});
      }
      if (reading_.hold[c] > kMeterFloorDb) {
        const double y = m.origin.y + meterPosition(reading_.hold[c]) * m.size.height;
        scratch_.moveTo({x + barWidth * 0.25, y});
        scratch_.lineTo({x + barWidth * 0.75, y});
      }
    }
  }
  peakLayer_->exchangePath(scratch_);
}

ZEL_NAMESPACE_END
