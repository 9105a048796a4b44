// The gallery's content: every piece of the toolkit, theme and elements on
// the theme's texture, in two columns of titled sections. Static sections
// are drawn in drawRect; the symbol buttons are subviews and the focus
// borders layers of a layer-backed subview, so they animate like the
// editor's.
//
// Ownership: owned by the window (its content view); buttons and borders
// are owned by the view tree. Threading: main thread only.
#pragma once

#include <string>
#include <vector>

#include "app/gallery/GalleryDrawing.h"
#include "toolkit/widgets/ZelFocusBorder.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"

namespace gallery {

using namespace zel;

class GalleryView : public ZelView {
 public:
  static constexpr CGSize kSize{720, 540};

  explicit GalleryView(std::string descriptionPath);
  ~GalleryView() override;

  // Starts the demonstrated pulse, flash and warning pulse now.
  void startDemonstrations();
  // The time after startDemonstrations() at which all three are visibly
  // under way (for a still picture).
  static constexpr double kCaptureDelay = 0.05;
  // Restarts them every `period` seconds on the window's run loop (for the
  // live window; a still picture needs none).
  void repeatDemonstrations(double period);

  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 private:
  struct ButtonSpec;
  CGRect fromTop(double x, double top, double width, double height) const;
  void addButtons();
  void addFocusBorders();
  void themeUpdated();

  LabelImages labels_;
  std::vector<ZelSymbolButton*> buttons_;
  std::vector<std::string> buttonCaptions_;
  std::vector<ZelFocusBorder*> borders_;
  std::vector<double> roundings_;
  ZelSymbolButton* pulseButton_ = nullptr;
  ZelSymbolButton* flashButton_ = nullptr;
  ZelSymbolButton* warningButton_ = nullptr;
  ZelNotificationCenter::Observation themeObservation_;
};

}  // namespace gallery
