#include <gtest/gtest.h>

#include "ControlsTestSupport.h"
#include "controls/ZelBooleanControl.h"
#include "controls/ZelVerticalSlider.h"
#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"
#include "toolkit/foundation/ZelNotificationCenter.h"
#include "toolkit/foundation/ZelNumberParser.h"

namespace zel::testing {
namespace {

std::unique_ptr<ZelParameterControl> Control(const ZelParameter& p, CGRect frame = CGRectMake(0, 0, 40, 40),
                                             CGRect label = CGRectZero) {
  return std::make_unique<ZelParameterControl>(frame, label, &p, MakeRecording);
}

// Label and slider frames of a control over `frame` (no label frame given).
std::pair<CGRect, CGRect> Frames(ZelPlist::Dictionary keys, CGRect frame) {
  auto p = Param(std::move(keys));
  auto c = Control(*p, frame);
  EXPECT_EQ(c->primaryControl()->frame(), c->sliderFrame());
  return {c->labelFrame(), c->sliderFrame()};
}

TEST(ParameterControlFrames, InsetLabelSlicesAndTypeAdjustments) {
  using R = std::pair<CGRect, CGRect>;
  auto hidden = ZelPlist::Dictionary{{"labelDisplay", Str("hidden")}, {"controlType", Str("Cycle")}};
  EXPECT_EQ(Frames(hidden, CGRectMake(5, 5, 60, 26)), (R{CGRectMake(2, -28, 56, 26), CGRectMake(2, 0, 56, 26)}));
  EXPECT_EQ(Frames(hidden, CGRectMake(5, 5, 60, 27)).second, CGRectMake(2, 2, 56, 23));
  EXPECT_EQ(Frames({{"labelDisplay", Str("left")}}, CGRectMake(0, 0, 80, 40)),
            (R{CGRectMake(2, 8, 45, 36), CGRectMake(47, 8, 31, 24)}));
  EXPECT_EQ(Frames({{"labelDisplay", Str("right")}}, CGRectMake(0, 0, 80, 40)).first, CGRectMake(33, 8, 45, 36));
  EXPECT_EQ(Frames({{"horizontal", ZelPlist::boolean(true)}}, CGRectMake(0, 0, 100, 40)),
            (R{CGRectMake(2, 8, 96, 18), CGRectMake(20, 14, 62, 22)}));
  EXPECT_EQ(Frames({{"labelDisplay", Str("above")}, {"controlType", Str("Number")}}, CGRectMake(0, 0, 60, 60)),
            (R{CGRectMake(2, -34, 56, 38), CGRectMake(2, 2, 56, 38)}));

  auto p = Param(hidden);
  auto c = Control(*p, CGRectMake(0, 0, 60, 26));
  EXPECT_EQ(c->drawingBounds(), CGRectMake(0, -28, 60, 54));  // redraws reach the label below
}

TEST(ParameterControlFrames, GivenLabelFrameOrComputedLayout) {
  auto p = Param();
  auto given = Control(*p, CGRectMake(10, 40, 60, 30), CGRectMake(14, 20, 50, 18));
  EXPECT_EQ(given->frame(), CGRectMake(10, 20, 60, 50));
  EXPECT_EQ(given->sliderFrame(), CGRectMake(0, 20, 60, 30));
  EXPECT_EQ(given->labelFrame(), CGRectMake(4, 0, 50, 18));

  auto cell = [](double x, double w) {
    return ZelPlist::dictionary({{"origin", ZelPlist::dictionary({{"x", Num(x)}, {"y", Num(0)}})},
                                 {"size", ZelPlist::dictionary({{"w", Num(w)}, {"h", Num(1)}})}});
  };
  auto laidOut = Param({{"computedLayout", ZelPlist::dictionary({{"width", Num(4)}, {"height", Num(1)},
                        {"matrix", ZelPlist::dictionary({{"x", cell(0, 1)}, {"0", cell(1, 3)}})}})}});
  auto c = Control(*laidOut, CGRectMake(0, 0, 80, 20));
  EXPECT_EQ(c->labelFrame(), CGRectMake(0, 0, 20, 20));
  EXPECT_EQ(c->sliderFrame(), CGRectMake(20, 0, 60, 20));
}

struct ParameterControlTest : ::testing::Test {
  std::unique_ptr<ZelParameter> param = Param({{"maxValue", Num(20000)}});
  ZelParameterControl control{CGRectMake(0, 0, 60, 100), CGRectZero, param.get(), MakeTyping};
  TypingPrimary& primary = static_cast<TypingPrimary&>(*control.primaryControl());
  int actions = 0;
  void SetUp() override { control.setAction([this](ZelControl&) { ++actions; }); }
};

TEST_F(ParameterControlTest, HostValuesAreFineSnappedAndEchoesIgnoredOnceTheUserMoved) {
  int applied = primary.setValueCalls;
  control.setFloatValue(50);  // re-applied while the user has not touched it
  EXPECT_EQ(primary.setValueCalls, applied + 1);
  control.setFloatValue(1234.56f);
  EXPECT_FLOAT_EQ(primary.floatValue(), 1234.6f);

  primary.reportInterfaceInitiatedValueChange();
  EXPECT_EQ(actions, 1);
  applied = primary.setValueCalls;
  control.setFloatValue(1234.64f);  // snaps to what is shown: an echo
  EXPECT_EQ(primary.setValueCalls, applied);
  control.setFloatValue(-3);
  EXPECT_EQ(primary.floatValue(), 0);
  control.setImmutableFloatValue(2);
  control.setFloatValue(9);
  EXPECT_EQ(primary.floatValue(), 2);
}

TEST_F(ParameterControlTest, TypedNumbersScaleByKParseInTheLocaleAndAlwaysReport) {
  primary.displaying = true;
  ZelNumberParser english(".", ","), german(",", ".");
  for (auto [text, expected] : {std::pair{"2.5k", 2500.0f}, {"1k5k", 15000.0f}, {"12.345", 12.3f}, {"k", 0.0f},
                                {"99999", 20000.0f}, {"1.5kx", 0.0f}}) {
    control.setFloatValue(300);
    control.setStringValue(text, english);
    EXPECT_FLOAT_EQ(control.floatValue(), expected) << text;
  }
  EXPECT_EQ(primary.discards, 1);  // the typed number's display ended
  control.setStringValue("1.234,5", german);
  EXPECT_FLOAT_EQ(control.floatValue(), 1234.5f);
  control.setImmutableFloatValue(2);
  control.setStringValue("7", german);
  EXPECT_EQ(control.floatValue(), 2);
  EXPECT_EQ(actions, 8);
}

TEST_F(ParameterControlTest, FocusHighlightsAndTypedTextShowsOnlyWhileFocused) {
  control.setTransientStringValue("12");
  EXPECT_FALSE(primary.displaying);
  control.setFocused(true);
  control.setTransientStringValue("12k");
  EXPECT_TRUE(primary.highlit() && primary.displaying);
  EXPECT_EQ(primary.shown.text, "12k");
  EXPECT_EQ(primary.shown.font.pointSize, 21);
  control.setFocused(false);
  EXPECT_FALSE(primary.highlit() || primary.displaying);
}

TEST(ParameterControlToggle, FlipsOnlyTwoStateParametersAndPastTheImmutableValue) {
  using D = ZelPlist::Dictionary;
  for (auto [keys, toggles] : {std::pair{D{{"unit", Str("Boolean")}, {"maxValue", Num(1)}}, true},
                               {D{{"unit", Str("Indexed")}, {"minValue", Num(3)}, {"maxValue", Num(4)}}, true},
                               {D{{"unit", Str("Indexed")}, {"maxValue", Num(2)}}, false},
                               {D{{"unit", Str("Percent")}, {"maxValue", Num(1)}}, false}}) {
    auto p = Param(keys);
    auto c = Control(*p);
    int actions = 0;
    c->setAction([&](ZelControl&) { ++actions; });
    c->setImmutableFloatValue(1);
    c->setFloatValue(0);
    EXPECT_EQ(c->toggleBooleanControl(), toggles);
    EXPECT_EQ(c->floatValue(), toggles ? 0 : 1);
    EXPECT_EQ(actions, toggles ? 1 : 0);
  }
}

TEST(ParameterControlArrows, PresetControlsCycleWhateverTheGranularity) {
  auto p = Param({{"controlType", Str("Preset")}, {"unit", Str("Indexed")}, {"maxValue", Num(3)}, {"initialValue", Num(0)}});
  auto c = Control(*p);
  std::vector<float> seen;
  for (char16_t key : {ZelRightArrowFunctionKey, ZelUpArrowFunctionKey, ZelLeftArrowFunctionKey,
                       ZelDownArrowFunctionKey, ZelDownArrowFunctionKey}) {
    c->incrementWithArrow(key, 2);
    seen.push_back(c->floatValue());
  }
  EXPECT_EQ(seen, (std::vector<float>{1, 2, 1, 0, 3}));
  auto slider = Param();
  auto s = Control(*slider);
  s->incrementWithArrow(ZelUpArrowFunctionKey, 2);
  EXPECT_EQ(s->floatValue(), 60);
}

TEST(ParameterControlDimming, EachPriorityHoldsItsOwnDim) {
  WindowFixture fx;
  auto p = Param();
  auto* c = fx.add(Control(*p));
  c->setDimmed(true, 0, 10);
  c->setDimmed(true, 0.5, 1000);
  EXPECT_EQ(c->alphaValue(), 0.4);
  EXPECT_TRUE(c->isFadingAlpha());
  c->setDimmed(false, 0, 10);
  c->setDimmed(false, 0, 0);
  EXPECT_TRUE(c->isDimmed() && c->primaryControl()->dimmed());
  EXPECT_EQ(c->alphaValue(), 0.4);
  c->setDimmed(false, 0, 1000);
  EXPECT_FALSE(c->isDimmed() || c->primaryControl()->dimmed());
  EXPECT_EQ(c->alphaValue(), 1.0);
}

TEST(ParameterControlMouse, ClicksBesideThePrimaryAreForwardedAndTheEditorSeesTheContainer) {
  WindowFixture fx;
  auto p = Param();
  auto* c = fx.add(Control(*p, CGRectMake(10, 40, 60, 30), CGRectMake(10, 10, 60, 30)));
  auto& primary = static_cast<RecordingPrimary&>(*c->primaryControl());
  ParameterDelegateLog delegate;
  c->setDelegate(&delegate);
  auto send = [&](ZelEventType type, double y) { fx.window.sendEvent(ZelEvent::mouse(type, {20, y})); };
  send(ZelEventType::LeftMouseDown, 20);  // on the label
  send(ZelEventType::LeftMouseDragged, 22);
  send(ZelEventType::LeftMouseUp, 22);
  send(ZelEventType::LeftMouseDown, 55);  // on the primary: it gets the click itself
  send(ZelEventType::LeftMouseUp, 55);
  c->mouseDragged(ZelEvent::mouse(ZelEventType::LeftMouseDragged, {20, 20}));  // no forwarding outside a click
  EXPECT_EQ(primary.hooks, (std::vector<std::string>{"down", "drag", "up", "down", "up"}));

  primary.menuForEvent({})->items()[1].action();
  primary.delegate()->floatControlDidTapMeaninglessly(primary);
  std::vector<std::pair<ZelParameterControl*, std::string>> expected{
      {c, "began"}, {c, "ended"}, {c, "began"}, {c, "ended"}, {c, "docs"}, {c, "tap"}};
  EXPECT_EQ(delegate.log, expected);
}

TEST(ParameterControlDrawing, LabelImageAndBorderAndTheThemeRedraw) {
  auto p = Param({{"label", Str("base64,iVBORw0KGgoAAAANSUhEUgAAAAIAAAACCAYAAABytg0kAAAAFUlEQVR42mP4z8DwHwgbGMD0//8OAD8YB7qSpF8lAAAAAElFTkSuQmCC")},
                  {"border", ZelPlist::array({Num(1), Num(0), Num(1), Num(0)})},
                  {"controlType", Str("Cycle")}, {"labelDisplay", Str("hidden")}});
  WindowFixture fx;
  auto* c = fx.add(Control(*p, CGRectMake(100, 100, 60, 26)));
  ZelRecordingGraphicsContext ctx;
  c->drawRect(ctx, c->bounds());
  std::vector<CGRect> sides;
  for (const ZelRecordedCall& call : ctx.calls()) {
    if (call.kind == ZelRecordedCall::Kind::DrawImage) {  // a 2 x 2 pixel image: one point, centred in the label
      EXPECT_EQ(call.opacity, 0.8);
      EXPECT_EQ(call.rect, CGRectMake(29, -16, 1, 1));
    } else {
      EXPECT_EQ(call.fillColor, ZelUITheme::theme()->interiorBorderColor());
      sides.push_back(call.rect);
    }
  }
  EXPECT_EQ(ctx.count(ZelRecordedCall::Kind::DrawImage), 1u);
  EXPECT_EQ(sides, (std::vector<CGRect>{CGRectMake(1, 25, 58, 0.5), CGRectMake(1, 1, 58, 0.5)}));

  auto& primary = static_cast<RecordingPrimary&>(*c->primaryControl());
  int applied = primary.setValueCalls;
  fx.window.displayIfNeeded(ctx);
  ZelNotificationCenter::defaultCenter().post(kZelUIThemeUpdatedNotification);
  EXPECT_EQ(primary.setValueCalls, applied + 1);
  EXPECT_TRUE(CGRectContainsRect(fx.window.dirtyRegion().bounds(), CGRectMake(100, 72, 60, 54)));
}

}  // namespace
}  // namespace zel::testing
