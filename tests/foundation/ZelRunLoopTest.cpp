#include "toolkit/foundation/ZelRunLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using namespace zel;

// Counts the allocations of the thread that asks, to check that an idle pump
// allocates nothing. The replacement pair is malloc/free by design.
namespace {
thread_local bool tCountAllocations = false;
thread_local std::size_t tAllocations = 0;
}  // namespace
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size) {
  if (tCountAllocations) ++tAllocations;
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop

TEST(ZelRunLoop, RunsDueCallsByTimeThenSchedulingOrderAndCancels) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  int a = 0, b = 0;
  std::string ran;
  loop.schedule(0.2, [&] { ran += 'c'; });
  const auto h = loop.schedule(0.1, [&] { ran += 'a'; }, {&a, "step"});
  loop.schedule(0.1, [&] { ran += 'b'; });
  loop.schedule(-3, [&] { ran += 'z'; });
  loop.schedule(0.1, [&] { ran += 'k'; }, {&a, "step"});
  loop.schedule(0.1, [&] { ran += 'o'; }, {&a, "other"});
  loop.schedule(0.1, [&] { ran += 't'; }, {&b, "step"});
  EXPECT_EQ(loop.runDue(0.05), 1u);
  EXPECT_EQ(loop.nextDueTime(), 0.1);
  EXPECT_EQ(loop.cancel(ZelCallKey{}), 0u);  // no key matches nothing, not the unkeyed calls
  EXPECT_EQ(loop.cancel(ZelCallKey{&a, "step"}), 2u);
  EXPECT_FALSE(loop.cancel(h));
  EXPECT_EQ(loop.cancelAllForTarget(&a), 1u);
  EXPECT_EQ(loop.runDue(0.1), 2u);  // due exactly now counts as due
  EXPECT_EQ(ran, "zbt");
  EXPECT_EQ(loop.runDue(1.0), 1u);
  EXPECT_EQ(ran, "zbtc");
  EXPECT_FALSE(loop.nextDueTime().has_value());
}

TEST(ZelRunLoop, CallsMayCancelAndScheduleOthersWhileRunning) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  std::string ran;
  ZelRunLoop::Handle victim = 0;
  loop.schedule(1, [&] {
    ran += 'a';
    EXPECT_TRUE(loop.cancel(victim));
    loop.schedule(0, [&] { ran += 'n'; });  // due at the clock's now (0): before b
    loop.schedule(5, [&] { ran += 'l'; });  // not due yet
  });
  victim = loop.schedule(1, [&] { ran += 'v'; });
  loop.schedule(1, [&] { ran += 'b'; });
  EXPECT_EQ(loop.runDue(1), 3u);
  EXPECT_EQ(ran, "anb");

  // A cancelled call's captures may cancel further calls as they go.
  struct CancelOnDestroy {
    ZelRunLoop& loop;
    ZelRunLoop::Handle other;
    ~CancelOnDestroy() { loop.cancel(other); }
  };
  const auto other = loop.schedule(1, [] {});
  auto guard = std::make_shared<CancelOnDestroy>(CancelOnDestroy{loop, other});
  const auto holder = loop.schedule(1, [guard] {});
  guard.reset();
  EXPECT_TRUE(loop.cancel(holder));
  EXPECT_FALSE(loop.isPending(other));

  // An exception leaves the loop usable and the other calls pending.
  loop.schedule(0, [] { throw std::runtime_error("boom"); });
  loop.schedule(0, [&] { ran += 'x'; });
  EXPECT_THROW(loop.runDue(1), std::runtime_error);
  EXPECT_EQ(loop.runDue(1), 1u);
  EXPECT_EQ(ran, "anbx");
}

TEST(ZelRunLoop, PostsFromOtherThreadsRunInOrderAndIdlePumpsAllocateNothing) {
  ZelVirtualClock clock(3);
  ZelRunLoop loop(clock);
  std::atomic<int> wakes{0};
  loop.setWakeHandler([&] { ++wakes; });
  std::vector<int> seen;
  constexpr int kPosts = 2000;
  std::thread poster([&] {
    for (int i = 0; i < kPosts; ++i) loop.post([&seen, i] { seen.push_back(i); });
  });
  while (seen.size() < kPosts / 2) loop.runDue();  // pump while the other thread posts
  poster.join();
  loop.runDue();
  ASSERT_EQ(seen.size(), static_cast<std::size_t>(kPosts));
  for (int i = 0; i < kPosts; ++i) ASSERT_EQ(seen[i], i);
  EXPECT_EQ(wakes.load(), kPosts);

  loop.schedule(10, [] {});
  tAllocations = 0;
  tCountAllocations = true;
  for (int i = 0; i < 100; ++i) loop.runDue(4);
  tCountAllocations = false;
  EXPECT_EQ(tAllocations, 0u);
}

TEST(ZelRunLoop, VirtualTimeRunsEachCallAtItsOwnTime) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  std::vector<double> times;
  std::function<void()> tick = [&] {
    times.push_back(clock.now());
    loop.schedule(0.5, tick);
  };
  loop.schedule(1.0, tick);
  loop.schedule(1.75, [&] { times.push_back(-clock.now()); });
  ZelRunVirtualTime(loop, clock, 2.2);
  EXPECT_EQ(times, (std::vector<double>{1.0, 1.5, -1.75, 2.0}));
  EXPECT_EQ(clock.now(), 2.2);
  EXPECT_EQ(loop.nextDueTime(), 2.5);
}

TEST(ZelRunLoop, CurrentLoopIsPerThreadAndClearedWhenDestroyed) {
  ZelMonotonicClock clock;
  {
    ZelRunLoop loop(clock);
    ZelRunLoop::setCurrent(&loop);
    ZelRunLoop* elsewhere = &loop;
    std::thread([&] { elsewhere = ZelRunLoop::current(); }).join();
    EXPECT_EQ(elsewhere, nullptr);
    EXPECT_EQ(ZelRunLoop::current(), &loop);
  }
  EXPECT_EQ(ZelRunLoop::current(), nullptr);
}
