// Animation frames on the virtual clock: one frame of a few dozen animating
// layers (the clock's tick alone, and tick plus drawing into a context that
// does nothing), and 100,000 frames of animations being added, replaced,
// removed and finishing, reporting how much the heap grew over them.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <memory>

#include "bench/support/AllocationCounter.h"
#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelLayer.h"
#include "toolkit/core/ZelShapeLayer.h"

using namespace zel;

namespace {

// Accepts every call and draws nothing: what is left is the layers' cost.
class NullContext final : public ZelBitmapContext {
 public:
  void save() override {}
  void restore() override {}
  void concatTransform(const ZelAffineTransform& t) override { benchmark::DoNotOptimize(t); }
  ZelAffineTransform currentTransform() const override { return {}; }
  void clipToRect(CGRect) override {}
  void clipToPath(const ZelPath&) override {}
  CGRect clipBoundingBox() const override { return CGRectMake(0, 0, 480, 380); }
  void setAlpha(double) override {}
  void setFillColor(ZelColor) override {}
  void setFillPattern(std::shared_ptr<const ZelImage>, CGSize) override {}
  void setStrokeColor(ZelColor) override {}
  void setLineWidth(double) override {}
  void setLineDash(double phase, std::span<const double>) override { benchmark::DoNotOptimize(phase); }
  void setLineCap(ZelLineCap) override {}
  void setLineJoin(ZelLineJoin) override {}
  void setShadow(CGSize, double, ZelColor) override {}
  void clearShadow() override {}
  void fillRect(CGRect r) override { benchmark::DoNotOptimize(r); }
  void fillPath(const ZelPath&) override {}
  void strokePath(const ZelPath&) override {}
  void strokeLineSegment(CGPoint, CGPoint) override {}
  void fillEllipseInRect(CGRect) override {}
  void drawImage(const ZelImage&, CGRect, double, ZelImageFilter) override {}
  void drawText(std::string_view, const ZelFont&, CGPoint) override {}
  ZelTextMetrics measureText(std::string_view, const ZelFont&) override { return {}; }
  void beginTransparencyGroup() override {}
  void endTransparencyGroup(double) override {}
  double backingScale() const override { return 1; }
  std::unique_ptr<ZelBitmapContext> makeBitmapContext(int, int, double) override {
    return std::make_unique<NullContext>();
  }
  std::shared_ptr<const ZelImage> makeImage() override { return nullptr; }
};

struct CountingHost final : ZelLayerHost {
  explicit CountingHost(ZelFrameClock& clock) : clock(clock) {}
  void layerNeedsDisplayInRect(ZelLayer&, const CGRect& r) override { area = CGRectUnion(area, r); }
  ZelFrameClock* layerFrameClock() override { return &clock; }
  ZelFrameClock& clock;
  CGRect area = CGRectNull;
};

// A 480 × 380 host with `count` small layers: a pulsing button glyph, a
// flashing spotlight and a focus border with moving dashes, over and over.
struct Scene {
  ZelVirtualClock time{0};
  ZelRunLoop loop{time};
  ZelFrameClock clock{loop};
  CountingHost host{clock};
  ZelLayer root;
  std::vector<ZelLayer*> layers;

  explicit Scene(int count) {
    root.setHost(&host);
    root.setImplicitAnimationsEnabled(false);
    root.setFrame(CGRectMake(0, 0, 480, 380));
    for (int i = 0; i < count; ++i) {
      auto shape = std::make_unique<ZelShapeLayer>();
      shape->setFrame(CGRectMake(10 + (i % 8) * 55, 10 + (i / 8) * 60, 44, 44));
      ZelPath p;
      p.addRect(CGRectMake(0, 0, 44, 44));
      shape->setPath(p);
      shape->setStrokeColor(ZelColor::grey(1, 0.7));
      shape->setLineDashPattern({3, 2});
      shape->setBackgroundColor(ZelColor::grey(0, 0.4));
      layers.push_back(root.addSublayer(std::move(shape)));
    }
  }
  ~Scene() { root.setHost(nullptr); }

  void frame() {
    time.advance(clock.frameDuration());
    loop.runDue();
  }
};

ZelBasicAnimation pulse() {
  ZelBasicAnimation a("transform.scale");
  a.setFromValue(1.0);
  a.setToValue(1.2);
  a.setDuration(0.33);
  a.setTimingFunction(ZelTimingFunction::easeOut());
  a.setAutoreverses(true);
  a.setRepeatCount(ZelRepeatForever);
  return a;
}

ZelBasicAnimation dashes() {
  ZelBasicAnimation a("lineDashPhase");
  a.setFromValue(0.0);
  a.setToValue(10.0);
  a.setDuration(2.0);
  a.setRepeatCount(ZelRepeatForever);
  return a;
}

void BM_AnimationFrameTick(benchmark::State& state) {
  Scene scene(int(state.range(0)));
  for (ZelLayer* l : scene.layers) {
    l->addAnimation(pulse(), "pulse");
    l->addAnimation(dashes(), "PhaseShift");
  }
  scene.frame();  // the first frame sizes the clock's buffers
  std::size_t allocationsBefore = ZelAllocationCount();
  for (auto _ : state) scene.frame();
  state.counters["layers"] = double(scene.clock.animatingLayerCount());
  state.counters["allocations_per_frame"] =
      double(ZelAllocationCount() - allocationsBefore) / double(state.iterations());
}
BENCHMARK(BM_AnimationFrameTick)->Arg(40);

void BM_AnimationFrameTickAndDraw(benchmark::State& state) {
  Scene scene(int(state.range(0)));
  for (ZelLayer* l : scene.layers) {
    l->addAnimation(pulse(), "pulse");
    l->addAnimation(dashes(), "PhaseShift");
  }
  NullContext ctx;
  scene.frame();
  std::size_t allocationsBefore = ZelAllocationCount();
  for (auto _ : state) {
    scene.frame();
    scene.root.render(ctx);
  }
  state.counters["allocations_per_frame"] =
      double(ZelAllocationCount() - allocationsBefore) / double(state.iterations());
}
BENCHMARK(BM_AnimationFrameTickAndDraw)->Arg(40);

// 100,000 frames: each frame one layer gets a short flash (replacing the one
// it may still have), every 7th a layer loses its pulse and every 5th gets
// it back; flashes finish and are removed. The heap must not grow.
void BM_AnimationChurn100kFrames(benchmark::State& state) {
  Scene scene(40);
  std::size_t completions = 0;
  ZelBasicAnimation flash("opacity");
  flash.setFromValue(0.0);
  flash.setToValue(1.0);
  flash.setDuration(0.125);
  flash.setAutoreverses(true);
  flash.setCompletion([&completions](bool) { ++completions; });
  auto churn = [&](int frames) {
    for (int f = 0; f < frames; ++f) {
      ZelLayer* l = scene.layers[std::size_t(f) % scene.layers.size()];
      l->addAnimation(flash, "flash");
      if (f % 7 == 0) scene.layers[std::size_t(f / 7) % scene.layers.size()]->removeAnimationForKey("pulse");
      if (f % 5 == 0) scene.layers[std::size_t(f / 5) % scene.layers.size()]->addAnimation(pulse(), "pulse");
      scene.frame();
    }
  };
  churn(2000);  // warm up: vectors reach their working capacity
  double before = double(mallinfo2().uordblks);
  for (auto _ : state) churn(100000);
  double after = double(mallinfo2().uordblks);
  state.counters["heap_growth_bytes"] = after - before;
  state.counters["completions"] = double(completions);
  state.counters["frames_per_second_run"] =
      benchmark::Counter(100000.0 * double(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_AnimationChurn100kFrames)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
