#include "toolkit/foundation/ZelRunLoop.h"

#include <algorithm>

ZEL_NAMESPACE_BEGIN

namespace {

thread_local ZelRunLoop* tCurrentLoop = nullptr;

}  // namespace

double ZelMonotonicClock::now() const {
  using Seconds = std::chrono::duration<double>;
  return std::chrono::duration_cast<Seconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

ZelRunLoop::ZelRunLoop(const ZelClock& clock) : clock_(clock) {}

ZelRunLoop::~ZelRunLoop() {
  if (tCurrentLoop == this) tCurrentLoop = nullptr;
}

// The heap's comparator: std::*_heap keep the "largest" element in front, so
// the later entry counts as the smaller one and the earliest comes first.
static bool runsLater(const auto& a, const auto& b) {
  if (a.due != b.due) return a.due > b.due;
  return a.seq > b.seq;
}

ZelRunLoop::Handle ZelRunLoop::push(double due, std::function<void()> call, ZelCallKey key) {
  const std::uint64_t seq = nextSeq_++;
  entries_.push_back(Entry{due, seq, seq, key, std::move(call)});
  std::push_heap(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) { return runsLater(a, b); });
  return seq;
}

ZelRunLoop::Handle ZelRunLoop::schedule(double delay, std::function<void()> call, ZelCallKey key) {
  if (!(delay > 0)) delay = 0;  // negative and NaN delays mean "now"
  return push(clock_.now() + delay, std::move(call), key);
}

// Removes the matching entries and restores the heap. Pending calls are few
// (a handful of deferred steps), so a linear pass is the cheap way.
template <class Pred>
std::size_t ZelRunLoop::removeIf(Pred pred) {
  auto kept = std::remove_if(entries_.begin(), entries_.end(), pred);
  const auto removed = static_cast<std::size_t>(entries_.end() - kept);
  if (removed == 0) return 0;
  // Destroying the removed calls may run their captures' destructors, which
  // may cancel further calls: detach them from entries_ first.
  std::vector<Entry> dropped(std::make_move_iterator(kept), std::make_move_iterator(entries_.end()));
  entries_.erase(kept, entries_.end());
  std::make_heap(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) { return runsLater(a, b); });
  return removed;
}

bool ZelRunLoop::cancel(Handle handle) {
  if (handle == 0) return false;
  return removeIf([handle](const Entry& e) { return e.handle == handle; }) != 0;
}

std::size_t ZelRunLoop::cancel(ZelCallKey key) {
  if (key.empty()) return 0;
  return removeIf([&key](const Entry& e) { return e.key == key; });
}

std::size_t ZelRunLoop::cancelAllForTarget(const void* target) {
  if (target == nullptr) return 0;
  return removeIf([target](const Entry& e) { return e.key.target == target; });
}

void ZelRunLoop::post(std::function<void()> call) {
  {
    std::lock_guard lock(postedMutex_);
    posted_.push_back(std::move(call));
    hasPosted_.store(true, std::memory_order_release);
  }
  if (wake_) wake_();
}

void ZelRunLoop::setWakeHandler(std::function<void()> wake) { wake_ = std::move(wake); }

void ZelRunLoop::drainPosted(double due) {
  {
    std::lock_guard lock(postedMutex_);
    draining_.swap(posted_);
    hasPosted_.store(false, std::memory_order_relaxed);
  }
  for (auto& call : draining_) push(due, std::move(call), {});
  draining_.clear();
}

std::size_t ZelRunLoop::runDue() { return runDue(clock_.now()); }

std::size_t ZelRunLoop::runDue(double now) {
  std::size_t ran = 0;
  for (;;) {
    if (hasPosted_.load(std::memory_order_acquire)) drainPosted(now);
    if (entries_.empty() || entries_.front().due > now) return ran;
    std::pop_heap(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) { return runsLater(a, b); });
    // Take the call out before running it: it may schedule or cancel calls,
    // which moves the heap's elements.
    std::function<void()> call = std::move(entries_.back().call);
    entries_.pop_back();
    ++ran;
    call();
  }
}

std::optional<double> ZelRunLoop::nextDueTime() const {
  std::optional<double> next;
  if (!entries_.empty()) next = entries_.front().due;
  if (hasPosted_.load(std::memory_order_acquire)) {
    const double now = clock_.now();
    if (!next || now < *next) next = now;
  }
  return next;
}

std::size_t ZelRunLoop::pendingCount() const { return entries_.size(); }

bool ZelRunLoop::isPending(Handle handle) const {
  return std::any_of(entries_.begin(), entries_.end(), [handle](const Entry& e) { return e.handle == handle; });
}

ZelRunLoop* ZelRunLoop::current() { return tCurrentLoop; }

void ZelRunLoop::setCurrent(ZelRunLoop* loop) { tCurrentLoop = loop; }

void ZelRunVirtualTime(ZelRunLoop& loop, ZelVirtualClock& clock, double until) {
  until = std::max(until, clock.now());  // virtual time never runs backwards
  loop.runDue(clock.now());
  for (auto next = loop.nextDueTime(); next && *next <= until; next = loop.nextDueTime()) {
    clock.set(std::max(*next, clock.now()));
    loop.runDue(clock.now());
  }
  clock.set(until);
  loop.runDue(until);
}

ZEL_NAMESPACE_END
