// One clump of the editor: lays out its parameters with the clump's own
// layout (inside `useableRect`), creates one ZelParameterControl per
// parameter, and draws the clump's label image, label border, tagged labels
// and interior hairlines. Dimming fades the controls one after another and
// the whole clump to half alpha.
//
// Ownership: `clump` is not owned (the description outlives the editor).
// Controls of parameters without a "displacedFrame" are subviews (owned by
// the view tree). A displaced control is not added: the clump view keeps it
// until the editor takes it (takeDisplacedControl) and places it in its own
// coordinates. parameterControls() lists every control created, as
// non-owning pointers, in parameter order; the editor empties the list once
// it has registered them (clearParameterControls).
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "controls/ZelParameterControl.h"
#include "layout/engine/ZelPluginLayout.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"
#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

class ZelClump;
class ZelImage;
class ZelParameter;

class ZelClumpView : public ZelView {
 public:
  // Makes primary controls (nullptr: ZelMakePrimaryControl).
  using PrimaryFactory = ZelParameterControl::PrimaryFactory;

  // Builds the layout over useableRect() and the controls. `clump` may be
  // null (an empty clump view: no controls, no labels).
  ZelClumpView(CGRect frame, const ZelClump* clump, PrimaryFactory factory = nullptr);
  ~ZelClumpView() override;

  const ZelClump* clump() const { return clump_; }
  const ZelPluginLayout& layout() const { return *layout_; }
  const std::vector<ZelLayoutEdge>& edges() const { return layout_->edges(); }

  // ---- Controls.
  const std::vector<ZelParameterControl*>& parameterControls() const { return parameterControls_; }
  // Empties the list (the controls stay where they are).
  void clearParameterControls() { parameterControls_.clear(); }
  // Hands over a displaced control created here (nullptr when `control` is
  // not one of them or was taken already).
  std::unique_ptr<ZelParameterControl> takeDisplacedControl(const ZelParameterControl* control);
  // Whether `control` is a displaced control still kept here.
  bool holdsDisplacedControl(const ZelParameterControl* control) const;

  // ---- Geometry (bounds coordinates).
  // The bounds inset by the clump's "inset" {"x", "y"}, read as integers.
  CGRect useableRect() const;
  // The layout's frame of the parameter's index in the clump.
  CGRect frameForParameter(const ZelParameter& parameter) const;
  // A rounded rectangle of the bounds inset by 4, radius 24, built at the
  // origin. The caller owns the value.
  ZelPath newRoundedBorderRect() const;

  // ---- Dimming.
  bool dimmed() const { return dimmed_; }
  // Tells every subview that is a parameter control, in subview order, to
  // dim (or undim) at `delay`, `delay` + 0.02, `delay` + 0.04 ... with the
  // same priority; then fades this view's alpha to 0.5 (dimmed) or 1.0.
  virtual void setDimmed(bool dimmed, double delay, std::uint32_t priority);
  static constexpr double kDimStagger = 0.02;

  // Redraws (the theme changed); subclasses re-colour what they hold.
  virtual void themeUpdated();

  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 protected:
  // The frame named "x" of the clump's layout (where the label goes).
  CGRect labelFrame() const { return layout_->frameLabeled("x"); }
  // Dims one control (setDimmed's step for each control).
  virtual void dimControl(ZelParameterControl& control, bool dimmed, double delay, std::uint32_t priority);

 private:
  void decodeLabels();
  void buildControls(PrimaryFactory factory);
  void drawLabels(ZelGraphicsContext& ctx) const;
  void drawInteriorBorders(ZelGraphicsContext& ctx) const;

  const ZelClump* clump_ = nullptr;
  std::unique_ptr<ZelPluginLayout> layout_;
  std::vector<ZelParameterControl*> parameterControls_;
  std::vector<std::unique_ptr<ZelParameterControl>> displacedControls_;
  // Decoded once: the "label" image and the "taggedLabels" images with the
  // frames they are drawn in.
  std::shared_ptr<const ZelImage> labelImage_;
  struct TaggedLabel {
    std::shared_ptr<const ZelImage> image;
    CGRect frame;
  };
  std::vector<TaggedLabel> taggedLabels_;
  bool dimmed_ = false;
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
