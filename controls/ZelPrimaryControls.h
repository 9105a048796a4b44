// The choice of a parameter's primary control by its control type, and the
// readout formatter the typed-number display shares with the vertical
// slider. Implemented by the concrete controls (ZelPrimaryControls.cpp).
#pragma once

#include <memory>
#include <string_view>

#include "controls/ZelFloatControl.h"

ZEL_NAMESPACE_BEGIN

// The primary control for `parameter` (not owned; it must outlive the
// control): a "MasterOnOff" parameter always gets the glowing boolean
// control, whatever its type; otherwise by type: Slider -> vertical slider,
// Boolean -> boolean, Cycle -> cycle, Number -> number, Toggle -> toggle,
// NoteSlider -> note slider, Preset -> preset control. The caller owns it.
std::unique_ptr<ZelFloatControl> ZelMakePrimaryControl(CGRect frame, const ZelParameter* parameter);

// The vertical slider's class-level readout formatter
// (ZelVerticalSlider::formattedReadoutStringForValue, a static member of the
// slider, is this function): the readout text `value` followed by `suffix`,
// styled at `fontSize` points. Defined in ZelPrimaryControls.cpp beside the
// factory, so the parameter control formats typed numbers without knowing
// the slider's class.
ZelStyledString ZelFormattedReadoutStringForValue(std::string_view value, std::string_view suffix, double fontSize);

ZEL_NAMESPACE_END
