#include "app/lv2host/HostRunner.h"

#include <lv2/atom/atom.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace zel::lv2host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kIdleSpacing = std::chrono::milliseconds(16);

double number(const std::string& s) { return std::strtod(s.c_str(), nullptr); }
int count(const std::string& s) { return std::atoi(s.c_str()); }

std::string show(double v) {
  char b[64];
  std::snprintf(b, sizeof b, "%.6g", v);
  return b;
}

bool compare(double a, const std::string& op, double b, double tolerance) {
  if (op == "==") return std::fabs(a - b) <= tolerance;
  if (op == "!=") return std::fabs(a - b) > tolerance;
  if (op == "<") return a < b;
  if (op == "<=") return a <= b + tolerance;
  if (op == ">") return a > b;
  return a >= b - tolerance;
}

}  // namespace

HostRunner::HostRunner(HostWorld& world) : world_(world) {}

HostRunner::~HostRunner() {
  slots_.clear();
  for (auto& [name, state] : states_) lilv_state_free(state);
}

int HostRunner::run(const std::vector<Command>& commands) {
  for (const Command& c : commands) {
    currentLine = c.line;
    try {
      execute(c);
    } catch (const Stop& s) {
      if (s.status == 2) {
        std::fprintf(stderr, "zel-lv2-host: line %d: %s\n", c.line, s.message.c_str());
      } else {
        std::printf("FAIL line %d: %s\n", c.line, s.message.c_str());
      }
      std::fflush(stdout);
      return s.status;
    }
    std::fflush(stdout);
  }
  stopFlood();
  return failures_ ? 1 : 0;
}

void HostRunner::fail(const Command& c, const std::string& message) {
  std::printf("FAIL line %d: %s\n", c.line, message.c_str());
  ++failures_;
}

void HostRunner::stop(int status, const std::string& message) { throw Stop{status, message}; }

HostX11& HostRunner::x11() {
  if (!x11_.isOpen()) {
    const std::string error = x11_.open();
    if (!error.empty()) stop(2, error);
  }
  return x11_;
}

PluginSlot& HostRunner::slot() {
  if (slots_.empty()) stop(2, "no plug-in yet (start with 'plugin URI')");
  return *slots_[current_];
}

PluginSlot& HostRunner::slotWithUi() {
  PluginSlot& s = slot();
  if (!s.uiOpen()) stop(2, "instance " + std::to_string(current_) + " has no open UI");
  return s;
}

Port& HostRunner::controlPort(const std::string& symbol, bool inputOnly) {
  Port* p = slot().port(symbol);
  if (!p) stop(2, "the plug-in has no port '" + symbol + "'");
  if (p->kind != PortKind::Control) stop(2, "port '" + symbol + "' is not a control port");
  if (inputOnly && !p->input) stop(2, "port '" + symbol + "' is an output");
  return *p;
}

void HostRunner::openUi(PluginSlot& s, const std::string& uri) {
  x11();
  UiOpenReport r;
  const std::string error = s.openUi(uri, r, kPaintTimeoutMs);
  if (!error.empty()) stop(1, error);
  printUiReport(s, r);
}

void HostRunner::printUiReport(const PluginSlot& s, const UiOpenReport& r) {
  std::printf("ui %s: instantiated in %.1f ms, ", s.uiUri().c_str(), r.instantiateMs);
  if (r.firstPaintMs >= 0) {
    std::printf("first paint after %.1f ms", r.firstPaintMs);
  } else {
    std::printf("no paint seen within %d ms", kPaintTimeoutMs);
  }
  std::printf(", memory +%ld KiB", r.memoryKiB);
  if (r.width > 0) std::printf(", size %dx%d", r.width, r.height);
  std::printf("\n");
}

void HostRunner::pumpOnce() {
  if (flood_.rate <= 0) {
    for (auto& s : slots_) s->idle();
  } else {
    const auto now = Clock::now();
    flood_.owed += flood_.rate * std::chrono::duration<double>(now - flood_.last).count();
    flood_.last = now;
    // Never more than a tenth of a second's worth at once (after a stall).
    const double perPort = std::min(std::floor(flood_.owed), std::ceil(flood_.rate / 10));
    flood_.owed = std::max(0.0, flood_.owed - perPort);
    std::vector<float> values;
    for (auto& s : slots_)
      for (const Port& p : s->ports())
        if (p.kind == PortKind::Control && p.input) values.push_back(p.value);
    flood_.history.emplace_back(now, std::move(values));
    while (flood_.history.size() > 1 && flood_.history[1].first <= now - flood_.lag) flood_.history.erase(flood_.history.begin());
    for (size_t i = 0; i < slots_.size(); ++i) {
      PluginSlot& s = *slots_[i];
      const auto start = Clock::now();
      const std::uint64_t sent = floodOnce(s, i, perPort);
      s.idle();
      if (s.uiOpen()) flood_.frameUs.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
      flood_.events += sent;
    }
  }
  if (x11_.isOpen()) x11_.drain();
}

std::uint64_t HostRunner::floodOnce(PluginSlot& s, std::size_t slotIndex, double perPort) {
  if (!s.uiOpen() || perPort < 1) return 0;
  // The oldest round kept is the latest one at least `lag` old.
  const std::vector<float>& late = flood_.history.front().second;
  std::size_t at = 0;  // this slot's first value in a round's list
  for (std::size_t i = 0; i < slotIndex; ++i)
    for (const Port& p : slots_[i]->ports()) at += p.kind == PortKind::Control && p.input;
  std::uint64_t sent = 0;
  for (const Port& p : s.ports()) {
    if (p.kind != PortKind::Control || !p.input) continue;
    const float value = at < late.size() ? late[at] : p.value;
    ++at;
    for (double k = 0; k < perPort; ++k) sent += s.sendValueToUi(p, value);
  }
  return sent;
}

void HostRunner::stopFlood() {
  if (flood_.rate <= 0) return;
  const double ms = std::chrono::duration<double, std::milli>(Clock::now() - flood_.start).count();
  std::size_t ports = 0;
  for (auto& s : slots_)
    if (s->uiOpen())
      for (const Port& p : s->ports()) ports += p.kind == PortKind::Control && p.input;
  std::printf("flood: %llu port events over %.0f ms (%.0f per second and port)", static_cast<unsigned long long>(flood_.events),
              ms, ports && ms > 0 ? double(flood_.events) / double(ports) / (ms / 1000) : 0.0);
  std::vector<double>& us = flood_.frameUs;
  if (!us.empty()) {
    std::sort(us.begin(), us.end());
    std::printf("; frame (events and idle) median %.1f us, 90%% %.1f us, max %.1f us over %zu rounds", us[us.size() / 2],
                us[us.size() * 9 / 10], us.back(), us.size());
  }
  std::printf("\n");
  flood_ = Flood{};
}

void HostRunner::pump(int rounds) {
  for (int i = 0; i < rounds; ++i) {
    const auto start = Clock::now();
    pumpOnce();
    std::this_thread::sleep_until(start + kIdleSpacing);
  }
}

void HostRunner::moveTo(double x, double y) {
  PluginSlot& s = slotWithUi();
  if (!x11().moveTo(s.uiWindow(), x, y)) stop(1, "the UI's window is gone");
}

std::vector<const LilvNode*> HostRunner::presets(LilvNodes*& owner) {
  owner = lilv_plugin_get_related(slot().plugin(), world_.presetClass);
  std::vector<const LilvNode*> out;
  LILV_FOREACH(nodes, i, owner) out.push_back(lilv_nodes_get(owner, i));
  return out;
}

// Every port value the state holds against the host's floats; returns how
// many it holds and fails the command for each one that differs.
int HostRunner::checkStateValues(const Command& c, const LilvState* state, PluginSlot& s) {
  struct Check {
    HostRunner* runner;
    const Command* command;
    PluginSlot* slot;
    int count = 0;
  } check{this, &c, &s};
  lilv_state_emit_port_values(
      state,
      [](const char* symbol, void* data, const void* value, uint32_t size, uint32_t type) {
        auto* k = static_cast<Check*>(data);
        ++k->count;
        Port* p = k->slot->port(symbol);
        UridTable& u = k->runner->world_.urids();
        if (type != u.map(LV2_ATOM__Float) || size != sizeof(float) || !p) return;
        const float want = *static_cast<const float*>(value);
        if (std::fabs(p->value - want) > 1e-6f * std::max(1.f, std::fabs(want)))
          k->runner->fail(*k->command, std::string(symbol) + " is " + show(p->value) + ", the state holds " +
                                           show(want));
      },
      &check);
  return check.count;
}

void HostRunner::execute(const Command& c) {
  const auto& a = c.args;
  const std::string& n = c.name;

  if (n == "plugin") {
    slots_.clear();
    current_ = 0;
    auto s = std::make_unique<PluginSlot>(world_, &x11_, 0);
    const std::string error = s->load(a[0]);
    if (!error.empty()) stop(2, error);
    int audio = 0, control = 0, atom = 0;
    for (const Port& p : s->ports()) {
      audio += p.kind == PortKind::Audio;
      control += p.kind == PortKind::Control;
      atom += p.kind == PortKind::Atom;
    }
    std::printf("plugin %s: %zu ports (%d audio, %d control, %d atom)\n", a[0].c_str(), s->ports().size(), audio,
                control, atom);
    slots_.push_back(std::move(s));
  } else if (n == "ui") {
    openUi(slot(), a.empty() ? std::string() : a[0]);
  } else if (n == "close-ui") {
    slotWithUi().closeUi();
    x11().sync();
  } else if (n == "open-ui") {
    PluginSlot& s = slot();
    if (s.uiOpen()) stop(2, "the UI is already open");
    if (s.uiUri().empty()) stop(2, "no UI was opened before (use 'ui')");
    openUi(s, s.uiUri());
  } else if (n == "instances") {
    const size_t k = static_cast<size_t>(count(a[0]));
    if (k < 1) stop(2, "instances needs at least 1");
    PluginSlot& first = slot();
    const std::string pluginUri = first.pluginUri();
    const std::string uiUri = first.uiOpen() ? first.uiUri() : std::string();
    while (slots_.size() > k) slots_.pop_back();
    while (slots_.size() < k) {
      auto s = std::make_unique<PluginSlot>(world_, &x11_, static_cast<int>(slots_.size()));
      const std::string error = s->load(pluginUri);
      if (!error.empty()) stop(1, error);
      if (!uiUri.empty()) openUi(*s, uiUri);
      slots_.push_back(std::move(s));
    }
    if (current_ >= k) current_ = 0;
    std::printf("instances: %zu\n", slots_.size());
  } else if (n == "select") {
    const size_t i = static_cast<size_t>(count(a[0]));
    if (i >= slots_.size()) stop(2, "there are only " + std::to_string(slots_.size()) + " instances");
    current_ = i;
    // Its window comes to the front, so pointer events reach its UI.
    if (slots_[i]->uiOpen()) {
      XRaiseWindow(x11().display(), slots_[i]->hostWindow());
      x11().sync();
    }
  } else if (n == "idle") {
    pump(count(a[0]));
  } else if (n == "wait") {
    const auto end = Clock::now() + std::chrono::milliseconds(count(a[0]));
    while (Clock::now() < end) {
      pumpOnce();
      std::this_thread::sleep_for(std::min<Clock::duration>(kIdleSpacing, end - Clock::now()));
    }
  } else if (n == "measure-idle") {
    PluginSlot& s = slotWithUi();
    const int rounds = std::max(1, count(a[0]));
    std::vector<double> us;
    for (int i = 0; i < rounds; ++i) {
      const auto start = Clock::now();
      if (!s.idle()) stop(1, "the UI closed itself");
      us.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
      x11_.drain();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    std::sort(us.begin(), us.end());
    std::printf("idle: median %.1f us, 90%% %.1f us, max %.1f us over %d calls\n", us[us.size() / 2],
                us[us.size() * 9 / 10], us.back(), rounds);
  } else if (n == "flood") {
    stopFlood();
    if (count(a[0]) > 0) {
      flood_.rate = count(a[0]);
      flood_.lag = std::chrono::milliseconds(a.size() > 1 ? count(a[1]) : 0);
      flood_.start = flood_.last = Clock::now();
    }
  } else if (n == "run") {
    slot();
    for (auto& s : slots_) s->run(static_cast<uint32_t>(count(a[0])));
  } else if (n == "signal") {
    if (a[0] == "silence") {
      slot().setSine(0, 0);
    } else {
      slot().setSine(number(a[1]), a.size() > 2 ? number(a[2]) : 0.5);
    }
  } else if (n == "set") {
    slot().setControl(controlPort(a[0], true), static_cast<float>(number(a[1])));
  } else if (n == "expect-port") {
    const Port& p = controlPort(a[0], false);
    const double tolerance = a.size() > 3 ? number(a[3]) : 1e-6 * std::max(1.0, std::fabs(number(a[2])));
    if (!compare(p.value, a[1], number(a[2]), tolerance))
      fail(c, a[0] + " is " + show(p.value) + ", expected " + a[1] + " " + a[2]);
  } else if (n == "expect-writes") {
    const Port& p = controlPort(a[0], true);
    const double lo = number(a[1]), hi = number(a[2]);
    int seen = 0;
    for (const UiWrite& w : slot().writes()) {
      if (w.port != p.index) continue;
      ++seen;
      if (!w.valid || !(w.value >= lo && w.value <= hi)) {
        fail(c, "the UI wrote " + show(w.value) + " to " + a[0] + ", outside " + a[1] + ".." + a[2]);
        return;
      }
    }
    if (!seen) fail(c, "the UI wrote nothing to " + a[0]);
  } else if (n == "expect-no-writes") {
    const Port* p = a.empty() ? nullptr : slot().port(a[0]);
    if (!a.empty() && !p) stop(2, "the plug-in has no port '" + a[0] + "'");
    for (const UiWrite& w : slot().writes()) {
      if (p && w.port != p->index) continue;
      const std::string what = w.protocol == 0 ? show(w.value) : "an " + w.atomType + " atom";
      const auto& ports = slot().ports();
      fail(c, "the UI wrote " + what + " to " + (w.port < ports.size() ? ports[w.port].symbol : "port " + std::to_string(w.port)));
      return;
    }
  } else if (n == "expect-atoms") {
    const Port* p = slot().port(a[0]);
    if (!p || p->kind != PortKind::Atom) stop(2, "the plug-in has no atom port '" + a[0] + "'");
    if (p->atomsPassed < static_cast<uint64_t>(count(a[1])))
      fail(c, std::to_string(p->atomsPassed) + " atoms passed " + a[0] + ", expected at least " + a[1]);
  } else if (n == "expect-touch") {
    const Port& p = controlPort(a[0], true);
    PluginSlot& s = slot();
    uint64_t firstWrite = 0, lastWrite = 0;
    for (const UiWrite& w : s.writes())
      if (w.port == p.index) {
        if (!firstWrite) firstWrite = w.sequence;
        lastWrite = w.sequence;
      }
    int begins = 0, ends = 0;
    bool beganBefore = false, endedAfter = false;
    for (const UiTouch& t : s.touches()) {
      if (t.port != p.index) continue;
      (t.grabbed ? begins : ends)++;
      if (t.grabbed && t.sequence < firstWrite) beganBefore = true;
      if (!t.grabbed && t.sequence > lastWrite) endedAfter = true;
    }
    if (!firstWrite) {
      fail(c, "the UI wrote nothing to " + a[0]);
    } else if (!beganBefore || !endedAfter || begins != ends) {
      fail(c, "touch on " + a[0] + ": " + std::to_string(begins) + " begin, " + std::to_string(ends) +
                  " end; expected a begin before the first write and an end after the last");
    }
  } else if (n == "expect-monotonic-writes") {
    const Port& p = controlPort(a[0], true);
    int direction = 0;  // +1 rising, -1 falling, once known
    float last = 0;
    bool seen = false;
    for (const UiWrite& w : slot().writes()) {
      if (w.port != p.index || w.protocol != 0) continue;
      if (seen && w.value != last) {
        const int step = w.value > last ? 1 : -1;
        if (direction && step != direction) {
          fail(c, "the UI's writes to " + a[0] + " turned back at " + show(last) + " -> " + show(w.value));
          return;
        }
        direction = step;
      }
      last = w.value;
      seen = true;
    }
    if (!seen) fail(c, "the UI wrote nothing to " + a[0]);
  } else if (n == "clear-writes") {
    slot().writes().clear();
    slot().touches().clear();
    for (Port& p : slot().ports()) p.atomsPassed = 0;
  } else if (n == "print-writes") {
    PluginSlot& s = slot();
    // Writes and touches in the order they happened.
    size_t t = 0;
    auto symbol = [&](uint32_t i) { return i < s.ports().size() ? s.ports()[i].symbol : "port " + std::to_string(i); };
    auto touchesUpTo = [&](uint64_t sequence) {
      for (; t < s.touches().size() && s.touches()[t].sequence < sequence; ++t)
        std::printf("touch %s %s\n", symbol(s.touches()[t].port).c_str(), s.touches()[t].grabbed ? "begin" : "end");
    };
    for (const UiWrite& w : s.writes()) {
      touchesUpTo(w.sequence);
      std::printf("write %s %s%s\n", symbol(w.port).c_str(), w.protocol == 0 ? show(w.value).c_str() : w.atomType.c_str(),
                  w.valid ? "" : " (does not fit the port)");
    }
    touchesUpTo(UINT64_MAX);
  } else if (n == "print-ports") {
    for (const Port& p : slot().ports())
      if (p.kind == PortKind::Control)
        std::printf("port %u %s %s = %s [%s %s]\n", p.index, p.symbol.c_str(), p.input ? "in" : "out",
                    show(p.value).c_str(), show(p.minimum).c_str(), show(p.maximum).c_str());
  } else if (n == "expect-log" || n == "expect-no-log") {
    bool found = false;
    for (const LogLine& l : world_.log())
      if ((l.level + ": " + l.text).find(a[0]) != std::string::npos) found = true;
    if (n == "expect-log" && !found) fail(c, "no log line contains '" + a[0] + "'");
    if (n == "expect-no-log" && found) fail(c, "a log line contains '" + a[0] + "'");
  } else if (n == "clear-log") {
    world_.log().clear();
  } else if (n == "click") {
    const unsigned b = a.size() > 2 ? static_cast<unsigned>(count(a[2])) : 1;
    if (b < 1 || b > 9) stop(2, "buttons are 1 to 9");
    moveTo(number(a[0]), number(a[1]));
    pump(2);
    x11().button(b, true);
    pump(2);
    x11().button(b, false);
    pump(2);
  } else if (n == "drag") {
    const int steps = a.size() > 4 ? std::max(1, count(a[4])) : 10;
    const double x1 = number(a[0]), y1 = number(a[1]), x2 = number(a[2]), y2 = number(a[3]);
    moveTo(x1, y1);
    pump(2);
    x11().button(1, true);
    pump(2);
    for (int i = 1; i <= steps; ++i) {
      moveTo(x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps);
      pump(1);
    }
    x11().button(1, false);
    pump(3);
  } else if (n == "scroll") {
    const int clicks = static_cast<int>(number(a[2]));
    moveTo(number(a[0]), number(a[1]));
    pump(1);
    for (int i = 0; i < std::abs(clicks); ++i) {
      x11().button(clicks > 0 ? 4 : 5, true);
      x11().button(clicks > 0 ? 4 : 5, false);
      pump(1);
    }
  } else if (n == "key") {
    slotWithUi();
    const std::string error = x11().key(a[0], a.size() > 1 ? a[1] : std::string());
    if (!error.empty()) stop(2, error);
    pump(2);
  } else if (n == "type") {
    slotWithUi();
    const std::string error = x11().typeText(a[0]);
    if (!error.empty()) stop(2, error);
    pump(2);
  } else if (n == "clipboard-expect" || n == "clipboard-print") {
    auto text = x11().readClipboard([this] { pumpOnce(); }, 2000);
    if (!text) {
      fail(c, "the clipboard's owner did not answer within 2 s");
    } else if (n == "clipboard-print") {
      std::printf("clipboard: %s\n", text->c_str());
    } else if (*text != a[0]) {
      fail(c, "the clipboard holds '" + *text + "'");
    }
  } else if (n == "expect-size") {
    const auto& r = slot().resizeRequests();
    if (r.empty()) {
      fail(c, "the UI asked for no size");
    } else if (r.back().first != count(a[0]) || r.back().second != count(a[1])) {
      fail(c, "the UI last asked for " + std::to_string(r.back().first) + "x" + std::to_string(r.back().second));
    }
  } else if (n == "expect-ui-fits") {
    PluginSlot& s = slotWithUi();
    int ux = 0, uy = 0, uw = 0, uh = 0, hx = 0, hy = 0, hw = 0, hh = 0;
    if (!x11().geometry(s.uiWindow(), ux, uy, uw, uh) || !x11().geometry(s.hostWindow(), hx, hy, hw, hh)) {
      fail(c, "the UI's window or the host's is gone");
    } else if (uw != count(a[0]) || uh != count(a[1])) {
      fail(c, "the UI's window is " + std::to_string(uw) + "x" + std::to_string(uh));
    } else if (ux < 0 || uy < 0 || ux + uw > hw || uy + uh > hh) {
      fail(c, "the UI's window (" + std::to_string(uw) + "x" + std::to_string(uh) + " at " + std::to_string(ux) + "," +
                  std::to_string(uy) + ") does not fit the host's " + std::to_string(hw) + "x" + std::to_string(hh));
    }
  } else if (n == "expect-paint-ms") {
    const double ms = slotWithUi().lastPaintMs();
    if (ms < 0) {
      fail(c, "no paint was seen when the UI opened");
    } else if (ms > number(a[0])) {
      fail(c, "the first paint came after " + show(ms) + " ms");
    }
  } else if (n == "screenshot") {
    PluginSlot& s = slotWithUi();
    x11().sync();
    auto picture = x11().grab(s.hostWindow());
    if (!picture) stop(1, "the host window cannot be read");
    if (!HostX11::writePng(*picture, a[0])) stop(2, "cannot write " + a[0]);
    std::printf("screenshot %s: %dx%d\n", a[0].c_str(), picture->width, picture->height);
  } else if (n == "save-state") {
    LilvState* state = slot().snapshot();
    if (!state) stop(1, "the plug-in's state could not be saved");
    if (auto it = states_.find(a[0]); it != states_.end()) lilv_state_free(it->second);
    states_[a[0]] = state;
    int values = 0;
    lilv_state_emit_port_values(
        state, [](const char*, void* d, const void*, uint32_t, uint32_t) { ++*static_cast<int*>(d); }, &values);
    std::printf("save-state %s: %d port values\n", a[0].c_str(), values);
  } else if (n == "restore-state") {
    auto it = states_.find(a[0]);
    if (it == states_.end()) stop(2, "no saved state '" + a[0] + "'");
    PluginSlot& s = slot();
    if (s.uiOpen()) x11();
    UiOpenReport report;
    const std::string error = s.restoreIntoNewInstance(it->second, report, kPaintTimeoutMs);
    if (!error.empty()) stop(1, error);
    if (s.uiOpen()) printUiReport(s, report);
    const int values = checkStateValues(c, it->second, s);
    std::printf("restore-state %s: %d port values into a new instance%s\n", a[0].c_str(), values,
                s.uiOpen() ? ", UI re-created" : "");
  } else if (n == "preset-load") {
    LilvNodes* owner = nullptr;
    const LilvNode* found = nullptr;
    std::string labels;
    for (const LilvNode* preset : presets(owner)) {
      lilv_world_load_resource(world_.world(), preset);
      LilvNodes* label = lilv_world_find_nodes(world_.world(), preset, world_.rdfsLabel, nullptr);
      const std::string text = label && lilv_nodes_size(label) ? lilv_node_as_string(lilv_nodes_get_first(label)) : "";
      lilv_nodes_free(label);
      labels += " '" + text + "'";
      if (!found && (text == a[0] || a[0] == lilv_node_as_uri(preset))) found = preset;
    }
    if (!found) {
      lilv_nodes_free(owner);
      fail(c, "no preset '" + a[0] + "'; the plug-in has:" + (labels.empty() ? " none" : labels));
      return;
    }
    LilvState* state = lilv_state_new_from_world(world_.world(), world_.urids().mapFeature(), found);
    lilv_nodes_free(owner);
    if (!state) stop(1, "the preset '" + a[0] + "' does not load");
    const int values = slot().apply(state);
    checkStateValues(c, state, slot());
    lilv_state_free(state);
    std::printf("preset-load %s: %d port values\n", a[0].c_str(), values);
  } else if (n == "expect-presets-load") {
    LilvNodes* owner = nullptr;
    const auto all = presets(owner);
    if (all.empty()) fail(c, "the plug-in has no presets");
    for (const LilvNode* preset : all) {
      const std::string uri = lilv_node_as_uri(preset);
      lilv_world_load_resource(world_.world(), preset);
      LilvState* state = lilv_state_new_from_world(world_.world(), world_.urids().mapFeature(), preset);
      if (!state) {
        fail(c, "the preset " + uri + " does not load");
        continue;
      }
      if (slot().apply(state) == 0) fail(c, "the preset " + uri + " sets no port value");
      checkStateValues(c, state, slot());
      lilv_state_free(state);
    }
    lilv_nodes_free(owner);
    std::printf("presets: %zu\n", all.size());
  } else if (n == "expect-x-errors") {
    if (x11_.isOpen()) x11_.sync();
    if (HostX11::errorCount() != count(a[0]))
      fail(c, std::to_string(HostX11::errorCount()) + " X errors" +
                  (HostX11::errorCount() ? ", the last: " + HostX11::lastError() : std::string()));
  } else if (n == "print-memory") {
    std::printf("memory: %ld KiB resident\n", residentKiB());
  } else if (n == "print") {
    std::printf("%s\n", a.empty() ? "" : a[0].c_str());
  } else {
    stop(2, "no handler for the command '" + n + "' (the parser and the runner disagree)");
  }
}

}  // namespace zel::lv2host
