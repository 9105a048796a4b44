// The echo plug-in's DSP: meter = 2 * level after every block, audio
// copied through, and every atom on "control" logged and sent back on
// "notify".
#include <lv2/atom/atom.h>
#include <lv2/atom/util.h>
#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/urid/urid.h>

#include <cstring>
#include <new>

namespace {

struct Echo {
  LV2_URID_Map* map = nullptr;
  LV2_URID_Unmap* unmap = nullptr;
  LV2_Log_Log* log = nullptr;
  LV2_URID note = 0, sequence = 0, atomInt = 0;
  const float* level = nullptr;
  float* meter = nullptr;
  const LV2_Atom_Sequence* control = nullptr;
  LV2_Atom_Sequence* notify = nullptr;
  const float* in = nullptr;
  float* out = nullptr;
};

LV2_Handle instantiate(const LV2_Descriptor*, double, const char*, const LV2_Feature* const* features) {
  auto* e = new (std::nothrow) Echo;
  if (!e) return nullptr;
  for (int i = 0; features && features[i]; ++i) {
    if (!std::strcmp(features[i]->URI, LV2_URID__map)) e->map = static_cast<LV2_URID_Map*>(features[i]->data);
    if (!std::strcmp(features[i]->URI, LV2_URID__unmap)) e->unmap = static_cast<LV2_URID_Unmap*>(features[i]->data);
    if (!std::strcmp(features[i]->URI, LV2_LOG__log)) e->log = static_cast<LV2_Log_Log*>(features[i]->data);
  }
  if (!e->map) {
    delete e;
    return nullptr;
  }
  e->note = e->map->map(e->map->handle, LV2_LOG__Note);
  e->sequence = e->map->map(e->map->handle, LV2_ATOM__Sequence);
  e->atomInt = e->map->map(e->map->handle, LV2_ATOM__Int);
  if (e->log) e->log->printf(e->log->handle, e->note, "dsp instantiated\n");
  return e;
}

void connect(LV2_Handle h, uint32_t port, void* data) {
  auto* e = static_cast<Echo*>(h);
  switch (port) {
    case 0: e->level = static_cast<const float*>(data); break;
    case 1: e->meter = static_cast<float*>(data); break;
    case 2: e->control = static_cast<const LV2_Atom_Sequence*>(data); break;
    case 3: e->notify = static_cast<LV2_Atom_Sequence*>(data); break;
    case 4: e->in = static_cast<const float*>(data); break;
    case 5: e->out = static_cast<float*>(data); break;
  }
}

void run(LV2_Handle h, uint32_t frames) {
  auto* e = static_cast<Echo*>(h);
  std::memcpy(e->out, e->in, frames * sizeof(float));
  *e->meter = 2 * *e->level;
  const uint32_t capacity = e->notify->atom.size;
  e->notify->atom.type = e->sequence;
  e->notify->atom.size = sizeof(LV2_Atom_Sequence_Body);
  e->notify->body.unit = 0;
  e->notify->body.pad = 0;
  LV2_ATOM_SEQUENCE_FOREACH(e->control, ev) {
    const char* type = e->unmap ? e->unmap->unmap(e->unmap->handle, ev->body.type) : "?";
    if (e->log) {
      if (ev->body.type == e->atomInt)
        e->log->printf(e->log->handle, e->note, "dsp atom %s %d\n", type,
                       reinterpret_cast<const LV2_Atom_Int*>(&ev->body)->body);
      else
        e->log->printf(e->log->handle, e->note, "dsp atom %s\n", type);
    }
    const uint32_t size = lv2_atom_pad_size(sizeof(LV2_Atom_Event) + ev->body.size);
    if (e->notify->atom.size + size > capacity) break;
    auto* out = reinterpret_cast<LV2_Atom_Event*>(reinterpret_cast<uint8_t*>(&e->notify->body) + e->notify->atom.size);
    std::memcpy(out, ev, sizeof(LV2_Atom_Event) + ev->body.size);
    e->notify->atom.size += size;
  }
}

void cleanup(LV2_Handle h) { delete static_cast<Echo*>(h); }

const LV2_Descriptor descriptor = {"urn:zel-test:echo", instantiate, connect, nullptr, run, nullptr, cleanup, nullptr};

}  // namespace

extern "C" LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
  return index == 0 ? &descriptor : nullptr;
}
