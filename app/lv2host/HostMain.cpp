// zel-lv2-host: loads an LV2 plug-in and its X11 UI the way a host does and
// runs a script against them (see README.md in this directory).
//
//   zel-lv2-host [--bundle DIR]... [--rate HZ] [--scale S] [--block N] [--timeout SEC] SCRIPT|-
//
// Exit status: 0 when every expectation held, 1 when one failed (each
// prints "FAIL line N: ..."), 2 for a bad option or script, a missing
// plug-in, or a command that cannot run.
#include "app/lv2host/HostRunner.h"
#include "app/lv2host/HostScript.h"

#include <X11/Xlib.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace {

using namespace zel::lv2host;

int usage(const std::string& message) {
  std::fprintf(stderr, "zel-lv2-host: %s\n", message.c_str());
  std::fprintf(stderr,
               "usage: zel-lv2-host [--bundle DIR]... [--rate HZ] [--scale S] [--block N] [--timeout SEC] "
               "SCRIPT|-\n");
  return 2;
}

bool positive(const char* text, double& out) {
  char* end = nullptr;
  out = std::strtod(text, &end);
  return end && *end == '\0' && out > 0 && out < 1e7;
}

}  // namespace

int main(int argc, char** argv) {
  HostSettings settings;
  std::vector<std::string> bundles;
  std::string scriptPath;
  double timeoutSeconds = 120;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    auto value = [&](double& out) {
      if (i + 1 >= argc || !positive(argv[i + 1], out)) return false;
      ++i;
      return true;
    };
    double v = 0;
    if (arg == "--help" || arg == "-h") {
      std::printf("usage: zel-lv2-host [--bundle DIR]... [--rate HZ] [--scale S] [--block N] [--timeout SEC] "
                  "SCRIPT|-\ncommands:\n%s",
                  commandSummary().c_str());
      return 0;
    } else if (arg == "--bundle" && i + 1 < argc) {
      bundles.push_back(argv[++i]);
    } else if (arg == "--rate" && value(v)) {
      settings.rate = v;
    } else if (arg == "--scale" && value(v) && v <= 8) {
      settings.scale = v;
    } else if (arg == "--block" && value(v) && v == static_cast<uint32_t>(v) && v <= 65536) {
      settings.block = static_cast<uint32_t>(v);
    } else if (arg == "--timeout" && value(v)) {
      timeoutSeconds = v;
    } else if (arg.size() > 1 && arg[0] == '-' && arg != "-") {
      return usage("bad option or value: " + arg);
    } else if (scriptPath.empty()) {
      scriptPath = arg;
    } else {
      return usage("one script only");
    }
  }
  if (scriptPath.empty()) return usage("no script");

  std::stringstream text;
  if (scriptPath == "-") {
    text << std::cin.rdbuf();
  } else {
    std::ifstream in(scriptPath);
    if (!in) return usage("cannot read " + scriptPath);
    text << in.rdbuf();
  }
  const ParsedScript script = parseScript(text.str());
  if (!script.error.empty()) {
    std::fprintf(stderr, "zel-lv2-host: %s: %s\n", scriptPath.c_str(), script.error.c_str());
    return 2;
  }

  // UIs may use Xlib from threads of their own.
  XInitThreads();
  HostWorld world(settings);
  world.loadAll();
  for (const std::string& b : bundles) {
    const std::string error = world.addBundle(b);
    if (!error.empty()) return usage(error);
  }

  HostRunner runner(world);
  // A script never hangs: past the time limit the line it is on fails.
  std::thread([&runner, timeoutSeconds] {
    std::this_thread::sleep_for(std::chrono::duration<double>(timeoutSeconds));
    std::printf("FAIL line %d: the script did not finish within %g s\n", runner.currentLine.load(), timeoutSeconds);
    std::fflush(stdout);
    _exit(1);
  }).detach();
  const int status = runner.run(script.commands);
  std::fflush(stdout);
  return status;
}
