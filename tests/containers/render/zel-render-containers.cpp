// Renders the containers as the editor arranges them (clumps, power box,
// preset bar, the advanced drawer and the presets drawer) in both themes at
// scale 1 and 2, to PNG files for looking at:
//
//   zel-render-containers [OUTPUT-DIRECTORY]   (default: the current one)
//
// Writes containers-{main,advanced,presets}-{light,dark}@{1,2}x.png.
#include <memory>
#include <string>

#include "controls/ZelParameterControl.h"
#include "editor/ZelDrawerView.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "layout/views/ZelClumpView.h"
#include "layout/views/ZelClumpsView.h"
#include "model/ZelConfig.h"
#include "tests/support/RenderTool.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"

using namespace zel;
using namespace zel::render_tool;

namespace {

void addClumps(ZelClumpsView& into, const ZelConfig& config, ZelClumpType type) {
  config.enumerateClumpsOfType(type, [&](const ZelClump& clump) {
    into.addSubview(std::make_unique<ZelClumpView>(into.layout()->frameForIndex(clump.cid), &clump));
  });
}

// The advanced clumps view, with the HQ control moved into it.
std::unique_ptr<ZelClumpsView> makeAdvanced(const ZelConfig& config, CGRect bounds) {
  auto adv = std::make_unique<ZelClumpsView>(bounds, &config);
  adv->setInset(14);
  adv->setDrawOutsideBorder(true);
  adv->setLayout(config.advancedLayoutForBounds(CGRectInset(bounds, 14, 14)));
  addClumps(*adv, config, ZelClumpType::Advanced);
  std::vector<std::unique_ptr<ZelParameterControl>> displaced;
  for (const auto& sub : adv->subviews()) {
    auto* clumpView = dynamic_cast<ZelClumpView*>(sub.get());
    for (ZelParameterControl* control : clumpView->parameterControls())
      if (auto taken = clumpView->takeDisplacedControl(control)) displaced.push_back(std::move(taken));
  }
  for (auto& control : displaced) adv->addSubview(std::move(control));
  return adv;
}

struct Editor {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};
  std::unique_ptr<ZelConfig> config = ZelConfig::configNamed("config", ZEL_RESOURCES_DIR);
  ZelDrawerView* advanced = nullptr;
  ZelPresetsDrawer* presets = nullptr;

  Editor() {
    ZelRunLoop::setCurrent(&loop);
    auto root = std::make_unique<Backdrop>(CGRectMake(0, 0, 480, 380));
    const CGRect clumpsRect = CGRectMake(0, 30, 418, 350);
    auto clumps = std::make_unique<ZelClumpsView>(clumpsRect, config.get());
    clumps->setInset(config->metadata().inset);
    clumps->setLayout(config->pluginLayoutForBounds(clumps->bounds()));
    addClumps(*clumps, *config, ZelClumpType::Normal);
    root->addSubview(std::move(clumps));
    root->addSubview(MakePowerBox(*config, CGRectMake(418, 0, 62, 380)));
    root->addSubview(std::make_unique<ZelPresetBar>(CGRectMake(0, 0, 418, 30), config->presets()));
    advanced = root->addSubview(std::make_unique<ZelDrawerView>(clumpsRect, config.get(), false));
    advanced->contentView()->addSubview(makeAdvanced(*config, advanced->bounds()));
    presets = root->addSubview(std::make_unique<ZelPresetsDrawer>(clumpsRect, config.get(), false));
    presets->presetSelected(8);
    window.setContentView(std::move(root));
  }
  ~Editor() { ZelRunLoop::setCurrent(nullptr); }
};

bool renderScene(const std::string& dir, const char* scene, const char* theme, double scale) {
  Editor editor;
  editor.advanced->setPresented(std::string(scene) == "advanced");
  editor.presets->setPresented(std::string(scene) == "presets");
  ZelOffscreenWindowHost host(editor.window, scale);
  const std::string path = StillPath(dir, "containers", scene, theme, scale);
  return ReportStill(path, host.renderToPNG(path));
}

}  // namespace

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : ".";
  const bool ok = InBothThemes([&dir](const char* theme) {
    bool shot = true;
    for (const char* scene : {"main", "advanced", "presets"})
      for (double scale : {1.0, 2.0}) shot = renderScene(dir, scene, theme, scale) && shot;
    return shot;
  });
  return ok ? 0 : 1;
}
