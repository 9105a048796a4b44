// The editor as a whole, on the offscreen backend:
// - building it from the description through its first frame (scale 2);
// - one drag event: the mouse to the slider, the value to the host (the
//   stand-in unit), its echo through the rules, the redraw of what changed;
// - redrawing the whole editor (scale 1 and 2);
// - 1,000 open/close cycles (start-up, deferred steps, a frame, teardown)
//   in one process, with the heap's growth over them as a counter.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <memory>

#include "app/common/ZelEditorSession.h"
#include "model/ZelConfig.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"

namespace {

using namespace zel;

std::unique_ptr<ZelConfig> product() { return ZelConfig::configNamed("config", ZEL_RESOURCES_DIR); }

// A window with its offscreen backend and an editor session in it.
struct Scene {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};
  ZelOffscreenWindowHost host;
  std::unique_ptr<ZelEditorSession> session;

  explicit Scene(double scale) : host(window, scale) {
    ZelRunLoop::setCurrent(&loop);
    host.setAutoDisplay(false);
  }
  ~Scene() {
    session.reset();
    ZelRunLoop::setCurrent(nullptr);
  }
  void open() {
    session = std::make_unique<ZelEditorSession>(window, product());
    session->open();
    window.setKeyWindow(true);
  }
  void runFor(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }
};

void BM_EditorBuildToFirstFrame(benchmark::State& state) {
  for (auto _ : state) {
    Scene scene(2);
    scene.open();
    benchmark::DoNotOptimize(scene.host.displayIfNeeded().size());
    state.PauseTiming();
    scene.session.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_EditorBuildToFirstFrame)->Unit(benchmark::kMillisecond);

void BM_EditorDragEvent(benchmark::State& state) {
  Scene scene(state.range(0));
  scene.open();
  scene.runFor(3);
  scene.host.displayIfNeeded();
  // Degrade's slider: grab it, then move between two heights.
  scene.window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseDown, {174, 150}));
  double area = 0;
  bool up = false;
  for (auto _ : state) {
    up = !up;
    scene.window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseDragged, {174, up ? 170.0 : 150.0}));
    scene.loop.runDue();  // the host's echo, through the rules
    for (const CGRect& r : scene.host.displayIfNeeded()) area += r.size.width * r.size.height;
  }
  scene.window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseUp, {174, 150}));
  state.counters["redrawn_points2"] = benchmark::Counter(area, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_EditorDragEvent)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_EditorWholeRedraw(benchmark::State& state) {
  Scene scene(state.range(0));
  scene.open();
  scene.runFor(3);
  for (auto _ : state) scene.host.renderAll();
}
BENCHMARK(BM_EditorWholeRedraw)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

// Heap in use (bytes) after returning what can be returned.
double heapInUse() {
  malloc_trim(0);
  return static_cast<double>(mallinfo2().uordblks);
}

void openAndClose(Scene& scene) {
  scene.open();
  scene.runFor(1.1);  // drawers, sketch, first snapshot
  scene.host.displayIfNeeded();
  scene.session.reset();
  scene.runFor(2);  // whatever the teardown left to run
}

void BM_EditorOpenCloseCycles(benchmark::State& state) {
  const int cycles = static_cast<int>(state.range(0));
  double growth = 0;
  for (auto _ : state) {
    Scene scene(1);
    openAndClose(scene);  // fills the caches that live for the process
    const double before = heapInUse();
    for (int i = 0; i < cycles; ++i) openAndClose(scene);
    growth = heapInUse() - before;
  }
  state.counters["heap_growth_bytes"] = growth;
  state.counters["cycles"] = cycles;
}
BENCHMARK(BM_EditorOpenCloseCycles)->Arg(1000)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
