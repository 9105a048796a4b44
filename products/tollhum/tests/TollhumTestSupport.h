// Shared pieces of Tollhum's tests: running the unit over whole signals.
#pragma once

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <numbers>
#include <utility>
#include <vector>

#include "products/tollhum/unit/ZelTollhumUnit.h"

namespace zel::tollhumtest {

using Unit = ZelTollhumUnit;
using Signal = std::vector<float>;
using Setting = std::initializer_list<std::pair<int, float>>;

inline void Apply(Unit& unit, Setting setting) {
  for (auto [pid, value] : setting) unit.setParameter(pid, value);
}

// Runs one channel through a mono unit in blocks of `block` samples.
inline Signal RunMono(Unit& unit, const Signal& input, std::uint32_t block = 256) {
  Signal out(input.size());
  for (std::size_t at = 0; at < input.size(); at += block) {
    const auto n = static_cast<std::uint32_t>(std::min<std::size_t>(block, input.size() - at));
    const float* in[1] = {input.data() + at};
    float* o[1] = {out.data() + at};
    unit.process(in, o, n);
  }
  return out;
}

inline Signal Sine(double hertz, double rate, std::size_t n, double amplitude = 0.5) {
  Signal s(n);
  for (std::size_t i = 0; i < n; ++i)
    s[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / rate));
  return s;
}

inline Signal Impulse(std::size_t n) {
  Signal s(n, 0.0f);
  s[0] = 1;
  return s;
}

// RMS of s[from, to).
inline double Rms(const Signal& s, std::size_t from, std::size_t to) {
  double sum = 0;
  for (std::size_t i = from; i < to; ++i) sum += double(s[i]) * s[i];
  return std::sqrt(sum / double(to - from));
}

inline double Db(double amplitude) { return 20 * std::log10(amplitude); }

}  // namespace zel::tollhumtest
