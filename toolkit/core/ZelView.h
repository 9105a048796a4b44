// A rectangle of a window that draws itself and handles events, in a tree.
//
// Geometry: `frame` is in the superview's coordinates, `bounds` is the
// view's own coordinate space (origin 0, 0 unless set; its size is always the
// frame's), y up. A view may have a root layer (wantsLayer / setLayer): its
// transform (about the view's centre), opacity and rasterization apply to
// the view's drawing and its subviews, its background is drawn under the
// content, and when it masks to bounds the content and the subviews are
// clipped to the (rounded) bounds. Without that, subviews may draw outside
// their superview.
//
// Drawing: the window draws each view, where it meets the dirty area, in
// this order: the layer's background, drawRect, the layer's sublayers, the
// subviews in order; the whole composited with the view's alpha. The
// setNeedsDisplay calls add an area (converted to window coordinates through
// every transform and clipped by masking superviews) to the window's dirty
// region.
//
// Events: the window hit-tests mouse-downs and sends the hit view the down,
// the drags and the up (see ZelWindow). The default mouse handlers pass the
// event to the superview; the key and scroll handlers do the same and
// return whether some view handled the event.
//
// Ownership: a view owns its subviews (std::unique_ptr); superview() and
// window() are non-owning back pointers kept up to date by the tree. A view
// owns its root layer. Threading: main thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "toolkit/core/ZelEvent.h"
#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelLayer.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

class ZelAccessible;
class ZelWindow;
class ZelMenu;

class ZelView : private ZelLayerHost {
 public:
  explicit ZelView(CGRect frame = CGRectZero);
  virtual ~ZelView();
  ZelView(const ZelView&) = delete;
  ZelView& operator=(const ZelView&) = delete;

  // ---- Geometry. Changing it redraws the old and the new area.
  CGRect frame() const { return frame_; }
  virtual void setFrame(CGRect frame);
  void setFrameOrigin(CGPoint origin) { setFrame({origin, frame_.size}); }
  void setFrameSize(CGSize size) { setFrame({frame_.origin, size}); }
  CGRect bounds() const { return {boundsOrigin_, frame_.size}; }
  void setBoundsOrigin(CGPoint origin);

  // ---- Tree.
  ZelView* superview() const { return superview_; }
  ZelWindow* window() const { return window_; }
  const std::vector<std::unique_ptr<ZelView>>& subviews() const { return subviews_; }
  // Adds `view` on top of the other subviews (drawn last, hit first) and
  // returns it; it is detached from a previous superview by the caller
  // (removeFromSuperview) beforehand.
  ZelView* addSubview(std::unique_ptr<ZelView> view);
  template <class T>
  T* addSubview(std::unique_ptr<T> view) {
    T* raw = view.get();
    addSubview(std::unique_ptr<ZelView>(std::move(view)));
    return raw;
  }
  // Index 0 is the bottom; an index past the end adds on top.
  ZelView* insertSubview(std::unique_ptr<ZelView> view, std::size_t index);
  // Detaches this view (and its subtree) and hands it to the caller; nullptr
  // when it has no superview (the window's content view is replaced with
  // ZelWindow::setContentView instead).
  std::unique_ptr<ZelView> removeFromSuperview();
  bool isDescendantOf(const ZelView* ancestor) const;  // true for itself
  // Called after the view joined or left a window (window() is current).
  virtual void viewDidMoveToWindow() {}

  // A name for finding views in tests and the scripted driver.
  const std::string& identifier() const { return identifier_; }
  void setIdentifier(std::string id) { identifier_ = std::move(id); }
  // The first view of the subtree (itself included) with that identifier.
  ZelView* viewWithIdentifier(const std::string& id);

  // ---- Visibility.
  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden);
  bool isHiddenOrHasHiddenAncestor() const;
  // The model alpha: what was set, or where a running fade is going.
  double alphaValue() const { return alpha_; }
  // Sets the alpha at once (a running fade stops).
  void setAlphaValue(double alpha);
  // Fades the alpha to `target` over `duration` seconds with ease-out pacing
  // on the window's frame clock; alphaValue() is `target` at once, the drawn
  // value follows. Outside a window the alpha is simply set.
  void animateAlphaValue(double target, double duration = kDefaultFadeDuration);
  static constexpr double kDefaultFadeDuration = 0.25;
  // The alpha drawn now (the fade's current value while fading).
  double presentationAlphaValue() const;
  bool isFadingAlpha() const { return fader_.running; }

  // ---- Layer.
  bool wantsLayer() const { return layer_ != nullptr; }
  // Gives the view a root layer (or drops it). The layer's frame follows
  // the view's bounds; it never animates its own changes implicitly.
  void setWantsLayer(bool wants);
  ZelLayer* layer() const { return layer_.get(); }
  // Installs `layer` as the root layer (nullptr removes it).
  void setLayer(std::unique_ptr<ZelLayer> layer);

  // ---- Drawing.
  // Draws the view's content; `dirtyRect` (bounds coordinates) is the part
  // that needs it. The context's user space is the view's bounds space.
  virtual void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect);
  // The area drawRect may draw on, in bounds coordinates: the bounds, unless
  // a view draws outside them (a label below its control) and says so here.
  virtual CGRect drawingBounds() const { return bounds(); }
  // Marks drawingBounds() for redrawing.
  void setNeedsDisplay() { setNeedsDisplayInRect(drawingBounds()); }
  // `rect` in bounds coordinates.
  void setNeedsDisplayInRect(CGRect rect);
  // Draws this view and its subtree into `ctx`, whose user space is the
  // superview's coordinate space; parts outside the clip are skipped. The
  // window calls this for its content view.
  void render(ZelGraphicsContext& ctx);

  // ---- Coordinates.
  // Maps this view's coordinates to the superview's (with the layer's model
  // transform; presentation=true uses what is drawn now).
  ZelAffineTransform transformToSuperview(bool presentation = false) const;
  // Maps this view's coordinates to the window's.
  ZelAffineTransform transformToWindow(bool presentation = false) const;
  // `view` nullptr means window coordinates. Both views must share a window
  // (or a root) for the result to mean anything.
  CGPoint convertPointFromView(CGPoint point, const ZelView* view) const;
  CGPoint convertPointToView(CGPoint point, const ZelView* view) const;
  CGRect convertRectFromView(CGRect rect, const ZelView* view) const;
  CGRect convertRectToView(CGRect rect, const ZelView* view) const;

  // ---- Hit testing.
  // The deepest visible view under `pointInSuperview` (this view's
  // superview's coordinates): subviews from the top down, then this view;
  // nullptr when the point is outside this view or the view is hidden.
  virtual ZelView* hitTest(CGPoint pointInSuperview);
  // Whether a point (bounds coordinates) is inside the view.
  virtual bool containsPoint(CGPoint point) const { return CGRectContainsPoint(bounds(), point); }

  // ---- Responder.
  virtual bool acceptsFirstResponder() const { return false; }
  virtual bool becomeFirstResponder() { return true; }
  virtual bool resignFirstResponder() { return true; }
  // Whether a click that makes an inactive window key also acts here.
  virtual bool acceptsFirstMouse(const ZelEvent& event) const { (void)event; return false; }

  // Mouse: the defaults pass the event to the superview.
  virtual void mouseDown(const ZelEvent& event);
  virtual void mouseDragged(const ZelEvent& event);
  virtual void mouseUp(const ZelEvent& event);
  // A right mouse-down for which no view offered a menu.
  virtual void rightMouseDown(const ZelEvent& event);
  // The context menu for a right click or Ctrl+click here, or nullptr. The
  // window walks up from the hit view until one offers a menu.
  virtual std::unique_ptr<ZelMenu> menuForEvent(const ZelEvent& event);

  // Keys and wheel: the defaults pass the event to the superview; the result
  // is whether some view handled it.
  virtual bool scrollWheel(const ZelEvent& event);
  virtual bool keyDown(const ZelEvent& event);
  virtual bool keyUp(const ZelEvent& event);
  virtual bool flagsChanged(const ZelEvent& event);
  // Offered every key-down before the first responder sees it. The default
  // offers it to each visible subview in order and stops at the first that
  // handles it.
  virtual bool performKeyEquivalent(const ZelEvent& event);

  // ---- Accessibility: the tree that assistive technology is shown for
  // this view's subtree (owned by the view), or nullptr; a backend uses
  // the first one it meets from the content view down.
  virtual ZelAccessible* accessibilityElement() { return nullptr; }

 private:
  // The fade of the alpha on the frame clock.
  struct AlphaFader final : ZelFrameClockClient {
    ZelView* view = nullptr;
    ZelFrameClock* clock = nullptr;
    bool running = false;
    double from = 1, to = 1, start = 0, duration = 0;
    double valueAt(double now) const;
    void frameClockDidTick(ZelFrameClock& clock, double frameDuration) override;
    void frameClockWillDisappear(ZelFrameClock& clock) override;
  };

  // ZelLayerHost.
  void layerNeedsDisplayInRect(ZelLayer& rootLayer, const CGRect& rect) override;
  ZelFrameClock* layerFrameClock() override;

  friend class ZelWindow;
  ZelAffineTransform hostToSuperview() const;
  ZelAffineTransform localToHost(bool presentation) const;
  void setWindow(ZelWindow* window);
  void stopFade();
  // Adds an area in host coordinates (the root layer's) to the dirty region.
  void invalidateHostRect(CGRect rect);
  // A descendant drew on `rect` (bounds coordinates) and needs it redrawn.
  void invalidateChildArea(CGRect rect);
  // The area the subtree draws on, in superview coordinates (presentation).
  CGRect extentInSuperview() const;
  void invalidateExtent();
  void renderContent(ZelGraphicsContext& ctx);
  void renderSubviews(ZelGraphicsContext& ctx);

  CGRect frame_;
  CGPoint boundsOrigin_;
  ZelView* superview_ = nullptr;
  ZelWindow* window_ = nullptr;
  std::vector<std::unique_ptr<ZelView>> subviews_;
  std::unique_ptr<ZelLayer> layer_;
  bool hidden_ = false;
  double alpha_ = 1;
  AlphaFader fader_;
  std::string identifier_;
};

ZEL_NAMESPACE_END
