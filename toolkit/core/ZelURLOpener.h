// Opening an address or a file with the user's default application.
//
// Threading: main thread only. `open` never blocks and never waits for the
// application to start.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelURLOpener {
 public:
  virtual ~ZelURLOpener() = default;
  // Opens `url` (an address such as "https://..." or "file:///..." or an
  // absolute file path). Returns whether the request could be started; the
  // application's own success is never known.
  virtual bool open(const std::string& url) = 0;
};

// Remembers what it was asked to open (tests and the scripted driver).
class ZelRecordingURLOpener final : public ZelURLOpener {
 public:
  bool open(const std::string& url) override {
    opened_.push_back(url);
    return true;
  }
  const std::vector<std::string>& opened() const { return opened_; }
  void clear() { opened_.clear(); }

 private:
  std::vector<std::string> opened_;
};

// Runs `xdg-open URL` (found on PATH) with posix_spawnp, no shell in
// between, its standard input and outputs on /dev/null. It never waits for
// the child: children that have exited are reaped without blocking
// (waitpid with WNOHANG on exactly the children it started) at each call and
// when the opener is destroyed, so at most the children still running or
// exited since the last call exist as processes.
class ZelXdgURLOpener final : public ZelURLOpener {
 public:
  // `program` is looked up on PATH; tests may point it at another command.
  explicit ZelXdgURLOpener(std::string program = "xdg-open") : program_(std::move(program)) {}
  ~ZelXdgURLOpener() override;
  ZelXdgURLOpener(const ZelXdgURLOpener&) = delete;
  ZelXdgURLOpener& operator=(const ZelXdgURLOpener&) = delete;
  bool open(const std::string& url) override;
  // Reaps the children that have exited; returns how many are still running.
  std::size_t reapExitedChildren();

 private:
  std::string program_;
  std::vector<int> children_;  // pids of children not yet reaped
};

ZEL_NAMESPACE_END
