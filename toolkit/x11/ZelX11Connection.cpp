#include "toolkit/x11/ZelX11Connection.h"

#include <X11/Xlib.h>
#include <X11/Xlibint.h>

#include <iterator>

ZEL_NAMESPACE_BEGIN

namespace {

// The core protocol errors (BadRequest ... BadImplementation); extensions
// keep their own converters for their codes.
constexpr int kFirstCoreError = 1;
constexpr int kLastCoreError = 17;

// Marks our entry on the display's extension data list; the entry's private
// data is the connection's error log, owned by the connection.
int keepPrivateData(XExtData*) { return 0; }

ZelX11Connection::ErrorLog* errorLogOf(Display* display) {
  XEDataObject object;
  object.display = display;
  for (XExtData* d = *XEHeadOfExtensionList(object); d; d = d->next) {
    if (d->free_private == keepPrivateData) return reinterpret_cast<ZelX11Connection::ErrorLog*>(d->private_data);
  }
  return nullptr;
}

// Returning False tells Xlib the error was dealt with: no error handler runs.
Bool trapError(Display* display, XErrorEvent* event, xError*) {
  if (ZelX11Connection::ErrorLog* log = errorLogOf(display)) {
    ++log->count;
    log->lastError = event->error_code;
    log->lastRequest = event->request_code;
  }
  return False;
}

}  // namespace

std::unique_ptr<ZelX11Connection> ZelX11Connection::open(const char* displayName) {
  Display* display = XOpenDisplay(displayName);
  if (!display) return nullptr;
  return std::unique_ptr<ZelX11Connection>(new ZelX11Connection(display));
}

ZelX11Connection::ZelX11Connection(Display* display) : display_(display) {
  installErrorTrap();
  internAtoms();
}

ZelX11Connection::~ZelX11Connection() { XCloseDisplay(display_); }

void ZelX11Connection::installErrorTrap() {
  XExtCodes* codes = XAddExtension(display_);
  auto* data = static_cast<XExtData*>(Xcalloc(1, sizeof(XExtData)));
  if (!codes || !data) {
    Xfree(data);
    return;
  }
  data->number = codes->extension;
  data->free_private = keepPrivateData;
  data->private_data = reinterpret_cast<XPointer>(&errors_);
  XEDataObject object;
  object.display = display_;
  XAddToExtensionList(XEHeadOfExtensionList(object), data);  // freed by XCloseDisplay
  for (int code = kFirstCoreError; code <= kLastCoreError; ++code) XESetWireToError(display_, code, trapError);
}

void ZelX11Connection::internAtoms() {
  const char* names[] = {"CLIPBOARD", "TARGETS", "UTF8_STRING", "STRING", "text/plain", "text/plain;charset=utf-8",
                         "INCR", "ATOM", "TIMESTAMP", "MULTIPLE", "ZEL_SELECTION", "WM_PROTOCOLS",
                         "WM_DELETE_WINDOW", "_NET_WM_NAME", "_NET_WM_PID"};
  Atom values[std::size(names)] = {};
  XInternAtoms(display_, const_cast<char**>(names), static_cast<int>(std::size(names)), False, values);
  ZelX11Id* fields[] = {&atoms_.clipboard, &atoms_.targets, &atoms_.utf8String, &atoms_.string,
                        &atoms_.textPlain, &atoms_.textPlainUTF8, &atoms_.incr, &atoms_.atom,
                        &atoms_.timestamp, &atoms_.multiple, &atoms_.selectionProperty, &atoms_.wmProtocols,
                        &atoms_.wmDeleteWindow, &atoms_.netWMName, &atoms_.netWMPid};
  static_assert(std::size(names) == std::size(fields));
  for (std::size_t i = 0; i < std::size(names); ++i) *fields[i] = values[i];
}

int ZelX11Connection::fileDescriptor() const { return ConnectionNumber(display_); }

int ZelX11Connection::screen() const { return DefaultScreen(display_); }

ZelX11Id ZelX11Connection::rootWindow() const { return RootWindow(display_, screen()); }

std::size_t ZelX11Connection::maxRequestBytes() const {
  long units = XExtendedMaxRequestSize(display_);
  if (units <= 0) units = XMaxRequestSize(display_);
  return static_cast<std::size_t>(units) * 4;
}

std::string ZelX11Connection::resourceString() const {
  const char* s = XResourceManagerString(display_);
  return s ? s : "";
}

ZEL_NAMESPACE_END
