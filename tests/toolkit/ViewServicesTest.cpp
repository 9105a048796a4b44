// Time-driven view behaviour and the window's services: the alpha fade and
// layer animations on the frame clock, the pasteboard, the URL opener.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/toolkit/ViewTestSupport.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"
#include "toolkit/core/ZelTransaction.h"

namespace zel::testing {
namespace {

TEST(AlphaFade, EasesOutToItsTargetOnTheFrameClockAndThenStopsIt) {
  WindowFixture f;
  ProbeView* v = f.root().addSubview(probe("v", CGRectMake(10, 10, 50, 50)));
  ZelRecordingGraphicsContext ctx;
  f.window.displayIfNeeded(ctx);

  v->animateAlphaValue(0.4);
  EXPECT_DOUBLE_EQ(v->alphaValue(), 0.4);  // the model value at once
  EXPECT_DOUBLE_EQ(v->presentationAlphaValue(), 1.0);
  EXPECT_TRUE(f.window.frameClock().isRunning());

  ZelRunVirtualTime(f.loop, f.clock, 0.125);
  // The curve itself is checked against an independent solution elsewhere.
  double expected = 1 + (0.4 - 1) * ZelTimingFunction::easeOut().evaluate(0.5);
  EXPECT_NEAR(v->presentationAlphaValue(), expected, 1e-6);
  EXPECT_TRUE(f.window.dirtyRegion().intersects(CGRectMake(10, 10, 50, 50)));
  ctx.clear();
  f.window.displayIfNeeded(ctx);
  ASSERT_EQ(ctx.count(ZelRecordedCall::Kind::EndGroup), 1u);
  EXPECT_NEAR(ctx.calls().back().groupAlpha, expected, 1e-6);

  ZelRunVirtualTime(f.loop, f.clock, 1.0);
  EXPECT_DOUBLE_EQ(v->presentationAlphaValue(), 0.4);
  EXPECT_FALSE(v->isFadingAlpha());
  EXPECT_FALSE(f.window.frameClock().isRunning());
  EXPECT_EQ(f.loop.pendingCount(), 0u);  // idle: nothing scheduled
  f.window.displayIfNeeded(ctx);
  ctx.clear();
  ZelRunVirtualTime(f.loop, f.clock, 2.0);
  EXPECT_TRUE(f.window.dirtyRegion().empty());
}

TEST(AlphaFade, ReversingStartsFromTheShownValueAndLeavingTheWindowEndsIt) {
  WindowFixture f;
  ProbeView* v = f.root().addSubview(probe("v", CGRectMake(10, 10, 50, 50)));
  v->animateAlphaValue(0);
  ZelRunVirtualTime(f.loop, f.clock, 0.1);
  double shown = v->presentationAlphaValue();
  ASSERT_GT(shown, 0);
  ASSERT_LT(shown, 1);
  v->animateAlphaValue(1);
  EXPECT_DOUBLE_EQ(v->presentationAlphaValue(), shown);  // no jump
  ZelRunVirtualTime(f.loop, f.clock, 0.2);
  EXPECT_GT(v->presentationAlphaValue(), shown);

  v->setAlphaValue(0.3);  // an explicit value ends the fade
  EXPECT_FALSE(v->isFadingAlpha());
  EXPECT_DOUBLE_EQ(v->presentationAlphaValue(), 0.3);

  v->animateAlphaValue(0.9);
  std::unique_ptr<ZelView> out = v->removeFromSuperview();
  EXPECT_FALSE(out->isFadingAlpha());
  EXPECT_DOUBLE_EQ(out->presentationAlphaValue(), 0.9);
  ZelRunVirtualTime(f.loop, f.clock, 0.25);  // the clock's next tick finds nothing to do
  EXPECT_FALSE(f.window.frameClock().isRunning());
  out->animateAlphaValue(0.5);  // outside a window: set at once
  EXPECT_DOUBLE_EQ(out->presentationAlphaValue(), 0.5);
  EXPECT_EQ(f.loop.pendingCount(), 0u);
}

TEST(LayerBackedView, LayerAnimationsRedrawTheViewThroughTheFrameClock) {
  WindowFixture f;
  ProbeView* v = f.root().addSubview(probe("v", CGRectMake(100, 100, 40, 40)));
  v->setWantsLayer(true);
  auto sub = std::make_unique<ZelLayer>();
  {
    ZelTransaction noAnimation;
    noAnimation.setDisableActions(true);
    sub->setFrame(CGRectMake(5, 5, 10, 10));
    sub->setBackgroundColor(ZelColor::rgb(1, 0, 0));
  }
  v->layer()->addSublayer(std::move(sub));
  ZelRecordingGraphicsContext ctx;
  f.window.displayIfNeeded(ctx);
  // The view's content first, its sublayers above it.
  auto calls = ctx.drawingCalls();
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].fillColor, v->color);
  EXPECT_EQ(calls[1].rootRect, CGRectMake(105, 105, 10, 10));

  ZelBasicAnimation scale("transform.scale");
  scale.setFromValue(1.0);
  scale.setToValue(2.0);
  scale.setDuration(0.1);
  v->layer()->addAnimation(scale, "grow");
  EXPECT_TRUE(f.window.frameClock().isRunning());
  f.window.displayIfNeeded(ctx);
  ZelRunVirtualTime(f.loop, f.clock, 0.05);
  // The redrawn area covers the view as it is drawn now, scaled about its centre.
  CGRect shown = v->transformToWindow(true).apply(v->bounds());
  EXPECT_GT(shown.size.width, 40);
  EXPECT_TRUE(CGRectContainsRect(f.window.dirtyRegion().bounds(), shown));
  ZelRunVirtualTime(f.loop, f.clock, 1.0);
  EXPECT_FALSE(f.window.frameClock().isRunning());
  EXPECT_EQ(f.loop.pendingCount(), 0u);
}

TEST(Pasteboard, AnswersLaterThroughTheRunLoopAndNeverAfterItIsGone) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  auto pasteboard = std::make_unique<ZelMemoryPasteboard>(loop);
  pasteboard->setString("https://example.invalid/?Gain:2");
  std::vector<std::optional<std::string>> answers;
  auto record = [&](std::optional<std::string> s) { answers.push_back(std::move(s)); };

  pasteboard->requestString(record);
  EXPECT_TRUE(answers.empty());  // never inside the request
  loop.runDue();
  ASSERT_EQ(answers.size(), 1u);
  EXPECT_EQ(answers[0], "https://example.invalid/?Gain:2");

  pasteboard->clear();
  pasteboard->requestString(record);
  loop.runDue();
  ASSERT_EQ(answers.size(), 2u);
  EXPECT_FALSE(answers[1].has_value());

  pasteboard->requestString(record);
  pasteboard.reset();
  EXPECT_EQ(loop.pendingCount(), 0u);
  loop.runDue();
  EXPECT_EQ(answers.size(), 2u);
}

TEST(URLOpener, SpawnsWithoutAShellWithoutWaitingAndReapsItsChildren) {
  char dirTemplate[] = "/tmp/zel-opener-XXXXXX";
  ASSERT_NE(mkdtemp(dirTemplate), nullptr);
  std::string dir = dirTemplate;
  // Shell syntax in the argument must reach the program as it is.
  std::string path = dir + "/a b;echo $(x) > c";

  ZelXdgURLOpener opener("touch");
  ASSERT_TRUE(opener.open(path));
  struct stat st;
  auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while ((stat(path.c_str(), &st) != 0 || opener.reapExitedChildren() > 0) &&
         std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(stat(path.c_str(), &st), 0);
  EXPECT_NE(stat((dir + "/a").c_str(), &st), 0);
  EXPECT_EQ(opener.reapExitedChildren(), 0u);
  errno = 0;
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no child of ours is left, zombie or not
  EXPECT_EQ(errno, ECHILD);

  // A slow child does not hold the caller up.
  ZelXdgURLOpener sleeper("sleep");
  auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(sleeper.open("1"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
  EXPECT_EQ(sleeper.reapExitedChildren(), 1u);
  deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (sleeper.reapExitedChildren() > 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(sleeper.reapExitedChildren(), 0u);

  EXPECT_FALSE(ZelXdgURLOpener("zel-no-such-program").open("https://example.invalid/"));
  EXPECT_FALSE(opener.open(""));
  std::filesystem::remove_all(dir);
}

}  // namespace
}  // namespace zel::testing
