// The committed bundle resources: the two textures and the icon font.
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <cmath>
#include <vector>

#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelThemeResources.h"
#include "toolkit/foundation/ZelBundle.h"

#ifdef ZEL_TEST_HAVE_FREETYPE
#include <ft2build.h>
#include FT_FREETYPE_H
#endif

using namespace zel;

namespace {

double luminance(std::uint32_t p) {
  return (0.299 * ((p >> 16) & 0xFF) + 0.587 * ((p >> 8) & 0xFF) + 0.114 * (p & 0xFF)) / 255.0;
}

// Mean absolute luminance difference between column (or row) a and b.
double lineDifference(const ZelImage& image, int a, int b, bool columns) {
  const int n = columns ? image.height() : image.width();
  double sum = 0;
  for (int i = 0; i < n; ++i) {
    sum += columns ? std::fabs(luminance(image.pixel(a, i)) - luminance(image.pixel(b, i)))
                   : std::fabs(luminance(image.pixel(i, a)) - luminance(image.pixel(i, b)));
  }
  return sum / n;
}

// The seam between the last and first line against the differences between
// neighbouring lines inside the tile at the same phase modulo 8 (the JPEG
// block size and the light texture's rib period): it must not stand out
// from them by more than three standard deviations.
void expectSeamless(const ZelImage& image, bool columns, const char* name) {
  const int count = columns ? image.width() : image.height();
  std::vector<double> inside;
  for (int i = (count - 1) % 8; i + 1 < count; i += 8) inside.push_back(lineDifference(image, i, i + 1, columns));
  double mean = 0, variance = 0;
  for (double d : inside) mean += d / inside.size();
  for (double d : inside) variance += (d - mean) * (d - mean) / inside.size();
  const double seam = lineDifference(image, count - 1, 0, columns);
  EXPECT_LE(seam, mean + 3 * std::sqrt(variance)) << name << (columns ? " columns" : " rows");
}

double meanLuminance(const ZelImage& image) {
  double sum = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) sum += luminance(image.pixel(x, y));
  }
  return sum / (image.width() * image.height());
}

}  // namespace

TEST(ZelTextures, AreOpaqueDoubleResolutionTilesThatWrapWithoutASeam) {
  auto light = ZelBundleImage(kZelLightTextureName, kZelLightTextureExtension);
  auto dark = ZelBundleImage(kZelDarkTextureName, kZelDarkTextureExtension);
  ASSERT_TRUE(light);
  ASSERT_TRUE(dark);
  for (const auto& image : {light, dark}) {
    EXPECT_EQ(image->width(), 256);
    EXPECT_EQ(image->height(), 256);
    EXPECT_EQ(image->pixel(17, 99) >> 24, 0xFFu);
  }
  expectSeamless(*light, true, "light");
  expectSeamless(*light, false, "light");
  expectSeamless(*dark, true, "dark");
  expectSeamless(*dark, false, "dark");
  // Dark text stays legible on the light texture, light text on the dark one.
  EXPECT_GT(meanLuminance(*light), 0.85);
  EXPECT_LT(meanLuminance(*dark), 0.2);
  // Subtle, but a texture: neither is flat.
  EXPECT_GT(lineDifference(*light, 0, 4, false), 0.005);
  EXPECT_GT(lineDifference(*dark, 0, 1, true), 0.005);
}

TEST(ZelTextures, ASeamIsDetected) {
  // The check itself: noise over a gentle ramp does not wrap.
  ZelImage ramp(64, 64);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const std::uint32_t v = static_cast<std::uint32_t>(100 + x / 2 + (x * 7 + y * 13) % 5);
      ramp.setPixel(x, y, 0xFF000000u | v << 16 | v << 8 | v);
    }
  }
  EXPECT_NONFATAL_FAILURE(expectSeamless(ramp, true, "ramp"), "ramp columns");
}

TEST(ZelIconFont, IsInTheBundleWithAGlyphForEveryNamedIcon) {
  ASSERT_TRUE(ZelIconFontFileIsUsable());
#ifdef ZEL_TEST_HAVE_FREETYPE
  FT_Library library = nullptr;
  ASSERT_EQ(FT_Init_FreeType(&library), 0);
  FT_Face face = nullptr;
  ASSERT_EQ(FT_New_Face(library, ZelBundle::pathForResource("Zel-Icons-Regular", "otf").c_str(), 0, &face), 0);
  EXPECT_STREQ(face->family_name, "Zel Icons");
  EXPECT_STREQ(FT_Get_Postscript_Name(face), "Zel-Icons-Regular");
  const char* const named[] = {
      ZelIconGlyph::kPower, ZelIconGlyph::kGear, ZelIconGlyph::kBook, ZelIconGlyph::kUndo,
      ZelIconGlyph::kRedo, ZelIconGlyph::kSave, ZelIconGlyph::kMore, ZelIconGlyph::kTheme,
      ZelIconGlyph::kClose, ZelIconGlyph::kChevronLeft, ZelIconGlyph::kChevronRight, ZelIconGlyph::kChevronUp,
      ZelIconGlyph::kChevronDown, ZelIconGlyph::kCheck, ZelIconGlyph::kDot, ZelIconGlyph::kPlus,
      ZelIconGlyph::kMinus,
  };
  ASSERT_EQ(std::size(named), ZelIconGlyph::kLastCodePoint - ZelIconGlyph::kFirstCodePoint + 1);
  for (std::size_t i = 0; i < std::size(named); ++i) {
    ASSERT_EQ(std::strlen(named[i]), 3u);
    const auto* b = reinterpret_cast<const unsigned char*>(named[i]);
    const char32_t c = (b[0] & 0x0Fu) << 12 | (b[1] & 0x3Fu) << 6 | (b[2] & 0x3Fu);
    EXPECT_EQ(c, ZelIconGlyph::kFirstCodePoint + i) << i;  // the constants run in order
    const FT_UInt index = FT_Get_Char_Index(face, c);
    ASSERT_NE(index, 0u) << std::hex << static_cast<unsigned>(c);
    ASSERT_EQ(FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE), 0);
    EXPECT_GT(face->glyph->outline.n_points, 0);  // drawn, not blank
    EXPECT_EQ(face->glyph->advance.x, face->units_per_EM);
  }
  EXPECT_EQ(FT_Get_Char_Index(face, ZelIconGlyph::kLastCodePoint + 1), 0u);
  FT_Done_Face(face);
  FT_Done_FreeType(library);
#endif
}
