// Test helpers for the layer tests: a host that records what it is asked to
// redraw, and a tiny software context that really composites pixels
// (axis-aligned rectangles, images with both filters, alpha and groups), so
// opacity and rasterization can be checked on actual pixel values.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelLayer.h"

namespace layertest {

using namespace zel;

struct RecordingHost final : ZelLayerHost {
  explicit RecordingHost(ZelFrameClock* clock) : clock(clock) {}
  void layerNeedsDisplayInRect(ZelLayer&, const CGRect& rect) override { areas.push_back(rect); }
  ZelFrameClock* layerFrameClock() override { return clock; }
  void layerDidStartAnimating(ZelLayer&) override { ++started; }
  CGRect unionOfAreas() const {
    CGRect u = CGRectNull;
    for (const CGRect& r : areas) u = CGRectUnion(u, r);
    return u;
  }
  ZelFrameClock* clock;
  std::vector<CGRect> areas;
  int started = 0;
};

// Premultiplied RGBA in floats; rows stored bottom-up (y up, like user space).
using Pixel = std::array<double, 4>;

class PixelContext final : public ZelBitmapContext {
 public:
  PixelContext(int width, int height, double scale) : w_(width), h_(height), scale_(scale) {
    layers_.push_back(std::vector<Pixel>(size_t(w_) * h_, Pixel{0, 0, 0, 0}));
    states_.push_back(State{});
    states_.back().transform = ZelAffineTransform::scaling(scale, scale);
    states_.back().clip = CGRectMake(0, 0, w_, h_);
  }

  // The pixel at column x, row y counted from the bottom.
  const Pixel& at(int x, int y) const { return layers_.front()[size_t(y) * w_ + x]; }
  int width() const { return w_; }
  int height() const { return h_; }
  int bitmapsMade = 0;

  void save() override { states_.push_back(states_.back()); }
  void restore() override { if (states_.size() > 1) states_.pop_back(); }
  void concatTransform(const ZelAffineTransform& t) override { st().transform = st().transform.after(t); }
  ZelAffineTransform currentTransform() const override { return states_.back().transform; }
  void clipToRect(CGRect r) override { st().clip = CGRectIntersection(st().clip, st().transform.apply(r)); }
  void clipToPath(const ZelPath&) override {}
  CGRect clipBoundingBox() const override { return states_.back().transform.inverted().apply(states_.back().clip); }
  void setAlpha(double alpha) override { st().alpha = alpha; }
  void setFillColor(ZelColor c) override { st().fill = c; }
  void setFillPattern(std::shared_ptr<const ZelImage>, CGSize) override {}
  void setStrokeColor(ZelColor) override {}
  void setLineWidth(double) override {}
  void setLineDash(double, std::span<const double>) override {}
  void setLineCap(ZelLineCap) override {}
  void setLineJoin(ZelLineJoin) override {}
  void setShadow(CGSize, double, ZelColor) override {}
  void clearShadow() override {}

  void fillRect(CGRect r) override {
    const ZelColor& c = st().fill;
    double a = c.alpha * st().alpha;
    forPixelsIn(st().transform.apply(r), [&](int x, int y, double, double) {
      blend(x, y, Pixel{c.red * a, c.green * a, c.blue * a, a});
    });
  }
  void fillPath(const ZelPath&) override {}
  void strokePath(const ZelPath&) override {}
  void strokeLineSegment(CGPoint, CGPoint) override {}
  void fillEllipseInRect(CGRect) override {}
  void drawText(std::string_view, const ZelFont&, CGPoint) override {}
  ZelTextMetrics measureText(std::string_view s, const ZelFont& f) override {
    return {0.6 * f.pointSize * double(s.size()), 0.75 * f.pointSize, 0.25 * f.pointSize};
  }

  void drawImage(const ZelImage& image, CGRect rect, double opacity, ZelImageFilter filter) override {
    CGRect dev = st().transform.apply(rect);
    double a = opacity * st().alpha;
    forPixelsIn(dev, [&](int x, int y, double fx, double fy) {
      // fx, fy: 0 ... 1 across the rectangle, fy from its bottom.
      double u = fx * image.width() - 0.5, v = (1 - fy) * image.height() - 0.5;
      Pixel p = filter == ZelImageFilter::Nearest ? texel(image, int(std::floor(u + 0.5)), int(std::floor(v + 0.5)))
                                                  : bilinear(image, u, v);
      for (double& ch : p) ch *= a;
      blend(x, y, p);
    });
  }

  void beginTransparencyGroup() override {
    layers_.push_back(std::vector<Pixel>(size_t(w_) * h_, Pixel{0, 0, 0, 0}));
    save();
    st().alpha = 1;
  }
  void endTransparencyGroup(double alpha) override {
    restore();
    std::vector<Pixel> group = std::move(layers_.back());
    layers_.pop_back();
    for (int y = 0; y < h_; ++y)
      for (int x = 0; x < w_; ++x) {
        Pixel p = group[size_t(y) * w_ + x];
        for (double& ch : p) ch *= alpha * st().alpha;
        blend(x, y, p);
      }
  }

  double backingScale() const override { return scale_; }
  std::unique_ptr<ZelBitmapContext> makeBitmapContext(int pw, int ph, double scale) override {
    ++bitmapsMade;
    return std::make_unique<PixelContext>(pw, ph, scale);
  }
  std::shared_ptr<const ZelImage> makeImage() override {
    auto image = std::make_shared<ZelImage>(w_, h_);
    for (int y = 0; y < h_; ++y)
      for (int x = 0; x < w_; ++x) {
        const Pixel& p = at(x, y);
        auto byte = [](double v) { return std::uint32_t(std::lround(std::clamp(v, 0.0, 1.0) * 255)); };
        image->setPixel(x, h_ - 1 - y, byte(p[3]) << 24 | byte(p[0]) << 16 | byte(p[1]) << 8 | byte(p[2]));
      }
    return image;
  }

 private:
  struct State {
    ZelAffineTransform transform;
    CGRect clip;
    double alpha = 1;
    ZelColor fill;
  };
  State& st() { return states_.back(); }
  const State& st() const { return states_.back(); }

  // Calls f for every pixel whose centre lies in `dev` (and in the clip).
  template <class F>
  void forPixelsIn(CGRect dev, F f) {
    CGRect area = CGRectIntersection(dev, st().clip);
    if (CGRectIsNull(area)) return;
    int x0 = std::max(0, int(std::ceil(CGRectGetMinX(area) - 0.5)));
    int x1 = std::min(w_, int(std::ceil(CGRectGetMaxX(area) - 0.5)));
    int y0 = std::max(0, int(std::ceil(CGRectGetMinY(area) - 0.5)));
    int y1 = std::min(h_, int(std::ceil(CGRectGetMaxY(area) - 0.5)));
    for (int y = y0; y < y1; ++y)
      for (int x = x0; x < x1; ++x)
        f(x, y, (x + 0.5 - dev.origin.x) / dev.size.width, (y + 0.5 - dev.origin.y) / dev.size.height);
  }
  void blend(int x, int y, const Pixel& src) {
    Pixel& dst = layers_.back()[size_t(y) * w_ + x];
    for (int i = 0; i < 4; ++i) dst[i] = src[i] + dst[i] * (1 - src[3]);
  }
  static Pixel texel(const ZelImage& image, int x, int y) {
    x = std::clamp(x, 0, image.width() - 1);
    y = std::clamp(y, 0, image.height() - 1);
    std::uint32_t v = image.pixel(x, y);
    return {((v >> 16) & 255) / 255.0, ((v >> 8) & 255) / 255.0, (v & 255) / 255.0, (v >> 24) / 255.0};
  }
  static Pixel bilinear(const ZelImage& image, double u, double v) {
    int x = int(std::floor(u)), y = int(std::floor(v));
    double fx = u - x, fy = v - y;
    Pixel out{};
    Pixel p00 = texel(image, x, y), p10 = texel(image, x + 1, y), p01 = texel(image, x, y + 1),
          p11 = texel(image, x + 1, y + 1);
    for (int i = 0; i < 4; ++i)
      out[i] = (p00[i] * (1 - fx) + p10[i] * fx) * (1 - fy) + (p01[i] * (1 - fx) + p11[i] * fx) * fy;
    return out;
  }

  int w_, h_;
  double scale_;
  std::vector<std::vector<Pixel>> layers_;  // the picture, then open groups
  std::vector<State> states_;
};

}  // namespace layertest
