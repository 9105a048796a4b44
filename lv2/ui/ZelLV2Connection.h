// The unit as an LV2 UI sees it: the plug-in's control ports and its atom
// ports, reached only through the host (write_function, port_event, touch).
// Implements the host view's ZelUnitConnection.
//
// Values: the ports carry each parameter in its own units (the cutoffs in
// hertz); the connection speaks the unit representation of the host view
// (the cutoffs as the linear position 20-20000) and converts between them.
// A port is written only when its value changes, so the host view's
// start-up synchronisation writes nothing; listeners hear every change, the
// sender's own included, as soon as it is made.
//
// The ports and URIs are the current product's (dsp/ZelProduct.h). The
// private properties travel as messages on the atom ports (see
// lv2/common/ZelLV2Protocol.h): the theme toggle and the preset name go to
// the plug-in; its answers (preset name, remembered theme, channel counts)
// arrive through portEvent and are handed to the observer.
//
// A product that meters (meter output ports after the notify port) gets its
// levels through portEvent too; getMetering offers them to the sketch.
//
// Nothing the host sends is trusted: unknown ports, wrong sizes or formats,
// non-finite values and malformed atoms are ignored.
//
// Ownership: the host's controller, functions and features are borrowed for
// the UI instance's life. Threading: the UI thread only.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include "host/ZelMeterLevels.h"
#include "host/ZelUnitConnection.h"
#include "host/ZelUnitListeners.h"
#include "dsp/ZelProduct.h"

ZEL_NAMESPACE_BEGIN

class ZelLV2Connection final : public ZelListeningUnitConnection {
 public:
  // What the plug-in reported about its private state.
  struct Observer {
    std::function<void(const std::string& name)> presetNameChanged;
    std::function<void(bool toggled)> themeReported;
    std::function<void(double zoom)> zoomReported;
  };

  // `touch` may be null (the host offers no ui:touch). `channels` is the
  // plug-in's channel count until it reports its own.
  ZelLV2Connection(LV2UI_Write_Function write, LV2UI_Controller controller, LV2_URID_Map* map,
                   const LV2UI_Touch* touch, std::uint32_t channels);

  void setObserver(Observer observer) { observer_ = std::move(observer); }
  // Asks the plug-in for its preset name, theme and channel counts.
  void requestState();
  // The host's port_event.
  void portEvent(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* buffer);

  // A port value as the port carries it, and as the unit representation.
  static float unitValueFromPort(std::uint32_t pid, float portValue);
  static float portValueFromUnit(std::uint32_t pid, float unitValue);

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
  struct URIDs {
    LV2_URID atomEventTransfer, atomObject, atomURID, atomString, atomInt, atomBool;
    LV2_URID set, get, patchProperty, patchValue;
    LV2_URID presetName, theme, themeToggle, zoom, channelsIn, channelsOut;
  };

  void tell(const void* sender, std::uint32_t pid);
  void receiveAtom(const LV2_Atom* atom, std::uint32_t size);
  void receiveProperty(LV2_URID key, const LV2_Atom* value);
  // Sends a Set message of `key` with a string, a Bool or an Int value.
  void sendSet(LV2_URID key, const std::string& value);
  void sendSet(LV2_URID key, bool value);
  void sendSet(LV2_URID key, std::int32_t value);
  template <typename Forge>
  void sendSetWith(LV2_URID key, std::size_t valueBytes, Forge forgeValue);
  void sendGet();
  void writeAtom(const void* atom, std::uint32_t size);

  LV2UI_Write_Function write_;
  LV2UI_Controller controller_;
  const LV2UI_Touch* touch_;
  URIDs urids_{};
  LV2_Atom_Forge forge_{};  // initialised once; each message forges into its own buffer
  const ZelProductLV2& ports_;
  std::vector<float> values_;  // unit representation, by pid
  // The meter output ports' last values (the metering record reads them).
  ZelMeterLevels meters_;
  std::string presetName_;
  std::uint32_t channelsIn_, channelsOut_;
  double zoom_ = 1.0;
  Observer observer_;
};

ZEL_NAMESPACE_END
