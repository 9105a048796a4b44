// A layer that fills and strokes one path (in its bounds space). Defaults as
// the platform's: opaque black fill, no stroke, line width 1, no dashes,
// butt caps, miter joins. "lineDashPhase" is animatable (explicitly; its
// setter does not animate implicitly).
//
// Ownership and threading as ZelLayer.
#pragma once

#include <optional>
#include <vector>

#include "toolkit/core/ZelLayer.h"
#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

class ZelShapeLayer : public ZelLayer {
 public:
  ZelShapeLayer() = default;

  const ZelPath& path() const { return path_; }
  void setPath(ZelPath path);
  // Makes `path` the layer's path and hands the previous one back in `path`
  // (unchanged when both are equal), so that a caller redrawing every frame
  // can reuse the storage instead of allocating a new path.
  void exchangePath(ZelPath& path);
  // nullopt: no fill (the platform's nil / clear fill).
  const std::optional<ZelColor>& fillColor() const { return fill_; }
  void setFillColor(std::optional<ZelColor> c);
  // nullopt: no stroke.
  const std::optional<ZelColor>& strokeColor() const { return stroke_; }
  void setStrokeColor(std::optional<ZelColor> c);
  double lineWidth() const { return lineWidth_; }
  void setLineWidth(double w);
  // Dash and gap lengths in points; empty for a solid line.
  const std::vector<double>& lineDashPattern() const { return dashes_; }
  void setLineDashPattern(std::vector<double> pattern);
  double lineDashPhase() const { return dashPhase_; }
  void setLineDashPhase(double phase);
  ZelLineCap lineCap() const { return cap_; }
  void setLineCap(ZelLineCap cap);
  ZelLineJoin lineJoin() const { return join_; }
  void setLineJoin(ZelLineJoin join);

  double presentationLineDashPhase() const;

 protected:
  void drawContent(ZelGraphicsContext& ctx) override;
  CGRect contentExtent() const override;
  int contentDrawCount() const override;

 private:
  ZelPath path_;
  std::optional<ZelColor> fill_ = ZelColor{0, 0, 0, 1};
  std::optional<ZelColor> stroke_;
  double lineWidth_ = 1;
  std::vector<double> dashes_;
  double dashPhase_ = 0;
  ZelLineCap cap_ = ZelLineCap::Butt;
  ZelLineJoin join_ = ZelLineJoin::Miter;
};

ZEL_NAMESPACE_END
