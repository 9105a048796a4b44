// Truncation toward zero to a signed 32-bit integer that never overflows:
// values beyond the range saturate and NaN gives 0. The value operations
// and the value text share it.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

inline std::int32_t ZelTruncateToInt32(double value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483648.0) return std::numeric_limits<std::int32_t>::max();
  if (value <= -2147483649.0) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(value);
}

ZEL_NAMESPACE_END
