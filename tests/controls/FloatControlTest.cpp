#include <gtest/gtest.h>

#include "ControlsTestSupport.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/core/ZelMenu.h"

namespace zel::testing {
namespace {

constexpr auto kShift = ZelEventModifierShift, kCommand = ZelEventModifierCommand;
constexpr auto kDown = ZelEventType::LeftMouseDown, kDrag = ZelEventType::LeftMouseDragged, kUp = ZelEventType::LeftMouseUp;

struct FloatControlTest : ::testing::Test {
  std::unique_ptr<ZelParameter> param = Param({{"coarseGranularityOptions", ZelPlist::array({Num(0), Num(5), Num(20), Num(60)})}});
  RecordingPrimary control{CGRectMake(0, 0, 40, 100), param.get()};
  FloatDelegateLog delegate;
  int actions = 0;
  void SetUp() override {
    control.setDelegate(&delegate);
    control.setAction([this](ZelControl&) { ++actions; });
  }
  void mouse(ZelEventType type, ZelEventModifierFlags flags = 0) {
    ZelEvent e = ZelEvent::mouse(type, {5, 5}, flags);
    type == kDown ? control.mouseDown(e) : type == kDrag ? control.mouseDragged(e) : control.mouseUp(e);
  }
  float arrow(float from, char16_t key, ZelGranularityType g) {
    control.setFloatValue(from);
    control.incrementWithArrow(key, g);
    return control.floatValue();
  }
};

TEST_F(FloatControlTest, DragGranularityFollowsModifiersWithCommandBeatingShift) {
  mouse(kDown, kShift);  // the down always reports normal
  mouse(kDrag, kShift);
  mouse(kDrag, kShift);
  mouse(kDrag, kShift | kCommand);
  mouse(kDrag);
  mouse(kUp, kCommand);
  std::vector<ZelGranularities> expected{{0, 0, false}, {2, 0, true}, {2, 2, false}, {1, 2, true}, {0, 1, true}, {0, 0, false}};
  EXPECT_EQ(control.granularities, expected);
  EXPECT_EQ(delegate.states, (std::vector<ZelInteractionState>{ZelInteractionBegan, ZelInteractionEnded}));
  EXPECT_EQ(actions, 0);
}

TEST_F(FloatControlTest, ContextMenuOffersResetOnlyAwayFromTheInitialValue) {
  control.setFloatValue(50);
  auto menu = control.menuForEvent({});
  ASSERT_EQ(menu->size(), 2u);
  EXPECT_EQ(menu->title(), "Drive");
  EXPECT_EQ(menu->items()[0].title, "Reset Default Value");
  EXPECT_FALSE(menu->items()[0].enabled);
  EXPECT_EQ(menu->items()[1].title, "Read about Drive");
  control.setFloatValue(50.0001f);
  menu = control.menuForEvent({});
  ASSERT_TRUE(menu->items()[0].enabled);
  menu->items()[0].action();
  menu->items()[1].action();
  EXPECT_EQ(control.floatValue(), 50);
  EXPECT_EQ(actions, 1);
  EXPECT_EQ(delegate.docs, 1);
}

TEST_F(FloatControlTest, EachWheelEventIsTenPointsPerLineFromTheCurrentValue) {
  control.setFloatValue(42);
  for (auto [lines, delta] : {std::pair{0.3, -10.0}, {-0.3, 10.0}, {0.0, -10.0}, {2.5, -25.0}}) {
    control.scrollWheel(ZelEvent::scroll({5, 5}, 7, lines));
    EXPECT_EQ(control.scrollDelta, delta) << lines;
    EXPECT_EQ(control.scrollStart, 42);
  }
  control.scrollWheel(ZelEvent::scroll({5, 5}, 0, 1, kShift));
  EXPECT_EQ(control.granularities.back(), (ZelGranularities{2, 0, true}));
}

TEST_F(FloatControlTest, ArrowStepsGoToTheNextGridPointOrCoarseOption) {
  EXPECT_EQ(arrow(3.3f, ZelUpArrowFunctionKey, 0), 4);
  EXPECT_EQ(arrow(3.3f, ZelDownArrowFunctionKey, 0), 3);
  EXPECT_EQ(arrow(3, ZelLeftArrowFunctionKey, 0), 2);
  EXPECT_FLOAT_EQ(arrow(2, ZelRightArrowFunctionKey, 1), 2.1f);
  EXPECT_EQ(arrow(6, ZelUpArrowFunctionKey, 2), 20);  // nearest option 5, then the next
  EXPECT_EQ(arrow(20, ZelDownArrowFunctionKey, 2), 10);  // option 5, then on the coarse step of 10
  EXPECT_EQ(arrow(60, ZelUpArrowFunctionKey, 2), 60);  // past the last: the grid step, snapped back
  EXPECT_EQ(arrow(0, ZelDownArrowFunctionKey, 2), 0);
  control.setPreventInteraction(true);  // arrows do not ask
  EXPECT_EQ(arrow(50, ZelUpArrowFunctionKey, 0), 51);
  EXPECT_EQ(actions, 9);

  auto hertz = Param({{"unit", Str("Hertz")}, {"maxValue", Num(20000)}});
  RecordingPrimary f(CGRectMake(0, 0, 40, 100), hertz.get());
  for (float start : {1500.0f, 15000.0f}) {
    f.setFloatValue(start);
    f.incrementWithArrow(ZelUpArrowFunctionKey, 0);
    EXPECT_EQ(f.floatValue(), start + 10);
  }
  f.setFloatValue(999);
  EXPECT_EQ(f.incrementedValueForArrow(ZelLeftArrowFunctionKey, 0), -1);
}

TEST(FloatControlSweep, CoarseStepsEveryQuarterSecondMayOvershootAndDieWithTheControl) {
  WindowFixture fx;
  auto p = Param({{"coarseGranularity", Num(15)}});
  auto* control = fx.add(std::make_unique<RecordingPrimary>(CGRectMake(0, 0, 40, 100), p.get()));
  control->setFloatValue(60);
  control->sweepUp();
  EXPECT_EQ(control->floatValue(), 75);
  fx.runUntil(0.24);
  EXPECT_EQ(control->floatValue(), 75);
  fx.runUntil(0.25);
  fx.runUntil(0.5);
  EXPECT_EQ(control->floatValue(), 105);  // neither snapped nor clamped
  fx.runUntil(2);
  EXPECT_EQ(control->floatValue(), 105);
  EXPECT_EQ(fx.loop.pendingCount(), 0u);

  control->sweepDown();
  EXPECT_EQ(fx.loop.pendingCount(), 1u);
  control->removeFromSuperview();  // destroyed mid-sweep
  EXPECT_EQ(fx.loop.pendingCount(), 0u);
}

TEST(FloatControlFocusBorder, HandedOverInTheParametersColourAndPlacedWithItsRadius) {
  auto p = Param({{"color", Str("#3366CC")}});
  RecordingPrimary control(CGRectMake(0, 0, 40, 100), p.get());
  ZelFocusBorder* border = control.highlight();
  EXPECT_EQ(border->strokeNSColor(), p->color);
  auto owned = control.takeHighlight();
  EXPECT_EQ(owned.get(), border);
  EXPECT_EQ(control.highlight(), border);

  for (auto [rounding, radius] : {std::pair{0.2, 10.0}, {0.7, 14.0}, {3.0, 3.0}}) {
    control.animateHighlightToFrame(CGRectMake(0, 0, 60, 20), {}, rounding, false);
    EXPECT_EQ(border->rounding(), radius);
  }
  control.animateHighlightToFrame(CGRectMake(10.5, 10.2, 20, 20.5), {}, 0, true);
  EXPECT_EQ(border->frame(), CGRectMake(6, 7, 29, 27));
  EXPECT_EQ(border->rounding(), 13.5);
}

}  // namespace
}  // namespace zel::testing
