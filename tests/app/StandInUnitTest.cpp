// The stand-in unit: it keeps the values, reports the editor's own changes
// back later (as a host's listener does), and carries the preset name,
// the theme flag and the channel counts.
#include <gtest/gtest.h>

#include <memory>

#include "app/common/ZelStandInUnit.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"

namespace {

using namespace zel;

struct Recorder final : ZelStandInUnitObserver {
  std::vector<std::string> lines;
  void unitReceivedValue(std::int64_t pid, float v) override {
    lines.push_back("update " + std::to_string(pid) + " " + std::to_string(v));
  }
  void unitReceivedPresetName(const std::string& name) override { lines.push_back("preset " + name); }
  void unitReceivedInterfacePreference(std::string_view key, double) override {
    lines.push_back("pref " + std::string(key));
  }
};

struct Fixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  std::unique_ptr<ZelConfig> config = ZelConfig::configNamed("config", ZEL_RESOURCES_DIR);
  ZelWindow window{loop, {480, 380}};
  ZelNullPlatformWindow platform{loop};
  ZelGenericUI* ui = nullptr;
  ZelStandInUnit unit{loop, *config};
  Recorder recorder;

  Fixture() {
    window.setPlatformWindow(&platform);
    auto editor = std::make_unique<ZelGenericUI>(CGRectMake(0, 0, 480, 380), config.get(), &loop);
    ui = editor.get();
    window.setContentView(std::move(editor));
    ui->setDelegate(&unit);
    unit.connect(ui);
    unit.setObserver(&recorder);
  }
  ~Fixture() {
    unit.connect(nullptr);
    window.setContentView(std::make_unique<ZelView>());
    window.setPlatformWindow(nullptr);
  }
  float shown(const char* name) const { return ui->parameterControlWithCodename(name)->floatValue(); }
};

TEST(StandInUnit, StartsAtTheInitialValuesAndReportsThemThroughTheRunLoop) {
  Fixture f;
  EXPECT_EQ(f.unit.values().size(), 12u);
  EXPECT_EQ(f.unit.valueForParameterID(5), 20000.0f);
  EXPECT_EQ(f.unit.valueForParameterID(99), 0.0f);

  f.unit.setValueFromHost(5, 4000);
  f.unit.synchronize();
  // A listener only queues: nothing has reached the editor yet.
  EXPECT_EQ(f.shown("HighCut"), 20000.0f);
  f.loop.runDue();
  EXPECT_EQ(f.shown("HighCut"), 4000.0f);
  EXPECT_TRUE(f.recorder.lines.empty()) << "the host's own changes are not the editor's";
}

TEST(StandInUnit, EchoesTheEditorsChangesLaterAndOnlyWhenAsked) {
  Fixture f;
  const ZelParameter* mode = f.config->parameterForCodename("Mode");
  f.ui->values().notifyParameter(*mode, 1);
  EXPECT_EQ(f.unit.valueForParameterID(mode->pid), 1.0f);
  ASSERT_EQ(f.recorder.lines.size(), 1u);
  // The rules run on the echo: Width dims once the loop has run.
  ZelParameterControl* width = f.ui->parameterControlWithCodename("Width");
  EXPECT_FALSE(width->isDimmed());
  f.loop.runDue();
  EXPECT_TRUE(width->isDimmed());
}

TEST(StandInUnit, DisconnectingDropsPendingDeliveries) {
  Fixture f;
  f.unit.setValueFromHost(1, 42);
  f.unit.connect(nullptr);
  f.loop.runDue();
  EXPECT_EQ(f.shown("Degrade"), 0.0f);
}

TEST(StandInUnit, TheThemeFlagIsAToggleEvent) {
  Fixture f;
  EXPECT_FALSE(f.unit.themeFlag());
  f.unit.interfaceDidUpdateInterfacePreference(*f.ui, "theme", 1);
  EXPECT_TRUE(f.unit.themeFlag());
  f.unit.interfaceDidUpdateInterfacePreference(*f.ui, "theme", 1);
  EXPECT_FALSE(f.unit.themeFlag()) << "the flag is a toggle event, not a state";
}

// A new description: values follow their code names, whatever their ids now.
TEST(StandInUnit, CarriesValuesToANewDescriptionByCodeName) {
  Fixture f;
  f.unit.setValueFromHost(5, 3000);  // HighCut
  f.unit.setValueFromHost(1, 40);    // Degrade
  const std::map<std::string, float> byName = f.unit.valuesByCodeName(*f.config);
  EXPECT_EQ(byName.at("HighCut"), 3000.0f);
  EXPECT_EQ(byName.at("Degrade"), 40.0f);

  ZelPlist::Dictionary p1{{"pid", ZelPlist::integer(0)}, {"codesafeName", ZelPlist::string("HighCut")},
                          {"initialValue", ZelPlist::real(1)}, {"maxValue", ZelPlist::real(20000)}};
  ZelPlist::Dictionary p2{{"pid", ZelPlist::integer(1)}, {"codesafeName", ZelPlist::string("Fresh")},
                          {"initialValue", ZelPlist::real(7)}, {"maxValue", ZelPlist::real(10)}};
  ZelPlist clump = ZelPlist::dictionary(
      {{"metadata", ZelPlist::dictionary({{"clumpType", ZelPlist::string("Normal")}})},
       {"parameters", ZelPlist::array({ZelPlist::dictionary(p1), ZelPlist::dictionary(p2)})}});
  ZelConfig next(ZelPlist::dictionary({{"clumps", ZelPlist::array({clump})}}));
  f.unit.adoptValues(next, byName);
  EXPECT_EQ(f.unit.values().size(), 2u);
  EXPECT_EQ(f.unit.valueForParameterID(0), 3000.0f);
  EXPECT_EQ(f.unit.valueForParameterID(1), 7.0f) << "a new name starts at its initial value";
}

}  // namespace
