// A per-frame callback driven by a window's frame clock, in place of the
// platform's display link: start() makes the clock tick (it keeps ticking
// while the link runs), every frame calls the callback with the frame
// duration in seconds on the UI thread, stop() lets the clock go idle.
//
// Ownership: the link does not own its clock; it removes itself from the
// clock when stopped or destroyed, and forgets a clock that disappears first
// (it then never runs again). Threading: the UI thread only.
#pragma once

#include <functional>

#include "toolkit/core/ZelFrameClock.h"

ZEL_NAMESPACE_BEGIN

class ZelDisplayLink final : public ZelFrameClockClient {
 public:
  using Callback = std::function<void(double frameDuration)>;

  ZelDisplayLink(ZelFrameClock& clock, Callback callback);
  ~ZelDisplayLink() override;
  ZelDisplayLink(const ZelDisplayLink&) = delete;
  ZelDisplayLink& operator=(const ZelDisplayLink&) = delete;

  // Both may be called from the callback.
  void start();
  void stop();
  bool isRunning() const { return running_; }
  // The clock's rate in hertz (0 when the clock has gone).
  double nominalFramesPerSecond() const;
  ZelFrameClock* clock() const { return clock_; }

  void frameClockDidTick(ZelFrameClock& clock, double frameDuration) override;
  void frameClockWillDisappear(ZelFrameClock& clock) override;

 private:
  ZelFrameClock* clock_;
  Callback callback_;
  bool running_ = false;
};

ZEL_NAMESPACE_END
