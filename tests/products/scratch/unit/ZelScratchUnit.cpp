#include "ZelScratchUnit.h"

#include <algorithm>
#include <cmath>

ZEL_PRODUCT_NAMESPACE_BEGIN

ZelScratchUnit::ZelScratchUnit(int channels, double sampleRate)
    : channels_(channels == 1 ? 1 : 2), sampleRate_(sampleRate) {
  for (const ZelUnitParameter& p : kZelParameters) values_[std::size_t(p.pid)] = p.initial;
}

void ZelScratchUnit::setParameter(int pid, float value) {
  if (pid < 0 || pid >= kZelParameterCount || std::isnan(value)) return;
  const ZelUnitParameter& p = kZelParameters[pid];
  values_[std::size_t(pid)] = std::clamp(value, p.minimum, p.maximum);
}

float ZelScratchUnit::parameter(int pid) const {
  return pid >= 0 && pid < kZelParameterCount ? values_[std::size_t(pid)] : 0.0f;
}

void ZelScratchUnit::process(const float* const* in, float* const* out, std::uint32_t frames) {
  const bool on = values_[kPidPower] != 0;
  const float mix = on ? values_[kPidMix] / 100 : 0;
  const float gain = std::pow(10.0f, values_[kPidGain] / 20);
  for (int c = 0; c < channels_; ++c)
    for (std::uint32_t i = 0; i < frames; ++i) {
      const float x = std::isfinite(in[c][i]) ? in[c][i] : 0.0f;
      out[c][i] = x + mix * (gain * x - x);
    }
}

ZEL_PRODUCT_NAMESPACE_END
