// The generic editor: the one view a host bridge places in the plug-in's
// window. From a description it builds the whole editor (power box on the
// right, clumps of parameter controls, preset bar along the bottom, the
// advanced and presets drawers, optionally the parameter sketch), keeps the
// last known value of every parameter, carries values between the controls,
// the interaction rules, the undo history and the host, and handles focus,
// presets, drawers and the keyboard.
//
// Value flow. A control's action -> notifyParameter: the delegate is told
// (interfaceUpdatedParameterKeyed) and the memoized value updated (sketch
// feed, undo snapshot 0.5 s after the last change, gear flash). The host
// echoes the change back through updateParameterKeyed, which sets the
// control, finds the memo already equal, and applies the interaction rules
// (ZelGenericUI+Rules.cpp). Changes made elsewhere enter at
// updateParameterKeyed only.
//
// Timing. Deferred work runs on the editor's run loop as cancellable
// delayed calls keyed on the editor (at most one of each kind pending): the
// undo snapshot (0.5 s), the preset dirty check (0.5 s), the drawer step
// (0.1 s), the first sketch update (0.01 s). The destructor cancels them all.
//
// Ownership. The description is not owned and must outlive the editor. The
// view tree owns every subview (power box, clumps views, preset bar,
// drawers, sketch, controls); parameterControls() is the editor's registry
// of non-owning pointers into that tree. The editor owns its keyboard
// handler (which owns the undo stack) and its two rate limiters. The
// delegate is a non-owning pointer; whoever sets it clears it (or destroys
// the editor) before it goes. The editor clears the targets and delegates
// it set on controls, buttons and drawers when it is destroyed.
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
#include "editor/ZelGenericUIDelegate.h"
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
class ZelSpeedLim;

// Makes the sketch for a frame (power box coordinates) and a description;
// the caller gets ownership.
using ZelSketchFactory = std::function<std::unique_ptr<ZelParameterSketch>(CGRect frame, const ZelConfig& config)>;

class ZelGenericUI : public ZelView,
                     public ZelParameterControlDelegate,
                     public ZelDrawerViewDelegate,
                     public ZelDrawerMiniatureDelegate {
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
  ZelGenericUIDelegate* delegate() const { return delegate_; }
  void setDelegate(ZelGenericUIDelegate* delegate) { delegate_ = delegate; }
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

  // ---- Parts (non-owning; null until made, or when the description has
  // none of them).
  const std::vector<ZelParameterControl*>& parameterControls() const { return parameterControls_; }
  ZelPowerBox* powerBox() const { return powerBox_; }
  ZelClumpsView* clumpsView() const { return clumpsView_; }
  ZelClumpsView* advClumpsView() const { return advClumpsView_; }
  ZelPresetBar* presetBar() const { return presetBar_; }
  ZelDrawerView* advDrawer() const { return advDrawer_; }
  ZelPresetsDrawer* presetDrawer() const { return presetDrawer_; }
  ZelParameterSketch* sketch() const { return sketch_; }
  ZelKeyboardHandler& keyboard() const { return *keyboard_; }

  // ---- From the host.
  // A parameter changed in the plug-in: sets the first control of that pid,
  // updates the memo and applies the interaction rules. Unknown ids do
  // nothing.
  void updateParameterKeyed(std::int64_t key, float value);
  // The same for every parameter with that code name.
  void updateParameterNamed(std::string_view name, float value);
  void requestPresetNamed(std::string_view name);
  // Selects the preset of that name on the preset bar without loading it
  // (the first preset can't be selected this way: its key is 0).
  void lastSavedPresetWasNamed(std::string_view name);
  bool hasFocus() const { return hasFocus_; }
  void setHasFocus(bool hasFocus);
  // The power parameter (pid 0) is on.
  bool isProcessing() const;
  // Sends every registered control's initial value.
  void resetInitialValues();
  // Channel-layout rules (ZelGenericUI+Rules.cpp).
  void setChannelsIn(std::uint32_t channelsIn, std::uint32_t channelsOut);

  // ---- Values.
  // Tells the delegate, then updates the memo.
  void notifyParameter(const ZelParameter& parameter, float value);
  // Stores a changed value (NaN never equals anything), feeds the sketch,
  // schedules the undo snapshot and flashes the gear for a hidden advanced
  // parameter. Ids outside 0 ... numParameters-1 are ignored.
  void updateMemoizedValue(float value, const ZelParameter& parameter);
  // The last known values and change flags, indexed by pid.
  std::span<const float> memoizedPValues() const { return memoizedPValues_; }
  std::span<const std::uint8_t> memoizedPValuesChanged() const { return memoizedPValuesChanged_; }
  void sendMemoizedPValuesToSketch();
  // A control's action.
  void handleParameterControlUpdated(ZelControl& sender);
  // The first registered control whose parameter has that code name.
  ZelParameterControl* parameterControlWithCodename(std::string_view name) const;

  // ---- Undo.
  void potentiallySaveToUndoRedoStack();
  void saveParametersToUndoRedoStack();
  void syncUndoRedoButtonsToStackState();

  // ---- Presets.
  // Loads the preset the sender (the preset control) shows.
  void presetUpdated(ZelControl& sender);
  void checkPresetDirtyState();
  void presetSaveTapped();
  void morePresetsTapped();

  // ---- Focus.
  // The focused control, when it is still valid for the drawer shown (an
  // invalid focus is cleared).
  ZelParameterControl* focusedControl();
  // Focuses `control` (nullptr clears focus). Power-box controls are
  // ignored; the power parameter is never drawn focused.
  void bringParameterControlIntoFocus(ZelParameterControl* control);
  ZelParameterControl* wasFocusedControl() const { return wasFocusedControl_; }

  // ---- ZelParameterControlDelegate.
  void parameterControlDidChangeInteractionState(ZelParameterControl& control, ZelInteractionState state) override;
  void parameterControlHasRequestedDocumentation(ZelParameterControl& control) override;
  void parameterControlDidTapMeaninglessly(ZelParameterControl& control) override;

  // ---- Buttons and drawers.
  void bookTapped();
  void gearTapped();
  void logoTapped();
  void toggleUITheme();

  // ---- User zoom: the editor drawn larger, at one of kZoomSteps. The host
  // says which zoom is in effect (setZoom, nothing sent back); the user's
  // choice (logo stamp menu, Ctrl+plus, Ctrl+minus, Ctrl+0) goes to the
  // delegate as the interface preference "zoom" with the new factor, and
  // the host scales the window.
  static constexpr std::array<double, 5> kZoomSteps{1.0, 1.25, 1.5, 1.75, 2.0};
  // The step nearest to `zoom` (1 for anything that is not a number).
  static double nearestZoomStep(double zoom);
  double zoom() const { return zoom_; }
  void setZoom(double zoom) { zoom_ = nearestZoomStep(zoom); }
  // The user chose a zoom: a different step is kept and told the delegate.
  void zoomTo(double zoom);
  void zoomIn();
  void zoomOut();
  // Opens "<base URL>/manual/" followed by `extension` when given.
  void openManualWithExtension(std::optional<std::string_view> extension);
  void toggleDrawer(ZelDrawerView* drawer, bool force);
  bool hideVisibleDrawersPresenting(ZelDrawerView* drawer);
  bool hideAllDrawers();
  bool toggleAdvancedDrawer();
  bool togglePresetsDrawer();
  bool isAdvancedDrawerVisible() const;
  bool isPresetsDrawerVisible() const;
  ZelDrawerView* waitingDrawer() const { return waitingDrawer_; }
  // "opacity" 0 -> 1 (or 1 -> 0), ease-out, over `duration`.
  static ZelBasicAnimation fadeAnimationFadingIn(bool fadingIn, double duration);
  // The drawer transition's timing.
  static constexpr double kDrawerTransitionDuration = 0.28;
  void drawerDidTapMiniature(ZelDrawerView& drawer, int which) override;
  bool canDrawerViewToggleVisibilityToVisibility(ZelDrawerView& drawer, bool visible) override;

  // ---- Interaction rules (ZelGenericUI+Rules.cpp).
  void handleSideEffectsOfUpdatedControl(ZelParameterControl& control, float value);
  // "x" is x; anything else a number in the user's locale (0 when it is none).
  static float valueForArg(std::string_view arg, float x);
  // "/" divides; every other operator gives 0.
  static float resultForOperator(std::string_view op, std::string_view arg1, std::string_view arg2, float x);

  // ---- The maker's web site.
  static constexpr char kMakerWebSite[] = "https://www.zel-audio.example";

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
  void addAdvancedControlsDrawer();
  void addPresetDrawer();
  template <class Drawer>
  Drawer* insertDrawer(std::unique_ptr<Drawer> drawer);
  void animateDrawerTransition(ZelDrawerView& drawer, bool visible);
  void drawerTransitionDidStop(ZelDrawerView* drawer, bool visible);
  void flashGearIfHidden(const ZelParameter& parameter);
  bool isInClumpOfType(const ZelParameterControl& control, ZelClumpType type) const;
  void openURL(const std::string& url) const;
  void teardown();

  // Rules helpers (ZelGenericUI+Rules.cpp).
  void applyScope(ZelParameterControl& control, float value);
  void applyIndexedRule(const ZelPlist& rule, float value, const std::function<void(ZelParameterControl&, bool)>& apply);
  void scheduleDirtyCheck();

  const ZelConfig* config_ = nullptr;
  ZelRunLoop& runLoop_;
  ZelGenericUIDelegate* delegate_ = nullptr;
  std::vector<ZelParameterControl*> parameterControls_;
  bool registered_ = false;
  ZelPresetBar* presetBar_ = nullptr;
  ZelPowerBox* powerBox_ = nullptr;
  ZelClumpsView* clumpsView_ = nullptr;
  ZelClumpsView* advClumpsView_ = nullptr;
  // The advanced clumps view until the drawer takes it.
  std::unique_ptr<ZelClumpsView> pendingAdvClumpsView_;
  ZelDrawerView* advDrawer_ = nullptr;
  ZelPresetsDrawer* presetDrawer_ = nullptr;
  ZelParameterSketch* sketch_ = nullptr;
  std::unique_ptr<ZelKeyboardHandler> keyboard_;
  std::unique_ptr<ZelSpeedLim> sketchSpeedLim_;
  std::unique_ptr<ZelSpeedLim> advFlashLim_;
  std::vector<float> memoizedPValues_;
  std::vector<std::uint8_t> memoizedPValuesChanged_;
  ZelParameterControl* focusedControl_ = nullptr;
  ZelParameterControl* wasFocusedControl_ = nullptr;
  ZelDrawerView* waitingDrawer_ = nullptr;
  bool hasFocus_ = false;
  double zoom_ = 1.0;
  ZelMeteringCallback meteringCallback_;
  Layout layout_;
  ZelNotificationCenter::Observation themeObservation_;
  std::unique_ptr<ZelEditorAccessibility> accessibility_;
};

ZEL_NAMESPACE_END
