// One Xlib connection of our own: the display, the atoms the backend uses,
// and a trap for protocol errors that stays on this connection.
//
// Inside a host we share the process with the host's own X clients, so we
// never touch process-wide Xlib state (no XInitThreads, no XSetErrorHandler,
// no XSetLocaleModifiers). A request aimed at another client's window (a
// clipboard requestor, the host's top-level) may fail when that window goes
// away at the wrong moment; Xlib's default error handler would end the
// host's process. The trap intercepts the core protocol errors of this
// display only, counts them and drops them.
//
// Ownership: each window host owns one connection; closing it destroys our
// windows on the server. Threading: the thread that uses the window host.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "toolkit/foundation/ZelNamespace.h"

struct _XDisplay;

ZEL_NAMESPACE_BEGIN

// X resource ids as Xlib declares them (XID, Window, Atom and Time are all
// unsigned long), so that our headers need not include Xlib.h.
using ZelX11Id = unsigned long;

struct ZelX11Atoms {
  ZelX11Id clipboard, targets, utf8String, string, textPlain, textPlainUTF8, incr, atom, timestamp, multiple,
      selectionProperty, wmProtocols, wmDeleteWindow, netWMName, netWMPid;
};

class ZelX11Connection {
 public:
  // Connects to `displayName` (nullptr: $DISPLAY). nullptr when no X server
  // answers.
  static std::unique_ptr<ZelX11Connection> open(const char* displayName = nullptr);
  ~ZelX11Connection();
  ZelX11Connection(const ZelX11Connection&) = delete;
  ZelX11Connection& operator=(const ZelX11Connection&) = delete;

  _XDisplay* display() const { return display_; }
  const ZelX11Atoms& atoms() const { return atoms_; }
  int fileDescriptor() const;
  int screen() const;
  ZelX11Id rootWindow() const;
  // The largest request the server takes, in bytes (with BIG-REQUESTS
  // when the server has it).
  std::size_t maxRequestBytes() const;
  // The server's RESOURCE_MANAGER string as read at connection (may be
  // empty).
  std::string resourceString() const;

  // Protocol errors on this connection so far, and the last one's codes.
  std::size_t errorCount() const { return errors_.count; }
  int lastErrorCode() const { return errors_.lastError; }
  int lastErrorRequest() const { return errors_.lastRequest; }

  // For the trap (internal).
  struct ErrorLog {
    std::size_t count = 0;
    int lastError = 0, lastRequest = 0;
  };

 private:
  explicit ZelX11Connection(_XDisplay* display);
  void internAtoms();
  void installErrorTrap();

  _XDisplay* display_;
  ZelX11Atoms atoms_{};
  ErrorLog errors_;
};

ZEL_NAMESPACE_END
