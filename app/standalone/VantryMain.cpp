// vantry: the editor in a window of its own, behind the same host view the
// plug-in uses, connected to the unit in this process.
//
//   vantry [--config FILE] [--theme light|dark] [--scale S] [--channels IN OUT]
//          [--render FILE.png | --watch]
//   vantry process IN OUT [options]   (app/process/ZelProcessCommand.h)
//
// Without --render the editor opens in an X11 window at the screen's scale
// (or S). --render draws the editor once its deferred steps have run and
// writes the PNG, with no window. --watch reloads the description whenever
// its file changes, keeping the current values, the preset and the theme.
//
// Exit status: 0; 1 when the display cannot be opened or the picture not
// written; 2 for a bad option or an unreadable description.
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "app/common/ZelAppResources.h"
#include "app/common/ZelDescriptionFile.h"
#include "app/common/ZelEditorStill.h"
#include "app/common/ZelNumberWords.h"
#include "app/process/ZelProcessCommand.h"
#include "app/standalone/ZelStandaloneUnit.h"
#include "host/ZelHostView.h"
#include "model/ZelConfig.h"
#ifdef ZEL_VANTRY_HAVE_X11
#include "toolkit/x11/ZelX11EventWait.h"
#include "toolkit/x11/ZelX11WindowHost.h"
#endif

namespace {

using namespace zel;

struct Options {
  std::string config = ZelDefaultDescriptionPath();
  bool dark = false;
  double scale = 0;  // 0: the screen's (1 for --render)
  std::uint32_t channelsIn = 2, channelsOut = 2;
  std::string render;
  bool watch = false;
};

constexpr char kUsage[] =
    "usage: vantry [--config FILE] [--theme light|dark] [--scale S] [--channels IN OUT]\n"
    "              [--render FILE.png | --watch]\n"
    "       vantry process IN OUT [--preset NAME] [--set CODENAME=VALUE]... [--format wav16|wav24|float|flac]\n";

bool parseValue(const std::string& option, const char* value, Options& o, std::string& error) {
  if (option == "--config") return o.config = value, true;
  if (option == "--render") return o.render = value, true;
  if (option == "--theme") {
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
    } else if (a == "--channels") {
      const auto in = i + 2 < argc ? ZelParseCountWord(argv[i + 1]) : std::nullopt;
      const auto out = i + 2 < argc ? ZelParseCountWord(argv[i + 2]) : std::nullopt;
      if (!in || !out) return error = "--channels needs two counts, IN and OUT", false;
      o.channelsIn = *in, o.channelsOut = *out, i += 2;
    } else if (a == "--config" || a == "--render" || a == "--theme" || a == "--scale") {
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
  std::fprintf(stderr, "vantry: %s\n", message.c_str());
  return status;
}

int renderStill(const Options& o, std::unique_ptr<ZelConfig> config) {
  ZelEditorStillOptions still{o.scale > 0 ? o.scale : 1, o.channelsIn, o.channelsOut};
  if (!ZelWriteEditorStill(std::move(config), still, o.render)) return fail(1, "cannot write " + o.render);
  return 0;
}

#ifdef ZEL_VANTRY_HAVE_X11
// A new host view on `config` in the window, connected to the unit. The
// user's zoom multiplies the window's base scale.
void showEditor(ZelWindow& window, ZelX11WindowHost& host, double baseScale, ZelStandaloneUnit& unit,
                std::unique_ptr<ZelConfig> config) {
  window.setContentSize(ZelHostView::kInitialSize);
  auto view = std::make_unique<ZelHostView>(window.runLoop(), std::move(config));
  ZelHostView* shown = view.get();
  shown->setZoomHandler([&host, baseScale](double zoom) {
    if (host.backingScale() != baseScale * zoom) host.setBackingScale(baseScale * zoom);
  });
  // The old view (and its editor) goes before the new one connects.
  window.setContentView(std::move(view));
  shown->setAU(&unit);
}

// Reloads the description into a new editor; the unit keeps its values,
// preset name and theme. A file that cannot be read now leaves the editor
// as it is.
void reload(ZelWindow& window, ZelX11WindowHost& host, double baseScale, ZelStandaloneUnit& unit,
            const std::string& path) {
  std::string error;
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(path, error);
  if (!config) {
    std::fprintf(stderr, "vantry: %s: %s (keeping the editor as it is)\n", path.c_str(), error.c_str());
    return;
  }
  showEditor(window, host, baseScale, unit, std::move(config));
  std::fprintf(stderr, "vantry: reloaded %s\n", path.c_str());
}

int runWindow(const Options& o, std::unique_ptr<ZelConfig> config) {
  ZelMonotonicClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop::setCurrent(&loop);
  ZelWindow window(loop, ZelHostView::kInitialSize);
  ZelX11WindowOptions options;
  options.backingScale = o.scale;
  options.title = config->metadata().pluginName.empty() ? "Vantry" : config->metadata().pluginName;
  std::unique_ptr<ZelX11WindowHost> host = ZelX11WindowHost::create(window, options);
  if (!host) {
    ZelRunLoop::setCurrent(nullptr);
    return fail(1, "cannot open the display \"" + std::string(std::getenv("DISPLAY") ? std::getenv("DISPLAY") : "") +
                       "\" (use --render FILE.png without one)");
  }
  ZelX11WakePipe wake(loop);
  {
    ZelStandaloneUnit unit(loop, o.channelsIn, o.channelsOut);
    unit.setThemeFlag(o.dark);
    const double baseScale = host->backingScale();
    showEditor(window, *host, baseScale, unit, std::move(config));
    std::unique_ptr<ZelDescriptionWatcher> watcher;
    if (o.watch) {
      watcher = std::make_unique<ZelDescriptionWatcher>(loop, o.config, [&] { reload(window, *host, baseScale, unit, o.config); });
      watcher->start();
    }
    host->show();
    while (host->pump()) ZelX11WaitForEvents(*host, &wake);
    // The editor goes before the unit it is connected to.
    window.setContentView(std::make_unique<ZelView>());
  }
  host.reset();
  ZelRunLoop::setCurrent(nullptr);
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
    std::fprintf(stderr, "vantry: %s\n%s", error.c_str(), kUsage);
    return 2;
  }
  std::unique_ptr<ZelConfig> config = ZelLoadDescription(o.config, error);
  if (!config) return fail(2, "cannot read the description " + o.config + ": " + error);
  ZelUseTheme(o.dark);
  if (!o.render.empty()) return renderStill(o, std::move(config));
#ifdef ZEL_VANTRY_HAVE_X11
  return runWindow(o, std::move(config));
#else
  return fail(1, "built without the X11 backend: use --render FILE.png");
#endif
}
