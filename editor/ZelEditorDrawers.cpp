// The editor's drawers and their transition.
#include "editor/ZelEditorDrawers.h"

#include "editor/ZelGenericUI.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "editor/containers/ZelClumpDrawing.h"
#include "editor/containers/ZelClumpsView.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelSpeedLim.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kGearFlashLimit = 1.0;

// The drawer rises from this fraction of its height below its place; the
// clumps view behind it recedes to this scale.
constexpr double kDrawerRise = 0.08;
constexpr double kRecededScale = 0.96;

const ZelTransformStep kIdentitySteps[] = {ZelTransformStep::scale(1, 1)};
const ZelTransformStep kDrawerBelowSteps[] = {ZelTransformStep::translate(0, -kDrawerRise)};
const ZelTransformStep kRecededSteps[] = {ZelTransformStep::scale(kRecededScale, kRecededScale)};

void setRasterized(ZelView* view, bool on) {
  if (!view || !view->layer()) return;
  ZelLayer* layer = view->layer();
  if (on) layer->setRasterizationScale(view->window() ? view->window()->backingScale() : 1.0);
  layer->setShouldRasterize(on);
}

}  // namespace

ZelEditorDrawers::ZelEditorDrawers(ZelGenericUI& ui, ZelRunLoop& runLoop)
    : ui_(ui), advFlashLim_(std::make_unique<ZelSpeedLim>(runLoop)) {
  advFlashLim_->setTrailing(false);
}

ZelEditorDrawers::~ZelEditorDrawers() = default;

// ---- Making them.

// Drawers go just below the preset bar: a drawer rising from below comes
// out from behind the bar.
template <class Drawer>
Drawer* ZelEditorDrawers::insertDrawer(std::unique_ptr<Drawer> drawer) {
  Drawer* raw = drawer.get();
  const auto& subviews = ui_.subviews();
  std::size_t index = subviews.size();
  for (std::size_t i = 0; i < subviews.size(); ++i)
    if (subviews[i].get() == ui_.presetBar()) index = i;
  ui_.insertSubview(std::move(drawer), index);
  return raw;
}

void ZelEditorDrawers::addAdvancedControlsDrawer(std::unique_ptr<ZelClumpsView> advClumpsView) {
  const ZelConfig* config = ui_.config();
  if (advDrawer_ || !advClumpsView || !config || !config->hasAdvancedControls()) return;
  auto drawer = std::make_unique<ZelDrawerView>(ui_.clumpsView()->frame(), config, false);
  drawer->setIdentifier("advancedDrawer");
  drawer->contentView()->addSubview(std::move(advClumpsView));
  drawer->setToggle(ui_.powerBox() ? ui_.powerBox()->gear() : nullptr);
  drawer->setDelegate(this);
  drawer->setMiniatureDelegate(this);
  advDrawer_ = insertDrawer(std::move(drawer));
}

void ZelEditorDrawers::addPresetDrawer() {
  const ZelConfig* config = ui_.config();
  ZelPresetBar* presetBar = ui_.presetBar();
  if (presetDrawer_ || !config || !config->presets() || !presetBar) return;
  auto drawer = std::make_unique<ZelPresetsDrawer>(ui_.layout().clumps, config, false);
  drawer->setIdentifier("presetsDrawer");
  drawer->setToggle(presetBar->more());
  drawer->setPresetControl(presetBar->presetControl());
  drawer->setDelegate(this);
  drawer->setMiniatureDelegate(this);
  drawer->setAnimatesVisibility(false);
  if (presetBar->presetControl()) drawer->presetSelected(presetBar->presetControl()->floatValue());
  presetDrawer_ = insertDrawer(std::move(drawer));
}

void ZelEditorDrawers::detach() {
  waitingDrawer_ = nullptr;
  for (ZelDrawerView* drawer : {advDrawer_, static_cast<ZelDrawerView*>(presetDrawer_)}) {
    if (!drawer) continue;
    drawer->setDelegate(nullptr);
    drawer->setMiniatureDelegate(nullptr);
  }
  advDrawer_ = nullptr;
  presetDrawer_ = nullptr;
}

// ---- Showing and hiding.

void ZelEditorDrawers::toggleDrawer(ZelDrawerView* drawer, bool force) {
  (void)force;
  if (!drawer) return;
  if (drawer->isVisible()) {
    drawer->toggleVisibility();
    return;
  }
  if (presetDrawer_ && drawer != presetDrawer_ && presetDrawer_->isVisible()) {
    // Opens when the presets drawer has finished closing.
    waitingDrawer_ = drawer;
    togglePresetsDrawer();
    return;
  }
  hideVisibleDrawersPresenting(drawer);
}

bool ZelEditorDrawers::hideVisibleDrawersPresenting(ZelDrawerView* drawer) {
  bool hidden = false;
  if (advDrawer_ && advDrawer_ != drawer && advDrawer_->isVisible()) hidden = advDrawer_->toggleVisibility();
  if (!hidden && presetDrawer_ && presetDrawer_ != drawer && presetDrawer_->isVisible())
    hidden = presetDrawer_->toggleVisibility();
  if (drawer && !drawer->isVisible()) {
    ui_.focus().bringParameterControlIntoFocus(nullptr);
    drawer->toggleVisibility();
  }
  return hidden;
}

bool ZelEditorDrawers::hideAllDrawers() { return hideVisibleDrawersPresenting(nullptr); }

bool ZelEditorDrawers::toggleAdvancedDrawer() {
  if (!advDrawer_) return false;
  toggleDrawer(advDrawer_, false);
  return true;
}

bool ZelEditorDrawers::togglePresetsDrawer() {
  if (!ui_.presetBar()) return false;
  toggleDrawer(presetDrawer_, false);
  return true;
}

bool ZelEditorDrawers::isAdvancedDrawerVisible() const { return advDrawer_ && advDrawer_->isVisible(); }

bool ZelEditorDrawers::isPresetsDrawerVisible() const { return presetDrawer_ && presetDrawer_->isVisible(); }

void ZelEditorDrawers::gearTapped() { toggleAdvancedDrawer(); }

// A hidden advanced parameter that changes makes the gear blink, at most
// once a second.
void ZelEditorDrawers::flashGearIfHidden(const ZelParameter& parameter) {
  if (!parameter.clump || parameter.clump->clumpType != ZelClumpType::Advanced) return;
  if (isAdvancedDrawerVisible() || isPresetsDrawerVisible() || !ui_.powerBox()) return;
  ZelSymbolButton* gear = ui_.powerBox()->gear();
  advFlashLim_->fireWithLimit(kGearFlashLimit, gear, "flash", [gear] { gear->flash(); });
}

void ZelEditorDrawers::drawerDidTapMiniature(ZelDrawerView& drawer, int which) {
  (void)drawer;
  if (which == ZelDrawerView::kMiniatureToggleAdvanced) toggleAdvancedDrawer();
  else if (which == ZelDrawerView::kMiniatureHideAll) hideAllDrawers();
}

ZelBasicAnimation ZelEditorDrawers::fadeAnimationFadingIn(bool fadingIn, double duration) {
  ZelBasicAnimation fade("opacity");
  fade.setFromValue(fadingIn ? 0.0 : 1.0);
  fade.setToValue(fadingIn ? 1.0 : 0.0);
  fade.setDuration(duration);
  fade.setTimingFunction(ZelTimingFunction::easeOut());
  return fade;
}

// ---- The transition: the drawer slides up from a little below while it
// fades in, and the clumps behind it recede and fade; closing runs it
// backwards. Both layers are rasterized while they move.

bool ZelEditorDrawers::canDrawerViewToggleVisibilityToVisibility(ZelDrawerView& drawer, bool visible) {
  // The presets drawer opening again: nothing waits for it to close now.
  if (visible && &drawer == presetDrawer_) waitingDrawer_ = nullptr;
  if (drawer.toggle()) drawer.toggle()->setSelected(visible);
  animateDrawerTransition(drawer, visible);
  if (ui_.window()) ui_.window()->makeFirstResponder(&ui_);
  return true;
}

void ZelEditorDrawers::animateDrawerTransition(ZelDrawerView& drawer, bool visible) {
  const double d = kDrawerTransitionDuration;
  setRasterized(&drawer, true);
  if (visible) ZelAnimateViewToFromDuration(drawer, kIdentitySteps, kDrawerBelowSteps, d);
  else ZelAnimateViewToFromDuration(drawer, kDrawerBelowSteps, kIdentitySteps, d);
  ZelBasicAnimation fade = fadeAnimationFadingIn(visible, d);
  fade.setCompletion([this, drawer = &drawer, visible](bool) { drawerTransitionDidStop(drawer, visible); });
  drawer.layer()->addAnimation(fade, "visible");
  ZelClumpsView* clumpsView = ui_.clumpsView();
  if (!clumpsView) return;
  setRasterized(clumpsView, true);
  if (visible) ZelAnimateViewToFromDuration(*clumpsView, kRecededSteps, kIdentitySteps, d);
  else ZelAnimateViewToFromDuration(*clumpsView, kIdentitySteps, kRecededSteps, d);
  clumpsView->layer()->addAnimation(fadeAnimationFadingIn(!visible, d), "visible");
}

void ZelEditorDrawers::drawerTransitionDidStop(ZelDrawerView* drawer, bool visible) {
  // A transition replaced by the next one leaves the layers to that one.
  if (drawer->layer()->animationForKey("visible")) return;
  setRasterized(drawer, false);
  setRasterized(ui_.clumpsView(), false);
  if (visible || drawer != presetDrawer_ || drawer->isVisible()) return;
  ZelDrawerView* waiting = waitingDrawer_;
  waitingDrawer_ = nullptr;
  if (waiting && !waiting->isVisible()) hideVisibleDrawersPresenting(waiting);
}

ZEL_NAMESPACE_END
