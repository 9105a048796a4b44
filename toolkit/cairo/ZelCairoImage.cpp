#include "toolkit/cairo/ZelCairoImage.h"

#include <cstring>

ZEL_NAMESPACE_BEGIN

namespace {

// Hung on ZelImage::backendCache: owns the surface over the image's pixels.
struct SurfaceCache {
  cairo_surface_t* surface = nullptr;
  ~SurfaceCache() {
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
  }
};

cairo_surface_t* makeSurface(const ZelImage& image) {
  const int w = image.width(), h = image.height();
  if (w > 0 && h > 0 && image.stride() == cairo_format_stride_for_width(CAIRO_FORMAT_ARGB32, w)) {
    // cairo only reads a source surface; the pixels stay immutable.
    auto* pixels = const_cast<unsigned char*>(image.data());
    return cairo_image_surface_create_for_data(pixels, CAIRO_FORMAT_ARGB32, w, h, image.stride());
  }
  // Odd layouts (and empty images) get a copy.
  cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
  if (cairo_surface_status(s) != CAIRO_STATUS_SUCCESS || w <= 0 || h <= 0) return s;
  cairo_surface_flush(s);
  unsigned char* dst = cairo_image_surface_get_data(s);
  const int dstStride = cairo_image_surface_get_stride(s);
  for (int y = 0; y < h; ++y) std::memcpy(dst + y * dstStride, image.data() + y * image.stride(), w * 4);
  cairo_surface_mark_dirty(s);
  return s;
}

}  // namespace

cairo_surface_t* ZelCairoSurfaceForImage(const ZelImage& image) {
  if (auto* cache = static_cast<SurfaceCache*>(image.backendCache.get())) return cache->surface;
  auto cache = std::make_shared<SurfaceCache>();
  cache->surface = makeSurface(image);
  image.backendCache = cache;
  return cache->surface;
}

std::shared_ptr<ZelImage> ZelImageFromCairoSurface(cairo_surface_t* surface) {
  cairo_surface_flush(surface);
  const int w = cairo_image_surface_get_width(surface), h = cairo_image_surface_get_height(surface);
  auto image = std::make_shared<ZelImage>(w, h);
  const unsigned char* src = cairo_image_surface_get_data(surface);
  const int srcStride = cairo_image_surface_get_stride(surface);
  if (!src || cairo_image_surface_get_format(surface) != CAIRO_FORMAT_ARGB32) return image;
  for (int y = 0; y < h; ++y) std::memcpy(image->mutableData() + y * image->stride(), src + y * srcStride, w * 4);
  return image;
}

ZEL_NAMESPACE_END
