// Runs a checked script against plug-in instances: one command at a time,
// printing what it measures and a "FAIL line N: ..." line for every
// expectation that does not hold.
#pragma once

#include "app/lv2host/HostPlugin.h"
#include "app/lv2host/HostScript.h"
#include "app/lv2host/HostX11.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zel::lv2host {

class HostRunner {
public:
  explicit HostRunner(HostWorld& world);
  ~HostRunner();

  // 0: every expectation held; 1: at least one failed (or the plug-in or its
  // UI broke down); 2: the script asks for something that is not there.
  int run(const std::vector<Command>& commands);

  // The line being run, for the watchdog.
  std::atomic<int> currentLine{0};

private:
  struct Stop {
    int status;
    std::string message;
  };

  void execute(const Command& c);
  void fail(const Command& c, const std::string& message);
  [[noreturn]] void stop(int status, const std::string& message);

  HostX11& x11();
  PluginSlot& slot();
  PluginSlot& slotWithUi();
  Port& controlPort(const std::string& symbol, bool inputOnly);
  void openUi(PluginSlot& s, const std::string& uri);
  void printUiReport(const PluginSlot& s, const UiOpenReport& r);
  // Idles every open UI once and reads the host's X events.
  void pumpOnce();
  // `count` pump rounds about 16 ms apart.
  void pump(int count);
  void moveTo(double x, double y);
  std::vector<const LilvNode*> presets(LilvNodes*& owner);
  int checkStateValues(const Command& c, const LilvState* state, PluginSlot& s);

  // The flood command: port_events on every input control of every open UI
  // at `rate` per second and port, each with the value of `lag` ago.
  struct Flood {
    double rate = 0;
    std::chrono::milliseconds lag{0};
    std::chrono::steady_clock::time_point start, last;
    double owed = 0;  // events per port not yet sent (fractions carry over)
    std::uint64_t events = 0;
    std::vector<double> frameUs;  // per UI and round: the flood's events plus the idle call
    // Every input control's value per round, for the late values.
    std::vector<std::pair<std::chrono::steady_clock::time_point, std::vector<float>>> history;
  };
  // Sends what the flood owes `s` since the last round; the events' count.
  std::uint64_t floodOnce(PluginSlot& s, std::size_t slotIndex, double perPort);
  void stopFlood();

  HostWorld& world_;
  Flood flood_;
  HostX11 x11_;
  std::vector<std::unique_ptr<PluginSlot>> slots_;
  size_t current_ = 0;
  std::map<std::string, LilvState*> states_;
  int failures_ = 0;
  static constexpr int kPaintTimeoutMs = 5000;
};

}  // namespace zel::lv2host
