// Animation timing on the virtual clock: pacing curves, auto-reverse,
// repeats, removal and completion, replacement, and implicit animations
// with and without a transaction.
#include <gtest/gtest.h>

#include <cmath>

#include "LayerTestSupport.h"
#include "toolkit/core/ZelAnimation.h"
#include "toolkit/core/ZelShapeLayer.h"
#include "toolkit/core/ZelTransaction.h"

using namespace zel;
using layertest::RecordingHost;

namespace {

// The cubic Bézier's y for a given x, found independently of the library by
// a fine bisection on its parameter (x(t) is monotonic for these curves).
double bezierReference(double x1, double y1, double x2, double y2, double x) {
  auto coord = [](double p1, double p2, double t) {
    return 3 * (1 - t) * (1 - t) * t * p1 + 3 * (1 - t) * t * t * p2 + t * t * t;
  };
  double lo = 0, hi = 1;
  for (int i = 0; i < 200; ++i) {
    double mid = (lo + hi) / 2;
    (coord(x1, x2, mid) < x ? lo : hi) = mid;
  }
  return coord(y1, y2, (lo + hi) / 2);
}

// A layer hosted in a "window": a virtual clock, a run loop, a frame clock.
struct Scene {
  ZelVirtualClock time{100};
  ZelRunLoop loop{time};
  ZelFrameClock clock{loop};
  RecordingHost host{&clock};
  ZelLayer root;
  ZelLayer* layer;
  Scene() {
    root.setHost(&host);
    root.setImplicitAnimationsEnabled(false);
    root.setFrame(CGRectMake(0, 0, 200, 200));
    auto sub = std::make_unique<ZelLayer>();
    sub->setFrame(CGRectMake(10, 20, 40, 30));
    layer = root.addSublayer(std::move(sub));
  }
  ~Scene() { root.setHost(nullptr); }
  void runUntil(double t) { ZelRunVirtualTime(loop, time, t); }
};

ZelBasicAnimation opacityAnimation(double from, double to, double duration, ZelTimingFunction timing) {
  ZelBasicAnimation a("opacity");
  a.setFromValue(from);
  a.setToValue(to);
  a.setDuration(duration);
  a.setTimingFunction(timing);
  return a;
}

}  // namespace

TEST(ZelTimingFunction, NamedCurvesMatchAnIndependentSolution) {
  struct Case { const char* name; double x1, y1, x2, y2; };
  for (const Case& c : {Case{"easeOut", 0, 0, 0.58, 1}, Case{"easeIn", 0.42, 0, 1, 1},
                        Case{"easeInEaseOut", 0.42, 0, 0.58, 1}, Case{"default", 0.25, 0.1, 0.25, 1}}) {
    ZelTimingFunction f = ZelTimingFunction::named(c.name);
    for (double x : {0.0, 0.05, 0.25, 0.5, 0.75, 0.97, 1.0})
      EXPECT_NEAR(f.evaluate(x), bezierReference(c.x1, c.y1, c.x2, c.y2, x), 1e-7) << c.name << " at " << x;
  }
  EXPECT_EQ(ZelTimingFunction::named("bogus"), ZelTimingFunction::linear());
  EXPECT_DOUBLE_EQ(ZelTimingFunction().evaluate(0.3), 0.3);
  EXPECT_DOUBLE_EQ(ZelTimingFunction::easeOut().evaluate(-1), 0.0);
  EXPECT_DOUBLE_EQ(ZelTimingFunction::easeOut().evaluate(2), 1.0);
}

TEST(ZelBasicAnimation, PresentationFollowsTheClockAndReturnsToTheModel) {
  Scene s;
  ZelTransaction t;
  t.setDisableActions(true);
  s.layer->setOpacity(0.4);
  s.layer->addAnimation(opacityAnimation(0, 1, 1.0, ZelTimingFunction::easeOut()), "fade");
  for (double x : {0.0, 0.1, 0.5, 0.9}) {
    s.time.set(100 + x);
    EXPECT_NEAR(s.layer->presentationOpacity(), bezierReference(0, 0, 0.58, 1, x), 1e-7) << x;
  }
  s.time.set(101.0);  // past the end: the model value shows again
  EXPECT_DOUBLE_EQ(s.layer->presentationOpacity(), 0.4);
  EXPECT_DOUBLE_EQ(s.layer->opacity(), 0.4);

  // Linear pacing of a transform: translation and scale interpolate.
  s.time.set(200);
  ZelBasicAnimation move("transform");
  move.setFromValue(ZelAffineTransform::identity());
  move.setToValue(ZelAffineTransform::translation(40, -20).scaledBy(3, 3));
  move.setDuration(2);
  s.layer->addAnimation(move, "move");
  s.time.set(200.5);
  ZelAffineTransform shown = s.layer->presentationTransform();
  EXPECT_DOUBLE_EQ(shown.tx, 10);
  EXPECT_DOUBLE_EQ(shown.ty, -5);
  EXPECT_DOUBLE_EQ(shown.a, 1.5);
}

TEST(ZelBasicAnimation, AutoreverseIsSymmetricAndRepeatsMultiplyTheSpan) {
  ZelBasicAnimation pulse("transform.scale");
  pulse.setFromValue(1.0);
  pulse.setToValue(1.2);
  pulse.setDuration(0.33);
  pulse.setTimingFunction(ZelTimingFunction::easeOut());
  pulse.setAutoreverses(true);
  EXPECT_DOUBLE_EQ(pulse.activeDuration(), 0.66);
  pulse.setRepeatCount(6);
  EXPECT_NEAR(pulse.activeDuration(), 3.96, 1e-12);

  for (double t : {0.03, 0.1, 0.2, 0.3}) {
    auto forth = pulse.fractionAt(t), back = pulse.fractionAt(0.66 - t);
    ASSERT_TRUE(forth && back);
    EXPECT_NEAR(*forth, *back, 1e-9) << t;
    // Every repeat is the same as the first.
    EXPECT_NEAR(*pulse.fractionAt(t + 0.66 * 4), *forth, 1e-9);
  }
  EXPECT_NEAR(*pulse.fractionAt(0.33), 1.0, 1e-9);
  EXPECT_FALSE(pulse.fractionAt(3.96));
  EXPECT_FALSE(pulse.fractionAt(-0.01));

  // A fractional repeat count ends inside a pass.
  ZelBasicAnimation partial("opacity");
  partial.setDuration(1);
  partial.setRepeatCount(2.5f);
  EXPECT_DOUBLE_EQ(partial.activeDuration(), 2.5);
  EXPECT_NEAR(*partial.fractionAt(2.4), 0.4, 1e-12);
  EXPECT_FALSE(partial.fractionAt(2.5));

  // transform.scale replaces the scale and keeps the layer's translation.
  Scene s;
  {
    ZelTransaction t;
    t.setDisableActions(true);
    s.layer->setTransform(ZelAffineTransform::translation(5, 7));
  }
  s.layer->addAnimation(pulse, "pulse");
  s.time.advance(0.33);
  ZelAffineTransform shown = s.layer->presentationTransform();
  EXPECT_NEAR(shown.a, 1.2, 1e-9);
  EXPECT_NEAR(shown.d, 1.2, 1e-9);
  EXPECT_EQ(shown.tx, 5);
  EXPECT_EQ(shown.ty, 7);
}

TEST(ZelBasicAnimation, CompletionRunsOnceAndRemovalFollowsTheFlag) {
  Scene s;
  int removedCalls = 0, keptCalls = 0;
  bool removedFinished = false;
  ZelBasicAnimation a = opacityAnimation(0, 1, 0.5, ZelTimingFunction::linear());
  a.setRepeatCount(2);
  a.setCompletion([&](bool finished) { ++removedCalls; removedFinished = finished; });
  s.layer->addAnimation(a, "once");

  ZelBasicAnimation kept = opacityAnimation(1, 0, 0.25, ZelTimingFunction::linear());
  kept.setRemovedOnCompletion(false);
  kept.setCompletion([&](bool) { ++keptCalls; });
  s.layer->addAnimation(kept, "kept");
  EXPECT_EQ(s.layer->animationKeys(), (std::vector<std::string>{"once", "kept"}));

  s.runUntil(100.9);  // the repeat is still running
  EXPECT_EQ(removedCalls, 0);
  EXPECT_EQ(keptCalls, 1);
  EXPECT_NE(s.layer->animationForKey("kept"), nullptr);
  s.runUntil(103);
  EXPECT_EQ(removedCalls, 1);
  EXPECT_TRUE(removedFinished);
  EXPECT_EQ(keptCalls, 1);
  EXPECT_EQ(s.layer->animationForKey("once"), nullptr);
  EXPECT_NE(s.layer->animationForKey("kept"), nullptr);  // kept, but no longer shown
  EXPECT_DOUBLE_EQ(s.layer->presentationOpacity(), 1.0);
  // Nothing left running: the frame clock has left the run loop.
  EXPECT_FALSE(s.clock.isRunning());
  EXPECT_EQ(s.loop.pendingCount(), 0u);
  // Removing an animation that already reported does not report again.
  s.layer->removeAnimationForKey("kept");
  EXPECT_EQ(keptCalls, 1);
}

TEST(ZelBasicAnimation, ReplacingOrRemovingReportsUnfinished) {
  Scene s;
  std::vector<std::pair<int, bool>> stops;
  auto tagged = [&](int tag) {
    ZelBasicAnimation a = opacityAnimation(0, 1, 1, ZelTimingFunction::linear());
    a.setCompletion([&stops, tag](bool finished) { stops.emplace_back(tag, finished); });
    return a;
  };
  s.layer->addAnimation(tagged(1), "flash");
  s.time.advance(0.5);
  s.layer->addAnimation(tagged(2), "flash");  // replaces: 1 stops unfinished
  ASSERT_EQ(stops.size(), 1u);
  EXPECT_EQ(stops[0], std::make_pair(1, false));
  EXPECT_EQ(s.layer->animationKeys().size(), 1u);
  EXPECT_NEAR(s.layer->presentationOpacity(), 0.0, 1e-12);  // the new one starts now

  s.layer->removeAnimationForKey("flash");
  ASSERT_EQ(stops.size(), 2u);
  EXPECT_EQ(stops[1], std::make_pair(2, false));
  EXPECT_EQ(s.layer->animationForKey("flash"), nullptr);
  s.runUntil(110);
  EXPECT_EQ(stops.size(), 2u);  // never reported again
  EXPECT_EQ(s.loop.pendingCount(), 0u);

  // A completion may start the next animation under the same key.
  int chained = 0;
  ZelBasicAnimation first = opacityAnimation(0, 1, 0.1, ZelTimingFunction::linear());
  first.setCompletion([&](bool finished) {
    if (!finished) return;
    ZelBasicAnimation next = opacityAnimation(1, 0, 0.1, ZelTimingFunction::linear());
    next.setCompletion([&](bool) { ++chained; });
    s.layer->addAnimation(next, "chain");
  });
  s.layer->addAnimation(first, "chain");
  s.runUntil(111);
  EXPECT_EQ(chained, 1);
  EXPECT_EQ(s.loop.pendingCount(), 0u);
}

TEST(ZelImplicitAnimation, StandaloneLayersAnimateUnlessATransactionDisablesActions) {
  Scene s;
  double d = 0.25;
  s.layer->setOpacity(0.2);
  ASSERT_NE(s.layer->animationForKey("opacity"), nullptr);
  EXPECT_DOUBLE_EQ(s.layer->opacity(), 0.2);           // the model changes at once
  EXPECT_DOUBLE_EQ(s.layer->presentationOpacity(), 1);  // the picture follows
  s.time.advance(d / 2);
  EXPECT_NEAR(s.layer->presentationOpacity(), 1 - 0.8 * bezierReference(0.25, 0.1, 0.25, 1, 0.5), 1e-7);
  s.runUntil(s.time.now() + d);
  EXPECT_DOUBLE_EQ(s.layer->presentationOpacity(), 0.2);
  EXPECT_TRUE(s.layer->animationKeys().empty());

  s.layer->setBackgroundColor(ZelColor::grey(1));
  s.time.advance(d / 2);
  ZelColor mid = s.layer->presentationBackgroundColor();
  EXPECT_GT(mid.alpha, 0.5);
  EXPECT_LT(mid.alpha, 1);

  {
    ZelTransaction outer;
    outer.setDisableActions(true);
    {
      ZelTransaction inner;  // inherits the outer scope's setting
      s.layer->setTransform(ZelAffineTransform::scaling(2, 2));
    }
    s.layer->setOpacity(0.7);
  }
  EXPECT_EQ(s.layer->animationForKey("transform"), nullptr);
  EXPECT_EQ(s.layer->animationForKey("opacity"), nullptr);
  EXPECT_DOUBLE_EQ(s.layer->presentationOpacity(), 0.7);

  {
    ZelTransaction slow;
    slow.setAnimationDuration(2);
    slow.setAnimationTimingFunction(ZelTimingFunction::linear());
    s.layer->setOpacity(0.3);
  }
  ASSERT_NE(s.layer->animationForKey("opacity"), nullptr);
  EXPECT_DOUBLE_EQ(s.layer->animationForKey("opacity")->duration(), 2);
  EXPECT_FALSE(ZelTransaction::disableActions());  // scopes are gone
  // Half way (0.7 -> 0.3 shows 0.5), asking for 0.5 ends the older change
  // there instead of letting it run on to 0.3 and jump back.
  s.time.advance(1);
  EXPECT_NEAR(s.layer->presentationOpacity(), 0.5, 1e-12);
  s.layer->setOpacity(s.layer->presentationOpacity());
  EXPECT_EQ(s.layer->animationForKey("opacity"), nullptr);
  s.time.advance(0.5);
  EXPECT_NEAR(s.layer->presentationOpacity(), 0.5, 1e-12);

  // A view's root layer never animates implicitly.
  s.root.setOpacity(0.5);
  EXPECT_TRUE(s.root.animationKeys().empty());
  EXPECT_DOUBLE_EQ(s.root.presentationOpacity(), 0.5);
}

TEST(ZelBasicAnimation, DashPhaseRepeatsForeverAndKeepsTheClockRunning) {
  Scene s;
  auto border = std::make_unique<ZelShapeLayer>();
  border->setFrame(CGRectMake(0, 0, 100, 40));
  ZelShapeLayer* shape = static_cast<ZelShapeLayer*>(s.root.addSublayer(std::move(border)));
  bool stopped = false, finished = true;
  ZelBasicAnimation phase("lineDashPhase");
  phase.setFromValue(0.0);
  phase.setToValue(10.0);
  phase.setDuration(2.0);
  phase.setRepeatCount(ZelRepeatForever);
  phase.setCompletion([&](bool f) { stopped = true; finished = f; });
  shape->addAnimation(phase, "PhaseShift");

  s.time.advance(0.5);
  EXPECT_NEAR(shape->presentationLineDashPhase(), 2.5, 1e-9);
  s.runUntil(100 + 1000.5);  // a thousand seconds later, still moving
  EXPECT_NEAR(shape->presentationLineDashPhase(), 2.5, 1e-6);
  EXPECT_TRUE(s.clock.isRunning());
  EXPECT_FALSE(stopped);
  EXPECT_DOUBLE_EQ(shape->lineDashPhase(), 0);  // the model never moved

  shape->removeAnimationForKey("PhaseShift");
  EXPECT_TRUE(stopped);
  EXPECT_FALSE(finished);
  s.runUntil(s.time.now() + 0.1);
  EXPECT_FALSE(s.clock.isRunning());
  EXPECT_EQ(s.loop.pendingCount(), 0u);
}
