#include "toolkit/foundation/ZelSpeedLim.h"

#include <limits>

ZEL_NAMESPACE_BEGIN

// `last_` starts infinitely far in the past, so the first call always goes
// through whatever the clock's origin.
ZelSpeedLim::ZelSpeedLim(ZelRunLoop& loop)
    : loop_(loop), last_(-std::numeric_limits<double>::infinity()) {}

ZelSpeedLim::~ZelSpeedLim() {
  std::lock_guard lock(mutex_);
  for (ZelRunLoop::Handle handle : scheduled_) loop_.cancel(handle);
}

bool ZelSpeedLim::trailing() const {
  std::lock_guard lock(mutex_);
  return trailing_;
}

void ZelSpeedLim::setTrailing(bool trailing) {
  std::lock_guard lock(mutex_);
  trailing_ = trailing;
}

void ZelSpeedLim::fireWithLimit(double limit, const void* target, std::string_view selector,
                                std::function<void()> message) {
  std::lock_guard lock(mutex_);
  const double now = loop_.now();
  // A trailing delivery whose time has passed has happened: the period
  // restarts from it.
  if (airborne_ && *airborne_ - now < -0.0) last_ = *airborne_;
  const double ago = last_ - now;
  if (-ago >= limit) {
    last_ = now;
    airborne_.reset();
    message();
  } else if (trailing_) {
    scheduleTrailing(ago + limit, now, ZelCallKey{target, selector}, std::move(message));
  }
}

void ZelSpeedLim::scheduleTrailing(double delay, double now, ZelCallKey key, std::function<void()> message) {
  loop_.cancel(key);
  std::erase_if(scheduled_, [this](ZelRunLoop::Handle h) { return !loop_.isPending(h); });
  scheduled_.push_back(loop_.schedule(delay, std::move(message), key));
  airborne_ = now + delay;
}

ZEL_NAMESPACE_END
