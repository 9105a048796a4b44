// The clumps view: hairlines between clumps and the dashed outside border.
#include <gtest/gtest.h>

#include <numbers>

#include "ContainersTestSupport.h"
#include "theme/ZelUITheme.h"
#include "editor/containers/ZelClumpsView.h"

namespace zel::containers_test {
namespace {

using Type = ZelPathElement::Type;

std::unique_ptr<ZelConfig> HQConfig(bool withParameter) {
  Array parameters;
  if (withParameter) parameters.push_back(Parameter(10, "HQ", 0, {{"displacedFrame", A({N(19), N(19), N(56), N(56)})}}));
  return Config({ClumpEntry({{"name", S("Quality")}}, std::move(parameters))},
                {{"hasGenericHQMode", B(true)}, {"genericHQParameter", S("HQ")}});
}

TEST(ClumpsView, HairlinesAreHalfPointFillsOfTheLayoutEdges) {
  auto config = Config({});
  ZelClumpsView view(CGRectMake(0, 30, 418, 350), config.get());
  ZelRecordingGraphicsContext ctx;
  view.drawRect(ctx, view.bounds());
  const ZelColor hairline = ZelUITheme::theme()->textColor().withAlpha(static_cast<double>(0.45f));
  // The texture first; no layout, no hairlines.
  ASSERT_FALSE(ctx.calls().empty());
  EXPECT_TRUE(ctx.calls()[0].fillIsPattern);
  EXPECT_EQ(ctx.calls()[0].rect, view.bounds());
  EXPECT_TRUE(FillsIn(ctx, hairline).empty());

  // Three clumps in a row over 6 columns: 69-point columns, centred (+2).
  view.setLayout(ZelPluginLayout::layoutForLayout(
      Layout(6, 1, {{"0", Cell(0, 0, 2, 1)}, {"1", Cell(2, 0, 2, 1)}, {"2", Cell(4, 0, 2, 1)}}), view.bounds(), 3,
      ZelPlist::null()));
  ctx.clear();
  view.drawRect(ctx, view.bounds());
  std::vector<CGRect> lines = FillsIn(ctx, hairline);
  std::sort(lines.begin(), lines.end(), [](CGRect a, CGRect b) { return a.origin.x < b.origin.x; });
  EXPECT_EQ(lines, (std::vector<CGRect>{CGRectMake(140, 0, 0.5, 350), CGRectMake(278, 0, 0.5, 350)}));
  EXPECT_EQ(ctx.count(ZelRecordedCall::Kind::StrokePath), 0u);  // no outside border asked for
}

TEST(ClumpsView, OutsideBorderIsTheInsetRectangleWithoutHQMode) {
  auto config = Config({});
  ZelClumpsView view(CGRectMake(0, 0, 400, 300), config.get());
  view.setInset(10);
  view.setDrawOutsideBorder(true);
  EXPECT_EQ(view.outsideBorderRect(), CGRectMake(5, 5, 390, 289));
  ZelPath expected;
  expected.addRect(CGRectMake(5, 5, 390, 289));
  EXPECT_EQ(view.outsideBorderPath(), expected);

  ZelRecordingGraphicsContext ctx;
  view.drawRect(ctx, view.bounds());
  ASSERT_EQ(ctx.count(ZelRecordedCall::Kind::StrokePath), 1u);
  EXPECT_EQ(ctx.count(ZelRecordedCall::Kind::FillEllipse), 0u);
  for (const auto& call : ctx.calls()) {
    if (call.kind != ZelRecordedCall::Kind::StrokePath) continue;
    EXPECT_EQ(call.strokeColor, ZelUITheme::theme()->textColor().withAlpha(static_cast<double>(0.2f)));
    EXPECT_EQ(call.lineWidth, 1.0);
    EXPECT_EQ(call.rect, CGRectMake(4.5, 4.5, 391, 290));  // B and half the line width
  }
}

TEST(ClumpsView, OutsideBorderBendsRoundTheHQControl) {
  auto config = HQConfig(true);
  ZelClumpsView view(CGRectMake(0, 30, 418, 350), config.get());
  view.setInset(14);
  view.setDrawOutsideBorder(true);
  // D = (19, 19, 56, 56) grown by 64 and moved by -40: centre (7, 7), R 92.
  EXPECT_EQ(view.hqClearanceRect(), CGRectMake(-85, -85, 184, 184));
  const CGRect b = view.outsideBorderRect();
  EXPECT_EQ(b, CGRectMake(7, 7, 404, 335));

  const ZelPath path = view.outsideBorderPath();
  const auto& e = path.elements();
  ASSERT_EQ(e.size(), 7u);
  EXPECT_EQ(e[0].type, Type::MoveTo);
  EXPECT_EQ(e[0].p1, CGPointMake(7, 342));
  EXPECT_EQ(e[1].p1, CGPointMake(411, 342));
  EXPECT_EQ(e[2].p1, CGPointMake(411, 7));
  EXPECT_EQ(e[3].p1, CGPointMake(99, 7));
  EXPECT_EQ(e[4].type, Type::Arc);
  EXPECT_EQ(e[4].p1, CGPointMake(7, 7));
  EXPECT_EQ(e[4].radius, 92);
  EXPECT_DOUBLE_EQ(e[4].startAngle, 0);
  EXPECT_DOUBLE_EQ(e[4].endAngle, std::numbers::pi / 2);
  EXPECT_FALSE(e[4].clockwise);
  // The arc's reach (mx + R - B.x = 92) mirrored onto the left side.
  EXPECT_EQ(e[5].type, Type::MoveTo);
  EXPECT_EQ(e[5].p1, CGPointMake(7, 99));
  EXPECT_EQ(e[6].p1, CGPointMake(7, 342));

  // The texture is painted again in C grown by 10, behind the HQ control.
  ZelRecordingGraphicsContext ctx;
  view.drawRect(ctx, view.bounds());
  std::vector<CGRect> ellipses;
  for (const auto& call : ctx.calls())
    if (call.kind == ZelRecordedCall::Kind::FillEllipse && call.fillIsPattern) ellipses.push_back(call.rect);
  EXPECT_EQ(ellipses, (std::vector<CGRect>{CGRectMake(-95, -95, 204, 204)}));
}

TEST(ClumpsView, HQModeWithoutTheParameterBendsRoundTheZeroRectangle) {
  auto config = HQConfig(false);
  ZelClumpsView view(CGRectMake(0, 0, 400, 300), config.get());
  view.setInset(10);
  EXPECT_EQ(view.hqClearanceRect(), CGRectMake(-104, -104, 128, 128));
  const ZelPath path = view.outsideBorderPath();
  const auto& e = path.elements();
  ASSERT_EQ(e.size(), 7u);
  EXPECT_EQ(e[4].type, Type::Arc);
  EXPECT_DOUBLE_EQ(e[4].startAngle, std::asin((5.0 + 40.0) / 64.0));
}

}  // namespace
}  // namespace zel::containers_test
