// The unit's cost per 256-frame stereo block at 48 kHz (5.33 ms of audio):
// at the defaults, at a heavy setting, and at the heavy setting with HQ.
// The share of one core in real time is the time per block / 5.33 ms.
#include <benchmark/benchmark.h>

#include <vector>

#include "products/vantry/unit/ZelVantryUnit.h"

namespace {

using namespace zel;

constexpr double kRate = 48000;
constexpr std::uint32_t kBlock = 256;

void runBlocks(benchmark::State& state, bool heavy, bool hq) {
  ZelVantryUnit unit(2, kRate);
  if (heavy) {
    unit.setParameter(kPidSlope, 96);
    unit.setParameter(kPidLowCut, 200);
    unit.setParameter(kPidHighCut, 5000);
    unit.setParameter(kPidDrive, 100);
    unit.setParameter(kPidDegrade, 100);
    unit.setParameter(kPidHiss, -24);
  }
  unit.setParameter(kPidHQ, hq ? 1 : 0);
  std::vector<float> l(kBlock), r(kBlock);
  for (std::uint32_t i = 0; i < kBlock; ++i) l[i] = r[i] = float((i * 7919) % 1000) / 1000.0f - 0.5f;
  std::vector<float> ol(kBlock), orr(kBlock);
  const float* in[2] = {l.data(), r.data()};
  float* out[2] = {ol.data(), orr.data()};
  for (int i = 0; i < 200; ++i) unit.process(in, out, kBlock);  // past every glide
  for (auto _ : state) {
    unit.process(in, out, kBlock);
    benchmark::DoNotOptimize(ol.data());
    benchmark::ClobberMemory();
  }
  // Seconds per block over seconds of audio per block, in percent.
  state.counters["core%"] = benchmark::Counter(double(kBlock) / kRate / 100,
                                               benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
}

void BM_UnitBlockDefaults(benchmark::State& state) { runBlocks(state, false, false); }
void BM_UnitBlockHeavy(benchmark::State& state) { runBlocks(state, true, false); }
void BM_UnitBlockHeavyHQ(benchmark::State& state) { runBlocks(state, true, true); }

// Automation at every block: every glide running and the filter
// coefficients recomputed throughout.
void BM_UnitBlockAutomated(benchmark::State& state) {
  ZelVantryUnit unit(2, kRate);
  unit.setParameter(kPidSlope, 96);
  std::vector<float> l(kBlock, 0.1f), r(kBlock, -0.1f), ol(kBlock), orr(kBlock);
  const float* in[2] = {l.data(), r.data()};
  float* out[2] = {ol.data(), orr.data()};
  int step = 0;
  for (auto _ : state) {
    unit.setParameter(kPidLowCut, step % 2 ? 20.0f : 2000.0f);
    unit.setParameter(kPidHighCut, step % 2 ? 20000.0f : 3000.0f);
    ++step;
    unit.process(in, out, kBlock);
    benchmark::DoNotOptimize(ol.data());
  }
}

BENCHMARK(BM_UnitBlockDefaults);
BENCHMARK(BM_UnitBlockHeavy);
BENCHMARK(BM_UnitBlockHeavyHQ);
BENCHMARK(BM_UnitBlockAutomated);

}  // namespace
