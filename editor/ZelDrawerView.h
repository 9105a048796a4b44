// A drawer over the clumps area: the advanced-controls drawer (and, through
// ZelPresetsDrawer, the presets drawer). It paints a textured backdrop of
// its own so that the main clumps never show through, holds a content view
// (the editor puts the advanced clumps view into it) and small tappable
// miniatures that ask the editor to hide all drawers (1) or toggle the
// advanced drawer (2).
//
// Visibility: isVisible() is the model state. toggleVisibility() asks the
// delegate first (canDrawerViewToggleVisibilityToVisibility: the editor
// runs the transition there: transform, "visible" fade, rasterization);
// on consent it flips the state and tells the delegate. Becoming visible
// presents the view (unhides it) before the delegate is asked, so its
// animation shows; becoming hidden keeps the view presented until the
// layer's "visible" animation (if any) has run its course, then hides it.
// With animatesVisibility on and no "visible" animation added by the
// delegate, the drawer fades itself (0.25 s). A drawer that is not visible
// takes no clicks, even while it is still fading out.
//
// Ownership: subviews (content view, miniatures) are owned by the view
// tree. The delegates and the toggle button are non-owning pointers; their
// owner (the editor) clears them before it goes. Threading: main thread.
#pragma once

#include <string>
#include <vector>

#include "toolkit/core/ZelView.h"
#include "toolkit/foundation/ZelNotificationCenter.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;
class ZelDrawerView;
class ZelRunLoop;
class ZelSymbolButton;

class ZelDrawerViewDelegate {
 public:
  // Asked before the drawer changes to `visible`; false refuses the change.
  virtual bool canDrawerViewToggleVisibilityToVisibility(ZelDrawerView& drawer, bool visible) = 0;
  // Told after the change.
  virtual void drawerViewDidToggleVisibility(ZelDrawerView& drawer, bool visible) { (void)drawer, (void)visible; }

 protected:
  ~ZelDrawerViewDelegate() = default;
};

class ZelDrawerMiniatureDelegate {
 public:
  // `which`: kMiniatureHideAll (1) or kMiniatureToggleAdvanced (2).
  virtual void drawerDidTapMiniature(ZelDrawerView& drawer, int which) = 0;

 protected:
  ~ZelDrawerMiniatureDelegate() = default;
};

class ZelDrawerView : public ZelView {
 public:
  static constexpr int kMiniatureHideAll = 1;
  static constexpr int kMiniatureToggleAdvanced = 2;
  static constexpr double kOwnFadeDuration = 0.25;

  // `config` is not owned (may be null). A drawer made with visible false
  // starts hidden. It has one miniature: hide all (a close mark).
  ZelDrawerView(CGRect frame, const ZelConfig* config, bool visible);
  ~ZelDrawerView() override;

  const ZelConfig* config() const { return config_; }
  // Where the drawer's content goes (fills the bounds; owned by the drawer).
  ZelView* contentView() const { return contentView_; }

  // ---- Visibility.
  bool isVisible() const { return visible_; }
  // Asks the delegate, then flips the state; returns whether it changed.
  bool toggleVisibility();
  // Whether the view is shown (visible, or still on its way out).
  bool isPresented() const { return !isHidden(); }
  // Shows or hides the view at once (the state is not changed); cancels a
  // pending hide.
  void setPresented(bool presented);
  bool animatesVisibility() const { return animatesVisibility_; }
  void setAnimatesVisibility(bool animates) { animatesVisibility_ = animates; }

  // ---- Collaborators (non-owning).
  ZelSymbolButton* toggle() const { return toggle_; }
  void setToggle(ZelSymbolButton* button) { toggle_ = button; }
  ZelDrawerViewDelegate* delegate() const { return delegate_; }
  void setDelegate(ZelDrawerViewDelegate* delegate) { delegate_ = delegate; }
  ZelDrawerMiniatureDelegate* miniatureDelegate() const { return miniatureDelegate_; }
  void setMiniatureDelegate(ZelDrawerMiniatureDelegate* delegate) { miniatureDelegate_ = delegate; }

  // ---- Miniatures: small marks along the drawer's top-right corner.
  // Adds one that sends `which` (right to left, in the order added) showing
  // `glyph` (an icon glyph); kept above the content view.
  ZelView* addMiniature(int which, const std::string& glyph);
  // The miniature that sends `which`, or nullptr.
  ZelView* miniature(int which) const;
  // What a tap on a miniature does: tells the miniature delegate.
  void tapMiniature(int which);

  void themeUpdated();
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;
  ZelView* hitTest(CGPoint pointInSuperview) override;

 protected:
  // Subclasses lay their own content out below the miniatures' strip.
  static constexpr double kMiniatureSize = 22;
  static constexpr double kMiniatureMargin = 8;

 private:
  void addOwnFade(bool in);
  void finishHiding();
  void hideAfterTransition();
  void cancelPendingHide();

  const ZelConfig* config_ = nullptr;
  ZelView* contentView_ = nullptr;
  std::vector<std::pair<int, ZelSymbolButton*>> miniatures_;
  bool visible_ = false;
  bool animatesVisibility_ = true;
  ZelSymbolButton* toggle_ = nullptr;
  ZelDrawerViewDelegate* delegate_ = nullptr;
  ZelDrawerMiniatureDelegate* miniatureDelegate_ = nullptr;
  ZelRunLoop* hideLoop_ = nullptr;  // where a pending hide waits, if any
  ZelNotificationCenter::Observation themeObservation_;
};

ZEL_NAMESPACE_END
