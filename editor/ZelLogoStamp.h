// The product's logo stamp at the foot of the power box: the metadata's
// "logo" image (a label image, drawn at half its pixel size, centred), or
// the plug-in's name in the text face when there is none.
//
// Its root layer is what the parameter sketch rasterizes to degrade the
// stamp and what the editor dims to 0.5 without window focus
// (stampLayer()). A click opens the "About" menu: the long name (inert), the
// version, "Visit Website…" (sends this control's action: the editor's
// logoTapped), "Manual…" (runs the manual action the power box gives it) and
// the zoom steps ("Zoom 100%" … "Zoom 200%", the current one disabled).
//
// Ownership: the metadata is not owned (the description outlives the
// editor). Threading: main thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

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
  // The zoom steps the menu offers, the one in effect and what choosing one
  // does; without a choose action the menu has no zoom items.
  void setZoomActions(std::vector<double> steps, std::function<double()> current,
                      std::function<void(double)> choose) {
    zoomSteps_ = std::move(steps);
    currentZoom_ = std::move(current);
    chooseZoom_ = std::move(choose);
  }
  // "Zoom 125%".
  static std::string zoomTitle(double zoom);

  // The "About" menu: pluginLongName (disabled), "Version <version>"
  // (disabled), a separator, "Visit Website…", "Manual…", then (with zoom
  // actions) a separator and the zoom steps.
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
  std::vector<double> zoomSteps_;
  std::function<double()> currentZoom_;
  std::function<void(double)> chooseZoom_;
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
