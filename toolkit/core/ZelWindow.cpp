#include "toolkit/core/ZelWindow.h"

#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelPopupMenuView.h"
#include "toolkit/core/ZelView.h"

ZEL_NAMESPACE_BEGIN

ZelWindow::ZelWindow(ZelRunLoop& runLoop, CGSize contentSize)
    : runLoop_(runLoop), size_(contentSize), frameClock_(std::make_unique<ZelFrameClock>(runLoop)) {
  setContentView(nullptr);
}

ZelWindow::~ZelWindow() {
  // Views tell the window as they go; let them find it in a sane state.
  std::unique_ptr<ZelPopupMenuView> menu = std::move(menuView_);
  menu.reset();
  std::unique_ptr<ZelView> content = std::move(contentView_);
  content.reset();
}

// ---- Backend.

void ZelWindow::setPlatformWindow(ZelPlatformWindow* platform) {
  platform_ = platform;
  if (!platform_) return;
  frameClock_->setFramesPerSecond(platform_->refreshRate());
  dirty_.clear();
  setNeedsDisplay();
}

double ZelWindow::backingScale() const { return platform_ ? platform_->backingScale() : 1; }

ZelPasteboard* ZelWindow::pasteboard() const { return platform_ ? &platform_->pasteboard() : nullptr; }

ZelURLOpener* ZelWindow::urlOpener() const { return platform_ ? &platform_->urlOpener() : nullptr; }

// ---- Content.

void ZelWindow::setContentSize(CGSize size) {
  if (size == size_) return;
  size_ = size;
  closeMenu();
  contentView_->setFrame(CGRectMake(0, 0, size.width, size.height));
  if (platform_) platform_->contentSizeDidChange(size);
  setNeedsDisplay();
}

std::unique_ptr<ZelView> ZelWindow::setContentView(std::unique_ptr<ZelView> view) {
  std::unique_ptr<ZelView> old = std::move(contentView_);
  if (old) old->setWindow(nullptr);
  contentView_ = view ? std::move(view) : std::make_unique<ZelView>();
  contentView_->setFrame(CGRectMake(0, 0, size_.width, size_.height));
  contentView_->setWindow(this);
  setNeedsDisplay();
  return old;
}

// ---- Focus.

void ZelWindow::setKeyWindow(bool key) {
  if (key == keyWindow_) return;
  keyWindow_ = key;
  if (!key) closeMenu();
  if (keyHandler_) keyHandler_(key);
}

bool ZelWindow::makeFirstResponder(ZelView* view) {
  if (view == firstResponder_) return true;
  if (view && (view->window() != this || !view->acceptsFirstResponder())) return false;
  if (firstResponder_ && !firstResponder_->resignFirstResponder()) return false;
  firstResponder_ = view;
  if (view && !view->becomeFirstResponder()) {
    firstResponder_ = nullptr;
    return false;
  }
  return true;
}

void ZelWindow::viewWillLeaveWindow(ZelView* view) {
  if (firstResponder_ == view) firstResponder_ = nullptr;
  if (mouseView_ == view) mouseView_ = nullptr;  // the rest of this press goes nowhere
  if (menuOwner_ == view) closeMenu();
  if (heldPress_ && (heldPress_->view == view || heldPress_->menuOwner == view)) heldPress_.reset();
}

// ---- Events.

bool ZelWindow::sendEvent(const ZelEvent& event) {
  modifiers_ = event.modifierFlags;
  if (menuView_ && event.type != ZelEventType::FlagsChanged) return routeMenuEvent(event);
  switch (event.type) {
    case ZelEventType::LeftMouseDown:
    case ZelEventType::RightMouseDown:
      return routeMouseDown(event);
    case ZelEventType::LeftMouseDragged:
    case ZelEventType::LeftMouseUp:
      return routeMouseDragOrUp(event);
    case ZelEventType::RightMouseUp:
    case ZelEventType::MouseMoved:
      return false;
    case ZelEventType::ScrollWheel: {
      ZelView* hit = contentView_->hitTest(event.locationInWindow);
      return hit && hit->scrollWheel(event);
    }
    case ZelEventType::KeyDown:
    case ZelEventType::KeyUp:
    case ZelEventType::FlagsChanged:
      return routeKey(event);
  }
  return false;
}

ZelView* ZelWindow::hitTest(CGPoint pointInWindow) const {
  if (menuView_ && CGRectContainsPoint(menuView_->frame(), pointInWindow)) return menuView_.get();
  return contentView_->hitTest(pointInWindow);
}

bool ZelWindow::routeMouseDown(const ZelEvent& event) {
  mouseView_ = nullptr;
  ZelView* hit = contentView_->hitTest(event.locationInWindow);
  if (!hit) return false;
  bool wasKey = keyWindow_;
  if (!wasKey) {
    // A click activates the window, as on every desktop.
    if (platform_) platform_->requestKeyFocus();
    setKeyWindow(true);
    if (!hit->acceptsFirstMouse(event)) return true;
  }
  if (event.type == ZelEventType::RightMouseDown) {
    if (!openContextMenu(hit, event)) hit->rightMouseDown(event);
    return true;
  }
  if (commandClickMenu_ && event.has(ZelEventModifierCommand) && holdCommandPress(hit, event)) return true;
  deliverMouseDown(hit, event);
  return true;
}

void ZelWindow::deliverMouseDown(ZelView* hit, const ZelEvent& event) {
  // Responder changes run code that may remove the view: viewWillLeaveWindow
  // then clears mouseView_.
  mouseView_ = hit;
  if (hit->acceptsFirstResponder()) makeFirstResponder(hit);
  if (mouseView_) mouseView_->mouseDown(event);
}

// Holds a Ctrl+press back when some view under it offers a menu.
bool ZelWindow::holdCommandPress(ZelView* hit, const ZelEvent& event) {
  for (ZelView* v = hit; v; v = v->superview()) {
    if (std::unique_ptr<ZelMenu> menu = v->menuForEvent(event)) {
      heldPress_ = HeldPress{event, hit, std::move(menu), v};
      return true;
    }
  }
  return false;
}

// A drag past the slop turns the held press into a press and a drag; a
// release within it opens the menu. True when the event was consumed here.
bool ZelWindow::resolveHeldPress(const ZelEvent& event) {
  HeldPress held = std::move(*heldPress_);
  heldPress_.reset();
  if (event.type == ZelEventType::LeftMouseUp) {
    if (held.menuOwner) popUpMenu(std::move(held.menu), held.down.locationInWindow, held.menuOwner);
    return true;
  }
  double dx = event.locationInWindow.x - held.down.locationInWindow.x;
  double dy = event.locationInWindow.y - held.down.locationInWindow.y;
  if (dx * dx + dy * dy <= kClickSlop * kClickSlop) {
    heldPress_ = std::move(held);  // still undecided
    return true;
  }
  if (held.view) deliverMouseDown(held.view, held.down);
  return false;
}

bool ZelWindow::routeMouseDragOrUp(const ZelEvent& event) {
  if (heldPress_ && resolveHeldPress(event)) return true;
  ZelView* target = mouseView_;
  if (event.type == ZelEventType::LeftMouseUp) {
    mouseView_ = nullptr;
  }
  if (!target) return false;
  if (event.type == ZelEventType::LeftMouseUp) target->mouseUp(event);
  else target->mouseDragged(event);
  return true;
}

bool ZelWindow::openContextMenu(ZelView* hit, const ZelEvent& event) {
  for (ZelView* v = hit; v; v = v->superview()) {
    if (std::unique_ptr<ZelMenu> menu = v->menuForEvent(event)) {
      popUpMenu(std::move(menu), event.locationInWindow, v);
      return true;
    }
  }
  return false;
}

bool ZelWindow::routeKey(const ZelEvent& event) {
  if (event.type == ZelEventType::KeyDown) {
    if (contentView_->performKeyEquivalent(event)) return true;
    return firstResponder_ && firstResponder_->keyDown(event);
  }
  if (event.type == ZelEventType::KeyUp) return firstResponder_ && firstResponder_->keyUp(event);
  return firstResponder_ && firstResponder_->flagsChanged(event);
}

// While a menu is open it takes every event but modifier changes: a click
// outside closes it (and goes no further), escape closes it, the arrows
// move the highlight, return or releasing the button over an item chooses.
bool ZelWindow::routeMenuEvent(const ZelEvent& event) {
  ZelPopupMenuView& menu = *menuView_;
  int under = menu.itemAtWindowPoint(event.locationInWindow);
  switch (event.type) {
    case ZelEventType::LeftMouseDown:
    case ZelEventType::RightMouseDown:
      mouseView_ = nullptr;
      if (!CGRectContainsPoint(menu.frame(), event.locationInWindow)) closeMenu();
      else menu.setHighlightedIndex(under);
      return true;
    case ZelEventType::LeftMouseDragged:
    case ZelEventType::MouseMoved:
      menu.setHighlightedIndex(under);
      return true;
    case ZelEventType::LeftMouseUp:
    case ZelEventType::RightMouseUp:
      if (menu.menu().isSelectable(under)) chooseMenuIndex(under);
      return true;
    case ZelEventType::KeyDown:
      menuKeyDown(event);
      return true;
    default:
      return true;
  }
}

void ZelWindow::menuKeyDown(const ZelEvent& event) {
  ZelPopupMenuView& menu = *menuView_;
  char32_t c = ZelFirstCodePoint(event.charactersIgnoringModifiers);
  if (event.keyCode == ZelKeyCodeEscape || c == 0x1B) {
    closeMenu();
  } else if (c == ZelUpArrowFunctionKey || event.keyCode == ZelKeyCodeUpArrow) {
    menu.moveHighlight(-1);
  } else if (c == ZelDownArrowFunctionKey || event.keyCode == ZelKeyCodeDownArrow) {
    menu.moveHighlight(+1);
  } else if (event.keyCode == ZelKeyCodeReturn || event.keyCode == ZelKeyCodeKeypadEnter || c == '\r') {
    if (menu.menu().isSelectable(menu.highlightedIndex())) chooseMenuIndex(menu.highlightedIndex());
  }
}

// ---- Menus.

void ZelWindow::popUpMenu(std::unique_ptr<ZelMenu> menu, CGPoint location, ZelView* owner) {
  closeMenu();
  if (!menu) return;
  menuView_ = std::make_unique<ZelPopupMenuView>(std::move(menu), location, size_);
  menuOwner_ = owner;
  menuView_->setWindow(this);
  invalidate(menuView_->frame());
}

ZelMenu* ZelWindow::openMenu() const { return menuView_ ? &menuView_->menu() : nullptr; }

bool ZelWindow::chooseMenuItem(std::string_view title) {
  if (!menuView_) return false;
  int index = menuView_->menu().indexOfItem(title);
  if (!menuView_->menu().isSelectable(index)) return false;
  chooseMenuIndex(index);
  return true;
}

void ZelWindow::chooseMenuIndex(int index) {
  // Close first: the action may open another menu or remove the owner.
  std::unique_ptr<ZelPopupMenuView> view = std::move(menuView_);
  menuOwner_ = nullptr;
  invalidate(view->frame());
  view->setWindow(nullptr);
  std::function<void()> action = view->menu().items()[static_cast<std::size_t>(index)].action;
  if (action) action();
}

void ZelWindow::closeMenu() {
  if (!menuView_) return;
  std::unique_ptr<ZelPopupMenuView> view = std::move(menuView_);
  menuOwner_ = nullptr;
  invalidate(view->frame());
  view->setWindow(nullptr);
}

// ---- Drawing.

void ZelWindow::invalidate(CGRect windowRect) {
  CGRect r = CGRectIntersection(windowRect, CGRectMake(0, 0, size_.width, size_.height));
  if (CGRectIsEmpty(r)) return;
  bool wasEmpty = dirty_.empty();
  dirty_.add(r);
  if (wasEmpty && platform_) platform_->setNeedsRedraw();
}

void ZelWindow::render(ZelGraphicsContext& context, CGRect area) {
  context.save();
  context.clipToRect(area);
  contentView_->render(context);
  if (menuView_) menuView_->render(context);
  context.restore();
}

const std::vector<CGRect>& ZelWindow::displayIfNeeded(ZelGraphicsContext& context) {
  drawn_.clear();
  if (dirty_.empty()) return drawn_;
  drawn_.assign(dirty_.rects().begin(), dirty_.rects().end());
  dirty_.clear();
  for (const CGRect& r : drawn_) render(context, r);
  return drawn_;
}

ZEL_NAMESPACE_END
