// The editor as a host shows it: the description, the editor in a window,
// and the stand-in unit as its delegate, started up in the order a host's
// view does it (create the editor, set the delegate, make it first
// responder, report every current value and the last preset name, start the
// deferred drawer step, pass the channel counts, and one second later add
// the product's sketch). Window focus goes to the editor's setHasFocus, and
// on gaining focus the editor becomes first responder again, also 0.5 s
// later. reload() replaces the description and rebuilds the editor while
// the unit keeps its values (by code name), preset name and theme flag.
//
// The scripted driver's session: it talks to the editor directly, in the
// editor's own units, so that its scripts see exactly what the editor says.
// The standalone app and the plug-in put the host view (host/ZelHostView.h)
// in between instead.
//
// Ownership: the session owns the description and the unit; the window
// owns the editor (its content view). The window, its run loop and the
// window's backend must outlive the session. Threading: main thread only.
#pragma once

#include <memory>
#include <string>

#include "app/common/ZelStandInUnit.h"
#include "editor/ZelGenericUI.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

class ZelEditorSession {
 public:
  static constexpr double kSketchDelay = 1.0;
  static constexpr double kFocusReassertDelay = 0.5;

  // Nothing is built until open(). `config` must not be null.
  ZelEditorSession(ZelWindow& window, std::unique_ptr<ZelConfig> config);
  // Removes the editor from the window and cancels the session's calls.
  ~ZelEditorSession();
  ZelEditorSession(const ZelEditorSession&) = delete;
  ZelEditorSession& operator=(const ZelEditorSession&) = delete;

  // The sketch added one second after start-up. By default the product's
  // sketch, for a description that asks for one; an empty factory: none.
  void setSketchFactory(ZelSketchFactory factory) { sketchFactory_ = std::move(factory); }

  // Builds the editor into the window (sized to the description) and runs
  // the host's start-up. The values reach the editor on the next run of
  // the loop, the drawers 0.1 s and the sketch 1 s later.
  void open();
  // Rebuilds the editor from `config` (not null), keeping the unit's
  // values by code name, its preset name and the theme.
  void reload(std::unique_ptr<ZelConfig> config);
  // Removes the editor (the window shows an empty view).
  void close();

  ZelGenericUI* editor() const { return editor_; }
  const ZelConfig& config() const { return *config_; }
  ZelStandInUnit& unit() { return *unit_; }
  ZelWindow& window() const { return window_; }

  // The description's size, or 480 × 380 when it gives none.
  static CGSize editorSizeFor(const ZelConfig& config);

 private:
  void windowKeyDidChange(bool key);
  void addSketch();
  void ensureFirstResponder();

  ZelWindow& window_;
  std::unique_ptr<ZelConfig> config_;
  std::unique_ptr<ZelStandInUnit> unit_;
  ZelSketchFactory sketchFactory_;
  ZelGenericUI* editor_ = nullptr;  // owned by the window
};

ZEL_NAMESPACE_END
