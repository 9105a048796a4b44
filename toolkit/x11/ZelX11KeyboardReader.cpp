#include "toolkit/x11/ZelX11KeyboardReader.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr int kShortText = 64;

// Latin-1 bytes (what XLookupString gives) as UTF-8.
std::string utf8FromLatin1(const char* bytes, int length) {
  std::string s;
  for (int i = 0; i < length; ++i) s += ZelUTF8FromCodePoint(static_cast<unsigned char>(bytes[i]));
  return s;
}

}  // namespace

ZelX11KeyboardReader::ZelX11KeyboardReader(Display* display, ZelX11Id window) : display_(display), window_(window) {
  openInputMethod();
}

ZelX11KeyboardReader::~ZelX11KeyboardReader() { closeInputMethod(); }

// The locale and its modifiers are the process's (the host's or the app's):
// we use them as they are and never set them.
void ZelX11KeyboardReader::openInputMethod() {
  if (!XSupportsLocale()) return;
  im_ = XOpenIM(display_, nullptr, nullptr, nullptr);
  if (!im_) return;
  XIMCallback destroyed{reinterpret_cast<XPointer>(this), reinterpret_cast<XIMProc>(&inputMethodDestroyed)};
  XSetIMValues(im_, XNDestroyCallback, &destroyed, nullptr);
  ic_ = XCreateIC(im_, XNInputStyle, XIMPreeditNothing | XIMStatusNothing, XNClientWindow, window_, XNFocusWindow,
                  window_, nullptr);
  if (!ic_) closeInputMethod();
}

void ZelX11KeyboardReader::closeInputMethod() {
  if (ic_) XDestroyIC(ic_);
  if (im_) XCloseIM(im_);
  ic_ = nullptr;
  im_ = nullptr;
}

// The input method server went away: its objects are gone with it, and
// keys are read with XLookupString from now on.
void ZelX11KeyboardReader::inputMethodDestroyed(XIM, char* self, char*) {
  auto* reader = reinterpret_cast<ZelX11KeyboardReader*>(self);
  reader->ic_ = nullptr;
  reader->im_ = nullptr;
}

bool ZelX11KeyboardReader::filter(XEvent& event) { return ic_ && XFilterEvent(&event, None); }

long ZelX11KeyboardReader::filterEventMask() const {
  unsigned long mask = 0;
  if (ic_ && XGetICValues(ic_, XNFilterEvents, &mask, nullptr) != nullptr) mask = 0;
  return static_cast<long>(mask);
}

void ZelX11KeyboardReader::setFocused(bool focused) {
  if (!ic_) return;
  if (focused) XSetICFocus(ic_);
  else XUnsetICFocus(ic_);
}

std::string ZelX11KeyboardReader::lookUpPress(XEvent& event, unsigned long* keysym) {
  char buffer[kShortText];
  Status status = 0;
  KeySym sym = NoSymbol;
  int n = Xutf8LookupString(ic_, &event.xkey, buffer, sizeof buffer, &sym, &status);
  if (status == XBufferOverflow) {
    std::string text(static_cast<std::size_t>(n), '\0');
    n = Xutf8LookupString(ic_, &event.xkey, text.data(), n, &sym, &status);
    text.resize(status == XLookupChars || status == XLookupBoth ? static_cast<std::size_t>(n) : 0);
    *keysym = status == XLookupKeySym || status == XLookupBoth ? sym : NoSymbol;
    return text;
  }
  *keysym = status == XLookupKeySym || status == XLookupBoth ? sym : NoSymbol;
  bool hasText = status == XLookupChars || status == XLookupBoth;
  return hasText ? std::string(buffer, static_cast<std::size_t>(n)) : std::string();
}

std::string ZelX11KeyboardReader::lookUpPlain(XEvent& event, unsigned long* keysym) {
  char buffer[kShortText];
  KeySym sym = NoSymbol;
  int n = XLookupString(&event.xkey, buffer, sizeof buffer, &sym, nullptr);
  *keysym = sym;
  return utf8FromLatin1(buffer, n);
}

ZelX11KeyInput ZelX11KeyboardReader::read(XEvent& event) {
  ZelX11KeyInput key;
  key.release = event.type == KeyRelease;
  key.state = event.xkey.state;
  unsigned long sym = NoSymbol;
  key.text = ic_ && !key.release ? lookUpPress(event, &sym) : lookUpPlain(event, &sym);
  key.unshiftedKeysym = static_cast<std::uint32_t>(XLookupKeysym(&event.xkey, 0));
  key.shiftedKeysym = static_cast<std::uint32_t>(XLookupKeysym(&event.xkey, 1));
  if (key.shiftedKeysym == NoSymbol && key.unshiftedKeysym != NoSymbol) {
    KeySym lower = NoSymbol, upper = NoSymbol;
    XConvertCase(key.unshiftedKeysym, &lower, &upper);
    if (upper != lower) key.shiftedKeysym = static_cast<std::uint32_t>(upper);
  }
  key.keysym = sym != NoSymbol ? static_cast<std::uint32_t>(sym) : key.unshiftedKeysym;
  return key;
}

ZEL_NAMESPACE_END
