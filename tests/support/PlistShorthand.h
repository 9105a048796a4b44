// One-letter builders for property lists written out in tests:
// D({{"pid", I(3)}, {"name", S("Gain")}, {"values", A({N(0.5), B(true)})}}).
#pragma once

#include <cstdint>
#include <utility>

#include "toolkit/foundation/ZelPlist.h"

namespace zel::plist_shorthand {

using Dict = ZelPlist::Dictionary;
using Array = ZelPlist::Array;

inline ZelPlist N(double v) { return ZelPlist::real(v); }
inline ZelPlist I(std::int64_t v) { return ZelPlist::integer(v); }
inline ZelPlist S(const char* s) { return ZelPlist::string(s); }
inline ZelPlist B(bool b) { return ZelPlist::boolean(b); }
inline ZelPlist D(Dict d) { return ZelPlist::dictionary(std::move(d)); }
inline ZelPlist A(Array a) { return ZelPlist::array(std::move(a)); }

}  // namespace zel::plist_shorthand
