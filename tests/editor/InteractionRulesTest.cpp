#include "EditorTestSupport.h"
#include "editor/containers/ZelClumpView.h"
#include "editor/containers/ZelClumpsView.h"

using namespace zel;
using namespace zel::editor_test;

namespace {

ZelClumpView* ClumpViewOf(ZelParameterControl& control) { return dynamic_cast<ZelClumpView*>(control.clumpView()); }

}  // namespace

TEST(ZelInteractionRules, GlobalScopeDimsEverythingAndReleasesOnlyItsOwnHold) {
  EditorHarness h(SmallConfig());
  h.ui->setChannelsIn(1, 1);  // Width: a channel-layout hold of its own
  h.ui->updateParameterKeyed(0, 0);
  for (const char* name : {"A", "Width", "Adv", "Toggle"}) {
    EXPECT_TRUE(ClumpViewOf(h.control(name))->dimmed()) << name;
    EXPECT_TRUE(h.control(name).isDimmed()) << name;
  }
  EXPECT_FALSE(h.control("Power").isDimmed());  // the power box is not in scope
  h.ui->updateParameterKeyed(0, 1);
  EXPECT_FALSE(ClumpViewOf(h.control("A"))->dimmed());
  EXPECT_FALSE(h.control("A").isDimmed());
  EXPECT_FALSE(h.control("Adv").isDimmed());
  EXPECT_TRUE(h.control("Width").isDimmed());

  // Clump scope: C at 0 dims its own clump view only.
  h.ui->updateParameterKeyed(6, 0);
  EXPECT_TRUE(ClumpViewOf(h.control("C"))->dimmed());
  EXPECT_FALSE(ClumpViewOf(h.control("A"))->dimmed());
  h.ui->updateParameterKeyed(6, 0.5f);  // truncates to 0: still dimmed
  EXPECT_TRUE(ClumpViewOf(h.control("C"))->dimmed());
}

TEST(ZelInteractionRules, IndexedRulesApplyByValueAndAFractionMatchesNothing) {
  EditorHarness h(SmallConfig());
  ZelParameterControl& a = h.control("A");
  ZelParameterControl& b = h.control("B");
  ZelParameterControl& width = h.control("Width");
  // R: highlights [[A], [B]], disables [[], [B, Ghost]], hides [[], (junk), [Width]].
  h.ui->updateParameterKeyed(5, 1);
  EXPECT_TRUE(a.isDimmed());
  EXPECT_FALSE(b.isDimmed());
  EXPECT_TRUE(b.primaryControl()->isDisabled());
  EXPECT_FALSE(width.isHidden());
  h.ui->updateParameterKeyed(5, 0);
  EXPECT_FALSE(a.isDimmed());
  EXPECT_TRUE(b.isDimmed());
  EXPECT_FALSE(b.primaryControl()->isDisabled());
  h.ui->updateParameterKeyed(5, 2);
  EXPECT_TRUE(width.isHidden());
  EXPECT_TRUE(a.isDimmed() && b.isDimmed());
  h.ui->updateParameterKeyed(5, 1);
  h.ui->updateParameterKeyed(5, 1.5f);
  EXPECT_FALSE(width.isHidden());
  EXPECT_FALSE(b.primaryControl()->isDisabled());
  EXPECT_TRUE(a.isDimmed() && b.isDimmed());  // highlights: nothing matches, all dim

  // "dims" of Mode: Width dimmed at 1 only.
  h.ui->updateParameterKeyed(3, 1);
  EXPECT_TRUE(width.isDimmed());
  h.ui->updateParameterKeyed(3, 2);
  EXPECT_FALSE(width.isDimmed());
}

TEST(ZelInteractionRules, MonoLayoutFixesModeAndDisablesWidth) {
  EditorHarness h(SmallConfig());
  h.ui->setChannelsIn(2, 1);  // Mode's rule there has "immutable" but no "disabled"
  EXPECT_FALSE(h.control("Mode").isDimmed());
  EXPECT_FALSE(h.control("Mode").immutableFloatValue().has_value());
  h.ui->setChannelsIn(1, 1);
  ZelParameterControl& mode = h.control("Mode");
  EXPECT_TRUE(mode.isDimmed());
  EXPECT_TRUE(mode.primaryControl()->isDisabled());
  EXPECT_EQ(mode.floatValue(), 1);
  h.ui->updateParameterKeyed(3, 2);
  EXPECT_EQ(mode.floatValue(), 1);  // immutable
  EXPECT_TRUE(h.control("Width").isDimmed());
  EXPECT_TRUE(h.control("Width").primaryControl()->isDisabled());
  EXPECT_FALSE(h.control("Width").immutableFloatValue().has_value());
  EXPECT_TRUE(h.host.updates.empty());  // nothing is sent to the host
}

TEST(ZelInteractionRules, ArithmeticHelper) {
  EXPECT_FLOAT_EQ(ZelInteractionRules::resultForOperator("/", "x", "2", 5), 2.5f);
  EXPECT_EQ(ZelInteractionRules::resultForOperator("*", "x", "2", 5), 0);
  EXPECT_EQ(ZelInteractionRules::valueForArg("x", 7), 7);
  EXPECT_EQ(ZelInteractionRules::valueForArg("12.5", 7), 12.5f);
  EXPECT_EQ(ZelInteractionRules::valueForArg("twelve", 7), 0);
}
