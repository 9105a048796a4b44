// The scripted driver: the editor on the offscreen backend with the virtual
// clock, an in-memory clipboard and a printing URL opener, started up by the
// stand-in unit as a host does, then driven one script line at a time.
//
// Output (to `out`, one line per event as it happens): "update PID VALUE",
// "begin PID", "end PID", "preset NAME", "pref KEY VALUE", "open ADDRESS",
// and what "print clipboard" and "dump" print; numbers with %.9g. Notes
// about lines that had no effect (a menu item that is not there) go to
// `notes`.
//
// Ownership: owns its clock, run loop, window, backends and the editor
// session; `out` and `notes` are not owned and must outlive it. While it
// lives its run loop is the thread's current one. Threading: main thread.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/common/ZelEditorSession.h"
#include "app/drive/DrivePlatformWindow.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

class ZelDriveRunner final : private ZelStandInUnitObserver {
 public:
  // How long the start-up runs before the script: the drawer step, the
  // sketch and the first undo snapshot have happened by then.
  static constexpr double kStartUpSeconds = 1.1;

  ZelDriveRunner(std::unique_ptr<ZelConfig> config, double scale, bool echoes, std::FILE* out, std::FILE* notes);
  ~ZelDriveRunner();
  ZelDriveRunner(const ZelDriveRunner&) = delete;
  ZelDriveRunner& operator=(const ZelDriveRunner&) = delete;

  // Opens the editor, gives the window focus, has the unit report every
  // value, and runs the clock for kStartUpSeconds.
  void start();
  // Runs one script line (blank and comment lines do nothing), then every
  // call due now. False, with `error` saying why, when the line is not
  // understood (nothing of it has been done then).
  bool runLine(std::string_view line, std::string& error);

  ZelGenericUI* editor() const { return session_->editor(); }
  ZelEditorSession& session() { return *session_; }
  ZelWindow& window() { return window_; }
  ZelRunLoop& runLoop() { return loop_; }
  double now() const { return clock_.now(); }

 private:
  using Words = std::vector<std::string>;
  using Handler = bool (ZelDriveRunner::*)(const Words&, std::string&);
  struct Command {
    std::string_view name;
    Handler handler;
  };
  static const Command kCommands[];

  // ---- Commands (words[0] is the command's name).
  bool wait(const Words& w, std::string& error);
  bool mouse(const Words& w, std::string& error);
  bool rightClick(const Words& w, std::string& error);
  bool menu(const Words& w, std::string& error);
  bool scroll(const Words& w, std::string& error);
  bool key(const Words& w, std::string& error);
  bool type(const Words& w, std::string& error);
  bool host(const Words& w, std::string& error);
  bool channels(const Words& w, std::string& error);
  bool focus(const Words& w, std::string& error);
  bool preset(const Words& w, std::string& error);
  bool saved(const Words& w, std::string& error);
  bool clipboard(const Words& w, std::string& error);
  bool print(const Words& w, std::string& error);
  bool render(const Words& w, std::string& error);
  bool dump(const Words& w, std::string& error);

  // X and Y at words[1], words[2] (editor points, y up) in window points.
  bool point(const Words& w, std::size_t at, CGPoint& p, std::string& error) const;
  bool modifiers(const Words& w, std::size_t at, ZelEventModifierFlags& flags, std::string& error) const;
  void send(ZelEvent event);
  void pressKey(const ZelEvent& down);
  void runDueCalls();
  void line(const std::string& text);

  // ---- ZelStandInUnitObserver: the output lines.
  void unitReceivedValue(std::int64_t pid, float value) override;
  void unitBeganGesture(std::int64_t pid) override;
  void unitEndedGesture(std::int64_t pid) override;
  void unitReceivedPresetName(const std::string& name) override;
  void unitReceivedInterfacePreference(std::string_view key, double value) override;

  std::FILE* out_;
  std::FILE* notes_;
  ZelVirtualClock clock_;
  ZelRunLoop loop_;
  ZelWindow window_;
  ZelOffscreenWindowHost host_;
  ZelDriveURLOpener opener_;
  ZelDrivePlatformWindow platform_;
  std::unique_ptr<ZelEditorSession> session_;
};

ZEL_NAMESPACE_END
