// The editor's drawers and their transition, the sketch, and the actions of
// the power box's buttons (manual, web site, theme).
#include "editor/ZelGenericUI.h"

#include <cmath>

#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "theme/ZelUITheme.h"
#include "editor/containers/ZelClumpDrawing.h"
#include "editor/containers/ZelClumpsView.h"
#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kSketchFadeDuration = 1.0;
constexpr double kFirstSketchUpdateDelay = 0.01;

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

// ---- Drawers.

void ZelGenericUI::toggleDrawer(ZelDrawerView* drawer, bool force) {
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

bool ZelGenericUI::hideVisibleDrawersPresenting(ZelDrawerView* drawer) {
  bool hidden = false;
  if (advDrawer_ && advDrawer_ != drawer && advDrawer_->isVisible()) hidden = advDrawer_->toggleVisibility();
  if (!hidden && presetDrawer_ && presetDrawer_ != drawer && presetDrawer_->isVisible())
    hidden = presetDrawer_->toggleVisibility();
  if (drawer && !drawer->isVisible()) {
    bringParameterControlIntoFocus(nullptr);
    drawer->toggleVisibility();
  }
  return hidden;
}

bool ZelGenericUI::hideAllDrawers() { return hideVisibleDrawersPresenting(nullptr); }

bool ZelGenericUI::toggleAdvancedDrawer() {
  if (!advDrawer_) return false;
  toggleDrawer(advDrawer_, false);
  return true;
}

bool ZelGenericUI::togglePresetsDrawer() {
  if (!presetBar_) return false;
  toggleDrawer(presetDrawer_, false);
  return true;
}

bool ZelGenericUI::isAdvancedDrawerVisible() const { return advDrawer_ && advDrawer_->isVisible(); }

bool ZelGenericUI::isPresetsDrawerVisible() const { return presetDrawer_ && presetDrawer_->isVisible(); }

void ZelGenericUI::gearTapped() { toggleAdvancedDrawer(); }

void ZelGenericUI::drawerDidTapMiniature(ZelDrawerView& drawer, int which) {
  (void)drawer;
  if (which == ZelDrawerView::kMiniatureToggleAdvanced) toggleAdvancedDrawer();
  else if (which == ZelDrawerView::kMiniatureHideAll) hideAllDrawers();
}

ZelBasicAnimation ZelGenericUI::fadeAnimationFadingIn(bool fadingIn, double duration) {
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

bool ZelGenericUI::canDrawerViewToggleVisibilityToVisibility(ZelDrawerView& drawer, bool visible) {
  // The presets drawer opening again: nothing waits for it to close now.
  if (visible && &drawer == presetDrawer_) waitingDrawer_ = nullptr;
  if (drawer.toggle()) drawer.toggle()->setSelected(visible);
  animateDrawerTransition(drawer, visible);
  if (window()) window()->makeFirstResponder(this);
  return true;
}

void ZelGenericUI::animateDrawerTransition(ZelDrawerView& drawer, bool visible) {
  const double d = kDrawerTransitionDuration;
  setRasterized(&drawer, true);
  if (visible) ZelAnimateViewToFromDuration(drawer, kIdentitySteps, kDrawerBelowSteps, d);
  else ZelAnimateViewToFromDuration(drawer, kDrawerBelowSteps, kIdentitySteps, d);
  ZelBasicAnimation fade = fadeAnimationFadingIn(visible, d);
  fade.setCompletion([this, drawer = &drawer, visible](bool) { drawerTransitionDidStop(drawer, visible); });
  drawer.layer()->addAnimation(fade, "visible");
  if (!clumpsView_) return;
  setRasterized(clumpsView_, true);
  if (visible) ZelAnimateViewToFromDuration(*clumpsView_, kRecededSteps, kIdentitySteps, d);
  else ZelAnimateViewToFromDuration(*clumpsView_, kIdentitySteps, kRecededSteps, d);
  clumpsView_->layer()->addAnimation(fadeAnimationFadingIn(!visible, d), "visible");
}

void ZelGenericUI::drawerTransitionDidStop(ZelDrawerView* drawer, bool visible) {
  // A transition replaced by the next one leaves the layers to that one.
  if (drawer->layer()->animationForKey("visible")) return;
  setRasterized(drawer, false);
  setRasterized(clumpsView_, false);
  if (visible || drawer != presetDrawer_ || drawer->isVisible()) return;
  ZelDrawerView* waiting = waitingDrawer_;
  waitingDrawer_ = nullptr;
  if (waiting && !waiting->isVisible()) hideVisibleDrawersPresenting(waiting);
}

// ---- The sketch.

void ZelGenericUI::addSketchWithSubclass(const ZelSketchFactory& factory) {
  if (sketch_ || !factory || !config_ || !powerBox_) return;
  std::unique_ptr<ZelParameterSketch> made = factory(powerBox_->sketchArea(), *config_);
  if (!made) return;
  made->setPowerbox(powerBox_);
  made->setMeteringCallback(meteringCallback_);
  made->setAlphaValue(0);
  sketch_ = powerBox_->addSubview(std::move(made));
  sketch_->animateAlphaValue(1.0, kSketchFadeDuration);
  const ZelCallKey key{this, "sendMemoizedPValuesToSketch"};
  runLoop_.cancel(key);
  runLoop_.schedule(kFirstSketchUpdateDelay, [this] { sendMemoizedPValuesToSketch(); }, key);
}

// ---- Buttons.

void ZelGenericUI::openURL(const std::string& url) const {
  ZelURLOpener* opener = window() ? window()->urlOpener() : nullptr;
  if (opener) opener->open(url);
}

void ZelGenericUI::openManualWithExtension(std::optional<std::string_view> extension) {
  std::string url = keyboard_->baseURLForPluginVersion() + "/manual/";
  if (extension) url.append(*extension);
  openURL(url);
}

void ZelGenericUI::bookTapped() { openManualWithExtension(std::nullopt); }

void ZelGenericUI::logoTapped() { openURL(kMakerWebSite); }

double ZelGenericUI::nearestZoomStep(double zoom) {
  if (!std::isfinite(zoom)) return kZoomSteps.front();
  double best = kZoomSteps.front();
  for (double step : kZoomSteps)
    if (std::abs(step - zoom) < std::abs(best - zoom)) best = step;
  return best;
}

void ZelGenericUI::zoomTo(double zoom) {
  const double step = nearestZoomStep(zoom);
  if (step == zoom_) return;
  zoom_ = step;
  if (delegate_) delegate_->interfaceDidUpdateInterfacePreference(*this, "zoom", zoom_);
}

void ZelGenericUI::zoomIn() {
  for (double step : kZoomSteps)
    if (step > zoom_) return zoomTo(step);
}

void ZelGenericUI::zoomOut() {
  for (auto it = kZoomSteps.rbegin(); it != kZoomSteps.rend(); ++it)
    if (*it < zoom_) return zoomTo(*it);
}

void ZelGenericUI::toggleUITheme() {
  ZelUITheme::toggleThemeForWindow(window());
  if (powerBox_) powerBox_->setNeedsDisplay();
  setNeedsDisplay();
  if (delegate_) delegate_->interfaceDidUpdateInterfacePreference(*this, "theme", 1);
}

ZEL_NAMESPACE_END
