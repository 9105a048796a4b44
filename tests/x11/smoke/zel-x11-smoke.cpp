// A standalone X11 window driven the way the app drives it, for running
// under valgrind: it opens a top-level window, fades a view in (frame
// clock), copies and pastes, receives synthetic keys and clicks, takes a
// post from another thread through the wake pipe, sleeps in poll() between
// pumps, and quits after the given time.
//
//   Xvfb :N -screen 0 1024x768x24 -nolisten tcp &
//   DISPLAY=:N valgrind --leak-check=full zel-x11-smoke [seconds]
// Without a display it says so and exits 0; it exits 1 when an event, the
// paste or the post went missing or the server reported an error.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "toolkit/core/ZelView.h"
#include "toolkit/x11/ZelX11EventWait.h"
#include "toolkit/x11/ZelX11WindowHost.h"

#include <X11/Xlib.h>
#include <X11/keysym.h>

using namespace zel;

namespace {

class Panel : public ZelView {
 public:
  Panel(CGRect frame, ZelColor color) : ZelView(frame), color_(color) {}
  bool acceptsFirstResponder() const override { return true; }
  bool acceptsFirstMouse(const ZelEvent&) const override { return true; }
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    ctx.setFillColor(color_);
    ctx.fillRect(bounds());
    ctx.setFillColor(ZelColor::grey(0.9));
    ctx.drawText(label, ZelFont{ZelFontFace::Medium, 14}, CGPointMake(10, 10));
  }
  bool keyDown(const ZelEvent& e) override {
    ++keys;
    label = "key " + e.charactersIgnoringModifiers;
    setNeedsDisplay();
    return true;
  }
  void mouseDown(const ZelEvent&) override { ++clicks; }

  std::string label = "Vantry";
  int keys = 0, clicks = 0;

 private:
  ZelColor color_;
};

void sendKey(Display* d, Window w, KeySym sym) {
  XEvent e{};
  e.xkey.type = KeyPress;
  e.xkey.display = d;
  e.xkey.window = w;
  e.xkey.root = DefaultRootWindow(d);
  e.xkey.keycode = XKeysymToKeycode(d, sym);
  e.xkey.same_screen = True;
  XSendEvent(d, w, False, KeyPressMask, &e);
}

void sendClick(Display* d, Window w, int x, int y) {
  XEvent e{};
  e.xbutton.type = ButtonPress;
  e.xbutton.display = d;
  e.xbutton.window = w;
  e.xbutton.x = x;
  e.xbutton.y = y;
  e.xbutton.button = Button1;
  e.xbutton.same_screen = True;
  XSendEvent(d, w, False, ButtonPressMask, &e);
  e.xbutton.type = ButtonRelease;
  XSendEvent(d, w, False, ButtonReleaseMask, &e);
}

}  // namespace

int main(int argc, char** argv) {
  const double seconds = argc > 1 ? std::atof(argv[1]) : 1.5;
  ZelMonotonicClock clock;
  ZelRunLoop loop(clock);
  ZelWindow window(loop, CGSizeMake(480, 380));
  auto content = std::make_unique<Panel>(CGRectMake(0, 0, 480, 380), ZelColor::rgb(0.2, 0.22, 0.25));
  Panel* panel = content.get();
  Panel* fading = content->addSubview(std::make_unique<Panel>(CGRectMake(40, 40, 200, 120), ZelColor::rgb(0.8, 0.4, 0.1)));
  window.setContentView(std::move(content));
  window.makeFirstResponder(panel);

  std::unique_ptr<ZelX11WindowHost> host = ZelX11WindowHost::create(window);
  if (!host) {
    std::puts("zel-x11-smoke: no X display, nothing to do");
    return 0;
  }
  ZelX11WakePipe wake(loop);
  bool quit = false;
  host->setCloseHandler([&] { quit = true; });
  host->show();

  // The fade starts once the loop runs, so that it animates there.
  fading->setAlphaValue(0);
  loop.schedule(0.1, [fading] { fading->animateAlphaValue(1, 0.5); });
  host->pasteboard().setString("gain:1.5/mix:40");
  std::optional<std::string> pasted;
  host->pasteboard().requestString([&](std::optional<std::string> s) { pasted = std::move(s); });
  for (KeySym k : {XK_k, XK_Return, XK_Up}) sendKey(host->display(), host->xWindow(), k);
  sendClick(host->display(), host->xWindow(), 300, 300);
  std::atomic<bool> posted{false};
  std::thread poster([&] { loop.post([&] { posted = true; }); });
  loop.schedule(seconds, [&] { quit = true; });

  // The app's main loop: pump, then sleep until X, the wake pipe or the
  // run loop has something.
  while (host->pump() && !quit) ZelX11WaitForEvents(*host, &wake);
  poster.join();

  std::printf("zel-x11-smoke: %zu redraws, %d keys, %d clicks, paste %s, post %s, input method %s, X errors %zu\n",
              host->redrawCount(), panel->keys, panel->clicks, pasted ? pasted->c_str() : "(none)",
              posted ? "ran" : "missing", host->usesInputMethod() ? "yes" : "no", host->connection().errorCount());
  bool ok = panel->keys == 3 && panel->clicks == 1 && pasted && posted && host->connection().errorCount() == 0;
  return ok ? 0 : 1;
}
