// The frame clock runs only while something animates or a display link runs,
// invalidates the animating areas through the layer host, and leaves no
// run-loop entry behind once idle.
#include <gtest/gtest.h>

#include "LayerTestSupport.h"
#include "toolkit/core/ZelDisplayLink.h"
#include "toolkit/core/ZelTransaction.h"

using namespace zel;
using layertest::RecordingHost;

namespace {

struct Window {
  ZelVirtualClock time{0};
  ZelRunLoop loop{time};
  ZelFrameClock clock{loop};
  RecordingHost host{&clock};
  ZelLayer root;
  Window() {
    root.setHost(&host);
    root.setImplicitAnimationsEnabled(false);
    root.setFrame(CGRectMake(100, 50, 200, 100));  // the host view's bounds in its window
  }
  ~Window() { root.setHost(nullptr); }
};

}  // namespace

TEST(ZelFrameClock, TicksWhileALayerAnimatesThenStopsByItself) {
  Window w;
  EXPECT_FALSE(w.clock.isRunning());
  EXPECT_EQ(w.loop.pendingCount(), 0u);

  auto sub = std::make_unique<ZelLayer>();
  sub->setFrame(CGRectMake(10, 10, 20, 20));
  ZelLayer* layer = w.root.addSublayer(std::move(sub));
  w.host.areas.clear();
  layer->setTransform(ZelAffineTransform::scaling(2, 2));  // implicit, 0.25 s
  EXPECT_EQ(w.host.started, 1);
  EXPECT_TRUE(w.clock.isRunning());
  EXPECT_EQ(w.clock.animatingLayerCount(), 1u);
  EXPECT_EQ(w.loop.pendingCount(), 1u);  // exactly one tick pending, never more

  int ticks = 0;
  while (w.clock.isRunning() && ticks < 1000) {
    w.time.set(*w.loop.nextDueTime());
    w.loop.runDue();
    ++ticks;
    EXPECT_LE(w.loop.pendingCount(), 1u);
  }
  // 0.25 s at 60 Hz: fifteen frames, plus the one that sees the end.
  EXPECT_GE(ticks, 15);
  EXPECT_LE(ticks, 17);
  EXPECT_EQ(w.loop.pendingCount(), 0u);
  EXPECT_EQ(w.clock.animatingLayerCount(), 0u);

  // Every frame reported the layer's area in host coordinates: the root's
  // frame offset plus the sublayer grown about its centre (20 -> 40 points).
  ASSERT_GE(w.host.areas.size(), size_t(ticks));
  CGRect all = w.host.unionOfAreas();
  EXPECT_TRUE(CGRectContainsRect(all, CGRectMake(100, 50, 40, 40)));
  EXPECT_TRUE(CGRectContainsRect(CGRectMake(98, 48, 44, 44), all)) << all.origin.x << "," << all.origin.y;

  // Nothing happens any more: time passes without a single call.
  w.host.areas.clear();
  w.time.advance(10);
  EXPECT_EQ(w.loop.runDue(), 0u);
  EXPECT_TRUE(w.host.areas.empty());
}

TEST(ZelFrameClock, DisplayLinkRunsUntilStoppedEvenFromItsCallback) {
  Window w;
  std::vector<double> durations;
  ZelDisplayLink* self = nullptr;
  ZelDisplayLink link(w.clock, [&](double d) {
    durations.push_back(d);
    if (durations.size() == 5) self->stop();
  });
  self = &link;
  EXPECT_DOUBLE_EQ(link.nominalFramesPerSecond(), 60);
  link.start();
  link.start();  // twice is once
  EXPECT_EQ(w.clock.clientCount(), 1u);
  ZelRunVirtualTime(w.loop, w.time, 1.0);
  ASSERT_EQ(durations.size(), 5u);
  EXPECT_DOUBLE_EQ(durations[0], 1.0 / 60);
  EXPECT_FALSE(link.isRunning());
  EXPECT_EQ(w.loop.pendingCount(), 0u);

  // A backend with another display rate.
  w.clock.setFramesPerSecond(120);
  durations.clear();
  link.start();
  ZelRunVirtualTime(w.loop, w.time, 2.0);
  ASSERT_EQ(durations.size(), 5u);
  EXPECT_DOUBLE_EQ(durations[0], 1.0 / 120);
  EXPECT_NEAR(w.time.now(), 2.0, 1e-12);
}

TEST(ZelFrameClock, LayersAndLinksMayGoAwayInAnyOrder) {
  auto time = std::make_unique<ZelVirtualClock>(0);
  auto loop = std::make_unique<ZelRunLoop>(*time);
  auto clock = std::make_unique<ZelFrameClock>(*loop);
  RecordingHost host(clock.get());
  auto root = std::make_unique<ZelLayer>();
  root->setHost(&host);
  root->setFrame(CGRectMake(0, 0, 50, 50));

  // A layer removed and destroyed while animating leaves the clock.
  ZelLayer* doomed = root->addSublayer(std::make_unique<ZelLayer>());
  doomed->setOpacity(0.5);
  EXPECT_EQ(clock->animatingLayerCount(), 1u);
  doomed->removeFromSuperlayer().reset();
  EXPECT_EQ(clock->animatingLayerCount(), 0u);

  // A layer destroyed by a display-link client in the middle of a frame.
  ZelLayer* victim = root->addSublayer(std::make_unique<ZelLayer>());
  victim->setOpacity(0.5);
  ZelDisplayLink link(*clock, [&](double) {
    if (victim) victim->removeFromSuperlayer().reset();
    victim = nullptr;
  });
  link.start();
  clock->tick();
  EXPECT_EQ(clock->animatingLayerCount(), 0u);

  // A detached layer keeps its animation and is driven again when it joins.
  auto loose = std::make_unique<ZelLayer>();
  ZelLayer* orphan = root->addSublayer(std::move(loose));
  orphan->setOpacity(0.2);
  std::unique_ptr<ZelLayer> held = orphan->removeFromSuperlayer();
  EXPECT_EQ(clock->animatingLayerCount(), 0u);
  root->addSublayer(std::move(held));
  EXPECT_EQ(clock->animatingLayerCount(), 1u);

  // The clock goes first: the link and the layer forget it.
  clock.reset();
  EXPECT_FALSE(link.isRunning());
  EXPECT_EQ(link.clock(), nullptr);
  link.start();  // no clock: stays stopped
  EXPECT_FALSE(link.isRunning());
  host.clock = nullptr;
  root->setOpacity(0.1);
  root->setHost(nullptr);
  root.reset();
  EXPECT_EQ(loop->pendingCount(), 0u);
}

TEST(ZelFrameClock, AHiddenWindowsClockIsSuspendedWithItsClientsKept) {
  Window w;
  int frames = 0;
  ZelDisplayLink link(w.clock, [&](double) { ++frames; });
  link.start();
  ZelRunVirtualTime(w.loop, w.time, 0.1);
  EXPECT_GE(frames, 5);

  w.clock.setSuspended(true);  // the host hid the window
  const int before = frames;
  EXPECT_FALSE(w.clock.isRunning());
  EXPECT_EQ(w.loop.pendingCount(), 0u);
  ZelRunVirtualTime(w.loop, w.time, 1.0);
  EXPECT_EQ(frames, before);
  link.stop();
  link.start();  // a client coming or going while hidden schedules nothing
  EXPECT_EQ(w.loop.pendingCount(), 0u);

  w.clock.setSuspended(false);  // shown again: the link runs on
  EXPECT_TRUE(w.clock.isRunning());
  ZelRunVirtualTime(w.loop, w.time, 1.1);
  EXPECT_GE(frames, before + 5);
  link.stop();
  w.clock.setSuspended(true);
  w.clock.setSuspended(false);  // nothing left to animate: stays idle
  EXPECT_FALSE(w.clock.isRunning());
}
