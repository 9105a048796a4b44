// Soft shadows for cairo, which has none of its own: the shape is drawn into
// an alpha-only surface, blurred, and the shadow colour is painted through
// that mask under the shape.
#pragma once

#include <cairo.h>

#include <functional>

#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelColor.h"

ZEL_NAMESPACE_BEGIN

// Blurs an A8 image surface in place: three box blurs approximating a
// Gaussian of standard deviation `sigma` pixels (nothing for sigma < 0.5).
void ZelBlurAlphaSurface(cairo_surface_t* a8, double sigma);

struct ZelShadowSpec {
  double dx = 0, dy = 0;  // device pixels, y down
  double blur = 0;        // the blur amount in device pixels
  ZelColor color;         // alpha already multiplied by the context's alpha
};

// Paints the shadow of what `drawShape` draws (on the cairo_t it is given,
// whose matrix is cr's with the shadow offset added) under it on `cr`.
// `deviceBounds` bounds the shape in device pixels; the shadow is clipped by
// cr's clip. The caller then draws the shape itself.
void ZelPaintShadow(cairo_t* cr, const ZelShadowSpec& shadow, CGRect deviceBounds,
                    const std::function<void(cairo_t*)>& drawShape);

ZEL_NAMESPACE_END
