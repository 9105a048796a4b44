#include "theme/ZelLabelImage.h"

#include <cmath>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelBase64.h"
#include "toolkit/core/ZelImageDecoding.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kBase64Prefix = "base64,";
constexpr std::size_t kMaxCachedImages = 256;

std::mutex& cacheMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<const ZelImage> decodeLabel(std::string_view base64) {
  const auto bytes = ZelDecodeBase64(base64);
  if (!bytes) return nullptr;
  return ZelDecodeImage(*bytes);
}

struct InvertedEntry {
  std::weak_ptr<const ZelImage> original;
  std::shared_ptr<const ZelImage> inverted;
};

void dropExpired(std::map<const ZelImage*, InvertedEntry>& entries) {
  std::erase_if(entries, [](const auto& entry) { return entry.second.original.expired(); });
}

}  // namespace

std::shared_ptr<const ZelImage> ZelImageFromBase64String(std::string_view string) {
  if (!string.starts_with(kBase64Prefix)) return nullptr;
  const std::string_view base64 = string.substr(kBase64Prefix.size());
  // Views decode their label on every draw; the same text decodes once.
  static std::unordered_map<std::string, std::shared_ptr<const ZelImage>> decoded;
  {
    std::lock_guard lock(cacheMutex());
    if (auto found = decoded.find(std::string(base64)); found != decoded.end()) return found->second;
  }
  std::shared_ptr<const ZelImage> image = decodeLabel(base64);
  std::lock_guard lock(cacheMutex());
  if (decoded.size() >= kMaxCachedImages) decoded.clear();
  return decoded.emplace(std::string(base64), std::move(image)).first->second;
}

CGRect SituatedRectInsideRectForImage(const ZelImage& image, CGRect rect) {
  const float w = std::floor(static_cast<float>(image.width()) / 2.0f);
  const float h = std::floor(static_cast<float>(image.height()) / 2.0f);
  const float x = std::floor(static_cast<float>(rect.origin.x) + static_cast<float>(rect.size.width) / 2.0f - w / 2.0f);
  const float y = std::floor(static_cast<float>(rect.origin.y) + static_cast<float>(rect.size.height) / 2.0f - h / 2.0f);
  return CGRectMake(x, y, w, h);
}

std::shared_ptr<const ZelImage> ZelInvertedLabelImage(const std::shared_ptr<const ZelImage>& image) {
  if (!image) return nullptr;
  static std::map<const ZelImage*, InvertedEntry> inverted;  // keyed by address, checked by weak pointer
  std::lock_guard lock(cacheMutex());
  InvertedEntry& entry = inverted[image.get()];
  if (entry.inverted && entry.original.lock() == image) return entry.inverted;
  entry = InvertedEntry{image, image->inverted()};
  std::shared_ptr<const ZelImage> result = entry.inverted;
  if (inverted.size() > kMaxCachedImages) dropExpired(inverted);
  return result;
}

void DrawLabelImage(ZelGraphicsContext& ctx, const std::shared_ptr<const ZelImage>& image, CGRect rect) {
  if (!image) return;
  const CGRect situated = SituatedRectInsideRectForImage(*image, rect);
  const bool invert = ZelUITheme::theme()->invertLabels();
  const std::shared_ptr<const ZelImage> drawn = invert ? ZelInvertedLabelImage(image) : image;
  ctx.drawImage(*drawn, situated, kZelLabelImageOpacity, ZelImageFilter::Linear);
}

ZEL_NAMESPACE_END
