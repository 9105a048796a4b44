// The editor's link to its host and to the outside: the parameter controls'
// delegate (a gesture's begin and end go to the host, a begin focuses the
// control; a control asks for its manual page; a tap on the preset control
// opens the presets drawer), the power box's buttons (manual, web site,
// theme) and the user's zoom. What it tells the host goes through the
// editor's delegate (ZelGenericUIDelegate).
//
// User zoom: the editor drawn larger, at one of kZoomSteps. The host says
// which zoom is in effect (setZoom, nothing sent back); the user's choice
// (logo stamp menu, Ctrl+plus, Ctrl+minus, Ctrl+0) goes to the delegate as
// the interface preference "zoom" with the new factor, and the host scales
// the window.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference. The delegate is a non-owning pointer; whoever sets it clears it
// (or destroys the editor) before it goes.
// Threading: main thread only.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "controls/ZelParameterControl.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;
class ZelGenericUIDelegate;

class ZelEditorHostLink : public ZelParameterControlDelegate {
 public:
  explicit ZelEditorHostLink(ZelGenericUI& ui) : ui_(ui) {}
  ZelEditorHostLink(const ZelEditorHostLink&) = delete;
  ZelEditorHostLink& operator=(const ZelEditorHostLink&) = delete;

  ZelGenericUIDelegate* delegate() const { return delegate_; }
  void setDelegate(ZelGenericUIDelegate* delegate) { delegate_ = delegate; }

  // ---- ZelParameterControlDelegate.
  void parameterControlDidChangeInteractionState(ZelParameterControl& control, ZelInteractionState state) override;
  void parameterControlHasRequestedDocumentation(ZelParameterControl& control) override;
  void parameterControlDidTapMeaninglessly(ZelParameterControl& control) override;

  // ---- The power box's buttons.
  void bookTapped();
  void logoTapped();
  void toggleUITheme();
  // Opens "<base URL>/manual/" followed by `extension` when given.
  void openManualWithExtension(std::optional<std::string_view> extension);

  // ---- User zoom.
  static constexpr std::array<double, 5> kZoomSteps{1.0, 1.25, 1.5, 1.75, 2.0};
  // The step nearest to `zoom` (1 for anything that is not a number).
  static double nearestZoomStep(double zoom);
  double zoom() const { return zoom_; }
  void setZoom(double zoom) { zoom_ = nearestZoomStep(zoom); }
  // The user chose a zoom: a different step is kept and told the delegate.
  void zoomTo(double zoom);
  void zoomIn();
  void zoomOut();

  // ---- The maker's web site.
  static constexpr char kMakerWebSite[] = "https://www.zel-audio.example";

 private:
  void openURL(const std::string& url) const;

  ZelGenericUI& ui_;
  ZelGenericUIDelegate* delegate_ = nullptr;
  double zoom_ = 1.0;
};

ZEL_NAMESPACE_END
