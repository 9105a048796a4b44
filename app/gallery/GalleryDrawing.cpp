#include "app/gallery/GalleryDrawing.h"

#include <cmath>
#include <cstdio>

#include "theme/ZelBorderSpec.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelLabelImage.h"
#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"

namespace gallery {

namespace {

constexpr double kCaptionSize = 10;
constexpr double kTitleSize = 10;
constexpr double kGlyphSize = 22;
constexpr int kGlyphColumns = 9;

ZelColor ink(double alpha) { return ZelUITheme::theme()->textColor().withAlpha(alpha); }

// Text with its left baseline end at `x` and the line centred on `midY`.
void drawTextCentredOn(ZelGraphicsContext& ctx, std::string_view text, const ZelFont& font, double x, double midY) {
  ZelTextMetrics m = ctx.measureText(text, font);
  ctx.drawText(text, font, {x, std::round(midY - (m.ascent - m.descent) / 2)});
}

void drawCentred(ZelGraphicsContext& ctx, std::string_view text, const ZelFont& font, CGPoint centre) {
  ZelTextMetrics m = ctx.measureText(text, font);
  drawTextCentredOn(ctx, text, font, std::round(centre.x - m.width / 2), centre.y);
}

CGRect cell(CGRect area, int column, int row, CGSize size) {
  return {{area.origin.x + column * size.width, CGRectGetMaxY(area) - (row + 1) * size.height}, size};
}

void fillWithPattern(ZelGraphicsContext& ctx, const ZelBackgroundPattern& pattern, CGRect r) {
  ctx.save();
  pattern.setAsFill(ctx);
  ctx.fillRect(r);
  ctx.restore();
}

std::string codePointText(char32_t c) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "%04X", static_cast<unsigned>(c));
  return buf;
}

std::string utf8(char32_t c) {
  return {static_cast<char>(0xE0 | (c >> 12)), static_cast<char>(0x80 | ((c >> 6) & 0x3F)),
          static_cast<char>(0x80 | (c & 0x3F))};
}

}  // namespace

void drawTitle(ZelGraphicsContext& ctx, std::string_view title, CGRect area) {
  ctx.setFillColor(ink(0.55));
  ctx.drawText(title, {ZelFontFace::Medium, kTitleSize}, {area.origin.x, CGRectGetMaxY(area) + 6});
  ctx.fillRect(CGRectMake(area.origin.x, CGRectGetMaxY(area) + 2, area.size.width, 0.5));
}

void drawCaption(ZelGraphicsContext& ctx, std::string_view caption, CGRect area) {
  ctx.setFillColor(ink(0.7));
  drawCentred(ctx, caption, {ZelFontFace::Medium, kCaptionSize}, {CGRectGetMidX(area), area.origin.y - 9});
}

void drawTextSamples(ZelGraphicsContext& ctx, CGRect area) {
  static constexpr const char* kSample = "Low Cut 20 Hz \u00b7 Drive 6.0 dB \u00b7 Vantry";
  const double sizes[] = {10, 14, 16};
  double top = CGRectGetMaxY(area);
  for (ZelFontFace face : {ZelFontFace::Medium, ZelFontFace::Italic}) {
    for (double size : sizes) {
      top -= 22;
      char label[32];
      std::snprintf(label, sizeof label, "%s %g", face == ZelFontFace::Medium ? "Medium" : "Italic", size);
      ctx.setFillColor(ink(0.55));
      ctx.drawText(label, {ZelFontFace::Medium, 10}, {area.origin.x, top});
      ctx.setFillColor(ZelUITheme::theme()->textColor());
      ctx.drawText(kSample, {face, size}, {area.origin.x + 62, top});
    }
  }
}

void drawIconGlyphs(ZelGraphicsContext& ctx, CGRect area) {
  CGSize size{area.size.width / kGlyphColumns, area.size.height / 2};
  const ZelFontRef icon = ZelUITheme::theme()->iconFontOfSize(kGlyphSize);
  const ZelFont font = icon ? *icon : ZelFont{ZelFontFace::Icons, kGlyphSize};
  for (char32_t c = ZelIconGlyph::kFirstCodePoint; c <= ZelIconGlyph::kLastCodePoint; ++c) {
    int index = static_cast<int>(c - ZelIconGlyph::kFirstCodePoint);
    CGRect r = cell(area, index % kGlyphColumns, index / kGlyphColumns, size);
    ctx.setFillColor(ZelUITheme::theme()->symbolColor());
    drawCentred(ctx, utf8(c), font, {CGRectGetMidX(r), CGRectGetMaxY(r) - 14});
    ctx.setFillColor(ink(0.6));
    drawCentred(ctx, codePointText(c), {ZelFontFace::Medium, 10}, {CGRectGetMidX(r), r.origin.y + 8});
  }
}

void drawTextures(ZelGraphicsContext& ctx, CGRect area) {
  const double gap = 14, w = (area.size.width - gap) / 2;
  const CGRect light{area.origin, {w, area.size.height}};
  const CGRect dark{{area.origin.x + w + gap, area.origin.y}, {w, area.size.height}};
  fillWithPattern(ctx, ZelUITheme::light()->backgroundPattern(), light);
  fillWithPattern(ctx, ZelUITheme::dark()->backgroundPattern(), dark);
  static const ZelPlist kFrame = ZelPlist::array(
      {ZelPlist::integer(1), ZelPlist::integer(1), ZelPlist::integer(1), ZelPlist::integer(1)});
  ctx.setFillColor(ink(0.3));
  ZelBorderRectWithBorderSpec(ctx, kFrame, light);
  ZelBorderRectWithBorderSpec(ctx, kFrame, dark);
  drawCaption(ctx, "noised-ottoman.jpg", light);
  drawCaption(ctx, "noise_dark.png", dark);
}

void drawBorderSpecs(ZelGraphicsContext& ctx, CGRect area) {
  static constexpr int kSpecs[][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}, {0, 0, 1, 1}, {1, 1, 1, 1}};
  const int n = static_cast<int>(std::size(kSpecs));
  const double gap = 14, w = std::floor((area.size.width - gap * (n - 1)) / n);
  for (int i = 0; i < n; ++i) {
    CGRect box{{area.origin.x + i * (w + gap), area.origin.y}, {w, area.size.height}};
    ZelPlist::Array spec;
    std::string caption;
    for (int side : kSpecs[i]) {
      spec.push_back(ZelPlist::integer(side));
      caption += static_cast<char>('0' + side);
    }
    ctx.setFillColor(ZelUITheme::theme()->textColor().withAlpha(0.04));
    ctx.fillRect(box);
    ctx.setFillColor(ZelUITheme::theme()->interiorBorderColor());
    ZelBorderRectWithBorderSpec(ctx, ZelPlist::array(std::move(spec)), box);
    drawCaption(ctx, caption, box);
  }
}

LabelImages loadLabelImages(const std::string& descriptionPath) {
  LabelImages out;
  ZelConfigLoad load = ZelConfig::loadFile(descriptionPath);
  if (!load.config) return out;
  const ZelConfig& config = *load.config;
  config.enumerateClumps([&](const ZelClump& c) {
    if (auto image = ZelImageFromBase64String(c.label)) out.labels.push_back(image);
    for (const auto& p : c.parameters)
      if (auto image = ZelImageFromBase64String(p->label)) out.labels.push_back(image);
  });
  out.logo = ZelImageFromBase64String(config.metadata().logo);
  return out;
}

void drawLabelImages(ZelGraphicsContext& ctx, const LabelImages& images, CGRect area) {
  constexpr int kColumns = 4;
  const double half = std::floor(area.size.height / 2);
  const CGRect top{{area.origin.x, area.origin.y + half}, {area.size.width, area.size.height - half}};
  const CGRect bottom{area.origin, {area.size.width, half - 6}};
  const ZelUITheme* other = ZelUITheme::theme()->invertLabels() ? ZelUITheme::light() : ZelUITheme::dark();
  fillWithPattern(ctx, other->backgroundPattern(), bottom);

  std::size_t count = images.labels.size() + (images.logo ? 1 : 0);
  int rows = static_cast<int>((count + kColumns - 1) / kColumns);
  if (rows == 0) return;
  for (bool asTheme : {true, false}) {
    const CGRect& block = asTheme ? top : bottom;
    CGSize size{block.size.width / kColumns, std::floor(block.size.height / rows)};
    for (std::size_t i = 0; i < count; ++i) {
      const auto& image = i < images.labels.size() ? images.labels[i] : images.logo;
      CGRect r = cell(block, static_cast<int>(i % kColumns), static_cast<int>(i / kColumns), size);
      if (asTheme) {
        DrawLabelImage(ctx, image, r);
      } else {
        auto drawn = other->invertLabels() ? ZelInvertedLabelImage(image) : image;
        ctx.drawImage(*drawn, SituatedRectInsideRectForImage(*image, r), kZelLabelImageOpacity, ZelImageFilter::Linear);
      }
    }
  }
}

}  // namespace gallery
