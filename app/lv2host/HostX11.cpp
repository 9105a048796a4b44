#include "app/lv2host/HostX11.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <png.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <set>
#include <thread>

namespace zel::lv2host {

namespace {

int gErrors = 0;
int gTrapped = 0;
bool gTrapping = false;
std::string gLastError;

int countError(Display* d, XErrorEvent* e) {
  if (gTrapping) {
    ++gTrapped;
    return 0;
  }
  ++gErrors;
  char text[256] = {};
  XGetErrorText(d, e->error_code, text, sizeof text);
  gLastError = std::string(text) + " (request " + std::to_string(e->request_code) + "." +
               std::to_string(e->minor_code) + ", resource 0x" + [&] {
                 char b[32];
                 std::snprintf(b, sizeof b, "%lx", e->resourceid);
                 return std::string(b);
               }() + ")";
  std::fprintf(stderr, "X error: %s\n", gLastError.c_str());
  return 0;
}

// Runs `f` with errors on the host connection set aside (the windows looked
// at belong to the UI and may go away at any time).
template <typename F>
auto trapped(Display* d, F&& f) {
  XSync(d, False);
  gTrapping = true;
  const int before = gTrapped;
  auto result = f();
  XSync(d, False);
  gTrapping = false;
  return std::make_pair(result, gTrapped == before);
}

unsigned channel(unsigned long pixel, unsigned long mask) {
  if (!mask) return 0;
  int shift = 0;
  while (!(mask & 1)) {
    mask >>= 1;
    ++shift;
  }
  const unsigned long v = (pixel >> shift) & mask;
  return static_cast<unsigned>(v * 255 / mask);
}

}  // namespace

HostX11::~HostX11() {
  if (display_) XCloseDisplay(display_);
}

std::string HostX11::open() {
  XSetErrorHandler(countError);
  display_ = XOpenDisplay(nullptr);
  if (!display_) return "cannot open the X display (is DISPLAY set?)";
  int event, error, major, minor;
  if (!XTestQueryExtension(display_, &event, &error, &major, &minor)) return "the X server has no XTEST extension";
  return {};
}

Window HostX11::createTopLevel(int width, int height, const std::string& title) {
  XSetWindowAttributes attrs{};
  attrs.background_pixel = kBackground;
  attrs.event_mask = StructureNotifyMask;
  const int screen = DefaultScreen(display_);
  Window w = XCreateWindow(display_, RootWindow(display_, screen), 0, 0, width, height, 0, CopyFromParent,
                           InputOutput, CopyFromParent, CWBackPixel | CWEventMask, &attrs);
  XStoreName(display_, w, title.c_str());
  XMapRaised(display_, w);
  XSync(display_, False);
  return w;
}

void HostX11::destroy(Window w) {
  XDestroyWindow(display_, w);
  XSync(display_, False);
}

void HostX11::resize(Window w, int width, int height) {
  XResizeWindow(display_, w, width > 0 ? width : 1, height > 0 ? height : 1);
  XFlush(display_);
}

bool HostX11::geometry(Window w, int& x, int& y, int& width, int& height) {
  Window root = 0;
  unsigned wu = 0, hu = 0, border = 0, depth = 0;
  XSync(display_, False);
  if (!XGetGeometry(display_, w, &root, &x, &y, &wu, &hu, &border, &depth)) return false;
  width = static_cast<int>(wu);
  height = static_cast<int>(hu);
  return true;
}

void HostX11::drain() {
  while (XPending(display_)) {
    XEvent e;
    XNextEvent(display_, &e);
    // The answer to our own clipboard request may arrive while the UIs are
    // pumped: keep it for readClipboard.
    if (e.type == SelectionNotify && requestor_ && e.xselection.requestor == requestor_) selectionNotify_ = e;
  }
}

void HostX11::sync() { XSync(display_, False); }

std::optional<Picture> HostX11::grab(Window w) {
  XWindowAttributes a{};
  auto [ok, clean] = trapped(display_, [&] { return XGetWindowAttributes(display_, w, &a) != 0; });
  if (!ok || !clean || a.map_state != IsViewable) return std::nullopt;
  // Only the part on the screen can be read.
  int rx = 0, ry = 0;
  Window child;
  XTranslateCoordinates(display_, w, a.root, 0, 0, &rx, &ry, &child);
  const int sw = WidthOfScreen(a.screen), sh = HeightOfScreen(a.screen);
  const int x0 = rx < 0 ? -rx : 0, y0 = ry < 0 ? -ry : 0;
  const int width = std::min(a.width, sw - rx) - x0, height = std::min(a.height, sh - ry) - y0;
  if (width <= 0 || height <= 0) return std::nullopt;
  auto [image, clean2] =
      trapped(display_, [&] { return XGetImage(display_, w, x0, y0, width, height, AllPlanes, ZPixmap); });
  if (!image) return std::nullopt;
  Picture p;
  p.width = width;
  p.height = height;
  p.rgb.resize(static_cast<size_t>(width) * height);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const unsigned long px = XGetPixel(image, x, y);
      p.rgb[static_cast<size_t>(y) * width + x] = (channel(px, image->red_mask) << 16) |
                                                  (channel(px, image->green_mask) << 8) |
                                                  channel(px, image->blue_mask);
    }
  XDestroyImage(image);
  (void)clean2;
  return p;
}

bool HostX11::looksPainted(Window top, Window child) {
  XWindowAttributes a{};
  Window unused;
  int cx = 0, cy = 0;
  auto [ok, clean] = trapped(display_, [&] {
    return XGetWindowAttributes(display_, child, &a) != 0 &&
           XTranslateCoordinates(display_, child, top, 0, 0, &cx, &cy, &unused) != 0;
  });
  if (!ok || !clean || a.map_state != IsViewable || a.width <= 1 || a.height <= 1) return false;
  auto picture = grab(top);
  if (!picture) return false;
  std::set<uint32_t> colours;
  for (int y = std::max(cy, 0); y < std::min(cy + a.height, picture->height); ++y)
    for (int x = std::max(cx, 0); x < std::min(cx + a.width, picture->width); ++x) {
      colours.insert(picture->rgb[static_cast<size_t>(y) * picture->width + x]);
      if (colours.size() > 1) return true;
    }
  return false;
}

bool HostX11::moveTo(Window w, double x, double y) {
  int rx = 0, ry = 0;
  Window child;
  const int screen = DefaultScreen(display_);
  auto [ok, clean] = trapped(display_, [&] {
    return XTranslateCoordinates(display_, w, RootWindow(display_, screen), static_cast<int>(x),
                                 static_cast<int>(y), &rx, &ry, &child) != 0;
  });
  if (!ok || !clean) return false;
  XTestFakeMotionEvent(display_, screen, rx, ry, CurrentTime);
  XSync(display_, False);
  return true;
}

void HostX11::button(unsigned b, bool press) {
  XTestFakeButtonEvent(display_, b, press ? True : False, CurrentTime);
  XSync(display_, False);
}

void HostX11::tapKeycode(unsigned keycode, bool press) {
  XTestFakeKeyEvent(display_, keycode, press ? True : False, CurrentTime);
  XSync(display_, False);
}

std::string HostX11::key(const std::string& keysymName, const std::string& modifiers) {
  const KeySym sym = XStringToKeysym(keysymName.c_str());
  if (sym == NoSymbol) return "unknown keysym '" + keysymName + "'";
  const KeyCode code = XKeysymToKeycode(display_, sym);
  if (!code) return "no key produces '" + keysymName + "'";
  std::vector<KeyCode> mods;
  size_t start = 0;
  while (start < modifiers.size()) {
    const size_t plus = modifiers.find('+', start);
    const std::string m = modifiers.substr(start, plus == std::string::npos ? std::string::npos : plus - start);
    start = plus == std::string::npos ? modifiers.size() : plus + 1;
    const char* name = m == "shift" ? "Shift_L" : m == "ctrl" ? "Control_L" : m == "alt" ? "Alt_L" :
                       m == "super" ? "Super_L" : nullptr;
    if (!name) return "unknown modifier '" + m + "' (shift, ctrl, alt, super)";
    mods.push_back(XKeysymToKeycode(display_, XStringToKeysym(name)));
  }
  for (KeyCode m : mods) tapKeycode(m, true);
  tapKeycode(code, true);
  tapKeycode(code, false);
  for (auto it = mods.rbegin(); it != mods.rend(); ++it) tapKeycode(*it, false);
  return {};
}

std::string HostX11::typeText(const std::string& text) {
  const KeyCode shift = XKeysymToKeycode(display_, XK_Shift_L);
  for (unsigned char c : text) {
    KeySym sym = c == '\n' ? XK_Return : c == '\t' ? XK_Tab : static_cast<KeySym>(c);
    if (c < 0x20 && c != '\n' && c != '\t') return "cannot type character code " + std::to_string(c);
    if (c >= 0x80) return "type handles ASCII text only";
    const KeyCode code = XKeysymToKeycode(display_, sym);
    if (!code) return std::string("no key produces '") + static_cast<char>(c) + "'";
    const bool shifted = XkbKeycodeToKeysym(display_, code, 0, 0) != sym;
    if (shifted) tapKeycode(shift, true);
    tapKeycode(code, true);
    tapKeycode(code, false);
    if (shifted) tapKeycode(shift, false);
  }
  return {};
}

std::optional<std::string> HostX11::readClipboard(const std::function<void()>& pump, int timeoutMs) {
  if (!requestor_)
    requestor_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
  const Window requestor = requestor_;
  const Atom clipboard = XInternAtom(display_, "CLIPBOARD", False);
  const Atom utf8 = XInternAtom(display_, "UTF8_STRING", False);
  const Atom property = XInternAtom(display_, "ZEL_LV2HOST_CLIPBOARD", False);
  if (XGetSelectionOwner(display_, clipboard) == None) return std::string();
  XDeleteProperty(display_, requestor, property);
  selectionNotify_.reset();
  XConvertSelection(display_, clipboard, utf8, property, requestor, CurrentTime);
  XFlush(display_);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
  while (std::chrono::steady_clock::now() < deadline) {
    XEvent e;
    bool answered = XCheckTypedWindowEvent(display_, requestor, SelectionNotify, &e);
    if (!answered && selectionNotify_) {
      e = *selectionNotify_;
      selectionNotify_.reset();
      answered = true;
    }
    if (answered) {
      if (e.xselection.property == None) return std::string();
      Atom type;
      int format;
      unsigned long count, after;
      unsigned char* data = nullptr;
      XGetWindowProperty(display_, requestor, property, 0, 1 << 24, True, AnyPropertyType, &type, &format, &count,
                         &after, &data);
      std::string text = data ? std::string(reinterpret_cast<char*>(data), count * (format / 8)) : std::string();
      if (data) XFree(data);
      return text;
    }
    pump();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return std::nullopt;
}

bool HostX11::writePng(const Picture& picture, const std::string& path) {
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!png || !info || setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    std::fclose(f);
    return false;
  }
  png_init_io(png, f);
  png_set_IHDR(png, info, picture.width, picture.height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  std::vector<png_byte> row(static_cast<size_t>(picture.width) * 3);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const uint32_t p = picture.rgb[static_cast<size_t>(y) * picture.width + x];
      row[x * 3] = (p >> 16) & 0xff;
      row[x * 3 + 1] = (p >> 8) & 0xff;
      row[x * 3 + 2] = p & 0xff;
    }
    png_write_row(png, row.data());
  }
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return std::fclose(f) == 0;
}

int HostX11::errorCount() { return gErrors; }
const std::string& HostX11::lastError() { return gLastError; }

}  // namespace zel::lv2host
