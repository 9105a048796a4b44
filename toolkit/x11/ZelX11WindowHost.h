// Shows a ZelWindow in an X window: a top-level window (the standalone app)
// or a child of a foreign parent window (a plug-in host's ui:parent).
//
// Each host has its own Xlib connection, so two editors in one process
// share nothing. Nothing blocks: pump() reads the events already waiting,
// runs the run loop's due calls, redraws the dirty region once through the
// back buffer and returns; a host's idle callback calls it, and a
// standalone app sleeps in poll() on fileDescriptor() (and a wake pipe, see
// ZelX11EventWait.h) for at most nextTimeout() between pumps.
//
// Events: Expose (copied from the back buffer), ConfigureNotify (the
// window's content size follows), focus in and out (of our window, and
// for an embedded window of the host's top-level: the window's key state),
// buttons 1 and 3, motion, wheel buttons 4-7 (one line per notch), keys
// (synthetic ones included) and WM_DELETE_WINDOW.
//
// Ownership: the host attaches itself to the window (setPlatformWindow) and
// detaches in its destructor; the window and its run loop must outlive it.
// It owns its connection, X window, back buffer, pasteboard and URL opener.
// Threading: one thread (the UI thread) for everything.
#pragma once

#include <bitset>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "toolkit/cairo/ZelCairoText.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelURLOpener.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/x11/ZelX11BackBuffer.h"
#include "toolkit/x11/ZelX11Connection.h"
#include "toolkit/x11/ZelX11KeyboardReader.h"
#include "toolkit/x11/ZelX11Pasteboard.h"

union _XEvent;

ZEL_NAMESPACE_BEGIN

struct ZelX11WindowOptions {
  // The X display to connect to; empty: $DISPLAY.
  std::string displayName;
  // The foreign window to live in; 0 makes a top-level window.
  ZelX11Id parent = 0;
  // Pixels per point; 0 takes it from the screen's Xft.dpi.
  double backingScale = 0;
  // Top-level windows: the title and the WM_CLASS name.
  std::string title = "Zel";
  std::string className = "zel";
  // The window's text machinery; null makes one (bundle icon font).
  std::shared_ptr<ZelCairoText> text;
};

class ZelX11WindowHost final : public ZelPlatformWindow {
 public:
  // Opens the display and makes the (unmapped) X window at the window's
  // content size; nullptr when the display cannot be opened.
  static std::unique_ptr<ZelX11WindowHost> create(ZelWindow& window, ZelX11WindowOptions options = {});
  ~ZelX11WindowHost() override;
  ZelX11WindowHost(const ZelX11WindowHost&) = delete;
  ZelX11WindowHost& operator=(const ZelX11WindowHost&) = delete;

  // ---- ZelPlatformWindow.
  void setNeedsRedraw() override { needsRedraw_ = true; }
  double backingScale() const override { return scale_; }
  ZelPasteboard& pasteboard() override { return *pasteboard_; }
  ZelURLOpener& urlOpener() override { return urlOpener_; }
  void contentSizeDidChange(CGSize size) override;
  void requestKeyFocus() override;

  // ---- Showing.
  void show();
  void hide();
  // A new scale (the host's ui:scaleFactor, or the app's choice) resizes
  // the X window to the same size in points and redraws everything.
  void setBackingScale(double scale);

  // ---- The event pump.
  // Handles the events waiting, runs the due calls, redraws. Never blocks;
  // with nothing to do it allocates nothing and makes no round trip.
  // Returns false once the window was closed (WM_DELETE_WINDOW) or
  // destroyed with its parent.
  bool pump();
  // The X connection's socket: readable when events may be waiting.
  int fileDescriptor() const { return connection_->fileDescriptor(); }
  // How long the app may sleep before the next pump: 0 when work is
  // waiting, the time to the run loop's next call, nothing when idle.
  std::optional<double> nextTimeout() const;

  bool isClosed() const { return closeRequested_ || destroyed_; }
  // Called (from pump) when the window manager asks to close the window.
  void setCloseHandler(std::function<void()> handler) { closeHandler_ = std::move(handler); }

  // ---- Access for the app, the plug-in glue and tests.
  ZelX11Id xWindow() const { return xWindow_; }
  _XDisplay* display() const { return connection_->display(); }
  ZelX11Connection& connection() { return *connection_; }
  ZelX11Pasteboard& x11Pasteboard() { return *pasteboard_; }
  ZelX11BackBuffer& backBuffer() { return *backBuffer_; }
  bool usesInputMethod() const { return keyboard_->usesInputMethod(); }
  // Redraws done so far (each pump draws at most once).
  std::size_t redrawCount() const { return redraws_; }

 private:
  ZelX11WindowHost(ZelWindow& window, std::unique_ptr<ZelX11Connection> connection, ZelX11WindowOptions options);
  void createWindow(const ZelX11WindowOptions& options);
  void setTopLevelProperties(const ZelX11WindowOptions& options);
  void setFixedSizeHints();
  void watchHostTopLevel();
  void pixelSize(int& width, int& height) const;
  void applyPixelSize();

  int dispatchEvents();
  void dispatch(_XEvent& event);
  void handleConfigure(int width, int height);
  void becameHidden();
  void handleFocus(const _XEvent& event);
  void handleKey(_XEvent& event);
  void handleButton(const _XEvent& event);
  // Whether the X input focus is on our window (one round trip).
  bool holdsInputFocus() const;
  void handleMotion(_XEvent& event);
  void handleClientMessage(const _XEvent& event);
  int clickCountFor(const _XEvent& event);
  CGPoint pointFromPixels(int x, int y) const;
  void send(ZelEvent event);
  bool redrawIfNeeded();

  ZelWindow& window_;
  std::unique_ptr<ZelX11Connection> connection_;
  ZelX11Id xWindow_ = 0;
  ZelX11Id parent_ = 0;      // the foreign parent, 0 for a top-level window
  ZelX11Id focusWindow_ = 0;  // whose focus makes us the key window
  double scale_ = 1;
  std::shared_ptr<ZelCairoText> text_;
  std::unique_ptr<ZelX11KeyboardReader> keyboard_;
  std::unique_ptr<ZelX11Pasteboard> pasteboard_;
  std::unique_ptr<ZelX11BackBuffer> backBuffer_;
  ZelXdgURLOpener urlOpener_;

  bool needsRedraw_ = false;
  ZelX11PixelRect exposed_;
  bool applyingServerSize_ = false;
  bool closeRequested_ = false;
  bool destroyed_ = false;
  bool mapped_ = false;  // MapNotify seen and no UnmapNotify since
  bool shown_ = false;   // an Expose was answered since the window was last hidden
  std::function<void()> closeHandler_;
  std::size_t redraws_ = 0;

  CGPoint pointer_;
  std::bitset<256> keysDown_;
  unsigned lastClickButton_ = 0;
  unsigned long lastClickTime_ = 0;
  int lastClickX_ = 0, lastClickY_ = 0, clickCount_ = 0;
};

ZEL_NAMESPACE_END
