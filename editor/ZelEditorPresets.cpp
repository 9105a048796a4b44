// The editor's presets: loading, selecting by name, the dirty check.
#include "editor/ZelEditorPresets.h"

#include <optional>

#include "editor/ZelGenericUI.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kDirtyCheckDelay = 0.5;

// The preset index a preset control's value stands for; none below 0.
std::optional<unsigned> presetIndexForValue(float value) {
  if (!(value >= 0) || value >= 4294967295.0f) return std::nullopt;
  return static_cast<unsigned>(value);
}

}  // namespace

void ZelEditorPresets::presetUpdated(ZelControl& sender) {
  auto* presetControl = dynamic_cast<ZelParameterControl*>(&sender);
  const ZelPresets* presets = ui_.config() ? ui_.config()->presets() : nullptr;
  if (!presetControl || !presets) return;
  const float presetValue = presetControl->floatValue();
  const std::optional<unsigned> index = presetIndexForValue(presetValue);
  const ZelPlist* set = index ? presets->presetValueSetForValue(*index) : nullptr;
  for (ZelParameterControl* control : ui_.parameterControls()) {
    const ZelParameter* p = control->parameter();
    if (!p || p->presetWildcard) continue;
    const ZelPlist& entry = set ? (*set)[p->codesafeName] : ZelPlist::null();
    ui_.values().notifyParameter(*p, entry.isNumber() ? entry.floatValue() : p->initialValue);
  }
  if (ZelPresetsDrawer* drawer = ui_.drawers().presetDrawer()) drawer->presetSelected(presetValue);
  const std::string* name = index ? presets->presetNameForValue(*index) : nullptr;
  if (ui_.delegate() && name) ui_.delegate()->interfaceDidUpdateCurrentPresetToValueNamed(ui_, *name);
}

void ZelEditorPresets::checkPresetDirtyState() {
  const ZelPresets* presets = ui_.config() ? ui_.config()->presets() : nullptr;
  ZelPresetBar* presetBar = ui_.presetBar();
  ZelParameterControl* presetControl = presetBar ? presetBar->presetControl() : nullptr;
  if (!presets || !presetControl) return;
  ZelPresetValueMap current;
  for (ZelParameterControl* control : ui_.parameterControls()) {
    const ZelParameter* p = control->parameter();
    if (p && !p->presetWildcard) current[p->codesafeName] = control->floatValue();
  }
  const std::optional<unsigned> index = presetIndexForValue(presetControl->floatValue());
  const ZelPlist* set = index ? presets->presetValueSetForValue(*index) : nullptr;
  presetBar->setDirty(!ZelPresetValuesMatch(set, current));
}

void ZelEditorPresets::scheduleDirtyCheck() {
  const ZelCallKey key{&ui_, "checkPresetDirtyState"};
  ui_.runLoop().cancel(key);
  ui_.runLoop().schedule(kDirtyCheckDelay, [this] { checkPresetDirtyState(); }, key);
}

void ZelEditorPresets::lastSavedPresetWasNamed(std::string_view name) {
  const ZelPresets* presets = ui_.config() ? ui_.config()->presets() : nullptr;
  ZelParameterControl* presetControl = ui_.presetBar() ? ui_.presetBar()->presetControl() : nullptr;
  if (!presets || !presetControl) return;
  // Key 0 is both "no match" and the first preset: it never selects.
  const std::int64_t key = presets->presetKeyForPresetName(name);
  if (key != 0) presetControl->setFloatValue(static_cast<float>(key));
}

void ZelEditorPresets::requestPresetNamed(std::string_view name) {
  lastSavedPresetWasNamed(name);
  if (ui_.presetBar() && ui_.presetBar()->presetControl()) presetUpdated(*ui_.presetBar()->presetControl());
}

void ZelEditorPresets::presetSaveTapped() { ui_.keyboard().keyboardShortcutHandleCopy(); }

void ZelEditorPresets::morePresetsTapped() { ui_.drawers().toggleDrawer(ui_.drawers().presetDrawer(), false); }

ZEL_NAMESPACE_END
