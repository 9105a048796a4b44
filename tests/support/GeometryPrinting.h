// Readable test failures for rectangles: (x, y, width, height).
#pragma once

#include <ostream>

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN
inline void PrintTo(const CGRect& r, std::ostream* os) {
  *os << "(" << r.origin.x << ", " << r.origin.y << ", " << r.size.width << ", " << r.size.height << ")";
}
ZEL_NAMESPACE_END
