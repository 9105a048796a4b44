// The preset bar along the bottom of the editor (the width left of the
// power box, 30 points high): the preset control (a parameter control of
// the preset parameter, whose primary control is the ZelPresetControl: the
// preset's name with arrows), the undo and redo buttons, "save" (copies the
// settings as text) and "more" (the presets drawer). `dirty` marks the name
// when the values differ from the chosen preset.
//
// Without presets the bar is empty and inert: no control, no buttons (every
// accessor below returns nullptr), only its backdrop.
//
// The bar only builds and places these; the editor wires the control
// (target/action presetUpdated, delegate) and the buttons (undo/redo to the
// keyboard handler, save -> presetSaveTapped, more -> morePresetsTapped).
//
// Ownership: the control and buttons are subviews (owned by the view
// tree); the presets record is not owned. Threading: main thread only.
#pragma once

#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"

ZEL_NAMESPACE_BEGIN

class ZelParameterControl;
class ZelPresets;
class ZelSymbolButton;

class ZelPresetBar : public ZelView {
 public:
  // `presets` may be null (an empty bar).
  ZelPresetBar(CGRect frame, const ZelPresets* presets);
  ~ZelPresetBar() override;

  const ZelPresets* presets() const { return presets_; }

  // ---- Parts (nullptr without presets).
  ZelParameterControl* presetControl() const { return presetControl_; }
  ZelSymbolButton* undo() const { return undo_; }
  ZelSymbolButton* redo() const { return redo_; }
  ZelSymbolButton* save() const { return save_; }
  ZelSymbolButton* more() const { return more_; }

  // Whether the current values differ from the chosen preset; shown on the
  // preset control (the name in italics with a dot).
  bool dirty() const { return dirty_; }
  void setDirty(bool dirty);

  void themeUpdated();
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 private:
  void addParts();

  const ZelPresets* presets_ = nullptr;
  ZelParameterControl* presetControl_ = nullptr;
  ZelSymbolButton* undo_ = nullptr;
  ZelSymbolButton* redo_ = nullptr;
  ZelSymbolButton* save_ = nullptr;
  ZelSymbolButton* more_ = nullptr;
  bool dirty_ = false;
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
