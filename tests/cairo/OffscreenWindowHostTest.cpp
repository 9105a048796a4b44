#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelView.h"

using namespace zel;

namespace {

class SolidView : public ZelView {
 public:
  SolidView(CGRect frame, ZelColor colour) : ZelView(frame), colour(colour) {}
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    ctx.setFillColor(colour);
    ctx.fillRect(bounds());
  }
  ZelColor colour;
};

struct OffscreenFixture {
  explicit OffscreenFixture(double scale) : host(window, scale, text()) {
    solid = window.contentView()->addSubview(std::make_unique<SolidView>(CGRectMake(0, 0, 10, 5), kRed));
  }
  static std::shared_ptr<ZelCairoText> text() {
    static auto shared = std::make_shared<ZelCairoText>("/nonexistent/icons.otf");
    return shared;
  }
  static constexpr ZelColor kRed = ZelColor::rgb(1, 0, 0);

  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {20, 10}};
  ZelOffscreenWindowHost host;
  SolidView* solid;
};

std::string readFile(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

TEST(OffscreenWindowHost, RedrawsFromTheRunLoopAtTheBackingScale) {
  OffscreenFixture f(2);
  EXPECT_GT(f.loop.pendingCount(), 0u);  // attaching asked for a redraw
  f.loop.runDue();
  EXPECT_EQ(f.loop.pendingCount(), 0u);
  auto image = f.host.snapshot();
  ASSERT_EQ(image->width(), 40);
  ASSERT_EQ(image->height(), 20);
  EXPECT_EQ(image->pixel(0, 19), 0xFFFF0000u);   // the view sits at the bottom left
  EXPECT_EQ(image->pixel(19, 10), 0xFFFF0000u);
  EXPECT_EQ(image->pixel(20, 10), 0u);
  EXPECT_EQ(image->pixel(0, 9), 0u);
}

TEST(OffscreenWindowHost, RedrawsOnlyTheDirtyAreaRoundedOutToWholePixels) {
  OffscreenFixture f(1.5);
  f.loop.runDue();
  f.solid->colour = ZelColor::rgb(0, 0, 1, 0.5);  // changed without telling the window
  f.window.invalidate(CGRectMake(0.3, 0.3, 1.1, 1.1));
  EXPECT_EQ(f.loop.pendingCount(), 1u);
  f.loop.runDue();
  auto image = f.host.snapshot();
  ASSERT_EQ(image->height(), 15);
  // Points 0.3 … 1.4 are pixels 0.45 … 2.1: pixels 0 … 2 redraw whole.
  for (int y = 0; y < 15; ++y) {
    for (int x = 0; x < 30; ++x) {
      bool view = x < 15 && y >= 15 - 8;  // 10 × 5 points, the top row half covered
      bool redrawn = x <= 2 && y >= 15 - 3;
      std::uint32_t p = image->pixel(x, y);
      if (!view) continue;
      if (y == 7) continue;  // the view's half-covered top row
      // Redrawn pixels are cleared first: half-transparent blue, no red left.
      if (redrawn) EXPECT_TRUE(p == 0x80000080u || p == 0x7F00007Fu) << std::hex << p << " at " << x << "," << y;
      else EXPECT_EQ(p, 0xFFFF0000u) << x << "," << y;
    }
  }
}

TEST(OffscreenWindowHost, WritesTheSameBytesForTheSameWindow) {
  namespace fs = std::filesystem;
  fs::path dir = fs::temp_directory_path() / ("zel-offscreen-" + std::to_string(getpid()));
  fs::create_directories(dir);
  OffscreenFixture f(1.5);
  ASSERT_TRUE(f.host.renderToPNG((dir / "a.png").string()));
  f.loop.runDue();
  ASSERT_TRUE(f.host.renderToPNG((dir / "b.png").string()));
  std::string a = readFile(dir / "a.png"), b = readFile(dir / "b.png");
  EXPECT_GT(a.size(), 8u);
  EXPECT_EQ(a.substr(1, 3), "PNG");
  EXPECT_EQ(a, b);

  f.host.setBackingScale(2);
  f.loop.runDue();
  EXPECT_EQ(f.host.snapshot()->width(), 40);
  EXPECT_FALSE(f.host.writePNG((dir / "missing-folder" / "c.png").string()));
  fs::remove_all(dir);
}
