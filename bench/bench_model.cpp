// Loading the shipped description into a configuration (read, convert, check
// kinds, build the records), and the same from bytes already in memory; then
// the way the editor loads it from the LV2 bundle (the binary copy the build
// writes, without the kind checks).
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

void BM_LoadConfigFileNoChecks(benchmark::State& state) {
  for (auto _ : state) {
    ZelConfigLoad load = ZelConfig::loadFile(kConfigPath, false);
    benchmark::DoNotOptimize(load);
  }
}
BENCHMARK(BM_LoadConfigFileNoChecks)->Unit(benchmark::kMicrosecond);

#ifdef ZEL_LV2_BUNDLE_DIR
void BM_LoadConfigFromBundle(benchmark::State& state) {
  const std::string resources = std::string(ZEL_LV2_BUNDLE_DIR) + "/resources";
  for (auto _ : state) {
    std::unique_ptr<ZelConfig> config = ZelConfig::configNamed("config", resources);
    if (config->clumps().empty()) state.SkipWithError("the bundle's description did not load");
    benchmark::DoNotOptimize(config);
  }
}
BENCHMARK(BM_LoadConfigFromBundle)->Unit(benchmark::kMicrosecond);

void BM_LoadConfigBinaryFile(benchmark::State& state) {
  const std::string path = std::string(ZEL_LV2_BUNDLE_DIR) + "/resources/config.bplist";
  for (auto _ : state) {
    ZelConfigLoad load = ZelConfig::loadFile(path);
    if (load.config->clumps().empty()) state.SkipWithError("config.bplist did not load");
    benchmark::DoNotOptimize(load);
  }
}
BENCHMARK(BM_LoadConfigBinaryFile)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
