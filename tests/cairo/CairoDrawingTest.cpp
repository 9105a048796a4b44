#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

#include "CairoTestSupport.h"
#include "toolkit/cairo/ZelCairoPath.h"

using namespace zel;
using zeltest::Canvas;

namespace {

std::shared_ptr<ZelCairoText> sharedText() {
  static auto text = std::make_shared<ZelCairoText>("/nonexistent/icons.otf");
  return text;
}

}  // namespace

TEST(CairoContext, RootSpaceIsYUpAndScaledByTheBackingScale) {
  for (double scale : {1.0, 2.0}) {
    Canvas c(10, 10, scale, sharedText());
    c.ctx->fillRect(CGRectMake(0, 0, 3, 2));  // bottom-left corner in y-up points
    const int s = static_cast<int>(scale);
    for (int y = 0; y < c.height; ++y) {
      for (int x = 0; x < c.width; ++x) {
        bool inside = x < 3 * s && y >= c.height - 2 * s;
        EXPECT_EQ(c.alpha(x, y), inside ? 255 : 0) << "scale " << scale << " at " << x << "," << y;
      }
    }
  }
}

TEST(CairoContext, HalfPointHairlineIsOneDeviceRowAtScaleTwoAndHalfCoveredAtOne) {
  Canvas c2(10, 10, 2, sharedText());
  c2.ctx->fillRect(CGRectMake(0, 5, 10, 0.5));
  // y 5 … 5.5 points is device rows (10 - 5.5) × 2 = 9 only.
  for (int y = 0; y < c2.height; ++y) EXPECT_EQ(c2.inkInRow(y), y == 9 ? 20 : 0) << "row " << y;
  EXPECT_EQ(c2.alpha(4, 9), 255);

  Canvas c1(10, 10, 1, sharedText());
  c1.ctx->fillRect(CGRectMake(0, 5, 10, 0.5));
  EXPECT_NEAR(c1.alpha(4, 4), 128, 2);
  EXPECT_EQ(c1.inkInRow(3) + c1.inkInRow(5), 0);
}

TEST(CairoContext, ClipsTransformsAndStateRestore) {
  Canvas c(20, 20, 1, sharedText());
  c.ctx->save();
  c.ctx->clipToRect(CGRectMake(5, 5, 5, 5));
  CGRect box = c.ctx->clipBoundingBox();
  EXPECT_EQ(box, CGRectMake(5, 5, 5, 5));
  c.ctx->translate(2, 0);  // the clip stays where it was set
  box = c.ctx->clipBoundingBox();
  EXPECT_EQ(box, CGRectMake(3, 5, 5, 5));
  EXPECT_EQ(c.ctx->currentTransform(), ZelAffineTransform::translation(2, 0));
  c.ctx->fillRect(CGRectMake(-100, -100, 300, 300));
  c.ctx->restore();
  EXPECT_EQ(c.ctx->currentTransform(), ZelAffineTransform::identity());
  EXPECT_EQ(c.alpha(7, 12), 255);  // point (7, 7)
  EXPECT_EQ(c.alpha(4, 12), 0);
  EXPECT_EQ(c.alpha(7, 16), 0);    // point (7, 3)

  // A singular transform draws nothing until it is restored away.
  c.ctx->save();
  c.ctx->scale(0, 1);
  c.ctx->fillRect(CGRectMake(0, 0, 20, 20));
  c.ctx->restore();
  EXPECT_EQ(c.alpha(1, 1), 0);
  c.ctx->fillRect(CGRectMake(0, 19, 1, 1));
  EXPECT_EQ(c.alpha(0, 0), 255);

  // Clipping to an ellipse: its centre is inside, the rectangle's corner not.
  Canvas e(20, 20, 1, sharedText());
  ZelPath ellipse;
  ellipse.addEllipseInRect(CGRectMake(0, 0, 20, 20));
  e.ctx->clipToPath(ellipse);
  e.ctx->fillRect(CGRectMake(0, 0, 20, 20));
  EXPECT_EQ(e.alpha(10, 10), 255);
  EXPECT_EQ(e.alpha(1, 1), 0);
}

TEST(CairoContext, AlphaAppliesPerShapeButAGroupCompositesOnce) {
  Canvas c(20, 10, 1, sharedText());
  // Without a group two overlapping shapes at 50 % build up where they meet.
  c.ctx->setAlpha(0.5);
  c.ctx->fillRect(CGRectMake(0, 0, 6, 10));
  c.ctx->fillRect(CGRectMake(3, 0, 6, 10));
  EXPECT_NEAR(c.alpha(1, 5), 128, 2);
  EXPECT_NEAR(c.alpha(4, 5), 191, 2);
  // In a group composited at 50 % the overlap looks like the rest.
  c.ctx->setAlpha(1);
  c.ctx->beginTransparencyGroup();
  c.ctx->fillRect(CGRectMake(10, 0, 6, 10));
  c.ctx->fillRect(CGRectMake(13, 0, 6, 10));
  c.ctx->endTransparencyGroup(0.5);
  EXPECT_NEAR(c.alpha(11, 5), 128, 2);
  EXPECT_NEAR(c.alpha(14, 5), 128, 2);
  // The alpha in effect outside the group multiplies the group's.
  Canvas g(10, 10, 1, sharedText());
  g.ctx->setAlpha(0.5);
  g.ctx->beginTransparencyGroup();
  g.ctx->fillRect(CGRectMake(0, 0, 10, 10));
  g.ctx->endTransparencyGroup(0.5);
  EXPECT_NEAR(g.alpha(5, 5), 64, 2);
}

TEST(CairoContext, PatternTilesAreAnchoredAtTheOriginAndSeamless) {
  // A 4 × 4 tile of distinct opaque greys in 2 × 2 point cells.
  auto tile = std::make_shared<ZelImage>(4, 4);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) {
      std::uint32_t v = 20 + 15 * (y * 4 + x);
      tile->setPixel(x, y, 0xFF000000u | v << 16 | v << 8 | v);
    }
  }
  // At scale 2 a cell is exactly the tile's pixels: every device pixel is
  // the tile pixel it stands on, the tile's top row at the top of each cell.
  Canvas c(8, 8, 2, sharedText());
  c.ctx->setFillPattern(tile, CGSizeMake(2, 2));
  c.ctx->fillRect(CGRectMake(0, 0, 8, 8));
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) ASSERT_EQ(c.pixel(x, y), tile->pixel(x % 4, y % 4)) << x << "," << y;
  }
  // At scale 1 the tile is resampled, but still repeats every cell.
  Canvas d(12, 12, 1, sharedText());
  d.ctx->setFillPattern(tile, CGSizeMake(2, 2));
  d.ctx->fillRect(CGRectMake(0, 0, 12, 12));
  for (int y = 0; y + 2 < d.height; ++y) {
    for (int x = 0; x + 2 < d.width; ++x) {
      ASSERT_EQ(d.pixel(x, y), d.pixel(x + 2, y)) << x << "," << y;
      ASSERT_EQ(d.pixel(x, y), d.pixel(x, y + 2)) << x << "," << y;
    }
  }
}

TEST(CairoContext, DashesFollowTheirPatternAndPhase) {
  auto onColumns = [](double phase) {
    Canvas c(24, 4, 1, sharedText());
    const double dash[] = {4, 4};
    c.ctx->setLineWidth(2);
    c.ctx->setLineDash(phase, dash);
    c.ctx->strokeLineSegment({0, 2}, {24, 2});
    std::vector<bool> on;
    for (int x = 0; x < c.width; ++x) on.push_back(c.alpha(x, 1) == 255);
    return on;
  };
  std::vector<bool> phase0 = onColumns(0), phase2 = onColumns(2);
  for (int x = 0; x < 24; ++x) {
    EXPECT_EQ(phase0[x], x % 8 < 4) << "phase 0, column " << x;
    EXPECT_EQ(phase2[x], (x + 2) % 8 < 4) << "phase 2, column " << x;
  }
}

TEST(CairoContext, ArcToMakesTangentCornersAndArcsRunCounterClockwise) {
  ZelTangentArc left = ZelTangentArcThroughCorner({0, 0}, {10, 0}, {10, 10}, 3);
  ASSERT_TRUE(left.valid);
  EXPECT_NEAR(left.start.x, 7, 1e-9);
  EXPECT_NEAR(left.end.y, 3, 1e-9);
  EXPECT_NEAR(left.centre.x, 7, 1e-9);
  EXPECT_NEAR(left.centre.y, 3, 1e-9);
  EXPECT_TRUE(left.counterClockwise);
  EXPECT_FALSE(ZelTangentArcThroughCorner({0, 0}, {10, 0}, {10, -10}, 3).counterClockwise);
  EXPECT_FALSE(ZelTangentArcThroughCorner({0, 0}, {5, 0}, {10, 0}, 3).valid);

  // A 40 × 40 square with corners of radius 10.
  Canvas c(40, 40, 1, sharedText());
  c.ctx->fillPath(ZelPath::roundedRect(CGRectMake(0, 0, 40, 40), 10));
  for (auto [x, y] : {std::pair{0, 0}, {39, 0}, {0, 39}, {39, 39}, {1, 1}}) EXPECT_EQ(c.alpha(x, y), 0);
  for (auto [x, y] : {std::pair{5, 5}, {34, 34}, {20, 0}, {0, 20}, {39, 20}}) EXPECT_EQ(c.alpha(x, y), 255);
  // The rounding is a circle of radius 10: a pixel whose centre is 9.2 away
  // from its centre is mostly ink, one 10.6 away mostly not.
  EXPECT_GT(c.alpha(3, 3), 128);
  EXPECT_LT(c.alpha(2, 2), 128);

  // A quarter arc from 0 to π/2 counter-clockwise covers the upper right
  // quadrant (y up); clockwise covers the other three.
  for (bool clockwise : {false, true}) {
    Canvas q(20, 20, 1, sharedText());
    ZelPath pie;
    pie.moveTo({10, 10});
    pie.arc({10, 10}, 8, 0, M_PI / 2, clockwise);
    pie.close();
    q.ctx->fillPath(pie);
    EXPECT_EQ(q.alpha(14, 6) == 255, !clockwise);  // point (14.5, 13.5)
    EXPECT_EQ(q.alpha(6, 14) == 255, clockwise);   // point (6.5, 5.5)
  }
}

TEST(CairoContext, ShadowsAreOffsetInRootSpaceBlurredAndClampedToOpaque) {
  Canvas c(40, 40, 2, sharedText());
  c.ctx->setFillColor(ZelColor::grey(1));
  c.ctx->setShadow(CGSizeMake(6, -6), 0, ZelColor::grey(0, 3.0));  // alpha above 1 clamps
  c.ctx->translate(10, 20);  // the offset does not follow the transform's scale
  c.ctx->scale(2, 2);
  c.ctx->fillRect(CGRectMake(0, 0, 5, 5));  // root (10, 20) … (20, 30)
  // Shadow at root (16, 14) … (26, 24): right of and below the shape.
  auto px = [&](double xPt, double yPt) { return c.pixel(static_cast<int>(xPt * 2), static_cast<int>((40 - yPt) * 2)); };
  EXPECT_EQ(px(23, 17), 0xFF000000u);  // shadow only: opaque black
  EXPECT_EQ(px(18, 22), 0xFFFFFFFFu);  // the shape covers its shadow
  EXPECT_EQ(px(30, 10) >> 24, 0u);

  Canvas b(40, 40, 1, sharedText());
  b.ctx->setShadow(CGSizeMake(0, 0), 6, ZelColor::grey(0, 1));
  b.ctx->fillRect(CGRectMake(10, 10, 20, 20));
  b.ctx->clearShadow();
  b.ctx->fillRect(CGRectMake(0, 0, 1, 1));
  // A soft edge: partly covered just outside the shape, fading with distance.
  int near = b.alpha(31, 20), far = b.alpha(35, 20);
  EXPECT_GT(near, 40);
  EXPECT_LT(near, 200);
  EXPECT_LT(far, near);
  EXPECT_EQ(b.alpha(2, 38), 0);  // the second shape has no shadow
}

TEST(CairoContext, ImagesDrawUprightAndNearestStaysBlocky) {
  auto image = std::make_shared<ZelImage>(2, 2);
  image->setPixel(0, 0, 0xFFFF0000u);  // top left red
  image->setPixel(1, 0, 0xFF00FF00u);
  image->setPixel(0, 1, 0xFF0000FFu);
  image->setPixel(1, 1, 0xFFFFFFFFu);
  Canvas c(4, 4, 1, sharedText());
  c.ctx->drawImage(*image, CGRectMake(0, 0, 4, 4), 1, ZelImageFilter::Nearest);
  EXPECT_EQ(c.pixel(0, 0), 0xFFFF0000u);
  EXPECT_EQ(c.pixel(3, 0), 0xFF00FF00u);
  EXPECT_EQ(c.pixel(0, 3), 0xFF0000FFu);
  EXPECT_EQ(c.pixel(3, 3), 0xFFFFFFFFu);
  Canvas faint(4, 4, 1, sharedText());
  faint.ctx->setAlpha(0.5);
  faint.ctx->drawImage(*image, CGRectMake(0, 0, 4, 4), 0.5, ZelImageFilter::Linear);
  EXPECT_NEAR(faint.alpha(1, 1), 64, 2);

  // A smooth ramp rendered at 15 % (20 points → 3 pixels) and drawn back
  // with the nearest filter shows 3 flat blocks; linear stays smooth.
  auto ramp = std::make_shared<ZelImage>(20, 1);
  for (int x = 0; x < 20; ++x) ramp->setPixel(x, 0, 0xFF000000u | static_cast<std::uint32_t>(x * 12) << 16);
  auto bitmap = c.ctx->makeBitmapContext(3, 3, 0.15);
  bitmap->drawImage(*ramp, CGRectMake(0, 0, 20, 20), 1, ZelImageFilter::Linear);
  std::shared_ptr<const ZelImage> small = bitmap->makeImage();
  ASSERT_EQ(small->width(), 3);
  EXPECT_EQ(small->pixel(1, 1) >> 24, 255u);
  auto distinctReds = [&](ZelImageFilter filter) {
    Canvas up(20, 2, 1, sharedText());
    up.ctx->drawImage(*small, CGRectMake(0, 0, 20, 2), 1, filter);
    std::set<int> reds;
    for (int x = 0; x < 20; ++x) reds.insert(up.red(x, 0));
    return reds.size();
  };
  EXPECT_EQ(distinctReds(ZelImageFilter::Nearest), 3u);
  EXPECT_GT(distinctReds(ZelImageFilter::Linear), 6u);
}

TEST(ZelImage, InvertsColourOnStraightValuesAndKeepsAlpha) {
  ZelImage image(3, 1);
  image.setPixel(0, 0, 0x80800000u);  // red at 50 %
  image.setPixel(1, 0, 0xFF000000u);  // opaque black
  image.setPixel(2, 0, 0x00000000u);
  auto inv = image.inverted();
  EXPECT_EQ(inv->pixel(0, 0), 0x80008080u);  // cyan at 50 %, premultiplied
  EXPECT_EQ(inv->pixel(1, 0), 0xFFFFFFFFu);
  EXPECT_EQ(inv->pixel(2, 0), 0u);
  EXPECT_EQ(image.pixel(5, 0), 0u);
  EXPECT_EQ(ZelImage(-3, 2).width(), 0);
}
