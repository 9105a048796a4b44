#include "toolkit/core/ZelView.h"

#include <algorithm>

#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelTimingFunction.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

ZelView::ZelView(CGRect frame) : frame_(frame) { fader_.view = this; }

ZelView::~ZelView() {
  stopFade();
  if (window_) window_->viewWillLeaveWindow(this);
  if (layer_) layer_->setHost(nullptr);
  // The subviews go with subviews_, after this; each tells the window itself.
}

// ---- Geometry.

void ZelView::setFrame(CGRect frame) {
  if (frame == frame_) return;
  invalidateExtent();
  frame_ = frame;
  if (layer_) layer_->setFrame(bounds());
  invalidateExtent();
}

void ZelView::setBoundsOrigin(CGPoint origin) {
  if (origin == boundsOrigin_) return;
  invalidateExtent();
  boundsOrigin_ = origin;
  if (layer_) layer_->setFrame(bounds());
  invalidateExtent();
}

// ---- Tree.

ZelView* ZelView::addSubview(std::unique_ptr<ZelView> view) {
  return insertSubview(std::move(view), subviews_.size());
}

ZelView* ZelView::insertSubview(std::unique_ptr<ZelView> view, std::size_t index) {
  if (!view || view->superview_) return nullptr;
  ZelView* raw = view.get();
  raw->superview_ = this;
  index = std::min(index, subviews_.size());
  subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), std::move(view));
  raw->setWindow(window_);
  raw->invalidateExtent();
  return raw;
}

std::unique_ptr<ZelView> ZelView::removeFromSuperview() {
  ZelView* parent = superview_;
  if (!parent) return nullptr;
  invalidateExtent();
  auto it = std::find_if(parent->subviews_.begin(), parent->subviews_.end(),
                         [this](const std::unique_ptr<ZelView>& v) { return v.get() == this; });
  std::unique_ptr<ZelView> self = std::move(*it);
  parent->subviews_.erase(it);
  superview_ = nullptr;
  setWindow(nullptr);
  return self;
}

bool ZelView::isDescendantOf(const ZelView* ancestor) const {
  for (const ZelView* v = this; v; v = v->superview_) {
    if (v == ancestor) return true;
  }
  return false;
}

ZelView* ZelView::viewWithIdentifier(const std::string& id) {
  if (identifier_ == id) return this;
  for (auto& sub : subviews_) {
    if (ZelView* found = sub->viewWithIdentifier(id)) return found;
  }
  return nullptr;
}

void ZelView::setWindow(ZelWindow* window) {
  if (window_ == window) return;
  if (window_) {
    stopFade();  // the fade ends at its target
    window_->viewWillLeaveWindow(this);
  }
  window_ = window;
  if (layer_) layer_->hostFrameClockDidChange();
  for (auto& sub : subviews_) sub->setWindow(window);
  viewDidMoveToWindow();
}

// ---- Visibility and alpha.

void ZelView::setHidden(bool hidden) {
  if (hidden == hidden_) return;
  if (hidden) invalidateExtent();
  hidden_ = hidden;
  if (!hidden) invalidateExtent();
}

bool ZelView::isHiddenOrHasHiddenAncestor() const {
  for (const ZelView* v = this; v; v = v->superview_) {
    if (v->hidden_) return true;
  }
  return false;
}

void ZelView::setAlphaValue(double alpha) {
  bool wasFading = fader_.running;
  stopFade();
  if (alpha == alpha_ && !wasFading) return;
  alpha_ = alpha;
  invalidateExtent();
}

void ZelView::animateAlphaValue(double target, double duration) {
  if (!window_ || !(duration > 0)) {
    setAlphaValue(target);
    return;
  }
  ZelFrameClock& clock = window_->frameClock();
  double shown = presentationAlphaValue();
  stopFade();
  alpha_ = target;
  if (shown == target) return;
  fader_.from = shown;
  fader_.to = target;
  fader_.start = clock.now();
  fader_.duration = duration;
  fader_.running = true;
  fader_.clock = &clock;
  clock.addClient(fader_);
}

double ZelView::presentationAlphaValue() const {
  return fader_.running ? fader_.valueAt(fader_.clock->now()) : alpha_;
}

void ZelView::stopFade() {
  if (!fader_.running) return;
  fader_.running = false;
  if (fader_.clock) fader_.clock->removeClient(fader_);
  fader_.clock = nullptr;
}

double ZelView::AlphaFader::valueAt(double now) const {
  double f = std::clamp((now - start) / duration, 0.0, 1.0);
  return from + (to - from) * ZelTimingFunction::easeOut().evaluate(f);
}

void ZelView::AlphaFader::frameClockDidTick(ZelFrameClock& tickClock, double frameDuration) {
  (void)frameDuration;
  if (tickClock.now() >= start + duration) view->stopFade();
  view->invalidateExtent();
}

void ZelView::AlphaFader::frameClockWillDisappear(ZelFrameClock&) {
  running = false;
  clock = nullptr;
}

// ---- Layer.

void ZelView::setWantsLayer(bool wants) {
  if (wants == (layer_ != nullptr)) return;
  setLayer(wants ? std::make_unique<ZelLayer>() : nullptr);
}

void ZelView::setLayer(std::unique_ptr<ZelLayer> layer) {
  invalidateExtent();
  if (layer_) layer_->setHost(nullptr);
  layer_ = std::move(layer);
  if (layer_) {
    layer_->setImplicitAnimationsEnabled(false);
    layer_->setFrame(bounds());
    layer_->setHost(this);
    layer_->hostFrameClockDidChange();
  }
  invalidateExtent();
}

void ZelView::layerNeedsDisplayInRect(ZelLayer& rootLayer, const CGRect& rect) {
  (void)rootLayer;
  invalidateHostRect(rect);
}

ZelFrameClock* ZelView::layerFrameClock() { return window_ ? &window_->frameClock() : nullptr; }

// ---- Invalidation.

void ZelView::setNeedsDisplayInRect(CGRect rect) {
  if (layer_) layer_->markContentsChanged();
  invalidateHostRect(localToHost(true).apply(rect));
}

void ZelView::invalidateHostRect(CGRect rect) {
  if (!window_ || hidden_ || CGRectIsEmpty(rect)) return;
  CGRect inSuperview = hostToSuperview().apply(rect);
  if (superview_) superview_->invalidateChildArea(inSuperview);
  else window_->invalidate(inSuperview);
}

void ZelView::invalidateChildArea(CGRect rect) {
  if (layer_) {
    layer_->markContentsChanged();  // a rasterized copy of this view holds the old picture
    if (layer_->masksToBounds()) rect = CGRectIntersection(rect, bounds());
  }
  invalidateHostRect(localToHost(true).apply(rect));
}

CGRect ZelView::extentInSuperview() const {
  if (hidden_) return CGRectNull;
  CGRect local = drawingBounds();
  for (const auto& sub : subviews_) local = CGRectUnion(local, sub->extentInSuperview());
  if (layer_ && layer_->masksToBounds()) local = CGRectIntersection(local, bounds());
  CGRect host = CGRectIsNull(local) ? local : localToHost(true).apply(local);
  if (layer_) host = CGRectUnion(host, layer_->presentationExtent());
  return CGRectIsNull(host) ? host : hostToSuperview().apply(host);
}

void ZelView::invalidateExtent() {
  if (!window_ || hidden_) return;
  CGRect extent = extentInSuperview();
  if (CGRectIsNull(extent)) return;
  if (superview_) superview_->invalidateChildArea(extent);
  else window_->invalidate(extent);
}

// ---- Drawing.

void ZelView::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  (void)ctx;
  (void)dirtyRect;
}

void ZelView::render(ZelGraphicsContext& ctx) {
  if (hidden_) return;
  double alpha = presentationAlphaValue();
  if (alpha <= 0) return;
  CGRect clip = ctx.clipBoundingBox();
  if (CGRectIsNull(clip) || !CGRectIntersectsRect(clip, extentInSuperview())) return;
  ctx.save();
  ctx.concatTransform(hostToSuperview());
  bool group = alpha < 1;
  if (group) ctx.beginTransparencyGroup();
  if (layer_) {
    // Own content under the layer's sublayers, subviews above them.
    layer_->render(
        ctx,
        [this](ZelGraphicsContext& c) {
          c.translate(-boundsOrigin_.x, -boundsOrigin_.y);
          renderContent(c);
        },
        [this](ZelGraphicsContext& c) {
          c.translate(-boundsOrigin_.x, -boundsOrigin_.y);
          renderSubviews(c);
        });
  } else {
    renderContent(ctx);
    renderSubviews(ctx);
  }
  if (group) ctx.endTransparencyGroup(alpha);
  ctx.restore();
}

void ZelView::renderContent(ZelGraphicsContext& ctx) {
  CGRect dirty = CGRectIntersection(ctx.clipBoundingBox(), drawingBounds());
  if (!CGRectIsEmpty(dirty)) {
    ctx.save();
    drawRect(ctx, dirty);
    ctx.restore();
  }
}

void ZelView::renderSubviews(ZelGraphicsContext& ctx) {
  for (const auto& sub : subviews_) sub->render(ctx);
}

// ---- Coordinates.

ZelAffineTransform ZelView::hostToSuperview() const {
  return ZelAffineTransform::translation(frame_.origin.x - boundsOrigin_.x, frame_.origin.y - boundsOrigin_.y);
}

ZelAffineTransform ZelView::localToHost(bool presentation) const {
  if (!layer_) return {};
  ZelAffineTransform geometry = presentation ? layer_->presentationGeometry() : layer_->modelGeometry();
  return geometry.translatedBy(-boundsOrigin_.x, -boundsOrigin_.y);
}

ZelAffineTransform ZelView::transformToSuperview(bool presentation) const {
  return hostToSuperview().after(localToHost(presentation));
}

ZelAffineTransform ZelView::transformToWindow(bool presentation) const {
  ZelAffineTransform t;
  for (const ZelView* v = this; v; v = v->superview_) t = v->transformToSuperview(presentation).after(t);
  return t;
}

CGPoint ZelView::convertPointFromView(CGPoint point, const ZelView* view) const {
  CGPoint inWindow = view ? view->transformToWindow().apply(point) : point;
  return transformToWindow().inverted().apply(inWindow);
}

CGPoint ZelView::convertPointToView(CGPoint point, const ZelView* view) const {
  CGPoint inWindow = transformToWindow().apply(point);
  return view ? view->transformToWindow().inverted().apply(inWindow) : inWindow;
}

CGRect ZelView::convertRectFromView(CGRect rect, const ZelView* view) const {
  CGRect inWindow = view ? view->transformToWindow().apply(rect) : rect;
  return transformToWindow().inverted().apply(inWindow);
}

CGRect ZelView::convertRectToView(CGRect rect, const ZelView* view) const {
  CGRect inWindow = transformToWindow().apply(rect);
  return view ? view->transformToWindow().inverted().apply(inWindow) : inWindow;
}

// ---- Hit testing.

ZelView* ZelView::hitTest(CGPoint pointInSuperview) {
  if (hidden_) return nullptr;
  ZelAffineTransform t = transformToSuperview();
  if (t.a * t.d - t.b * t.c == 0) return nullptr;  // scaled to nothing
  CGPoint local = t.inverted().apply(pointInSuperview);
  if (!containsPoint(local)) return nullptr;
  for (auto it = subviews_.rbegin(); it != subviews_.rend(); ++it) {
    if (ZelView* hit = (*it)->hitTest(local)) return hit;
  }
  return this;
}

// ---- Events: by default everything goes up to the superview.

void ZelView::mouseDown(const ZelEvent& event) {
  if (superview_) superview_->mouseDown(event);
}

void ZelView::mouseDragged(const ZelEvent& event) {
  if (superview_) superview_->mouseDragged(event);
}

void ZelView::mouseUp(const ZelEvent& event) {
  if (superview_) superview_->mouseUp(event);
}

void ZelView::rightMouseDown(const ZelEvent& event) {
  if (superview_) superview_->rightMouseDown(event);
}

std::unique_ptr<ZelMenu> ZelView::menuForEvent(const ZelEvent& event) {
  (void)event;
  return nullptr;
}

bool ZelView::scrollWheel(const ZelEvent& event) { return superview_ && superview_->scrollWheel(event); }

bool ZelView::keyDown(const ZelEvent& event) { return superview_ && superview_->keyDown(event); }

bool ZelView::keyUp(const ZelEvent& event) { return superview_ && superview_->keyUp(event); }

bool ZelView::flagsChanged(const ZelEvent& event) { return superview_ && superview_->flagsChanged(event); }

bool ZelView::performKeyEquivalent(const ZelEvent& event) {
  // By index: a handler may add or remove views.
  for (std::size_t i = 0; i < subviews_.size(); ++i) {
    ZelView* sub = subviews_[i].get();
    if (!sub->hidden_ && sub->performKeyEquivalent(event)) return true;
  }
  return false;
}

ZEL_NAMESPACE_END
