// Butterworth high-pass and low-pass filters as cascades of first- and
// second-order sections whose magnitude follows the analog prototype
// 1 / sqrt(1 + (f / fc)^(2n)) closely all the way up to the Nyquist
// frequency, instead of being cramped towards it as a bilinear design is.
//
// Each section keeps the analog poles, mapped exactly (z = exp(sT)); its
// numerator is chosen to match the analog magnitude where it matters:
// - low-pass, second order: at DC, Nyquist and the cutoff for cutoffs in
//   the lower part of the band; higher up (from 0.15 to 0.25 of the rate,
//   blended) at DC, half the cutoff and the cutoff, which keeps the
//   passband true when the cutoff nears Nyquist;
// - high-pass: a double zero at DC and the analog gain at the cutoff, or
//   at a tenth of the rate when the cutoff lies above it;
// - first order: at DC and the cutoff (low-pass), at the cutoff or a tenth
//   of the rate (high-pass).
// Over 20 Hz to 0.2 of the rate the cascades stay within a quarter of a
// decibel of the prototype for every order from 1 to 16 and every cutoff up
// to 0.45 of the rate.
//
// Threading: pure functions, real-time safe (no allocation).
#pragma once

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

// y = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2) x
struct ZelBiquad {
  double b0 = 1, b1 = 0, b2 = 0, a1 = 0, a2 = 0;
};

enum class ZelFilterShape { LowPass, HighPass };

inline constexpr int kZelMaxButterworthOrder = 16;
// Slot 0 holds the first-order section of an odd order; slots 1 to 8 the
// second-order sections by rising Q. Unused slots pass the signal unchanged,
// so two orders' slots can be blended term by term.
inline constexpr int kZelButterworthSlots = 9;

struct ZelButterworthDesign {
  ZelBiquad slots[kZelButterworthSlots];
};

// An order-`order` (1 to 16) Butterworth at `cutoff` Hz for `sampleRate`.
// The cutoff must lie in (0, 0.5 * sampleRate).
void ZelDesignButterworth(ZelFilterShape shape, int order, double cutoff, double sampleRate,
                          ZelButterworthDesign& design);

// For a fractional order: the designs of the orders on either side, blended
// coefficient by coefficient (poles stay stable: the set of stable
// denominators is convex). A whole order gives exactly its own design.
void ZelDesignButterworthBlend(ZelFilterShape shape, double order, double cutoff, double sampleRate,
                               ZelButterworthDesign& design);

// The magnitude of a section at `frequency` (for tests and drawing).
double ZelBiquadMagnitude(const ZelBiquad& section, double frequency, double sampleRate);

ZEL_DSP_NAMESPACE_END
