// The product's editor for the fuzz targets: built once from
// resources/config.plist in a window on the null backend with a virtual
// clock, as the editor tests build it, behind a host that echoes every
// change back through the run loop. Every value the editor sends the host
// must be finite and inside its parameter's range; check() aborts otherwise.
#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "editor/ZelGenericUI.h"
#include "editor/ZelKeyboardHandler.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace zel::fuzz {

class EchoHost final : public ZelGenericUIDelegate {
 public:
  explicit EchoHost(ZelRunLoop& loop) : loop_(loop) {}
  ~EchoHost() { loop_.cancelAllForTarget(this); }

  void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) override {
    const ZelParameter* p = config->parameterForPid(key);
    if (!p) fail("an update for an unknown pid", key, value);
    if (!std::isfinite(value) || value < p->minValue || value > p->maxValue)
      fail("an update outside the parameter's range", key, value);
    loop_.schedule(0, [&ui, key, value] { ui.updateParameterKeyed(key, value); }, {this, "echo"});
  }
  void interfaceBeganInteractionWithParameterKeyed(ZelGenericUI&, std::int64_t) override { ++open; }
  void interfaceEndedInteractionWithParameterKeyed(ZelGenericUI&, std::int64_t) override { --open; }
  void interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI&, const std::string&) override {}
  void interfaceDidUpdateInterfacePreference(ZelGenericUI&, std::string_view, double) override {}

  [[noreturn]] static void fail(const char* what, std::int64_t pid, float value) {
    std::fprintf(stderr, "fuzz: %s: pid %lld value %g\n", what, static_cast<long long>(pid), double(value));
    std::abort();
  }

  const ZelConfig* config = nullptr;
  int open = 0;  // gestures begun and not ended

 private:
  ZelRunLoop& loop_;
};

class Editor {
 public:
  Editor() : config_(ZelConfig::configNamed("config", ZEL_RESOURCES_DIR)) {
    if (!config_) {
      std::fprintf(stderr, "fuzz: cannot read config.plist in %s\n", ZEL_RESOURCES_DIR);
      std::abort();
    }
    host.config = config_.get();
    ZelRunLoop::setCurrent(&loop);
    window.setPlatformWindow(&platform);
    window.setKeyWindow(true);
    auto editor = std::make_unique<ZelGenericUI>(CGRectMake(0, 0, 480, 380), config_.get(), &loop);
    ui = editor.get();
    window.setContentView(std::move(editor));
    ui->setDelegate(&host);
    ui->startDeferredDrawerStep();
    resetValues();
    run(1.1);
  }

  // Every parameter back at its initial value, reported as the host does.
  void resetValues() {
    for (ZelParameterControl* c : std::vector<ZelParameterControl*>(ui->parameterControls()))
      ui->updateParameterKeyed(c->parameter()->pid, c->parameter()->initialValue);
  }
  void run(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }

  // Every control shows a finite value in its range; no gesture left open.
  void check() const {
    for (const ZelParameterControl* c : ui->parameterControls()) {
      const ZelParameter* p = c->parameter();
      const float v = c->floatValue();
      if (!std::isfinite(v) || v < p->minValue || v > p->maxValue)
        EchoHost::fail("a control outside its range", p->pid, v);
    }
    if (host.open != 0) EchoHost::fail("a gesture without its end", -1, float(host.open));
  }

  ZelVirtualClock clock{100};
  ZelRunLoop loop{clock};

 private:
  std::unique_ptr<ZelConfig> config_;

 public:
  ZelNullPlatformWindow platform{loop};
  ZelWindow window{loop, CGSizeMake(480, 380)};
  EchoHost host{loop};
  ZelGenericUI* ui = nullptr;
};

}  // namespace zel::fuzz
