#include "toolkit/foundation/ZelSpeedLim.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <stdexcept>
#include <vector>

using namespace zel;

namespace {

constexpr double kFrame = 0.01666;

// A limiter on a virtual clock that records each delivery: (tag, time).
struct Rig {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelSpeedLim lim{loop};
  std::vector<std::pair<int, double>> got;

  void fireAt(double t, int tag, double limit = kFrame) {
    ZelRunVirtualTime(loop, clock, t);
    lim.fireWithLimit(limit, this, "deliver", [this, tag] { got.emplace_back(tag, clock.now()); });
  }
};

}  // namespace

TEST(ZelSpeedLim, BurstGivesLeadingAndOneTrailingDelivery) {
  Rig rig;
  rig.clock.set(1000);
  rig.fireAt(1000, 1);
  ASSERT_EQ(rig.got.size(), 1u);  // at once, synchronously
  rig.fireAt(1000.005, 2);
  rig.fireAt(1000.010, 3);
  EXPECT_EQ(rig.loop.pendingCount(), 1u);  // the third replaced the second
  rig.fireAt(1000.020, 4);                 // after the trailing delivery, inside its period
  ZelRunVirtualTime(rig.loop, rig.clock, 1001);
  ASSERT_EQ(rig.got.size(), 3u);
  EXPECT_EQ(rig.got[1].first, 3);
  EXPECT_NEAR(rig.got[1].second, 1000 + kFrame, 1e-9);
  EXPECT_NEAR(rig.got[2].second, 1000 + 2 * kFrame, 1e-9);
}

TEST(ZelSpeedLim, WithoutTrailingCallsInsideThePeriodAreDropped) {
  Rig rig;
  rig.lim.setTrailing(false);
  for (double t : {0.0, 0.5, 0.999, 1.0, 1.25}) rig.fireAt(t, static_cast<int>(t * 1000), 1.0);
  EXPECT_EQ(rig.loop.pendingCount(), 0u);
  ZelRunVirtualTime(rig.loop, rig.clock, 5);
  // Exactly the limit later goes through at once: the test is "at least".
  EXPECT_EQ(rig.got, (std::vector<std::pair<int, double>>{{0, 0.0}, {1000, 1.0}}));
}

TEST(ZelSpeedLim, MessageMayCallBackIntoTheLimiterAndThrow) {
  Rig rig;
  int inner = 0;
  rig.lim.fireWithLimit(kFrame, &rig, "outer", [&] {
    rig.lim.fireWithLimit(kFrame, &rig, "inner", [&] { ++inner; });  // no deadlock; postponed
  });
  EXPECT_EQ(inner, 0);
  ZelRunVirtualTime(rig.loop, rig.clock, 1);
  EXPECT_EQ(inner, 1);

  EXPECT_THROW(rig.lim.fireWithLimit(kFrame, &rig, "t", [] { throw std::runtime_error("x"); }), std::runtime_error);
  rig.lim.setTrailing(false);  // the other thread's call is dropped, so it schedules nothing
  auto other = std::async(std::launch::async, [&] { rig.lim.fireWithLimit(kFrame, &rig, "x", [] {}); });
  EXPECT_EQ(other.wait_for(std::chrono::seconds(5)), std::future_status::ready);  // lock released
}

TEST(ZelSpeedLim, DestroyingTheLimiterCancelsOnlyItsPendingDelivery) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  int delivered = 0, unrelated = 0;
  loop.schedule(1, [&] { ++unrelated; }, {&delivered, "tick"});
  {
    ZelSpeedLim lim(loop);
    lim.fireWithLimit(kFrame, &delivered, "tick", [&] { ++delivered; });
    lim.fireWithLimit(kFrame, &delivered, "tock", [&] { ++delivered; });
    EXPECT_EQ(loop.pendingCount(), 2u);
  }
  ZelRunVirtualTime(loop, clock, 2);
  EXPECT_EQ(delivered, 1);
  EXPECT_EQ(unrelated, 1);
}
