// What a ZelWindow asks of the backend that shows it (an X11 window, an
// offscreen bitmap, a test double): redraw requests, the backing scale, the
// display rate, the clipboard and URL opening.
//
// Ownership: the backend object implements this interface and attaches
// itself to a window with ZelWindow::setPlatformWindow(this); it must detach
// (setPlatformWindow(nullptr)) before it is destroyed. The window never owns
// it. Threading: main thread only.
#pragma once

#include <cstddef>

#include "toolkit/core/ZelPasteboard.h"
#include "toolkit/core/ZelURLOpener.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

class ZelPlatformWindow {
 public:
  virtual ~ZelPlatformWindow() = default;

  // The window's dirty region went from empty to non-empty. The backend
  // schedules one redraw (at its next frame, never inside this call) and
  // then calls ZelWindow::displayIfNeeded. Called at most once per frame:
  // further invalidation before that redraw only grows the region.
  virtual void setNeedsRedraw() = 0;

  // Pixels per point of the surface the window is shown on (1, 1.5, 2 ...).
  // When it changes, the backend calls ZelWindow::setNeedsDisplay().
  virtual double backingScale() const = 0;

  // The display's refresh rate in frames per second (the frame clock's rate).
  virtual double refreshRate() const { return 60; }

  // The clipboard and the URL opener the window's views use; they live as
  // long as the backend.
  virtual ZelPasteboard& pasteboard() = 0;
  virtual ZelURLOpener& urlOpener() = 0;

  // The window's content size changed on our side (ZelWindow::setContentSize);
  // a backend may resize its surface. The default does nothing.
  virtual void contentSizeDidChange(CGSize size) { (void)size; }

  // A click arrived while the window was not the key window: the backend may
  // ask the system for keyboard focus. The default does nothing.
  virtual void requestKeyFocus() {}
};

// A backend that shows nothing (tests, headless tools): it counts redraw
// requests, clears nothing by itself, and offers an in-memory pasteboard and
// a recording URL opener. The run loop must outlive it.
class ZelNullPlatformWindow final : public ZelPlatformWindow {
 public:
  explicit ZelNullPlatformWindow(ZelRunLoop& runLoop, double backingScale = 1)
      : scale_(backingScale), pasteboard_(runLoop) {}

  void setNeedsRedraw() override { ++redrawRequests_; }
  double backingScale() const override { return scale_; }
  double refreshRate() const override { return refreshRate_; }
  ZelPasteboard& pasteboard() override { return pasteboard_; }
  ZelURLOpener& urlOpener() override { return urlOpener_; }
  void requestKeyFocus() override { ++keyFocusRequests_; }

  void setBackingScale(double scale) { scale_ = scale; }
  void setRefreshRate(double hz) { refreshRate_ = hz; }
  std::size_t redrawRequests() const { return redrawRequests_; }
  std::size_t keyFocusRequests() const { return keyFocusRequests_; }
  ZelMemoryPasteboard& memoryPasteboard() { return pasteboard_; }
  ZelRecordingURLOpener& recordingURLOpener() { return urlOpener_; }

 private:
  double scale_;
  double refreshRate_ = 60;
  std::size_t redrawRequests_ = 0;
  std::size_t keyFocusRequests_ = 0;
  ZelMemoryPasteboard pasteboard_;
  ZelRecordingURLOpener urlOpener_;
};

ZEL_NAMESPACE_END
