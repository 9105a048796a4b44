// The slider's picture: readout, track, ticks, cue texts and symbols, knob.
#include <algorithm>
#include <cmath>

#include "controls/ZelControlLook.h"
#include "controls/ZelVerticalSlider.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kThousandsMarkSize = 7;
// Cue texts closer than this (centre to centre) would collide: the later
// one is left out.
constexpr double kMinimumCueSpacing = 11;

void fillRounded(ZelGraphicsContext& ctx, CGRect r, double radius, ZelColor color) {
  ctx.setFillColor(color);
  ctx.fillPath(ZelRoundedRectPath(r, radius));
}

// A one-point outline exactly inside `r` (crisp on whole-point rectangles).
void strokeRoundedInside(ZelGraphicsContext& ctx, CGRect r, double radius, ZelColor color) {
  ctx.setStrokeColor(color);
  ctx.setLineWidth(1);
  ctx.strokePath(ZelRoundedRectPath(CGRectInset(r, 0.5, 0.5), std::max(radius - 0.5, 0.0)));
}

}  // namespace

void ZelVerticalSlider::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (!parameter()) return;
  ZelControlLook look = ZelControlLook::current(parameter(), dimmed(), isDisabled());
  double position = ZelSliderPosition(*parameter(), floatValue());
  drawReadout(ctx, look);
  drawTicks(ctx, look);
  drawCues(ctx, look);
  drawCueSymbols(ctx, look);
  drawTrack(ctx, look, position);
  drawKnob(ctx, look, position);
}

void ZelVerticalSlider::drawReadout(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  if (displayingTransientBufferValue()) {
    ZelDrawTypedReadout(ctx, transientString(), geometry_.readout, look.accent);
    return;
  }
  readoutForValue(floatValue(), &text_, &suffix_);
  ZelReadoutStyle style;
  style.valueSize = kReadoutFontSize;
  style.suffixSize = kSuffixFontSize;
  style.valueColor = dragging_ ? look.accent : look.text;
  style.suffixColor = look.secondaryText;
  ZelDrawReadout(ctx, text_, suffix_, geometry_.readout, style);
}

void ZelVerticalSlider::drawTrack(ZelGraphicsContext& ctx, const ZelControlLook& look, double position) {
  const ZelSliderStyleMetrics& m = geometry_.metrics;
  CGRect track = geometry_.trackRect();
  ZelColor trackColor = look.track;
  if (parameter()->controlStyle == ZelControlStyle::Shadowed) trackColor.alpha *= 1.7;  // a deeper groove
  fillRounded(ctx, track, m.trackWidth / 2, trackColor);
  double base = basePosition();
  if (position == base) return;
  ctx.save();
  ctx.clipToPath(ZelRoundedRectPath(track, m.trackWidth / 2));
  CGRect lit = geometry_.trackSegment(base, position);
  // The lit part reaches the track's rounded end when it starts there.
  double overhang = m.trackWidth / 2;
  if (base == 0) lit = geometry_.horizontal ? CGRectMake(lit.origin.x - overhang, lit.origin.y, lit.size.width + overhang, lit.size.height)
                                            : CGRectMake(lit.origin.x, lit.origin.y - overhang, lit.size.width, lit.size.height + overhang);
  // Whole device pixels at both ends, as the knob.
  double a0 = ZelSnapToPixel(ctx, geometry_.horizontal ? lit.origin.x : lit.origin.y);
  double a1 = ZelSnapToPixel(ctx, geometry_.horizontal ? CGRectGetMaxX(lit) : CGRectGetMaxY(lit));
  lit = geometry_.horizontal ? CGRectMake(a0, lit.origin.y, a1 - a0, lit.size.height)
                             : CGRectMake(lit.origin.x, a0, lit.size.width, a1 - a0);
  ctx.setFillColor(look.accent);
  ctx.fillRect(lit);
  ctx.restore();
}

void ZelVerticalSlider::drawTicks(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  const ZelParameter& p = *parameter();
  auto draw = [&](const std::vector<float>& values, double length, ZelColor color) {
    ctx.setFillColor(color);
    for (float v : values) {
      if (v < std::min(p.minValue, p.maxValue) || v > std::max(p.minValue, p.maxValue)) continue;
      double position = ZelSliderPosition(p, v);
      ctx.fillRect(geometry_.tickRect(position, length, -1));
      ctx.fillRect(geometry_.tickRect(position, length, +1));
    }
  };
  draw(p.minorTickmarks, geometry_.minorTickLength, look.minorTick);
  draw(p.tickmarks, geometry_.majorTickLength, look.majorTick);
}

void ZelVerticalSlider::drawCues(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  const ZelParameter& p = *parameter();
  if (geometry_.cueOffset <= 0 || p.cueValues.empty()) return;
  ctx.setFillColor(look.secondaryText);
  double last = -1e9;
  for (float v : p.cueValues) {
    if (v < std::min(p.minValue, p.maxValue) || v > std::max(p.minValue, p.maxValue)) continue;
    CGPoint c = geometry_.pointAt(ZelSliderPosition(p, v));
    double along = geometry_.horizontal ? c.x : c.y;
    if (std::fabs(along - last) < kMinimumCueSpacing) continue;
    last = along;
    CGPoint anchor = geometry_.horizontal ? CGPointMake(c.x, c.y - geometry_.cueOffset - kCueFontSize / 2)
                                          : CGPointMake(c.x - geometry_.cueOffset, std::floor(c.y) + 0.5);
    drawCueText(ctx, v, anchor);
  }
}

void ZelVerticalSlider::drawCueText(ZelGraphicsContext& ctx, float value, CGPoint anchor) {
  std::string text = cueTextForValue(value);
  ZelFont font{ZelFontFace::Medium, kCueFontSize};
  ZelFont mark{ZelFontFace::Medium, kThousandsMarkSize};
  bool thousands = cueIsInThousands(value);
  double width = ctx.measureText(text, font).width;
  double markWidth = thousands ? ctx.measureText("k", mark).width + 0.5 : 0;
  // Vertical: right-aligned at the anchor; horizontal: centred on it.
  double x = geometry_.horizontal ? anchor.x - (width + markWidth) / 2 : anchor.x - width - markWidth;
  double baseline = ZelBaselineCentring(font, anchor.y);
  ctx.drawText(text, font, {x, baseline});
  if (thousands) ctx.drawText("k", mark, {x + width + 0.5, baseline});
}

void ZelVerticalSlider::drawCueSymbols(ZelGraphicsContext& ctx, const ZelControlLook& look) {
  const ZelParameter& p = *parameter();
  if (p.cueSymbolDisplay == ZelCueSymbolDisplay::Hidden || p.cueSymbols.empty()) return;
  // Symbols that stand for the string values name the value itself; they
  // are placed along the track only when positions are given.
  std::size_t count = std::min(p.cueSymbols.size(), p.cueSymbolPositions.size());
  ctx.setFillColor(look.secondaryText);
  double outer = geometry_.tickInner + geometry_.majorTickLength + 3;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string& symbol = p.cueSymbols[i];
    ZelFont font = ZelValueFont(symbol, kCueFontSize, kCueFontSize + 2);
    CGPoint c = geometry_.pointAt(ZelSliderPosition(p, p.cueSymbolPositions[i]));
    ZelTextAlignment align = ZelTextAlignment::Center;
    switch (p.cueSymbolDisplay) {
      case ZelCueSymbolDisplay::Inline: break;  // on the track itself
      case ZelCueSymbolDisplay::Above:
        if (geometry_.horizontal) c.y += outer + font.pointSize / 2;
        else c.x -= outer, align = ZelTextAlignment::Right;
        break;
      default:  // below: under a horizontal track, right of a vertical one
        if (geometry_.horizontal) c.y -= outer + font.pointSize / 2;
        else c.x += outer, align = ZelTextAlignment::Left;
        break;
    }
    ZelDrawTextAt(ctx, symbol, font, c, align);
  }
}

void ZelVerticalSlider::drawKnob(ZelGraphicsContext& ctx, const ZelControlLook& look, double position) {
  const ZelSliderStyleMetrics& m = geometry_.metrics;
  CGRect knob = geometry_.knobRect(position);
  // On whole device pixels, so its edges stay crisp wherever it stops.
  knob.origin = {ZelSnapToPixel(ctx, knob.origin.x), ZelSnapToPixel(ctx, knob.origin.y)};
  CGPoint c{CGRectGetMidX(knob), CGRectGetMidY(knob)};
  bool horizontal = geometry_.horizontal;
  // The indicator across the knob, two points thick.
  auto indicator = [&](double length) {
    return horizontal ? CGRectMake(c.x - 1, c.y - length / 2, 2, length) : CGRectMake(c.x - length / 2, c.y - 1, length, 2);
  };
  ctx.save();
  if (isDisabled()) ctx.setAlpha(0.5);
  switch (parameter()->controlStyle) {
    case ZelControlStyle::Pilled:
      fillRounded(ctx, knob, m.knobRadius, look.accent);
      ctx.setFillColor(look.onAccent);
      ctx.fillRect(indicator(m.knobWidth - 12));
      break;
    case ZelControlStyle::Filled:
      ctx.setFillColor(look.text);
      ctx.fillRect(horizontal ? CGRectMake(c.x - 1, knob.origin.y, 2, knob.size.height)
                              : CGRectMake(knob.origin.x, c.y - 1, knob.size.width, 2));
      break;
    case ZelControlStyle::Shadowed:
      ctx.setShadow({0, -1.5}, 3.5, ZelColor::grey(0, look.dark ? 0.7 : 0.35));
      fillRounded(ctx, knob, m.knobRadius, look.knobFace);
      ctx.clearShadow();
      ctx.setFillColor(look.accent);
      ctx.fillRect(indicator(m.knobWidth - 8));
      break;
    case ZelControlStyle::Default:
      fillRounded(ctx, knob, m.knobRadius, look.knobFace);
      strokeRoundedInside(ctx, knob, m.knobRadius, look.knobEdge);
      ctx.setFillColor(look.accent);
      ctx.fillRect(indicator(m.knobWidth - 8));
      break;
  }
  ctx.restore();
}

ZEL_NAMESPACE_END
