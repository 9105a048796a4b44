#include <gtest/gtest.h>

#include <filesystem>

#include "CairoTestSupport.h"

using namespace zel;
using zeltest::Canvas;

namespace {

const char* kSomeFontFile = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

struct InkBox {
  int top = -1, bottom = -1, left = -1, right = -1;
  bool empty() const { return top < 0; }
};

InkBox inkBox(Canvas& c) {
  InkBox b;
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      if (c.alpha(x, y) == 0) continue;
      if (b.top < 0) b.top = y;
      b.bottom = y;
      b.left = b.left < 0 ? x : std::min(b.left, x);
      b.right = std::max(b.right, x);
    }
  }
  return b;
}

}  // namespace

TEST(CairoText, DrawsUprightWithInkAboveTheBaseline) {
  auto text = std::make_shared<ZelCairoText>("/nonexistent/icons.otf");
  Canvas c(60, 30, 2, text);
  c.ctx->drawText("T", ZelFont{ZelFontFace::Medium, 20}, CGPointMake(5, 8));
  InkBox box = inkBox(c);
  ASSERT_FALSE(box.empty());
  const int baselineRow = (30 - 8) * 2;
  EXPECT_LE(box.bottom, baselineRow);
  EXPECT_GT(baselineRow - box.top, 20);  // a capital at 20 points stands ~14 points tall: 28 pixels
  // The T's bar is at the top: its widest rows are in the upper quarter.
  int widest = box.top, widestInk = 0;
  for (int y = box.top; y <= box.bottom; ++y) {
    if (c.inkInRow(y) > widestInk) widestInk = c.inkInRow(y), widest = y;
  }
  EXPECT_LT(widest - box.top, (box.bottom - box.top) / 4);
  EXPECT_GE(box.left, 5 * 2 - 2);
}

TEST(CairoText, MeasuresTheSameAtEveryScaleAndMatchesTheInk) {
  auto text = std::make_shared<ZelCairoText>("/nonexistent/icons.otf");
  Canvas one(100, 30, 1, text), two(100, 30, 2, text);
  const ZelFont font{ZelFontFace::Medium, 14};
  ZelTextMetrics m1 = one.ctx->measureText("HHHH", font), m2 = two.ctx->measureText("HHHH", font);
  EXPECT_EQ(m1.width, m2.width);
  EXPECT_GT(m1.ascent, 0.6 * 14);
  EXPECT_LT(m1.ascent, 1.2 * 14);
  EXPECT_GT(m1.descent, 0.1 * 14);
  EXPECT_LT(m1.descent, 0.5 * 14);
  ZelTextMetrics doubled = one.ctx->measureText("HHHH", ZelFont{ZelFontFace::Medium, 28});
  EXPECT_NEAR(doubled.width, 2 * m1.width, 0.02 * m1.width);
  EXPECT_GT(one.ctx->measureText("HHHH", ZelFont{ZelFontFace::Italic, 14}).width, 0);
  EXPECT_EQ(one.ctx->measureText("", font).width, 0);

  // The drawn ink spans about the measured advance (H has small side bearings).
  two.ctx->drawText("HHHH", font, CGPointMake(10, 10));
  InkBox box = inkBox(two);
  ASSERT_FALSE(box.empty());
  double inkWidthPt = (box.right - box.left + 1) / 2.0;
  EXPECT_NEAR(inkWidthPt, m1.width, 0.15 * m1.width);
}

TEST(CairoText, IconFaceFromAFileOrNothingWhenTheFileIsMissing) {
  auto missing = std::make_shared<ZelCairoText>("/nonexistent/Zel-Icons-Regular.otf");
  EXPECT_FALSE(missing->hasIconFont());
  Canvas none(40, 40, 1, missing);
  const ZelFont icons{ZelFontFace::Icons, 22};
  none.ctx->drawText("A", icons, CGPointMake(5, 10));
  EXPECT_TRUE(inkBox(none).empty());
  EXPECT_EQ(none.ctx->measureText("A", icons).width, 0);

  if (!std::filesystem::exists(kSomeFontFile)) GTEST_SKIP() << "no font file to stand in for the icon font";
  auto text = std::make_shared<ZelCairoText>(kSomeFontFile);
  ASSERT_TRUE(text->hasIconFont());
  Canvas c(40, 40, 2, text);
  ZelTextMetrics m = c.ctx->measureText("AA", icons);
  EXPECT_GT(m.width, 10);
  EXPECT_NEAR(c.ctx->measureText("A", icons).width * 2, m.width, 1e-9);
  EXPECT_GT(m.ascent, 10);
  c.ctx->setFillColor(ZelColor::rgb(1, 0, 0));
  c.ctx->drawText("A", icons, CGPointMake(5, 10));
  InkBox box = inkBox(c);
  ASSERT_FALSE(box.empty());
  EXPECT_LE(box.bottom, (40 - 10) * 2);
  EXPECT_GT((40 - 10) * 2 - box.top, 20);
  // An A is wide at its foot and pointed at its top.
  EXPECT_GT(c.inkInRow(box.bottom - 1), c.inkInRow(box.top + 1));
  // Drawn in the fill colour.
  int solid = 0;
  for (int y = box.top; y <= box.bottom; ++y) {
    for (int x = box.left; x <= box.right; ++x) {
      if (c.alpha(x, y) < 255) continue;
      ++solid;
      EXPECT_EQ(c.pixel(x, y), 0xFFFF0000u);
    }
  }
  EXPECT_GT(solid, 0);
}
