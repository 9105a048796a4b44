#include "editor/containers/ZelClumpDrawing.h"

#include <cmath>

#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr float kHeaderFooterAlpha = 0.8f;
constexpr double kHeaderFooterLineWidth = 2.0;
constexpr double kHeaderFooterShadowBlur = 4.0;
// The shadow is asked for at alpha 3.0; colour components clamp, so it is
// opaque black.
constexpr ZelColor kHeaderFooterShadow{0, 0, 0, 1};

CGPoint shifted(CGPoint p, CGRect frame) { return {p.x + frame.origin.x / 2, p.y - frame.origin.y / 2}; }

}  // namespace

void ZelFillGenericHeaderFooterOnEdge(ZelGraphicsContext& ctx, int edge, CGRect rect) {
  CGPoint start, end;
  CGRectEdgeAsTwoPoints(edge, &start, &end, rect);
  ctx.save();
  ctx.setLineWidth(kHeaderFooterLineWidth);
  ctx.setStrokeColor(ZelUITheme::theme()->backgroundColor().withAlpha(kHeaderFooterAlpha));
  ctx.setShadow({0, 0}, kHeaderFooterShadowBlur, kHeaderFooterShadow);
  ctx.strokeLineSegment(start, end);
  ctx.restore();
}

void drawEdgesForContext(ZelGraphicsContext& ctx, const ZelPluginLayout& layout, CGRect frame, bool thinFill) {
  if (thinFill) {
    for (const CGRect& r : ZelHairlineRectsForEdges(layout.edges(), frame)) ctx.fillRect(r);
    return;
  }
  for (const ZelLayoutEdge& e : layout.edges()) ctx.strokeLineSegment(shifted(e.start, frame), shifted(e.end, frame));
}

std::vector<ZelTransformStep> ZelTransformStepsFromArray(const ZelPlist& steps) {
  std::vector<ZelTransformStep> out;
  const ZelPlist::Array* array = steps.asArray();
  if (!array) return out;
  for (const ZelPlist& step : *array) {
    if (!step.isArray() || step.count() < 3 || !step[1].isNumber() || !step[2].isNumber()) continue;
    std::string_view name = step[0].stringValue();
    if (name == "scale") out.push_back(ZelTransformStep::scale(step[1].floatValue(), step[2].floatValue()));
    else if (name == "translate") out.push_back(ZelTransformStep::translate(step[1].doubleValue(), step[2].doubleValue()));
  }
  return out;
}

ZelAffineTransform ZelTransformFromArray(const ZelView& view, std::span<const ZelTransformStep> steps) {
  ZelAffineTransform t;
  CGSize size = view.bounds().size;
  for (const ZelTransformStep& step : steps) {
    if (step.kind == ZelTransformStep::Kind::Scale) t = t.scaledBy(step.x, step.y);
    else t = t.translatedBy(std::floor(step.x * size.width), std::floor(step.y * size.height));
  }
  return t;
}

ZelAffineTransform ZelTransformFromArray(const ZelView& view, const ZelPlist& steps) {
  return ZelTransformFromArray(view, ZelTransformStepsFromArray(steps));
}

void ZelAnimateViewToFromDuration(ZelView& view, std::span<const ZelTransformStep> to,
                                  std::span<const ZelTransformStep> from, double duration) {
  if (!view.layer()) view.setWantsLayer(true);
  ZelAffineTransform target = ZelTransformFromArray(view, to);
  {
    ZelTransaction t;
    t.setDisableActions(true);
    view.layer()->setTransform(target);
  }
  ZelBasicAnimation slide("transform");
  slide.setFromValue(ZelTransformFromArray(view, from));
  slide.setToValue(target);
  slide.setDuration(duration);
  slide.setTimingFunction(ZelTimingFunction::easeOut());
  slide.setRemovedOnCompletion(true);
  view.layer()->addAnimation(slide, "transform");
}

void ZelAnimateViewToFromDuration(ZelView& view, const ZelPlist& to, const ZelPlist& from, double duration) {
  ZelAnimateViewToFromDuration(view, ZelTransformStepsFromArray(to), ZelTransformStepsFromArray(from), duration);
}

ZEL_NAMESPACE_END
