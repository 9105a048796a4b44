// Parameter changes from the main thread to the audio thread: one slot per
// parameter holding the latest value and a "not yet taken" flag. A value
// posted again before the audio thread took it replaces the earlier one, so
// the mailbox can never be full and never loses the last value; nothing
// allocates, locks or waits on either side.
//
// Ownership: owns its slots, allocated by the constructor.
// Threading: one producer thread calls post(), one consumer thread calls
// take(); they may run at the same time.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

class ZelParameterMailbox {
 public:
  // One slot per pid 0..count-1 (allocates: not on the audio thread).
  explicit ZelParameterMailbox(int count)
      : count_(count > 0 ? count : 0),
        values_(std::make_unique<std::atomic<float>[]>(std::size_t(count_))),
        pending_(std::make_unique<std::atomic<bool>[]>(std::size_t(count_))) {}

  int count() const noexcept { return count_; }

  // Producer: `value` (in the parameter's own units) is what the consumer
  // takes next for `pid`. Unknown ids are ignored.
  void post(int pid, float value) noexcept {
    if (pid < 0 || pid >= count_) return;
    values_[pid].store(value, std::memory_order_relaxed);
    pending_[pid].store(true, std::memory_order_release);
    any_.store(true, std::memory_order_release);
  }

  // Consumer: calls apply(pid, value) once for each parameter posted since
  // the last take, with its latest value; returns how many. A post that
  // races with a take is taken now or at the next take, never lost.
  template <class Apply>
  int take(Apply&& apply) noexcept {
    if (!any_.exchange(false, std::memory_order_acq_rel)) return 0;
    int taken = 0;
    for (int pid = 0; pid < count_; ++pid) {
      if (!pending_[pid].exchange(false, std::memory_order_acq_rel)) continue;
      apply(pid, values_[pid].load(std::memory_order_relaxed));
      ++taken;
    }
    return taken;
  }

 private:
  static_assert(std::atomic<float>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
                "the audio thread must never take a lock");
  int count_;
  std::unique_ptr<std::atomic<float>[]> values_;
  std::unique_ptr<std::atomic<bool>[]> pending_;
  std::atomic<bool> any_{false};
};

ZEL_DSP_NAMESPACE_END
