// The editor's host-facing protocol: what the generic editor tells the
// host bridge that owns it. Every call carries the editor first. A bridge
// implements it and sets itself as the editor's delegate; the editor calls
// it on the main thread only, from its own event handling.
//
// Ownership: the editor holds its delegate as a non-owning pointer; the
// delegate clears it (setDelegate(nullptr)) or destroys the editor first.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;

// What the editor tells its host. Every call carries the editor first.
class ZelGenericUIDelegate {
 public:
  // The user changed a parameter (value in the parameter's own units).
  virtual void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) = 0;
  // Gesture begin and end, for automation recording. The editor sends them
  // (and focuses the control on a begin) only when
  // respondsToInteractionGestures() is true.
  virtual void interfaceBeganInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) {
    (void)ui, (void)key;
  }
  virtual void interfaceEndedInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) {
    (void)ui, (void)key;
  }
  virtual bool respondsToInteractionGestures() const { return true; }
  // A preset was loaded.
  virtual void interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI& ui, const std::string& name) {
    (void)ui, (void)name;
  }
  // An interface preference changed: key "theme", value 1 when the theme is
  // toggled (a toggle event, not the new theme).
  virtual void interfaceDidUpdateInterfacePreference(ZelGenericUI& ui, std::string_view key, double value) {
    (void)ui, (void)key, (void)value;
  }

 protected:
  ~ZelGenericUIDelegate() = default;
};

ZEL_NAMESPACE_END
