// The gallery's stills against the reference pictures in this folder.
// References are regenerated with ./vantry golden and looked at before they
// are committed. Text depends on the installed faces (the set-up installs
// fonts-urw-base35) and antialiasing on the rasterizer, so pixels may differ
// a little: each channel by up to kChannelTolerance, and a small share of
// pixels by more.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "app/gallery/GalleryRender.h"
#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/core/ZelImageEncoding.h"

namespace {

using namespace zel;

constexpr int kChannelTolerance = 12;             // of 255
constexpr double kAllowedDifferingShare = 0.002;  // of all pixels

struct Comparison {
  long differing = 0;
  int worst = 0;
};

int channelDistance(std::uint32_t a, std::uint32_t b) {
  int worst = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    int d = std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255));
    worst = std::max(worst, d);
  }
  return worst;
}

Comparison compare(const ZelImage& actual, const ZelImage& reference) {
  Comparison c;
  for (int y = 0; y < actual.height(); ++y)
    for (int x = 0; x < actual.width(); ++x) {
      int d = channelDistance(actual.pixel(x, y), reference.pixel(x, y));
      c.worst = std::max(c.worst, d);
      if (d > kChannelTolerance) ++c.differing;
    }
  return c;
}

void expectMatchesReference(bool dark, double scale, const std::string& name) {
  std::string referencePath = std::string(ZEL_GOLDEN_DIR) + "/" + name + ".png";
  auto reference = ZelDecodeImageFile(referencePath);
  ASSERT_TRUE(reference) << "missing reference " << referencePath << ": run ./vantry golden";
  auto actual = gallery::renderStill({dark, scale, std::string(ZEL_RESOURCES_DIR) + "/config.plist"});
  ASSERT_TRUE(actual);
  ASSERT_EQ(actual->width(), reference->width());
  ASSERT_EQ(actual->height(), reference->height());

  Comparison c = compare(*actual, *reference);
  double share = static_cast<double>(c.differing) / (double(actual->width()) * actual->height());
  if (share > kAllowedDifferingShare) {
    std::string out = std::string(ZEL_GOLDEN_OUT_DIR) + "/" + name + "-actual.png";
    std::vector<std::uint8_t> png = ZelEncodePNG(*actual);
    if (FILE* f = std::fopen(out.c_str(), "wb")) {
      std::fwrite(png.data(), 1, png.size(), f);
      std::fclose(f);
    }
    ADD_FAILURE() << name << ": " << c.differing << " pixels (" << share * 100 << " %) differ by more than "
                  << kChannelTolerance << "; worst " << c.worst << ". The render is in " << out;
  }
}

TEST(GalleryGolden, LightAtScaleOne) { expectMatchesReference(false, 1, "gallery-light-1"); }
TEST(GalleryGolden, DarkAtScaleOne) { expectMatchesReference(true, 1, "gallery-dark-1"); }
TEST(GalleryGolden, LightAtScaleTwo) { expectMatchesReference(false, 2, "gallery-light-2"); }

// The comparison itself must see a real change: a picture with one section
// painted over is not "the same" as the reference.
TEST(GalleryGolden, ComparisonCatchesAChangedArea) {
  auto reference = ZelDecodeImageFile(std::string(ZEL_GOLDEN_DIR) + "/gallery-light-1.png");
  ASSERT_TRUE(reference);
  ZelImage changed = *reference;
  for (int y = 40; y < 80; ++y)
    for (int x = 380; x < 700; ++x) changed.setPixel(x, y, 0xFF000000u);
  Comparison c = compare(changed, *reference);
  EXPECT_GT(double(c.differing) / (double(changed.width()) * changed.height()), kAllowedDifferingShare);
  EXPECT_EQ(compare(*reference, *reference).differing, 0);
}

}  // namespace
