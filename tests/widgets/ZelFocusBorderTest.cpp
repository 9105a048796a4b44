#include "toolkit/widgets/ZelFocusBorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "WidgetsTestSupport.h"

namespace {

using namespace zel;
using elementstest::Fixture;

TEST(ZelFocusBorder, DashesFitTheOutline) {
  // 100 × 40, square corners: L = 280, N = 56, exactly 3 and 2.
  ZelDashFit square = ZelFitDashesToOutline({100, 40}, 0);
  EXPECT_DOUBLE_EQ(square.length, 280);
  EXPECT_EQ(square.periods, 56);
  EXPECT_DOUBLE_EQ(square.dash, 3);
  EXPECT_DOUBLE_EQ(square.gap, 2);

  // Rounded corners shorten the outline; a whole number of 3 : 2 periods
  // still covers it exactly.
  ZelDashFit round = ZelFitDashesToOutline({100, 40}, 6);
  EXPECT_NEAR(round.length, 280 - 48 + 12 * std::numbers::pi, 1e-12);
  EXPECT_EQ(round.periods, 54);
  EXPECT_NEAR((round.dash + round.gap) * double(round.periods), round.length, 1e-9);
  EXPECT_NEAR(round.dash / round.gap, 1.5, 1e-12);

  // A tiny outline still gets one period rather than none.
  ZelDashFit tiny = ZelFitDashesToOutline({1, 1}, 0);
  EXPECT_EQ(tiny.periods, 1);
  EXPECT_DOUBLE_EQ(tiny.dash + tiny.gap, 4);
}

TEST(ZelFocusBorder, DashesMoveOnlyWhileVisible) {
  Fixture f;
  f.root().setWantsLayer(true);
  auto* border = static_cast<ZelFocusBorder*>(f.root().layer()->addSublayer(std::make_unique<ZelFocusBorder>()));
  border->updateWithFrame(CGRectMake(10, 10, 100, 40), 0);

  border->setOpacity(1);
  const ZelBasicAnimation* shift = border->animationForKey("PhaseShift");
  ASSERT_NE(shift, nullptr);
  EXPECT_EQ(border->lineDashPattern(), (std::vector<double>{3, 2}));

  // A steady crawl that keeps going past its first cycle.
  f.runUntil(0.5);
  EXPECT_NEAR(border->presentationLineDashPhase(), 2.5, 1e-9);
  f.runUntil(10.5);
  EXPECT_NEAR(border->presentationLineDashPhase(), 2.5, 1e-9);
  EXPECT_NE(border->animationForKey("PhaseShift"), nullptr);

  // A rounded outline refits the pattern when the border is shown again.
  border->updateWithFrame(CGRectMake(10, 10, 100, 40), 6);
  border->setOpacity(0.5);
  ZelDashFit fit = ZelFitDashesToOutline({100, 40}, 6);
  EXPECT_EQ(border->lineDashPattern(), (std::vector<double>{fit.dash, fit.gap}));
  EXPECT_DOUBLE_EQ(std::get<double>(*border->animationForKey("PhaseShift")->toValue()), 2 * fit.length / 54);

  border->setOpacity(0);
  EXPECT_EQ(border->animationForKey("PhaseShift"), nullptr);
  EXPECT_EQ(border->opacity(), 0);
}

TEST(ZelFocusBorder, StrokeIsTheColourAtSeventyPercent) {
  ZelFocusBorder border;
  ZelColor accent = ZelColor::rgb(0.9, 0.3, 0.1);
  border.setStrokeNSColor(accent);
  EXPECT_EQ(border.strokeNSColor(), accent);
  ASSERT_TRUE(border.strokeColor().has_value());
  EXPECT_EQ(*border.strokeColor(), accent.withAlpha(0.7));
}

}  // namespace
