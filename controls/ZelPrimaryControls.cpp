#include "controls/ZelPrimaryControls.h"

#include "controls/ZelBooleanControl.h"
#include "controls/ZelCycleControl.h"
#include "controls/ZelNoteSlider.h"
#include "controls/ZelNumberControl.h"
#include "controls/ZelPresetControl.h"
#include "controls/ZelToggleControl.h"
#include "controls/ZelVerticalSlider.h"

ZEL_NAMESPACE_BEGIN

std::unique_ptr<ZelFloatControl> ZelMakePrimaryControl(CGRect frame, const ZelParameter* parameter) {
  if (parameter->codesafeName == "MasterOnOff") return std::make_unique<ZelGlowingBooleanControl>(frame, parameter);
  switch (parameter->controlType) {
    case ZelControlType::Boolean: return std::make_unique<ZelBooleanControl>(frame, parameter);
    case ZelControlType::Cycle: return std::make_unique<ZelCycleControl>(frame, parameter);
    case ZelControlType::Number: return std::make_unique<ZelNumberControl>(frame, parameter);
    case ZelControlType::Toggle: return std::make_unique<ZelToggleControl>(frame, parameter);
    case ZelControlType::NoteSlider: return std::make_unique<ZelNoteSlider>(frame, parameter);
    case ZelControlType::Preset: return std::make_unique<ZelPresetControl>(frame, parameter);
    case ZelControlType::Slider: break;
  }
  return std::make_unique<ZelVerticalSlider>(frame, parameter);
}

ZelStyledString ZelFormattedReadoutStringForValue(std::string_view value, std::string_view suffix, double fontSize) {
  ZelStyledString styled;
  styled.text.reserve(value.size() + suffix.size());
  styled.text.append(value).append(suffix);
  styled.font = ZelFont{ZelFontFace::Medium, fontSize};
  return styled;
}

ZEL_NAMESPACE_END
