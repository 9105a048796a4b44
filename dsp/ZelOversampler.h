// Oversampling by 2 or 4 with linear-phase half-band filters (Kaiser
// windowed, about 100 dB of rejection, flat to 0.4 of the base rate), so
// the delay is a whole number of base-rate samples and a dry signal can be
// lined up with it exactly.
//
// Ownership: each channel's histories are fixed arrays inside the object.
// Threading: one thread; up() and down() are real-time safe.
#pragma once

#include <cstdint>

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

// One 2x half-band stage. Its taps h[k], k = -M..M (M odd), are 0 at even k
// but the centre (1/2); up() works at the low rate, down() at the high one.
class ZelHalfbandStage {
 public:
  static constexpr int kMaxHalfOrder = 33;  // M of the longest stage
  static constexpr int kMaxBlock = 256;     // low-rate samples per call

  // `halfOrder` M (odd, at most kMaxHalfOrder). The transition band, centred
  // on a quarter of the high rate, is about 6.4 / (2M) of that rate wide.
  void design(int halfOrder);
  void reset();

  // n low-rate samples in, 2n high-rate samples out (n <= kMaxBlock).
  // Delay: M high-rate samples.
  void up(const float* in, float* out, int n);
  // 2n high-rate samples in, n low-rate samples out. Delay: M high-rate samples.
  void down(const float* in, float* out, int n);

  int halfOrder() const { return m_; }

 private:
  int m_ = 1;
  // g[i] = h[2i - M] for i = 0..(M - 1) / 2 (the other half mirrors it).
  float taps_[(kMaxHalfOrder + 1) / 2] = {};
  // History then block: the last M low-rate inputs for up(), the last 2M
  // high-rate inputs for down().
  float upBuffer_[kMaxHalfOrder + kMaxBlock] = {};
  float downBuffer_[2 * kMaxHalfOrder + 2 * kMaxBlock] = {};
};

class ZelOversampler {
 public:
  static constexpr int kMaxFactor = 4;
  static constexpr int kMaxBlock = ZelHalfbandStage::kMaxBlock / 2;

  ZelOversampler();
  // 1, 2 or 4 (others are taken as the nearest of them); clears the state.
  void setFactor(int factor);
  int factor() const { return factor_; }
  void reset();

  // n base-rate samples to n * factor() samples.
  void up(const float* in, float* out, int n);
  // n * factor() samples back to n; the round trip's delay is latency().
  void down(const float* in, float* out, int n);

  // Delay of up() then down(), in base-rate samples (0 at factor 1).
  int latency() const { return latency_; }

 private:
  int factor_ = 1;
  int latency_ = 0;
  ZelHalfbandStage first_, second_;
  // At factor 4 the stages' delays add up to half a base-rate sample; a
  // short delay at the top rate rounds the total to a whole one.
  int padding_ = 0;
  float padLine_[4] = {};
  float scratch_[2 * kMaxBlock] = {};
};

ZEL_DSP_NAMESPACE_END
