#include "app/standalone/ZelLiveUnit.h"

#include <algorithm>

ZEL_DSP_NAMESPACE_BEGIN

ZelLiveUnit::ZelLiveUnit(std::unique_ptr<ZelAudioUnit> first, int parameterCount)
    : mailbox_(parameterCount), playing_(first.release()) {
  meterCount_ = std::min(playing_->meterCount(), kMaxMeters);
  publishMeters();
}

void ZelLiveUnit::publishMeters() noexcept {
  if (meterCount_ == 0) return;
  std::array<float, kMaxMeters> levels{};
  playing_->readMeters(levels.data(), meterCount_);
  for (std::uint32_t i = 0; i < meterCount_; ++i) meters_[i].store(levels[i], std::memory_order_relaxed);
}

void ZelLiveUnit::readMeters(float* levels, std::uint32_t count) const noexcept {
  const std::uint32_t n = std::min(count, meterCount_);
  for (std::uint32_t i = 0; i < n; ++i) levels[i] = meters_[i].load(std::memory_order_relaxed);
}

ZelLiveUnit::~ZelLiveUnit() {
  delete offered_.exchange(nullptr);
  delete retired_.exchange(nullptr);
  delete playing_;
}

void ZelLiveUnit::replace(std::unique_ptr<ZelAudioUnit> next) {
  collect();
  // Whatever the audio thread did not take is ours again.
  delete offered_.exchange(next.release(), std::memory_order_acq_rel);
}

void ZelLiveUnit::collect() { delete retired_.exchange(nullptr, std::memory_order_acq_rel); }

bool ZelLiveUnit::hasLeftovers() const {
  return offered_.load(std::memory_order_acquire) != nullptr || retired_.load(std::memory_order_acquire) != nullptr;
}

void ZelLiveUnit::settle() {
  takeReplacement();
  collect();
}

void ZelLiveUnit::takeReplacement() noexcept {
  // The previous unit put aside must be collected before another one can be.
  if (retired_.load(std::memory_order_acquire) != nullptr) return;
  ZelAudioUnit* next = offered_.exchange(nullptr, std::memory_order_acq_rel);
  if (!next) return;
  retired_.store(playing_, std::memory_order_release);
  playing_ = next;
}

void ZelLiveUnit::process(const float* const* in, float* const* out, std::uint32_t frames) noexcept {
  takeReplacement();
  ZelAudioUnit& unit = *playing_;
  mailbox_.take([&unit](int pid, float value) { unit.setParameter(pid, value); });
  unit.process(in, out, frames);
  publishMeters();
}

ZEL_DSP_NAMESPACE_END
