// Measures a property list's shape before the parser sees it: how deeply its
// arrays and dictionaries nest and how many values parsing would create. The
// parser recurses once per level of a binary list and frees its trees
// recursively, and a binary list may refer to one object many times, so a
// small hostile file could otherwise exhaust the stack or memory. Used by the
// reader only. Reentrant.
#pragma once

#include <cstddef>
#include <cstdint>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

struct ZelPlistShape {
  std::uint64_t depth = 0;   // deepest nesting of arrays and dictionaries (top level 1)
  std::uint64_t values = 0;  // values parsing would create (saturates at the cap)
  bool cyclic = false;       // a binary list whose containers refer back to themselves
  bool nulCharacter = false;  // a binary list with a UTF-16 string holding U+0000
  bool readable = false;     // the header and trailer (binary) could be read
};

// Shape of a binary list ("bplist00..."): walks the object table from the
// root, counting each reference as the parser would expand it. Objects it
// cannot read count as single values (the parser rejects them anyway).
// Stops counting once `depth` exceeds `maxDepth` or `values` exceeds
// `maxValues`.
ZelPlistShape ZelMeasureBinaryPlist(const std::uint8_t* bytes, std::size_t size, std::uint64_t maxDepth,
                                    std::uint64_t maxValues);

// Shape of an XML list from its tags: depth from <array> and <dict> against
// their closing tags (comments, processing instructions and self-closing tags
// skipped), values from the opening tags of values.
ZelPlistShape ZelMeasureXMLPlist(const std::uint8_t* bytes, std::size_t size);

ZEL_NAMESPACE_END
