// The audio unit: Vantry's whole signal chain for one or two channels, as
// the generic sides reach it (dsp/ZelAudioUnit.h).
//
// Values are set in each parameter's own units (hertz for the cutoffs,
// 0/1/2 for Mode, decibels for Output and Hiss), exactly as the editor shows
// them; ids and ranges are those of the generated parameter table. Every
// continuous parameter glides to a new value over about 20 ms; a unit that
// has not processed yet starts at the values it was given, with no glide.
//
// Ownership: the unit owns all of its buffers; they are allocated by the
// constructor (and by setSampleRate), never by process().
// Threading: one thread at a time. process(), setParameter(), parameter()
// and latency() are real-time safe: no allocation, lock, wait or I/O. The
// constructor and setSampleRate() allocate and belong off the audio thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "dsp/ZelAudioUnit.h"
#include "dsp/ZelVantryParameterTable.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

class ZelVantryEngine;

class ZelVantryUnit final : public ZelAudioUnit {
 public:
  // Largest block processed in one piece; larger ones are cut into pieces.
  static constexpr std::uint32_t kMaxBlock = 8192;
  static constexpr double kMinSampleRate = 8000, kMaxSampleRate = 384000;

  // `channels` is 1 or 2 (anything else is taken as 2); the rate is clamped
  // to [8 kHz, 384 kHz]. Parameters start at their defaults.
  ZelVantryUnit(int channels, double sampleRate);
  ~ZelVantryUnit() override;
  ZelVantryUnit(const ZelVantryUnit&) = delete;
  ZelVantryUnit& operator=(const ZelVantryUnit&) = delete;
  ZelVantryUnit(ZelVantryUnit&&) noexcept;
  ZelVantryUnit& operator=(ZelVantryUnit&&) noexcept;

  int channels() const override { return channels_; }
  double sampleRate() const override { return sampleRate_; }
  // Rebuilds the processing for another rate and clears it (allocates).
  void setSampleRate(double sampleRate) override;

  // Clamped to the parameter's range; NaN and unknown ids are ignored.
  void setParameter(int pid, float value) override;
  float parameter(int pid) const override;

  // Clears every delay line, filter and glide: the next block starts at the
  // current values as a fresh unit does.
  void reset() override;

  // `in` and `out` hold channels() pointers to `frames` samples each; out
  // may be the same memory as in. Non-finite input is treated as silence.
  void process(const float* const* in, float* const* out, std::uint32_t frames) override;

  // The delay of the output against the input, in samples at the unit's
  // rate (0 with HQ off). Follows HQ as soon as process() has seen it.
  std::uint32_t latency() const override;
  // The oversampling factor HQ uses at this rate (1 above 96 kHz).
  int hqFactor() const;

 private:
  int channels_;
  double sampleRate_;
  std::array<float, kZelParameterCount> values_{};
  std::unique_ptr<ZelVantryEngine> engine_;
};

ZEL_PRODUCT_NAMESPACE_END
