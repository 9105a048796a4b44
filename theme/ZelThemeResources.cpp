#include "theme/ZelThemeResources.h"

#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <string>

#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/foundation/ZelBundle.h"

ZEL_NAMESPACE_BEGIN

namespace {

std::mutex& cacheMutex() {
  static std::mutex mutex;
  return mutex;
}

// The first four bytes of an OpenType file: CFF outlines, TrueType outlines
// or the older Apple TrueType tag.
bool hasFontSignature(const std::string& path) {
  char tag[4] = {};
  std::ifstream file(path, std::ios::binary);
  if (!file.read(tag, sizeof tag)) return false;
  return std::memcmp(tag, "OTTO", 4) == 0 || std::memcmp(tag, "\0\1\0\0", 4) == 0 ||
         std::memcmp(tag, "true", 4) == 0;
}

}  // namespace

ZelBackgroundPattern ZelBackgroundPattern::withImage(std::shared_ptr<const ZelImage> image) {
  ZelBackgroundPattern pattern;
  if (image) pattern.cellSize = CGSizeMake(image->width() / 2.0, image->height() / 2.0);
  pattern.image = std::move(image);
  return pattern;
}

std::shared_ptr<const ZelImage> ZelBundleImage(std::string_view name, std::string_view extension) {
  const std::string path = ZelBundle::pathForResource(name, extension);
  if (path.empty()) return nullptr;
  static std::map<std::string, std::shared_ptr<const ZelImage>> images;  // by path; immutable values
  {
    std::lock_guard lock(cacheMutex());
    if (auto found = images.find(path); found != images.end()) return found->second;
  }
  std::shared_ptr<const ZelImage> image = ZelDecodeImageFile(path);
  if (!image) return nullptr;
  std::lock_guard lock(cacheMutex());
  return images.emplace(path, std::move(image)).first->second;  // a racing decode keeps the first
}

bool ZelIconFontFileIsUsable() {
  const std::string path = ZelBundle::pathForResource(kZelIconFontName, kZelIconFontExtension);
  if (path.empty()) return false;
  static std::map<std::string, bool> checked;  // by path
  std::lock_guard lock(cacheMutex());
  auto found = checked.find(path);
  if (found == checked.end()) found = checked.emplace(path, hasFontSignature(path)).first;
  return found->second;
}

ZEL_NAMESPACE_END
