// The main-thread run loop: delayed, cancellable calls on a clock. It never
// blocks and never sleeps; a backend's event pump or a host's idle callback
// calls runDue() and asks nextDueTime() for how long it may wait.
//
// Threading: schedule/cancel/runDue are for the thread that owns the loop
// (the UI thread), except post(), which any thread may call to queue a call
// for the next runDue().
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// Seconds on a monotonic time line. Not owned by the run loop.
class ZelClock {
 public:
  virtual ~ZelClock() = default;
  virtual double now() const = 0;
};

// The real clock: seconds since an arbitrary start, steady.
class ZelMonotonicClock final : public ZelClock {
 public:
  double now() const override;
};

// A clock that only moves when told to; tests and the scripted driver use it
// so that every delayed call and animation frame is deterministic.
class ZelVirtualClock final : public ZelClock {
 public:
  explicit ZelVirtualClock(double start = 0) : now_(start) {}
  double now() const override { return now_; }
  void set(double t) { now_ = t; }
  void advance(double seconds) { now_ += seconds; }

 private:
  double now_;
};

// Identifies "this message to this target", for cancelling the pending
// delayed delivery of it. `message` must outlive the call (use literals).
struct ZelCallKey {
  const void* target = nullptr;
  std::string_view message;
  bool empty() const { return target == nullptr && message.empty(); }
  friend bool operator==(const ZelCallKey&, const ZelCallKey&) = default;
};

class ZelRunLoop {
 public:
  using Handle = std::uint64_t;  // 0 is never a valid handle

  explicit ZelRunLoop(const ZelClock& clock);
  ~ZelRunLoop();
  ZelRunLoop(const ZelRunLoop&) = delete;
  ZelRunLoop& operator=(const ZelRunLoop&) = delete;

  const ZelClock& clock() const { return clock_; }
  double now() const { return clock_.now(); }

  // Runs `call` once, `delay` seconds from now (a negative delay is 0).
  // Calls due at the same time run in the order they were scheduled.
  Handle schedule(double delay, std::function<void()> call, ZelCallKey key = {});
  // Cancels one call; false when it already ran or was cancelled.
  bool cancel(Handle handle);
  // Cancels every pending call scheduled with this key; returns how many.
  std::size_t cancel(ZelCallKey key);
  // Cancels every pending call of this target, whatever the message.
  std::size_t cancelAllForTarget(const void* target);

  // Any thread: queue a call for the next runDue() (as if scheduled with
  // delay 0 at that time).
  void post(std::function<void()> call);
  // Called on the posting thread after every post(), so that the owner can
  // wake an event pump that sleeps until nextDueTime(). Set it before any
  // other thread may post; it must not call back into this loop.
  void setWakeHandler(std::function<void()> wake);

  // Runs, in time order, every call due at or before `now` (the clock's now
  // when omitted), including calls that those calls schedule when they are
  // due by then. Returns the number of calls run. Never blocks, and costs no
  // allocation when nothing is due. A call may schedule and cancel calls on
  // this loop (a call scheduled with delay 0 is due at the clock's now, so
  // on a frozen virtual clock a call that keeps rescheduling itself at delay
  // 0 never lets runDue return). An exception from a call propagates; that
  // call is gone, the rest stay pending. A call must not destroy the loop.
  std::size_t runDue();
  std::size_t runDue(double now);

  // The due time of the earliest pending call, if any (the clock's now when
  // a posted call waits for the next runDue()).
  std::optional<double> nextDueTime() const;
  std::size_t pendingCount() const;
  bool isPending(Handle handle) const;

  // The run loop of the calling thread (set by its owner), or nullptr. A
  // loop that is current on the thread that destroys it stops being current.
  static ZelRunLoop* current();
  static void setCurrent(ZelRunLoop* loop);

 private:
  struct Entry {
    double due;
    std::uint64_t seq;
    Handle handle;
    ZelCallKey key;
    std::function<void()> call;
  };
  void drainPosted(double due);
  Handle push(double due, std::function<void()> call, ZelCallKey key);
  template <class Pred>
  std::size_t removeIf(Pred pred);

  const ZelClock& clock_;
  std::vector<Entry> entries_;  // kept as a heap ordered by (due, seq)
  std::uint64_t nextSeq_ = 1;
  std::mutex postedMutex_;
  std::vector<std::function<void()>> posted_;
  std::vector<std::function<void()>> draining_;  // reused by drainPosted()
  std::atomic<bool> hasPosted_{false};
  std::function<void()> wake_;
};

// Advances a virtual clock to `until`, running each due call at its own due
// time (the clock is set to it first), so calls scheduled by calls land
// exactly where they would in real time.
void ZelRunVirtualTime(ZelRunLoop& loop, ZelVirtualClock& clock, double until);

ZEL_NAMESPACE_END
