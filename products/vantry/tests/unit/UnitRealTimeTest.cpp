// The rules a host's audio thread imposes, and inputs no one should send.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "DspTestSupport.h"
#include "tests/dsp/RealTimeTrap.h"

namespace zel {
namespace {

using namespace dsptest;

constexpr float kInf = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

const Setting kHeavy = {{kPidSlope, 96}, {kPidLowCut, 200},  {kPidHighCut, 5000}, {kPidDrive, 100},
                        {kPidDegrade, 100}, {kPidHiss, -24}, {kPidMode, 2},        {kPidWidth, 60}};

bool allFinite(const Signal& s) {
  for (float x : s)
    if (!std::isfinite(x)) return false;
  return true;
}

TEST(UnitRealTime, TheTrapCatchesWhatItShould) {
  RealTimeTrap trap;
  void* volatile p = std::malloc(16);
  std::free(p);
  EXPECT_GE(trap.violations(), 2);
}

TEST(UnitRealTime, ProcessingAndAutomationNeverAllocateLockOrWait) {
  for (double rate : {8000.0, 48000.0, 384000.0}) {
    Unit unit(2, rate);
    std::vector<float> l(8192, 0.1f), r(8192, -0.1f);
    std::uint32_t seed = 9;
    RealTimeTrap trap;
    for (int block = 0; block < 400; ++block) {
      // Every parameter anywhere in its range at every block, switches included.
      for (int pid = 0; pid < kZelParameterCount; ++pid) {
        seed = seed * 1664525u + 1013904223u;
        const auto& p = kZelParameters[pid];
        unit.setParameter(pid, p.minimum + (p.maximum - p.minimum) * float(seed >> 8) / float(1 << 24));
      }
      const std::uint32_t frames = (block * 37) % 700 + (block % 50 == 0 ? 8192 : 0);
      const float* in[2] = {l.data(), r.data()};
      float* out[2] = {l.data(), r.data()};  // in place
      unit.process(in, out, std::min<std::uint32_t>(frames, 8192));
      (void)unit.latency();
    }
    EXPECT_EQ(trap.violations(), 0) << rate;
  }
}

TEST(UnitRealTime, TortureInputsKeepTheOutputFinite) {
  const std::size_t n = 4096;
  const Signal cases[] = {Signal(n, 0.0f), impulse(n), Signal(n, 1.0f),  Signal(n, -1.0f), Signal(n, 1e-38f),
                          Signal(n, FLT_MIN), Signal(n, kNaN), Signal(n, kInf), Signal(n, -kInf), Signal(n, 1e30f)};
  for (double rate : {8000.0, 44100.0, 384000.0}) {
    for (bool hq : {false, true}) {
      for (const Signal& in : cases) {
        Unit unit(2, rate);
        apply(unit, kHeavy);
        unit.setParameter(kPidHQ, hq);
        const auto [l, r] = render(unit, in, in);
        EXPECT_TRUE(allFinite(l) && allFinite(r)) << rate << " HQ " << hq << " input " << in[1];
      }
    }
  }
}

TEST(UnitRealTime, NonFiniteInputIsSilenceAndLeavesNoTrace) {
  // A burst of NaN and infinities, then music: the output is exactly what a
  // unit that heard silence in place of the burst gives.
  Signal burst = sine(440, 0.5, 48000, 4096), calm = burst;
  for (std::size_t i = 1000; i < 1256; ++i) {
    burst[i] = i % 3 == 0 ? kNaN : i % 3 == 1 ? kInf : -kInf;
    calm[i] = 0;
  }
  for (bool hq : {false, true}) {
    Unit a(2, 48000), b(2, 48000);
    apply(a, kHeavy), apply(b, kHeavy);
    a.setParameter(kPidHQ, hq), b.setParameter(kPidHQ, hq);
    EXPECT_EQ(render(a, burst, burst), render(b, calm, calm)) << hq;
  }
}

TEST(UnitRealTime, BlockSizeDoesNotChangeTheSound) {
  const Signal l = sine(440, 0.5, 48000, 20000), r = sine(660, 0.4, 48000, 20000);
  const auto renderIn = [&](std::size_t block) {
    Unit unit(2, 48000);
    apply(unit, kHeavy);
    unit.setParameter(kPidHQ, 1);
    // A zero-length block first: it must change nothing.
    float* none[2] = {nullptr, nullptr};
    const float* nothing[2] = {nullptr, nullptr};
    unit.process(nothing, none, 0);
    return render(unit, l, r, block);
  };
  const Stereo reference = renderIn(256);
  for (std::size_t block : {1, 7, 8192, 20000}) EXPECT_EQ(renderIn(block), reference) << block;
}

TEST(UnitRealTime, InstancesDoNotShareState) {
  const Signal a = sine(440, 0.5, 48000, 8192), b = sine(1234, 0.3, 48000, 8192);
  Unit alone(2, 48000);
  apply(alone, kHeavy);
  const Stereo expected = render(alone, a, a);
  Unit first(2, 48000), second(1, 96000);
  apply(first, kHeavy);
  apply(second, {{kPidHiss, -10}, {kPidHQ, 1}});
  Stereo got{Signal(a.size()), Signal(a.size())};
  Signal scratch(b.size());
  for (std::size_t at = 0; at < a.size(); at += 128) {
    const float* in[2] = {a.data() + at, a.data() + at};
    float* out[2] = {got.first.data() + at, got.second.data() + at};
    first.process(in, out, 128);
    const float* in2[1] = {b.data() + at};
    float* out2[1] = {scratch.data() + at};
    second.process(in2, out2, 128);
  }
  EXPECT_EQ(got, expected);
}

#if defined(__x86_64__)
TEST(UnitRealTime, FlushesDenormalsOnlyWhileProcessing) {
  // The control bits; the low six are sticky exception flags that any
  // arithmetic may raise.
  const auto mode = [] { return __builtin_ia32_stmxcsr() & ~0x3Fu; };
  const unsigned before = mode();
  Unit unit(2, 48000);
  apply(unit, {{kPidSlope, 96}, {kPidLowCut, 2000}});
  Signal tail = impulse(96000);
  const auto [l, r] = render(unit, tail, tail);
  EXPECT_EQ(mode(), before);
  // The filters' ringing dies to exact zero, never through subnormals.
  for (float x : l) ASSERT_NE(std::fpclassify(x), FP_SUBNORMAL);
  EXPECT_EQ(l.back(), 0.0f);
}
#endif

}  // namespace
}  // namespace zel
