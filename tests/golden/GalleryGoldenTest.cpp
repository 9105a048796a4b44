// The gallery's stills against the reference pictures in this folder.
#include <gtest/gtest.h>

#include <string>

#include "app/gallery/GalleryRender.h"
#include "tests/support/GoldenImage.h"

namespace {

using namespace zel;

void expectMatchesReference(bool dark, double scale, const std::string& name) {
  auto actual = gallery::renderStill({dark, scale, std::string(ZEL_RESOURCES_DIR) + "/config.plist"});
  test::expectMatchesGolden(actual.get(), name);
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
  EXPECT_GT(test::compareImages(changed, *reference).share, test::kGoldenAllowedDifferingShare);
  EXPECT_EQ(test::compareImages(*reference, *reference).differing, 0);
}

}  // namespace
