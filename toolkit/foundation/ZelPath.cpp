#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

ZelPath ZelPath::roundedRectAtOrigin(CGSize size, double radius) {
  const double r = radius, w = size.width, h = size.height;
  ZelPath path;
  path.moveTo({r, 0});
  path.arcTo({w, 0}, {w, r}, r);
  path.arcTo({w, h}, {w - r, h}, r);
  path.arcTo({0, h}, {0, h - r}, r);
  path.arcTo({0, 0}, {r, 0}, r);
  path.close();
  return path;
}

ZelPath ZelPath::roundedRect(CGRect r, double radius) {
  r = CGRectStandardize(r);
  radius = std::min(radius, std::min(r.size.width, r.size.height) / 2);
  double x0 = r.origin.x, y0 = r.origin.y, x1 = x0 + r.size.width, y1 = y0 + r.size.height;
  ZelPath p;
  p.moveTo({x0 + radius, y0});
  p.arcTo({x1, y0}, {x1, y1}, radius);
  p.arcTo({x1, y1}, {x0, y1}, radius);
  p.arcTo({x0, y1}, {x0, y0}, radius);
  p.arcTo({x0, y0}, {x1, y0}, radius);
  p.close();
  return p;
}

CGRect ZelPath::boundingBox() const {
  CGRect box = CGRectNull;
  auto addPoint = [&box](CGPoint p) { box = CGRectUnion(box, CGRect{p, {0, 0}}); };
  CGPoint current{};
  for (const ZelPathElement& e : elements_) {
    switch (e.type) {
      case ZelPathElement::Type::MoveTo:
      case ZelPathElement::Type::LineTo:
        addPoint(e.p1);
        current = e.p1;
        break;
      case ZelPathElement::Type::ArcTo:
        // The arc and its lead-in stay within the current point, the corner
        // and the far point's side (tangent points lie on those edges).
        addPoint(current);
        addPoint(e.p1);
        addPoint(e.p2);
        current = e.p2;
        break;
      case ZelPathElement::Type::Arc:
        box = CGRectUnion(box, CGRectMake(e.p1.x - e.radius, e.p1.y - e.radius, 2 * e.radius, 2 * e.radius));
        break;
      case ZelPathElement::Type::Ellipse:
        box = CGRectUnion(box, CGRectStandardize(e.rect));
        break;
      case ZelPathElement::Type::Close:
        break;
    }
  }
  return box;
}

ZEL_NAMESPACE_END
