#include "toolkit/core/ZelURLOpener.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

extern char** environ;

ZEL_NAMESPACE_BEGIN

namespace {

// File actions that put the child's standard streams on /dev/null.
bool nullStreams(posix_spawn_file_actions_t& actions) {
  if (posix_spawn_file_actions_init(&actions) != 0) return false;
  bool ok = posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0) == 0 &&
            posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0) == 0 &&
            posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0) == 0;
  if (!ok) posix_spawn_file_actions_destroy(&actions);
  return ok;
}

// The child starts with default signal dispositions and an empty mask,
// whatever the host process did to its own.
bool cleanSignals(posix_spawnattr_t& attr) {
  if (posix_spawnattr_init(&attr) != 0) return false;
  sigset_t none, all;
  sigemptyset(&none);
  sigfillset(&all);
  bool ok = posix_spawnattr_setsigmask(&attr, &none) == 0 && posix_spawnattr_setsigdefault(&attr, &all) == 0 &&
            posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF) == 0;
  if (!ok) posix_spawnattr_destroy(&attr);
  return ok;
}

}  // namespace

ZelXdgURLOpener::~ZelXdgURLOpener() { reapExitedChildren(); }

bool ZelXdgURLOpener::open(const std::string& url) {
  reapExitedChildren();
  if (url.empty()) return false;
  posix_spawn_file_actions_t actions;
  if (!nullStreams(actions)) return false;
  posix_spawnattr_t attr;
  if (!cleanSignals(attr)) {
    posix_spawn_file_actions_destroy(&actions);
    return false;
  }
  std::string program = program_, argument = url;
  char* argv[] = {program.data(), argument.data(), nullptr};
  pid_t pid = 0;
  int rc = posix_spawnp(&pid, program.c_str(), &actions, &attr, argv, environ);
  posix_spawnattr_destroy(&attr);
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) return false;
  children_.push_back(pid);
  return true;
}

std::size_t ZelXdgURLOpener::reapExitedChildren() {
  auto gone = [](int pid) {
    int status = 0;
    pid_t r = waitpid(pid, &status, WNOHANG);
    // r == 0: still running. -1 (ECHILD): someone else reaped it already.
    return r != 0;
  };
  children_.erase(std::remove_if(children_.begin(), children_.end(), gone), children_.end());
  return children_.size();
}

ZEL_NAMESPACE_END
