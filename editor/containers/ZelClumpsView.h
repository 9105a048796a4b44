// The backdrop of the editor area (and of the advanced area): the theme's
// texture, the half-point hairlines between clumps (the edges of the
// editor-level layout) and, optionally, a dashed outside border that bends
// round the plug-in's HQ control.
//
// The view is layer-backed with masksToBounds off and rasterization off (the
// rasterization scale follows the window's backing scale, for the editor's
// drawer transitions that rasterize it while it moves). It redraws on the
// theme notification.
//
// Ownership: `config` is not owned (the description outlives the editor);
// the layout is owned. Clump views are added by the editor as subviews.
// Threading: main thread only.
#pragma once

#include <memory>

#include "layout/engine/ZelPluginLayout.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"
#include "toolkit/foundation/ZelPath.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

class ZelClumpsView : public ZelView {
 public:
  // `config` may be null (then nothing but the texture and hairlines).
  ZelClumpsView(CGRect frame, const ZelConfig* config);
  ~ZelClumpsView() override;

  const ZelConfig* config() const { return config_; }

  // The editor-level layout whose edges are drawn (null: no hairlines).
  const ZelPluginLayout* layout() const { return layout_.get(); }
  void setLayout(std::unique_ptr<ZelPluginLayout> layout);

  // The outside border's inset from the bounds (the border sits at half of it).
  double inset() const { return inset_; }
  void setInset(double inset);
  bool drawOutsideBorder() const { return drawOutsideBorder_; }
  void setDrawOutsideBorder(bool draw);

  // ---- Geometry of the outside border (bounds coordinates).
  // B: the bounds inset by inset/2 on each side, made integral, then 1 point
  // lower in height.
  CGRect outsideBorderRect() const;
  // Whether the border bends round the HQ control (the metadata has the HQ
  // mode).
  bool bendsAroundHQControl() const;
  // C: the HQ parameter's displaced rectangle grown by 64 on every side and
  // moved by (-40, -40) (the zero rectangle's when the parameter is missing).
  CGRect hqClearanceRect() const;
  // The dashed border: the rectangle B, or in HQ mode B's far sides with an
  // arc round C.
  ZelPath outsideBorderPath() const;

  // Redraws (the theme changed).
  void themeUpdated();

  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  void viewDidMoveToWindow() override;

 private:
  void drawHairlines(ZelGraphicsContext& ctx) const;
  void drawBorder(ZelGraphicsContext& ctx) const;

  const ZelConfig* config_ = nullptr;
  std::unique_ptr<ZelPluginLayout> layout_;
  double inset_ = 0;
  bool drawOutsideBorder_ = false;
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
