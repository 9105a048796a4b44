// A window on a virtual clock with a null backend, for the element tests.
#pragma once

#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace elementstest {

using namespace zel;

struct Fixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelNullPlatformWindow platform{loop, 2};
  ZelWindow window{loop, {400, 300}};

  Fixture() { window.setPlatformWindow(&platform); }
  ~Fixture() { window.setPlatformWindow(nullptr); }
  ZelView& root() { return *window.contentView(); }
  // Runs the frame clock and every due call up to `t` seconds.
  void runUntil(double t) { ZelRunVirtualTime(loop, clock, t); }
};

}  // namespace elementstest
