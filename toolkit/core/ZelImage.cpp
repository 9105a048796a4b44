#include "toolkit/core/ZelImage.h"

#include <algorithm>
#include <cstring>

ZEL_NAMESPACE_BEGIN

ZelImage::ZelImage(int width, int height)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      stride_(width_ * 4),
      pixels_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height_), 0) {}

std::uint32_t ZelImage::pixel(int x, int y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return 0;
  std::uint32_t p;
  std::memcpy(&p, pixels_.data() + static_cast<std::size_t>(y) * stride_ + x * 4, 4);
  return p;
}

void ZelImage::setPixel(int x, int y, std::uint32_t argbPremultiplied) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
  std::memcpy(pixels_.data() + static_cast<std::size_t>(y) * stride_ + x * 4, &argbPremultiplied, 4);
}

namespace {

// One premultiplied pixel with its colour inverted: un-premultiply, invert,
// premultiply again, rounding to the nearest value each time.
std::uint32_t invertPixel(std::uint32_t p) {
  std::uint32_t a = p >> 24;
  if (a == 0) return 0;
  std::uint32_t out = a << 24;
  for (int shift = 0; shift <= 16; shift += 8) {
    std::uint32_t c = std::min<std::uint32_t>((p >> shift) & 0xFF, a);
    std::uint32_t straight = (c * 255 + a / 2) / a;
    std::uint32_t inverted = 255 - straight;
    out |= ((inverted * a + 127) / 255) << shift;
  }
  return out;
}

}  // namespace

std::shared_ptr<const ZelImage> ZelImage::inverted() const {
  auto copy = std::make_shared<ZelImage>(width_, height_);
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) copy->setPixel(x, y, invertPixel(pixel(x, y)));
  }
  return copy;
}

ZEL_NAMESPACE_END
