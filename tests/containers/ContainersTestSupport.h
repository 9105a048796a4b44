// Shared pieces of the container tests: descriptions built in code, a
// primary control that stays out of the way, and recording helpers.
#pragma once

#include <memory>
#include <vector>

#include "controls/ZelFloatControl.h"
#include "model/ZelConfig.h"
#include "tests/support/GeometryPrinting.h"
#include "tests/support/PlistShorthand.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"

namespace zel::containers_test {

using namespace plist_shorthand;

// A grid cell of a layout dictionary.
inline ZelPlist Cell(int x, int y, int w, int h) {
  return D({{"origin", D({{"x", I(x)}, {"y", I(y)}})}, {"size", D({{"w", I(w)}, {"h", I(h)}})}});
}
inline ZelPlist Layout(int columns, int rows, Dict matrix) {
  return D({{"width", I(columns)}, {"height", I(rows)}, {"matrix", D(std::move(matrix))}});
}

inline ZelPlist Parameter(std::int64_t pid, const char* name, std::int64_t index, Dict more = {}) {
  Dict d{{"pid", I(pid)},       {"codesafeName", S(name)}, {"name", S(name)},         {"indexInClump", I(index)},
         {"minValue", N(0)},    {"maxValue", N(1)},        {"initialValue", N(0)},    {"granularity", N(1)},
         {"fineGranularity", N(1)}};
  for (auto& [k, v] : more) d[k] = v;
  return D(std::move(d));
}

inline ZelPlist ClumpEntry(Dict metadata, Array parameters) {
  return D({{"metadata", D(std::move(metadata))}, {"parameters", A(std::move(parameters))}});
}

inline std::unique_ptr<ZelConfig> Config(Array clumps, Dict metadata = {}, Dict top = {}) {
  top["clumps"] = A(std::move(clumps));
  top["metadata"] = D(std::move(metadata));
  return std::make_unique<ZelConfig>(D(std::move(top)));
}

// The product's own description.
inline std::unique_ptr<ZelConfig> ProductConfig() {
  return ZelConfig::configNamed("config", ZEL_RESOURCES_DIR);
}

// A primary control that draws nothing: the containers are under test.
class QuietPrimary : public ZelFloatControl {
 public:
  using ZelFloatControl::ZelFloatControl;
};
inline std::unique_ptr<ZelFloatControl> MakeQuiet(CGRect frame, const ZelParameter* parameter) {
  return std::make_unique<QuietPrimary>(frame, parameter);
}

// The filled rectangles drawn in `colour`.
inline std::vector<CGRect> FillsIn(const ZelRecordingGraphicsContext& ctx, ZelColor colour) {
  std::vector<CGRect> out;
  for (const auto& call : ctx.calls())
    if (call.kind == ZelRecordedCall::Kind::FillRect && !call.fillIsPattern && call.fillColor == colour)
      out.push_back(call.rect);
  return out;
}

}  // namespace zel::containers_test
