// Conversions between straight (un-premultiplied) RGBA bytes and the
// premultiplied native ARGB words of ZelImage. Used by the image codecs.
#pragma once

#include <cstdint>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// Premultiplies with rounding to the nearest value.
inline std::uint32_t ZelPremultipliedPixel(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a) {
  auto mul = [a](std::uint32_t c) { return (c * a + 127) / 255; };
  return (static_cast<std::uint32_t>(a) << 24) | (mul(r) << 16) | (mul(g) << 8) | mul(b);
}

// The straight colour of a premultiplied pixel as R, G, B, A bytes; a fully
// transparent pixel reads as transparent black.
inline void ZelStraightPixel(std::uint32_t p, std::uint8_t rgba[4]) {
  const std::uint32_t a = p >> 24;
  rgba[3] = static_cast<std::uint8_t>(a);
  for (int i = 0; i < 3; ++i) {
    const std::uint32_t c = (p >> (16 - 8 * i)) & 0xFF;
    rgba[i] = a == 0 ? 0 : static_cast<std::uint8_t>(c >= a ? 255 : (c * 255 + a / 2) / a);
  }
}

ZEL_NAMESPACE_END
