#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "ImageFixtures.h"
#include "toolkit/core/ZelBase64.h"
#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/core/ZelImageEncoding.h"

using namespace zel;

namespace {

std::vector<std::uint8_t> bytesOf(const char* base64) { return ZelDecodeBase64(base64).value(); }

int channel(std::uint32_t pixel, int shift) { return static_cast<int>((pixel >> shift) & 0xFF); }

// A 4 × 3 image exercising opaque colours, greys, partial and zero alpha.
ZelImage sampleImage() {
  ZelImage image(4, 3);
  const std::uint32_t pixels[12] = {
      0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF808080,
      0x80800000, 0x40004000, 0x00000000, 0xFFFFFFFF,
      0x01010101, 0xC0102030, 0xFF123456, 0x7F7F7F7F,
  };
  for (int i = 0; i < 12; ++i) image.setPixel(i % 4, i / 4, pixels[i]);
  return image;
}

}  // namespace

TEST(ZelImageDecoding, PNGDecodesToPremultipliedARGBTopDown) {
  auto image = ZelDecodeImage(bytesOf(kPNG2x2Base64));
  ASSERT_TRUE(image);
  ASSERT_EQ(image->width(), 2);
  ASSERT_EQ(image->height(), 2);
  EXPECT_EQ(image->pixel(0, 0), 0xFFFF0000u);  // red
  EXPECT_EQ(image->pixel(1, 0), 0x80008000u);  // green 255 at alpha 128
  EXPECT_EQ(image->pixel(0, 1), 0x00000000u);  // transparent: colour dropped
  EXPECT_EQ(image->pixel(1, 1), 0x40404040u);  // white at alpha 64
}

TEST(ZelImageDecoding, JPEGDecodesColoursInTheirPlaces) {
  auto image = ZelDecodeImage(bytesOf(kJPEGRedBlueBase64));
  ASSERT_TRUE(image);
  ASSERT_EQ(image->width(), 16);
  ASSERT_EQ(image->height(), 8);
  for (int y : {0, 7}) {
    const std::uint32_t red = image->pixel(2, y), blue = image->pixel(13, y);
    EXPECT_EQ(red >> 24, 0xFFu);
    EXPECT_GT(channel(red, 16), 230);
    EXPECT_LT(channel(red, 0), 30);
    EXPECT_GT(channel(blue, 0), 230);
    EXPECT_LT(channel(blue, 16), 30);
  }
}

TEST(ZelImageDecoding, GarbageEmptyAndTruncatedDataGiveNoImage) {
  const std::vector<std::uint8_t> png = bytesOf(kPNG2x2Base64), jpeg = bytesOf(kJPEGRedBlueBase64);
  EXPECT_FALSE(ZelDecodeImage({}));
  EXPECT_FALSE(ZelDecodePNG({}));
  EXPECT_FALSE(ZelDecodeJPEG({}));
  const std::vector<std::uint8_t> garbage = {'G', 'I', 'F', '8', '9', 'a', 1, 2, 3};
  EXPECT_EQ(ZelSniffImageFormat(garbage), ZelImageFormat::Unknown);
  EXPECT_FALSE(ZelDecodeImage(garbage));
  EXPECT_FALSE(ZelDecodePNG(jpeg));  // the wrong decoder refuses cleanly
  EXPECT_FALSE(ZelDecodeJPEG(png));
  // Every cut short of the end of the image data.
  const std::size_t pngDataEnd = png.size() - 12;  // before the IEND chunk
  for (std::size_t n = 0; n < pngDataEnd; ++n) {
    EXPECT_FALSE(ZelDecodeImage(std::span(png.data(), n))) << "PNG cut at " << n;
  }
  for (std::size_t n = 0; n + 2 < jpeg.size(); ++n) {
    EXPECT_FALSE(ZelDecodeImage(std::span(jpeg.data(), n))) << "JPEG cut at " << n;
  }
}

TEST(ZelImageDecoding, CorruptDataIsRefusedWithoutExiting) {
  std::vector<std::uint8_t> png = bytesOf(kPNG2x2Base64);
  std::vector<std::uint8_t> badCRC = png;
  badCRC[45] ^= 0x10;  // inside the IDAT chunk's data
  EXPECT_FALSE(ZelDecodeImage(badCRC));
  std::vector<std::uint8_t> badJPEG = bytesOf(kJPEGRedBlueBase64);
  std::size_t frame = 2;
  while (frame + 4 < badJPEG.size() && !(badJPEG[frame] == 0xFF && badJPEG[frame + 1] == 0xC0)) ++frame;
  ASSERT_LT(frame + 4, badJPEG.size());
  badJPEG[frame + 4] = 7;  // a sample precision libjpeg cannot read: a fatal error
  EXPECT_FALSE(ZelDecodeImage(badJPEG));
}

TEST(ZelImageDecoding, SizeLimitIsEnforcedBeforeDecoding) {
  auto widest = ZelDecodeImage(bytesOf(kPNGWidest));
  ASSERT_TRUE(widest);
  EXPECT_EQ(widest->width(), 16384);
  EXPECT_EQ(widest->pixel(16383, 0), 0xFF000000u);
  EXPECT_FALSE(ZelDecodeImage(bytesOf(kPNGTooWide)));
}

TEST(ZelImageEncoding, PNGRoundTripsExactlyInTheSmallestColourType) {
  const ZelImage image = sampleImage();
  const std::vector<std::uint8_t> png = ZelEncodePNG(image);
  ASSERT_GT(png.size(), 26u);
  EXPECT_EQ(png[25], 6);  // colour type: RGBA
  auto back = ZelDecodeImage(png);
  ASSERT_TRUE(back);
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 4; ++x) EXPECT_EQ(back->pixel(x, y), image.pixel(x, y)) << x << "," << y;
  }
  ZelImage grey(2, 1), colour(2, 1), greyAlpha(2, 1);
  grey.setPixel(0, 0, 0xFF202020);
  grey.setPixel(1, 0, 0xFFE0E0E0);
  colour.setPixel(0, 0, 0xFF202021);
  colour.setPixel(1, 0, 0xFFFFFFFF);
  greyAlpha.setPixel(0, 0, 0x80404040);
  EXPECT_EQ(ZelEncodePNG(grey)[25], 0);       // grey
  EXPECT_EQ(ZelEncodePNG(colour)[25], 2);     // RGB
  EXPECT_EQ(ZelEncodePNG(greyAlpha)[25], 4);  // grey with alpha
  EXPECT_EQ(ZelDecodeImage(ZelEncodePNG(grey))->pixel(1, 0), 0xFFE0E0E0u);
  EXPECT_TRUE(ZelEncodePNG(ZelImage(0, 5)).empty());
}

TEST(ZelImageEncoding, JPEGRoundTripsCloselyInColourAndGrey) {
  ZelImage image(16, 16);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) image.setPixel(x, y, x < 8 ? 0xFF20A040u : 0xFFC0C0C0u);
  }
  for (bool grey : {false, true}) {
    auto back = ZelDecodeImage(ZelEncodeJPEG(image, 95, grey));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->width(), 16);
    const std::uint32_t left = back->pixel(2, 5), right = back->pixel(13, 5);
    EXPECT_EQ(left >> 24, 0xFFu);
    EXPECT_NEAR(channel(right, 16), 0xC0, 3);
    if (grey) {
      EXPECT_EQ(channel(left, 16), channel(left, 0));
      EXPECT_NEAR(channel(left, 8), (0x20 * 299 + 0xA0 * 587 + 0x40 * 114) / 1000, 3);
    } else {
      EXPECT_NEAR(channel(left, 16), 0x20, 6);
      EXPECT_NEAR(channel(left, 8), 0xA0, 6);
      EXPECT_NEAR(channel(left, 0), 0x40, 6);
    }
  }
}
