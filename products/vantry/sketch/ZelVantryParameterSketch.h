// This product's sketch: the frequency response of the band-limiting
// filters (a Butterworth high-pass at "LowCut" and low-pass at "HighCut",
// their order from "Slope") as one curve over 10 Hz ... 20 kHz, spanning
// -7.5 dB ... +7.5 dB of the path area with 0 dB at half height; and the
// logo stamp of the power box rendered at a resolution that falls with
// "Degrade" times "Mix" (15 % at 100 % and 100 %), its pixels left
// unsmoothed so that the loss reads as coarse squares.
//
// Every buffer is fixed at creation; a frame allocates nothing (the path's
// storage is reused).
//
// Ownership: the curve layer belongs to the view's root layer; the stamp
// layer to the host. Threading: main thread only.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "dsp/ZelVantryParameterTable.h"
#include "sketch/ZelParameterSketch.h"

ZEL_PRODUCT_NAMESPACE_BEGIN

class ZelVantryParameterSketch : public ZelParameterSketch {
 public:
  static constexpr std::size_t kGraphPoints = 128;
  // Parameter ids of the unit.
  static constexpr std::size_t kDegradePid = 1;
  static constexpr std::size_t kLowCutPid = 4;
  static constexpr std::size_t kHighCutPid = 5;
  static constexpr std::size_t kSlopePid = 6;
  static constexpr std::size_t kMixPid = 7;

  ZelVantryParameterSketch(CGRect frame, const ZelConfig* config);
  ~ZelVantryParameterSketch() override;

  // Also turns on the rasterization of the host's logo stamp (sharp at the
  // backing scale until values say otherwise).
  void setPowerbox(ZelSketchHost* powerbox) override;
  // Keeps the curve layer over the whole view.
  void setFrame(CGRect frame) override;

  // The curve layer (null before addPaths).
  ZelShapeLayer* curve() const { return curve_; }
  std::span<const float, kGraphPoints> graphFreqs() const { return graphFreqs_; }
  // The last curve drawn, as fractions of the path area's height.
  std::span<const float, kGraphPoints> graphPointsY() const { return graphPointsY_; }

  // The stamp's rasterization scale for Degrade and Mix in percent:
  // ((1 - r) * 0.85 + 0.15) * backingScale with r = (degrade% * mix%)^0.25.
  static double stampRasterizationScale(float degradePercent, float mixPercent, double backingScale);
  // The response at each of `freqs` for a high-pass at `lowCut` Hz and a
  // low-pass at `highCut` Hz with `slope` dB per octave, as (dB + 7.5) / 15,
  // into `out`; `scratch` holds the high-pass terms. All kGraphPoints long.
  static void computeResponse(const float* freqs, float lowCut, float highCut, float slope, float* scratch,
                              float* out);

  void addPaths() override;
  void colorSketchWithPrimaryColor(ZelColor color) override;
  void getFrameForParameterValues(std::span<const float> values, std::span<const float> destValues,
                                  std::span<const std::uint8_t> changes) override;

 private:
  void updateStamp(float degradePercent, float mixPercent);

  ZelShapeLayer* curve_ = nullptr;  // owned by the root layer
  // The small inverted panel the curve is drawn on (owned by the root
  // layer): the curve takes the theme's background colour, which would
  // vanish on the editor's own backdrop.
  ZelLayer* screen_ = nullptr;
  void placeScreen();
  std::array<float, kGraphPoints> graphFreqs_{};
  std::array<float, kGraphPoints> gainsScratch_{};
  std::array<float, kGraphPoints> graphPointsY_{};
  bool drawn_ = false;  // graphPointsY_ holds a curve
};

ZEL_PRODUCT_NAMESPACE_END
