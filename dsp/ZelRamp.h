// A value that glides linearly to each new target over a fixed time, and
// lands on it exactly (so "at zero" tests stay exact once a glide ends).
// Threading: one thread; real-time safe.
#pragma once

#include <cmath>

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

class ZelRamp {
 public:
  // The glide's length in samples (at least 1).
  void setLength(int samples) { length_ = samples < 1 ? 1 : samples; }
  // Jumps to `value` with no glide.
  void snap(double value) {
    current_ = target_ = value;
    remaining_ = 0;
  }
  // Starts a glide from wherever the value is (nothing when it is the target already).
  void glideTo(double target) {
    if (target == target_) return;
    target_ = target;
    remaining_ = length_;
    step_ = (target_ - current_) / length_;
  }
  // Moves `samples` on and returns the value there.
  double advance(int samples) {
    if (remaining_ <= samples) {
      current_ = target_;
      remaining_ = 0;
    } else {
      current_ += step_ * samples;
      remaining_ -= samples;
    }
    return current_;
  }
  double value() const { return current_; }
  double target() const { return target_; }
  bool moving() const { return remaining_ > 0; }
  // How far the value moves per sample while it glides.
  double speed() const { return remaining_ > 0 ? std::abs(step_) : 0; }

 private:
  double current_ = 0, target_ = 0, step_ = 0;
  int length_ = 1, remaining_ = 0;
};

ZEL_DSP_NAMESPACE_END
