// A small pixel canvas for the cairo backend's tests: an ARGB32 surface, a
// context over it at a backing scale, and pixel reads by device row (row 0
// is the top of the picture).
#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>

#include "toolkit/cairo/ZelCairoGraphicsContext.h"

namespace zeltest {

using namespace zel;

struct Canvas {
  // widthPt × heightPt points at `scale` pixels per point.
  Canvas(double widthPt, double heightPt, double scale = 1, std::shared_ptr<ZelCairoText> text = nullptr)
      : width(static_cast<int>(widthPt * scale + 0.5)), height(static_cast<int>(heightPt * scale + 0.5)) {
    surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    cr = cairo_create(surface);
    ctx = std::make_unique<ZelCairoGraphicsContext>(cr, heightPt, scale, std::move(text));
  }
  ~Canvas() {
    ctx.reset();
    cairo_destroy(cr);
    cairo_surface_destroy(surface);
  }

  std::uint32_t pixel(int x, int y) {
    cairo_surface_flush(surface);
    const unsigned char* row = cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
    return reinterpret_cast<const std::uint32_t*>(row)[x];
  }
  int alpha(int x, int y) { return static_cast<int>(pixel(x, y) >> 24); }
  int red(int x, int y) { return static_cast<int>((pixel(x, y) >> 16) & 0xFF); }
  // Pixels of a device row (or column) with any ink.
  int inkInRow(int y) {
    int n = 0;
    for (int x = 0; x < width; ++x) n += alpha(x, y) > 0;
    return n;
  }

  int width, height;
  cairo_surface_t* surface;
  cairo_t* cr;
  std::unique_ptr<ZelCairoGraphicsContext> ctx;
};

}  // namespace zeltest
