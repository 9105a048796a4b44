// Test support for the X11 backend: a private Xvfb server for this test
// program (started once, stopped at exit), a client connection of the
// test's own standing in for the host or another application, child
// processes (xclip), and pumping a window host until a condition holds.
#pragma once

// Xlib defines None, Status, Bool ... as macros: gtest and our own headers
// come before it.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "toolkit/x11/ZelX11WindowHost.h"

#include <X11/Xlib.h>

namespace zeltest {

// The display name of the private server (":N"), or empty when Xvfb is not
// installed or did not start. `depth` 16 starts a second server whose
// screen is 16 bits deep.
const std::string& xvfbDisplay(int depth = 24);

#define ZEL_REQUIRE_XVFB()                                                  \
  do {                                                                      \
    if (::zeltest::xvfbDisplay().empty()) GTEST_SKIP() << "Xvfb not available"; \
  } while (0)

// Our own connection to the private server (another X client).
class TestClient {
 public:
  TestClient();
  ~TestClient();
  Display* display() const { return display_; }
  Window root() const { return DefaultRootWindow(display_); }
  // A top-level window of the given size (a host's window), mapped unless
  // asked not to be.
  Window createTopLevel(int width, int height, bool mapped = true);
  // The window's pixels as 0xRRGGBB, rows top down.
  std::vector<std::uint32_t> pixels(Window w, int width, int height);
  void sendKey(Window w, KeySym keysym, unsigned state, bool press = true);
  void sendButton(Window w, unsigned button, int x, int y, unsigned state, bool press);
  void sendMotion(Window w, int x, int y, unsigned state);

 private:
  Display* display_;
};

// Runs `program` with `args` and DISPLAY set to the private server; writes
// `input` to its standard input and collects its standard output, pumping
// `host` meanwhile (the program may be waiting for the host's answer).
// Nothing when it did not exit within `timeoutSeconds`.
struct ChildResult {
  int status = -1;
  std::string output;
};
std::optional<ChildResult> runChild(const std::vector<std::string>& args, const std::string& input,
                                    zel::ZelX11WindowHost& host, double timeoutSeconds = 10);
// Starts a program in the background (stdin from `input`); its pid.
int startChild(const std::vector<std::string>& args, const std::string& input);
void stopChild(int pid);
bool haveProgram(const std::string& name);

// A window host on the private server (run with -noreset, so it never
// refuses a connection while regenerating after its last client left).
std::unique_ptr<zel::ZelX11WindowHost> openHost(zel::ZelWindow& window, zel::ZelX11WindowOptions options);
Display* openDisplay();

// Pumps until `done` holds or `timeoutSeconds` pass; whether it held.
bool pumpUntil(zel::ZelX11WindowHost& host, const std::function<bool()>& done, double timeoutSeconds = 5);
// Pumps until the server has processed everything we sent and nothing is
// left to handle.
void settle(zel::ZelX11WindowHost& host);

}  // namespace zeltest
