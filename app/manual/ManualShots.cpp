#include "app/manual/ManualShots.h"

#include "app/common/ZelEditorSession.h"
#include "editor/containers/ZelClumpView.h"
#include "model/ZelConfig.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelFrameClock.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kDeferredSteps = 1.1;  // drawer step, sketch, first snapshot
constexpr double kSettleStep = 0.1;
constexpr double kSettleLimit = 10;

void settle(ZelWindow& window, ZelRunLoop& loop, ZelVirtualClock& clock, double limit) {
  while ((window.frameClock().isRunning() || loop.pendingCount() > 0) && clock.now() < limit)
    ZelRunVirtualTime(loop, clock, clock.now() + kSettleStep);
}

void collectClumps(const ZelView& view, double height, std::map<std::string, CGRect, std::less<>>& out) {
  if (view.isHidden()) return;
  if (const auto* clumpView = dynamic_cast<const ZelClumpView*>(&view); clumpView && clumpView->clump()) {
    const CGRect r = view.convertRectToView(view.bounds(), nullptr);
    out[clumpView->clump()->codesafeName] = CGRectMake(r.origin.x, height - r.origin.y - r.size.height, r.size.width,
                                                       r.size.height);
  }
  for (const auto& sub : view.subviews()) collectClumps(*sub, height, out);
}

// A copy of `source` that outlives the host drawing it.
std::shared_ptr<cairo_surface_t> copySurface(cairo_surface_t* source) {
  cairo_surface_flush(source);
  const int w = cairo_image_surface_get_width(source), h = cairo_image_surface_get_height(source);
  cairo_surface_t* copy = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, w, h);
  cairo_t* cr = cairo_create(copy);
  cairo_set_source_surface(cr, source, 0, 0);
  cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
  cairo_paint(cr);
  cairo_destroy(cr);
  return std::shared_ptr<cairo_surface_t>(copy, cairo_surface_destroy);
}

}  // namespace

ZelManualShot ZelShootEditor(std::unique_ptr<ZelConfig> config, double scale, bool advancedDrawer) {
  ZelManualShot shot;
  shot.size = ZelEditorSession::editorSizeFor(*config);
  shot.scale = scale;
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelRunLoop* previous = ZelRunLoop::current();
  ZelRunLoop::setCurrent(&loop);
  {
    ZelWindow window(loop, shot.size);
    ZelOffscreenWindowHost host(window, scale);
    host.setAutoDisplay(false);
    ZelEditorSession session(window, std::move(config));
    session.open();
    window.setKeyWindow(true);
    ZelRunVirtualTime(loop, clock, kDeferredSteps);
    settle(window, loop, clock, kSettleLimit);
    if (advancedDrawer && session.editor() && !session.editor()->drawers().isAdvancedDrawerVisible()) {
      session.editor()->drawers().toggleAdvancedDrawer();
      settle(window, loop, clock, clock.now() + kSettleLimit);
    }
    host.renderAll();
    shot.image = copySurface(host.surface());
    if (session.editor()) collectClumps(*session.editor(), shot.size.height, shot.clumpFrames);
  }
  ZelRunLoop::setCurrent(previous);
  return shot;
}

ZEL_NAMESPACE_END
