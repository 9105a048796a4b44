// The standalone app's unit connection: the unit itself, in the same
// process. It keeps every parameter in the unit representation the host view
// speaks (the cutoffs as linear positions), sets the audio unit behind it in
// the unit's own units, and tells listeners through the run loop, one posted
// call per change, as a plug-in API's listener does. It also keeps the
// preset name, the theme flag and the channel counts.
//
// Ownership: owns the audio unit. Listeners are not owned: a listener
// disposes of itself before it goes. The run loop must outlive the
// connection; its pending calls are cancelled by the destructor.
// Threading: main thread only (the audio thread of the next step reaches
// the unit through its own queue).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "dsp/ZelVantryUnit.h"
#include "host/ZelUnitConnection.h"
#include "host/ZelUnitListeners.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelStandaloneUnit final : public ZelListeningUnitConnection {
 public:
  static constexpr std::uint32_t kParameterCount = kZelParameterCount;

  ZelStandaloneUnit(ZelRunLoop& runLoop, std::uint32_t channelsIn, std::uint32_t channelsOut,
                    double sampleRate = 48000);
  ~ZelStandaloneUnit() override;
  ZelStandaloneUnit(const ZelStandaloneUnit&) = delete;
  ZelStandaloneUnit& operator=(const ZelStandaloneUnit&) = delete;

  ZelVantryUnit& unit() { return *unit_; }
  bool themeFlag() const { return themeFlag_; }
  void setThemeFlag(bool flag) { themeFlag_ = flag; }

  // ---- ZelUnitConnection.
  ZelUnitStatus getParameter(std::uint32_t pid, float& value) override;
  ZelUnitStatus setParameter(std::uint32_t pid, float value, const void* sender) override;
  ZelUnitStatus notifyListeners(std::uint32_t pid, const void* sender) override;
  ZelUnitStatus postGesture(ZelUnitGesture gesture, std::uint32_t pid, const void* sender) override;
  ZelUnitStatus setInterfacePreference(bool flag) override;
  ZelUnitStatus getPresetName(std::string& name) override;
  ZelUnitStatus setPresetName(const std::string& name) override;
  ZelUnitStatus getChannelCount(ZelUnitProperty which, std::uint32_t& count) override;
  ZelUnitStatus getMetering(ZelUnitMetering& metering) override;
  ZelUnitStatus getZoom(double& zoom) override;
  ZelUnitStatus setZoom(double zoom) override;

 private:
  // Posts the value of `pid` to every listener of it.
  void tellLater(const void* sender, std::uint32_t pid);

  ZelRunLoop& runLoop_;
  std::unique_ptr<ZelVantryUnit> unit_;
  std::array<float, kParameterCount> values_{};  // unit representation
  std::string presetName_;
  std::uint32_t channelsIn_, channelsOut_;
  bool themeFlag_ = false;
  double zoom_ = 1.0;
};

ZEL_NAMESPACE_END
