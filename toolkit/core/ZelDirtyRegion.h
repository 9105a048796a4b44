// The area of a window that needs drawing: a short list of rectangles in
// window coordinates. Overlapping rectangles are merged into their union;
// past a small count the new rectangle is merged with the one it grows the
// least, so the list stays short and a redraw stays cheap.
// Plain value; main thread only, like the window that holds it.
#pragma once

#include <cstddef>
#include <vector>

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

class ZelDirtyRegion {
 public:
  static constexpr std::size_t kMaxRects = 8;

  // Adds a rectangle; empty and null rectangles add nothing.
  void add(CGRect r);
  void clear() { rects_.clear(); }
  bool empty() const { return rects_.empty(); }
  const std::vector<CGRect>& rects() const { return rects_; }
  // The bounding box of every rectangle (null when empty).
  CGRect bounds() const;
  bool intersects(CGRect r) const;
  bool contains(CGPoint p) const;

 private:
  void mergeOverlaps(std::size_t index);
  std::vector<CGRect> rects_;
};

ZEL_NAMESPACE_END
