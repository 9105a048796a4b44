// The host view: the one view a host side places in the plug-in's window,
// and the only part of the editor that talks to the unit. It loads the
// description, makes the generic editor its only subview and becomes the
// editor's delegate; values travel both ways through a ZelUnitConnection
// (the host's changes to the editor, the user's changes to the unit with
// begin and end gestures), and so do the preset name, the theme toggle and
// the channel counts. While its window is key the editor has the keyboard.
//
// Values: the connection speaks the unit's representation (frequencies as
// the linear position 20-20000), the editor its own units (hertz); the
// current product's parameter table, generated from its description
// (dsp/ZelProduct.h, ids 0..N-1), says how each id converts and clamps. Ids
// past the table reach the editor as 0 and are not sent to the unit. Between the editor's begin and end of a gesture on
// an id, the unit's reports for it are dropped (the user's drag is never
// pulled back by an echo or automation); reports reach the editor on the
// next run-loop turn, the latest value per id only, so a host's flood costs
// one update per id and turn.
//
// Failed unit calls are logged, one line each, through the log sink
// (stderr by default), and the work goes on with what was obtained.
//
// Ownership: the view owns the description and (through the view tree) the
// editor. The connection is not owned: it must outlive the view, or be
// replaced first by setAU (nullptr disconnects). The destructor removes the
// listener. The run loop must outlive the view.
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "editor/ZelGenericUI.h"
#include "editor/ZelGenericUIDelegate.h"
#include "host/ZelUnitConnection.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

class ZelHostView final : public ZelView, public ZelGenericUIDelegate, private ZelUnitParameterListener {
 public:
  // The size every host view starts at, whatever the host asked for, until
  // its description gives the editor's own (editorSize()).
  static constexpr CGSize kInitialSize{480, 380};
  static constexpr double kSketchDelay = 1.0;
  static constexpr double kFocusReassertDelay = 0.5;
  // An entry of the outgoing values with nothing outstanding.
  static constexpr float kNothingOutstanding = 3.4028235e38f;

  // How a value converts between the unit and the editor.
  enum class Conversion { Switch, Plain, Frequency, WholeNumber };
  struct ParameterSpec {
    Conversion conversion;
    float minimum, maximum;
  };
  // The current product's table, id by id (dsp/ZelProduct.h).
  static const std::vector<ParameterSpec>& parameterTable();
  static std::uint32_t parameterCount() { return std::uint32_t(parameterTable().size()); }
  // The unit's value of `pid` as the editor sees it (converted, clamped;
  // 0 for an id past the table).
  static float editorValueFromUnit(std::uint32_t pid, float unitValue);
  // The editor's value as the unit takes it (0 for an id past the table).
  static float unitValueFromEditor(std::uint32_t pid, float editorValue);
  // The frequency parameters' two representations: hertz on a logarithmic
  // scale (the editor, the LV2 ports) and the unit's linear position
  // 20-20000. Unclamped.
  static float hertzFromPosition(float position);
  static float positionFromHertz(float hertz);

  // Delayed calls go to `runLoop`, which must outlive the view. The
  // description is read as "config" from `resourcesDirectory` (the bundle's
  // resources folder); empty: the process's bundle (ZelBundle).
  explicit ZelHostView(ZelRunLoop& runLoop, std::string resourcesDirectory = {});
  // A view that shows `config` (not null) instead of reading the bundle's:
  // the standalone app's description file, a designer's reload.
  ZelHostView(ZelRunLoop& runLoop, std::unique_ptr<ZelConfig> config);
  // Cancels the view's delayed calls, stops observing the window, removes
  // the listener and the editor.
  ~ZelHostView() override;
  ZelHostView(const ZelHostView&) = delete;
  ZelHostView& operator=(const ZelHostView&) = delete;

  // Where failed unit calls are reported (one line each, ending in "\n").
  void setLogSink(std::function<void(std::string_view line)> sink) { logSink_ = std::move(sink); }
  // The sketch added one second after connecting; by default the current
  // product's (host/ZelProductSketch.h), for a description that asks for
  // one; an empty factory: none.
  void setSketchFactory(ZelSketchFactory factory) { sketchFactory_ = std::move(factory); }
  static ZelSketchFactory productSketchFactory();

  // Connects to a unit (not owned; must outlive the view or be replaced):
  // listeners, description, editor, sketch a second later, the window's key
  // state, first responder, every current value and the preset name, the
  // deferred drawer step and the channel counts. Put the view in its window
  // first. A second call first removes the previous unit's listener.
  // The editor's size in points: the description's preferred size (its
  // metadata's width and height), else kInitialSize. Connecting (setAU)
  // sizes the view to it; hosts size their windows by it.
  CGSize editorSize() const;
  void setAU(ZelUnitConnection* unit);
  ZelUnitConnection* unit() const { return unit_; }
  ZelGenericUI* ui() const { return ui_; }
  const ZelConfig* config() const { return config_.get(); }
  const std::string& lastPreset() const { return lastPreset_; }
  float outgoingValue(std::uint32_t pid) const { return pid < count_ ? outgoing_[pid] : kNothingOutstanding; }

  void addListeners();
  void removeListeners();
  // Reads, sets back and notifies every value (so that each reaches the
  // editor through the listener), then tells the editor the preset name.
  void synchronizeUIWithParameterValues();
  // The unit's current value of `pid` (0 when the read fails; not logged).
  float valueForParameterID(std::uint32_t pid) const;
  void notifyEventType(ZelUnitGesture gesture, std::uint32_t pid);
  void requestPresetNamed(const std::string& name);
  // The unit's preset name changed on its own (a preset chosen in the
  // host): reads it again and tells the editor.
  void unitPresetNameChanged();

  // ---- Zoom. The host side scales its window: the handler hears every
  // zoom in effect (at connection, the user's choice, the unit's report).
  void setZoomHandler(std::function<void(double zoom)> handler) { zoomHandler_ = std::move(handler); }
  double zoom() const { return zoom_; }
  // The unit's zoom changed on its own (restored state): reads it again.
  void unitZoomChanged();

  // ---- Focus (the window's key state).
  void containingWindowDidResignKey();
  void containingWindowDidBecomeKey();
  void ensureFirstResponder();

  // ---- ZelGenericUIDelegate.
  void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) override;
  void interfaceBeganInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) override;
  void interfaceEndedInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) override;
  void interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI& ui, const std::string& name) override;
  void interfaceDidUpdateInterfacePreference(ZelGenericUI& ui, std::string_view key, double value) override;

  // ---- ZelUnitParameterListener: a change the unit reports.
  void parameterListener(const void* sender, std::uint32_t pid, float value) override;

 private:
  void logFailure(int line, const char* operation, ZelUnitStatus status) const;
  void deliver(std::uint32_t pid, float value);
  void addSketch();
  void observeWindow();
  void removeEditor();
  void applyZoom(double zoom);
  void scheduleDelivery(std::uint32_t pid);

  ZelRunLoop& runLoop_;
  std::string resourcesDirectory_;
  ZelUnitConnection* unit_ = nullptr;
  bool listening_ = false;
  std::unique_ptr<ZelConfig> config_;
  bool readsBundleConfig_ = true;
  ZelGenericUI* ui_ = nullptr;  // owned by the view tree
  ZelWindow* observedWindow_ = nullptr;
  std::string lastPreset_;
  std::uint32_t count_;  // the product's parameters, ids 0..count_-1
  std::vector<float> outgoing_;
  // Gestures the editor has begun and not ended, per id: while one is open
  // the user's value stands and what the unit reports for that id (its echo
  // or a host's late or automated value) is dropped, so the control under
  // the pointer is never pulled back.
  std::vector<int> gestures_;
  // The unit's latest value per id waiting for the run loop; one delivery
  // per id is pending at a time, however many reports arrive before it.
  std::vector<float> pendingValue_;
  std::vector<char> deliveryPending_;
  // Reports were dropped during a gesture (the echo of the user's own
  // values among them): when it ends the user's last value is delivered as
  // its echo would have been, so the editor applies its rules to it, and
  // the control stays where the user left it.
  std::vector<char> heldDuringGesture_;
  std::vector<float> lastSent_;  // unit representation
  ZelSketchFactory sketchFactory_;
  std::function<void(std::string_view)> logSink_;
  std::function<void(double)> zoomHandler_;
  double zoom_ = 1.0;
};

ZEL_NAMESPACE_END
