// What Tollhum does to sound: the pitch its strings ring at, how long they
// ring, the gain the sketch draws, the dry paths, and glides without clicks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "TollhumTestSupport.h"
#include "products/tollhum/sketch/ZelTollhumParameterSketch.h"
#include "products/tollhum/unit/ZelTollhumResonance.h"

namespace zel {
namespace {

using namespace tollhumtest;
using namespace tollhum;

// The frequency of a near-sinusoidal signal from its upward zero crossings
// in [from, to), interpolated between samples.
double ZeroCrossingHertz(const Signal& s, std::size_t from, std::size_t to, double rate) {
  double first = -1, last = -1;
  int crossings = 0;
  for (std::size_t i = from + 1; i < to; ++i) {
    if (s[i - 1] < 0 && s[i] >= 0) {
      const double at = double(i - 1) + s[i - 1] / double(s[i - 1] - s[i]);
      if (first < 0) first = at;
      last = at;
      ++crossings;
    }
  }
  return crossings > 1 ? (crossings - 1) * rate / (last - first) : 0;
}

TEST(TollhumSound, StringsRingAtTheirNote) {
  // Tone 0 leaves the fundamental ringing longest: after a while the ring is
  // a sine at the string's pitch.
  for (double rate : {44100.0, 96000.0}) {
    for (float note : {24.0f, 45.0f, 69.0f, 88.0f}) {
      for (float fine : {0.0f, 37.0f}) {
        Unit unit(1, rate);
        Apply(unit, {{param::Note, note}, {param::Fine, fine}, {param::Chord, 0}, {param::Detune, 0}, {param::Tone, 0},
                     {param::Decay, 8}, {param::Mix, 100}, {param::InputCut, 20}});
        const Signal out = RunMono(unit, Impulse(std::size_t(rate)));
        const double expected = PitchToHertz(note + fine / 100.0);
        const double measured = ZeroCrossingHertz(out, std::size_t(rate / 2), std::size_t(rate), rate);
        EXPECT_NEAR(1200 * std::log2(measured / expected), 0, 3) << rate << " Hz, note " << note << " + " << fine;
      }
    }
  }
}

TEST(TollhumSound, RingFallsSixtyDecibelsOverDecay) {
  const double rate = 48000;
  for (float decay : {0.5f, 2.0f}) {
    Unit unit(1, rate);
    Apply(unit, {{param::Note, 57}, {param::Chord, 0}, {param::Detune, 0}, {param::Tone, 100}, {param::Decay, decay},
                 {param::Mix, 100}, {param::InputCut, 20}});
    // A burst at the string's pitch rings it; its harmonics stay quiet.
    Signal in = Sine(PitchToHertz(57), rate, std::size_t(rate * (0.4 + decay)), 0.1);
    std::fill(in.begin() + std::ptrdiff_t(0.2 * rate), in.end(), 0.0f);
    const Signal out = RunMono(unit, in);
    // Windows of 50 ms, from 0.25 s (the burst ended at 0.2 s) and Decay / 2
    // later: 30 dB apart.
    const auto window = std::size_t(0.05 * rate);
    const auto start = std::size_t(0.25 * rate), later = start + std::size_t(decay / 2 * rate);
    const double drop = Db(Rms(out, start, start + window)) - Db(Rms(out, later, later + window));
    EXPECT_NEAR(drop, 30, 2.5) << decay;
  }
}

// The sketch's stems are the unit's gain for a sine at each of them.
TEST(TollhumSound, SineGainAtEveryStemIsWhatTheSketchDraws) {
  const double rate = ZelTollhumParameterSketch::kDrawingSampleRate;
  struct Case {
    float note, chord, decay, tone, detune, cut;
  };
  for (const Case& c : {Case{48, 1, 0.3f, 60, 3, 80}, Case{57, 3, 0.25f, 90, 0, 200}, Case{40, 0, 0.4f, 30, 12, 20}}) {
    std::vector<float> values(kParameterCount);
    for (int pid = 0; pid < kParameterCount; ++pid) values[pid] = kParameters[pid].initial;
    values[param::Note] = c.note, values[param::Chord] = c.chord, values[param::Decay] = c.decay;
    values[param::Tone] = c.tone, values[param::Detune] = c.detune, values[param::InputCut] = c.cut;
    values[param::Mix] = 100;
    std::array<ZelTollhumParameterSketch::Stem, ZelTollhumParameterSketch::kMaxStems> stems;
    const std::size_t n = ZelTollhumParameterSketch::computeStems(values, stems);
    ASSERT_GE(n, 8u);
    for (std::size_t i = 0; i < n; i += 3) {
      Unit unit(1, rate);
      for (int pid = 0; pid < kParameterCount; ++pid) unit.setParameter(pid, values[pid]);
      // The ring settles within a few Decays; measure over whole periods.
      const auto settle = std::size_t(rate * 5 * c.decay), span = std::size_t(rate * 0.2);
      const Signal in = Sine(stems[i].hertz, rate, settle + span, 0.01);
      const Signal out = RunMono(unit, in);
      const double gain = Db(Rms(out, settle, settle + span) / Rms(in, settle, settle + span));
      EXPECT_NEAR(gain, stems[i].gainDb, 0.5) << "note " << c.note << ", stem at " << stems[i].hertz << " Hz";
    }
  }
}

TEST(TollhumSound, DryPathsAreExact) {
  const double rate = 44100;
  const Signal in = Sine(440, rate, 4096, 0.7);
  {
    Unit unit(1, rate);
    Apply(unit, {{param::Mix, 0}});
    EXPECT_EQ(RunMono(unit, in), in);
  }
  {
    Unit unit(1, rate);
    Apply(unit, {{param::Power, 0}, {param::Output, 12}});
    EXPECT_EQ(RunMono(unit, in), in);
  }
  {
    Unit unit(2, rate);
    Apply(unit, {{param::Mix, 0}, {param::Width, 0}});
    Signal l = in, r(in.size(), 0.25f), outL(in.size()), outR(in.size());
    const float* i2[2] = {l.data(), r.data()};
    float* o2[2] = {outL.data(), outR.data()};
    unit.process(i2, o2, std::uint32_t(in.size()));
    EXPECT_EQ(outL, l);
    EXPECT_EQ(outR, r);
  }
}

TEST(TollhumSound, StereoWidthZeroGivesOneWetSignalAndDetuneDiffersBySide) {
  const double rate = 48000;
  auto run = [&](float width) {
    Unit unit(2, rate);
    Apply(unit, {{param::Mix, 100}, {param::Detune, 20}, {param::Width, width}});
    const Signal in = Impulse(24000);
    Signal outL(in.size()), outR(in.size());
    const float* i2[2] = {in.data(), in.data()};
    float* o2[2] = {outL.data(), outR.data()};
    unit.process(i2, o2, std::uint32_t(in.size()));
    double difference = 0;
    for (std::size_t i = 0; i < in.size(); ++i) difference = std::max(difference, double(std::fabs(outL[i] - outR[i])));
    return difference;
  };
  EXPECT_GT(run(100), 1e-3);  // the two sides' strings beat differently
  EXPECT_EQ(run(0), 0.0);
}

// A click is a corner in the signal sharper than its own: on a steady 1 kHz
// tone at 48 kHz the third difference is 0.0022 of the amplitude, while a
// jump, or a ramp over a few samples, puts one of the size of the change
// into it. The tone's own third difference is known at every setting a
// glide passes through (its two ends and values between them: a resonance
// passed on the way rings louder than either end); while the glide runs it
// may not be more than three times the largest of them.
double SharpestCorner(const Signal& s, std::size_t from, std::size_t to) {
  double worst = 0;
  for (std::size_t i = std::max<std::size_t>(from, 3); i < to; ++i)
    worst = std::max(worst, double(std::fabs(s[i] - 3 * s[i - 1] + 3 * s[i - 2] - s[i - 3])));
  return worst;
}

TEST(TollhumSound, ParameterJumpsGlideWithoutClicks) {
  const double rate = 48000;
  struct Jump {
    int pid;
    float from, to;
    bool logarithmic = false;
  };
  const Jump jumps[] = {{param::Note, 48, 60},      {param::Note, 96, 24},      {param::Chord, 1, 4},
                        {param::Decay, 0.1f, 3, true}, {param::Tone, 0, 100},    {param::Mix, 0, 100},
                        {param::Output, -24, 12},   {param::Power, 1, 0},       {param::Power, 0, 1},
                        {param::InputCut, 20, 2000, true}, {param::Fine, -50, 50}, {param::Detune, 0, 30}};
  const std::size_t n = std::size_t(rate * 0.6), at = std::size_t(rate * 0.4) / 256 * 256, tail = std::size_t(rate * 0.1);
  const Signal in = Sine(1000, rate, n, 0.25);
  auto prepared = [&](const Jump& j, float value) {
    auto unit = std::make_unique<Unit>(1, rate);
    Apply(*unit, {{param::Mix, 60}, {param::Decay, 0.3f}});
    unit->setParameter(j.pid, value);
    return unit;
  };
  for (const Jump& j : jumps) {
    double steady = 0;
    // Finely: a resonance is narrow.
    for (int i = 0; i <= 48; ++i) {
      const double t = i / 48.0;
      const float value = j.logarithmic ? float(j.from * std::pow(double(j.to) / j.from, t))
                                        : float(j.from + (j.to - j.from) * t);
      auto unit = prepared(j, value);
      const Signal out = RunMono(*unit, in);
      steady = std::max(steady, SharpestCorner(out, n - tail, n));
    }
    auto unit = prepared(j, j.from);
    Signal out(n);
    const float* i1[1] = {in.data()};
    float* o1[1] = {out.data()};
    for (std::size_t done = 0; done < n; done += 256) {
      if (done == at) unit->setParameter(j.pid, j.to);
      i1[0] = in.data() + done, o1[0] = out.data() + done;
      unit->process(i1, o1, std::uint32_t(std::min<std::size_t>(256, n - done)));
    }
    EXPECT_LT(SharpestCorner(out, at - 3, at + tail), 3 * steady) << "pid " << j.pid << " " << j.from << " -> " << j.to;
  }
}

}  // namespace
}  // namespace zel
