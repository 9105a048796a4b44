#include "toolkit/x11/ZelX11BackBuffer.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <cairo-xlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "toolkit/cairo/ZelCairoGraphicsContext.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kPixelEpsilon = 1e-6;
constexpr int kAlignPasses = 8;

CGRect alignedToPixels(CGRect r, double scale) {
  double x0 = std::floor(CGRectGetMinX(r) * scale + kPixelEpsilon) / scale;
  double y0 = std::floor(CGRectGetMinY(r) * scale + kPixelEpsilon) / scale;
  double x1 = std::ceil(CGRectGetMaxX(r) * scale - kPixelEpsilon) / scale;
  double y1 = std::ceil(CGRectGetMaxY(r) * scale - kPixelEpsilon) / scale;
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

bool sameRect(CGRect a, CGRect b) {
  return std::fabs(a.origin.x - b.origin.x) + std::fabs(a.origin.y - b.origin.y) +
             std::fabs(a.size.width - b.size.width) + std::fabs(a.size.height - b.size.height) <=
         kPixelEpsilon;
}

}  // namespace

ZelX11PixelRect ZelX11PixelRect::united(const ZelX11PixelRect& o) const {
  if (o.empty()) return *this;
  if (empty()) return o;
  int x0 = std::min(x, o.x), y0 = std::min(y, o.y);
  int x1 = std::max(x + width, o.x + o.width), y1 = std::max(y + height, o.y + o.height);
  return {x0, y0, x1 - x0, y1 - y0};
}

ZelX11PixelRect ZelX11PixelRectForWindowRect(CGRect r, double heightInPoints, double scale) {
  if (CGRectIsEmpty(r)) return {};
  int x0 = static_cast<int>(std::floor(CGRectGetMinX(r) * scale + kPixelEpsilon));
  int x1 = static_cast<int>(std::ceil(CGRectGetMaxX(r) * scale - kPixelEpsilon));
  int y0 = static_cast<int>(std::floor((heightInPoints - CGRectGetMaxY(r)) * scale + kPixelEpsilon));
  int y1 = static_cast<int>(std::ceil((heightInPoints - CGRectGetMinY(r)) * scale - kPixelEpsilon));
  return {x0, y0, x1 - x0, y1 - y0};
}

ZelX11BackBuffer::ZelX11BackBuffer(Display* display, ZelX11Id window, std::shared_ptr<ZelCairoText> text)
    : display_(display), window_(window), text_(std::move(text)) {
  toClear_.reserve(ZelDirtyRegion::kMaxRects);
  chooseCopyPath();
}

ZelX11BackBuffer::~ZelX11BackBuffer() {
  if (wrapper_) {
    wrapper_->data = nullptr;  // the pixels are cairo's
    XDestroyImage(wrapper_);
  }
  if (gc_) XFreeGC(display_, gc_);
  if (target_) {
    // cairo keeps per-display state for Xlib surfaces: finish it now, while
    // our own connection is still open, instead of at XCloseDisplay.
    cairo_device_t* device = cairo_surface_get_device(target_);
    cairo_surface_finish(target_);
    if (device) cairo_device_finish(device);
    cairo_surface_destroy(target_);
  }
  if (image_) cairo_surface_destroy(image_);
}

// Cairo's ARGB32 pixels are 32-bit words 0xAARRGGBB in the machine's byte
// order; a depth-24 (or 32) true-colour visual with those masks and 32 bits
// per pixel takes them as they are (XPutImage swaps bytes for a server of
// the other byte order).
void ZelX11BackBuffer::chooseCopyPath() {
  const int screen = DefaultScreen(display_);
  const Visual* visual = DefaultVisual(display_, screen);
  const int depth = DefaultDepth(display_, screen);
  if (visual->c_class != TrueColor || (depth != 24 && depth != 32) || visual->red_mask != 0xFF0000 ||
      visual->green_mask != 0xFF00 || visual->blue_mask != 0xFF) {
    return;
  }
  int count = 0;
  XPixmapFormatValues* formats = XListPixmapFormats(display_, &count);
  bool thirtyTwoBits = false;
  for (int i = 0; i < count; ++i) thirtyTwoBits |= formats[i].depth == depth && formats[i].bits_per_pixel == 32;
  if (formats) XFree(formats);
  if (thirtyTwoBits) gc_ = XCreateGC(display_, window_, 0, nullptr);
}

void ZelX11BackBuffer::wrapImage() {
  if (wrapper_) {
    wrapper_->data = nullptr;
    XDestroyImage(wrapper_);
    wrapper_ = nullptr;
  }
  const int screen = DefaultScreen(display_);
  auto* pixels = reinterpret_cast<char*>(cairo_image_surface_get_data(image_));
  wrapper_ = XCreateImage(display_, DefaultVisual(display_, screen), static_cast<unsigned>(DefaultDepth(display_, screen)),
                          ZPixmap, 0, pixels, static_cast<unsigned>(width_), static_cast<unsigned>(height_), 32,
                          cairo_image_surface_get_stride(image_));
  if (!wrapper_) return;
  const std::uint32_t probe = 1;
  wrapper_->byte_order = *reinterpret_cast<const unsigned char*>(&probe) == 1 ? LSBFirst : MSBFirst;
}

void ZelX11BackBuffer::resize(int pixelWidth, int pixelHeight) {
  pixelWidth = std::max(pixelWidth, 1);
  pixelHeight = std::max(pixelHeight, 1);
  if (image_ && pixelWidth == width_ && pixelHeight == height_) return;
  width_ = pixelWidth;
  height_ = pixelHeight;
  if (image_) cairo_surface_destroy(image_);
  image_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width_, height_);
  if (gc_) {
    wrapImage();
  } else if (target_) {
    cairo_xlib_surface_set_size(target_, width_, height_);
  } else {
    int screen = DefaultScreen(display_);
    target_ = cairo_xlib_surface_create(display_, window_, DefaultVisual(display_, screen), width_, height_);
  }
}

// The window redraws whole dirty rectangles; widening each to whole device
// pixels (merging as it grows) means a cleared pixel is always redrawn whole.
void ZelX11BackBuffer::alignDirtyRegion(ZelWindow& window, double scale) const {
  for (int pass = 0; pass < kAlignPasses; ++pass) {
    bool aligned = true;
    const std::vector<CGRect>& rects = window.dirtyRegion().rects();
    for (std::size_t i = 0; i < rects.size(); ++i) {
      CGRect a = alignedToPixels(rects[i], scale);
      if (sameRect(a, rects[i])) continue;
      aligned = false;
      window.invalidate(a);  // may merge and reorder: start over
      break;
    }
    if (aligned) return;
  }
}

void ZelX11BackBuffer::clear(cairo_t* cr, const std::vector<CGRect>& rects, double height, double scale) const {
  cairo_save(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
  for (const CGRect& r : rects) {
    ZelX11PixelRect p = ZelX11PixelRectForWindowRect(r, height, scale);
    cairo_rectangle(cr, p.x, p.y, p.width, p.height);
  }
  cairo_fill(cr);
  cairo_restore(cr);
}

bool ZelX11BackBuffer::display(ZelWindow& window, double scale) {
  if (window.dirtyRegion().empty() || !image_) return false;
  alignDirtyRegion(window, scale);
  const double height = window.contentSize().height;
  toClear_.assign(window.dirtyRegion().rects().begin(), window.dirtyRegion().rects().end());
  cairo_t* cr = cairo_create(image_);
  clear(cr, toClear_, height, scale);
  {
    ZelCairoGraphicsContext context(cr, height, scale, text_);
    window.displayIfNeeded(context);
  }
  cairo_destroy(cr);
  cairo_surface_flush(image_);
  for (const CGRect& r : toClear_) present(ZelX11PixelRectForWindowRect(r, height, scale));
  return true;
}

void ZelX11BackBuffer::present(ZelX11PixelRect area) {
  area = {std::max(area.x, 0), std::max(area.y, 0), std::min(area.x + area.width, width_) - std::max(area.x, 0),
          std::min(area.y + area.height, height_) - std::max(area.y, 0)};
  if (area.empty() || !image_) return;
  if (wrapper_) {
    XPutImage(display_, window_, gc_, wrapper_, area.x, area.y, area.x, area.y, static_cast<unsigned>(area.width),
              static_cast<unsigned>(area.height));
    return;
  }
  if (!target_) return;
  cairo_t* cr = cairo_create(target_);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_set_source_surface(cr, image_, 0, 0);
  cairo_rectangle(cr, area.x, area.y, area.width, area.height);
  cairo_fill(cr);
  cairo_destroy(cr);
  cairo_surface_flush(target_);
}

// A new pixmap each time: drawing into a pixmap that is already a window's
// background has an undefined effect (the server may or may not have copied
// it). The window holds the pixmap for as long as it is its background.
bool ZelX11BackBuffer::showAsBackground() {
  if (!wrapper_ || !image_) return false;
  const unsigned depth = static_cast<unsigned>(DefaultDepth(display_, DefaultScreen(display_)));
  Pixmap pixmap = XCreatePixmap(display_, window_, static_cast<unsigned>(width_), static_cast<unsigned>(height_), depth);
  XPutImage(display_, pixmap, gc_, wrapper_, 0, 0, 0, 0, static_cast<unsigned>(width_), static_cast<unsigned>(height_));
  XSetWindowBackgroundPixmap(display_, window_, pixmap);
  XFreePixmap(display_, pixmap);
  hasBackground_ = true;
  return true;
}

void ZelX11BackBuffer::dropBackground() {
  if (!hasBackground_) return;
  XSetWindowBackgroundPixmap(display_, window_, None);
  hasBackground_ = false;
}

ZEL_NAMESPACE_END
