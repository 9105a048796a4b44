#include "editor/ZelPresetsDrawer.h"

#include <cmath>

#include "controls/ZelParameterControl.h"
#include "editor/ZelPresetListView.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr char kAllPresetsTitle[] = "All Presets";
constexpr char kDrawerTitle[] = "Presets";
constexpr double kTitleFontSize = 13;
constexpr double kTitleOpacity = 0.7;
constexpr double kSideMargin = 16;
constexpr double kBottomMargin = 10;
// The title strip at the top: its middle is level with the miniatures.
constexpr double kTitleStrip = 38;

}  // namespace

ZelPresetsDrawer::ZelPresetsDrawer(CGRect frame, const ZelConfig* config, bool visible)
    : ZelDrawerView(frame, config, visible), rows_(rowsForConfig(config)) {
  setIdentifier("presetsDrawer");
  if (config && config->hasAdvancedControls()) addMiniature(kMiniatureToggleAdvanced, ZelIconGlyph::kGear);
  const CGRect b = contentView()->bounds();
  const CGRect listFrame = CGRectMake(kSideMargin, kBottomMargin, std::max(0.0, b.size.width - 2 * kSideMargin),
                                      std::max(0.0, b.size.height - kBottomMargin - kTitleStrip));
  list_ = contentView()->addSubview(std::make_unique<ZelPresetListView>(listFrame, this, &rows_));
}

ZelPresetsDrawer::~ZelPresetsDrawer() = default;

std::vector<ZelPresetRow> ZelPresetsDrawer::rowsForConfig(const ZelConfig* config) {
  std::vector<ZelPresetRow> rows;
  if (!config || !config->presets()) return rows;
  std::vector<ZelPresetSection> sections = ZelPresetSections(config->categorizedPresets());
  if (sections.empty()) {
    ZelPresetSection all{kAllPresetsTitle, true, {}};
    const auto& names = config->presets()->stringValues;
    for (std::size_t i = 0; i < names.size(); ++i) all.presets.push_back({names[i], static_cast<std::int64_t>(i)});
    sections.push_back(std::move(all));
  }
  for (const ZelPresetSection& section : sections) {
    rows.push_back({ZelPresetRow::Kind::Section, section.title, std::nullopt});
    for (const ZelPresetEntry& entry : section.presets)
      rows.push_back({ZelPresetRow::Kind::Preset, entry.name, entry.presetID});
  }
  return rows;
}

void ZelPresetsDrawer::presetSelected(float value) {
  selected_ = std::isfinite(value) ? std::optional<std::int64_t>(static_cast<std::int64_t>(value)) : std::nullopt;
  list_->setSelectedPresetID(selected_);
}

void ZelPresetsDrawer::chooseRow(std::size_t index) {
  if (index >= rows_.size() || !presetControl_) return;
  const ZelPresetRow& row = rows_[index];
  if (row.kind != ZelPresetRow::Kind::Preset || !row.presetID) return;
  presetControl_->setFloatValue(static_cast<float>(*row.presetID));
  presetControl_->sendAction();
}

void ZelPresetsDrawer::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  ZelDrawerView::drawRect(ctx, dirtyRect);
  const ZelFont font{ZelFontFace::Medium, kTitleFontSize};
  const ZelTextMetrics m = ctx.measureText(kDrawerTitle, font);
  const double stripBottom = bounds().size.height - kTitleStrip;
  const double baseline = std::round(stripBottom + (kTitleStrip - m.ascent + m.descent) / 2);
  ctx.setFillColor(ZelUITheme::theme()->textColor().withAlpha(kTitleOpacity));
  ctx.drawText(kDrawerTitle, font, {kSideMargin, baseline});
}

ZEL_NAMESPACE_END
