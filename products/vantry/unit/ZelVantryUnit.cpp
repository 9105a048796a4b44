#include "products/vantry/unit/ZelVantryUnit.h"

#include <algorithm>
#include <cmath>

#include "dsp/ZelDenormals.h"
#include "products/vantry/unit/ZelVantryEngine.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

namespace {

double clampRate(double rate) {
  if (!(rate >= ZelVantryUnit::kMinSampleRate)) return ZelVantryUnit::kMinSampleRate;
  return std::min(rate, ZelVantryUnit::kMaxSampleRate);
}

}  // namespace

ZelVantryUnit::ZelVantryUnit(int channels, double sampleRate)
    : channels_(channels == 1 ? 1 : 2), sampleRate_(clampRate(sampleRate)) {
  for (int i = 0; i < kZelParameterCount; ++i) values_[i] = kZelParameters[i].initial;
  engine_ = std::make_unique<ZelVantryEngine>(channels_, sampleRate_);
}

ZelVantryUnit::~ZelVantryUnit() = default;
ZelVantryUnit::ZelVantryUnit(ZelVantryUnit&&) noexcept = default;
ZelVantryUnit& ZelVantryUnit::operator=(ZelVantryUnit&&) noexcept = default;

void ZelVantryUnit::setSampleRate(double sampleRate) {
  sampleRate_ = clampRate(sampleRate);
  engine_ = std::make_unique<ZelVantryEngine>(channels_, sampleRate_);
}

void ZelVantryUnit::setParameter(int pid, float value) {
  if (pid < 0 || pid >= kZelParameterCount || std::isnan(value)) return;
  const ZelUnitParameter& p = kZelParameters[pid];
  values_[pid] = std::clamp(value, p.minimum, p.maximum);
}

float ZelVantryUnit::parameter(int pid) const {
  return pid >= 0 && pid < kZelParameterCount ? values_[pid] : 0.0f;
}

void ZelVantryUnit::reset() { engine_->reset(); }

void ZelVantryUnit::process(const float* const* in, float* const* out, std::uint32_t frames) {
  ZelDenormalScope flushing;
  for (std::uint32_t done = 0; done < frames;) {
    const std::uint32_t n = std::min(frames - done, kMaxBlock);
    const float* inputs[2] = {in[0] + done, channels_ == 2 ? in[1] + done : nullptr};
    float* outputs[2] = {out[0] + done, channels_ == 2 ? out[1] + done : nullptr};
    engine_->process(inputs, outputs, n, values_.data());
    done += n;
  }
}

std::uint32_t ZelVantryUnit::latency() const { return std::uint32_t(engine_->latency()); }

int ZelVantryUnit::hqFactor() const { return engine_->hqFactor(); }

ZEL_PRODUCT_NAMESPACE_END
