#include "controls/ZelFloatControl.h"

#include <algorithm>
#include <cmath>

#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelTransaction.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

namespace {
// The one pending sweep step of a control.
constexpr std::string_view kSweepMessage = "slowlyIncrement";
}  // namespace

void ZelTransientBufferDisplayClear(ZelView* object) {
  auto* display = dynamic_cast<ZelTransientBufferDisplay*>(object);
  if (display && display->displayingTransientBufferValue()) display->discardTransientBufferValue();
}

ZelFloatControl::ZelFloatControl(CGRect frame, const ZelParameter* parameter)
    : ZelControl(frame), parameter_(parameter) {
  setWantsLayer(true);
  layer()->setMasksToBounds(false);
  ZelTransaction transaction;
  transaction.setDisableActions(true);
  ownedHighlight_ = std::make_unique<ZelFocusBorder>();
  highlight_ = ownedHighlight_.get();
  if (parameter_) highlight_->setStrokeNSColor(parameter_->color);
}

ZelFloatControl::~ZelFloatControl() {
  // A sweep still running would call into a dead control.
  if (sweepLoop_) sweepLoop_->cancelAllForTarget(this);
}

std::unique_ptr<ZelFocusBorder> ZelFloatControl::takeHighlight() { return std::move(ownedHighlight_); }

void ZelFloatControl::animateHighlightToFrame(CGRect frame, CGPoint position, double rounding, bool inset) {
  (void)position;
  if (inset) frame = CGRectIntegral(CGRectInset(frame, -4, -3));
  double radius = rounding >= 1 ? rounding : std::max(rounding, 0.5) * CGRectGetHeight(frame);
  highlight_->updateWithFrame(frame, radius);
}

// ---- Mouse and wheel.

ZelGranularityType ZelFloatControl::granularityFromEvent(const ZelEvent& event) {
  if (event.has(ZelEventModifierCommand)) return ZelGranularityFine;
  if (event.has(ZelEventModifierShift)) return ZelGranularityCoarse;
  return ZelGranularityNormal;
}

void ZelFloatControl::advanceGranularity(const ZelEvent& event) {
  granWas_ = granIs_;
  granIs_ = granularityFromEvent(event);
}

void ZelFloatControl::tellDelegate(ZelInteractionState state) {
  if (delegate_) delegate_->floatControlInteractionDidChangeTo(*this, state);
}

void ZelFloatControl::handleMouseDownEvent(const ZelEvent& event) {
  granIs_ = granWas_ = 0;
  if (isDisabled()) return;
  if (event.has(ZelEventModifierOption)) {
    resetToInitialValue();
  } else {
    handleMouseDownWithEvent(event, ZelGranularities{});
  }
  tellDelegate(ZelInteractionBegan);
}

void ZelFloatControl::handleMouseDraggedEvent(const ZelEvent& event) {
  if (isDisabled() || event.has(ZelEventModifierOption)) return;
  advanceGranularity(event);
  handleMouseDraggedWithEvent(event, currentGranularities());
}

void ZelFloatControl::handleMouseUpEvent(const ZelEvent& event) {
  // An Option-click whose key is still held at release ends nothing: kept.
  if (isDisabled() || event.has(ZelEventModifierOption)) return;
  handleMouseUpWithEvent(event, ZelGranularities{});
  tellDelegate(ZelInteractionEnded);
}

bool ZelFloatControl::scrollWheel(const ZelEvent& event) {
  if (isDisabled()) return true;
  advanceGranularity(event);
  // Every wheel event here is line-based (no precise deltas, no phases): a
  // gesture of its own, ten points per line, at least one line.
  auto lines = static_cast<float>(event.scrollingDeltaY);
  if (std::fabs(lines) < 1.0f) lines = lines < 0 ? -1.0f : 1.0f;
  scrollStartValue_ = floatValue();
  scrollDelta_ = static_cast<double>(lines) * -10.0;
  handleScrollWithEvent(event, scrollStartValue_, scrollDelta_, currentGranularities());
  return true;
}

void ZelFloatControl::handleMouseDownWithEvent(const ZelEvent&, ZelGranularities) {}
void ZelFloatControl::handleMouseDraggedWithEvent(const ZelEvent&, ZelGranularities) {}
void ZelFloatControl::handleMouseUpWithEvent(const ZelEvent&, ZelGranularities) {}
void ZelFloatControl::handleScrollWithEvent(const ZelEvent&, float, double, ZelGranularities) {}

// ---- User changes.

void ZelFloatControl::resetToInitialValue() {
  setFloatValue(parameter_->initialValue);
  reportInterfaceInitiatedValueChange();
  ZelTransientBufferDisplayClear(this);
}

void ZelFloatControl::reportInterfaceInitiatedValueChange() {
  userControlling_ = true;
  sendAction();
}

float ZelFloatControl::incrementedValueForArrow(char16_t arrow, ZelGranularityType granularity) const {
  float value = floatValue();
  float step = parameter_->granularityValueForType(granularity, value);
  // Above 1 kHz at least 10 Hz, linear or not; the 10 kHz rule of the value
  // operations is theirs alone.
  if (parameter_->unit == ZelUnit::Hertz && value >= 1000.0f) step = std::max(step, 10.0f);
  bool down = arrow == ZelDownArrowFunctionKey || arrow == ZelLeftArrowFunctionKey;
  return down ? -step : step;
}

bool ZelFloatControl::incrementWithArrow(char16_t arrow, ZelGranularityType granularity) {
  float value = floatValue();
  float rounded = parameter_->roundFloatValue(value, granularity);
  float step = incrementedValueForArrow(arrow, granularity);
  // Off the grid, the first step lands on the nearest grid point that way.
  float target = rounded + step;
  if (value > rounded && step <= 0) target = rounded;
  if (value < rounded && step >= 0) target = rounded;
  const auto& options = parameter_->coarseGranularityOptions;
  if (granularity == ZelGranularityCoarse && !options.empty()) {
    std::size_t k = 0;
    parameter_->closestCoarseGranularityOptionToValue(value, &k);
    if (step > 0 && k + 1 < options.size()) target = options[k + 1];
    if (step <= 0 && k >= 1) target = options[k - 1];
  }
  setFloatValue(parameter_->normalizeFloatValue(target, granularity));
  reportInterfaceInitiatedValueChange();
  return true;
}

// ---- Context menu.

std::unique_ptr<ZelMenu> ZelFloatControl::menuForEvent(const ZelEvent& event) {
  (void)event;
  auto menu = std::make_unique<ZelMenu>(parameter_->name);
  bool changed = floatValue() != parameter_->initialValue;
  menu->addItem("Reset Default Value", [this] { contextMenuResetInitialValue(); }, changed);
  menu->addItem("Read about " + parameter_->name, [this] { contextMenuRequestedDocumentation(); });
  return menu;
}

void ZelFloatControl::contextMenuRequestedDocumentation() {
  if (delegate_) delegate_->floatControlHasRequestedDocumentation(*this);
}

// ---- Sweep.

void ZelFloatControl::incrementUp() {
  if (floatValue() < parameter_->maxValue) slowlyIncrementWithSel(&ZelFloatControl::incrementUp, 1.0f);
}

void ZelFloatControl::incrementDown() {
  if (floatValue() > parameter_->minValue) slowlyIncrementWithSel(&ZelFloatControl::incrementDown, -1.0f);
}

ZelRunLoop* ZelFloatControl::sweepRunLoop() {
  if (window()) return &window()->runLoop();
  return ZelRunLoop::current();
}

void ZelFloatControl::slowlyIncrementWithSel(SweepSelector selector, float multiplier) {
  float value = floatValue();
  // Neither snapped nor clamped: the last step may pass the bound.
  setFloatValue(value + multiplier * parameter_->granularityValueForType(ZelGranularityCoarse, value));
  reportInterfaceInitiatedValueChange();
  ZelRunLoop* loop = sweepRunLoop();
  if (!loop) return;
  if (sweepLoop_ && sweepLoop_ != loop) sweepLoop_->cancelAllForTarget(this);
  sweepLoop_ = loop;
  loop->schedule(kSweepInterval, [this, selector] { (this->*selector)(); }, ZelCallKey{this, kSweepMessage});
}

ZEL_NAMESPACE_END
