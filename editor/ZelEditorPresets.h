// The editor's presets: loading the preset that the preset control shows,
// selecting one by name, the dirty check (the preset bar is marked dirty when
// the controls' values differ from the selected preset; the interaction rules
// schedule it 0.5 s after the last change), and the preset bar's buttons.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference. Reads the description's presets; owns nothing. The delayed
// dirty check is keyed on the editor, which cancels it.
// Threading: main thread only.
#pragma once

#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelControl;
class ZelGenericUI;

class ZelEditorPresets {
 public:
  explicit ZelEditorPresets(ZelGenericUI& ui) : ui_(ui) {}
  ZelEditorPresets(const ZelEditorPresets&) = delete;
  ZelEditorPresets& operator=(const ZelEditorPresets&) = delete;

  // Loads the preset the sender (the preset control) shows: every control
  // that is not a wildcard gets the preset's value, else its initial value.
  void presetUpdated(ZelControl& sender);
  // Selects and loads the preset of that name.
  void requestPresetNamed(std::string_view name);
  // Selects the preset of that name on the preset bar without loading it
  // (the first preset can't be selected this way: its key is 0).
  void lastSavedPresetWasNamed(std::string_view name);
  void checkPresetDirtyState();
  // Cancels a pending dirty check and schedules one 0.5 s later.
  void scheduleDirtyCheck();
  void presetSaveTapped();
  void morePresetsTapped();

 private:
  ZelGenericUI& ui_;
};

ZEL_NAMESPACE_END
