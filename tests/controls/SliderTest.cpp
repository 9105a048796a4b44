#include <gtest/gtest.h>

#include "PrimaryTestSupport.h"
#include "controls/ZelNoteSlider.h"
#include "controls/ZelVerticalSlider.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"

using namespace zel;
using namespace zel::testing;

namespace {

// A 0 ... 100 slider (steps 1 / 0.1 / 10) standing in a window at (20, 20).
struct SliderFixture : ClickFixture {
  explicit SliderFixture(ZelPlist::Dictionary keys = {}, CGRect frame = CGRectMake(20, 20, 65, 200))
      : parameter(Param(std::move(keys))) {
    slider = add(std::make_unique<ZelVerticalSlider>(frame, parameter.get()));
    actions.attach(*slider);
  }
  // The window point on the track at `position` (0 ... 1).
  CGPoint at(double position) const { return slider->convertPointToView(slider->geometry().pointAt(position), nullptr); }
  CGPoint offset(CGPoint p, double along) const {
    return slider->geometry().horizontal ? CGPointMake(p.x + along, p.y) : CGPointMake(p.x, p.y + along);
  }
  double length() const { return slider->geometry().trackLength(); }
  std::vector<std::string> drawnTexts() {
    ZelRecordingGraphicsContext ctx;
    window.render(ctx, CGRectMake(0, 0, 400, 300));
    return ctx.texts();
  }

  std::unique_ptr<ZelParameter> parameter;
  ZelVerticalSlider* slider;
  ActionCounter actions;
};

bool Contains(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

TEST(VerticalSlider, GrabbingAnywhereNeverJumpsAndTheDragFollowsTheMouseOverTheTrack) {
  SliderFixture f;
  f.slider->setFloatValue(0);
  // A click far from the knob leaves the value alone and reports nothing.
  f.click(f.at(0.8));
  EXPECT_EQ(f.slider->floatValue(), 0);
  EXPECT_EQ(f.actions.count, 0);
  // Grabbed high up, half a track's length upwards reaches the middle.
  CGPoint grab = f.at(0.3);
  f.down(grab);
  f.drag(f.offset(grab, f.length() / 4));
  EXPECT_EQ(f.slider->floatValue(), 25);
  f.drag(f.offset(grab, f.length() / 2));
  EXPECT_EQ(f.slider->floatValue(), 50);
  EXPECT_EQ(f.actions.count, 2);
  // A drag event that does not change the value reports nothing.
  f.drag(f.offset(grab, f.length() / 2 + 0.1));
  EXPECT_EQ(f.actions.count, 2);
  f.up(f.offset(grab, f.length() / 2));
  EXPECT_TRUE(f.slider->userControlling());
}

TEST(VerticalSlider, PastTheEndsTheValueHoldsAndTurningBackActsAtOnce) {
  SliderFixture f;
  f.slider->setFloatValue(90);
  CGPoint grab = f.at(0.9);
  f.down(grab);
  f.drag(f.offset(grab, f.length()));  // far past the top
  EXPECT_EQ(f.slider->floatValue(), 100);
  f.drag(f.offset(grab, f.length() - f.length() / 10));
  EXPECT_EQ(f.slider->floatValue(), 90);
}

TEST(VerticalSlider, AGranularityChangeMidDragReanchorsSoTheValueStaysContinuous) {
  SliderFixture f;
  f.slider->setFloatValue(0);
  CGPoint grab = f.at(0);
  f.down(grab);
  f.drag(f.offset(grab, f.length() * 0.37));
  ASSERT_EQ(f.slider->floatValue(), 37);
  // Shift: coarse steps from where the value is, not from the grab point.
  CGPoint here = f.offset(grab, f.length() * 0.37 + 1);
  f.drag(here, ZelEventModifierShift);
  EXPECT_EQ(f.slider->floatValue(), 40);
  f.drag(f.offset(here, f.length() * 0.2), ZelEventModifierShift);
  EXPECT_EQ(f.slider->floatValue(), 60);
  // Ctrl: fine steps, ten times slower, again from the current value.
  CGPoint fine = f.offset(here, f.length() * 0.2);
  f.drag(fine, ZelEventModifierCommand);
  EXPECT_EQ(f.slider->floatValue(), 60);
  f.drag(f.offset(fine, f.length() * 0.1), ZelEventModifierCommand);
  EXPECT_NEAR(f.slider->floatValue(), 61, 1e-4);  // a tenth of the 10 a normal drag would make
  // Releasing Ctrl: normal speed from there on.
  CGPoint normal = f.offset(fine, f.length() * 0.1);
  f.drag(normal);
  f.drag(f.offset(normal, -f.length() * 0.1));
  EXPECT_EQ(f.slider->floatValue(), 51);
}

// Ten points of track per notch, fine and coarse, are in the gestures script;
// here the case where a step is wider than a notch's travel.
TEST(VerticalSlider, WheelNotchesMoveAtLeastOneStep) {
  SliderFixture coarse({{"granularity", Num(25)}});
  coarse.slider->setFloatValue(50);
  coarse.scroll(coarse.at(0.5), -1);
  EXPECT_EQ(coarse.slider->floatValue(), 25);
}

TEST(VerticalSlider, HorizontalSlidersDragAlongX) {
  SliderFixture f({{"horizontal", ZelPlist::boolean(true)}}, CGRectMake(20, 20, 200, 40));
  f.slider->setFloatValue(10);
  CGPoint grab = f.at(0.1);
  f.down(grab);
  f.drag(CGPointMake(grab.x, grab.y + 30));  // across the track: nothing
  EXPECT_EQ(f.slider->floatValue(), 10);
  f.drag(f.offset(grab, f.length() / 2));
  EXPECT_EQ(f.slider->floatValue(), 60);
}

TEST(VerticalSlider, ShowsTheTypedNumberInPlaceOfTheValueUntilDiscarded) {
  SliderFixture f({{"formatString", Str("%0.0f")}});
  f.slider->setFloatValue(42);
  auto texts = f.drawnTexts();
  EXPECT_TRUE(Contains(texts, "42"));
  f.slider->setDisplayingTransientBufferValue(true);
  f.slider->displayTransientBufferValue(ZelVerticalSlider::formattedReadoutStringForValue("12.", "", 14));
  texts = f.drawnTexts();
  EXPECT_TRUE(Contains(texts, "12."));
  EXPECT_FALSE(Contains(texts, "42"));
  ZelTransientBufferDisplayClear(f.slider);
  EXPECT_FALSE(f.slider->displayingTransientBufferValue());
  texts = f.drawnTexts();
  EXPECT_FALSE(Contains(texts, "12."));
}

TEST(VerticalSlider, TheParameterControlTypesIntoIt) {
  auto parameter = Param({{"formatString", Str("%0.1f")}});
  ZelParameterControl control(CGRectMake(0, 0, 69, 240), CGRectZero, parameter.get());
  auto* slider = dynamic_cast<ZelVerticalSlider*>(control.primaryControl());
  ASSERT_NE(slider, nullptr);
  control.setFocused(true);
  control.setTransientStringValue("7.5");
  EXPECT_TRUE(slider->displayingTransientBufferValue());
  EXPECT_EQ(slider->transientString().text, "7.5");
  EXPECT_EQ(slider->transientString().font.pointSize, slider->transientStringPreferredFontSize());
  control.setFocused(false);  // losing focus drops it
  EXPECT_FALSE(slider->displayingTransientBufferValue());
}

TEST(VerticalSlider, TheFocusBorderFollowsTheKnob) {
  SliderFixture f;
  f.slider->setFloatValue(0);
  f.slider->setHighlit(true);
  ZelFocusBorder* border = f.slider->highlight();
  EXPECT_EQ(border->opacity(), 1);
  EXPECT_EQ(border->superlayer(), f.slider->layer());
  CGRect low = border->frame();
  EXPECT_TRUE(CGRectContainsRect(low, f.slider->geometry().knobRect(0)));
  f.slider->setFloatValue(100);
  EXPECT_TRUE(CGRectContainsRect(border->frame(), f.slider->geometry().knobRect(1)));
  EXPECT_GT(border->frame().origin.y, low.origin.y);
  f.slider->setHighlit(false);
  EXPECT_EQ(border->opacity(), 0);
}

TEST(VerticalSlider, DrawsCueTextsOnAKilohertzScale) {
  SliderFixture f;
  auto frequency = FrequencyParam();
  auto* slider = f.add(std::make_unique<ZelVerticalSlider>(CGRectMake(200, 20, 65, 200), frequency.get()));
  slider->setFloatValue(2500);
  auto texts = f.drawnTexts();
  for (const char* cue : {"50", "200", "1", "5", "k"}) EXPECT_TRUE(Contains(texts, cue)) << cue;
  EXPECT_TRUE(Contains(texts, "2.50"));
  EXPECT_TRUE(Contains(texts, "kHz"));
}

TEST(NoteSlider, NamesMidiNotesWithSharps) {
  EXPECT_EQ(ZelNoteName(0), "C-1");
  EXPECT_EQ(ZelNoteName(60), "C4");
  EXPECT_EQ(ZelNoteName(61), "C#4");
  EXPECT_EQ(ZelNoteName(69.4f), "A4");
  EXPECT_EQ(ZelNoteName(127), "G9");
  EXPECT_EQ(ZelNoteName(-1), "B-2");

  SliderFixture f;
  auto note = Param({{"unit", Str("Note")}, {"maxValue", Num(127)}, {"cueValues", Numbers({36, 96})}});
  auto* slider = f.add(std::make_unique<ZelNoteSlider>(CGRectMake(200, 20, 65, 200), note.get()));
  slider->setFloatValue(70);
  auto texts = f.drawnTexts();
  EXPECT_TRUE(Contains(texts, "A#4"));
  EXPECT_TRUE(Contains(texts, "C2"));
  EXPECT_TRUE(Contains(texts, "C7"));
}

TEST(NoteSlider, TypedNoteNamesReadBackAsTheirNotes) {
  for (int note = -12; note <= 127; ++note) EXPECT_EQ(ZelNoteFromName(ZelNoteName(float(note))), float(note)) << note;
  EXPECT_EQ(ZelNoteFromName("Bb2"), 46.0f);
  EXPECT_EQ(ZelNoteFromName("b2"), 47.0f);
  EXPECT_EQ(ZelNoteFromName("e#3"), 53.0f);
  EXPECT_EQ(ZelNoteFromName("Cb4"), 59.0f);
  for (const char* bad : {"", "H3", "A", "A#", "A#x", "3", "A123", "A-", "#3"})
    EXPECT_EQ(ZelNoteFromName(bad), std::nullopt) << bad;
}
