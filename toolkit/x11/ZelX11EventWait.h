// Sleeping between pumps, for a standalone app: a self-pipe that the run
// loop's wake handler writes to (so a call posted from another thread ends
// the sleep), and a wait on the X connection, that pipe and the run loop's
// next due time.
//
// Threading: ZelX11WakePipe::wake may be called from any thread; the rest
// belongs to the UI thread.
#pragma once

#include <optional>

#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelX11WindowHost;

class ZelX11WakePipe {
 public:
  // Installs itself as the run loop's wake handler (do this before other
  // threads may post) and removes itself when destroyed; the loop must
  // outlive it.
  explicit ZelX11WakePipe(ZelRunLoop& runLoop);
  ~ZelX11WakePipe();
  ZelX11WakePipe(const ZelX11WakePipe&) = delete;
  ZelX11WakePipe& operator=(const ZelX11WakePipe&) = delete;

  bool isValid() const { return read_ >= 0; }
  int fileDescriptor() const { return read_; }
  // Makes the pipe readable (a full pipe is already readable: never blocks).
  void wake();
  // Empties the pipe.
  void drain();

 private:
  ZelRunLoop& runLoop_;
  int read_ = -1, write_ = -1;
};

// Flushes the connection, then sleeps until X events arrive, the pipe (may
// be null) is woken, the host's next timeout passes or `maxWait` seconds
// (negative: no limit) have gone by, or `otherFd` (when not negative: the
// accessibility bus, say) becomes readable. Returns false when poll fails.
bool ZelX11WaitForEvents(ZelX11WindowHost& host, ZelX11WakePipe* wakePipe, double maxWait = -1, int otherFd = -1);

ZEL_NAMESPACE_END
