// Decoding image files from memory into ZelImage (premultiplied ARGB): PNG
// through libpng, JPEG through libjpeg(-turbo). Portable: no drawing
// backend is involved.
//
// Bad data (garbage, truncation, unsupported variants, absurd sizes) gives
// nullptr; the decoders never exit or abort the process. Threading: any
// thread; the functions share no state.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "toolkit/core/ZelImage.h"

ZEL_NAMESPACE_BEGIN

enum class ZelImageFormat { Unknown, PNG, JPEG };

// Images larger than this on either side, or with more pixels than
// kZelMaxDecodedPixels, are refused.
inline constexpr std::uint32_t kZelMaxDecodedImageSide = 16384;
inline constexpr std::uint64_t kZelMaxDecodedPixels = 64ull * 1024 * 1024;

// The format the data's signature announces.
ZelImageFormat ZelSniffImageFormat(std::span<const std::uint8_t> data);

std::shared_ptr<ZelImage> ZelDecodePNG(std::span<const std::uint8_t> data);
std::shared_ptr<ZelImage> ZelDecodeJPEG(std::span<const std::uint8_t> data);
// Sniffs the format and decodes; nullptr for an unknown format.
std::shared_ptr<ZelImage> ZelDecodeImage(std::span<const std::uint8_t> data);
// Reads and decodes a whole file; nullptr when it cannot be read or decoded.
std::shared_ptr<ZelImage> ZelDecodeImageFile(const std::string& path);

ZEL_NAMESPACE_END
