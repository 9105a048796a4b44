#include "X11TestSupport.h"

#include <X11/Xutil.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "toolkit/x11/ZelX11EventWait.h"

extern char** environ;

namespace zeltest {

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

std::vector<char*> argv(const std::vector<std::string>& args) {
  std::vector<char*> v;
  for (const std::string& a : args) v.push_back(const_cast<char*>(a.c_str()));
  v.push_back(nullptr);
  return v;
}

// Our environment with DISPLAY pointing at the private server.
std::vector<std::string> childEnvironment() {
  std::vector<std::string> env;
  for (char** e = environ; *e; ++e) {
    if (std::strncmp(*e, "DISPLAY=", 8) != 0) env.emplace_back(*e);
  }
  env.push_back("DISPLAY=" + xvfbDisplay());
  return env;
}

int spawn(const std::vector<std::string>& args, int stdinFd, int stdoutFd) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, stdinFd, 0);
  if (stdoutFd >= 0) posix_spawn_file_actions_adddup2(&actions, stdoutFd, 1);
  else posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  std::vector<std::string> env = childEnvironment();
  pid_t pid = -1;
  int rc = posix_spawnp(&pid, args[0].c_str(), &actions, nullptr, argv(args).data(), argv(env).data());
  posix_spawn_file_actions_destroy(&actions);
  return rc == 0 ? pid : -1;
}

// A pipe whose read end holds `input` (written by a thread: it may be large).
int inputPipe(const std::string& input, std::thread& writer) {
  int fds[2];
  if (pipe2(fds, O_CLOEXEC) != 0) return -1;
  writer = std::thread([fd = fds[1], input] {
    std::size_t done = 0;
    while (done < input.size()) {
      ssize_t n = write(fd, input.data() + done, input.size() - done);
      if (n <= 0) break;
      done += static_cast<std::size_t>(n);
    }
    close(fd);
  });
  return fds[0];
}

class XvfbServer {
 public:
  explicit XvfbServer(int depth) { start(depth); }
  ~XvfbServer() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
  }
  const std::string& display() const { return display_; }

 private:
  // -displayfd lets the server pick a free display number and tell us: no
  // race with other servers starting at the same time.
  void start(int depth) {
    if (!haveProgram("Xvfb")) return;
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) return;
    std::string fd = std::to_string(fds[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], fds[1]);  // clears close-on-exec
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    std::string screen = "1024x768x" + std::to_string(depth);
    std::vector<std::string> args = {"Xvfb", "-displayfd", fd, "-screen", "0", screen, "-nolisten", "tcp", "-noreset"};
    pid_t pid = -1;
    if (posix_spawnp(&pid, "Xvfb", &actions, nullptr, argv(args).data(), environ) == 0) pid_ = pid;
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    display_ = readDisplayNumber(fds[0]);
    close(fds[0]);
  }

  std::string readDisplayNumber(int fd) {
    std::string number;
    pollfd p{fd, POLLIN, 0};
    auto start = Clock::now();
    while (secondsSince(start) < 10 && poll(&p, 1, 100) >= 0) {
      char c;
      if (!(p.revents & (POLLIN | POLLHUP))) continue;
      if (read(fd, &c, 1) != 1 || c == '\n') break;
      number += c;
    }
    return number.empty() ? std::string() : ":" + number;
  }

  pid_t pid_ = -1;
  std::string display_;
};

}  // namespace

const std::string& xvfbDisplay(int depth) {
  // Input pipes to children that exit early must not kill the test program.
  static const bool ignoreSigpipe = (signal(SIGPIPE, SIG_IGN), true);
  (void)ignoreSigpipe;
  if (depth == 16) {
    static XvfbServer shallow(16);
    return shallow.display();
  }
  static XvfbServer server(24);
  return server.display();
}

bool haveProgram(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::string dirs = path ? path : "/usr/bin:/bin";
  for (std::size_t start = 0; start <= dirs.size();) {
    std::size_t end = dirs.find(':', start);
    if (end == std::string::npos) end = dirs.size();
    std::string candidate = dirs.substr(start, end - start) + "/" + name;
    if (access(candidate.c_str(), X_OK) == 0) return true;
    start = end + 1;
  }
  return false;
}

// ---- Connections.

std::unique_ptr<zel::ZelX11WindowHost> openHost(zel::ZelWindow& window, zel::ZelX11WindowOptions options) {
  options.displayName = xvfbDisplay();
  return zel::ZelX11WindowHost::create(window, options);
}

Display* openDisplay() {
  return XOpenDisplay(xvfbDisplay().c_str());
}

// ---- The test's own client.

TestClient::TestClient() : display_(openDisplay()) {}

TestClient::~TestClient() {
  if (display_) XCloseDisplay(display_);
}

Window TestClient::createTopLevel(int width, int height, bool mapped) {
  Window w = XCreateSimpleWindow(display_, root(), 0, 0, static_cast<unsigned>(width), static_cast<unsigned>(height),
                                 0, 0, 0x203040);
  if (mapped) XMapWindow(display_, w);
  XSync(display_, False);
  return w;
}

std::vector<std::uint32_t> TestClient::pixels(Window w, int width, int height) {
  XImage* image = XGetImage(display_, w, 0, 0, static_cast<unsigned>(width), static_cast<unsigned>(height), AllPlanes,
                            ZPixmap);
  std::vector<std::uint32_t> out;
  if (!image) return out;
  out.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) out.push_back(static_cast<std::uint32_t>(XGetPixel(image, x, y)) & 0xFFFFFF);
  }
  XDestroyImage(image);
  return out;
}

void TestClient::sendKey(Window w, KeySym keysym, unsigned state, bool press) {
  XEvent e{};
  e.xkey.type = press ? KeyPress : KeyRelease;
  e.xkey.display = display_;
  e.xkey.window = w;
  e.xkey.root = root();
  e.xkey.time = CurrentTime;
  e.xkey.state = state;
  e.xkey.keycode = XKeysymToKeycode(display_, keysym);
  e.xkey.same_screen = True;
  XSendEvent(display_, w, False, press ? KeyPressMask : KeyReleaseMask, &e);
  XSync(display_, False);
}

void TestClient::sendButton(Window w, unsigned button, int x, int y, unsigned state, bool press) {
  XEvent e{};
  e.xbutton.type = press ? ButtonPress : ButtonRelease;
  e.xbutton.display = display_;
  e.xbutton.window = w;
  e.xbutton.root = root();
  e.xbutton.x = x;
  e.xbutton.y = y;
  e.xbutton.state = state;
  e.xbutton.button = button;
  e.xbutton.same_screen = True;
  XSendEvent(display_, w, False, press ? ButtonPressMask : ButtonReleaseMask, &e);
  XSync(display_, False);
}

void TestClient::sendMotion(Window w, int x, int y, unsigned state) {
  XEvent e{};
  e.xmotion.type = MotionNotify;
  e.xmotion.display = display_;
  e.xmotion.window = w;
  e.xmotion.root = root();
  e.xmotion.x = x;
  e.xmotion.y = y;
  e.xmotion.state = state;
  e.xmotion.same_screen = True;
  XSendEvent(display_, w, False, PointerMotionMask, &e);
  XSync(display_, False);
}

// ---- Pumping.

bool pumpUntil(zel::ZelX11WindowHost& host, const std::function<bool()>& done, double timeoutSeconds) {
  auto start = Clock::now();
  for (;;) {
    host.pump();
    if (done()) return true;
    if (secondsSince(start) > timeoutSeconds) return false;
    zel::ZelX11WaitForEvents(host, nullptr, 0.01);
  }
}

void settle(zel::ZelX11WindowHost& host) {
  for (int i = 0; i < 100; ++i) {
    host.pump();
    XSync(host.display(), False);
    std::optional<double> next = host.nextTimeout();
    if (XEventsQueued(host.display(), QueuedAlready) == 0 && !(next && *next == 0)) return;
  }
}

// ---- Child processes.

int startChild(const std::vector<std::string>& args, const std::string& input) {
  std::thread writer;
  int in = inputPipe(input, writer);
  int pid = spawn(args, in, -1);
  close(in);
  writer.join();
  return pid;
}

void stopChild(int pid) {
  if (pid <= 0) return;
  kill(pid, SIGTERM);
  waitpid(pid, nullptr, 0);
}

std::optional<ChildResult> runChild(const std::vector<std::string>& args, const std::string& input,
                                    zel::ZelX11WindowHost& host, double timeoutSeconds) {
  std::thread writer;
  int in = inputPipe(input, writer);
  int out[2];
  if (pipe2(out, O_CLOEXEC) != 0) return std::nullopt;
  int pid = spawn(args, in, out[1]);
  close(in);
  close(out[1]);
  fcntl(out[0], F_SETFL, O_NONBLOCK);
  ChildResult result;
  int status = 0;
  bool exited = false;
  auto start = Clock::now();
  while (!exited && secondsSince(start) < timeoutSeconds) {
    host.pump();
    char buffer[65536];
    ssize_t n;
    while ((n = read(out[0], buffer, sizeof buffer)) > 0) result.output.append(buffer, static_cast<std::size_t>(n));
    exited = waitpid(pid, &status, WNOHANG) == pid;
    if (!exited) zel::ZelX11WaitForEvents(host, nullptr, 0.005);
  }
  ssize_t n;
  char buffer[65536];
  while ((n = read(out[0], buffer, sizeof buffer)) > 0) result.output.append(buffer, static_cast<std::size_t>(n));
  close(out[0]);
  writer.join();
  if (!exited) {
    stopChild(pid);
    return std::nullopt;
  }
  result.status = status;
  return result;
}

}  // namespace zeltest
