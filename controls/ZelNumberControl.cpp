#include "controls/ZelNumberControl.h"

#include <algorithm>
#include <cmath>

#include "controls/ZelControlLook.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {
constexpr double kBoxRadius = 4;
constexpr double kFocusRounding = 6;
constexpr double kTallestBox = 40;
constexpr double kArrowRoom = 10;
}  // namespace

ZelNumberControl::ZelNumberControl(CGRect frame, const ZelParameter* parameter) : ZelFloatControl(frame, parameter) {
  layer()->addSublayer(takeHighlight());
  placeFocusBorder();
}

ZelNumberControl::~ZelNumberControl() = default;

// ---- State.

void ZelNumberControl::setFloatValue(float value) {
  ZelFloatControl::setFloatValue(value);
  setNeedsDisplay();
}

void ZelNumberControl::setHighlit(bool highlit) {
  ZelFloatControl::setHighlit(highlit);
  highlight()->setOpacity(highlit ? 1 : 0);
}

void ZelNumberControl::setDimmed(bool dimmed) {
  ZelFloatControl::setDimmed(dimmed);
  setNeedsDisplay();
}

void ZelNumberControl::setPreventInteraction(bool prevent) {
  ZelFloatControl::setPreventInteraction(prevent);
  if (prevent) dragging_ = false;
  setNeedsDisplay();
}

void ZelNumberControl::setFrame(CGRect frame) {
  ZelFloatControl::setFrame(frame);
  placeFocusBorder();
}

double ZelNumberControl::transientStringPreferredFontSize() const { return boxRect().size.height >= 34 ? 16 : 14; }

CGRect ZelNumberControl::boxRect() const {
  CGRect b = CGRectInset(bounds(), 1, 1);
  if (CGRectIsNull(b)) return bounds();
  double height = std::min(b.size.height, kTallestBox);
  return CGRectIntegral(CGRectMake(b.origin.x, b.origin.y + (b.size.height - height) / 2, b.size.width, height));
}

void ZelNumberControl::placeFocusBorder() {
  ZelTransaction transaction;
  transaction.setDisableActions(true);
  CGRect box = boxRect();
  animateHighlightToFrame(box, {CGRectGetMidX(box), CGRectGetMidY(box)}, kFocusRounding, true);
}

// ---- Values.

float ZelNumberControl::valueSteppedFrom(float from, long steps, ZelGranularityType granularity) const {
  const ZelParameter& p = *parameter();
  const auto& options = p.coarseGranularityOptions;
  if (granularity == ZelGranularityCoarse && !options.empty()) {
    std::size_t k = 0;
    p.closestCoarseGranularityOptionToValue(from, &k);
    long last = static_cast<long>(options.size()) - 1;
    // From between two options, the first step lands on the one that way.
    float nearest = options[k];
    long first = (steps > 0 && from < nearest) || (steps < 0 && from > nearest) ? (steps > 0 ? -1 : 1) : 0;
    long index = std::clamp(static_cast<long>(k) + steps + first, 0L, last);
    return p.normalizeFloatValue(options[static_cast<std::size_t>(index)], granularity);
  }
  float step = p.granularityValueForType(granularity, from);
  if (!(step > 0) || !std::isfinite(step)) return from;
  return p.normalizeFloatValue(from + static_cast<float>(steps) * step, granularity);
}

void ZelNumberControl::applyValue(float value) {
  if (value == floatValue() || std::isnan(value)) return;
  setFloatValue(value);
  reportInterfaceInitiatedValueChange();
}

// ---- Dragging and scrolling.

double ZelNumberControl::mouseY(const ZelEvent& event) const {
  return convertPointFromView(event.locationInWindow, nullptr).y;
}

void ZelNumberControl::anchorAt(double y) {
  anchorValue_ = floatValue();
  anchorY_ = y;
}

void ZelNumberControl::handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities) {
  dragging_ = true;
  anchorAt(mouseY(event));
  setNeedsDisplay();
}

void ZelNumberControl::handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities granularities) {
  double y = mouseY(event);
  if (!dragging_ || granularities.changed) {
    dragging_ = true;
    anchorAt(y);
  }
  auto steps = static_cast<long>(std::trunc((y - anchorY_) / kPointsPerStep));
  applyValue(valueSteppedFrom(anchorValue_, steps, granularities.granIs));
}

void ZelNumberControl::handleMouseUpWithEvent(const ZelEvent&, ZelGranularities) {
  dragging_ = false;
  setNeedsDisplay();
}

void ZelNumberControl::handleScrollWithEvent(const ZelEvent&, float start, double delta,
                                             ZelGranularities granularities) {
  // A notch up arrives as -10 and raises the value by one step.
  long steps = std::max(1L, std::lround(std::fabs(delta) / 10));
  applyValue(valueSteppedFrom(start, delta < 0 ? steps : -steps, granularities.granIs));
}

// ---- Drawing.

void ZelNumberControl::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (!parameter()) return;
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  CGRect box = boxRect();
  ctx.setFillColor(look.track.withAlpha(look.track.alpha * 0.35));
  ctx.fillPath(ZelRoundedRectPath(box, kBoxRadius));
  ctx.setStrokeColor(dragging_ ? look.accent : look.track);
  ctx.setLineWidth(1);
  ctx.strokePath(ZelRoundedRectPath(CGRectInset(box, 0.5, 0.5), kBoxRadius - 0.5));
  ZelReadoutStyle style;
  style.valueSize = transientStringPreferredFontSize();
  style.suffixSize = style.valueSize - 5;
  style.valueColor = dragging_ ? look.accent : look.text;
  style.suffixColor = look.secondaryText;
  if (!displayingTransientBufferValue()) parameter()->valueString(&text_, &suffix_, floatValue());
  // The arrows hint at dragging where the readout leaves room for them.
  CGRect textBox = CGRectInset(box, 4, 0);
  double needed = displayingTransientBufferValue() ? 0 : ZelMeasureReadout(ctx, text_, suffix_, style);
  if (needed + kArrowRoom + 2 <= textBox.size.width) {
    textBox.size.width -= kArrowRoom;
    drawArrows(ctx, box, look.secondaryText);
  }
  if (displayingTransientBufferValue()) {
    ZelDrawTypedReadout(ctx, transientString(), textBox, look.accent);
    return;
  }
  ZelDrawReadout(ctx, text_, suffix_, textBox, style);
}

void ZelNumberControl::drawArrows(ZelGraphicsContext& ctx, CGRect box, ZelColor color) const {
  double cx = CGRectGetMaxX(box) - kArrowRoom / 2 - 1, cy = CGRectGetMidY(box);
  ZelPath up, down;
  up.moveTo({cx - 3, cy + 2});
  up.lineTo({cx + 3, cy + 2});
  up.lineTo({cx, cy + 5.5});
  up.close();
  down.moveTo({cx - 3, cy - 2});
  down.lineTo({cx + 3, cy - 2});
  down.lineTo({cx, cy - 5.5});
  down.close();
  ctx.setFillColor(color);
  ctx.fillPath(up);
  ctx.fillPath(down);
}

ZEL_NAMESPACE_END
