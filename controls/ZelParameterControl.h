// The container the editor places for each parameter: it splits its area
// into a label rectangle and a primary-control rectangle, creates the
// primary control for the parameter's control type, draws the label image
// and the border, and stands between the primary control and the editor.
// Every value, focus, dimming, typed-number and arrow-key request of the
// editor goes through it; the editor sees this control, never the primary.
//
// Ownership: owns its primary control (as its subview). The parameter, the
// clump view and the delegate are non-owning pointers: the description
// outlives the editor, the clump view owns this control, and the editor
// clears the delegate (and target) before it goes. Threading: main thread.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string_view>

#include "controls/ZelFloatControl.h"
#include "toolkit/foundation/ZelNotificationCenter.h"

ZEL_NAMESPACE_BEGIN

class ZelImage;
class ZelNumberParser;
class ZelParameterControl;

// Implemented by the editor.
class ZelParameterControlDelegate {
 public:
  virtual void parameterControlDidChangeInteractionState(ZelParameterControl& control, ZelInteractionState state) = 0;
  virtual void parameterControlHasRequestedDocumentation(ZelParameterControl& control) = 0;
  virtual void parameterControlDidTapMeaninglessly(ZelParameterControl& control) = 0;

 protected:
  ~ZelParameterControlDelegate() = default;
};

class ZelParameterControl : public ZelControl, private ZelFloatControlDelegate {
 public:
  // With a non-empty `labelFrame` the control covers the union of both
  // frames; otherwise `frame`, split by the parameter's computed layout or by
  // calculateInteriorFrames. The primary control comes from
  // ZelMakePrimaryControl and starts at the parameter's initial value.
  // `parameter` must outlive the control.
  ZelParameterControl(CGRect frame, CGRect labelFrame, const ZelParameter* parameter);
  // The same with the primary control given (tests and special containers);
  // nullptr asks ZelMakePrimaryControl.
  using PrimaryFactory = std::unique_ptr<ZelFloatControl> (*)(CGRect frame, const ZelParameter* parameter);
  ZelParameterControl(CGRect frame, CGRect labelFrame, const ZelParameter* parameter, PrimaryFactory factory);
  ~ZelParameterControl() override;

  // ---- Frames (this control's coordinates).
  CGRect sliderFrame() const { return rSlider_; }
  CGRect labelFrame() const { return rLabel_; }
  // Splits the bounds into label and primary areas by the parameter's label
  // position and control type.
  void calculateInteriorFrames();

  // ---- Values.
  float floatValue() const;
  // Fine-snapped and clamped, or the immutable value when one is set; a
  // value the user's control already shows is not re-applied once the user
  // has moved it (host echoes).
  void setFloatValue(float value);
  // The primary control reported a user change.
  void sliderUpdated(ZelControl& sender);
  // Sends this control's action (the editor sets it).
  void reportValueChange();
  // A completed typed number ("k" multiplies by 1000), parsed in the user's
  // locale (or by `parser`); text that is no number counts as 0. Always
  // reported.
  void setStringValue(std::string_view text);
  void setStringValue(std::string_view text, const ZelNumberParser& parser);
  // Flips a boolean (or 0...1 indexed) parameter; false for other kinds.
  bool toggleBooleanControl();
  // An arrow key (U+F700...U+F703): preset controls cycle, others step.
  bool incrementWithArrow(char16_t arrow, ZelGranularityType granularity);

  // When set, the only value the control shows.
  std::optional<float> immutableFloatValue() const { return immutableFloatValue_; }
  void setImmutableFloatValue(std::optional<float> value) { immutableFloatValue_ = value; }

  // ---- Focus and typed numbers.
  bool focused() const { return focused_; }
  void setFocused(bool focused);
  bool acceptsTransientStringBuffers() const;
  // Shows a number being typed, when focused and the primary can show it.
  void setTransientStringValue(std::string_view text);

  // ---- Dimming: one hold per priority; dimmed while any holds.
  // `delay` is accepted and ignored.
  void setDimmed(bool dimmed, double delay, std::uint32_t priority);
  bool isDimmed() const { return !dimHolds_.empty(); }
  // Stores a flag that nothing reads (kept for the interface).
  void setIsDimmed(bool dimmed) { isDimmedFlag_ = dimmed; }
  static constexpr double kDimmedAlpha = 0.4;

  // ---- Accessors.
  const ZelParameter* parameter() const { return parameter_; }
  ZelFloatControl* primaryControl() const { return primaryControl_; }
  ZelView* clumpView() const { return clumpView_; }
  void setClumpView(ZelView* clumpView) { clumpView_ = clumpView; }
  ZelParameterControlDelegate* delegate() const { return delegate_; }
  void setDelegate(ZelParameterControlDelegate* delegate) { delegate_ = delegate; }

  // ---- View.
  bool eventOutsidePrimaryControlBounds(const ZelEvent& event) const;
  void mouseDown(const ZelEvent& event) override;
  void mouseDragged(const ZelEvent& event) override;
  void mouseUp(const ZelEvent& event) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  // The bounds and the label area (labels may sit below the bounds).
  CGRect drawingBounds() const override;
  // The theme changed: redraw, and re-colour the primary control.
  void themeUpdated();

 private:
  // ZelFloatControlDelegate: forwarded to the delegate with this control.
  void floatControlInteractionDidChangeTo(ZelFloatControl& control, ZelInteractionState state) override;
  void floatControlHasRequestedDocumentation(ZelFloatControl& control) override;
  void floatControlDidTapMeaninglessly(ZelFloatControl& control) override;

  void splitFrames(CGRect frame, CGRect labelFrame);
  void applyTypeAdjustments();
  void installPrimaryControl(PrimaryFactory factory);

  CGRect rSlider_;
  CGRect rLabel_;
  std::map<std::uint32_t, bool> dimHolds_;
  bool handlingOutsideClick_ = false;
  bool focused_ = false;
  bool isDimmedFlag_ = false;
  const ZelParameter* parameter_ = nullptr;
  std::optional<float> immutableFloatValue_;
  ZelFloatControl* primaryControl_ = nullptr;  // owned as a subview
  ZelView* clumpView_ = nullptr;
  ZelParameterControlDelegate* delegate_ = nullptr;
  std::shared_ptr<const ZelImage> labelImage_;  // decoded once
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
