// The metering hook a host bridge may hand the editor, which passes it on to
// its parameter sketch: a plain function and the context it is called with.
// Plain value; copy freely. This product installs none.
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

struct ZelMeteringCallback {
  // The unit's metering function (its signature belongs to the unit); null:
  // none installed.
  void* function = nullptr;
  void* context = nullptr;
  friend bool operator==(const ZelMeteringCallback&, const ZelMeteringCallback&) = default;
};

ZEL_NAMESPACE_END
