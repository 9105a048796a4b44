// The standalone app's connection: the host view on the unit in this
// process, values reaching the audio unit in its own units.
#include <gtest/gtest.h>

#include "app/standalone/ZelStandaloneUnit.h"
#include "dsp/ZelVantryParameterTable.h"
#include "host/ZelHostView.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"

namespace {

using namespace zel;

struct Fixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};
  ZelNullPlatformWindow platform{loop};
  ZelStandaloneUnit unit{loop, 1, 1};
  ZelHostView* view = nullptr;
  float sample = 0;

  Fixture() {
    window.setPlatformWindow(&platform);
    auto made = std::make_unique<ZelHostView>(loop, ZelConfig::configNamed("config", ZEL_RESOURCES_DIR));
    view = made.get();
    window.setContentView(std::move(made));
    view->setAU(&unit);
    ZelRunVirtualTime(loop, clock, 0.2);
  }
  // One block on the audio side: what was posted reaches the unit.
  ZelAudioUnit& playOneBlock() {
    const float* in[1] = {&sample};
    float* out[1] = {&sample};
    unit.live().process(in, out, 1);
    return unit.live().playing();
  }
  ~Fixture() {
    window.setContentView(std::make_unique<ZelView>());
    window.setPlatformWindow(nullptr);
  }
};

TEST(StandaloneUnit, EditorChangesReachTheAudioUnitInItsUnits) {
  Fixture f;
  f.view->interfaceUpdatedParameterKeyed(*f.view->ui(), 5, 3400);
  EXPECT_NEAR(f.playOneBlock().parameter(5), 3400.0f, 0.1f) << "hertz for the unit, a position on the connection";
  float position = 0;
  f.unit.getParameter(5, position);
  EXPECT_NEAR(position, ZelHostView::unitValueFromEditor(5, 3400), 0.01f);
  f.view->interfaceUpdatedParameterKeyed(*f.view->ui(), 8, 2);
  EXPECT_EQ(f.playOneBlock().parameter(8), 2.0f);

  // The echo comes through the run loop and consumes the mark.
  EXPECT_NE(f.view->outgoingValue(8), ZelHostView::kNothingOutstanding);
  ZelRunVirtualTime(f.loop, f.clock, 0.3);
  EXPECT_EQ(f.view->outgoingValue(8), ZelHostView::kNothingOutstanding);
  EXPECT_EQ(f.view->ui()->memoizedPValues()[8], 2.0f);
}

TEST(StandaloneUnit, KeepsPresetThemeAndChannels) {
  Fixture f;
  f.view->requestPresetNamed("Underwater");
  ZelRunVirtualTime(f.loop, f.clock, 0.5);
  std::string name;
  f.unit.getPresetName(name);
  EXPECT_EQ(name, "Underwater");
  f.view->interfaceDidUpdateInterfacePreference(*f.view->ui(), "theme", 1);
  EXPECT_TRUE(f.unit.themeFlag());
  f.view->interfaceDidUpdateInterfacePreference(*f.view->ui(), "theme", 1);
  EXPECT_FALSE(f.unit.themeFlag());
  EXPECT_TRUE(f.view->ui()->parameterControlWithCodename("Mode")->primaryControl()->isDisabled())
      << "one channel: no stereo modes";
  // Listeners that went are never told again.
  f.window.setContentView(std::make_unique<ZelView>());
  EXPECT_EQ(f.unit.setParameter(1, 10, nullptr), kZelUnitNoErr);
  ZelRunVirtualTime(f.loop, f.clock, 1.0);
}

}  // namespace
