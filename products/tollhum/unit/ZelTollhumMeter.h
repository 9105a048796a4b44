// Tollhum's level meter: measured on the audio thread, sample by sample, and
// published lock-free for any other thread to read.
//
// Ballistics, per channel:
// - peak: rises at once to the sample peak and falls by 20 dB per second;
// - hold: the highest sample peak, held for 1.5 s, then it follows the peak
//   as it falls;
// - RMS: the power averaged exponentially with a 100 ms time constant (a
//   steady tone reads within 0.25 dB of its RMS level 300 ms after it starts).
// Levels are published in dBFS, at least kFloorDb, at the end of every block.
//
// Threading: process() and reset() on the audio thread only (one writer);
// read() on any thread, at any time: each value is one atomic float, so a
// reader sees every value whole (values of one channel may come from two
// successive blocks). Nothing blocks, allocates or waits.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "products/tollhum/unit/ZelTollhumParameters.h"

ZEL_DSP_NAMESPACE_BEGIN

namespace tollhum {

// One reading: [channel] 0 left (or mono), 1 right (a copy of the left in
// mono), in dBFS.
struct MeterReading {
  float peak[2], hold[2], rms[2];
};

class Meter {
 public:
  static constexpr float kFloorDb = -90;
  static constexpr double kPeakFallDbPerSecond = 20;
  static constexpr double kHoldSeconds = 1.5;
  static constexpr double kRmsTimeConstantSeconds = 0.1;
  // The number of values of a reading, in the order peak L, peak R, hold L,
  // hold R, RMS L, RMS R (the order of MeterReading and of the plug-in's
  // meter ports).
  static constexpr int kValueCount = 6;

  Meter();
  void setSampleRate(double sampleRate);
  // Back to silence, published at once.
  void reset();
  // Measures `frames` samples of each of `channels` (1 or 2) outputs and
  // publishes the result.
  void process(const float* const* out, int channels, std::uint32_t frames);

  MeterReading read() const;
  // The reading as kValueCount floats, in the order above; returns the count.
  int readValues(float* values, int capacity) const;

 private:
  struct Channel {
    double peak = 0, hold = 0, power = 0;
    std::uint32_t holdLeft = 0;
  };
  void publish(int channels);

  double peakFall_ = 1, rmsCoefficient_ = 1;
  std::uint32_t holdSamples_ = 0;
  std::array<Channel, 2> channels_{};
  std::array<std::atomic<float>, kValueCount> published_;
  static_assert(std::atomic<float>::is_always_lock_free);
};

}  // namespace tollhum

ZEL_DSP_NAMESPACE_END
