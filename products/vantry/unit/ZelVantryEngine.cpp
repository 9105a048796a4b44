#include "products/vantry/unit/ZelVantryEngine.h"

#include <algorithm>
#include <bit>
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
// How far a glide may move in one sub-block: a fifteenth of its range
// (64 samples of a 20 ms glide at 48 kHz from one end to the other), and
// for Slope 2.25 dB/oct, under half an order.
constexpr double kGlideShare = 1.0 / 15;
constexpr double kSlopeStepPerSubBlock = 2.25;
constexpr int kShortestSubBlock = 4;
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

// A value moving in a straight line over n samples from `from` (before the
// first) to `to` (at the last), in single precision: exactly `from` at
// every sample when it holds still.
struct Glide {
  float from, delta, perSample;
  Glide(double a, double b, int n) : from(float(a)), delta(float(b) - float(a)), perSample(1.0f / float(n)) {}
  float at(int i) const { return from + delta * (float(i + 1) * perSample); }
};

// By the exponent's bits, so that the loops testing it vectorise.
inline bool isFinite(float x) { return (std::bit_cast<std::uint32_t>(x) & 0x7f800000u) != 0x7f800000u; }
bool allFinite(const float* x, int n) {
  std::uint32_t infinite = 0;
  for (int i = 0; i < n; ++i) infinite |= std::uint32_t((std::bit_cast<std::uint32_t>(x[i]) & 0x7f800000u) == 0x7f800000u);
  return !infinite;
}

// n samples into, or out of, a ring of `size` (a power of two) from `at` on.
template <int size>
void ringWrite(float (&ring)[size], int at, const float* from, int n) {
  const int first = std::min(n, size - at);
  std::copy_n(from, first, ring + at);
  std::copy_n(from + first, n - first, ring);
}
template <int size>
void ringRead(const float (&ring)[size], int at, float* to, int n) {
  const int first = std::min(n, size - at);
  std::copy_n(ring + at, first, to);
  std::copy_n(ring, n - first, to + first);
}

// A glide's value at each sample of a sub-block (reaching `to` at the
// last), divided by `divisor`.
struct Range {
  double from, to;
};
void spread(float* v, Range r, int n, float divisor = 1) {
  const float from = float(r.from) / divisor, to = float(r.to) / divisor;
  if (from == to) {  // what the glide gives, without the work
    std::fill_n(v, n, from);
    return;
  }
  const Glide g(from, to, n);
  for (int i = 0; i < n; ++i) v[i] = g.at(i);
  v[n - 1] = to;  // landing on the end exactly
}

// The wet signal back to the outputs: mixed with the dry one (encoded
// alike, from the delayed input), decoded, widened, scaled, crossfaded with
// the bypass for Power and dipped for a switch. Per sample values of Mix
// and Width (as fractions), Output (as a gain), Power and the dip; or,
// Plain, only the gain, the same at every sample (gain[0]), the rest at 1.
struct Mixing {
  float mix[ZelVantryEngine::kMaxChunk], width[ZelVantryEngine::kMaxChunk], gain[ZelVantryEngine::kMaxChunk];
  const float* power;
  const float* dip;
};
enum Routing { kOneChannel, kMonoSum, kLeftRight, kMidSideSum };

template <Routing R, bool Plain>
void mixOut(const Mixing& m, const float* const* bypass, const float* const* wet, float* __restrict o0,
            float* __restrict o1, int n) {
  const float* b0 = bypass[0];
  const float* b1 = bypass[1];
  const float* w0 = wet[0];
  const float* w1 = wet[1];
  for (int i = 0; i < n; ++i) {
    const float mx = Plain ? 1.0f : m.mix[i];
    float dry0 = b0[i], dry1 = 0;
    if (R == kMonoSum || R == kMidSideSum) dry0 = 0.5f * (b0[i] + b1[i]);
    if (R == kLeftRight) dry1 = b1[i];
    if (R == kMidSideSum) dry1 = 0.5f * (b0[i] - b1[i]);
    const float m0 = mx == 1 ? w0[i] : dry0 + mx * (w0[i] - dry0);
    float l = m0, r = m0;
    if (R == kLeftRight || R == kMidSideSum) {
      const float m1 = mx == 1 ? w1[i] : dry1 + mx * (w1[i] - dry1);
      l = R == kLeftRight ? m0 : m0 + m1;
      r = R == kLeftRight ? m1 : m0 - m1;
    }
    if (R != kOneChannel) {
      const float wd = Plain ? 1.0f : m.width[i];
      const float mid = 0.5f * (l + r), side = 0.5f * (l - r) * wd;
      l = wd != 1 ? mid + side : l;
      r = wd != 1 ? mid - side : r;
    }
    const float gain = m.gain[Plain ? 0 : i], pw = Plain ? 1.0f : m.power[i], dp = Plain ? 1.0f : m.dip[i];
    l *= gain, r *= gain;
    float y0 = pw == 1 ? l : b0[i] + pw * (l - b0[i]);
    o0[i] = dp == 1 ? y0 : dp * y0;
    if (R != kOneChannel) {
      const float y1 = pw == 1 ? r : b1[i] + pw * (r - b1[i]);
      o1[i] = dp == 1 ? y1 : dp * y1;
    }
  }
}

}  // namespace

ZelVantryEngine::ZelVantryEngine(int channels, double sampleRate)
    : channels_(channels == 1 ? 1 : 2),
      rate_(sampleRate),
      hqFactor_(ZelHQFactorForSampleRate(sampleRate)) {
  for (ZelRamp* r : {&drive_, &degrade_, &output_, &lowCut_, &highCut_, &slope_, &mix_, &hiss_, &width_})
    r->setLength(int(std::lround(kGlideSeconds * rate_)));
  const auto range = [](int pid) {
    const ZelUnitParameter& p = kZelParameters[pid];
    return pid == kPidLowCut || pid == kPidHighCut ? std::log(double(p.maximum) / p.minimum)
                                                   : double(p.maximum) - p.minimum;
  };
  int g = 0;
  for (const auto& [ramp, pid] : {std::pair{&drive_, kPidDrive}, {&degrade_, kPidDegrade}, {&output_, kPidOutput},
                                  {&lowCut_, kPidLowCut}, {&highCut_, kPidHighCut}, {&mix_, kPidMix},
                                  {&hiss_, kPidHiss}, {&width_, kPidWidth}})
    glideSteps_[g++] = {ramp, kGlideShare * range(pid)};
  glideSteps_[g++] = {&slope_, kSlopeStepPerSubBlock};
  glideSteps_[g++] = {&power_, kGlideShare};
  glideSteps_[g++] = {&dip_, kGlideShare};
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
  // What the cascade runs: within a glide, from where the coefficients
  // stood to where they stand now, sample by sample.
  for (int a = 0; a < activeCount_; ++a) {
    cascade_[a] = ZelCascadeSection(sections_[activeSlots_[a]]);
    cascadeFrom_[a] = ZelCascadeSection(previous_[activeSlots_[a]]);
  }
  filtersDirty_ = false;
}

// ---- Processing

void ZelVantryEngine::process(const float* const* in, float* const* out, std::uint32_t frames,
                              const float* values) {
  if (!started_) start(values);
  else follow(values);
  for (std::uint32_t done = 0; done < frames;) {
    // A sub-block may switch HQ on at its start (applyPending): it must
    // fit the oversampler whichever way the switch goes.
    int most = hq_ || pendingHQ_ ? ZelOversampler::kMaxBlock : kMaxChunk;
    if (!still()) most = subBlockLength(most);
    const int n = int(std::min<std::uint32_t>(frames - done, std::uint32_t(most)));
    subBlock(in, out, done, n);
    done += std::uint32_t(n);
  }
}

// As long as `most` allows while every glide moves at most its step in it.
int ZelVantryEngine::subBlockLength(int most) const {
  double n = most;
  for (const GlideStep& g : glideSteps_)
    if (const double speed = g.ramp->speed(); speed * n > g.step) n = g.step / speed;
  return std::clamp(int(n), kShortestSubBlock, most);
}

// Nothing glides, waits to switch or needs new filter coefficients: a chunk
// of any length works as a row of sub-blocks would.
bool ZelVantryEngine::still() const {
  for (const ZelRamp* r : {&drive_, &degrade_, &output_, &lowCut_, &highCut_, &slope_, &mix_, &hiss_, &width_,
                           &power_, &dip_})
    if (r->moving()) return false;
  return pendingMode_ == mode_ && pendingHQ_ == hq_ && dip_.value() == 1 && !filtersGlide_ && !filtersDirty_;
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
  float raw[kLanes][kMaxChunk];
  for (int c = 0; c < channels_; ++c) {
    const float* x = in[c] + offset;
    for (int i = 0; i < n; ++i) raw[c][i] = isFinite(x[i]) ? x[i] : 0.0f;
    ringWrite(delay_[c], delayWrite_, raw[c], n);
    ringRead(delay_[c], (delayWrite_ - latency) & (kDelay - 1), bypass_[c], n);
  }
  delayWrite_ = (delayWrite_ + n) & (kDelay - 1);

  const bool awake = power.from > 0 || power.to > 0;
  const int mode = channels_ == 1 ? kMono : mode_;
  const int lanes = channels_ == 1 || mode == kMono ? 1 : 2;
  if (awake) {
    // Encode, then run each lane's chain.
    if (channels_ == 1) {
      std::copy_n(raw[0], n, encoded_[0]);
    } else if (mode == kStereo) {
      std::copy_n(raw[0], n, encoded_[0]);
      std::copy_n(raw[1], n, encoded_[1]);
    } else if (mode == kMono) {
      for (int i = 0; i < n; ++i) encoded_[0][i] = 0.5f * (raw[0][i] + raw[1][i]);
    } else {
      for (int i = 0; i < n; ++i) {
        encoded_[0][i] = 0.5f * (raw[0][i] + raw[1][i]);
        encoded_[1][i] = 0.5f * (raw[0][i] - raw[1][i]);
      }
    }
    runLanes(lanes, n);
  }

  const double gainFrom = std::pow(10.0, output.from / 20), gainTo = std::pow(10.0, output.to / 20);
  // All wet, full width, on and steady: only the routing and the gain.
  const auto at = [](const Span& s, double value) { return s.from == value && s.to == value; };
  const bool plain = awake && at(mix, 100) && at(width, 100) && at(power, 1) && at(dip, 1) && gainFrom == gainTo;
  float pw[kMaxChunk], dp[kMaxChunk];
  if (!plain) {
    spread(pw, {power.from, power.to}, n);
    spread(dp, {dip.from, dip.to}, n);
  }
  float* const o0 = out[0] + offset;
  float* const o1 = channels_ == 2 ? out[1] + offset : nullptr;
  if (awake) {
    Mixing m;
    if (plain) {
      m.gain[0] = float(gainFrom);
    } else {
      spread(m.mix, {mix.from, mix.to}, n, 100);
      spread(m.width, {width.from, width.to}, n, 100);
      spread(m.gain, {gainFrom, gainTo}, n);
      m.power = pw, m.dip = dp;
    }
    const float* b[2] = {bypass_[0], bypass_[1]};
    const float* w[2] = {wet_[0], wet_[1]};
    const auto route = [&]<bool Plain>() {
      if (channels_ == 1) mixOut<kOneChannel, Plain>(m, b, w, o0, o1, n);
      else if (mode == kMono) mixOut<kMonoSum, Plain>(m, b, w, o0, o1, n);
      else if (mode == kStereo) mixOut<kLeftRight, Plain>(m, b, w, o0, o1, n);
      else mixOut<kMidSideSum, Plain>(m, b, w, o0, o1, n);
    };
    if (plain) route.template operator()<true>();
    else route.template operator()<false>();
  } else {
    for (int c = 0; c < channels_; ++c) {
      float* const o = out[c] + offset;
      for (int i = 0; i < n; ++i) o[i] = dp[i] == 1 ? bypass_[c][i] : dp[i] * bypass_[c][i];
    }
  }
  bool finite = true;
  for (int c = 0; c < channels_; ++c) finite &= allFinite(out[c] + offset, n);
  // Nothing non-finite gets in, so nothing should come out; should it ever,
  // the chain starts over rather than ringing on.
  if (!finite) {
    clearLanes();
    for (int c = 0; c < channels_; ++c) std::fill(out[c] + offset, out[c] + offset + n, 0.0f);
  }
}

void ZelVantryEngine::runLanes(int lanes, int n) {
  // Without oversampling the chain works in the wet buffer itself.
  const int factor = oversamplers_[0].factor(), total = n * factor;
  float* x[kLanes] = {factor == 1 ? wet_[0] : work_[0], factor == 1 ? wet_[1] : work_[1]};
  for (int i = 0; i < lanes; ++i) {
    oversamplers_[i].up(encoded_[i], x[i], n);
    drive(x[i], total);
    degrade(lanes_[i], x[i], total);
    hiss(lanes_[i], x[i], total);
  }
  filter(x, lanes, total);
  if (factor > 1)
    for (int i = 0; i < lanes; ++i) oversamplers_[i].down(work_[i], wet_[i], n);
}

void ZelVantryEngine::drive(float* x, int n) const {
  const Span& d = driveSpan_;
  if (d.from == 0 && d.to == 0) return;  // bit for bit untouched
  const double k0 = driveBlend(d.from), k1 = driveBlend(d.to);
  const double g0 = driveGain(d.from), g1 = driveGain(d.to);
  const double c0 = driveCompensation(d.from) * k0, c1 = driveCompensation(d.to) * k1;
  const Glide k(k0, k1, n), g(g0, g1, n), kc(c0, c1, n);
  for (int i = 0; i < n; ++i) x[i] = (1 - k.at(i)) * x[i] + kc.at(i) * saturate(g.at(i) * x[i]);
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
  const Glide a(a0, a1, n);
  for (int i = 0; i < n; ++i) x[i] += a.at(i) * uniformNoise(lane.noise);
}

// Both lanes through the active sections at once; their states live in
// the lanes by slot, so that they keep their place as the order changes.
void ZelVantryEngine::filter(float* const* x, int lanes, int n) {
  ZelCascadeState states[2 * kZelButterworthSlots * kLanes];
  for (int a = 0; a < activeCount_; ++a)
    for (int i = 0; i < lanes; ++i)
      states[a * lanes + i] = {lanes_[i].ic1[activeSlots_[a]], lanes_[i].ic2[activeSlots_[a]]};
  ZelRunCascade(filtersGlide_ ? cascadeFrom_ : nullptr, cascade_, activeCount_, states, lanes, x, n);
  for (int a = 0; a < activeCount_; ++a)
    for (int i = 0; i < lanes; ++i)
      lanes_[i].ic1[activeSlots_[a]] = states[a * lanes + i].s1, lanes_[i].ic2[activeSlots_[a]] = states[a * lanes + i].s2;
}

ZEL_PRODUCT_NAMESPACE_END
