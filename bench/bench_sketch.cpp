// One frame of the product's sketch: the interpolation step, the filter
// response at 128 frequencies, the new curve path and the stamp's
// rasterization scale (getFrameWithDuration on a sketch whose layers exist,
// outside a window: the computation without drawing). Also counts heap
// allocations per frame, which should be none.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "bench/support/AllocationCounter.h"
#include "model/ZelConfig.h"
#include "products/vantry/sketch/ZelVantryParameterSketch.h"
#include "toolkit/core/ZelLayer.h"
#include "toolkit/foundation/ZelPlist.h"

using namespace zel;

namespace {

std::unique_ptr<ZelConfig> twelveParameters() {
  ZelPlist::Array parameters;
  for (int pid = 0; pid < 12; ++pid)
    parameters.push_back(ZelPlist::dictionary({{"pid", ZelPlist::integer(pid)}}));
  ZelPlist clump = ZelPlist::dictionary({{"parameters", ZelPlist::array(std::move(parameters))}});
  return std::make_unique<ZelConfig>(ZelPlist::dictionary({{"clumps", ZelPlist::array({clump})}}));
}

class StampHost final : public ZelSketchHost {
 public:
  ZelLayer* logoStampLayer() const override { return stamp_.get(); }
  double sketchBackingScale() const override { return 2; }

 private:
  std::unique_ptr<ZelLayer> stamp_ = std::make_unique<ZelLayer>();
};

void BM_SketchFrame(benchmark::State& state) {
  auto config = twelveParameters();
  StampHost host;
  ZelVantryParameterSketch sketch(CGRectMake(0, 0, 46, 214), config.get());
  sketch.addPaths();
  sketch.setPowerbox(&host);
  // Two settings the animation swings between; every pictured parameter
  // changes, so each frame does all the work.
  std::vector<float> a(12, 0), b(12, 0);
  a[1] = 20, a[4] = 40, a[5] = 15000, a[6] = 6, a[7] = 100;
  b[1] = 90, b[4] = 500, b[5] = 2000, b[6] = 24, b[7] = 60;
  const std::vector<std::uint8_t> changes{0, 1, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0};
  bool toB = true;
  sketch.updateWithParameterValues(b, changes, true);
  for (int i = 0; i < 4; ++i) sketch.getFrameWithDuration(1.0 / 60);  // warm the path storage
  const std::size_t before = ZelAllocationCount();
  std::size_t frames = 0;
  for (auto _ : state) {
    if (!sketch.isInterpolating()) {
      toB = !toB;
      sketch.updateWithParameterValues(toB ? b : a, changes, true);
    }
    sketch.getFrameWithDuration(1.0 / 60);
    benchmark::DoNotOptimize(sketch.graphPointsY().data());
    ++frames;
  }
  state.counters["allocs/frame"] =
      benchmark::Counter(static_cast<double>(ZelAllocationCount() - before) / static_cast<double>(frames));
}
BENCHMARK(BM_SketchFrame)->Unit(benchmark::kMicrosecond);

}  // namespace
