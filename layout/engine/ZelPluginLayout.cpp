#include "layout/engine/ZelPluginLayout.h"

#include <cmath>
#include <limits>

ZEL_NAMESPACE_BEGIN

namespace {

// The automatic row never holds more columns than this. The count comes from
// the number of clumps or parameters, so real descriptions stay far below it;
// a hostile count is clamped so that the row cannot allocate without bound
// (beyond a few thousand columns every slice is a zero-width sliver anyway).
constexpr std::int64_t kMaxAutomaticColumns = 4096;

// Height of the automatic layout's header strip "x".
constexpr double kHeaderHeight = 64;

// A side of a cell closer than this to the same side of the reference
// rectangle is an outer border, not an interior edge.
constexpr float kEdgeThreshold = 10;

// Grid arithmetic is done on single-precision values, as the description's
// layouts were tuned against.
float single(double v) { return static_cast<float>(v); }

// num / den with the IEEE result for a zero divisor spelled out, so that a
// layout with 0 columns gives its non-finite frames without dividing by zero.
double quotient(double num, double den) {
  if (den != 0) return num / den;
  if (num == 0 || std::isnan(num)) return std::numeric_limits<double>::quiet_NaN();
  return std::copysign(std::numeric_limits<double>::infinity(), num) * (std::signbit(den) ? -1 : 1);
}

// An amount against a dimension: [0, 1) is a fraction (floored, single
// precision), a negative amount counts from the far end, anything else is in
// points; the result never exceeds the dimension.
double resolveAmount(double amount, double dimension) {
  double resolved;
  if (amount >= 0 && amount < 1) resolved = std::floor(single(amount * dimension));
  else if (amount < 0) resolved = dimension + amount;
  else resolved = amount;
  return std::min(resolved, dimension);
}

struct GridMetrics {
  double cw = 0, ch = 0;  // whole-point cell size
  double ox = 0, oy = 0;  // origin of the centred grid
  CGRect reference;       // (ox, oy, W, H): what sides are judged against
};

GridMetrics gridMetrics(const ZelPlist& layout, CGRect bounds) {
  const double w = bounds.size.width, h = bounds.size.height;
  const auto columns = static_cast<double>(layout["width"].integerValue());
  const auto rows = static_cast<double>(layout["height"].integerValue());
  GridMetrics g;
  g.cw = std::floor(single(quotient(w, columns)));
  g.ch = std::floor(single(quotient(h, rows)));
  const float rx = std::fmod(single(w), single(g.cw));
  const float ry = std::fmod(single(h), single(g.ch));
  g.ox = std::floor(rx * 0.5) + bounds.origin.x;
  g.oy = std::floor(ry * 0.5) + bounds.origin.y;
  g.reference = CGRectMake(g.ox, g.oy, w, h);
  return g;
}

// A cell that is not a dictionary reads as an empty one: a zero-size frame at
// the grid origin.
CGRect cellFrame(const ZelPlist& cell, const GridMetrics& g) {
  const ZelPlist& origin = cell["origin"];
  const ZelPlist& size = cell["size"];
  const auto x = static_cast<double>(origin["x"].integerValue());
  const auto y = static_cast<double>(origin["y"].integerValue());
  const auto w = static_cast<double>(size["w"].integerValue());
  const auto h = static_cast<double>(size["h"].integerValue());
  return CGRectMake(x * g.cw + g.ox, y * g.ch + g.oy, w * g.cw, h * g.ch);
}

bool farFrom(double side, double referenceSide) { return std::fabs(single(side - referenceSide)) > kEdgeThreshold; }

void appendEdge(std::vector<ZelLayoutEdge>& edges, CGRectEdge side, CGRect frame) {
  ZelLayoutEdge edge;
  CGRectEdgeAsTwoPoints(side, &edge.start, &edge.end, frame);
  edges.push_back(edge);
}

// Only maximum sides are emitted: the border between two neighbours comes
// from the left/lower cell, and the outer border is never an interior edge.
void appendInteriorEdges(std::vector<ZelLayoutEdge>& edges, CGRect frame, CGRect reference) {
  if (farFrom(CGRectGetMaxX(frame), CGRectGetMaxX(reference))) appendEdge(edges, CGRectMaxXEdge, frame);
  if (farFrom(CGRectGetMaxY(frame), CGRectGetMaxY(reference))) appendEdge(edges, CGRectMaxYEdge, frame);
}

// The constrained height of the named frame, if the constraints give one.
bool constrainedHeight(const ZelPlist& constraints, const std::string& name, double* height) {
  const ZelPlist& entry = constraints[name];
  if (!entry.isDictionary()) return false;
  *height = entry["height"].floatValue();
  return true;
}

ZelLayoutFrames gridFrames(const ZelPlist& layout, CGRect bounds, const ZelPlist& constraints) {
  const GridMetrics g = gridMetrics(layout, bounds);
  ZelLayoutFrames result;
  const ZelPlist::Dictionary* matrix = layout["matrix"].asDictionary();
  if (!matrix) return result;
  for (const auto& [name, cell] : *matrix) {
    CGRect frame = cellFrame(cell, g);
    constrainedHeight(constraints, name, &frame.size.height);
    // "edges" names the edge list; a cell of that name is dropped, but its
    // sides still count as interior edges.
    if (name != "edges") result.frames[name] = frame;
    appendInteriorEdges(result.edges, frame, g.reference);
  }
  return result;
}

ZelLayoutFrames automaticFrames(CGRect bounds, std::int64_t count) {
  ZelLayoutFrames result;
  CGRect header, rest;
  CGRectDivide(bounds, &header, &rest, std::min(kHeaderHeight, bounds.size.height), CGRectMinYEdge);
  result.frames["x"] = header;
  const std::int64_t n = std::clamp<std::int64_t>(count, 0, kMaxAutomaticColumns);
  for (std::int64_t i = n; i >= 2; --i) {
    CGRect slice;
    const double amount = resolveAmount(1.0 / static_cast<double>(i), rest.size.width);
    CGRectDivide(rest, &slice, &rest, amount, CGRectMinXEdge);
    result.frames[std::to_string(n - i)] = slice;
  }
  if (n >= 1) result.frames[std::to_string(n - 1)] = rest;
  return result;
}

}  // namespace

std::unique_ptr<ZelPluginLayout> ZelPluginLayout::layoutForLayout(const ZelPlist& layout, CGRect bounds,
                                                                  std::int64_t count, const ZelPlist& constraints) {
  return std::make_unique<ZelPluginLayout>(framesForLayout(layout, bounds, count, constraints));
}

ZelLayoutFrames ZelPluginLayout::framesForLayout(const ZelPlist& layout, CGRect bounds, std::int64_t count,
                                                 const ZelPlist& constraints) {
  if (layout.isDictionary()) return gridFrames(layout, bounds, constraints);
  return automaticFrames(bounds, count);
}

CGRect ZelPluginLayout::frameForIndex(std::int64_t index) const { return frameLabeled(std::to_string(index)); }

CGRect ZelPluginLayout::frameLabeled(std::string_view name) const {
  auto it = frames_.frames.find(name);
  return it == frames_.frames.end() ? CGRectZero : it->second;
}

CGRect ZelPluginLayout::labelFrameForIndex(std::int64_t index) const {
  return frameLabeled(std::to_string(index) + "-plabel");
}

ZelPath ZelPluginLayout::newCGPathForRect(CGRect rect, double rounding) {
  return ZelPath::roundedRectAtOrigin(rect.size, rounding);
}

std::vector<CGRect> ZelHairlineRectsForEdges(const std::vector<ZelLayoutEdge>& edges, CGRect frame) {
  const double dx = frame.origin.x / 2, dy = -frame.origin.y / 2;
  std::vector<CGRect> rects;
  rects.reserve(edges.size());
  for (const ZelLayoutEdge& edge : edges) {
    const CGPoint s{edge.start.x + dx, edge.start.y + dy}, e{edge.end.x + dx, edge.end.y + dy};
    if (s.x == e.x) rects.push_back(CGRectMake(s.x, s.y, 0.5, std::fabs(s.y - e.y)));
    else rects.push_back(CGRectMake(s.x, s.y, std::fabs(s.x - e.x), 0.5));
  }
  return rects;
}

// The amount is resolved twice on purpose: a first result below one point
// (a negative amount close to the dimension, or a dimension below one point)
// is read as a fraction the second time.
CGRect CGRectTakeFromCenter(bool vertical, CGRect r, double amount) {
  const double d = vertical ? r.size.height : r.size.width;
  amount = resolveAmount(resolveAmount(amount, d), d);
  CGRect slice, rest;
  CGRectDivide(r, &slice, &rest, amount, vertical ? CGRectMinYEdge : CGRectMinXEdge);
  if (vertical) slice.origin.y += 0.5 * r.size.height - 0.5 * amount;
  else slice.origin.x += 0.5 * r.size.width - 0.5 * amount;
  return slice;
}

ZEL_NAMESPACE_END
