#include "dsp/ZelButterworth.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

ZEL_DSP_NAMESPACE_BEGIN

namespace {

constexpr double kPi = std::numbers::pi;

// The analog prototype's section, evaluated as |H(f)|^2 with x = f / f0.
double lowPassPower(double x, double q) {
  const double d = 1 - x * x;
  return 1 / (d * d + x * x / (q * q));
}
double highPassPower(double x, double q) { return x * x * x * x * lowPassPower(x, q); }

// Impulse-invariant poles of a section with natural frequency w (radians
// per sample) and quality q (q >= 0.5 for every Butterworth section).
void mapPoles(double w, double q, ZelBiquad& s) {
  const double zeta = 1 / (2 * q);
  const double r = std::exp(-zeta * w);
  s.a1 = zeta < 1 ? -2 * r * std::cos(std::sqrt(1 - zeta * zeta) * w)
                  : -2 * r * std::cosh(std::sqrt(zeta * zeta - 1) * w);
  s.a2 = r * r;
}

// |A(e^jw)|^2 of the denominator, as a function of phi = sin^2(w / 2).
double denominatorPower(const ZelBiquad& s, double phi) {
  const double a0 = (1 + s.a1 + s.a2) * (1 + s.a1 + s.a2);
  const double a1 = (1 - s.a1 + s.a2) * (1 - s.a1 + s.a2);
  return a0 * (1 - phi) + a1 * phi - 16 * s.a2 * (1 - phi) * phi;
}

double phiAt(double frequency, double rate) {
  const double s = std::sin(kPi * frequency / rate);
  return s * s;
}

// Low-pass numerator matched at DC, the cutoff (phi1 = phiAt(cutoff)) and
// (through the pole mapping) Nyquist, with b2 = 0.
void lowPassAtCutoff(double phi1, double q, ZelBiquad& s) {
  const double phi0 = 1 - phi1;
  const double a0 = (1 + s.a1 + s.a2) * (1 + s.a1 + s.a2);
  const double r1 = denominatorPower(s, phi1) * q * q;
  const double b1sq = std::max((r1 - a0 * phi0) / phi1, 0.0);
  s.b0 = 0.5 * (std::sqrt(a0) + std::sqrt(b1sq));
  s.b1 = std::sqrt(a0) - s.b0;
  s.b2 = 0;
}

// Low-pass numerator matched at DC, half the cutoff and the cutoff: the
// numerator's power P(phi) = p0 + p1 phi + p2 phi^2 is solved for, then
// split into its minimum-phase factor. False when that fails (the caller
// keeps the other design).
bool lowPassInPassband(double f0, double q, double rate, ZelBiquad& s) {
  const double ph = phiAt(f0 / 2, rate), pc = phiAt(f0, rate);
  const double p0 = denominatorPower(s, 0);
  const double vh = lowPassPower(0.5, q) * denominatorPower(s, ph) - p0;
  const double vc = lowPassPower(1.0, q) * denominatorPower(s, pc) - p0;
  const double det = ph * pc * pc - pc * ph * ph;
  if (det == 0) return false;
  const double p1 = (vh * pc * pc - vc * ph * ph) / det;
  const double p2 = (ph * vc - pc * vh) / det;
  // In cos w: P = q0 + q1 c + q2 c^2; and |B|^2 = S0 + S1 cos w + S2 cos 2w.
  const double q0 = p0 + p1 / 2 + p2 / 4, q1 = -p1 / 2 - p2 / 2, q2 = p2 / 4;
  const double S2 = q2 / 2, S1 = q1, S0 = q0 + S2;
  if (std::abs(S2) < 1e-12 * std::abs(S0)) return false;
  // B(z) B(1/z) = 0 with u = z + 1/z: (S2/2) u^2 + (S1/2) u + (S0 - S2) = 0.
  using C = std::complex<double>;
  const C disc = std::sqrt(C(S1 * S1 / 4 - 2 * S2 * (S0 - S2)));
  const C u[2] = {(-S1 / 2 + disc) / S2, (-S1 / 2 - disc) / S2};
  C z[2];
  for (int i = 0; i < 2; ++i) {
    const C root = std::sqrt(u[i] * u[i] - 4.0);
    const C za = (u[i] + root) / 2.0, zb = (u[i] - root) / 2.0;
    z[i] = std::abs(za) <= std::abs(zb) ? za : zb;  // the minimum-phase zero
  }
  const C sum = z[0] + z[1], product = z[0] * z[1];
  if (std::abs(sum.imag()) > 1e-9 || std::abs(product.imag()) > 1e-9) return false;
  const double atDc = std::abs((1.0 - z[0]) * (1.0 - z[1]));
  if (!(atDc > 0) || p0 <= 0) return false;
  const double k = std::sqrt(p0) / atDc;
  s.b0 = k;
  s.b1 = -k * sum.real();
  s.b2 = k * product.real();
  return std::isfinite(s.b0) && std::isfinite(s.b1) && std::isfinite(s.b2);
}

// Where a section's gain is matched: the cutoff, or for a high-pass at
// most a tenth of the rate (the same for every section of a design).
double matchedFrequency(ZelFilterShape shape, double f0, double rate) {
  return shape == ZelFilterShape::HighPass ? std::min(f0, 0.1 * rate) : f0;
}

// `phi` is phiAt(matchedFrequency(shape, f0, rate), rate).
ZelBiquad secondOrder(ZelFilterShape shape, double f0, double q, double rate, double phi) {
  ZelBiquad s;
  const double w = 2 * kPi * f0 / rate;
  mapPoles(w, q, s);
  if (shape == ZelFilterShape::HighPass) {
    const double fm = matchedFrequency(shape, f0, rate);
    s.b0 = std::sqrt(highPassPower(fm / f0, q) * denominatorPower(s, phi) / (16 * phi * phi));
    s.b1 = -2 * s.b0;
    s.b2 = s.b0;
    return s;
  }
  lowPassAtCutoff(phi, q, s);
  const double t = std::clamp((f0 / rate - 0.15) / 0.1, 0.0, 1.0);
  if (t > 0) {
    ZelBiquad upper = s;
    if (lowPassInPassband(f0, q, rate, upper)) {
      s.b0 += t * (upper.b0 - s.b0);
      s.b1 += t * (upper.b1 - s.b1);
      s.b2 += t * (upper.b2 - s.b2);
    }
  }
  return s;
}

ZelBiquad firstOrder(ZelFilterShape shape, double f0, double rate) {
  ZelBiquad s;
  const double p = std::exp(-2 * kPi * f0 / rate);
  s.a1 = -p;
  if (shape == ZelFilterShape::HighPass) {
    const double fm = std::min(f0, 0.1 * rate);
    const double w = 2 * kPi * fm / rate, x = fm / f0;
    const double target = x * x / (1 + x * x);
    s.b0 = std::sqrt(target * (1 - 2 * p * std::cos(w) + p * p) / (2 - 2 * std::cos(w)));
    s.b1 = -s.b0;
    return s;
  }
  // b0 + b1 = 1 - p (unity at DC) and |b0 + b1 e^-jw0|^2 = |1 - p e^-jw0|^2 / 2.
  const double w = 2 * kPi * f0 / rate;
  const double sum = 1 - p;
  const double d = 0.5 * (1 - 2 * p * std::cos(w) + p * p);
  const double product = (sum * sum - d) / (2 * (1 - std::cos(w)));
  const double root = std::sqrt(std::max(sum * sum - 4 * product, 0.0));
  s.b0 = (sum + root) / 2;
  s.b1 = sum - s.b0;
  return s;
}

// Each order's second-order sections' quality, by slot: the pole angles
// from the negative real axis are (2k - 1 + order % 2) pi / (2 order).
struct Qualities {
  double q[kZelMaxButterworthOrder + 1][kZelButterworthSlots] = {};
  Qualities() {
    for (int order = 1; order <= kZelMaxButterworthOrder; ++order)
      for (int k = 1; k <= order / 2; ++k) q[order][k] = 1 / (2 * std::cos((2 * k - 1 + order % 2) * kPi / (2 * order)));
  }
};
const Qualities kQualities;

bool isIdentity(const ZelBiquad& s) { return s.b0 == 1 && s.b1 == 0 && s.b2 == 0 && s.a1 == 0 && s.a2 == 0; }

ZelBiquad cancelled(const ZelBiquad& poles) {
  ZelBiquad s;
  s.b1 = s.a1 = poles.a1;
  s.b2 = s.a2 = poles.a2;
  return s;
}

}  // namespace

void ZelDesignButterworth(ZelFilterShape shape, int order, double cutoff, double sampleRate,
                          ZelButterworthDesign& design) {
  order = std::clamp(order, 1, kZelMaxButterworthOrder);
  design = ZelButterworthDesign{};
  if (order % 2) design.slots[0] = firstOrder(shape, cutoff, sampleRate);
  const int pairs = order / 2;
  const double phi = phiAt(matchedFrequency(shape, cutoff, sampleRate), sampleRate);
  for (int k = 1; k <= pairs; ++k) design.slots[k] = secondOrder(shape, cutoff, kQualities.q[order][k], sampleRate, phi);
}

void ZelDesignButterworthBlend(ZelFilterShape shape, double order, double cutoff, double sampleRate,
                               ZelButterworthDesign& design) {
  order = std::clamp(order, 1.0, double(kZelMaxButterworthOrder));
  const int low = int(std::floor(order));
  const double t = order - low;
  ZelDesignButterworth(shape, low, cutoff, sampleRate, design);
  if (t <= 0) return;
  ZelButterworthDesign high;
  ZelDesignButterworth(shape, low + 1, cutoff, sampleRate, high);
  for (int i = 0; i < kZelButterworthSlots; ++i) {
    ZelBiquad& s = design.slots[i];
    ZelBiquad& h = high.slots[i];
    // A slot that one order leaves empty passes the signal through the
    // other order's poles, cancelled by zeros: then only the numerator
    // moves, and a running filter follows the blend without a burst.
    if (isIdentity(s)) s = cancelled(h);
    if (isIdentity(h)) h = cancelled(s);
    s.b0 += t * (h.b0 - s.b0);
    s.b1 += t * (h.b1 - s.b1);
    s.b2 += t * (h.b2 - s.b2);
    s.a1 += t * (h.a1 - s.a1);
    s.a2 += t * (h.a2 - s.a2);
  }
}

double ZelBiquadMagnitude(const ZelBiquad& s, double frequency, double sampleRate) {
  const std::complex<double> z1 = std::polar(1.0, -2 * kPi * frequency / sampleRate);
  const std::complex<double> z2 = z1 * z1;
  return std::abs((s.b0 + s.b1 * z1 + s.b2 * z2) / (1.0 + s.a1 * z1 + s.a2 * z2));
}

ZEL_DSP_NAMESPACE_END
