// Encoding ZelImage into image files in memory: PNG through libpng, JPEG
// through libjpeg(-turbo). Used by the tools that make the bundle's
// textures and label images, and by tests. Threading: any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "toolkit/core/ZelImage.h"

ZEL_NAMESPACE_BEGIN

// The smallest fitting PNG: grey when every pixel is grey, RGB when every
// pixel is opaque, with alpha otherwise (colours un-premultiplied). Empty
// for an empty image or on failure.
std::vector<std::uint8_t> ZelEncodePNG(const ZelImage& image);

// A baseline JPEG at `quality` (1 ... 100), the image laid over black where
// it is not opaque, in one grey channel when `grey`. Empty for an empty
// image or on failure.
std::vector<std::uint8_t> ZelEncodeJPEG(const ZelImage& image, int quality, bool grey = false);

ZEL_NAMESPACE_END
