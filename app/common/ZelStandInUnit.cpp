#include "app/common/ZelStandInUnit.h"

#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kDeliver = "deliver";

}  // namespace

ZelStandInUnit::ZelStandInUnit(ZelRunLoop& runLoop, const ZelConfig& config) : runLoop_(runLoop) {
  adoptValues(config, {});
}

ZelStandInUnit::~ZelStandInUnit() { runLoop_.cancelAllForTarget(this); }

void ZelStandInUnit::connect(ZelGenericUI* ui) {
  runLoop_.cancelAllForTarget(this);
  ui_ = ui;
}

// ---- The unit's state.

float ZelStandInUnit::valueForParameterID(std::int64_t pid) const {
  auto it = values_.find(pid);
  return it == values_.end() ? 0.0f : it->second;
}

void ZelStandInUnit::deliverLater(std::int64_t pid, float value) {
  runLoop_.schedule(
      0,
      [this, pid, value] {
        if (ui_) ui_->updateParameterKeyed(pid, value);
      },
      ZelCallKey{this, kDeliver});
}

void ZelStandInUnit::setValueFromHost(std::int64_t pid, float value) {
  values_[pid] = value;
  deliverLater(pid, value);
}

void ZelStandInUnit::synchronize() {
  for (const auto& [pid, value] : values_) deliverLater(pid, value);
}

void ZelStandInUnit::setChannels(std::uint32_t in, std::uint32_t out) {
  channelsIn_ = in;
  channelsOut_ = out;
  if (ui_) ui_->setChannelsIn(in, out);
}

// ---- A new description.

std::map<std::string, float> ZelStandInUnit::valuesByCodeName(const ZelConfig& config) const {
  std::map<std::string, float> byName;
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    auto it = values_.find(p.pid);
    if (it != values_.end()) byName.emplace(p.codesafeName, it->second);
  });
  return byName;
}

void ZelStandInUnit::adoptValues(const ZelConfig& config, const std::map<std::string, float>& byName) {
  values_.clear();
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    auto it = byName.find(p.codesafeName);
    values_.emplace(p.pid, it != byName.end() ? it->second : p.initialValue);
  });
}

// ---- What the editor tells the unit.

void ZelStandInUnit::interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) {
  (void)ui;
  values_[key] = value;
  if (observer_) observer_->unitReceivedValue(key, value);
  // The unit's listener reports the change back, also to its sender.
  if (echoes_) deliverLater(key, value);
}

void ZelStandInUnit::interfaceBeganInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) {
  (void)ui;
  if (observer_) observer_->unitBeganGesture(key);
}

void ZelStandInUnit::interfaceEndedInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) {
  (void)ui;
  if (observer_) observer_->unitEndedGesture(key);
}

void ZelStandInUnit::interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI& ui, const std::string& name) {
  (void)ui;
  lastPreset_ = name;
  if (observer_) observer_->unitReceivedPresetName(name);
}

void ZelStandInUnit::interfaceDidUpdateInterfacePreference(ZelGenericUI& ui, std::string_view key, double value) {
  (void)ui;
  // A toggle event: the value says that the theme changed, not to what.
  if (key == "theme" && value != 0) themeFlag_ = !themeFlag_;
  if (observer_) observer_->unitReceivedInterfacePreference(key, value);
}

ZEL_NAMESPACE_END
