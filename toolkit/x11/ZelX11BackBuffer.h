// The back buffer of an X window: the window's view tree is rendered into a
// client-side image (premultiplied ARGB, as the offscreen backend draws)
// at the backing scale, and finished areas are copied to the window in one
// go, so the screen never shows a half-drawn frame. Areas the server asks us
// to repaint (Expose) are copied from the buffer without redrawing.
//
// The copy is a plain XPutImage of the buffer's pixels when the screen's
// visual stores 32-bit pixels as 0xRRGGBB (every common true-colour
// screen): no conversion and no allocation. Other visuals go through
// cairo's Xlib surface, which converts.
//
// Until the window is first shown, each finished frame is also the window's
// background picture (a server pixmap), so the server paints it the moment
// the window becomes viewable, before our next copy: a host maps its window
// between two of our idle calls, and the window would be blank until then.
//
// Ownership: owned by the window host; the display and the window (made
// with the screen's default visual) must outlive it.
// Threading: the host's thread.
#pragma once

#include <cairo.h>

#include <memory>
#include <vector>

#include "toolkit/cairo/ZelCairoText.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/x11/ZelX11Connection.h"

struct _XGC;
struct _XImage;

ZEL_NAMESPACE_BEGIN

// A rectangle of device pixels, y down.
struct ZelX11PixelRect {
  int x = 0, y = 0, width = 0, height = 0;
  bool empty() const { return width <= 0 || height <= 0; }
  // The smallest rectangle holding both (an empty one adds nothing).
  ZelX11PixelRect united(const ZelX11PixelRect& other) const;
  friend bool operator==(const ZelX11PixelRect&, const ZelX11PixelRect&) = default;
};

// The device pixels a window rectangle (points, y up) touches, in a window
// of `heightInPoints` drawn at `scale`.
ZelX11PixelRect ZelX11PixelRectForWindowRect(CGRect r, double heightInPoints, double scale);

class ZelX11BackBuffer {
 public:
  ZelX11BackBuffer(_XDisplay* display, ZelX11Id window, std::shared_ptr<ZelCairoText> text);
  ~ZelX11BackBuffer();
  ZelX11BackBuffer(const ZelX11BackBuffer&) = delete;
  ZelX11BackBuffer& operator=(const ZelX11BackBuffer&) = delete;

  // A buffer of this many pixels; a new size drops the content (the caller
  // redraws everything).
  void resize(int pixelWidth, int pixelHeight);
  int pixelWidth() const { return width_; }
  int pixelHeight() const { return height_; }

  // Renders the window's dirty region (widened to whole pixels) into the
  // buffer and copies what was drawn to the X window. Returns whether
  // anything was drawn. Allocates nothing when the region is empty.
  bool display(ZelWindow& window, double scale);
  // Copies an area of the buffer to the X window as it is.
  void present(ZelX11PixelRect area);

  // Makes the buffer's whole content the window's background picture (a
  // copy in a server pixmap; the direct copy path only). Returns whether it
  // did.
  bool showAsBackground();
  // No background picture any more: exposed areas keep what they show until
  // the next copy. Nothing when there is none.
  void dropBackground();
  bool hasBackground() const { return hasBackground_; }

  cairo_surface_t* image() const { return image_; }
  // Whether copies go straight out with XPutImage.
  bool copiesDirectly() const { return gc_ != nullptr; }

 private:
  void chooseCopyPath();
  void wrapImage();
  void alignDirtyRegion(ZelWindow& window, double scale) const;
  void clear(cairo_t* cr, const std::vector<CGRect>& rects, double heightInPoints, double scale) const;

  _XDisplay* display_;
  ZelX11Id window_;
  std::shared_ptr<ZelCairoText> text_;
  int width_ = 0, height_ = 0;
  cairo_surface_t* image_ = nullptr;
  cairo_surface_t* target_ = nullptr;  // the X window through cairo (other visuals)
  ::_XGC* gc_ = nullptr;          // direct copies
  ::_XImage* wrapper_ = nullptr;  // an XImage over image_'s pixels
  std::vector<CGRect> toClear_;        // reused
  bool hasBackground_ = false;
};

ZEL_NAMESPACE_END
