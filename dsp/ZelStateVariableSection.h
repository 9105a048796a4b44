// A biquad run as a trapezoidal state-variable filter: the same transfer
// function, but with states that are integrator levels rather than mixes
// of past samples, so coefficients can glide under a running signal
// without the bursts a direct form makes, and a 20 Hz section at a high
// rate keeps its precision.
//
// Per sample, with states ic1 and ic2 (Simper's form):
//   v3 = x - ic2;  v1 = a1 ic1 + a2 v3;  v2 = ic2 + a2 ic1 + a3 v3
//   ic1 = 2 v1 - ic1;  ic2 = 2 v2 - ic2;  y = m0 x + m1 v1 + m2 v2
// Threading: a plain value; real-time safe.
#pragma once

#include <cmath>

#include "dsp/ZelButterworth.h"

ZEL_DSP_NAMESPACE_BEGIN

struct ZelStateVariableSection {
  double a1 = 0, a2 = 0, a3 = 0, m0 = 1, m1 = 0, m2 = 0;

  ZelStateVariableSection() = default;
  // Any stable section (1 + a1 + a2 > 0 and 1 - a1 + a2 > 0).
  explicit ZelStateVariableSection(const ZelBiquad& q) {
    // The filter's denominator, scaled by d = 1 + g k + g^2, is
    // d + 2 (g^2 - 1) z^-1 + (1 - g k + g^2) z^-2; match it to q's.
    const double plus = 1 + q.a1 + q.a2, minus = 1 - q.a1 + q.a2;
    const double g = std::sqrt(plus / minus), d = 4 / minus;
    a1 = 1 / d;  // 1 / (1 + g (g + k))
    a2 = g * a1;
    a3 = g * a2;
    // y = m0 + m1 BP + m2 LP with BP = g (1 - z^-2) / (d A), LP = g^2 (1 + z^-1)^2 / (d A).
    m0 = (q.b0 - q.b1 + q.b2) / minus;
    const double lp = (q.b1 - m0 * q.a1) / 2, bp = q.b0 - m0 - lp;
    m1 = bp * d / g;
    m2 = lp * d / (g * g);
  }
};

ZEL_DSP_NAMESPACE_END
