// The presets drawer over the clumps area: the categorized presets as a
// sectioned list (section titles, then their presets), flowing into as many
// columns as fit and scrolling with the wheel when it still overflows. The
// current preset is highlighted. Choosing a row sets the preset control's
// value to the row's presetID and sends the control's action, exactly as
// choosing it on the preset bar would; an entry without presetID does
// nothing. Without categorized presets one section lists every preset by
// name.
//
// Ownership: the list is a subview (owned by the view tree). The preset
// control is a non-owning pointer (it lives in the preset bar, which the
// editor keeps longer than the drawer). Threading: main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "editor/ZelDrawerView.h"

ZEL_NAMESPACE_BEGIN

class ZelParameterControl;
class ZelPresetListView;

// One row of the list.
struct ZelPresetRow {
  enum class Kind { Section, Preset };
  Kind kind = Kind::Preset;
  std::string title;
  std::optional<std::int64_t> presetID;  // presets only; none: inert
};

class ZelPresetsDrawer : public ZelDrawerView {
 public:
  // `config` is not owned; its presets and categorized presets give the rows.
  // With advanced controls the drawer also has the "toggle advanced"
  // miniature.
  ZelPresetsDrawer(CGRect frame, const ZelConfig* config, bool visible);
  ~ZelPresetsDrawer() override;

  ZelParameterControl* presetControl() const { return presetControl_; }
  void setPresetControl(ZelParameterControl* control) { presetControl_ = control; }

  // Highlights the rows of preset `value` (truncated toward zero).
  void presetSelected(float value);
  std::optional<std::int64_t> selectedPresetID() const { return selected_; }

  // ---- The list.
  const std::vector<ZelPresetRow>& rows() const { return rows_; }
  // What a click on row `index` does (nothing for a section title, an entry
  // without presetID, or without a preset control).
  void chooseRow(std::size_t index);
  ZelPresetListView* listView() const { return list_; }

  // The rows the list shows for a configuration.
  static std::vector<ZelPresetRow> rowsForConfig(const ZelConfig* config);

  // The backdrop and the drawer's title.
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 private:
  std::vector<ZelPresetRow> rows_;
  ZelPresetListView* list_ = nullptr;
  ZelParameterControl* presetControl_ = nullptr;
  std::optional<std::int64_t> selected_;
};

ZEL_NAMESPACE_END
