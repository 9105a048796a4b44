#include "layout/engine/ZelPluginLayout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>

#include "tests/support/GeometryPrinting.h"

using namespace zel;

ZEL_NAMESPACE_BEGIN
// Readable failures.
void PrintTo(const ZelLayoutEdge& e, std::ostream* os) {
  *os << "(" << e.start.x << ", " << e.start.y << ")-(" << e.end.x << ", " << e.end.y << ")";
}
ZEL_NAMESPACE_END

namespace {

ZelPlist num(std::int64_t v) { return ZelPlist::integer(v); }

ZelPlist cell(std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
  return ZelPlist::dictionary({{"origin", ZelPlist::dictionary({{"x", num(x)}, {"y", num(y)}})},
                               {"size", ZelPlist::dictionary({{"w", num(w)}, {"h", num(h)}})}});
}

ZelPlist grid(ZelPlist columns, ZelPlist rows, ZelPlist::Dictionary matrix) {
  return ZelPlist::dictionary({{"width", std::move(columns)},
                               {"height", std::move(rows)},
                               {"matrix", ZelPlist::dictionary(std::move(matrix))}});
}

ZelPlist grid(std::int64_t columns, std::int64_t rows, ZelPlist::Dictionary matrix) {
  return grid(num(columns), num(rows), std::move(matrix));
}

ZelPlist heightConstraint(const std::string& name, double height) {
  return ZelPlist::dictionary({{name, ZelPlist::dictionary({{"height", ZelPlist::real(height)}})}});
}

ZelLayoutFrames framesOf(const ZelPlist& layout, CGRect bounds, const ZelPlist& constraints = {}) {
  return ZelPluginLayout::framesForLayout(layout, bounds, 0, constraints);
}

ZelLayoutEdge edge(double x0, double y0, double x1, double y1) { return {{x0, y0}, {x1, y1}}; }

}  // namespace

TEST(ZelPluginLayoutGrid, CellsAreWholePointsCentredInTheBounds) {
  // 300 x 200 over 7 x 4: cells of 42 x 50, 6 points left over horizontally,
  // split 3 / 3; the bounds' origin carries through.
  auto f = framesOf(grid(7, 4, {{"a", cell(1, 2, 3, 1)}, {"b", cell(0, 0, 7, 4)}}), CGRectMake(10, 20, 300, 200));
  EXPECT_EQ(f.frames["a"], CGRectMake(13 + 42, 20 + 100, 126, 50));
  EXPECT_EQ(f.frames["b"], CGRectMake(13, 20, 294, 200));

  // 301 over 2 columns: cells of 150, the odd point goes to the far side.
  // Grid numbers truncate; row 0 is at the bottom.
  auto odd = framesOf(
      grid(ZelPlist::real(2.9), ZelPlist::string("2"), {{"0", cell(0, 0, 1, 1)}, {"1", cell(1, 1, 1, 1)}}),
      CGRectMake(0, 0, 301, 201));
  EXPECT_EQ(odd.frames["0"], CGRectMake(0, 0, 150, 100));
  EXPECT_EQ(odd.frames["1"], CGRectMake(150, 100, 150, 100));

  // The cell size is floored after rounding to single precision:
  // 299.999997 / 3 is 99.999999, which is 100 as a float.
  auto single = framesOf(grid(3, 1, {{"0", cell(2, 0, 1, 1)}}), CGRectMake(0, 0, 299.999997, 10));
  EXPECT_EQ(single.frames["0"], CGRectMake(200, 0, 100, 10));
}

TEST(ZelPluginLayoutGrid, InteriorEdgesComeFromMaximumSidesInMatrixOrder) {
  auto f = framesOf(grid(2, 2, {{"a", cell(0, 0, 1, 1)}, {"b", cell(1, 0, 1, 1)}, {"c", cell(0, 1, 1, 1)},
                                {"d", cell(1, 1, 1, 1)}}),
                    CGRectMake(0, 0, 200, 200));
  std::vector<ZelLayoutEdge> expected{edge(100, 0, 100, 100), edge(0, 100, 100, 100), edge(100, 100, 200, 100),
                                      edge(100, 100, 100, 200)};
  EXPECT_EQ(f.edges, expected);
}

TEST(ZelPluginLayoutGrid, SidesWithinTenPointsOfTheReferenceAreOuterBorders) {
  // 1-point cells: a side 10 points in is an outer border, 11 points in is
  // an interior edge.
  CGRect bounds = CGRectMake(0, 0, 100, 100);
  EXPECT_TRUE(framesOf(grid(100, 100, {{"0", cell(0, 0, 90, 90)}}), bounds).edges.empty());
  auto f = framesOf(grid(100, 100, {{"0", cell(0, 0, 89, 89)}}), bounds);
  EXPECT_EQ(f.edges, (std::vector<ZelLayoutEdge>{edge(89, 0, 89, 89), edge(0, 89, 89, 89)}));

  // The reference is the bounds at the centring offset, not the grid used:
  // the last of 7 columns over 300 points ends 6 points short and so has no
  // edge; its max-y side is 50 points in and has one.
  auto g = framesOf(grid(7, 4, {{"0", cell(6, 0, 1, 3)}}), CGRectMake(0, 0, 300, 200));
  EXPECT_EQ(g.edges, (std::vector<ZelLayoutEdge>{edge(255, 150, 297, 150)}));
  // 16 columns over 332 points leave 12, split 6 / 6: even a cell across
  // the whole grid ends 12 points short of the reference and gets an edge.
  auto h = framesOf(grid(16, 1, {{"0", cell(0, 0, 16, 1)}}), CGRectMake(0, 0, 332, 50));
  EXPECT_EQ(h.edges, (std::vector<ZelLayoutEdge>{edge(326, 0, 326, 50)}));
}

TEST(ZelPluginLayoutGrid, ConstraintsReplaceOnlyTheHeightAndJudgeTheEdgeWithIt) {
  CGRect bounds = CGRectMake(0, 0, 100, 100);
  auto layout = grid(10, 10, {{"0", cell(1, 0, 9, 10)}, {"1", cell(0, 0, 1, 10)}});

  auto plain = framesOf(layout, bounds);
  EXPECT_EQ(plain.frames["0"], CGRectMake(10, 0, 90, 100));
  EXPECT_EQ(plain.edges, (std::vector<ZelLayoutEdge>{edge(10, 0, 10, 100)}));

  auto constrained = framesOf(layout, bounds, heightConstraint("0", 85.5));
  EXPECT_EQ(constrained.frames["0"], CGRectMake(10, 0, 90, 85.5));
  EXPECT_EQ(constrained.frames["1"], plain.frames["1"]);
  EXPECT_EQ(constrained.edges, (std::vector<ZelLayoutEdge>{edge(10, 85.5, 100, 85.5), edge(10, 0, 10, 100)}));

  // 92 is within 10 points of the top: still no max-y edge.
  EXPECT_EQ(framesOf(layout, bounds, heightConstraint("0", 92)).edges, plain.edges);
  // Constraints that are not dictionaries are no constraints.
  auto junk = ZelPlist::dictionary({{"0", ZelPlist::real(5)}});
  EXPECT_EQ(framesOf(layout, bounds, junk).frames, plain.frames);
  EXPECT_EQ(framesOf(layout, bounds, ZelPlist::string("0")).frames, plain.frames);
}

TEST(ZelPluginLayoutGrid, EdgesCellIsReplacedByTheEdgeList) {
  auto f = framesOf(grid(2, 1, {{"edges", cell(0, 0, 1, 1)}, {"1", cell(1, 0, 1, 1)}}), CGRectMake(0, 0, 100, 50));
  EXPECT_EQ(f.frames.count("edges"), 0u);
  ZelPluginLayout layout(f);
  EXPECT_EQ(layout.frameLabeled("edges"), CGRectZero);
  EXPECT_EQ(layout.frameForIndex(1), CGRectMake(50, 0, 50, 50));
  // The lost cell's side still separates it from its neighbour.
  EXPECT_EQ(layout.edges(), (std::vector<ZelLayoutEdge>{edge(50, 0, 50, 50)}));
}

TEST(ZelPluginLayoutGrid, MalformedDescriptionsGiveNonFiniteOrEmptyFramesWithoutFailing) {
  CGRect bounds = CGRectMake(0, 0, 300, 200);
  const ZelPlist layouts[] = {
      grid(0, 4, {{"0", cell(1, 1, 1, 1)}}),
      grid(ZelPlist::string("wide"), num(4), {{"0", cell(1, 1, 1, 1)}}),
      ZelPlist::dictionary({{"height", num(4)}, {"matrix", ZelPlist::dictionary({{"0", cell(1, 1, 1, 1)}})}}),
  };
  for (const ZelPlist& layout : layouts) {
    auto f = framesOf(layout, bounds);
    ASSERT_EQ(f.frames.size(), 1u);
    EXPECT_FALSE(std::isfinite(f.frames["0"].origin.x));
    EXPECT_EQ(f.frames["0"].origin.y, 50);
  }
  // Zero columns over a zero-width area: 0 / 0.
  auto empty = framesOf(grid(0, 0, {{"0", cell(0, 0, 1, 1)}}), CGRectZero);
  EXPECT_TRUE(std::isnan(empty.frames["0"].size.width));

  // A matrix that is not a dictionary holds no cells; a cell that is not a
  // dictionary reads as an empty one at the grid origin.
  auto noMatrix = ZelPlist::dictionary({{"width", num(7)}, {"height", num(4)}, {"matrix", ZelPlist::string("x")}});
  auto none = framesOf(noMatrix, bounds);
  EXPECT_TRUE(none.frames.empty() && none.edges.empty());
  auto junkCell = framesOf(grid(7, 4, {{"0", ZelPlist::integer(3)}}), bounds);
  EXPECT_EQ(junkCell.frames["0"], CGRectMake(3, 0, 0, 0));
}

TEST(ZelPluginLayoutAutomatic, HeaderStripThenEqualColumnsWithTheLeftoverOnTheRight) {
  CGRect bounds = CGRectMake(0, 0, 301, 100);
  auto three = ZelPluginLayout::framesForLayout({}, bounds, 3, {});
  EXPECT_EQ(three.frames.size(), 4u);
  EXPECT_EQ(three.frames["x"], CGRectMake(0, 0, 301, 64));
  EXPECT_EQ(three.frames["0"], CGRectMake(0, 64, 100, 36));
  EXPECT_EQ(three.frames["1"], CGRectMake(100, 64, 100, 36));
  EXPECT_EQ(three.frames["2"], CGRectMake(200, 64, 101, 36));
  EXPECT_TRUE(three.edges.empty());

  auto one = ZelPluginLayout::framesForLayout({}, bounds, 1, {});
  EXPECT_EQ(one.frames.size(), 2u);
  EXPECT_EQ(one.frames["0"], CGRectMake(0, 64, 301, 36));

  for (std::int64_t count : {std::int64_t{0}, std::int64_t{-5}}) {
    auto none = ZelPluginLayout::framesForLayout({}, bounds, count, {});
    EXPECT_EQ(none.frames, (std::map<std::string, CGRect, std::less<>>{{"x", CGRectMake(0, 0, 301, 64)}}));
  }
  // A layout value that is not a dictionary is no layout.
  EXPECT_EQ(ZelPluginLayout::framesForLayout(ZelPlist::string("grid"), bounds, 3, {}).frames, three.frames);
}

TEST(ZelPluginLayoutAutomatic, ShortAndNarrowAreasAndHostileCounts) {
  // Below 64 points the header takes everything; the columns are empty.
  auto low = ZelPluginLayout::framesForLayout({}, CGRectMake(5, 5, 90, 40), 2, {});
  EXPECT_EQ(low.frames["x"], CGRectMake(5, 5, 90, 40));
  EXPECT_EQ(low.frames["0"], CGRectMake(5, 45, 45, 0));
  EXPECT_EQ(low.frames["1"], CGRectMake(50, 45, 45, 0));

  // More columns than points: the first slices are empty, none negative.
  auto narrow = ZelPluginLayout::framesForLayout({}, CGRectMake(0, 0, 3, 80), 5, {});
  const double widths[] = {0, 0, 1, 1, 1};
  const double xs[] = {0, 0, 0, 1, 2};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(narrow.frames[std::to_string(i)], CGRectMake(xs[i], 64, widths[i], 16)) << i;

  // A hostile count is capped, and what is laid out still tiles the area.
  auto huge = ZelPluginLayout::framesForLayout({}, CGRectMake(0, 0, 1000, 100), INT64_MAX, {});
  EXPECT_GT(huge.frames.size(), 1000u);
  EXPECT_LE(huge.frames.size(), 100000u);
  double total = 0;
  for (const auto& [name, frame] : huge.frames)
    if (name != "x") total += frame.size.width;
  EXPECT_EQ(total, 1000);
}

TEST(ZelPluginLayout, LookupsByIndexNameAndLabel) {
  auto layout = ZelPluginLayout::layoutForLayout(
      grid(4, 1, {{"0", cell(0, 0, 1, 1)}, {"2-plabel", cell(1, 0, 1, 1)}, {"knob", cell(3, 0, 1, 1)}}),
      CGRectMake(0, 0, 40, 10), 0, {});
  EXPECT_EQ(layout->frameForIndex(0), CGRectMake(0, 0, 10, 10));
  EXPECT_EQ(layout->frameForIndex(2), CGRectZero);
  EXPECT_EQ(layout->labelFrameForIndex(2), CGRectMake(10, 0, 10, 10));
  EXPECT_EQ(layout->labelFrameForIndex(0), CGRectZero);
  EXPECT_EQ(layout->frameLabeled("knob"), CGRectMake(30, 0, 10, 10));
  EXPECT_EQ(layout->frameLabeled("Knob"), CGRectZero);
}

TEST(ZelPluginLayoutGeometry, RoundedRectPathIsBuiltAtTheOrigin) {
  ZelPath path = ZelPluginLayout::newCGPathForRect(CGRectMake(10, 20, 100, 50), 8);
  ZelPath expected;
  expected.moveTo({8, 0});
  expected.arcTo({100, 0}, {100, 8}, 8);
  expected.arcTo({100, 50}, {92, 50}, 8);
  expected.arcTo({0, 50}, {0, 42}, 8);
  expected.arcTo({0, 0}, {8, 0}, 8);
  expected.close();
  EXPECT_EQ(path, expected);
}

TEST(ZelPluginLayoutGeometry, EdgeEndPoints) {
  CGRect r = CGRectMake(10, 20, 30, 40);
  const ZelLayoutEdge expected[] = {edge(10, 20, 10, 60), edge(10, 20, 40, 20), edge(40, 20, 40, 60),
                                    edge(10, 60, 40, 60)};
  for (int e = 0; e < 4; ++e) {
    ZelLayoutEdge got;
    CGRectEdgeAsTwoPoints(e, &got.start, &got.end, r);
    EXPECT_EQ(got, expected[e]) << e;
  }
  for (int e : {-1, 4, 99}) {
    ZelLayoutEdge got;
    CGRectEdgeAsTwoPoints(e, &got.start, &got.end, r);
    EXPECT_EQ(got, edge(10, 20, 40, 60)) << e;
  }
}

TEST(ZelPluginLayoutGeometry, TakeFromCenterResolvesTheAmountTwice) {
  CGRect r = CGRectMake(0, 0, 100, 40);
  EXPECT_EQ(CGRectTakeFromCenter(false, r, 0.259), CGRectMake(37.5, 0, 25, 40)); // floored fraction
  EXPECT_EQ(CGRectTakeFromCenter(true, r, 10), CGRectMake(0, 15, 100, 10));      // points
  EXPECT_EQ(CGRectTakeFromCenter(false, r, -30), CGRectMake(15, 0, 70, 40));     // from the far end
  EXPECT_EQ(CGRectTakeFromCenter(false, r, 150), CGRectMake(0, 0, 100, 40));     // limited
  EXPECT_EQ(CGRectTakeFromCenter(true, CGRectMake(5, 5, 20, 20), 1), CGRectMake(5, 14.5, 20, 1));

  // -9.5 of 10 resolves to 0.5, which the second pass reads as half of 10.
  EXPECT_EQ(CGRectTakeFromCenter(false, CGRectMake(0, 0, 10, 4), -9.5), CGRectMake(2.5, 0, 5, 4));
  // 3 points of a half-point strip resolve to 0.5, then to floor(0.25).
  EXPECT_EQ(CGRectTakeFromCenter(false, CGRectMake(0, 0, 0.5, 4), 3), CGRectMake(0.25, 0, 0, 4));
}

TEST(ZelPluginLayoutGeometry, HairlinesAreHalfPointRectsShiftedByHalfTheFrameOrigin) {
  std::vector<ZelLayoutEdge> edges{edge(10, 20, 10, 60), edge(50, 60, 10, 60)};
  auto rects = ZelHairlineRectsForEdges(edges, CGRectMake(8, 6, 500, 500));
  EXPECT_EQ(rects, (std::vector<CGRect>{CGRectMake(14, 17, 0.5, 40), CGRectMake(54, 57, 40, 0.5)}));
}
