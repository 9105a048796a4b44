// The editor's values: the last known value of every parameter (the memo)
// and the flow between the controls, the memo and the host. A control's
// action goes to the host (through the editor's delegate) and into the memo;
// a change that the host reports sets the control, updates the memo and
// applies the interaction rules. A memo change feeds the sketch (at most
// about 60 times a second), schedules the undo snapshot and flashes the gear
// for a hidden advanced parameter.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference (the editor outlives it). Owns the memo and the sketch's rate
// limiter. Delayed calls are keyed on the editor, which cancels them.
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;
class ZelControl;
class ZelGenericUI;
class ZelParameter;
class ZelSpeedLim;

class ZelEditorValues {
 public:
  // Every parameter of `config` (may be null) starts at its initial value,
  // marked changed.
  ZelEditorValues(ZelGenericUI& ui, const ZelConfig* config, ZelRunLoop& runLoop);
  ~ZelEditorValues();
  ZelEditorValues(const ZelEditorValues&) = delete;
  ZelEditorValues& operator=(const ZelEditorValues&) = delete;

  // ---- Control to host.
  // A control's action.
  void handleParameterControlUpdated(ZelControl& sender);
  // Tells the delegate, then updates the memo.
  void notifyParameter(const ZelParameter& parameter, float value);
  // Stores a changed value (NaN never equals anything), feeds the sketch,
  // schedules the undo snapshot and flashes the gear for a hidden advanced
  // parameter. Ids outside 0 ... numParameters-1 are ignored.
  void updateMemoizedValue(float value, const ZelParameter& parameter);
  // Sends every registered control's initial value.
  void resetInitialValues();

  // ---- Host to editor.
  // Sets the first control of that pid, updates the memo and applies the
  // interaction rules. Unknown ids do nothing.
  void updateParameterKeyed(std::int64_t key, float value);
  // The same for every parameter with that code name.
  void updateParameterNamed(std::string_view name, float value);

  // ---- The memo.
  // The last known values and change flags, indexed by pid.
  std::span<const float> memoizedPValues() const { return memoizedPValues_; }
  std::span<const std::uint8_t> memoizedPValuesChanged() const { return memoizedPValuesChanged_; }
  // Hands the sketch the memo and the change flags, then clears the flags.
  void sendMemoizedPValuesToSketch();
  // The power parameter (pid 0) is on.
  bool isProcessing() const;
  // Frees the memo (the editor's teardown).
  void clear();

 private:
  ZelGenericUI& ui_;
  std::vector<float> memoizedPValues_;
  std::vector<std::uint8_t> memoizedPValuesChanged_;
  std::unique_ptr<ZelSpeedLim> sketchSpeedLim_;
};

ZEL_NAMESPACE_END
