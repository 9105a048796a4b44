// The view tree: hit testing, coordinates, invalidation and drawing.
#include <gtest/gtest.h>

#include "tests/toolkit/ViewTestSupport.h"
#include "toolkit/core/ZelDirtyRegion.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"

namespace zel::testing {
namespace {

TEST(ViewHitTest, TopmostVisibleViewWinsAndHiddenSubtreesAreSkipped) {
  WindowFixture f;
  ZelView* a = f.root().addSubview(probe("a", CGRectMake(10, 10, 100, 100)));
  ProbeView* b = f.root().addSubview(probe("b", CGRectMake(50, 50, 100, 100)));
  ZelView* bChild = b->addSubview(probe("bChild", CGRectMake(0, 0, 10, 10)));
  // A child reaching outside its superview is not hit there.
  ZelView* overhang = a->addSubview(probe("overhang", CGRectMake(90, -20, 40, 40)));

  EXPECT_EQ(f.window.hitTest({60, 60}), b);  // b was added last: on top
  EXPECT_EQ(f.window.hitTest({55, 55}), bChild);
  EXPECT_EQ(f.window.hitTest({20, 20}), a);
  EXPECT_EQ(f.window.hitTest({105, 5}), &f.root());  // overhang's part outside a
  EXPECT_EQ(f.window.hitTest({105, 15}), overhang);
  EXPECT_EQ(f.window.hitTest({150, 150}), &f.root());  // max edges are outside
  EXPECT_EQ(f.window.hitTest({149.9, 149.9}), b);

  b->setHidden(true);
  EXPECT_EQ(f.window.hitTest({55, 55}), a);  // neither b nor its child
  EXPECT_EQ(f.window.hitTest({120, 120}), &f.root());
  EXPECT_TRUE(bChild->isHiddenOrHasHiddenAncestor());
  EXPECT_EQ(f.window.hitTest({500, 10}), nullptr);
}

TEST(ViewHitTest, OffsetsBoundsOriginsAndLayerTransformsAreHonoured) {
  WindowFixture f;
  ZelView* outer = f.root().addSubview(probe("outer", CGRectMake(100, 50, 200, 200)));
  outer->setBoundsOrigin({10, 20});  // shows its content shifted by (-10, -20)
  ZelView* inner = outer->addSubview(probe("inner", CGRectMake(10, 20, 40, 40)));
  EXPECT_EQ(f.window.hitTest({101, 51}), inner);
  EXPECT_EQ(f.window.hitTest({139, 89}), inner);
  EXPECT_EQ(f.window.hitTest({141, 91}), outer);
  EXPECT_EQ(inner->convertPointToView({0, 0}, nullptr), (CGPoint{100, 50}));
  EXPECT_EQ(inner->convertPointFromView({30, 40}, outer), (CGPoint{20, 20}));
  EXPECT_EQ(outer->convertRectToView(CGRectMake(10, 20, 5, 5), nullptr), CGRectMake(100, 50, 5, 5));

  // Scaled by 2 about its centre, the 40-point view covers 80 points.
  inner->setWantsLayer(true);
  inner->layer()->setTransform(ZelAffineTransform::scaling(2, 2));
  EXPECT_EQ(f.window.hitTest({150, 100}), inner);  // outside its frame, inside its superview
  EXPECT_EQ(f.window.hitTest({161, 100}), outer);
  EXPECT_EQ(f.window.hitTest({170, 100}), outer);
  EXPECT_EQ(inner->convertPointToView({20, 20}, nullptr), (CGPoint{120, 70}));  // the centre stays
  EXPECT_EQ(inner->convertPointToView({0, 0}, nullptr), (CGPoint{80, 30}));
  CGPoint back = inner->convertPointFromView({80, 30}, nullptr);
  EXPECT_NEAR(back.x, 0, 1e-12);
  EXPECT_NEAR(back.y, 0, 1e-12);

  inner->layer()->setTransform(ZelAffineTransform::scaling(0, 0));  // collapsed: nothing to hit
  EXPECT_EQ(f.window.hitTest({120, 70}), outer);
}

TEST(ViewInvalidation, SetNeedsDisplayMarksExactlyTheViewInWindowCoordinates) {
  WindowFixture f;
  ZelRecordingGraphicsContext ctx;
  f.window.displayIfNeeded(ctx);
  std::size_t requests = f.platform.redrawRequests();
  ZelView* outer = f.root().addSubview(probe("outer", CGRectMake(100, 50, 200, 200)));
  ZelView* inner = outer->addSubview(probe("inner", CGRectMake(10, 20, 30, 40)));
  f.window.displayIfNeeded(ctx);
  EXPECT_EQ(f.platform.redrawRequests(), requests + 1);  // one request for both additions

  inner->setNeedsDisplay();
  ASSERT_EQ(f.window.dirtyRegion().rects().size(), 1u);
  EXPECT_EQ(f.window.dirtyRegion().rects()[0], CGRectMake(110, 70, 30, 40));
  inner->setNeedsDisplayInRect(CGRectMake(5, 5, 2, 2));  // inside: nothing new
  EXPECT_EQ(f.window.dirtyRegion().rects().size(), 1u);
  EXPECT_EQ(f.platform.redrawRequests(), requests + 2);  // coalesced until drawn

  f.window.displayIfNeeded(ctx);
  outer->setBoundsOrigin({0, 10});
  f.window.displayIfNeeded(ctx);
  inner->setNeedsDisplayInRect(CGRectMake(0, 0, 10, 10));
  EXPECT_EQ(f.window.dirtyRegion().rects()[0], CGRectMake(110, 60, 10, 10));

  // Hidden views mark nothing; a masking superview clips what its subviews mark.
  f.window.displayIfNeeded(ctx);
  inner->setFrame(CGRectMake(180, 180, 50, 50));  // reaches out of outer
  f.window.displayIfNeeded(ctx);
  outer->setWantsLayer(true);
  outer->layer()->setMasksToBounds(true);
  f.window.displayIfNeeded(ctx);
  inner->setNeedsDisplay();
  EXPECT_EQ(f.window.dirtyRegion().rects()[0], CGRectMake(280, 220, 20, 30));
  f.window.displayIfNeeded(ctx);
  outer->setHidden(true);
  f.window.displayIfNeeded(ctx);
  inner->setNeedsDisplay();
  EXPECT_TRUE(f.window.dirtyRegion().empty());
}

TEST(ViewInvalidation, MovingResizingAndRemovingMarkOldAndNewAreas) {
  WindowFixture f;
  ZelRecordingGraphicsContext ctx;
  ZelView* v = f.root().addSubview(probe("v", CGRectMake(10, 10, 20, 20)));
  // A child drawn outside its superview's bounds belongs to the area too.
  v->addSubview(probe("label", CGRectMake(0, -15, 20, 10)));
  f.window.displayIfNeeded(ctx);

  v->setFrameOrigin({200, 100});
  auto rects = f.window.dirtyRegion().rects();
  ASSERT_EQ(rects.size(), 2u);
  EXPECT_EQ(rects[0], CGRectMake(10, 0, 20, 30));  // clipped to the window
  EXPECT_EQ(rects[1], CGRectMake(200, 85, 20, 35));

  f.window.displayIfNeeded(ctx);
  std::unique_ptr<ZelView> removed = v->removeFromSuperview();
  EXPECT_EQ(f.window.dirtyRegion().bounds(), CGRectMake(200, 85, 20, 35));
  EXPECT_EQ(removed->window(), nullptr);
  EXPECT_EQ(removed->subviews()[0]->window(), nullptr);
  f.window.displayIfNeeded(ctx);
  removed->setNeedsDisplay();  // out of the window: nothing to mark
  EXPECT_TRUE(f.window.dirtyRegion().empty());
}

TEST(ViewRendering, RenderDrawsOnlyViewsInTheAreaInOrderAtTheirPlace) {
  WindowFixture f;
  ProbeView* a = f.root().addSubview(probe("a", CGRectMake(0, 0, 50, 50)));
  ProbeView* b = f.root().addSubview(probe("b", CGRectMake(100, 0, 50, 50)));
  ProbeView* bChild = b->addSubview(probe("bChild", CGRectMake(10, 10, 10, 10)));
  ProbeView* far = f.root().addSubview(probe("far", CGRectMake(300, 200, 50, 50)));
  a->color = ZelColor::rgb(1, 0, 0);
  b->color = ZelColor::rgb(0, 1, 0);
  bChild->color = ZelColor::rgb(0, 0, 1);

  ZelRecordingGraphicsContext ctx;
  f.window.render(ctx, CGRectMake(40, 5, 80, 4));
  EXPECT_EQ(a->draws, 1);
  EXPECT_EQ(b->draws, 1);
  EXPECT_EQ(bChild->draws, 0);  // its bottom edge (y 10) is above the area
  EXPECT_EQ(far->draws, 0);
  EXPECT_EQ(a->lastDirty, CGRectMake(40, 5, 10, 4));  // in a's bounds
  EXPECT_EQ(b->lastDirty, CGRectMake(0, 5, 20, 4));   // in b's bounds
  auto calls = ctx.drawingCalls();
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].fillColor, a->color);
  EXPECT_EQ(calls[1].rootRect, CGRectMake(100, 0, 50, 50));
  EXPECT_EQ(calls[1].visibleRect(), CGRectMake(100, 5, 20, 4));
  EXPECT_EQ(ctx.saveDepth(), 0);

  // A full redraw: every view once, superviews before subviews.
  ctx.clear();
  f.window.setNeedsDisplay();
  f.window.displayIfNeeded(ctx);
  calls = ctx.drawingCalls();
  ASSERT_EQ(calls.size(), 4u);
  EXPECT_EQ(calls[1].fillColor, b->color);
  EXPECT_EQ(calls[2].fillColor, bChild->color);
  EXPECT_EQ(calls[2].rootRect, CGRectMake(110, 10, 10, 10));
  EXPECT_TRUE(f.window.dirtyRegion().empty());
  ctx.clear();
  EXPECT_TRUE(f.window.displayIfNeeded(ctx).empty());
  EXPECT_TRUE(ctx.calls().empty());
}

TEST(ViewRendering, AlphaLayersAndHiddenViewsShapeWhatIsDrawn) {
  WindowFixture f;
  ProbeView* faded = f.root().addSubview(probe("faded", CGRectMake(0, 0, 50, 50)));
  faded->setAlphaValue(0.5);
  ProbeView* hidden = f.root().addSubview(probe("hidden", CGRectMake(0, 0, 50, 50)));
  hidden->setHidden(true);
  ProbeView* invisible = f.root().addSubview(probe("invisible", CGRectMake(0, 0, 50, 50)));
  invisible->setAlphaValue(0);
  ProbeView* layered = f.root().addSubview(probe("layered", CGRectMake(100, 100, 40, 20)));
  layered->setWantsLayer(true);
  layered->layer()->setBackgroundColor(ZelColor::rgb(1, 1, 0));
  layered->layer()->setTransform(ZelAffineTransform::scaling(2, 2));

  ZelRecordingGraphicsContext ctx;
  f.window.render(ctx, CGRectMake(0, 0, 400, 300));
  EXPECT_EQ(hidden->draws + invisible->draws, 0);
  ASSERT_EQ(ctx.count(ZelRecordedCall::Kind::EndGroup), 1u);
  for (const ZelRecordedCall& c : ctx.calls()) {
    if (c.kind == ZelRecordedCall::Kind::EndGroup) {
      EXPECT_DOUBLE_EQ(c.groupAlpha, 0.5);
    }
  }
  // The layer's background under the content, both scaled about the centre.
  auto calls = ctx.drawingCalls();
  ASSERT_EQ(calls.size(), 3u);
  EXPECT_EQ(calls[1].fillColor, ZelColor::rgb(1, 1, 0));
  EXPECT_EQ(calls[1].rootRect, CGRectMake(80, 90, 80, 40));
  EXPECT_EQ(calls[2].rootRect, CGRectMake(80, 90, 80, 40));
  EXPECT_EQ(calls[2].fillColor, layered->color);
}

TEST(ViewRendering, ARasterizedViewRedrawsItsSubtreeOnlyWhenSomethingInItChanged) {
  WindowFixture f;
  ProbeView* drawer = f.root().addSubview(probe("drawer", CGRectMake(0, 0, 100, 100)));
  ProbeView* holder = drawer->addSubview(probe("holder", CGRectMake(10, 10, 50, 50)));
  ProbeView* leaf = holder->addSubview(probe("leaf", CGRectMake(5, 5, 10, 10)));
  drawer->setWantsLayer(true);
  drawer->layer()->setShouldRasterize(true);
  ZelRecordingGraphicsContext ctx;
  f.window.render(ctx, CGRectMake(0, 0, 400, 300));
  EXPECT_EQ(leaf->draws, 1);
  f.window.render(ctx, CGRectMake(0, 0, 400, 300));
  EXPECT_EQ(leaf->draws, 1);  // the cached picture serves
  EXPECT_EQ(drawer->draws, 1);
  leaf->setNeedsDisplay();  // two levels below the rasterized layer
  f.window.render(ctx, CGRectMake(0, 0, 400, 300));
  EXPECT_EQ(leaf->draws, 2);
  EXPECT_EQ(drawer->draws, 2);
}

TEST(DirtyRegion, MergesOverlapsAndStaysShort) {
  ZelDirtyRegion region;
  region.add(CGRectMake(0, 0, 10, 10));
  region.add(CGRectMake(2, 2, 3, 3));  // inside
  region.add(CGRectNull);
  region.add(CGRectMake(5, 5, 0, 10));  // empty
  EXPECT_EQ(region.rects().size(), 1u);
  region.add(CGRectMake(20, 0, 10, 10));
  region.add(CGRectMake(40, 0, 10, 10));
  EXPECT_EQ(region.rects().size(), 3u);
  // Bridging two rectangles folds all three into one.
  region.add(CGRectMake(5, 0, 40, 2));
  ASSERT_EQ(region.rects().size(), 1u);
  EXPECT_EQ(region.rects()[0], CGRectMake(0, 0, 50, 10));

  region.clear();
  for (int i = 0; i < 20; ++i) region.add(CGRectMake(i * 20.0, 0, 10, 10));
  EXPECT_LE(region.rects().size(), ZelDirtyRegion::kMaxRects);
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(region.contains({i * 20.0 + 5, 5})) << i;
  EXPECT_FALSE(region.contains({5, 50}));
}

}  // namespace
}  // namespace zel::testing
