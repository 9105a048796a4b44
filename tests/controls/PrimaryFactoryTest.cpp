#include <gtest/gtest.h>

#include "PrimaryTestSupport.h"
#include "controls/ZelBooleanControl.h"
#include "controls/ZelControlLook.h"
#include "controls/ZelCycleControl.h"
#include "controls/ZelNoteSlider.h"
#include "controls/ZelNumberControl.h"
#include "controls/ZelPresetControl.h"
#include "controls/ZelPrimaryControls.h"
#include "controls/ZelToggleControl.h"
#include "controls/ZelVerticalSlider.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"

using namespace zel;
using namespace zel::testing;

namespace {
template <class T>
bool Makes(ZelPlist::Dictionary keys) {
  auto p = Param(std::move(keys));
  auto control = ZelMakePrimaryControl(CGRectMake(0, 0, 60, 60), p.get());
  // Exactly that class: a subclass would pass dynamic_cast to its base too.
  return control && typeid(*control) == typeid(T);
}
}  // namespace

TEST(PrimaryControls, TheControlTypeChoosesTheClassAndMasterOnOffIsAlwaysThePowerSwitch) {
  EXPECT_TRUE(Makes<ZelVerticalSlider>({}));
  EXPECT_TRUE(Makes<ZelVerticalSlider>({{"controlType", Str("Slider")}}));
  EXPECT_TRUE(Makes<ZelBooleanControl>({{"controlType", Str("Boolean")}}));
  EXPECT_TRUE(Makes<ZelCycleControl>({{"controlType", Str("Cycle")}}));
  EXPECT_TRUE(Makes<ZelNumberControl>({{"controlType", Str("Number")}}));
  EXPECT_TRUE(Makes<ZelToggleControl>({{"controlType", Str("Toggle")}}));
  EXPECT_TRUE(Makes<ZelNoteSlider>({{"controlType", Str("NoteSlider")}}));
  EXPECT_TRUE(Makes<ZelPresetControl>({{"controlType", Str("Preset")}}));
  EXPECT_TRUE(Makes<ZelGlowingBooleanControl>({{"codesafeName", Str("MasterOnOff")}, {"controlType", Str("Slider")}}));
  EXPECT_TRUE(Makes<ZelGlowingBooleanControl>({{"codesafeName", Str("MasterOnOff")}, {"controlType", Str("Toggle")}}));
}

TEST(PrimaryControls, OnlyTheSliderAndTheNumberControlShowTypedNumbers) {
  auto p = Param();
  ZelParameterControl slider(CGRectMake(0, 0, 69, 200), CGRectZero, p.get());
  EXPECT_TRUE(slider.acceptsTransientStringBuffers());
  auto number = Param({{"controlType", Str("Number")}});
  EXPECT_TRUE(ZelParameterControl(CGRectMake(0, 0, 69, 60), CGRectZero, number.get()).acceptsTransientStringBuffers());
  auto cycle = ModeParam();
  EXPECT_FALSE(ZelParameterControl(CGRectMake(0, 0, 69, 60), CGRectZero, cycle.get()).acceptsTransientStringBuffers());

  ZelStyledString s = ZelVerticalSlider::formattedReadoutStringForValue("2.5", "k", 16);
  EXPECT_EQ(s.text, "2.5k");
  EXPECT_EQ(s.font, (ZelFont{ZelFontFace::Medium, 16}));
  EXPECT_FALSE(s.color.has_value());
}

TEST(ControlLook, TheAccentIsTheParametersColourUnlessItWouldVanishOnTheBackdrop) {
  const ZelUITheme& light = *ZelUITheme::light();
  const ZelUITheme& dark = *ZelUITheme::dark();
  ZelColor orange = ZelColor::rgb(0.85, 0.51, 0.17);
  EXPECT_EQ(ZelLegibleAccent(orange, light), orange);
  EXPECT_EQ(ZelLegibleAccent(orange, dark), orange);
  ZelColor black = ZelColor::rgb(0, 0, 0);
  EXPECT_EQ(ZelLegibleAccent(black, light), black);
  EXPECT_EQ(ZelLegibleAccent(black, dark), dark.textColor());
  ZelColor grey = ZelDesaturated(orange, 1);
  EXPECT_DOUBLE_EQ(grey.red, grey.blue);
}

TEST(ControlLook, OnlyIconGlyphsAreSetInTheIconFont) {
  EXPECT_EQ(ZelValueFont("-\xE2\x88\x9E", 14).face, ZelFontFace::Medium);  // "-∞" has no icon glyph
  EXPECT_EQ(ZelValueFont("12.5", 14), (ZelFont{ZelFontFace::Medium, 14}));
  EXPECT_EQ(ZelValueFont(ZelIconGlyph::kPower, 14, 20).face, ZelFontFace::Icons);
  EXPECT_EQ(ZelValueFont(std::string("x") + ZelIconGlyph::kDot, 14, 20).pointSize, 20);
}
