// The description file on disk, for the tools: loading it with a clear
// error, and watching it for changes (the designer's edit-and-look loop).
//
// Threading: main thread only (the watcher polls on the run loop).
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

// The description at `path`; nullptr with `error` set ("cannot open the
// file: No such file or directory", ...) when it cannot be read as a
// property list. Values of the wrong kind are not errors: the editor shows
// what it can.
std::unique_ptr<ZelConfig> ZelLoadDescription(const std::string& path, std::string& error);

// The default description: config.plist in the bundle's resources.
std::string ZelDefaultDescriptionPath();

// Polls a file's modification time (with its size and identity, so that a
// file replaced by renaming counts) every `interval` seconds on the run
// loop, and calls `changed` once per change seen. A file that disappears
// and comes back counts as changed when it is back. Costs one stat() per
// poll; cancels its polls when destroyed. The run loop must outlive it.
class ZelDescriptionWatcher {
 public:
  static constexpr double kDefaultInterval = 0.5;

  ZelDescriptionWatcher(ZelRunLoop& runLoop, std::string path, std::function<void()> changed,
                        double interval = kDefaultInterval);
  ~ZelDescriptionWatcher();
  ZelDescriptionWatcher(const ZelDescriptionWatcher&) = delete;
  ZelDescriptionWatcher& operator=(const ZelDescriptionWatcher&) = delete;

  // Takes the file's current state as seen and starts polling.
  void start();
  // One poll now: true (after calling `changed`) when the file changed.
  bool poll();

 private:
  struct Stamp {
    bool exists = false;
    long long seconds = 0, nanoseconds = 0, size = 0;
    unsigned long long device = 0, inode = 0;
    friend bool operator==(const Stamp&, const Stamp&) = default;
  };
  Stamp stamp() const;
  void scheduleNext();

  ZelRunLoop& runLoop_;
  std::string path_;
  std::function<void()> changed_;
  double interval_;
  Stamp seen_;
};

ZEL_NAMESPACE_END
