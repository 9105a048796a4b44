// Rendering signals through the unit and measuring what comes out.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <initializer_list>
#include <numbers>
#include <utility>
#include <vector>

#include "products/vantry/unit/ZelVantryUnit.h"

namespace zel::dsptest {

using Unit = ZEL_ABI_TAG::ZelVantryUnit;
using Signal = std::vector<float>;
using Stereo = std::pair<Signal, Signal>;
using Setting = std::initializer_list<std::pair<int, float>>;

// The settings under which the unit is its filters and nothing else.
inline void setFiltersOnly(Unit& unit) {
  for (int pid = 0; pid < ZEL_ABI_TAG::kZelParameterCount; ++pid)
    unit.setParameter(pid, ZEL_ABI_TAG::kZelParameters[pid].initial);
}

inline void apply(Unit& unit, Setting setting) {
  for (const auto& [pid, value] : setting) unit.setParameter(pid, value);
}

// Runs `in` (both channels for a stereo unit) through in blocks of `block`.
inline Stereo render(Unit& unit, const Signal& left, const Signal& right, std::size_t block = 256) {
  Stereo out{Signal(left.size()), Signal(right.size())};
  for (std::size_t at = 0; at < left.size(); at += block) {
    const auto n = std::uint32_t(std::min(block, left.size() - at));
    const float* in[2] = {left.data() + at, right.data() + at};
    float* o[2] = {out.first.data() + at, unit.channels() == 2 ? out.second.data() + at : nullptr};
    unit.process(in, o, n);
  }
  return out;
}

inline Signal sine(double frequency, double amplitude, double rate, std::size_t n, double phase = 0) {
  Signal s(n);
  for (std::size_t i = 0; i < n; ++i)
    s[i] = float(amplitude * std::sin(2 * std::numbers::pi * frequency * double(i) / rate + phase));
  return s;
}

inline Signal impulse(std::size_t n, std::size_t at = 0) {
  Signal s(n, 0.0f);
  s[at] = 1;
  return s;
}

inline double rms(const Signal& s, std::size_t from = 0, std::size_t to = 0) {
  if (to == 0 || to > s.size()) to = s.size();
  double sum = 0;
  for (std::size_t i = from; i < to; ++i) sum += double(s[i]) * s[i];
  return std::sqrt(sum / double(std::max<std::size_t>(to - from, 1)));
}

inline double decibels(double amplitude) { return 20 * std::log10(std::max(amplitude, 1e-30)); }

// In-place radix-2 FFT; the size must be a power of two.
inline void fft(std::vector<std::complex<double>>& a) {
  const std::size_t n = a.size();
  for (std::size_t i = 1, j = 0; i < n; ++i) {
    std::size_t bit = n >> 1;
    for (; j & bit; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) std::swap(a[i], a[j]);
  }
  for (std::size_t len = 2; len <= n; len <<= 1) {
    const std::complex<double> w = std::polar(1.0, -2 * std::numbers::pi / double(len));
    for (std::size_t i = 0; i < n; i += len) {
      std::complex<double> wk = 1;
      for (std::size_t k = 0; k < len / 2; ++k, wk *= w) {
        const auto u = a[i + k], v = a[i + k + len / 2] * wk;
        a[i + k] = u + v, a[i + k + len / 2] = u - v;
      }
    }
  }
}

// |X(k)| of a signal zero-padded to `size` (a power of two).
inline std::vector<double> spectrum(const Signal& s, std::size_t size) {
  std::vector<std::complex<double>> a(size);
  for (std::size_t i = 0; i < std::min(size, s.size()); ++i) a[i] = s[i];
  fft(a);
  std::vector<double> m(size / 2 + 1);
  for (std::size_t k = 0; k < m.size(); ++k) m[k] = std::abs(a[k]);
  return m;
}

// Energy of a Hann-windowed stretch at `frequency` (bin by bin, for a tone
// that sits on a bin) relative to the whole: harmonic distortion and such.
inline double toneAmplitude(const Signal& s, double frequency, double rate, std::size_t from, std::size_t n) {
  std::complex<double> acc = 0;
  double window = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const double w = 0.5 - 0.5 * std::cos(2 * std::numbers::pi * double(i) / double(n));
    acc += w * double(s[from + i]) * std::polar(1.0, -2 * std::numbers::pi * frequency * double(i) / rate);
    window += w;
  }
  return 2 * std::abs(acc) / window;
}

}  // namespace zel::dsptest
