// The editor's slider: the value text with its unit suffix above a track
// whose lit part runs from the bottom (or from zero, for a range that
// crosses it) to the value, a knob at the value, major and minor tick marks,
// cue marks with their texts and cue symbols. Vertical unless the parameter
// says `horizontal`. The four control styles (Default, Pilled, Filled,
// Shadowed) change the track and knob, nothing else.
//
// Dragging is relative: a click anywhere leaves the value alone, and the
// position then follows the mouse over the track's length from where it was
// grabbed; a change of granularity in mid-drag (Shift, Ctrl) re-anchors at
// the current value and mouse position, and a fine drag moves ten times
// slower so that the fine steps are reachable. A wheel notch moves the
// position by 10 points of track (a notch up raises the value), at least
// one step. Every change the user makes is reported once.
//
// While a number is being typed it is shown in place of the value text
// (ZelTransientBufferDisplay).
//
// Ownership: the parameter is not owned; the focus border is one of the
// view's layers. Threading: main thread only.
#pragma once

#include <string>
#include <string_view>

#include "controls/ZelFloatControl.h"
#include "controls/ZelSliderGeometry.h"
#include "controls/ZelTransientReadout.h"

ZEL_NAMESPACE_BEGIN

struct ZelControlLook;

class ZelVerticalSlider : public ZelFloatControl, public ZelTransientReadout {
 public:
  ZelVerticalSlider(CGRect frame, const ZelParameter* parameter);
  ~ZelVerticalSlider() override;

  // The readout of a typed number: `value` followed by `suffix`, in the
  // text face at `fontSize` points (no colour: the control's own).
  static ZelStyledString formattedReadoutStringForValue(std::string_view value, std::string_view suffix,
                                                        double fontSize);

  // ---- ZelFloatControl.
  void setFloatValue(float value) override;
  void setHighlit(bool highlit) override;
  void setDimmed(bool dimmed) override;
  void setPreventInteraction(bool prevent) override;

  // ---- ZelTransientBufferDisplay.
  double transientStringPreferredFontSize() const override { return kReadoutFontSize; }

  // ---- View.
  void setFrame(CGRect frame) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  // The cue texts and the knob's shadow may reach a little outside.
  CGRect drawingBounds() const override;

  // The layout of the parts now.
  const ZelSliderGeometry& geometry() const { return geometry_; }
  // Whether a drag is under way (the readout shows the accent colour).
  bool isDragging() const { return dragging_; }

  static constexpr double kReadoutFontSize = 14;
  static constexpr double kSuffixFontSize = 10;
  static constexpr double kCueFontSize = 9;
  // How much slower a fine drag (and a fine wheel notch) moves.
  static constexpr double kFineDragRatio = 0.1;

 protected:
  // The texts of a value: the readout with its suffix, and a cue mark's.
  // The note slider names notes instead.
  virtual void readoutForValue(float value, std::string* text, std::string* suffix) const;
  virtual std::string cueTextForValue(float value) const;
  // Cue texts of this many kilo-units get a small "k" beside them (the
  // frequency scale shows 2 for 2000 Hz).
  virtual bool cueIsInThousands(float value) const;

  void handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseUpWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleScrollWithEvent(const ZelEvent& event, float start, double delta,
                             ZelGranularities granularities) override;

  void transientReadoutChanged() override { setNeedsDisplay(); }

 private:
  // The mouse's coordinate along the track, in bounds coordinates.
  double alongAxis(const ZelEvent& event) const;
  void anchorAt(double along);
  // Sets the value at `position` (snapped by `granularity`) and reports it
  // when it changed; false when it did not.
  bool applyPosition(double position, ZelGranularityType granularity);
  void updateGeometry();
  void placeFocusBorder();
  // The position the lit part of the track starts from.
  double basePosition() const;

  // Drawing (ZelVerticalSliderDrawing.cpp).
  void drawReadout(ZelGraphicsContext& ctx, const ZelControlLook& look);
  void drawTrack(ZelGraphicsContext& ctx, const ZelControlLook& look, double position);
  void drawTicks(ZelGraphicsContext& ctx, const ZelControlLook& look);
  void drawCues(ZelGraphicsContext& ctx, const ZelControlLook& look);
  void drawCueSymbols(ZelGraphicsContext& ctx, const ZelControlLook& look);
  void drawKnob(ZelGraphicsContext& ctx, const ZelControlLook& look, double position);
  void drawCueText(ZelGraphicsContext& ctx, float value, CGPoint anchor);

  ZelSliderGeometry geometry_;
  bool dragging_ = false;
  double anchorPosition_ = 0;  // the position where the drag was grabbed
  double anchorAlong_ = 0;     // the mouse coordinate there
  std::string text_, suffix_;  // reused by every readout
};

ZEL_NAMESPACE_END
