// The host view between the editor and a unit: start-up, both directions of
// values with their conversions and echo marks, presets, the theme toggle,
// channel counts, focus, failed calls and teardown. A fake unit stands for
// the connection and records what the view asks of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "editor/ZelPresetBar.h"
#include "host/ZelHostView.h"
#include "host/ZelMeterLevels.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"

namespace {

using namespace zel;

// A unit holding values in its own representation (frequencies as linear
// positions), telling its listeners synchronously, as a listener does.
struct FakeUnit final : ZelUnitConnection {
  std::array<float, 12> values{1, 0, 0, 0, 20, 20000, 12, 100, 0, -96, 0, 100};
  std::set<ZelUnitParameterListener*> listeners;
  std::set<std::uint32_t> listened;
  std::vector<std::string> calls;
  std::map<std::string, ZelUnitStatus> failures;  // operation -> status
  std::vector<std::pair<ZelUnitGesture, std::uint32_t>> gestures;
  std::vector<bool> preferences;
  std::string presetName;
  std::uint32_t in = 2, out = 2;
  bool echoes = true;

  ZelUnitStatus call(const std::string& op) {
    calls.push_back(op);
    auto it = failures.find(op);
    return it == failures.end() ? kZelUnitNoErr : it->second;
  }
  void tell(const void* sender, std::uint32_t pid) {
    if (!listened.count(pid)) return;
    for (auto* l : listeners) l->parameterListener(sender, pid, values[pid]);
  }
  // A change made by the host or automation.
  void hostSets(std::uint32_t pid, float value) {
    if (pid < values.size()) values[pid] = value;
    for (auto* l : listeners) l->parameterListener(nullptr, pid, value);
  }

  ZelUnitStatus getParameter(std::uint32_t pid, float& value) override {
    if (auto s = call("get"); s) return s;
    if (pid >= values.size()) return kZelUnitInvalidParameter;
    value = values[pid];
    return kZelUnitNoErr;
  }
  ZelUnitStatus setParameter(std::uint32_t pid, float value, const void* sender) override {
    if (auto s = call("set"); s) return s;
    values.at(pid) = value;
    if (echoes) tell(sender, pid);
    return kZelUnitNoErr;
  }
  ZelUnitStatus notifyListeners(std::uint32_t pid, const void* sender) override {
    if (auto s = call("listen"); s) return s;
    tell(sender, pid);
    return kZelUnitNoErr;
  }
  ZelUnitStatus postGesture(ZelUnitGesture g, std::uint32_t pid, const void*) override {
    gestures.emplace_back(g, pid);
    return call("gesture");
  }
  ZelUnitStatus createListener(ZelUnitParameterListener* l) override {
    if (auto s = call("create"); s) return s;
    listeners.insert(l);
    return kZelUnitNoErr;
  }
  ZelUnitStatus addListenerParameter(ZelUnitParameterListener*, std::uint32_t pid) override {
    if (auto s = call("add"); s) return s;
    listened.insert(pid);
    return kZelUnitNoErr;
  }
  ZelUnitStatus removeListenerParameter(ZelUnitParameterListener*, std::uint32_t pid) override {
    listened.erase(pid);
    return call("remove");
  }
  ZelUnitStatus disposeListener(ZelUnitParameterListener* l) override {
    listeners.erase(l);
    return call("dispose");
  }
  ZelUnitStatus setInterfacePreference(bool flag) override {
    preferences.push_back(flag);
    return call("preference");
  }
  ZelUnitStatus getPresetName(std::string& name) override {
    name = presetName;
    return call("preset get");
  }
  ZelUnitStatus setPresetName(const std::string& name) override {
    presetName = name;
    return call("preset set");
  }
  ZelUnitStatus getChannelCount(ZelUnitProperty which, std::uint32_t& count) override {
    if (auto s = call(which == ZelUnitProperty::ChannelsIn ? "in" : "out"); s) return s;
    count = which == ZelUnitProperty::ChannelsIn ? in : out;
    return kZelUnitNoErr;
  }
  double zoom = 1.0;
  ZelUnitStatus getZoom(double& z) override {
    z = zoom;
    return call("zoom get");
  }
  ZelUnitStatus setZoom(double z) override {
    zoom = z;
    return call("zoom set");
  }
  ZelUnitMetering metering{};
  ZelUnitStatus getMetering(ZelUnitMetering& m) override {
    m = metering;
    return call("metering");
  }
  std::size_t count(const std::string& op) const { return std::count(calls.begin(), calls.end(), op); }
};

struct Fixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};
  ZelNullPlatformWindow platform{loop};
  FakeUnit unit;
  ZelHostView* view = nullptr;  // owned by the window
  std::vector<std::string> log;

  Fixture() {
    window.setPlatformWindow(&platform);
    open();
  }
  ~Fixture() {
    window.setContentView(std::make_unique<ZelView>());
    window.setPlatformWindow(nullptr);
  }
  // A new host view in the window, connected to the unit.
  void open(bool connect = true) {
    auto made = std::make_unique<ZelHostView>(loop, ZEL_RESOURCES_DIR);
    made->setLogSink([this](std::string_view line) { log.emplace_back(line); });
    view = made.get();
    window.setContentView(std::move(made));
    if (connect) view->setAU(&unit);
  }
  void runUntil(double t) { ZelRunVirtualTime(loop, clock, t); }
  ZelGenericUI& ui() { return *view->ui(); }
  float shown(const char* codeName) { return ui().parameterControlWithCodename(codeName)->floatValue(); }
  // The unit reports a value; the editor hears it on the next run.
  float report(std::uint32_t pid, float value) {
    unit.hostSets(pid, value);
    runUntil(clock.now());
    return ui().values().memoizedPValues()[pid];
  }
};

TEST(HostView, ConnectsInTheHostsOrder) {
  Fixture f;
  EXPECT_EQ(f.view->frame().size, CGSizeMake(480, 380));
  ASSERT_NE(f.view->ui(), nullptr);
  EXPECT_EQ(f.ui().delegate(), f.view);
  EXPECT_EQ(f.window.firstResponder(), f.view->ui());
  EXPECT_EQ(f.unit.count("create"), 1u);
  EXPECT_EQ(f.unit.listened.size(), 12u);
  // Every value read, set back and notified, in id order.
  EXPECT_EQ(f.unit.count("get"), 12u);
  EXPECT_EQ(f.unit.count("set"), 12u);
  EXPECT_EQ(f.unit.count("listen"), 12u);
  EXPECT_EQ(f.unit.count("preset get"), 1u);
  EXPECT_EQ(f.unit.count("in") + f.unit.count("out"), 2u);
  // Values arrive through the run loop, the drawers 0.1 s, the sketch 1 s later.
  f.unit.values[1] = 33;
  f.view->synchronizeUIWithParameterValues();
  EXPECT_NE(f.shown("Degrade"), 33.0f);
  f.runUntil(0);
  EXPECT_EQ(f.shown("Degrade"), 33.0f);
  EXPECT_FLOAT_EQ(f.shown("HighCut"), 20000.0f) << "position 20000 is 20 kHz";
  EXPECT_EQ(f.ui().advDrawer(), nullptr);
  f.runUntil(0.11);
  EXPECT_NE(f.ui().advDrawer(), nullptr);
  EXPECT_EQ(f.ui().sketch(), nullptr);
  f.runUntil(1.01);
  EXPECT_NE(f.ui().sketch(), nullptr);
  EXPECT_TRUE(f.log.empty());
}

TEST(HostView, EditorChangesGoToTheUnitAndTheirEchoConsumesTheMark) {
  Fixture f;
  f.runUntil(0.2);
  f.unit.echoes = false;
  f.view->interfaceUpdatedParameterKeyed(f.ui(), 1, 42);
  EXPECT_EQ(f.unit.values[1], 42.0f);
  EXPECT_EQ(f.view->outgoingValue(1), 42.0f) << "outstanding until the echo";
  f.unit.hostSets(1, 41);
  EXPECT_EQ(f.view->outgoingValue(1), 42.0f) << "another value is not the echo";
  f.unit.hostSets(1, 42);
  EXPECT_EQ(f.view->outgoingValue(1), ZelHostView::kNothingOutstanding);
  f.runUntil(0.3);
  EXPECT_EQ(f.shown("Degrade"), 42.0f) << "the echo is delivered all the same";

  // Frequencies travel as positions; ids outside the table never reach the unit.
  f.view->interfaceUpdatedParameterKeyed(f.ui(), 4, 632.4555f);
  EXPECT_NEAR(f.unit.values[4], 10010.0f, 0.05f);
  const auto sets = f.unit.count("set");
  f.view->interfaceUpdatedParameterKeyed(f.ui(), 12, 5);
  f.view->interfaceUpdatedParameterKeyed(f.ui(), -1, 5);
  EXPECT_EQ(f.unit.count("set"), sets);
}

TEST(HostView, HostValuesAreConvertedAndClamped) {
  Fixture f;
  f.runUntil(0.2);
  EXPECT_NEAR(f.report(4, 10010), 632.456f, 0.01f) << "half-way in the linear range";
  EXPECT_EQ(f.report(0, 0.3f), 1.0f) << "a switch is on for anything but 0";
  EXPECT_EQ(f.report(0, 0), 0.0f);
  EXPECT_EQ(f.report(1, 150), 100.0f);
  EXPECT_EQ(f.report(3, -30), -24.0f);
  EXPECT_EQ(f.report(8, -1), 2.0f) << "a negative whole number wraps to a large one";
  EXPECT_EQ(f.report(8, 1.9f), 1.0f) << "whole numbers truncate";
  EXPECT_EQ(f.report(5, 1e30f), 20000.0f);
  const float before = f.ui().values().memoizedPValues()[2];
  EXPECT_EQ(f.report(2, std::nanf("")), before) << "not a number moves nothing";
  // Whatever the unit claims about other ids, the editor is told 0.
  EXPECT_EQ(ZelHostView::editorValueFromUnit(12, 7), 0.0f);
  EXPECT_EQ(ZelHostView::editorValueFromUnit(8, INFINITY), 2.0f);
  // Round trips over the whole frequency range.
  for (float hz : {20.0f, 100.0f, 1000.0f, 19999.0f})
    EXPECT_NEAR(ZelHostView::editorValueFromUnit(4, ZelHostView::unitValueFromEditor(4, hz)), hz, hz * 1e-5f);
}

TEST(HostView, GesturesThemeAndPresetName) {
  Fixture f;
  f.runUntil(0.2);
  f.view->interfaceBeganInteractionWithParameterKeyed(f.ui(), 6);
  f.view->interfaceEndedInteractionWithParameterKeyed(f.ui(), 6);
  ASSERT_EQ(f.unit.gestures.size(), 2u);
  EXPECT_EQ(f.unit.gestures[0], std::make_pair(ZelUnitGesture::Begin, 6u));
  EXPECT_EQ(f.unit.gestures[1], std::make_pair(ZelUnitGesture::End, 6u));

  f.view->interfaceDidUpdateInterfacePreference(f.ui(), "theme", 1);
  EXPECT_EQ(f.unit.preferences, std::vector<bool>{true});

  f.view->requestPresetNamed("Telephone");
  f.runUntil(0.5);
  EXPECT_EQ(f.unit.presetName, "Telephone");
  EXPECT_NEAR(f.unit.values[5], ZelHostView::unitValueFromEditor(5, 3400), 0.01f) << "the preset's values reached the unit";
  // A new editor on the same unit shows the preset again.
  f.open();
  f.runUntil(1.0);
  EXPECT_EQ(f.view->lastPreset(), "Telephone");
  EXPECT_EQ(f.ui().presetBar()->presetControl()->floatValue(), 1.0f);
  EXPECT_NEAR(f.shown("HighCut"), 3400.0f, 0.5f);
}

// While the user drags a control, what the unit reports for it (a late echo
// or a host's automation, however many) never pulls the control back; the
// other controls follow the host meanwhile, and once the drag ends the
// host's values reach the control again. A flood of reports on one id lands
// as its latest value.
TEST(HostView, ADraggedControlIsNotPulledBackByTheHost) {
  Fixture f;
  f.runUntil(0.2);
  ZelFloatControl* degrade = f.ui().parameterControlWithCodename("Degrade")->primaryControl();
  f.view->interfaceBeganInteractionWithParameterKeyed(f.ui(), 1);
  for (float v : {10.0f, 20.0f, 30.0f, 40.0f}) {
    degrade->setFloatValue(v);
    degrade->reportInterfaceInitiatedValueChange();
    for (int i = 0; i < 50; ++i) f.unit.hostSets(1, v - 10);  // the host lags one step behind
    f.unit.hostSets(2, v);
    f.runUntil(f.clock.now() + 0.016);
    EXPECT_EQ(f.shown("Degrade"), v);
    EXPECT_EQ(f.ui().values().memoizedPValues()[1], v);
    EXPECT_EQ(f.shown("Drive"), v) << "another control follows the host during the drag";
  }
  EXPECT_EQ(f.unit.values[1], 30.0f) << "the unit holds the host's last word";
  f.view->interfaceEndedInteractionWithParameterKeyed(f.ui(), 1);
  f.runUntil(f.clock.now() + 0.016);
  EXPECT_EQ(f.shown("Degrade"), 40.0f) << "nothing reported during the drag arrives after it";

  EXPECT_EQ(f.report(1, 25), 25.0f) << "after the drag the host's values count again";

  // An end without a begin does not leave the control deaf.
  f.view->interfaceEndedInteractionWithParameterKeyed(f.ui(), 1);
  EXPECT_EQ(f.report(1, 26), 26.0f);

  // A host's flood (10,000 reports a second on every id froze the editor when
  // each report was a delivery of its own): one pending delivery per id.
  const std::size_t pending = f.loop.pendingCount();
  for (int i = 0; i <= 1000; ++i)
    for (std::uint32_t pid = 1; pid < 12; ++pid) f.unit.hostSets(pid, f.unit.values[pid]);
  for (int i = 0; i <= 1000; ++i) f.unit.hostSets(3, -24.0f + float(i % 48));
  EXPECT_LE(f.loop.pendingCount(), pending + 11);
  f.runUntil(f.clock.now() + 0.016);
  EXPECT_EQ(f.shown("Output"), -24.0f + float(1000 % 48));
}

TEST(HostView, WhenADragEndsTheEditorHearsItsValueAsTheEchoWouldHaveBrought) {
  Fixture f;
  f.runUntil(1.0);
  ASSERT_FALSE(f.ui().presetBar()->dirty());
  ZelFloatControl* degrade = f.ui().parameterControlWithCodename("Degrade")->primaryControl();
  f.view->interfaceBeganInteractionWithParameterKeyed(f.ui(), 1);
  degrade->setFloatValue(55);
  degrade->reportInterfaceInitiatedValueChange();  // its echo comes during the drag
  f.view->interfaceEndedInteractionWithParameterKeyed(f.ui(), 1);
  f.runUntil(2.0);
  EXPECT_EQ(f.shown("Degrade"), 55.0f);
  EXPECT_TRUE(f.ui().presetBar()->dirty()) << "the rules saw the dragged value";
}

TEST(HostView, APresetChosenInTheHostReachesThePresetBar) {
  Fixture f;
  f.runUntil(1.0);  // the values are in and checked against the first preset: clean
  ASSERT_FALSE(f.ui().presetBar()->dirty());
  f.unit.presetName = "Underwater";
  f.view->unitPresetNameChanged();
  EXPECT_EQ(f.view->lastPreset(), "Underwater");
  EXPECT_EQ(f.ui().presetBar()->presetControl()->floatValue(), 8.0f);
  // The values (defaults, not Underwater's) are checked against it: dirty.
  const auto sets = f.unit.count("set");
  f.runUntil(2.0);
  EXPECT_TRUE(f.ui().presetBar()->dirty());
  EXPECT_EQ(f.unit.count("set"), sets) << "nothing written back";
}

TEST(HostView, ZoomIsTheUnitsAndTheWindowFollowsIt) {
  Fixture f;
  std::vector<double> applied;
  f.unit.zoom = 1.76;  // snapped to a step
  auto made = std::make_unique<ZelHostView>(f.loop, ZEL_RESOURCES_DIR);
  made->setZoomHandler([&](double z) { applied.push_back(z); });
  ZelHostView* view = made.get();
  f.window.setContentView(std::move(made));
  view->setAU(&f.unit);
  EXPECT_EQ(applied, std::vector<double>{1.75}) << "connecting applies the unit's zoom";
  EXPECT_EQ(view->ui()->zoom(), 1.75);

  view->ui()->hostLink().zoomOut();
  EXPECT_EQ(f.unit.zoom, 1.5) << "the user's choice is kept by the unit";
  EXPECT_EQ(applied.back(), 1.5);
  f.unit.zoom = 2;
  view->unitZoomChanged();
  EXPECT_EQ(applied.back(), 2.0);
  EXPECT_EQ(view->ui()->zoom(), 2.0);
  // A unit without a zoom leaves the editor at 100%.
  f.unit.failures["zoom get"] = kZelUnitInvalidProperty;
  view->unitZoomChanged();
  EXPECT_EQ(applied.back(), 1.0);
  // The theme toggle still goes to its own property.
  view->interfaceDidUpdateInterfacePreference(*view->ui(), "theme", 1);
  EXPECT_EQ(f.unit.preferences, std::vector<bool>{true});
  EXPECT_EQ(f.unit.zoom, 2.0);
}

TEST(HostView, MeteringIsOfferedOnlyWhenTheUnitHasIt) {
  FakeUnit unit;
  unit.failures["metering"] = kZelUnitInvalidProperty;
  unit.metering.context = &unit;
  EXPECT_FALSE(ZelGetMeteringResult(unit).valid);
  EXPECT_EQ(ZelGetMeteringResult(unit).metering.context, nullptr);
  unit.failures.clear();
  unit.metering.function = [](void*, float*, std::uint32_t) {};
  EXPECT_TRUE(ZelGetMeteringResult(unit).valid);
  EXPECT_EQ(ZelGetMeteringResult(unit).metering.context, &unit);
}

TEST(HostView, ChannelCountsReachTheEditor) {
  Fixture f;
  f.unit.in = 1;
  f.unit.out = 1;
  f.open();
  EXPECT_TRUE(f.ui().parameterControlWithCodename("Mode")->primaryControl()->isDisabled()) << "mono: no stereo mode";
}

TEST(HostView, FocusFollowsTheWindow) {
  Fixture f;
  f.window.setKeyWindow(true);
  EXPECT_TRUE(f.ui().hasFocus());
  f.window.makeFirstResponder(nullptr);
  f.window.setKeyWindow(false);
  EXPECT_FALSE(f.ui().hasFocus());
  f.window.setKeyWindow(true);
  EXPECT_EQ(f.window.firstResponder(), f.view->ui());
  f.window.makeFirstResponder(nullptr);
  f.runUntil(0.51);
  EXPECT_EQ(f.window.firstResponder(), f.view->ui()) << "reasserted half a second later";
}

TEST(HostView, FailedCallsAreLoggedAndTheWorkGoesOn) {
  Fixture f;
  f.log.clear();
  f.unit.calls.clear();
  constexpr ZelUnitStatus kFail = 0x6C696166;  // "fail" in memory order on little-endian machines
  for (const char* op : {"create", "get", "in", "out"}) f.unit.failures[op] = op == std::string("get") ? -10878 : kFail;
  f.open();
  std::vector<std::string> expected = {
      "ZelGenericCocoaViewMM:172: AUListenerCreate() result 1818845542 6C696166 fail\n"};
  for (int i = 0; i < 12; ++i) expected.push_back("ZelGenericCocoaViewMM:192: get result -10878 FFFFD582 \x82\xD5\xFF\xFF\n");
  expected.push_back("ZelGenericCocoaViewMM:109: in result 1818845542 6C696166 fail\n");
  expected.push_back("ZelGenericCocoaViewMM:110: out result 1818845542 6C696166 fail\n");
  if (std::endian::native == std::endian::little) {
    EXPECT_EQ(f.log, expected);
  }
  EXPECT_EQ(f.unit.count("set"), 0u) << "a value that could not be read is not set back";
  ASSERT_NE(f.view->ui(), nullptr) << "the editor is there all the same";

  f.unit.failures = {{"add", kFail}, {"set", kFail}, {"listen", kFail}, {"remove", kFail}, {"dispose", kFail}};
  f.log.clear();
  f.open();
  f.view->interfaceUpdatedParameterKeyed(f.ui(), 2, 10);
  auto lines = [&](const char* text) {
    return std::count_if(f.log.begin(), f.log.end(), [&](const std::string& l) { return l.find(text) != l.npos; });
  };
  EXPECT_EQ(lines(":176: AUListenerAddParameter() result"), 12);
  EXPECT_EQ(lines(":193: set result"), 12);
  EXPECT_EQ(lines(":194: listen result"), 12);
  EXPECT_EQ(lines(":242: native ui set result"), 1);
  f.window.setContentView(std::make_unique<ZelView>());
  EXPECT_EQ(lines(":183: AUListenerRemoveParameter() result"), 12);
  EXPECT_EQ(lines(":185: AUListenerDispose() result"), 1);
}

TEST(HostView, TeardownLetsGoOfUnitAndLoop) {
  Fixture f;
  EXPECT_EQ(f.unit.listeners.size(), 1u);
  f.window.setKeyWindow(true);  // a focus call pending
  f.unit.hostSets(1, 50);        // a delivery pending
  f.window.setContentView(std::make_unique<ZelView>());
  EXPECT_TRUE(f.unit.listeners.empty());
  EXPECT_TRUE(f.unit.listened.empty());
  const auto calls = f.unit.calls.size();
  f.runUntil(2);  // the sketch, delivery and focus calls were cancelled: nothing touches the gone view
  EXPECT_EQ(f.loop.pendingCount(), 0u);
  EXPECT_EQ(f.unit.calls.size(), calls);
  f.window.setKeyWindow(false);

  // Reconnecting removes the old listener first; a null unit disconnects.
  f.open();
  f.view->setAU(&f.unit);
  EXPECT_EQ(f.unit.listeners.size(), 1u);
  EXPECT_EQ(f.unit.count("dispose"), 2u);
  f.view->setAU(nullptr);
  EXPECT_TRUE(f.unit.listeners.empty());
  EXPECT_EQ(f.view->ui(), nullptr);
}

}  // namespace

TEST(HostView, AUnitsMeteringRecordReachesTheEditorAndNothingElseDoes) {
  {
    Fixture f;  // the fake unit offers no function: nothing is installed
    f.unit.failures["metering"] = kZelUnitInvalidProperty;
    f.open();
    EXPECT_EQ(f.ui().meteringCallback(), ZelMeteringCallback{});
  }
  Fixture f;
  ZelMeterLevels levels(3);
  f.unit.metering = levels.metering();
  f.open();
  const ZelMeteringCallback installed = f.ui().meteringCallback();
  EXPECT_EQ(installed.context, &levels);
  levels.set(1, -12.5f);
  float read[4] = {1, 1, 1, 1};
  ASSERT_TRUE(installed.read(read, 4));
  EXPECT_EQ(read[0], -90);
  EXPECT_EQ(read[1], -12.5f);
  EXPECT_EQ(read[3], -90);  // past the unit's levels: the floor
}

TEST(MeterLevels, KeepOnlyFiniteLevelsInRange) {
  ZelMeterLevels levels(2, -60);
  levels.set(0, -3);
  levels.set(1, std::nanf(""));
  levels.set(1, INFINITY);
  levels.set(7, 0);
  EXPECT_EQ(levels.level(0), -3);
  EXPECT_EQ(levels.level(1), -60);
  EXPECT_EQ(levels.level(7), -60);
  EXPECT_EQ(levels.count(), 2u);
}
