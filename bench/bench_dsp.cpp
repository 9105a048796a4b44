// The unit's cost per 256-frame block at 48 kHz (5.33 ms of audio), stage
// by stage: the filters at every order, the oversampler, Drive, Degrade and
// Hiss each on their own, mono against stereo, and automation that moves
// every parameter at every block against the same setting held still.
// The share of one core in real time is the time per block / 5.33 ms.
#include <benchmark/benchmark.h>

#include <initializer_list>
#include <utility>
#include <vector>

#include "products/vantry/unit/ZelVantryUnit.h"

namespace {

using namespace zel;

constexpr double kRate = 48000;
constexpr std::uint32_t kBlock = 256;

using Setting = std::initializer_list<std::pair<int, float>>;

// The job the host benchmark compares with its peers: a band from 200 Hz to 2 kHz.
const Setting kBand = {{kPidLowCut, 200}, {kPidHighCut, 2000}};
// Every stage working, as in the host benchmark's "heavy".
const Setting kHeavy = {{kPidSlope, 96}, {kPidLowCut, 200}, {kPidHighCut, 2000}, {kPidDrive, 100},
                        {kPidDegrade, 100}, {kPidHiss, -20}, {kPidMode, 2}};

struct Bench {
  ZelVantryUnit unit;
  std::vector<float> l, r, ol, orr;
  const float* in[2];
  float* out[2];

  Bench(int channels, std::initializer_list<Setting> settings)
      : unit(channels, kRate), l(kBlock), r(kBlock), ol(kBlock), orr(kBlock) {
    for (const Setting& s : settings)
      for (const auto& [pid, value] : s) unit.setParameter(pid, value);
    for (std::uint32_t i = 0; i < kBlock; ++i) {
      l[i] = float((i * 7919) % 1000) / 1000.0f - 0.5f;
      r[i] = float((i * 104729) % 1000) / 1000.0f - 0.5f;
    }
    in[0] = l.data(), in[1] = r.data();
    out[0] = ol.data(), out[1] = orr.data();
    for (int i = 0; i < 200; ++i) block();  // past every glide
  }
  void block() {
    unit.process(in, out, kBlock);
    benchmark::DoNotOptimize(ol.data());
    benchmark::DoNotOptimize(orr.data());
    benchmark::ClobberMemory();
  }
};

void perBlock(benchmark::State& state) {
  // Seconds per block over seconds of audio per block, in percent.
  state.counters["core%"] = benchmark::Counter(double(kBlock) / kRate / 100,
                                               benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
}

void run(benchmark::State& state, int channels, std::initializer_list<Setting> settings) {
  Bench b(channels, settings);
  for (auto _ : state) b.block();
  perBlock(state);
}

void BM_UnitDefaults(benchmark::State& state) { run(state, 2, {}); }
void BM_UnitDefaultsMono(benchmark::State& state) { run(state, 1, {}); }
// The band at Slope 6 x order: every filter order from 1 to 16.
void BM_UnitBandAtSlope(benchmark::State& state) { run(state, 2, {kBand, {{kPidSlope, float(state.range(0))}}}); }
void BM_UnitBandAtSlopeMono(benchmark::State& state) {
  run(state, 1, {kBand, {{kPidSlope, float(state.range(0))}}});
}
// One stage on, the rest at the defaults.
void BM_UnitOversampler(benchmark::State& state) { run(state, 2, {{{kPidHQ, 1}}}); }
void BM_UnitDrive(benchmark::State& state) { run(state, 2, {{{kPidDrive, 100}}}); }
void BM_UnitDegrade(benchmark::State& state) { run(state, 2, {{{kPidDegrade, 100}}}); }
void BM_UnitHiss(benchmark::State& state) { run(state, 2, {{{kPidHiss, -20}}}); }
void BM_UnitHeavy(benchmark::State& state) { run(state, 2, {kHeavy}); }
void BM_UnitHeavyMono(benchmark::State& state) { run(state, 1, {kHeavy}); }
void BM_UnitHeavyHQ(benchmark::State& state) { run(state, 2, {kHeavy, {{kPidHQ, 1}}}); }

// Automation at every block: every continuous parameter moves between two
// values around the heavy setting, so every glide runs all the time and the
// filter coefficients follow them throughout. BM_UnitHeavy is the same
// setting held still.
void BM_UnitHeavySweptEveryBlock(benchmark::State& state) {
  Bench b(2, {kHeavy});
  const std::pair<int, float> a[] = {{kPidDrive, 90},   {kPidDegrade, 90}, {kPidOutput, -1}, {kPidLowCut, 180},
                                     {kPidHighCut, 2200}, {kPidSlope, 90},   {kPidMix, 95},    {kPidHiss, -22},
                                     {kPidWidth, 90}};
  const std::pair<int, float> z[] = {{kPidDrive, 100},  {kPidDegrade, 100}, {kPidOutput, 0}, {kPidLowCut, 220},
                                     {kPidHighCut, 1800}, {kPidSlope, 96},    {kPidMix, 100},  {kPidHiss, -20},
                                     {kPidWidth, 100}};
  int step = 0;
  for (auto _ : state) {
    for (const auto& [pid, value] : step % 2 ? a : z) b.unit.setParameter(pid, value);
    ++step;
    b.block();
  }
  perBlock(state);
}

BENCHMARK(BM_UnitDefaults);
BENCHMARK(BM_UnitDefaultsMono);
BENCHMARK(BM_UnitBandAtSlope)->DenseRange(6, 96, 6);
BENCHMARK(BM_UnitBandAtSlopeMono)->Arg(12)->Arg(48)->Arg(96);
BENCHMARK(BM_UnitOversampler);
BENCHMARK(BM_UnitDrive);
BENCHMARK(BM_UnitDegrade);
BENCHMARK(BM_UnitHiss);
BENCHMARK(BM_UnitHeavy);
BENCHMARK(BM_UnitHeavyMono);
BENCHMARK(BM_UnitHeavyHQ);
BENCHMARK(BM_UnitHeavySweptEveryBlock);

}  // namespace
