// The echo plug-in's X11 UI: a 200x100 child of the host's window showing
// "level" as a bar. It logs every port_event, key and option it gets; a
// press or drag sets level to x / 200 inside a touch; space sends an
// atom:Int 42 to "control"; q asks the host to close it.
#include <lv2/atom/atom.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr int kWidth = 200, kHeight = 100;

struct EchoUi {
  LV2UI_Write_Function write = nullptr;
  LV2UI_Controller controller = nullptr;
  LV2_URID_Map* map = nullptr;
  LV2_URID_Unmap* unmap = nullptr;
  LV2_Log_Log* log = nullptr;
  LV2UI_Touch* touch = nullptr;
  LV2_URID note = 0, transfer = 0, atomInt = 0;
  Display* display = nullptr;
  Window window = 0;
  GC gc = nullptr;
  float level = 0;
  bool pressed = false;
  bool closing = false;
};

void say(EchoUi* ui, const std::string& text) {
  if (ui->log) ui->log->printf(ui->log->handle, ui->note, "%s\n", text.c_str());
}

void draw(EchoUi* ui) {
  XSetForeground(ui->display, ui->gc, 0x203050);
  XFillRectangle(ui->display, ui->window, ui->gc, 0, 0, kWidth, kHeight);
  XSetForeground(ui->display, ui->gc, 0xe0c040);
  XFillRectangle(ui->display, ui->window, ui->gc, 0, 40, static_cast<unsigned>(ui->level * kWidth), 20);
  XFlush(ui->display);
}

void setLevel(EchoUi* ui, int x) {
  ui->level = x < 0 ? 0.f : x > kWidth ? 1.f : static_cast<float>(x) / kWidth;
  ui->write(ui->controller, 0, sizeof(float), 0, &ui->level);
  draw(ui);
}

LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char*, const char*, LV2UI_Write_Function write,
                         LV2UI_Controller controller, LV2UI_Widget* widget, const LV2_Feature* const* features) {
  auto* ui = new EchoUi;
  ui->write = write;
  ui->controller = controller;
  Window parent = 0;
  LV2UI_Resize* resize = nullptr;
  const LV2_Options_Option* options = nullptr;
  bool instanceAccess = false;
  for (int i = 0; features[i]; ++i) {
    const char* uri = features[i]->URI;
    void* data = features[i]->data;
    if (!std::strcmp(uri, LV2_URID__map)) ui->map = static_cast<LV2_URID_Map*>(data);
    if (!std::strcmp(uri, LV2_URID__unmap)) ui->unmap = static_cast<LV2_URID_Unmap*>(data);
    if (!std::strcmp(uri, LV2_LOG__log)) ui->log = static_cast<LV2_Log_Log*>(data);
    if (!std::strcmp(uri, LV2_UI__touch)) ui->touch = static_cast<LV2UI_Touch*>(data);
    if (!std::strcmp(uri, LV2_UI__resize)) resize = static_cast<LV2UI_Resize*>(data);
    if (!std::strcmp(uri, LV2_UI__parent)) parent = static_cast<Window>(reinterpret_cast<uintptr_t>(data));
    if (!std::strcmp(uri, LV2_OPTIONS__options)) options = static_cast<const LV2_Options_Option*>(data);
    if (!std::strcmp(uri, "http://lv2plug.in/ns/ext/instance-access")) instanceAccess = true;
  }
  ui->display = parent && ui->map ? XOpenDisplay(nullptr) : nullptr;
  if (!ui->display) {
    delete ui;
    return nullptr;
  }
  ui->note = ui->map->map(ui->map->handle, LV2_LOG__Note);
  ui->transfer = ui->map->map(ui->map->handle, LV2_ATOM__eventTransfer);
  ui->atomInt = ui->map->map(ui->map->handle, LV2_ATOM__Int);
  if (instanceAccess) say(ui, "ui was offered instance-access");
  const LV2_URID scale = ui->map->map(ui->map->handle, LV2_UI__scaleFactor);
  const LV2_URID rate = ui->map->map(ui->map->handle, LV2_UI__updateRate);
  for (const LV2_Options_Option* o = options; o && o->key; ++o) {
    if (o->key == scale) say(ui, "ui scale " + std::to_string(*static_cast<const float*>(o->value)).substr(0, 4));
    if (o->key == rate) say(ui, "ui update-rate " + std::to_string(static_cast<int>(*static_cast<const float*>(o->value))));
  }
  ui->window = XCreateSimpleWindow(ui->display, parent, 0, 0, kWidth, kHeight, 0, 0, 0);
  XSelectInput(ui->display, ui->window,
               ExposureMask | ButtonPressMask | ButtonReleaseMask | PointerMotionMask | KeyPressMask);
  ui->gc = XCreateGC(ui->display, ui->window, 0, nullptr);
  XMapWindow(ui->display, ui->window);
  XFlush(ui->display);
  if (resize) resize->ui_resize(resize->handle, kWidth, kHeight);
  *widget = reinterpret_cast<LV2UI_Widget>(static_cast<uintptr_t>(ui->window));
  return ui;
}

void cleanup(LV2UI_Handle h) {
  auto* ui = static_cast<EchoUi*>(h);
  XFreeGC(ui->display, ui->gc);
  XDestroyWindow(ui->display, ui->window);
  XCloseDisplay(ui->display);
  delete ui;
}

void portEvent(LV2UI_Handle h, uint32_t port, uint32_t size, uint32_t format, const void* buffer) {
  auto* ui = static_cast<EchoUi*>(h);
  if (format == 0 && size == sizeof(float)) {
    const float v = *static_cast<const float*>(buffer);
    char text[64];
    std::snprintf(text, sizeof text, "ui port %u = %g", port, v);
    say(ui, text);
    if (port == 0) {
      ui->level = v;
      draw(ui);
    }
  } else if (format == ui->transfer) {
    const auto* atom = static_cast<const LV2_Atom*>(buffer);
    const char* type = ui->unmap ? ui->unmap->unmap(ui->unmap->handle, atom->type) : "?";
    say(ui, "ui atom " + std::to_string(port) + " " + type + " of " + std::to_string(size) + " bytes");
  } else {
    say(ui, "ui port " + std::to_string(port) + " in an unknown format");
  }
}

int idle(LV2UI_Handle h) {
  auto* ui = static_cast<EchoUi*>(h);
  while (XPending(ui->display)) {
    XEvent e;
    XNextEvent(ui->display, &e);
    if (e.type == Expose && e.xexpose.count == 0) draw(ui);
    if (e.type == ButtonPress && e.xbutton.button == 1) {
      ui->pressed = true;
      if (ui->touch) ui->touch->touch(ui->touch->handle, 0, true);
      setLevel(ui, e.xbutton.x);
    }
    if (e.type == MotionNotify && ui->pressed) setLevel(ui, e.xmotion.x);
    if (e.type == ButtonRelease && e.xbutton.button == 1 && ui->pressed) {
      ui->pressed = false;
      if (ui->touch) ui->touch->touch(ui->touch->handle, 0, false);
    }
    if (e.type == KeyPress) {
      char chars[8] = {};
      KeySym sym = NoSymbol;
      XLookupString(&e.xkey, chars, sizeof chars - 1, &sym, nullptr);
      const char* name = XKeysymToString(sym);
      std::string text = std::string("ui key ") + (name ? name : "?");
      if (e.xkey.state & ShiftMask) text += " shift";
      if (e.xkey.state & ControlMask) text += " ctrl";
      say(ui, text);
      if (sym == XK_space) {
        const LV2_Atom_Int atom = {{sizeof(int32_t), ui->atomInt}, 42};
        ui->write(ui->controller, 2, sizeof atom, ui->transfer, &atom);
      }
      if (sym == XK_q) ui->closing = true;
    }
  }
  return ui->closing ? 1 : 0;
}

const void* extensionData(const char* uri) {
  static const LV2UI_Idle_Interface idleInterface = {idle};
  return std::strcmp(uri, LV2_UI__idleInterface) == 0 ? &idleInterface : nullptr;
}

const LV2UI_Descriptor descriptor = {"urn:zel-test:echo#ui", instantiate, cleanup, portEvent, extensionData};

}  // namespace

extern "C" LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(uint32_t index) {
  return index == 0 ? &descriptor : nullptr;
}
