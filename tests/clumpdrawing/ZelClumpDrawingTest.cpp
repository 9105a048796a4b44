#include "editor/containers/ZelClumpDrawing.h"

#include <gtest/gtest.h>

#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace {

using namespace zel;
using Kind = ZelRecordedCall::Kind;

ZelPlist step(const char* name, double x, double y) {
  return ZelPlist::array({ZelPlist::string(name), ZelPlist::real(x), ZelPlist::real(y)});
}

TEST(ZelTransformFromArray, AppliesStepsInOrderWithFlooredTranslations) {
  ZelView view(CGRectMake(0, 0, 200, 100));
  // Translations are whole points, floored (not truncated) for negative ones.
  ZelPlist slide = ZelPlist::array({step("translate", 0.333, -0.333)});
  EXPECT_EQ(ZelTransformFromArray(view, slide), ZelAffineTransform::translation(66, -34));

  // Each step acts before the ones already applied: scale then translate
  // maps p to 0.5 · (p + t).
  ZelPlist steps = ZelPlist::array({step("scale", 0.5, 0.25), step("translate", 0.25, -0.5)});
  ZelAffineTransform t = ZelTransformFromArray(view, steps);
  EXPECT_EQ(t.apply(CGPoint{0, 0}), (CGPoint{25, -12.5}));
  EXPECT_EQ(t.apply(CGPoint{10, 8}), (CGPoint{30, -10.5}));

  // The property-list form and the C++ form agree; junk steps are skipped.
  ZelPlist withJunk = ZelPlist::array({step("rotate", 1, 1), ZelPlist::string("scale"), steps[0],
                                       ZelPlist::array({ZelPlist::string("scale"), ZelPlist::real(2)}), steps[1]});
  std::vector<ZelTransformStep> list{ZelTransformStep::scale(0.5, 0.25), ZelTransformStep::translate(0.25, -0.5)};
  EXPECT_EQ(ZelTransformFromArray(view, withJunk), t);
  EXPECT_EQ(ZelTransformFromArray(view, list), t);
  EXPECT_TRUE(ZelTransformFromArray(view, ZelPlist::null()).isIdentity());

  // Scale factors are single precision.
  ZelAffineTransform s = ZelTransformFromArray(view, ZelPlist::array({step("scale", 0.1, 0.3)}));
  EXPECT_EQ(s.a, double(0.1f));
  EXPECT_EQ(s.d, double(0.3f));
}

TEST(ZelAnimateViewToFromDuration, SlidesOnTheVirtualClock) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelNullPlatformWindow platform(loop);
  ZelWindow window(loop, {400, 300});
  window.setPlatformWindow(&platform);
  ZelView* drawer = window.contentView()->addSubview(std::make_unique<ZelView>(CGRectMake(0, 0, 200, 100)));

  std::vector<ZelTransformStep> shown{ZelTransformStep::scale(1, 1)};
  std::vector<ZelTransformStep> below{ZelTransformStep::translate(0, -1)};
  ZelAnimateViewToFromDuration(*drawer, shown, below, 0.4);

  ASSERT_NE(drawer->layer(), nullptr);
  EXPECT_TRUE(drawer->layer()->transform().isIdentity());  // the model is there at once
  EXPECT_EQ(drawer->layer()->animationKeys(), std::vector<std::string>{"transform"});
  EXPECT_EQ(drawer->layer()->presentationTransform().ty, -100);

  ZelRunVirtualTime(loop, clock, 0.1);
  double eased = ZelTimingFunction::easeOut().evaluate(0.25);
  EXPECT_NEAR(drawer->layer()->presentationTransform().ty, -100 * (1 - eased), 1e-9);

  ZelRunVirtualTime(loop, clock, 0.5);
  EXPECT_EQ(drawer->layer()->animationForKey("transform"), nullptr);
  EXPECT_TRUE(drawer->layer()->presentationTransform().isIdentity());

  // Sliding back out: the model jumps to the target, the picture follows.
  ZelPlist out = ZelPlist::array({step("translate", 0, -1)});
  ZelPlist in = ZelPlist::array({step("scale", 1, 1)});
  ZelAnimateViewToFromDuration(*drawer, out, in, 0.2);
  EXPECT_EQ(drawer->layer()->transform(), ZelAffineTransform::translation(0, -100));
  EXPECT_TRUE(drawer->layer()->presentationTransform().isIdentity());
  window.setPlatformWindow(nullptr);
}

ZelPluginLayout twoEdgeLayout() {
  ZelLayoutFrames frames;
  frames.edges = {{{50, 0}, {50, 40}}, {{0, 20}, {100, 20}}};
  return ZelPluginLayout(frames);
}

TEST(DrawEdgesForContext, ThinFillAndStrokeShiftByHalfTheOrigin) {
  ZelPluginLayout layout = twoEdgeLayout();
  ZelRecordingGraphicsContext ctx;
  drawEdgesForContext(ctx, layout, CGRectMake(6, 4, 10, 10), true);
  ASSERT_EQ(ctx.count(Kind::FillRect), 2u);
  EXPECT_EQ(ctx.calls()[0].rect, CGRectMake(53, -2, 0.5, 40));
  EXPECT_EQ(ctx.calls()[1].rect, CGRectMake(3, 18, 100, 0.5));

  ZelRecordingGraphicsContext stroked;
  drawEdgesForContext(stroked, layout, CGRectMake(6, 4, 10, 10), false);
  ASSERT_EQ(stroked.count(Kind::StrokeLine), 2u);
  EXPECT_EQ(stroked.count(Kind::FillRect), 0u);
  EXPECT_EQ(stroked.calls()[0].rect, CGRectInset(CGRectMake(53, -2, 0, 40), -0.5, -0.5));  // with the line's width

  ZelRecordingGraphicsContext none;
  drawEdgesForContext(none, ZelPluginLayout(ZelLayoutFrames{}), CGRectZero, true);
  EXPECT_TRUE(none.calls().empty());
}

TEST(ZelFillGenericHeaderFooterOnEdge, StrokesOneSideUnderAShadowAndRestores) {
  ZelRecordingGraphicsContext ctx;
  ctx.setLineWidth(1);
  ZelFillGenericHeaderFooterOnEdge(ctx, CGRectMaxYEdge, CGRectMake(10, 20, 100, 50));
  ASSERT_EQ(ctx.calls().size(), 1u);
  const ZelRecordedCall& line = ctx.calls()[0];
  EXPECT_EQ(line.kind, Kind::StrokeLine);
  EXPECT_EQ(line.rect, CGRectInset(CGRectMake(10, 70, 100, 0), -1, -1));  // the top side, 2 wide
  EXPECT_EQ(line.lineWidth, 2);
  EXPECT_TRUE(line.hasShadow);
  EXPECT_EQ(line.strokeColor, ZelUITheme::theme()->backgroundColor().withAlpha(double(0.8f)));
  EXPECT_EQ(ctx.saveDepth(), 0);

  ctx.strokeLineSegment({0, 0}, {1, 0});  // the caller's state is back
  EXPECT_EQ(ctx.calls()[1].lineWidth, 1);
  EXPECT_FALSE(ctx.calls()[1].hasShadow);
}

}  // namespace
