// Loading the shipped description into a configuration (read, convert, check
// kinds, build the records), and the same from bytes already in memory.
#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <string>

#include "model/ZelConfig.h"

using namespace zel;

namespace {

const std::string kConfigPath = std::string(ZEL_RESOURCES_DIR) + "/config.plist";

void BM_LoadConfigFile(benchmark::State& state) {
  for (auto _ : state) {
    ZelConfigLoad load = ZelConfig::loadFile(kConfigPath);
    if (load.config->clumps().empty()) state.SkipWithError("config.plist did not load");
    benchmark::DoNotOptimize(load);
  }
}
BENCHMARK(BM_LoadConfigFile)->Unit(benchmark::kMicrosecond);

void BM_LoadConfigFromMemory(benchmark::State& state) {
  std::ifstream in(kConfigPath, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  for (auto _ : state) {
    ZelConfigLoad load = ZelConfig::loadData(bytes.data(), bytes.size());
    benchmark::DoNotOptimize(load);
  }
}
BENCHMARK(BM_LoadConfigFromMemory)->Unit(benchmark::kMicrosecond);

}  // namespace
