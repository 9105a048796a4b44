#include "toolkit/foundation/ZelNotificationCenter.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace zel;

namespace {
constexpr const char* kThemeUpdated = "ZelUIThemeUpdatedNotification";
}

TEST(ZelNotificationCenter, DeliversByNameAndObjectFilter) {
  ZelNotificationCenter center;
  int windowA = 0, windowB = 0;
  std::string log;
  auto any = center.addObserver(kThemeUpdated, nullptr, [&](const ZelNotification& n) {
    log += n.object == &windowA ? "any:A " : n.object == nullptr ? "any:- " : "any:B ";
    EXPECT_EQ(n.name, kThemeUpdated);
  });
  auto onlyA = center.addObserver(kThemeUpdated, &windowA, [&](const ZelNotification&) { log += "A "; });
  auto other = center.addObserver("Other", nullptr, [&](const ZelNotification&) { log += "other "; });

  center.post(kThemeUpdated, &windowA);
  center.post(kThemeUpdated, &windowB);
  center.post(kThemeUpdated);
  EXPECT_EQ(log, "any:A A any:B any:- ");
  log.clear();
  center.post("ZelUIThemeUpdated");  // names match whole
  EXPECT_EQ(log, "");
}

TEST(ZelNotificationCenter, HandleLifetimeControlsRegistration) {
  int calls = 0;
  auto count = [&](const ZelNotification&) { ++calls; };
  ZelNotificationCenter::Observation kept;
  {
    ZelNotificationCenter center;
    {
      auto dropped = center.addObserver("n", nullptr, count);
      kept = center.addObserver("n", nullptr, count);
      center.post("n");
      EXPECT_EQ(calls, 2);
    }
    EXPECT_EQ(center.observerCount(), 1u);
    auto moved = std::move(kept);  // moving keeps the registration
    center.post("n");
    EXPECT_EQ(calls, 3);
    kept = std::move(moved);
    EXPECT_TRUE(kept.active());
  }
  EXPECT_FALSE(kept.active());  // the handle outlives its centre harmlessly
  kept.reset();
}

TEST(ZelNotificationCenter, ObserversMayComeAndGoDuringAPost) {
  ZelNotificationCenter center;
  std::string log;
  ZelNotificationCenter::Observation self, later, added;
  self = center.addObserver("n", nullptr, [&](const ZelNotification&) {
    log += "self ";
    self.reset();   // drops its own callback while it runs
    later.reset();  // a later observer of this post is not called
    added = center.addObserver("n", nullptr, [&](const ZelNotification&) { log += "added "; });
  });
  later = center.addObserver("n", nullptr, [&](const ZelNotification&) { log += "later "; });
  auto nested = center.addObserver("outer", nullptr, [&](const ZelNotification&) { center.post("n"); });

  center.post("outer");
  EXPECT_EQ(log, "self ");
  center.post("n");
  EXPECT_EQ(log, "self added ");
  EXPECT_EQ(center.observerCount(), 2u);
}
