#include "editor/ZelLogoStamp.h"

#include <cmath>

#include "theme/ZelLabelImage.h"
#include "theme/ZelUITheme.h"
#include "model/ZelMetadata.h"
#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

// The name stands in for a missing logo: the text face, at the labels'
// opacity so it reads as part of the same print.
constexpr double kNameFontSize = 13;
constexpr double kNameOpacity = 0.7;

}  // namespace

ZelLogoStamp::ZelLogoStamp(CGRect frame) : ZelControl(frame) {
  setWantsLayer(true);
  layer()->setMasksToBounds(false);
  setIdentifier("logo");
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
}

ZelLogoStamp::~ZelLogoStamp() = default;

void ZelLogoStamp::setMetadata(const ZelMetadata* metadata) {
  metadata_ = metadata;
  logoImage_ = metadata ? ZelImageFromBase64String(metadata->logo) : nullptr;
  themeUpdated();
}

void ZelLogoStamp::themeUpdated() { setNeedsDisplay(); }

std::unique_ptr<ZelMenu> ZelLogoStamp::newAboutMenu() {
  auto menu = std::make_unique<ZelMenu>("About");
  const std::string longName = metadata_ ? metadata_->pluginLongName : std::string();
  const std::string version = metadata_ ? metadata_->version : std::string();
  if (!longName.empty()) menu->addItem(longName, {}, false);
  if (!version.empty()) menu->addItem("Version " + version, {}, false);
  if (menu->size() > 0) menu->addSeparator();
  menu->addItem(kVisitWebsiteTitle, [this] { sendAction(); });
  menu->addItem(kManualTitle, [this] {
    if (manualAction_) manualAction_();
  });
  if (chooseZoom_ && !zoomSteps_.empty()) {
    menu->addSeparator();
    const double current = currentZoom_ ? currentZoom_() : 0;
    for (double step : zoomSteps_)
      menu->addItem(zoomTitle(step), [this, step] { chooseZoom_(step); }, step != current);
  }
  return menu;
}

std::string ZelLogoStamp::zoomTitle(double zoom) {
  return "Zoom " + std::to_string(static_cast<int>(std::lround(zoom * 100))) + "%";
}

void ZelLogoStamp::mouseDown(const ZelEvent& event) {
  if (!window() || !isEnabled()) return;
  window()->popUpMenu(newAboutMenu(), event.locationInWindow, this);
}

std::unique_ptr<ZelMenu> ZelLogoStamp::menuForEvent(const ZelEvent&) { return newAboutMenu(); }

void ZelLogoStamp::drawRect(ZelGraphicsContext& ctx, CGRect) {
  if (logoImage_) {
    DrawLabelImage(ctx, logoImage_, bounds());
    return;
  }
  if (!metadata_ || metadata_->pluginName.empty()) return;
  const ZelFont font{ZelFontFace::Medium, kNameFontSize};
  const ZelTextMetrics m = ctx.measureText(metadata_->pluginName, font);
  const CGRect b = bounds();
  const double x = std::round(CGRectGetMidX(b) - m.width / 2);
  const double y = std::round(CGRectGetMidY(b) - (m.ascent - m.descent) / 2);
  ctx.setFillColor(ZelUITheme::theme()->textColor().withAlpha(kNameOpacity));
  ctx.drawText(metadata_->pluginName, font, {x, y});
}

ZEL_NAMESPACE_END
