// Layers: a tree of lightweight drawing objects with animatable opacity,
// transform and background colour, drawn through ZelGraphicsContext.
//
// Geometry: `frame` is the rectangle the layer occupies in its superlayer's
// coordinates (for a root layer: in its host's coordinates, usually the host
// view's bounds), y up, as it is with an identity transform. The layer draws
// in its own bounds space: (0, 0) to (width, height). `transform` applies
// about the frame's centre (the anchor point is the centre).
//
// Model and presentation: setters change the model value. A standalone layer
// (any layer whose implicit animations are enabled, the default) animates
// changes of opacity, transform and background colour from the shown value
// to the new one over ZelTransaction::animationDuration() (0.25 s) with the
// default timing function, under the keys "opacity", "transform" and
// "backgroundColor", unless a ZelTransaction disables actions. A view's root
// layer turns implicit animations off. Presentation values are computed from
// the animations at the current time of the run loop's clock (currentTime()),
// never from wall time; render() draws the presentation state.
//
// Ownership: a superlayer owns its sublayers (unique_ptr); superlayer() is a
// non-owning back pointer, cleared when the layer is removed. The host of a
// root layer is not owned; the host clears it (setHost(nullptr)) before it
// goes. Threading: the UI thread only.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "toolkit/core/ZelAffineTransform.h"
#include "toolkit/core/ZelAnimation.h"
#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelColor.h"

ZEL_NAMESPACE_BEGIN

class ZelFrameClock;
class ZelLayer;

// Whoever displays a root layer (a view). Layers report through it that an
// area needs to be drawn again, find the frame clock that drives their
// animations, and say when they start animating.
class ZelLayerHost {
 public:
  virtual ~ZelLayerHost() = default;
  // `rect` is in the coordinates the root layer's frame is given in. Called
  // for model changes (setters) and on every frame while a layer animates.
  // The host must not call back into the layer tree from here.
  virtual void layerNeedsDisplayInRect(ZelLayer& rootLayer, const CGRect& rect) = 0;
  // The frame clock of the host's window, or nullptr while it has none. When
  // the answer changes (the view moves into or out of a window) the host
  // calls rootLayer.hostFrameClockDidChange().
  virtual ZelFrameClock* layerFrameClock() = 0;
  // A layer of the tree got an animation (it has already registered itself
  // with layerFrameClock()). Informational.
  virtual void layerDidStartAnimating(ZelLayer&) {}
};

class ZelLayer {
 public:
  // Custom content, drawn in bounds space after the background and before
  // the sublayers (the layer's delegate drawing, in platform terms).
  using DrawCallback = std::function<void(ZelLayer& layer, ZelGraphicsContext& ctx)>;
  // A host view's own content, drawn like a DrawCallback (see render()).
  using ContentDrawer = std::function<void(ZelGraphicsContext& ctx)>;

  ZelLayer();
  virtual ~ZelLayer();
  ZelLayer(const ZelLayer&) = delete;
  ZelLayer& operator=(const ZelLayer&) = delete;

  // ---- Geometry and appearance (model values).
  const CGRect& frame() const { return frame_; }
  void setFrame(const CGRect& frame);
  CGRect bounds() const { return {{0, 0}, frame_.size}; }
  const ZelColor& backgroundColor() const { return background_; }  // clear by default
  void setBackgroundColor(const ZelColor& c);
  double cornerRadius() const { return cornerRadius_; }  // rounds the background and the mask
  void setCornerRadius(double r);
  double opacity() const { return opacity_; }  // 1 by default; applies to the whole subtree
  virtual void setOpacity(double opacity);
  bool isHidden() const { return hidden_; }  // a hidden layer and its subtree are not drawn
  void setHidden(bool hidden);
  const ZelAffineTransform& transform() const { return transform_; }
  void setTransform(const ZelAffineTransform& t);
  bool masksToBounds() const { return masksToBounds_; }  // clips the sublayers to the (rounded) bounds
  void setMasksToBounds(bool on);
  // Rasterization: when on, the layer's content and sublayers are rendered
  // into a bitmap of ceil(size × rasterizationScale) pixels, cached until
  // something in the subtree or the scale changes, and drawn back scaled to
  // the bounds with magnificationFilter (a real resample: at 0.15 the
  // picture is coarse). Opacity and transform apply to the cached picture.
  bool shouldRasterize() const { return shouldRasterize_; }
  void setShouldRasterize(bool on);
  double rasterizationScale() const { return rasterizationScale_; }  // pixels per point, 1 by default
  void setRasterizationScale(double scale);
  ZelImageFilter magnificationFilter() const { return magnification_; }  // Linear by default
  void setMagnificationFilter(ZelImageFilter f);
  // Pixels per point the content is meant for. Drawing here is vector at
  // the device's scale, so this is kept for the callers that set it.
  double contentsScale() const { return contentsScale_; }
  void setContentsScale(double scale) { contentsScale_ = scale; }
  void setDrawCallback(DrawCallback callback);
  // The layer's content must be drawn again: marks rasterized copies above
  // (and this one) stale and reports the layer's area to the host.
  void setNeedsDisplay();
  // Only marks rasterized copies stale (this layer's and its ancestors'),
  // without telling the host: for a host view whose own content changed.
  void markContentsChanged();

  // ---- Tree.
  // Adds at the top (drawn last); returns the layer, still owned by this one.
  ZelLayer* addSublayer(std::unique_ptr<ZelLayer> layer);
  // index 0 is the bottom; an index past the end adds at the top.
  ZelLayer* insertSublayer(std::unique_ptr<ZelLayer> layer, std::size_t index);
  // Detaches this layer from its superlayer and hands it to the caller
  // (nullptr when it has none). Its animations stay; they stop being driven
  // until it joins a hosted tree again.
  std::unique_ptr<ZelLayer> removeFromSuperlayer();
  const std::vector<std::unique_ptr<ZelLayer>>& sublayers() const { return sublayers_; }
  ZelLayer* superlayer() const { return superlayer_; }
  ZelLayer& rootLayer();

  // ---- Hosting (root layers only).
  void setHost(ZelLayerHost* host);
  ZelLayerHost* ownHost() const { return host_; }
  // The host of this tree (the root layer's), or nullptr.
  ZelLayerHost* host() const;
  // The host's frame clock changed: re-register the tree's animating layers.
  void hostFrameClockDidChange();
  // Off for a view's root layer: its setters then never animate implicitly.
  bool implicitAnimationsEnabled() const { return implicitAnimations_; }
  void setImplicitAnimationsEnabled(bool on) { implicitAnimations_ = on; }

  // ---- Animations.
  // Copies `animation` and starts it now (begin time = currentTime()). An
  // animation already under the same non-empty key is removed first and its
  // completion called with finished = false.
  void addAnimation(const ZelBasicAnimation& animation, std::string_view key);
  // Removes it and calls its completion with finished = false (unless it had
  // already finished and reported so).
  void removeAnimationForKey(std::string_view key);
  void removeAllAnimations();
  const ZelBasicAnimation* animationForKey(std::string_view key) const;
  std::vector<std::string> animationKeys() const;  // in the order added, non-empty keys
  // Whether an animation of this layer has not yet reached its end.
  bool hasRunningAnimations() const;
  // Seconds on the run loop's clock: the host's frame clock's, else the
  // current thread's run loop's, else 0.
  double currentTime() const;

  // ---- Presentation values at currentTime().
  double presentationOpacity() const;
  ZelAffineTransform presentationTransform() const;
  ZelColor presentationBackgroundColor() const;

  // ---- Drawing.
  // Draws the presentation state of the layer and its subtree into `ctx`,
  // whose user space is the superlayer's (or host's) coordinate space.
  // `content`, when given, is drawn in bounds space after the layer's own
  // content and before its sublayers (a host view's drawRect); `overlay`
  // after the sublayers, still under the layer's transform, opacity, mask
  // and raster (a host view's subviews).
  void render(ZelGraphicsContext& ctx, const ContentDrawer& content = {}, const ContentDrawer& overlay = {});
  // Maps bounds space to the superlayer's space with the presentation (or
  // the model) transform.
  ZelAffineTransform presentationGeometry() const;
  ZelAffineTransform modelGeometry() const;
  // The area the subtree may draw on, in the superlayer's space, with the
  // presentation state (empty when hidden or fully transparent).
  CGRect presentationExtent() const;
  // The same, mapped to the host's (root layer's superlayer's) coordinates.
  CGRect presentationExtentInHost() const;

  // ---- Frame clock protocol (called by ZelFrameClock).
  // Reports the area of the previous frame and of this one to the host.
  void frameClockInvalidate();
  // Removes or marks finished animations at `now`, queuing their
  // completions into `out`; returns whether animations are still running.
  bool frameClockFinishAnimations(double now, std::vector<std::function<void()>>& out);
  void frameClockWillDisappear() { clock_ = nullptr; }

 protected:
  // Subclasses draw their own content in bounds space (after the background).
  virtual void drawContent(ZelGraphicsContext& ctx);
  // The area the layer's own content may draw on, in bounds space.
  virtual CGRect contentExtent() const;
  // How many drawing calls drawContent makes (0, 1 or 2): with more than one
  // call (counting the background), a partial opacity needs a group.
  virtual int contentDrawCount() const;
  // The presentation value of a subclass's animatable double property.
  double presentationDouble(ZelAnimatedProperty property, double model) const;
  // Model changes of the content: take the area before the change, change,
  // then report both areas to the host and mark rasterized copies stale.
  CGRect areaBeforeChange() const;
  void contentChanged(const CGRect& before);
  // The setter of a content property: stores `value` into `field` and
  // reports the change; nothing when they are already equal.
  template <class T, class V>
  void changeContent(T& field, V&& value) {
    if (value == field) return;
    CGRect before = areaBeforeChange();
    field = std::forward<V>(value);
    contentChanged(before);
  }
  // Starts an implicit animation under `key` when allowed and the value
  // changes (`from` is the shown value).
  void implicitlyAnimate(std::string_view key, const ZelAnimationValue& from, const ZelAnimationValue& to);

 private:
  struct RunningAnimation {
    std::string key;
    std::unique_ptr<ZelBasicAnimation> animation;
    double beginTime = 0;
    bool reported = false;  // completion called (kept when not removed on completion)
  };

  ZelAnimationValue presentationValue(ZelAnimatedProperty property, const ZelAnimationValue& model) const;
  void geometryChanged(const CGRect& before);
  CGRect localExtent() const;
  bool needsGroup(const ContentDrawer& content, const ContentDrawer& overlay) const;
  void renderLayerBody(ZelGraphicsContext& ctx, const ContentDrawer& content, const ContentDrawer& overlay);
  void renderRasterized(ZelGraphicsContext& ctx, const ContentDrawer& content, const ContentDrawer& overlay,
                        double opacity);
  void drawBackground(ZelGraphicsContext& ctx);
  void clipToBounds(ZelGraphicsContext& ctx);
  bool animatesContent(double now, bool includeOwnGeometry) const;
  void reportAreaToHost(const CGRect& hostArea);
  void registerWithClock();
  void unregisterTree();
  void registerTree();
  ZelFrameClock* findClock() const;

  CGRect frame_ = CGRectZero;
  ZelColor background_{0, 0, 0, 0};
  double cornerRadius_ = 0;
  double opacity_ = 1;
  bool hidden_ = false;
  ZelAffineTransform transform_;
  bool masksToBounds_ = false;
  bool shouldRasterize_ = false;
  double rasterizationScale_ = 1;
  ZelImageFilter magnification_ = ZelImageFilter::Linear;
  double contentsScale_ = 1;
  bool implicitAnimations_ = true;
  DrawCallback drawCallback_;

  std::vector<std::unique_ptr<ZelLayer>> sublayers_;
  ZelLayer* superlayer_ = nullptr;
  ZelLayerHost* host_ = nullptr;

  std::vector<RunningAnimation> animations_;
  ZelFrameClock* clock_ = nullptr;  // the clock this layer is registered with
  CGRect lastFrameArea_ = CGRectNull;  // host area invalidated at the last tick

  std::shared_ptr<const ZelImage> raster_;
  bool rasterStale_ = true;
  double rasterScaleUsed_ = 0;
};

ZEL_NAMESPACE_END
