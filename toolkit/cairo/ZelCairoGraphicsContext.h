// The cairo implementation of the drawing seam.
//
// The context draws on a cairo_t whose user space is the device's pixels (y
// down, origin at the top left of the area the context covers). It sets up,
// once, the root space the views draw in: points, y up, origin at the bottom
// left. Shadows are rendered by blurring the shape's alpha (cairo has none),
// text goes through the shared ZelCairoText.
//
// Ownership: the context holds a reference on the cairo_t and saves its
// state at construction; the destructor unwinds any unbalanced save or group
// and leaves the cairo_t as it found it. Threading: one thread at a time.
#pragma once

#include <cairo.h>

#include <memory>
#include <vector>

#include "toolkit/cairo/ZelCairoText.h"
#include "toolkit/core/ZelGraphicsContext.h"

ZEL_NAMESPACE_BEGIN

class ZelCairoGraphicsContext : public ZelGraphicsContext {
 public:
  // `heightInPoints`: the height of the drawn area in points (the flip's
  // pivot); `backingScale`: device pixels per point. `text`: the text
  // machinery of the window, shared with the bitmap contexts made from this
  // one; null makes a private one (with the bundle's icon font).
  ZelCairoGraphicsContext(cairo_t* cr, double heightInPoints, double backingScale,
                          std::shared_ptr<ZelCairoText> text = nullptr);
  ~ZelCairoGraphicsContext() override;
  ZelCairoGraphicsContext(const ZelCairoGraphicsContext&) = delete;
  ZelCairoGraphicsContext& operator=(const ZelCairoGraphicsContext&) = delete;

  void save() override;
  void restore() override;
  void concatTransform(const ZelAffineTransform& t) override;
  // The user space relative to the root space (points, y up); the device
  // scale and flip are not part of it.
  ZelAffineTransform currentTransform() const override;
  void clipToRect(CGRect r) override;
  void clipToPath(const ZelPath& p) override;
  CGRect clipBoundingBox() const override;
  // Sets the alpha applied to everything drawn (replacing the previous
  // value, as the platform's contexts do); saved and restored with the state.
  void setAlpha(double alpha) override;
  void setFillColor(ZelColor c) override;
  // The cells are anchored at the origin of the user space in effect when
  // something is filled.
  void setFillPattern(std::shared_ptr<const ZelImage> tile, CGSize cellSize) override;
  void setStrokeColor(ZelColor c) override;
  void setLineWidth(double w) override;
  void setLineDash(double phase, std::span<const double> lengths) override;
  void setLineCap(ZelLineCap cap) override;
  void setLineJoin(ZelLineJoin join) override;
  // The offset and blur are in points of the root space, whatever the
  // current transform (as the platform's shadows are).
  void setShadow(CGSize offset, double blur, ZelColor color) override;
  void clearShadow() override;

  void fillRect(CGRect r) override;
  void fillPath(const ZelPath& p) override;
  void strokePath(const ZelPath& p) override;
  void strokeLineSegment(CGPoint from, CGPoint to) override;
  void fillEllipseInRect(CGRect r) override;
  void drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) override;
  void drawText(std::string_view utf8, const ZelFont& font, CGPoint baseline) override;
  ZelTextMetrics measureText(std::string_view utf8, const ZelFont& font) override;

  // Inside a group the alpha is 1 and there is no shadow; the group is
  // composited with `alpha` times the alpha (and under the shadow) in effect
  // at beginTransparencyGroup.
  void beginTransparencyGroup() override;
  void endTransparencyGroup(double alpha) override;

  double backingScale() const override { return scale_; }
  std::unique_ptr<ZelBitmapContext> makeBitmapContext(int pixelWidth, int pixelHeight, double scale) override;

  cairo_t* cairoContext() const { return cr_; }
  const std::shared_ptr<ZelCairoText>& text() const { return text_; }

 private:
  struct Fill {
    ZelColor color{0, 0, 0, 1};
    std::shared_ptr<const ZelImage> tile;
    CGSize cell;
  };
  struct Shadow {
    bool on = false;
    CGSize offset;
    double blur = 0;
    ZelColor color;
  };
  struct State {
    ZelAffineTransform ctm;
    bool singular = false;  // a non-invertible transform is in effect: nothing draws
    bool group = false;     // pushed by beginTransparencyGroup
    double alpha = 1;
    Fill fill;
    ZelColor stroke{0, 0, 0, 1};
    Shadow shadow;
  };

  State& state() { return states_.back(); }
  const State& state() const { return states_.back(); }
  bool drawsNothing() const { return state().singular || !(state().alpha > 0); }
  // Runs `painter(cairo_t*, alpha)` on the context, first through the
  // shadow when one is set. `userBounds` bounds what it paints in user space
  // (for the shadow).
  template <class Painter>
  void paint(const Painter& painter, CGRect userBounds);
  CGRect userToDevice(CGRect r) const;
  void setFillSource(cairo_t* cr, double alpha) const;
  void fillCurrentPath(cairo_t* cr, double alpha) const;
  void strokeCurrentPath(cairo_t* cr, double alpha) const;
  CGRect pathBounds(const ZelPath& p, bool stroke);
  void popState();

  cairo_t* cr_;
  double scale_;
  std::shared_ptr<ZelCairoText> text_;
  std::vector<State> states_;
};

// A context drawing into an ARGB32 image of its own, transparent at first.
class ZelCairoBitmapContext : public ZelBitmapContext {
 public:
  ZelCairoBitmapContext(int pixelWidth, int pixelHeight, double scale, std::shared_ptr<ZelCairoText> text = nullptr);
  ~ZelCairoBitmapContext() override;

  std::shared_ptr<const ZelImage> makeImage() override;
  cairo_surface_t* surface() const { return surface_; }

  void save() override { context_->save(); }
  void restore() override { context_->restore(); }
  void concatTransform(const ZelAffineTransform& t) override { context_->concatTransform(t); }
  ZelAffineTransform currentTransform() const override { return context_->currentTransform(); }
  void clipToRect(CGRect r) override { context_->clipToRect(r); }
  void clipToPath(const ZelPath& p) override { context_->clipToPath(p); }
  CGRect clipBoundingBox() const override { return context_->clipBoundingBox(); }
  void setAlpha(double a) override { context_->setAlpha(a); }
  void setFillColor(ZelColor c) override { context_->setFillColor(c); }
  void setFillPattern(std::shared_ptr<const ZelImage> tile, CGSize cell) override {
    context_->setFillPattern(std::move(tile), cell);
  }
  void setStrokeColor(ZelColor c) override { context_->setStrokeColor(c); }
  void setLineWidth(double w) override { context_->setLineWidth(w); }
  void setLineDash(double phase, std::span<const double> l) override { context_->setLineDash(phase, l); }
  void setLineCap(ZelLineCap cap) override { context_->setLineCap(cap); }
  void setLineJoin(ZelLineJoin join) override { context_->setLineJoin(join); }
  void setShadow(CGSize offset, double blur, ZelColor c) override { context_->setShadow(offset, blur, c); }
  void clearShadow() override { context_->clearShadow(); }
  void fillRect(CGRect r) override { context_->fillRect(r); }
  void fillPath(const ZelPath& p) override { context_->fillPath(p); }
  void strokePath(const ZelPath& p) override { context_->strokePath(p); }
  void strokeLineSegment(CGPoint a, CGPoint b) override { context_->strokeLineSegment(a, b); }
  void fillEllipseInRect(CGRect r) override { context_->fillEllipseInRect(r); }
  void drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) override {
    context_->drawImage(image, rect, opacity, filter);
  }
  void drawText(std::string_view s, const ZelFont& f, CGPoint p) override { context_->drawText(s, f, p); }
  ZelTextMetrics measureText(std::string_view s, const ZelFont& f) override { return context_->measureText(s, f); }
  void beginTransparencyGroup() override { context_->beginTransparencyGroup(); }
  void endTransparencyGroup(double alpha) override { context_->endTransparencyGroup(alpha); }
  double backingScale() const override { return context_->backingScale(); }
  std::unique_ptr<ZelBitmapContext> makeBitmapContext(int w, int h, double scale) override {
    return context_->makeBitmapContext(w, h, scale);
  }

 private:
  cairo_surface_t* surface_;
  std::unique_ptr<ZelCairoGraphicsContext> context_;
};

ZEL_NAMESPACE_END
