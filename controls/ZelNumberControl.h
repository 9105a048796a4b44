// A compact number readout: the value with its unit suffix in a small
// rounded box, with a hint of up and down arrows at its right. Dragging up
// or down changes the value by one step per 3 points, relative to where it
// was grabbed: normal steps, fine steps with Ctrl, coarse steps with Shift
// (through the coarse options, when the parameter lists them); a change of
// granularity in mid-drag re-anchors. A wheel notch is one step. While a
// number is being typed it is shown in place of the value.
//
// Ownership: the parameter is not owned; the focus border is one of the
// view's layers. Threading: main thread only.
#pragma once

#include <string>

#include "controls/ZelFloatControl.h"
#include "controls/ZelTransientReadout.h"

ZEL_NAMESPACE_BEGIN

class ZelNumberControl : public ZelFloatControl, public ZelTransientReadout {
 public:
  ZelNumberControl(CGRect frame, const ZelParameter* parameter);
  ~ZelNumberControl() override;

  // ---- ZelFloatControl.
  void setFloatValue(float value) override;
  void setHighlit(bool highlit) override;
  void setDimmed(bool dimmed) override;
  void setPreventInteraction(bool prevent) override;

  // ---- ZelTransientBufferDisplay.
  double transientStringPreferredFontSize() const override;

  // ---- View.
  void setFrame(CGRect frame) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

  // The value `steps` steps of `granularity` away from `from`, snapped and
  // clamped; coarse steps walk the coarse options when there are any. A
  // parameter without a step stays at `from`.
  float valueSteppedFrom(float from, long steps, ZelGranularityType granularity) const;
  // The readout's box (bounds coordinates).
  CGRect boxRect() const;
  bool isDragging() const { return dragging_; }

  static constexpr double kPointsPerStep = 3;

 protected:
  void handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseUpWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleScrollWithEvent(const ZelEvent& event, float start, double delta,
                             ZelGranularities granularities) override;
  void transientReadoutChanged() override { setNeedsDisplay(); }

 private:
  double mouseY(const ZelEvent& event) const;
  void anchorAt(double y);
  void applyValue(float value);
  void placeFocusBorder();
  void drawArrows(ZelGraphicsContext& ctx, CGRect box, ZelColor color) const;

  bool dragging_ = false;
  float anchorValue_ = 0;
  double anchorY_ = 0;
  std::string text_, suffix_;
};

ZEL_NAMESPACE_END
