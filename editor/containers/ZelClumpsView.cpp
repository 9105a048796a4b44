#include "editor/containers/ZelClumpsView.h"

#include <cmath>
#include <numbers>

#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

// Single-precision constants of the design, widened.
constexpr double kHairlineAlpha = static_cast<double>(0.45f);
constexpr double kBorderAlpha = static_cast<double>(0.2f);
constexpr double kBorderDash[] = {4, 2};
// The clearance round the HQ control: grown by 64, moved by (-40, -40);
// the texture is cleared 10 points further out.
constexpr double kHQGrowth = 64;
constexpr double kHQShift = -40;
constexpr double kHQClearMargin = 10;

}  // namespace

ZelClumpsView::ZelClumpsView(CGRect frame, const ZelConfig* config) : ZelView(frame), config_(config) {
  setWantsLayer(true);
  layer()->setMasksToBounds(false);
  layer()->setShouldRasterize(false);
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
}

ZelClumpsView::~ZelClumpsView() = default;

void ZelClumpsView::setLayout(std::unique_ptr<ZelPluginLayout> layout) {
  layout_ = std::move(layout);
  setNeedsDisplay();
}

void ZelClumpsView::setInset(double inset) {
  inset_ = inset;
  setNeedsDisplay();
}

void ZelClumpsView::setDrawOutsideBorder(bool draw) {
  drawOutsideBorder_ = draw;
  setNeedsDisplay();
}

void ZelClumpsView::themeUpdated() { setNeedsDisplay(); }

void ZelClumpsView::viewDidMoveToWindow() {
  if (window()) layer()->setRasterizationScale(window()->backingScale());
}

CGRect ZelClumpsView::outsideBorderRect() const {
  CGRect b = CGRectIntegral(CGRectInset(bounds(), inset_ * 0.5, inset_ * 0.5));
  if (CGRectIsNull(b)) return b;
  b.size.height -= 1.0;
  return b;
}

bool ZelClumpsView::bendsAroundHQControl() const { return config_ && config_->metadata().hasGenericHQMode; }

CGRect ZelClumpsView::hqClearanceRect() const {
  CGRect displaced = CGRectZero;
  if (config_) {
    if (const ZelParameter* hq = config_->parameterForCodename(config_->metadata().genericHQParameter))
      displaced = hq->displacedRect();
  }
  return CGRectOffset(CGRectInset(displaced, -kHQGrowth, -kHQGrowth), kHQShift, kHQShift);
}

ZelPath ZelClumpsView::outsideBorderPath() const {
  const CGRect b = outsideBorderRect();
  ZelPath path;
  if (CGRectIsNull(b)) return path;
  if (!bendsAroundHQControl()) {
    path.addRect(b);
    return path;
  }
  const CGRect c = hqClearanceRect();
  const double mx = CGRectGetMidX(c), my = CGRectGetMidY(c), r = c.size.width / 2;
  const double a = std::asin((b.origin.y - my) / r);
  if (!std::isfinite(a) || !std::isfinite(mx + r)) {
    // A clearance the border cannot reach (a description out of range).
    path.addRect(b);
    return path;
  }
  const double top = b.origin.y + b.size.height, right = b.origin.x + b.size.width;
  path.moveTo({b.origin.x, top});
  path.lineTo({right, top});
  path.lineTo({right, b.origin.y});
  path.lineTo({mx + r, b.origin.y});
  path.arc({mx, my}, r, a, std::numbers::pi / 2 - a, false);
  path.moveTo({b.origin.x, b.origin.y + (mx + r - b.origin.x)});
  path.lineTo({b.origin.x, top});
  return path;
}

void ZelClumpsView::drawRect(ZelGraphicsContext& ctx, CGRect) {
  const ZelUITheme* theme = ZelUITheme::theme();
  theme->backgroundPattern().setAsFill(ctx);
  ctx.fillRect(bounds());
  drawHairlines(ctx);
  if (drawOutsideBorder_) drawBorder(ctx);
}

void ZelClumpsView::drawHairlines(ZelGraphicsContext& ctx) const {
  ctx.setLineWidth(1.0);
  ctx.setFillColor(ZelUITheme::theme()->textColor().withAlpha(kHairlineAlpha));
  if (!layout_) return;
  for (const CGRect& r : ZelHairlineRectsForEdges(layout_->edges(), CGRectZero)) ctx.fillRect(r);
}

void ZelClumpsView::drawBorder(ZelGraphicsContext& ctx) const {
  const ZelUITheme* theme = ZelUITheme::theme();
  if (bendsAroundHQControl()) {
    theme->backgroundPattern().setAsFill(ctx);
    const CGRect c = hqClearanceRect();
    ctx.fillEllipseInRect(CGRectInset(c, -kHQClearMargin, -kHQClearMargin));
  }
  ctx.setStrokeColor(theme->textColor().withAlpha(kBorderAlpha));
  ctx.setLineWidth(1.0);
  ctx.setLineDash(0, kBorderDash);
  ctx.strokePath(outsideBorderPath());
  ctx.setLineDash(0, {});
}

ZEL_NAMESPACE_END
