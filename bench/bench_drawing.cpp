// Drawing through the cairo backend into the offscreen host: a full redraw
// of a 480 × 380 window (a texture-pattern backdrop, 40 labelled views with
// a name, a value and a hairline) at scale 1 and 2, and the redraw of an
// invalidated 60 × 200 area.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelView.h"

using namespace zel;

namespace {

// A seamless noise tile at double resolution: 200 × 200 pixels for a
// 100 × 100 point cell.
std::shared_ptr<const ZelImage> noiseTile() {
  auto tile = std::make_shared<ZelImage>(200, 200);
  std::uint32_t seed = 12345;
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 200; ++x) {
      seed = seed * 1664525u + 1013904223u;
      std::uint32_t v = 220 + ((seed >> 24) & 0x1F);
      tile->setPixel(x, y, 0xFF000000u | v << 16 | (v - 4) << 8 | (v - 10));
    }
  }
  return tile;
}

class BackdropView : public ZelView {
 public:
  BackdropView(CGRect frame, std::shared_ptr<const ZelImage> tile) : ZelView(frame), tile_(std::move(tile)) {}
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    ctx.setFillPattern(tile_, CGSizeMake(100, 100));
    ctx.fillRect(bounds());
  }

 private:
  std::shared_ptr<const ZelImage> tile_;
};

// A stand-in for a parameter control: a rounded well, a value and a label.
class LabelledView : public ZelView {
 public:
  LabelledView(CGRect frame, std::string label, std::string value)
      : ZelView(frame), label_(std::move(label)), value_(std::move(value)) {}
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    CGRect b = bounds();
    ZelPath well = ZelPath::roundedRect(CGRectMake(4, 20, b.size.width - 8, b.size.height - 24), 6);
    ctx.setFillColor(ZelColor::grey(0, 0.06));
    ctx.fillPath(well);
    ctx.setFillColor(ZelColor::grey(0.1));
    drawCentred(ctx, value_, ZelFont{ZelFontFace::Medium, 14}, b.size.height / 2 + 4);
    ctx.setFillColor(ZelColor::grey(0.1, 0.8));
    drawCentred(ctx, label_, ZelFont{ZelFontFace::Medium, 10}, 6);
    ctx.setFillColor(ZelColor::grey(0.1, 0.45));
    ctx.fillRect(CGRectMake(0, 0, b.size.width, 0.5));
  }

 private:
  void drawCentred(ZelGraphicsContext& ctx, const std::string& s, const ZelFont& font, double baseline) {
    ZelTextMetrics m = ctx.measureText(s, font);
    ctx.drawText(s, font, {(bounds().size.width - m.width) / 2, baseline});
  }
  std::string label_, value_;
};

struct Scene {
  explicit Scene(double scale) : host(window, scale) {
    host.setAutoDisplay(false);
    ZelView* root = window.contentView();
    root->addSubview(std::make_unique<BackdropView>(CGRectMake(0, 0, 480, 380), noiseTile()));
    const char* names[] = {"Threshold", "Ratio", "Attack", "Release", "Knee", "Makeup", "Mix", "Output"};
    for (int i = 0; i < 40; ++i) {
      char value[32];
      std::snprintf(value, sizeof value, "%.1f dB", -30.0 + i * 1.5);
      CGRect frame = CGRectMake(8 + (i % 8) * 58, 8 + (i / 8) * 72, 56, 68);
      root->addSubview(std::make_unique<LabelledView>(frame, names[i % 8], value));
    }
    host.renderAll();  // warm the caches (surfaces, fonts, laid-out lines)
  }
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};
  ZelOffscreenWindowHost host;
};

void BM_FullRedraw(benchmark::State& state) {
  Scene scene(static_cast<double>(state.range(0)));
  for (auto _ : state) {
    scene.window.setNeedsDisplay();
    benchmark::DoNotOptimize(scene.host.displayIfNeeded().size());
  }
}
BENCHMARK(BM_FullRedraw)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_InvalidatedAreaRedraw(benchmark::State& state) {
  Scene scene(static_cast<double>(state.range(0)));
  for (auto _ : state) {
    scene.window.invalidate(CGRectMake(124, 90, 60, 200));
    benchmark::DoNotOptimize(scene.host.displayIfNeeded().size());
  }
}
BENCHMARK(BM_InvalidatedAreaRedraw)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

}  // namespace
