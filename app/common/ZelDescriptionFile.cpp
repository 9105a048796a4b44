#include "app/common/ZelDescriptionFile.h"

#include <sys/stat.h>

#include "model/ZelConfig.h"
#include "toolkit/foundation/ZelBundle.h"

ZEL_NAMESPACE_BEGIN

std::unique_ptr<ZelConfig> ZelLoadDescription(const std::string& path, std::string& error) {
  // Only the reader's errors matter here; the wrong-kind warnings are
  // zel-describe's to report.
  ZelConfigLoad load = ZelConfig::loadFile(path, false);
  for (const ZelDiagnostic& d : load.diagnostics) {
    if (d.severity != ZelDiagnostic::Severity::Error) continue;
    error = d.keyPath.empty() ? d.message : d.keyPath + ": " + d.message;
    return nullptr;
  }
  error.clear();
  return std::move(load.config);
}

std::string ZelDefaultDescriptionPath() { return ZelBundle::resourcesDirectory() + "/config.plist"; }

// ---- Watching.

ZelDescriptionWatcher::ZelDescriptionWatcher(ZelRunLoop& runLoop, std::string path, std::function<void()> changed,
                                             double interval)
    : runLoop_(runLoop), path_(std::move(path)), changed_(std::move(changed)), interval_(interval) {}

ZelDescriptionWatcher::~ZelDescriptionWatcher() { runLoop_.cancelAllForTarget(this); }

ZelDescriptionWatcher::Stamp ZelDescriptionWatcher::stamp() const {
  struct stat st {};
  Stamp s;
  if (::stat(path_.c_str(), &st) != 0) return s;
  s.exists = true;
  s.seconds = st.st_mtim.tv_sec;
  s.nanoseconds = st.st_mtim.tv_nsec;
  s.size = st.st_size;
  s.device = st.st_dev;
  s.inode = st.st_ino;
  return s;
}

void ZelDescriptionWatcher::start() {
  seen_ = stamp();
  scheduleNext();
}

void ZelDescriptionWatcher::scheduleNext() {
  const ZelCallKey key{this, "poll"};
  runLoop_.cancel(key);
  runLoop_.schedule(
      interval_,
      [this] {
        scheduleNext();
        poll();
      },
      key);
}

bool ZelDescriptionWatcher::poll() {
  const Stamp now = stamp();
  if (now == seen_) return false;
  seen_ = now;
  // A file on its way out (being replaced) is not a change yet.
  if (!now.exists) return false;
  if (changed_) changed_();
  return true;
}

ZEL_NAMESPACE_END
