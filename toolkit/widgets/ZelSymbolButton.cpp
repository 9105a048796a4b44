#include "toolkit/widgets/ZelSymbolButton.h"

#include <algorithm>
#include <cmath>

#include "toolkit/widgets/ZelIconGlyphs.h"
#include "toolkit/core/ZelTransaction.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kSpotlightAlpha = 0.4;
constexpr double kWarningInset = 2;
constexpr double kDisabledGlyphOpacity = 0.2;
// Before the button joins a window, glyphs are prepared for a double
// resolution screen.
constexpr double kDefaultContentsScale = 2;

CGRect roundedToWholePoints(CGRect r) {
  return {{std::round(r.origin.x), std::round(r.origin.y)}, {std::round(r.size.width), std::round(r.size.height)}};
}

std::size_t codePointCount(const std::string& utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

// The size of a line of icon text: whole ems wide, one em high (the icon
// font's text box).
CGSize iconTextSize(const std::string& utf8, double size) {
  double width = static_cast<double>(codePointCount(utf8)) * ZelIconGlyph::kAdvanceEm * size;
  return {width, (ZelIconGlyph::kAscentEm + ZelIconGlyph::kDescentEm) * size};
}

CGRect centred(CGSize size, CGRect in) {
  return {{CGRectGetMidX(in) - size.width / 2, CGRectGetMidY(in) - size.height / 2}, size};
}

std::unique_ptr<ZelLayer> makeDisc(CGRect frame, double white) {
  auto disc = std::make_unique<ZelLayer>();
  disc->setBackgroundColor(ZelColor::grey(white, kSpotlightAlpha));
  disc->setFrame(frame);
  disc->setCornerRadius(frame.size.width / 2);
  disc->setOpacity(0);
  return disc;
}

}  // namespace

ZelBasicAnimation ZelStandardPulseAnimation() {
  ZelBasicAnimation pulse("transform.scale");
  pulse.setFromValue(1.0);
  pulse.setToValue(1.2);
  pulse.setDuration(0.09);
  pulse.setTimingFunction(ZelTimingFunction::easeOut());
  pulse.setAutoreverses(true);
  pulse.setRemovedOnCompletion(true);
  return pulse;
}

ZelSymbolButton::ZelSymbolButton(CGRect frame, std::string glyph, double size, ZelColor color)
    : ZelControl(frame), size_(size), color_(color) {
  setWantsLayer(true);
  layer()->setMasksToBounds(true);
  ZelTransaction setup;
  setup.setDisableActions(true);

  CGRect b = bounds();
  double side = std::min(b.size.width, b.size.height);
  CGRect spot = roundedToWholePoints(CGRectOffset(centred({side, side}, b), 0, 1));
  auto warning = makeDisc(CGRectInset(spot, kWarningInset, kWarningInset), 1.0);
  auto spotlight = makeDisc(spot, 0.0);
  auto text = std::make_unique<ZelTextLayer>();
  text->setAlignment(ZelTextAlignment::Center);
  text->setContentsScale(kDefaultContentsScale);

  warningLight_ = layer()->addSublayer(std::move(warning));
  spotlight_ = layer()->addSublayer(std::move(spotlight));
  glyph_ = static_cast<ZelTextLayer*>(layer()->addSublayer(std::move(text)));
  resetGlyph(std::move(glyph), color);
}

ZelSymbolButton::~ZelSymbolButton() = default;

void ZelSymbolButton::resetGlyph(std::string glyph, ZelColor color) {
  color_ = color;
  glyphString_ = std::move(glyph);
  glyph_->setFont(ZelFont{ZelFontFace::Icons, size_});
  glyph_->setForegroundColor(color);
  glyph_->setString(glyphString_);
  glyph_->setFrame(roundedToWholePoints(centred(iconTextSize(glyphString_, size_), bounds())));
}

void ZelSymbolButton::setEnabled(bool enabled) {
  ZelControl::setEnabled(enabled);
  glyph_->setOpacity(enabled ? 1.0 : kDisabledGlyphOpacity);
}

void ZelSymbolButton::setSelected(bool selected) {
  selected_ = selected;
  spotlight_->setOpacity(selected ? 1 : 0);
}

void ZelSymbolButton::setWarning(bool warning) {
  bool changed = warning != warning_;
  warning_ = warning;
  warningLight_->setOpacity(warning ? 1 : 0);
  if (!changed) return;
  // The standard pulse, slower and six times over.
  ZelBasicAnimation pulse = ZelStandardPulseAnimation();
  pulse.setDuration(0.33);
  pulse.setRepeatCount(6);
  warningLight_->addAnimation(pulse, "pulse");
}

void ZelSymbolButton::flash() {
  spotlight_->removeAnimationForKey("flash");
  ZelBasicAnimation flash("opacity");
  flash.setFromValue(0.0);
  flash.setToValue(1.0);
  flash.setDuration(0.125);
  flash.setTimingFunction(ZelTimingFunction::easeOut());
  flash.setAutoreverses(true);
  flash.setRemovedOnCompletion(true);
  spotlight_->addAnimation(flash, "flash");
}

void ZelSymbolButton::mouseDown(const ZelEvent&) {
  if (!isEnabled()) return;
  glyph_->addAnimation(ZelStandardPulseAnimation(), "pulse");
  sendAction();
}

void ZelSymbolButton::viewDidMoveToWindow() {
  if (window()) glyph_->setContentsScale(window()->backingScale());
}

ZEL_NAMESPACE_END
