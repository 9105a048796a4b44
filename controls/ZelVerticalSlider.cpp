#include "controls/ZelVerticalSlider.h"

#include <algorithm>
#include <cmath>

#include "controls/ZelPrimaryControls.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

ZelVerticalSlider::ZelVerticalSlider(CGRect frame, const ZelParameter* parameter)
    : ZelFloatControl(frame, parameter) {
  layer()->addSublayer(takeHighlight());
  updateGeometry();
}

ZelVerticalSlider::~ZelVerticalSlider() = default;

ZelStyledString ZelVerticalSlider::formattedReadoutStringForValue(std::string_view value, std::string_view suffix,
                                                                  double fontSize) {
  return ZelFormattedReadoutStringForValue(value, suffix, fontSize);
}

// ---- State.

void ZelVerticalSlider::setFloatValue(float value) {
  ZelFloatControl::setFloatValue(value);
  placeFocusBorder();
  setNeedsDisplay();
}

void ZelVerticalSlider::setHighlit(bool highlit) {
  ZelFloatControl::setHighlit(highlit);
  placeFocusBorder();
  highlight()->setOpacity(highlit ? 1 : 0);
}

void ZelVerticalSlider::setDimmed(bool dimmed) {
  ZelFloatControl::setDimmed(dimmed);
  setNeedsDisplay();
}

void ZelVerticalSlider::setPreventInteraction(bool prevent) {
  ZelFloatControl::setPreventInteraction(prevent);
  if (prevent) dragging_ = false;
  setNeedsDisplay();
}

void ZelVerticalSlider::setFrame(CGRect frame) {
  ZelFloatControl::setFrame(frame);
  updateGeometry();
}

CGRect ZelVerticalSlider::drawingBounds() const { return CGRectInset(bounds(), -6, -6); }

void ZelVerticalSlider::updateGeometry() {
  bool horizontal = parameter() && parameter()->horizontal;
  ZelControlStyle style = parameter() ? parameter()->controlStyle : ZelControlStyle::Default;
  geometry_ = ZelSliderGeometry::make(bounds(), horizontal, style);
  placeFocusBorder();
}

void ZelVerticalSlider::placeFocusBorder() {
  if (!parameter()) return;
  ZelTransaction transaction;  // the border follows the knob at once
  transaction.setDisableActions(true);
  double position = ZelSliderPosition(*parameter(), floatValue());
  CGRect knob = geometry_.knobRect(position);
  animateHighlightToFrame(knob, geometry_.pointAt(position), geometry_.metrics.focusRounding, true);
}

double ZelVerticalSlider::basePosition() const {
  const ZelParameter& p = *parameter();
  // A linear range across zero lights the track from zero outwards.
  if (!p.logarithmic && p.minValue < 0 && p.maxValue > 0) return ZelSliderPosition(p, 0);
  return 0;
}

// ---- Texts.

void ZelVerticalSlider::readoutForValue(float value, std::string* text, std::string* suffix) const {
  parameter()->valueString(text, suffix, value);
}

std::string ZelVerticalSlider::cueTextForValue(float value) const {
  return parameter()->displayStringFromCueValue(value);
}

bool ZelVerticalSlider::cueIsInThousands(float value) const {
  return parameter()->unit == ZelUnit::Hertz && value >= 1000;
}

// ---- Dragging and scrolling.

double ZelVerticalSlider::alongAxis(const ZelEvent& event) const {
  return geometry_.alongAxis(convertPointFromView(event.locationInWindow, nullptr));
}

void ZelVerticalSlider::anchorAt(double along) {
  anchorPosition_ = ZelSliderPosition(*parameter(), floatValue());
  anchorAlong_ = along;
}

bool ZelVerticalSlider::applyPosition(double position, ZelGranularityType granularity) {
  float value = parameter()->normalizedFloatValueFromPercent(static_cast<float>(position), granularity);
  if (value == floatValue() || std::isnan(value)) return false;
  setFloatValue(value);
  reportInterfaceInitiatedValueChange();
  return true;
}

void ZelVerticalSlider::handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities) {
  // Grabbing never moves the value: only the drag that follows does.
  dragging_ = true;
  anchorAt(alongAxis(event));
  setNeedsDisplay();
}

void ZelVerticalSlider::handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities granularities) {
  double along = alongAxis(event);
  if (!dragging_) {
    dragging_ = true;
    anchorAt(along);
  }
  if (granularities.changed) anchorAt(along);
  double ratio = granularities.granIs == ZelGranularityFine ? kFineDragRatio : 1.0;
  double length = std::max(geometry_.trackLength(), 1.0);
  double position = anchorPosition_ + (along - anchorAlong_) / length * ratio;
  if (position < 0 || position > 1) {
    // Past either end: hold the end, so that turning back acts at once.
    position = std::clamp(position, 0.0, 1.0);
    anchorPosition_ = position;
    anchorAlong_ = along;
  }
  applyPosition(position, granularities.granIs);
}

void ZelVerticalSlider::handleMouseUpWithEvent(const ZelEvent&, ZelGranularities) {
  dragging_ = false;
  setNeedsDisplay();
}

void ZelVerticalSlider::handleScrollWithEvent(const ZelEvent&, float start, double delta,
                                              ZelGranularities granularities) {
  const ZelParameter& p = *parameter();
  double ratio = granularities.granIs == ZelGranularityFine ? kFineDragRatio : 1.0;
  double length = std::max(geometry_.trackLength(), 1.0);
  // The wheel's delta is negative for a notch up, which raises the value.
  double position = std::clamp(ZelSliderPosition(p, start) - delta / length * ratio, 0.0, 1.0);
  float value = p.normalizedFloatValueFromPercent(static_cast<float>(position), granularities.granIs);
  if (value == start && delta != 0) {
    // Less than half a step per notch: move one whole step that way.
    float step = p.granularityValueForType(granularities.granIs, start);
    value = p.normalizeFloatValue(delta < 0 ? start + step : start - step, granularities.granIs);
  }
  if (value == floatValue() || std::isnan(value)) return;
  setFloatValue(value);
  reportInterfaceInitiatedValueChange();
}

ZEL_NAMESPACE_END
