// The drawing seam. Views and layers draw through this interface in points
// with y growing upward; a backend (cairo on screen, in an offscreen bitmap,
// or a recording context in tests) implements it. The backend owns the flip
// to its device's y-down pixels and the backing scale.
//
// A context is used on one thread at a time (the UI thread). Graphics state
// (transform, clip, colours, line settings, alpha, shadow) is saved and
// restored as a stack, as the platform's contexts do.
#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "toolkit/core/ZelAffineTransform.h"
#include "toolkit/core/ZelFont.h"
#include "toolkit/core/ZelImage.h"
#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelColor.h"
#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

enum class ZelLineCap { Butt, Round, Square };
enum class ZelLineJoin { Miter, Round, Bevel };
enum class ZelImageFilter { Linear, Nearest };

class ZelBitmapContext;

class ZelGraphicsContext {
 public:
  virtual ~ZelGraphicsContext() = default;

  // ---- State.
  virtual void save() = 0;
  virtual void restore() = 0;
  virtual void concatTransform(const ZelAffineTransform& t) = 0;
  void translate(double dx, double dy) { concatTransform(ZelAffineTransform::translation(dx, dy)); }
  void scale(double sx, double sy) { concatTransform(ZelAffineTransform::scaling(sx, sy)); }
  virtual ZelAffineTransform currentTransform() const = 0;
  virtual void clipToRect(CGRect r) = 0;
  virtual void clipToPath(const ZelPath& p) = 0;
  // The clip's bounding box in user space (points), for skipping work.
  virtual CGRect clipBoundingBox() const = 0;
  // Multiplies the alpha of everything drawn from now on (until restore).
  virtual void setAlpha(double alpha) = 0;
  virtual void setFillColor(ZelColor c) = 0;
  // Fills with `tile` repeated in cells of `cellSize` points, anchored at the
  // user-space origin; the image is scaled to fill one cell.
  virtual void setFillPattern(std::shared_ptr<const ZelImage> tile, CGSize cellSize) = 0;
  virtual void setStrokeColor(ZelColor c) = 0;
  virtual void setLineWidth(double w) = 0;
  virtual void setLineDash(double phase, std::span<const double> lengths) = 0;  // empty: solid
  virtual void setLineCap(ZelLineCap cap) = 0;
  virtual void setLineJoin(ZelLineJoin join) = 0;
  // A shadow under what is drawn next (offset in points, y up; blur radius).
  virtual void setShadow(CGSize offset, double blur, ZelColor color) = 0;
  virtual void clearShadow() = 0;

  // ---- Drawing.
  virtual void fillRect(CGRect r) = 0;
  virtual void fillPath(const ZelPath& p) = 0;
  virtual void strokePath(const ZelPath& p) = 0;
  virtual void strokeLineSegment(CGPoint from, CGPoint to) = 0;
  virtual void fillEllipseInRect(CGRect r) = 0;
  // Draws the whole image scaled into `rect`, upright (row 0 at the top of
  // the rectangle), at `opacity` with source-over compositing.
  virtual void drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) = 0;
  // One line of UTF-8 text, upright, starting at `baseline` (the left end of
  // the baseline), in the current fill colour.
  virtual void drawText(std::string_view utf8, const ZelFont& font, CGPoint baseline) = 0;
  virtual ZelTextMetrics measureText(std::string_view utf8, const ZelFont& font) = 0;

  // Groups: everything drawn between begin and end is composited at once
  // with `alpha` (how a layer's opacity applies to its whole subtree).
  virtual void beginTransparencyGroup() = 0;
  virtual void endTransparencyGroup(double alpha) = 0;

  // Pixels per point of the device (1, 1.5, 2 ...).
  virtual double backingScale() const = 0;
  // A new bitmap context of that size in pixels drawing `scale` pixels per
  // point, with the same text and image machinery (used to rasterize layers).
  virtual std::unique_ptr<ZelBitmapContext> makeBitmapContext(int pixelWidth, int pixelHeight, double scale) = 0;
};

// A context that draws into an image of its own.
class ZelBitmapContext : public ZelGraphicsContext {
 public:
  // The pixels drawn so far, as an image (rows top down).
  virtual std::shared_ptr<const ZelImage> makeImage() = 0;
};

ZEL_NAMESPACE_END
