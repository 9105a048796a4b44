// Levels that a unit reports to its editor from elsewhere (an LV2 plug-in's
// meter output ports, as the host hands them to the UI), kept for the
// sketch's metering function: the UI side of a metering record.
//
// Nothing from the host is trusted: an index out of range or a non-finite
// level is ignored. Before a level arrives it reads as `floor`.
// Ownership: plain value; the record that metering() returns points at this
// object, which must outlive every use of it. Threading: main thread only
// (hosts call port_event there, and the sketch reads there).
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "host/ZelUnitConnection.h"

ZEL_NAMESPACE_BEGIN

class ZelMeterLevels {
 public:
  explicit ZelMeterLevels(std::uint32_t count = 0, float floor = -90) : floor_(floor), levels_(count, floor) {}

  std::uint32_t count() const { return static_cast<std::uint32_t>(levels_.size()); }
  float level(std::uint32_t index) const { return index < levels_.size() ? levels_[index] : floor_; }
  void set(std::uint32_t index, float level) {
    if (index < levels_.size() && std::isfinite(level)) levels_[index] = level;
  }

  // A metering record that reads these levels: the first `count` of them,
  // and the floor past the last one.
  ZelUnitMetering metering() { return {&read, this}; }

 private:
  static void read(void* context, float* levels, std::uint32_t count) {
    const auto* self = static_cast<const ZelMeterLevels*>(context);
    for (std::uint32_t i = 0; i < count; ++i) levels[i] = self->level(i);
  }

  float floor_;
  std::vector<float> levels_;
};

ZEL_NAMESPACE_END
