// ZelImage and cairo image surfaces.
#pragma once

#include <cairo.h>

#include <memory>

#include "toolkit/core/ZelImage.h"

ZEL_NAMESPACE_BEGIN

// A cairo ARGB32 surface over the image's own pixels (no copy), made on
// first use and cached on the image's backendCache. The reference is
// borrowed: valid while the image lives. When the image goes, the surface is
// finished, so a pattern that outlives it draws nothing instead of reading
// freed pixels. Main thread only (the cache is not synchronised).
cairo_surface_t* ZelCairoSurfaceForImage(const ZelImage& image);

// A copy of an ARGB32 image surface's pixels (rows top down).
std::shared_ptr<ZelImage> ZelImageFromCairoSurface(cairo_surface_t* surface);

ZEL_NAMESPACE_END
