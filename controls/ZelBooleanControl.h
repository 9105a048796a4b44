// On/off controls, stepped by a click like the cycle control they derive
// from.
//
// ZelBooleanControl: a pill with a lamp at its left and the state's text
// (valueString): on, the lamp is lit in the accent colour with a small glow
// and the pill is tinted; off, the lamp is an empty ring and the text is
// subdued. Everything is scaled by the parameter's controlScale when set.
//
// ZelGlowingBooleanControl: the power switch, the icon font's power glyph:
// on, in the accent colour with a glow and a soft halo behind it; off, dim.
//
// Ownership and threading as ZelCycleControl.
#pragma once

#include "controls/ZelCycleControl.h"

ZEL_NAMESPACE_BEGIN

class ZelBooleanControl : public ZelCycleControl {
 public:
  ZelBooleanControl(CGRect frame, const ZelParameter* parameter);

  // Whether the value counts as on: its whole part is not 0 (the rule the
  // parameter's stepping uses for booleans).
  bool isOn() const;

 protected:
  void styleTextLayer(const ZelControlLook& look) override;
  CGRect textFrame() const override;
  void drawBackground(ZelGraphicsContext& ctx, const ZelControlLook& look) override;
  // The lamp's square (bounds coordinates).
  CGRect lampRect() const;
};

class ZelGlowingBooleanControl : public ZelBooleanControl {
 public:
  ZelGlowingBooleanControl(CGRect frame, const ZelParameter* parameter);

  // The glyph's point size.
  double glyphSize() const;

 protected:
  std::string displayText() const override;
  void styleTextLayer(const ZelControlLook& look) override;
  CGRect textFrame() const override;
  CGRect focusFrame() const override;
  void drawBackground(ZelGraphicsContext& ctx, const ZelControlLook& look) override;
};

ZEL_NAMESPACE_END
