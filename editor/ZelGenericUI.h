// The generic editor: the one view a host bridge places in the plug-in's
// window. From a description it builds the whole editor (power box on the
// right, clumps of parameter controls, preset bar along the bottom, the
// advanced and presets drawers, optionally the parameter sketch) and keeps
// the registry of its parameter controls. The work is done by the pieces it
// composes, each with its own header:
//   ZelEditorValues     the memo and the value flow between controls and host
//   ZelInteractionRules what a value does to other controls; channel layouts
//   ZelEditorPresets    preset loading and the dirty check
//   ZelEditorUndo       undo snapshots and the undo and redo buttons
//   ZelKeyboardHandler  keys, typed numbers, tabbing, copy and paste; owns
//                       the undo stack
//   ZelEditorFocus      the focused control and the window's focus
//   ZelEditorDrawers    the two drawers and their transition
//   ZelEditorHostLink   the controls' delegate, the buttons, zoom: what goes
//                       to the host (ZelGenericUIDelegate) and the outside
// What a host calls is here; the rest is reached through the pieces.
//
// Value flow. A control's action -> values().notifyParameter: the delegate
// is told (interfaceUpdatedParameterKeyed) and the memoized value updated
// (sketch feed, undo snapshot 0.5 s after the last change, gear flash). The
// host echoes the change back through updateParameterKeyed, which sets the
// control, finds the memo already equal, and applies the interaction rules.
// Changes made elsewhere enter at updateParameterKeyed only.
//
// Timing. Deferred work runs on the editor's run loop as cancellable
// delayed calls keyed on the editor (at most one of each kind pending): the
// undo snapshot (0.5 s), the preset dirty check (0.5 s), the drawer step
// (0.1 s), the first sketch update (0.01 s). The destructor cancels them all.
//
// Ownership. The description is not owned and must outlive the editor. The
// view tree owns every subview (power box, clumps views, preset bar,
// drawers, sketch, controls); parameterControls() is the editor's registry
// of non-owning pointers into that tree. The editor owns its pieces (the
// keyboard handler owns the undo stack); each piece holds a non-owning
// reference back to the editor. The delegate is a non-owning pointer; whoever
// sets it clears it (or destroys the editor) before it goes. The editor
// clears the targets and delegates it set on controls, buttons and drawers
// when it is destroyed.
//
// Threading: main thread only.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "controls/ZelParameterControl.h"
#include "editor/ZelDrawerView.h"
#include "editor/ZelEditorAccessibility.h"
#include "editor/ZelEditorDrawers.h"
#include "editor/ZelEditorFocus.h"
#include "editor/ZelEditorHostLink.h"
#include "editor/ZelEditorPresets.h"
#include "editor/ZelEditorUndo.h"
#include "editor/ZelEditorValues.h"
#include "editor/ZelGenericUIDelegate.h"
#include "editor/ZelInteractionRules.h"
#include "editor/ZelKeyboardHandler.h"
#include "sketch/ZelMeteringCallback.h"
#include "model/ZelClump.h"
#include "toolkit/core/ZelAnimation.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelClumpsView;
class ZelClumpView;
class ZelConfig;
class ZelGenericUI;
class ZelParameter;
class ZelParameterSketch;
class ZelPowerBox;
class ZelPresetBar;
class ZelPresetsDrawer;

// Makes the sketch for a frame (power box coordinates) and a description;
// the caller gets ownership.
using ZelSketchFactory = std::function<std::unique_ptr<ZelParameterSketch>(CGRect frame, const ZelConfig& config)>;

class ZelGenericUI : public ZelView {
 public:
  // The editor's regions, computed once by setConfig (editor coordinates).
  struct Layout {
    CGRect powerBox;   // min(62, width) at the right
    CGRect clumps;     // what remains
    CGRect header;     // zero height at the top, on purpose
    CGRect presetBar;  // min(30, remaining height) at the bottom
  };

  // Builds the editor over `frame` from `config` (null: an editor without
  // controls). `config` must outlive the editor. Delayed calls go to
  // `runLoop`, or to ZelRunLoop::current() when null; one of them must exist
  // (std::invalid_argument otherwise) and outlive the editor. The initial
  // values become the first undo snapshot 0.5 s later. The drawers are
  // added by the deferred drawer step (startDeferredDrawerStep).
  ZelGenericUI(CGRect frame, const ZelConfig* config, ZelRunLoop* runLoop = nullptr);
  // Removes every registered control, cancels every pending delayed call.
  ~ZelGenericUI() override;

  // ---- Setup.
  // Computes the layout and adds the power box, clumps view, preset bar and
  // controls. Called once by the constructor; later calls do nothing.
  void setConfig(const ZelConfig* config);
  const ZelConfig* config() const { return config_; }
  ZelGenericUIDelegate* delegate() const { return hostLink_->delegate(); }
  void setDelegate(ZelGenericUIDelegate* delegate) { hostLink_->setDelegate(delegate); }
  ZelRunLoop& runLoop() const { return runLoop_; }
  const Layout& layout() const { return layout_; }
  // The step the host starts once, right after setting the editor up: 0.1 s
  // later the editor becomes its window's first responder and adds the
  // advanced and presets drawers. Calling it again reschedules the one step.
  void startDeferredDrawerStep();
  void setMeteringCallback(ZelMeteringCallback callback) { meteringCallback_ = callback; }
  ZelMeteringCallback meteringCallback() const { return meteringCallback_; }
  // Creates the sketch in the power box's sketch area, fades it in over 1 s
  // and feeds it the memoized values 0.01 s later. Once only.
  void addSketchWithSubclass(const ZelSketchFactory& factory);

  // ---- Views (non-owning; null until made, or when the description has
  // none of them) and the registry of parameter controls.
  const std::vector<ZelParameterControl*>& parameterControls() const { return parameterControls_; }
  // The first registered control whose parameter has that code name.
  ZelParameterControl* parameterControlWithCodename(std::string_view name) const;
  ZelPowerBox* powerBox() const { return powerBox_; }
  ZelClumpsView* clumpsView() const { return clumpsView_; }
  ZelClumpsView* advClumpsView() const { return advClumpsView_; }
  ZelPresetBar* presetBar() const { return presetBar_; }
  ZelParameterSketch* sketch() const { return sketch_; }
  ZelDrawerView* advDrawer() const { return drawers_->advDrawer(); }
  ZelPresetsDrawer* presetDrawer() const { return drawers_->presetDrawer(); }

  // ---- The pieces.
  ZelEditorValues& values() const { return *values_; }
  ZelInteractionRules& rules() const { return *rules_; }
  ZelEditorPresets& presets() const { return *presets_; }
  ZelEditorUndo& undo() const { return *undo_; }
  ZelKeyboardHandler& keyboard() const { return *keyboard_; }
  ZelEditorFocus& focus() const { return *focus_; }
  ZelEditorDrawers& drawers() const { return *drawers_; }
  ZelEditorHostLink& hostLink() const { return *hostLink_; }

  // ---- From the host.
  // A parameter changed in the plug-in: sets the first control of that pid,
  // updates the memo and applies the interaction rules. Unknown ids do
  // nothing.
  void updateParameterKeyed(std::int64_t key, float value) { values_->updateParameterKeyed(key, value); }
  // The same for every parameter with that code name.
  void updateParameterNamed(std::string_view name, float value) { values_->updateParameterNamed(name, value); }
  void requestPresetNamed(std::string_view name) { presets_->requestPresetNamed(name); }
  // Selects the preset of that name on the preset bar without loading it
  // (the first preset can't be selected this way: its key is 0).
  void lastSavedPresetWasNamed(std::string_view name) { presets_->lastSavedPresetWasNamed(name); }
  bool hasFocus() const { return focus_->hasFocus(); }
  void setHasFocus(bool hasFocus) { focus_->setHasFocus(hasFocus); }
  // The power parameter (pid 0) is on.
  bool isProcessing() const { return values_->isProcessing(); }
  // Sends every registered control's initial value.
  void resetInitialValues() { values_->resetInitialValues(); }
  // Channel-layout rules; the sketch learns the layout too (now, or when made).
  void setChannelsIn(std::uint32_t channelsIn, std::uint32_t channelsOut);
  // The zoom in effect (see ZelEditorHostLink).
  double zoom() const { return hostLink_->zoom(); }
  void setZoom(double zoom) { hostLink_->setZoom(zoom); }

  // ---- View.
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  bool acceptsFirstResponder() const override { return true; }
  bool keyDown(const ZelEvent& event) override;
  bool performKeyEquivalent(const ZelEvent& event) override;
  bool flagsChanged(const ZelEvent& event) override;
  // The editor's accessible tree (ZelEditorAccessibility.cpp), made on
  // first use.
  ZelAccessible* accessibilityElement() override;

 private:
  void computeLayout();
  void addPowerBox();
  void addClumpsView();
  void addPresetBar();
  void addAndRegisterParameterControls();
  void addClumpViews(ZelClumpsView& into, ZelClumpType type);
  void moveHQControlIntoAdvancedClumps();
  void registerParameterControls(ZelClumpView& clumpView, ZelView& displacedInto);
  void registerParameterControl(ZelParameterControl& control);
  void runDeferredDrawerStep();
  void teardown();

  const ZelConfig* config_ = nullptr;
  ZelRunLoop& runLoop_;
  std::vector<ZelParameterControl*> parameterControls_;
  bool registered_ = false;
  ZelPresetBar* presetBar_ = nullptr;
  ZelPowerBox* powerBox_ = nullptr;
  ZelClumpsView* clumpsView_ = nullptr;
  ZelClumpsView* advClumpsView_ = nullptr;
  // The advanced clumps view until the drawer takes it.
  std::unique_ptr<ZelClumpsView> pendingAdvClumpsView_;
  ZelParameterSketch* sketch_ = nullptr;
  std::uint32_t channelsIn_ = 0, channelsOut_ = 0;  // 0: not known yet
  ZelMeteringCallback meteringCallback_;
  Layout layout_;
  ZelNotificationCenter::Observation themeObservation_;
  // The pieces; made first, gone last.
  std::unique_ptr<ZelEditorHostLink> hostLink_;
  std::unique_ptr<ZelEditorValues> values_;
  std::unique_ptr<ZelInteractionRules> rules_;
  std::unique_ptr<ZelEditorPresets> presets_;
  std::unique_ptr<ZelEditorUndo> undo_;
  std::unique_ptr<ZelKeyboardHandler> keyboard_;
  std::unique_ptr<ZelEditorFocus> focus_;
  std::unique_ptr<ZelEditorDrawers> drawers_;
  // Reads the pieces above: declared last, gone first.
  std::unique_ptr<ZelEditorAccessibility> accessibility_;
};

ZEL_NAMESPACE_END
