// The accessibility backend for Linux desktops: publishes a window's
// accessible tree (ZelAccessible) on the AT-SPI bus, where screen readers
// such as Orca read it. It speaks the AT-SPI D-Bus interfaces itself
// (Accessible, Component, Value, Action, Application) over libdbus; it
// needs no toolkit of its own, no GLib main loop and no thread: the bus is
// read and answered without blocking when the owner calls dispatch() (the
// app's event wait watches fileDescriptor()), and on a timer of the window's
// run loop, which also compares the tree with what it was and sends the
// focus, state and value events (a value that automation keeps moving is
// reported once per look at most).
//
// Nothing is opened unless the desktop runs the accessibility bus and asks
// for accessibility: connect() asks the session bus whether "org.a11y.Bus"
// has an owner (it does not start one) and whether its org.a11y.Status
// IsEnabled is true (a screen reader sets it), and returns nullptr
// otherwise, keeping no connection.
//
// Inside a host that holds an AT-SPI bridge of its own (GTK, Qt) the
// editor registers beside the host, as an application of its own.
//
// Ownership: the owner holds the bridge in a std::unique_ptr; the window
// must outlive it. The tree belongs to the window's views and is looked up
// again on every request (an editor may be replaced). Threading: the
// window's thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

class ZelAccessible;
class ZelWindow;

struct ZelAtspiOptions {
  // What the desktop lists; empty: the name of the window's
  // accessible tree (the product's name from its description).
  std::string applicationName;
  std::string toolkitName = "Zel";
  std::string version;
  // The window's top-left corner on the screen, for screen coordinates
  // (window coordinates are given when it is not set).
  std::function<CGPoint()> screenOrigin;
  // Pixels per point (the window's backing scale); 1 when not set.
  std::function<double()> pixelScale;
};

class ZelAtspiBridge {
 public:
  // How often the tree is compared with what it was (seconds).
  static constexpr double kLookInterval = 0.1;

  // The bridge for `window`, registered with the accessibility registry,
  // or nullptr when there is no accessibility bus (or NO_AT_BRIDGE=1 or
  // ZEL_NO_ACCESSIBILITY=1 is set); `why` (optional) says why not.
  static std::unique_ptr<ZelAtspiBridge> connect(ZelWindow& window, ZelAtspiOptions options, std::string* why = nullptr);
  ~ZelAtspiBridge();
  ZelAtspiBridge(const ZelAtspiBridge&) = delete;
  ZelAtspiBridge& operator=(const ZelAtspiBridge&) = delete;

  // The bus connection's socket: readable when requests wait.
  int fileDescriptor() const;
  // Reads, answers and sends what is waiting; never blocks.
  void dispatch();
  // Compares the tree with the last look and sends the events.
  void look();
  bool isConnected() const;
  const std::string& uniqueName() const { return uniqueName_; }

  struct Impl;

 private:
  ZelAtspiBridge(ZelWindow& window, ZelAtspiOptions options);
  void tick();

  std::unique_ptr<Impl> impl_;
  std::string uniqueName_;
};

// The first accessible tree offered from the window's content view down
// (depth first), or nullptr.
ZelAccessible* ZelWindowAccessibilityRoot(ZelWindow& window);

ZEL_NAMESPACE_END
