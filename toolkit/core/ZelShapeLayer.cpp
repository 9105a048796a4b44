#include "toolkit/core/ZelShapeLayer.h"

#include <utility>

ZEL_NAMESPACE_BEGIN

namespace {

bool shapeStrokes(const std::optional<ZelColor>& stroke, double width) {
  return stroke && stroke->alpha > 0 && width > 0;
}

}  // namespace

void ZelShapeLayer::setPath(ZelPath path) {
  if (path == path_) return;
  CGRect before = areaBeforeChange();
  path_ = std::move(path);
  contentChanged(before);
}

void ZelShapeLayer::exchangePath(ZelPath& path) {
  if (path == path_) return;
  CGRect before = areaBeforeChange();
  std::swap(path_, path);
  contentChanged(before);
}

void ZelShapeLayer::setFillColor(std::optional<ZelColor> c) {
  if (c == fill_) return;
  CGRect before = areaBeforeChange();
  fill_ = c;
  contentChanged(before);
}

void ZelShapeLayer::setStrokeColor(std::optional<ZelColor> c) {
  if (c == stroke_) return;
  CGRect before = areaBeforeChange();
  stroke_ = c;
  contentChanged(before);
}

void ZelShapeLayer::setLineWidth(double w) {
  if (w == lineWidth_) return;
  CGRect before = areaBeforeChange();
  lineWidth_ = w;
  contentChanged(before);
}

void ZelShapeLayer::setLineDashPattern(std::vector<double> pattern) {
  if (pattern == dashes_) return;
  CGRect before = areaBeforeChange();
  dashes_ = std::move(pattern);
  contentChanged(before);
}

void ZelShapeLayer::setLineDashPhase(double phase) {
  if (phase == dashPhase_) return;
  CGRect before = areaBeforeChange();
  dashPhase_ = phase;
  contentChanged(before);
}

void ZelShapeLayer::setLineCap(ZelLineCap cap) {
  if (cap == cap_) return;
  CGRect before = areaBeforeChange();
  cap_ = cap;
  contentChanged(before);
}

void ZelShapeLayer::setLineJoin(ZelLineJoin join) {
  if (join == join_) return;
  CGRect before = areaBeforeChange();
  join_ = join;
  contentChanged(before);
}

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
