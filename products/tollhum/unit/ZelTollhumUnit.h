// The audio unit of Tollhum: four tuned strings per channel that ring along
// with the input (see ZelTollhumResonance.h for their arithmetic), a blend
// of the ringing with the dry signal, the output level, and the level meter
// of the result.
//
// Values are set in each parameter's own units (MIDI note for Note, cents
// for Fine and Detune, seconds for Decay, hertz for Input Cut, decibels for
// Output, percent elsewhere), ids as in ZelTollhumParameters.h. Every
// continuous parameter glides to a new value over 20 ms (pitches glide, so a
// new Note or Chord slides the ringing strings over), and Power crossfades
// over 20 ms; a unit that has not processed yet starts at the values it was
// given, with no glide. The unit has no latency.
//
// Ownership: the unit owns all of its buffers; they are allocated by the
// constructor (and by setSampleRate), never by process().
// Threading: one audio thread at a time for process(), setParameter() and
// reset(); no allocation, lock, wait or I/O in them. meter() may be read
// from any thread (see ZelTollhumMeter.h). The constructor and
// setSampleRate() allocate and belong off the audio thread.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "dsp/ZelAudioUnit.h"
#include "dsp/ZelRamp.h"
#include "dsp/ZelStateVariableSection.h"
#include "products/tollhum/unit/ZelTollhumMeter.h"
#include "products/tollhum/unit/ZelTollhumResonance.h"

ZEL_DSP_NAMESPACE_BEGIN

class ZelTollhumUnit final : public ZelAudioUnit {
 public:
  static constexpr std::uint32_t kMaxBlock = 8192;
  static constexpr double kMinSampleRate = 8000, kMaxSampleRate = 384000;
  static constexpr double kGlideSeconds = 0.02;

  // `channels` is 1 or 2 (anything else is taken as 2); the rate is clamped
  // to [8 kHz, 384 kHz]. Parameters start at their defaults.
  ZelTollhumUnit(int channels, double sampleRate);
  ~ZelTollhumUnit() override;
  ZelTollhumUnit(const ZelTollhumUnit&) = delete;
  ZelTollhumUnit& operator=(const ZelTollhumUnit&) = delete;

  int channels() const override { return channels_; }
  double sampleRate() const override { return sampleRate_; }
  // Rebuilds the processing for another rate and clears it (allocates).
  void setSampleRate(double sampleRate) override;

  // Clamped to the parameter's range; NaN and unknown ids are ignored.
  void setParameter(int pid, float value) override;
  float parameter(int pid) const override;

  // Silences the strings, the filters and the meter, and ends every glide.
  void reset() override;

  // `in` and `out` hold channels() pointers to `frames` samples each; out
  // may be the same memory as in. Non-finite input is treated as silence.
  void process(const float* const* in, float* const* out, std::uint32_t frames) override;

  std::uint32_t latency() const override { return 0; }

  // The meter of the output (what process() wrote).
  const tollhum::Meter& meter() const { return meter_; }
  // Its levels in dBFS, for any thread (see tollhum::Meter for the order):
  // the plug-in's meter ports.
  std::uint32_t meterCount() const override { return tollhum::Meter::kValueCount; }
  void readMeters(float* levels, std::uint32_t count) const override {
    meter_.readValues(levels, static_cast<int>(count));
  }

 private:
  // Coefficients are computed every kControlPeriod samples and interpolated
  // sample by sample in between.
  static constexpr int kControlPeriod = 16;

  struct StringState {
    double delay = 2, feedback = 0, lowpass = 0, norm = 0;  // at the last control point
    double filtered = 0;  // the loop low-pass's state
  };
  struct ChannelState {
    std::array<StringState, tollhum::kStrings> strings{};
    double ic1 = 0, ic2 = 0;  // the input high-pass's states
  };

  void rebuild();
  void startGlides();
  void snapGlides();
  void runControl(int samples);
  void startControlPeriod();
  void processSpan(const float* const* in, float* const* out, int offset, int n);

  int channels_;
  double sampleRate_;
  std::array<float, tollhum::kParameterCount> values_{};
  bool started_ = false;

  // Glides: per channel and string the pitch (semitones); the rest shared.
  std::array<std::array<ZelRamp, tollhum::kStrings>, 2> pitch_;
  ZelRamp logDecay_, tone_, logCut_, mix_, gain_, width_, power_;

  std::array<ChannelState, 2> state_{};
  // The strings' delay lines: [channel][string] of lineLength_ samples each.
  std::vector<float> lines_;
  std::uint32_t lineLength_ = 0, lineMask_ = 0, writeIndex_ = 0;
  // Targets of the current control period and their start values.
  std::array<std::array<tollhum::StringCoefficients, tollhum::kStrings>, 2> next_{};
  ZelStateVariableSection cut_, cutNext_;
  double mixFrom_ = 0, mixTo_ = 0, gainFrom_ = 1, gainTo_ = 1, widthFrom_ = 1, widthTo_ = 1;
  double powerFrom_ = 1, powerTo_ = 1;
  int phase_ = 0;  // samples left in the current control period
  bool silent_ = false;  // strings cleared while bypassed
  tollhum::Meter meter_;
};

ZEL_DSP_NAMESPACE_END
