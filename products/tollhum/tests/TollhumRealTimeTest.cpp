// The rules a host's audio thread imposes, and inputs no one should send.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>

#include "RealTimeTrap.h"
#include "TollhumTestSupport.h"

namespace zel {
namespace {

using namespace tollhumtest;
using namespace tollhum;
using dsptest::RealTimeTrap;

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

bool AllFinite(const Signal& s) {
  return std::all_of(s.begin(), s.end(), [](float x) { return std::isfinite(x); });
}

TEST(TollhumRealTime, ProcessingAutomationAndMeteringNeverAllocateLockOrWait) {
  for (double rate : {8000.0, 48000.0, 384000.0}) {
    for (int channels : {1, 2}) {
      Unit unit(channels, rate);
      Signal l(8192, 0.1f), r(8192, -0.1f);
      std::uint32_t seed = 5;
      RealTimeTrap trap;
      for (int block = 0; block < 300; ++block) {
        for (int pid = 0; pid < kParameterCount; ++pid) {
          seed = seed * 1664525u + 1013904223u;
          const auto& p = kParameters[pid];
          unit.setParameter(pid, p.minimum + (p.maximum - p.minimum) * float(seed >> 8) / float(1 << 24));
        }
        const std::uint32_t frames = block % 50 == 0 ? 8192 : (block * 37) % 700;
        const float* in[2] = {l.data(), r.data()};
        float* out[2] = {l.data(), r.data()};  // in place
        unit.process(in, out, frames);
        (void)unit.meter().read();
        (void)unit.latency();
        if (block == 150) unit.reset();
      }
      EXPECT_EQ(trap.violations(), 0) << rate << " Hz, " << channels << " channels";
    }
  }
}

TEST(TollhumRealTime, TortureInputsKeepTheOutputAndTheMeterFinite) {
  const std::size_t n = 4096;
  for (double rate : {8000.0, 44100.0, 384000.0}) {
    Unit unit(2, rate);
    unit.setParameter(param::Decay, 20);
    unit.setParameter(param::Tone, 100);
    unit.setParameter(param::Mix, 100);
    unit.setParameter(param::Output, 12);
    Signal l(n), r(n);
    for (std::size_t i = 0; i < n; ++i) {
      switch (i % 7) {
        case 0: l[i] = kNaN; break;
        case 1: l[i] = kInf; break;
        case 2: l[i] = -kInf; break;
        case 3: l[i] = FLT_MIN / 4; break;  // subnormal
        case 4: l[i] = FLT_MAX; break;
        default: l[i] = 0.5f;
      }
      r[i] = i % 2 ? FLT_TRUE_MIN : -FLT_MAX;
    }
    for (int round = 0; round < 8; ++round) {
      Signal ol(n), orr(n);
      const float* in[2] = {l.data(), r.data()};
      float* out[2] = {ol.data(), orr.data()};
      unit.process(in, out, std::uint32_t(n));
      ASSERT_TRUE(AllFinite(ol) && AllFinite(orr)) << rate;
    }
    const MeterReading m = unit.meter().read();
    for (int c = 0; c < 2; ++c) EXPECT_TRUE(std::isfinite(m.peak[c]) && std::isfinite(m.rms[c]) && std::isfinite(m.hold[c]));
    // NaN in parameters is ignored; out-of-range values are clamped.
    unit.setParameter(param::Note, kNaN);
    EXPECT_EQ(unit.parameter(param::Note), kParameters[param::Note].initial);
    unit.setParameter(param::Decay, kInf);
    EXPECT_EQ(unit.parameter(param::Decay), kParameters[param::Decay].maximum);
    unit.setParameter(99, 1);
    EXPECT_EQ(unit.parameter(99), 0.0f);
  }
}

TEST(TollhumRealTime, SilenceDiesAwayToExactZeroWithoutSubnormals) {
  Unit unit(1, 48000);
  unit.setParameter(param::Decay, 0.1f);
  unit.setParameter(param::Mix, 100);
  Signal in = Impulse(48000 * 4);
  const Signal out = RunMono(unit, in, 4096);
  for (std::size_t i = 48000 * 3; i < out.size(); ++i) {
    ASSERT_EQ(std::fpclassify(out[i]) == FP_SUBNORMAL, false) << i;
  }
  EXPECT_EQ(out.back(), 0.0f);
}

TEST(TollhumRealTime, EveryBlockSizeGivesTheSameSound) {
  const double rate = 44100;
  const Signal in = Sine(220, rate, 20000, 0.3);
  Unit whole(1, rate);
  whole.setParameter(param::Mix, 80);
  const Signal reference = RunMono(whole, in, 8192);
  for (std::uint32_t block : {1u, 7u, 16u, 333u, 4096u}) {
    Unit unit(1, rate);
    unit.setParameter(param::Mix, 80);
    const Signal out = RunMono(unit, in, block);
    double worst = 0;
    for (std::size_t i = 0; i < in.size(); ++i) worst = std::max(worst, double(std::fabs(out[i] - reference[i])));
    EXPECT_LT(worst, 1e-6) << block;
  }
}

}  // namespace
}  // namespace zel
