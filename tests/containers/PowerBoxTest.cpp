// The power box and the preset bar: what they build, where, and what their
// buttons and the logo stamp's About menu do.
#include <gtest/gtest.h>

#include "ContainersTestSupport.h"
#include "controls/ZelParameterControl.h"
#include "controls/ZelPresetControl.h"
#include "editor/ZelLogoStamp.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelWindow.h"

namespace zel::containers_test {
namespace {

const ZelClump* PowerClump(const ZelConfig& config) {
  auto clumps = config.clumpsOfType(ZelClumpType::PowerBox);
  return clumps.empty() ? nullptr : clumps.front();
}

TEST(PowerBox, HoldsThePowerControlButtonsLogoAndSketchArea) {
  auto config = ProductConfig();
  ZelPowerBox box(CGRectMake(418, 0, 62, 380), PowerClump(*config), config->hasAdvancedControls());
  box.setMetadata(&config->metadata());

  ASSERT_NE(box.powerControl(), nullptr);
  EXPECT_EQ(box.powerControl()->parameter()->codesafeName, "MasterOnOff");
  EXPECT_EQ(box.powerControl()->superview(), &box);
  // The clump's 19-row layout puts it in rows 15 to 17 of 20 points.
  EXPECT_EQ(box.powerControl()->frame(), CGRectMake(0, 300, 62, 60));
  box.clearParameterControls();  // as the editor does once it holds them
  EXPECT_NE(box.powerControl(), nullptr);

  EXPECT_TRUE(box.gear()->isEnabled());
  EXPECT_EQ(box.logoStampLayer(), box.logo()->layer());
  // The header reaches below the control's hanging label (centred 2 points
  // above the control's foot).
  EXPECT_EQ(box.headerRect(), CGRectMake(0, 290, 62, 90));
  EXPECT_EQ(box.footerRect(), CGRectMake(0, 0, 62, 30));
  // Between the button row and the header, 8 points in.
  const CGRect sketch = box.sketchArea();
  EXPECT_EQ(sketch.origin.x, 8);
  EXPECT_EQ(sketch.size.width, 46);
  EXPECT_EQ(sketch.origin.y, CGRectGetMaxY(box.book()->frame()) + 8);
  EXPECT_EQ(CGRectGetMaxY(sketch), 290 - 8);

  // Without advanced controls the gear is there but does nothing.
  ZelPowerBox bare(CGRectMake(0, 0, 62, 380), nullptr, false);
  EXPECT_EQ(bare.powerControl(), nullptr);
  EXPECT_FALSE(bare.gear()->isEnabled());
}

// Choosing the menu's items is in the context-menu driver script.
TEST(PowerBox, TheLogoStampOpensTheAboutMenu) {
  auto config = ProductConfig();
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelWindow window(loop, {480, 380});
  window.setKeyWindow(true);
  auto* box = window.contentView()->addSubview(
      std::make_unique<ZelPowerBox>(CGRectMake(418, 0, 62, 380), PowerClump(*config), true));
  box->setMetadata(&config->metadata());

  const CGPoint stamp = box->logo()->convertPointToView({CGRectGetMidX(box->logo()->bounds()), 10}, nullptr);
  window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseDown, stamp));
  window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseUp, stamp));
  ZelMenu* menu = window.openMenu();
  ASSERT_NE(menu, nullptr);
  std::vector<std::string> titles;
  for (const ZelMenuItem& item : menu->items())
    if (!item.separator) titles.push_back(item.title + (item.enabled ? "" : " (off)"));
  EXPECT_EQ(titles, (std::vector<std::string>{"Vantry Band Limiter & Degrader (off)", "Version 1.1.1 (off)",
                                              "Visit Website\u2026", "Manual\u2026"}));
}

TEST(PresetBar, IsEmptyAndInertWithoutPresets) {
  ZelPresetBar bar(CGRectMake(0, 0, 418, 30), nullptr);
  EXPECT_EQ(bar.presetControl(), nullptr);
  EXPECT_EQ(bar.undo(), nullptr);
  EXPECT_EQ(bar.more(), nullptr);
  EXPECT_TRUE(bar.subviews().empty());
  bar.setDirty(true);
  EXPECT_TRUE(bar.dirty());
}

TEST(PresetBar, PlacesThePresetControlBetweenItsButtons) {
  auto config = ProductConfig();
  ZelPresetBar bar(CGRectMake(0, 0, 418, 30), config->presets());
  ASSERT_NE(bar.presetControl(), nullptr);
  EXPECT_EQ(bar.presetControl()->parameter(), config->presets());
  const CGRect control = bar.presetControl()->frame();
  EXPECT_EQ(control.size.height, 30);
  EXPECT_GT(control.origin.x, CGRectGetMaxX(bar.redo()->frame()));
  EXPECT_LT(CGRectGetMaxX(control), CGRectGetMinX(bar.save()->frame()));
  EXPECT_LT(CGRectGetMaxX(bar.save()->frame()), CGRectGetMaxX(bar.more()->frame()));
  // Nothing to undo until the editor says so.
  EXPECT_FALSE(bar.undo()->isEnabled());
  EXPECT_FALSE(bar.redo()->isEnabled());
  EXPECT_TRUE(bar.save()->isEnabled());

  // The dirty mark is shown by the preset control itself.
  auto* preset = dynamic_cast<ZelPresetControl*>(bar.presetControl()->primaryControl());
  ASSERT_NE(preset, nullptr);
  bar.setDirty(true);
  EXPECT_TRUE(preset->dirty());
  bar.setDirty(false);
  EXPECT_FALSE(preset->dirty());
}

}  // namespace
}  // namespace zel::containers_test
