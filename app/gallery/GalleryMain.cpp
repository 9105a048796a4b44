// zel-gallery: every piece of the toolkit, the theme and the editor's
// elements in one window, to look at.
//
//   zel-gallery [--theme light|dark] [--scale S] [--out FILE.png | --window]
//               [--config DESCRIPTION.plist]
//
// --out renders one still picture with the offscreen backend on a virtual
// clock: set-up animations have settled, and a pulse, a flash and a warning
// pulse are caught mid-way. --window (the default when there is a display)
// shows the live window; the focus borders crawl, the demonstrations repeat
// every two seconds, and the theme glyph under "flash" switches the theme.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "app/gallery/GalleryRender.h"
#include "app/gallery/GalleryView.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"
#ifdef ZEL_GALLERY_HAVE_X11
#include "toolkit/x11/ZelX11EventWait.h"
#include "toolkit/x11/ZelX11WindowHost.h"
#endif

namespace {

using namespace zel;
using gallery::GalleryView;

struct Options {
  bool dark = false;
  double scale = 0;  // 0: 1 offscreen, the screen's in a window
  std::string out;
  bool window = false;
  std::string config = std::string(ZEL_RESOURCES_DIR) + "/config.plist";
};

int usage() {
  std::fprintf(stderr,
               "usage: zel-gallery [--theme light|dark] [--scale S] [--out FILE.png | --window] "
               "[--config FILE.plist]\n");
  return 2;
}

bool parse(int argc, char** argv, Options& o) {
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    bool hasValue = i + 1 < argc;
    if (a == "--window") o.window = true;
    else if (a == "--theme" && hasValue) {
      std::string t = argv[++i];
      if (t != "light" && t != "dark") return false;
      o.dark = t == "dark";
    } else if (a == "--scale" && hasValue) {
      o.scale = std::atof(argv[++i]);
      if (!(o.scale > 0 && o.scale <= 4)) return false;
    } else if (a == "--out" && hasValue) o.out = argv[++i];
    else if (a == "--config" && hasValue) o.config = argv[++i];
    else return false;
  }
  return !(o.window && !o.out.empty());
}

int runOffscreen(const Options& o) {
  gallery::StillOptions still{o.dark, o.scale > 0 ? o.scale : 1, o.config};
  if (gallery::writeStill(still, o.out)) return 0;
  std::fprintf(stderr, "zel-gallery: cannot write %s\n", o.out.c_str());
  return 1;
}

#ifdef ZEL_GALLERY_HAVE_X11
int runWindow(const Options& o) {
  ZelMonotonicClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop::setCurrent(&loop);
  gallery::useTheme(o.dark);
  ZelWindow window(loop, GalleryView::kSize);
  auto content = std::make_unique<GalleryView>(o.config);
  GalleryView* view = content.get();
  window.setContentView(std::move(content));
  ZelX11WindowOptions options;
  options.backingScale = o.scale;
  options.title = "Zel gallery";
  options.className = "zel-gallery";
  int status = 0;
  if (auto host = ZelX11WindowHost::create(window, options)) {
    ZelX11WakePipe wake(loop);
    host->show();
    view->repeatDemonstrations(2.0);
    while (host->pump()) ZelX11WaitForEvents(*host, &wake);
  } else {
    std::fprintf(stderr, "zel-gallery: cannot open the display\n");
    status = 1;
  }
  window.setContentView(std::make_unique<ZelView>());
  ZelRunLoop::setCurrent(nullptr);
  return status;
}
#endif

}  // namespace

int main(int argc, char** argv) {
  Options o;
  if (!parse(argc, argv, o)) return usage();
#ifdef ZEL_GALLERY_HAVE_X11
  if (o.out.empty() && (o.window || std::getenv("DISPLAY"))) return runWindow(o);
#else
  if (o.window) {
    std::fprintf(stderr, "zel-gallery: built without the X11 backend; use --out FILE.png\n");
    return 2;
  }
#endif
  if (o.out.empty()) return usage();
  return runOffscreen(o);
}
