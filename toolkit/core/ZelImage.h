// A decoded bitmap: premultiplied 32-bit ARGB pixels in native byte order
// (the layout cairo's ARGB32 uses), rows from the top of the picture down.
// Immutable once made and shared by std::shared_ptr<const ZelImage>; a
// backend may hang its own cache (a surface wrapping these pixels) on it.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelImage {
 public:
  // A transparent image of the given pixel size (negative sizes give 0).
  ZelImage(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }
  int stride() const { return stride_; }  // bytes per row, a multiple of 4
  const std::uint8_t* data() const { return pixels_.data(); }
  std::uint8_t* mutableData() { return pixels_.data(); }
  std::uint32_t pixel(int x, int y) const;  // 0 outside the image
  void setPixel(int x, int y, std::uint32_t argbPremultiplied);

  // A copy with every colour channel inverted and alpha kept (on the
  // un-premultiplied colour, premultiplied again).
  std::shared_ptr<const ZelImage> inverted() const;

  // Backend cache: opaque, created on first use by the drawing backend.
  mutable std::shared_ptr<void> backendCache;

 private:
  int width_, height_, stride_;
  std::vector<std::uint8_t> pixels_;
};

ZEL_NAMESPACE_END
