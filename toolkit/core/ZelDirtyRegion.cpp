#include "toolkit/core/ZelDirtyRegion.h"

ZEL_NAMESPACE_BEGIN

namespace {

double area(const CGRect& r) { return r.size.width * r.size.height; }

}  // namespace

void ZelDirtyRegion::add(CGRect r) {
  if (CGRectIsEmpty(r)) return;
  r = CGRectStandardize(r);
  for (const CGRect& have : rects_) {
    if (CGRectContainsRect(have, r)) return;
  }
  for (std::size_t i = 0; i < rects_.size(); ++i) {
    if (CGRectIntersectsRect(rects_[i], r)) {
      rects_[i] = CGRectUnion(rects_[i], r);
      mergeOverlaps(i);
      return;
    }
  }
  if (rects_.size() < kMaxRects) {
    rects_.push_back(r);
    return;
  }
  // Full: grow the rectangle whose union with r adds the least area.
  std::size_t best = 0;
  double bestGrowth = 0;
  for (std::size_t i = 0; i < rects_.size(); ++i) {
    double growth = area(CGRectUnion(rects_[i], r)) - area(rects_[i]);
    if (i == 0 || growth < bestGrowth) {
      best = i;
      bestGrowth = growth;
    }
  }
  rects_[best] = CGRectUnion(rects_[best], r);
  mergeOverlaps(best);
}

// Rectangle `index` grew: fold every rectangle it now overlaps into it,
// until no overlap remains.
void ZelDirtyRegion::mergeOverlaps(std::size_t index) {
  bool merged = true;
  while (merged) {
    merged = false;
    for (std::size_t j = 0; j < rects_.size(); ++j) {
      if (j == index || !CGRectIntersectsRect(rects_[index], rects_[j])) continue;
      rects_[index] = CGRectUnion(rects_[index], rects_[j]);
      rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(j));
      if (j < index) --index;
      merged = true;
      break;
    }
  }
}

CGRect ZelDirtyRegion::bounds() const {
  CGRect u = CGRectNull;
  for (const CGRect& r : rects_) u = CGRectUnion(u, r);
  return u;
}

bool ZelDirtyRegion::intersects(CGRect r) const {
  for (const CGRect& have : rects_) {
    if (CGRectIntersectsRect(have, r)) return true;
  }
  return false;
}

bool ZelDirtyRegion::contains(CGPoint p) const {
  for (const CGRect& have : rects_) {
    if (CGRectContainsPoint(have, p)) return true;
  }
  return false;
}

ZEL_NAMESPACE_END
