#include "toolkit/core/ZelLayer.h"

#include <algorithm>
#include <cmath>

#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelTransaction.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

namespace {

// Bounds space to the superlayer's: the transform applies about the centre.
ZelAffineTransform geometryFor(const CGRect& frame, const ZelAffineTransform& t) {
  double w = frame.size.width, h = frame.size.height;
  auto toCentre = ZelAffineTransform::translation(frame.origin.x + w / 2, frame.origin.y + h / 2);
  return toCentre.after(t.after(ZelAffineTransform::translation(-w / 2, -h / 2)));
}

// A transform whose scale is replaced by a uniform `scale` (translation kept).
ZelAffineTransform withScale(ZelAffineTransform t, double scale) {
  t.a = t.d = scale;
  t.b = t.c = 0;
  return t;
}

}  // namespace

ZelLayer::ZelLayer() = default;

ZelLayer::~ZelLayer() {
  // Sublayers unregister themselves as they go. Completions of animations
  // still running are not called: their owner is going away.
  if (clock_) clock_->removeAnimatingLayer(*this);
}

// ---- Change reporting.

CGRect ZelLayer::areaBeforeChange() const { return host() ? presentationExtentInHost() : CGRectNull; }

void ZelLayer::reportAreaToHost(const CGRect& area) {
  if (CGRectIsNull(area) || CGRectIsEmpty(area)) return;
  ZelLayer& root = rootLayer();
  // Anti-aliased edges touch the pixels around the geometry.
  if (root.host_) root.host_->layerNeedsDisplayInRect(root, CGRectInset(area, -1, -1));
}

void ZelLayer::contentChanged(const CGRect& before) {
  markContentsChanged();
  if (host()) reportAreaToHost(CGRectUnion(before, presentationExtentInHost()));
}

void ZelLayer::geometryChanged(const CGRect& before) {
  // Opacity and transform apply to this layer's raster, not in it.
  if (superlayer_) superlayer_->markContentsChanged();
  if (host()) reportAreaToHost(CGRectUnion(before, presentationExtentInHost()));
}

void ZelLayer::markContentsChanged() {
  for (ZelLayer* l = this; l; l = l->superlayer_)
    if (l->shouldRasterize_) l->rasterStale_ = true;
}

void ZelLayer::setNeedsDisplay() { contentChanged(CGRectNull); }

// ---- Setters.

void ZelLayer::setFrame(const CGRect& frame) {
  if (frame == frame_) return;
  CGRect before = areaBeforeChange();
  frame_ = frame;
  if (shouldRasterize_) rasterStale_ = true;
  geometryChanged(before);
}

void ZelLayer::setBackgroundColor(const ZelColor& c) {
  if (c == background_) return;
  CGRect before = areaBeforeChange();
  ZelColor shown = presentationBackgroundColor();
  background_ = c;
  implicitlyAnimate("backgroundColor", shown, c);
  contentChanged(before);
}

void ZelLayer::setCornerRadius(double r) { changeContent(cornerRadius_, r); }

void ZelLayer::setOpacity(double opacity) {
  if (opacity == opacity_) return;
  CGRect before = areaBeforeChange();
  double shown = presentationOpacity();
  opacity_ = opacity;
  implicitlyAnimate("opacity", shown, opacity);
  geometryChanged(before);
}

void ZelLayer::setHidden(bool hidden) {
  if (hidden == hidden_) return;
  CGRect before = areaBeforeChange();
  hidden_ = hidden;
  geometryChanged(before);
}

void ZelLayer::setTransform(const ZelAffineTransform& t) {
  if (t == transform_) return;
  CGRect before = areaBeforeChange();
  ZelAffineTransform shown = presentationTransform();
  transform_ = t;
  implicitlyAnimate("transform", shown, t);
  geometryChanged(before);
}

void ZelLayer::setMasksToBounds(bool on) { changeContent(masksToBounds_, on); }

void ZelLayer::setShouldRasterize(bool on) {
  if (on == shouldRasterize_) return;
  shouldRasterize_ = on;
  raster_.reset();
  setNeedsDisplay();
}

void ZelLayer::setRasterizationScale(double scale) {
  if (scale == rasterizationScale_) return;
  rasterizationScale_ = scale;
  if (shouldRasterize_) setNeedsDisplay();
}

void ZelLayer::setMagnificationFilter(ZelImageFilter f) {
  if (f == magnification_) return;
  magnification_ = f;
  if (shouldRasterize_) setNeedsDisplay();
}

void ZelLayer::setDrawCallback(DrawCallback callback) {
  drawCallback_ = std::move(callback);
  setNeedsDisplay();
}

void ZelLayer::implicitlyAnimate(std::string_view key, const ZelAnimationValue& from, const ZelAnimationValue& to) {
  if (!implicitAnimations_ || ZelTransaction::disableActions()) return;
  if (from == to) {
    // Already showing the new value: an older change must not carry on.
    removeAnimationForKey(key);
    return;
  }
  ZelBasicAnimation animation(key);
  animation.setFromValue(from);
  animation.setToValue(to);
  animation.setDuration(ZelTransaction::animationDuration());
  animation.setTimingFunction(ZelTransaction::animationTimingFunction());
  addAnimation(animation, key);
}

// ---- Tree.

ZelLayer* ZelLayer::addSublayer(std::unique_ptr<ZelLayer> layer) {
  return insertSublayer(std::move(layer), sublayers_.size());
}

ZelLayer* ZelLayer::insertSublayer(std::unique_ptr<ZelLayer> layer, std::size_t index) {
  if (!layer || layer.get() == this) return nullptr;
  ZelLayer* added = layer.get();
  added->superlayer_ = this;
  sublayers_.insert(sublayers_.begin() + std::min(index, sublayers_.size()), std::move(layer));
  markContentsChanged();
  if (host()) {
    added->registerTree();
    added->reportAreaToHost(added->presentationExtentInHost());
  }
  return added;
}

std::unique_ptr<ZelLayer> ZelLayer::removeFromSuperlayer() {
  ZelLayer* parent = superlayer_;
  if (!parent) return nullptr;
  CGRect before = areaBeforeChange();
  reportAreaToHost(before);
  unregisterTree();
  auto it = std::find_if(parent->sublayers_.begin(), parent->sublayers_.end(),
                         [this](const std::unique_ptr<ZelLayer>& l) { return l.get() == this; });
  std::unique_ptr<ZelLayer> self = std::move(*it);
  parent->sublayers_.erase(it);
  superlayer_ = nullptr;
  parent->markContentsChanged();
  return self;
}

ZelLayer& ZelLayer::rootLayer() {
  ZelLayer* l = this;
  while (l->superlayer_) l = l->superlayer_;
  return *l;
}

ZelLayerHost* ZelLayer::host() const {
  const ZelLayer* l = this;
  while (l->superlayer_) l = l->superlayer_;
  return l->host_;
}

void ZelLayer::setHost(ZelLayerHost* host) {
  if (host == host_) return;
  unregisterTree();
  host_ = host;
  registerTree();
}

void ZelLayer::hostFrameClockDidChange() {
  unregisterTree();
  registerTree();
}

void ZelLayer::unregisterTree() {
  if (clock_) clock_->removeAnimatingLayer(*this);
  clock_ = nullptr;
  lastFrameArea_ = CGRectNull;
  for (auto& sub : sublayers_) sub->unregisterTree();
}

void ZelLayer::registerTree() {
  if (hasRunningAnimations()) registerWithClock();
  for (auto& sub : sublayers_) sub->registerTree();
}

void ZelLayer::registerWithClock() {
  if (clock_) return;
  ZelLayerHost* h = host();
  ZelFrameClock* clock = h ? h->layerFrameClock() : nullptr;
  if (!clock) return;
  clock_ = clock;
  lastFrameArea_ = CGRectNull;
  clock->addAnimatingLayer(*this);
  h->layerDidStartAnimating(*this);
}

ZelFrameClock* ZelLayer::findClock() const {
  if (clock_) return clock_;
  ZelLayerHost* h = host();
  return h ? h->layerFrameClock() : nullptr;
}

double ZelLayer::currentTime() const {
  if (ZelFrameClock* clock = findClock()) return clock->now();
  if (ZelRunLoop* loop = ZelRunLoop::current()) return loop->now();
  return 0;
}

// ---- Animations.

void ZelLayer::addAnimation(const ZelBasicAnimation& animation, std::string_view key) {
  CGRect before = areaBeforeChange();
  std::optional<RunningAnimation> replaced;
  if (!key.empty()) {
    auto it = std::find_if(animations_.begin(), animations_.end(), [&](auto& e) { return e.key == key; });
    if (it != animations_.end()) {
      replaced = std::move(*it);
      animations_.erase(it);
    }
  }
  animations_.push_back({std::string(key), std::make_unique<ZelBasicAnimation>(animation), currentTime(), false});
  markContentsChanged();
  registerWithClock();
  if (host()) reportAreaToHost(CGRectUnion(before, presentationExtentInHost()));
  if (replaced && !replaced->reported && replaced->animation->completion())
    replaced->animation->completion()(false);
}

void ZelLayer::removeAnimationForKey(std::string_view key) {
  auto it = std::find_if(animations_.begin(), animations_.end(), [&](auto& e) { return e.key == key; });
  if (it == animations_.end()) return;
  CGRect before = areaBeforeChange();
  RunningAnimation removed = std::move(*it);
  animations_.erase(it);
  contentChanged(before);
  if (!removed.reported && removed.animation->completion()) removed.animation->completion()(false);
}

void ZelLayer::removeAllAnimations() {
  if (animations_.empty()) return;
  CGRect before = areaBeforeChange();
  std::vector<RunningAnimation> removed = std::move(animations_);
  animations_.clear();
  contentChanged(before);
  for (RunningAnimation& e : removed)
    if (!e.reported && e.animation->completion()) e.animation->completion()(false);
}

const ZelBasicAnimation* ZelLayer::animationForKey(std::string_view key) const {
  for (const RunningAnimation& e : animations_)
    if (!e.key.empty() && e.key == key) return e.animation.get();
  return nullptr;
}

std::vector<std::string> ZelLayer::animationKeys() const {
  std::vector<std::string> keys;
  for (const RunningAnimation& e : animations_)
    if (!e.key.empty()) keys.push_back(e.key);
  return keys;
}

bool ZelLayer::hasRunningAnimations() const {
  if (animations_.empty()) return false;
  double now = currentTime();
  return std::any_of(animations_.begin(), animations_.end(),
                     [now](auto& e) { return now - e.beginTime < e.animation->activeDuration(); });
}

void ZelLayer::frameClockInvalidate() {
  if (!host()) return;
  CGRect area = presentationExtentInHost();
  reportAreaToHost(CGRectUnion(lastFrameArea_, area));
  lastFrameArea_ = area;
}

bool ZelLayer::frameClockFinishAnimations(double now, std::vector<std::function<void()>>& out) {
  bool running = false;
  for (std::size_t i = 0; i < animations_.size();) {
    RunningAnimation& e = animations_[i];
    if (now - e.beginTime < e.animation->activeDuration()) {
      running = true;
      ++i;
      continue;
    }
    bool remove = e.animation->isRemovedOnCompletion();
    if (!e.reported && e.animation->completion()) {
      ZelBasicAnimation::Completion c =
          remove ? e.animation->takeCompletion() : e.animation->completion();
      out.push_back([c = std::move(c)] { c(true); });
    }
    e.reported = true;
    if (remove) animations_.erase(animations_.begin() + std::ptrdiff_t(i));
    else ++i;
  }
  if (!running) clock_ = nullptr;  // the clock drops this layer
  return running;
}

// ---- Presentation.

ZelAnimationValue ZelLayer::presentationValue(ZelAnimatedProperty property, const ZelAnimationValue& model) const {
  if (animations_.empty()) return model;
  double now = currentTime();
  ZelAnimationValue value = model;
  for (const RunningAnimation& e : animations_)
    if (e.animation->property() == property) value = e.animation->valueAt(now - e.beginTime, value);
  return value;
}

double ZelLayer::presentationDouble(ZelAnimatedProperty property, double model) const {
  ZelAnimationValue v = presentationValue(property, model);
  return std::holds_alternative<double>(v) ? std::get<double>(v) : model;
}

double ZelLayer::presentationOpacity() const { return presentationDouble(ZelAnimatedProperty::Opacity, opacity_); }

ZelColor ZelLayer::presentationBackgroundColor() const {
  ZelAnimationValue v = presentationValue(ZelAnimatedProperty::BackgroundColor, background_);
  return std::holds_alternative<ZelColor>(v) ? std::get<ZelColor>(v) : background_;
}

ZelAffineTransform ZelLayer::presentationTransform() const {
  if (animations_.empty()) return transform_;
  double now = currentTime();
  ZelAnimationValue value = transform_;
  for (const RunningAnimation& e : animations_) {
    double local = now - e.beginTime;
    if (e.animation->property() == ZelAnimatedProperty::Transform) {
      value = e.animation->valueAt(local, value);
    } else if (e.animation->property() == ZelAnimatedProperty::TransformScale && e.animation->fractionAt(local)) {
      const ZelAffineTransform& t = std::get<ZelAffineTransform>(value);
      ZelAnimationValue scale = e.animation->valueAt(local, t.a);
      if (std::holds_alternative<double>(scale)) value = withScale(t, std::get<double>(scale));
    }
  }
  return std::get<ZelAffineTransform>(value);
}

ZelAffineTransform ZelLayer::presentationGeometry() const { return geometryFor(frame_, presentationTransform()); }

ZelAffineTransform ZelLayer::modelGeometry() const { return geometryFor(frame_, transform_); }

CGRect ZelLayer::contentExtent() const { return bounds(); }

int ZelLayer::contentDrawCount() const { return 0; }

CGRect ZelLayer::localExtent() const {
  CGRect area = CGRectUnion(bounds(), contentExtent());
  if (masksToBounds_) return bounds();
  for (const auto& sub : sublayers_) area = CGRectUnion(area, sub->presentationExtent());
  return area;
}

CGRect ZelLayer::presentationExtent() const {
  if (hidden_ || presentationOpacity() <= 0) return CGRectNull;
  return presentationGeometry().apply(localExtent());
}

CGRect ZelLayer::presentationExtentInHost() const {
  CGRect area = presentationExtent();
  for (const ZelLayer* l = superlayer_; l && !CGRectIsNull(area); l = l->superlayer_) {
    if (l->hidden_) return CGRectNull;
    if (l->masksToBounds_) area = CGRectIntersection(area, l->bounds());
    area = l->presentationGeometry().apply(area);
  }
  return area;
}

// ---- Drawing.

void ZelLayer::drawContent(ZelGraphicsContext&) {}

bool ZelLayer::needsGroup(const ContentDrawer& content, const ContentDrawer& overlay) const {
  if (!sublayers_.empty() || content || overlay || drawCallback_) return true;
  int calls = contentDrawCount() + (presentationBackgroundColor().alpha > 0 ? 1 : 0);
  return calls > 1;
}

void ZelLayer::render(ZelGraphicsContext& ctx, const ContentDrawer& content, const ContentDrawer& overlay) {
  if (hidden_) return;
  double opacity = presentationOpacity();
  if (opacity <= 0) return;
  // A host view's content may reach outside the layer; only skip without it.
  if (!content && !overlay) {
    CGRect clip = ctx.clipBoundingBox();
    if (!CGRectIntersectsRect(clip, presentationExtent())) return;  // a null clip shows nothing
  }
  ctx.save();
  ctx.concatTransform(presentationGeometry());
  if (shouldRasterize_) {
    renderRasterized(ctx, content, overlay, opacity);
  } else if (opacity < 1 && needsGroup(content, overlay)) {
    ctx.beginTransparencyGroup();
    renderLayerBody(ctx, content, overlay);
    ctx.endTransparencyGroup(opacity);
  } else {
    if (opacity < 1) ctx.setAlpha(opacity);
    renderLayerBody(ctx, content, overlay);
  }
  ctx.restore();
}

void ZelLayer::drawBackground(ZelGraphicsContext& ctx) {
  ZelColor color = presentationBackgroundColor();
  if (color.alpha <= 0 || CGRectIsEmpty(bounds())) return;
  ctx.setFillColor(color);
  if (cornerRadius_ > 0) ctx.fillPath(ZelPath::roundedRect(bounds(), cornerRadius_));
  else ctx.fillRect(bounds());
}

void ZelLayer::clipToBounds(ZelGraphicsContext& ctx) {
  if (cornerRadius_ > 0) ctx.clipToPath(ZelPath::roundedRect(bounds(), cornerRadius_));
  else ctx.clipToRect(bounds());
}

void ZelLayer::renderLayerBody(ZelGraphicsContext& ctx, const ContentDrawer& content, const ContentDrawer& overlay) {
  drawBackground(ctx);
  if (masksToBounds_) clipToBounds(ctx);
  ctx.save();
  drawContent(ctx);
  ctx.restore();
  if (drawCallback_) {
    ctx.save();
    drawCallback_(*this, ctx);
    ctx.restore();
  }
  if (content) {
    ctx.save();
    content(ctx);
    ctx.restore();
  }
  for (const auto& sub : sublayers_) sub->render(ctx);
  if (overlay) {
    ctx.save();
    overlay(ctx);
    ctx.restore();
  }
}

bool ZelLayer::animatesContent(double now, bool includeOwnGeometry) const {
  for (const RunningAnimation& e : animations_) {
    if (!(now - e.beginTime < e.animation->activeDuration())) continue;
    ZelAnimatedProperty p = e.animation->property();
    bool geometry = p == ZelAnimatedProperty::Opacity || p == ZelAnimatedProperty::Transform ||
                    p == ZelAnimatedProperty::TransformScale;
    if (includeOwnGeometry || !geometry) return true;
  }
  return std::any_of(sublayers_.begin(), sublayers_.end(),
                     [now](const auto& sub) { return sub->animatesContent(now, true); });
}

void ZelLayer::renderRasterized(ZelGraphicsContext& ctx, const ContentDrawer& content, const ContentDrawer& overlay,
                                double opacity) {
  double scale = rasterizationScale_ > 0 ? rasterizationScale_ : 1;
  double w = frame_.size.width, h = frame_.size.height;
  if (w <= 0 || h <= 0) return;
  int pw = std::max(1, int(std::ceil(w * scale - 1e-9)));
  int ph = std::max(1, int(std::ceil(h * scale - 1e-9)));
  bool stale = rasterStale_ || !raster_ || rasterScaleUsed_ != scale || raster_->width() != pw ||
               raster_->height() != ph || animatesContent(currentTime(), false);
  if (stale) {
    std::unique_ptr<ZelBitmapContext> bitmap = ctx.makeBitmapContext(pw, ph, scale);
    if (!bitmap) {  // no offscreen drawing here: draw directly
      if (opacity < 1) ctx.setAlpha(opacity);
      renderLayerBody(ctx, content, overlay);
      return;
    }
    renderLayerBody(*bitmap, content, overlay);
    raster_ = bitmap->makeImage();
    rasterScaleUsed_ = scale;
    rasterStale_ = false;
  }
  if (raster_) ctx.drawImage(*raster_, CGRectMake(0, 0, pw / scale, ph / scale), opacity, magnification_);
}

ZEL_NAMESPACE_END
