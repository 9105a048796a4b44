// The editor's link to its host: the controls' delegate, the power box's
// buttons, zoom.
#include "editor/ZelEditorHostLink.h"

#include <cmath>

#include "editor/ZelGenericUI.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

// ---- The controls' delegate.

void ZelEditorHostLink::parameterControlDidChangeInteractionState(ZelParameterControl& control,
                                                                  ZelInteractionState state) {
  ui_.keyboard().clearNumberBuffer();
  if (!delegate_ || !delegate_->respondsToInteractionGestures() || !control.parameter()) return;
  const std::int64_t pid = control.parameter()->pid;
  if (state == ZelInteractionEnded) {
    delegate_->interfaceEndedInteractionWithParameterKeyed(ui_, pid);
  } else if (state == ZelInteractionBegan) {
    delegate_->interfaceBeganInteractionWithParameterKeyed(ui_, pid);
    ui_.focus().bringParameterControlIntoFocus(&control);
  }
}

void ZelEditorHostLink::parameterControlHasRequestedDocumentation(ZelParameterControl& control) {
  if (control.parameter()) openManualWithExtension("#" + control.parameter()->codesafeName);
}

void ZelEditorHostLink::parameterControlDidTapMeaninglessly(ZelParameterControl& control) {
  if (ui_.presetBar() && &control == ui_.presetBar()->presetControl()) ui_.drawers().togglePresetsDrawer();
}

// ---- Buttons.

void ZelEditorHostLink::openURL(const std::string& url) const {
  ZelURLOpener* opener = ui_.window() ? ui_.window()->urlOpener() : nullptr;
  if (opener) opener->open(url);
}

void ZelEditorHostLink::openManualWithExtension(std::optional<std::string_view> extension) {
  std::string url = ui_.keyboard().baseURLForPluginVersion() + "/manual/";
  if (extension) url.append(*extension);
  openURL(url);
}

void ZelEditorHostLink::bookTapped() { openManualWithExtension(std::nullopt); }

void ZelEditorHostLink::logoTapped() { openURL(kMakerWebSite); }

double ZelEditorHostLink::nearestZoomStep(double zoom) {
  if (!std::isfinite(zoom)) return kZoomSteps.front();
  double best = kZoomSteps.front();
  for (double step : kZoomSteps)
    if (std::abs(step - zoom) < std::abs(best - zoom)) best = step;
  return best;
}

void ZelEditorHostLink::zoomTo(double zoom) {
  const double step = nearestZoomStep(zoom);
  if (step == zoom_) return;
  zoom_ = step;
  if (delegate_) delegate_->interfaceDidUpdateInterfacePreference(ui_, "zoom", zoom_);
}

void ZelEditorHostLink::zoomIn() {
  for (double step : kZoomSteps)
    if (step > zoom_) return zoomTo(step);
}

void ZelEditorHostLink::zoomOut() {
  for (auto it = kZoomSteps.rbegin(); it != kZoomSteps.rend(); ++it)
    if (*it < zoom_) return zoomTo(*it);
}

void ZelEditorHostLink::toggleUITheme() {
  ZelUITheme::toggleThemeForWindow(ui_.window());
  if (ui_.powerBox()) ui_.powerBox()->setNeedsDisplay();
  ui_.setNeedsDisplay();
  if (delegate_) delegate_->interfaceDidUpdateInterfacePreference(ui_, "theme", 1);
}

ZEL_NAMESPACE_END
