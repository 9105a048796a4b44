// A cascade of second-order sections for one or two channels, run as a
// wavefront: at every step each section takes the sample its predecessor
// produced one step earlier, so all sections of both channels advance
// together in SIMD registers instead of one after another.
//
// Each section is a state-variable section (ZelStateVariableSection) with
// its two integrator states, rewritten as the equivalent state-space form
//   s1' = a11 s1 + a12 s2 + b1 x,  s2' = a21 s1 + a22 s2 + b2 x,
//   y   = c1 s1 + c2 s2 + d x
// in double precision, so a section's output depends on its input through a
// single multiply-add and the states keep the integrators' meaning (and
// their precision for low cutoffs at high rates). Coefficients can change
// between calls under a running signal exactly as the state-variable form's.
//
// The kernel is built twice on x86-64: two lanes a vector for the SSE2
// baseline (the portable build everywhere else), four for AVX2 with FMA,
// chosen once at run time from what the processor supports.
// Threading: pure functions over the caller's memory; real-time safe.
#pragma once

#include "dsp/ZelStateVariableSection.h"

ZEL_DSP_NAMESPACE_BEGIN

struct ZelCascadeSection {
  double a11 = 0, a12 = 0, a21 = 0, a22 = 0, b1 = 0, b2 = 0, c1 = 0, c2 = 0, d = 1;

  ZelCascadeSection() = default;  // passes its input unchanged
  explicit ZelCascadeSection(const ZelStateVariableSection& s)
      : a11(2 * s.a1 - 1),
        a12(-2 * s.a2),
        a21(2 * s.a2),
        a22(1 - 2 * s.a3),
        b1(2 * s.a2),
        b2(2 * s.a3),
        c1(s.m1 * s.a1 + s.m2 * s.a2),
        c2(s.m2 * (1 - s.a3) - s.m1 * s.a2),
        d(s.m0 + s.m1 * s.a2 + s.m2 * s.a3) {}
};

// The integrator states of one section on one channel.
struct ZelCascadeState {
  double s1 = 0, s2 = 0;
};

inline constexpr int kZelCascadeMaxSections = 18;

// Runs `n` samples of each of `channels` (1 or 2) buffers, in place, through
// `count` (0 to kZelCascadeMaxSections) sections `to` in order. `states`
// holds count * channels entries, section by section, channel by channel
// within a section. With `from` (else null), every coefficient glides in a
// straight line from from's, where it stands before the first sample, to
// to's, reached at the last one, in 16 steps (steps of 4 samples in calls
// shorter than 64).
void ZelRunCascade(const ZelCascadeSection* from, const ZelCascadeSection* to, int count,
                   ZelCascadeState* states, int channels, float* const* x, int n);

ZEL_DSP_NAMESPACE_END
