#include "products/vantry/unit/ZelVantryEngine.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <utility>

ZEL_PRODUCT_NAMESPACE_BEGIN

namespace {

constexpr double kGlideSeconds = 0.020;   // every continuous parameter
constexpr double kPowerSeconds = 0.020;   // the bypass crossfade
constexpr double kDipSeconds = 0.010;     // each half of a Mode or HQ switch
constexpr double kMaxDriveDecibels = 36;  // pre-gain at 100 %
constexpr double kDriveReference = 0.12589254117941673;  // a -18 dBFS sine's peak
constexpr double kLowestHoldRate = 1000;  // Degrade at 100 %
constexpr double kMostBits = 24, kFewestBits = 4;
constexpr double kCutoffLimit = 0.45;     // of the internal rate
constexpr double kAudioBand = 20000;      // where the hiss's level is measured
constexpr std::uint32_t kNoiseSeeds[2] = {0x6A09E667u, 0xBB67AE85u};

enum { kStereo = 0, kMono = 1, kMidSide = 2 };

// A smooth saturator: a rational fit of tanh that reaches +-1 at +-3 with
// zero slope, so it is continuous in value and slope everywhere.
inline float saturate(float x) {
  if (x >= 3) return 1;
  if (x <= -3) return -1;
  const float x2 = x * x;
  return x * (27 + x2) / (27 + 9 * x2);
}

// How much of the saturator is blended in: the stage fades in over the
// first tenth of the range, so it leaves the signal untouched at 0 and
// moves smoothly away from it.
inline double driveBlend(double drive) { return std::min(1.0, drive / 10); }
inline double driveGain(double drive) { return std::pow(10.0, kMaxDriveDecibels * drive / 100 / 20); }

inline float uniformNoise(std::uint32_t& state) {
  state ^= state << 13;
  state ^= state >> 17;
  state ^= state << 5;
  return float(std::int32_t(state)) * (1.0f / 2147483648.0f);
}

inline float lerp(double a, double b, double t) { return float(a + (b - a) * t); }

}  // namespace

ZelVantryEngine::ZelVantryEngine(int channels, double sampleRate)
    : channels_(channels == 1 ? 1 : 2),
      rate_(sampleRate),
      hqFactor_(ZelHQFactorForSampleRate(sampleRate)),
      subBlock_(std::clamp(int(sampleRate / 2000), 4, kMaxSubBlock)) {
  for (ZelRamp* r : {&drive_, &degrade_, &output_, &lowCut_, &highCut_, &slope_, &mix_, &hiss_, &width_})
    r->setLength(int(std::lround(kGlideSeconds * rate_)));
  power_.setLength(int(std::lround(kPowerSeconds * rate_)));
  dip_.setLength(int(std::lround(kDipSeconds * rate_)));

  // The level compensation that keeps a -18 dBFS sine at its level: over
  // one period, solve RMS((1 - k) x + k c S(g x)) = RMS(x) for c.
  compensation_[0] = 1;
  constexpr int kSteps = 1024;
  for (int d = 1; d <= 100; ++d) {
    const double k = driveBlend(d), g = driveGain(d);
    double xx = 0, xs = 0, ss = 0;
    for (int i = 0; i < kSteps; ++i) {
      const double x = kDriveReference * std::sin(2 * 3.141592653589793 * (i + 0.5) / kSteps);
      const double s = saturate(float(g * x));
      xx += x * x, xs += x * s, ss += s * s;
    }
    const double a = k * k * ss, b = 2 * (1 - k) * k * xs, c = ((1 - k) * (1 - k) - 1) * xx;
    compensation_[d] = (-b + std::sqrt(b * b - 4 * a * c)) / (2 * a);
  }
  reset();
}

void ZelVantryEngine::reset() {
  started_ = false;
  clearLanes();
  for (auto& line : delay_) std::fill(std::begin(line), std::end(line), 0.0f);
  delayWrite_ = 0;
}

void ZelVantryEngine::clearLanes() {
  for (int i = 0; i < kLanes; ++i) {
    lanes_[i] = Lane{};
    lanes_[i].noise = kNoiseSeeds[i];
    oversamplers_[i].reset();
  }
}

double ZelVantryEngine::driveCompensation(double drive) const {
  const double at = std::clamp(drive, 0.0, 100.0);
  const int i = std::min(int(at), 99);
  return compensation_[i] + (compensation_[i + 1] - compensation_[i]) * (at - i);
}

// ---- Parameters

// Each glide's target, in the units it moves in.
void ZelVantryEngine::aim(const float* v, bool jump) {
  const std::pair<ZelRamp*, double> targets[] = {
      {&drive_, v[kPidDrive]},   {&degrade_, v[kPidDegrade]},           {&output_, v[kPidOutput]},
      {&lowCut_, std::log(v[kPidLowCut])}, {&highCut_, std::log(v[kPidHighCut])}, {&slope_, v[kPidSlope]},
      {&mix_, v[kPidMix]},       {&hiss_, v[kPidHiss]},                 {&width_, v[kPidWidth]}};
  for (const auto& [ramp, target] : targets) jump ? ramp->snap(target) : ramp->glideTo(target);
}

void ZelVantryEngine::start(const float* v) {
  aim(v, true);
  power_.snap(v[kPidMasterOnOff] >= 0.5f ? 1 : 0);
  dip_.snap(1);
  mode_ = pendingMode_ = int(std::lround(v[kPidMode]));
  hq_ = pendingHQ_ = v[kPidHQ] >= 0.5f;
  for (auto& o : oversamplers_) o.setFactor(hq_ ? hqFactor_ : 1);
  clearLanes();
  filtersDirty_ = true;
  started_ = true;
}

void ZelVantryEngine::follow(const float* v) {
  aim(v, false);
  const bool on = v[kPidMasterOnOff] >= 0.5f;
  if (on && power_.value() == 0 && !power_.moving()) clearLanes();  // waking: start clean
  power_.glideTo(on ? 1 : 0);
  pendingMode_ = int(std::lround(v[kPidMode]));
  pendingHQ_ = v[kPidHQ] >= 0.5f;
}

// A Mode or HQ switch: once the dip has reached silence, switch, clear the
// chain (its state belongs to the old routing or rate) and come back.
void ZelVantryEngine::applyPending() {
  const bool pending = pendingMode_ != mode_ || pendingHQ_ != hq_;
  if (dip_.value() == 0 && !dip_.moving()) {
    if (pending) {
      mode_ = pendingMode_;
      if (hq_ != pendingHQ_) {
        hq_ = pendingHQ_;
        for (auto& o : oversamplers_) o.setFactor(hq_ ? hqFactor_ : 1);
        filtersDirty_ = true;
      }
      clearLanes();
    }
    dip_.glideTo(1);
  } else if (pending) {
    dip_.glideTo(0);
  }
}

void ZelVantryEngine::updateFilters(bool glide) {
  const double internal = rate_ * oversamplers_[0].factor();
  const double limit = kCutoffLimit * internal;
  const double order = std::max(slope_.value() / 6, 1.0);
  ZelDesignButterworthBlend(ZelFilterShape::HighPass, order, std::min(std::exp(lowCut_.value()), limit), internal,
                            highPass_);
  ZelDesignButterworthBlend(ZelFilterShape::LowPass, order, std::min(std::exp(highCut_.value()), limit), internal,
                            lowPass_);
  // Slots keep their place (and their state) as the order changes; a slot
  // that passes the signal unchanged is skipped, and starts from silence
  // when it comes back.
  bool wasActive[2 * kZelButterworthSlots] = {};
  for (int a = 0; a < activeCount_; ++a) wasActive[activeSlots_[a]] = true;
  activeCount_ = 0;
  for (int slot = 0; slot < 2 * kZelButterworthSlots; ++slot) {
    const ZelBiquad& s = slot < kZelButterworthSlots ? highPass_.slots[slot]
                                                     : lowPass_.slots[slot - kZelButterworthSlots];
    const bool identity = s.b0 == 1 && s.b1 == 0 && s.b2 == 0 && s.a1 == 0 && s.a2 == 0;
    if (!identity) {
      activeSlots_[activeCount_++] = slot;
      const ZelStateVariableSection next(s);
      // Within a glide the coefficients move sample by sample from where
      // they were; a slot joining in starts from passing its input through.
      if (!glide) {
        previous_[slot] = next;
      } else if (wasActive[slot]) {
        previous_[slot] = sections_[slot];
      } else {
        previous_[slot] = next;
        previous_[slot].m0 = 1, previous_[slot].m1 = previous_[slot].m2 = 0;
      }
      sections_[slot] = next;
    } else {
      for (Lane& lane : lanes_) lane.ic1[slot] = lane.ic2[slot] = 0;
    }
  }
  filtersDirty_ = false;
}

// ---- Processing

void ZelVantryEngine::process(const float* const* in, float* const* out, std::uint32_t frames,
                              const float* values) {
  if (!started_) start(values);
  else follow(values);
  for (std::uint32_t done = 0; done < frames;) {
    const int n = int(std::min<std::uint32_t>(frames - done, std::uint32_t(subBlock_)));
    subBlock(in, out, done, n);
    done += std::uint32_t(n);
  }
}

void ZelVantryEngine::subBlock(const float* const* in, float* const* out, std::uint32_t offset, int n) {
  applyPending();
  const bool filtersMove = lowCut_.moving() || highCut_.moving() || slope_.moving();
  const auto span = [n](ZelRamp& r) { return Span{r.value(), r.advance(n)}; };
  driveSpan_ = span(drive_);
  degradeSpan_ = span(degrade_);
  hissSpan_ = span(hiss_);
  const Span mix = span(mix_), width = span(width_), output = span(output_);
  const Span power = span(power_), dip = span(dip_);
  lowCut_.advance(n), highCut_.advance(n), slope_.advance(n);
  if (filtersMove || filtersDirty_) updateFilters(filtersMove && !filtersDirty_);
  else if (filtersGlide_) updateFilters(false);  // the glide ended: hold still
  filtersGlide_ = filtersMove;

  // The input, cleaned of anything non-finite, into the delay line; the
  // bypass reads it back `latency` samples later.
  const int latency = oversamplers_[0].latency();
  for (int c = 0; c < channels_; ++c) {
    float* line = delay_[c];
    for (int i = 0; i < n; ++i) {
      float x = in[c][offset + i];
      if (!std::isfinite(x)) x = 0;
      const int w = (delayWrite_ + i) & (kDelay - 1);
      line[w] = x;
      bypass_[c][i] = line[(w - latency) & (kDelay - 1)];
    }
  }
  delayWrite_ = (delayWrite_ + n) & (kDelay - 1);
  const auto raw = [&](int c, int i) { return delay_[c][(delayWrite_ - n + i) & (kDelay - 1)]; };

  const bool awake = power.from > 0 || power.to > 0;
  const int mode = channels_ == 1 ? kMono : mode_;
  const int lanes = channels_ == 1 || mode == kMono ? 1 : 2;
  if (awake) {
    // Encode, then run each lane's chain.
    for (int i = 0; i < n; ++i) {
      if (channels_ == 1) {
        encoded_[0][i] = raw(0, i);
      } else {
        const float l = raw(0, i), r = raw(1, i);
        if (mode == kStereo) encoded_[0][i] = l, encoded_[1][i] = r;
        else if (mode == kMono) encoded_[0][i] = 0.5f * (l + r);
        else encoded_[0][i] = 0.5f * (l + r), encoded_[1][i] = 0.5f * (l - r);
      }
    }
    for (int lane = 0; lane < lanes; ++lane) runLane(lane, encoded_[lane], wet_[lane], n);
  }

  const double gainFrom = std::pow(10.0, output.from / 20), gainTo = std::pow(10.0, output.to / 20);
  float finite = 0;
  for (int i = 0; i < n; ++i) {
    const double t = double(i + 1) / n;
    const float pw = lerp(power.from, power.to, t), dp = lerp(dip.from, dip.to, t);
    float result[2] = {bypass_[0][i], channels_ == 2 ? bypass_[1][i] : 0.0f};
    if (awake) {
      // The dry signal, encoded like the wet one but from the delayed input.
      const float mx = lerp(mix.from, mix.to, t) / 100;
      float dry[2];
      if (channels_ == 1 || mode == kMono) {
        dry[0] = channels_ == 1 ? bypass_[0][i] : 0.5f * (bypass_[0][i] + bypass_[1][i]);
      } else if (mode == kStereo) {
        dry[0] = bypass_[0][i], dry[1] = bypass_[1][i];
      } else {
        dry[0] = 0.5f * (bypass_[0][i] + bypass_[1][i]), dry[1] = 0.5f * (bypass_[0][i] - bypass_[1][i]);
      }
      float m[2];
      for (int lane = 0; lane < lanes; ++lane) m[lane] = mx == 1 ? wet_[lane][i] : dry[lane] + mx * (wet_[lane][i] - dry[lane]);
      float l, r;
      if (channels_ == 1 || mode == kMono) l = r = m[0];
      else if (mode == kStereo) l = m[0], r = m[1];
      else l = m[0] + m[1], r = m[0] - m[1];
      const float wd = lerp(width.from, width.to, t) / 100;
      if (channels_ == 2 && wd != 1) {
        const float mid = 0.5f * (l + r), side = 0.5f * (l - r) * wd;
        l = mid + side, r = mid - side;
      }
      const float gain = lerp(gainFrom, gainTo, t);
      l *= gain, r *= gain;
      if (pw == 1) result[0] = l, result[1] = r;
      else result[0] += pw * (l - result[0]), result[1] += pw * (r - result[1]);
    }
    for (int c = 0; c < channels_; ++c) {
      const float y = dp == 1 ? result[c] : dp * result[c];
      out[c][offset + i] = y;
      finite += y * 0;
    }
  }
  // Nothing non-finite gets in, so nothing should come out; should it ever,
  // the chain starts over rather than ringing on.
  if (!std::isfinite(finite)) {
    clearLanes();
    for (int c = 0; c < channels_; ++c) std::fill(out[c] + offset, out[c] + offset + n, 0.0f);
  }
}

void ZelVantryEngine::runLane(int index, const float* in, float* out, int n) {
  Lane& lane = lanes_[index];
  ZelOversampler& os = oversamplers_[index];
  const int total = n * os.factor();
  os.up(in, work_, n);
  drive(work_, total);
  degrade(lane, work_, total);
  hiss(lane, work_, total);
  filter(lane, work_, total);
  os.down(work_, out, n);
}

void ZelVantryEngine::drive(float* x, int n) const {
  const Span& d = driveSpan_;
  if (d.from == 0 && d.to == 0) return;  // bit for bit untouched
  const double k0 = driveBlend(d.from), k1 = driveBlend(d.to);
  const double g0 = driveGain(d.from), g1 = driveGain(d.to);
  const double c0 = driveCompensation(d.from) * k0, c1 = driveCompensation(d.to) * k1;
  for (int i = 0; i < n; ++i) {
    const double t = double(i + 1) / n;
    const float k = lerp(k0, k1, t), g = lerp(g0, g1, t), kc = lerp(c0, c1, t);
    x[i] = (1 - k) * x[i] + kc * saturate(g * x[i]);
  }
}

void ZelVantryEngine::degrade(Lane& lane, float* x, int n) const {
  const Span& d = degradeSpan_;
  if (d.from == 0 && d.to == 0) {
    if (n > 0) lane.previous = x[n - 1];
    return;
  }
  const double amount = 0.5 * (d.from + d.to) / 100;
  const double internal = rate_ * oversamplers_[0].factor();
  const double holdRate = rate_ * std::pow(kLowestHoldRate / rate_, amount);
  const double increment = std::min(holdRate / internal, 1.0);
  const double bits = kMostBits - (kMostBits - kFewestBits) * amount;
  const float step = float(std::exp2(1 - bits)), inverse = 1 / step;
  for (int i = 0; i < n; ++i) {
    lane.phase += increment;
    if (lane.phase >= 1) {
      // A new sample is taken where the phase crossed one, between the
      // previous input and this one.
      lane.phase -= 1;
      const float past = float(lane.phase / increment);
      const float v = x[i] - past * (x[i] - lane.previous);
      lane.held = std::nearbyint(v * inverse) * step;
    }
    lane.previous = x[i];
    x[i] = lane.held;
  }
}

void ZelVantryEngine::hiss(Lane& lane, float* x, int n) const {
  const Span& h = hissSpan_;
  const double floor = kZelParameters[kPidHiss].minimum;
  if (h.from <= floor && h.to <= floor) return;  // exactly nothing added
  // The level is the noise's RMS over the audio band, up to 20 kHz. Uniform
  // noise has an RMS of 1/sqrt(3), spread evenly up to the internal rate's
  // Nyquist frequency, of which only that band is heard.
  const double band = std::min(kAudioBand, rate_ / 2);
  const double scale = std::sqrt(3.0 * oversamplers_[0].factor() * (rate_ / 2) / band);
  const double a0 = h.from <= floor ? 0 : scale * std::pow(10.0, h.from / 20);
  const double a1 = h.to <= floor ? 0 : scale * std::pow(10.0, h.to / 20);
  for (int i = 0; i < n; ++i) x[i] += lerp(a0, a1, double(i + 1) / n) * uniformNoise(lane.noise);
}

void ZelVantryEngine::filter(Lane& lane, float* x, int n) const {
  double buffer[ZelOversampler::kMaxFactor * kMaxSubBlock];
  for (int i = 0; i < n; ++i) buffer[i] = x[i];
  for (int a = 0; a < activeCount_; ++a) {
    const int k = activeSlots_[a];
    const ZelStateVariableSection& s = sections_[k];
    double ic1 = lane.ic1[k], ic2 = lane.ic2[k];
    if (!filtersGlide_) {
      for (int i = 0; i < n; ++i) {
        const double v0 = buffer[i];
        const double v3 = v0 - ic2;
        const double v1 = s.a1 * ic1 + s.a2 * v3;
        const double v2 = ic2 + s.a2 * ic1 + s.a3 * v3;
        ic1 = 2 * v1 - ic1;
        ic2 = 2 * v2 - ic2;
        buffer[i] = s.m0 * v0 + s.m1 * v1 + s.m2 * v2;
      }
    } else {
      const ZelStateVariableSection& p = previous_[k];
      for (int i = 0; i < n; ++i) {
        const double t = double(i + 1) / n;
        const double a1 = p.a1 + t * (s.a1 - p.a1), a2 = p.a2 + t * (s.a2 - p.a2), a3 = p.a3 + t * (s.a3 - p.a3);
        const double v0 = buffer[i];
        const double v3 = v0 - ic2;
        const double v1 = a1 * ic1 + a2 * v3;
        const double v2 = ic2 + a2 * ic1 + a3 * v3;
        ic1 = 2 * v1 - ic1;
        ic2 = 2 * v2 - ic2;
        buffer[i] = (p.m0 + t * (s.m0 - p.m0)) * v0 + (p.m1 + t * (s.m1 - p.m1)) * v1 + (p.m2 + t * (s.m2 - p.m2)) * v2;
      }
    }
    lane.ic1[k] = ic1, lane.ic2[k] = ic2;
  }
  for (int i = 0; i < n; ++i) x[i] = float(buffer[i]);
}

ZEL_PRODUCT_NAMESPACE_END
