#include "app/lv2host/HostPlugin.h"

#include "app/lv2host/HostX11.h"

#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/core/lv2.h>
#include <lv2/parameters/parameters.h>
#include <lv2/port-props/port-props.h>
#include <lv2/presets/presets.h>
#include <lv2/resize-port/resize-port.h>
#include <lv2/state/state.h>

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <sys/stat.h>
#include <thread>

namespace zel::lv2host {

namespace {

using Clock = std::chrono::steady_clock;

double msSince(Clock::time_point t) { return std::chrono::duration<double, std::milli>(Clock::now() - t).count(); }

constexpr size_t kMinimumAtomBytes = 65536;

}  // namespace

long residentKiB() {
  std::ifstream statm("/proc/self/statm");
  long size = 0, resident = 0;
  statm >> size >> resident;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

// ---------------------------------------------------------------- URIDs

UridTable::UridTable() {
  uris_.emplace_back();  // URID 0 is no URI
  map_.handle = this;
  map_.map = [](LV2_URID_Map_Handle h, const char* uri) { return static_cast<UridTable*>(h)->map(uri); };
  unmap_.handle = this;
  unmap_.unmap = [](LV2_URID_Unmap_Handle h, LV2_URID id) { return static_cast<UridTable*>(h)->unmap(id); };
}

LV2_URID UridTable::map(const char* uri) {
  if (!uri) return 0;
  auto [it, added] = ids_.try_emplace(uri, static_cast<LV2_URID>(uris_.size()));
  if (added) uris_.emplace_back(uri);
  return it->second;
}

const char* UridTable::unmap(LV2_URID urid) const {
  return urid > 0 && urid < uris_.size() ? uris_[urid].c_str() : nullptr;
}

// ---------------------------------------------------------------- world

HostWorld::HostWorld(const HostSettings& settings) : settings_(settings), world_(lilv_world_new()) {
  inputPort = lilv_new_uri(world_, LV2_CORE__InputPort);
  outputPort = lilv_new_uri(world_, LV2_CORE__OutputPort);
  audioPort = lilv_new_uri(world_, LV2_CORE__AudioPort);
  controlPort = lilv_new_uri(world_, LV2_CORE__ControlPort);
  cvPort = lilv_new_uri(world_, LV2_CORE__CVPort);
  atomPort = lilv_new_uri(world_, LV2_ATOM__AtomPort);
  minimumSize = lilv_new_uri(world_, LV2_RESIZE_PORT__minimumSize);
  connectionOptional = lilv_new_uri(world_, LV2_CORE__connectionOptional);
  x11UI = lilv_new_uri(world_, LV2_UI__X11UI);
  presetClass = lilv_new_uri(world_, LV2_PRESETS__Preset);
  rdfsLabel = lilv_new_uri(world_, "http://www.w3.org/2000/01/rdf-schema#label");
  logFeature_.handle = this;
  logFeature_.printf = logPrintf;
  logFeature_.vprintf = logVprintf;
  suil_ = suil_host_new(PluginSlot::uiWriteThunk, PluginSlot::uiPortIndexThunk, nullptr, nullptr);
  suil_host_set_touch_func(suil_, PluginSlot::uiTouchThunk);
}

HostWorld::~HostWorld() {
  suil_host_free(suil_);
  for (LilvNode* n : {inputPort, outputPort, audioPort, controlPort, cvPort, atomPort, minimumSize,
                      connectionOptional, x11UI, presetClass, rdfsLabel})
    lilv_node_free(n);
  lilv_world_free(world_);
}

void HostWorld::loadAll() { lilv_world_load_all(world_); }

std::string HostWorld::addBundle(const std::string& dir) {
  struct stat st{};
  std::string manifest = dir + "/manifest.ttl";
  if (stat(dir.c_str(), &st) != 0 || !S_ISDIR(st.st_mode)) return "no bundle directory " + dir;
  if (stat(manifest.c_str(), &st) != 0) return "no manifest.ttl in " + dir;
  char* real = realpath(dir.c_str(), nullptr);
  std::string path = std::string(real ? real : dir.c_str()) + "/";
  std::free(real);
  LilvNode* uri = lilv_new_file_uri(world_, nullptr, path.c_str());
  lilv_world_load_bundle(world_, uri);
  lilv_node_free(uri);
  return {};
}

int HostWorld::logPrintf(LV2_Log_Handle h, LV2_URID type, const char* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  const int n = logVprintf(h, type, fmt, ap);
  va_end(ap);
  return n;
}

int HostWorld::logVprintf(LV2_Log_Handle h, LV2_URID type, const char* fmt, va_list ap) {
  auto* self = static_cast<HostWorld*>(h);
  char buffer[2048];
  const int n = std::vsnprintf(buffer, sizeof buffer, fmt, ap);
  std::string text = buffer;
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
  const char* uri = self->urids_.unmap(type);
  std::string level = "note";
  if (uri && std::strcmp(uri, LV2_LOG__Error) == 0) level = "error";
  if (uri && std::strcmp(uri, LV2_LOG__Warning) == 0) level = "warning";
  if (uri && std::strcmp(uri, LV2_LOG__Trace) == 0) level = "trace";
  self->log_.push_back({level, text});
  std::fprintf(stderr, "log %s: %s\n", level.c_str(), text.c_str());
  return n;
}

// ---------------------------------------------------------------- slot

PluginSlot::PluginSlot(HostWorld& world, HostX11* x11, int number) : world_(world), x11_(x11), number_(number) {}

PluginSlot::~PluginSlot() {
  closeUi();
  freeInstance();
}

std::string PluginSlot::load(const std::string& uri) {
  LilvWorld* w = world_.world();
  LilvNode* node = lilv_new_uri(w, uri.c_str());
  plugin_ = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(w), node);
  lilv_node_free(node);
  if (!plugin_) return "no plug-in " + uri + " (searched LV2_PATH and the --bundle directories)";
  pluginUri_ = uri;

  static const std::set<std::string> supported = {
      LV2_URID__map, LV2_URID__unmap, LV2_OPTIONS__options, LV2_LOG__log, LV2_BUF_SIZE__boundedBlockLength,
      LV2_CORE__hardRTCapable, LV2_CORE__inPlaceBroken, LV2_CORE__isLive};
  LilvNodes* required = lilv_plugin_get_required_features(plugin_);
  std::string missing;
  LILV_FOREACH(nodes, i, required) {
    const char* f = lilv_node_as_uri(lilv_nodes_get(required, i));
    if (!supported.count(f)) missing += std::string(" ") + f;
  }
  lilv_nodes_free(required);
  if (!missing.empty()) return "the plug-in needs features this host does not offer:" + missing;

  const uint32_t count = lilv_plugin_get_num_ports(plugin_);
  std::vector<float> mins(count), maxs(count), defs(count);
  lilv_plugin_get_port_ranges_float(plugin_, mins.data(), maxs.data(), defs.data());
  ports_.assign(count, Port{});
  for (uint32_t i = 0; i < count; ++i) {
    const LilvPort* lp = lilv_plugin_get_port_by_index(plugin_, i);
    Port& p = ports_[i];
    p.index = i;
    p.symbol = lilv_node_as_string(lilv_port_get_symbol(plugin_, lp));
    p.input = lilv_port_is_a(plugin_, lp, world_.inputPort);
    p.minimum = std::isnan(mins[i]) ? 0 : mins[i];
    p.maximum = std::isnan(maxs[i]) ? 1 : maxs[i];
    p.value = std::isnan(defs[i]) ? p.minimum : defs[i];
    if (lilv_port_is_a(plugin_, lp, world_.audioPort)) {
      p.kind = PortKind::Audio;
    } else if (lilv_port_is_a(plugin_, lp, world_.controlPort)) {
      p.kind = PortKind::Control;
    } else if (lilv_port_is_a(plugin_, lp, world_.cvPort)) {
      p.kind = PortKind::CV;
    } else if (lilv_port_is_a(plugin_, lp, world_.atomPort)) {
      p.kind = PortKind::Atom;
      size_t bytes = kMinimumAtomBytes;
      if (LilvNode* min = lilv_port_get(plugin_, lp, world_.minimumSize)) {
        bytes = std::max(bytes, static_cast<size_t>(lilv_node_as_int(min)));
        lilv_node_free(min);
      }
      p.atomBuffer.assign(bytes / 8 + 1, 0);
    } else if (!lilv_port_has_property(plugin_, lp, world_.connectionOptional)) {
      return "port " + p.symbol + " has a type this host does not know";
    }
    if (p.kind == PortKind::Audio || p.kind == PortKind::CV) p.samples.assign(world_.settings().block, 0.f);
  }
  return instantiate();
}

std::string PluginSlot::instantiate() {
  UridTable& u = world_.urids();
  const HostSettings& s = world_.settings();
  blockInt_[0] = 1;
  blockInt_[1] = static_cast<int32_t>(s.block);
  sequenceSize_ = static_cast<int32_t>(kMinimumAtomBytes);
  rateFloat_ = static_cast<float>(s.rate);
  const LV2_URID atomInt = u.map(LV2_ATOM__Int), atomFloat = u.map(LV2_ATOM__Float);
  pluginOptions_ = {
      {LV2_OPTIONS_INSTANCE, 0, u.map(LV2_BUF_SIZE__minBlockLength), sizeof(int32_t), atomInt, &blockInt_[0]},
      {LV2_OPTIONS_INSTANCE, 0, u.map(LV2_BUF_SIZE__maxBlockLength), sizeof(int32_t), atomInt, &blockInt_[1]},
      {LV2_OPTIONS_INSTANCE, 0, u.map(LV2_BUF_SIZE__nominalBlockLength), sizeof(int32_t), atomInt, &blockInt_[1]},
      {LV2_OPTIONS_INSTANCE, 0, u.map(LV2_BUF_SIZE__sequenceSize), sizeof(int32_t), atomInt, &sequenceSize_},
      {LV2_OPTIONS_INSTANCE, 0, u.map(LV2_PARAMETERS__sampleRate), sizeof(float), atomFloat, &rateFloat_},
      {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
  pluginFeatureStore_ = {{LV2_URID__map, u.mapFeature()},
                         {LV2_URID__unmap, u.unmapFeature()},
                         {LV2_OPTIONS__options, pluginOptions_.data()},
                         {LV2_LOG__log, world_.logFeature()},
                         {LV2_BUF_SIZE__boundedBlockLength, nullptr}};
  pluginFeatures_.clear();
  for (auto& f : pluginFeatureStore_) pluginFeatures_.push_back(&f);
  pluginFeatures_.push_back(nullptr);

  instance_ = lilv_plugin_instantiate(plugin_, s.rate, pluginFeatures_.data());
  if (!instance_) return "the plug-in " + pluginUri_ + " did not instantiate";
  for (Port& p : ports_) {
    void* buffer = nullptr;
    switch (p.kind) {
      case PortKind::Audio:
      case PortKind::CV: buffer = p.samples.data(); break;
      case PortKind::Control: buffer = &p.value; break;
      case PortKind::Atom: buffer = p.atomBuffer.data(); break;
      case PortKind::Other: break;
    }
    lilv_instance_connect_port(instance_, p.index, buffer);
  }
  lilv_instance_activate(instance_);
  return {};
}

void PluginSlot::freeInstance() {
  if (!instance_) return;
  lilv_instance_deactivate(instance_);
  lilv_instance_free(instance_);
  instance_ = nullptr;
}

Port* PluginSlot::port(const std::string& symbol) {
  for (Port& p : ports_)
    if (p.symbol == symbol) return &p;
  return nullptr;
}

// ---------------------------------------------------------------- audio

void PluginSlot::run(uint32_t frames) {
  UridTable& u = world_.urids();
  const LV2_URID sequenceType = u.map(LV2_ATOM__Sequence), chunkType = u.map(LV2_ATOM__Chunk);
  const LV2_URID transfer = u.map(LV2_ATOM__eventTransfer);
  const uint32_t block = world_.settings().block;
  std::vector<float> input(block);
  while (frames > 0) {
    const uint32_t n = std::min(frames, block);
    frames -= n;
    for (uint32_t i = 0; i < n; ++i) {
      input[i] = static_cast<float>(sineAmplitude_ * std::sin(sinePhase_));
      sinePhase_ += 2 * M_PI * sineHz_ / world_.settings().rate;
    }
    sinePhase_ = std::fmod(sinePhase_, 2 * M_PI);
    for (Port& p : ports_) {
      if (p.kind == PortKind::Audio && p.input) std::copy(input.begin(), input.begin() + n, p.samples.begin());
      if (p.kind != PortKind::Atom) continue;
      auto* seq = reinterpret_cast<LV2_Atom_Sequence*>(p.atomBuffer.data());
      const uint32_t capacity = static_cast<uint32_t>(p.atomBuffer.size() * 8 - sizeof(LV2_Atom));
      if (!p.input) {
        seq->atom.type = chunkType;
        seq->atom.size = capacity;
        continue;
      }
      seq->atom.type = sequenceType;
      seq->atom.size = sizeof(LV2_Atom_Sequence_Body);
      seq->body.unit = 0;
      seq->body.pad = 0;
      for (const auto& bytes : p.pendingAtoms) {
        const uint32_t eventSize = lv2_atom_pad_size(sizeof(int64_t) + static_cast<uint32_t>(bytes.size()));
        if (seq->atom.size + eventSize > capacity) {
          std::fprintf(stderr, "warning: port %s: the UI's events overflow the sequence; dropped\n",
                       p.symbol.c_str());
          break;
        }
        auto* ev = reinterpret_cast<LV2_Atom_Event*>(reinterpret_cast<uint8_t*>(&seq->body) + seq->atom.size);
        ev->time.frames = 0;
        std::memcpy(&ev->body, bytes.data(), bytes.size());
        seq->atom.size += eventSize;
      }
      p.pendingAtoms.clear();
    }
    lilv_instance_run(instance_, n);
    for (Port& p : ports_) {
      if (p.input) continue;
      if (p.kind == PortKind::Control && (!p.sentToUi || p.lastSent != p.value)) sendToUi(p);
      if (p.kind != PortKind::Atom) continue;
      auto* seq = reinterpret_cast<LV2_Atom_Sequence*>(p.atomBuffer.data());
      if (seq->atom.type != sequenceType || !ui_) continue;
      LV2_ATOM_SEQUENCE_FOREACH(seq, ev) {
        suil_instance_port_event(ui_, p.index, sizeof(LV2_Atom) + ev->body.size, transfer, &ev->body);
        ++p.atomsPassed;
      }
    }
  }
}

// ---------------------------------------------------------------- UI

void PluginSlot::sendToUi(Port& p) {
  if (!ui_ || p.kind != PortKind::Control) return;
  suil_instance_port_event(ui_, p.index, sizeof(float), 0, &p.value);
  p.sentToUi = true;
  p.lastSent = p.value;
}

void PluginSlot::sendAllControlsToUi() {
  for (Port& p : ports_) sendToUi(p);
}

bool PluginSlot::sendValueToUi(const Port& p, float value) {
  if (!ui_ || p.kind != PortKind::Control) return false;
  suil_instance_port_event(ui_, p.index, sizeof(float), 0, &value);
  return true;
}

void PluginSlot::setControl(Port& p, float value) {
  p.value = value;
  sendToUi(p);
}

std::string PluginSlot::openUi(const std::string& uri, UiOpenReport& report, int paintTimeoutMs) {
  if (!x11_ || !x11_->isOpen()) return "no X display for the UI";
  if (ui_) return "the UI is already open";
  LilvUIs* uis = lilv_plugin_get_uis(plugin_);
  const LilvUI* chosen = nullptr;
  const LilvNode* type = nullptr;
  std::string available;
  LILV_FOREACH(uis, i, uis) {
    const LilvUI* ui = lilv_uis_get(uis, i);
    const char* id = lilv_node_as_uri(lilv_ui_get_uri(ui));
    const LilvNode* t = nullptr;
    const bool usable = lilv_ui_is_supported(ui, suil_ui_supported, world_.x11UI, &t) > 0;
    available += std::string(" ") + id + (usable ? "" : " (not X11)");
    if (chosen || !usable || (!uri.empty() && uri != id)) continue;
    chosen = ui;
    type = t;
  }
  if (!chosen) {
    lilv_uis_free(uis);
    return "no X11 UI " + uri + " for " + pluginUri_ + "; the plug-in has:" + (available.empty() ? " none" : available);
  }
  uiUri_ = lilv_node_as_uri(lilv_ui_get_uri(chosen));
  char* bundle = lilv_file_uri_parse(lilv_node_as_uri(lilv_ui_get_bundle_uri(chosen)), nullptr);
  char* binary = lilv_file_uri_parse(lilv_node_as_uri(lilv_ui_get_binary_uri(chosen)), nullptr);
  const std::string typeUri = lilv_node_as_uri(type);
  lilv_uis_free(uis);

  const long memoryBefore = residentKiB();
  hostWindow_ = x11_->createTopLevel(320, 240, "zel-lv2-host " + std::to_string(number_));
  UridTable& u = world_.urids();
  resize_.handle = this;
  resize_.ui_resize = uiResizeThunk;
  scaleFloat_ = static_cast<float>(world_.settings().scale);
  const LV2_URID atomFloat = u.map(LV2_ATOM__Float);
  uiOptions_ = {{LV2_OPTIONS_INSTANCE, 0, u.map(LV2_UI__scaleFactor), sizeof(float), atomFloat, &scaleFloat_},
                {LV2_OPTIONS_INSTANCE, 0, u.map(LV2_UI__updateRate), sizeof(float), atomFloat, &updateRate_},
                {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
  uiFeatureStore_ = {{LV2_URID__map, u.mapFeature()},
                     {LV2_URID__unmap, u.unmapFeature()},
                     {LV2_UI__parent, reinterpret_cast<void*>(static_cast<uintptr_t>(hostWindow_))},
                     {LV2_UI__resize, &resize_},
                     {LV2_OPTIONS__options, uiOptions_.data()},
                     {LV2_LOG__log, world_.logFeature()}};
  uiFeatures_.clear();
  for (auto& f : uiFeatureStore_) uiFeatures_.push_back(&f);
  uiFeatures_.push_back(nullptr);

  // The UI's binary stays loaded for the life of the process, as in most
  // hosts: libraries it pulls in (GLib types registered by pango, say) do not
  // survive being unloaded and loaded again.
  if (!dlopen(binary, RTLD_NOW | RTLD_NODELETE)) std::fprintf(stderr, "warning: %s\n", dlerror());
  const auto start = Clock::now();
  ui_ = suil_instance_new(world_.suil(), this, LV2_UI__X11UI, pluginUri_.c_str(), uiUri_.c_str(), typeUri.c_str(),
                          bundle, binary, uiFeatures_.data());
  report.instantiateMs = msSince(start);
  lilv_free(bundle);
  lilv_free(binary);
  if (!ui_) {
    x11_->destroy(hostWindow_);
    hostWindow_ = 0;
    return "the UI " + uiUri_ + " did not instantiate";
  }
  uiWindow_ = static_cast<Window>(reinterpret_cast<uintptr_t>(suil_instance_get_widget(ui_)));
  idleInterface_ =
      static_cast<const LV2UI_Idle_Interface*>(suil_instance_extension_data(ui_, LV2_UI__idleInterface));
  showInterface_ =
      static_cast<const LV2UI_Show_Interface*>(suil_instance_extension_data(ui_, LV2_UI__showInterface));
  if (showInterface_) showInterface_->show(suil_instance_get_handle(ui_));
  for (Port& p : ports_) p.sentToUi = false;
  sendAllControlsToUi();

  lastPaintMs_ = -1;
  while (uiWindow_ && msSince(start) < paintTimeoutMs) {
    if (!idle()) return "the UI closed itself while opening";
    x11_->drain();
    if (x11_->looksPainted(hostWindow_, uiWindow_)) {
      lastPaintMs_ = msSince(start);
      break;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  report.firstPaintMs = lastPaintMs_;
  report.memoryKiB = residentKiB() - memoryBefore;
  if (!resizes_.empty()) {
    report.width = resizes_.back().first;
    report.height = resizes_.back().second;
  }
  return {};
}

bool PluginSlot::idle() {
  if (!ui_) return true;
  if (idleInterface_ && idleInterface_->idle(suil_instance_get_handle(ui_)) != 0) {
    std::fprintf(stderr, "instance %d: the UI asked to be closed\n", number_);
    closeUi();
    return false;
  }
  return true;
}

void PluginSlot::closeUi() {
  if (!ui_) return;
  if (showInterface_) showInterface_->hide(suil_instance_get_handle(ui_));
  suil_instance_free(ui_);
  ui_ = nullptr;
  idleInterface_ = nullptr;
  showInterface_ = nullptr;
  uiWindow_ = 0;
  x11_->destroy(hostWindow_);
  hostWindow_ = 0;
  x11_->drain();
}

void PluginSlot::uiWriteThunk(SuilController c, uint32_t index, uint32_t size, uint32_t protocol,
                              const void* buffer) {
  auto* self = static_cast<PluginSlot*>(c);
  UridTable& u = self->world_.urids();
  UiWrite w{++self->sequence_, index, protocol, 0.f, {}, false};
  Port* p = index < self->ports_.size() ? &self->ports_[index] : nullptr;
  if (protocol == 0) {
    if (p && p->kind == PortKind::Control && p->input && size == sizeof(float)) {
      w.value = *static_cast<const float*>(buffer);
      w.valid = true;
      p->value = w.value;
    }
  } else if (protocol == u.map(LV2_ATOM__eventTransfer)) {
    const auto* atom = static_cast<const LV2_Atom*>(buffer);
    if (p && p->kind == PortKind::Atom && p->input && size >= sizeof(LV2_Atom) &&
        size == sizeof(LV2_Atom) + atom->size) {
      const char* t = u.unmap(atom->type);
      w.atomType = t ? t : "?";
      w.valid = true;
      const auto* bytes = static_cast<const uint8_t*>(buffer);
      p->pendingAtoms.emplace_back(bytes, bytes + size);
      ++p->atomsPassed;
    }
  }
  if (!w.valid)
    std::fprintf(stderr, "instance %d: the UI wrote to port %u with protocol %u and %u bytes, which does not fit\n",
                 self->number_, index, protocol, size);
  self->writes_.push_back(std::move(w));
}

uint32_t PluginSlot::uiPortIndexThunk(SuilController c, const char* symbol) {
  auto* self = static_cast<PluginSlot*>(c);
  const Port* p = symbol ? self->port(symbol) : nullptr;
  return p ? p->index : LV2UI_INVALID_PORT_INDEX;
}

void PluginSlot::uiTouchThunk(SuilController c, uint32_t index, bool grabbed) {
  auto* self = static_cast<PluginSlot*>(c);
  self->touches_.push_back({++self->sequence_, index, grabbed});
}

int PluginSlot::uiResizeThunk(LV2UI_Feature_Handle h, int width, int height) {
  auto* self = static_cast<PluginSlot*>(h);
  self->resizes_.emplace_back(width, height);
  if (self->hostWindow_) self->x11_->resize(self->hostWindow_, width, height);
  return 0;
}

// ---------------------------------------------------------------- state

const void* PluginSlot::getPortValue(const char* symbol, void* selfPtr, uint32_t* size, uint32_t* type) {
  auto* self = static_cast<PluginSlot*>(selfPtr);
  Port* p = self->port(symbol);
  if (!p || p->kind != PortKind::Control) {
    *size = 0;
    *type = 0;
    return nullptr;
  }
  *size = sizeof(float);
  *type = self->world_.urids().map(LV2_ATOM__Float);
  return &p->value;
}

void PluginSlot::setPortValue(const char* symbol, void* selfPtr, const void* value, uint32_t size, uint32_t type) {
  auto* self = static_cast<PluginSlot*>(selfPtr);
  Port* p = self->port(symbol);
  UridTable& u = self->world_.urids();
  if (!p || p->kind != PortKind::Control || !p->input) {
    std::fprintf(stderr, "instance %d: the state sets %s, which is not an input control port\n", self->number_,
                 symbol);
    return;
  }
  float v;
  if (type == u.map(LV2_ATOM__Float) && size == sizeof(float)) {
    v = *static_cast<const float*>(value);
  } else if (type == u.map(LV2_ATOM__Double) && size == sizeof(double)) {
    v = static_cast<float>(*static_cast<const double*>(value));
  } else if ((type == u.map(LV2_ATOM__Int) || type == u.map(LV2_ATOM__Bool)) && size == sizeof(int32_t)) {
    v = static_cast<float>(*static_cast<const int32_t*>(value));
  } else if (type == u.map(LV2_ATOM__Long) && size == sizeof(int64_t)) {
    v = static_cast<float>(*static_cast<const int64_t*>(value));
  } else {
    std::fprintf(stderr, "instance %d: the state's value for %s has a type this host does not read\n",
                 self->number_, symbol);
    return;
  }
  self->setControl(*p, v);
  ++self->portValuesSet_;
}

LilvState* PluginSlot::snapshot() {
  return lilv_state_new_from_instance(plugin_, instance_, world_.urids().mapFeature(), nullptr, nullptr, nullptr,
                                      nullptr, getPortValue, this, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE,
                                      pluginFeatures_.data());
}

int PluginSlot::apply(const LilvState* state) {
  portValuesSet_ = 0;
  lilv_state_restore(state, instance_, setPortValue, this, 0, pluginFeatures_.data());
  return portValuesSet_;
}

std::string PluginSlot::restoreIntoNewInstance(const LilvState* state, UiOpenReport& report, int paintTimeoutMs) {
  const bool hadUi = ui_ != nullptr;
  const std::string ui = uiUri_;
  closeUi();
  freeInstance();
  // Fresh defaults, so that a value the state fails to bring back shows.
  const uint32_t count = static_cast<uint32_t>(ports_.size());
  std::vector<float> mins(count), maxs(count), defs(count);
  lilv_plugin_get_port_ranges_float(plugin_, mins.data(), maxs.data(), defs.data());
  for (Port& p : ports_) {
    if (p.kind == PortKind::Control) p.value = std::isnan(defs[p.index]) ? p.minimum : defs[p.index];
    p.pendingAtoms.clear();
  }
  std::string error = instantiate();
  if (!error.empty()) return error;
  lilv_instance_deactivate(instance_);
  portValuesSet_ = 0;
  lilv_state_restore(state, instance_, setPortValue, this, 0, pluginFeatures_.data());
  lilv_instance_activate(instance_);
  if (!hadUi) return {};
  return openUi(ui, report, paintTimeoutMs);
}

}  // namespace zel::lv2host
