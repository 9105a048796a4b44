// The layout engine at the sizes the editor asks for: the editor-level
// clumps layouts (built once per editor construction) and one clump's layout
// with its constraints (built once per clump view).
#include <benchmark/benchmark.h>

#include <string>

#include "layout/engine/ZelPluginLayout.h"

using namespace zel;

namespace {

ZelPlist cell(std::int64_t x, std::int64_t y, std::int64_t w, std::int64_t h) {
  auto n = [](std::int64_t v) { return ZelPlist::integer(v); };
  return ZelPlist::dictionary({{"origin", ZelPlist::dictionary({{"x", n(x)}, {"y", n(y)}})},
                               {"size", ZelPlist::dictionary({{"w", n(w)}, {"h", n(h)}})}});
}

ZelPlist grid(std::int64_t columns, std::int64_t rows, ZelPlist::Dictionary matrix) {
  return ZelPlist::dictionary({{"width", ZelPlist::integer(columns)},
                               {"height", ZelPlist::integer(rows)},
                               {"matrix", ZelPlist::dictionary(std::move(matrix))}});
}

// Seven clumps: three main ones and the power box in the editor area, three
// in the advanced drawer; both layouts are asked with the count of all clumps.
void BM_EditorClumpsLayouts(benchmark::State& state) {
  const CGRect bounds = CGRectMake(0, 0, 418, 350);
  const ZelPlist main = grid(12, 10, {{"0", cell(0, 0, 4, 10)}, {"1", cell(4, 5, 4, 5)}, {"2", cell(4, 0, 4, 5)},
                                      {"6", cell(8, 0, 4, 10)}});
  const ZelPlist advanced =
      grid(12, 10, {{"3", cell(0, 0, 4, 10)}, {"4", cell(4, 0, 4, 10)}, {"5", cell(8, 0, 4, 10)}});
  for (auto _ : state) {
    auto editor = ZelPluginLayout::layoutForLayout(main, bounds, 7, {});
    auto drawer = ZelPluginLayout::layoutForLayout(advanced, bounds, 7, {});
    benchmark::DoNotOptimize(editor->frameForIndex(2));
    benchmark::DoNotOptimize(drawer->frameForIndex(4));
  }
}
BENCHMARK(BM_EditorClumpsLayouts);

// A clump of four parameters with their label frames, two of them with a
// constrained height.
void BM_ClumpLayoutWithConstraints(benchmark::State& state) {
  ZelPlist::Dictionary matrix;
  for (int i = 0; i < 4; ++i) {
    matrix[std::to_string(i)] = cell(i * 3, 1, 3, 5);
    matrix[std::to_string(i) + "-plabel"] = cell(i * 3, 0, 3, 1);
  }
  const ZelPlist layout = grid(12, 6, std::move(matrix));
  const ZelPlist constraints =
      ZelPlist::dictionary({{"1", ZelPlist::dictionary({{"height", ZelPlist::real(88)}})},
                            {"2-plabel", ZelPlist::dictionary({{"height", ZelPlist::real(14.5)}})}});
  const CGRect useable = CGRectMake(6, 4, 188, 132);
  for (auto _ : state) {
    auto clump = ZelPluginLayout::layoutForLayout(layout, useable, 4, constraints);
    benchmark::DoNotOptimize(clump->labelFrameForIndex(2));
  }
}
BENCHMARK(BM_ClumpLayoutWithConstraints);

}  // namespace
