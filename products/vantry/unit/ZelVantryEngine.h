// The signal chain behind ZelVantryUnit. Not for use on its own: the unit
// clamps the values it hands in and scopes the floating-point mode.
//
// Per channel of processing (left/right, mid/side, or one mono sum):
//   [up] Drive -> Degrade -> Hiss -> Low Cut -> High Cut [down]
// where [up]/[down] oversample with HQ on. Around it: the Mode's encoding
// and decoding, the dry/wet Mix (the dry signal delayed to line up), Width,
// Output, and the Power crossfade against the delayed input.
//
// While anything glides, work is done in sub-blocks as long as the glides
// allow: none moves more than a fifteenth of its range in one (Slope less
// than half an order), so a glide across a whole range takes sub-blocks of
// 1.3 ms and automation that moves a little at a time whole chunks. Glides
// advance and filter coefficients follow them once per sub-block, gains
// are interpolated sample by sample within it. While
// nothing moves, chunks are as long as the buffers allow and the filter
// coefficients are not touched. A change of Mode or HQ dips the
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
#include "dsp/ZelSectionCascade.h"
#include "dsp/ZelStateVariableSection.h"
#include "dsp/ZelVantryParameterTable.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

class ZelVantryEngine {
 public:
  // Longest piece worked in one go while nothing moves (with HQ on, the
  // oversampler's longest).
  static constexpr int kMaxChunk = 256;
  static constexpr int kMaxWork = ZelOversampler::kMaxFactor * ZelOversampler::kMaxBlock;
  static_assert(kMaxChunk <= kMaxWork);

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
  void runLanes(int lanes, int n);
  bool still() const;
  int subBlockLength(int most) const;

  // Pieces of the lane's chain, over `n` samples at the internal rate.
  void drive(float* x, int n) const;
  void degrade(Lane& lane, float* x, int n) const;
  void hiss(Lane& lane, float* x, int n) const;
  void filter(float* const* x, int lanes, int n);

  double driveCompensation(double drive) const;

  int channels_;
  double rate_;
  int hqFactor_;
  bool started_ = false;

  // Glides, in the units they move in (log hertz for the cutoffs, decibels
  // for Output and Hiss, percent elsewhere); power and dip are gains.
  ZelRamp drive_, degrade_, output_, lowCut_, highCut_, slope_, mix_, hiss_, width_;
  ZelRamp power_, dip_;
  // Each glide and the most it may move in one sub-block.
  struct GlideStep {
    const ZelRamp* ramp;
    double step;
  };
  GlideStep glideSteps_[11] = {};
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
  // The active slots' sections, in order, as the cascade runs them, and
  // where they glide from.
  ZelCascadeSection cascade_[2 * kZelButterworthSlots], cascadeFrom_[2 * kZelButterworthSlots];
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
  // A power of two above the longest chunk plus every latency.
  static constexpr int kDelay = 512;
  static_assert(kDelay >= kMaxChunk + 64);
  float delay_[kLanes][kDelay] = {};
  int delayWrite_ = 0;

  // Work buffers of one chunk.
  float encoded_[kLanes][kMaxChunk] = {};
  float wet_[kLanes][kMaxChunk] = {};
  float bypass_[kLanes][kMaxChunk] = {};
  float work_[kLanes][kMaxWork] = {};
};

ZEL_PRODUCT_NAMESPACE_END
