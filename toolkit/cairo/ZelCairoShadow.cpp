#include "toolkit/cairo/ZelCairoShadow.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

ZEL_NAMESPACE_BEGIN

namespace {

// Radii of three successive box blurs whose result is close to a Gaussian
// of standard deviation sigma.
void boxRadii(double sigma, int radii[3]) {
  const int n = 3;
  double ideal = std::sqrt(12 * sigma * sigma / n + 1);
  int lower = static_cast<int>(std::floor(ideal));
  if (lower % 2 == 0) --lower;
  int upper = lower + 2;
  double m = (12 * sigma * sigma - n * lower * lower - 4 * n * lower - 3 * n) / (-4.0 * lower - 4);
  int useLower = static_cast<int>(std::lround(m));
  for (int i = 0; i < n; ++i) radii[i] = ((i < useLower ? lower : upper) - 1) / 2;
}

// One box blur of `count` samples `step` bytes apart, zero outside.
void boxBlurLine(std::uint8_t* line, int count, int step, int radius, std::vector<std::uint8_t>& scratch) {
  if (radius <= 0 || count <= 0) return;
  scratch.resize(count);
  for (int i = 0; i < count; ++i) scratch[i] = line[i * step];
  const int window = 2 * radius + 1;
  int sum = 0;
  for (int i = 0; i < std::min(radius, count); ++i) sum += scratch[i];
  for (int i = 0; i < count; ++i) {
    if (i + radius < count) sum += scratch[i + radius];
    if (i - radius - 1 >= 0) sum -= scratch[i - radius - 1];
    line[i * step] = static_cast<std::uint8_t>((sum + window / 2) / window);
  }
}

CGRect deviceClipExtents(cairo_t* cr) {
  cairo_save(cr);
  cairo_identity_matrix(cr);
  double x0, y0, x1, y1;
  cairo_clip_extents(cr, &x0, &y0, &x1, &y1);
  cairo_restore(cr);
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

}  // namespace

void ZelBlurAlphaSurface(cairo_surface_t* a8, double sigma) {
  if (!(sigma >= 0.5) || cairo_image_surface_get_format(a8) != CAIRO_FORMAT_A8) return;
  cairo_surface_flush(a8);
  std::uint8_t* data = cairo_image_surface_get_data(a8);
  const int w = cairo_image_surface_get_width(a8), h = cairo_image_surface_get_height(a8);
  const int stride = cairo_image_surface_get_stride(a8);
  int radii[3];
  boxRadii(sigma, radii);
  std::vector<std::uint8_t> scratch;
  for (int radius : radii) {
    for (int y = 0; y < h; ++y) boxBlurLine(data + y * stride, w, 1, radius, scratch);
    for (int x = 0; x < w; ++x) boxBlurLine(data + x, h, stride, radius, scratch);
  }
  cairo_surface_mark_dirty(a8);
}

void ZelPaintShadow(cairo_t* cr, const ZelShadowSpec& shadow, CGRect deviceBounds,
                    const std::function<void(cairo_t*)>& drawShape) {
  if (!(shadow.color.alpha > 0) || CGRectIsNull(deviceBounds)) return;
  const double sigma = std::max(shadow.blur, 0.0) / 2;
  const double pad = std::ceil(3 * sigma) + 2;
  CGRect box = CGRectInset(CGRectOffset(deviceBounds, shadow.dx, shadow.dy), -pad, -pad);
  box = CGRectIntegral(CGRectIntersection(box, CGRectInset(deviceClipExtents(cr), -pad, -pad)));
  if (CGRectIsNull(box) || box.size.width < 1 || box.size.height < 1 || box.size.width * box.size.height > 4e7) return;

  cairo_surface_t* mask = cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(box.size.width),
                                                     static_cast<int>(box.size.height));
  cairo_t* mcr = cairo_create(mask);
  cairo_matrix_t m;
  cairo_get_matrix(cr, &m);
  m.x0 += shadow.dx - box.origin.x;
  m.y0 += shadow.dy - box.origin.y;
  cairo_set_matrix(mcr, &m);
  drawShape(mcr);
  cairo_destroy(mcr);
  ZelBlurAlphaSurface(mask, sigma);

  cairo_save(cr);
  cairo_identity_matrix(cr);
  const ZelColor& c = shadow.color;
  cairo_set_source_rgba(cr, c.red, c.green, c.blue, std::clamp(c.alpha, 0.0, 1.0));
  cairo_mask_surface(cr, mask, box.origin.x, box.origin.y);
  cairo_restore(cr);
  cairo_surface_destroy(mask);
}

ZEL_NAMESPACE_END
