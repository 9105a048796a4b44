#include "toolkit/x11/ZelX11WindowHost.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <limits>

#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/x11/ZelX11Scale.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr long kEventMask = ExposureMask | StructureNotifyMask | FocusChangeMask | KeyPressMask | KeyReleaseMask |
                            ButtonPressMask | ButtonReleaseMask | PointerMotionMask | PropertyChangeMask;
// Events read per pump at most, so that a flood cannot starve drawing.
constexpr int kMaxEventsPerPump = 512;
// Two presses of a button closer than this (ms, pixels) count as one click
// more.
constexpr unsigned long kMultiClickMilliseconds = 400;
constexpr int kMultiClickDistance = 4;

constexpr double kPixelEpsilon = 1e-6;

bool validScale(double s) { return s > 0 && std::isfinite(s); }

int pixelExtent(double points, double scale) {
  return std::max(1, static_cast<int>(std::ceil(std::max(points, 0.0) * scale - kPixelEpsilon)));
}

}  // namespace

std::unique_ptr<ZelX11WindowHost> ZelX11WindowHost::create(ZelWindow& window, ZelX11WindowOptions options) {
  auto connection = ZelX11Connection::open(options.displayName.empty() ? nullptr : options.displayName.c_str());
  if (!connection) return nullptr;
  return std::unique_ptr<ZelX11WindowHost>(new ZelX11WindowHost(window, std::move(connection), std::move(options)));
}

ZelX11WindowHost::ZelX11WindowHost(ZelWindow& window, std::unique_ptr<ZelX11Connection> connection,
                                   ZelX11WindowOptions options)
    : window_(window),
      connection_(std::move(connection)),
      parent_(options.parent),
      text_(options.text ? options.text : std::make_shared<ZelCairoText>()) {
  scale_ = validScale(options.backingScale)
               ? options.backingScale
               : ZelX11ScaleForDPI(ZelX11DPIFromResources(connection_->resourceString()));
  createWindow(options);
  keyboard_ = std::make_unique<ZelX11KeyboardReader>(display(), xWindow_);
  keyboard_->setFocused(window_.isKeyWindow());  // a host's top-level may have the focus already
  XSelectInput(display(), xWindow_, kEventMask | keyboard_->filterEventMask());
  pasteboard_ = std::make_unique<ZelX11Pasteboard>(*connection_, xWindow_, window_.runLoop());
  backBuffer_ = std::make_unique<ZelX11BackBuffer>(display(), xWindow_, text_);
  int w = 0, h = 0;
  pixelSize(w, h);
  backBuffer_->resize(w, h);
  // Key repeats as repeated presses without releases in between (this
  // connection only).
  XkbSetDetectableAutoRepeat(display(), True, nullptr);
  window_.setPlatformWindow(this);
  XFlush(display());
}

ZelX11WindowHost::~ZelX11WindowHost() {
  if (window_.platformWindow() == this) window_.setPlatformWindow(nullptr);
  window_.runLoop().cancelAllForTarget(this);
  pasteboard_.reset();
  keyboard_.reset();
  backBuffer_.reset();
  // A window that went with its parent is gone already; the error trap
  // takes the BadWindow if its DestroyNotify is still on the way.
  if (!destroyed_) XDestroyWindow(display(), xWindow_);
  connection_.reset();
}

void ZelX11WindowHost::pixelSize(int& width, int& height) const {
  CGSize size = window_.contentSize();
  width = pixelExtent(size.width, scale_);
  height = pixelExtent(size.height, scale_);
}

void ZelX11WindowHost::createWindow(const ZelX11WindowOptions& options) {
  Display* d = display();
  int screen = connection_->screen();
  int w = 0, h = 0;
  pixelSize(w, h);
  // Our own visual and colormap, whatever the parent's: the back buffer
  // draws for the screen's default visual.
  XSetWindowAttributes attributes{};
  attributes.background_pixmap = None;  // no server clear before our copy: no flicker
  attributes.border_pixel = 0;
  attributes.colormap = DefaultColormap(d, screen);
  attributes.bit_gravity = NorthWestGravity;
  attributes.event_mask = kEventMask;
  ZelX11Id parent = parent_ ? parent_ : connection_->rootWindow();
  xWindow_ = XCreateWindow(d, parent, 0, 0, static_cast<unsigned>(w), static_cast<unsigned>(h), 0,
                           DefaultDepth(d, screen), InputOutput, DefaultVisual(d, screen),
                           CWBackPixmap | CWBorderPixel | CWColormap | CWBitGravity | CWEventMask, &attributes);
  if (parent_) {
    watchHostTopLevel();
    setFixedSizeHints();
  } else {
    focusWindow_ = xWindow_;
    setTopLevelProperties(options);
  }
}

void ZelX11WindowHost::setTopLevelProperties(const ZelX11WindowOptions& options) {
  Display* d = display();
  const ZelX11Atoms& a = connection_->atoms();
  Atom protocols[] = {a.wmDeleteWindow};
  XSetWMProtocols(d, xWindow_, protocols, 1);
  XStoreName(d, xWindow_, options.title.c_str());
  XChangeProperty(d, xWindow_, a.netWMName, a.utf8String, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(options.title.data()),
                  static_cast<int>(options.title.size()));
  std::string name = options.className;
  std::string className = options.className;
  if (!className.empty()) className[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(className[0])));
  XClassHint hint{name.data(), className.data()};
  XSetClassHint(d, xWindow_, &hint);
  long pid = static_cast<long>(getpid());
  XChangeProperty(d, xWindow_, a.netWMPid, XA_CARDINAL, 32, PropModeReplace, reinterpret_cast<unsigned char*>(&pid),
                  1);
  setFixedSizeHints();
}

// The editor has one size: the window manager offers no resizing. An
// embedded window tells its size as the base size only: suil's GTK
// wrappers take a minimum size as the least the host may give (GTK 2 pins
// the socket's size request to it, so a zoom that asks for more through
// ui:resize would be centred and cut off) and a maximum as the most, while
// they size the socket from the base size.
void ZelX11WindowHost::setFixedSizeHints() {
  int w = 0, h = 0;
  pixelSize(w, h);
  XSizeHints hints{};
  hints.width = hints.base_width = hints.min_width = hints.max_width = w;
  hints.height = hints.base_height = hints.min_height = hints.max_height = h;
  hints.flags = parent_ ? PSize | PBaseSize : PSize | PMinSize | PMaxSize;
  XSetWMNormalHints(display(), xWindow_, &hints);
}

namespace {

// The parent of `w`, or 0 at the root (or for a window that is gone).
ZelX11Id parentOf(Display* d, ZelX11Id w, ZelX11Id root) {
  Window* children = nullptr;
  unsigned count = 0;
  Window rootReturn = 0, parent = 0;
  if (!XQueryTree(d, w, &rootReturn, &parent, &children, &count)) return 0;
  if (children) XFree(children);
  return parent == root ? 0 : parent;
}

}  // namespace

// Inside a host the keyboard focus usually stays with the host's top-level
// window (which forwards keys to us): its focus is our key state. Asked
// once here (a few round trips); focus events keep it current.
void ZelX11WindowHost::watchHostTopLevel() {
  Display* d = display();
  const ZelX11Id root = connection_->rootWindow();
  ZelX11Id w = parent_;
  while (ZelX11Id up = parentOf(d, w, root)) w = up;
  focusWindow_ = w;
  XSelectInput(d, focusWindow_, FocusChangeMask | StructureNotifyMask);
  Window focus = 0;
  int revert = 0;
  XGetInputFocus(d, &focus, &revert);
  for (ZelX11Id f = focus; f > PointerRoot && f != root; f = parentOf(d, f, root)) {
    if (f == focusWindow_) {
      window_.setKeyWindow(true);
      break;
    }
  }
}

// ---- Size and scale.

bool ZelX11WindowHost::roomInHost(int& width, int& height) const {
  if (!parent_) return false;
  Display* d = display();
  const ZelX11Id root = connection_->rootWindow();
  width = height = std::numeric_limits<int>::max();
  // Each ancestor up to the host's top-level clips what lies beyond it.
  for (ZelX11Id a = parent_; a; a = a == focusWindow_ ? 0 : parentOf(d, a, root)) {
    Window r = 0, child = 0;
    int x = 0, y = 0;
    unsigned w = 0, h = 0, border = 0, depth = 0;
    if (!XGetGeometry(d, a, &r, &x, &y, &w, &h, &border, &depth) ||
        !XTranslateCoordinates(d, xWindow_, a, 0, 0, &x, &y, &child))
      return false;
    width = std::min(width, static_cast<int>(w) - x);
    height = std::min(height, static_cast<int>(h) - y);
  }
  width = std::max(width, 0);
  height = std::max(height, 0);
  return true;
}

void ZelX11WindowHost::applyPixelSize() {
  int w = 0, h = 0;
  pixelSize(w, h);
  backBuffer_->resize(w, h);
  setFixedSizeHints();
  XResizeWindow(display(), xWindow_, static_cast<unsigned>(w), static_cast<unsigned>(h));
  XFlush(display());
  window_.setNeedsDisplay();
}

void ZelX11WindowHost::contentSizeDidChange(CGSize) {
  if (!applyingServerSize_) applyPixelSize();
}

void ZelX11WindowHost::setBackingScale(double scale) {
  if (!validScale(scale) || scale == scale_) return;
  scale_ = scale;
  applyPixelSize();
}

// The host or the window manager resized us: the content follows.
void ZelX11WindowHost::handleConfigure(int width, int height) {
  if (width == backBuffer_->pixelWidth() && height == backBuffer_->pixelHeight()) return;
  backBuffer_->resize(width, height);
  applyingServerSize_ = true;
  window_.setContentSize(CGSizeMake(width / scale_, height / scale_));
  applyingServerSize_ = false;
  window_.setNeedsDisplay();
}

// ---- Showing and focus.

// Asked to map, the window counts as mapped at once (an UnmapNotify says
// otherwise), so the next pump draws the first frame into the back buffer
// while the host is still mapping its own window.
void ZelX11WindowHost::show() {
  XMapWindow(display(), xWindow_);
  XFlush(display());
  mapped_ = true;
  window_.frameClock().setSuspended(false);
}

void ZelX11WindowHost::hide() {
  XUnmapWindow(display(), xWindow_);
  becameHidden();
  XFlush(display());
}

// Nothing is drawn while hidden: the last frame waits as the background
// picture, so the window shows it again the moment it is mapped.
void ZelX11WindowHost::becameHidden() {
  mapped_ = false;
  window_.frameClock().setSuspended(true);
  if (!destroyed_ && shown_ && backBuffer_->showAsBackground()) shown_ = false;
}

// A click in a top-level window without the keyboard: take it. Embedded,
// never: the host keeps the focus and passes keys on (see the header). An
// unviewable window makes this fail harmlessly (the error trap takes the
// BadMatch).
void ZelX11WindowHost::requestKeyFocus() {
  if (parent_) return;
  XSetInputFocus(display(), xWindow_, RevertToParent, CurrentTime);
  XFlush(display());
}

void ZelX11WindowHost::handleFocus(const XEvent& event) {
  const XFocusChangeEvent& f = event.xfocus;
  if (f.detail == NotifyPointer || (f.window != focusWindow_ && f.window != xWindow_)) return;
  if (event.type == FocusIn) {
    window_.setKeyWindow(true);
    keyboard_->setFocused(true);
  } else if (f.window == focusWindow_ && f.detail != NotifyInferior) {
    // Focus moving into our window (an inferior of the top-level) keeps us
    // key; leaving the top-level's tree does not.
    keysDown_.reset();
    window_.setKeyWindow(false);
    keyboard_->setFocused(false);
  }
}

// ---- The pump.

bool ZelX11WindowHost::pump() {
  int handled = dispatchEvents();
  std::size_t ran = window_.runLoop().runDue();
  bool drew = redrawIfNeeded();
  if (handled || ran || drew) XFlush(display());
  return !isClosed();
}

std::optional<double> ZelX11WindowHost::nextTimeout() const {
  if ((mapped_ && (needsRedraw_ || !exposed_.empty())) || XEventsQueued(display(), QueuedAlready) > 0) return 0.0;
  std::optional<double> due = window_.runLoop().nextDueTime();
  if (!due) return std::nullopt;
  return std::max(0.0, *due - window_.runLoop().now());
}

int ZelX11WindowHost::dispatchEvents() {
  Display* d = display();
  int n = 0;
  // QueuedAfterReading reads what the socket holds without flushing or
  // waiting: an idle pump costs one non-blocking read.
  while (n < kMaxEventsPerPump && XEventsQueued(d, QueuedAfterReading) > 0) {
    XEvent event;
    XNextEvent(d, &event);
    dispatch(event);
    ++n;
  }
  return n;
}

void ZelX11WindowHost::dispatch(XEvent& event) {
  if (keyboard_->filter(event) || pasteboard_->handleEvent(event)) return;
  switch (event.type) {
    case Expose:
      exposed_ = exposed_.united({event.xexpose.x, event.xexpose.y, event.xexpose.width, event.xexpose.height});
      break;
    case ConfigureNotify:
      if (event.xconfigure.window == xWindow_) handleConfigure(event.xconfigure.width, event.xconfigure.height);
      else if (parent_ && event.xconfigure.window == focusWindow_ && hostResizeHandler_) hostResizeHandler_();
      break;
    case DestroyNotify:
      if (event.xdestroywindow.window == xWindow_) destroyed_ = true;
      break;
    case MapNotify:
      if (event.xmap.window == xWindow_) {
        mapped_ = true;
        window_.frameClock().setSuspended(false);
      }
      break;
    case UnmapNotify:
      if (event.xunmap.window == xWindow_) becameHidden();
      break;
    case FocusIn:
    case FocusOut:
      handleFocus(event);
      break;
    case KeyPress:
    case KeyRelease:
      handleKey(event);
      break;
    case ButtonPress:
    case ButtonRelease:
      handleButton(event);
      break;
    case MotionNotify:
      handleMotion(event);
      break;
    case ClientMessage:
      handleClientMessage(event);
      break;
    default:
      break;
  }
}

bool ZelX11WindowHost::redrawIfNeeded() {
  bool drew = false;
  // An unmapped window draws nothing: the dirty region waits for the map
  // (and the Expose that follows it).
  if (needsRedraw_ && !destroyed_ && mapped_) {
    needsRedraw_ = false;  // drawing may invalidate again: that is the next frame
    drew = backBuffer_->display(window_, scale_);
    // Not shown yet: the server paints this frame itself when the window
    // becomes viewable.
    if (drew && !shown_) backBuffer_->showAsBackground();
  }
  if (!exposed_.empty() && mapped_) {
    backBuffer_->present(exposed_);
    exposed_ = {};
    drew = true;
    if (!shown_) {
      shown_ = true;
      backBuffer_->dropBackground();
    }
  }
  if (drew) ++redraws_;
  return drew;
}

// ---- Input.

CGPoint ZelX11WindowHost::pointFromPixels(int x, int y) const {
  return CGPointMake(x / scale_, window_.contentSize().height - y / scale_);
}

bool ZelX11WindowHost::send(ZelEvent event) {
  event.timestamp = window_.runLoop().now();
  return window_.sendEvent(event);
}

void ZelX11WindowHost::handleKey(XEvent& event) {
  if (!event.xany.send_event) pasteboard_->setEventTime(event.xkey.time);
  ZelX11KeyInput key = keyboard_->read(event);
  unsigned code = event.xkey.keycode & 0xFF;
  if (event.type == KeyPress) {
    key.isARepeat = keysDown_.test(code);
    keysDown_.set(code);
  } else {
    keysDown_.reset(code);
  }
  ZelEvent e = ZelX11TranslateKey(key);
  e.locationInWindow = pointer_;
  const bool used = send(std::move(e));
  // Only keys that came to us directly: a host that forwarded a key to us
  // would get it back, and send it again.
  if (!parent_ || event.xany.send_event) return;
  if (event.type == KeyPress) {
    keysForwarded_.set(code, !used);
    if (!used) forwardKeyToHost(event);
  } else if (keysForwarded_.test(code)) {
    keysForwarded_.reset(code);
    forwardKeyToHost(event);
  }
}

void ZelX11WindowHost::forwardKeyToHost(const XEvent& event) {
  XEvent e = event;
  e.xkey.window = focusWindow_;
  e.xkey.subwindow = None;
  XSendEvent(display(), focusWindow_, False, NoEventMask, &e);
}

int ZelX11WindowHost::clickCountFor(const XEvent& event) {
  const XButtonEvent& b = event.xbutton;
  bool again = b.button == lastClickButton_ && b.time - lastClickTime_ <= kMultiClickMilliseconds &&
               std::abs(b.x - lastClickX_) <= kMultiClickDistance && std::abs(b.y - lastClickY_) <= kMultiClickDistance;
  clickCount_ = again ? clickCount_ + 1 : 1;
  lastClickButton_ = b.button;
  lastClickTime_ = b.time;
  lastClickX_ = b.x;
  lastClickY_ = b.y;
  return clickCount_;
}

void ZelX11WindowHost::handleButton(const XEvent& event) {
  const XButtonEvent& b = event.xbutton;
  if (!b.send_event) pasteboard_->setEventTime(b.time);
  pointer_ = pointFromPixels(b.x, b.y);
  ZelEventModifierFlags flags = ZelX11ModifierFlags(b.state);
  bool press = event.type == ButtonPress;
  switch (b.button) {
    case Button1:
    case Button3: {
      bool left = b.button == Button1;
      ZelEventType type = left ? (press ? ZelEventType::LeftMouseDown : ZelEventType::LeftMouseUp)
                               : (press ? ZelEventType::RightMouseDown : ZelEventType::RightMouseUp);
      send(ZelEvent::mouse(type, pointer_, flags, press ? clickCountFor(event) : clickCount_));
      break;
    }
    case Button4: case Button5: case 6: case 7: {
      if (!press) break;  // a wheel notch is a press and a release
      double dy = b.button == Button4 ? 1 : b.button == Button5 ? -1 : 0;
      double dx = b.button == 6 ? 1 : b.button == 7 ? -1 : 0;
      send(ZelEvent::scroll(pointer_, dx, dy, flags));
      break;
    }
    default:
      break;
  }
}

// Only the latest of a run of motion events matters.
void ZelX11WindowHost::handleMotion(XEvent& event) {
  Display* d = display();
  while (XEventsQueued(d, QueuedAlready) > 0) {
    XEvent next;
    XPeekEvent(d, &next);
    if (next.type != MotionNotify || next.xmotion.window != event.xmotion.window) break;
    XNextEvent(d, &event);
  }
  const XMotionEvent& m = event.xmotion;
  pointer_ = pointFromPixels(m.x, m.y);
  bool held = m.state & (Button1Mask | Button2Mask | Button3Mask);
  send(ZelEvent::mouse(held ? ZelEventType::LeftMouseDragged : ZelEventType::MouseMoved, pointer_,
                       ZelX11ModifierFlags(m.state), 0));
}

void ZelX11WindowHost::handleClientMessage(const XEvent& event) {
  const XClientMessageEvent& c = event.xclient;
  const ZelX11Atoms& a = connection_->atoms();
  if (c.message_type != a.wmProtocols || static_cast<ZelX11Id>(c.data.l[0]) != a.wmDeleteWindow) return;
  closeRequested_ = true;
  if (closeHandler_) closeHandler_();
}

CGPoint ZelX11WindowHost::screenOrigin() const {
  if (!xWindow_) return CGPointMake(0, 0);
  int x = 0, y = 0;
  ::Window child = 0;
  if (!XTranslateCoordinates(display(), xWindow_, connection_->rootWindow(), 0, 0, &x, &y, &child)) return CGPointMake(0, 0);
  return CGPointMake(x, y);
}

ZEL_NAMESPACE_END
