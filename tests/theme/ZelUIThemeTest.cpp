#include "theme/ZelUITheme.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "toolkit/widgets/ZelIconGlyphs.h"
#include "toolkit/foundation/ZelBundle.h"
#include "toolkit/foundation/ZelNotificationCenter.h"

using namespace zel;

namespace {

// Restores the bundle's folder when a test that moved it ends.
struct BundleFolderGuard {
  std::string saved = ZelBundle::resourcesDirectory();
  ~BundleFolderGuard() { ZelBundle::setResourcesDirectory(saved); }
};

}  // namespace

TEST(ZelUITheme, SingletonsAndToggleTwicePostsTwoNotificationsAndReturnsToLight) {
  ASSERT_EQ(ZelUITheme::theme(), ZelUITheme::light());
  EXPECT_EQ(ZelUITheme::light(), ZelUITheme::light());
  EXPECT_NE(ZelUITheme::light(), ZelUITheme::dark());

  int window = 0;  // stands in for the window: only its address travels
  std::vector<const void*> objects;
  std::vector<const ZelUITheme*> seen;  // the current theme when observers run
  auto observation = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [&](const ZelNotification& n) {
        objects.push_back(n.object);
        seen.push_back(ZelUITheme::theme());
        EXPECT_EQ(n.name, "ZelUIThemeUpdatedNotification");
      });
  const auto* asWindow = reinterpret_cast<const ZelWindow*>(&window);
  EXPECT_EQ(ZelUITheme::toggleThemeForWindow(asWindow), ZelUITheme::dark());
  EXPECT_EQ(ZelUITheme::theme(), ZelUITheme::dark());
  EXPECT_EQ(objects.size(), 1u);
  EXPECT_EQ(ZelUITheme::toggleThemeForWindow(nullptr), ZelUITheme::light());
  EXPECT_EQ(ZelUITheme::theme(), ZelUITheme::light());
  EXPECT_EQ(objects, (std::vector<const void*>{&window, nullptr}));
  EXPECT_EQ(seen, (std::vector<const ZelUITheme*>{ZelUITheme::dark(), ZelUITheme::light()}));
}

TEST(ZelUITheme, TextFontCacheHandsOutTheSameObjects) {
  const ZelUITheme* theme = ZelUITheme::theme();
  for (double size : {10.0, 14.0, 16.0}) {
    ZelFontRef first = theme->appropriateFontForValue("1", size, 0);
    ZelFontRef again = ZelUITheme::dark()->appropriateFontForValue("Level", size, 30);
    EXPECT_EQ(first.get(), again.get()) << size;  // one process-wide object per size
    EXPECT_EQ(*first, (ZelFont{ZelFontFace::Medium, size}));
  }
  ZelFontRef odd = theme->appropriateFontForValue("1", 15, 0);
  EXPECT_NE(odd.get(), theme->appropriateFontForValue("1", 15, 0).get());
  EXPECT_EQ(*odd, (ZelFont{ZelFontFace::Medium, 15}));
  EXPECT_EQ(*theme->italicFontOfSize(11), (ZelFont{ZelFontFace::Italic, 11}));
}

TEST(ZelUITheme, IconGlyphTextGetsTheIconFontAtTheIconSize) {
  const ZelUITheme* theme = ZelUITheme::theme();
  const std::string withGlyph = std::string("A") + ZelIconGlyph::kGear;
  EXPECT_EQ(*theme->appropriateFontForValue(withGlyph, 14, 20), (ZelFont{ZelFontFace::Icons, 20}));
  EXPECT_EQ(*theme->appropriateFontForValue(withGlyph, 14, 0), (ZelFont{ZelFontFace::Icons, 14}));
  EXPECT_EQ(theme->appropriateFontForValue("\xC3\xA9", 16, 0)->face, ZelFontFace::Icons);  // any non-ASCII
  EXPECT_EQ(theme->appropriateFontForValue("~ 12 dB", 16, 22)->face, ZelFontFace::Medium);
}

TEST(ZelUITheme, IconFontOfSizeReusesTheStoredFontOnlyAtExactlyItsSize) {
  const ZelUITheme* theme = ZelUITheme::theme();
  ASSERT_TRUE(theme->iconFont());
  EXPECT_EQ(*theme->iconFont(), (ZelFont{ZelFontFace::Icons, 22}));
  EXPECT_EQ(theme->iconFontOfSize(22).get(), theme->iconFont().get());
  ZelFontRef other = theme->iconFontOfSize(22.5);
  ASSERT_TRUE(other);
  EXPECT_NE(other.get(), theme->iconFont().get());
  EXPECT_EQ(other->pointSize, 22.5);
  EXPECT_NE(ZelUITheme::newIconFontOfSize(22).get(), ZelUITheme::newIconFontOfSize(22).get());
}

TEST(ZelUITheme, NoIconFontWithoutTheFontFile) {
  BundleFolderGuard guard;
  ZelBundle::setResourcesDirectory("/nonexistent-folder");
  EXPECT_EQ(ZelUITheme::newIconFontOfSize(22), nullptr);
  EXPECT_EQ(ZelUITheme::theme()->iconFontOfSize(30), nullptr);
  EXPECT_EQ(ZelUITheme::theme()->appropriateFontForValue(ZelIconGlyph::kPower, 14, 0), nullptr);
}

TEST(ZelUITheme, BackgroundPatternsTileTheTexturesAtHalfTheirPixelSize) {
  const ZelBackgroundPattern& light = ZelUITheme::light()->backgroundPattern();
  const ZelBackgroundPattern& dark = ZelUITheme::dark()->backgroundPattern();
  ASSERT_TRUE(light.image);
  ASSERT_TRUE(dark.image);
  EXPECT_NE(light.image.get(), dark.image.get());
  EXPECT_EQ(light.cellSize, CGSizeMake(light.image->width() / 2.0, light.image->height() / 2.0));
  EXPECT_EQ(dark.cellSize, CGSizeMake(dark.image->width() / 2.0, dark.image->height() / 2.0));
  // newBackgroundPattern is always the light texture.
  EXPECT_EQ(ZelUITheme::dark()->newBackgroundPattern().image.get(), light.image.get());
  EXPECT_EQ(ZelUITheme::dark()->newBackgroundPattern().cellSize, light.cellSize);
}

TEST(ZelBundle, FindsOnlyExistingRegularFiles) {
  BundleFolderGuard guard;
  EXPECT_NE(ZelBundle::pathForResource("Zel-Icons-Regular", "otf"), "");
  EXPECT_EQ(ZelBundle::pathForResource("Zel-Icons-Regular", "ttf"), "");
  EXPECT_EQ(ZelBundle::pathForResource("icons", ""), "");  // a folder is no resource
  ZelBundle::setResourcesDirectory("/nonexistent-folder");
  EXPECT_EQ(ZelBundle::pathForResource("Zel-Icons-Regular", "otf"), "");
  ZelBundle::setResourcesDirectory("");
  EXPECT_EQ(ZelBundle::resourcesDirectory(), guard.saved);  // empty restores the default
}
