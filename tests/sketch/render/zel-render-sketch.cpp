// Renders the product's sketch in a power box (62 x 380, the product's
// PowerBox clump) at a few settings, in both themes at scale 1 and 2, to
// PNG files for looking at:
//
//   zel-render-sketch [OUTPUT-DIRECTORY]   (default: the current one)
//
// Writes sketch-{flat,highpass,lowpass,degraded}-{light,dark}@{1,2}x.png.
#include <memory>
#include <string>
#include <vector>

#include "editor/ZelPowerBox.h"
#include "editor/ZelPowerBoxSketchHost.h"
#include "model/ZelConfig.h"
#include "sketch/ZelVantryParameterSketch.h"
#include "tests/support/RenderTool.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"

using namespace zel;
using namespace zel::render_tool;

namespace {

using Sketch = ZelVantryParameterSketch;

struct Setting {
  const char* name;
  float degrade, lowCut, highCut, slope, mix;
};

constexpr Setting kSettings[] = {
    {"flat", 0, 20, 20000, 6, 100},
    {"highpass", 0, 500, 20000, 24, 100},
    {"lowpass", 0, 20, 2000, 12, 100},
    {"degraded", 100, 20, 20000, 6, 100},
};

struct Scene {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {62, 380}};
  std::unique_ptr<ZelConfig> config = ZelConfig::configNamed("config", ZEL_RESOURCES_DIR);
  std::unique_ptr<ZelPowerBoxSketchHost> sketchHost;
  Sketch* sketch = nullptr;

  Scene() {
    ZelRunLoop::setCurrent(&loop);
    auto root = std::make_unique<Backdrop>(CGRectMake(0, 0, 62, 380));
    auto box = MakePowerBox(*config, CGRectMake(0, 0, 62, 380));
    sketchHost = std::make_unique<ZelPowerBoxSketchHost>(box.get());
    auto made = std::make_unique<Sketch>(box->sketchArea(), config.get());
    made->setPowerbox(sketchHost.get());
    sketch = box->addSubview(std::move(made));
    root->addSubview(std::move(box));
    window.setContentView(std::move(root));
  }
  ~Scene() {
    window.setContentView(nullptr);
    ZelRunLoop::setCurrent(nullptr);
  }

  void show(const Setting& s) {
    std::vector<float> v(static_cast<std::size_t>(config->numParameters()), 0);
    config->enumerateParameters([&v](const ZelParameter& p, const ZelClump&) {
      if (p.pid >= 0 && static_cast<std::size_t>(p.pid) < v.size()) v[static_cast<std::size_t>(p.pid)] = p.initialValue;
    });
    v[Sketch::kDegradePid] = s.degrade;
    v[Sketch::kLowCutPid] = s.lowCut;
    v[Sketch::kHighCutPid] = s.highCut;
    v[Sketch::kSlopePid] = s.slope;
    v[Sketch::kMixPid] = s.mix;
    sketch->updateWithParameterValues(v, std::vector<std::uint8_t>(v.size(), 1), true);
    ZelRunVirtualTime(loop, clock, clock.now() + 1.0);  // the animation runs out
  }
};

bool render(const std::string& dir, const Setting& s, const char* theme, double scale) {
  Scene scene;
  ZelOffscreenWindowHost host(scene.window, scale);
  scene.show(s);
  const std::string path = StillPath(dir, "sketch", s.name, theme, scale);
  return ReportStill(path, host.renderToPNG(path) && !scene.sketch->isDisplayLinkRunning());
}

}  // namespace

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : ".";
  const bool ok = InBothThemes([&dir](const char* theme) {
    bool shot = true;
    for (const Setting& s : kSettings)
      for (double scale : {1.0, 2.0}) shot = render(dir, s, theme, scale) && shot;
    return shot;
  });
  return ok ? 0 : 1;
}
