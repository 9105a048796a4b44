// The standalone app's session: the parameter values (by code name, in
// each parameter's own units), the preset name, the theme and the editor's
// zoom, kept in an
// XML property list so that a restart, or a crash, finds them again. The
// product is the current one (dsp/ZelProduct.h): its name makes the format
// word, its slug the folder, its parameter table the values.
//
//   <dict>
//     <key>format</key>  <string>NAME session</string>
//     <key>version</key> <integer>1</integer>
//     <key>values</key>  <dict><key>Cutoff</key><real>300</real> ...</dict>
//     <key>preset</key>  <string>Warm</string>
//     <key>theme</key>   <string>dark</string>
//     <key>zoom</key>    <real>1.25</real>
//   </dict>
//
// Reading trusts nothing: a file that is not such a dictionary (damaged,
// someone else's, a later version) is set aside under
// "<name>.bad-<YYYYmmdd-HHMMSS>" and the session starts from the defaults;
// unknown code names and values of the wrong kind are ignored and values
// outside their range clamped, each with a note. Writing goes to a
// temporary file in the same folder, synced, then renamed over the old one
// (and the folder synced): a reader sees the old file or the new one, never
// part of one.
//
// ZelSessionKeeper writes the standalone unit's session about a second
// after a change (the first change of a quiet spell schedules the write, so
// a long drag is written every second) and when asked (on exit).
//
// Ownership: plain values; the keeper holds references to the unit and the
// run loop, which must outlive it (its pending write is cancelled by its
// destructor). Threading: the functions are reentrant; the keeper is main
// thread only.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/standalone/ZelStandaloneUnit.h"
#include "dsp/ZelProduct.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

struct ZelSessionState {
  std::vector<float> values = std::vector<float>(ZelCurrentProduct().parameters.size());  // own units, by pid
  std::string presetName;
  bool dark = false;
  double zoom = 1.0;  // the editor's zoom, 1 to 2

  // Every parameter at its initial value, no preset, the light theme, 100%.
  static ZelSessionState defaults();
  // What `unit` holds now.
  static ZelSessionState of(const ZelStandaloneUnit& unit);
  // Sets `unit`'s values, preset name, theme flag and zoom.
  void applyTo(ZelStandaloneUnit& unit) const;
};

struct ZelSessionReading {
  enum class Outcome { Missing, Restored, SetAside };
  Outcome outcome = Outcome::Missing;
  ZelSessionState state = ZelSessionState::defaults();
  std::vector<std::string> notes;  // ignored and clamped entries of a restored file
  std::string problem;             // why the file was set aside
  std::string setAsidePath;        // where it went (empty when it could not be moved)
};

// $XDG_CONFIG_HOME/SLUG/session.plist ($HOME/.config when XDG_CONFIG_HOME
// is unset or not absolute), SLUG the product's; empty without either.
std::string ZelDefaultSessionPath();

// Reads the session at `path`; a missing file gives the defaults.
ZelSessionReading ZelReadSession(const std::string& path);

// Writes `state` to `path` (making its folder when missing). False with the
// reason in `error` when it could not; the old file is then untouched.
bool ZelWriteSession(const std::string& path, const ZelSessionState& state, std::string& error);

class ZelSessionKeeper {
 public:
  static constexpr double kWriteDelay = 1.0;

  // Installs itself as `unit`'s change handler.
  ZelSessionKeeper(ZelRunLoop& runLoop, ZelStandaloneUnit& unit, std::string path);
  ~ZelSessionKeeper();
  ZelSessionKeeper(const ZelSessionKeeper&) = delete;
  ZelSessionKeeper& operator=(const ZelSessionKeeper&) = delete;

  const std::string& path() const { return path_; }
  bool hasUnsavedChanges() const { return dirty_; }
  std::size_t writeCount() const { return writes_; }
  // Writes now when something changed since the last write (or `always`);
  // false when a write failed (reported on stderr once per failure spell).
  bool flush(bool always = false);

 private:
  void changed();

  ZelRunLoop& runLoop_;
  ZelStandaloneUnit& unit_;
  std::string path_;
  bool dirty_ = false;
  bool scheduled_ = false;
  bool failing_ = false;
  std::size_t writes_ = 0;
};

ZEL_NAMESPACE_END
