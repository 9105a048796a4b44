// Numbers on the tools' command lines and in scripts, read in the C
// conventions (a "." radix, whatever the user's locale), the whole word or
// nothing.
//
// Pure functions; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// The whole word as a finite number in the C conventions; none otherwise.
std::optional<double> ZelParseNumberWord(std::string_view word);
// The same, also accepting "nan" and "inf" (values a host may report).
std::optional<double> ZelParseAnyNumberWord(std::string_view word);
// The whole word as a non-negative integer that fits 32 bits.
std::optional<std::uint32_t> ZelParseCountWord(std::string_view word);
// The whole word as an integer.
std::optional<long long> ZelParseIntegerWord(std::string_view word);

ZEL_NAMESPACE_END
