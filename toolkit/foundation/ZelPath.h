// A drawing path as a plain value: the elements a rounded rectangle, a
// polyline, an arc or an ellipse are made of, in points (y up). The drawing
// layer renders it; the portable code only builds and compares it.
#pragma once

#include <vector>

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

struct ZelPathElement {
  enum class Type { MoveTo, LineTo, ArcTo, Arc, Ellipse, Close };
  Type type = Type::MoveTo;
  // MoveTo/LineTo: p1. ArcTo: tangent arc through corner p1 towards p2 with
  // `radius` (the platform's add-arc-to-point). Arc: centre p1, `radius`,
  // from `startAngle` to `endAngle`, counter-clockwise (angles grow from +x
  // towards +y) unless `clockwise`. Ellipse: inscribed in `rect`.
  CGPoint p1, p2;
  double radius = 0, startAngle = 0, endAngle = 0;
  bool clockwise = false;
  CGRect rect;
  friend bool operator==(const ZelPathElement&, const ZelPathElement&) = default;
};

class ZelPath {
 public:
  void moveTo(CGPoint p) { add(element(ZelPathElement::Type::MoveTo, p)); }
  void lineTo(CGPoint p) { add(element(ZelPathElement::Type::LineTo, p)); }
  void arcTo(CGPoint corner, CGPoint towards, double radius) {
    ZelPathElement e = element(ZelPathElement::Type::ArcTo, corner);
    e.p2 = towards;
    e.radius = radius;
    add(e);
  }
  void arc(CGPoint centre, double radius, double startAngle, double endAngle, bool clockwise) {
    ZelPathElement e = element(ZelPathElement::Type::Arc, centre);
    e.radius = radius;
    e.startAngle = startAngle;
    e.endAngle = endAngle;
    e.clockwise = clockwise;
    add(e);
  }
  void addEllipseInRect(CGRect r) {
    ZelPathElement e = element(ZelPathElement::Type::Ellipse, {});
    e.rect = r;
    add(e);
  }
  void addRect(CGRect r) {
    moveTo({r.origin.x, r.origin.y});
    lineTo({r.origin.x + r.size.width, r.origin.y});
    lineTo({r.origin.x + r.size.width, r.origin.y + r.size.height});
    lineTo({r.origin.x, r.origin.y + r.size.height});
    close();
  }
  void close() { add(element(ZelPathElement::Type::Close, {})); }

  // A closed rounded rectangle at the rectangle's own position (the radius
  // is limited to half the shorter side).
  static ZelPath roundedRect(CGRect r, double radius);
  // A closed rounded rectangle of `size` with its corner at the origin,
  // started at (radius, 0) and drawn counter-clockwise (the radius is taken
  // as it is).
  static ZelPath roundedRectAtOrigin(CGSize size, double radius);
  // The area the elements can reach (arcs by their full circles, a tangent
  // arc by its lead-in from the current point, its corner and its far
  // point: a safe over-estimate); the null rectangle for an empty path.
  CGRect boundingBox() const;

  const std::vector<ZelPathElement>& elements() const { return elements_; }
  bool empty() const { return elements_.empty(); }
  void clear() { elements_.clear(); }
  friend bool operator==(const ZelPath&, const ZelPath&) = default;

 private:
  static ZelPathElement element(ZelPathElement::Type type, CGPoint p1) {
    ZelPathElement e;
    e.type = type;
    e.p1 = p1;
    return e;
  }
  void add(const ZelPathElement& e) { elements_.push_back(e); }
  std::vector<ZelPathElement> elements_;
};

ZEL_NAMESPACE_END
