// Renders Tollhum's whole editor to PNG files for looking at: the main view
// with its meter showing a tone that rings the strings, the advanced and
// presets drawers and the mono layout, in both themes at scale 1 and 2.
//
//   zel-render-tollhum [OUTPUT-DIRECTORY]
//
// Writes tollhum-{main,advanced,presets,mono}-{light,dark}@{1,2}x.png.
#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "editor/ZelGenericUI.h"
#include "model/ZelConfig.h"
#include "products/tollhum/sketch/ZelTollhumParameterSketch.h"
#include "products/tollhum/unit/ZelTollhumUnit.h"
#include "tests/support/RenderTool.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"

using namespace zel;
using namespace zel::render_tool;

namespace {

// Echoes every change back, as a host does, and into the unit.
class EchoHost final : public ZelGenericUIDelegate {
 public:
  EchoHost(ZelRunLoop& loop, ZelTollhumUnit& unit) : loop_(loop), unit_(unit) {}
  ~EchoHost() { loop_.cancelAllForTarget(this); }
  void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) override {
    unit_.setParameter(static_cast<int>(key), value);
    loop_.schedule(0, [&ui, key, value] { ui.updateParameterKeyed(key, value); }, {this, "echo"});
  }

 private:
  ZelRunLoop& loop_;
  ZelTollhumUnit& unit_;
};

struct Scene {
  ZelVirtualClock clock{10};
  ZelRunLoop loop{clock};
  const ZelConfig& config;
  ZelWindow window;
  ZelOffscreenWindowHost host;
  ZelTollhumUnit unit{2, 48000};
  EchoHost echo{loop, unit};
  ZelGenericUI* ui = nullptr;

  Scene(const ZelConfig& c, double scale) : config(c), window(loop, c.preferredSize()), host(window, scale) {
    ZelRunLoop::setCurrent(&loop);
    const CGSize size = config.preferredSize();
    auto editor = std::make_unique<ZelGenericUI>(CGRectMake(0, 0, size.width, size.height), &config, &loop);
    ui = editor.get();
    window.setContentView(std::move(editor));
    window.setKeyWindow(true);
    ui->setDelegate(&echo);
    ui->setMeteringCallback(ZelTollhumMeteringCallbackFor(&unit.meter()));
    ui->startDeferredDrawerStep();
    ui->setHasFocus(true);
    for (ZelParameterControl* control : std::vector<ZelParameterControl*>(ui->parameterControls()))
      ui->updateParameterKeyed(control->parameter()->pid, control->parameter()->initialValue);
    ui->setChannelsIn(2, 2);
    ui->addSketchWithSubclass([](CGRect frame, const ZelConfig& cfg) -> std::unique_ptr<ZelParameterSketch> {
      return std::make_unique<ZelTollhumParameterSketch>(frame, &cfg);
    });
    run(1.5);
  }
  ~Scene() {
    window.setContentView(std::make_unique<ZelView>());
    ZelRunLoop::setCurrent(nullptr);
  }
  void run(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }
  // Plays a plucked tone at the Note's octave through the unit for `seconds`.
  void play(double seconds, double hertz) {
    const auto n = static_cast<std::size_t>(seconds * 48000);
    std::vector<float> l(n), r(n);
    for (std::size_t i = 0; i < n; ++i) {
      const double t = double(i) / 48000;
      l[i] = static_cast<float>(0.5 * std::exp(-3 * t) * std::sin(2 * std::numbers::pi * hertz * t));
      r[i] = 0.7f * l[i];
    }
    const float* in[2] = {l.data(), r.data()};
    float* out[2] = {l.data(), r.data()};
    unit.process(in, out, static_cast<std::uint32_t>(n));
  }
};

}  // namespace

int main(int argc, char** argv) {
  const std::string dir = argc > 1 ? argv[1] : ".";
  ZelConfigLoad load = ZelConfig::loadFile(TOLLHUM_CONFIG);
  int failures = 0;
  InBothThemes([&](const char* theme) {
    for (double scale : {1.0, 2.0}) {
      auto shoot = [&](const char* name, auto&& prepare) {
        Scene scene(*load.config, scale);
        prepare(scene);
        if (!ReportStill(StillPath(dir, "tollhum", name, theme, scale),
                         scene.host.renderToPNG(StillPath(dir, "tollhum", name, theme, scale))))
          ++failures;
      };
      shoot("main", [](Scene& s) {
        s.ui->requestPresetNamed("Harp Wash");
        s.run(0.5);
        s.play(0.6, 196);
        s.ui->focus().bringParameterControlIntoFocus(s.ui->parameterControlWithCodename("Note"));
        s.run(0.5);
      });
      shoot("advanced", [](Scene& s) { s.ui->drawers().toggleAdvancedDrawer(); s.run(1.0); });
      shoot("presets", [](Scene& s) { s.ui->requestPresetNamed("Tanpura Drone"); s.ui->drawers().togglePresetsDrawer(); s.run(1.0); });
      shoot("mono", [](Scene& s) { s.ui->setChannelsIn(1, 1); s.ui->drawers().toggleAdvancedDrawer(); s.run(1.0); });
    }
    return true;
  });
  std::printf("%s\n", failures ? "some files could not be written" : "done");
  return failures ? 1 : 0;
}
