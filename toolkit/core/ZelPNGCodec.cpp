// PNG through libpng's simplified API, which catches libpng's errors itself
// (its own setjmp) and reports them as a zero result.
#include <png.h>

#include <vector>

#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/core/ZelImageEncoding.h"
#include "toolkit/core/ZelImagePixels.h"

ZEL_NAMESPACE_BEGIN

namespace {

bool acceptableSize(std::uint32_t width, std::uint32_t height) {
  return width > 0 && height > 0 && width <= kZelMaxDecodedImageSide && height <= kZelMaxDecodedImageSide &&
         std::uint64_t{width} * height <= kZelMaxDecodedPixels;
}

std::shared_ptr<ZelImage> imageFromRGBA(const std::vector<std::uint8_t>& rgba, int width, int height) {
  auto image = std::make_shared<ZelImage>(width, height);
  const std::uint8_t* p = rgba.data();
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x, p += 4) image->setPixel(x, y, ZelPremultipliedPixel(p[0], p[1], p[2], p[3]));
  }
  return image;
}

// What the pixels need: grey, colour, with or without alpha.
png_uint_32 formatFor(const ZelImage& image) {
  bool grey = true, opaque = true;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const std::uint32_t p = image.pixel(x, y);
      opaque = opaque && (p >> 24) == 0xFF;
      grey = grey && ((p >> 16) & 0xFF) == ((p >> 8) & 0xFF) && ((p >> 8) & 0xFF) == (p & 0xFF);
    }
  }
  if (grey) return opaque ? PNG_FORMAT_GRAY : PNG_FORMAT_GA;
  return opaque ? PNG_FORMAT_RGB : PNG_FORMAT_RGBA;
}

std::vector<std::uint8_t> samplesFor(const ZelImage& image, png_uint_32 format) {
  const int channels = static_cast<int>(PNG_IMAGE_PIXEL_CHANNELS(format));
  const bool grey = (format & PNG_FORMAT_FLAG_COLOR) == 0, alpha = (format & PNG_FORMAT_FLAG_ALPHA) != 0;
  std::vector<std::uint8_t> samples;
  samples.reserve(static_cast<std::size_t>(image.width()) * image.height() * channels);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      std::uint8_t rgba[4];
      ZelStraightPixel(image.pixel(x, y), rgba);
      samples.insert(samples.end(), rgba, rgba + (grey ? 1 : 3));
      if (alpha) samples.push_back(rgba[3]);
    }
  }
  return samples;
}

}  // namespace

std::shared_ptr<ZelImage> ZelDecodePNG(std::span<const std::uint8_t> data) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (data.empty() || !png_image_begin_read_from_memory(&png, data.data(), data.size())) return nullptr;
  if (!acceptableSize(png.width, png.height)) {
    png_image_free(&png);
    return nullptr;
  }
  png.format = PNG_FORMAT_RGBA;
  std::vector<std::uint8_t> rgba(PNG_IMAGE_SIZE(png));
  const bool ok = png_image_finish_read(&png, nullptr, rgba.data(), 0, nullptr) != 0;
  png_image_free(&png);
  if (!ok) return nullptr;
  return imageFromRGBA(rgba, static_cast<int>(png.width), static_cast<int>(png.height));
}

std::vector<std::uint8_t> ZelEncodePNG(const ZelImage& image) {
  if (image.width() <= 0 || image.height() <= 0) return {};
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width());
  png.height = static_cast<png_uint_32>(image.height());
  png.format = formatFor(image);
  const std::vector<std::uint8_t> samples = samplesFor(image, png.format);
  png_alloc_size_t size = 0;
  if (!png_image_write_get_memory_size(png, size, 0, samples.data(), 0, nullptr)) return {};
  std::vector<std::uint8_t> out(size);
  if (!png_image_write_to_memory(&png, out.data(), &size, 0, samples.data(), 0, nullptr)) return {};
  out.resize(size);
  return out;
}

ZEL_NAMESPACE_END
