#include "toolkit/core/ZelRecordingGraphicsContext.h"

#include <cmath>


ZEL_NAMESPACE_BEGIN

namespace {

std::size_t codePointCount(std::string_view utf8) {
  std::size_t n = 0;
  for (char c : utf8) {
    if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
  }
  return n;
}

}  // namespace

ZelRecordingGraphicsContext::ZelRecordingGraphicsContext(CGRect bounds, double backingScale)
    : scale_(backingScale) {
  State root;
  root.clip = bounds;
  stack_.push_back(root);
}

std::vector<ZelRecordedCall> ZelRecordingGraphicsContext::drawingCalls() const {
  std::vector<ZelRecordedCall> out;
  for (const ZelRecordedCall& c : calls_) {
    if (c.isDrawing()) out.push_back(c);
  }
  return out;
}

std::size_t ZelRecordingGraphicsContext::count(ZelRecordedCall::Kind kind) const {
  std::size_t n = 0;
  for (const ZelRecordedCall& c : calls_) n += c.kind == kind;
  return n;
}

std::size_t ZelRecordingGraphicsContext::visibleDrawingCount() const {
  std::size_t n = 0;
  for (const ZelRecordedCall& c : calls_) n += c.isDrawing() && !CGRectIsEmpty(c.visibleRect());
  return n;
}

CGRect ZelRecordingGraphicsContext::visibleBounds() const {
  CGRect u = CGRectNull;
  for (const ZelRecordedCall& c : calls_) {
    if (c.isDrawing() && !CGRectIsEmpty(c.visibleRect())) u = CGRectUnion(u, c.visibleRect());
  }
  return u;
}

std::vector<std::string> ZelRecordingGraphicsContext::texts() const {
  std::vector<std::string> out;
  for (const ZelRecordedCall& c : calls_) {
    if (c.kind == ZelRecordedCall::Kind::DrawText) out.push_back(c.text);
  }
  return out;
}

void ZelRecordingGraphicsContext::save() { stack_.push_back(state()); }

void ZelRecordingGraphicsContext::restore() {
  if (stack_.size() > 1) stack_.pop_back();
}

void ZelRecordingGraphicsContext::concatTransform(const ZelAffineTransform& t) {
  state().transform = state().transform.after(t);
}

void ZelRecordingGraphicsContext::clipToRect(CGRect r) {
  state().clip = CGRectIntersection(state().clip, state().transform.apply(CGRectStandardize(r)));
}

void ZelRecordingGraphicsContext::clipToPath(const ZelPath& p) { clipToRect(p.boundingBox()); }

CGRect ZelRecordingGraphicsContext::clipBoundingBox() const {
  if (CGRectIsNull(state().clip)) return CGRectNull;
  return state().transform.inverted().apply(state().clip);
}

void ZelRecordingGraphicsContext::setFillColor(ZelColor c) {
  state().fill = c;
  state().pattern = false;
}

void ZelRecordingGraphicsContext::setFillPattern(std::shared_ptr<const ZelImage> tile, CGSize cellSize) {
  (void)tile;
  (void)cellSize;
  state().pattern = true;
}

void ZelRecordingGraphicsContext::setLineDash(double phase, std::span<const double> lengths) {
  (void)phase;
  (void)lengths;
}

void ZelRecordingGraphicsContext::setShadow(CGSize offset, double blur, ZelColor color) {
  (void)offset;
  (void)blur;
  (void)color;
  state().shadow = true;
}

void ZelRecordingGraphicsContext::record(ZelRecordedCall::Kind kind, CGRect userRect) {
  ZelRecordedCall c;
  c.kind = kind;
  c.rect = userRect;
  c.rootRect = CGRectIsNull(userRect) ? userRect : state().transform.apply(userRect);
  c.clip = state().clip;
  c.fillColor = state().fill;
  c.fillIsPattern = state().pattern;
  c.strokeColor = state().stroke;
  c.lineWidth = state().lineWidth;
  c.alpha = state().alpha;
  c.groupDepth = groupDepth_;
  c.hasShadow = state().shadow;
  calls_.push_back(std::move(c));
}

void ZelRecordingGraphicsContext::fillRect(CGRect r) { record(ZelRecordedCall::Kind::FillRect, CGRectStandardize(r)); }

void ZelRecordingGraphicsContext::fillPath(const ZelPath& p) {
  record(ZelRecordedCall::Kind::FillPath, p.boundingBox());
}

void ZelRecordingGraphicsContext::strokePath(const ZelPath& p) {
  CGRect box = p.boundingBox();
  double half = state().lineWidth / 2;
  record(ZelRecordedCall::Kind::StrokePath, CGRectIsNull(box) ? box : CGRectInset(box, -half, -half));
}

void ZelRecordingGraphicsContext::strokeLineSegment(CGPoint from, CGPoint to) {
  CGRect box = CGRectUnion(CGRect{from, {0, 0}}, CGRect{to, {0, 0}});
  double half = state().lineWidth / 2;
  record(ZelRecordedCall::Kind::StrokeLine, CGRectInset(box, -half, -half));
}

void ZelRecordingGraphicsContext::fillEllipseInRect(CGRect r) {
  record(ZelRecordedCall::Kind::FillEllipse, CGRectStandardize(r));
}

void ZelRecordingGraphicsContext::drawImage(const ZelImage& image, CGRect rect, double opacity,
                                            ZelImageFilter filter) {
  (void)image;
  record(ZelRecordedCall::Kind::DrawImage, CGRectStandardize(rect));
  calls_.back().opacity = opacity;
  calls_.back().filter = filter;
}

void ZelRecordingGraphicsContext::drawText(std::string_view utf8, const ZelFont& font, CGPoint baseline) {
  ZelTextMetrics m = measureText(utf8, font);
  record(ZelRecordedCall::Kind::DrawText,
         CGRectMake(baseline.x, baseline.y - m.descent, m.width, m.ascent + m.descent));
  calls_.back().text = std::string(utf8);
  calls_.back().font = font;
}

ZelTextMetrics ZelRecordingGraphicsContext::measureText(std::string_view utf8, const ZelFont& font) {
  double size = font.pointSize;
  return {0.6 * size * static_cast<double>(codePointCount(utf8)), 0.75 * size, 0.25 * size};
}

void ZelRecordingGraphicsContext::beginTransparencyGroup() {
  record(ZelRecordedCall::Kind::BeginGroup, CGRectNull);
  ++groupDepth_;
}

void ZelRecordingGraphicsContext::endTransparencyGroup(double alpha) {
  if (groupDepth_ > 0) --groupDepth_;
  record(ZelRecordedCall::Kind::EndGroup, CGRectNull);
  calls_.back().groupAlpha = alpha;
}

std::unique_ptr<ZelBitmapContext> ZelRecordingGraphicsContext::makeBitmapContext(int pixelWidth, int pixelHeight,
                                                                                 double scale) {
  double s = scale > 0 ? scale : 1;
  auto ctx = std::make_unique<ZelRecordingGraphicsContext>(CGRectMake(0, 0, pixelWidth / s, pixelHeight / s), s);
  ctx->pixelWidth_ = pixelWidth;
  ctx->pixelHeight_ = pixelHeight;
  return ctx;
}

std::shared_ptr<const ZelImage> ZelRecordingGraphicsContext::makeImage() {
  return std::make_shared<const ZelImage>(pixelWidth_, pixelHeight_);
}

ZEL_NAMESPACE_END
