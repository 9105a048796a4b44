#include "editor/ZelPowerBox.h"

#include <algorithm>
#include <cmath>

#include "editor/ZelContainerStyle.h"
#include "editor/ZelLogoStamp.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/widgets/ZelIconGlyphs.h"
#include "editor/containers/ZelClumpDrawing.h"

ZEL_NAMESPACE_BEGIN

namespace {

// The foot is as high as the preset bar, so that its line continues the
// bar's; the buttons sit in one row just above it.
constexpr double kFooterHeight = 30;
constexpr double kButtonRowGap = 4;
constexpr double kButtonHeight = 28;
constexpr double kLogoInset = 3;
// Without a power control the header keeps this height.
constexpr double kDefaultHeaderHeight = 80;
// From the middle of a label below the power control to the header's line.
constexpr double kHangingLabelClearance = 12;
// The three buttons share the strip's width: a little smaller than the
// preset bar's.
constexpr double kButtonGlyphSize = 16;

}  // namespace

ZelPowerBox::ZelPowerBox(CGRect frame, const ZelClump* clump, bool hasAdvancedControls)
    : ZelClumpView(frame, clump), hasAdvancedControls_(hasAdvancedControls) {
  setIdentifier("powerBox");
  if (!parameterControls().empty()) powerControl_ = parameterControls().front();
  addButtons();
  addLogoStamp();
}

ZelPowerBox::~ZelPowerBox() = default;

void ZelPowerBox::addButtons() {
  const CGRect row = CGRectMake(0, kFooterHeight + kButtonRowGap, bounds().size.width, kButtonHeight);
  const double width = std::floor(row.size.width / 3);
  const double x0 = std::floor((row.size.width - 3 * width) / 2);
  auto at = [&](int i) { return CGRectMake(x0 + i * width, row.origin.y, width, row.size.height); };
  book_ = addSubview(ZelMakeContainerButton(at(0), ZelIconGlyph::kBook, kButtonGlyphSize));
  gear_ = addSubview(ZelMakeContainerButton(at(1), ZelIconGlyph::kGear, kButtonGlyphSize));
  theme_ = addSubview(ZelMakeContainerButton(at(2), ZelIconGlyph::kTheme, kButtonGlyphSize));
  book_->setIdentifier("book");
  gear_->setIdentifier("gear");
  theme_->setIdentifier("theme");
  gear_->setEnabled(hasAdvancedControls_);
}

void ZelPowerBox::addLogoStamp() {
  const CGRect inset = CGRectInset(footerRect(), kLogoInset, kLogoInset);
  logo_ = addSubview(std::make_unique<ZelLogoStamp>(CGRectIsNull(inset) ? footerRect() : inset));
  logo_->setManualAction([this] { book_->sendAction(); });
}

void ZelPowerBox::setMetadata(const ZelMetadata* metadata) {
  metadata_ = metadata;
  logo_->setMetadata(metadata);
}

ZelLayer* ZelPowerBox::logoStampLayer() const { return logo_->stampLayer(); }

CGRect ZelPowerBox::headerRect() const {
  const CGRect b = bounds();
  double bottom = CGRectGetMaxY(b) - kDefaultHeaderHeight;
  if (powerControl_) {
    const CGRect control = powerControl_->frame();
    bottom = CGRectGetMinY(control);
    // A label hanging below the control stays inside the header.
    const CGRect label = powerControl_->labelFrame();
    if (!CGRectIsEmpty(label))
      bottom = std::min(bottom, std::floor(CGRectGetMinY(control) + CGRectGetMidY(label) - kHangingLabelClearance));
  }
  bottom = std::clamp(bottom, CGRectGetMinY(b), CGRectGetMaxY(b));
  return CGRectMake(b.origin.x, bottom, b.size.width, CGRectGetMaxY(b) - bottom);
}

CGRect ZelPowerBox::footerRect() const {
  const CGRect b = bounds();
  return CGRectMake(b.origin.x, b.origin.y, b.size.width, std::min(kFooterHeight, b.size.height));
}

CGRect ZelPowerBox::sketchArea() const {
  const double bottom = CGRectGetMaxY(book_->frame());
  const double top = CGRectGetMinY(headerRect());
  const CGRect middle = CGRectMake(0, bottom, bounds().size.width, std::max(0.0, top - bottom));
  const CGRect area = CGRectInset(middle, kSketchMargin, kSketchMargin);
  return CGRectIsNull(area) ? CGRectMake(CGRectGetMidX(middle), CGRectGetMidY(middle), 0, 0) : area;
}

void ZelPowerBox::themeUpdated() {
  for (ZelSymbolButton* button : {book_, gear_, theme_}) ZelRecolourContainerButton(button);
  ZelClumpView::themeUpdated();
}

void ZelPowerBox::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  ZelClumpView::drawRect(ctx, dirtyRect);
  ZelDrawContainerHairline(ctx, CGRectMinXEdge, bounds());
  ZelFillGenericHeaderFooterOnEdge(ctx, CGRectMinYEdge, headerRect());
  ZelFillGenericHeaderFooterOnEdge(ctx, CGRectMaxYEdge, footerRect());
}

ZEL_NAMESPACE_END
