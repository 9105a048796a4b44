// The standalone app's unit connection: the unit itself, in the same
// process. It keeps every parameter in the unit representation the host view
// speaks (the cutoffs as linear positions), posts each change to the audio
// unit in the unit's own units (through the live unit's mailbox: the audio
// thread applies it at its next block), and tells listeners through the run
// loop, one posted call per change, as a plug-in API's listener does. It
// also keeps the preset name, the theme flag and the channel counts, and
// tells one change handler (the session keeper) that something changed.
// Its metering reads the levels the live unit copies after each block, so
// the editor's meter keeps reading safely across a change of unit.
//
// Ownership: owns the live unit (and through it the audio unit). Listeners
// are not owned: a listener disposes of itself before it goes. The run loop
// must outlive the connection; its pending calls are cancelled by the
// destructor. Whoever plays live() on an audio thread stops before the
// connection goes.
// Threading: main thread only, except live().process(), which belongs to
// the audio thread.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/standalone/ZelLiveUnit.h"
#include "dsp/ZelProduct.h"
#include "host/ZelUnitConnection.h"
#include "host/ZelUnitListeners.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelStandaloneUnit final : public ZelListeningUnitConnection {
 public:
  // The current product's unit (dsp/ZelProduct.h), for channelsOut
  // channels (1, else 2).
  ZelStandaloneUnit(ZelRunLoop& runLoop, std::uint32_t channelsIn, std::uint32_t channelsOut,
                    double sampleRate = 48000);
  ~ZelStandaloneUnit() override;
  ZelStandaloneUnit(const ZelStandaloneUnit&) = delete;
  ZelStandaloneUnit& operator=(const ZelStandaloneUnit&) = delete;

  ZelLiveUnit& live() { return live_; }
  std::uint32_t unitChannels() const { return unitChannels_; }
  double sampleRate() const { return sampleRate_; }
  // Prepares a unit for `rate` with the current values (allocates) and
  // hands it to the audio thread, which plays it from its next block.
  void setSampleRate(double rate);

  bool themeFlag() const { return themeFlag_; }
  void setThemeFlag(bool flag);
  const std::string& presetName() const { return presetName_; }
  // The value of `pid` in the parameter's own units (hertz for the cutoffs).
  float valueInOwnUnits(std::uint32_t pid) const;
  // Called after a value, the preset name or the theme flag changed.
  void setChangeHandler(std::function<void()> handler) { changeHandler_ = std::move(handler); }

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
  double zoom() const { return zoom_; }
  ZelUnitStatus setZoom(double zoom) override;

 private:
  // Posts the value of `pid` to every listener of it.
  void tellLater(const void* sender, std::uint32_t pid);
  void changed();
  std::unique_ptr<ZelAudioUnit> makeUnit(double rate) const;

  ZelRunLoop& runLoop_;
  std::uint32_t unitChannels_;
  double sampleRate_;
  ZelLiveUnit live_;
  std::function<void()> changeHandler_;
  const ZelProduct& product_;
  std::vector<float> values_;  // unit representation, by pid
  std::string presetName_;
  std::uint32_t channelsIn_, channelsOut_;
  bool themeFlag_ = false;
  double zoom_ = 1.0;
};

ZEL_NAMESPACE_END
