#include "editor/ZelDrawerView.h"

#include <algorithm>

#include "editor/ZelContainerStyle.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

// A hide is scheduled this much before the transition's end, so that no
// frame shows the layer back at its model opacity in between.
constexpr double kHideLead = 0.001;

ZelRunLoop* runLoopOf(const ZelView& view) {
  return view.window() ? &view.window()->runLoop() : ZelRunLoop::current();
}

}  // namespace

ZelDrawerView::ZelDrawerView(CGRect frame, const ZelConfig* config, bool visible)
    : ZelView(frame), config_(config), visible_(visible) {
  setWantsLayer(true);
  layer()->setMasksToBounds(true);
  contentView_ = addSubview(std::make_unique<ZelView>(bounds()));
  addMiniature(kMiniatureHideAll, ZelIconGlyph::kClose);
  setHidden(!visible);
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
}

ZelDrawerView::~ZelDrawerView() {
  if (hideLoop_) hideLoop_->cancelAllForTarget(this);
}

bool ZelDrawerView::toggleVisibility() {
  const bool becoming = !visible_;
  if (becoming) setPresented(true);
  if (delegate_ && !delegate_->canDrawerViewToggleVisibilityToVisibility(*this, becoming)) {
    if (becoming) setPresented(false);
    return false;
  }
  visible_ = becoming;
  if (animatesVisibility_ && !layer()->animationForKey("visible")) addOwnFade(becoming);
  if (!becoming) hideAfterTransition();
  if (delegate_) delegate_->drawerViewDidToggleVisibility(*this, becoming);
  return true;
}

void ZelDrawerView::addOwnFade(bool in) {
  ZelBasicAnimation fade("opacity");
  fade.setFromValue(in ? 0.0 : 1.0);
  fade.setToValue(in ? 1.0 : 0.0);
  fade.setDuration(kOwnFadeDuration);
  fade.setTimingFunction(ZelTimingFunction::easeOut());
  layer()->addAnimation(fade, "visible");
}

void ZelDrawerView::hideAfterTransition() {
  double remaining = 0;
  for (const char* key : {"visible", "transform"}) {
    if (const ZelBasicAnimation* running = layer()->animationForKey(key))
      remaining = std::max(remaining, running->activeDuration());
  }
  ZelRunLoop* loop = runLoopOf(*this);
  if (remaining <= 0 || !loop) {
    finishHiding();
    return;
  }
  cancelPendingHide();
  hideLoop_ = loop;
  loop->schedule(std::max(0.0, remaining - kHideLead), [this] { finishHiding(); },
                 ZelCallKey{this, "finishHiding"});
}

void ZelDrawerView::finishHiding() {
  hideLoop_ = nullptr;
  if (!visible_) setHidden(true);
}

void ZelDrawerView::cancelPendingHide() {
  if (hideLoop_) hideLoop_->cancel(ZelCallKey{this, "finishHiding"});
  hideLoop_ = nullptr;
}

void ZelDrawerView::setPresented(bool presented) {
  cancelPendingHide();
  setHidden(!presented);
}

ZelView* ZelDrawerView::addMiniature(int which, const std::string& glyph) {
  const CGRect b = bounds();
  const double x = b.size.width - kMiniatureMargin - kMiniatureSize * static_cast<double>(miniatures_.size() + 1);
  const CGRect frame = CGRectMake(x, b.size.height - kMiniatureMargin - kMiniatureSize, kMiniatureSize, kMiniatureSize);
  auto button = ZelMakeContainerButton(frame, glyph.c_str(), kZelMiniatureGlyphSize);
  button->setAction([this, which](ZelControl&) { tapMiniature(which); });
  ZelSymbolButton* added = addSubview(std::move(button));
  miniatures_.push_back({which, added});
  return added;
}

ZelView* ZelDrawerView::miniature(int which) const {
  for (const auto& [tag, view] : miniatures_)
    if (tag == which) return view;
  return nullptr;
}

void ZelDrawerView::tapMiniature(int which) {
  if (miniatureDelegate_) miniatureDelegate_->drawerDidTapMiniature(*this, which);
}

void ZelDrawerView::themeUpdated() {
  for (const auto& entry : miniatures_) ZelRecolourContainerButton(entry.second);
  setNeedsDisplay();
}

void ZelDrawerView::drawRect(ZelGraphicsContext& ctx, CGRect) {
  // A backdrop of its own: the clumps below never show through.
  ZelUITheme::theme()->backgroundPattern().setAsFill(ctx);
  ctx.fillRect(bounds());
}

ZelView* ZelDrawerView::hitTest(CGPoint pointInSuperview) {
  if (!visible_) return nullptr;
  return ZelView::hitTest(pointInSuperview);
}

ZEL_NAMESPACE_END
