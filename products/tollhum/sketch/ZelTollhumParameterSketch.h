// Tollhum's sketch: what the strings ring at, and how loud the result is.
//
// The upper square shows the strings' partials as stems on a log-frequency
// axis (a quarter octave below the Note to five and a quarter octaves above
// it): each stem stands at a harmonic of a string, as high as the gain the
// unit gives a sine at that frequency (-12 dB at the bottom, +36 dB at the
// top), worked out with the unit's own arithmetic at 48 kHz. Below it, the
// level meter: two bars (left, right; one for a mono unit) from -60 to +6 dBFS, the RMS level
// filled, the peak as a bar across and the held peak as a short tick, with
// marks at 0, -12, -24 and -48 dB.
//
// The meter reads the unit through the metering callback (see
// ZelTollhumMeteringCallbackFor below) once per frame of the window's frame clock,
// which runs all the time this view is in a window (it is a meter); without
// a callback the bars rest at the bottom.
//
// Every buffer is fixed at creation; a frame allocates nothing.
// Ownership: its layers belong to the view's root layer. Threading: main
// thread only.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "products/tollhum/unit/ZelTollhumMeter.h"
#include "sketch/ZelParameterSketch.h"

ZEL_NAMESPACE_BEGIN

// The sketch reads tollhum::Meter::kValueCount levels in dBFS through its
// metering callback, in the order of tollhum::Meter (peak L, peak R, hold L,
// hold R, RMS L, RMS R). A metering callback that reads `meter` directly (a
// unit in this process):
ZelMeteringCallback ZelTollhumMeteringCallbackFor(const tollhum::Meter* meter);

class ZelTollhumParameterSketch : public ZelParameterSketch {
 public:
  static constexpr std::size_t kHarmonics = 8;
  static constexpr std::size_t kMaxStems = 4 * kHarmonics;
  static constexpr double kDrawingSampleRate = 48000;
  static constexpr double kStemFloorDb = -12, kStemCeilingDb = 36;
  static constexpr double kOctavesBelow = 0.25, kOctavesShown = 5.5;
  static constexpr float kMeterFloorDb = -60, kMeterCeilingDb = 6;

  ZelTollhumParameterSketch(CGRect frame, const ZelConfig* config);
  ~ZelTollhumParameterSketch() override;

  void setFrame(CGRect frame) override;

  struct Stem {
    double hertz = 0;
    double gainDb = 0;  // the unit's gain for a sine at `hertz`
  };
  // The stems of the last frame drawn.
  std::span<const Stem> stems() const { return {stems_.data(), stemCount_}; }
  // The meter values of the last frame (dBFS, as the unit published them).
  const tollhum::MeterReading& meterReading() const { return reading_; }
  // Where a level sits on the meter's bars: 0 at kMeterFloorDb, 1 at the ceiling.
  static double meterPosition(float db);

  // Computes the stems for values indexed by pid (missing ones read as the
  // defaults) into `stems`; returns how many.
  static std::size_t computeStems(std::span<const float> values, std::span<Stem, kMaxStems> stems);

  void addPaths() override;
  void colorSketchWithPrimaryColor(ZelColor color) override;
  void getFrameForParameterValues(std::span<const float> values, std::span<const float> destValues,
                                  std::span<const std::uint8_t> changes) override;
  void updateMeterWithDuration(double seconds) override;
  // A unit with one output channel has one bar (the left channel's levels).
  void setChannels(std::uint32_t channelsIn, std::uint32_t channelsOut) override;
  int meterBars() const { return meterBars_; }

  ZelShapeLayer* stemsLayer() const { return stemsLayer_; }
  ZelShapeLayer* rmsLayer() const { return rmsLayer_; }
  ZelShapeLayer* peakLayer() const { return peakLayer_; }

 private:
  CGRect spectrumRect() const;
  CGRect meterRect() const;
  void placeLayers();
  void drawStems();
  void drawMeter();

  ZelLayer* screen_ = nullptr;  // owned by the root layer, as are the shapes
  ZelShapeLayer* stemsLayer_ = nullptr;
  ZelShapeLayer* scaleLayer_ = nullptr;
  ZelShapeLayer* rmsLayer_ = nullptr;
  ZelShapeLayer* peakLayer_ = nullptr;
  std::array<Stem, kMaxStems> stems_{};
  std::size_t stemCount_ = 0;
  bool stemsComputed_ = false;
  tollhum::MeterReading reading_{};
  int meterBars_ = 2;
  ZelPath scratch_;
};

ZEL_NAMESPACE_END
