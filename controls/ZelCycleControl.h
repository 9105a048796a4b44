// A control that steps through a parameter's values: a click moves to the
// next value (Shift+click to the previous one), wrapping at the ends as the
// parameter's stepping says, and the text gives a short pulse. It shows the
// current value's text (valueString) in a pill with, below it, one dot per
// value when there are a few, the current one lit in the accent colour.
//
// ZelBooleanControl and ZelGlowingBooleanControl derive from it and change
// only how the state is shown.
//
// Ownership: the text layer and the focus border are sublayers of the
// view's root layer. Threading: main thread only.
#pragma once

#include <string>

#include "controls/ZelFloatControl.h"
#include "toolkit/core/ZelAnimation.h"

ZEL_NAMESPACE_BEGIN

struct ZelControlLook;
class ZelControlTextLayer;

class ZelCycleControl : public ZelFloatControl {
 public:
  ZelCycleControl(CGRect frame, const ZelParameter* parameter);
  ~ZelCycleControl() override;

  // The pulse of a tapped control: "transform.scale" from 1.0 to 1.2 over
  // 0.09 s, ease-out, auto-reversing, removed on completion.
  static ZelBasicAnimation standardPulse();

  // ---- ZelFloatControl.
  void setFloatValue(float value) override;
  void setHighlit(bool highlit) override;
  void setDimmed(bool dimmed) override;
  void setPreventInteraction(bool prevent) override;

  // ---- View.
  void setFrame(CGRect frame) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  // Glows and halos reach a little outside the bounds.
  CGRect drawingBounds() const override { return CGRectInset(bounds(), -10, -10); }

  // Moves to the next (or previous) value, reports a change, and pulses the
  // text under the key "pulse".
  void step(bool forward);
  // The layer that shows the value's text (owned by the root layer).
  ZelControlTextLayer* textLayer() const { return text_; }
  // How many values the dots stand for (0: too many or too few to show).
  int valueCount() const;

 protected:
  void handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities granularities) override;

  // Subclasses change the picture through these.
  virtual std::string displayText() const;
  virtual void styleTextLayer(const ZelControlLook& look);
  // Where the text layer goes, and the area the focus border surrounds.
  virtual CGRect textFrame() const;
  virtual CGRect focusFrame() const;
  virtual double focusRounding() const { return 0.5; }
  virtual void drawBackground(ZelGraphicsContext& ctx, const ZelControlLook& look);
  // The size factor: the parameter's controlScale when set, else 1.
  double scale() const;
  // The rounded box the text sits in.
  CGRect pillRect() const;
  double fontSize() const;
  // Text, colours, focus border and picture brought up to date.
  void refresh();

 private:
  void drawDots(ZelGraphicsContext& ctx, const ZelControlLook& look, CGRect pill);
  int valueIndex() const;

  ZelControlTextLayer* text_ = nullptr;
};

ZEL_NAMESPACE_END
