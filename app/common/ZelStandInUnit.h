// An in-process stand-in for the audio unit, behind the same delegate
// interface a host bridge implements: it keeps a value per parameter id,
// takes every change the editor makes and reports it back through
// updateParameterKeyed on the run loop (a posted call, as a host's
// parameter listener does), carries the channel counts, the current preset
// name and the theme flag. The standalone app and the scripted driver use
// it until the real unit takes its place.
//
// Values are in the editor's own units: there is no unit-side conversion.
//
// Ownership: the editor is not owned; connect() a new one (or nullptr)
// before the old one goes. The run loop must outlive the unit; pending
// deliveries are cancelled by connect() and by the destructor. An observer
// (not owned, may be null) hears every call the editor makes.
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "editor/ZelGenericUI.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

// Hears what the editor tells the unit, in the order it happens.
class ZelStandInUnitObserver {
 public:
  virtual void unitReceivedValue(std::int64_t pid, float value) { (void)pid, (void)value; }
  virtual void unitBeganGesture(std::int64_t pid) { (void)pid; }
  virtual void unitEndedGesture(std::int64_t pid) { (void)pid; }
  virtual void unitReceivedPresetName(const std::string& name) { (void)name; }
  virtual void unitReceivedInterfacePreference(std::string_view key, double value) { (void)key, (void)value; }

 protected:
  ~ZelStandInUnitObserver() = default;
};

class ZelStandInUnit final : public ZelGenericUIDelegate {
 public:
  // Starts with every parameter of `config` at its initial value.
  ZelStandInUnit(ZelRunLoop& runLoop, const ZelConfig& config);
  ~ZelStandInUnit();
  ZelStandInUnit(const ZelStandInUnit&) = delete;
  ZelStandInUnit& operator=(const ZelStandInUnit&) = delete;

  // The editor values go to (nullptr: none). Cancels pending deliveries.
  void connect(ZelGenericUI* ui);
  ZelGenericUI* connected() const { return ui_; }
  void setObserver(ZelStandInUnitObserver* observer) { observer_ = observer; }
  // Whether the editor's own changes come back to it (on by default).
  void setEchoes(bool echoes) { echoes_ = echoes; }
  bool echoes() const { return echoes_; }

  // ---- The unit's state.
  // The value of a parameter id; 0 for one the unit does not know.
  float valueForParameterID(std::int64_t pid) const;
  const std::map<std::int64_t, float>& values() const { return values_; }
  // A change made on the unit's side (automation, the host): stored, then
  // reported to the editor through the run loop.
  void setValueFromHost(std::int64_t pid, float value);
  // Reports every value, in id order, through the run loop (the first thing
  // a host does for a new view).
  void synchronize();

  std::uint32_t channelsIn() const { return channelsIn_; }
  std::uint32_t channelsOut() const { return channelsOut_; }
  // Stores the counts and passes them to the connected editor.
  void setChannels(std::uint32_t in, std::uint32_t out);
  // The name of the preset last loaded ("" before any).
  const std::string& lastPreset() const { return lastPreset_; }
  // Flips each time the editor reports a theme toggle.
  bool themeFlag() const { return themeFlag_; }
  void setThemeFlag(bool flag) { themeFlag_ = flag; }

  // ---- A new description (the designer's reload).
  // The values under the code names of `config`'s parameters.
  std::map<std::string, float> valuesByCodeName(const ZelConfig& config) const;
  // Every parameter of `config` takes the value of its code name in
  // `byName`, or its initial value; ids `config` lacks are forgotten.
  void adoptValues(const ZelConfig& config, const std::map<std::string, float>& byName);

  // ---- ZelGenericUIDelegate.
  void interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) override;
  void interfaceBeganInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) override;
  void interfaceEndedInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) override;
  void interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI& ui, const std::string& name) override;
  void interfaceDidUpdateInterfacePreference(ZelGenericUI& ui, std::string_view key, double value) override;

 private:
  // The listener's hop: the editor hears the value on the next run.
  void deliverLater(std::int64_t pid, float value);

  ZelRunLoop& runLoop_;
  ZelGenericUI* ui_ = nullptr;
  ZelStandInUnitObserver* observer_ = nullptr;
  std::map<std::int64_t, float> values_;
  std::uint32_t channelsIn_ = 2, channelsOut_ = 2;
  std::string lastPreset_;
  bool themeFlag_ = false;
  bool echoes_ = true;
};

ZEL_NAMESPACE_END
