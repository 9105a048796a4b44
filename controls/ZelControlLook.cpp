#include "controls/ZelControlLook.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "theme/ZelUITheme.h"

ZEL_NAMESPACE_BEGIN

namespace {

// Capitals and figures of the text face stand about 0.7 em tall.
constexpr double kCapHeightEm = 0.7;
// The icon glyphs sit in a box centred 0.3 em above the baseline.
constexpr double kIconCentreEm = 0.3;
// Below this luminance difference a colour is lost on the backdrop.
constexpr double kMinimumContrast = 0.22;
constexpr double kSuffixGap = 1.5;
constexpr double kSmallestReadoutScale = 0.6;

ZelColor mix(ZelColor a, ZelColor b, double t) {
  return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t, a.blue + (b.blue - a.blue) * t,
          a.alpha + (b.alpha - a.alpha) * t};
}

ZelControlLook lightLook(const ZelUITheme& theme) {
  ZelControlLook look;
  look.text = theme.textColor();
  look.secondaryText = theme.textColor().withAlpha(0.55);
  look.track = ZelColor::grey(0, 0.13);
  look.majorTick = theme.textColor().withAlpha(0.5);
  look.minorTick = theme.textColor().withAlpha(0.28);
  look.knobFace = ZelColor::grey(0.985);
  look.knobEdge = ZelColor::grey(0, 0.38);
  return look;
}

ZelControlLook darkLook(const ZelUITheme& theme) {
  ZelControlLook look;
  look.dark = true;
  look.text = theme.textColor();
  look.secondaryText = theme.textColor().withAlpha(0.5);
  look.track = ZelColor::grey(1, 0.16);
  look.majorTick = theme.textColor().withAlpha(0.5);
  look.minorTick = theme.textColor().withAlpha(0.26);
  look.knobFace = ZelColor::grey(0.86);
  look.knobEdge = ZelColor::grey(0, 0.6);
  return look;
}

}  // namespace

double ZelLuminance(ZelColor c) { return 0.2126 * c.red + 0.7152 * c.green + 0.0722 * c.blue; }

ZelColor ZelLegibleAccent(ZelColor specified, const ZelUITheme& theme) {
  ZelColor accent = theme.foregroundGivenSpecified(specified);
  double contrast = std::fabs(ZelLuminance(accent) - ZelLuminance(theme.backgroundColor()));
  return contrast < kMinimumContrast ? theme.textColor() : accent;
}

ZelColor ZelDesaturated(ZelColor color, double amount) {
  return mix(color, ZelColor::grey(ZelLuminance(color), color.alpha), std::clamp(amount, 0.0, 1.0));
}

ZelControlLook ZelControlLook::current(const ZelParameter* parameter, bool dimmed, bool disabled) {
  const ZelUITheme& theme = *ZelUITheme::theme();
  bool dark = &theme == ZelUITheme::dark();
  ZelControlLook look = dark ? darkLook(theme) : lightLook(theme);
  ZelColor specified = parameter ? parameter->color : theme.textColor();
  look.accent = ZelLegibleAccent(specified, theme);
  if (disabled) {
    look.accent = look.secondaryText;
  } else if (dimmed) {
    look.accent = ZelDesaturated(look.accent, 0.8);
    look.accent.alpha *= 0.6;
  }
  look.onAccent = ZelLuminance(look.accent) > 0.6 ? ZelColor::grey(0.1, 0.9) : ZelColor::grey(1, 0.95);
  return look;
}

// ZelPath::roundedRect caps the radius at half the shorter side; a negative
// one draws square corners here.
ZelPath ZelRoundedRectPath(CGRect r, double radius) { return ZelPath::roundedRect(r, std::max(radius, 0.0)); }

double ZelSnapToPixel(const ZelGraphicsContext& ctx, double value) {
  double scale = ctx.backingScale() > 0 ? ctx.backingScale() : 1;
  return std::round(value * scale) / scale;
}

ZelFont ZelValueFont(std::string_view text, double size, double iconSize) {
  bool icons = false;
  for (std::size_t i = 0; i + 2 < text.size() && !icons; ++i) {
    // U+E000 ... U+F8FF are three-byte sequences EE 80 80 ... EF A3 BF.
    auto lead = static_cast<unsigned char>(text[i]);
    auto next = static_cast<unsigned char>(text[i + 1]);
    icons = lead == 0xEE || (lead == 0xEF && next <= 0xA3);
  }
  if (!icons) return ZelFont{ZelFontFace::Medium, size};
  // Without the icon font file the theme has no font to give: the icon face
  // at that size then draws nothing, as the backend has no such face either.
  ZelFontRef font = ZelUITheme::theme()->appropriateFontForValue(text, size, iconSize);
  return font ? *font : ZelFont{ZelFontFace::Icons, iconSize != 0 ? iconSize : size};
}

double ZelCapHeight(const ZelFont& font) {
  if (font.face == ZelFontFace::Icons) return 2 * kIconCentreEm * font.pointSize;
  return kCapHeightEm * font.pointSize;
}

double ZelBaselineCentring(const ZelFont& font, double centreY) { return centreY - ZelCapHeight(font) / 2; }

double ZelDrawTextAt(ZelGraphicsContext& ctx, std::string_view text, const ZelFont& font, CGPoint centre,
                     ZelTextAlignment alignment) {
  if (text.empty()) return 0;
  double width = ctx.measureText(text, font).width;
  double x = centre.x;
  if (alignment == ZelTextAlignment::Center) x -= width / 2;
  if (alignment == ZelTextAlignment::Right) x -= width;
  ctx.drawText(text, font, {x, ZelBaselineCentring(font, centre.y)});
  return width;
}

double ZelMeasureReadout(ZelGraphicsContext& ctx, std::string_view value, std::string_view suffix,
                         const ZelReadoutStyle& style) {
  ZelFont valueFont = ZelValueFont(value, style.valueSize);
  double width = ctx.measureText(value, valueFont).width;
  if (!suffix.empty()) width += kSuffixGap + ctx.measureText(suffix, ZelFont{ZelFontFace::Medium, style.suffixSize}).width;
  return width;
}

void ZelDrawReadout(ZelGraphicsContext& ctx, std::string_view value, std::string_view suffix, CGRect box,
                    const ZelReadoutStyle& style) {
  ZelFont valueFont = ZelValueFont(value, style.valueSize);
  ZelFont suffixFont{ZelFontFace::Medium, style.suffixSize};
  double valueWidth = ctx.measureText(value, valueFont).width;
  double suffixWidth = suffix.empty() ? 0 : ctx.measureText(suffix, suffixFont).width + kSuffixGap;
  double total = valueWidth + suffixWidth;
  double scale = total > box.size.width && total > 0 ? std::max(box.size.width / total, kSmallestReadoutScale) : 1;
  valueFont.pointSize *= scale;
  suffixFont.pointSize *= scale;
  double x = CGRectGetMidX(box) - total * scale / 2;
  double baseline = ZelBaselineCentring(valueFont, CGRectGetMidY(box));
  ctx.setFillColor(style.valueColor);
  ctx.drawText(value, valueFont, {x, baseline});
  if (suffix.empty()) return;
  ctx.setFillColor(style.suffixColor);
  ctx.drawText(suffix, suffixFont, {x + (valueWidth + kSuffixGap) * scale, baseline});
}

void ZelDrawTypedReadout(ZelGraphicsContext& ctx, const ZelStyledString& typed, CGRect box, ZelColor color) {
  ZelFont font = typed.font;
  double width = ctx.measureText(typed.text, font).width;
  constexpr double kCaretGap = 1.5, kCaretWidth = 1.5;
  double total = width + kCaretGap + kCaretWidth;
  if (total > box.size.width && total > 0) {
    double scale = std::max(box.size.width / total, kSmallestReadoutScale);
    font.pointSize *= scale;
    width *= scale;
    total = width + kCaretGap + kCaretWidth;
  }
  double x = CGRectGetMidX(box) - total / 2;
  double baseline = ZelBaselineCentring(font, CGRectGetMidY(box));
  ctx.setFillColor(typed.color.value_or(color));
  ctx.drawText(typed.text, font, {x, baseline});
  double capHeight = ZelCapHeight(font);
  ctx.fillRect(CGRectMake(ZelSnapToPixel(ctx, x + width + kCaretGap), ZelSnapToPixel(ctx, baseline - 2), kCaretWidth,
                          ZelSnapToPixel(ctx, capHeight + 4)));
}

// ---- ZelControlTextLayer.

void ZelControlTextLayer::setGlow(ZelColor color, double radius) {
  if (color == glowColor_ && radius == glowRadius_) return;
  CGRect before = areaBeforeChange();
  glowColor_ = color;
  glowRadius_ = std::max(radius, 0.0);
  contentChanged(before);
}

void ZelControlTextLayer::drawContent(ZelGraphicsContext& ctx) {
  if (string().empty() || foregroundColor().alpha <= 0) return;
  double width = ctx.measureText(string(), font()).width;
  double boxWidth = frame().size.width, x = 0;
  if (alignment() == ZelTextAlignment::Center) x = (boxWidth - width) / 2;
  if (alignment() == ZelTextAlignment::Right) x = boxWidth - width;
  ctx.save();
  if (glowRadius_ > 0 && glowColor_.alpha > 0) ctx.setShadow({0, 0}, glowRadius_, glowColor_);
  ctx.setFillColor(foregroundColor());
  ctx.drawText(string(), font(), {x, ZelBaselineCentring(font(), frame().size.height / 2)});
  ctx.restore();
}

CGRect ZelControlTextLayer::contentExtent() const {
  double slack = font().pointSize / 2 + 2 * glowRadius_;
  return CGRectInset(bounds(), -slack, -slack);
}

ZEL_NAMESPACE_END
