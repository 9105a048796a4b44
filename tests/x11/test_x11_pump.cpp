// The event pump: idle it costs no allocation and sends the server nothing
// (so it cannot wait for a round trip); it tells a sleeping app when to wake;
// a call posted from another thread ends the sleep through the wake pipe.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <thread>

#include "TestViews.h"
#include "X11TestSupport.h"
#include "toolkit/x11/ZelX11EventWait.h"

using namespace zel;
using namespace zeltest;

// Every operator new of this test program, counted while counting is on.
// (GCC cannot see that the matching new below is malloc.)
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
namespace {
std::atomic<bool> gCounting{false};
std::atomic<std::size_t> gAllocations{0};
}  // namespace

void* operator new(std::size_t size) {
  if (gCounting.load(std::memory_order_relaxed)) gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace {

struct PumpFixture {
  PumpFixture() : window(loop, CGSizeMake(200, 100)) {
    window.setContentView(makeScene(CGSizeMake(200, 100)));
    ZelX11WindowOptions options;
    options.backingScale = 1;
    host = openHost(window, options);
    if (host) host->show();
  }
  ZelMonotonicClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window;
  std::unique_ptr<ZelX11WindowHost> host;
};

}  // namespace

TEST(X11Pump, IdlePumpAllocatesNothingAndSendsNoRequest) {
  ZEL_REQUIRE_XVFB();
  PumpFixture f;
  ASSERT_TRUE(f.host);
  settle(*f.host);
  EXPECT_EQ(f.host->nextTimeout(), std::nullopt);  // nothing to wait for: sleep until X speaks

  const unsigned long nextRequest = XNextRequest(f.host->display());
  const std::size_t redraws = f.host->redrawCount();
  gAllocations = 0;
  gCounting = true;
  for (int i = 0; i < 10000; ++i) f.host->pump();
  gCounting = false;
  EXPECT_EQ(gAllocations.load(), 0u);
  EXPECT_EQ(XNextRequest(f.host->display()), nextRequest);
  EXPECT_EQ(f.host->redrawCount(), redraws);

  // The counter does count: a redraw allocates (and is one more request).
  f.window.setNeedsDisplay();
  gCounting = true;
  f.host->pump();
  gCounting = false;
  EXPECT_GT(gAllocations.load(), 0u);
}

TEST(X11Pump, TellsTheAppHowLongItMaySleep) {
  ZEL_REQUIRE_XVFB();
  PumpFixture f;
  ASSERT_TRUE(f.host);
  settle(*f.host);
  int ran = 0;
  f.loop.schedule(0.3, [&] { ++ran; });
  std::optional<double> timeout = f.host->nextTimeout();
  ASSERT_TRUE(timeout);
  EXPECT_GT(*timeout, 0.2);
  EXPECT_LE(*timeout, 0.3);

  // The wait ends when the call is due, and the next pump runs it.
  auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(ZelX11WaitForEvents(*f.host, nullptr, 5));
  double slept = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_GT(slept, 0.2);
  EXPECT_LT(slept, 1.0);
  f.host->pump();
  EXPECT_EQ(ran, 1);
}

TEST(X11Pump, APostFromAnotherThreadWakesTheSleeper) {
  ZEL_REQUIRE_XVFB();
  PumpFixture f;
  ASSERT_TRUE(f.host);
  ZelX11WakePipe wake(f.loop);
  ASSERT_TRUE(wake.isValid());
  settle(*f.host);
  std::atomic<bool> ran{false};
  std::thread poster([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    f.loop.post([&] { ran = true; });
  });
  auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(ZelX11WaitForEvents(*f.host, &wake, 5));
  double slept = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  poster.join();
  EXPECT_LT(slept, 2.0);
  f.host->pump();
  EXPECT_TRUE(ran);
  // The pipe was emptied: the next wait sleeps its full time again.
  start = std::chrono::steady_clock::now();
  ZelX11WaitForEvents(*f.host, &wake, 0.1);
  EXPECT_GE(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 0.09);
}
