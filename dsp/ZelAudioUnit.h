// The audio unit of a product, as every generic side reaches it: the LV2
// plug-in, the standalone app's audio thread, `process` and the tests. Each
// product's unit implements it (products/<slug>/unit/), with a constructor
// (int channels, double sampleRate), and the product's record
// (dsp/ZelProduct.h) makes one.
//
// Values are set in each parameter's own units, as the editor shows them;
// ids and ranges are those of the product's parameter table.
//
// Ownership: a unit owns all of its buffers; they are allocated when it is
// made and by setSampleRate(), never by process().
// Threading: one thread at a time. process(), setParameter(), parameter(),
// reset() and latency() are real-time safe: no allocation, lock, wait or
// I/O. Making a unit and setSampleRate() allocate and belong off the audio
// thread.
#pragma once

#include <cstdint>

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

class ZelAudioUnit {
 public:
  // The rates a unit accepts; a product's unit class may narrow them with
  // constants of the same names (its record reads them from the class).
  static constexpr double kMinSampleRate = 8000, kMaxSampleRate = 384000;

  virtual ~ZelAudioUnit() = default;

  // 1 or 2, fixed when the unit is made.
  virtual int channels() const = 0;
  virtual double sampleRate() const = 0;
  // Rebuilds the processing for another rate and clears it (allocates).
  virtual void setSampleRate(double sampleRate) = 0;

  // Clamped to the parameter's range; NaN and unknown ids are ignored.
  virtual void setParameter(int pid, float value) = 0;
  // The value last set (0 for an unknown id).
  virtual float parameter(int pid) const = 0;

  // Clears every delay line, filter and glide: the next block starts at the
  // current values as a fresh unit does.
  virtual void reset() = 0;

  // `in` and `out` hold channels() pointers to `frames` samples each (any
  // number of frames); out may be the same memory as in. Non-finite input
  // is treated as silence.
  virtual void process(const float* const* in, float* const* out, std::uint32_t frames) = 0;

  // The delay of the output against the input, in samples at the unit's rate.
  virtual std::uint32_t latency() const = 0;

  // Metering, for a unit that measures its signal: meterCount() levels,
  // published by process() for any thread to read at any time without
  // waiting (the LV2 plug-in copies them to its meter output ports after
  // each block). The order is the description's metadata "meterPorts". A
  // unit without meters keeps these.
  virtual std::uint32_t meterCount() const { return 0; }
  // Writes min(count, meterCount()) levels; real-time safe.
  virtual void readMeters(float* levels, std::uint32_t count) const { (void)levels, (void)count; }
};

ZEL_DSP_NAMESPACE_END
