#include "products/tollhum/unit/ZelTollhumUnit.h"

#include <algorithm>
#include <cmath>

#include "dsp/ZelButterworth.h"
#include "dsp/ZelDenormals.h"

ZEL_DSP_NAMESPACE_BEGIN

using namespace tollhum;

namespace {

double clampRate(double rate) {
  if (!(rate >= ZelTollhumUnit::kMinSampleRate)) return ZelTollhumUnit::kMinSampleRate;
  return std::min(rate, ZelTollhumUnit::kMaxSampleRate);
}

double dbToGain(double db) { return std::pow(10.0, db / 20.0); }

double lerp(double from, double to, double t) { return from + (to - from) * t; }

ZelStateVariableSection inputHighPass(double cutoff, double sampleRate) {
  ZelButterworthDesign design;
  ZelDesignButterworth(ZelFilterShape::HighPass, 2, std::min(cutoff, 0.45 * sampleRate), sampleRate, design);
  return ZelStateVariableSection(design.slots[1]);
}

}  // namespace

ZelTollhumUnit::ZelTollhumUnit(int channels, double sampleRate)
    : channels_(channels == 1 ? 1 : 2), sampleRate_(clampRate(sampleRate)) {
  for (int i = 0; i < kParameterCount; ++i) values_[i] = kParameters[i].initial;
  rebuild();
}

ZelTollhumUnit::~ZelTollhumUnit() = default;

void ZelTollhumUnit::setSampleRate(double sampleRate) {
  sampleRate_ = clampRate(sampleRate);
  rebuild();
}

void ZelTollhumUnit::rebuild() {
  std::uint32_t length = 4;
  while (length < static_cast<std::uint32_t>(sampleRate_ / kLowestPitch) + 4) length *= 2;
  lineLength_ = length;
  lineMask_ = length - 1;
  lines_.assign(std::size_t(2) * kStrings * length, 0.0f);
  const int glide = static_cast<int>(std::lround(kGlideSeconds * sampleRate_));
  for (auto& channel : pitch_)
    for (auto& ramp : channel) ramp.setLength(glide);
  for (ZelRamp* ramp : {&logDecay_, &tone_, &logCut_, &mix_, &gain_, &width_, &power_}) ramp->setLength(glide);
  meter_.setSampleRate(sampleRate_);
  reset();
}

void ZelTollhumUnit::setParameter(int pid, float value) {
  if (pid < 0 || pid >= kParameterCount || std::isnan(value)) return;
  values_[pid] = std::clamp(value, kParameters[pid].minimum, kParameters[pid].maximum);
}

float ZelTollhumUnit::parameter(int pid) const { return pid >= 0 && pid < kParameterCount ? values_[pid] : 0.0f; }

void ZelTollhumUnit::reset() {
  std::fill(lines_.begin(), lines_.end(), 0.0f);
  state_ = {};
  writeIndex_ = 0;
  started_ = false;
  silent_ = false;
  meter_.reset();
}

void ZelTollhumUnit::startGlides() {
  StringSettings s{values_[tollhum::param::Note], values_[tollhum::param::Fine], values_[tollhum::param::Chord],
                   values_[tollhum::param::Decay], values_[tollhum::param::Tone], values_[tollhum::param::Detune]};
  for (int c = 0; c < 2; ++c)
    for (int k = 0; k < kStrings; ++k) pitch_[c][k].glideTo(StringPitch(s, k, c));
  logDecay_.glideTo(std::log(values_[tollhum::param::Decay]));
  tone_.glideTo(values_[tollhum::param::Tone]);
  logCut_.glideTo(std::log(values_[tollhum::param::InputCut]));
  mix_.glideTo(values_[tollhum::param::Mix] / 100.0);
  gain_.glideTo(values_[tollhum::param::Output]);
  width_.glideTo(values_[tollhum::param::Width] / 100.0);
  power_.glideTo(values_[tollhum::param::Power] >= 0.5f ? 1.0 : 0.0);
}

void ZelTollhumUnit::snapGlides() {
  startGlides();
  for (auto& channel : pitch_)
    for (auto& ramp : channel) ramp.snap(ramp.target());
  for (ZelRamp* ramp : {&logDecay_, &tone_, &logCut_, &mix_, &gain_, &width_, &power_}) ramp->snap(ramp->target());
  // The first control period starts where it ends: no glide at all.
  runControl(0);
  startControlPeriod();
  phase_ = 0;
}

// A new control period starts where the last one ended.
void ZelTollhumUnit::startControlPeriod() {
  for (int c = 0; c < channels_; ++c)
    for (int k = 0; k < kStrings; ++k) {
      StringState& s = state_[c].strings[k];
      s.delay = next_[c][k].delay, s.feedback = next_[c][k].feedback;
      s.lowpass = next_[c][k].lowpass, s.norm = next_[c][k].norm;
    }
  cut_ = cutNext_;
  mixFrom_ = mixTo_, gainFrom_ = gainTo_, widthFrom_ = widthTo_, powerFrom_ = powerTo_;
}

// Moves the glides `samples` on and computes the values at the end of the
// next control period.
void ZelTollhumUnit::runControl(int samples) {
  const double decay = std::exp(logDecay_.advance(samples));
  const double tone = tone_.advance(samples);
  for (int c = 0; c < channels_; ++c)
    for (int k = 0; k < kStrings; ++k)
      next_[c][k] = StringCoefficientsFor(PitchToHertz(pitch_[c][k].advance(samples)), static_cast<float>(decay),
                                          static_cast<float>(tone), sampleRate_);
  cutNext_ = inputHighPass(std::exp(logCut_.advance(samples)), sampleRate_);
  mixTo_ = mix_.advance(samples);
  gainTo_ = dbToGain(gain_.advance(samples));
  widthTo_ = width_.advance(samples);
  powerTo_ = power_.advance(samples);
}

void ZelTollhumUnit::process(const float* const* in, float* const* out, std::uint32_t frames) {
  ZelDenormalScope flushing;
  if (frames == 0) return;
  if (!started_) {
    snapGlides();
    started_ = true;
  } else {
    startGlides();
  }
  for (std::uint32_t done = 0; done < frames;) {
    if (phase_ == 0) {
      startControlPeriod();
      runControl(kControlPeriod);
      phase_ = kControlPeriod;
    }
    const int n = static_cast<int>(std::min<std::uint32_t>(frames - done, static_cast<std::uint32_t>(phase_)));
    processSpan(in, out, static_cast<int>(done), n);
    done += static_cast<std::uint32_t>(n);
  }
  meter_.process(out, channels_, frames);
}

void ZelTollhumUnit::processSpan(const float* const* in, float* const* out, int offset, int n) {
  const bool bypassed = powerFrom_ == 0 && powerTo_ == 0;
  if (bypassed) {
    // Off: the dry signal only, and the strings start from silence when
    // Power comes back.
    for (int c = 0; c < channels_; ++c)
      for (int i = 0; i < n; ++i) {
        const float x = in[c][offset + i];
        out[c][offset + i] = std::isfinite(x) ? x : 0.0f;
      }
    if (!silent_) {
      std::fill(lines_.begin(), lines_.end(), 0.0f);
      for (auto& channel : state_) {
        for (auto& s : channel.strings) s.filtered = 0;
        channel.ic1 = channel.ic2 = 0;
      }
      silent_ = true;
    }
    phase_ -= n;
    return;
  }
  silent_ = false;
  for (int i = 0; i < n; ++i) {
    // Position in the control period, 1/period ... 1.
    const double t = static_cast<double>(kControlPeriod - phase_ + i + 1) / kControlPeriod;
    double dry[2] = {0, 0}, wet[2] = {0, 0};
    for (int c = 0; c < channels_; ++c) {
      const float x = in[c][offset + i];
      dry[c] = std::isfinite(x) ? x : 0.0;
      ChannelState& ch = state_[c];
      // The input high-pass (trapezoidal state-variable form).
      const double v3 = dry[c] - ch.ic2;
      const double v1 = cut_.a1 * ch.ic1 + cut_.a2 * v3;
      const double v2 = ch.ic2 + cut_.a2 * ch.ic1 + cut_.a3 * v3;
      ch.ic1 = 2 * v1 - ch.ic1;
      ch.ic2 = 2 * v2 - ch.ic2;
      const double excite = cut_.m0 * dry[c] + cut_.m1 * v1 + cut_.m2 * v2;
      float* lines = lines_.data() + std::size_t(c) * kStrings * lineLength_;
      for (int k = 0; k < kStrings; ++k) {
        StringState& s = ch.strings[k];
        const StringCoefficients& to = next_[c][k];
        const double delay = lerp(s.delay, to.delay, t);
        const double whole = std::floor(delay), frac = delay - whole;
        const std::uint32_t back = static_cast<std::uint32_t>(whole);
        const float* line = lines + std::size_t(k) * lineLength_;
        const double a = line[(writeIndex_ - back) & lineMask_], b = line[(writeIndex_ - back - 1) & lineMask_];
        const double delayed = a + frac * (b - a);
        const double lowpass = lerp(s.lowpass, to.lowpass, t);
        s.filtered = (1 - lowpass) * delayed + lowpass * s.filtered;
        const double y = lerp(s.norm, to.norm, t) * excite + lerp(s.feedback, to.feedback, t) * s.filtered;
        lines[std::size_t(k) * lineLength_ + writeIndex_] = static_cast<float>(y);
        wet[c] += 0.5 * y;
      }
    }
    if (channels_ == 2) {
      const double mid = 0.5 * (wet[0] + wet[1]), side = 0.5 * (wet[0] - wet[1]) * lerp(widthFrom_, widthTo_, t);
      wet[0] = mid + side;
      wet[1] = mid - side;
    }
    const double mix = lerp(mixFrom_, mixTo_, t), gain = lerp(gainFrom_, gainTo_, t);
    const double power = lerp(powerFrom_, powerTo_, t);
    for (int c = 0; c < channels_; ++c) {
      const double processed = (dry[c] + mix * (wet[c] - dry[c])) * gain;
      out[c][offset + i] = static_cast<float>(dry[c] + power * (processed - dry[c]));
    }
    writeIndex_ = (writeIndex_ + 1) & lineMask_;
  }
  phase_ -= n;
}

ZEL_DSP_NAMESPACE_END
