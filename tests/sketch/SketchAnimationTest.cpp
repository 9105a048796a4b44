#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <stdexcept>
#include <thread>

#include "SketchTestSupport.h"
#include "theme/ZelUITheme.h"
#include "products/vantry/sketch/ZelVantryParameterSketch.h"

namespace zel::testing {
namespace {

constexpr ZelSketchTraits kProductTraits{300, true, false, {10, 16}};

struct AnimationFixture : ::testing::Test {
  VirtualWindow w;
  std::unique_ptr<ZelConfig> config = ConfigWithInitialValues({1, 2, 3, 4, 5, 6});
  RecordingSketch* sketch = w.add(std::make_unique<RecordingSketch>(CGRectMake(0, 0, 40, 100), config.get(), kProductTraits));

  // Frames until the sketch stops (at most `limit`).
  int runUntilIdle(int limit = 200) {
    int frames = 0;
    while (sketch->isInterpolating() && frames < limit) {
      w.frame();
      ++frames;
    }
    return frames;
  }
  std::size_t clients() const { return w.window.frameClock().clientCount(); }
};

TEST_F(AnimationFixture, StartsFromInitialValuesWithTimeConstantOfTheClock) {
  EXPECT_EQ(sketch->numParams(), 6u);
  EXPECT_EQ(std::vector<float>(sketch->parameterValuesPrev().begin(), sketch->parameterValuesPrev().end()),
            (std::vector<float>{1, 2, 3, 4, 5, 6}));
  // 300 ms at 60 Hz: five time constants in 18 frames.
  EXPECT_FLOAT_EQ(sketch->timeConstant(), static_cast<float>(std::exp(-1 / 3.6)));
  EXPECT_EQ(clients(), 0u);
  EXPECT_FALSE(w.window.frameClock().isRunning());

  // A faster display keeps the duration: twice the frames.
  VirtualWindow fast;
  fast.window.frameClock().setFramesPerSecond(120);
  auto* other = fast.add(std::make_unique<RecordingSketch>(CGRectMake(0, 0, 40, 40), config.get()));
  EXPECT_FLOAT_EQ(other->timeConstant(), static_cast<float>(std::exp(-1 / (0.05 * 120))));
}

TEST_F(AnimationFixture, JumpWhileIdleDrawsTargetAtOnceAndStopsPastProgressLimit) {
  const std::vector<float> target{10, 20, 30, 40, 50, 60};
  const std::vector<std::uint8_t> flags{0, 1, 0, 0, 1, 0};
  sketch->updateWithParameterValues(target, flags, false);
  EXPECT_TRUE(sketch->isInterpolating());
  EXPECT_EQ(clients(), 1u);
  ASSERT_TRUE(sketch->frames.empty());  // nothing drawn before the frame

  const int frames = runUntilIdle();
  // 1 - t^k passes 0.9933 at k = 3.6 * ln(1 / 0.0067) = 18.02: 19 frames,
  // the last of which also draws the targets exactly.
  EXPECT_EQ(frames, 19);
  ASSERT_EQ(sketch->frames.size(), 20u);
  for (std::size_t i = 0; i < target.size(); ++i) EXPECT_NEAR(sketch->frames[0].values[i], target[i], 1e-4);
  EXPECT_EQ(sketch->frames[0].changes, flags);
  EXPECT_EQ(sketch->frames.back().values, target);
  EXPECT_EQ(sketch->frames.back().destValues, target);
  EXPECT_GE(sketch->interpProgress(), ZelParameterSketch::kProgressDone);

  // Idle again: no client, no scheduled tick, and the targets are now the
  // starting point.
  EXPECT_FALSE(sketch->isDisplayLinkRunning());
  EXPECT_EQ(clients(), 0u);
  EXPECT_FALSE(w.window.frameClock().isRunning());
  EXPECT_EQ(std::vector<float>(sketch->parameterValuesPrev().begin(), sketch->parameterValuesPrev().end()), target);
  w.advance(1.0);
  EXPECT_EQ(sketch->frames.size(), 20u);
}

TEST_F(AnimationFixture, SecondChangeKeepsEarlierFlagsAndRetargetsFromWhereItIs) {
  sketch->updateWithParameterValues(std::vector<float>(6, 0), std::vector<std::uint8_t>(6, 0), false);
  runUntilIdle();  // starting point: all zero
  sketch->frames.clear();

  const std::vector<float> first{0, 0, 0, 0, 100, 0};
  sketch->updateWithParameterValues(first, std::vector<std::uint8_t>{0, 0, 0, 0, 1, 0}, true);
  for (int i = 0; i < 3; ++i) w.frame();
  const float t = sketch->timeConstant();
  const float shown = sketch->frames.back().values[4];
  EXPECT_NEAR(shown, 100 * (1 - t * t * t), 1e-3);

  std::vector<float> second{0, 0, 0, 0, 100, 50};
  sketch->updateWithParameterValues(second, std::vector<std::uint8_t>{0, 0, 0, 0, 0, 1}, true);
  EXPECT_EQ(sketch->interpProgress(), 0.0f);
  EXPECT_EQ(clients(), 1u);  // the same link keeps running
  w.frame();
  const RecordingSketch::Frame& next = sketch->frames.back();
  EXPECT_EQ(next.changes, (std::vector<std::uint8_t>{0, 0, 0, 0, 1, 1}));
  EXPECT_NEAR(next.values[4], 100 * (1 - t * t * t * t), 1e-3);  // continues, not restarted
  EXPECT_NEAR(next.values[5], 50 * (1 - t), 1e-3);
  EXPECT_EQ(next.destValues, second);

  // A jump while running goes straight to the targets.
  std::vector<float> third{0, 0, 0, 0, 10, 10};
  sketch->updateWithParameterValues(third, std::vector<std::uint8_t>(6, 0), false);
  w.frame();
  EXPECT_NEAR(sketch->frames.back().values[4], 10, 1e-4);
  runUntilIdle();
  EXPECT_EQ(clients(), 0u);

  // Once idle, new flags replace the old ones.
  sketch->updateWithParameterValues(third, std::vector<std::uint8_t>{1, 0, 0, 0, 0, 0}, true);
  w.frame();
  EXPECT_EQ(sketch->frames.back().changes, (std::vector<std::uint8_t>{1, 0, 0, 0, 0, 0}));
}

TEST_F(AnimationFixture, LeavingTheWindowDropsTheLinkAndValuesWaitForTheNext) {
  std::unique_ptr<ZelView> detached = sketch->removeFromSuperview();
  EXPECT_EQ(clients(), 0u);
  sketch->updateWithParameterValues(std::vector<float>(6, 3), std::vector<std::uint8_t>(6, 1), false);
  EXPECT_FALSE(sketch->isDisplayLinkRunning());
  w.window.contentView()->addSubview(std::move(detached));
  EXPECT_EQ(clients(), 1u);
  runUntilIdle();
  EXPECT_EQ(sketch->frames.back().values, std::vector<float>(6, 3));
  EXPECT_EQ(clients(), 0u);
}

TEST(SketchTheme, CurveFollowsTheThemeBackgroundColour) {
  VirtualWindow w;
  auto config = ConfigWithInitialValues(std::vector<float>(12, 0));
  auto* sketch = w.add(std::make_unique<ZelVantryParameterSketch>(CGRectMake(0, 0, 46, 100), config.get()));
  ASSERT_NE(sketch->curve(), nullptr);
  ZelShapeLayer* guide = sketch->addDashedLineAtValue(0.5f, true, nullptr);
  EXPECT_EQ(sketch->layer()->sublayers().front().get(), guide);  // behind the curve
  auto expectColours = [&] {
    const ZelColor background = ZelUITheme::theme()->backgroundColor();
    EXPECT_EQ(sketch->curve()->strokeColor(), background.withAlpha(0.8));
    EXPECT_EQ(guide->strokeColor(), background.withAlpha(0.35));
  };
  expectColours();
  ZelUITheme::toggleThemeForWindow(&w.window);
  expectColours();
  ZelUITheme::toggleThemeForWindow(&w.window);
  expectColours();
  EXPECT_EQ(w.window.frameClock().clientCount(), 0u);  // recolouring never animates
  EXPECT_EQ(w.window.frameClock().animatingLayerCount(), 0u);
}

TEST(SketchMainQueue, RunsInlineOnTheLoopsThreadElseWaitsForTheLoop) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop* previous = ZelRunLoop::current();
  ZelRunLoop::setCurrent(&loop);
  int ran = 0;
  ZelParameterSketch::runOnMainQueueWithoutDeadlocking(loop, [&ran] { ++ran; });
  EXPECT_EQ(ran, 1);
  EXPECT_EQ(loop.pendingCount(), 0u);

  std::atomic<bool> threw{false}, done{false};
  std::thread worker([&] {
    ZelParameterSketch::runOnMainQueueWithoutDeadlocking(loop, [&ran] { ran += 10; });
    try {
      ZelParameterSketch::runOnMainQueueWithoutDeadlocking(loop, [] { throw std::runtime_error("no"); });
    } catch (const std::runtime_error&) {
      threw = true;
    }
    done = true;
  });
  // The main thread keeps serving its loop until the worker is done.
  while (!done) loop.runDue();
  worker.join();
  EXPECT_TRUE(threw);
  EXPECT_EQ(ran, 11);
  ZelRunLoop::setCurrent(previous);
}

}  // namespace
}  // namespace zel::testing
