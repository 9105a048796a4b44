// What each stage of the unit does to sound, measured.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "DspTestSupport.h"

namespace zel {
namespace {

using namespace dsptest;

constexpr double kRate = 48000;

Signal noise(std::size_t n, std::uint32_t seed, float amplitude = 0.5f) {
  Signal s(n);
  for (auto& x : s) {
    seed = seed * 1664525u + 1013904223u;
    x = amplitude * (float(seed >> 8) / float(1 << 24) * 2 - 1);
  }
  return s;
}

Unit unitWith(int channels, Setting setting, double rate = kRate) {
  Unit unit(channels, rate);
  apply(unit, setting);
  return unit;
}

TEST(UnitSound, PowerOffIsTheInputSampleForSampleDelayedByTheLatency) {
  const Signal l = noise(20000, 1), r = noise(20000, 2);
  for (bool hq : {false, true}) {
    Unit unit = unitWith(2, {{kPidMasterOnOff, 0}, {kPidDrive, 80}, {kPidDegrade, 70}, {kPidHiss, -20},
                             {kPidHQ, hq ? 1.f : 0.f}, {kPidMode, 2}, {kPidWidth, 20}});
    const auto [ol, orr] = render(unit, l, r);
    const std::size_t lag = unit.latency();
    EXPECT_EQ(lag == 0, !hq);
    for (std::size_t i = 0; i < l.size(); ++i) {
      ASSERT_EQ(ol[i], i < lag ? 0.0f : l[i - lag]) << i;
      ASSERT_EQ(orr[i], i < lag ? 0.0f : r[i - lag]) << i;
    }
  }
}

TEST(UnitSound, StagesAtRestAreExactlyTransparent) {
  // With Drive, Degrade and Hiss at rest the unit is linear to the bit:
  // doubling the input doubles the output exactly. A saturator or a
  // quantiser left in the path would break that.
  const Signal l = noise(8000, 3), r = noise(8000, 4);
  Signal l2(l), r2(r);
  for (auto& x : l2) x *= 2;
  for (auto& x : r2) x *= 2;
  for (bool hq : {false, true}) {
    const Setting filters = {{kPidLowCut, 150}, {kPidHighCut, 6000}, {kPidSlope, 36}, {kPidHQ, hq ? 1.f : 0.f}};
    Unit a = unitWith(2, filters), b = unitWith(2, filters);
    const auto once = render(a, l, r), twice = render(b, l2, r2);
    for (std::size_t i = 0; i < l.size(); ++i) {
      ASSERT_EQ(2 * once.first[i], twice.first[i]) << i;
      ASSERT_EQ(2 * once.second[i], twice.second[i]) << i;
    }
  }
}

TEST(UnitSound, DriveKeepsTheLevelAndDistortsMoreAsItRises) {
  const std::size_t n = 48000, from = 24000, span = 19200;  // 1 kHz sits on a bin of 19200
  const Signal quiet = sine(1000, std::pow(10, -18 / 20.0), kRate, n);
  const Signal loud = sine(1000, std::pow(10, -12 / 20.0), kRate, n);
  double lastDistortion = -1;
  for (int drive = 0; drive <= 100; drive += 10) {
    Unit a = unitWith(1, {{kPidDrive, float(drive)}});
    const Signal q = render(a, quiet, quiet).first;
    EXPECT_NEAR(decibels(rms(q, from)), decibels(rms(quiet, from)), 3.0) << "drive " << drive;

    Unit b = unitWith(1, {{kPidDrive, float(drive)}, {kPidHighCut, 20000}});
    const Signal y = render(b, loud, loud).first;
    const double fundamental = toneAmplitude(y, 1000, kRate, from, span);
    double harmonics = 0;
    for (int h = 2; h <= 9; ++h) harmonics += std::pow(toneAmplitude(y, 1000.0 * h, kRate, from, span), 2);
    const double distortion = std::sqrt(harmonics) / fundamental;
    if (drive == 0) EXPECT_LT(distortion, 1e-4);
    else EXPECT_GT(distortion, lastDistortion) << "drive " << drive;
    lastDistortion = distortion;
  }
}

TEST(UnitSound, DegradeHoldsAtARateThatFollowsItsCurveWithoutSteps) {
  // A tone sampled and held at rate R shows an image at R - f. Where the
  // image stands tells the hold rate: exactly on the logarithmic curve from
  // the full rate to 1 kHz, not on the nearest whole divisor of the rate
  // (at 97 % the curve gives 1123.6 Hz; a divisor would give 1116 or 1143).
  for (double degrade : {50.0, 75.0, 97.0, 100.0}) {
    const double hold = kRate * std::pow(1000 / kRate, degrade / 100);
    const double f = std::round(0.097 * hold);
    const Signal in = sine(f, 0.5, kRate, 72000);
    Unit unit = unitWith(1, {{kPidDegrade, float(degrade)}});
    const Signal y = render(unit, in, in).first;
    const double fundamental = toneAmplitude(y, f, kRate, 24000, 48000);
    const double image = toneAmplitude(y, hold - f, kRate, 24000, 48000);
    const double beside = toneAmplitude(y, hold * 1.01 - f, kRate, 24000, 48000);
    EXPECT_GT(image, 0.03 * fundamental) << degrade;
    EXPECT_GT(image, 10 * beside) << degrade;
  }
}

TEST(UnitSound, DegradeCrushesMoreAsItRises) {
  const Signal in = sine(440, 0.5, kRate, 24000);
  Unit clean = unitWith(1, {});
  const Signal reference = render(clean, in, in).first;
  double last = 0;
  for (int degrade = 10; degrade <= 100; degrade += 10) {
    Unit unit = unitWith(1, {{kPidDegrade, float(degrade)}});
    Signal y = render(unit, in, in).first;
    for (std::size_t i = 0; i < y.size(); ++i) y[i] -= reference[i];
    const double error = rms(y, 4800);
    EXPECT_GT(error, last) << degrade;
    last = error;
  }
}

TEST(UnitSound, HissIsAddedAtItsLevelPerChannelAndReproducibly) {
  const Signal silence(96000, 0.0f);
  for (bool hq : {false, true}) {
    Unit unit = unitWith(2, {{kPidHiss, -24}, {kPidHQ, hq ? 1.f : 0.f}});
    const auto [l, r] = render(unit, silence, silence);
    EXPECT_NEAR(decibels(rms(l, 4800)), -24, 1.0) << hq;
    EXPECT_NEAR(decibels(rms(r, 4800)), -24, 1.0) << hq;
    double lr = 0;
    for (std::size_t i = 4800; i < l.size(); ++i) lr += double(l[i]) * r[i];
    EXPECT_LT(std::abs(lr / double(l.size() - 4800)) / (rms(l, 4800) * rms(r, 4800)), 0.05) << "channels correlate";
    Unit again = unitWith(2, {{kPidHiss, -24}, {kPidHQ, hq ? 1.f : 0.f}});
    EXPECT_EQ(render(again, silence, silence).first, l) << "not reproducible";
  }
  Unit off = unitWith(2, {{kPidHiss, -96}, {kPidHQ, 1}});
  const auto quiet = render(off, silence, silence);
  EXPECT_EQ(*std::max_element(quiet.first.begin(), quiet.first.end()), 0.0f);
  EXPECT_EQ(*std::min_element(quiet.first.begin(), quiet.first.end()), 0.0f);
}

TEST(UnitSound, ModesWidthAndChannelCounts) {
  const Signal l = noise(9600, 6), r = noise(9600, 7);
  const Setting band = {{kPidLowCut, 200}, {kPidHighCut, 5000}, {kPidSlope, 24}};
  Unit stereo = unitWith(2, band), midSide = unitWith(2, band);
  midSide.setParameter(kPidMode, 2);
  const auto s = render(stereo, l, r), ms = render(midSide, l, r);
  for (std::size_t i = 0; i < l.size(); ++i) {
    // Linear filters on mid and side decode back to the filtered sides.
    ASSERT_NEAR(ms.first[i], s.first[i], 1e-5f) << i;
    ASSERT_NEAR(ms.second[i], s.second[i], 1e-5f) << i;
  }
  Unit mono = unitWith(2, band), narrow = unitWith(2, {{kPidWidth, 0}});
  mono.setParameter(kPidMode, 1);
  const auto m = render(mono, l, r), n = render(narrow, l, r);
  EXPECT_EQ(m.first, m.second);
  EXPECT_EQ(n.first, n.second);
  EXPECT_GT(rms(m.first), 0.05);

  // One channel: Mode and Width mean nothing.
  Unit plain = unitWith(1, band), folded = unitWith(1, band);
  apply(folded, {{kPidMode, 2}, {kPidWidth, 0}});
  EXPECT_EQ(render(plain, l, l).first, render(folded, l, l).first);
}

TEST(UnitSound, DryAndBypassLineUpWithTheWetPath) {
  for (double rate : {44100.0, 96000.0}) {
    Unit wet = unitWith(1, {{kPidHQ, 1}, {kPidSlope, 6}}, rate), dry = unitWith(1, {{kPidHQ, 1}, {kPidMix, 0}}, rate);
    const Signal in = impulse(4096, 100);
    const Signal w = render(wet, in, in).first, d = render(dry, in, in).first;
    const std::size_t lag = wet.latency();
    EXPECT_EQ(lag, dry.latency());
    EXPECT_GT(lag, 0u);
    EXPECT_EQ(std::max_element(w.begin(), w.end()) - w.begin(), std::ptrdiff_t(100 + lag)) << rate;
    for (std::size_t i = 0; i < d.size(); ++i) ASSERT_EQ(d[i], i == 100 + lag ? 1.0f : 0.0f) << i;
  }
}

TEST(UnitSound, HQKeepsTheDrivesOvertonesFromFoldingBack) {
  // A 5.1 kHz tone driven hard has odd overtones at 25.5, 35.7, 45.9 and
  // 56.1 kHz, which fold back at 48 kHz to 22.5, 12.3, 2.1 and 8.1 kHz:
  // tones that are no overtone of it. Oversampling keeps them down.
  const Signal in = sine(5100, 0.5, kRate, 48000);
  const auto folded = [&](bool hq) {
    Unit unit = unitWith(1, {{kPidDrive, 100}, {kPidHQ, hq ? 1.f : 0.f}});
    const Signal y = render(unit, in, in).first;
    double sum = 0;
    for (double f : {12300.0, 2100.0, 8100.0}) sum += std::pow(toneAmplitude(y, f, kRate, 9600, 38400), 2);
    return decibels(std::sqrt(sum) / toneAmplitude(y, 5100, kRate, 9600, 38400));
  };
  const double without = folded(false), with = folded(true);
  EXPECT_LT(with, without - 20) << "without HQ " << without << " dB, with " << with << " dB";
  EXPECT_LT(with, -70);
}

TEST(UnitSound, LatencyAndOversamplingFollowTheRateAndHQ) {
  struct Case {
    double rate;
    int factor;
  };
  for (const Case c : {Case{8000, 4}, Case{44100, 4}, Case{48000, 4}, Case{88200, 2}, Case{96000, 2},
                       Case{192000, 1}, Case{384000, 1}}) {
    Unit unit(2, c.rate);
    EXPECT_EQ(unit.hqFactor(), c.factor) << c.rate;
    EXPECT_EQ(unit.latency(), 0u);
    unit.setParameter(kPidHQ, 1);
    const Signal block(2048, 0.0f);
    render(unit, block, block);
    EXPECT_EQ(unit.latency() > 0, c.factor > 1) << c.rate;
    unit.setParameter(kPidHQ, 0);
    render(unit, block, block);
    EXPECT_EQ(unit.latency(), 0u) << c.rate;
  }
}

TEST(UnitSound, OutputGainAndAFreshStartWithoutAGlide) {
  const Signal in = sine(1000, 0.1, kRate, 4800);
  Unit loud = unitWith(1, {{kPidOutput, 6.0206f}}), unity = unitWith(1, {}), quiet = unitWith(1, {{kPidOutput, -24}});
  const Signal a = render(loud, in, in).first, b = render(unity, in, in).first, c = render(quiet, in, in).first;
  // From the very first samples: no glide from the default.
  for (std::size_t i = 0; i < 64; ++i) {
    EXPECT_NEAR(a[i], 2 * b[i], 1e-6f) << i;
    EXPECT_NEAR(c[i], b[i] * 0.0630957f, 1e-6f) << i;
  }
}

}  // namespace
}  // namespace zel
