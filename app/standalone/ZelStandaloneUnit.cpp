#include "app/standalone/ZelStandaloneUnit.h"

#include <cmath>

#include "host/ZelHostView.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kTell = "tell";

}  // namespace

ZelStandaloneUnit::ZelStandaloneUnit(ZelRunLoop& runLoop, std::uint32_t channelsIn, std::uint32_t channelsOut,
                                     double sampleRate)
    : runLoop_(runLoop),
      unitChannels_(channelsOut == 1 ? 1 : 2),
      sampleRate_(sampleRate),
      live_(ZelCurrentProduct().makeUnit(int(unitChannels_), sampleRate), ZelCurrentProduct().parameterCount()),
      product_(ZelCurrentProduct()),
      values_(product_.parameters.size()),
      channelsIn_(channelsIn),
      channelsOut_(channelsOut) {
  for (const ZelUnitParameter& p : product_.parameters)
    values_[std::size_t(p.pid)] = ZelHostView::unitValueFromEditor(std::uint32_t(p.pid), p.initial);
}

std::unique_ptr<ZelAudioUnit> ZelStandaloneUnit::makeUnit(double rate) const {
  auto unit = product_.makeUnit(int(unitChannels_), rate);
  for (std::uint32_t pid = 0; pid < values_.size(); ++pid) unit->setParameter(int(pid), valueInOwnUnits(pid));
  return unit;
}

void ZelStandaloneUnit::setSampleRate(double rate) {
  sampleRate_ = rate;
  live_.replace(makeUnit(rate));
}

float ZelStandaloneUnit::valueInOwnUnits(std::uint32_t pid) const {
  return pid < values_.size() ? ZelHostView::editorValueFromUnit(pid, values_[pid]) : 0.0f;
}

void ZelStandaloneUnit::setThemeFlag(bool flag) {
  if (flag == themeFlag_) return;
  themeFlag_ = flag;
  changed();
}

void ZelStandaloneUnit::changed() {
  if (changeHandler_) changeHandler_();
}

ZelStandaloneUnit::~ZelStandaloneUnit() { runLoop_.cancelAllForTarget(this); }

void ZelStandaloneUnit::tellLater(const void* sender, std::uint32_t pid) {
  const float value = values_[pid];
  runLoop_.schedule(
      0,
      [this, sender, pid, value] { listeners_.tell(sender, pid, value); },
      ZelCallKey{this, kTell});
}

ZelUnitStatus ZelStandaloneUnit::getParameter(std::uint32_t pid, float& value) {
  if (pid >= values_.size()) return kZelUnitInvalidParameter;
  value = values_[pid];
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::setParameter(std::uint32_t pid, float value, const void* sender) {
  if (pid >= values_.size() || std::isnan(value)) return kZelUnitInvalidParameter;
  const bool differs = values_[pid] != value;
  values_[pid] = value;
  live_.post(static_cast<int>(pid), valueInOwnUnits(pid));
  tellLater(sender, pid);
  if (differs) changed();
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::notifyListeners(std::uint32_t pid, const void* sender) {
  if (pid >= values_.size()) return kZelUnitInvalidParameter;
  tellLater(sender, pid);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::postGesture(ZelUnitGesture, std::uint32_t pid, const void*) {
  // No automation to record in the standalone app.
  return pid < values_.size() ? kZelUnitNoErr : kZelUnitInvalidParameter;
}

ZelUnitStatus ZelStandaloneUnit::setInterfacePreference(bool flag) {
  // A toggle event: the flag says that the theme changed, not to what.
  if (flag) setThemeFlag(!themeFlag_);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::getPresetName(std::string& name) {
  name = presetName_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::setPresetName(const std::string& name) {
  if (name == presetName_) return kZelUnitNoErr;
  presetName_ = name;
  changed();
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::getChannelCount(ZelUnitProperty which, std::uint32_t& count) {
  return ZelUnitChannelCount(which, channelsIn_, channelsOut_, count);
}

ZelUnitStatus ZelStandaloneUnit::getMetering(ZelUnitMetering& metering) {
  metering = {};
  if (live_.meterCount() == 0) return kZelUnitInvalidProperty;  // nothing to meter
  // The live unit's copies, not the unit: the audio thread may swap units.
  metering.function = [](void* context, float* levels, std::uint32_t count) {
    static_cast<const ZelLiveUnit*>(context)->readMeters(levels, count);
  };
  metering.context = &live_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::getZoom(double& zoom) {
  zoom = zoom_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::setZoom(double zoom) {
  if (!std::isfinite(zoom) || zoom <= 0) return kZelUnitInvalidParameter;
  if (zoom == zoom_) return kZelUnitNoErr;
  zoom_ = zoom;
  changed();
  return kZelUnitNoErr;
}

ZEL_NAMESPACE_END
