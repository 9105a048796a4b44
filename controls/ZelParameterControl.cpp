#include "controls/ZelParameterControl.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "controls/ZelNoteSlider.h"
#include "controls/ZelPrimaryControls.h"
#include "layout/engine/ZelPluginLayout.h"
#include "theme/ZelBorderSpec.h"
#include "theme/ZelLabelImage.h"
#include "theme/ZelUITheme.h"
#include "toolkit/foundation/ZelNumberParser.h"

ZEL_NAMESPACE_BEGIN

namespace {
constexpr double kLabelImageOpacity = 0.8;
}  // namespace

ZelParameterControl::ZelParameterControl(CGRect frame, CGRect labelFrame, const ZelParameter* parameter)
    : ZelParameterControl(frame, labelFrame, parameter, nullptr) {}

ZelParameterControl::ZelParameterControl(CGRect frame, CGRect labelFrame, const ZelParameter* parameter,
                                         PrimaryFactory factory)
    : ZelControl(frame), parameter_(parameter) {
  splitFrames(frame, labelFrame);
  setWantsLayer(true);
  if (CGRectIsEmpty(rSlider_)) {
    if (!parameter_->computedLayout.isNull()) {
      if (auto layout = parameter_->layoutForFrame(bounds())) {
        rLabel_ = layout->frameLabeled("x");
        rSlider_ = layout->frameForIndex(0);
      }
    } else {
      calculateInteriorFrames();
    }
  }
  installPrimaryControl(factory);
  setFloatValue(parameter_->initialValue);
  // Labels may sit below the control: never clip.
  layer()->setMasksToBounds(false);
  labelImage_ = ZelImageFromBase64String(parameter_->label);
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
}

ZelParameterControl::~ZelParameterControl() {
  themeObservation_.reset();
  if (primaryControl_) {
    primaryControl_->setDelegate(nullptr);
    primaryControl_->setTarget(nullptr);
  }
}

void ZelParameterControl::splitFrames(CGRect frame, CGRect labelFrame) {
  if (CGRectIsEmpty(labelFrame)) return;
  CGRect both = CGRectUnion(frame, labelFrame);
  setFrame(both);
  rLabel_ = CGRectOffset(labelFrame, -both.origin.x, -both.origin.y);
  rSlider_ = CGRectOffset(frame, -both.origin.x, -both.origin.y);
}

void ZelParameterControl::installPrimaryControl(PrimaryFactory factory) {
  auto primary = factory ? factory(rSlider_, parameter_) : ZelMakePrimaryControl(rSlider_, parameter_);
  primary->setTargetAction(this, &ZelParameterControl::sliderUpdated);
  primary->setDelegate(this);
  primaryControl_ = addSubview(std::move(primary));
}

// ---- Frames.

void ZelParameterControl::calculateInteriorFrames() {
  CGRect b = bounds();
  CGRect inner = CGRectInset(b, 2, CGRectGetHeight(b) > 26 ? 2 : 0);
  ZelLabelDisplay display = parameter_->labelDisplay;
  if (display == ZelLabelDisplay::Hidden) {
    rLabel_ = CGRectZero;
    rSlider_ = inner;
  } else {
    CGRectEdge edge = parameter_->labelEdge();
    bool vertical = edge == CGRectMinYEdge || edge == CGRectMaxYEdge;
    auto d = static_cast<float>(vertical ? CGRectGetHeight(inner) : CGRectGetWidth(inner));
    bool belowOrAbove = display == ZelLabelDisplay::Below || display == ZelLabelDisplay::Above;
    float amount = belowOrAbove ? std::min(18.0f, d) : std::min(std::floor(0.6f * d), d);
    CGRectDivide(inner, &rLabel_, &rSlider_, amount, edge);
  }
  applyTypeAdjustments();
}

void ZelParameterControl::applyTypeAdjustments() {
  bool hidden = parameter_->labelDisplay == ZelLabelDisplay::Hidden;
  switch (parameter_->controlType) {
    case ZelControlType::Slider:
      if (parameter_->horizontal) {
        rSlider_.size.width -= 34;
        rSlider_.origin.x += 18;
        if (!hidden) {
          rSlider_.size.height += 4;
          rSlider_.origin.y -= 6;
          rLabel_.origin.y += 6;
        }
      } else {
        rSlider_ = CGRectInset(rSlider_, 0, 6);
        rLabel_.origin.y += 6;
      }
      break;
    case ZelControlType::Number:
      // The label slice is dropped: the label sits under the control.
      rLabel_ = CGRectOffset(rSlider_, 0, parameter_->horizontal ? -28 : -36);
      break;
    default:
      rLabel_ = CGRectOffset(rSlider_, 0, -28);
      break;
  }
}

CGRect ZelParameterControl::drawingBounds() const {
  if (CGRectIsEmpty(rLabel_)) return bounds();
  return CGRectUnion(bounds(), CGRectIntegral(rLabel_));
}

// ---- Values.

float ZelParameterControl::floatValue() const { return primaryControl_->floatValue(); }

void ZelParameterControl::setFloatValue(float value) {
  float shown = parameter_->normalizeFloatValue(value, ZelGranularityFine);
  if (immutableFloatValue_) shown = *immutableFloatValue_;
  // Once the user has moved the control, the host's echo of the same value
  // is not re-applied.
  if (primaryControl_->floatValue() == shown && primaryControl_->userControlling()) return;
  primaryControl_->setFloatValue(shown);
}

void ZelParameterControl::sliderUpdated(ZelControl&) { reportValueChange(); }

void ZelParameterControl::reportValueChange() { sendAction(); }

void ZelParameterControl::setStringValue(std::string_view text) { setStringValue(text, ZelNumberParser::user()); }

void ZelParameterControl::setStringValue(std::string_view text, const ZelNumberParser& parser) {
  // A pitch may be typed as a note name ("A#3") as well as a MIDI number.
  if (parameter_->unit == ZelUnit::Note) {
    if (std::optional<float> note = ZelNoteFromName(text)) {
      setFloatValue(*note);
      reportValueChange();
      ZelTransientBufferDisplayClear(primaryControl_);
      return;
    }
  }
  std::string digits(text);
  float factor = 1;
  if (!digits.empty() && digits.back() == 'k') {
    std::erase(digits, 'k');
    factor = 1000;
  }
  float number = static_cast<float>(parser.parse(digits).value_or(0.0));
  setFloatValue(number * factor);
  reportValueChange();
  ZelTransientBufferDisplayClear(primaryControl_);
}

bool ZelParameterControl::toggleBooleanControl() {
  bool twoState = parameter_->unit == ZelUnit::Boolean ||
                  (parameter_->unit == ZelUnit::Indexed && parameter_->valueRange() == 1.0f);
  if (!twoState) return false;
  // Straight to the primary: past snapping and the immutable value.
  primaryControl_->setFloatValue(floatValue() == 0 ? 1.0f : 0.0f);
  reportValueChange();
  return true;
}

bool ZelParameterControl::incrementWithArrow(char16_t arrow, ZelGranularityType granularity) {
  if (parameter_->controlType != ZelControlType::Preset) {
    return primaryControl_->incrementWithArrow(arrow, granularity);
  }
  bool forward = arrow == ZelRightArrowFunctionKey || arrow == ZelUpArrowFunctionKey;
  primaryControl_->setFloatValue(parameter_->floatValueAfter(floatValue(), forward));
  reportValueChange();
  return true;
}

// ---- Focus and typed numbers.

void ZelParameterControl::setFocused(bool focused) {
  bool changed = focused != focused_;
  focused_ = focused;
  if (changed) primaryControl_->setHighlit(focused);
  if (!focused) ZelTransientBufferDisplayClear(primaryControl_);
}

bool ZelParameterControl::acceptsTransientStringBuffers() const {
  return dynamic_cast<ZelTransientBufferDisplay*>(primaryControl_) != nullptr;
}

void ZelParameterControl::setTransientStringValue(std::string_view text) {
  auto* display = dynamic_cast<ZelTransientBufferDisplay*>(primaryControl_);
  if (!display || !focused_) return;
  display->setDisplayingTransientBufferValue(true);
  display->displayTransientBufferValue(
      ZelFormattedReadoutStringForValue(text, "", display->transientStringPreferredFontSize()));
}

// ---- Dimming.

void ZelParameterControl::setDimmed(bool dimmed, double delay, std::uint32_t priority) {
  (void)delay;
  if (dimmed) {
    primaryControl_->setDimmed(true);
    animateAlphaValue(kDimmedAlpha);
    dimHolds_[priority] = true;
    return;
  }
  dimHolds_.erase(priority);
  if (isDimmed()) return;  // another priority still holds
  primaryControl_->setDimmed(false);
  animateAlphaValue(1.0);
}

// ---- Mouse: a click beside the primary control (on the label) acts on it.

bool ZelParameterControl::eventOutsidePrimaryControlBounds(const ZelEvent& event) const {
  CGPoint point = convertPointFromView(event.locationInWindow, nullptr);
  return !CGRectContainsPoint(rSlider_, point);
}

void ZelParameterControl::mouseDown(const ZelEvent& event) {
  handlingOutsideClick_ = eventOutsidePrimaryControlBounds(event);
  if (handlingOutsideClick_) primaryControl_->handleMouseDownEvent(event);
}

void ZelParameterControl::mouseDragged(const ZelEvent& event) {
  if (handlingOutsideClick_) primaryControl_->handleMouseDraggedEvent(event);
}

void ZelParameterControl::mouseUp(const ZelEvent& event) {
  if (handlingOutsideClick_) primaryControl_->handleMouseUpEvent(event);
  handlingOutsideClick_ = false;
}

// ---- Drawing.

void ZelParameterControl::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  (void)dirtyRect;
  const ZelUITheme* theme = ZelUITheme::theme();
  if (labelImage_) {
    auto image = theme->invertLabels() ? ZelInvertedLabelImage(labelImage_) : labelImage_;
    CGRect place = SituatedRectInsideRectForImage(*image, CGRectIntegral(rLabel_));
    ctx.drawImage(*image, place, kLabelImageOpacity, ZelImageFilter::Linear);
  }
  ctx.setFillColor(theme->interiorBorderColor());
  ZelBorderRectWithBorderSpec(ctx, parameter_->border, CGRectInset(bounds(), 1, 1));
}

void ZelParameterControl::themeUpdated() {
  setNeedsDisplay();
  primaryControl_->setFloatValue(primaryControl_->floatValue());
}

// ---- ZelFloatControlDelegate.

void ZelParameterControl::floatControlInteractionDidChangeTo(ZelFloatControl&, ZelInteractionState state) {
  if (delegate_) delegate_->parameterControlDidChangeInteractionState(*this, state);
}

void ZelParameterControl::floatControlHasRequestedDocumentation(ZelFloatControl&) {
  if (delegate_) delegate_->parameterControlHasRequestedDocumentation(*this);
}

void ZelParameterControl::floatControlDidTapMeaninglessly(ZelFloatControl&) {
  if (delegate_) delegate_->parameterControlDidTapMeaninglessly(*this);
}

ZEL_NAMESPACE_END
