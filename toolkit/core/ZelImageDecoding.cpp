#include "toolkit/core/ZelImageDecoding.h"

#include <fstream>
#include <iterator>
#include <vector>

ZEL_NAMESPACE_BEGIN

ZelImageFormat ZelSniffImageFormat(std::span<const std::uint8_t> data) {
  static constexpr std::uint8_t kPNG[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  if (data.size() >= sizeof kPNG && std::equal(std::begin(kPNG), std::end(kPNG), data.begin())) {
    return ZelImageFormat::PNG;
  }
  if (data.size() >= 3 && data[0] == 0xFF && data[1] == 0xD8 && data[2] == 0xFF) return ZelImageFormat::JPEG;
  return ZelImageFormat::Unknown;
}

std::shared_ptr<ZelImage> ZelDecodeImage(std::span<const std::uint8_t> data) {
  switch (ZelSniffImageFormat(data)) {
    case ZelImageFormat::PNG: return ZelDecodePNG(data);
    case ZelImageFormat::JPEG: return ZelDecodeJPEG(data);
    case ZelImageFormat::Unknown: break;
  }
  return nullptr;
}

std::shared_ptr<ZelImage> ZelDecodeImageFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return nullptr;
  std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (file.bad()) return nullptr;
  return ZelDecodeImage(bytes);
}

ZEL_NAMESPACE_END
