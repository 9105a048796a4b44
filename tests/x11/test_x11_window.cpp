// The X11 window host under a private Xvfb server: painting, resizing,
// exposure, keys and mouse events sent the way hosts forward them
// (XSendEvent), focus, embedding in a foreign parent, closing.
#include <gtest/gtest.h>

#include <cmath>

#include "TestViews.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelDisplayLink.h"
#include "toolkit/core/ZelFrameClock.h"
#include "X11TestSupport.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#ifdef ZEL_HAVE_XTEST
#include <X11/extensions/XTest.h>
#endif

using namespace zel;
using namespace zeltest;

namespace {

constexpr CGSize kSize{240, 160};

struct Fixture {
  explicit Fixture(double scale, ZelX11Id parent = 0, CGSize size = kSize) : window(loop, size) {
    auto scene = makeScene(size);
    root = scene.get();
    window.setContentView(std::move(scene));
    ZelX11WindowOptions options;
    options.backingScale = scale;
    options.parent = parent;
    host = openHost(window, options);
    if (host) host->show();
  }
  int pixelWidth() const { return host->backBuffer().pixelWidth(); }
  int pixelHeight() const { return host->backBuffer().pixelHeight(); }

  ZelMonotonicClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window;
  SwatchView* root = nullptr;
  std::unique_ptr<ZelX11WindowHost> host;
};

// The offscreen backend's rendering of the same scene, as the 24-bit window
// shows premultiplied pixels (alpha dropped).
std::vector<std::uint32_t> offscreenPixels(ZelRunLoop& loop, double scale) {
  ZelWindow window(loop, kSize);
  window.setContentView(makeScene(kSize));
  ZelOffscreenWindowHost offscreen(window, scale);
  offscreen.renderAll();
  cairo_surface_t* s = offscreen.surface();
  cairo_surface_flush(s);
  int w = cairo_image_surface_get_width(s), h = cairo_image_surface_get_height(s);
  std::vector<std::uint32_t> out;
  for (int y = 0; y < h; ++y) {
    auto* row = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(s) +
                                                        y * cairo_image_surface_get_stride(s));
    for (int x = 0; x < w; ++x) out.push_back(row[x] & 0xFFFFFF);
  }
  return out;
}

std::uint32_t pixelAt(const std::vector<std::uint32_t>& pixels, int width, int x, int y) {
  return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
}

}  // namespace

TEST(X11Window, PaintsWhatTheOffscreenBackendRenders) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  for (double scale : {1.0, 1.5, 2.0}) {
    SCOPED_TRACE(scale);
    Fixture f(scale);
    ASSERT_TRUE(f.host);
    settle(*f.host);
    int w = f.pixelWidth(), h = f.pixelHeight();
    EXPECT_EQ(w, static_cast<int>(std::ceil(kSize.width * scale)));
    std::vector<std::uint32_t> expected = offscreenPixels(f.loop, scale);
    std::vector<std::uint32_t> shown = client.pixels(f.host->xWindow(), w, h);
    ASSERT_EQ(shown.size(), expected.size());
    std::size_t differing = 0;
    for (std::size_t i = 0; i < shown.size(); ++i) differing += shown[i] != expected[i];
    EXPECT_EQ(differing, 0u);
    EXPECT_NE(pixelAt(shown, w, w / 2, h / 2), 0u);  // really drawn
    EXPECT_TRUE(f.host->backBuffer().copiesDirectly());
    EXPECT_EQ(f.host->connection().errorCount(), 0u);
  }
}

TEST(X11Window, PaintsOnA16BitScreenThroughCairo) {
  ZEL_REQUIRE_XVFB();
  if (xvfbDisplay(16).empty()) GTEST_SKIP() << "no 16-bit Xvfb";
  ZelMonotonicClock clock;
  ZelRunLoop loop(clock);
  ZelWindow window(loop, kSize);
  window.setContentView(makeScene(kSize));
  ZelX11WindowOptions options;
  options.displayName = xvfbDisplay(16);
  options.backingScale = 1;
  auto host = ZelX11WindowHost::create(window, options);
  ASSERT_TRUE(host);
  EXPECT_FALSE(host->backBuffer().copiesDirectly());
  host->show();
  settle(*host);

  // 5-6-5 bits per channel: each channel within one step of the original.
  std::vector<std::uint32_t> expected = offscreenPixels(loop, 1);
  XImage* image = XGetImage(host->display(), host->xWindow(), 0, 0, 240, 160, AllPlanes, ZPixmap);
  ASSERT_TRUE(image);
  std::size_t far = 0;
  for (int y = 0; y < 160; ++y) {
    for (int x = 0; x < 240; ++x) {
      unsigned long p = XGetPixel(image, x, y);
      std::uint32_t e = pixelAt(expected, 240, x, y);
      int dr = static_cast<int>(((p >> 11) & 0x1F) * 255 / 31) - static_cast<int>((e >> 16) & 0xFF);
      int dg = static_cast<int>(((p >> 5) & 0x3F) * 255 / 63) - static_cast<int>((e >> 8) & 0xFF);
      int db = static_cast<int>((p & 0x1F) * 255 / 31) - static_cast<int>(e & 0xFF);
      far += std::abs(dr) > 9 || std::abs(dg) > 5 || std::abs(db) > 9;
    }
  }
  XDestroyImage(image);
  EXPECT_EQ(far, 0u);
}

TEST(X11Window, FollowsResizesFromEitherSide) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Fixture f(2);
  ASSERT_TRUE(f.host);
  settle(*f.host);

  // The window manager (or a host) resizes the X window: the content follows
  // and the new area is painted.
  XResizeWindow(client.display(), f.host->xWindow(), 600, 400);
  XSync(client.display(), False);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return f.window.contentSize() == CGSizeMake(300, 200); }));
  settle(*f.host);
  std::vector<std::uint32_t> pixels = client.pixels(f.host->xWindow(), 600, 400);
  EXPECT_EQ(pixelAt(pixels, 600, 590, 390), pixelAt(pixels, 600, 5, 390));  // the background reaches the corner

  // The app resizes the window: the X window and its fixed size hints follow.
  f.window.setContentSize(CGSizeMake(200, 120));
  settle(*f.host);
  Window root;
  int x, y;
  unsigned width = 0, height = 0, border, depth;
  XGetGeometry(client.display(), f.host->xWindow(), &root, &x, &y, &width, &height, &border, &depth);
  EXPECT_EQ(width, 400u);
  EXPECT_EQ(height, 240u);
  XSizeHints hints{};
  long supplied = 0;
  ASSERT_TRUE(XGetWMNormalHints(client.display(), f.host->xWindow(), &hints, &supplied));
  EXPECT_EQ(hints.min_width, 400);
  EXPECT_EQ(hints.max_height, 240);

  // A new scale keeps the size in points.
  f.host->setBackingScale(1);
  settle(*f.host);
  XGetGeometry(client.display(), f.host->xWindow(), &root, &x, &y, &width, &height, &border, &depth);
  EXPECT_EQ(width, 200u);
  EXPECT_EQ(f.window.contentSize(), CGSizeMake(200, 120));
  EXPECT_EQ(f.host->connection().errorCount(), 0u);
}

TEST(X11Window, ExposureIsRepairedFromTheBackBuffer) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Fixture f(1);
  ASSERT_TRUE(f.host);
  settle(*f.host);
  const int w = f.pixelWidth(), h = f.pixelHeight();
  std::vector<std::uint32_t> before = client.pixels(f.host->xWindow(), w, h);
  const int draws = f.root->draws;

  // Someone scribbles over the window, then the server asks for a repaint.
  GC gc = XCreateGC(client.display(), f.host->xWindow(), 0, nullptr);
  XSetForeground(client.display(), gc, 0xFF00FF);
  XFillRectangle(client.display(), f.host->xWindow(), gc, 10, 10, 100, 80);
  XFreeGC(client.display(), gc);
  XClearArea(client.display(), f.host->xWindow(), 10, 10, 100, 80, True);
  XSync(client.display(), False);
  settle(*f.host);

  EXPECT_EQ(client.pixels(f.host->xWindow(), w, h), before);
  EXPECT_EQ(f.root->draws, draws);  // copied, not redrawn
}

TEST(X11Window, DrawsOncePerPumpHoweverOftenItIsInvalidated) {
  ZEL_REQUIRE_XVFB();
  Fixture f(1);
  ASSERT_TRUE(f.host);
  settle(*f.host);
  const std::size_t redraws = f.host->redrawCount();
  const int draws = f.root->draws;
  f.root->setNeedsDisplayInRect(CGRectMake(0, 0, 10, 10));
  f.root->setNeedsDisplayInRect(CGRectMake(200, 100, 10, 10));
  f.root->setNeedsDisplay();
  EXPECT_EQ(f.host->nextTimeout(), std::optional<double>(0.0));
  f.host->pump();
  EXPECT_EQ(f.host->redrawCount(), redraws + 1);
  EXPECT_EQ(f.root->draws, draws + 1);
  f.host->pump();
  EXPECT_EQ(f.host->redrawCount(), redraws + 1);
}

TEST(X11Window, DrawsNothingWhileUnmapped) {
  ZEL_REQUIRE_XVFB();
  Fixture f(1);
  ASSERT_TRUE(f.host);
  settle(*f.host);
  f.host->hide();
  settle(*f.host);
  const int draws = f.root->draws;
  f.root->setNeedsDisplay();
  for (int i = 0; i < 5; ++i) f.host->pump();
  EXPECT_EQ(f.root->draws, draws);
  EXPECT_EQ(f.host->nextTimeout(), std::nullopt) << "nothing to wake up for while hidden";
  f.host->show();
  settle(*f.host);
  EXPECT_EQ(f.root->draws, draws + 1) << "the waiting redraw happens once mapped";
}

// A meter's display link runs on the window's frame clock: while the host
// keeps the window unmapped no frame is scheduled, and mapping it again
// brings the link back.
TEST(X11Window, AHiddenWindowsFrameClockSchedulesNothing) {
  ZEL_REQUIRE_XVFB();
  Fixture f(1);
  ASSERT_TRUE(f.host);
  settle(*f.host);
  ZelDisplayLink link(f.window.frameClock(), [](double) {});
  link.start();
  EXPECT_TRUE(f.window.frameClock().isRunning());
  f.host->hide();
  settle(*f.host);
  EXPECT_FALSE(f.window.frameClock().isRunning());
  EXPECT_EQ(f.loop.pendingCount(), 0u);
  f.host->show();
  settle(*f.host);
  EXPECT_TRUE(f.window.frameClock().isRunning());
  link.stop();
}

// A host maps its window between two of our pumps: the frame drawn before
// must show at once, painted by the server, not when the next pump answers
// the Expose. The same after we were hidden and shown again.
TEST(X11Window, AFrameDrawnBeforeTheHostMapsShowsWithoutAPump) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Window parent = client.createTopLevel(240, 160, /*mapped=*/false);
  Fixture f(1, parent);
  ASSERT_TRUE(f.host);
  if (!f.host->backBuffer().copiesDirectly()) GTEST_SKIP() << "only the direct copy path keeps a background picture";
  f.host->pump();  // the first frame, while nothing is viewable
  ASSERT_GT(f.root->draws, 0);
  const std::vector<std::uint32_t> expected = offscreenPixels(f.loop, 1);
  auto matchesWithoutPump = [&] {
    XSync(client.display(), False);
    std::vector<std::uint32_t> shown = client.pixels(f.host->xWindow(), 240, 160);
    return !shown.empty() && pixelAt(shown, 240, 5, 5) == pixelAt(expected, 240, 5, 5) &&
           pixelAt(shown, 240, 120, 80) == pixelAt(expected, 240, 120, 80);
  };
  XMapWindow(client.display(), parent);
  EXPECT_TRUE(matchesWithoutPump());
  settle(*f.host);
  EXPECT_FALSE(f.host->backBuffer().hasBackground()) << "answered Exposes end the background picture";

  f.host->hide();
  settle(*f.host);
  f.host->show();
  EXPECT_TRUE(matchesWithoutPump()) << "shown again: the last frame at once";
  XDestroyWindow(client.display(), parent);
  XSync(client.display(), False);
}

TEST(X11Window, ReceivesKeysForwardedWithSendEvent) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Fixture f(1);
  ASSERT_TRUE(f.host);
  auto* recorder = static_cast<RecorderView*>(f.window.contentView()->addSubview(
      std::make_unique<RecorderView>(CGRectMake(0, 0, kSize.width, kSize.height))));
  ASSERT_TRUE(f.window.makeFirstResponder(recorder));
  settle(*f.host);

  // The key table itself is checked without a server; here, that events
  // sent by a host arrive, in order, with their repeats.
  const Window w = f.host->xWindow();
  client.sendKey(w, XK_Return, 0);
  client.sendKey(w, XK_Return, 0, false);
  client.sendKey(w, XK_Down, ControlMask);
  client.sendKey(w, XK_k, 0);
  client.sendKey(w, XK_k, ShiftMask);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return recorder->events.size() >= 5; }));

  const auto& e = recorder->events;
  EXPECT_EQ(e[0].type, ZelEventType::KeyDown);
  EXPECT_EQ(e[0].keyCode, ZelKeyCodeReturn);
  EXPECT_EQ(e[1].type, ZelEventType::KeyUp);
  EXPECT_EQ(ZelFirstCodePoint(e[2].charactersIgnoringModifiers), static_cast<char32_t>(ZelDownArrowFunctionKey));
  EXPECT_TRUE(e[2].has(ZelEventModifierCommand));
  EXPECT_EQ(e[3].characters, "k");
  EXPECT_FALSE(e[3].isARepeat);
  EXPECT_EQ(e[4].characters, "K");
  EXPECT_TRUE(e[4].isARepeat);  // pressed again without a release in between
  EXPECT_EQ(f.host->connection().errorCount(), 0u);
}

TEST(X11Window, MouseButtonsMotionAndWheel) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Fixture f(2);
  ASSERT_TRUE(f.host);
  auto* recorder = static_cast<RecorderView*>(f.window.contentView()->addSubview(
      std::make_unique<RecorderView>(CGRectMake(0, 0, kSize.width, kSize.height))));
  settle(*f.host);

  const Window w = f.host->xWindow();
  client.sendButton(w, Button1, 30, 20, 0, true);
  client.sendMotion(w, 40, 60, Button1Mask | ShiftMask);
  client.sendButton(w, Button1, 40, 60, Button1Mask, false);
  client.sendButton(w, Button1, 32, 18, 0, true);  // at once, near the first press: a double click
  client.sendButton(w, Button1, 32, 18, Button1Mask, false);
  for (unsigned button : {4u, 5u, 6u, 7u}) {
    client.sendButton(w, button, 100, 100, 0, true);
    client.sendButton(w, button, 100, 100, 0, false);
  }
  client.sendButton(w, Button3, 50, 50, 0, true);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return recorder->events.size() >= 10; }));

  const auto& e = recorder->events;
  ASSERT_EQ(e.size(), 10u);
  EXPECT_EQ(e[0].type, ZelEventType::LeftMouseDown);
  EXPECT_EQ(e[0].locationInWindow, CGPointMake(15, 150));  // pixels / 2, y flipped
  EXPECT_EQ(e[0].clickCount, 1);
  EXPECT_EQ(e[1].type, ZelEventType::LeftMouseDragged);
  EXPECT_EQ(e[1].locationInWindow, CGPointMake(20, 130));
  EXPECT_TRUE(e[1].has(ZelEventModifierShift));
  EXPECT_EQ(e[2].type, ZelEventType::LeftMouseUp);
  EXPECT_EQ(e[3].clickCount, 2);
  const double wheel[4][2] = {{0, 1}, {0, -1}, {1, 0}, {-1, 0}};  // {x, y} for buttons 4 ... 7
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(e[5 + i].type, ZelEventType::ScrollWheel);
    EXPECT_EQ(e[5 + i].scrollingDeltaX, wheel[i][0]);
    EXPECT_EQ(e[5 + i].scrollingDeltaY, wheel[i][1]);
  }
  EXPECT_EQ(e[9].type, ZelEventType::RightMouseDown);
  EXPECT_TRUE(f.window.isKeyWindow());  // the first click made it key
}

TEST(X11Window, LivesInsideAForeignParentAndFollowsItsFocus) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Window parent = client.createTopLevel(300, 200);
  Fixture f(1, parent);
  ASSERT_TRUE(f.host);
  settle(*f.host);

  Window root, up, *children = nullptr;
  unsigned count = 0;
  XQueryTree(client.display(), f.host->xWindow(), &root, &up, &children, &count);
  if (children) XFree(children);
  EXPECT_EQ(up, parent);
  // The parent shows our drawing where we sit, its own background beside.
  std::vector<std::uint32_t> pixels = client.pixels(parent, 300, 200);
  EXPECT_EQ(pixelAt(pixels, 300, 5, 5), pixelAt(client.pixels(f.host->xWindow(), 240, 160), 240, 5, 5));
  EXPECT_EQ(pixelAt(pixels, 300, 290, 190), 0x203040u);

  // The host's top-level gets the focus: we are key; the focus moving into
  // our window keeps us key; leaving the top-level does not.
  XSetInputFocus(client.display(), parent, RevertToNone, CurrentTime);
  XSync(client.display(), False);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return f.window.isKeyWindow(); }));
  // A click leaves the input focus with the host's top-level (the host
  // keeps its keys and passes them on); we stay key.
  client.sendButton(f.host->xWindow(), Button1, 5, 5, 0, true);
  client.sendButton(f.host->xWindow(), Button1, 5, 5, Button1Mask, false);
  settle(*f.host);
  Window focus = 0;
  int revert = 0;
  XGetInputFocus(client.display(), &focus, &revert);
  EXPECT_EQ(focus, parent);
  EXPECT_TRUE(f.window.isKeyWindow());
  // Embedded, it tells its size as the base size, with no minimum or
  // maximum that would keep a host from following a zoom.
  XSizeHints hints{};
  long supplied = 0;
  ASSERT_TRUE(XGetWMNormalHints(client.display(), f.host->xWindow(), &hints, &supplied));
  EXPECT_EQ(hints.flags & (PBaseSize | PMinSize | PMaxSize), PBaseSize);
  EXPECT_EQ(hints.base_width, 240);
  EXPECT_EQ(hints.base_height, 160);
  // The room the host gives it: its window's, from our corner; less once
  // the host moves us or shrinks its window.
  int roomW = 0, roomH = 0;
  ASSERT_TRUE(f.host->roomInHost(roomW, roomH));
  EXPECT_EQ(roomW, 300);
  EXPECT_EQ(roomH, 200);
  XMoveWindow(client.display(), f.host->xWindow(), 100, 80);
  XResizeWindow(client.display(), parent, 250, 200);
  XSync(client.display(), False);
  ASSERT_TRUE(f.host->roomInHost(roomW, roomH));
  EXPECT_EQ(roomW, 150);
  EXPECT_EQ(roomH, 120);
  XSetInputFocus(client.display(), client.root(), RevertToNone, CurrentTime);
  XSync(client.display(), False);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return !f.window.isKeyWindow(); }));
  EXPECT_EQ(f.host->connection().errorCount(), 0u);

  // The host destroys its window first: we go with it, quietly.
  XDestroyWindow(client.display(), parent);
  XSync(client.display(), False);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return f.host->isClosed(); }));
  f.root->setNeedsDisplay();
  EXPECT_FALSE(f.host->pump());
  f.host.reset();
}

#ifdef ZEL_HAVE_XTEST
// Takes the keys it is given by name, records them, and uses only "a".
class PickyView : public RecorderView {
 public:
  using RecorderView::RecorderView;
  bool keyDown(const ZelEvent& e) override {
    RecorderView::keyDown(e);
    return e.charactersIgnoringModifiers == "a";
  }
  bool keyUp(const ZelEvent& e) override {
    RecorderView::keyUp(e);
    return e.charactersIgnoringModifiers == "a";
  }
  bool flagsChanged(const ZelEvent& e) override {
    RecorderView::flagsChanged(e);
    return false;
  }
};

// Keys typed while our embedded window has the focus (a host focused it, or
// the pointer's focus without a window manager): the ones the editor does
// not use go on to the host's top-level, press and release; the host's own
// forwarded keys (synthetic) never go back.
TEST(X11Window, EmbeddedPassesUnusedKeysToTheHost) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Window parent = client.createTopLevel(300, 200);
  XSelectInput(client.display(), parent, KeyPressMask | KeyReleaseMask);
  Fixture f(1, parent);
  ASSERT_TRUE(f.host);
  auto* picky = static_cast<PickyView*>(f.window.contentView()->addSubview(
      std::make_unique<PickyView>(CGRectMake(0, 0, kSize.width, kSize.height))));
  ASSERT_TRUE(f.window.makeFirstResponder(picky));
  settle(*f.host);
  XSetInputFocus(client.display(), f.host->xWindow(), RevertToParent, CurrentTime);
  XSync(client.display(), False);
  settle(*f.host);

  const auto type = [&](KeySym keysym) {
    const unsigned code = XKeysymToKeycode(client.display(), keysym);
    XTestFakeKeyEvent(client.display(), code, True, CurrentTime);
    XTestFakeKeyEvent(client.display(), code, False, CurrentTime);
    XSync(client.display(), False);
  };
  type(XK_a);
  type(XK_space);
  client.sendKey(f.host->xWindow(), XK_b, 0, true);  // as a host forwards it
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return picky->events.size() >= 5; }));
  settle(*f.host);

  // The host's top-level heard Space pressed and released, nothing else.
  std::vector<std::pair<int, KeySym>> heard;
  while (XPending(client.display())) {
    XEvent e;
    XNextEvent(client.display(), &e);
    if ((e.type == KeyPress || e.type == KeyRelease) && e.xkey.window == parent)
      heard.emplace_back(e.type, XLookupKeysym(&e.xkey, 0));
  }
  const std::vector<std::pair<int, KeySym>> expected = {{KeyPress, XK_space}, {KeyRelease, XK_space}};
  EXPECT_EQ(heard, expected);
  Window focus = 0;
  int revert = 0;
  XGetInputFocus(client.display(), &focus, &revert);
  EXPECT_EQ(focus, f.host->xWindow());  // where the host put it
  EXPECT_EQ(f.host->connection().errorCount(), 0u);
}
#endif

TEST(X11Window, TwoWindowsInOneProcessShareNoConnection) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Fixture a(1), b(2);
  ASSERT_TRUE(a.host && b.host);
  EXPECT_NE(a.host->display(), b.host->display());
  settle(*a.host);
  settle(*b.host);
  a.host.reset();  // closing one leaves the other working
  b.root->setNeedsDisplay();
  settle(*b.host);
  EXPECT_NE(pixelAt(client.pixels(b.host->xWindow(), 480, 320), 480, 240, 160), 0u);
  EXPECT_EQ(b.host->connection().errorCount(), 0u);
}

TEST(X11Window, WindowManagerCloseEndsThePump) {
  ZEL_REQUIRE_XVFB();
  TestClient client;
  Fixture f(1);
  ASSERT_TRUE(f.host);
  bool closed = false;
  f.host->setCloseHandler([&] { closed = true; });
  settle(*f.host);
  EXPECT_TRUE(f.host->pump());

  XEvent e{};
  e.xclient.type = ClientMessage;
  e.xclient.window = f.host->xWindow();
  e.xclient.message_type = XInternAtom(client.display(), "WM_PROTOCOLS", False);
  e.xclient.format = 32;
  e.xclient.data.l[0] = static_cast<long>(XInternAtom(client.display(), "WM_DELETE_WINDOW", False));
  XSendEvent(client.display(), f.host->xWindow(), False, NoEventMask, &e);
  XSync(client.display(), False);
  ASSERT_TRUE(pumpUntil(*f.host, [&] { return closed; }));
  EXPECT_FALSE(f.host->pump());
}
