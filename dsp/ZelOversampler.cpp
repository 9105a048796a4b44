#include "dsp/ZelOversampler.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <numbers>

ZEL_DSP_NAMESPACE_BEGIN

namespace {

double besselI0(double x) {
  double sum = 1, term = 1;
  for (int k = 1; k < 50; ++k) {
    term *= (x / (2 * k)) * (x / (2 * k));
    sum += term;
    if (term < 1e-17 * sum) break;
  }
  return sum;
}

// Rejection of every stage, in decibels, and the Kaiser window it takes.
constexpr double kRejection = 100;
const double kBeta = 0.1102 * (kRejection - 8.7);

// acc[j] = sum over i = 0..(m - 1) / 2, in that order, of
// taps[i] (x[j - i] + x[j + i - m]): tap by tap over the whole block (each
// output still sums its taps in order, so the result is that of the plain
// convolution), which runs across the outputs in vector registers.
void convolve(const float* taps, int m, const float* x, float* acc, int n) {
  for (int j = 0; j < n; ++j) acc[j] = taps[0] * (x[j] + x[j - m]);
  for (int i = 1; i <= (m - 1) / 2; ++i) {
    const float tap = taps[i];
    const float* newer = x - i;
    const float* older = x + i - m;
    for (int j = 0; j < n; ++j) acc[j] += tap * (newer[j] + older[j]);
  }
}

}  // namespace

void ZelHalfbandStage::design(int halfOrder) {
  m_ = std::clamp(halfOrder | 1, 1, kMaxHalfOrder);
  const double norm = besselI0(kBeta);
  for (int i = 0; i <= (m_ - 1) / 2; ++i) {
    const int k = 2 * i - m_;  // odd, negative
    const double ideal = std::sin(std::numbers::pi * k / 2) / (std::numbers::pi * k);
    const double r = double(k) / m_;
    const double window = besselI0(kBeta * std::sqrt(std::max(0.0, 1 - r * r))) / norm;
    taps_[i] = float(ideal * window);
  }
  // The odd taps of an exact half-band sum to 1/2 so that DC passes at unit
  // gain; the window leaves a tiny error, removed here.
  double sum = 0;
  for (int i = 0; i <= (m_ - 1) / 2; ++i) sum += 2 * double(taps_[i]);
  for (int i = 0; i <= (m_ - 1) / 2; ++i) taps_[i] = float(taps_[i] * 0.5 / sum);
  reset();
}

void ZelHalfbandStage::reset() {
  std::fill(std::begin(upBuffer_), std::end(upBuffer_), 0.0f);
  std::fill(std::begin(downBuffer_), std::end(downBuffer_), 0.0f);
}

void ZelHalfbandStage::up(const float* in, float* out, int n) {
  // x[j - i] for i = 0..M sits at upBuffer_[m_ + j - i].
  std::memcpy(upBuffer_ + m_, in, sizeof(float) * n);
  const int half = (m_ - 1) / 2;
  const float* x = upBuffer_ + m_;
  float acc[kMaxBlock];
  convolve(taps_, m_, x, acc, n);
  for (int j = 0; j < n; ++j) {
    out[2 * j] = 2 * acc[j];
    out[2 * j + 1] = x[j - half];
  }
  std::memmove(upBuffer_, upBuffer_ + n, sizeof(float) * m_);
}

void ZelHalfbandStage::down(const float* in, float* out, int n) {
  // v[2j - i] for i = 0..2M sits at downBuffer_[2 * m_ + 2j - i].
  std::memcpy(downBuffer_ + 2 * m_, in, sizeof(float) * 2 * n);
  // Tap by tap, as in up(), over the even inputs gathered first.
  const float* v = downBuffer_ + 2 * m_;
  float even[kMaxBlock + kMaxHalfOrder], acc[kMaxBlock];
  // even[k] = v[2 (k - m_)], k = 0 .. n - 1 + m_
  for (int k = 0; k < n + m_; ++k) even[k] = v[2 * (k - m_)];
  convolve(taps_, m_, even + m_, acc, n);  // even + m_ is v[2j] at j
  for (int j = 0; j < n; ++j) out[j] = acc[j] + 0.5f * v[2 * j - m_];
  std::memmove(downBuffer_, downBuffer_ + 2 * n, sizeof(float) * 2 * m_);
}

ZelOversampler::ZelOversampler() {
  // Flat to 0.4 of the base rate, rejecting from 0.6 of it: at 2x a
  // transition of 0.1 of the high rate; the second stage only has to keep
  // what the first one passed, so its band is much wider.
  first_.design(33);
  second_.design(13);
}

void ZelOversampler::setFactor(int factor) {
  factor_ = factor >= 4 ? 4 : factor >= 2 ? 2 : 1;
  // Delays: first stage M1 at 2x each way, second M2 at 4x each way.
  const int m1 = first_.halfOrder(), m2 = second_.halfOrder();
  if (factor_ == 1) {
    latency_ = 0, padding_ = 0;
  } else if (factor_ == 2) {
    latency_ = m1, padding_ = 0;
  } else {
    const int topRate = 4 * m1 + 2 * m2;
    padding_ = (4 - topRate % 4) % 4;
    latency_ = (topRate + padding_) / 4;
  }
  reset();
}

void ZelOversampler::reset() {
  first_.reset();
  second_.reset();
  std::fill(std::begin(padLine_), std::end(padLine_), 0.0f);
}

void ZelOversampler::up(const float* in, float* out, int n) {
  if (factor_ == 1) {
    std::memmove(out, in, sizeof(float) * n);
  } else if (factor_ == 2) {
    first_.up(in, out, n);
  } else {
    first_.up(in, scratch_, n);
    second_.up(scratch_, out, 2 * n);
  }
}

void ZelOversampler::down(const float* in, float* out, int n) {
  if (factor_ == 1) {
    std::memmove(out, in, sizeof(float) * n);
    return;
  }
  if (factor_ == 2) {
    first_.down(in, out, n);
    return;
  }
  // The rounding delay goes first, on the way down (in must stay intact:
  // run the stage on a delayed copy in place of the input).
  const float* src = in;
  float delayed[4 * kMaxBlock];
  if (padding_ > 0) {
    const int total = 4 * n;
    for (int i = 0; i < total; ++i) {
      const float x = in[i];
      delayed[i] = padLine_[0];
      for (int k = 0; k + 1 < padding_; ++k) padLine_[k] = padLine_[k + 1];
      padLine_[padding_ - 1] = x;
    }
    src = delayed;
  }
  second_.down(src, scratch_, 2 * n);
  first_.down(scratch_, out, n);
}

ZEL_DSP_NAMESPACE_END
