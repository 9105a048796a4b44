// The base of every primary value control (slider, cycle, toggle, number,
// note slider, preset): it holds one parameter's value in the parameter's
// own units and turns raw mouse, wheel and arrow input into subclass hooks
// that carry the granularity chosen by the modifier keys. It owns what all
// value controls share: Option-click reset, the context menu, arrow-key
// stepping, the repeating sweep, the focus border and the reporting of user
// changes (the action to the target, interaction begin/end to the delegate).
// It draws nothing itself.
//
// Ownership: the parameter is not owned (the description outlives the
// editor); the delegate is a non-owning pointer that its owner (the
// parameter control) clears before it goes. The focus border is created
// here and handed to the subclass, which attaches it to its own layers
// (takeHighlight); highlight() stays valid for the control's whole life.
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "model/ZelParameter.h"
#include "toolkit/core/ZelControl.h"
#include "toolkit/core/ZelFont.h"
#include "toolkit/foundation/ZelColor.h"

ZEL_NAMESPACE_BEGIN

class ZelFocusBorder;
class ZelFloatControl;
class ZelMenu;
class ZelRunLoop;

// The granularity of the latest event and of the one before it.
struct ZelGranularities {
  ZelGranularityType granIs = 0;
  ZelGranularityType granWas = 0;
  bool changed = false;
  friend bool operator==(const ZelGranularities&, const ZelGranularities&) = default;
};

enum ZelInteractionState : std::int32_t {
  ZelInteractionBegan = 0,
  ZelInteractionEnded = 1,
};

// Receives a primary control's interaction state and requests. The parameter
// control implements it.
class ZelFloatControlDelegate {
 public:
  virtual void floatControlInteractionDidChangeTo(ZelFloatControl& control, ZelInteractionState state) = 0;
  virtual void floatControlHasRequestedDocumentation(ZelFloatControl& control) = 0;
  // Sent only by the preset control.
  virtual void floatControlDidTapMeaninglessly(ZelFloatControl& control) = 0;

 protected:
  ~ZelFloatControlDelegate() = default;
};

// Text with its font and, optionally, its colour (the control's own colour
// when none is given).
struct ZelStyledString {
  std::string text;
  ZelFont font;
  std::optional<ZelColor> color;
};

// Adopted by the primary controls that can show a number while it is being
// typed (the vertical slider and the number control). A primary control that
// adopts it derives from both ZelFloatControl and this interface.
class ZelTransientBufferDisplay {
 public:
  // Shows `string` in place of the value readout.
  virtual void displayTransientBufferValue(const ZelStyledString& string) = 0;
  // Goes back to showing the value.
  virtual void discardTransientBufferValue() = 0;
  // The point size for the typed text.
  virtual double transientStringPreferredFontSize() const = 0;
  virtual bool displayingTransientBufferValue() const = 0;
  virtual void setDisplayingTransientBufferValue(bool displaying) = 0;

 protected:
  ~ZelTransientBufferDisplay() = default;
};

// If `object` adopts ZelTransientBufferDisplay and is displaying a typed
// value, makes it discard it; otherwise nothing. nullptr is fine.
void ZelTransientBufferDisplayClear(ZelView* object);

class ZelFloatControl : public ZelControl {
 public:
  // `parameter` must outlive the control. Makes the view layer-backed with
  // clipping off and creates the focus border in the parameter's colour
  // (not attached: see takeHighlight).
  ZelFloatControl(CGRect frame, const ZelParameter* parameter);
  ~ZelFloatControl() override;

  // ---- State.
  float floatValue() const { return floatValue_; }
  // Stores the value (parameter units); subclasses override to redraw.
  virtual void setFloatValue(float value) { floatValue_ = value; }
  bool highlit() const { return highlit_; }
  virtual void setHighlit(bool highlit) { highlit_ = highlit; }
  bool dimmed() const { return dimmed_; }
  virtual void setDimmed(bool dimmed) { dimmed_ = dimmed; }
  bool preventInteraction() const { return preventInteraction_; }
  virtual void setPreventInteraction(bool prevent) { preventInteraction_ = prevent; }
  bool isDisabled() const { return preventInteraction_; }
  // YES once the user has changed the value through this control.
  bool userControlling() const { return userControlling_; }
  void setUserControlling(bool controlling) { userControlling_ = controlling; }
  const ZelParameter* parameter() const { return parameter_; }
  ZelFloatControlDelegate* delegate() const { return delegate_; }
  void setDelegate(ZelFloatControlDelegate* delegate) { delegate_ = delegate; }

  // ---- Focus border.
  // The border layer (non-owning; valid as long as the control lives).
  ZelFocusBorder* highlight() const { return highlight_; }
  // Hands the border to the subclass, which adds it to its own layer tree
  // (the layer tree then owns it). Returns nullptr after the first call.
  std::unique_ptr<ZelFocusBorder> takeHighlight();
  // Places the border: with `inset`, `frame` grown by 4 points left and right
  // and 3 top and bottom, rounded outward; radius `rounding` when >= 1, else
  // max(rounding, 0.5) x the frame's height. `position` is not used.
  void animateHighlightToFrame(CGRect frame, CGPoint position, double rounding, bool inset);

  // ---- View.
  CGSize intrinsicContentSize() const { return {0, 0}; }
  bool acceptsFirstMouse(const ZelEvent&) const override { return true; }
  bool mouseDownCanMoveWindow() const { return false; }
  void mouseDown(const ZelEvent& event) override { handleMouseDownEvent(event); }
  void mouseDragged(const ZelEvent& event) override { handleMouseDraggedEvent(event); }
  void mouseUp(const ZelEvent& event) override { handleMouseUpEvent(event); }
  bool scrollWheel(const ZelEvent& event) override;
  std::unique_ptr<ZelMenu> menuForEvent(const ZelEvent& event) override;

  // ---- Event handling (public: the parameter control forwards clicks that
  // land outside this control to them).
  void handleMouseDownEvent(const ZelEvent& event);
  void handleMouseDraggedEvent(const ZelEvent& event);
  void handleMouseUpEvent(const ZelEvent& event);
  // Command (Ctrl) -> fine; otherwise Shift -> coarse; otherwise normal.
  static ZelGranularityType granularityFromEvent(const ZelEvent& event);

  // ---- User changes.
  // The parameter's initial value, reported as a user change; ends a typed
  // number display.
  virtual void resetToInitialValue();
  // Marks the user as controlling and sends the action.
  void reportInterfaceInitiatedValueChange();
  // One arrow-key step (U+F700...U+F703) at granularity `granularity`,
  // snapped and reported. Always true.
  bool incrementWithArrow(char16_t arrow, ZelGranularityType granularity);
  // The signed step an arrow key makes from the current value.
  float incrementedValueForArrow(char16_t arrow, ZelGranularityType granularity) const;
  void contextMenuResetInitialValue() { resetToInitialValue(); }
  void contextMenuRequestedDocumentation();

  // ---- The sweep: one coarse step now and again every 0.25 s on the run
  // loop until the bound is passed. Nothing but the bound (and the
  // control's destruction) ends it.
  void sweepUp() { incrementUp(); }
  void sweepDown() { incrementDown(); }
  void incrementUp();
  void incrementDown();
  using SweepSelector = void (ZelFloatControl::*)();
  void slowlyIncrementWithSel(SweepSelector selector, float multiplier);
  static constexpr double kSweepInterval = 0.25;

 protected:
  // ---- Subclass hooks; the base versions do nothing.
  virtual void handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities granularities);
  virtual void handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities granularities);
  virtual void handleMouseUpWithEvent(const ZelEvent& event, ZelGranularities granularities);
  virtual void handleScrollWithEvent(const ZelEvent& event, float start, double delta,
                                     ZelGranularities granularities);

  ZelGranularities currentGranularities() const { return {granIs_, granWas_, granIs_ != granWas_}; }
  void advanceGranularity(const ZelEvent& event);

  // Fields in the order of the design; `sweeping` is kept and never used.
  ZelGranularityType granIs_ = 0;
  ZelGranularityType granWas_ = 0;
  bool sweeping_ = false;
  float scrollStartValue_ = 0;
  double scrollDelta_ = 0;

 private:
  void tellDelegate(ZelInteractionState state);
  ZelRunLoop* sweepRunLoop();

  bool highlit_ = false;
  bool dimmed_ = false;
  bool preventInteraction_ = false;
  bool userControlling_ = false;
  float floatValue_ = 0;
  const ZelParameter* parameter_ = nullptr;
  ZelFloatControlDelegate* delegate_ = nullptr;
  std::unique_ptr<ZelFocusBorder> ownedHighlight_;  // until the subclass takes it
  ZelFocusBorder* highlight_ = nullptr;
  ZelRunLoop* sweepLoop_ = nullptr;  // where a sweep step is pending, if any
};

ZEL_NAMESPACE_END
