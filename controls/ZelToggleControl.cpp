#include "controls/ZelToggleControl.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "controls/ZelControlLook.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/core/ZelShapeLayer.h"
#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {
constexpr double kTextGap = 5;
constexpr double kTextSize = 10;
constexpr double kThumbInset = 2;
constexpr double kDragSlop = 3;  // points the mouse moves before a click becomes a drag
}  // namespace

ZelToggleControl::ZelToggleControl(CGRect frame, const ZelParameter* parameter) : ZelFloatControl(frame, parameter) {
  ZelTransaction setup;
  setup.setDisableActions(true);
  track_ = layer()->addSublayer(std::make_unique<ZelLayer>());
  thumb_ = static_cast<ZelShapeLayer*>(layer()->addSublayer(std::make_unique<ZelShapeLayer>()));
  layer()->addSublayer(takeHighlight());
  layoutLayers();
  restyle();
}

ZelToggleControl::~ZelToggleControl() = default;

// ---- State.

bool ZelToggleControl::isOn() const {
  const ZelParameter& p = *parameter();
  return floatValue() > (p.minValue + p.maxValue) / 2;
}

void ZelToggleControl::setOn(bool on) {
  const ZelParameter& p = *parameter();
  float value = on ? p.maxValue : p.minValue;
  if (value == floatValue()) return;
  setFloatValue(value);
  reportInterfaceInitiatedValueChange();
}

void ZelToggleControl::flip() { setOn(!isOn()); }

void ZelToggleControl::setFloatValue(float value) {
  ZelFloatControl::setFloatValue(value);
  restyle();  // the thumb slides, the track's colour fades
  setNeedsDisplay();
}

void ZelToggleControl::setHighlit(bool highlit) {
  ZelFloatControl::setHighlit(highlit);
  highlight()->setOpacity(highlit ? 1 : 0);
}

void ZelToggleControl::setDimmed(bool dimmed) {
  ZelFloatControl::setDimmed(dimmed);
  restyle();
  setNeedsDisplay();
}

void ZelToggleControl::setPreventInteraction(bool prevent) {
  ZelFloatControl::setPreventInteraction(prevent);
  restyle();
  setNeedsDisplay();
}

void ZelToggleControl::setFrame(CGRect frame) {
  ZelFloatControl::setFrame(frame);
  ZelTransaction transaction;
  transaction.setDisableActions(true);
  layoutLayers();
  restyle();
}

// ---- Geometry.

bool ZelToggleControl::hasTexts() const { return !parameter()->stringValues.empty(); }

bool ZelToggleControl::isHorizontalSwitch() const {
  CGRect b = bounds();
  return parameter()->horizontal || b.size.width >= 2.2 * b.size.height;
}

CGRect ZelToggleControl::trackRect() const {
  CGRect b = bounds();
  bool horizontal = isHorizontalSwitch();
  double across = horizontal ? b.size.height : b.size.width;
  double available = std::max((horizontal ? b.size.width : b.size.height) - 2, 0.0);
  double t = std::clamp(std::round(std::min(b.size.width, b.size.height) * 0.5), 12.0, 18.0);
  t = std::min(t, std::max(across - 2, 0.0));
  double length = std::min(2 * t - 2, available);
  if (horizontal) {
    return CGRectMake(std::round((b.size.width - length) / 2), std::round((b.size.height - t) / 2), length, t);
  }
  double shift = hasTexts() ? 10 : 0;  // leaves room for the texts on the right
  return CGRectMake(std::round(b.size.width / 2 - t / 2 - shift), std::round((b.size.height - length) / 2), t, length);
}

double ZelToggleControl::thumbTravel() const {
  CGRect track = trackRect();
  return std::max(std::fabs(track.size.width - track.size.height), 0.0);
}

void ZelToggleControl::layoutLayers() {
  CGRect track = trackRect();
  double t = std::min(track.size.width, track.size.height);
  track_->setFrame(track);
  track_->setCornerRadius(t / 2);
  double d = std::max(t - 2 * kThumbInset, 0.0);
  thumb_->setFrame(CGRectMake(track.origin.x + kThumbInset, track.origin.y + kThumbInset, d, d));
  ZelPath circle;
  circle.addEllipseInRect(CGRectMake(0.5, 0.5, std::max(d - 1, 0.0), std::max(d - 1, 0.0)));
  thumb_->setPath(circle);
  thumb_->setLineWidth(1);
  CGRect focus = CGRectIntegral(track);
  animateHighlightToFrame(focus, {CGRectGetMidX(focus), CGRectGetMidY(focus)}, t / 2 + 4, true);
}

void ZelToggleControl::restyle() {
  if (!parameter()) return;
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  bool on = isOn();
  track_->setBackgroundColor(on ? look.accent : look.track);
  thumb_->setFillColor(look.knobFace);
  thumb_->setStrokeColor(look.knobEdge);
  double travel = on ? thumbTravel() : 0;
  thumb_->setTransform(isHorizontalSwitch() ? ZelAffineTransform::translation(travel, 0)
                                            : ZelAffineTransform::translation(0, travel));
  thumb_->setOpacity(isDisabled() ? 0.6 : 1);
}

// ---- Mouse.

double ZelToggleControl::alongAxis(const ZelEvent& event) const {
  CGPoint p = convertPointFromView(event.locationInWindow, nullptr);
  return isHorizontalSwitch() ? p.x : p.y;
}

void ZelToggleControl::handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities) {
  downAlong_ = alongAxis(event);
  moved_ = false;
}

void ZelToggleControl::handleMouseDraggedWithEvent(const ZelEvent& event, ZelGranularities) {
  double along = alongAxis(event);
  if (std::fabs(along - downAlong_) >= kDragSlop) moved_ = true;
  if (!moved_) return;
  CGRect track = trackRect();
  double middle = isHorizontalSwitch() ? CGRectGetMidX(track) : CGRectGetMidY(track);
  setOn(along > middle);
}

void ZelToggleControl::handleMouseUpWithEvent(const ZelEvent&, ZelGranularities) {
  if (!moved_) flip();
  moved_ = false;
}

// ---- Drawing: the texts of the two ends.

void ZelToggleControl::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (!parameter() || !hasTexts()) return;
  const ZelParameter& p = *parameter();
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  std::string offText, onText;
  p.valueString(&offText, nullptr, p.minValue);
  p.valueString(&onText, nullptr, p.maxValue);
  CGRect track = trackRect();
  ZelFont font{ZelFontFace::Medium, kTextSize};
  bool on = isOn();
  ZelColor active = isDisabled() ? look.secondaryText : look.text;
  double half = std::min(track.size.width, track.size.height) / 2;
  if (isHorizontalSwitch()) {
    double y = CGRectGetMidY(track);
    ctx.setFillColor(on ? look.secondaryText : active);
    ZelDrawTextAt(ctx, offText, font, {track.origin.x - kTextGap, y}, ZelTextAlignment::Right);
    ctx.setFillColor(on ? active : look.secondaryText);
    ZelDrawTextAt(ctx, onText, font, {CGRectGetMaxX(track) + kTextGap, y}, ZelTextAlignment::Left);
    return;
  }
  double x = CGRectGetMaxX(track) + kTextGap;
  ctx.setFillColor(on ? look.secondaryText : active);
  ZelDrawTextAt(ctx, offText, font, {x, track.origin.y + half}, ZelTextAlignment::Left);
  ctx.setFillColor(on ? active : look.secondaryText);
  ZelDrawTextAt(ctx, onText, font, {x, CGRectGetMaxY(track) - half}, ZelTextAlignment::Left);
}

ZEL_NAMESPACE_END
