// A graphics context that draws nothing and remembers every drawing call,
// with its rectangle both in the user space of the call and in the root
// space of the context (points, y up, before any backing scale), and the
// state it was drawn with. Tests use it to assert what a view drew and
// where, without a real backend.
//
// Text is measured deterministically: every code point advances 0.6 × the
// point size; the ascent is 0.75 × and the descent 0.25 × the point size.
//
// Threading: one thread at a time, like every context.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "toolkit/core/ZelGraphicsContext.h"

ZEL_NAMESPACE_BEGIN

struct ZelRecordedCall {
  enum class Kind {
    FillRect,
    FillPath,
    StrokePath,
    StrokeLine,
    FillEllipse,
    DrawImage,
    DrawText,
    BeginGroup,
    EndGroup,
  };
  Kind kind = Kind::FillRect;
  CGRect rect;        // the call's rectangle (a path's or line's bounding box) in user space
  CGRect rootRect;    // the same mapped to the root space
  CGRect clip;        // the clip's bounding box in root space (null: nothing visible)
  ZelColor fillColor;
  ZelColor strokeColor;
  bool fillIsPattern = false;
  double lineWidth = 1;
  double alpha = 1;   // the alpha set on the state (groups excluded)
  double groupAlpha = 1;  // EndGroup: the group's alpha
  int groupDepth = 0;     // how many transparency groups are open around the call
  bool hasShadow = false;
  std::string text;       // DrawText
  ZelFont font;           // DrawText
  double opacity = 1;     // DrawImage
  ZelImageFilter filter = ZelImageFilter::Linear;  // DrawImage

  // The part of rootRect inside the clip (null when clipped away).
  CGRect visibleRect() const { return CGRectIntersection(rootRect, clip); }
  bool isDrawing() const { return kind != Kind::BeginGroup && kind != Kind::EndGroup; }
};

class ZelRecordingGraphicsContext : public ZelBitmapContext {
 public:
  // A context whose root clip is `bounds` (points) at `backingScale`.
  explicit ZelRecordingGraphicsContext(CGRect bounds = CGRectMake(0, 0, 1e6, 1e6), double backingScale = 1);

  const std::vector<ZelRecordedCall>& calls() const { return calls_; }
  void clear() { calls_.clear(); }
  // Drawing calls only (no groups).
  std::vector<ZelRecordedCall> drawingCalls() const;
  std::size_t count(ZelRecordedCall::Kind kind) const;
  // Drawing calls with something visible inside the clip.
  std::size_t visibleDrawingCount() const;
  // The union of the visible rectangles of every drawing call (null if none).
  CGRect visibleBounds() const;
  // The texts drawn, in order.
  std::vector<std::string> texts() const;
  int saveDepth() const { return static_cast<int>(stack_.size()) - 1; }

  // ---- ZelGraphicsContext.
  void save() override;
  void restore() override;
  void concatTransform(const ZelAffineTransform& t) override;
  ZelAffineTransform currentTransform() const override { return state().transform; }
  void clipToRect(CGRect r) override;
  void clipToPath(const ZelPath& p) override;
  CGRect clipBoundingBox() const override;
  void setAlpha(double alpha) override { state().alpha = alpha; }
  void setFillColor(ZelColor c) override;
  void setFillPattern(std::shared_ptr<const ZelImage> tile, CGSize cellSize) override;
  void setStrokeColor(ZelColor c) override { state().stroke = c; }
  void setLineWidth(double w) override { state().lineWidth = w; }
  void setLineDash(double phase, std::span<const double> lengths) override;
  void setLineCap(ZelLineCap cap) override { (void)cap; }
  void setLineJoin(ZelLineJoin join) override { (void)join; }
  void setShadow(CGSize offset, double blur, ZelColor color) override;
  void clearShadow() override { state().shadow = false; }

  void fillRect(CGRect r) override;
  void fillPath(const ZelPath& p) override;
  void strokePath(const ZelPath& p) override;
  void strokeLineSegment(CGPoint from, CGPoint to) override;
  void fillEllipseInRect(CGRect r) override;
  void drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) override;
  void drawText(std::string_view utf8, const ZelFont& font, CGPoint baseline) override;
  ZelTextMetrics measureText(std::string_view utf8, const ZelFont& font) override;

  void beginTransparencyGroup() override;
  void endTransparencyGroup(double alpha) override;

  double backingScale() const override { return scale_; }
  // A recording bitmap context of that pixel size (its root clip is the
  // bitmap's area in points); its image is transparent.
  std::unique_ptr<ZelBitmapContext> makeBitmapContext(int pixelWidth, int pixelHeight, double scale) override;
  std::shared_ptr<const ZelImage> makeImage() override;

 private:
  struct State {
    ZelAffineTransform transform;
    CGRect clip;  // root space
    double alpha = 1;
    ZelColor fill;
    ZelColor stroke;
    bool pattern = false;
    double lineWidth = 1;
    bool shadow = false;
  };
  State& state() { return stack_.back(); }
  const State& state() const { return stack_.back(); }
  void record(ZelRecordedCall::Kind kind, CGRect userRect);

  std::vector<State> stack_;
  std::vector<ZelRecordedCall> calls_;
  double scale_;
  int groupDepth_ = 0;
  int pixelWidth_ = 0, pixelHeight_ = 0;
};

ZEL_NAMESPACE_END
