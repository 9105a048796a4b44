#include "toolkit/x11/ZelX11EventWait.h"

#include <X11/Xlib.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>

#include "toolkit/x11/ZelX11WindowHost.h"

ZEL_NAMESPACE_BEGIN

ZelX11WakePipe::ZelX11WakePipe(ZelRunLoop& runLoop) : runLoop_(runLoop) {
  int fds[2];
  if (pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0) return;
  read_ = fds[0];
  write_ = fds[1];
  runLoop_.setWakeHandler([this] { wake(); });
}

ZelX11WakePipe::~ZelX11WakePipe() {
  if (read_ < 0) return;
  runLoop_.setWakeHandler(nullptr);
  close(read_);
  close(write_);
}

void ZelX11WakePipe::wake() {
  const char byte = 1;
  ssize_t n;
  do {
    n = write(write_, &byte, 1);
  } while (n < 0 && errno == EINTR);
}

void ZelX11WakePipe::drain() {
  char buffer[64];
  while (read(read_, buffer, sizeof buffer) > 0) {
  }
}

namespace {

int pollTimeoutMilliseconds(std::optional<double> next, double maxWait) {
  if (maxWait >= 0 && (!next || *next > maxWait)) next = maxWait;
  if (!next) return -1;
  return static_cast<int>(std::ceil(*next * 1000.0));
}

}  // namespace

bool ZelX11WaitForEvents(ZelX11WindowHost& host, ZelX11WakePipe* wakePipe, double maxWait, int otherFd) {
  XFlush(host.display());
  int timeout = pollTimeoutMilliseconds(host.nextTimeout(), maxWait);
  if (timeout == 0) return true;
  // A negative descriptor is ignored by poll.
  pollfd fds[3] = {{host.fileDescriptor(), POLLIN, 0}, {-1, POLLIN, 0}, {otherFd, POLLIN, 0}};
  if (wakePipe && wakePipe->isValid()) fds[1].fd = wakePipe->fileDescriptor();
  int r = poll(fds, 3, timeout);
  if (r < 0 && errno != EINTR) return false;
  if (fds[1].fd >= 0 && (fds[1].revents & POLLIN)) wakePipe->drain();
  return true;
}

ZEL_NAMESPACE_END
