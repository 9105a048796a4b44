// A window's content: the root of a view tree, the first responder and the
// routing of events, the popup menu shown above everything, the dirty region
// and drawing, and the frame clock that drives the window's animations.
// Portable: a backend (ZelPlatformWindow) shows it, feeds it events with
// sendEvent() and draws it with displayIfNeeded() or render().
//
// Ownership: the window owns its content view (and through it the whole
// tree), the open menu and its frame clock. It does not own the run loop
// (which must outlive it) nor the platform window (see ZelPlatformWindow.h).
// Threading: main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "toolkit/core/ZelDirtyRegion.h"
#include "toolkit/core/ZelEvent.h"
#include "toolkit/core/ZelGraphicsContext.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelView;
class ZelMenu;
class ZelPopupMenuView;
class ZelFrameClock;

class ZelWindow {
 public:
  // A window of `contentSize` points whose timing (animations, pasteboard
  // answers) runs on `runLoop`. It starts with an empty content view of
  // that size and is not the key window until the backend says so.
  ZelWindow(ZelRunLoop& runLoop, CGSize contentSize);
  ~ZelWindow();
  ZelWindow(const ZelWindow&) = delete;
  ZelWindow& operator=(const ZelWindow&) = delete;

  ZelRunLoop& runLoop() const { return runLoop_; }
  ZelFrameClock& frameClock() const { return *frameClock_; }

  // ---- Backend.
  // Attaches the backend (nullptr detaches). Attaching asks for a full redraw
  // and takes the backend's refresh rate for the frame clock.
  void setPlatformWindow(ZelPlatformWindow* platform);
  ZelPlatformWindow* platformWindow() const { return platform_; }
  // The backend's scale, 1 without one.
  double backingScale() const;
  // The backend's clipboard and URL opener; nullptr without a backend.
  ZelPasteboard* pasteboard() const;
  ZelURLOpener* urlOpener() const;

  // ---- Content.
  CGSize contentSize() const { return size_; }
  // Resizes the window and its content view (whose frame always fills it).
  void setContentSize(CGSize size);
  ZelView* contentView() const { return contentView_.get(); }
  // Replaces the content view (its frame is set to fill the window) and
  // returns the previous one, detached from the window.
  std::unique_ptr<ZelView> setContentView(std::unique_ptr<ZelView> view);

  // ---- Focus.
  bool isKeyWindow() const { return keyWindow_; }
  // The backend reports focus in and out. Losing it closes an open menu.
  void setKeyWindow(bool key);
  // Called after every change of the key state (the editor's setHasFocus).
  void setKeyWindowChangedHandler(std::function<void(bool)> handler) { keyHandler_ = std::move(handler); }

  // The view that receives key events first; nullptr: the window itself.
  ZelView* firstResponder() const { return firstResponder_; }
  // Makes `view` (in this window, or nullptr) the first responder. Fails
  // when the view refuses (acceptsFirstResponder / becomeFirstResponder)
  // or the current one refuses to resign.
  bool makeFirstResponder(ZelView* view);

  // ---- Events. The backend's single entry point. Returns whether some view
  // (or the menu) handled the event; mouse events count as handled when
  // they reached a view or the menu.
  bool sendEvent(const ZelEvent& event);
  // The modifier keys held at the last event.
  ZelEventModifierFlags currentModifierFlags() const { return modifiers_; }
  // Whether Ctrl+click (the Command flag on a left mouse-down) opens the
  // context menu like the right button does. On by default. Ctrl is also
  // the key for fine adjustment, so the press is held back until it is
  // clear which it is: released within kClickSlop points it opens the menu
  // (the view never sees the press); moved further it is delivered as an
  // ordinary press and drag.
  void setCommandClickOpensMenu(bool on) { commandClickMenu_ = on; }
  static constexpr double kClickSlop = 3;

  // The view under a point in window coordinates (an open menu first).
  ZelView* hitTest(CGPoint pointInWindow) const;
  // The view receiving drags and the mouse-up until the button is released.
  ZelView* mouseTrackingView() const { return mouseView_; }

  // ---- Menus.
  // Shows `menu` as a popup with its top-left corner at `location` (window
  // coordinates), moved inside the window if needed. Replaces an open menu.
  // `owner` (may be null) is the view it was opened for: the menu closes if
  // that view leaves the window.
  void popUpMenu(std::unique_ptr<ZelMenu> menu, CGPoint location, ZelView* owner = nullptr);
  // The menu shown now, or nullptr.
  ZelMenu* openMenu() const;
  ZelPopupMenuView* openMenuView() const { return menuView_.get(); }
  // Chooses the enabled item titled `title` of the open menu: the menu
  // closes, then the item's action runs. False (and the menu stays open)
  // when no menu is open or no enabled item has that title.
  bool chooseMenuItem(std::string_view title);
  void closeMenu();

  // ---- Drawing.
  // Adds an area (window coordinates) to the dirty region, clipped to the
  // window; the first area after a redraw asks the backend for one.
  void invalidate(CGRect windowRect);
  void setNeedsDisplay() { invalidate(CGRectMake(0, 0, size_.width, size_.height)); }
  const ZelDirtyRegion& dirtyRegion() const { return dirty_; }
  // Draws the view tree (and an open menu) clipped to `area` (window
  // coordinates). The context's user space is the window's (y up, origin at
  // the bottom left); the dirty region is left as it is.
  void render(ZelGraphicsContext& context, CGRect area);
  // Renders each dirty rectangle, empties the region, and returns the
  // rectangles drawn (valid until the next call; empty when nothing was
  // dirty, in which case nothing is drawn or allocated).
  const std::vector<CGRect>& displayIfNeeded(ZelGraphicsContext& context);

  // ---- For ZelView (not for clients).
  void viewWillLeaveWindow(ZelView* view);

 private:
  bool routeMouseDown(const ZelEvent& event);
  bool routeMouseDragOrUp(const ZelEvent& event);
  bool holdCommandPress(ZelView* hit, const ZelEvent& event);
  bool resolveHeldPress(const ZelEvent& event);
  void deliverMouseDown(ZelView* hit, const ZelEvent& event);
  bool routeKey(const ZelEvent& event);
  bool routeMenuEvent(const ZelEvent& event);
  void menuKeyDown(const ZelEvent& event);
  bool openContextMenu(ZelView* hit, const ZelEvent& event);
  void chooseMenuIndex(int index);

  ZelRunLoop& runLoop_;
  CGSize size_;
  ZelPlatformWindow* platform_ = nullptr;
  std::unique_ptr<ZelFrameClock> frameClock_;
  std::unique_ptr<ZelView> contentView_;
  std::unique_ptr<ZelPopupMenuView> menuView_;
  ZelView* menuOwner_ = nullptr;
  ZelView* firstResponder_ = nullptr;
  ZelView* mouseView_ = nullptr;
  bool keyWindow_ = false;
  bool commandClickMenu_ = true;
  // A Ctrl+press held back until it turns out a click (menu) or a drag.
  struct HeldPress {
    ZelEvent down;
    ZelView* view = nullptr;
    std::unique_ptr<ZelMenu> menu;
    ZelView* menuOwner = nullptr;
  };
  std::optional<HeldPress> heldPress_;
  ZelEventModifierFlags modifiers_ = 0;
  std::function<void(bool)> keyHandler_;
  ZelDirtyRegion dirty_;
  std::vector<CGRect> drawn_;
};

ZEL_NAMESPACE_END
