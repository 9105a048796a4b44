// The number control, the cycle control and its boolean variants, the
// toggle and the preset control: what a click, a drag or a wheel notch does.
#include <gtest/gtest.h>

#include "PrimaryTestSupport.h"
#include "controls/ZelBooleanControl.h"
#include "controls/ZelControlLook.h"
#include "controls/ZelCycleControl.h"
#include "controls/ZelNumberControl.h"
#include "controls/ZelPresetControl.h"
#include "controls/ZelPrimaryControls.h"
#include "controls/ZelToggleControl.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"
#include "toolkit/core/ZelShapeLayer.h"

using namespace zel;
using namespace zel::testing;

namespace {

CGPoint Centre(const ZelView& v) { return {CGRectGetMidX(v.frame()), CGRectGetMidY(v.frame())}; }

// 6 ... 96 in steps of 6, coarse options 6, 12, 24, 48, 96.
std::unique_ptr<ZelParameter> SlopeParam() {
  return Param({{"minValue", Num(6)},
                {"maxValue", Num(96)},
                {"granularity", Num(6)},
                {"fineGranularity", Num(1)},
                {"coarseGranularity", Num(6)},
                {"coarseGranularityOptions", Numbers({6, 12, 24, 48, 96})}});
}

}  // namespace

TEST(NumberControl, DragsOneStepPerThreePointsFromTheGrabPoint) {
  ClickFixture f;
  auto p = SlopeParam();
  auto* number = f.add(std::make_unique<ZelNumberControl>(CGRectMake(20, 20, 68, 40), p.get()));
  ActionCounter actions;
  actions.attach(*number);
  number->setFloatValue(24);
  CGPoint grab = Centre(*number);
  f.down(grab);
  EXPECT_EQ(number->floatValue(), 24);
  f.drag({grab.x, grab.y + 2});  // not yet a step
  EXPECT_EQ(number->floatValue(), 24);
  f.drag({grab.x + 40, grab.y + 9});  // sideways does not matter
  EXPECT_EQ(number->floatValue(), 42);
  f.drag({grab.x, grab.y - 6});
  EXPECT_EQ(number->floatValue(), 12);
  f.drag({grab.x, grab.y - 600});
  EXPECT_EQ(number->floatValue(), 6);
  EXPECT_EQ(actions.count, 3);
  // Shift re-anchors at 6 and walks the coarse options.
  CGPoint there{grab.x, grab.y - 600};
  f.drag(there, ZelEventModifierShift);
  f.drag({there.x, there.y + 6}, ZelEventModifierShift);
  EXPECT_EQ(number->floatValue(), 24);
  // Ctrl re-anchors at 24 and moves fine steps.
  CGPoint fine{there.x, there.y + 6};
  f.drag(fine, ZelEventModifierCommand);
  f.drag({fine.x, fine.y + 3}, ZelEventModifierCommand);
  EXPECT_EQ(number->floatValue(), 25);
}

TEST(NumberControl, AWheelNotchIsOneStepAndTypedNumbersShowInPlace) {
  ClickFixture f;
  auto p = SlopeParam();
  auto* number = f.add(std::make_unique<ZelNumberControl>(CGRectMake(20, 20, 68, 40), p.get()));
  number->setFloatValue(24);
  f.scroll(Centre(*number), 1);
  EXPECT_EQ(number->floatValue(), 30);
  // Coarse steps from between two options land on the next one that way.
  f.scroll(Centre(*number), -1, ZelEventModifierShift);
  EXPECT_EQ(number->floatValue(), 24);
  EXPECT_EQ(number->valueSteppedFrom(30, 1, ZelGranularityCoarse), 48);
  EXPECT_EQ(number->valueSteppedFrom(40, -1, ZelGranularityCoarse), 24);
  EXPECT_EQ(number->valueSteppedFrom(96, 1, ZelGranularityCoarse), 96);
  EXPECT_EQ(number->valueSteppedFrom(12, -3, ZelGranularityNormal), 6);

  number->setDisplayingTransientBufferValue(true);
  number->displayTransientBufferValue(ZelFormattedReadoutStringForValue("4", "", 14));
  ZelRecordingGraphicsContext ctx;
  f.window.render(ctx, CGRectMake(0, 0, 400, 300));
  EXPECT_EQ(ctx.texts(), std::vector<std::string>{"4"});
}

TEST(CycleControl, ClicksStepForwardShiftClicksBackAndBothWrapAndPulse) {
  ClickFixture f;
  auto p = ModeParam();
  auto* cycle = f.add(std::make_unique<ZelCycleControl>(CGRectMake(20, 20, 65, 46), p.get()));
  ActionCounter actions;
  actions.attach(*cycle);
  cycle->setFloatValue(0);
  EXPECT_EQ(cycle->textLayer()->string(), "Stereo");
  f.click(Centre(*cycle));
  EXPECT_EQ(cycle->floatValue(), 1);
  EXPECT_EQ(cycle->textLayer()->string(), "Mono");
  f.click(Centre(*cycle));
  f.click(Centre(*cycle));
  EXPECT_EQ(cycle->floatValue(), 0) << "wraps from the last value to the first";
  f.click(Centre(*cycle), ZelEventModifierShift);
  EXPECT_EQ(cycle->floatValue(), 2) << "and backwards from the first to the last";
  EXPECT_EQ(cycle->textLayer()->string(), "Mid/Side");
  EXPECT_EQ(actions.count, 4);
  EXPECT_EQ(cycle->valueCount(), 3);

  ASSERT_NE(cycle->textLayer()->animationForKey("pulse"), nullptr);
  f.runUntil(0.045);
  EXPECT_GT(cycle->textLayer()->presentationTransform().a, 1.05);
  f.runUntil(0.5);
  EXPECT_EQ(cycle->textLayer()->animationForKey("pulse"), nullptr) << "removed once done";
}

TEST(CycleControl, ShowsTheValueTextAndDisabledOnesIgnoreClicks) {
  ClickFixture f;
  auto p = ModeParam();
  auto* cycle = f.add(std::make_unique<ZelCycleControl>(CGRectMake(20, 20, 65, 46), p.get()));
  cycle->setFloatValue(1);
  cycle->setPreventInteraction(true);
  f.click(Centre(*cycle));
  EXPECT_EQ(cycle->floatValue(), 1);
  EXPECT_EQ(cycle->textLayer()->animationForKey("pulse"), nullptr);
}

TEST(BooleanControls, ClicksToggleAndTheStateShowsInTheLampOrTheGlow) {
  ClickFixture f;
  auto p = BooleanParam();
  auto* boolean = f.add(std::make_unique<ZelBooleanControl>(CGRectMake(20, 20, 80, 30), p.get()));
  boolean->setFloatValue(1);
  EXPECT_TRUE(boolean->isOn());
  EXPECT_EQ(boolean->textLayer()->string(), "On");
  f.click(Centre(*boolean));
  EXPECT_FALSE(boolean->isOn());
  EXPECT_EQ(boolean->textLayer()->string(), "Off");
  f.click(Centre(*boolean), ZelEventModifierShift);  // a boolean steps the same either way
  EXPECT_TRUE(boolean->isOn());

  auto master = BooleanParam({{"codesafeName", Str("MasterOnOff")}, {"color", Str("#D9822B")}});
  auto* power = f.add(std::make_unique<ZelGlowingBooleanControl>(CGRectMake(120, 20, 58, 56), master.get()));
  power->setFloatValue(1);
  EXPECT_EQ(power->textLayer()->string(), ZelIconGlyph::kPower);
  EXPECT_EQ(power->textLayer()->font().face, ZelFontFace::Icons);
  EXPECT_GT(power->textLayer()->glowRadius(), 0);
  ZelColor lit = power->textLayer()->foregroundColor();
  f.click(Centre(*power));
  EXPECT_EQ(power->floatValue(), 0);
  EXPECT_EQ(power->textLayer()->glowRadius(), 0);
  EXPECT_LT(power->textLayer()->foregroundColor().alpha, lit.alpha);
}

TEST(BooleanControls, ControlScaleEnlargesTheControl) {
  auto plain = BooleanParam();
  auto big = BooleanParam({{"controlScale", Num(1.5)}});
  ZelBooleanControl a(CGRectMake(0, 0, 120, 60), plain.get());
  ZelBooleanControl b(CGRectMake(0, 0, 120, 60), big.get());
  EXPECT_EQ(b.textLayer()->font().pointSize, a.textLayer()->font().pointSize * 1.5);
  EXPECT_GT(b.textLayer()->frame().size.height, a.textLayer()->frame().size.height);
}

TEST(ToggleControl, AClickFlipsItAndADragFlipsItOncePerCrossing) {
  ClickFixture f;
  auto p = Param({{"unit", Str("Indexed")}, {"maxValue", Num(1)}, {"stringValues", Strings({"Off", "On"})}});
  auto* toggle = f.add(std::make_unique<ZelToggleControl>(CGRectMake(20, 20, 56, 32), p.get()));
  ActionCounter actions;
  actions.attach(*toggle);
  toggle->setFloatValue(0);
  EXPECT_FALSE(toggle->isHorizontalSwitch());
  f.click(Centre(*toggle));
  EXPECT_EQ(toggle->floatValue(), 1);
  f.click(Centre(*toggle));
  EXPECT_EQ(toggle->floatValue(), 0);
  EXPECT_EQ(actions.count, 2);

  CGRect track = toggle->convertRectToView(toggle->trackRect(), nullptr);
  CGPoint low{CGRectGetMidX(track), track.origin.y + 2};
  f.down(low);
  f.drag({low.x, CGRectGetMaxY(track) - 2});
  EXPECT_EQ(toggle->floatValue(), 1);
  f.drag({low.x, CGRectGetMaxY(track) + 5});  // further on: no second flip
  f.drag({low.x, low.y});
  EXPECT_EQ(toggle->floatValue(), 0);
  f.up({low.x, low.y});
  EXPECT_EQ(toggle->floatValue(), 0) << "a drag is not also a click";
  EXPECT_EQ(actions.count, 4);
}

TEST(ToggleControl, TheThumbSlidesToTheOnEnd) {
  ClickFixture f;
  auto p = Param({{"maxValue", Num(1)}, {"horizontal", ZelPlist::boolean(true)}});
  auto* toggle = f.add(std::make_unique<ZelToggleControl>(CGRectMake(20, 20, 120, 30), p.get()));
  toggle->setFloatValue(0);
  f.runUntil(1);
  EXPECT_EQ(toggle->thumbLayer()->transform().tx, 0);
  toggle->setFloatValue(1);
  CGRect track = toggle->trackRect();
  EXPECT_EQ(toggle->thumbLayer()->transform().tx, track.size.width - track.size.height);
  f.runUntil(1.1);
  double midway = toggle->thumbLayer()->presentationTransform().tx;
  EXPECT_GT(midway, 0);
  EXPECT_LT(midway, track.size.width - track.size.height);
}

TEST(PresetControl, ArrowsStepAndReportAndTheNameAsksForThePresets) {
  ClickFixture f;
  auto presets = PresetsParam();
  auto* preset = f.add(std::make_unique<ZelPresetControl>(CGRectMake(20, 20, 240, 30), presets.get()));
  ActionCounter actions;
  actions.attach(*preset);
  struct Taps : FloatDelegateLog {
    int taps = 0;
    void floatControlDidTapMeaninglessly(ZelFloatControl&) override { ++taps; }
  } delegate;
  preset->setDelegate(&delegate);
  preset->setFloatValue(0);
  EXPECT_EQ(preset->presetName(), "Default");
  auto at = [&](CGRect part) { return preset->convertPointToView({CGRectGetMidX(part), CGRectGetMidY(part)}, nullptr); };
  f.click(at(preset->nextRect()));
  EXPECT_EQ(preset->presetName(), "Telephone");
  f.click(at(preset->previousRect()));
  f.click(at(preset->previousRect()));
  EXPECT_EQ(preset->presetName(), "AM Radio") << "wraps to the last";
  EXPECT_EQ(actions.count, 3);
  f.click(at(preset->nameRect()));
  EXPECT_EQ(delegate.taps, 1);
  EXPECT_EQ(preset->floatValue(), 2);
  EXPECT_EQ(actions.count, 3);
  preset->setFloatValue(1.7f);  // the whole part names it
  EXPECT_EQ(preset->presetName(), "Telephone");
}

TEST(PresetControl, ADirtyPresetIsShownInItalicsWithADot) {
  auto presets = PresetsParam();
  ZelPresetControl preset(CGRectMake(0, 0, 240, 30), presets.get());
  preset.setFloatValue(1);
  auto draw = [&] {
    ZelRecordingGraphicsContext ctx;
    preset.drawRect(ctx, preset.bounds());
    return ctx;
  };
  auto findName = [](const ZelRecordingGraphicsContext& ctx) {
    for (const auto& call : ctx.calls()) {
      if (call.text == "Telephone") return call;
    }
    return ZelRecordedCall{};
  };
  auto clean = draw();
  EXPECT_EQ(findName(clean).font.face, ZelFontFace::Medium);
  preset.setDirty(true);
  auto dirty = draw();
  EXPECT_EQ(findName(dirty).font.face, ZelFontFace::Italic);
  EXPECT_EQ(dirty.count(ZelRecordedCall::Kind::FillEllipse), clean.count(ZelRecordedCall::Kind::FillEllipse) + 1);
}
