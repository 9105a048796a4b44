#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/sketch/SketchTestSupport.h"
#include "products/vantry/sketch/ZelVantryParameterSketch.h"

namespace zel::testing {
namespace {

using Sketch = ZelVantryParameterSketch;

struct CurveFixture : ::testing::Test {
  std::unique_ptr<ZelConfig> config = ConfigWithInitialValues(std::vector<float>(12, 0));
  std::unique_ptr<Sketch> sketch = [this] {
    auto made = std::make_unique<Sketch>(CGRectMake(0, 0, 46, 180), config.get());
    made->addPaths();
    return made;
  }();

  // Draws one frame with the filter settings; every filter flag set.
  void draw(float lowCut, float highCut, float slope, std::vector<std::uint8_t> flags = {}) {
    std::vector<float> v(12, 0);
    v[Sketch::kLowCutPid] = lowCut;
    v[Sketch::kHighCutPid] = highCut;
    v[Sketch::kSlopePid] = slope;
    if (flags.empty()) {
      flags.assign(12, 0);
      flags[Sketch::kLowCutPid] = flags[Sketch::kHighCutPid] = flags[Sketch::kSlopePid] = 1;
    }
    sketch->getFrameForParameterValues(v, v, flags);
  }
  double decibels(std::size_t k) const { return sketch->graphPointsY()[k] * 15.0 - 7.5; }
  // The graph point nearest to a frequency.
  std::size_t pointAt(double hz) const {
    const auto f = sketch->graphFreqs();
    std::size_t best = 0;
    for (std::size_t k = 1; k < f.size(); ++k)
      if (std::abs(std::log(f[k] / hz)) < std::abs(std::log(f[best] / hz))) best = k;
    return best;
  }
  // dB per octave between the graph points nearest to two frequencies.
  double slopeBetween(double lowHz, double highHz) const {
    const std::size_t a = pointAt(lowHz), b = pointAt(highHz);
    return (decibels(b) - decibels(a)) / std::log2(sketch->graphFreqs()[b] / sketch->graphFreqs()[a]);
  }
};

TEST_F(CurveFixture, OrderIsSlopeOverSixWithOrderOneAtLeast) {
  draw(5000, 1e9, 6);
  const std::vector<float> six(sketch->graphPointsY().begin(), sketch->graphPointsY().end());
  EXPECT_NEAR(slopeBetween(125, 1000), 6.0, 0.1);
  draw(5000, 1e9, 3);
  EXPECT_EQ(std::vector<float>(sketch->graphPointsY().begin(), sketch->graphPointsY().end()), six);

  draw(2000, 1e9, 24);  // order 4 high-pass
  EXPECT_NEAR(slopeBetween(170, 660), 24.0, 0.2);
  draw(10, 200, 12);  // order 2 low-pass falls as steeply
  EXPECT_NEAR(slopeBetween(800, 5000), -12.0, 0.1);
}

TEST_F(CurveFixture, WidestBandIsFlatAtHalfHeightExceptNearTheEnds) {
  draw(20, 20000, 6);
  const CGRect area = sketch->getPathBounds(sketch->curve());
  const auto& elements = sketch->curve()->path().elements();
  ASSERT_EQ(elements.size(), Sketch::kGraphPoints);
  for (std::size_t k = pointAt(100); k <= pointAt(4000); ++k) {
    EXPECT_NEAR(decibels(k), 0.0, 0.25) << k;
    EXPECT_NEAR(elements[k].p1.y, CGRectGetMidY(area), 0.25 / 15 * area.size.height) << k;
  }
  EXPECT_NEAR(decibels(0), -10 * std::log10(5.0), 0.01);  // an octave below the high-pass
  EXPECT_NEAR(decibels(127), -3.0103, 0.01);              // at the low-pass
}

TEST_F(CurveFixture, FilterTermsAreCappedAtNinetySixDecibels) {
  draw(20000, 20000, 48);  // order 8: (2000)^16 at 10 Hz overflows a float
  for (std::size_t k = 0; k < Sketch::kGraphPoints; ++k) ASSERT_TRUE(std::isfinite(sketch->graphPointsY()[k])) << k;
  EXPECT_NEAR(decibels(0), -96.0, 0.01);
  // The path clips what lies below the graph at -1 (-22.5 dB).
  const CGRect area = sketch->getPathBounds(sketch->curve());
  EXPECT_DOUBLE_EQ(sketch->curve()->path().elements()[0].p1.y, CGRectGetMinY(area) - area.size.height);
}

TEST_F(CurveFixture, CurveIsRecomputedOnlyWhenAFilterParameterChanged) {
  draw(20, 20000, 6);
  const ZelPath before = sketch->curve()->path();
  std::vector<std::uint8_t> degradeOnly(12, 0);
  degradeOnly[Sketch::kDegradePid] = 1;
  draw(1000, 2000, 24, degradeOnly);
  EXPECT_EQ(sketch->curve()->path(), before);
  std::vector<std::uint8_t> slopeOnly(12, 0);
  slopeOnly[Sketch::kSlopePid] = 1;
  draw(sketch->graphFreqs()[64], 1e9, 24, slopeOnly);
  EXPECT_NE(sketch->curve()->path(), before);
  EXPECT_NEAR(decibels(64), -3.0103, 0.01);
}

TEST(VantryStamp, RasterizationScaleFollowsDegradeTimesMix) {
  auto config = ConfigWithInitialValues(std::vector<float>(12, 0));
  Sketch sketch(CGRectMake(0, 0, 46, 180), config.get());
  FakeSketchHost host(2.0);
  ZelLayer* stamp = host.logoStampLayer();
  sketch.setPowerbox(&host);
  EXPECT_TRUE(stamp->shouldRasterize());
  EXPECT_EQ(stamp->magnificationFilter(), ZelImageFilter::Nearest);
  EXPECT_EQ(stamp->rasterizationScale(), 2.0);

  auto frame = [&](float degrade, float mix, std::size_t flaggedPid) {
    std::vector<float> v(12, 0);
    v[Sketch::kDegradePid] = degrade;
    v[Sketch::kMixPid] = mix;
    std::vector<std::uint8_t> c(12, 0);
    c[flaggedPid] = 1;
    sketch.getFrameForParameterValues(v, v, c);
    return stamp->rasterizationScale();
  };
  EXPECT_DOUBLE_EQ(frame(100, 100, Sketch::kDegradePid), 0.15 * 2);  // the coarsest: 15 %
  EXPECT_DOUBLE_EQ(frame(0, 100, Sketch::kDegradePid), 2.0);         // sharp at 0 %
  EXPECT_NEAR(frame(50, 50, Sketch::kMixPid), ((1 - std::sqrt(0.5)) * 0.85 + 0.15) * 2, 1e-9);
  EXPECT_DOUBLE_EQ(frame(100, 0, Sketch::kMixPid), 2.0);  // no mix, no degradation
  // Other changes leave the stamp alone.
  EXPECT_DOUBLE_EQ(frame(100, 100, Sketch::kLowCutPid), 2.0);

  EXPECT_DOUBLE_EQ(Sketch::stampRasterizationScale(std::numeric_limits<float>::quiet_NaN(), 100, 1), 1.0);
  EXPECT_DOUBLE_EQ(Sketch::stampRasterizationScale(-50, 100, 1), 1.0);
}

TEST(SketchPathBounds, LargestCentredSquareInWholePointsInsetByPathInset) {
  auto config = ConfigWithInitialValues({0});
  RecordingSketch base(CGRectMake(0, 0, 120.5, 50.2), config.get());
  // Wider than high: centred horizontally, base inset (8, 8).
  EXPECT_EQ(base.getPathBounds(nullptr), CGRectMake(35 + 8, 8, 34, 34));
  base.setFrame(CGRectMake(0, 0, 61, 40));
  EXPECT_EQ(base.getPathBounds(nullptr), CGRectMake(10 + 8, 8, 24, 24));  // floor(10.5)

  // Higher than wide, measured on the layer's superlayer, product inset
  // (10, 16).
  Sketch product(CGRectMake(0, 0, 46.7, 100.9), config.get());
  product.addPaths();
  EXPECT_EQ(product.getPathBounds(product.curve()), CGRectMake(10, 27 + 16, 26, 14));
  ZelShapeLayer loose;  // no superlayer: the view's bounds
  EXPECT_EQ(product.getPathBounds(&loose), CGRectMake(10, 43, 26, 14));
}

TEST(SketchPath, PolylineClipsPointsAndSpreadsThemEvenly) {
  auto config = ConfigWithInitialValues({0});
  RecordingSketch sketch(CGRectMake(0, 0, 100, 100), config.get());  // area (8, 8, 84, 84)
  auto* shape = static_cast<ZelShapeLayer*>(sketch.layer()->addSublayer(ZelParameterSketch::styledShapeLayerWithAlpha(1)));
  shape->setFrame(sketch.layer()->bounds());

  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float points[] = {-5, 0, 0.5f, 1, 7, nan};
  sketch.updatePath(shape, true, points, 6);
  const auto& e = shape->path().elements();
  ASSERT_EQ(e.size(), 6u);
  EXPECT_EQ(e[0].type, ZelPathElement::Type::MoveTo);
  const double xs[] = {8, 24.8, 41.6, 58.4, 75.2, 92};
  const double ys[] = {8 - 84, 8, 50, 92, 8 + 168, 8 - 84};
  for (std::size_t i = 0; i < 6; ++i) {
    if (i > 0) {
      EXPECT_EQ(e[i].type, ZelPathElement::Type::LineTo);
    }
    EXPECT_NEAR(e[i].p1.x, xs[i], 1e-9) << i;
    EXPECT_NEAR(e[i].p1.y, ys[i], 1e-9) << i;
  }

  const float column[] = {0.25f, 1};
  sketch.updatePath(shape, false, column, 2);
  ASSERT_EQ(shape->path().elements().size(), 2u);
  EXPECT_EQ(shape->path().elements()[0].p1, (CGPoint{29, 8}));
  EXPECT_EQ(shape->path().elements()[1].p1, (CGPoint{92, 92}));
}

}  // namespace
}  // namespace zel::testing
