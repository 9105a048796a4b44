// `frames WHAT W H`: a layout over (0, 0, W, H), one "name<TAB>x y w h" line
// per frame in byte order of the names, then one "edge<TAB>x1 y1 x2 y2" line
// per interior edge in the layout's order. WHAT is "clumps" (the editor
// layout), "advanced" (the advanced drawer's), a clump's code name (its own
// layout over its parameters) or a parameter's code name (the layout of its
// own parts, "none" when it has none).
#include <memory>

#include "app/describe/DescribeEval.h"
#include "app/describe/DescribeFormat.h"
#include "layout/engine/ZelPluginLayout.h"

ZEL_NAMESPACE_BEGIN
namespace {

std::string framesText(const ZelPluginLayout& layout) {
  std::string out;
  for (const auto& [name, rect] : layout.frames().frames) out += name + "\t" + ZelFormatRect(rect) + "\n";
  for (const ZelLayoutEdge& edge : layout.edges()) {
    out += "edge\t" + ZelFormatG9(edge.start.x) + " " + ZelFormatG9(edge.start.y) + " " + ZelFormatG9(edge.end.x) +
           " " + ZelFormatG9(edge.end.y) + "\n";
  }
  return out;
}

const ZelClump* clumpNamed(const ZelConfig& config, const std::string& name) {
  for (const auto& clump : config.clumps())
    if (!name.empty() && clump->codesafeName == name) return clump.get();
  return nullptr;
}

}  // namespace

std::string ZelEvaluateFrames(const ZelConfig& config, const std::string& what, double width, double height) {
  CGRect bounds = CGRectMake(0, 0, width, height);
  std::unique_ptr<ZelPluginLayout> layout;
  if (what == "clumps") {
    layout = config.pluginLayoutForBounds(bounds);
  } else if (what == "advanced") {
    layout = config.advancedLayoutForBounds(bounds);
  } else if (const ZelClump* clump = clumpNamed(config, what)) {
    layout = ZelPluginLayout::layoutForLayout(clump->computedLayout, bounds,
                                              static_cast<std::int64_t>(clump->parameters.size()),
                                              clump->layoutConstraints);
  } else if (const ZelParameter* p = config.parameterForCodename(what)) {
    layout = p->layoutForFrame(bounds);
  }
  if (!layout) return "none\n";
  return framesText(*layout);
}

ZEL_NAMESPACE_END
