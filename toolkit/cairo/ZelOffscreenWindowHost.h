// The offscreen backend: shows a ZelWindow in an ARGB32 cairo image surface
// at any backing scale (1, 1.5, 2 ...) and writes it as PNG. Used by tests,
// the gallery and the scripted driver. The same window state always gives
// the same bytes.
//
// Redraws work as on a screen: when the window's dirty region becomes
// non-empty, a redraw is scheduled on the window's run loop (delay 0), which
// clears and redraws only the dirty rectangles (rounded out to whole device
// pixels). renderToPNG draws the whole window afresh.
//
// Ownership: the host attaches itself to the window at construction and
// detaches in its destructor; the window and its run loop must outlive it.
// It owns its surface, its pasteboard (in memory), its URL opener
// (recording) and shares the window's text machinery. Main thread only.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>
#include <vector>

#include "toolkit/cairo/ZelCairoText.h"
#include "toolkit/core/ZelImage.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

class ZelOffscreenWindowHost final : public ZelPlatformWindow {
 public:
  // `text` null makes the window's own text machinery (bundle icon font).
  explicit ZelOffscreenWindowHost(ZelWindow& window, double backingScale = 1,
                                  std::shared_ptr<ZelCairoText> text = nullptr);
  ~ZelOffscreenWindowHost() override;
  ZelOffscreenWindowHost(const ZelOffscreenWindowHost&) = delete;
  ZelOffscreenWindowHost& operator=(const ZelOffscreenWindowHost&) = delete;

  // ---- ZelPlatformWindow.
  void setNeedsRedraw() override;
  double backingScale() const override { return scale_; }
  ZelPasteboard& pasteboard() override { return pasteboard_; }
  ZelURLOpener& urlOpener() override { return urlOpener_; }
  void contentSizeDidChange(CGSize size) override;

  // A new scale redraws the whole window at the next redraw.
  void setBackingScale(double scale);
  // Whether setNeedsRedraw schedules a redraw on the run loop (default on).
  // Off, redraws happen only when displayIfNeeded() is called.
  void setAutoDisplay(bool on) { autoDisplay_ = on; }

  // Clears and redraws the dirty rectangles now; returns them (window
  // coordinates, empty when nothing was dirty).
  const std::vector<CGRect>& displayIfNeeded();
  // Clears the whole surface and draws the whole window (the dirty region
  // is left to the next redraw).
  void renderAll();
  // renderAll(), then writePNG(path).
  bool renderToPNG(const std::string& path);
  // Writes the surface as it is now. False when the file cannot be written.
  bool writePNG(const std::string& path);

  // The surface: ceil(width × scale) by ceil(height × scale) pixels.
  cairo_surface_t* surface();
  std::shared_ptr<const ZelImage> snapshot();
  ZelMemoryPasteboard& memoryPasteboard() { return pasteboard_; }
  ZelRecordingURLOpener& recordingURLOpener() { return urlOpener_; }
  const std::shared_ptr<ZelCairoText>& text() const { return text_; }

 private:
  void ensureSurface();
  void alignDirtyRegion();
  void clearDeviceRect(cairo_t* cr, CGRect windowRect) const;
  CGRect alignedToPixels(CGRect r) const;

  ZelWindow& window_;
  double scale_;
  std::shared_ptr<ZelCairoText> text_;
  ZelMemoryPasteboard pasteboard_;
  ZelRecordingURLOpener urlOpener_;
  cairo_surface_t* surface_ = nullptr;
  bool autoDisplay_ = true;
  ZelRunLoop::Handle pendingRedraw_ = 0;
  std::vector<CGRect> noRects_;
};

ZEL_NAMESPACE_END
