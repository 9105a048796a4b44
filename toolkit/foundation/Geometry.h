// Points, sizes and rectangles in points, with y growing upward (the
// unflipped convention every view and layout of the editor uses). The
// operations keep the semantics of the platform geometry they stand for:
// edges are numbered 0 min-x, 1 min-y, 2 max-x, 3 max-y; dividing clamps the
// amount to the rectangle; an inset that leaves a negative size gives the
// null rectangle.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

struct CGPoint {
  double x = 0, y = 0;
  friend bool operator==(const CGPoint&, const CGPoint&) = default;
};

struct CGSize {
  double width = 0, height = 0;
  friend bool operator==(const CGSize&, const CGSize&) = default;
};

struct CGRect {
  CGPoint origin;
  CGSize size;
  friend bool operator==(const CGRect&, const CGRect&) = default;
};

enum CGRectEdge : int { CGRectMinXEdge = 0, CGRectMinYEdge = 1, CGRectMaxXEdge = 2, CGRectMaxYEdge = 3 };

inline constexpr CGRect CGRectZero{};
inline const CGRect CGRectNull{{std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()}, {0, 0}};

constexpr CGPoint CGPointMake(double x, double y) { return {x, y}; }
constexpr CGSize CGSizeMake(double w, double h) { return {w, h}; }
constexpr CGRect CGRectMake(double x, double y, double w, double h) { return {{x, y}, {w, h}}; }

// A rectangle with non-negative width and height covering the same area.
inline CGRect CGRectStandardize(CGRect r) {
  if (r.size.width < 0) { r.origin.x += r.size.width; r.size.width = -r.size.width; }
  if (r.size.height < 0) { r.origin.y += r.size.height; r.size.height = -r.size.height; }
  return r;
}

inline bool CGRectIsNull(const CGRect& r) { return std::isinf(r.origin.x) || std::isinf(r.origin.y); }
inline bool CGRectIsEmpty(const CGRect& r) { return CGRectIsNull(r) || r.size.width == 0 || r.size.height == 0; }

inline double CGRectGetMinX(const CGRect& r) { return CGRectStandardize(r).origin.x; }
inline double CGRectGetMinY(const CGRect& r) { return CGRectStandardize(r).origin.y; }
inline double CGRectGetMaxX(const CGRect& r) { auto s = CGRectStandardize(r); return s.origin.x + s.size.width; }
inline double CGRectGetMaxY(const CGRect& r) { auto s = CGRectStandardize(r); return s.origin.y + s.size.height; }
inline double CGRectGetMidX(const CGRect& r) { auto s = CGRectStandardize(r); return s.origin.x + s.size.width / 2; }
inline double CGRectGetMidY(const CGRect& r) { auto s = CGRectStandardize(r); return s.origin.y + s.size.height / 2; }
inline double CGRectGetWidth(const CGRect& r) { return std::fabs(r.size.width); }
inline double CGRectGetHeight(const CGRect& r) { return std::fabs(r.size.height); }

inline CGRect CGRectOffset(CGRect r, double dx, double dy) {
  if (CGRectIsNull(r)) return r;
  r.origin.x += dx;
  r.origin.y += dy;
  return r;
}

// Shrinks by dx on the left and right and dy at the bottom and top (grows
// for negative amounts); a negative resulting size gives the null rectangle.
inline CGRect CGRectInset(CGRect r, double dx, double dy) {
  if (CGRectIsNull(r)) return r;
  r = CGRectStandardize(r);
  r.origin.x += dx;
  r.origin.y += dy;
  r.size.width -= 2 * dx;
  r.size.height -= 2 * dy;
  if (r.size.width < 0 || r.size.height < 0) return CGRectNull;
  return r;
}

// The smallest rectangle with whole-number edges that contains r.
inline CGRect CGRectIntegral(CGRect r) {
  if (CGRectIsNull(r)) return r;
  r = CGRectStandardize(r);
  double x0 = std::floor(r.origin.x), y0 = std::floor(r.origin.y);
  double x1 = std::ceil(r.origin.x + r.size.width), y1 = std::ceil(r.origin.y + r.size.height);
  return {{x0, y0}, {x1 - x0, y1 - y0}};
}

inline CGRect CGRectUnion(CGRect a, CGRect b) {
  if (CGRectIsNull(a)) return b;
  if (CGRectIsNull(b)) return a;
  a = CGRectStandardize(a);
  b = CGRectStandardize(b);
  double x0 = std::min(a.origin.x, b.origin.x), y0 = std::min(a.origin.y, b.origin.y);
  double x1 = std::max(CGRectGetMaxX(a), CGRectGetMaxX(b)), y1 = std::max(CGRectGetMaxY(a), CGRectGetMaxY(b));
  return {{x0, y0}, {x1 - x0, y1 - y0}};
}

inline CGRect CGRectIntersection(CGRect a, CGRect b) {
  if (CGRectIsNull(a) || CGRectIsNull(b)) return CGRectNull;
  a = CGRectStandardize(a);
  b = CGRectStandardize(b);
  double x0 = std::max(a.origin.x, b.origin.x), y0 = std::max(a.origin.y, b.origin.y);
  double x1 = std::min(CGRectGetMaxX(a), CGRectGetMaxX(b)), y1 = std::min(CGRectGetMaxY(a), CGRectGetMaxY(b));
  if (x1 < x0 || y1 < y0) return CGRectNull;
  return {{x0, y0}, {x1 - x0, y1 - y0}};
}

inline bool CGRectIntersectsRect(const CGRect& a, const CGRect& b) {
  CGRect i = CGRectIntersection(a, b);
  return !CGRectIsNull(i) && i.size.width > 0 && i.size.height > 0;
}

// Half-open on the max sides, as the platform tests points.
inline bool CGRectContainsPoint(const CGRect& r0, CGPoint p) {
  if (CGRectIsNull(r0)) return false;
  CGRect r = CGRectStandardize(r0);
  return p.x >= r.origin.x && p.x < r.origin.x + r.size.width && p.y >= r.origin.y &&
         p.y < r.origin.y + r.size.height;
}

inline bool CGRectContainsRect(const CGRect& outer, const CGRect& inner) {
  return CGRectUnion(outer, inner) == CGRectStandardize(outer);
}

// Cuts a slice of `amount` (clamped to 0 ... the dimension) off the given
// edge; the remainder is what is left.
inline void CGRectDivide(CGRect r, CGRect* slice, CGRect* remainder, double amount, CGRectEdge edge) {
  r = CGRectStandardize(r);
  CGRect s = r, rest = r;
  bool horizontal = edge == CGRectMinXEdge || edge == CGRectMaxXEdge;
  double dim = horizontal ? r.size.width : r.size.height;
  amount = std::clamp(amount, 0.0, dim);
  switch (edge) {
    case CGRectMinXEdge:
      s.size.width = amount;
      rest.origin.x += amount;
      rest.size.width -= amount;
      break;
    case CGRectMaxXEdge:
      s.origin.x += dim - amount;
      s.size.width = amount;
      rest.size.width -= amount;
      break;
    case CGRectMinYEdge:
      s.size.height = amount;
      rest.origin.y += amount;
      rest.size.height -= amount;
      break;
    case CGRectMaxYEdge:
      s.origin.y += dim - amount;
      s.size.height = amount;
      rest.size.height -= amount;
      break;
  }
  if (slice) *slice = s;
  if (remainder) *remainder = rest;
}

// The end points of one side of a rectangle (0 min-x, 1 min-y, 2 max-x,
// 3 max-y); any other edge number gives the diagonal.
inline void CGRectEdgeAsTwoPoints(int edge, CGPoint* start, CGPoint* end, CGRect rect) {
  const double x0 = CGRectGetMinX(rect), y0 = CGRectGetMinY(rect);
  const double x1 = CGRectGetMaxX(rect), y1 = CGRectGetMaxY(rect);
  CGPoint s{x0, y0}, e{x1, y1};
  switch (edge) {
    case CGRectMinXEdge: e = {x0, y1}; break;
    case CGRectMinYEdge: e = {x1, y0}; break;
    case CGRectMaxXEdge: s = {x1, y0}; break;
    case CGRectMaxYEdge: s = {x0, y1}; break;
    default: break;  // the diagonal
  }
  if (start) *start = s;
  if (end) *end = e;
}

ZEL_NAMESPACE_END
