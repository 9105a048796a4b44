// The clump view: geometry, the controls it makes, its drawing and dimming.
#include <gtest/gtest.h>

#include "ContainersTestSupport.h"
#include "controls/ZelParameterControl.h"
#include "theme/ZelUITheme.h"
#include "editor/containers/ZelClumpView.h"
#include "toolkit/core/ZelBase64.h"
#include "toolkit/core/ZelImageEncoding.h"

namespace zel::containers_test {
namespace {

// Two parameters side by side under a label row "x", inset {6, 4}.
Dict TwoColumnClump(bool interiorBorders) {
  return {{"name", S("Filter")},
          {"inset", D({{"x", I(6)}, {"y", I(4)}})},
          {"labelBorder", A({I(0), I(0), I(1), I(0)})},
          {"showInteriorBorders", B(interiorBorders)},
          {"computedLayout",
           Layout(2, 4, {{"0", Cell(0, 0, 1, 3)}, {"1", Cell(1, 0, 1, 3)}, {"x", Cell(0, 3, 2, 1)}})}};
}

std::unique_ptr<ZelConfig> OneClump(Dict metadata, Array parameters = {Parameter(1, "Low", 0), Parameter(2, "High", 1)}) {
  return Config({ClumpEntry(std::move(metadata), std::move(parameters))});
}

std::string LabelText(int width, int height) {
  return "base64," + ZelEncodeBase64(ZelEncodePNG(ZelImage(width, height)));
}

const ZelColor HairlineColour() { return ZelUITheme::theme()->textColor().withAlpha(static_cast<double>(0.2f)); }

TEST(ClumpView, GeometryFollowsTheInsetAndTheClumpLayout) {
  auto config = OneClump(TwoColumnClump(false));
  ZelClumpView view(CGRectMake(0, 0, 200, 100), config->clumps()[0].get(), MakeQuiet);

  EXPECT_EQ(view.useableRect(), CGRectMake(6, 4, 188, 92));
  // The layout is laid over the useable rectangle: 94-point columns from x 6.
  ASSERT_EQ(view.parameterControls().size(), 2u);
  EXPECT_EQ(view.parameterControls()[0]->frame(), CGRectMake(6, 4, 94, 69));
  EXPECT_EQ(view.parameterControls()[1]->frame(), CGRectMake(100, 4, 94, 69));
  EXPECT_EQ(view.frameForParameter(*config->clumps()[0]->parameters[1]), CGRectMake(100, 4, 94, 69));

  // Bounds inset by 4 (192 × 92), radius 24, built at the origin.
  const ZelPath border = view.newRoundedBorderRect();
  ASSERT_GE(border.elements().size(), 2u);
  EXPECT_EQ(border.elements()[0].p1, CGPointMake(24, 0));
  EXPECT_EQ(border.elements()[1].p1, CGPointMake(192, 0));
  EXPECT_EQ(border.elements()[1].radius, 24);
}

TEST(ClumpView, DisplacedControlsAreKeptForTheEditorNotAdded) {
  auto config = OneClump({{"name", S("Quality")}},
                         {Parameter(9, "Hiss", 0), Parameter(10, "HQ", 1, {{"displacedFrame", A({N(19), N(19), N(56), N(56)})}})});
  ZelClumpView view(CGRectMake(0, 0, 120, 200), config->clumps()[0].get(), MakeQuiet);

  ASSERT_EQ(view.parameterControls().size(), 2u);
  ZelParameterControl* hiss = view.parameterControls()[0];
  ZelParameterControl* hq = view.parameterControls()[1];
  EXPECT_EQ(hiss->superview(), &view);
  EXPECT_EQ(hq->superview(), nullptr);
  EXPECT_EQ(hq->frame(), CGRectMake(19, 19, 56, 56));
  EXPECT_EQ(hq->clumpView(), &view);
  EXPECT_EQ(view.subviews().size(), 1u);

  EXPECT_EQ(view.takeDisplacedControl(hiss), nullptr);
  EXPECT_EQ(view.takeDisplacedControl(hq).get(), hq);
  EXPECT_EQ(view.takeDisplacedControl(hq), nullptr);
}

TEST(ClumpView, InteriorHairlinesAreShiftedByHalfTheUseableOrigin) {
  auto config = OneClump(TwoColumnClump(true));
  ZelClumpView view(CGRectMake(0, 0, 200, 100), config->clumps()[0].get(), MakeQuiet);
  ZelRecordingGraphicsContext ctx;
  view.drawRect(ctx, view.bounds());

  // Edges (100,4)-(100,73), (6,73)-(100,73), (100,73)-(194,73), moved by (+3, -2).
  std::vector<CGRect> hairlines = FillsIn(ctx, HairlineColour());
  std::sort(hairlines.begin(), hairlines.end(), [](CGRect a, CGRect b) {
    return std::tie(a.origin.x, a.origin.y) < std::tie(b.origin.x, b.origin.y);
  });
  EXPECT_EQ(hairlines, (std::vector<CGRect>{CGRectMake(9, 71, 94, 0.5), CGRectMake(103, 2, 0.5, 69),
                                            CGRectMake(103, 71, 94, 0.5)}));
}

TEST(ClumpView, NoHairlinesWithInteriorBordersOff) {
  auto off = OneClump(TwoColumnClump(false));
  ZelClumpView hidden(CGRectMake(0, 0, 200, 100), off->clumps()[0].get(), MakeQuiet);
  ZelRecordingGraphicsContext ctx;
  hidden.drawRect(ctx, hidden.bounds());
  EXPECT_TRUE(FillsIn(ctx, HairlineColour()).empty());

}

TEST(ClumpView, LabelBorderIsDrawnWithOrWithoutALabelImage) {
  auto bare = OneClump(TwoColumnClump(false));
  ZelClumpView unlabelled(CGRectMake(0, 0, 200, 100), bare->clumps()[0].get(), MakeQuiet);
  ZelRecordingGraphicsContext ctx;
  unlabelled.drawRect(ctx, unlabelled.bounds());
  EXPECT_EQ(ctx.count(ZelRecordedCall::Kind::DrawImage), 0u);
  // The "x" frame is (6, 73, 188, 23); its minimum-y side.
  EXPECT_EQ(FillsIn(ctx, ZelUITheme::theme()->interiorBorderColor()),
            (std::vector<CGRect>{CGRectMake(6, 73, 188, 0.5)}));

  // A 40 × 20 pixel label is drawn at 20 × 10, centred in "x"; a tagged
  // label (10 × 10 pixels) centred in its own frame "1".
  Dict labelled = TwoColumnClump(false);
  labelled["label"] = ZelPlist::string(LabelText(40, 20));
  labelled["taggedLabels"] = D({{"1", ZelPlist::string(LabelText(10, 10))}});
  auto config = OneClump(labelled);
  ZelClumpView view(CGRectMake(0, 0, 200, 100), config->clumps()[0].get(), MakeQuiet);
  ctx.clear();
  view.drawRect(ctx, view.bounds());
  std::vector<CGRect> images;
  for (const auto& call : ctx.calls())
    if (call.kind == ZelRecordedCall::Kind::DrawImage) images.push_back(call.rect);
  EXPECT_EQ(images, (std::vector<CGRect>{CGRectMake(90, 79, 20, 10), CGRectMake(144, 36, 5, 5)}));
  EXPECT_EQ(FillsIn(ctx, ZelUITheme::theme()->interiorBorderColor()).size(), 1u);
}

// Records the delays the clump view hands each control.
class DimRecordingClumpView : public ZelClumpView {
 public:
  using ZelClumpView::ZelClumpView;
  std::vector<double> delays;
  std::vector<std::uint32_t> priorities;

 protected:
  void dimControl(ZelParameterControl& control, bool dimmed, double delay, std::uint32_t priority) override {
    delays.push_back(delay);
    priorities.push_back(priority);
    ZelClumpView::dimControl(control, dimmed, delay, priority);
  }
};

TEST(ClumpView, DimmingStaggersTheControlsAndHalvesTheClump) {
  auto config = OneClump({{"name", S("Three")}},
                         {Parameter(1, "A", 0), Parameter(2, "B", 1), Parameter(3, "C", 2),
                          Parameter(4, "D", 3, {{"displacedFrame", A({N(0), N(0), N(10), N(10)})}})});
  DimRecordingClumpView view(CGRectMake(0, 0, 300, 100), config->clumps()[0].get(), MakeQuiet);
  // A subview that is no parameter control is passed over.
  view.insertSubview(std::make_unique<ZelView>(CGRectMake(0, 0, 5, 5)), 1);

  view.setDimmed(true, 0.3, 5);
  ASSERT_EQ(view.delays.size(), 3u);  // the displaced control is not a subview
  EXPECT_DOUBLE_EQ(view.delays[0], 0.3);
  EXPECT_DOUBLE_EQ(view.delays[1], 0.32);
  EXPECT_DOUBLE_EQ(view.delays[2], 0.34);
  EXPECT_EQ(view.priorities, (std::vector<std::uint32_t>{5, 5, 5}));
  EXPECT_TRUE(view.dimmed());
  EXPECT_DOUBLE_EQ(view.alphaValue(), 0.5);
  EXPECT_TRUE(view.parameterControls()[0]->isDimmed());

  view.setDimmed(false, 0, 5);
  EXPECT_FALSE(view.dimmed());
  EXPECT_DOUBLE_EQ(view.alphaValue(), 1.0);
  EXPECT_FALSE(view.parameterControls()[2]->isDimmed());
}

}  // namespace
}  // namespace zel::containers_test
