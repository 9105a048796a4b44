// Shared pieces of the container tests: descriptions built in code, a
// primary control that stays out of the way, and recording helpers.
#pragma once

#include <memory>
#include <ostream>
#include <vector>

#include "controls/ZelFloatControl.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelRecordingGraphicsContext.h"

ZEL_NAMESPACE_BEGIN
inline void PrintTo(const CGRect& r, std::ostream* os) {
  *os << "(" << r.origin.x << ", " << r.origin.y << ", " << r.size.width << ", " << r.size.height << ")";
}
ZEL_NAMESPACE_END

namespace zel::containers_test {

using Dict = ZelPlist::Dictionary;
using Array = ZelPlist::Array;

inline ZelPlist N(double v) { return ZelPlist::real(v); }
inline ZelPlist I(std::int64_t v) { return ZelPlist::integer(v); }
inline ZelPlist S(const char* s) { return ZelPlist::string(s); }
inline ZelPlist B(bool b) { return ZelPlist::boolean(b); }
inline ZelPlist D(Dict d) { return ZelPlist::dictionary(std::move(d)); }
inline ZelPlist A(Array a) { return ZelPlist::array(std::move(a)); }

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
