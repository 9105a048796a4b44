#include "toolkit/widgets/ZelSymbolButton.h"

#include <gtest/gtest.h>

#include "WidgetsTestSupport.h"
#include "toolkit/widgets/ZelIconGlyphs.h"

namespace {

using namespace zel;
using elementstest::Fixture;

struct ButtonTest : ::testing::Test {
  Fixture f;
  ZelSymbolButton* button = nullptr;
  int actions = 0;

  void SetUp() override {
    auto b = std::make_unique<ZelSymbolButton>(CGRectMake(10, 10, 30, 24), ZelIconGlyph::kGear, 22,
                                               ZelColor::grey(0.4));
    b->setAction([this](ZelControl&) { ++actions; });
    button = f.root().addSubview(std::move(b));
  }
  void click() { button->mouseDown(ZelEvent::mouse(ZelEventType::LeftMouseDown, {25, 22})); }
  double scaleOf(const ZelLayer& layer) { return layer.presentationTransform().a; }
};

TEST_F(ButtonTest, LayersAreBuiltWithTheirGeometryAndOrder) {
  ASSERT_TRUE(button->layer());
  EXPECT_TRUE(button->layer()->masksToBounds());
  const auto& subs = button->layer()->sublayers();
  ASSERT_EQ(subs.size(), 3u);
  EXPECT_EQ(subs[0].get(), button->warningLight());
  EXPECT_EQ(subs[1].get(), button->spotlight());
  EXPECT_EQ(subs[2].get(), button->glyph());

  // An odd width still gives a round, whole-point disc.
  ZelSymbolButton odd(CGRectMake(0, 0, 25, 20), ZelIconGlyph::kBook, 13, ZelColor::grey(0));
  EXPECT_EQ(odd.spotlight()->frame().size, (CGSize{20, 20}));
  EXPECT_EQ(odd.spotlight()->frame().origin.x, std::round(odd.spotlight()->frame().origin.x));
  EXPECT_EQ(odd.glyph()->frame(), CGRectMake(6, 4, 13, 13));  // 5.5, 3.5 rounded
}

TEST_F(ButtonTest, ResetGlyphResizesAndRecolours) {
  std::string two = std::string(ZelIconGlyph::kUndo) + ZelIconGlyph::kRedo;
  button->resetGlyph(two, ZelColor::grey(0.9));
  EXPECT_EQ(button->glyph()->string(), two);
  EXPECT_EQ(button->glyphString(), two);
  EXPECT_EQ(button->glyph()->foregroundColor(), ZelColor::grey(0.9));
  EXPECT_EQ(button->glyph()->frame(), CGRectMake(-7, 1, 44, 22));  // two ems, still centred
}

TEST_F(ButtonTest, DisabledButtonDimsItsGlyphAndIgnoresClicks) {
  button->setEnabled(false);
  EXPECT_DOUBLE_EQ(button->glyph()->opacity(), 0.2);
  click();
  EXPECT_EQ(actions, 0);
  EXPECT_EQ(button->glyph()->animationForKey("pulse"), nullptr);

  button->setEnabled(true);
  EXPECT_EQ(button->glyph()->opacity(), 1);
  click();
  EXPECT_EQ(actions, 1);  // sent on the mouse-down itself
  ASSERT_NE(button->glyph()->animationForKey("pulse"), nullptr);

  // The pulse peaks at 1.2 and is gone once it has run forth and back.
  f.runUntil(0.09);
  EXPECT_NEAR(scaleOf(*button->glyph()), 1.2, 1e-9);
  f.runUntil(0.2);
  EXPECT_EQ(button->glyph()->animationForKey("pulse"), nullptr);
  EXPECT_EQ(scaleOf(*button->glyph()), 1);
}

TEST_F(ButtonTest, SelectionShowsTheSpotlight) {
  button->setSelected(true);
  EXPECT_TRUE(button->isSelected());
  EXPECT_EQ(button->spotlight()->opacity(), 1);
  button->setSelected(false);
  EXPECT_EQ(button->spotlight()->opacity(), 0);
}

TEST_F(ButtonTest, WarningPulsesOnlyWhenItChanges) {
  button->setWarning(true);
  EXPECT_EQ(button->warningLight()->opacity(), 1);
  ASSERT_NE(button->warningLight()->animationForKey("pulse"), nullptr);

  // Setting the same value mid-pulse does not restart it: the peak stays
  // where the first pulse put it.
  f.runUntil(0.1);
  button->setWarning(true);
  f.runUntil(0.33);
  EXPECT_NEAR(scaleOf(*button->warningLight()), 1.2, 1e-9);

  // The pulse ends after six round trips.
  f.runUntil(4.0);
  EXPECT_EQ(button->warningLight()->animationForKey("pulse"), nullptr);
  EXPECT_EQ(button->warningLight()->opacity(), 1);

  // Turning it off is a change: it pulses again while fading out.
  button->setWarning(false);
  EXPECT_FALSE(button->isWarning());
  EXPECT_EQ(button->warningLight()->opacity(), 0);
  EXPECT_NE(button->warningLight()->animationForKey("pulse"), nullptr);
}

TEST_F(ButtonTest, FlashReplacesARunningFlash) {
  button->flash();
  ASSERT_NE(button->spotlight()->animationForKey("flash"), nullptr);

  f.runUntil(0.1);
  EXPECT_GT(button->spotlight()->presentationOpacity(), 0.9);
  button->flash();  // starts over from dark
  EXPECT_EQ(button->spotlight()->presentationOpacity(), 0);
  EXPECT_EQ(button->spotlight()->animationKeys(), std::vector<std::string>{"flash"});
  f.runUntil(0.1 + 0.125);
  EXPECT_NEAR(button->spotlight()->presentationOpacity(), 1, 1e-9);
  f.runUntil(0.5);
  EXPECT_EQ(button->spotlight()->animationForKey("flash"), nullptr);
  EXPECT_EQ(button->spotlight()->presentationOpacity(), 0);  // the model is still unselected
}

}  // namespace
