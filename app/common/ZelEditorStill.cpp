#include "app/common/ZelEditorStill.h"

#include "app/common/ZelEditorSession.h"
#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelFrameClock.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kDeferredSteps = 1.1;  // drawer step, sketch, first snapshot
constexpr double kSettleStep = 0.1;
constexpr double kSettleLimit = 10;     // seconds; animations never run this long

// Builds the editor, runs its start-up and hands the host to `use`.
template <class F>
auto withStill(std::unique_ptr<ZelConfig> config, const ZelEditorStillOptions& o, F use) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop* previous = ZelRunLoop::current();
  ZelRunLoop::setCurrent(&loop);
  ZelWindow window(loop, ZelEditorSession::editorSizeFor(*config));
  auto result = [&] {
    ZelOffscreenWindowHost host(window, o.scale);
    host.setAutoDisplay(false);
    ZelEditorSession session(window, std::move(config));
    session.unit().setChannels(o.channelsIn, o.channelsOut);
    session.open();
    window.setKeyWindow(true);
    ZelRunVirtualTime(loop, clock, kDeferredSteps);
    while ((window.frameClock().isRunning() || loop.pendingCount() > 0) && clock.now() < kSettleLimit)
      ZelRunVirtualTime(loop, clock, clock.now() + kSettleStep);
    host.renderAll();
    return use(host);
  }();
  ZelRunLoop::setCurrent(previous);
  return result;
}

}  // namespace

std::shared_ptr<const ZelImage> ZelRenderEditorStill(std::unique_ptr<ZelConfig> config,
                                                     const ZelEditorStillOptions& options) {
  return withStill(std::move(config), options, [](ZelOffscreenWindowHost& host) { return host.snapshot(); });
}

bool ZelWriteEditorStill(std::unique_ptr<ZelConfig> config, const ZelEditorStillOptions& options,
                         const std::string& path) {
  return withStill(std::move(config), options,
                   [&](ZelOffscreenWindowHost& host) { return host.writePNG(path); });
}

void ZelUseTheme(bool dark) {
  if ((ZelUITheme::theme() == ZelUITheme::dark()) != dark) ZelUITheme::toggleThemeForWindow(nullptr);
}

ZEL_NAMESPACE_END
