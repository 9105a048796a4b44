#include <gtest/gtest.h>

#include <vector>

#include "ImageFixtures.h"
#include "theme/ZelBorderSpec.h"
#include "theme/ZelLabelImage.h"
#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"

using namespace zel;

namespace {

ZelPlist spec(std::int64_t top, std::int64_t right, std::int64_t bottom, std::int64_t left) {
  return ZelPlist::array({ZelPlist::integer(top), ZelPlist::integer(right), ZelPlist::integer(bottom),
                          ZelPlist::integer(left)});
}

std::vector<CGRect> filledRects(const ZelRecordingGraphicsContext& ctx) {
  std::vector<CGRect> rects;
  for (const ZelRecordedCall& call : ctx.calls()) {
    if (call.kind == ZelRecordedCall::Kind::FillRect) rects.push_back(call.rect);
  }
  return rects;
}

// Remembers which image each drawImage call drew.
class ImageRecordingContext : public ZelRecordingGraphicsContext {
 public:
  void drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) override {
    drawn.push_back(&image);
    ZelRecordingGraphicsContext::drawImage(image, rect, opacity, filter);
  }
  std::vector<const ZelImage*> drawn;
};

// Makes the dark theme current for the scope.
struct DarkThemeScope {
  DarkThemeScope() {
    if (ZelUITheme::theme() != ZelUITheme::dark()) ZelUITheme::toggleThemeForWindow(nullptr);
  }
  ~DarkThemeScope() {
    if (ZelUITheme::theme() != ZelUITheme::light()) ZelUITheme::toggleThemeForWindow(nullptr);
  }
};

}  // namespace

TEST(ZelBorderRectWithBorderSpec, EachElementDrawsItsOwnHalfPointSide) {
  const CGRect rect = CGRectMake(10, 20, 100, 50);
  auto sides = [&](const ZelPlist& s) {
    ZelRecordingGraphicsContext ctx;
    ZelBorderRectWithBorderSpec(ctx, s, rect);
    return filledRects(ctx);
  };
  EXPECT_EQ(sides(spec(1, 0, 0, 0)), (std::vector<CGRect>{CGRectMake(10, 70, 100, 0.5)}));   // top
  EXPECT_EQ(sides(spec(0, 0, 0, 1)), (std::vector<CGRect>{CGRectMake(10, 20, 0.5, 50)}));    // left
  EXPECT_EQ(sides(spec(-3, 0, 2, 0)).size(), 2u);  // any non-zero element draws
  EXPECT_TRUE(sides(spec(0, 0, 0, 0)).empty());
  EXPECT_TRUE(sides(ZelPlist()).empty());
  EXPECT_EQ(sides(ZelPlist::array({ZelPlist::integer(1)})).size(), 1u);  // short specs read 0 beyond their end
}

TEST(ZelBorderRectWithBorderSpec, FillsInTheContextsCurrentColour) {
  ZelRecordingGraphicsContext ctx;
  ctx.setFillColor(ZelUITheme::light()->interiorBorderColor());
  ZelBorderRectWithBorderSpec(ctx, spec(1, 0, 1, 0), CGRectMake(0, 0, 8, 8));
  ASSERT_EQ(ctx.calls().size(), 2u);
  for (const ZelRecordedCall& call : ctx.calls()) EXPECT_EQ(call.fillColor, ZelUITheme::light()->interiorBorderColor());
}

TEST(ZelLabelImage, OnlyBase64PrefixedTextThatDecodesIsAnImage) {
  const std::string text = std::string("base64,") + kPNG2x2Base64;
  auto image = ZelImageFromBase64String(text);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 2);
  EXPECT_EQ(ZelImageFromBase64String(text).get(), image.get());  // decoded once
  EXPECT_FALSE(ZelImageFromBase64String(kPNG2x2Base64));             // no prefix
  EXPECT_FALSE(ZelImageFromBase64String("Gain"));
  EXPECT_FALSE(ZelImageFromBase64String("base64,not*base64"));
  EXPECT_FALSE(ZelImageFromBase64String("base64,R0lGODlhAQABAAAAACw="));  // decodes, but no image
  const std::string wrapped = std::string("base64,") + std::string(kPNG2x2Base64).insert(20, "\n  ");
  EXPECT_TRUE(ZelImageFromBase64String(wrapped));
}

TEST(ZelLabelImage, SituatedRectIsHalfSizeCentredAndFlooredInSinglePrecision) {
  const ZelImage image(5, 7);  // 2 × 3 points after flooring the halves
  EXPECT_EQ(SituatedRectInsideRectForImage(image, CGRectMake(10.3, 20.6, 31, 17)), CGRectMake(24, 27, 2, 3));
  EXPECT_EQ(SituatedRectInsideRectForImage(image, CGRectMake(-10, -10, 4, 4)), CGRectMake(-9, -10, 2, 3));
  // 0.9999999999 is 1.0 in single precision: the double floor would give 0.
  const ZelImage tiny(2, 2);
  EXPECT_EQ(SituatedRectInsideRectForImage(tiny, CGRectMake(0.9999999999, 0.9999999999, 1, 1)), CGRectMake(1, 1, 1, 1));
  EXPECT_EQ(SituatedRectInsideRectForImage(ZelImage(1, 1), CGRectMake(0, 0, 10, 10)), CGRectMake(5, 5, 0, 0));
}

TEST(ZelLabelImage, DrawsAtSeventyPercentAndInvertedOnceForTheDarkTheme) {
  auto image = ZelImageFromBase64String(std::string("base64,") + kPNG2x2Base64);
  ASSERT_TRUE(image);
  const CGRect frame = CGRectMake(0, 0, 40, 20);
  ImageRecordingContext light;
  DrawLabelImage(light, image, frame);
  ASSERT_EQ(light.drawn, (std::vector<const ZelImage*>{image.get()}));
  EXPECT_EQ(light.calls()[0].rect, SituatedRectInsideRectForImage(*image, frame));
  EXPECT_EQ(light.calls()[0].opacity, 0.7);

  DarkThemeScope dark;
  ImageRecordingContext first, second;
  DrawLabelImage(first, image, frame);
  DrawLabelImage(second, image, frame);
  ASSERT_EQ(first.drawn.size(), 1u);
  EXPECT_NE(first.drawn[0], image.get());
  EXPECT_EQ(second.drawn, first.drawn);  // the inverted copy is made once
  EXPECT_EQ(first.calls()[0].rect, light.calls()[0].rect);
  EXPECT_EQ(first.calls()[0].opacity, 0.7);
  const ZelImage& inverted = *first.drawn[0];
  EXPECT_EQ(inverted.pixel(0, 0), 0xFF00FFFFu);  // red becomes cyan
  EXPECT_EQ(inverted.pixel(1, 1), 0x40000000u);  // white at alpha 64 becomes black, alpha kept
  EXPECT_EQ(ZelInvertedLabelImage(image).get(), first.drawn[0]);

  ImageRecordingContext none;
  DrawLabelImage(none, nullptr, frame);
  EXPECT_TRUE(none.calls().empty());
}

TEST(ZelLabelImage, AnotherImageGetsItsOwnInvertedCopy) {
  auto a = std::make_shared<ZelImage>(1, 1);
  a->setPixel(0, 0, 0xFF000000);
  auto b = std::make_shared<ZelImage>(1, 1);
  b->setPixel(0, 0, 0xFFFFFFFF);
  auto invertedA = ZelInvertedLabelImage(a), invertedB = ZelInvertedLabelImage(b);
  EXPECT_EQ(invertedA->pixel(0, 0), 0xFFFFFFFFu);
  EXPECT_EQ(invertedB->pixel(0, 0), 0xFF000000u);
  EXPECT_EQ(ZelInvertedLabelImage(a).get(), invertedA.get());
}
