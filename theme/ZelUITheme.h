// The editor's colours and fonts. There are two themes, light and dark, each
// a process-wide singleton, and a process-wide current theme that every view
// reads when it draws. Toggling flips the current theme and posts
// "ZelUIThemeUpdatedNotification" on the default notification centre; views
// that draw with the theme observe it and redraw.
//
// Themes are immutable and live for the life of the process: the pointers
// the class operations return never dangle. Fonts are shared immutable
// values (std::shared_ptr<const ZelFont>); a null icon font means the bundle
// has no icon font file.
//
// Threading: main thread only, except the once-only construction of the two
// singletons, which is thread-safe.
#pragma once

#include <memory>
#include <string_view>

#include "theme/ZelThemeResources.h"
#include "toolkit/core/ZelFont.h"
#include "toolkit/foundation/ZelColor.h"

ZEL_NAMESPACE_BEGIN

class ZelWindow;

inline constexpr char kZelUIThemeUpdatedNotification[] = "ZelUIThemeUpdatedNotification";

using ZelFontRef = std::shared_ptr<const ZelFont>;

class ZelUITheme {
 public:
  // The two singletons, each built on first use.
  static const ZelUITheme* light();
  static const ZelUITheme* dark();
  // The current theme. The first call makes it the light theme and fills
  // the shared cache of text fonts at 10, 14 and 16 points.
  static const ZelUITheme* theme();
  // Makes the other theme current, posts the notification with `window` as
  // its object (may be null) and returns the new current theme.
  static const ZelUITheme* toggleThemeForWindow(const ZelWindow* window);
  // A new icon font at `size` (null when the bundle has no icon font file).
  static ZelFontRef newIconFontOfSize(double size);

  ZelColor textColor() const { return textColor_; }
  ZelColor symbolColor() const { return symbolColor_; }
  ZelColor subtleTextColor() const { return subtleTextColor_; }
  ZelColor backgroundColor() const { return backgroundColor_; }
  const ZelBackgroundPattern& backgroundPattern() const { return backgroundPattern_; }
  ZelColor interiorBorderColor() const { return interiorBorderColor_; }
  const ZelFontRef& iconFont() const { return iconFont_; }
  bool invertLabels() const { return invertLabels_; }
  bool useSpecifiedForeground() const { return useSpecifiedForeground_; }

  // The stored icon font when its size is exactly `size`, else a new one.
  ZelFontRef iconFontOfSize(double size) const;
  // The font for a value text: the text font when the text is ASCII (the
  // cached font object at 14, 16 or 10 points once the cache is filled),
  // otherwise (icon glyphs) the icon font at `iconSize`, or at `size` when
  // `iconSize` is 0.
  ZelFontRef appropriateFontForValue(std::string_view value, double size, double iconSize) const;
  ZelFontRef italicFontOfSize(double size) const;
  // The description's colour when the theme honours specified colours,
  // otherwise the text colour.
  ZelColor foregroundGivenSpecified(ZelColor specified) const;
  // A new pattern of the light texture, whichever theme this is.
  ZelBackgroundPattern newBackgroundPattern() const;

  ZelUITheme(const ZelUITheme&) = delete;
  ZelUITheme& operator=(const ZelUITheme&) = delete;

 private:
  enum class Kind { Light, Dark };
  explicit ZelUITheme(Kind kind);

  ZelColor textColor_, symbolColor_, subtleTextColor_, backgroundColor_;
  ZelBackgroundPattern backgroundPattern_;
  ZelColor interiorBorderColor_;
  ZelFontRef iconFont_;
  bool invertLabels_ = false;
  bool useSpecifiedForeground_ = true;
};

// The drawing layer's colour of a colour: our colours are already the
// drawing layer's, so this is the identity; kept so that drawing code reads
// the same everywhere.
constexpr ZelColor ZelCGColor(ZelColor color) { return color; }
// The fully transparent colour.
constexpr ZelColor ZelCGClearColor() { return ZelColor{0, 0, 0, 0}; }

ZEL_NAMESPACE_END
