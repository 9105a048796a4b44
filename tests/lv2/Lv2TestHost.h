// A small LV2 host for the plug-in's tests: the library opened with dlopen,
// a URID map, port buffers, patch messages written with the atom forge and
// the notify port read back with every size checked.
#pragma once

#if defined(__GNUC__) && !defined(__clang__)
// The forge keeps a pointer to a frame on the stack until it is popped, which
// every writer below does before returning; GCC cannot see that.
#pragma GCC diagnostic ignored "-Wdangling-pointer"
#endif

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <lv2/atom/atom.h>
#include <lv2/atom/forge.h>
#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/patch/patch.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "dsp/ZelVantryParameterTable.h"
#include "lv2/common/ZelVantryURIs.h"

namespace zel::lv2test {

namespace ids = zel_vantry_lv2;

class UridMap {
 public:
  UridMap() : feature_{LV2_URID__map, &map_}, unmapFeature_{LV2_URID__unmap, &unmap_} {}
  LV2_URID operator()(const char* uri) {
    for (std::size_t i = 0; i < uris_.size(); ++i)
      if (uris_[i] == uri) return LV2_URID(i + 1);
    uris_.emplace_back(uri);
    return LV2_URID(uris_.size());
  }
  const char* unmap(LV2_URID id) const { return id >= 1 && id <= uris_.size() ? uris_[id - 1].c_str() : nullptr; }
  LV2_URID_Map* map() { return &map_; }
  const LV2_Feature* feature() const { return &feature_; }
  const LV2_Feature* unmapFeature() const { return &unmapFeature_; }

 private:
  static LV2_URID doMap(LV2_URID_Map_Handle h, const char* uri) { return (*static_cast<UridMap*>(h))(uri); }
  static const char* doUnmap(LV2_URID_Unmap_Handle h, LV2_URID id) { return static_cast<UridMap*>(h)->unmap(id); }
  std::vector<std::string> uris_;
  LV2_URID_Map map_{this, doMap};
  LV2_URID_Unmap unmap_{this, doUnmap};
  LV2_Feature feature_, unmapFeature_;
};

// The plug-in library, opened once per test program.
inline const LV2_Descriptor* descriptor(std::uint32_t index) {
  static void* library = dlopen(ZEL_LV2_BUNDLE_DIR "/vantry_dsp.so", RTLD_NOW | RTLD_LOCAL);
  if (!library) return nullptr;
  static auto entry = reinterpret_cast<LV2_Descriptor_Function>(dlsym(library, "lv2_descriptor"));
  return entry ? entry(index) : nullptr;
}

// One message read back from the notify port.
struct Message {
  LV2_URID kind = 0, property = 0, valueType = 0;
  std::string text;  // atom:String values, without the terminator
  std::int32_t number = 0;
};

// What a minimal host leaves out.
struct HostOffer {
  bool map = true;        // urid:map among the features
  bool atomPorts = true;  // the control and notify ports connected
};

class Instance {
 public:
  static constexpr std::uint32_t kAtomBytes = 8192;

  // stereo: index 0, mono: index 1.
  explicit Instance(std::uint32_t index, double rate = 48000, HostOffer offer = {}) : channels_(index == 0 ? 2 : 1) {
    const LV2_Descriptor* d = descriptor(index);
    if (!d) return;
    const LV2_Feature* features[] = {offer.map ? map_.feature() : nullptr, nullptr};
    descriptor_ = d;
    handle_ = d->instantiate(d, rate, ZEL_LV2_BUNDLE_DIR "/", features);
    if (!handle_) return;
    lv2_atom_forge_init(&forge_, map_.map());
    for (int pid = 0; pid < kZelParameterCount; ++pid) controls_[pid] = kZelParameters[pid].initial;
    for (std::uint32_t p = 0; p < ids::kControlPortCount; ++p) d->connect_port(handle_, p, &controls_[p]);
    d->connect_port(handle_, ids::kLatencyPort, &latency_);
    if (offer.atomPorts) {
      d->connect_port(handle_, ids::kControlAtomPort, control_.data());
      d->connect_port(handle_, ids::kNotifyAtomPort, notify_.data());
    }
    if (d->activate) d->activate(handle_);
    clearControl();
  }
  ~Instance() {
    if (handle_) descriptor_->cleanup(handle_);
  }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  bool ok() const { return handle_ != nullptr; }
  int channels() const { return channels_; }
  LV2_Handle handle() const { return handle_; }
  const LV2_Descriptor* lv2Descriptor() const { return descriptor_; }
  UridMap& map() { return map_; }
  LV2_URID urid(const char* uri) { return map_(uri); }
  float& control(int pid) { return controls_[pid]; }
  float latency() const { return latency_; }

  // Runs `in` through (one pointer per channel; out may be in).
  void run(std::uint32_t frames, const float* const* in, float* const* out, std::uint32_t notifyCapacity = kAtomBytes) {
    for (int c = 0; c < channels_; ++c) {
      descriptor_->connect_port(handle_, ids::kFirstAudioPort + c, const_cast<float*>(in[c]));
      descriptor_->connect_port(handle_, ids::kFirstAudioPort + channels_ + c, out[c]);
    }
    prepareNotify(notifyCapacity);
    descriptor_->run(handle_, frames);
    clearControl();
  }
  // A run of `frames` silent frames.
  void run(std::uint32_t frames = 64, std::uint32_t notifyCapacity = kAtomBytes) {
    silence_.assign(2 * std::size_t(frames), 0.0f);
    const float* in[2] = {silence_.data(), silence_.data() + frames};
    float* out[2] = {silence_.data(), silence_.data() + frames};
    run(frames, in, out, notifyCapacity);
  }

  // ---- Messages to the control port (sent with the next run).
  void sendSetString(LV2_URID key, const std::string& text) {
    LV2_Atom_Forge_Frame f;
    beginSet(key, f);
    lv2_atom_forge_string(&forge_, text.c_str(), std::uint32_t(text.size()));
    lv2_atom_forge_pop(&forge_, &f);
  }
  void sendSetBool(LV2_URID key, bool value) {
    LV2_Atom_Forge_Frame f;
    beginSet(key, f);
    lv2_atom_forge_bool(&forge_, value);
    lv2_atom_forge_pop(&forge_, &f);
  }
  void sendSetInt(LV2_URID key, std::int32_t value) {
    LV2_Atom_Forge_Frame f;
    beginSet(key, f);
    lv2_atom_forge_int(&forge_, value);
    lv2_atom_forge_pop(&forge_, &f);
  }
  void sendGet(LV2_URID property = 0) {
    LV2_Atom_Forge_Frame f;
    lv2_atom_forge_frame_time(&forge_, 0);
    lv2_atom_forge_object(&forge_, &f, 0, urid(zel_lv2::kGetMessage));
    if (property) {
      lv2_atom_forge_key(&forge_, urid(LV2_PATCH__property));
      lv2_atom_forge_urid(&forge_, property);
    }
    lv2_atom_forge_pop(&forge_, &f);
  }
  // An event whose body is `bytes` as they are (an atom header and what
  // follows); the event's own size is the one the bytes declare.
  void sendRaw(const std::vector<std::uint8_t>& bytes) {
    lv2_atom_forge_frame_time(&forge_, 0);
    lv2_atom_forge_write(&forge_, bytes.data(), std::uint32_t(bytes.size()));
  }
  LV2_Atom_Sequence* controlSequence() { return reinterpret_cast<LV2_Atom_Sequence*>(control_.data()); }

  // ---- What the plug-in wrote to the notify port in the last run; false
  // in `wellFormed` when any size overruns or a message is incomplete.
  std::vector<Message> messages(bool* wellFormed = nullptr) {
    bool good = true;
    std::vector<Message> found;
    const auto* seq = reinterpret_cast<const LV2_Atom_Sequence*>(notify_.data());
    if (seq->atom.type != urid(LV2_ATOM__Sequence)) {
      good = lastCapacity_ < sizeof(LV2_Atom_Sequence);  // left alone only when nothing fits
    } else if (std::uint64_t(seq->atom.size) + sizeof(LV2_Atom) > lastCapacity_) {
      good = false;
    } else {
      LV2_ATOM_SEQUENCE_FOREACH(seq, ev) {
        const auto* end = reinterpret_cast<const std::uint8_t*>(&seq->body) + seq->atom.size;
        if (reinterpret_cast<const std::uint8_t*>(&ev->body + 1) + ev->body.size > end) {
          good = false;
          break;
        }
        found.push_back(read(&ev->body, good));
      }
    }
    if (wellFormed) *wellFormed = good;
    return found;
  }
  // The messages of the last run as property URI -> value (string or number).
  std::map<std::string, std::string> replies() {
    std::map<std::string, std::string> out;
    for (const Message& m : messages()) {
      if (m.kind != urid(zel_lv2::kSetMessage)) continue;
      out[map_.unmap(m.property)] = m.valueType == urid(LV2_ATOM__String) ? m.text : std::to_string(m.number);
    }
    return out;
  }
  // Asks for everything and returns the replies.
  std::map<std::string, std::string> query() {
    sendGet();
    run();
    return replies();
  }

  std::vector<std::uint8_t>& notifyBytes() { return notify_; }

 private:
  void beginSet(LV2_URID key, LV2_Atom_Forge_Frame& f) {
    lv2_atom_forge_frame_time(&forge_, 0);
    lv2_atom_forge_object(&forge_, &f, 0, urid(zel_lv2::kSetMessage));
    lv2_atom_forge_key(&forge_, urid(LV2_PATCH__property));
    lv2_atom_forge_urid(&forge_, key);
    lv2_atom_forge_key(&forge_, urid(LV2_PATCH__value));
  }
  void clearControl() {
    lv2_atom_forge_set_buffer(&forge_, control_.data(), control_.size());
    lv2_atom_forge_sequence_head(&forge_, &controlFrame_, 0);
  }
  void prepareNotify(std::uint32_t capacity) {
    // Bytes past the capacity carry a pattern a write there would break.
    std::fill(notify_.begin(), notify_.end(), std::uint8_t(0xA5));
    auto* seq = reinterpret_cast<LV2_Atom*>(notify_.data());
    if (capacity >= sizeof(LV2_Atom)) *seq = LV2_Atom{capacity, 0};
    lastCapacity_ = capacity;
  }
  Message read(const LV2_Atom* atom, bool& good) {
    Message m;
    if (atom->type != urid(LV2_ATOM__Object) || atom->size < sizeof(LV2_Atom_Object_Body)) {
      good = false;
      return m;
    }
    const auto* obj = reinterpret_cast<const LV2_Atom_Object*>(atom);
    m.kind = obj->body.otype;
    const LV2_Atom *property = nullptr, *value = nullptr;
    lv2_atom_object_get(obj, urid(LV2_PATCH__property), &property, urid(LV2_PATCH__value), &value, 0);
    if (!property || property->type != urid(LV2_ATOM__URID) || !value) {
      good = false;
      return m;
    }
    m.property = reinterpret_cast<const LV2_Atom_URID*>(property)->body;
    m.valueType = value->type;
    if (value->type == urid(LV2_ATOM__String)) {
      const char* s = static_cast<const char*>(LV2_ATOM_BODY_CONST(value));
      good = good && value->size >= 1 && s[value->size - 1] == '\0';
      m.text.assign(s, value->size ? value->size - 1 : 0);
    } else if (value->type == urid(LV2_ATOM__Int) && value->size == 4) {
      m.number = reinterpret_cast<const LV2_Atom_Int*>(value)->body;
    } else {
      good = false;
    }
    return m;
  }

  int channels_;
  UridMap map_;
  const LV2_Descriptor* descriptor_ = nullptr;
  LV2_Handle handle_ = nullptr;
  LV2_Atom_Forge forge_{};
  LV2_Atom_Forge_Frame controlFrame_{};
  float controls_[ids::kControlPortCount] = {};
  float latency_ = -1;
  std::vector<std::uint8_t> control_ = std::vector<std::uint8_t>(kAtomBytes + 64);
  std::vector<std::uint8_t> notify_ = std::vector<std::uint8_t>(kAtomBytes + 64);
  std::uint32_t lastCapacity_ = 0;
  std::vector<float> silence_;
};

}  // namespace zel::lv2test
