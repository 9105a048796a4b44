// The parameter sketch: a small animated picture of what the current
// settings do, drawn with layers inside the power box. This base owns the
// value buffers, the interpolation on the window's frame clock and the path
// geometry; a product subclass creates its layers (addPaths) and draws each
// frame from the parameter values (getFrameForParameterValues).
//
// Values arrive as arrays indexed by parameter id (updateWithParameterValues,
// fed by the editor through its rate limiter). While interpolating, every
// frame moves the drawn values a fixed fraction of the remaining way to the
// targets (timeConstant) so that animationTimeInMilliseconds takes them to
// about 99.3 %; past 0.9933 the targets are drawn exactly and the display
// link stops. An idle sketch is no client of the frame clock.
//
// Ownership: the view owns its root layer and the layers the subclass adds
// to it. The description (config) and the host (powerbox) are non-owning
// pointers; both must outlive the sketch or be cleared. Threading: main
// thread only (the frame clock ticks on the run loop's thread, so frames
// need no hop to the main queue); runOnMainQueueWithoutDeadlocking is the
// one call for other threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "sketch/ZelMeteringCallback.h"
#include "sketch/ZelSketchHost.h"
#include "toolkit/core/ZelDisplayLink.h"
#include "toolkit/core/ZelShapeLayer.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

// The properties a product may override, fixed per class: a subclass passes
// its own to the base constructor.
struct ZelSketchTraits {
  double animationTimeInMilliseconds = 250;
  bool shouldInterpolate = true;
  bool isMeter = false;
  CGSize pathInset{8, 8};  // (horizontal, vertical)
};

class ZelParameterSketch : public ZelView {
 public:
  static constexpr float kProgressDone = 0.9933f;

  // A layer-backed view over `frame` for `config` (may be null: no
  // parameters). With interpolation the four buffers are allocated here,
  // once, and the previous values start at each parameter's initial value.
  ZelParameterSketch(CGRect frame, const ZelConfig* config, ZelSketchTraits traits = {});
  ~ZelParameterSketch() override;

  // ---- Configuration.
  const ZelConfig* config() const { return config_; }
  // Only the pointer; the buffers keep the size read at creation.
  void setConfig(const ZelConfig* config) { config_ = config; }
  ZelSketchHost* powerbox() const { return powerbox_; }
  virtual void setPowerbox(ZelSketchHost* powerbox) { powerbox_ = powerbox; }
  // Kept for products that meter audio; this product never calls it.
  ZelMeteringCallback meteringCallback() const { return meteringCallback_; }
  void setMeteringCallback(ZelMeteringCallback callback) { meteringCallback_ = callback; }

  const ZelSketchTraits& traits() const { return traits_; }
  double animationTimeInMilliseconds() const { return traits_.animationTimeInMilliseconds; }
  bool shouldInterpolate() const { return traits_.shouldInterpolate; }
  bool isMeter() const { return traits_.isMeter; }
  CGSize pathInset() const { return traits_.pathInset; }

  // ---- State (read-only views of the buffers, indexed by pid).
  std::size_t numParams() const { return numParams_; }
  bool isInterpolating() const { return interpolating_; }
  float interpProgress() const { return interpProgress_; }
  // The per-frame smoothing factor; assumes 60 Hz until the view joins a
  // window, then follows that window's frame clock.
  float timeConstant() const { return timeConstant_; }
  // exp(-1 / ((milliseconds / 5000) * rate)): the factor that takes about
  // `milliseconds` (five time constants) to cover 99.3 % of a step at
  // `rate` frames per second; 0 (a jump) for a rate or time of 0.
  static float timeConstantForRate(double milliseconds, double framesPerSecond);
  std::span<const float> parameterValuesPrev() const { return parameterValuesPrev_; }
  std::span<const float> parameterValues() const { return parameterValues_; }
  std::span<const float> parameterValuesInterp() const { return parameterValuesInterp_; }
  std::span<const std::uint8_t> changes() const { return changes_; }
  // Whether the display link exists and is running.
  bool isDisplayLinkRunning() const { return displayLink_ && displayLink_->isRunning(); }

  // ---- Values and frames.
  // New targets with their change flags (1 = changed), indexed by pid;
  // entries past numParams are ignored, missing ones keep their old value.
  // animate = false jumps: the next frame draws the targets.
  void updateWithParameterValues(std::span<const float> values, std::span<const std::uint8_t> changes,
                                 bool animate);
  // One animation step (the display link calls it every frame).
  void getFrameWithDuration(double seconds);

  // ---- Geometry and layers.
  // A shape layer stroked white at `alpha`: clear fill, width 2, round caps
  // and joins. The caller owns it.
  static std::unique_ptr<ZelShapeLayer> styledShapeLayerWithAlpha(double alpha);
  // Replaces the layer's path by a polyline through `count` points given as
  // fractions (clipped to [-1, 2]) of the path area's height (horizontal) or
  // width (vertical), spread evenly along the other axis.
  void updatePath(ZelShapeLayer* layer, bool horizontal, const float* points, std::size_t count);
  // The rectangle paths are drawn in: the largest centred square of the
  // layer's superlayer (or this view), in whole points, inset by pathInset.
  CGRect getPathBounds(const ZelLayer* layer) const;
  // Adds a dashed 2-point guide line at `value` (a fraction of the path
  // area, as updatePath) at the bottom of `superlayer` (the root layer when
  // null) and returns it (owned by the superlayer). It becomes centerLine().
  ZelShapeLayer* addDashedLineAtValue(float value, bool horizontal, ZelLayer* superlayer);
  ZelShapeLayer* centerLine() const { return centerLine_; }

  // ---- Visibility: a click shows or hides the picture.
  void mouseUp(const ZelEvent& event) override;
  void toggleVisible(bool visible);
  bool isSketchVisible() const;

  // ---- What a product overrides.
  // Creates the product's layers; called each time the view joins a window
  // (and callable before, to draw without a window), so it must be
  // idempotent. The base does nothing.
  virtual void addPaths() {}
  // Colours the layers from the theme's background colour.
  virtual void colorSketchWithPrimaryColor(ZelColor color) { (void)color; }
  // Draws one frame: `values` are what to show now, `destValues` the
  // targets, `changes` which of them changed (all indexed by pid; numParams
  // long while interpolating, as the caller gave them otherwise: check
  // sizes). The base does nothing.
  virtual void getFrameForParameterValues(std::span<const float> values, std::span<const float> destValues,
                                          std::span<const std::uint8_t> changes) {
    (void)values, (void)destValues, (void)changes;
  }
  // Meters only: one frame of metering.
  virtual void updateMeterWithDuration(double seconds) { (void)seconds; }
  // The unit's channel layout (inputs, outputs), whenever the editor learns
  // it; a sketch that draws per channel follows it. The base ignores it.
  virtual void setChannels(std::uint32_t channelsIn, std::uint32_t channelsOut) { (void)channelsIn, (void)channelsOut; }

  // ---- Window.
  void viewDidMoveToWindow() override;
  // The window's scale changed: follow it.
  void viewDidChangeBackingProperties();
  // Recolours the layers from the current theme (actions off).
  void themeUpdated();

  // Runs `task` at once when called on `mainLoop`'s thread (the loop is
  // ZelRunLoop::current() there), else posts it to that loop and waits until
  // it has run. The waiting thread deadlocks if the main thread is itself
  // blocked waiting for it, so never call it while holding what the main
  // thread may wait on. Exceptions from a posted task reach the caller.
  static void runOnMainQueueWithoutDeadlocking(ZelRunLoop& mainLoop, const std::function<void()>& task);

 protected:
  // The backing scale the host reports, else the window's, else 1.
  double backingScale() const;

 private:
  void recreateDisplayLink();
  void startDisplayLink();
  void stopDisplayLink();
  void finishInterpolation();
  void copyIn(std::vector<float>& dest, std::span<const float> values) const;

  const ZelConfig* config_ = nullptr;
  ZelSketchHost* powerbox_ = nullptr;
  ZelSketchTraits traits_;
  std::size_t numParams_ = 0;
  std::vector<float> parameterValuesPrev_, parameterValues_, parameterValuesInterp_;
  std::vector<std::uint8_t> changes_;
  bool interpolating_ = false;
  float interpProgress_ = 0;
  float timeConstant_ = 0;
  std::unique_ptr<ZelDisplayLink> displayLink_;
  ZelMeteringCallback meteringCallback_;
  ZelShapeLayer* centerLine_ = nullptr;  // owned by its superlayer
  ZelPath pathScratch_;  // updatePath builds here; its storage is reused
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
