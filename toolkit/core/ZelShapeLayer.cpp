#include "toolkit/core/ZelShapeLayer.h"

#include <utility>

ZEL_NAMESPACE_BEGIN

namespace {

bool shapeStrokes(const std::optional<ZelColor>& stroke, double width) {
  return stroke && stroke->alpha > 0 && width > 0;
}

}  // namespace

void ZelShapeLayer::setPath(ZelPath path) { changeContent(path_, std::move(path)); }

void ZelShapeLayer::exchangePath(ZelPath& path) {
  if (path == path_) return;
  CGRect before = areaBeforeChange();
  std::swap(path_, path);
  contentChanged(before);
}

void ZelShapeLayer::setFillColor(std::optional<ZelColor> c) { changeContent(fill_, c); }

void ZelShapeLayer::setStrokeColor(std::optional<ZelColor> c) { changeContent(stroke_, c); }

void ZelShapeLayer::setLineWidth(double w) { changeContent(lineWidth_, w); }

void ZelShapeLayer::setLineDashPattern(std::vector<double> pattern) { changeContent(dashes_, std::move(pattern)); }

void ZelShapeLayer::setLineDashPhase(double phase) { changeContent(dashPhase_, phase); }

void ZelShapeLayer::setLineCap(ZelLineCap cap) { changeContent(cap_, cap); }

void ZelShapeLayer::setLineJoin(ZelLineJoin join) { changeContent(join_, join); }

double ZelShapeLayer::presentationLineDashPhase() const {
  return presentationDouble(ZelAnimatedProperty::LineDashPhase, dashPhase_);
}

void ZelShapeLayer::drawContent(ZelGraphicsContext& ctx) {
  if (path_.empty()) return;
  if (fill_ && fill_->alpha > 0) {
    ctx.setFillColor(*fill_);
    ctx.fillPath(path_);
  }
  if (!shapeStrokes(stroke_, lineWidth_)) return;
  ctx.setStrokeColor(*stroke_);
  ctx.setLineWidth(lineWidth_);
  ctx.setLineCap(cap_);
  ctx.setLineJoin(join_);
  ctx.setLineDash(presentationLineDashPhase(), dashes_);
  ctx.strokePath(path_);
}

CGRect ZelShapeLayer::contentExtent() const {
  CGRect box = path_.boundingBox();
  if (CGRectIsNull(box) || !shapeStrokes(stroke_, lineWidth_)) return box;
  // Mitred corners reach further than half the line width.
  double reach = join_ == ZelLineJoin::Miter ? 2 * lineWidth_ : lineWidth_ / 2;
  return CGRectInset(box, -reach, -reach);
}

int ZelShapeLayer::contentDrawCount() const {
  if (path_.empty()) return 0;
  return (fill_ && fill_->alpha > 0 ? 1 : 0) + (shapeStrokes(stroke_, lineWidth_) ? 1 : 0);
}

ZEL_NAMESPACE_END
