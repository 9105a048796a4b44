// The editor's values: the flow between controls, memo and host.
#include "editor/ZelEditorValues.h"

#include <algorithm>
#include <cmath>

#include "editor/ZelGenericUI.h"
#include "toolkit/foundation/ZelSpeedLim.h"
#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kSketchLimit = 0.01666;

}  // namespace

ZelEditorValues::ZelEditorValues(ZelGenericUI& ui, const ZelConfig* config, ZelRunLoop& runLoop)
    : ui_(ui), sketchSpeedLim_(std::make_unique<ZelSpeedLim>(runLoop)) {
  const std::size_t count = config ? static_cast<std::size_t>(std::max<std::int64_t>(0, config->numParameters())) : 0;
  memoizedPValues_.assign(count, 0.0f);
  memoizedPValuesChanged_.assign(count, 0);
  if (config) {
    config->enumerateParameters([this](const ZelParameter& p, const ZelClump&) {
      if (p.pid < 0 || p.pid >= static_cast<std::int64_t>(memoizedPValues_.size())) return;
      memoizedPValues_[static_cast<std::size_t>(p.pid)] = p.initialValue;
      memoizedPValuesChanged_[static_cast<std::size_t>(p.pid)] = 1;
    });
  }
}

ZelEditorValues::~ZelEditorValues() = default;

void ZelEditorValues::clear() {
  memoizedPValues_.clear();
  memoizedPValuesChanged_.clear();
}

// ---- Control to host.

void ZelEditorValues::handleParameterControlUpdated(ZelControl& sender) {
  auto* control = dynamic_cast<ZelParameterControl*>(&sender);
  if (!control || !control->parameter()) return;
  notifyParameter(*control->parameter(), control->floatValue());
}

void ZelEditorValues::notifyParameter(const ZelParameter& parameter, float value) {
  if (ZelGenericUIDelegate* delegate = ui_.delegate()) delegate->interfaceUpdatedParameterKeyed(ui_, parameter.pid, value);
  updateMemoizedValue(value, parameter);
}

void ZelEditorValues::updateMemoizedValue(float value, const ZelParameter& parameter) {
  if (parameter.pid < 0 || parameter.pid >= static_cast<std::int64_t>(memoizedPValues_.size())) return;
  const auto pid = static_cast<std::size_t>(parameter.pid);
  float& memo = memoizedPValues_[pid];
  if (!std::isnan(value) && !std::isnan(memo) && value == memo) return;
  memo = value;
  memoizedPValuesChanged_[pid] = 1;
  if (ui_.sketch()) {
    sketchSpeedLim_->fireWithLimit(kSketchLimit, &ui_, "sendMemoizedPValuesToSketch",
                                   [this] { sendMemoizedPValuesToSketch(); });
  }
  ui_.undo().potentiallySaveToUndoRedoStack();
  ui_.drawers().flashGearIfHidden(parameter);
}

void ZelEditorValues::sendMemoizedPValuesToSketch() {
  ZelParameterSketch* sketch = ui_.sketch();
  if (!sketch) return;
  sketch->updateWithParameterValues(memoizedPValues_, memoizedPValuesChanged_, true);
  std::fill(memoizedPValuesChanged_.begin(), memoizedPValuesChanged_.end(), std::uint8_t{0});
}

bool ZelEditorValues::isProcessing() const {
  if (memoizedPValues_.empty()) return false;
  const float power = memoizedPValues_[0];
  return std::isfinite(power) ? static_cast<long long>(power) != 0 : !std::isnan(power);
}

void ZelEditorValues::resetInitialValues() {
  for (ZelParameterControl* control : ui_.parameterControls())
    if (control->parameter()) notifyParameter(*control->parameter(), control->parameter()->initialValue);
}

// ---- Host to editor.

void ZelEditorValues::updateParameterKeyed(std::int64_t key, float value) {
  for (ZelParameterControl* control : ui_.parameterControls()) {
    if (!control->parameter() || control->parameter()->pid != key) continue;
    control->setFloatValue(value);
    updateMemoizedValue(value, *control->parameter());
    ui_.rules().handleSideEffectsOfUpdatedControl(*control, value);
    return;
  }
}

void ZelEditorValues::updateParameterNamed(std::string_view name, float value) {
  const ZelConfig* config = ui_.config();
  if (!config) return;
  std::vector<std::int64_t> keys;
  config->enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    if (p.codesafeName == name) keys.push_back(p.pid);
  });
  for (std::int64_t key : keys) updateParameterKeyed(key, value);
}

ZEL_NAMESPACE_END
