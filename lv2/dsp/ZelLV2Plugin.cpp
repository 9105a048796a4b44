// The LV2 plug-in: a product's audio unit behind a host's ports, for each
// plug-in (channel layout) of its bundle. The product is the one this
// library was linked with (dsp/ZelProduct.h: its unit, parameter table,
// URIs and port layout); lv2/common/ZelLV2Protocol.h tells the
// messages the editor and the plug-in exchange.
//
// Threading: run() is the audio thread's and is real-time safe (no
// allocation, lock, wait or I/O); instantiate, activate, cleanup and the
// state interface run on other threads, never at the same time as run().
// Every atom that arrives is checked against its declared sizes and types
// before it is read; anything malformed is dropped without a word.
//
// Minimal hosts: without urid:map, or with the atom ports left unconnected,
// the plug-in runs on its control ports alone (no preset name, theme or
// zoom; no saved state of its own).
#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/log/logger.h>
#include <lv2/patch/patch.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <vector>

#include "dsp/ZelProduct.h"
#include "lv2/common/ZelLV2Protocol.h"

namespace {

namespace ids = zel_lv2;
using zel::ZelCurrentProduct;
using zel::ZelParameterKind;
using zel::ZelProduct;
using zel::ZelProductLV2;
using zel::ZelAudioUnit;
using zel::ZelUnitParameter;

constexpr std::uint32_t kMaxChannels = 2;

// The value of an on/off port as the unit wants it: LV2 calls anything
// above zero "on".
bool isToggle(const ZelUnitParameter& p) {
  return p.kind == ZelParameterKind::Switch ||
         (p.kind == ZelParameterKind::WholeNumber && p.minimum == 0 && p.maximum == 1);
}

struct URIDs {
  LV2_URID atomBlank, atomObject, atomString, atomInt, atomBool, atomURID, atomSequence;
  LV2_URID set, get, patchProperty, patchValue;
  LV2_URID presetName, theme, themeToggle, zoom, channelsIn, channelsOut;

  URIDs() = default;  // all 0: no map, no messages
  URIDs(const LV2_URID_Map& m, const ZelProductLV2& keys) {
    const auto map = [&](const char* uri) { return m.map(m.handle, uri); };
    atomBlank = map(LV2_ATOM__Blank);
    atomObject = map(LV2_ATOM__Object);
    atomString = map(LV2_ATOM__String);
    atomInt = map(LV2_ATOM__Int);
    atomBool = map(LV2_ATOM__Bool);
    atomURID = map(LV2_ATOM__URID);
    atomSequence = map(LV2_ATOM__Sequence);
    set = map(ids::kSetMessage);
    get = map(ids::kGetMessage);
    patchProperty = map(LV2_PATCH__property);
    patchValue = map(LV2_PATCH__value);
    presetName = map(keys.presetNameKey);
    theme = map(keys.themeKey);
    themeToggle = map(keys.themeToggleKey);
    zoom = map(keys.zoomKey);
    channelsIn = map(keys.channelsInKey);
    channelsOut = map(keys.channelsOutKey);
  }
};

// What the notify port still owes the editor (bits of a mask).
enum Owed : std::uint32_t {
  kOwePresetName = 1u << 0,
  kOweTheme = 1u << 1,
  kOweChannelsIn = 1u << 2,
  kOweChannelsOut = 1u << 3,
  kOweZoom = 1u << 4,
  kOweEverything = kOwePresetName | kOweTheme | kOweChannelsIn | kOweChannelsOut | kOweZoom,
};

constexpr bool isZoom(std::int32_t percent) { return percent >= ids::kMinZoomPercent && percent <= ids::kMaxZoomPercent; }

constexpr std::uint32_t pad8(std::uint32_t n) { return (n + 7u) & ~7u; }

// Whether `bytes` (the whole size, terminator included) hold a preset name we
// keep: terminated exactly at the end, no earlier zero byte, at most
// kMaxPresetNameBytes before the terminator, and well-formed UTF-8.
bool isPresetName(const char* bytes, std::size_t size) {
  if (size < 1 || size > ids::kMaxPresetNameBytes + 1 || bytes[size - 1] != '\0') return false;
  const auto* s = reinterpret_cast<const unsigned char*>(bytes);
  const std::size_t n = size - 1;
  for (std::size_t i = 0; i < n;) {
    const unsigned char c = s[i];
    if (c == 0) return false;
    std::size_t more;
    std::uint32_t code;
    if (c < 0x80) {
      ++i;
      continue;
    } else if (c >= 0xC2 && c <= 0xDF) {
      more = 1, code = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
      more = 2, code = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
      more = 3, code = c & 0x07;
    } else {
      return false;
    }
    if (n - i - 1 < more) return false;
    for (std::size_t k = 1; k <= more; ++k) {
      if ((s[i + k] & 0xC0) != 0x80) return false;
      code = (code << 6) | (s[i + k] & 0x3F);
    }
    // Overlong forms, surrogates and code points past U+10FFFF.
    if ((more == 2 && code < 0x800) || (more == 3 && code < 0x10000) || code > 0x10FFFF ||
        (code >= 0xD800 && code <= 0xDFFF))
      return false;
    i += 1 + more;
  }
  return true;
}

// A patch message's parts, found in an object body without trusting a size.
struct Patch {
  LV2_URID kind = 0;                  // the object's type: our Set, Get, ...
  const LV2_Atom* property = nullptr;  // patch:property's value, when present
  const LV2_Atom* value = nullptr;     // patch:value's value, when present
};

// Reads the object `atom` whose header and body lie within `available`
// bytes. False when it is no object or anything in it overruns.
bool readPatch(const URIDs& u, const LV2_Atom* atom, std::uint32_t available, Patch& patch) {
  if (available < sizeof(LV2_Atom) || atom->size > available - sizeof(LV2_Atom)) return false;
  if (atom->type != u.atomObject && atom->type != u.atomBlank) return false;
  if (atom->size < sizeof(LV2_Atom_Object_Body)) return false;
  const auto* object = reinterpret_cast<const LV2_Atom_Object*>(atom);
  patch.kind = object->body.otype;
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(&object->body);
  const std::uint32_t end = atom->size;
  std::uint32_t at = sizeof(LV2_Atom_Object_Body);
  while (at < end) {
    constexpr std::uint32_t head = sizeof(LV2_Atom_Property_Body);
    if (end - at < head) return false;
    const auto* prop = reinterpret_cast<const LV2_Atom_Property_Body*>(bytes + at);
    if (prop->value.size > end - at - head) return false;
    const LV2_Atom** slot = prop->key == u.patchProperty ? &patch.property
                            : prop->key == u.patchValue  ? &patch.value
                                                         : nullptr;
    if (slot) {
      if (*slot) return false;  // said twice: which one would be meant?
      *slot = &prop->value;
    }
    const std::uint64_t next = std::uint64_t(at) + head + pad8(prop->value.size);
    if (next > end) break;  // the last property may go without its padding
    at = std::uint32_t(next);
  }
  return true;
}

bool readURID(const URIDs& u, const LV2_Atom* atom, LV2_URID& out) {
  if (!atom || atom->type != u.atomURID || atom->size != sizeof(LV2_URID)) return false;
  out = reinterpret_cast<const LV2_Atom_URID*>(atom)->body;
  return true;
}

class Plugin {
 public:
  // Allocates (the unit, the port tables): never on the audio thread.
  // `map` may be null: the plug-in then neither reads nor writes messages.
  Plugin(const ZelProduct& product, int channels, double rate, const LV2_URID_Map* map)
      : ports_(product.lv2),
        unit_(product.makeUnit(channels, rate)),
        uris_(map ? URIDs(*map, product.lv2) : URIDs()),
        messages_(map != nullptr),
        channels_(std::uint32_t(channels)),
        controls_(ports_.controlPortCount, nullptr),
        last_(ports_.controlPortCount, NAN),
        toggles_(ports_.controlPortCount, 0),
        meters_(std::min(ports_.meterPortCount, unit_->meterCount()), nullptr),
        levels_(meters_.size(), 0.0f) {
    if (map) {
      LV2_URID_Map m = *map;
      lv2_atom_forge_init(&forge_, &m);
    }
    for (const ZelUnitParameter& p : product.parameters)
      if (std::uint32_t(p.pid) < ports_.controlPortCount) toggles_[std::size_t(p.pid)] = isToggle(p);
  }

  void connect(std::uint32_t port, void* data) {
    const std::uint32_t audio = ports_.firstAudioPort;
    if (port < ports_.controlPortCount) {
      controls_[port] = static_cast<const float*>(data);
    } else if (port == ports_.latencyPort) {
      latency_ = static_cast<float*>(data);
    } else if (port == ports_.controlAtomPort) {
      control_ = static_cast<const LV2_Atom_Sequence*>(data);
    } else if (port == ports_.notifyAtomPort) {
      notify_ = static_cast<LV2_Atom_Sequence*>(data);
    } else if (port >= ports_.firstMeterPort && port - ports_.firstMeterPort < meters_.size()) {
      meters_[port - ports_.firstMeterPort] = static_cast<float*>(data);
    } else if (port >= audio && port < audio + channels_) {
      in_[port - audio] = static_cast<const float*>(data);
    } else if (port >= audio + channels_ && port < audio + 2 * channels_) {
      out_[port - audio - channels_] = static_cast<float*>(data);
    }
  }

  void activate() { unit_->reset(); }

  void run(std::uint32_t frames) {
    readMessages();
    const int count = int(controls_.size());
    for (int pid = 0; pid < count; ++pid) {
      if (!controls_[std::size_t(pid)]) continue;
      float v = *controls_[std::size_t(pid)];
      if (std::isnan(v)) continue;
      if (toggles_[std::size_t(pid)]) v = v > 0 ? 1.0f : 0.0f;
      if (v != last_[std::size_t(pid)]) {
        unit_->setParameter(pid, v);
        last_[std::size_t(pid)] = v;
      }
    }
    bool connected = true;
    for (std::uint32_t c = 0; c < channels_; ++c) connected = connected && in_[c] && out_[c];
    if (connected && frames > 0) unit_->process(in_, out_, frames);
    if (latency_) *latency_ = float(unit_->latency());
    if (!levels_.empty()) {
      unit_->readMeters(levels_.data(), std::uint32_t(levels_.size()));
      for (std::size_t i = 0; i < meters_.size(); ++i)
        if (meters_[i]) *meters_[i] = levels_[i];
    }
    writeMessages();
  }

  LV2_State_Status save(LV2_State_Store_Function store, LV2_State_Handle handle) const {
    if (!messages_) return LV2_STATE_SUCCESS;  // no keys to store under
    constexpr std::uint32_t flags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
    LV2_State_Status status =
        store(handle, uris_.presetName, presetName_, std::strlen(presetName_) + 1, uris_.atomString, flags);
    if (status != LV2_STATE_SUCCESS) return status;
    const std::int32_t theme = theme_;
    status = store(handle, uris_.theme, &theme, sizeof(theme), uris_.atomInt, flags);
    if (status != LV2_STATE_SUCCESS) return status;
    const std::int32_t zoom = zoom_;
    return store(handle, uris_.zoom, &zoom, sizeof(zoom), uris_.atomInt, flags);
  }

  LV2_State_Status restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle) {
    if (!messages_) return LV2_STATE_SUCCESS;
    std::size_t size = 0;
    std::uint32_t type = 0, flags = 0;
    const void* value = retrieve(handle, uris_.presetName, &size, &type, &flags);
    if (value && type == uris_.atomString && isPresetName(static_cast<const char*>(value), size))
      std::memcpy(presetName_, value, size);
    size = 0, type = 0;
    value = retrieve(handle, uris_.theme, &size, &type, &flags);
    if (value && type == uris_.atomInt && size == sizeof(std::int32_t)) {
      std::int32_t theme;
      std::memcpy(&theme, value, sizeof(theme));
      if (theme == 0 || theme == 1) theme_ = theme;
    }
    size = 0, type = 0;
    value = retrieve(handle, uris_.zoom, &size, &type, &flags);
    if (value && type == uris_.atomInt && size == sizeof(std::int32_t)) {
      std::int32_t zoom;
      std::memcpy(&zoom, value, sizeof(zoom));
      if (isZoom(zoom)) zoom_ = zoom;
    }
    // The editor learns what the state holds now on the next run.
    owed_.fetch_or(kOwePresetName | kOweTheme | kOweZoom, std::memory_order_release);
    return LV2_STATE_SUCCESS;
  }

 private:
  void readMessages() {
    const LV2_Atom_Sequence* seq = control_;
    if (!messages_ || !seq || seq->atom.type != uris_.atomSequence || seq->atom.size < sizeof(LV2_Atom_Sequence_Body)) return;
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&seq->body);
    const std::uint32_t end = seq->atom.size;
    std::uint32_t at = sizeof(LV2_Atom_Sequence_Body);
    while (end - at >= sizeof(LV2_Atom_Event)) {
      const auto* event = reinterpret_cast<const LV2_Atom_Event*>(bytes + at);
      const std::uint32_t room = end - at - std::uint32_t(sizeof(event->time));
      if (event->body.size > room - sizeof(LV2_Atom)) return;  // the rest cannot be found
      Patch patch;
      if (readPatch(uris_, &event->body, room, patch)) apply(patch);
      const std::uint64_t next = std::uint64_t(at) + sizeof(LV2_Atom_Event) + pad8(event->body.size);
      if (next >= end) return;
      at = std::uint32_t(next);
    }
  }

  void apply(const Patch& patch) {
    if (patch.kind == uris_.get) {
      if (!patch.property) {
        owed_.fetch_or(kOweEverything, std::memory_order_relaxed);
        return;
      }
      LV2_URID key;
      if (!readURID(uris_, patch.property, key)) return;
      const Owed owe = key == uris_.presetName    ? kOwePresetName
                       : key == uris_.theme       ? kOweTheme
                       : key == uris_.zoom        ? kOweZoom
                       : key == uris_.channelsIn  ? kOweChannelsIn
                       : key == uris_.channelsOut ? kOweChannelsOut
                                                  : Owed(0);
      owed_.fetch_or(owe, std::memory_order_relaxed);
    } else if (patch.kind == uris_.set) {
      LV2_URID key;
      const LV2_Atom* v = patch.value;
      if (!readURID(uris_, patch.property, key) || !v) return;
      if (key == uris_.presetName && v->type == uris_.atomString) {
        const char* text = reinterpret_cast<const char*>(LV2_ATOM_BODY_CONST(v));
        if (isPresetName(text, v->size)) std::memcpy(presetName_, text, v->size);
      } else if (key == uris_.themeToggle && v->type == uris_.atomBool && v->size == sizeof(std::int32_t)) {
        if (reinterpret_cast<const LV2_Atom_Bool*>(v)->body != 0) theme_ ^= 1;
      } else if (key == uris_.zoom && v->type == uris_.atomInt && v->size == sizeof(std::int32_t)) {
        const std::int32_t zoom = reinterpret_cast<const LV2_Atom_Int*>(v)->body;
        if (isZoom(zoom)) zoom_ = zoom;
      }
    }
  }

  // Bytes one Set event takes in the notify sequence, its value's body
  // being `body` bytes: the event's time and the object's header, the
  // property key with its URID, the value key with the value's header.
  static constexpr std::uint32_t setEventBytes(std::uint32_t body) {
    return std::uint32_t(sizeof(std::int64_t) + sizeof(LV2_Atom_Object) + 2 * sizeof(std::uint32_t) +
                         pad8(sizeof(LV2_Atom_URID)) + 2 * sizeof(std::uint32_t) + sizeof(LV2_Atom)) +
           pad8(body);
  }

  bool room(std::uint32_t bytes) const { return forge_.size - forge_.offset >= bytes; }

  bool beginSet(LV2_URID key, LV2_Atom_Forge_Frame& frame) {
    return lv2_atom_forge_frame_time(&forge_, 0) && lv2_atom_forge_object(&forge_, &frame, 0, uris_.set) &&
           lv2_atom_forge_key(&forge_, uris_.patchProperty) && lv2_atom_forge_urid(&forge_, key) &&
           lv2_atom_forge_key(&forge_, uris_.patchValue);
  }

  bool sendInt(LV2_URID key, std::int32_t value) {
    if (!room(setEventBytes(sizeof(std::int32_t)))) return false;
    LV2_Atom_Forge_Frame frame;
    if (!beginSet(key, frame) || !lv2_atom_forge_int(&forge_, value)) return false;
    lv2_atom_forge_pop(&forge_, &frame);
    return true;
  }

  bool sendPresetName() {
    const std::uint32_t length = std::uint32_t(std::strlen(presetName_));
    if (!room(setEventBytes(length + 1))) return false;
    LV2_Atom_Forge_Frame frame;
    if (!beginSet(uris_.presetName, frame) || !lv2_atom_forge_string(&forge_, presetName_, length)) return false;
    lv2_atom_forge_pop(&forge_, &frame);
    return true;
  }

  // Writes the notify sequence: as many owed messages as fit whole, the
  // rest on a later run.
  void writeMessages() {
    LV2_Atom_Sequence* seq = notify_;
    if (!messages_ || !seq) return;
    const std::uint32_t capacity = seq->atom.size;
    if (capacity < sizeof(LV2_Atom_Sequence)) return;  // not even an empty sequence fits
    lv2_atom_forge_set_buffer(&forge_, reinterpret_cast<std::uint8_t*>(seq), capacity);
    LV2_Atom_Forge_Frame sequence;
    if (!lv2_atom_forge_sequence_head(&forge_, &sequence, 0)) return;
    std::uint32_t owed = owed_.exchange(0, std::memory_order_acquire);
    const struct {
      std::uint32_t bit;
      LV2_URID key;
      std::int32_t value;
    } ints[] = {{kOweTheme, uris_.theme, theme_},
                {kOweZoom, uris_.zoom, zoom_},
                {kOweChannelsIn, uris_.channelsIn, std::int32_t(channels_)},
                {kOweChannelsOut, uris_.channelsOut, std::int32_t(channels_)}};
    if ((owed & kOwePresetName) && sendPresetName()) owed &= ~std::uint32_t(kOwePresetName);
    for (const auto& m : ints)
      if ((owed & m.bit) && sendInt(m.key, m.value)) owed &= ~m.bit;
    if (owed) owed_.fetch_or(owed, std::memory_order_relaxed);
    lv2_atom_forge_pop(&forge_, &sequence);
  }

  const ZelProductLV2& ports_;
  std::unique_ptr<ZelAudioUnit> unit_;
  URIDs uris_;
  bool messages_;  // the host maps URIDs: messages and state of our own
  LV2_Atom_Forge forge_{};
  std::uint32_t channels_;

  std::vector<const float*> controls_;  // by pid; sized once, never resized
  std::vector<float> last_;
  std::vector<char> toggles_;
  float* latency_ = nullptr;
  // The meter output ports and the levels read for them, sized once.
  std::vector<float*> meters_;
  std::vector<float> levels_;
  const LV2_Atom_Sequence* control_ = nullptr;
  LV2_Atom_Sequence* notify_ = nullptr;
  const float* in_[kMaxChannels] = {};
  float* out_[kMaxChannels] = {};

  char presetName_[ids::kMaxPresetNameBytes + 1] = {};
  std::int32_t theme_ = 0;
  std::int32_t zoom_ = ids::kMinZoomPercent;  // the editor's zoom in percent
  std::atomic<std::uint32_t> owed_{0};
};

LV2_Handle instantiate(const LV2_Descriptor* descriptor, double rate, const char*,
                       const LV2_Feature* const* features) {
  const ZelProduct& product = ZelCurrentProduct();
  const LV2_URID_Map* map = nullptr;
  LV2_Log_Log* log = nullptr;
  for (const LV2_Feature* const* f = features; f && *f; ++f) {
    if (!(*f)->URI) continue;
    if (std::strcmp((*f)->URI, LV2_URID__map) == 0) map = static_cast<const LV2_URID_Map*>((*f)->data);
    if (std::strcmp((*f)->URI, LV2_LOG__log) == 0) log = static_cast<LV2_Log_Log*>((*f)->data);
  }
  if (map && !map->map) map = nullptr;
  LV2_Log_Logger logger;
  lv2_log_logger_init(&logger, const_cast<LV2_URID_Map*>(map), log);
  if (!(rate >= product.minSampleRate && rate <= product.maxSampleRate)) {
    lv2_log_error(&logger, "%s: sample rate %g Hz is outside %g to %g Hz\n", product.name, rate,
                  product.minSampleRate, product.maxSampleRate);
    return nullptr;
  }
  int channels = 0;
  for (const zel::ZelProductVariant& v : product.variants)
    if (descriptor && descriptor->URI && std::strcmp(descriptor->URI, v.uri) == 0) channels = v.channels;
  if (channels < 1 || std::uint32_t(channels) > kMaxChannels || !product.makeUnit) {
    lv2_log_error(&logger, "%s: no plug-in %s in this library\n", product.name,
                  descriptor && descriptor->URI ? descriptor->URI : "(none)");
    return nullptr;
  }
  try {
    return new Plugin(product, channels, rate, map);
  } catch (const std::exception& e) {
    lv2_log_error(&logger, "%s: cannot start: %s\n", product.name, e.what());
    return nullptr;
  }
}

Plugin* self(LV2_Handle h) { return static_cast<Plugin*>(h); }

void connectPort(LV2_Handle h, std::uint32_t port, void* data) { self(h)->connect(port, data); }
void activate(LV2_Handle h) { self(h)->activate(); }
void run(LV2_Handle h, std::uint32_t frames) { self(h)->run(frames); }
void cleanup(LV2_Handle h) { delete self(h); }

LV2_State_Status save(LV2_Handle h, LV2_State_Store_Function store, LV2_State_Handle handle, std::uint32_t,
                      const LV2_Feature* const*) {
  return store ? self(h)->save(store, handle) : LV2_STATE_ERR_UNKNOWN;
}

LV2_State_Status restore(LV2_Handle h, LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle,
                         std::uint32_t, const LV2_Feature* const*) {
  return retrieve ? self(h)->restore(retrieve, handle) : LV2_STATE_ERR_UNKNOWN;
}

const void* extensionData(const char* uri) {
  static const LV2_State_Interface state = {save, restore};
  return uri && std::strcmp(uri, LV2_STATE__interface) == 0 ? &state : nullptr;
}

// One descriptor per plug-in of the product, in its order (the widest first).
constexpr std::size_t kMaxVariants = 4;
struct Descriptors {
  LV2_Descriptor list[kMaxVariants];
  std::size_t count = 0;

  Descriptors() {
    for (const zel::ZelProductVariant& v : ZelCurrentProduct().variants) {
      if (count == kMaxVariants) break;
      list[count++] = {v.uri, instantiate, connectPort, activate, run, nullptr, cleanup, extensionData};
    }
  }
};

}  // namespace

extern "C" LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
  static const Descriptors descriptors;
  return index < descriptors.count ? &descriptors.list[index] : nullptr;
}
