#include "app/drive/DriveDump.h"

#include <cstdio>

#include "editor/ZelGenericUI.h"
#include "editor/ZelPresetBar.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"

ZEL_NAMESPACE_BEGIN

namespace {

const char* flag(bool on) { return on ? "1" : "0"; }

// "word" alone when `text` is empty, "word text" otherwise.
std::string wordAndText(const char* word, const std::string& text) {
  return text.empty() ? std::string(word) : std::string(word) + " " + text;
}

// The view's bounds in the editor's coordinates, by the views' frames alone:
// where the layout put it, whatever a drawer transition does to the layers.
CGRect frameInEditor(const ZelView& view, const ZelGenericUI& editor) {
  CGRect r = view.bounds();
  for (const ZelView* v = &view; v && v != &editor; v = v->superview()) {
    r.origin.x += v->frame().origin.x - v->bounds().origin.x;
    r.origin.y += v->frame().origin.y - v->bounds().origin.y;
  }
  return r;
}

std::string controlLine(ZelGenericUI& editor, ZelParameterControl& control) {
  const ZelParameter* p = control.parameter();
  const ZelFloatControl* primary = control.primaryControl();
  const CGRect frame = primary ? frameInEditor(*primary, editor) : CGRectZero;
  std::string line = "control " + std::to_string(p ? p->pid : -1) + " " + (p ? p->codesafeName : std::string());
  line += " value=" + ZelDriveNumber(control.floatValue());
  line += std::string(" focused=") + flag(control.focused());
  line += std::string(" dimmed=") + flag(control.isDimmed());
  line += std::string(" hidden=") + flag(control.isHidden());
  line += std::string(" disabled=") + flag(primary && primary->isDisabled());
  line += " frame=" + ZelDriveNumber(frame.origin.x) + "," + ZelDriveNumber(frame.origin.y) + "," +
          ZelDriveNumber(frame.size.width) + "," + ZelDriveNumber(frame.size.height);
  return line + "\n";
}

std::string presetLines(const ZelGenericUI& editor) {
  const ZelPresetBar* bar = editor.presetBar();
  const ZelParameterControl* preset = bar ? bar->presetControl() : nullptr;
  const ZelPresets* presets = editor.config() ? editor.config()->presets() : nullptr;
  const float value = preset ? preset->floatValue() : 0.0f;
  const std::string* name = presets && value >= 0 ? presets->presetNameForValue(static_cast<unsigned>(value)) : nullptr;
  std::string lines = "preset value=" + ZelDriveNumber(value) + " name=" + (name ? *name : std::string()) +
                      " dirty=" + flag(bar && bar->dirty()) + "\n";
  lines += std::string("undo=") + flag(bar && bar->undo() && bar->undo()->isEnabled()) +
           " redo=" + flag(bar && bar->redo() && bar->redo()->isEnabled()) + "\n";
  return lines;
}

}  // namespace

std::string ZelDriveNumber(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.9g", value);
  return text;
}

std::string ZelDriveDump(ZelGenericUI& editor) {
  std::string out;
  for (ZelParameterControl* control : editor.parameterControls()) out += controlLine(editor, *control);
  out += presetLines(editor);
  out += std::string("drawers advanced=") + flag(editor.drawers().isAdvancedDrawerVisible()) +
         " presets=" + flag(editor.drawers().isPresetsDrawerVisible()) + "\n";
  out += std::string("theme ") + (ZelUITheme::theme() == ZelUITheme::dark() ? "dark" : "light") + "\n";
  out += wordAndText("buffer", editor.keyboard().numberBuffer()) + "\n";
  out += std::string("sketch visible=") + flag(editor.sketch() && editor.sketch()->isSketchVisible()) + "\n";
  return out;
}

ZEL_NAMESPACE_END
