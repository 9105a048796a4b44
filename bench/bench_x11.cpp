// The X11 window host's event pump: a pump with nothing to do (what a
// plug-in host's idle callback costs us between frames), and a pump that
// redraws the whole 480 × 380 window (back buffer and copy to the window)
// at scale 1 and 2. It needs an X server (DISPLAY); without one it says so
// and exits.
//
//   DISPLAY=:N bench_x11 --benchmark_repetitions=9
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>

#include "bench/support/AllocationCounter.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/x11/ZelX11WindowHost.h"

#include <X11/Xlib.h>

using namespace zel;

namespace {

class Panel : public ZelView {
 public:
  Panel(CGRect frame, ZelColor color, bool label) : ZelView(frame), color_(color), label_(label) {}
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    ctx.setFillColor(color_);
    ctx.fillRect(bounds());
    if (!label_) return;
    ctx.setFillColor(ZelColor::grey(0.9));
    ctx.drawText("Gain 1.5 dB", ZelFont{ZelFontFace::Medium, 11}, CGPointMake(4, 4));
  }

 private:
  ZelColor color_;
  bool label_;
};

// The editor's size with 40 labelled views on a background.
struct Scene {
  explicit Scene(double scale) : window(loop, CGSizeMake(480, 380)) {
    auto root = std::make_unique<Panel>(CGRectMake(0, 0, 480, 380), ZelColor::rgb(0.2, 0.22, 0.25), false);
    for (int i = 0; i < 40; ++i) {
      CGRect r = CGRectMake(10 + (i % 8) * 58, 10 + (i / 8) * 70, 52, 60);
      root->addSubview(std::make_unique<Panel>(r, ZelColor::grey(0.3 + 0.01 * i), true));
    }
    window.setContentView(std::move(root));
    ZelX11WindowOptions options;
    options.backingScale = scale;
    host = ZelX11WindowHost::create(window, options);
    if (!host) return;
    host->show();
    for (int i = 0; i < 50; ++i) {
      host->pump();
      XSync(host->display(), False);
    }
  }
  ZelMonotonicClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window;
  std::unique_ptr<ZelX11WindowHost> host;
};

// One scene per scale for the whole run: the benchmark library calls each
// function several times, and a server may refuse connections opened and
// closed in quick succession.
Scene* sceneFor(int scale) {
  static std::unique_ptr<Scene> scenes[3];
  std::unique_ptr<Scene>& s = scenes[scale];
  if (!s) s = std::make_unique<Scene>(scale);
  return s->host ? s.get() : nullptr;
}

void BM_IdlePump(benchmark::State& state) {
  Scene* scene = sceneFor(1);
  if (!scene) return state.SkipWithError("cannot open the display");
  std::size_t before = ZelAllocationCount();
  for (auto _ : state) benchmark::DoNotOptimize(scene->host->pump());
  state.counters["allocations"] = static_cast<double>(ZelAllocationCount() - before);
}
BENCHMARK(BM_IdlePump)->Unit(benchmark::kMicrosecond);

void BM_FullRedraw(benchmark::State& state) {
  Scene* scene = sceneFor(static_cast<int>(state.range(0)));
  if (!scene) return state.SkipWithError("cannot open the display");
  for (auto _ : state) {
    scene->window.setNeedsDisplay();
    scene->host->pump();
    XSync(scene->host->display(), False);  // the copy reached the screen
  }
}
BENCHMARK(BM_FullRedraw)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  Display* probe = XOpenDisplay(nullptr);
  if (!probe) {
    std::puts("bench_x11: no X display (set DISPLAY, e.g. to an Xvfb server); skipped");
    return 0;
  }
  XCloseDisplay(probe);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
