// The arithmetic of Tollhum's strings, shared by the unit (which runs it)
// and the editor's picture (which draws its response), so that what the
// picture shows is what the sound does.
//
// One string is a feedback comb: y = norm * x + g * L(z) * I(z) * z^-N * y,
// with L a one-pole low-pass (the Tone) and I the linear interpolation of
// the fractional part of the delay. The delay is shortened by the low-pass's
// phase delay at the string's pitch, so the string sounds at its note; g
// makes the fundamental's ring fall by 60 dB over Decay seconds, taking the
// low-pass's loss at the pitch into account (the harmonics above its cutoff
// die sooner; g stays below 1); norm = sqrt(1 - g^2) keeps
// the level of broadband sounds about where it was.
// A channel sums its four strings at half level each, after a 12 dB/oct
// Butterworth high-pass at Input Cut.
//
// Threading: pure functions, real-time safe.
#pragma once

#include <complex>

#include "products/tollhum/unit/ZelTollhumParameters.h"

ZEL_DSP_NAMESPACE_BEGIN

namespace tollhum {

// What sets the strings: a subset of the parameters, in their own units.
struct StringSettings {
  float note = 48, fine = 0, chord = 1, decay = 1.5f, tone = 60, detune = 3;
};

// One string's coefficients at a sample rate.
struct StringCoefficients {
  double delay = 2;  // samples, >= 2
  double feedback = 0;  // g
  double lowpass = 0;  // a: L(z) = (1 - a) / (1 - a z^-1)
  double norm = 1;
};

// The highest pitch a string may take, as a fraction of the sample rate.
inline constexpr double kMaxPitchFraction = 0.4;
// The lowest pitch any setting gives (Note 24, Fine -50, Detune 30), with
// room: the delay lines are sized for it.
inline constexpr double kLowestPitch = 30.0;

// The pitch in semitones (MIDI numbering, fractional) of string `k` of
// `channel` (0 left, 1 right); chord indexes out of range are clamped.
double StringPitch(const StringSettings& s, int k, int channel);
// Hertz of a MIDI pitch (69 = 440 Hz).
double PitchToHertz(double pitch);
// The coefficients of a string at `hertz` for Decay and Tone.
StringCoefficients StringCoefficientsFor(double hertz, float decaySeconds, float tonePercent, double sampleRate);
// The string's complex response at `hertz`.
std::complex<double> StringResponse(const StringCoefficients& c, double hertz, double sampleRate);
// The magnitude of one channel's wet signal at `hertz` against its input:
// the four strings summed at half level, after the input high-pass.
double WetMagnitude(const StringSettings& s, float inputCut, int channel, double hertz, double sampleRate);

}  // namespace tollhum

ZEL_DSP_NAMESPACE_END
