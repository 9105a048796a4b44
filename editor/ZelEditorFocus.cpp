// The editor's keyboard focus.
#include "editor/ZelEditorFocus.h"

#include "editor/ZelGenericUI.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"

ZEL_NAMESPACE_BEGIN

namespace {

bool isInClumpOfType(const ZelParameterControl& control, ZelClumpType type) {
  const ZelParameter* p = control.parameter();
  const ZelClumpType actual = p && p->clump ? p->clump->clumpType : ZelClumpType::Normal;
  return actual == type;
}

}  // namespace

ZelParameterControl* ZelEditorFocus::focusedControl() {
  if (!focusedControl_) return nullptr;
  if (isInClumpOfType(*focusedControl_, ZelClumpType::Advanced) == ui_.drawers().isAdvancedDrawerVisible())
    return focusedControl_;
  bringParameterControlIntoFocus(nullptr);
  return nullptr;
}

void ZelEditorFocus::bringParameterControlIntoFocus(ZelParameterControl* control) {
  if (control && isInClumpOfType(*control, ZelClumpType::PowerBox)) return;
  focusedControl_ = control;
  for (ZelParameterControl* each : ui_.parameterControls()) {
    // The power parameter is never drawn focused.
    const bool focused = each == control && each->parameter() && each->parameter()->pid != 0;
    each->setFocused(focused);
    if (focused)
      ui_.drawers().hideVisibleDrawersPresenting(
          isInClumpOfType(*each, ZelClumpType::Advanced) ? ui_.drawers().advDrawer() : nullptr);
  }
  ZelPresetBar* presetBar = ui_.presetBar();
  if (presetBar && presetBar->presetControl()) presetBar->presetControl()->setFocused(presetBar->presetControl() == control);
}

void ZelEditorFocus::setHasFocus(bool hasFocus) {
  hasFocus_ = hasFocus;
  if (ui_.powerBox()) ui_.powerBox()->logoStampLayer()->setOpacity(hasFocus ? 1.0 : 0.5);
  if (!hasFocus) {
    wasFocusedControl_ = focusedControl();
    bringParameterControlIntoFocus(nullptr);
    return;
  }
  ZelParameterControl* was = wasFocusedControl_;
  if (was && (!isInClumpOfType(*was, ZelClumpType::Advanced) || ui_.drawers().isAdvancedDrawerVisible()))
    bringParameterControlIntoFocus(was);
}

ZEL_NAMESPACE_END
