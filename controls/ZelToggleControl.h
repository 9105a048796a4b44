// A two-position switch: a rounded track with a thumb that slides to the
// "on" end (the track lit in the accent colour) or back. A click flips it;
// dragging the thumb past the middle flips it too, once per crossing. When
// the parameter has string values, the texts of its two ends are shown
// beside the switch, the current one in the text colour.
//
// The switch lies horizontally when the parameter says so or its frame is
// wide; otherwise it stands upright with "on" at the top, its texts to the
// right.
//
// Ownership: the track, the thumb and the focus border are sublayers of the
// view's root layer (the thumb slides and the track's colour fades through
// their implicit animations). Threading: main thread only.
#pragma once

#include "controls/ZelFloatControl.h"

ZEL_NAMESPACE_BEGIN

class ZelShapeLayer;

class ZelToggleControl : public ZelFloatControl {
 public:
  ZelToggleControl(CGRect frame, const ZelParameter* parameter);
  ~ZelToggleControl() override;

  // On when the value lies in the upper half of the range.
  bool isOn() const;
  // Sets the other end of the range and reports it.
  void flip();

  // ---- ZelFloatControl.
  void setFloatValue(float value) override;
  void setHighlit(bool highlit) override;
  void setDimmed(bool dimmed) override;
  void setPreventInteraction(bool prevent) override;

  // ---- View.
  void setFrame(CGRect frame) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

  // The switch's track (bounds coordinates) and its orientation.
  CGRect trackRect() const;
  bool isHorizontalSwitch() const;
  ZelLayer* trackLayer() const { return track_; }
  ZelShapeLayer* thumbLayer() const { return thumb_; }

 protected:
  void handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseUpWithEvent(const ZelEvent& event, ZelGranularities granularities) override;

 private:
  void setOn(bool on);
  void layoutLayers();
  void restyle();
  double alongAxis(const ZelEvent& event) const;
  double thumbTravel() const;
  bool hasTexts() const;

  ZelLayer* track_ = nullptr;
  ZelShapeLayer* thumb_ = nullptr;
  double downAlong_ = 0;
  bool moved_ = false;
};

ZEL_NAMESPACE_END
