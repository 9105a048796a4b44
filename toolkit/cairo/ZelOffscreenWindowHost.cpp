#include "toolkit/cairo/ZelOffscreenWindowHost.h"

#include <cmath>

#include "toolkit/cairo/ZelCairoGraphicsContext.h"
#include "toolkit/cairo/ZelCairoImage.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kPixelEpsilon = 1e-6;

double validScale(double s) { return s > 0 && std::isfinite(s) ? s : 1; }

int pixelExtent(double points, double scale) {
  return static_cast<int>(std::ceil(std::max(points, 0.0) * scale - kPixelEpsilon));
}

}  // namespace

ZelOffscreenWindowHost::ZelOffscreenWindowHost(ZelWindow& window, double backingScale,
                                               std::shared_ptr<ZelCairoText> text)
    : window_(window),
      scale_(validScale(backingScale)),
      text_(text ? std::move(text) : std::make_shared<ZelCairoText>()),
      pasteboard_(window.runLoop()) {
  window_.setPlatformWindow(this);
}

ZelOffscreenWindowHost::~ZelOffscreenWindowHost() {
  if (window_.platformWindow() == this) window_.setPlatformWindow(nullptr);
  if (pendingRedraw_) window_.runLoop().cancel(pendingRedraw_);
  if (surface_) cairo_surface_destroy(surface_);
}

void ZelOffscreenWindowHost::setNeedsRedraw() {
  if (!autoDisplay_ || pendingRedraw_) return;
  pendingRedraw_ = window_.runLoop().schedule(
      0,
      [this] {
        pendingRedraw_ = 0;
        displayIfNeeded();
      },
      ZelCallKey{this, "display"});
}

void ZelOffscreenWindowHost::contentSizeDidChange(CGSize) {
  if (surface_) cairo_surface_destroy(surface_);
  surface_ = nullptr;
}

void ZelOffscreenWindowHost::setBackingScale(double scale) {
  scale = validScale(scale);
  if (scale == scale_) return;
  scale_ = scale;
  contentSizeDidChange(window_.contentSize());
  window_.setNeedsDisplay();
}

void ZelOffscreenWindowHost::ensureSurface() {
  if (surface_) return;
  CGSize size = window_.contentSize();
  surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixelExtent(size.width, scale_),
                                        pixelExtent(size.height, scale_));
}

cairo_surface_t* ZelOffscreenWindowHost::surface() {
  ensureSurface();
  return surface_;
}

CGRect ZelOffscreenWindowHost::alignedToPixels(CGRect r) const {
  double x0 = std::floor(CGRectGetMinX(r) * scale_ + kPixelEpsilon) / scale_;
  double y0 = std::floor(CGRectGetMinY(r) * scale_ + kPixelEpsilon) / scale_;
  double x1 = std::ceil(CGRectGetMaxX(r) * scale_ - kPixelEpsilon) / scale_;
  double y1 = std::ceil(CGRectGetMaxY(r) * scale_ - kPixelEpsilon) / scale_;
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

// The window redraws whole dirty rectangles; widening each to whole device
// pixels (merging as it grows) means a cleared pixel is always redrawn whole.
void ZelOffscreenWindowHost::alignDirtyRegion() {
  for (int pass = 0; pass < 8; ++pass) {
    std::vector<CGRect> rects = window_.dirtyRegion().rects();
    bool aligned = true;
    for (const CGRect& r : rects) {
      CGRect a = alignedToPixels(r);
      if (std::fabs(a.origin.x - r.origin.x) + std::fabs(a.origin.y - r.origin.y) +
              std::fabs(a.size.width - r.size.width) + std::fabs(a.size.height - r.size.height) >
          kPixelEpsilon) {
        aligned = false;
        window_.invalidate(a);
      }
    }
    if (aligned) return;
  }
}

void ZelOffscreenWindowHost::clearDeviceRect(cairo_t* cr, CGRect r) const {
  const double height = window_.contentSize().height;
  cairo_save(cr);
  cairo_identity_matrix(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
  cairo_rectangle(cr, std::round(CGRectGetMinX(r) * scale_), std::round((height - CGRectGetMaxY(r)) * scale_),
                  std::round(CGRectGetWidth(r) * scale_), std::round(CGRectGetHeight(r) * scale_));
  cairo_fill(cr);
  cairo_restore(cr);
}

const std::vector<CGRect>& ZelOffscreenWindowHost::displayIfNeeded() {
  if (window_.dirtyRegion().empty()) return noRects_;
  ensureSurface();
  alignDirtyRegion();
  cairo_t* cr = cairo_create(surface_);
  for (const CGRect& r : window_.dirtyRegion().rects()) clearDeviceRect(cr, r);
  const std::vector<CGRect>* drawn;
  {
    ZelCairoGraphicsContext context(cr, window_.contentSize().height, scale_, text_);
    drawn = &window_.displayIfNeeded(context);
  }
  cairo_destroy(cr);
  return *drawn;
}

void ZelOffscreenWindowHost::renderAll() {
  ensureSurface();
  cairo_t* cr = cairo_create(surface_);
  cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
  cairo_paint(cr);
  cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
  {
    ZelCairoGraphicsContext context(cr, window_.contentSize().height, scale_, text_);
    CGSize size = window_.contentSize();
    window_.render(context, CGRectMake(0, 0, size.width, size.height));
  }
  cairo_destroy(cr);
}

bool ZelOffscreenWindowHost::renderToPNG(const std::string& path) {
  renderAll();
  return writePNG(path);
}

bool ZelOffscreenWindowHost::writePNG(const std::string& path) {
  ensureSurface();
  cairo_surface_flush(surface_);
  return cairo_surface_write_to_png(surface_, path.c_str()) == CAIRO_STATUS_SUCCESS;
}

std::shared_ptr<const ZelImage> ZelOffscreenWindowHost::snapshot() {
  ensureSurface();
  return ZelImageFromCairoSurface(surface_);
}

ZEL_NAMESPACE_END
