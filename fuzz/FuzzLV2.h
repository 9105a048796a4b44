// What the LV2 fuzz targets share: a URID map whose first ids are fixed (so
// seeds written by fuzz/seeds/make_lv2_seeds.py name the right URIs with
// small numbers the fuzzer finds easily), a byte reader, and a checker of
// the plug-in's notify sequence.
#pragma once

#include <lv2/atom/atom.h>
#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/patch/patch.h>
#include <lv2/urid/urid.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "lv2/common/ZelVantryURIs.h"

namespace zel::fuzz {

namespace ids = zel_vantry_lv2;

// Ids 1-19 in this order; fuzz/seeds/make_lv2_seeds.py uses the same.
inline const char* const kFixedURIs[] = {
    LV2_ATOM__Sequence, LV2_ATOM__Object,   LV2_ATOM__Blank,  LV2_ATOM__String,   LV2_ATOM__Int,
    LV2_ATOM__Bool,     LV2_ATOM__URID,     zel_lv2::kSetMessage, zel_lv2::kGetMessage,   LV2_PATCH__property,
    LV2_PATCH__value,   ids::kPresetName,   ids::kTheme,      ids::kThemeToggle,  ids::kZoom,
    ids::kChannelsIn,   ids::kChannelsOut,  LV2_ATOM__eventTransfer, LV2_ATOM__Float};
enum Fixed : LV2_URID {
  kSequence = 1, kObject, kBlank, kString, kInt, kBool, kURID, kSet, kGet, kProperty,
  kValue, kPresetName, kTheme, kThemeToggle, kZoom, kChannelsIn, kChannelsOut, kEventTransfer, kFloat,
};

class UridMap {
 public:
  UridMap() {
    for (const char* uri : kFixedURIs) uris_.emplace_back(uri);
  }
  LV2_URID map(const char* uri) {
    for (std::size_t i = 0; i < uris_.size(); ++i)
      if (uris_[i] == uri) return LV2_URID(i + 1);
    uris_.emplace_back(uri);
    return LV2_URID(uris_.size());
  }
  LV2_URID_Map* lv2() { return &map_; }
  const LV2_Feature* feature() { return &feature_; }

 private:
  static LV2_URID doMap(LV2_URID_Map_Handle h, const char* uri) { return static_cast<UridMap*>(h)->map(uri); }
  std::vector<std::string> uris_;
  LV2_URID_Map map_{this, doMap};
  LV2_Feature feature_{LV2_URID__map, &map_};
};

[[noreturn]] inline void fail(const char* what) {
  std::fprintf(stderr, "fuzz: %s\n", what);
  std::abort();
}

// Reads the fuzz input front to back; past the end every read gives zeros.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  std::uint8_t u8() { return at_ < size_ ? data_[at_++] : 0; }
  std::uint16_t u16() { return std::uint16_t(u8() | (u8() << 8)); }
  std::size_t left() const { return size_ - at_; }
  // The next `n` bytes (fewer at the end) in a vector of exactly that size.
  std::vector<std::uint8_t> take(std::size_t n) {
    n = std::min(n, left());
    std::vector<std::uint8_t> out(data_ + at_, data_ + at_ + n);
    at_ += n;
    return out;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_, at_ = 0;
};

// The plug-in's notify port after a run into a buffer of `capacity` bytes
// (`buffer` holds more, filled with 0xA5 past the capacity): a sequence that
// fits the capacity, holding only whole patch:Set messages with a URID
// property and an Int or terminated String value; nothing written past the
// capacity. Aborts otherwise.
inline void checkNotify(const std::vector<std::uint8_t>& buffer, std::uint32_t capacity) {
  for (std::size_t i = capacity; i < buffer.size(); ++i)
    if (buffer[i] != 0xA5) fail("the plug-in wrote past the notify port's capacity");
  if (capacity < sizeof(LV2_Atom_Sequence)) return;
  const auto* seq = reinterpret_cast<const LV2_Atom_Sequence*>(buffer.data());
  if (seq->atom.type != kSequence) return;  // nothing written
  if (std::uint64_t(seq->atom.size) + sizeof(LV2_Atom) > capacity) fail("the notify sequence overruns");
  const auto* body = reinterpret_cast<const std::uint8_t*>(&seq->body);
  const std::uint32_t end = seq->atom.size;
  std::uint32_t at = sizeof(LV2_Atom_Sequence_Body);
  while (at < end) {
    if (end - at < sizeof(LV2_Atom_Event)) fail("a cut event in the notify sequence");
    const auto* ev = reinterpret_cast<const LV2_Atom_Event*>(body + at);
    if (ev->body.size > end - at - sizeof(LV2_Atom_Event)) fail("an event overruns the notify sequence");
    if (ev->body.type != kObject || ev->body.size < sizeof(LV2_Atom_Object_Body)) fail("a notify event is no object");
    const auto* obj = reinterpret_cast<const LV2_Atom_Object*>(&ev->body);
    if (obj->body.otype != kSet) fail("a notify message is no Set");
    const LV2_Atom *property = nullptr, *value = nullptr;
    lv2_atom_object_get(obj, kProperty, &property, kValue, &value, 0);
    if (!property || property->type != kURID || property->size != sizeof(LV2_URID) || !value)
      fail("a notify message without property or value");
    if (value->type == kString) {
      const char* s = static_cast<const char*>(LV2_ATOM_BODY_CONST(value));
      if (value->size < 1 || value->size > ids::kMaxPresetNameBytes + 1 || s[value->size - 1] != '\0' ||
          std::strlen(s) != value->size - 1)
        fail("a notify string is not one terminated name of at most 255 bytes");
    } else if (value->type != kInt || value->size != sizeof(std::int32_t)) {
      fail("a notify value of an unexpected type");
    }
    at += std::uint32_t(sizeof(LV2_Atom_Event)) + lv2_atom_pad_size(ev->body.size);
  }
}

}  // namespace zel::fuzz
