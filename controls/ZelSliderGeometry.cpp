#include "controls/ZelSliderGeometry.h"

#include <algorithm>
#include <cmath>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kReadoutHeight = 18;
constexpr double kReadoutGap = 6;
constexpr double kHorizontalReadoutWidth = 48;
// Room a cue text needs beside the ticks (vertical) or below them.
constexpr double kCueGap = 3;
constexpr double kCueRoomAcross = 15;
constexpr double kCueRoomBelow = 12;

}  // namespace

ZelSliderStyleMetrics ZelSliderStyleMetrics::forStyle(ZelControlStyle style) {
  switch (style) {
    case ZelControlStyle::Pilled: return {2, 22, 12, 6, 0.5};
    case ZelControlStyle::Filled: return {12, 16, 4, 1, 3};
    case ZelControlStyle::Shadowed: return {4, 22, 12, 3, 6};
    case ZelControlStyle::Default: break;
  }
  return {};
}

ZelSliderGeometry ZelSliderGeometry::make(CGRect bounds, bool horizontal, ZelControlStyle style) {
  ZelSliderGeometry g;
  g.horizontal = horizontal;
  g.metrics = ZelSliderStyleMetrics::forStyle(style);
  g.bounds = bounds;
  g.tickInner = std::max(g.metrics.trackWidth / 2 + 3, 6.0);
  const double w = bounds.size.width, h = bounds.size.height;
  const double ox = bounds.origin.x, oy = bounds.origin.y;
  const double halfKnob = g.metrics.knobLength / 2;
  const double tickOuter = g.tickInner + g.majorTickLength + kCueGap;
  if (!horizontal) {
    g.readout = CGRectMake(ox, oy + h - kReadoutHeight, w, kReadoutHeight);
    double cx = ox + std::round(w / 2);
    double y0 = oy + std::round(halfKnob + 1);
    double y1 = std::max(oy + std::round(h - kReadoutHeight - kReadoutGap - halfKnob), y0 + 1);
    g.start = {cx, y0};
    g.end = {cx, y1};
    g.cueOffset = cx - ox >= tickOuter + kCueRoomAcross ? tickOuter : 0;
  } else {
    double readoutWidth = std::min(kHorizontalReadoutWidth, std::round(w * 0.35));
    // The track with its ticks, and the cue texts under it when they fit,
    // centred together.
    double above = std::max(g.metrics.knobWidth / 2, g.tickInner + g.majorTickLength);
    double below = tickOuter + kCueRoomBelow;
    bool cuesFit = h >= above + below;
    double cy = oy + std::round(cuesFit ? (h - above - below) / 2 + below : h / 2);
    g.readout = CGRectMake(ox + w - readoutWidth, cy - kReadoutHeight / 2, readoutWidth, kReadoutHeight);
    double x0 = ox + std::round(halfKnob + 1);
    double x1 = std::max(ox + std::round(w - readoutWidth - kReadoutGap - halfKnob), x0 + 1);
    g.start = {x0, cy};
    g.end = {x1, cy};
    g.cueOffset = cuesFit ? tickOuter : 0;
  }
  return g;
}

double ZelSliderGeometry::trackLength() const {
  return horizontal ? end.x - start.x : end.y - start.y;
}

CGPoint ZelSliderGeometry::pointAt(double position) const {
  return {start.x + (end.x - start.x) * position, start.y + (end.y - start.y) * position};
}

CGRect ZelSliderGeometry::trackSegment(double from, double to) const {
  CGPoint a = pointAt(std::min(from, to)), b = pointAt(std::max(from, to));
  double half = metrics.trackWidth / 2;
  if (horizontal) return CGRectMake(a.x, a.y - half, b.x - a.x, metrics.trackWidth);
  return CGRectMake(a.x - half, a.y, metrics.trackWidth, b.y - a.y);
}

CGRect ZelSliderGeometry::trackRect() const {
  // The track runs a little past both ends so the knob's centre reaches them.
  double overhang = metrics.trackWidth / 2;
  CGRect r = trackSegment(0, 1);
  return horizontal ? CGRectInset(r, -overhang, 0) : CGRectInset(r, 0, -overhang);
}

CGRect ZelSliderGeometry::knobRect(double position) const {
  CGPoint c = pointAt(position);
  double across = metrics.knobWidth, along = metrics.knobLength;
  if (horizontal) return CGRectMake(c.x - along / 2, c.y - across / 2, along, across);
  return CGRectMake(c.x - across / 2, c.y - along / 2, across, along);
}

CGRect ZelSliderGeometry::tickRect(double position, double length, int side) const {
  CGPoint c = pointAt(position);
  double inner = tickInner;
  if (horizontal) {
    double x = std::floor(c.x);
    double y = side > 0 ? c.y + inner : c.y - inner - length;
    return CGRectMake(x, y, 1, length);
  }
  double y = std::floor(c.y);
  double x = side > 0 ? c.x + inner : c.x - inner - length;
  return CGRectMake(x, y, length, 1);
}

double ZelSliderPosition(const ZelParameter& parameter, float value) {
  double p = parameter.percentageFromFloatValue(value);
  if (!std::isfinite(p)) return 0;
  return std::clamp(p, 0.0, 1.0);
}

ZEL_NAMESPACE_END
