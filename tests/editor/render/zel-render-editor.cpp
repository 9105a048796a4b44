// Renders the whole editor from a description to PNG files for looking at:
// the main view, each drawer, power off, a mono channel layout and a drawer
// half-way through its transition, in both themes at scale 1 and 2.
//
//   zel-render-editor [OUTPUT-DIRECTORY] [DESCRIPTION.plist]
//
// Writes editor-{main,advanced,presets,poweroff,mono,opening}-{light,dark}@{1,2}x.png.
#include <cstdio>
#include <memory>
#include <string>

#include "editor/ZelGenericUI.h"
#include "model/ZelConfig.h"
#include "tests/support/RenderTool.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"

using namespace zel;
using namespace zel::render_tool;

namespace {

// Echoes every change back, as a host does.
class EchoHost final : public ZelGenericUIDelegate {
 public:
  explicit EchoHost(ZelRunLoop& loop) : loop_(loop) {}
  ~EchoHost() { loop_.cancelAllForTarget(this); }
  void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) override {
    loop_.schedule(0, [&ui, key, value] { ui.updateParameterKeyed(key, value); }, {this, "echo"});
  }

 private:
  ZelRunLoop& loop_;
};

struct Scene {
  ZelVirtualClock clock{10};
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};
  ZelOffscreenWindowHost host;
  EchoHost echo{loop};
  ZelGenericUI* ui = nullptr;

  Scene(const ZelConfig& config, double scale) : host(window, scale) {
    ZelRunLoop::setCurrent(&loop);
    auto editor = std::make_unique<ZelGenericUI>(CGRectMake(0, 0, 480, 380), &config, &loop);
    ui = editor.get();
    window.setContentView(std::move(editor));
    window.setKeyWindow(true);
    ui->setDelegate(&echo);
    ui->startDeferredDrawerStep();
    ui->setHasFocus(true);
    for (ZelParameterControl* c : std::vector<ZelParameterControl*>(ui->parameterControls()))
      ui->updateParameterKeyed(c->parameter()->pid, c->parameter()->initialValue);
    ui->setChannelsIn(2, 2);
    run(1.1);
  }
  ~Scene() {
    window.setContentView(std::make_unique<ZelView>());
    ZelRunLoop::setCurrent(nullptr);
  }
  void run(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }
};

}  // namespace

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : ".";
  const std::string path = argc > 2 ? argv[2] : std::string(ZEL_RESOURCES_DIR) + "/config.plist";
  ZelConfigLoad load = ZelConfig::loadFile(path);
  int failures = 0;
  InBothThemes([&](const char* theme) {
    for (double scale : {1.0, 2.0}) {
      auto shoot = [&](const char* name, auto&& prepare) {
        Scene scene(*load.config, scale);
        prepare(scene);
        if (!scene.host.renderToPNG(StillPath(dir, "editor", name, theme, scale))) ++failures;
      };
      shoot("main", [](Scene& s) {
        s.ui->updateParameterNamed("Degrade", 35);
        s.ui->updateParameterNamed("LowCut", 120);
        s.ui->focus().bringParameterControlIntoFocus(s.ui->parameterControlWithCodename("Drive"));
        s.run(1.0);
      });
      shoot("advanced", [](Scene& s) { s.ui->drawers().toggleAdvancedDrawer(); s.run(1.0); });
      shoot("presets", [](Scene& s) { s.ui->requestPresetNamed("Telephone"); s.ui->drawers().togglePresetsDrawer(); s.run(1.0); });
      shoot("poweroff", [](Scene& s) { s.ui->updateParameterKeyed(0, 0); s.run(1.0); });
      shoot("mono", [](Scene& s) { s.ui->setChannelsIn(1, 1); s.ui->drawers().toggleAdvancedDrawer(); s.run(1.0); });
      shoot("opening", [](Scene& s) { s.ui->drawers().toggleAdvancedDrawer(); s.run(0.1); });
    }
    return true;
  });
  std::printf("%s\n", failures ? "some files could not be written" : "done");
  return failures ? 1 : 0;
}
