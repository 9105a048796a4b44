// A window's frame clock: ticks at the display rate on the window's run loop,
// but only while there is something to animate. Animating layers register
// themselves (through their host, see ZelLayerHost::layerFrameClock); other
// clients (a display link, a view fading its alpha) add themselves and
// remove themselves when done. Once nothing is left, the clock schedules no
// further tick: an idle window has no pending run-loop entry of ours.
//
// Each tick, in this order: the screen areas of animating layers are
// invalidated through their hosts (the area of the previous frame and of this
// one); every client's frameClockDidTick runs with the frame duration;
// finished animations are removed (or marked done when not removed on
// completion) and, last, their completions run.
//
// Ownership: the window owns its clock. Layers and clients are not owned;
// each removes itself before it goes (ZelLayer and ZelDisplayLink do so in
// their destructors), and the clock, when destroyed first, detaches them.
// Threading: the UI thread (the run loop's thread) only.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelFrameClock;
class ZelLayer;

class ZelFrameClockClient {
 public:
  virtual ~ZelFrameClockClient() = default;
  // One frame. `frameDuration` is the clock's period in seconds; the time is
  // clock.now(). A client may remove itself (or others) from here.
  virtual void frameClockDidTick(ZelFrameClock& clock, double frameDuration) = 0;
  // The clock is being destroyed while this client is registered; forget it.
  virtual void frameClockWillDisappear(ZelFrameClock&) {}
};

class ZelFrameClock {
 public:
  explicit ZelFrameClock(ZelRunLoop& runLoop, double framesPerSecond = 60);
  ~ZelFrameClock();
  ZelFrameClock(const ZelFrameClock&) = delete;
  ZelFrameClock& operator=(const ZelFrameClock&) = delete;

  ZelRunLoop& runLoop() const { return runLoop_; }
  double now() const { return runLoop_.now(); }

  // The display rate; a backend sets it from the screen (60 by default).
  void setFramesPerSecond(double fps);
  double framesPerSecond() const { return fps_; }
  double frameDuration() const { return 1.0 / fps_; }

  // Layers with running animations. Adding twice is harmless. Called by
  // ZelLayer itself; a host never needs to.
  void addAnimatingLayer(ZelLayer& layer);
  void removeAnimatingLayer(ZelLayer& layer);
  std::size_t animatingLayerCount() const;

  // Per-frame clients (not owned; remove before destruction). Adding twice
  // is harmless. Adding starts the clock.
  void addClient(ZelFrameClockClient& client);
  void removeClient(ZelFrameClockClient& client);
  std::size_t clientCount() const;

  // Whether a tick is scheduled on the run loop.
  bool isRunning() const { return pending_ != 0; }
  // A window that nobody can see (its host hid it) suspends its clock: no
  // tick is scheduled, whoever is registered, until it is resumed; then it
  // runs again if anything is left to animate. A meter costs nothing while
  // its editor is hidden.
  void setSuspended(bool suspended);
  bool isSuspended() const { return suspended_; }
  // Runs one frame now (the scheduled call does this; tests and benchmarks
  // may call it directly). Reschedules itself while work remains. Does
  // nothing when called from within a frame (a client or a completion).
  void tick();

 private:
  void ensureScheduled();
  void compact();
  void invalidateLayers();
  void tickClients();
  void finishAnimations();

  ZelRunLoop& runLoop_;
  double fps_;
  ZelRunLoop::Handle pending_ = 0;
  bool ticking_ = false;
  bool suspended_ = false;
  std::vector<ZelLayer*> layers_;             // null entries are removed ones
  std::vector<ZelFrameClockClient*> clients_;  // likewise
  std::vector<std::function<void()>> completions_;  // reused every tick
};

ZEL_NAMESPACE_END
