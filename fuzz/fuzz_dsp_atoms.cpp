// Arbitrary atom sequences on the plug-in's control port, through its
// descriptor as a host calls it: instantiate (stereo or mono), connect,
// activate, run with the fuzz bytes as the body of the control sequence
// (the sequence header honest about their size, as a host's is), run once
// more, clean up. The notify port's capacity comes from the input too; what
// the plug-in writes there must be well-formed and inside it (FuzzLV2.h),
// and the audio it returns finite.
//
// Input: [descriptor and frames] [capacity, 2 bytes] [sequence body...]
#include <cmath>

#include "FuzzLV2.h"

extern "C" const LV2_Descriptor* lv2_descriptor(std::uint32_t index);

using namespace zel::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 16384) return -1;
  Bytes in(data, size);
  const std::uint8_t mode = in.u8();
  // The capacity the host declares in the notify buffer's atom header (so
  // at least the header's size).
  const std::uint32_t capacity = sizeof(LV2_Atom) + in.u16() % 4096;
  const std::uint32_t frames = 1 + (mode >> 1) % 64;
  const std::vector<std::uint8_t> body = in.take(in.left());

  const LV2_Descriptor* d = lv2_descriptor(mode & 1);
  UridMap map;
  const LV2_Feature* features[] = {map.feature(), nullptr};
  LV2_Handle h = d->instantiate(d, 48000, "", features);
  if (!h) fail("instantiate failed");

  float controls[ids::kControlPortCount] = {1, 0, 0, 0, 20, 20000, 1, 100, 0, 0, 0, 100};
  float latency = -1;
  const std::uint32_t channels = (mode & 1) ? 1 : 2;
  std::vector<float> audio(2 * std::size_t(channels) * frames, 0.25f);
  // The control sequence in a buffer of exactly its size.
  std::vector<std::uint8_t> control(sizeof(LV2_Atom) + body.size());
  const LV2_Atom header{std::uint32_t(body.size()), kSequence};
  std::memcpy(control.data(), &header, sizeof header);
  if (!body.empty()) std::memcpy(control.data() + sizeof header, body.data(), body.size());
  std::vector<std::uint8_t> notify(capacity + 64);

  for (std::uint32_t p = 0; p < ids::kControlPortCount; ++p) d->connect_port(h, p, &controls[p]);
  d->connect_port(h, ids::kLatencyPort, &latency);
  d->connect_port(h, ids::kControlAtomPort, control.data());
  d->connect_port(h, ids::kNotifyAtomPort, notify.data());
  for (std::uint32_t c = 0; c < 2 * channels; ++c)
    d->connect_port(h, ids::kFirstAudioPort + c, audio.data() + std::size_t(c) * frames);
  d->activate(h);

  for (int pass = 0; pass < 2; ++pass) {
    std::fill(notify.begin(), notify.end(), std::uint8_t(0xA5));
    const LV2_Atom room{capacity, 0};
    std::memcpy(notify.data(), &room, sizeof room);
    d->run(h, frames);
    checkNotify(notify, capacity);
    for (float s : audio)
      if (!std::isfinite(s)) fail("non-finite audio");
    if (latency < 0) fail("no latency reported");
    // The second run sees an empty sequence, as after a host clears it.
    const LV2_Atom empty{sizeof(LV2_Atom_Sequence_Body), kSequence};
    control.assign(sizeof(LV2_Atom_Sequence), 0);
    std::memcpy(control.data(), &empty, sizeof empty);
    d->connect_port(h, ids::kControlAtomPort, control.data());
  }
  d->cleanup(h);
  return 0;
}
