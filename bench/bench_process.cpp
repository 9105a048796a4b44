// `vantry process` on a 60 s stereo file at 48 kHz, heavy setting with HQ:
// the whole command (read, render, write, rename), as a multiple of real
// time (the "x_realtime" counter).
#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "app/common/ZelDescriptionFile.h"
#include "app/process/ZelProcessCommand.h"

namespace {

using namespace zel;

constexpr int kRate = 48000;
constexpr double kSeconds = 60;

std::string makeInput() {
  const std::string path = (std::filesystem::temp_directory_path() / "vantry-bench-in.wav").string();
  SF_INFO info{};
  info.samplerate = kRate, info.channels = 2, info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
  SNDFILE* f = sf_open(path.c_str(), SFM_WRITE, &info);
  std::vector<float> block(2 * 4800);
  std::uint32_t seed = 1;
  for (int b = 0; b < int(kSeconds * 10); ++b) {
    for (int i = 0; i < 4800; ++i) {
      seed = seed * 1664525u + 1013904223u;
      const double t = double(b * 4800 + i) / kRate;
      block[2 * i] = float(0.3 * std::sin(2 * 3.14159265 * 220 * t) + 0.1 * (double(seed >> 8) / (1 << 24) - 0.5));
      block[2 * i + 1] = float(0.3 * std::sin(2 * 3.14159265 * 330 * t));
    }
    sf_writef_float(f, block.data(), 4800);
  }
  sf_close(f);
  return path;
}

void BM_ProcessSixtySecondsHeavyHQ(benchmark::State& state) {
  const std::string in = makeInput();
  const std::string out = (std::filesystem::temp_directory_path() / "vantry-bench-out.wav").string();
  const std::string config = ZelDefaultDescriptionPath();
  std::vector<std::string> words = {"process", in, out, "--set", "Slope=96", "--set", "LowCut=200",
                                    "--set", "HighCut=5000", "--set", "Drive=100", "--set", "Degrade=100",
                                    "--set", "Hiss=-24", "--set", "HQ=1"};
  std::vector<char*> argv;
  for (auto& w : words) argv.push_back(w.data());
  std::FILE* quiet = std::freopen("/dev/null", "w", stderr);  // the summary line, once per run
  (void)quiet;
  for (auto _ : state) {
    if (ZelProcessCommand(int(argv.size()), argv.data(), config.c_str()) != 0) state.SkipWithError("process failed");
  }
  state.counters["x_realtime"] =
      benchmark::Counter(kSeconds, benchmark::Counter::kIsIterationInvariantRate);
  std::remove(in.c_str());
  std::remove(out.c_str());
}

BENCHMARK(BM_ProcessSixtySecondsHeavyHQ)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

}  // namespace
