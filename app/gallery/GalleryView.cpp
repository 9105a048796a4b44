#include "app/gallery/GalleryView.h"

#include <cstdio>

#include "toolkit/widgets/ZelIconGlyphs.h"
#include "theme/ZelUITheme.h"
#include "toolkit/core/ZelTransaction.h"
#include "toolkit/core/ZelWindow.h"

namespace gallery {

namespace {

// Column geometry, points from the window's left and top edges.
constexpr double kLeftX = 20, kLeftWidth = 330;
constexpr double kRightX = 376, kRightWidth = 324;

constexpr double kButtonCell = 54;
constexpr CGSize kButtonSize{28, 30};  // taller than wide: the raised spotlight disc stays whole
constexpr double kButtonGlyphSize = 22;

constexpr CGSize kBorderBox{62, 36};
constexpr double kBorderGap = 18;

ZelColor symbolColor() { return ZelUITheme::theme()->symbolColor(); }

}  // namespace

GalleryView::GalleryView(std::string descriptionPath)
    : ZelView(CGRectMake(0, 0, kSize.width, kSize.height)), labels_(loadLabelImages(descriptionPath)) {
  addButtons();
  addFocusBorders();
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(kZelUIThemeUpdatedNotification, nullptr,
                                                                         [this](const ZelNotification&) { themeUpdated(); });
}

GalleryView::~GalleryView() {
  if (window()) window()->runLoop().cancelAllForTarget(this);
}

CGRect GalleryView::fromTop(double x, double top, double width, double height) const {
  return CGRectMake(x, bounds().size.height - top - height, width, height);
}

void GalleryView::addButtons() {
  struct Spec {
    const char* glyph;
    const char* caption;
  };
  static constexpr Spec kSpecs[] = {{ZelIconGlyph::kPower, "enabled"}, {ZelIconGlyph::kGear, "disabled"},
                                    {ZelIconGlyph::kBook, "selected"}, {ZelIconGlyph::kGear, "warning"},
                                    {ZelIconGlyph::kSave, "pulse"},    {ZelIconGlyph::kTheme, "flash"}};
  ZelTransaction still;  // the states are shown as they are, not faded in
  still.setDisableActions(true);
  for (std::size_t i = 0; i < std::size(kSpecs); ++i) {
    CGRect cell = fromTop(kRightX + kButtonCell * static_cast<double>(i), 34, kButtonCell, kButtonSize.height);
    CGRect frame{{CGRectGetMidX(cell) - kButtonSize.width / 2, cell.origin.y}, kButtonSize};
    auto button = std::make_unique<ZelSymbolButton>(frame, kSpecs[i].glyph, kButtonGlyphSize, symbolColor());
    buttons_.push_back(addSubview(std::move(button)));
    buttonCaptions_.emplace_back(kSpecs[i].caption);
  }
  buttons_[1]->setEnabled(false);
  buttons_[2]->setSelected(true);
  buttons_[3]->setWarning(true);
  warningButton_ = buttons_[3];
  pulseButton_ = buttons_[4];
  flashButton_ = buttons_[5];
  // Clicking the theme glyph switches the theme in the live window.
  flashButton_->setAction([](ZelControl& sender) { ZelUITheme::toggleThemeForWindow(sender.window()); });
}

void GalleryView::addFocusBorders() {
  auto holder = std::make_unique<ZelView>(bounds());
  holder->setWantsLayer(true);
  ZelView* host = insertSubview(std::move(holder), 0);  // below the buttons, which take clicks
  roundings_ = {0, 4, 10, 18};
  for (std::size_t i = 0; i < roundings_.size(); ++i) {
    auto border = std::make_unique<ZelFocusBorder>();
    ZelFocusBorder* b = static_cast<ZelFocusBorder*>(host->layer()->addSublayer(std::move(border)));
    double x = kRightX + 6 + (kBorderBox.width + kBorderGap) * static_cast<double>(i);
    b->updateWithFrame(fromTop(x, 120, kBorderBox.width, kBorderBox.height), roundings_[i]);
    b->setStrokeNSColor(ZelUITheme::theme()->textColor());
    ZelTransaction still;
    still.setDisableActions(true);
    b->setOpacity(1);
    borders_.push_back(b);
  }
}

void GalleryView::startDemonstrations() {
  pulseButton_->mouseDown(ZelEvent::mouse(ZelEventType::LeftMouseDown, {0, 0}));
  flashButton_->flash();
  ZelTransaction steady;  // the light stays on; only its pulse restarts
  steady.setDisableActions(true);
  warningButton_->setWarning(false);
  warningButton_->setWarning(true);
}

void GalleryView::repeatDemonstrations(double period) {
  if (!window()) return;
  startDemonstrations();
  window()->runLoop().schedule(period, [this, period] { repeatDemonstrations(period); },
                               ZelCallKey{this, "repeatDemonstrations"});
}

void GalleryView::themeUpdated() {
  for (ZelSymbolButton* b : buttons_) b->resetGlyph(b->glyphString(), symbolColor());
  for (ZelFocusBorder* b : borders_) b->setStrokeNSColor(ZelUITheme::theme()->textColor());
  setNeedsDisplay();
}

void GalleryView::drawRect(ZelGraphicsContext& ctx, CGRect) {
  const ZelUITheme* theme = ZelUITheme::theme();
  ctx.save();
  theme->backgroundPattern().setAsFill(ctx);
  ctx.fillRect(bounds());
  ctx.restore();

  CGRect text = fromTop(kLeftX, 34, kLeftWidth, 132);
  drawTitle(ctx, "TEXT FACES", text);
  drawTextSamples(ctx, text);
  CGRect icons = fromTop(kLeftX, 202, kLeftWidth, 96);
  drawTitle(ctx, "ICON FONT  (U+E000 \u2026 U+E010)", icons);
  drawIconGlyphs(ctx, icons);
  CGRect textures = fromTop(kLeftX, 334, kLeftWidth, 150);
  drawTitle(ctx, "TEXTURES", textures);
  drawTextures(ctx, textures);

  CGRect buttons = fromTop(kRightX, 34, kRightWidth, kButtonSize.height);
  drawTitle(ctx, "SYMBOL BUTTONS", buttons);
  for (std::size_t i = 0; i < buttons_.size(); ++i) drawCaption(ctx, buttonCaptions_[i], buttons_[i]->frame());
  CGRect borders = fromTop(kRightX, 120, kRightWidth, kBorderBox.height);
  drawTitle(ctx, "FOCUS BORDERS", CGRectOffset(borders, 0, 6));
  for (std::size_t i = 0; i < borders_.size(); ++i) {
    char caption[32];
    std::snprintf(caption, sizeof caption, "rounding %g", roundings_[i]);
    drawCaption(ctx, caption, CGRectOffset(borders_[i]->frame(), 0, -4));
  }
  CGRect specs = fromTop(kRightX, 214, kRightWidth, 30);
  drawTitle(ctx, "BORDER SPECS  (top, right, bottom, left)", CGRectOffset(specs, 0, 6));
  drawBorderSpecs(ctx, specs);
  CGRect labels = fromTop(kRightX, 286, kRightWidth, 234);
  drawTitle(ctx, "LABEL IMAGES  (as the theme draws them; the other way)", labels);
  drawLabelImages(ctx, labels_, labels);
}

}  // namespace gallery
