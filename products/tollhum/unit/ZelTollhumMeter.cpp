#include "products/tollhum/unit/ZelTollhumMeter.h"

#include <algorithm>
#include <cmath>

ZEL_DSP_NAMESPACE_BEGIN

namespace tollhum {

namespace {

float toDb(double amplitude) {
  if (!(amplitude > 0)) return Meter::kFloorDb;
  return std::max(static_cast<float>(20 * std::log10(amplitude)), Meter::kFloorDb);
}

}  // namespace

Meter::Meter() {
  setSampleRate(48000);
  reset();
}

void Meter::setSampleRate(double sampleRate) {
  peakFall_ = std::pow(10.0, -kPeakFallDbPerSecond / 20.0 / sampleRate);
  rmsCoefficient_ = 1 - std::exp(-1 / (kRmsTimeConstantSeconds * sampleRate));
  holdSamples_ = static_cast<std::uint32_t>(kHoldSeconds * sampleRate);
}

void Meter::reset() {
  channels_ = {};
  for (auto& value : published_) value.store(kFloorDb, std::memory_order_relaxed);
}

void Meter::process(const float* const* out, int channels, std::uint32_t frames) {
  if (frames == 0) return;
  channels = channels == 1 ? 1 : 2;
  for (int c = 0; c < channels; ++c) {
    Channel& m = channels_[c];
    const float* x = out[c];
    double peak = m.peak, hold = m.hold, power = m.power;
    std::uint32_t holdLeft = m.holdLeft;
    for (std::uint32_t i = 0; i < frames; ++i) {
      const double v = std::fabs(static_cast<double>(x[i]));
      const double a = std::isfinite(v) ? v : 0.0;
      peak = std::max(a, peak * peakFall_);
      if (a >= hold) {
        hold = a;
        holdLeft = holdSamples_;
      } else if (holdLeft > 0) {
        --holdLeft;
      } else {
        hold = peak;
      }
      power += rmsCoefficient_ * (a * a - power);
    }
    // Far below the floor is silence: no crawl through subnormal values.
    if (peak < 1e-9) peak = 0;
    if (hold < 1e-9) hold = 0;
    if (power < 1e-18) power = 0;
    m.peak = peak, m.hold = hold, m.power = power, m.holdLeft = holdLeft;
  }
  publish(channels);
}

void Meter::publish(int channels) {
  for (int c = 0; c < 2; ++c) {
    const Channel& m = channels_[channels == 1 ? 0 : c];
    published_[0 + c].store(toDb(m.peak), std::memory_order_relaxed);
    published_[2 + c].store(toDb(m.hold), std::memory_order_relaxed);
    published_[4 + c].store(toDb(std::sqrt(m.power)), std::memory_order_relaxed);
  }
}

MeterReading Meter::read() const {
  MeterReading r;
  for (int c = 0; c < 2; ++c) {
    r.peak[c] = published_[0 + c].load(std::memory_order_relaxed);
    r.hold[c] = published_[2 + c].load(std::memory_order_relaxed);
    r.rms[c] = published_[4 + c].load(std::memory_order_relaxed);
  }
  return r;
}

int Meter::readValues(float* values, int capacity) const {
  const int n = std::min(capacity, kValueCount);
  for (int i = 0; i < n; ++i) values[i] = published_[i].load(std::memory_order_relaxed);
  return std::max(n, 0);
}

}  // namespace tollhum

ZEL_DSP_NAMESPACE_END
