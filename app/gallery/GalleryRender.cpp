#include "app/gallery/GalleryRender.h"


#include "app/gallery/GalleryView.h"
#include "theme/ZelUITheme.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace gallery {

namespace {

using namespace zel;

constexpr double kSettle = 5;  // seconds for every set-up animation to end

// Builds the gallery in an offscreen window at the capture moment and hands
// the host to `use`.
template <class F>
auto withStill(const StillOptions& o, F use) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop::setCurrent(&loop);
  useTheme(o.dark);
  ZelWindow window(loop, GalleryView::kSize);
  auto view = std::make_unique<GalleryView>(o.config);
  GalleryView* gallery = view.get();
  window.setContentView(std::move(view));
  auto result = [&] {
    ZelOffscreenWindowHost host(window, o.scale);
    host.setAutoDisplay(false);
    ZelRunVirtualTime(loop, clock, kSettle);
    gallery->startDemonstrations();
    ZelRunVirtualTime(loop, clock, kSettle + GalleryView::kCaptureDelay);
    host.renderAll();
    return use(host);
  }();
  window.setContentView(std::make_unique<ZelView>());
  ZelRunLoop::setCurrent(nullptr);
  return result;
}

}  // namespace

void useTheme(bool dark) {
  if (dark != ZelUITheme::theme()->invertLabels()) ZelUITheme::toggleThemeForWindow(nullptr);
}

std::shared_ptr<const ZelImage> renderStill(const StillOptions& options) {
  return withStill(options, [](ZelOffscreenWindowHost& host) { return host.snapshot(); });
}

bool writeStill(const StillOptions& options, const std::string& path) {
  return withStill(options, [&](ZelOffscreenWindowHost& host) { return host.writePNG(path); });
}

}  // namespace gallery
