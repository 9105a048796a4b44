// What ties the sound to the picture: with everything but the filters at
// rest, the unit's measured magnitude response is the curve the editor's
// sketch draws.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "DspTestSupport.h"
#include "products/vantry/sketch/ZelVantryParameterSketch.h"

namespace zel {
namespace {

using namespace dsptest;
using Sketch = ZelVantryParameterSketch;

// The sketch's curve, in decibels, at each of `freqs`.
std::vector<double> sketchDecibels(const std::vector<double>& freqs, float lowCut, float highCut, float slope) {
  std::vector<double> out;
  std::array<float, Sketch::kGraphPoints> f{}, scratch{}, y{};
  for (std::size_t at = 0; at < freqs.size(); at += Sketch::kGraphPoints) {
    const std::size_t n = std::min(Sketch::kGraphPoints, freqs.size() - at);
    for (std::size_t k = 0; k < Sketch::kGraphPoints; ++k) f[k] = float(freqs[at + std::min(k, n - 1)]);
    Sketch::computeResponse(f.data(), lowCut, highCut, slope, scratch.data(), y.data());
    for (std::size_t k = 0; k < n; ++k) out.push_back(double(y[k]) * 15 - 7.5);
  }
  return out;
}

struct Band {
  float lowCut, highCut;
};

// The unit's response, from its impulse response, at FFT bins whose
// frequency lies in [20 Hz, top]; the latency is taken out.
struct Measured {
  std::vector<double> freqs, decibels;
};

Measured measure(double rate, bool hq, Band band, float slope, double top) {
  Unit unit(1, rate);
  setFiltersOnly(unit);
  apply(unit, {{kPidLowCut, band.lowCut}, {kPidHighCut, band.highCut}, {kPidSlope, slope}, {kPidHQ, hq ? 1.f : 0.f}});
  const std::size_t size = rate > 50000 ? 131072 : 65536;
  const Signal in = impulse(size);
  const Signal out = render(unit, in, in, 4096).first;
  const auto mags = spectrum(out, size);
  Measured m;
  for (std::size_t k = 1; k < mags.size(); ++k) {
    const double f = double(k) * rate / double(size);
    if (f < 20 || f > top) continue;
    // Thin out the bins: every bin up to 200 Hz, then one in eight.
    if (f > 200 && k % 8) continue;
    m.freqs.push_back(f);
    m.decibels.push_back(decibels(mags[k]));
  }
  return m;
}

TEST(UnitResponse, FollowsTheSketchCurveForEverySlopeAndCutoff) {
  // Cutoffs from the bottom to the top of the range; at 44.1 kHz without
  // oversampling the unit holds cutoffs to 0.45 of the rate (19845 Hz).
  const Band bands[] = {{20, 20000}, {20, 250}, {60, 1200}, {300, 3400}, {1000, 19000}, {4000, 8000}, {12000, 19800}};
  for (double rate : {44100.0, 48000.0, 96000.0}) {
    for (bool hq : {false, true}) {
      const double top = (hq ? 0.4 : 0.2) * rate;
      for (int slope = 6; slope <= 96; slope += 6) {
        for (const Band& band : bands) {
          const Measured m = measure(rate, hq, band, float(slope), top);
          const auto curve = sketchDecibels(m.freqs, band.lowCut, band.highCut, float(slope));
          double worst = 0, at = 0;
          for (std::size_t i = 0; i < m.freqs.size(); ++i) {
            if (curve[i] < -30) continue;
            const double e = std::abs(m.decibels[i] - curve[i]);
            if (e > worst) worst = e, at = m.freqs[i];
          }
          EXPECT_LE(worst, 0.5) << rate << " Hz, HQ " << hq << ", slope " << slope << ", band " << band.lowCut
                                << "-" << band.highCut << ": off by " << worst << " dB at " << at << " Hz";
        }
      }
    }
  }
}

}  // namespace
}  // namespace zel
