// A product's standalone app (build/bin/<slug>, built for each product by
// zel_add_product): the editor in a window of its own, behind the same host
// view the plug-in uses, connected to the product's unit in this process,
// which plays through JACK; the session (values, preset, theme) survives
// restarts.
//
//   <slug> [window options] [--render FILE.png | --watch]
//   <slug> process IN OUT [options]   (app/process/ZelProcessCommand.h)
//   <slug> --help                     (every option, kUsage below)
//
// Without --render the editor opens in an X11 window at the screen's scale
// (or S). --render draws the editor once its deferred steps have run and
// writes the PNG, with no window, no sound and no session. --watch reloads
// the description whenever its file changes, keeping the current values,
// the preset and the theme.
//
// Sound (ZelJackAudio.h) and the session (ZelSessionFile.h) go with the
// window; a missing JACK server or a damaged session file is reported (on
// stderr, and for the sound in a small notice in the window) and never
// stops the editor. Closing the window, SIGINT or SIGTERM end the app
// cleanly: the JACK client deactivated and closed, the session written.
//
// Exit status: 0; 1 when the display cannot be opened or the picture not
// written; 2 for a bad option or an unreadable description.
#include <chrono>
#include <cstdarg>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "app/common/ZelAppResources.h"
#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelEditorStill.h"
#include "app/common/ZelNumberWords.h"
#include "app/process/ZelProcessCommand.h"
#include "app/standalone/ZelNoticeView.h"
#include "app/standalone/ZelSessionFile.h"
#include "app/standalone/ZelStandaloneUnit.h"
#ifdef ZEL_APP_HAVE_JACK
#include "app/standalone/ZelJackAudio.h"
#endif
#include "dsp/ZelProduct.h"
#include "host/ZelHostView.h"
#include "model/ZelConfig.h"
#ifdef ZEL_APP_HAVE_X11
#include "toolkit/atspi/ZelAtspiBridge.h"
#include "toolkit/x11/ZelX11EventWait.h"
#include "toolkit/x11/ZelX11WindowHost.h"
#endif

namespace {

using namespace zel;

const auto gStart = std::chrono::steady_clock::now();

// The product's texts: "{slug}" and "{Name}" in `text` become its slug and name.
std::string named(std::string text) {
  const ZelProduct& product = ZelCurrentProduct();
  for (const auto& [word, name] : {std::pair<std::string, std::string>{"{slug}", product.slug}, {"{Name}", product.name}})
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + name.size()))
      text.replace(at, word.size(), name);
  return text;
}

// One line on stderr after the program's name ("<slug>: ...").
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...) {
  std::fprintf(stderr, "%s: ", ZelCurrentProduct().slug);
  va_list args;
  va_start(args, format);
  std::vfprintf(stderr, format, args);
  va_end(args);
}

struct Options {
  std::string config = ZelDefaultDescriptionPath();
  bool dark = false;
  bool themeGiven = false;
  double scale = 0;  // 0: the screen's (1 for --render)
  std::uint32_t channelsIn = 2, channelsOut = 2;
  std::string render;
  bool watch = false;
  bool audio = true;
  bool connect = true;
  std::vector<std::string> connectIn, connectOut;
  std::string session;  // empty: ZelDefaultSessionPath()
  bool stats = false;
  bool help = false;
};

constexpr char kUsage[] =
    "usage: {slug} [--config FILE] [--theme light|dark] [--scale S] [--channels IN OUT | --mono]\n"
    "              [--no-audio] [--no-connect] [--connect-in PORT]... [--connect-out PORT]...\n"
    "              [--session FILE] [--stats] [--render FILE.png | --watch]\n"
    "       {slug} process IN OUT [--preset NAME] [--set CODENAME=VALUE]... [--format wav16|wav24|float|flac]\n"
    "       {slug} --help\n";

constexpr char kHelp[] =
    "\n"
    "The editor in a window, playing through JACK:\n"
    "  --config FILE        the description (default: the bundled resources/config.plist)\n"
    "  --theme light|dark   the theme to start with (default: the session's)\n"
    "  --scale S            pixels per point, above 0, at most 4 (default: the screen's)\n"
    "  --channels IN OUT    the channel counts the editor is told (default 2 2; one output\n"
    "                       makes the unit and the JACK client mono)\n"
    "  --mono               the same as --channels 1 1\n"
    "  --watch              reload the description whenever its file changes\n"
    "\n"
    "Sound (a JACK server must be running: jackd, or PipeWire's JACK; none is started):\n"
    "  --no-audio           no JACK client: the editor only\n"
    "  --no-connect         leave the system's capture and playback ports alone\n"
    "  --connect-in PORT    feed the inputs from PORT instead (repeatable: in turn)\n"
    "  --connect-out PORT   send the outputs to PORT instead (repeatable: in turn)\n"
    "  --stats              on exit, print the start-up time, peak memory and the\n"
    "                       audio thread's cost per block\n"
    "\n"
    "Session (values, preset and theme, restored at start, written a second after\n"
    "each change and on exit; a damaged file is set aside as FILE.bad-<time>):\n"
    "  --session FILE       default: $XDG_CONFIG_HOME/{slug}/session.plist\n"
    "                       (~/.config/{slug}/session.plist)\n"
    "\n"
    "Without a window:\n"
    "  --render FILE.png    draw the editor once its animations settled, and write it\n"
    "  process IN OUT       render a sound file through the unit, offline, to OUT:\n"
    "    --preset NAME      a factory preset first\n"
    "    --set CODENAME=VALUE  one parameter in its own units (repeatable)\n"
    "    --format wav16|wav24|float|flac  OUT's format (default: IN's)\n"
    "\n"
    "Exit status: 0; 1 without a display or when the picture cannot be written;\n"
    "2 for a bad option or an unreadable description.\n";

bool parseValue(const std::string& option, const char* value, Options& o, std::string& error) {
  if (option == "--config") return o.config = value, true;
  if (option == "--render") return o.render = value, true;
  if (option == "--session") return o.session = value, true;
  if (option == "--connect-in") return o.connectIn.emplace_back(value), true;
  if (option == "--connect-out") return o.connectOut.emplace_back(value), true;
  if (option == "--theme") {
    o.themeGiven = true;
    o.dark = std::string(value) == "dark";
    if (o.dark || std::string(value) == "light") return true;
    return error = "--theme is light or dark, not \"" + std::string(value) + "\"", false;
  }
  const auto scale = ZelParseNumberWord(value);
  if (scale && *scale > 0 && *scale <= 4) return o.scale = *scale, true;
  return error = "--scale needs a number above 0, at most 4", false;
}

bool parse(int argc, char** argv, Options& o, std::string& error) {
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "--watch") {
      o.watch = true;
    } else if (a == "--help" || a == "-h") {
      o.help = true;
    } else if (a == "--mono") {
      o.channelsIn = o.channelsOut = 1;
    } else if (a == "--no-audio") {
      o.audio = false;
    } else if (a == "--no-connect") {
      o.connect = false;
    } else if (a == "--stats") {
      o.stats = true;
    } else if (a == "--channels") {
      const auto in = i + 2 < argc ? ZelParseCountWord(argv[i + 1]) : std::nullopt;
      const auto out = i + 2 < argc ? ZelParseCountWord(argv[i + 2]) : std::nullopt;
      if (!in || !out) return error = "--channels needs two counts, IN and OUT", false;
      o.channelsIn = *in, o.channelsOut = *out, i += 2;
    } else if (a == "--config" || a == "--render" || a == "--theme" || a == "--scale" || a == "--session" ||
               a == "--connect-in" || a == "--connect-out") {
      if (a == "--session" && i + 1 < argc && argv[i + 1][0] == 0) return error = "--session needs a file", false;
      if (i + 1 >= argc) return error = a + " needs a value", false;
      if (!parseValue(a, argv[++i], o, error)) return false;
    } else {
      return error = "unknown option " + a, false;
    }
  }
  if (o.watch && !o.render.empty()) return error = "--watch needs the window; it does not go with --render", false;
  return true;
}

int fail(int status, const std::string& message) {
  say("%s\n", message.c_str());
  return status;
}

int renderStill(const Options& o, std::unique_ptr<ZelConfig> config) {
  ZelEditorStillOptions still{o.scale > 0 ? o.scale : 1, o.channelsIn, o.channelsOut};
  if (!ZelWriteEditorStill(std::move(config), still, o.render)) return fail(1, "cannot write " + o.render);
  return 0;
}

#ifdef ZEL_APP_HAVE_X11
// What the app says about its sound, in a corner of the window.
struct Notice {
  std::string text;
  ZelNoticeView* view = nullptr;  // owned by the host view
  void set(std::string line) {
    text = std::move(line);
    if (view) view->setText(text);
  }
};

// A new host view on `config` in the window, connected to the unit, with
// the notice on top. The user's zoom multiplies the window's base scale.
void showEditor(ZelWindow& window, ZelX11WindowHost& host, double baseScale, ZelStandaloneUnit& unit,
                std::unique_ptr<ZelConfig> config, Notice& notice) {
  window.setContentSize(config && config->preferredSize().width > 0 ? config->preferredSize()
                                                                   : ZelHostView::kInitialSize);
  auto view = std::make_unique<ZelHostView>(window.runLoop(), std::move(config));
  ZelHostView* shown = view.get();
  shown->setZoomHandler([&host, baseScale](double zoom) {
    if (host.backingScale() != baseScale * zoom) host.setBackingScale(baseScale * zoom);
  });
  // The old view (and its editor) goes before the new one connects.
  notice.view = nullptr;
  window.setContentView(std::move(view));
  shown->setAU(&unit);
  notice.view = shown->addSubview(std::make_unique<ZelNoticeView>());
  notice.view->setText(notice.text);
}

// Reloads the description into a new editor; the unit keeps its values,
// preset name and theme. A file that cannot be read now leaves the editor
// as it is.
void reload(ZelWindow& window, ZelX11WindowHost& host, double baseScale, ZelStandaloneUnit& unit,
            const std::string& path, Notice& notice) {
  std::string error;
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(path, error);
  if (!config) {
    say("%s: %s (keeping the editor as it is)\n", path.c_str(), error.c_str());
    return;
  }
  showEditor(window, host, baseScale, unit, std::move(config), notice);
  say("reloaded %s\n", path.c_str());
}

// The session at start: restored, or the defaults with a word on stderr.
ZelSessionState readSession(const std::string& path) {
  if (path.empty()) {
    say("no HOME or XDG_CONFIG_HOME: the session is not kept (use --session FILE)\n");
    return ZelSessionState::defaults();
  }
  ZelSessionReading reading = ZelReadSession(path);
  for (const std::string& note : reading.notes) say("%s: %s\n", path.c_str(), note.c_str());
  if (reading.outcome == ZelSessionReading::Outcome::SetAside) {
    if (reading.setAsidePath.empty())
      say("%s: %s; starting from the defaults\n", path.c_str(), reading.problem.c_str());
    else
      say("%s: %s; set aside as %s, starting from the defaults\n", path.c_str(),
                   reading.problem.c_str(), reading.setAsidePath.c_str());
  }
  return reading.state;
}

// How the app shows itself to screen readers.
ZelAtspiOptions accessibilityOptions(ZelX11WindowHost& host) {
  ZelAtspiOptions options;
  options.screenOrigin = [&host] { return host.screenOrigin(); };
  options.pixelScale = [&host] { return host.backingScale(); };
  return options;
}

volatile std::sig_atomic_t gStopRequested = 0;
ZelX11WakePipe* gWakeForSignals = nullptr;

void requestStop(int) {
  gStopRequested = 1;
  if (gWakeForSignals) gWakeForSignals->wake();  // a write(2): safe here
}

// VmHWM, and what the memory is now: the app's own (anonymous and file
// pages) and shared memory (mostly JACK's, which its clients lock).
std::string peakMemory() {
  std::ifstream status("/proc/self/status");
  std::string peak = "unknown", parts;
  for (std::string line; std::getline(status, line);) {
    const auto colon = line.find(':');
    if (colon == std::string::npos) continue;
    const std::string key = line.substr(0, colon);
    const auto start = line.find_first_not_of(" \t", colon + 1);
    const std::string value = start == std::string::npos ? "" : line.substr(start);
    if (key == "VmHWM") peak = value;
    if (key == "RssAnon" || key == "RssFile" || key == "RssShmem") parts += (parts.empty() ? "" : ", ") + key + " " + value;
  }
  return peak + " (now " + parts + ")";
}

double millisecondsSinceStart() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - gStart).count();
}

int runWindow(const Options& o, std::unique_ptr<ZelConfig> config) {
  ZelMonotonicClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop::setCurrent(&loop);
  ZelWindow window(loop, ZelHostView::kInitialSize);
  ZelX11WindowOptions options;
  options.backingScale = o.scale;
  options.title = ZelCurrentProduct().name;
  options.className = ZelCurrentProduct().slug;
  std::unique_ptr<ZelX11WindowHost> host = ZelX11WindowHost::create(window, options);
  if (!host) {
    ZelRunLoop::setCurrent(nullptr);
    return fail(1, "cannot open the display \"" + std::string(std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "") +
                       "\" (use --render FILE.png without one)");
  }
  // The session only once the window exists: a run that cannot show the
  // editor leaves it alone.
  const std::string sessionPath = o.session.empty() ? ZelDefaultSessionPath() : o.session;
  const ZelSessionState session = readSession(sessionPath);
  const bool dark = o.themeGiven ? o.dark : session.dark;
  ZelUseTheme(dark);

  ZelX11WakePipe wake(loop);
  gWakeForSignals = &wake;
  struct sigaction stop {};
  stop.sa_handler = requestStop;
  sigemptyset(&stop.sa_mask);
  sigaction(SIGINT, &stop, nullptr);
  sigaction(SIGTERM, &stop, nullptr);
  double firstPaint = -1;
  Notice notice;
  {
    ZelStandaloneUnit unit(loop, o.channelsIn, o.channelsOut);
    session.applyTo(unit);
    unit.setThemeFlag(dark);
    std::unique_ptr<ZelSessionKeeper> keeper;
    if (!sessionPath.empty()) keeper = std::make_unique<ZelSessionKeeper>(loop, unit, sessionPath);

#ifdef ZEL_APP_HAVE_JACK
    std::unique_ptr<ZelJackAudio> audio;
    if (o.audio) {
      ZelJackOptions jack;
      jack.connectPhysical = o.connect;
      jack.connectIn = o.connectIn;
      jack.connectOut = o.connectOut;
      jack.measure = o.stats;
      std::string error;
      audio = ZelJackAudio::open(loop, unit, jack, error);
      if (audio) {
        say("playing through JACK as %s at %.0f Hz\n", audio->clientName().c_str(),
                     unit.sampleRate());
        audio->setShutdownHandler([&](const std::string& reason) {
          say("the JACK server went away (%s); no sound until %s restarts\n", reason.c_str(),
              ZelCurrentProduct().name);
          notice.set("No audio (JACK server gone)");
        });
      } else {
        say("no audio: %s; start a JACK server (jackd or PipeWire's JACK) and restart %s\n", error.c_str(),
            ZelCurrentProduct().name);
        notice.set("No audio (no JACK server)");
      }
    }
#else
    if (o.audio) {
      say("built without JACK: no sound\n");
      notice.set("No audio (built without JACK)");
    }
#endif

    const double baseScale = host->backingScale();
    showEditor(window, *host, baseScale, unit, std::move(config), notice);
    std::unique_ptr<ZelDescriptionWatcher> watcher;
    if (o.watch) {
      watcher = std::make_unique<ZelDescriptionWatcher>(loop, o.config, [&] { reload(window, *host, baseScale, unit, o.config, notice); });
      watcher->start();
    }
    host->show();
    // Screen readers: only when the desktop runs the accessibility bus.
    std::unique_ptr<ZelAtspiBridge> a11y = ZelAtspiBridge::connect(window, accessibilityOptions(*host));
    if (a11y) std::fprintf(stderr, "%s: on the accessibility bus as %s\n", ZelCurrentProduct().slug, a11y->uniqueName().c_str());
    while (!gStopRequested && host->pump()) {
#ifdef ZEL_APP_HAVE_JACK
      if (audio) audio->service();
#endif
      if (a11y) a11y->dispatch();
      if (firstPaint < 0 && host->redrawCount() > 0) firstPaint = millisecondsSinceStart();
      ZelX11WaitForEvents(*host, &wake, -1, a11y ? a11y->fileDescriptor() : -1);
    }
    a11y.reset();
    // The sound stops before anything it plays goes; then the session.
#ifdef ZEL_APP_HAVE_JACK
    if (audio) {
      audio->close();
      if (o.stats) {
        const ZelJackStatistics st = audio->statistics();
        const double frames = st.blocks ? double(st.frames) / double(st.blocks) : 0;
        const double budget = st.sampleRate > 0 ? 1e6 * frames / st.sampleRate : 0;
        say("stats: audio %llu blocks of %.0f frames on average at %.0f Hz: %.2f us mean, %.2f us max "
                     "per block (%.2f %% of a block's %.0f us on average); %llu xruns\n",
                     static_cast<unsigned long long>(st.blocks), frames, st.sampleRate, st.meanMicroseconds,
                     st.maxMicroseconds, budget > 0 ? 100 * st.meanMicroseconds / budget : 0.0, budget,
                     static_cast<unsigned long long>(st.xruns));
      }
    }
#endif
    if (keeper && !keeper->flush(true)) say("the last changes are not saved\n");
    // The editor goes before the unit it is connected to.
    notice.view = nullptr;
    window.setContentView(std::make_unique<ZelView>());
  }
  gWakeForSignals = nullptr;
  host.reset();
  ZelRunLoop::setCurrent(nullptr);
  if (o.stats)
    say("stats: first frame painted %.1f ms after start; peak memory (VmHWM) %s\n", firstPaint,
                 peakMemory().c_str());
  return 0;
}
#endif

}  // namespace

int main(int argc, char** argv) {
  ZelUseResourcesBesideExecutable();
  if (argc >= 2 && std::string(argv[1]) == "process")
    return ZelProcessCommand(argc - 1, argv + 1, ZelDefaultDescriptionPath().c_str());
  Options o;
  std::string error;
  if (!parse(argc, argv, o, error)) {
    say("%s\n%s", error.c_str(), named(kUsage).c_str());
    return 2;
  }
  if (o.help) {
    std::printf("%s%s", named(kUsage).c_str(), named(kHelp).c_str());
    return 0;
  }
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(o.config, error);
  if (!config) return fail(2, "cannot read the description " + o.config + ": " + error);
  if (!o.render.empty()) {
    ZelUseTheme(o.dark);
    return renderStill(o, std::move(config));
  }
#ifdef ZEL_APP_HAVE_X11
  return runWindow(o, std::move(config));
#else
  return fail(1, "built without the X11 backend: use --render FILE.png");
#endif
}
