#include "editor/ZelPresetBar.h"

#include "controls/ZelParameterControl.h"
#include "controls/ZelPresetControl.h"
#include "editor/ZelContainerStyle.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"
#include "editor/containers/ZelClumpDrawing.h"
#include "model/ZelPresets.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kButtonSide = 26;
constexpr double kEdgeMargin = 4;
// Room between the button pairs and the preset control.
constexpr double kControlGap = 6;

}  // namespace

ZelPresetBar::ZelPresetBar(CGRect frame, const ZelPresets* presets) : ZelView(frame), presets_(presets) {
  setIdentifier("presetBar");
  if (presets_) addParts();
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
}

ZelPresetBar::~ZelPresetBar() = default;

void ZelPresetBar::addParts() {
  const CGRect b = bounds();
  const double y = std::floor(CGRectGetMidY(b) - kButtonSide / 2);
  auto button = [&](double x, const char* glyph, const char* name) {
    ZelSymbolButton* added = addSubview(
        ZelMakeContainerButton(CGRectMake(x, y, kButtonSide, kButtonSide), glyph, kZelContainerButtonGlyphSize));
    added->setIdentifier(name);
    return added;
  };
  undo_ = button(kEdgeMargin, ZelIconGlyph::kUndo, "undo");
  redo_ = button(kEdgeMargin + kButtonSide, ZelIconGlyph::kRedo, "redo");
  more_ = button(b.size.width - kEdgeMargin - kButtonSide, ZelIconGlyph::kMore, "more");
  save_ = button(b.size.width - kEdgeMargin - 2 * kButtonSide, ZelIconGlyph::kSave, "save");
  // Nothing to undo or redo yet: the editor enables them from its stack.
  undo_->setEnabled(false);
  redo_->setEnabled(false);

  const double left = CGRectGetMaxX(redo_->frame()) + kControlGap;
  const double right = CGRectGetMinX(save_->frame()) - kControlGap;
  const CGRect controlFrame = CGRectMake(left, 0, std::max(0.0, right - left), b.size.height);
  // The preset control has no label of its own: its label area is its
  // whole area, which keeps the control the bar's full height.
  auto control = std::make_unique<ZelParameterControl>(controlFrame, controlFrame, presets_);
  control->setIdentifier("presetControl");
  presetControl_ = addSubview(std::move(control));
}

void ZelPresetBar::setDirty(bool dirty) {
  dirty_ = dirty;
  if (!presetControl_) return;
  if (auto* preset = dynamic_cast<ZelPresetControl*>(presetControl_->primaryControl())) preset->setDirty(dirty);
}

void ZelPresetBar::themeUpdated() {
  for (ZelSymbolButton* button : {undo_, redo_, save_, more_}) ZelRecolourContainerButton(button);
  setNeedsDisplay();
}

void ZelPresetBar::drawRect(ZelGraphicsContext& ctx, CGRect) {
  // The same line that sets off the power box's foot, continued.
  ZelFillGenericHeaderFooterOnEdge(ctx, CGRectMaxYEdge, bounds());
}

ZEL_NAMESPACE_END
