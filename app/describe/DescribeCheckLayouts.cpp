// Layout checks, at two levels:
// - in grid units, every layout dictionary of the description: a grid of at
//   least one column and row, and cells of at least one column and row
//   inside it;
// - in points, the layouts laid out as the editor lays them out: the editor
//   area (its size from the metadata, less the power strip on the right and
//   the preset bar along the bottom), the advanced area inset by 14, each
//   clump over its frame, each control's own parts over the control's frame.
//   Here a frame must not come out empty (a grid too fine for its bounds, a
//   header that eats a short clump) nor leave its bounds (a height
//   constraint), and every clump and parameter needs its frame.
#include <algorithm>
#include <cmath>
#include <map>

#include "app/describe/DescribeCheck.h"
#include "app/describe/DescribeFormat.h"
#include "layout/engine/ZelPluginLayout.h"

ZEL_NAMESPACE_BEGIN
namespace {

constexpr double kPowerBoxWidth = 62, kPresetBarHeight = 30, kAdvancedInset = 14;

std::string sizeText(CGRect r) { return ZelFormatShortest(r.size.width) + " x " + ZelFormatShortest(r.size.height); }

// ---- Grid units.

void checkCell(const std::string& name, const ZelPlist& cell, std::int64_t columns, std::int64_t rows,
               const std::string& path, ZelCheckFindings& findings, bool& ok) {
  if (name == "edges") findings.warning(path, "the name \"edges\" is reserved for the edge list: this frame is lost");
  std::int64_t x = cell["origin"]["x"].integerValue(), y = cell["origin"]["y"].integerValue();
  std::int64_t w = cell["size"]["w"].integerValue(), h = cell["size"]["h"].integerValue();
  if (w <= 0 || h <= 0) {
    findings.error(path, "zero width or height");
    ok = false;
  } else if (x < 0 || y < 0 || w > columns || x > columns - w || h > rows || y > rows - h) {
    findings.error(path, "outside the bounds of the " + std::to_string(columns) + " x " + std::to_string(rows) + " grid");
    ok = false;
  }
}

// True when the layout dictionary has no grid errors (then it is worth
// laying out in points). Anything but a dictionary is the kind checker's.
bool checkGrid(const ZelPlist& layout, const std::string& path, ZelCheckFindings& findings) {
  if (!layout.isDictionary()) return false;
  std::int64_t columns = layout["width"].integerValue(), rows = layout["height"].integerValue();
  bool ok = true;
  if (columns <= 0) findings.error(ZelKeyPath(path, "width"), "needs at least one column: the frames are not finite");
  if (rows <= 0) findings.error(ZelKeyPath(path, "height"), "needs at least one row: the frames are not finite");
  if (columns <= 0 || rows <= 0) ok = false;
  const ZelPlist::Dictionary* matrix = layout["matrix"].asDictionary();
  if (!matrix) {
    findings.error(ZelKeyPath(path, "matrix"), "no frames");
    return false;
  }
  if (!ok) return false;
  for (const auto& [name, cell] : *matrix)
    checkCell(name, cell, columns, rows, ZelKeyPath(ZelKeyPath(path, "matrix"), name), findings, ok);
  return ok;
}

// ---- Points.

bool contains(CGRect bounds, CGRect r) {
  constexpr double kSlack = 1e-6;
  return r.origin.x >= bounds.origin.x - kSlack && r.origin.y >= bounds.origin.y - kSlack &&
         r.origin.x + r.size.width <= bounds.origin.x + bounds.size.width + kSlack &&
         r.origin.y + r.size.height <= bounds.origin.y + bounds.size.height + kSlack;
}

// `layoutPath` is the layout dictionary's key path, or empty for the
// automatic layout of `ownerPath`.
void checkFrames(const ZelPluginLayout& layout, CGRect bounds, const std::string& layoutPath,
                 const std::string& ownerPath, ZelCheckFindings& findings) {
  for (const auto& [name, r] : layout.frames().frames) {
    std::string path = layoutPath.empty() ? ownerPath : ZelKeyPath(ZelKeyPath(layoutPath, "matrix"), name);
    std::string what = layoutPath.empty() ? "automatic layout: frame \"" + name + "\" has " : "";
    bool finite = std::isfinite(r.origin.x) && std::isfinite(r.origin.y) && std::isfinite(r.size.width) &&
                  std::isfinite(r.size.height);
    if (!finite || r.size.width <= 0 || r.size.height <= 0)
      findings.error(path, what + "zero width or height when laid out over " + sizeText(bounds) + " points");
    else if (!contains(bounds, r))
      findings.error(path, what + "outside the bounds when laid out over " + sizeText(bounds) + " points (" +
                               ZelFormatRect(r) + ")");
  }
}

bool hasFrame(const ZelPluginLayout& layout, const std::string& name) {
  return layout.frames().frames.count(name) != 0;
}

// ---- Controls and clumps.

void checkControlParts(const ZelParameter& p, CGSize size, const std::string& path, ZelCheckFindings& findings) {
  if (p.computedLayout.isNull()) return;
  std::string layoutPath = ZelKeyPath(path, "computedLayout");
  if (!checkGrid(p.computedLayout, layoutPath, findings)) return;
  CGRect bounds = CGRectMake(0, 0, size.width, size.height);
  std::unique_ptr<ZelPluginLayout> layout = p.layoutForFrame(bounds);
  if (!layout) return;
  checkFrames(*layout, bounds, layoutPath, path, findings);
  if (!hasFrame(*layout, "0")) findings.error(layoutPath, "no frame \"0\": the control has no area");
}

void checkDisplaced(const ZelParameter& p, const std::string& path, CGRect view, ZelCheckFindings& findings) {
  CGRect r = p.displacedRect();
  std::string framePath = ZelKeyPath(path, "displacedFrame");
  if (!(r.size.width > 0 && r.size.height > 0)) return findings.error(framePath, "zero width or height");
  if (!contains(view, r))
    findings.error(framePath, "outside the advanced view (" + ZelFormatRect(view) + ")");
  checkControlParts(p, r.size, path, findings);
}

struct ClumpSite {
  const ZelClump& clump;
  CGSize size;
  CGRect advancedView;  // where displaced controls live
};

void checkParameterFrames(const ClumpSite& site, const ZelPluginLayout& layout, const std::string& layoutPath,
                          const ZelParameterIndex& index, ZelCheckFindings& findings) {
  std::map<std::int64_t, const ZelParameter*> byIndex;
  for (const auto& owned : site.clump.parameters) {
    const ZelParameter& p = *owned;
    const std::string& path = index.pathOf(p);
    if (!p.displacedFrame.isNull()) {
      checkDisplaced(p, path, site.advancedView, findings);
      continue;
    }
    auto [it, inserted] = byIndex.emplace(p.indexInClump, &p);
    if (!inserted)
      findings.warning(ZelKeyPath(path, "indexInClump"),
                       "shares frame " + std::to_string(p.indexInClump) + " with " + ZelParameterTitle(*it->second));
    if (!hasFrame(layout, std::to_string(p.indexInClump))) {
      findings.error(layoutPath, "no frame \"" + std::to_string(p.indexInClump) + "\" for parameter " +
                                     ZelParameterTitle(p) + ": it is not shown");
      continue;
    }
    checkControlParts(p, layout.frameForIndex(p.indexInClump).size, path, findings);
  }
}

void checkClumpLabels(const ZelClump& c, const ZelPluginLayout& layout, const std::string& layoutPath,
                      ZelCheckFindings& findings) {
  bool labelled = !c.label.empty() || !c.labelString.empty();
  if (labelled && c.clumpType != ZelClumpType::PowerBox && !hasFrame(layout, "x"))
    findings.warning(layoutPath, "no \"x\" frame: the clump's label is not drawn");
  if (const ZelPlist::Dictionary* tagged = c.taggedLabels.asDictionary()) {
    for (const auto& entry : *tagged)
      if (!hasFrame(layout, entry.first))
        findings.warning(ZelKeyPath(ZelKeyPath(ZelClumpPath(c), "taggedLabels"), entry.first),
                         "names no frame of the clump's layout");
  }
}

void checkClump(const ClumpSite& site, const ZelParameterIndex& index, ZelCheckFindings& findings) {
  const ZelClump& c = site.clump;
  std::string clumpPath = ZelClumpPath(c);
  CGRect useable = CGRectInset(CGRectMake(0, 0, site.size.width, site.size.height),
                               static_cast<double>(c.inset["x"].integerValue()),
                               static_cast<double>(c.inset["y"].integerValue()));
  if (CGRectIsNull(useable)) return findings.error(ZelKeyPath(clumpPath, "inset"), "leaves no room inside the clump");
  bool automatic = c.computedLayout.isNull();
  std::string layoutPath = ZelKeyPath(clumpPath, "computedLayout");
  bool gridOK = !automatic && checkGrid(c.computedLayout, layoutPath, findings);
  auto layout = ZelPluginLayout::layoutForLayout(c.computedLayout, useable,
                                                 static_cast<std::int64_t>(c.parameters.size()), c.layoutConstraints);
  if (automatic || gridOK) checkFrames(*layout, useable, automatic ? "" : layoutPath, clumpPath, findings);
  const std::string& where = automatic ? clumpPath : layoutPath;
  checkParameterFrames(site, *layout, where, index, findings);
  checkClumpLabels(c, *layout, where, findings);
}

// ---- The editor.

struct EditorAreas {
  CGRect powerBox, clumps, advanced;  // each in its own view's coordinates
};

EditorAreas editorAreas(const ZelMetadata& m) {
  CGRect bounds = CGRectMake(0, 0, m.width, m.height), power, rest, bar, clumps;
  CGRectDivide(bounds, &power, &rest, std::min(kPowerBoxWidth, bounds.size.width), CGRectMaxXEdge);
  CGRectDivide(rest, &bar, &clumps, std::min(kPresetBarHeight, rest.size.height), CGRectMinYEdge);
  EditorAreas areas;
  areas.powerBox = CGRectMake(0, 0, power.size.width, power.size.height);
  areas.clumps = CGRectMake(0, 0, clumps.size.width, clumps.size.height);
  areas.advanced = CGRectInset(areas.clumps, kAdvancedInset, kAdvancedInset);
  return areas;
}

// The editor layout that holds clumps of `type`, checked, or null.
std::unique_ptr<ZelPluginLayout> editorLayout(const ZelConfig& config, bool advanced, CGRect bounds,
                                              ZelCheckFindings& findings) {
  const ZelMetadata& m = config.metadata();
  const ZelPlist& dictionary = advanced ? m.advancedClumpsLayout : m.clumpsLayout;
  std::string path = advanced ? "metadata.advancedClumpsLayout" : "metadata.clumpsLayout";
  bool gridOK = !dictionary.isNull() && checkGrid(dictionary, path, findings);
  if (CGRectIsNull(bounds)) {
    findings.error(path, "the area is too small to lay out (" + sizeText(bounds) + ")");
    return nullptr;
  }
  auto layout = advanced ? config.advancedLayoutForBounds(bounds) : config.pluginLayoutForBounds(bounds);
  if (dictionary.isNull() || gridOK) checkFrames(*layout, bounds, dictionary.isNull() ? "" : path, path, findings);
  return layout;
}

void checkEditor(const ZelConfig& config, ZelCheckFindings& findings) {
  EditorAreas areas = editorAreas(config.metadata());
  ZelParameterIndex index(config);
  auto main = editorLayout(config, false, areas.clumps, findings);
  auto advanced = config.hasAdvancedControls() ? editorLayout(config, true, areas.advanced, findings) : nullptr;
  bool powerSeen = false;
  config.enumerateClumps([&](const ZelClump& c) {
    const ZelPluginLayout* layout = c.clumpType == ZelClumpType::Normal ? main.get() : advanced.get();
    if (c.clumpType == ZelClumpType::PowerBox) {
      if (powerSeen) return findings.warning(ZelClumpPath(c), "only the first PowerBox clump is shown");
      powerSeen = true;
      return checkClump({c, areas.powerBox.size, areas.clumps}, index, findings);
    }
    if (!layout) return;
    if (!hasFrame(*layout, std::to_string(c.cid))) {
      std::string path = c.clumpType == ZelClumpType::Normal ? "metadata.clumpsLayout" : "metadata.advancedClumpsLayout";
      return findings.error(path, "no frame \"" + std::to_string(c.cid) + "\" for clump '" + c.name + "': it is not shown");
    }
    checkClump({c, layout->frameForIndex(c.cid).size, areas.clumps}, index, findings);
  });
}

// Grid checks of the layouts that the point checks never reach (no editor size).
void checkGridsOnly(const ZelConfig& config, ZelCheckFindings& findings) {
  const ZelMetadata& m = config.metadata();
  if (!m.clumpsLayout.isNull()) checkGrid(m.clumpsLayout, "metadata.clumpsLayout", findings);
  if (!m.advancedClumpsLayout.isNull()) checkGrid(m.advancedClumpsLayout, "metadata.advancedClumpsLayout", findings);
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    if (!p.computedLayout.isNull()) checkGrid(p.computedLayout, ZelKeyPath(path, "computedLayout"), findings);
  });
  config.enumerateClumps([&](const ZelClump& c) {
    if (!c.computedLayout.isNull()) checkGrid(c.computedLayout, ZelKeyPath(ZelClumpPath(c), "computedLayout"), findings);
  });
}

}  // namespace

void ZelCheckLayouts(const ZelConfig& config, ZelCheckFindings& findings) {
  const ZelMetadata& m = config.metadata();
  if (m.width > 0 && m.height > 0 && std::isfinite(m.width) && std::isfinite(m.height)) return checkEditor(config, findings);
  findings.warning("metadata.width", "no editor size: layouts are checked in grid units only");
  checkGridsOnly(config, findings);
}

ZEL_NAMESPACE_END
