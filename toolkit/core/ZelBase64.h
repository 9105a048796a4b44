// Base64 of RFC 4648, standard alphabet ("A-Z a-z 0-9 + /").
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// The bytes that `text` encodes. Whitespace anywhere is ignored and the
// trailing "=" padding is optional; any other character outside the
// alphabet, padding that is not at the end, more than two "=" or a length
// that cannot be a whole encoding (a lone trailing character, padding that
// does not complete a group of four) gives nothing.
std::optional<std::vector<std::uint8_t>> ZelDecodeBase64(std::string_view text);

// The padded encoding of `bytes`, on one line.
std::string ZelEncodeBase64(std::span<const std::uint8_t> bytes);

ZEL_NAMESPACE_END
