// The audio unit as the audio thread plays it: the unit in use, the
// parameter mailbox that brings the editor's changes to it, and a hand-over
// for a replacement unit (another sample rate), prepared on the main thread.
//
// At the start of every block the audio thread takes a replacement that is
// waiting (putting the unit it played aside), then applies the values
// waiting in the mailbox, then processes. The unit put aside is freed by the
// main thread (collect), never by the audio thread: the audio side only
// exchanges pointers.
//
// After each block the audio thread copies the playing unit's meter levels
// (at most kMaxMeters) into atomics of its own, so the main thread reads
// meters without ever touching a unit the audio thread may be swapping.
//
// Ownership: owns the unit in use, the replacement waiting and the unit put
// aside; the destructor frees all three (no audio thread may run by then).
// Threading: post(), replace(), collect() and hasLeftovers() belong to the
// main thread; process() to the audio thread (one at a time; it never
// allocates, locks, waits or does I/O). meterCount() and readMeters() are
// for any thread. playing() is for whoever knows that
// no audio thread runs (tests, the main thread after the audio stopped).
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

#include "app/standalone/ZelParameterMailbox.h"
#include "dsp/ZelAudioUnit.h"

ZEL_DSP_NAMESPACE_BEGIN

class ZelLiveUnit {
 public:
  // `first` plays until replaced; the mailbox has a slot for each of the
  // `parameterCount` pids.
  ZelLiveUnit(std::unique_ptr<ZelAudioUnit> first, int parameterCount);
  ~ZelLiveUnit();
  ZelLiveUnit(const ZelLiveUnit&) = delete;
  ZelLiveUnit& operator=(const ZelLiveUnit&) = delete;

  // ---- Main thread.
  // `value` in the parameter's own units reaches the unit at the next block.
  void post(int pid, float value) noexcept { mailbox_.post(pid, value); }
  // Offers `next` (its values already set) to the audio thread, which
  // plays it from its next block on. A replacement offered earlier and not
  // taken yet is freed; so is a unit put aside and not collected yet.
  void replace(std::unique_ptr<ZelAudioUnit> next);
  // Frees the unit the audio thread put aside, if any.
  void collect();
  // Whether a replacement waits or a unit put aside waits to be freed.
  bool hasLeftovers() const;
  // With no audio thread running: takes a waiting replacement at once.
  void settle();

  // ---- Audio thread.
  // `in` and `out` hold the unit's channel count of pointers to `frames`
  // samples (any number: the unit cuts long blocks itself).
  void process(const float* const* in, float* const* out, std::uint32_t frames) noexcept;

  // ---- Any thread.
  static constexpr std::uint32_t kMaxMeters = 16;
  // The meter levels the first unit offers (its meterCount(), at most
  // kMaxMeters), as the last block left them; before any block, the first
  // unit's resting levels.
  std::uint32_t meterCount() const { return meterCount_; }
  // Writes min(count, meterCount()) levels; lock-free, never waits.
  void readMeters(float* levels, std::uint32_t count) const noexcept;

  // ---- No audio thread running.
  ZelAudioUnit& playing() { return *playing_; }

 private:
  void takeReplacement() noexcept;
  // Copies the playing unit's levels into meters_.
  void publishMeters() noexcept;

  static_assert(std::atomic<ZelAudioUnit*>::is_always_lock_free);
  ZelParameterMailbox mailbox_;
  ZelAudioUnit* playing_;                        // audio thread's
  std::atomic<ZelAudioUnit*> offered_{nullptr};  // main -> audio
  std::atomic<ZelAudioUnit*> retired_{nullptr};  // audio -> main
  std::uint32_t meterCount_ = 0;                 // fixed by the first unit
  std::array<std::atomic<float>, kMaxMeters> meters_{};  // audio -> any
  static_assert(std::atomic<float>::is_always_lock_free);
};

ZEL_DSP_NAMESPACE_END
