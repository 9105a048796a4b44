#include <cmath>

#include "EditorTestSupport.h"
#include "editor/ZelDrawerView.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "editor/containers/ZelClumpsView.h"
#include "sketch/ZelParameterSketch.h"

using namespace zel;
using namespace zel::editor_test;

namespace {

std::vector<std::string> RegisteredNames(const ZelGenericUI& ui) {
  std::vector<std::string> names;
  for (const ZelParameterControl* c : ui.parameterControls()) names.push_back(c->parameter()->codesafeName);
  return names;
}

}  // namespace

TEST(ZelGenericUI, BuildsRegionsAndRegistersMainThenAdvancedThenPower) {
  EditorHarness h(SmallConfig());
  const ZelGenericUI::Layout& l = h.ui->layout();
  EXPECT_EQ(l.powerBox, CGRectMake(418, 0, 62, 380));
  EXPECT_EQ(l.presetBar, CGRectMake(0, 0, 418, 30));
  EXPECT_EQ(l.clumps, CGRectMake(0, 30, 418, 350));
  EXPECT_EQ(l.header.size.height, 0);
  EXPECT_EQ(RegisteredNames(*h.ui),
            (std::vector<std::string>{"A", "B", "Mode", "Width", "R", "C", "Stray", "Adv", "Toggle", "Power"}));
  // Initial values are the memo, the first undo snapshot was taken, and the
  // deferred step added both drawers and made the editor first responder.
  EXPECT_EQ(h.memo(1), 10);
  EXPECT_EQ(h.memo(4), 100);
  EXPECT_EQ(h.snapshots(), 1u);
  ASSERT_NE(h.ui->advDrawer(), nullptr);
  ASSERT_NE(h.ui->presetDrawer(), nullptr);
  EXPECT_TRUE(h.ui->advClumpsView()->isDescendantOf(h.ui->advDrawer()));
  EXPECT_EQ(h.window.firstResponder(), h.ui);
  EXPECT_FALSE(h.ui->drawers().isAdvancedDrawerVisible() || h.ui->drawers().isPresetsDrawerVisible());
}

TEST(ZelGenericUI, ProductEditorMovesTheHQControlIntoTheAdvancedClumps) {
  EditorHarness h(ProductConfig());
  ASSERT_EQ(h.ui->parameterControls().size(), 12u);
  EXPECT_EQ(h.ui->parameterControls().back()->parameter()->pid, 0);
  EXPECT_EQ(h.control("HQ").superview(), h.ui->advClumpsView());
  EXPECT_TRUE(h.ui->isProcessing());
}

TEST(ZelGenericUI, AUserChangeReachesTheHostOnceAndTheEchoAppliesTheRules) {
  EditorHarness h(SmallConfig());
  h.host.echo = false;
  h.userSets("Mode", 1);
  ASSERT_EQ(h.host.updates, (std::vector<RecordingHost::Update>{{3, 1}}));
  EXPECT_EQ(h.memo(3), 1);
  // The rules wait for the host.
  EXPECT_FALSE(h.control("Width").isDimmed());
  h.ui->updateParameterKeyed(3, 1);
  EXPECT_TRUE(h.control("Width").isDimmed());
  EXPECT_EQ(h.host.updates.size(), 1u);  // the echo is not sent back
  // Unknown ids and a pid outside the memo change nothing and don't crash.
  h.ui->updateParameterKeyed(1234, 5);
  h.ui->updateParameterKeyed(42, 1);
  EXPECT_EQ(h.control("Stray").floatValue(), 1);
  EXPECT_EQ(h.ui->values().memoizedPValues().size(), 10u);
  // NaN never equals the memo.
  h.ui->values().updateMemoizedValue(NAN, *h.control("B").parameter());
  EXPECT_TRUE(std::isnan(h.memo(2)));
}

TEST(ZelGenericUI, ABurstOfChangesMakesOneSnapshotAndUndoRedoApplyWithoutRecording) {
  EditorHarness h(SmallConfig());
  ZelSymbolButton* undo = h.ui->presetBar()->undo();
  EXPECT_FALSE(undo->isEnabled());
  for (int i = 1; i <= 10; ++i) {
    h.userSets("A", 10.0f + i);
    h.run(0.04);
  }
  EXPECT_EQ(h.snapshots(), 1u);
  h.run(0.5);
  EXPECT_EQ(h.snapshots(), 2u);
  EXPECT_EQ(h.ui->keyboard().undoRedoStack().stack().back().at(1), 20.0f);
  EXPECT_TRUE(undo->isEnabled());

  h.host.updates.clear();
  EXPECT_TRUE(h.ui->keyboard().keyboardShortcutUndo());
  h.run(1.0);
  EXPECT_EQ(h.control("A").floatValue(), 10);  // through the host's echo
  EXPECT_EQ(h.snapshots(), 2u);               // applying records nothing
  EXPECT_FALSE(undo->isEnabled());
  EXPECT_TRUE(h.ui->presetBar()->redo()->isEnabled());
  // Every parameter of the snapshot was sent (the stray pid is not in it).
  EXPECT_EQ(h.host.updates.size(), 9u);
  h.ui->keyboard().keyboardShortcutRedo();
  h.run(1.0);
  EXPECT_EQ(h.control("A").floatValue(), 20);
  EXPECT_EQ(h.snapshots(), 2u);
  EXPECT_FALSE(h.ui->presetBar()->redo()->isEnabled());
}

TEST(ZelGenericUI, PresetsApplyWithInitialValuesForMissingKeysAndSkipWildcards) {
  EditorHarness h(SmallConfig());
  EXPECT_FALSE(h.ui->presetBar()->dirty());  // Init matches the initial values
  h.userSets("Width", 30);
  h.userSets("Adv", 70);
  h.userSets("Power", 0);
  h.run(1.0);
  EXPECT_TRUE(h.ui->presetBar()->dirty());
  h.ui->requestPresetNamed("Warm");
  h.run(1.0);
  EXPECT_EQ(h.presetControl()->floatValue(), 1);
  EXPECT_EQ(h.control("A").floatValue(), 50);
  EXPECT_EQ(h.control("Width").floatValue(), 100);
  EXPECT_EQ(h.control("Adv").floatValue(), 0);
  EXPECT_EQ(h.control("Power").floatValue(), 0);  // a wildcard keeps its value
  EXPECT_EQ(h.host.presets, std::vector<std::string>{"Warm"});
  EXPECT_EQ(h.ui->presetDrawer()->selectedPresetID(), 1);
  EXPECT_FALSE(h.ui->presetBar()->dirty());

  // Cold names only A: the rest go back to their initial values.
  h.ui->requestPresetNamed("Cold");
  h.run(1.0);
  EXPECT_EQ(h.control("A").floatValue(), 90);
  EXPECT_EQ(h.control("B").floatValue(), 0);
  EXPECT_EQ(h.control("Mode").floatValue(), 0);
}

TEST(ZelGenericUI, LastSavedPresetSelectsWithoutLoadingAndIgnoresTheFirstPreset) {
  EditorHarness h(SmallConfig());
  h.ui->lastSavedPresetWasNamed("Cold");
  EXPECT_EQ(h.presetControl()->floatValue(), 2);
  EXPECT_TRUE(h.host.updates.empty());
  h.ui->lastSavedPresetWasNamed("Init");  // key 0: never selected this way
  h.ui->lastSavedPresetWasNamed("Nope");
  EXPECT_EQ(h.presetControl()->floatValue(), 2);
  h.ui->requestPresetNamed("Init");  // loads the selected preset (Cold)
  h.run(1.0);
  EXPECT_EQ(h.control("A").floatValue(), 90);
}

TEST(ZelGenericUI, FocusSkipsThePowerControlHidesDrawersAndSurvivesWindowFocus) {
  EditorHarness h(SmallConfig());
  h.ui->focus().bringParameterControlIntoFocus(&h.control("Power"));
  EXPECT_EQ(h.ui->focus().focusedControl(), nullptr);
  EXPECT_FALSE(h.control("Power").focused());

  h.ui->drawers().togglePresetsDrawer();
  h.run(1.0);
  ASSERT_TRUE(h.ui->drawers().isPresetsDrawerVisible());
  h.ui->focus().bringParameterControlIntoFocus(&h.control("B"));
  EXPECT_TRUE(h.control("B").focused());
  EXPECT_FALSE(h.ui->drawers().isPresetsDrawerVisible());

  ZelLayer* stamp = h.ui->powerBox()->logoStampLayer();
  h.ui->setHasFocus(false);
  EXPECT_EQ(stamp->opacity(), 0.5);
  h.ui->setHasFocus(true);
  EXPECT_EQ(stamp->opacity(), 1.0);

  // A main control's focus is not valid while the advanced drawer shows.
  h.ui->drawers().toggleAdvancedDrawer();
  h.run(1.0);
  EXPECT_EQ(h.ui->focus().focusedControl(), nullptr);
  EXPECT_FALSE(h.control("B").focused());
}

TEST(ZelGenericUI, AGestureBeginsFocusesAndEndsThroughTheDelegate) {
  EditorHarness h(SmallConfig());
  h.ui->keyboard().appendToNumberBuffer("4");
  ZelFloatControl* primary = h.control("A").primaryControl();
  primary->handleMouseDownEvent(ZelEvent::mouse(ZelEventType::LeftMouseDown, CGPointMake(1, 1)));
  primary->handleMouseUpEvent(ZelEvent::mouse(ZelEventType::LeftMouseUp, CGPointMake(1, 1)));
  EXPECT_EQ(h.host.begins, std::vector<std::int64_t>{1});
  EXPECT_EQ(h.host.ends, std::vector<std::int64_t>{1});
  EXPECT_EQ(h.ui->focus().focusedControl(), &h.control("A"));
  EXPECT_EQ(h.ui->keyboard().numberBuffer(), "");
}

TEST(ZelGenericUI, AdvancedWhilePresetsAreOpenWaitsForThePresetsToClose) {
  EditorHarness h(SmallConfig());
  ZelSymbolButton* gear = h.ui->powerBox()->gear();
  ZelSymbolButton* more = h.ui->presetBar()->more();
  h.ui->presets().morePresetsTapped();
  h.run(1.0);
  ASSERT_TRUE(h.ui->drawers().isPresetsDrawerVisible());
  EXPECT_TRUE(more->isSelected());

  h.ui->drawers().gearTapped();
  EXPECT_FALSE(h.ui->drawers().isPresetsDrawerVisible());
  EXPECT_FALSE(h.ui->drawers().isAdvancedDrawerVisible());
  EXPECT_EQ(h.ui->drawers().waitingDrawer(), h.ui->advDrawer());
  EXPECT_TRUE(h.ui->presetDrawer()->layer()->shouldRasterize());  // while it moves
  h.run(ZelEditorDrawers::kDrawerTransitionDuration + 0.05);
  EXPECT_TRUE(h.ui->drawers().isAdvancedDrawerVisible());
  EXPECT_EQ(h.ui->drawers().waitingDrawer(), nullptr);
  EXPECT_TRUE(gear->isSelected());
  EXPECT_FALSE(more->isSelected());
  EXPECT_TRUE(h.ui->presetDrawer()->isHidden());
  h.run(1.0);
  EXPECT_FALSE(h.ui->advDrawer()->layer()->shouldRasterize());
  EXPECT_FALSE(h.ui->clumpsView()->layer()->hasRunningAnimations());

  // Miniature 1 hides all; escape with nothing focused does the same.
  h.ui->drawers().drawerDidTapMiniature(*h.ui->advDrawer(), ZelDrawerView::kMiniatureHideAll);
  EXPECT_FALSE(h.ui->drawers().isAdvancedDrawerVisible());
  EXPECT_FALSE(h.ui->drawers().hideAllDrawers());
}

TEST(ZelGenericUI, ClosingTheEditorLeavesNothingPendingOnTheRunLoop) {
  EditorHarness h(SmallConfig());
  h.userSets("A", 42);        // undo snapshot pending
  h.ui->drawers().togglePresetsDrawer();  // drawer transition and hide pending
  h.ui->startDeferredDrawerStep();
  h.ui->updateParameterKeyed(1, 42);  // dirty check pending
  h.ui->keyboard().keyboardShortcutHandlePaste();  // clipboard answer pending
  h.run(0.01);
  EXPECT_GT(h.loop.pendingCount(), 0u);
  h.closeEditor();
  h.run(2.0);  // the clipboard's answer finds no editor
  EXPECT_EQ(h.loop.pendingCount(), 0u);
  EXPECT_EQ(h.loop.nextDueTime(), std::nullopt);
}

TEST(ZelGenericUI, TheSketchIsFedThroughItsLimiterAndHiddenAdvancedChangesFlashTheGear) {
  EditorHarness h(SmallConfig());
  ZelParameterSketch* sketch = nullptr;
  h.ui->addSketchWithSubclass([&](CGRect frame, const ZelConfig& config) {
    auto made = std::make_unique<ZelParameterSketch>(frame, &config);
    sketch = made.get();
    return made;
  });
  ASSERT_EQ(h.ui->sketch(), sketch);
  EXPECT_TRUE(sketch->isDescendantOf(h.ui->powerBox()));
  EXPECT_EQ(sketch->frame(), h.ui->powerBox()->sketchArea());
  h.run(0.02);
  EXPECT_EQ(sketch->parameterValues()[4], 100);  // the first update, 0.01 s later
  for (std::uint8_t changed : h.ui->values().memoizedPValuesChanged()) EXPECT_EQ(changed, 0);

  h.host.echo = false;
  h.userSets("A", 30);  // leading edge: at once
  EXPECT_EQ(sketch->parameterValues()[1], 30);
  h.userSets("A", 31);  // inside the period: at its end
  EXPECT_EQ(sketch->parameterValues()[1], 30);
  h.run(0.02);
  EXPECT_EQ(sketch->parameterValues()[1], 31);

  ZelLayer* spotlight = h.ui->powerBox()->gear()->spotlight();
  h.userSets("Adv", 5);
  EXPECT_NE(spotlight->animationForKey("flash"), nullptr);
  spotlight->removeAnimationForKey("flash");
  h.run(0.5);
  h.userSets("Adv", 6);  // within the second: dropped
  EXPECT_EQ(spotlight->animationForKey("flash"), nullptr);
  h.run(0.6);
  h.ui->drawers().toggleAdvancedDrawer();  // visible: no flash
  h.userSets("Adv", 7);
  EXPECT_EQ(spotlight->animationForKey("flash"), nullptr);
}

TEST(ZelGenericUI, DescriptionsWithoutPartsStillMakeAWorkingEditor) {
  {
    EditorHarness h(SmallConfig(false, false));
    EXPECT_EQ(h.ui->advDrawer(), nullptr);
    EXPECT_EQ(h.ui->presetDrawer(), nullptr);
    EXPECT_FALSE(h.ui->drawers().toggleAdvancedDrawer());
    h.ui->drawers().gearTapped();
    EXPECT_FALSE(h.ui->powerBox()->gear()->isEnabled());
    h.ui->requestPresetNamed("Warm");
    h.ui->presets().checkPresetDirtyState();
    EXPECT_FALSE(h.ui->drawers().isAdvancedDrawerVisible());
    EXPECT_EQ(h.ui->keyboard().currentParametersURLEncoded(), "https://www.zel-audio.example/tst/2.0/?");
  }
  EditorHarness h(std::make_unique<ZelConfig>());
  EXPECT_TRUE(h.ui->parameterControls().empty());
  EXPECT_FALSE(h.ui->isProcessing());
  for (const char* text : {"5", "k", ".", "\t", "`", "\x1b"})
    h.window.sendEvent(ZelEvent::key(ZelEventType::KeyDown, text));
  for (const char* key : {"n", "r", "v", "c", "z", "y", "Z", "m", "a", "t", "o", "p", "t"})
    h.window.sendEvent(ZelEvent::key(ZelEventType::KeyDown, key, ZelKeyCodeUnknown, ZelEventModifierCommand));
  h.ui->updateParameterKeyed(0, 1);
  h.ui->requestPresetNamed("x");
  h.ui->setChannelsIn(1, 1);
  h.ui->setHasFocus(false);
  h.run(2.0);
  EXPECT_TRUE(h.ui->keyboard().applyURLEncodedPreset("https://a.example/?a:1"));

  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelGenericUI bare(CGRectMake(0, 0, 100, 100), nullptr, &loop);
  EXPECT_EQ(bare.powerBox(), nullptr);
  EXPECT_FALSE(bare.keyDown(ZelEvent::key(ZelEventType::KeyDown, "\t", ZelKeyCodeTab)));
  bare.updateParameterKeyed(0, 1);
  bare.drawers().hideAllDrawers();
}
