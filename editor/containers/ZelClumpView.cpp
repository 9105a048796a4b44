#include "editor/containers/ZelClumpView.h"

#include <algorithm>

#include "controls/ZelParameterControl.h"
#include "theme/ZelBorderSpec.h"
#include "theme/ZelLabelImage.h"
#include "theme/ZelUITheme.h"
#include "model/ZelClump.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kInteriorBorderAlpha = static_cast<double>(0.2f);
constexpr double kDimmedAlpha = 0.5;
constexpr double kRoundedBorderInset = 4;
constexpr double kRoundedBorderRadius = 24;

}  // namespace

ZelClumpView::ZelClumpView(CGRect frame, const ZelClump* clump, PrimaryFactory factory)
    : ZelView(frame), clump_(clump) {
  setWantsLayer(true);
  layer()->setMasksToBounds(false);
  const ZelPlist& computed = clump_ ? clump_->computedLayout : ZelPlist::null();
  const ZelPlist& constraints = clump_ ? clump_->layoutConstraints : ZelPlist::null();
  const auto count = clump_ ? static_cast<std::int64_t>(clump_->parameters.size()) : 0;
  layout_ = ZelPluginLayout::layoutForLayout(computed, useableRect(), count, constraints);
  decodeLabels();
  buildControls(factory);
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
}

ZelClumpView::~ZelClumpView() = default;

void ZelClumpView::decodeLabels() {
  if (!clump_) return;
  labelImage_ = ZelImageFromBase64String(clump_->label);
  const ZelPlist::Dictionary* tagged = clump_->taggedLabels.asDictionary();
  if (!tagged) return;
  for (const auto& [name, value] : *tagged) {
    if (auto image = ZelImageFromBase64String(value.stringValue()))
      taggedLabels_.push_back({std::move(image), layout_->frameLabeled(name)});
  }
}

void ZelClumpView::buildControls(PrimaryFactory factory) {
  if (!clump_) return;
  parameterControls_.reserve(clump_->parameters.size());
  for (const auto& parameter : clump_->parameters) {
    const bool displaced = !parameter->displacedFrame.isNull();
    const CGRect frame = displaced ? parameter->displacedRect() : frameForParameter(*parameter);
    auto control = std::make_unique<ZelParameterControl>(frame, CGRectZero, parameter.get(), factory);
    control->setClumpView(this);
    parameterControls_.push_back(control.get());
    if (displaced)
      displacedControls_.push_back(std::move(control));
    else
      addSubview(std::move(control));
  }
}

std::unique_ptr<ZelParameterControl> ZelClumpView::takeDisplacedControl(const ZelParameterControl* control) {
  auto found = std::find_if(displacedControls_.begin(), displacedControls_.end(),
                            [control](const auto& held) { return held.get() == control; });
  if (found == displacedControls_.end()) return nullptr;
  std::unique_ptr<ZelParameterControl> taken = std::move(*found);
  displacedControls_.erase(found);
  return taken;
}

bool ZelClumpView::holdsDisplacedControl(const ZelParameterControl* control) const {
  return std::any_of(displacedControls_.begin(), displacedControls_.end(),
                     [control](const auto& held) { return held.get() == control; });
}

CGRect ZelClumpView::useableRect() const {
  if (!clump_) return bounds();
  const double dx = static_cast<double>(clump_->inset["x"].integerValue());
  const double dy = static_cast<double>(clump_->inset["y"].integerValue());
  return CGRectInset(bounds(), dx, dy);
}

CGRect ZelClumpView::frameForParameter(const ZelParameter& parameter) const {
  return layout_->frameForIndex(parameter.indexInClump);
}

ZelPath ZelClumpView::newRoundedBorderRect() const {
  return ZelPluginLayout::newCGPathForRect(CGRectInset(bounds(), kRoundedBorderInset, kRoundedBorderInset),
                                           kRoundedBorderRadius);
}

void ZelClumpView::setDimmed(bool dimmed, double delay, std::uint32_t priority) {
  dimmed_ = dimmed;
  for (const auto& subview : subviews()) {
    auto* control = dynamic_cast<ZelParameterControl*>(subview.get());
    if (!control) continue;
    dimControl(*control, dimmed, delay, priority);
    delay += kDimStagger;
  }
  animateAlphaValue(dimmed ? kDimmedAlpha : 1.0);
}

void ZelClumpView::dimControl(ZelParameterControl& control, bool dimmed, double delay, std::uint32_t priority) {
  control.setDimmed(dimmed, delay, priority);
}

void ZelClumpView::themeUpdated() { setNeedsDisplay(); }

void ZelClumpView::drawRect(ZelGraphicsContext& ctx, CGRect) {
  drawLabels(ctx);
  drawInteriorBorders(ctx);
}

void ZelClumpView::drawLabels(ZelGraphicsContext& ctx) const {
  const CGRect x = labelFrame();
  DrawLabelImage(ctx, labelImage_, x);
  ctx.setFillColor(ZelUITheme::theme()->interiorBorderColor());
  if (clump_) ZelBorderRectWithBorderSpec(ctx, clump_->labelBorder, x);
  for (const TaggedLabel& tagged : taggedLabels_) DrawLabelImage(ctx, tagged.image, tagged.frame);
}

void ZelClumpView::drawInteriorBorders(ZelGraphicsContext& ctx) const {
  ctx.setFillColor(ZelUITheme::theme()->textColor().withAlpha(kInteriorBorderAlpha));
  if (!clump_ || !clump_->showInteriorBorders) return;
  // The edges are shifted by half the useable rectangle's origin, as the
  // layout engine's edge drawing does.
  for (const CGRect& r : ZelHairlineRectsForEdges(layout_->edges(), useableRect())) ctx.fillRect(r);
}

ZEL_NAMESPACE_END
