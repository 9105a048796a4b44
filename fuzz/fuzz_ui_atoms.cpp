// Arbitrary port events into the editor's LV2 connection
// (ZelLV2Connection::portEvent), as a host delivers them: any port, size
// and format, the buffer exactly as large as the size says. Afterwards every
// parameter the connection reports is finite, the channel counts stay
// within 64, a reported preset name within 255 bytes and a zoom within 1 to
// 2; what the connection writes back to the host is well-sized.
//
// Input: messages [port] [format] [size, 2 bytes] [size bytes]...; format 0
// is a float port's, 1 atom:eventTransfer, 2 atom:Float's URID, anything
// else that number.
#include <cmath>

#include "FuzzLV2.h"
#include "lv2/ui/ZelLV2Connection.h"

using namespace zel;
using namespace zel::fuzz;

namespace {

void write(LV2UI_Controller, std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* buffer) {
  if (!buffer) fail("a write without a buffer");
  if (port < ids::kControlPortCount) {
    float v;
    if (format != 0 || size != sizeof v) fail("a control write of the wrong shape");
    std::memcpy(&v, buffer, sizeof v);
    if (!std::isfinite(v)) fail("a non-finite control write");
  } else if (port == ids::kControlAtomPort) {
    const auto* atom = static_cast<const LV2_Atom*>(buffer);
    if (format != kEventTransfer || size < sizeof(LV2_Atom) || atom->size + sizeof(LV2_Atom) != size)
      fail("an atom write of the wrong shape");
  } else {
    fail("a write to a port the editor does not own");
  }
}

void touch(LV2UI_Feature_Handle, std::uint32_t port, bool) {
  if (port >= ids::kControlPortCount) fail("a touch of a port that is no parameter");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 16384) return -1;
  UridMap map;
  const LV2UI_Touch touchFeature{nullptr, touch};
  ZelLV2Connection connection(write, nullptr, map.lv2(), &touchFeature, 2);
  connection.setObserver({
      [](const std::string& name) {
        if (name.size() > ids::kMaxPresetNameBytes) fail("a preset name longer than 255 bytes");
      },
      [](bool) {},
      [](double zoom) {
        if (!(zoom >= 1 && zoom <= 2)) fail("a zoom outside 1 to 2");
      },
  });
  Bytes in(data, size);
  while (in.left() >= 4) {
    const std::uint32_t port = in.u8() % 20;
    const std::uint8_t f = in.u8();
    const std::uint32_t format = f == 0 ? 0 : f == 1 ? kEventTransfer : f == 2 ? kFloat : f;
    const std::vector<std::uint8_t> buffer = in.take(in.u16());
    connection.portEvent(port, std::uint32_t(buffer.size()), format, buffer.empty() ? "" : (const void*)buffer.data());
  }
  for (std::uint32_t pid = 0; pid < ids::kControlPortCount; ++pid) {
    float v = NAN;
    if (connection.getParameter(pid, v) != kZelUnitNoErr || !std::isfinite(v)) fail("a parameter is not finite");
    // Sending it back writes a finite port value (write() checks).
    connection.setParameter(pid, v + 1, nullptr);
  }
  for (ZelUnitProperty which : {ZelUnitProperty::ChannelsIn, ZelUnitProperty::ChannelsOut}) {
    std::uint32_t count = 0;
    if (connection.getChannelCount(which, count) == kZelUnitNoErr && count > 64) fail("a channel count over 64");
  }
  connection.setInterfacePreference(true);
  connection.setZoom(1.5);
  connection.requestState();
  return 0;
}
