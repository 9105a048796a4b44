// The editor as `vantry --render` draws it, against the reference pictures
// tests/golden/editor-*.png (./vantry golden rewrites them; look at them
// before committing). Text depends on the installed faces and antialiasing
// on the rasterizer, so pixels may differ a little: each channel by up to
// kChannelTolerance, and a small share of pixels by more.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelEditorStill.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/core/ZelImageEncoding.h"

namespace {

using namespace zel;

constexpr int kChannelTolerance = 12;             // of 255
constexpr double kAllowedDifferingShare = 0.002;  // of all pixels

int channelDistance(std::uint32_t a, std::uint32_t b) {
  int worst = 0;
  for (int shift = 0; shift < 32; shift += 8)
    worst = std::max(worst, std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255)));
  return worst;
}

// The share of pixels that differ by more than the tolerance.
double differingShare(const ZelImage& a, const ZelImage& b) {
  long differing = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x)
      if (channelDistance(a.pixel(x, y), b.pixel(x, y)) > kChannelTolerance) ++differing;
  return static_cast<double>(differing) / (static_cast<double>(a.width()) * a.height());
}

std::shared_ptr<const ZelImage> render(bool dark, double scale) {
  std::string error;
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(ZelDefaultDescriptionPath(), error);
  EXPECT_TRUE(config) << error;
  if (!config) return nullptr;
  ZelUseTheme(dark);
  auto image = ZelRenderEditorStill(std::move(config), {scale, 2, 2});
  ZelUseTheme(false);
  return image;
}

void expectMatchesReference(bool dark, double scale, const std::string& name) {
  const std::string referencePath = std::string(ZEL_GOLDEN_DIR) + "/" + name + ".png";
  auto reference = ZelDecodeImageFile(referencePath);
  ASSERT_TRUE(reference) << "missing reference " << referencePath << ": run ./vantry golden";
  auto actual = render(dark, scale);
  ASSERT_TRUE(actual);
  ASSERT_EQ(actual->width(), reference->width());
  ASSERT_EQ(actual->height(), reference->height());
  const double share = differingShare(*actual, *reference);
  if (share <= kAllowedDifferingShare) return;
  const std::string out = std::string(ZEL_GOLDEN_OUT_DIR) + "/" + name + "-actual.png";
  std::vector<std::uint8_t> png = ZelEncodePNG(*actual);
  if (FILE* f = std::fopen(out.c_str(), "wb")) {
    std::fwrite(png.data(), 1, png.size(), f);
    std::fclose(f);
  }
  ADD_FAILURE() << name << ": " << share * 100 << " % of the pixels differ by more than " << kChannelTolerance
                << ". The render is in " << out;
}

TEST(EditorGolden, LightAtScaleOne) { expectMatchesReference(false, 1, "editor-light-1"); }
TEST(EditorGolden, DarkAtScaleOne) { expectMatchesReference(true, 1, "editor-dark-1"); }
TEST(EditorGolden, LightAtScaleTwo) { expectMatchesReference(false, 2, "editor-light-2"); }

// Rendering is deterministic, and the themes really differ: the comparison
// would catch a picture drawn in the wrong theme.
TEST(EditorGolden, SameInputSamePixelsAndThemesDiffer) {
  auto light = render(false, 1);
  auto again = render(false, 1);
  auto dark = render(true, 1);
  ASSERT_TRUE(light && again && dark);
  EXPECT_EQ(differingShare(*light, *again), 0.0);
  EXPECT_GT(differingShare(*light, *dark), 0.5);
}

}  // namespace
