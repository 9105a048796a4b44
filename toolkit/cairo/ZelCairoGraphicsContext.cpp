#include "toolkit/cairo/ZelCairoGraphicsContext.h"

#include <algorithm>
#include <cmath>

#include "toolkit/cairo/ZelCairoImage.h"
#include "toolkit/cairo/ZelCairoPath.h"
#include "toolkit/cairo/ZelCairoShadow.h"

ZEL_NAMESPACE_BEGIN

namespace {

double unitClamp(double v) { return std::isfinite(v) ? std::clamp(v, 0.0, 1.0) : 0.0; }

void setColour(cairo_t* cr, const ZelColor& c, double alpha) {
  cairo_set_source_rgba(cr, unitClamp(c.red), unitClamp(c.green), unitClamp(c.blue), unitClamp(c.alpha) * alpha);
}

bool invertible(const ZelAffineTransform& t) {
  double det = t.a * t.d - t.b * t.c;
  return det != 0 && std::isfinite(det) && std::isfinite(t.tx) && std::isfinite(t.ty);
}

cairo_filter_t cairoFilter(ZelImageFilter f) {
  return f == ZelImageFilter::Nearest ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD;
}

// Line settings live on the window's cairo_t; a shadow mask needs them too.
void copyLineSettings(cairo_t* from, cairo_t* to) {
  cairo_set_line_width(to, cairo_get_line_width(from));
  cairo_set_line_cap(to, cairo_get_line_cap(from));
  cairo_set_line_join(to, cairo_get_line_join(from));
  cairo_set_miter_limit(to, cairo_get_miter_limit(from));
  int count = cairo_get_dash_count(from);
  std::vector<double> dashes(count);
  double offset = 0;
  if (count > 0) cairo_get_dash(from, dashes.data(), &offset);
  cairo_set_dash(to, dashes.data(), count, offset);
}

// Paints cr's current source through cr's current path, at `alpha`.
void fillWithAlpha(cairo_t* cr, double alpha) {
  if (alpha >= 1) {
    cairo_fill(cr);
    return;
  }
  cairo_save(cr);
  cairo_clip(cr);
  cairo_paint_with_alpha(cr, alpha);
  cairo_restore(cr);
}

}  // namespace

ZelCairoGraphicsContext::ZelCairoGraphicsContext(cairo_t* cr, double heightInPoints, double backingScale,
                                                 std::shared_ptr<ZelCairoText> text)
    : cr_(cairo_reference(cr)),
      scale_(backingScale > 0 && std::isfinite(backingScale) ? backingScale : 1),
      text_(text ? std::move(text) : std::make_shared<ZelCairoText>()) {
  cairo_save(cr_);
  cairo_scale(cr_, scale_, scale_);
  cairo_translate(cr_, 0, heightInPoints);
  cairo_scale(cr_, 1, -1);
  cairo_set_operator(cr_, CAIRO_OPERATOR_OVER);
  cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
  cairo_set_line_width(cr_, 1);
  cairo_set_line_cap(cr_, CAIRO_LINE_CAP_BUTT);
  cairo_set_line_join(cr_, CAIRO_LINE_JOIN_MITER);
  cairo_set_miter_limit(cr_, 10);
  cairo_set_dash(cr_, nullptr, 0, 0);
  cairo_new_path(cr_);
  states_.emplace_back();
}

ZelCairoGraphicsContext::~ZelCairoGraphicsContext() {
  while (states_.size() > 1) {
    if (state().group) endTransparencyGroup(1);
    else restore();
  }
  cairo_restore(cr_);
  cairo_destroy(cr_);
}

// ---- State.

void ZelCairoGraphicsContext::save() {
  State s = state();
  s.group = false;
  states_.push_back(std::move(s));
  cairo_save(cr_);
}

void ZelCairoGraphicsContext::restore() {
  if (states_.size() <= 1 || state().group) return;  // unbalanced: a restore cannot close a group
  popState();
}

void ZelCairoGraphicsContext::popState() {
  states_.pop_back();
  cairo_restore(cr_);
}

void ZelCairoGraphicsContext::concatTransform(const ZelAffineTransform& t) {
  State& s = state();
  s.ctm = s.ctm.after(t);
  if (s.singular) return;
  if (!invertible(t)) {
    s.singular = true;  // cairo cannot hold it; nothing draws until restore
    return;
  }
  cairo_matrix_t m;
  cairo_matrix_init(&m, t.a, t.b, t.c, t.d, t.tx, t.ty);
  cairo_transform(cr_, &m);
}

ZelAffineTransform ZelCairoGraphicsContext::currentTransform() const { return state().ctm; }

void ZelCairoGraphicsContext::clipToRect(CGRect r) {
  if (state().singular) return;
  r = CGRectIsNull(r) ? CGRectZero : CGRectStandardize(r);
  cairo_new_path(cr_);
  cairo_rectangle(cr_, r.origin.x, r.origin.y, r.size.width, r.size.height);
  cairo_clip(cr_);
}

void ZelCairoGraphicsContext::clipToPath(const ZelPath& p) {
  if (state().singular) return;
  cairo_new_path(cr_);
  ZelCairoAppendPath(cr_, p);
  cairo_clip(cr_);
}

CGRect ZelCairoGraphicsContext::clipBoundingBox() const {
  if (state().singular) return CGRectNull;
  double x0, y0, x1, y1;
  cairo_clip_extents(cr_, &x0, &y0, &x1, &y1);
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

void ZelCairoGraphicsContext::setAlpha(double alpha) { state().alpha = unitClamp(alpha); }

void ZelCairoGraphicsContext::setFillColor(ZelColor c) {
  state().fill.color = c;
  state().fill.tile.reset();
}

void ZelCairoGraphicsContext::setFillPattern(std::shared_ptr<const ZelImage> tile, CGSize cellSize) {
  state().fill.tile = std::move(tile);
  state().fill.cell = cellSize;
  state().fill.color = ZelColor{0, 0, 0, 0};
}

void ZelCairoGraphicsContext::setStrokeColor(ZelColor c) { state().stroke = c; }

void ZelCairoGraphicsContext::setLineWidth(double w) {
  cairo_set_line_width(cr_, std::isfinite(w) ? std::max(w, 0.0) : 1.0);
}

void ZelCairoGraphicsContext::setLineDash(double phase, std::span<const double> lengths) {
  double sum = 0;
  bool valid = true;
  for (double l : lengths) {
    valid = valid && std::isfinite(l) && l >= 0;
    sum += l;
  }
  if (lengths.empty() || !valid || !(sum > 0)) {
    cairo_set_dash(cr_, nullptr, 0, 0);
    return;
  }
  cairo_set_dash(cr_, lengths.data(), static_cast<int>(lengths.size()), std::isfinite(phase) ? phase : 0);
}

void ZelCairoGraphicsContext::setLineCap(ZelLineCap cap) {
  cairo_set_line_cap(cr_, cap == ZelLineCap::Round    ? CAIRO_LINE_CAP_ROUND
                          : cap == ZelLineCap::Square ? CAIRO_LINE_CAP_SQUARE
                                                      : CAIRO_LINE_CAP_BUTT);
}

void ZelCairoGraphicsContext::setLineJoin(ZelLineJoin join) {
  cairo_set_line_join(cr_, join == ZelLineJoin::Round   ? CAIRO_LINE_JOIN_ROUND
                           : join == ZelLineJoin::Bevel ? CAIRO_LINE_JOIN_BEVEL
                                                        : CAIRO_LINE_JOIN_MITER);
}

void ZelCairoGraphicsContext::setShadow(CGSize offset, double blur, ZelColor color) {
  state().shadow = Shadow{true, offset, std::isfinite(blur) ? std::max(blur, 0.0) : 0.0, color};
}

void ZelCairoGraphicsContext::clearShadow() { state().shadow = Shadow{}; }

// ---- Sources and painting.

void ZelCairoGraphicsContext::setFillSource(cairo_t* cr, double alpha) const {
  const Fill& f = state().fill;
  if (!f.tile) {
    setColour(cr, f.color, alpha);
    return;
  }
  const int w = f.tile->width(), h = f.tile->height();
  if (w <= 0 || h <= 0 || !(f.cell.width > 0) || !(f.cell.height > 0)) {
    cairo_set_source_rgba(cr, 0, 0, 0, 0);
    return;
  }
  cairo_pattern_t* pattern = cairo_pattern_create_for_surface(ZelCairoSurfaceForImage(*f.tile));
  cairo_pattern_set_extend(pattern, CAIRO_EXTEND_REPEAT);
  cairo_pattern_set_filter(pattern, CAIRO_FILTER_GOOD);
  // User space → tile pixels: the cell (0, 0, cell) with the tile's top row at its top.
  cairo_matrix_t m;
  cairo_matrix_init(&m, w / f.cell.width, 0, 0, -h / f.cell.height, 0, h);
  cairo_pattern_set_matrix(pattern, &m);
  cairo_set_source(cr, pattern);
  cairo_pattern_destroy(pattern);
}

void ZelCairoGraphicsContext::fillCurrentPath(cairo_t* cr, double alpha) const {
  setFillSource(cr, alpha);
  if (state().fill.tile) {
    fillWithAlpha(cr, alpha);
    cairo_set_source_rgb(cr, 0, 0, 0);  // drop the tile's surface
  } else {
    cairo_fill(cr);
  }
}

void ZelCairoGraphicsContext::strokeCurrentPath(cairo_t* cr, double alpha) const {
  if (cr != cr_) copyLineSettings(cr_, cr);
  setColour(cr, state().stroke, alpha);
  cairo_stroke(cr);
}

CGRect ZelCairoGraphicsContext::userToDevice(CGRect r) const {
  if (CGRectIsNull(r)) return r;
  double xs[4] = {r.origin.x, r.origin.x + r.size.width, r.origin.x, r.origin.x + r.size.width};
  double ys[4] = {r.origin.y, r.origin.y, r.origin.y + r.size.height, r.origin.y + r.size.height};
  CGRect out = CGRectNull;
  for (int i = 0; i < 4; ++i) {
    cairo_user_to_device(cr_, &xs[i], &ys[i]);
    out = CGRectUnion(out, CGRectMake(xs[i], ys[i], 0, 0));
  }
  return out;
}

CGRect ZelCairoGraphicsContext::pathBounds(const ZelPath& p, bool stroke) {
  cairo_new_path(cr_);
  ZelCairoAppendPath(cr_, p);
  double x0, y0, x1, y1;
  if (stroke) cairo_stroke_extents(cr_, &x0, &y0, &x1, &y1);
  else cairo_path_extents(cr_, &x0, &y0, &x1, &y1);
  cairo_new_path(cr_);
  return CGRectMake(x0, y0, x1 - x0, y1 - y0);
}

template <class Painter>
void ZelCairoGraphicsContext::paint(const Painter& painter, CGRect userBounds) {
  const State& s = state();
  if (s.shadow.on) {
    ZelShadowSpec spec;
    spec.dx = s.shadow.offset.width * scale_;
    spec.dy = -s.shadow.offset.height * scale_;
    spec.blur = s.shadow.blur * scale_;
    spec.color = s.shadow.color.withAlpha(unitClamp(s.shadow.color.alpha) * s.alpha);
    ZelPaintShadow(cr_, spec, userToDevice(userBounds), [&](cairo_t* mask) { painter(mask, 1); });
  }
  painter(cr_, s.alpha);
}

// ---- Drawing.

void ZelCairoGraphicsContext::fillRect(CGRect r) {
  if (drawsNothing() || CGRectIsEmpty(r)) return;
  r = CGRectStandardize(r);
  paint([&](cairo_t* c, double a) {
          cairo_new_path(c);
          cairo_rectangle(c, r.origin.x, r.origin.y, r.size.width, r.size.height);
          fillCurrentPath(c, a);
        },
        r);
}

void ZelCairoGraphicsContext::fillPath(const ZelPath& p) {
  if (drawsNothing() || p.empty()) return;
  CGRect bounds = state().shadow.on ? pathBounds(p, false) : CGRectNull;
  paint([&](cairo_t* c, double a) {
          cairo_new_path(c);
          ZelCairoAppendPath(c, p);
          fillCurrentPath(c, a);
        },
        bounds);
}

void ZelCairoGraphicsContext::strokePath(const ZelPath& p) {
  if (drawsNothing() || p.empty()) return;
  CGRect bounds = state().shadow.on ? pathBounds(p, true) : CGRectNull;
  paint([&](cairo_t* c, double a) {
          cairo_new_path(c);
          ZelCairoAppendPath(c, p);
          strokeCurrentPath(c, a);
        },
        bounds);
}

void ZelCairoGraphicsContext::strokeLineSegment(CGPoint from, CGPoint to) {
  ZelPath p;
  p.moveTo(from);
  p.lineTo(to);
  strokePath(p);
}

void ZelCairoGraphicsContext::fillEllipseInRect(CGRect r) {
  ZelPath p;
  p.addEllipseInRect(r);
  fillPath(p);
}

void ZelCairoGraphicsContext::drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) {
  if (drawsNothing() || CGRectIsEmpty(rect) || image.width() <= 0 || image.height() <= 0) return;
  rect = CGRectStandardize(rect);
  cairo_surface_t* surface = ZelCairoSurfaceForImage(image);
  const double sx = image.width() / rect.size.width, sy = image.height() / rect.size.height;
  paint([&](cairo_t* c, double a) {
          cairo_pattern_t* pattern = cairo_pattern_create_for_surface(surface);
          // User space → image pixels, row 0 at the top of the rectangle.
          cairo_matrix_t m;
          cairo_matrix_init(&m, sx, 0, 0, -sy, -rect.origin.x * sx, (rect.origin.y + rect.size.height) * sy);
          cairo_pattern_set_matrix(pattern, &m);
          cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
          cairo_pattern_set_filter(pattern, cairoFilter(filter));
          cairo_set_source(c, pattern);
          cairo_pattern_destroy(pattern);
          cairo_new_path(c);
          cairo_rectangle(c, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
          fillWithAlpha(c, a * unitClamp(opacity));
          cairo_set_source_rgb(c, 0, 0, 0);
        },
        rect);
}

void ZelCairoGraphicsContext::drawText(std::string_view utf8, const ZelFont& font, CGPoint baseline) {
  if (drawsNothing() || utf8.empty() || !(font.pointSize > 0)) return;
  CGRect bounds = CGRectNull;
  if (state().shadow.on) {
    CGRect ink = text_->inkBounds(utf8, font);
    bounds = CGRectInset(CGRectMake(baseline.x + ink.origin.x, baseline.y - ink.origin.y - ink.size.height,
                                    ink.size.width, ink.size.height), -1, -1);
  }
  const bool tiled = state().fill.tile != nullptr;
  paint([&](cairo_t* c, double a) {
          if (tiled && a < 1) cairo_push_group(c);
          setFillSource(c, tiled ? 1 : a);
          cairo_save(c);
          cairo_translate(c, baseline.x, baseline.y);
          cairo_scale(c, 1, -1);
          text_->show(c, utf8, font);
          cairo_restore(c);
          if (tiled && a < 1) {
            cairo_pop_group_to_source(c);
            cairo_paint_with_alpha(c, a);
          }
          cairo_set_source_rgb(c, 0, 0, 0);
        },
        bounds);
}

ZelTextMetrics ZelCairoGraphicsContext::measureText(std::string_view utf8, const ZelFont& font) {
  return text_->measure(utf8, font);
}

// ---- Groups.

void ZelCairoGraphicsContext::beginTransparencyGroup() {
  State s = state();
  s.group = true;
  s.alpha = 1;
  s.shadow = Shadow{};
  // An outer state that draws nothing needs no group surface.
  s.singular = drawsNothing() || CGRectIsEmpty(clipBoundingBox());
  states_.push_back(std::move(s));
  if (state().singular) cairo_save(cr_);
  else cairo_push_group(cr_);
}

void ZelCairoGraphicsContext::endTransparencyGroup(double alpha) {
  while (states_.size() > 1 && !state().group) popState();  // saves left open inside the group
  if (states_.size() <= 1) return;
  const bool skipped = state().singular;
  states_.pop_back();
  if (skipped) {
    cairo_restore(cr_);
    return;
  }
  cairo_pattern_t* group = cairo_pop_group(cr_);
  if (!drawsNothing()) {
    CGRect bounds = state().shadow.on ? clipBoundingBox() : CGRectNull;
    paint([&](cairo_t* c, double a) {
            cairo_set_source(c, group);
            cairo_paint_with_alpha(c, a * unitClamp(alpha));
            cairo_set_source_rgb(c, 0, 0, 0);
          },
          bounds);
  }
  cairo_pattern_destroy(group);
}

std::unique_ptr<ZelBitmapContext> ZelCairoGraphicsContext::makeBitmapContext(int pixelWidth, int pixelHeight,
                                                                             double scale) {
  return std::make_unique<ZelCairoBitmapContext>(pixelWidth, pixelHeight, scale, text_);
}

// ---- Bitmap context.

ZelCairoBitmapContext::ZelCairoBitmapContext(int pixelWidth, int pixelHeight, double scale,
                                             std::shared_ptr<ZelCairoText> text)
    : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, std::max(pixelWidth, 0), std::max(pixelHeight, 0))) {
  if (!(scale > 0) || !std::isfinite(scale)) scale = 1;
  cairo_t* cr = cairo_create(surface_);
  context_ = std::make_unique<ZelCairoGraphicsContext>(cr, std::max(pixelHeight, 0) / scale, scale, std::move(text));
  cairo_destroy(cr);
}

ZelCairoBitmapContext::~ZelCairoBitmapContext() {
  context_.reset();
  cairo_surface_destroy(surface_);
}

std::shared_ptr<const ZelImage> ZelCairoBitmapContext::makeImage() { return ZelImageFromCairoSurface(surface_); }

ZEL_NAMESPACE_END
