// The host's own X connection: its top-level windows (the UIs' parents),
// synthetic input through XTest, window pictures, the CLIPBOARD selection,
// and a count of X errors.
#pragma once

#include <X11/Xlib.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zel::lv2host {

struct Picture {
  int width = 0, height = 0;
  std::vector<uint32_t> rgb;  // 0x00RRGGBB, row-major
};

class HostX11 {
public:
  HostX11() = default;
  ~HostX11();
  HostX11(const HostX11&) = delete;
  HostX11& operator=(const HostX11&) = delete;

  // Opens $DISPLAY and installs the error counter (it counts errors on
  // every connection of the process that has no handler of its own, so the
  // UI's connection as well). Empty string on success.
  std::string open();
  bool isOpen() const { return display_ != nullptr; }
  Display* display() const { return display_; }

  // A mapped top-level window of the given size, filled with kBackground.
  Window createTopLevel(int width, int height, const std::string& title);
  void destroy(Window w);
  void resize(Window w, int width, int height);
  // The window's size and its place in its parent, after a round trip;
  // false when it is gone.
  bool geometry(Window w, int& x, int& y, int& width, int& height);
  // Reads and drops the host connection's pending events.
  void drain();
  void sync();

  // The window's picture (clipped to the screen), or nothing when the window
  // does not exist or is not viewable. Errors while looking are not counted.
  std::optional<Picture> grab(Window w);
  // Whether `child` shows something drawn: its area inside `top` holds more
  // than one colour (a window that was only cleared holds one).
  bool looksPainted(Window top, Window child);

  // Pointer and keys, at coordinates relative to window `w`. False when the
  // window is gone.
  bool moveTo(Window w, double x, double y);
  void button(unsigned button, bool press);
  // KEYSYM is an X keysym name ("Return", "a", "F1"); modifiers are joined by
  // '+': shift, ctrl, alt, super. Empty string on success.
  std::string key(const std::string& keysym, const std::string& modifiers);
  std::string typeText(const std::string& text);

  // The CLIPBOARD as UTF8_STRING; `pump` runs while waiting (the owner may
  // be the UI in this process). Nothing on timeout; "" when no one owns it.
  std::optional<std::string> readClipboard(const std::function<void()>& pump, int timeoutMs);

  static bool writePng(const Picture& picture, const std::string& path);

  // X errors seen since open(), outside the host's own probing.
  static int errorCount();
  static const std::string& lastError();

  static constexpr unsigned long kBackground = 0x3a2f4d;  // never a UI's colour by accident

private:
  void tapKeycode(unsigned keycode, bool press);
  Display* display_ = nullptr;
  Window requestor_ = 0;  // receives the selection
  std::optional<XEvent> selectionNotify_;  // kept by drain() for readClipboard()
};

}  // namespace zel::lv2host
