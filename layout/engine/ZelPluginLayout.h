// The grid layout engine: turns a layout dictionary of the description and a
// bounding rectangle into named frames (points, y up) and the interior edges
// between them, which the containers draw as hairlines. Without a layout
// dictionary it falls back to a header strip and a row of equal columns.
// Also the small geometry helpers the containers and controls share.
//
// A layout is immutable once built. Thread-safe to read; built on any thread.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelPath.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

struct ZelLayoutEdge {
  CGPoint start, end;
  friend bool operator==(const ZelLayoutEdge&, const ZelLayoutEdge&) = default;
};

// The frames dictionary: named frames plus the ordered interior edges (the
// reserved name "edges" never names a frame).
struct ZelLayoutFrames {
  std::map<std::string, CGRect, std::less<>> frames;
  std::vector<ZelLayoutEdge> edges;
};

class ZelPluginLayout {
 public:
  // `layout` is the layout dictionary (anything else, null included, means
  // none: the automatic layout of `count` columns); `constraints` maps frame
  // names to {"height": points} (anything else means none).
  static std::unique_ptr<ZelPluginLayout> layoutForLayout(const ZelPlist& layout, CGRect bounds, std::int64_t count,
                                                          const ZelPlist& constraints);
  static ZelLayoutFrames framesForLayout(const ZelPlist& layout, CGRect bounds, std::int64_t count,
                                         const ZelPlist& constraints);

  explicit ZelPluginLayout(ZelLayoutFrames frames) : frames_(std::move(frames)) {}

  // The frame stored under the decimal index, the name, or "%i-plabel" of
  // the index; the zero rectangle when there is none.
  CGRect frameForIndex(std::int64_t index) const;
  CGRect frameLabeled(std::string_view name) const;
  CGRect labelFrameForIndex(std::int64_t index) const;
  const std::vector<ZelLayoutEdge>& edges() const { return frames_.edges; }
  const ZelLayoutFrames& frames() const { return frames_; }

  // A closed rounded rectangle of the rectangle's size at the origin (the
  // rectangle's origin is ignored; callers translate).
  static ZelPath newCGPathForRect(CGRect rect, double rounding);

 private:
  ZelLayoutFrames frames_;
};

// The filled half-point rectangles that draw `edges` as hairlines. Both end
// points are first shifted by (+frame.x / 2, -frame.y / 2): only the frame's
// origin is used, halved, so callers that draw unshifted pass the zero
// rectangle. A vertical edge (equal x) gives (s.x, s.y, 0.5, |dy|), any other
// (s.x, s.y, |dx|, 0.5). The drawing layer fills them in its current colour.
std::vector<CGRect> ZelHairlineRectsForEdges(const std::vector<ZelLayoutEdge>& edges, CGRect frame);

// A centred strip of `amount` across r: amounts in [0, 1) are fractions of the
// dimension, negative ones count from the far end, others are points.
CGRect CGRectTakeFromCenter(bool vertical, CGRect r, double amount);

ZEL_NAMESPACE_END
