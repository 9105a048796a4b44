// The metering hook a host bridge may hand the editor, which passes it on to
// its parameter sketch: a plain function and the context it is called with.
// Plain value; copy freely. Products whose sketch meters audio install one
// (through the unit's metering record); the others leave it empty.
#pragma once

#include <cstdint>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// Every metering function: writes `count` levels into `levels`, in the order
// the unit defines (the product's sketch knows it). Called on the main
// thread, once per frame of a metering sketch; it never blocks.
using ZelMeteringFunction = void (*)(void* context, float* levels, std::uint32_t count);

struct ZelMeteringCallback {
  // A ZelMeteringFunction; null: none installed.
  void* function = nullptr;
  void* context = nullptr;
  friend bool operator==(const ZelMeteringCallback&, const ZelMeteringCallback&) = default;

  // Fills `levels` through the function; false (and nothing written) when
  // none is installed.
  bool read(float* levels, std::uint32_t count) const {
    if (!function) return false;
    reinterpret_cast<ZelMeteringFunction>(function)(context, levels, count);
    return true;
  }
};

ZEL_NAMESPACE_END
