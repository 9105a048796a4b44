// The LV2 UI: the editor of the product this library was linked with
// (dsp/ZelProduct.h) in an X11 window embedded in the host's parent,
// behind the host view and a connection that reaches the plug-in only
// through the host. The host's idle call pumps our own X connection without
// blocking.
//
// Features: ui:parent and urid:map are required; ui:resize, ui:touch,
// options (ui:scaleFactor) and log:log are used when offered.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include "host/ZelHostView.h"
#include "lv2/ui/ZelLV2Connection.h"
#include "theme/ZelUITheme.h"
#include "toolkit/atspi/ZelAtspiBridge.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelBundle.h"
#include "toolkit/foundation/ZelRunLoop.h"
#include "toolkit/x11/ZelX11WindowHost.h"

ZEL_NAMESPACE_BEGIN

namespace {

// How long a host may take to follow a ui:resize before the editor fits
// itself into the window it has.
constexpr double kHostResizeSeconds = 0.4;

struct Features {
  LV2_URID_Map* map = nullptr;
  void* parent = nullptr;
  const LV2UI_Resize* resize = nullptr;
  const LV2UI_Touch* touch = nullptr;
  const LV2_Options_Option* options = nullptr;
  LV2_Log_Log* log = nullptr;

  explicit Features(const LV2_Feature* const* features) {
    for (int i = 0; features && features[i]; ++i) {
      const char* uri = features[i]->URI;
      void* data = features[i]->data;
      if (!uri) continue;
      if (!std::strcmp(uri, LV2_URID__map)) map = static_cast<LV2_URID_Map*>(data);
      else if (!std::strcmp(uri, LV2_UI__parent)) parent = data;
      else if (!std::strcmp(uri, LV2_UI__resize)) resize = static_cast<const LV2UI_Resize*>(data);
      else if (!std::strcmp(uri, LV2_UI__touch)) touch = static_cast<const LV2UI_Touch*>(data);
      else if (!std::strcmp(uri, LV2_OPTIONS__options)) options = static_cast<const LV2_Options_Option*>(data);
      else if (!std::strcmp(uri, LV2_LOG__log)) log = static_cast<LV2_Log_Log*>(data);
    }
  }

  // The host's ui:scaleFactor, or 0 (the window host then reads Xft.dpi).
  double scaleFactor() const {
    if (!options || !map) return 0;
    const LV2_URID key = map->map(map->handle, LV2_UI__scaleFactor);
    const LV2_URID floatType = map->map(map->handle, LV2_ATOM__Float);
    for (const LV2_Options_Option* o = options; o->key != 0 || o->value != nullptr; ++o)
      if (o->key == key && o->type == floatType && o->size == sizeof(float) && o->value) {
        float f;
        std::memcpy(&f, o->value, sizeof f);
        if (f >= 0.5f && f <= 8.0f) return f;
      }
    return 0;
  }
};

class ZelLV2UI {
 public:
  static ZelLV2UI* create(const char* pluginURI, const char* bundlePath, LV2UI_Write_Function write,
                             LV2UI_Controller controller, LV2UI_Widget* widget, const LV2_Feature* const* features);
  ~ZelLV2UI();

  void portEvent(std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* buffer) {
    connection_->portEvent(port, size, format, buffer);
  }
  // 0 while the window is open, 1 once it was closed or destroyed. The
  // accessibility bus is answered here too (between the host's idle calls
  // requests wait).
  int idle() {
    if (a11y_) a11y_->dispatch();
    return host_->pump() ? 0 : 1;
  }

 private:
  ZelLV2UI() = default;
  void log(std::string_view line) const;
  void applyRememberedTheme(bool toggled);
  void applyZoom(double zoom);
  void setScale(double scale);
  void fitToHost();

  Features features_{nullptr};
  ZelMonotonicClock clock_;
  std::unique_ptr<ZelRunLoop> loop_;
  std::unique_ptr<ZelWindow> window_;
  std::unique_ptr<ZelX11WindowHost> host_;
  std::unique_ptr<ZelLV2Connection> connection_;
  // On the accessibility bus as an application of its own, beside the
  // host's (null without the bus).
  std::unique_ptr<ZelAtspiBridge> a11y_;
  ZelHostView* view_ = nullptr;  // owned by the window
  double baseScale_ = 1;         // the host's scale (or the screen's), before the user's zoom
  double zoom_ = 1;              // the user's zoom, whether or not the host's window holds it
};

void ZelLV2UI::log(std::string_view line) const {
  if (features_.log && features_.map) {
    const LV2_URID error = features_.map->map(features_.map->handle, LV2_LOG__Error);
    features_.log->printf(features_.log->handle, error, "%.*s", static_cast<int>(line.size()), line.data());
  } else {
    std::fwrite(line.data(), 1, line.size(), stderr);
  }
}

// The plug-in remembers how many times the theme was toggled (modulo 2)
// from the light one; the theme is the process's, so it changes only when
// it differs.
void ZelLV2UI::applyRememberedTheme(bool toggled) {
  const bool dark = ZelUITheme::theme() == ZelUITheme::dark();
  if (dark != toggled) ZelUITheme::toggleThemeForWindow(window_.get());
}

// The user's zoom multiplies the host's scale: the window is drawn at the
// product and asks the host for its new size. Hosts that keep their window's
// size (jalv.qt5) would cut the editor off: once the host had its moment,
// the editor takes the largest scale that its view leaves whole.
void ZelLV2UI::applyZoom(double zoom) {
  zoom_ = zoom;
  setScale(baseScale_ * zoom);
  loop_->cancelAllForTarget(this);
  loop_->schedule(kHostResizeSeconds, [this] { fitToHost(); }, {this, "fit"});
}

void ZelLV2UI::setScale(double scale) {
  if (host_->backingScale() != scale) host_->setBackingScale(scale);
  const LV2UI_Resize* resize = features_.resize;
  if (resize && resize->ui_resize)
    resize->ui_resize(resize->handle, static_cast<int>(view_->editorSize().width * scale + 0.5),
                      static_cast<int>(view_->editorSize().height * scale + 0.5));
}

// Also when the host's window changes size: more room gives the zoom back,
// up to the user's; never below the host's own scale.
void ZelLV2UI::fitToHost() {
  int w = 0, h = 0;
  if (!host_->roomInHost(w, h)) return;
  const CGSize size = view_->editorSize();
  // Half a pixel of slack: sizes are rounded to whole pixels.
  const double room = std::min((w + 0.5) / size.width, (h + 0.5) / size.height);
  const double fitted = std::max(baseScale_, std::min(baseScale_ * zoom_, room));
  if (std::abs(fitted - host_->backingScale()) > 1e-3) setScale(fitted);
}

ZelLV2UI* ZelLV2UI::create(const char* pluginURI, const char* bundlePath, LV2UI_Write_Function write,
                                 LV2UI_Controller controller, LV2UI_Widget* widget,
                                 const LV2_Feature* const* features) {
  std::unique_ptr<ZelLV2UI> ui(new ZelLV2UI());
  ui->features_ = Features(features);
  const Features& f = ui->features_;
  if (!f.map || !f.parent || !write || !widget) {
    ui->log(std::string(ZelCurrentProduct().name) + ": the host offers no ui:parent or urid:map; the editor cannot open\n");
    return nullptr;
  }
  // The plug-in's channel count, by its URI (the widest when it is not ours).
  const ZelProduct& product = ZelCurrentProduct();
  int channels = product.variants.empty() ? 2 : product.variants.front().channels;
  for (const ZelProductVariant& v : product.variants)
    if (pluginURI && !std::strcmp(pluginURI, v.uri)) channels = v.channels;
  std::string resources = bundlePath && *bundlePath ? bundlePath : ".";
  if (resources.back() != '/') resources += '/';  // hosts give the bundle path with or without one
  resources += "resources";
  ZelBundle::setResourcesDirectory(resources);

  ui->loop_ = std::make_unique<ZelRunLoop>(ui->clock_);
  ui->window_ = std::make_unique<ZelWindow>(*ui->loop_, ZelHostView::kInitialSize);
  ZelX11WindowOptions options;
  options.parent = reinterpret_cast<ZelX11Id>(f.parent);
  options.backingScale = f.scaleFactor();
  ui->host_ = ZelX11WindowHost::create(*ui->window_, options);
  if (!ui->host_) {
    ui->log(std::string(product.name) + ": cannot open the X display; the editor cannot open\n");
    return nullptr;
  }
  ui->baseScale_ = ui->host_->backingScale();
  ui->connection_ = std::make_unique<ZelLV2Connection>(write, controller, f.map, f.touch, std::uint32_t(channels));

  auto view = std::make_unique<ZelHostView>(*ui->loop_, resources);
  ZelLV2UI* self = ui.get();
  view->setLogSink([self](std::string_view line) { self->log(line); });
  ui->view_ = view.get();
  ui->window_->setContentView(std::move(view));
  ui->connection_->setObserver({
      [self](const std::string&) { self->view_->unitPresetNameChanged(); },
      [self](bool toggled) { self->applyRememberedTheme(toggled); },
      [self](double) { self->view_->unitZoomChanged(); },
  });
  // Connecting applies the zoom in effect: the window takes its size and
  // asks the host for it.
  ui->view_->setZoomHandler([self](double zoom) { self->applyZoom(zoom); });
  ui->host_->setHostResizeHandler([self] {
    self->loop_->cancelAllForTarget(self);
    self->loop_->schedule(kHostResizeSeconds, [self] { self->fitToHost(); }, {self, "fit"});
  });
  ui->view_->setAU(ui->connection_.get());
  ui->window_->setContentSize(ui->view_->editorSize());
  ui->connection_->requestState();
  ui->host_->show();
  // The first frame is drawn now, before the host shows its window: the
  // host's first idle call after that only copies it.
  ui->host_->pump();
  ZelAtspiOptions a11y;
  ZelX11WindowHost* x11 = ui->host_.get();
  a11y.screenOrigin = [x11] { return x11->screenOrigin(); };
  a11y.pixelScale = [x11] { return x11->backingScale(); };
  ui->a11y_ = ZelAtspiBridge::connect(*ui->window_, std::move(a11y));
  *widget = reinterpret_cast<LV2UI_Widget>(ui->host_->xWindow());
  return ui.release();
}

ZelLV2UI::~ZelLV2UI() {
  // The view goes first (it lets go of the connection), then the X window
  // host (its cairo surfaces before its own X connection), then the window.
  a11y_.reset();
  if (window_) window_->setContentView(std::make_unique<ZelView>());
  host_.reset();
  window_.reset();
  connection_.reset();
  loop_.reset();
}

// ---- The descriptor.

LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char* pluginURI, const char* bundlePath,
                         LV2UI_Write_Function write, LV2UI_Controller controller, LV2UI_Widget* widget,
                         const LV2_Feature* const* features) {
  try {
    return ZelLV2UI::create(pluginURI, bundlePath, write, controller, widget, features);
  } catch (...) {
    return nullptr;
  }
}

void cleanup(LV2UI_Handle handle) { delete static_cast<ZelLV2UI*>(handle); }

void portEvent(LV2UI_Handle handle, uint32_t port, uint32_t size, uint32_t format, const void* buffer) {
  static_cast<ZelLV2UI*>(handle)->portEvent(port, size, format, buffer);
}

int idle(LV2UI_Handle handle) { return static_cast<ZelLV2UI*>(handle)->idle(); }

const void* extensionData(const char* uri) {
  static const LV2UI_Idle_Interface idleInterface = {idle};
  if (uri && !std::strcmp(uri, LV2_UI__idleInterface)) return &idleInterface;
  return nullptr;
}

const LV2UI_Descriptor* descriptor() {
  static const LV2UI_Descriptor d = {ZelCurrentProduct().lv2.uiURI, instantiate, cleanup, portEvent, extensionData};
  return &d;
}

}  // namespace

ZEL_NAMESPACE_END

extern "C" LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index) {
  return index == 0 ? zel::descriptor() : nullptr;
}
