#include "controls/ZelPresetControl.h"

#include <algorithm>
#include <cmath>

#include "controls/ZelControlLook.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"
#include "model/ZelPresets.h"
#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {
constexpr double kNameSize = 13;
constexpr double kChevronSize = 14;
constexpr double kWidestChevronBox = 26;
constexpr double kDirtyDot = 5;
constexpr double kFocusRounding = 5;
}  // namespace

ZelPresetControl::ZelPresetControl(CGRect frame, const ZelParameter* parameter) : ZelFloatControl(frame, parameter) {
  layer()->addSublayer(takeHighlight());
  placeFocusBorder();
}

ZelPresetControl::~ZelPresetControl() = default;

std::string ZelPresetControl::presetName() const {
  const ZelParameter& p = *parameter();
  if (const auto* presets = dynamic_cast<const ZelPresets*>(&p); presets && !presets->stringValues.empty()) {
    float whole = std::trunc(floatValue());
    auto index = whole > 0 && std::isfinite(whole) ? static_cast<unsigned>(whole) : 0u;
    const std::string* name = presets->presetNameForValue(index);
    return name ? *name : std::string();
  }
  std::string text;
  p.valueString(&text, nullptr, floatValue());
  return text;
}

// ---- State.

void ZelPresetControl::setDirty(bool dirty) {
  if (dirty == dirty_) return;
  dirty_ = dirty;
  setNeedsDisplay();
}

void ZelPresetControl::setFloatValue(float value) {
  ZelFloatControl::setFloatValue(value);
  setNeedsDisplay();
}

void ZelPresetControl::setHighlit(bool highlit) {
  ZelFloatControl::setHighlit(highlit);
  highlight()->setOpacity(highlit ? 1 : 0);
}

void ZelPresetControl::setDimmed(bool dimmed) {
  ZelFloatControl::setDimmed(dimmed);
  setNeedsDisplay();
}

void ZelPresetControl::setPreventInteraction(bool prevent) {
  ZelFloatControl::setPreventInteraction(prevent);
  setNeedsDisplay();
}

void ZelPresetControl::setFrame(CGRect frame) {
  ZelFloatControl::setFrame(frame);
  placeFocusBorder();
}

// ---- Geometry.

CGRect ZelPresetControl::previousRect() const {
  CGRect b = bounds();
  double side = std::min({b.size.height, kWidestChevronBox, std::floor(b.size.width / 3)});
  return CGRectMake(0, std::round((b.size.height - side) / 2), side, side);
}

CGRect ZelPresetControl::nextRect() const {
  CGRect previous = previousRect();
  return CGRectOffset(previous, bounds().size.width - previous.size.width, 0);
}

CGRect ZelPresetControl::nameRect() const {
  CGRect previous = previousRect();
  CGRect b = bounds();
  return CGRectMake(previous.size.width, 0, std::max(b.size.width - 2 * previous.size.width, 0.0), b.size.height);
}

void ZelPresetControl::placeFocusBorder() {
  ZelTransaction transaction;
  transaction.setDisableActions(true);
  CGRect name = CGRectInset(nameRect(), 2, std::max(bounds().size.height / 2 - 9, 0.0));
  animateHighlightToFrame(CGRectIntegral(name), {CGRectGetMidX(name), CGRectGetMidY(name)}, kFocusRounding, false);
}

// ---- Mouse.

void ZelPresetControl::stepPreset(bool forward) {
  float next = parameter()->floatValueAfter(floatValue(), forward);
  if (next == floatValue()) return;
  setFloatValue(next);
  reportInterfaceInitiatedValueChange();
}

void ZelPresetControl::handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities) {
  CGPoint p = convertPointFromView(event.locationInWindow, nullptr);
  if (p.x < CGRectGetMaxX(previousRect())) {
    pressed_ = Part::Previous;
    stepPreset(false);
  } else if (p.x >= nextRect().origin.x) {
    pressed_ = Part::Next;
    stepPreset(true);
  } else {
    pressed_ = Part::Name;
    if (delegate()) delegate()->floatControlDidTapMeaninglessly(*this);
  }
  setNeedsDisplay();
}

void ZelPresetControl::handleMouseUpWithEvent(const ZelEvent&, ZelGranularities) {
  pressed_ = Part::None;
  setNeedsDisplay();
}

// ---- Drawing.

void ZelPresetControl::drawChevron(ZelGraphicsContext& ctx, const char* glyph, CGRect rect, bool pressed,
                                   ZelColor color, ZelColor pressedColor) {
  const ZelUITheme& theme = *ZelUITheme::theme();
  ZelFontRef font = theme.iconFontOfSize(kChevronSize);
  ctx.setFillColor(pressed ? pressedColor : color);
  ZelDrawTextAt(ctx, glyph, font ? *font : ZelFont{ZelFontFace::Icons, kChevronSize},
                {CGRectGetMidX(rect), CGRectGetMidY(rect)});
}

void ZelPresetControl::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (!parameter()) return;
  const ZelUITheme& theme = *ZelUITheme::theme();
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  ZelColor chevron = isDisabled() ? look.secondaryText : theme.symbolColor();
  drawChevron(ctx, ZelIconGlyph::kChevronLeft, previousRect(), pressed_ == Part::Previous, chevron, look.accent);
  drawChevron(ctx, ZelIconGlyph::kChevronRight, nextRect(), pressed_ == Part::Next, chevron, look.accent);

  CGRect box = CGRectInset(nameRect(), 4, 0);
  std::string name = presetName();
  ZelFont font = dirty_ ? *theme.italicFontOfSize(kNameSize) : ZelValueFont(name, kNameSize);
  double dot = dirty_ ? kDirtyDot + 5 : 0;
  double width = ctx.measureText(name, font).width;
  if (width + dot > box.size.width && width > 0) {
    font.pointSize = std::max(font.pointSize * (box.size.width - dot) / width, 9.0);
    width = ctx.measureText(name, font).width;
  }
  double x = std::round(CGRectGetMidX(box) - (width + dot) / 2);
  double centreY = CGRectGetMidY(box);
  ctx.setFillColor(pressed_ == Part::Name ? look.accent : (isDisabled() ? look.secondaryText : look.text));
  ZelDrawTextAt(ctx, name, font, {x, centreY}, ZelTextAlignment::Left);
  if (!dirty_) return;
  ctx.setFillColor(look.accent);
  ctx.fillEllipseInRect(CGRectMake(x + width + 5, centreY - kDirtyDot / 2, kDirtyDot, kDirtyDot));
}

ZEL_NAMESPACE_END
