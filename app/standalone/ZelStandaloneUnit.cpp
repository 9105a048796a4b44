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
      unit_(std::make_unique<ZelVantryUnit>(channelsOut == 1 ? 1 : 2, sampleRate)),
      channelsIn_(channelsIn),
      channelsOut_(channelsOut) {
  for (std::uint32_t pid = 0; pid < kParameterCount; ++pid)
    values_[pid] = ZelHostView::unitValueFromEditor(pid, kZelParameters[pid].initial);
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
  if (pid >= kParameterCount) return kZelUnitInvalidParameter;
  value = values_[pid];
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::setParameter(std::uint32_t pid, float value, const void* sender) {
  if (pid >= kParameterCount || std::isnan(value)) return kZelUnitInvalidParameter;
  values_[pid] = value;
  unit_->setParameter(static_cast<int>(pid), ZelHostView::editorValueFromUnit(pid, value));
  tellLater(sender, pid);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::notifyListeners(std::uint32_t pid, const void* sender) {
  if (pid >= kParameterCount) return kZelUnitInvalidParameter;
  tellLater(sender, pid);
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::postGesture(ZelUnitGesture, std::uint32_t pid, const void*) {
  // No automation to record in the standalone app.
  return pid < kParameterCount ? kZelUnitNoErr : kZelUnitInvalidParameter;
}

ZelUnitStatus ZelStandaloneUnit::setInterfacePreference(bool flag) {
  // A toggle event: the flag says that the theme changed, not to what.
  if (flag) themeFlag_ = !themeFlag_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::getPresetName(std::string& name) {
  name = presetName_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::setPresetName(const std::string& name) {
  presetName_ = name;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::getChannelCount(ZelUnitProperty which, std::uint32_t& count) {
  return ZelUnitChannelCount(which, channelsIn_, channelsOut_, count);
}

ZelUnitStatus ZelStandaloneUnit::getMetering(ZelUnitMetering& metering) {
  metering = {};
  return kZelUnitInvalidProperty;
}

ZelUnitStatus ZelStandaloneUnit::getZoom(double& zoom) {
  zoom = zoom_;
  return kZelUnitNoErr;
}

ZelUnitStatus ZelStandaloneUnit::setZoom(double zoom) {
  if (!std::isfinite(zoom) || zoom <= 0) return kZelUnitInvalidParameter;
  zoom_ = zoom;
  return kZelUnitNoErr;
}

ZEL_NAMESPACE_END
