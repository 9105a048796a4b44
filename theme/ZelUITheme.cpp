#include "theme/ZelUITheme.h"

#include <atomic>
#include <mutex>

#include "toolkit/foundation/ZelNotificationCenter.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kIconFontSize = 22;

// The grey levels are single-precision constants, widened.
constexpr double single(float value) { return static_cast<double>(value); }

std::atomic<const ZelUITheme*> currentTheme{nullptr};

// The process-wide text fonts, filled once by the first theme() call.
struct FontCache {
  ZelFontRef size10, size14, size16;
  std::atomic<bool> filled{false};
};

FontCache& fontCache() {
  static FontCache cache;
  return cache;
}

ZelFontRef newTextFont(double size) { return std::make_shared<const ZelFont>(ZelFont{ZelFontFace::Medium, size}); }

bool isASCII(std::string_view text) {
  for (char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

ZelUITheme::ZelUITheme(Kind kind) {
  const bool light = kind == Kind::Light;
  textColor_ = light ? ZelColor::grey(single(0.1f), 1.0) : ZelColor::grey(1.0, 1.0);
  subtleTextColor_ = light ? ZelColor::grey(0.75, 1.0) : ZelColor::grey(0.2, 1.0);
  symbolColor_ = light ? ZelColor::grey(single(0.4f), 1.0) : ZelColor::grey(0.5, 1.0);
  backgroundColor_ = light ? ZelColor::grey(1.0, 1.0) : ZelColor::grey(0.0, 1.0);
  interiorBorderColor_ = light ? ZelColor::grey(0.0, single(0.2f)) : ZelColor::grey(1.0, single(0.3f));
  backgroundPattern_ = light ? ZelBackgroundPattern::withImage(ZelBundleImage(kZelLightTextureName, kZelLightTextureExtension))
                             : ZelBackgroundPattern::withImage(ZelBundleImage(kZelDarkTextureName, kZelDarkTextureExtension));
  useSpecifiedForeground_ = true;
  iconFont_ = newIconFontOfSize(kIconFontSize);
  invertLabels_ = !light;
}

const ZelUITheme* ZelUITheme::light() {
  static const ZelUITheme theme(Kind::Light);  // once-only, thread-safe
  return &theme;
}

const ZelUITheme* ZelUITheme::dark() {
  static const ZelUITheme theme(Kind::Dark);
  return &theme;
}

const ZelUITheme* ZelUITheme::theme() {
  static std::once_flag once;
  std::call_once(once, [] {
    const ZelUITheme* light = ZelUITheme::light();
    currentTheme.store(light);
    FontCache& cache = fontCache();
    cache.size10 = light->appropriateFontForValue("1", 10, 0);
    cache.size14 = light->appropriateFontForValue("1", 14, 0);
    cache.size16 = light->appropriateFontForValue("1", 16, 0);
    cache.filled.store(true);
  });
  return currentTheme.load();
}

const ZelUITheme* ZelUITheme::toggleThemeForWindow(const ZelWindow* window) {
  const ZelUITheme* next = theme() == dark() ? light() : dark();
  currentTheme.store(next);
  ZelNotificationCenter::defaultCenter().post(kZelUIThemeUpdatedNotification, window);
  return next;
}

ZelFontRef ZelUITheme::newIconFontOfSize(double size) {
  if (!ZelIconFontFileIsUsable()) return nullptr;
  return std::make_shared<const ZelFont>(ZelFont{ZelFontFace::Icons, size});
}

ZelFontRef ZelUITheme::iconFontOfSize(double size) const {
  if (iconFont_ && iconFont_->pointSize == size) return iconFont_;
  return newIconFontOfSize(size);
}

ZelFontRef ZelUITheme::appropriateFontForValue(std::string_view value, double size, double iconSize) const {
  if (!isASCII(value)) return newIconFontOfSize(iconSize != 0 ? iconSize : size);
  const FontCache& cache = fontCache();
  if (cache.filled.load()) {
    if (size == 14) return cache.size14;
    if (size == 16) return cache.size16;
    if (size == 10) return cache.size10;
  }
  return newTextFont(size);
}

ZelFontRef ZelUITheme::italicFontOfSize(double size) const {
  return std::make_shared<const ZelFont>(ZelFont{ZelFontFace::Italic, size});
}

ZelColor ZelUITheme::foregroundGivenSpecified(ZelColor specified) const {
  return useSpecifiedForeground_ ? specified : textColor_;
}

ZelBackgroundPattern ZelUITheme::newBackgroundPattern() const {
  return ZelBackgroundPattern::withImage(ZelBundleImage(kZelLightTextureName, kZelLightTextureExtension));
}

ZEL_NAMESPACE_END
