// Tollhum's cost per 256-frame stereo block at 48 kHz (5.33 ms of audio), at
// the defaults, with the longest, brightest ring, and with every parameter
// automated at every block (all glides running, the strings' coefficients
// recomputed throughout); and one frame of its sketch's meter and stems.
// The share of one core in real time is the time per block / 5.33 ms.
#include <benchmark/benchmark.h>

#include <vector>

#include "products/tollhum/sketch/ZelTollhumParameterSketch.h"
#include "products/tollhum/unit/ZelTollhumUnit.h"

namespace {

using namespace zel;
using namespace zel::tollhum;

constexpr double kRate = 48000;
constexpr std::uint32_t kBlock = 256;

void runBlocks(benchmark::State& state, bool heavy, bool automated) {
  ZelTollhumUnit unit(2, kRate);
  if (heavy) {
    unit.setParameter(param::Decay, 20);
    unit.setParameter(param::Tone, 100);
    unit.setParameter(param::Detune, 30);
    unit.setParameter(param::Mix, 100);
  }
  std::vector<float> l(kBlock), r(kBlock);
  for (std::uint32_t i = 0; i < kBlock; ++i) l[i] = r[i] = float((i * 7919) % 1000) / 1000.0f - 0.5f;
  std::vector<float> ol(kBlock), orr(kBlock);
  const float* in[2] = {l.data(), r.data()};
  float* out[2] = {ol.data(), orr.data()};
  for (int i = 0; i < 200; ++i) unit.process(in, out, kBlock);  // past every glide
  int block = 0;
  for (auto _ : state) {
    if (automated) {
      const float t = float(block++ % 64) / 64;
      for (int pid = 1; pid < kParameterCount; ++pid)
        unit.setParameter(pid, kParameters[pid].minimum + (kParameters[pid].maximum - kParameters[pid].minimum) * t);
    }
    unit.process(in, out, kBlock);
    benchmark::DoNotOptimize(ol.data());
    benchmark::ClobberMemory();
  }
  state.counters["core%"] = benchmark::Counter(double(kBlock) / kRate / 100,
                                               benchmark::Counter::kIsIterationInvariantRate |
                                                   benchmark::Counter::kInvert);
}

void BM_TollhumBlockDefaults(benchmark::State& state) { runBlocks(state, false, false); }
void BM_TollhumBlockLongBright(benchmark::State& state) { runBlocks(state, true, false); }
void BM_TollhumBlockAutomated(benchmark::State& state) { runBlocks(state, false, true); }

// What the editor pays per frame: the meter read and redrawn (every frame),
// and the stems recomputed (each frame of a parameter animation).
void BM_TollhumSketchMeterFrame(benchmark::State& state) {
  ZelTollhumUnit unit(2, kRate);
  ZelTollhumParameterSketch sketch(CGRectMake(0, 0, 50, 220), nullptr);
  sketch.setMeteringCallback(ZelTollhumMeteringCallbackFor(&unit.meter()));
  sketch.addPaths();
  std::vector<float> l(kBlock, 0.25f), r(kBlock, -0.25f);
  const float* in[2] = {l.data(), r.data()};
  float* out[2] = {l.data(), r.data()};
  for (auto _ : state) {
    unit.process(in, out, kBlock);  // new levels for every frame
    sketch.updateMeterWithDuration(1.0 / 60);
  }
}

void BM_TollhumSketchStems(benchmark::State& state) {
  std::vector<float> values;
  for (const auto& p : kParameters) values.push_back(p.initial);
  std::array<ZelTollhumParameterSketch::Stem, ZelTollhumParameterSketch::kMaxStems> stems;
  for (auto _ : state) {
    values[param::Note] = values[param::Note] == 48 ? 49 : 48;
    benchmark::DoNotOptimize(ZelTollhumParameterSketch::computeStems(values, stems));
  }
}

BENCHMARK(BM_TollhumBlockDefaults);
BENCHMARK(BM_TollhumBlockLongBright);
BENCHMARK(BM_TollhumBlockAutomated);
BENCHMARK(BM_TollhumSketchMeterFrame);
BENCHMARK(BM_TollhumSketchStems);

}  // namespace
