#include "products/tollhum/unit/ZelTollhumResonance.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "dsp/ZelButterworth.h"

ZEL_DSP_NAMESPACE_BEGIN

namespace tollhum {

namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;
constexpr double kBrightest = 1024;  // ten octaves
constexpr double kDarkestMargin = 1.05;
constexpr double kMaxCutoffFraction = 0.45;
constexpr double kMaxFeedback = 0.99995;

}  // namespace

double StringPitch(const StringSettings& s, int k, int channel) {
  const int chord = std::clamp(static_cast<int>(s.chord), 0, kChordCount - 1);
  const double share = kDetuneShares[k] * (channel == 0 ? 1.0 : -1.0);
  return s.note + s.fine / 100.0 + kChordIntervals[chord][k] + share * s.detune / 100.0;
}

double PitchToHertz(double pitch) { return 440.0 * std::exp2((pitch - 69.0) / 12.0); }

StringCoefficients StringCoefficientsFor(double hertz, float decaySeconds, float tonePercent, double sampleRate) {
  StringCoefficients c;
  hertz = std::clamp(hertz, 1.0, kMaxPitchFraction * sampleRate);
  const double w = kTwoPi * hertz / sampleRate;
  // The ring of the fundamental: 60 dB down after Decay seconds.
  const double ring = std::pow(10.0, -3.0 / (std::max(decaySeconds, 0.01f) * hertz));
  // The loop low-pass's cutoff, as a multiple of the pitch: from the darkest
  // that still lets the fundamental ring for Decay (Tone 0) up to ten
  // octaves above the pitch (Tone 100), evenly in octaves. The darkest is
  // where the low-pass's loss at the pitch equals the ring's loss per pass
  // (with a little room); it is brighter for longer Decays.
  const double darkest = std::max(kDarkestMargin / std::sqrt(1 / (ring * ring) - 1), 1.0);
  const double ratio = darkest >= kBrightest ? darkest
                                              : darkest * std::pow(kBrightest / darkest, tonePercent / 100.0);
  const double cutoff = std::min(hertz * ratio, kMaxCutoffFraction * sampleRate);
  c.lowpass = std::exp(-kTwoPi * cutoff / sampleRate);
  // Phase delay of the low-pass at the pitch, in samples.
  const double lag = std::atan2(c.lowpass * std::sin(w), 1 - c.lowpass * std::cos(w)) / w;
  c.delay = std::max(sampleRate / hertz - lag, 2.0);
  // g makes up for the low-pass's loss at the pitch, so the fundamental
  // rings for Decay whatever the Tone (the harmonics die sooner); it stays
  // below 1, so the loop never gains at any frequency.
  const double loss = (1 - c.lowpass) / std::abs(1.0 - c.lowpass * std::polar(1.0, -w));
  c.feedback = std::min(ring / loss, kMaxFeedback);
  c.norm = std::sqrt(1 - c.feedback * c.feedback);
  return c;
}

std::complex<double> StringResponse(const StringCoefficients& c, double hertz, double sampleRate) {
  const double w = kTwoPi * hertz / sampleRate;
  const std::complex<double> z1 = std::polar(1.0, -w);  // z^-1
  const double whole = std::floor(c.delay), frac = c.delay - whole;
  const std::complex<double> delay = std::pow(z1, whole) * ((1 - frac) + frac * z1);
  const std::complex<double> lowpass = (1 - c.lowpass) / (1.0 - c.lowpass * z1);
  return c.norm / (1.0 - c.feedback * lowpass * delay);
}

double WetMagnitude(const StringSettings& s, float inputCut, int channel, double hertz, double sampleRate) {
  std::complex<double> sum = 0;
  for (int k = 0; k < kStrings; ++k) {
    const auto c = StringCoefficientsFor(PitchToHertz(StringPitch(s, k, channel)), s.decay, s.tone, sampleRate);
    sum += 0.5 * StringResponse(c, hertz, sampleRate);
  }
  ZelButterworthDesign design;
  ZelDesignButterworth(ZelFilterShape::HighPass, 2, std::min<double>(inputCut, 0.45 * sampleRate), sampleRate, design);
  return std::abs(sum) * ZelBiquadMagnitude(design.slots[1], hertz, sampleRate);
}

}  // namespace tollhum

ZEL_DSP_NAMESPACE_END
