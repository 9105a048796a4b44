// Comparing a render with a reference picture in tests/golden/ (./vantry
// golden rewrites them; look at them before committing). Text depends on the
// installed faces and antialiasing on the rasterizer, so pixels may differ a
// little: each channel by up to kGoldenChannelTolerance, and a small share of
// pixels by more. A mismatch writes the render beside the test's build
// folder (NAME-actual.png) and fails the test.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "toolkit/core/ZelImage.h"
#include "toolkit/core/ZelImageDecoding.h"
#include "toolkit/core/ZelImageEncoding.h"

namespace zel::test {

constexpr int kGoldenChannelTolerance = 12;             // of 255
constexpr double kGoldenAllowedDifferingShare = 0.002;  // of all pixels

struct ImageComparison {
  long differing = 0;  // pixels beyond the tolerance
  int worst = 0;       // the largest channel difference
  double share = 0;    // differing / all pixels
};

inline int channelDistance(std::uint32_t a, std::uint32_t b) {
  int worst = 0;
  for (int shift = 0; shift < 32; shift += 8)
    worst = std::max(worst, std::abs(static_cast<int>((a >> shift) & 255) - static_cast<int>((b >> shift) & 255)));
  return worst;
}

inline ImageComparison compareImages(const ZelImage& actual, const ZelImage& reference) {
  ImageComparison c;
  for (int y = 0; y < actual.height(); ++y)
    for (int x = 0; x < actual.width(); ++x) {
      int d = channelDistance(actual.pixel(x, y), reference.pixel(x, y));
      c.worst = std::max(c.worst, d);
      if (d > kGoldenChannelTolerance) ++c.differing;
    }
  c.share = static_cast<double>(c.differing) / (static_cast<double>(actual.width()) * actual.height());
  return c;
}

// Expects `actual` to match ZEL_GOLDEN_DIR/NAME.png within the tolerance.
inline void expectMatchesGolden(const ZelImage* actual, const std::string& name) {
  const std::string referencePath = std::string(ZEL_GOLDEN_DIR) + "/" + name + ".png";
  auto reference = ZelDecodeImageFile(referencePath);
  ASSERT_TRUE(reference) << "missing reference " << referencePath << ": run ./vantry golden";
  ASSERT_TRUE(actual);
  ASSERT_EQ(actual->width(), reference->width());
  ASSERT_EQ(actual->height(), reference->height());
  ImageComparison c = compareImages(*actual, *reference);
  if (c.share <= kGoldenAllowedDifferingShare) return;
  const std::string out = std::string(ZEL_GOLDEN_OUT_DIR) + "/" + name + "-actual.png";
  std::vector<std::uint8_t> png = ZelEncodePNG(*actual);
  if (FILE* f = std::fopen(out.c_str(), "wb")) {
    std::fwrite(png.data(), 1, png.size(), f);
    std::fclose(f);
  }
  ADD_FAILURE() << name << ": " << c.differing << " pixels (" << c.share * 100 << " %) differ by more than "
                << kGoldenChannelTolerance << "; worst " << c.worst << ". The render is in " << out;
}

}  // namespace zel::test
