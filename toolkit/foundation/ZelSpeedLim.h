// A call-rate limiter with a leading edge and an optional trailing edge: the
// first call of a quiet period is delivered at once; later calls within
// `limit` seconds of the last delivery are either postponed to the end of
// the period (trailing, the default; each replaces the one pending before)
// or dropped.
//
// Time comes from the run loop's clock, and the trailing delivery runs on
// that loop. The loop is not owned and must outlive the limiter; destroying
// the limiter cancels its pending trailing delivery.
//
// Threading: every call of fireWithLimit is serialised on the limiter's own
// recursive lock. An immediate delivery runs under that lock, synchronously,
// on the calling thread (a message that calls back into the limiter is fine;
// an exception from it releases the lock and propagates). A call that ends up
// postponed schedules on the run loop, so it must come from the loop's
// thread. The trailing delivery runs on the loop's thread, without the lock.
#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelSpeedLim {
 public:
  explicit ZelSpeedLim(ZelRunLoop& loop);
  ~ZelSpeedLim();
  ZelSpeedLim(const ZelSpeedLim&) = delete;
  ZelSpeedLim& operator=(const ZelSpeedLim&) = delete;

  // Delivers `message` now if at least `limit` seconds have passed since the
  // last delivery, otherwise postpones it to the end of the period (replacing
  // the pending delivery with the same target and selector) or drops it.
  // `target` and `selector` only identify the message for that replacement;
  // `selector` must outlive the pending delivery (use a literal).
  void fireWithLimit(double limit, const void* target, std::string_view selector, std::function<void()> message);

  bool trailing() const;
  void setTrailing(bool trailing);

 private:
  void scheduleTrailing(double delay, double now, ZelCallKey key, std::function<void()> message);

  ZelRunLoop& loop_;
  mutable std::recursive_mutex mutex_;
  double last_;                     // when the message was (deemed) last delivered
  std::optional<double> airborne_;  // when the trailing delivery is due
  bool trailing_ = true;
  std::vector<ZelRunLoop::Handle> scheduled_;  // trailing deliveries that may still be pending
};

ZEL_NAMESPACE_END
