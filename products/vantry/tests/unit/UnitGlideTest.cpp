// Parameters glide: automation that jumps from one end of a range to the
// other between two blocks makes no click.
//
// A click is a jump between two samples larger than the signal's own
// steepest step. On a steady tone that step is known at every setting the
// glide passes through (the two ends and values between them: a sample
// and hold makes its own steps midway); during the glide no step may be
// more than twice the largest of them. For the 1 kHz tone at 48 kHz used
// here a step is 0.13 of the amplitude, so any discontinuity above about an
// eighth of the amplitude fails, while a gain that rises or a steep filter
// near the tone whose phase turns as it changes order (both steepen the
// tone a little while they move) passes.
#include <gtest/gtest.h>

#include <cmath>

#include "DspTestSupport.h"

namespace zel {
namespace {

using namespace dsptest;

constexpr double kRate = 48000;
constexpr std::size_t kBlock = 256;

double steepestStep(const Signal& s, std::size_t from, std::size_t to) {
  double worst = 0;
  for (std::size_t i = from + 1; i < to; ++i) worst = std::max(worst, double(std::abs(s[i] - s[i - 1])));
  return worst;
}

struct Jump {
  int pid;
  float from, to;
  Setting around = {};
};

// The tone, through a unit that has held `value` for a while.
Stereo steady(const Jump& jump, float value, std::size_t n) {
  const Signal l = sine(1000, 0.25, kRate, n), r = sine(1000, 0.25, kRate, n, 1.3);
  Unit unit(2, kRate);
  apply(unit, jump.around);
  unit.setParameter(jump.pid, value);
  return render(unit, l, r, kBlock);
}

// The values a glide from `from` to `to` passes through, ends included.
std::vector<float> along(const Jump& jump) {
  std::vector<float> values;
  const bool logarithmic = kZelParameters[jump.pid].logarithmic;
  for (int i = 0; i <= 10; ++i) {
    const double t = i / 10.0;
    values.push_back(logarithmic ? float(jump.from * std::pow(double(jump.to) / jump.from, t))
                                 : float(jump.from + (jump.to - jump.from) * t));
  }
  return values;
}

void expectNoClick(const Jump& jump) {
  const std::size_t change = 40 * kBlock, settle = 30 * kBlock, n = change + 2 * settle;
  double bound[2] = {0, 0};
  for (float value : along(jump)) {
    const Stereo s = steady(jump, value, change);
    bound[0] = std::max(bound[0], steepestStep(s.first, change - 10 * kBlock, change));
    bound[1] = std::max(bound[1], steepestStep(s.second, change - 10 * kBlock, change));
  }
  const Signal l = sine(1000, 0.25, kRate, n), r = sine(1000, 0.25, kRate, n, 1.3);
  Unit unit(2, kRate);
  apply(unit, jump.around);
  unit.setParameter(jump.pid, jump.from);
  Stereo out{Signal(n), Signal(n)};
  for (std::size_t at = 0; at < n; at += kBlock) {
    if (at == change) unit.setParameter(jump.pid, jump.to);
    const float* in[2] = {l.data() + at, r.data() + at};
    float* o[2] = {out.first.data() + at, out.second.data() + at};
    unit.process(in, o, kBlock);
  }
  for (int c = 0; c < 2; ++c) {
    const Signal& s = c == 0 ? out.first : out.second;
    const double during = steepestStep(s, change - 1, change + settle);
    EXPECT_LE(during, 2 * bound[c] + 1e-4) << kZelParameters[jump.pid].codeName << " " << jump.from << " -> "
                                              << jump.to << ": step " << during << " against " << bound[c];
  }
}

TEST(UnitGlide, EveryParameterAcrossItsWholeRangeMakesNoClick) {
  for (int pid = 0; pid < kZelParameterCount; ++pid) {
    const auto& p = kZelParameters[pid];
    expectNoClick({pid, p.minimum, p.maximum});
    expectNoClick({pid, p.maximum, p.minimum});
  }
}

TEST(UnitGlide, SteepFiltersSweepingThroughTheToneMakeNoClick) {
  const Setting steep = {{kPidSlope, 96}};
  expectNoClick({kPidHighCut, 20000, 20, steep});
  expectNoClick({kPidLowCut, 20, 20000, steep});
  expectNoClick({kPidSlope, 6, 96, {{kPidHighCut, 1500}}});
  expectNoClick({kPidSlope, 96, 6, {{kPidLowCut, 700}}});
  expectNoClick({kPidHQ, 0, 1, {{kPidDrive, 60}, {kPidHighCut, 3000}}});
  expectNoClick({kPidMode, 0, 1, {{kPidHighCut, 3000}}});
}

}  // namespace
}  // namespace zel
