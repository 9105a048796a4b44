#include "controls/ZelCycleControl.h"

#include <algorithm>
#include <cmath>

#include "controls/ZelControlLook.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {
constexpr double kPillHeight = 22;
constexpr double kFontSize = 13;
constexpr double kDotDiameter = 4;
constexpr double kDotSpacing = 8;
constexpr double kDotRoom = 8;  // below the pill
constexpr int kMostDots = 8;
}  // namespace

ZelCycleControl::ZelCycleControl(CGRect frame, const ZelParameter* parameter) : ZelFloatControl(frame, parameter) {
  ZelTransaction setup;
  setup.setDisableActions(true);
  auto text = std::make_unique<ZelControlTextLayer>();
  text->setAlignment(ZelTextAlignment::Center);
  text_ = static_cast<ZelControlTextLayer*>(layer()->addSublayer(std::move(text)));
  layer()->addSublayer(takeHighlight());
  refresh();
}

ZelCycleControl::~ZelCycleControl() = default;

ZelBasicAnimation ZelCycleControl::standardPulse() { return ZelStandardPulseAnimation(); }

// ---- State.

void ZelCycleControl::setFloatValue(float value) {
  ZelFloatControl::setFloatValue(value);
  refresh();
}

void ZelCycleControl::setHighlit(bool highlit) {
  ZelFloatControl::setHighlit(highlit);
  highlight()->setOpacity(highlit ? 1 : 0);
}

void ZelCycleControl::setDimmed(bool dimmed) {
  ZelFloatControl::setDimmed(dimmed);
  refresh();
}

void ZelCycleControl::setPreventInteraction(bool prevent) {
  ZelFloatControl::setPreventInteraction(prevent);
  refresh();
}

void ZelCycleControl::setFrame(CGRect frame) {
  ZelFloatControl::setFrame(frame);
  refresh();
}

void ZelCycleControl::refresh() {
  if (!parameter()) return;
  ZelTransaction transaction;  // text and colours change at once
  transaction.setDisableActions(true);
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  text_->setFrame(textFrame());
  styleTextLayer(look);
  CGRect focus = focusFrame();
  animateHighlightToFrame(focus, {CGRectGetMidX(focus), CGRectGetMidY(focus)}, focusRounding(), true);
  setNeedsDisplay();
}

// ---- Stepping.

void ZelCycleControl::step(bool forward) {
  float next = parameter()->floatValueAfter(floatValue(), forward);
  text_->addAnimation(standardPulse(), "pulse");
  if (next == floatValue()) return;
  setFloatValue(next);
  reportInterfaceInitiatedValueChange();
}

void ZelCycleControl::handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities) {
  step(!event.has(ZelEventModifierShift));
}

// ---- Geometry.

double ZelCycleControl::scale() const {
  return parameter() && parameter()->controlScale > 0 ? parameter()->controlScale : 1.0;
}

double ZelCycleControl::fontSize() const { return std::round(kFontSize * scale() * 2) / 2; }

int ZelCycleControl::valueCount() const {
  const ZelParameter& p = *parameter();
  if (!p.stringValues.empty()) {
    auto n = static_cast<int>(p.stringValues.size());
    return n >= 2 && n <= kMostDots ? n : 0;
  }
  if (!(p.granularity > 0)) return 0;
  double n = std::floor(p.valueRange() / p.granularity + 1e-4) + 1;
  return n >= 2 && n <= kMostDots ? static_cast<int>(n) : 0;
}

int ZelCycleControl::valueIndex() const {
  const ZelParameter& p = *parameter();
  double step = p.stringValues.empty() ? p.granularity : 1.0;
  if (!(step > 0)) return 0;
  return static_cast<int>(std::lround((floatValue() - p.minValue) / step));
}

CGRect ZelCycleControl::pillRect() const {
  CGRect b = bounds();
  double height = std::min(std::round(kPillHeight * scale()), std::max(b.size.height - 2, 0.0));
  bool dots = valueCount() > 0 && b.size.height >= height + 2 * kDotRoom;
  double y = std::round((b.size.height - height) / 2 + (dots ? kDotRoom / 2 : 0));
  return CGRectMake(1, y, std::max(b.size.width - 2, 0.0), height);
}

CGRect ZelCycleControl::textFrame() const { return pillRect(); }
CGRect ZelCycleControl::focusFrame() const { return pillRect(); }

std::string ZelCycleControl::displayText() const {
  std::string text;
  parameter()->valueString(&text, nullptr, floatValue());
  return text;
}

void ZelCycleControl::styleTextLayer(const ZelControlLook& look) {
  std::string text = displayText();
  text_->setFont(ZelValueFont(text, fontSize()));
  text_->setForegroundColor(isDisabled() ? look.secondaryText : look.text);
  text_->setString(std::move(text));
}

// ---- Drawing.

void ZelCycleControl::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (!parameter()) return;
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  drawBackground(ctx, look);
}

void ZelCycleControl::drawBackground(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  CGRect pill = pillRect();
  if (CGRectIsEmpty(pill)) return;
  double radius = pill.size.height / 2;
  ctx.setFillColor(look.track.withAlpha(look.track.alpha * 0.5));
  ctx.fillPath(ZelRoundedRectPath(pill, radius));
  ctx.setStrokeColor(look.track);
  ctx.setLineWidth(1);
  ctx.strokePath(ZelRoundedRectPath(CGRectInset(pill, 0.5, 0.5), radius - 0.5));
  drawDots(ctx, look, pill);
}

void ZelCycleControl::drawDots(ZelGraphicsContext& ctx, const ZelControlLook& look, CGRect pill) {
  int count = valueCount();
  if (count == 0 || pill.origin.y < kDotRoom) return;
  int current = valueIndex();
  double width = (count - 1) * kDotSpacing;
  double x0 = std::round(CGRectGetMidX(bounds()) - width / 2);
  double y = pill.origin.y - kDotRoom / 2 - 1;
  for (int i = 0; i < count; ++i) {
    ctx.setFillColor(i == current ? look.accent : look.track);
    ctx.fillEllipseInRect(CGRectMake(x0 + i * kDotSpacing - kDotDiameter / 2, y - kDotDiameter / 2, kDotDiameter,
                                     kDotDiameter));
  }
}

ZEL_NAMESPACE_END
