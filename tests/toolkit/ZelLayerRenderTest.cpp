// What layers draw: hidden subtrees skipped, opacity composed through groups
// on real pixels, rasterization really resampling (and cached), and the
// areas reported to the host for model changes.
#include <gtest/gtest.h>

#include "LayerTestSupport.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"
#include "toolkit/core/ZelShapeLayer.h"
#include "toolkit/core/ZelTextLayer.h"
#include "toolkit/core/ZelTransaction.h"

using namespace zel;
using layertest::PixelContext;
using layertest::RecordingHost;

namespace {

std::unique_ptr<ZelLayer> filledLayer(CGRect frame, ZelColor color) {
  auto l = std::make_unique<ZelLayer>();
  l->setFrame(frame);
  l->setBackgroundColor(color);
  return l;
}

// Turns implicit animation off for a whole test body.
struct NoActions {
  ZelTransaction t;
  NoActions() { t.setDisableActions(true); }
};

// Lengths of the runs of equal coverage along row y.
std::vector<int> runsAlongRow(const PixelContext& ctx, int y) {
  std::vector<int> runs{1};
  for (int x = 1; x < ctx.width(); ++x) {
    if (std::abs(ctx.at(x, y)[3] - ctx.at(x - 1, y)[3]) < 0.02) ++runs.back();
    else runs.push_back(1);
  }
  return runs;
}

}  // namespace

TEST(ZelLayerRender, HiddenAndTransparentSubtreesAreNotDrawn) {
  NoActions quiet;
  ZelLayer root;
  root.setFrame(CGRectMake(0, 0, 100, 100));
  ZelLayer* shown = root.addSublayer(filledLayer(CGRectMake(0, 0, 10, 10), ZelColor::grey(0)));
  ZelLayer* hidden = root.addSublayer(filledLayer(CGRectMake(20, 0, 10, 10), ZelColor::grey(0.5)));
  hidden->addSublayer(filledLayer(CGRectMake(1, 1, 5, 5), ZelColor::grey(1)));
  hidden->setHidden(true);
  ZelLayer* clear = root.addSublayer(filledLayer(CGRectMake(40, 0, 10, 10), ZelColor::grey(0.5)));
  clear->addSublayer(filledLayer(CGRectMake(1, 1, 5, 5), ZelColor::grey(1)));
  clear->setOpacity(0);

  ZelRecordingGraphicsContext ctx;
  root.render(ctx);
  ASSERT_EQ(ctx.drawingCalls().size(), 1u);
  EXPECT_EQ(ctx.drawingCalls()[0].rootRect, CGRectMake(0, 0, 10, 10));
  EXPECT_EQ(ctx.saveDepth(), 0);

  // A sublayer transform applies about its centre; the parent's offset adds.
  shown->setTransform(ZelAffineTransform::scaling(2, 2));
  root.setFrame(CGRectMake(5, 0, 100, 100));
  ctx.clear();
  root.render(ctx);
  EXPECT_EQ(ctx.drawingCalls()[0].rootRect, CGRectMake(0, -5, 20, 20));
}

TEST(ZelLayerRender, OpacityComposesThroughGroups) {
  NoActions quiet;
  ZelLayer root;
  root.setFrame(CGRectMake(0, 0, 4, 4));
  ZelLayer* parent = root.addSublayer(filledLayer(CGRectMake(0, 0, 4, 4), ZelColor::rgb(1, 0, 0)));
  ZelLayer* child = parent->addSublayer(filledLayer(CGRectMake(2, 0, 2, 4), ZelColor::rgb(0, 0, 1)));
  parent->setOpacity(0.5);
  child->setOpacity(0.5);

  PixelContext ctx(4, 4, 1);
  root.render(ctx);
  // Left: the parent alone at 0.5. Right: blue at 0.5 over red, then the
  // whole group at 0.5 -- not red and blue each faded over the background.
  EXPECT_NEAR(ctx.at(0, 0)[0], 0.5, 1e-9);
  EXPECT_NEAR(ctx.at(0, 0)[3], 0.5, 1e-9);
  EXPECT_NEAR(ctx.at(3, 0)[0], 0.25, 1e-9);
  EXPECT_NEAR(ctx.at(3, 0)[2], 0.25, 1e-9);
  EXPECT_NEAR(ctx.at(3, 0)[3], 0.5, 1e-9);

  // A lone layer needs no group; its alpha still applies.
  ZelRecordingGraphicsContext rec;
  child->render(rec);
  EXPECT_EQ(rec.count(ZelRecordedCall::Kind::BeginGroup), 0u);
  EXPECT_DOUBLE_EQ(rec.drawingCalls().at(0).alpha, 0.5);
}

TEST(ZelLayerRender, RasterizationResamplesCoarselyAndCachesTheRaster) {
  NoActions quiet;
  ZelLayer root;
  root.setFrame(CGRectMake(0, 0, 100, 10));
  ZelLayer* stamp = root.addSublayer(std::make_unique<ZelLayer>());
  stamp->setFrame(CGRectMake(0, 0, 100, 10));
  ZelLayer* firstStripe = nullptr;
  for (int x = 0; x < 100; x += 8) {  // 4-point stripes, 4-point gaps
    ZelLayer* s = stamp->addSublayer(filledLayer(CGRectMake(x, 0, 4, 10), ZelColor::grey(0)));
    if (!firstStripe) firstStripe = s;
  }

  PixelContext sharp(100, 10, 1);
  root.render(sharp);
  for (int run : runsAlongRow(sharp, 5)) EXPECT_EQ(run, 4);

  stamp->setShouldRasterize(true);
  stamp->setRasterizationScale(0.15);
  stamp->setMagnificationFilter(ZelImageFilter::Nearest);
  PixelContext coarse(100, 10, 1);
  root.render(coarse);
  EXPECT_EQ(coarse.bitmapsMade, 1);
  // 15 source pixels across 100: no detail finer than about 6.7 points.
  std::vector<int> runs = runsAlongRow(coarse, 5);
  EXPECT_LE(runs.size(), 15u);
  for (size_t i = 1; i + 1 < runs.size(); ++i) EXPECT_GE(runs[i], 6);

  // The raster is reused until the subtree or the scale changes; the
  // layer's own opacity applies to the cached picture.
  PixelContext again(100, 10, 1);
  stamp->setOpacity(0.5);
  root.render(again);
  EXPECT_EQ(again.bitmapsMade, 0);
  firstStripe->setBackgroundColor(ZelColor::grey(1));
  root.render(again);
  EXPECT_EQ(again.bitmapsMade, 1);
  stamp->setRasterizationScale(1);
  root.render(again);
  EXPECT_EQ(again.bitmapsMade, 2);
  root.render(again);
  EXPECT_EQ(again.bitmapsMade, 2);
}

TEST(ZelLayerRender, ModelChangesReportTheirAreaToTheHost) {
  NoActions quiet;
  RecordingHost host(nullptr);
  ZelLayer root;
  root.setHost(&host);
  root.setFrame(CGRectMake(100, 100, 200, 200));
  ZelLayer* a = root.addSublayer(filledLayer(CGRectMake(10, 20, 30, 40), ZelColor::grey(0)));
  host.areas.clear();

  a->setBackgroundColor(ZelColor::grey(1));
  ASSERT_EQ(host.areas.size(), 1u);
  // In the host's coordinates, with a point of anti-aliasing slack.
  EXPECT_EQ(host.areas[0], CGRectMake(109, 119, 32, 42));

  host.areas.clear();
  a->setFrame(CGRectMake(60, 20, 30, 40));  // the old and the new place
  EXPECT_TRUE(CGRectContainsRect(host.unionOfAreas(), CGRectMake(110, 120, 80, 40)));

  // A stroked path reaches past the frame by half the line width.
  auto border = std::make_unique<ZelShapeLayer>();
  border->setFrame(CGRectMake(0, 0, 50, 50));
  ZelShapeLayer* shape = static_cast<ZelShapeLayer*>(root.addSublayer(std::move(border)));
  ZelPath p;
  p.addRect(CGRectMake(0, 0, 50, 50));
  shape->setLineJoin(ZelLineJoin::Round);
  shape->setStrokeColor(ZelColor::grey(1));
  shape->setLineWidth(2);
  host.areas.clear();
  shape->setPath(p);
  EXPECT_TRUE(CGRectContainsRect(host.unionOfAreas(), CGRectMake(99, 99, 52, 52)));

  // A parent that masks to its bounds clips what is reported.
  host.areas.clear();
  root.setMasksToBounds(true);
  a->setFrame(CGRectMake(190, 0, 30, 40));
  EXPECT_LE(CGRectGetMaxX(host.unionOfAreas()), 301);
  root.setHost(nullptr);
}

TEST(ZelLayerRender, ShapeAndTextLayersDrawTheirContent) {
  NoActions quiet;
  ZelShapeLayer shape;
  shape.setFrame(CGRectMake(0, 0, 20, 20));
  ZelPath p;
  p.addEllipseInRect(CGRectMake(2, 2, 16, 16));
  shape.setPath(p);
  shape.setFillColor(std::nullopt);
  shape.setStrokeColor(ZelColor::grey(1, 0.7));
  shape.setLineWidth(2);
  ZelRecordingGraphicsContext rec;
  shape.render(rec);
  ASSERT_EQ(rec.drawingCalls().size(), 1u);
  EXPECT_EQ(rec.drawingCalls()[0].kind, ZelRecordedCall::Kind::StrokePath);
  EXPECT_EQ(rec.drawingCalls()[0].lineWidth, 2);

  ZelTextLayer text;
  text.setFrame(CGRectMake(0, 0, 100, 20));
  text.setFont({ZelFontFace::Icons, 20});
  text.setAlignment(ZelTextAlignment::Center);
  text.setString("ab");
  rec.clear();
  text.render(rec);
  ASSERT_EQ(rec.texts(), std::vector<std::string>{"ab"});
  // 2 × 0.6 × 20 = 24 points wide, centred; ascent at the top.
  auto call = rec.drawingCalls()[0];
  EXPECT_NEAR(CGRectGetMidX(call.rootRect), 50, 1e-9);
  EXPECT_NEAR(CGRectGetMaxY(call.rootRect), 20, 1e-9);
}
