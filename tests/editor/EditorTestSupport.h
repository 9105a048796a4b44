// The editor under test: a small description built in code (or the
// product's), a window on a null backend, the virtual clock, and a host that
// records what the editor tells it and, like a real host, echoes every change
// back through the run loop.
#pragma once

#include <cstdio>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editor/ZelGenericUI.h"
#include "editor/ZelPresetBar.h"
#include "model/ZelConfig.h"
#include "tests/support/PlistShorthand.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"

namespace zel::editor_test {

using namespace plist_shorthand;
inline ZelPlist Names(std::vector<const char*> names) {
  Array a;
  for (const char* n : names) a.push_back(S(n));
  return A(std::move(a));
}

inline ZelPlist Param(std::int64_t pid, const char* name, std::int64_t index, double max, double initial,
                      Dict more = {}) {
  Dict d{{"pid", I(pid)},           {"codesafeName", S(name)}, {"name", S(name)},         {"indexInClump", I(index)},
         {"minValue", N(0)},        {"maxValue", N(max)},      {"initialValue", N(initial)}, {"granularity", N(1)},
         {"fineGranularity", N(0.1)}, {"coarseGranularity", N(10)}, {"unit", S("Generic")}};
  for (auto& [k, v] : more) d[k] = v;
  return D(std::move(d));
}

inline ZelPlist Clump(const char* name, const char* type, Array parameters) {
  return D({{"metadata", D({{"name", S(name)}, {"codesafeName", S(name)}, {"clumpType", S(type)}})},
            {"parameters", A(std::move(parameters))}});
}

// A preset value set naming every parameter but the wildcard Power.
inline ZelPlist FullSet(double a, double b, double mode) {
  return D({{"A", N(a)}, {"B", N(b)}, {"Mode", N(mode)}, {"Width", N(100)}, {"R", N(0)}, {"C", N(1)},
            {"Stray", N(0)}, {"Adv", N(0)}, {"Toggle", N(0)}});
}

// pid: 0 Power (global scope, wildcard), 1 A, 2 B, 3 Mode (0..2, dims
// Width at 1), 4 Width, 5 R (rules on A, B, Width), 6 C (clump scope),
// 7 Adv, 8 Toggle (boolean; both advanced), and Stray with pid 42 (outside
// the memo). Tab order A, B, Mode, Width, Adv, Toggle. Presets: Init (the
// initial values), Warm (A 50, B 20, Mode 1), Cold (only A 90).
inline std::unique_ptr<ZelConfig> SmallConfig(bool withAdvanced = true, bool withPresets = true) {
  Array clumps;
  clumps.push_back(Clump(
      "Main", "Normal",
      {Param(1, "A", 0, 100, 10, {{"minimalName", S("a")}}), Param(2, "B", 1, 100, 0),
       Param(3, "Mode", 2, 2, 0,
             {{"unit", S("Indexed")},
              {"controlType", S("Cycle")},
              {"stringValues", Names({"Stereo", "Mono", "Mid/Side"})},
              {"dims", A({Names({}), Names({"Width"}), Names({})})},
              {"channelLayoutRules", A({D({{"map", A({I(1), I(1)})}, {"disabled", B(true)}, {"immutable", I(1)}}),
                                        D({{"map", A({I(2), I(1)})}, {"immutable", I(2)}})})}}),
       Param(4, "Width", 3, 100, 100,
             {{"channelLayoutRules", A({D({{"map", A({I(1), I(1)})}, {"disabled", B(true)}})})}})}));
  clumps.push_back(Clump(
      "Rules", "Normal",
      {Param(5, "R", 0, 3, 0,
             {{"highlights", A({Names({"A"}), Names({"B"})})},
              {"disables", A({Names({}), Names({"B", "Ghost"})})},
              {"hides", A({Names({}), ZelPlist::string("not an array"), Names({"Width"})})},
              {"dims", S("malformed")}}),
       Param(6, "C", 1, 1, 1, {{"scope", S("clump")}}), Param(42, "Stray", 2, 1, 0)}));
  if (withAdvanced) {
    clumps.push_back(Clump("Adv", "Advanced",
                           {Param(7, "Adv", 0, 100, 0),
                            Param(8, "Toggle", 1, 1, 0, {{"unit", S("Boolean")}, {"controlType", S("Boolean")}})}));
  }
  clumps.push_back(Clump("Power", "PowerBox",
                         {Param(0, "Power", 0, 1, 1,
                                {{"unit", S("Boolean")},
                                 {"controlType", S("Boolean")},
                                 {"scope", S("global")},
                                 {"presetWildcard", B(true)},
                                 {"minimalName", S("pwr")}})}));
  Dict top{{"clumps", A(std::move(clumps))},
           {"metadata", D({{"classPrefix", S("ZelTest")},
                           {"pluginURLSlug", S("tst")},
                           {"version", S("2.0")},
                           {"tabOrder", Names({"A", "B", "Mode", "Width", "Adv", "Toggle"})}})}};
  if (withPresets) {
    top["presets"] = D({{"pid", I(99)},
                        {"codesafeName", S("Presets")},
                        {"controlType", S("Preset")},
                        {"unit", S("Indexed")},
                        {"minValue", N(0)},
                        {"maxValue", N(2)},
                        {"granularity", N(1)},
                        {"fineGranularity", N(1)},
                        {"coarseGranularity", N(1)},
                        {"stringValues", Names({"Init", "Warm", "Cold"})},
                        {"values", A({FullSet(10, 0, 0), FullSet(50, 20, 1), D({{"A", N(90)}})})}});
  }
  return std::make_unique<ZelConfig>(D(std::move(top)));
}

inline std::unique_ptr<ZelConfig> ProductConfig() { return ZelConfig::configNamed("config", ZEL_RESOURCES_DIR); }

// Records the editor's calls; echoes updates through the run loop as a host
// does (its listener queues them to the main thread).
class RecordingHost final : public ZelGenericUIDelegate {
 public:
  struct Update {
    std::int64_t pid;
    float value;
    friend bool operator==(const Update&, const Update&) = default;
  };

  explicit RecordingHost(ZelRunLoop& loop) : loop_(loop) {}
  ~RecordingHost() { loop_.cancelAllForTarget(this); }

  void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) override {
    updates.push_back({key, value});
    if (echo) loop_.schedule(0, [&ui, key, value] { ui.updateParameterKeyed(key, value); }, {this, "echo"});
  }
  void interfaceBeganInteractionWithParameterKeyed(ZelGenericUI&, std::int64_t key) override { begins.push_back(key); }
  void interfaceEndedInteractionWithParameterKeyed(ZelGenericUI&, std::int64_t key) override { ends.push_back(key); }
  void interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI&, const std::string& name) override {
    presets.push_back(name);
  }
  void interfaceDidUpdateInterfacePreference(ZelGenericUI&, std::string_view key, double value) override {
    char number[32];
    std::snprintf(number, sizeof number, "%g", value);
    prefs.push_back(std::string(key) + "=" + number);
  }

  bool echo = true;
  std::vector<Update> updates;
  std::vector<std::int64_t> begins, ends;
  std::vector<std::string> presets, prefs;

 private:
  ZelRunLoop& loop_;
};

// An editor in a window, set up as a host sets it up: delegate, deferred
// drawer step, every current value reported, then 1.1 s of virtual time.
class EditorHarness {
 public:
  explicit EditorHarness(std::unique_ptr<ZelConfig> config) : config_(std::move(config)) {
    ZelRunLoop::setCurrent(&loop);
    window.setPlatformWindow(&platform);
    window.setKeyWindow(true);
    auto editor = std::make_unique<ZelGenericUI>(CGRectMake(0, 0, 480, 380), config_.get(), &loop);
    ui = editor.get();
    window.setContentView(std::move(editor));
    ui->setDelegate(&host);
    ui->startDeferredDrawerStep();
    for (ZelParameterControl* c : std::vector<ZelParameterControl*>(ui->parameterControls()))
      ui->updateParameterKeyed(c->parameter()->pid, c->parameter()->initialValue);
    run(1.1);
    host.updates.clear();
  }
  ~EditorHarness() {
    closeEditor();
    window.setPlatformWindow(nullptr);
    ZelRunLoop::setCurrent(nullptr);
  }

  // Runs delayed calls and animation frames for `seconds` of virtual time.
  void run(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }
  void closeEditor() {
    if (!ui) return;
    window.setContentView(std::make_unique<ZelView>());
    ui = nullptr;
  }

  const ZelConfig& config() const { return *config_; }
  ZelParameterControl& control(const char* name) const {
    ZelParameterControl* c = ui->parameterControlWithCodename(name);
    if (!c) throw std::runtime_error(std::string("no control ") + name);
    return *c;
  }
  float memo(std::int64_t pid) const { return ui->values().memoizedPValues()[static_cast<std::size_t>(pid)]; }
  // What a user's change through the primary control does.
  void userSets(const char* name, float value) {
    ZelFloatControl* primary = control(name).primaryControl();
    primary->setFloatValue(value);
    primary->reportInterfaceInitiatedValueChange();
  }
  ZelParameterControl* presetControl() const { return ui->presetBar()->presetControl(); }
  std::size_t snapshots() const { return ui->keyboard().undoRedoStack().stack().size(); }

  ZelVirtualClock clock{100};
  ZelRunLoop loop{clock};

 private:
  std::unique_ptr<ZelConfig> config_;

 public:
  ZelNullPlatformWindow platform{loop};
  ZelWindow window{loop, CGSizeMake(480, 380)};
  RecordingHost host{loop};
  ZelGenericUI* ui = nullptr;
};

}  // namespace zel::editor_test
