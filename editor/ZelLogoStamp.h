// The product's logo stamp at the foot of the power box: the metadata's
// "logo" image (a label image, drawn at half its pixel size, centred), or
// the plug-in's name in the text face when there is none.
//
// Its root layer is what the parameter sketch rasterizes to degrade the
// stamp and what the editor dims to 0.5 without window focus
// (stampLayer()). A click opens the "About" menu: the long name (inert), the
// version, "Visit Website…" (sends this control's action: the editor's
// logoTapped) and "Manual…" (runs the manual action the power box gives it).
//
// Ownership: the metadata is not owned (the description outlives the
// editor). Threading: main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "toolkit/core/ZelControl.h"
#include "toolkit/foundation/ZelNotificationCenter.h"

ZEL_NAMESPACE_BEGIN

class ZelImage;
class ZelMenu;
class ZelMetadata;

class ZelLogoStamp : public ZelControl {
 public:
  explicit ZelLogoStamp(CGRect frame);
  ~ZelLogoStamp() override;

  // Shows this metadata's logo (or name); null shows nothing.
  void setMetadata(const ZelMetadata* metadata);
  const ZelMetadata* metadata() const { return metadata_; }
  // The decoded logo image (null: the name is drawn instead).
  const std::shared_ptr<const ZelImage>& logoImage() const { return logoImage_; }

  // The layer the sketch rasterizes and the editor fades (never null).
  ZelLayer* stampLayer() const { return layer(); }

  // What "Manual…" does (the power box runs its book button's action).
  void setManualAction(std::function<void()> action) { manualAction_ = std::move(action); }

  // The "About" menu: pluginLongName (disabled), "Version <version>"
  // (disabled), a separator, "Visit Website…", "Manual…".
  std::unique_ptr<ZelMenu> newAboutMenu();
  static constexpr char kVisitWebsiteTitle[] = "Visit Website\u2026";
  static constexpr char kManualTitle[] = "Manual\u2026";

  // A left click pops the About menu up below the stamp.
  void mouseDown(const ZelEvent& event) override;
  std::unique_ptr<ZelMenu> menuForEvent(const ZelEvent& event) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 private:
  void themeUpdated();

  const ZelMetadata* metadata_ = nullptr;
  std::shared_ptr<const ZelImage> logoImage_;
  std::function<void()> manualAction_;
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
