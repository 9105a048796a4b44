// The signal chain behind ZelVantryUnit. Not for use on its own: the unit
// clamps the values it hands in and scopes the floating-point mode.
//
// Per channel of processing (left/right, mid/side, or one mono sum):
//   [up] Drive -> Degrade -> Hiss -> Low Cut -> High Cut [down]
// where [up]/[down] oversample with HQ on. Around it: the Mode's encoding
// and decoding, the dry/wet Mix (the dry signal delayed to line up), Width,
// Output, and the Power crossfade against the delayed input.
//
// Work is done in sub-blocks of about half a millisecond: glides advance
// and filter coefficients follow them once per sub-block, gains are
// interpolated sample by sample within it. A change of Mode or HQ dips the
// output for 10 ms, switches under silence and comes back over 10 ms.
//
// Ownership: every buffer is a fixed member; the engine itself is
// allocated once by the unit. Threading: one thread; process() is real-time
// safe.
#pragma once

#include <cstdint>

#include "dsp/ZelButterworth.h"
#include "dsp/ZelOversampler.h"
#include "dsp/ZelRamp.h"
#include "dsp/ZelStateVariableSection.h"
#include "dsp/ZelVantryParameterTable.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

class ZelVantryEngine {
 public:
  static constexpr int kMaxSubBlock = 64;

  ZelVantryEngine(int channels, double sampleRate);

  // Back to a fresh start: every state cleared, the next block starts at
  // the values it is given with no glide.
  void reset();
  // `values` holds kZelParameterCount clamped values in their own units.
  void process(const float* const* in, float* const* out, std::uint32_t frames, const float* values);

  int latency() const { return oversamplers_[0].latency(); }
  int hqFactor() const { return hqFactor_; }

 private:
  struct Lane;  // one channel of processing

  void aim(const float* values, bool jump);
  void start(const float* values);
  void follow(const float* values);
  void subBlock(const float* const* in, float* const* out, std::uint32_t offset, int n);
  void applyPending();
  void updateFilters(bool glide);
  void clearLanes();
  void runLane(int lane, const float* in, float* out, int n);

  // Pieces of the lane's chain, over `n` samples at the internal rate.
  void drive(float* x, int n) const;
  void degrade(Lane& lane, float* x, int n) const;
  void hiss(Lane& lane, float* x, int n) const;
  void filter(Lane& lane, float* x, int n) const;

  double driveCompensation(double drive) const;

  int channels_;
  double rate_;
  int hqFactor_;
  int subBlock_;
  bool started_ = false;

  // Glides, in the units they move in (log hertz for the cutoffs, decibels
  // for Output and Hiss, percent elsewhere); power and dip are gains.
  ZelRamp drive_, degrade_, output_, lowCut_, highCut_, slope_, mix_, hiss_, width_;
  ZelRamp power_, dip_;
  int mode_ = 0, pendingMode_ = 0;
  bool hq_ = false, pendingHQ_ = false;

  // Where each gliding value stands at the start and the end of the
  // current sub-block.
  struct Span {
    double from, to;
  };
  Span driveSpan_{}, degradeSpan_{}, hissSpan_{};

  // Filter coefficients (shared by the lanes) and the slots in use.
  ZelButterworthDesign highPass_, lowPass_;
  // Slots 0-8 high-pass, 9-17 low-pass.
  int activeSlots_[2 * kZelButterworthSlots] = {};
  ZelStateVariableSection sections_[2 * kZelButterworthSlots];
  // Where the coefficients stood at the start of the sub-block, while
  // they glide.
  ZelStateVariableSection previous_[2 * kZelButterworthSlots];
  bool filtersGlide_ = false;
  int activeCount_ = 0;
  bool filtersDirty_ = true;

  // 1 + the drive stage's level compensation at every whole percent.
  double compensation_[101] = {};

  static constexpr int kLanes = 2;
  struct Lane {
    double ic1[2 * kZelButterworthSlots] = {}, ic2[2 * kZelButterworthSlots] = {};
    double phase = 0;
    float held = 0, previous = 0;
    std::uint32_t noise = 0;
  };
  Lane lanes_[kLanes];
  ZelOversampler oversamplers_[kLanes];

  // The raw input, delayed for the bypass and the dry signal.
  static constexpr int kDelay = 64;  // a power of two above every latency
  float delay_[kLanes][kDelay] = {};
  int delayWrite_ = 0;

  // Work buffers of one sub-block.
  float encoded_[kLanes][kMaxSubBlock] = {};
  float wet_[kLanes][kMaxSubBlock] = {};
  float bypass_[kLanes][kMaxSubBlock] = {};
  float work_[ZelOversampler::kMaxFactor * kMaxSubBlock] = {};
};

ZEL_PRODUCT_NAMESPACE_END
