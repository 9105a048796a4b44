// A unit that passes its input through: Gain (dB) mixed with the dry signal
// by Mix (%), Power off passes the input untouched. The smallest product
// there is, for the test that builds a product from its folder alone.
#pragma once

#include <array>

#include "dsp/ZelScratchParameterTable.h"
#include "dsp/ZelAudioUnit.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

class ZelScratchUnit final : public ZelAudioUnit {
 public:
  ZelScratchUnit(int channels, double sampleRate);

  int channels() const override { return channels_; }
  double sampleRate() const override { return sampleRate_; }
  void setSampleRate(double sampleRate) override { sampleRate_ = sampleRate; }
  void setParameter(int pid, float value) override;
  float parameter(int pid) const override;
  void reset() override {}
  void process(const float* const* in, float* const* out, std::uint32_t frames) override;
  std::uint32_t latency() const override { return 0; }

 private:
  int channels_;
  double sampleRate_;
  std::array<float, kZelParameterCount> values_{};
};

ZEL_PRODUCT_NAMESPACE_END
