// The power strip on the right of the editor (62 × 380): a clump view of the
// PowerBox clump, whose layout places the power control (the MasterOnOff
// parameter's control) under the clump label at the top. Below it the
// sketch area; at the foot the symbol buttons (book: the manual; gear: the
// advanced drawer; theme: light/dark) and the logo stamp. The header and
// the footer are set off with ZelFillGenericHeaderFooterOnEdge.
//
// The power box only builds and places these; the editor wires the buttons
// (book -> bookTapped, gear -> gearTapped, theme -> toggleUITheme, logo ->
// logoTapped), registers the power control and puts its sketch in
// sketchArea().
//
// Ownership: buttons, logo stamp and controls are subviews (owned by the
// view tree); the accessors return non-owning pointers valid while the
// power box lives. The metadata is not owned. Threading: main thread only.
#pragma once

#include "editor/containers/ZelClumpView.h"
#include "sketch/ZelSketchHost.h"

ZEL_NAMESPACE_BEGIN

class ZelLogoStamp;
class ZelMetadata;
class ZelSymbolButton;

class ZelPowerBox : public ZelClumpView, public ZelSketchHost {
 public:
  // `clump` is the PowerBox clump (may be null: no power control). Without
  // advanced controls the gear is disabled (it does nothing).
  ZelPowerBox(CGRect frame, const ZelClump* clump, bool hasAdvancedControls);
  ~ZelPowerBox() override;

  // Gives the logo stamp its logo and the About menu its names.
  void setMetadata(const ZelMetadata* metadata);
  const ZelMetadata* metadata() const { return metadata_; }

  // ---- Parts (never null).
  ZelSymbolButton* book() const { return book_; }
  ZelSymbolButton* gear() const { return gear_; }
  ZelSymbolButton* themeButton() const { return theme_; }
  ZelLogoStamp* logo() const { return logo_; }
  // The logo stamp's layer (the sketch rasterizes it; the editor fades it).
  ZelLayer* logoStampLayer() const override;
  // The power parameter's control (the first control of the clump), or
  // nullptr without a PowerBox clump. Stays valid after the editor has
  // emptied parameterControls().
  ZelParameterControl* powerControl() const { return powerControl_; }
  bool hasAdvancedControls() const { return hasAdvancedControls_; }

  // ---- Regions (bounds coordinates).
  // The top part with the label and the power control.
  CGRect headerRect() const;
  // The foot with the buttons and the logo stamp.
  CGRect footerRect() const;
  // Where the sketch goes: between header and footer, inset by 8 points.
  CGRect sketchArea() const;
  static constexpr double kSketchMargin = 8;

  void themeUpdated() override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 private:
  void addButtons();
  void addLogoStamp();

  const ZelMetadata* metadata_ = nullptr;
  bool hasAdvancedControls_ = false;
  ZelParameterControl* powerControl_ = nullptr;
  ZelSymbolButton* book_ = nullptr;
  ZelSymbolButton* gear_ = nullptr;
  ZelSymbolButton* theme_ = nullptr;
  ZelLogoStamp* logo_ = nullptr;
};

ZEL_NAMESPACE_END
