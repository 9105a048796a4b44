// What the host view sees of the audio unit: a small interface standing for
// a plug-in API's parameter and property calls. One implementation per host
// side: the LV2 UI adapter (ports and patch messages through the host), the
// standalone app (the unit in the same process), fakes in tests.
//
// Values are the unit's own representation: the frequency parameters are a
// linear position 20-20000 (the host view converts to and from hertz on a
// logarithmic scale); every other parameter is in its own units.
//
// Every call returns a status: 0 for success, anything else is a failure the
// host view logs (as a signed number, in hex and as four characters).
//
// Threading: main thread only. A connection delivers parameter changes to
// its listener on the main thread, from its own event handling (never from
// inside a call the host view makes, except setParameter's and
// notifyListeners' own synchronous notifications, as a listener does).
#pragma once

#include <cstdint>
#include <string>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

using ZelUnitStatus = std::int32_t;
inline constexpr ZelUnitStatus kZelUnitNoErr = 0;
// Conventional failures of connections (four-character codes).
inline constexpr ZelUnitStatus kZelUnitInvalidParameter = -10878;
inline constexpr ZelUnitStatus kZelUnitInvalidProperty = -10879;
inline constexpr ZelUnitStatus kZelUnitNotConnected = 0x21636f6e;  // '!con'

// The private properties between the editor and the unit.
enum class ZelUnitProperty : std::uint32_t {
  InterfacePreference = 64003,  // view -> unit: the theme was toggled (always 1)
  PresetName = 64004,           // both ways: the current preset's name
  ChannelsIn = 64005,           // unit -> view
  ChannelsOut = 64006,          // unit -> view
  Metering = 64007,             // unit -> view: the metering callback
  Zoom = 64008,                 // both ways: the user's zoom of the editor (1 to 2)
};

// Gesture events posted for automation recording.
enum class ZelUnitGesture : std::uint32_t { Begin = 1, End = 2 };

// Hears parameter changes; `sender` is whoever made the change (the host
// view itself for its own changes and synchronisation, null for the unit,
// the host or automation).
class ZelUnitParameterListener {
 public:
  virtual void parameterListener(const void* sender, std::uint32_t pid, float value) = 0;

 protected:
  ~ZelUnitParameterListener() = default;
};

// The metering record a unit offers to sketches that show its signal.
struct ZelUnitMetering {
  void (*function)(void* context, float* levels, std::uint32_t count) = nullptr;
  void* context = nullptr;
};

// What a sketch that meters audio asks for: the unit's metering function
// and context, and whether the unit offered them.
struct ZelUnitMeteringResult {
  ZelUnitMetering metering;
  bool valid = false;
};

class ZelUnitConnection;
// Reads the metering property; `valid` is false when the unit has none.
ZelUnitMeteringResult ZelGetMeteringResult(ZelUnitConnection& unit);

class ZelUnitConnection {
 public:
  virtual ~ZelUnitConnection() = default;

  // ---- Parameters (every id on the global scope).
  // Reads the current value.
  virtual ZelUnitStatus getParameter(std::uint32_t pid, float& value) = 0;
  // Sets a value and tells every listener of that id, the sender's own
  // included.
  virtual ZelUnitStatus setParameter(std::uint32_t pid, float value, const void* sender) = 0;
  // Tells every listener of that id its current value.
  virtual ZelUnitStatus notifyListeners(std::uint32_t pid, const void* sender) = 0;
  // Posts a begin or end gesture for automation.
  virtual ZelUnitStatus postGesture(ZelUnitGesture gesture, std::uint32_t pid, const void* sender) = 0;

  // ---- The listener: created once, then one call per parameter id.
  // Changes reach `listener` on the main thread, none coalesced.
  virtual ZelUnitStatus createListener(ZelUnitParameterListener* listener) = 0;
  virtual ZelUnitStatus addListenerParameter(ZelUnitParameterListener* listener, std::uint32_t pid) = 0;
  virtual ZelUnitStatus removeListenerParameter(ZelUnitParameterListener* listener, std::uint32_t pid) = 0;
  virtual ZelUnitStatus disposeListener(ZelUnitParameterListener* listener) = 0;

  // ---- Private properties.
  virtual ZelUnitStatus setInterfacePreference(bool flag) = 0;
  virtual ZelUnitStatus getPresetName(std::string& name) = 0;
  virtual ZelUnitStatus setPresetName(const std::string& name) = 0;
  virtual ZelUnitStatus getChannelCount(ZelUnitProperty which, std::uint32_t& count) = 0;
  virtual ZelUnitStatus getMetering(ZelUnitMetering& metering) = 0;
  // The editor's zoom, kept with the unit's state. A unit without one
  // answers kZelUnitInvalidProperty (the editor then stays at 100%).
  virtual ZelUnitStatus getZoom(double& zoom) {
    (void)zoom;
    return kZelUnitInvalidProperty;
  }
  virtual ZelUnitStatus setZoom(double zoom) {
    (void)zoom;
    return kZelUnitInvalidProperty;
  }
};

ZEL_NAMESPACE_END
