// Arbitrary state restored into the plug-in through its state:interface, as
// a host restores a saved session: the store holds records of any key, type,
// flags and size. After the restore, what the plug-in saves again must be
// its three keys with well-formed values (a terminated name of at most 255
// bytes, a theme of 0 or 1, a zoom of 100 to 200 percent), and what it
// announces on its next run must be well-formed (FuzzLV2.h).
//
// Input: records [key] [type] [flags] [size] [size bytes]..., key and type
// being URID numbers (1-19 are the fixed ones of FuzzLV2.h).
#include <lv2/state/state.h>

#include "FuzzLV2.h"

extern "C" const LV2_Descriptor* lv2_descriptor(std::uint32_t index);

using namespace zel::fuzz;

namespace {

struct Record {
  std::uint32_t key, type, flags;
  std::vector<std::uint8_t> value;  // exactly its size: ASan sees any overread
};

struct Store {
  std::vector<Record> records;
  int saved = 0;
};

const void* retrieve(LV2_State_Handle handle, std::uint32_t key, std::size_t* size, std::uint32_t* type,
                     std::uint32_t* flags) {
  const auto* store = static_cast<const Store*>(handle);
  // The last record of the key wins, as in a map.
  for (auto it = store->records.rbegin(); it != store->records.rend(); ++it) {
    if (it->key != key) continue;
    *size = it->value.size();
    *type = it->type;
    *flags = it->flags;
    return it->value.empty() ? "" : static_cast<const void*>(it->value.data());
  }
  return nullptr;
}

LV2_State_Status checkSaved(LV2_State_Handle handle, std::uint32_t key, const void* value, std::size_t size,
                            std::uint32_t type, std::uint32_t) {
  ++static_cast<Store*>(handle)->saved;
  if (key == kPresetName) {
    const char* s = static_cast<const char*>(value);
    if (type != kString || size < 1 || size > ids::kMaxPresetNameBytes + 1 || s[size - 1] != '\0' ||
        std::strlen(s) != size - 1)
      fail("a saved preset name that is not one terminated name of at most 255 bytes");
  } else if (key == kTheme || key == kZoom) {
    std::int32_t n;
    if (type != kInt || size != sizeof n) fail("a saved theme or zoom that is not an Int");
    std::memcpy(&n, value, sizeof n);
    if (key == kTheme && n != 0 && n != 1) fail("a saved theme other than 0 or 1");
    if (key == kZoom && (n < ids::kMinZoomPercent || n > ids::kMaxZoomPercent)) fail("a saved zoom out of range");
  } else {
    fail("a saved key the plug-in does not own");
  }
  return LV2_STATE_SUCCESS;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 4096) return -1;
  Bytes in(data, size);
  Store store;
  while (in.left() >= 4 && store.records.size() < 16) {
    Record r;
    r.key = in.u8();
    r.type = in.u8();
    r.flags = in.u8();
    r.value = in.take(in.u8() * 2u);
    store.records.push_back(std::move(r));
  }

  const LV2_Descriptor* d = lv2_descriptor(0);
  UridMap map;
  const LV2_Feature* features[] = {map.feature(), nullptr};
  LV2_Handle h = d->instantiate(d, 44100, "", features);
  if (!h) fail("instantiate failed");
  const auto* state = static_cast<const LV2_State_Interface*>(d->extension_data(LV2_STATE__interface));
  if (!state) fail("no state interface");
  if (state->restore(h, retrieve, &store, 0, nullptr) != LV2_STATE_SUCCESS) fail("restore failed");
  Store saved;
  if (state->save(h, checkSaved, &saved, 0, nullptr) != LV2_STATE_SUCCESS) fail("save failed");
  if (saved.saved != 3) fail("save did not write its three keys");

  // The next run announces the restored state.
  float controls[ids::kControlPortCount] = {1, 0, 0, 0, 20, 20000, 1, 100, 0, 0, 0, 100};
  float latency = -1;
  std::vector<std::uint8_t> control(sizeof(LV2_Atom_Sequence), 0);
  const LV2_Atom empty{sizeof(LV2_Atom_Sequence_Body), kSequence};
  std::memcpy(control.data(), &empty, sizeof empty);
  const std::uint32_t capacity = 1024;
  std::vector<std::uint8_t> notify(capacity + 64, 0xA5);
  const LV2_Atom room{capacity, 0};
  std::memcpy(notify.data(), &room, sizeof room);
  float audio[4][16] = {};
  for (std::uint32_t p = 0; p < ids::kControlPortCount; ++p) d->connect_port(h, p, &controls[p]);
  d->connect_port(h, ids::kLatencyPort, &latency);
  d->connect_port(h, ids::kControlAtomPort, control.data());
  d->connect_port(h, ids::kNotifyAtomPort, notify.data());
  for (std::uint32_t c = 0; c < 4; ++c) d->connect_port(h, ids::kFirstAudioPort + c, audio[c]);
  d->activate(h);
  d->run(h, 16);
  checkNotify(notify, capacity);
  d->cleanup(h);
  return 0;
}
