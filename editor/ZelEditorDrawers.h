// The editor's two drawers: the advanced-controls drawer (toggled by the
// power box's gear) and the presets drawer (toggled by the preset bar's
// "more" button). At most one is open; opening the other while the presets
// drawer is open waits until it has closed. The transition slides the drawer
// up while the clumps behind it recede. A hidden advanced parameter that
// changes makes the gear blink, at most once a second.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference. The drawers themselves belong to the editor's view tree; this
// keeps non-owning pointers to them and is their delegate until detach().
// Owns the gear's rate limiter.
// Threading: main thread only.
#pragma once

#include <memory>

#include "editor/ZelDrawerView.h"
#include "toolkit/core/ZelAnimation.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelClumpsView;
class ZelGenericUI;
class ZelParameter;
class ZelPresetsDrawer;
class ZelSpeedLim;

class ZelEditorDrawers : public ZelDrawerViewDelegate, public ZelDrawerMiniatureDelegate {
 public:
  ZelEditorDrawers(ZelGenericUI& ui, ZelRunLoop& runLoop);
  ~ZelEditorDrawers();
  ZelEditorDrawers(const ZelEditorDrawers&) = delete;
  ZelEditorDrawers& operator=(const ZelEditorDrawers&) = delete;

  // ---- Making them (the editor's deferred drawer step). Each does nothing
  // when its drawer exists or has nothing to show.
  // The advanced drawer over the clumps view, holding `advClumpsView`.
  void addAdvancedControlsDrawer(std::unique_ptr<ZelClumpsView> advClumpsView);
  void addPresetDrawer();
  // Stops being the drawers' delegate and forgets them (the editor's
  // teardown).
  void detach();

  // Null until made, or when the description has none.
  ZelDrawerView* advDrawer() const { return advDrawer_; }
  ZelPresetsDrawer* presetDrawer() const { return presetDrawer_; }
  // A drawer to open once the presets drawer has closed.
  ZelDrawerView* waitingDrawer() const { return waitingDrawer_; }

  // ---- Showing and hiding.
  void toggleDrawer(ZelDrawerView* drawer, bool force);
  bool hideVisibleDrawersPresenting(ZelDrawerView* drawer);
  bool hideAllDrawers();
  bool toggleAdvancedDrawer();
  bool togglePresetsDrawer();
  bool isAdvancedDrawerVisible() const;
  bool isPresetsDrawerVisible() const;
  void gearTapped();
  // Flashes the gear when `parameter` is an advanced one and no drawer shows.
  void flashGearIfHidden(const ZelParameter& parameter);
  // "opacity" 0 -> 1 (or 1 -> 0), ease-out, over `duration`.
  static ZelBasicAnimation fadeAnimationFadingIn(bool fadingIn, double duration);
  // The drawer transition's timing.
  static constexpr double kDrawerTransitionDuration = 0.28;

  // ---- ZelDrawerViewDelegate, ZelDrawerMiniatureDelegate.
  void drawerDidTapMiniature(ZelDrawerView& drawer, int which) override;
  bool canDrawerViewToggleVisibilityToVisibility(ZelDrawerView& drawer, bool visible) override;

 private:
  template <class Drawer>
  Drawer* insertDrawer(std::unique_ptr<Drawer> drawer);
  void animateDrawerTransition(ZelDrawerView& drawer, bool visible);
  void drawerTransitionDidStop(ZelDrawerView* drawer, bool visible);

  ZelGenericUI& ui_;
  ZelDrawerView* advDrawer_ = nullptr;
  ZelPresetsDrawer* presetDrawer_ = nullptr;
  ZelDrawerView* waitingDrawer_ = nullptr;
  std::unique_ptr<ZelSpeedLim> advFlashLim_;
};

ZEL_NAMESPACE_END
