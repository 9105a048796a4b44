#include "controls/ZelBooleanControl.h"

#include <algorithm>
#include <cmath>

#include "controls/ZelControlLook.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"

ZEL_NAMESPACE_BEGIN

namespace {
constexpr double kLampDiameter = 8;
constexpr double kLampInset = 8;   // from the pill's left end to the lamp
constexpr double kLampGlow = 4;
constexpr double kGlyphShare = 0.5;  // of the shorter side
constexpr double kGlyphGlow = 5;
constexpr double kHaloShare = 2.0;   // halo diameter per glyph size
}  // namespace

// ---- ZelBooleanControl.

ZelBooleanControl::ZelBooleanControl(CGRect frame, const ZelParameter* parameter) : ZelCycleControl(frame, parameter) {
  refresh();
}

bool ZelBooleanControl::isOn() const { return std::trunc(floatValue()) != 0; }

CGRect ZelBooleanControl::lampRect() const {
  CGRect pill = pillRect();
  double d = std::round(kLampDiameter * scale());
  return CGRectMake(pill.origin.x + std::round(kLampInset * scale()), std::round(CGRectGetMidY(pill) - d / 2), d, d);
}

CGRect ZelBooleanControl::textFrame() const {
  CGRect pill = pillRect(), lamp = lampRect();
  double left = CGRectGetMaxX(lamp) + 2;
  return CGRectMake(left, pill.origin.y, std::max(CGRectGetMaxX(pill) - left - 4, 0.0), pill.size.height);
}

void ZelBooleanControl::styleTextLayer(const ZelControlLook& look) {
  ZelCycleControl::styleTextLayer(look);
  textLayer()->setForegroundColor(isOn() && !isDisabled() ? look.text : look.secondaryText);
}

void ZelBooleanControl::drawBackground(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  CGRect pill = pillRect();
  if (CGRectIsEmpty(pill)) return;
  double radius = pill.size.height / 2;
  bool on = isOn();
  ZelColor fill = on ? look.accent.withAlpha(0.14) : look.track.withAlpha(look.track.alpha * 0.5);
  ctx.setFillColor(fill);
  ctx.fillPath(ZelRoundedRectPath(pill, radius));
  ctx.setStrokeColor(on ? look.accent.withAlpha(0.55) : look.track);
  ctx.setLineWidth(1);
  ctx.strokePath(ZelRoundedRectPath(CGRectInset(pill, 0.5, 0.5), radius - 0.5));
  CGRect lamp = lampRect();
  ctx.save();
  if (on) {
    ctx.setShadow({0, 0}, kLampGlow * scale(), look.accent.withAlpha(0.8));
    ctx.setFillColor(look.accent);
    ctx.fillEllipseInRect(lamp);
  } else {
    ZelPath ring;
    ring.addEllipseInRect(CGRectInset(lamp, 0.75, 0.75));
    ctx.setStrokeColor(look.secondaryText);
    ctx.setLineWidth(1.5);
    ctx.strokePath(ring);
  }
  ctx.restore();
}

// ---- ZelGlowingBooleanControl.

ZelGlowingBooleanControl::ZelGlowingBooleanControl(CGRect frame, const ZelParameter* parameter)
    : ZelBooleanControl(frame, parameter) {
  refresh();
}

double ZelGlowingBooleanControl::glyphSize() const {
  CGRect b = bounds();
  double side = std::min(b.size.width, b.size.height);
  return std::round(std::clamp(side * kGlyphShare, 12.0, 40.0) * scale());
}

std::string ZelGlowingBooleanControl::displayText() const { return ZelIconGlyph::kPower; }

CGRect ZelGlowingBooleanControl::textFrame() const {
  double side = std::round(glyphSize() * 1.25);
  CGRect b = bounds();
  return CGRectMake(std::round(CGRectGetMidX(b) - side / 2), std::round(CGRectGetMidY(b) - side / 2), side, side);
}

CGRect ZelGlowingBooleanControl::focusFrame() const { return CGRectInset(textFrame(), -2, -2); }

void ZelGlowingBooleanControl::styleTextLayer(const ZelControlLook& look) {
  ZelFontRef font = ZelUITheme::theme()->iconFontOfSize(glyphSize());
  textLayer()->setFont(font ? *font : ZelFont{ZelFontFace::Icons, glyphSize()});
  textLayer()->setString(displayText());
  if (isOn() && !isDisabled()) {
    textLayer()->setForegroundColor(look.accent);
    textLayer()->setGlow(look.accent.withAlpha(0.9), kGlyphGlow);
  } else {
    textLayer()->setForegroundColor(look.text.withAlpha(look.dark ? 0.3 : 0.28));
    textLayer()->clearGlow();
  }
}

void ZelGlowingBooleanControl::drawBackground(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  if (!isOn() || isDisabled()) return;
  double d = glyphSize() * kHaloShare;
  CGRect b = bounds();
  CGRect halo = CGRectMake(CGRectGetMidX(b) - d / 2, CGRectGetMidY(b) - d / 2, d, d);
  // Concentric veils, densest in the middle: a halo that fades out.
  constexpr int kVeils = 10;
  ctx.setFillColor(look.accent.withAlpha(look.dark ? 0.042 : 0.036));
  for (int i = 0; i < kVeils; ++i) {
    double inset = halo.size.width * 0.5 * i / (kVeils + 1);
    ctx.fillEllipseInRect(CGRectInset(halo, inset, inset));
  }
}

ZEL_NAMESPACE_END
