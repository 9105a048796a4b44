// The editor as `vantry --render` draws it, against the reference pictures
// tests/golden/editor-*.png.
#include <gtest/gtest.h>

#include <string>

#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelEditorStill.h"
#include "model/ZelConfig.h"
#include "tests/support/GoldenImage.h"

namespace {

using namespace zel;

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
  auto actual = render(dark, scale);
  test::expectMatchesGolden(actual.get(), name);
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
  EXPECT_EQ(test::compareImages(*light, *again).share, 0.0);
  EXPECT_GT(test::compareImages(*light, *dark).share, 0.5);
}

}  // namespace

// The user's zoom steps between 100% and 200% draw the editor at that scale,
// crisp at every step.
TEST(EditorGolden, LightAtEveryZoomStep) {
  for (const char* step : {"1.25", "1.5", "1.75"}) {
    SCOPED_TRACE(step);
    expectMatchesReference(false, std::stod(step), std::string("editor-light-") + step);
  }
}
