// Asks a top-level X window to close as a window manager does: a
// WM_DELETE_WINDOW client message.   zel-wm-close WINDOW_ID
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: zel-wm-close WINDOW_ID\n");
    return 2;
  }
  Display* display = XOpenDisplay(nullptr);
  if (!display) {
    std::fprintf(stderr, "zel-wm-close: cannot open the display\n");
    return 1;
  }
  const Window window = std::strtoul(argv[1], nullptr, 0);
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window;
  event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
  event.xclient.data.l[1] = CurrentTime;
  const Status sent = XSendEvent(display, window, False, NoEventMask, &event);
  XSync(display, False);
  XCloseDisplay(display);
  return sent ? 0 : 1;
}
