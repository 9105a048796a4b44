// The editor's values: the flow between controls, memo and host, the undo
// snapshots, presets and dirty marking, and keyboard focus.
#include <cmath>

#include "editor/ZelGenericUI.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/foundation/ZelSpeedLim.h"
#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kSketchLimit = 0.01666;
constexpr double kGearFlashLimit = 1.0;
constexpr double kUndoSnapshotDelay = 0.5;

// The preset index a preset control's value stands for; none below 0.
std::optional<unsigned> presetIndexForValue(float value) {
  if (!(value >= 0) || value >= 4294967295.0f) return std::nullopt;
  return static_cast<unsigned>(value);
}

}  // namespace

// ---- Control to host.

void ZelGenericUI::handleParameterControlUpdated(ZelControl& sender) {
  auto* control = dynamic_cast<ZelParameterControl*>(&sender);
  if (!control || !control->parameter()) return;
  notifyParameter(*control->parameter(), control->floatValue());
}

void ZelGenericUI::notifyParameter(const ZelParameter& parameter, float value) {
  if (delegate_) delegate_->interfaceUpdatedParameterKeyed(*this, parameter.pid, value);
  updateMemoizedValue(value, parameter);
}

void ZelGenericUI::updateMemoizedValue(float value, const ZelParameter& parameter) {
  if (parameter.pid < 0 || parameter.pid >= static_cast<std::int64_t>(memoizedPValues_.size())) return;
  const auto pid = static_cast<std::size_t>(parameter.pid);
  float& memo = memoizedPValues_[pid];
  if (!std::isnan(value) && !std::isnan(memo) && value == memo) return;
  memo = value;
  memoizedPValuesChanged_[pid] = 1;
  if (sketch_) {
    sketchSpeedLim_->fireWithLimit(kSketchLimit, this, "sendMemoizedPValuesToSketch",
                                   [this] { sendMemoizedPValuesToSketch(); });
  }
  potentiallySaveToUndoRedoStack();
  flashGearIfHidden(parameter);
}

// A hidden advanced parameter that changes makes the gear blink, at most
// once a second.
void ZelGenericUI::flashGearIfHidden(const ZelParameter& parameter) {
  if (!parameter.clump || parameter.clump->clumpType != ZelClumpType::Advanced) return;
  if (isAdvancedDrawerVisible() || isPresetsDrawerVisible() || !powerBox_) return;
  ZelSymbolButton* gear = powerBox_->gear();
  advFlashLim_->fireWithLimit(kGearFlashLimit, gear, "flash", [gear] { gear->flash(); });
}

void ZelGenericUI::sendMemoizedPValuesToSketch() {
  if (!sketch_) return;
  sketch_->updateWithParameterValues(memoizedPValues_, memoizedPValuesChanged_, true);
  std::fill(memoizedPValuesChanged_.begin(), memoizedPValuesChanged_.end(), std::uint8_t{0});
}

bool ZelGenericUI::isProcessing() const {
  if (memoizedPValues_.empty()) return false;
  const float power = memoizedPValues_[0];
  return std::isfinite(power) ? static_cast<long long>(power) != 0 : !std::isnan(power);
}

void ZelGenericUI::resetInitialValues() {
  for (ZelParameterControl* control : parameterControls_)
    if (control->parameter()) notifyParameter(*control->parameter(), control->parameter()->initialValue);
}

// ---- Host to editor.

void ZelGenericUI::updateParameterKeyed(std::int64_t key, float value) {
  for (ZelParameterControl* control : parameterControls_) {
    if (!control->parameter() || control->parameter()->pid != key) continue;
    control->setFloatValue(value);
    updateMemoizedValue(value, *control->parameter());
    handleSideEffectsOfUpdatedControl(*control, value);
    return;
  }
}

void ZelGenericUI::updateParameterNamed(std::string_view name, float value) {
  if (!config_) return;
  std::vector<std::int64_t> keys;
  config_->enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    if (p.codesafeName == name) keys.push_back(p.pid);
  });
  for (std::int64_t key : keys) updateParameterKeyed(key, value);
}

// ---- Undo.

void ZelGenericUI::potentiallySaveToUndoRedoStack() {
  const ZelCallKey key{this, "saveParametersToUndoRedoStack"};
  runLoop_.cancel(key);
  if (keyboard_->undoRedoStack().locks() != 0) return;
  runLoop_.schedule(kUndoSnapshotDelay, [this] { saveParametersToUndoRedoStack(); }, key);
}

void ZelGenericUI::saveParametersToUndoRedoStack() {
  ZelUndoRedoStack::Snapshot snapshot;
  if (config_) {
    config_->enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
      if (p.pid >= 0 && p.pid < static_cast<std::int64_t>(memoizedPValues_.size()))
        snapshot[p.pid] = memoizedPValues_[static_cast<std::size_t>(p.pid)];
    });
  }
  keyboard_->undoRedoStack().pushNew(std::move(snapshot));
  syncUndoRedoButtonsToStackState();
}

void ZelGenericUI::syncUndoRedoButtonsToStackState() {
  if (!presetBar_) return;
  const ZelUndoRedoStack& stack = keyboard_->undoRedoStack();
  if (presetBar_->undo()) presetBar_->undo()->setEnabled(stack.canUndo());
  if (presetBar_->redo()) presetBar_->redo()->setEnabled(stack.canRedo());
}

// ---- Presets.

void ZelGenericUI::presetUpdated(ZelControl& sender) {
  auto* presetControl = dynamic_cast<ZelParameterControl*>(&sender);
  const ZelPresets* presets = config_ ? config_->presets() : nullptr;
  if (!presetControl || !presets) return;
  const float presetValue = presetControl->floatValue();
  const std::optional<unsigned> index = presetIndexForValue(presetValue);
  const ZelPlist* set = index ? presets->presetValueSetForValue(*index) : nullptr;
  for (ZelParameterControl* control : parameterControls_) {
    const ZelParameter* p = control->parameter();
    if (!p || p->presetWildcard) continue;
    const ZelPlist& entry = set ? (*set)[p->codesafeName] : ZelPlist::null();
    notifyParameter(*p, entry.isNumber() ? entry.floatValue() : p->initialValue);
  }
  if (presetDrawer_) presetDrawer_->presetSelected(presetValue);
  const std::string* name = index ? presets->presetNameForValue(*index) : nullptr;
  if (delegate_ && name) delegate_->interfaceDidUpdateCurrentPresetToValueNamed(*this, *name);
}

void ZelGenericUI::checkPresetDirtyState() {
  const ZelPresets* presets = config_ ? config_->presets() : nullptr;
  ZelParameterControl* presetControl = presetBar_ ? presetBar_->presetControl() : nullptr;
  if (!presets || !presetControl) return;
  ZelPresetValueMap current;
  for (ZelParameterControl* control : parameterControls_) {
    const ZelParameter* p = control->parameter();
    if (p && !p->presetWildcard) current[p->codesafeName] = control->floatValue();
  }
  const std::optional<unsigned> index = presetIndexForValue(presetControl->floatValue());
  const ZelPlist* set = index ? presets->presetValueSetForValue(*index) : nullptr;
  presetBar_->setDirty(!ZelPresetValuesMatch(set, current));
}

void ZelGenericUI::lastSavedPresetWasNamed(std::string_view name) {
  const ZelPresets* presets = config_ ? config_->presets() : nullptr;
  ZelParameterControl* presetControl = presetBar_ ? presetBar_->presetControl() : nullptr;
  if (!presets || !presetControl) return;
  // Key 0 is both "no match" and the first preset: it never selects.
  const std::int64_t key = presets->presetKeyForPresetName(name);
  if (key != 0) presetControl->setFloatValue(static_cast<float>(key));
}

void ZelGenericUI::requestPresetNamed(std::string_view name) {
  lastSavedPresetWasNamed(name);
  if (presetBar_ && presetBar_->presetControl()) presetUpdated(*presetBar_->presetControl());
}

void ZelGenericUI::presetSaveTapped() { keyboard_->keyboardShortcutHandleCopy(); }

void ZelGenericUI::morePresetsTapped() { toggleDrawer(presetDrawer_, false); }

// ---- Focus.

ZelParameterControl* ZelGenericUI::focusedControl() {
  if (!focusedControl_) return nullptr;
  if (isInClumpOfType(*focusedControl_, ZelClumpType::Advanced) == isAdvancedDrawerVisible()) return focusedControl_;
  bringParameterControlIntoFocus(nullptr);
  return nullptr;
}

void ZelGenericUI::bringParameterControlIntoFocus(ZelParameterControl* control) {
  if (control && isInClumpOfType(*control, ZelClumpType::PowerBox)) return;
  focusedControl_ = control;
  for (ZelParameterControl* each : parameterControls_) {
    // The power parameter is never drawn focused.
    const bool focused = each == control && each->parameter() && each->parameter()->pid != 0;
    each->setFocused(focused);
    if (focused)
      hideVisibleDrawersPresenting(isInClumpOfType(*each, ZelClumpType::Advanced) ? advDrawer_ : nullptr);
  }
  if (presetBar_ && presetBar_->presetControl())
    presetBar_->presetControl()->setFocused(presetBar_->presetControl() == control);
}

void ZelGenericUI::setHasFocus(bool hasFocus) {
  hasFocus_ = hasFocus;
  if (powerBox_) powerBox_->logoStampLayer()->setOpacity(hasFocus ? 1.0 : 0.5);
  if (!hasFocus) {
    wasFocusedControl_ = focusedControl();
    bringParameterControlIntoFocus(nullptr);
    return;
  }
  ZelParameterControl* was = wasFocusedControl_;
  if (was && (!isInClumpOfType(*was, ZelClumpType::Advanced) || isAdvancedDrawerVisible()))
    bringParameterControlIntoFocus(was);
}

// ---- The controls' delegate.

void ZelGenericUI::parameterControlDidChangeInteractionState(ZelParameterControl& control, ZelInteractionState state) {
  keyboard_->clearNumberBuffer();
  if (!delegate_ || !delegate_->respondsToInteractionGestures() || !control.parameter()) return;
  const std::int64_t pid = control.parameter()->pid;
  if (state == ZelInteractionEnded) {
    delegate_->interfaceEndedInteractionWithParameterKeyed(*this, pid);
  } else if (state == ZelInteractionBegan) {
    delegate_->interfaceBeganInteractionWithParameterKeyed(*this, pid);
    bringParameterControlIntoFocus(&control);
  }
}

void ZelGenericUI::parameterControlHasRequestedDocumentation(ZelParameterControl& control) {
  if (control.parameter()) openManualWithExtension("#" + control.parameter()->codesafeName);
}

void ZelGenericUI::parameterControlDidTapMeaninglessly(ZelParameterControl& control) {
  if (presetBar_ && &control == presetBar_->presetControl()) togglePresetsDrawer();
}

ZEL_NAMESPACE_END
