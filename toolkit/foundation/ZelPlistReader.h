// Reads a property list (XML or binary) into a ZelPlist, once, with a list
// of findings instead of exceptions; and writes a ZelPlist back as XML. This
// is the only file that sees the parsing library.
//
// Guards: input larger than ZelPlistMaxBytes is refused before parsing, and
// input nested deeper than ZelPlistMaxDepth is refused (before the parser
// sees it when the nesting shows in the text, and again while converting),
// so a hostile file can neither exhaust memory nor overflow the stack.
//
// Thread-safety: every function is reentrant and may run on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

// One finding about a description: where (a key path such as
// "clumps[2].parameters[0].minValue", empty for the whole file) and what.
struct ZelDiagnostic {
  enum class Severity : std::uint8_t { Error, Warning };
  Severity severity = Severity::Error;
  std::string keyPath;
  std::string message;

  // "error: <keyPath>: <message>" (the key path left out when empty).
  std::string description() const;
  friend bool operator==(const ZelDiagnostic&, const ZelDiagnostic&) = default;
};

inline constexpr std::size_t ZelPlistMaxBytes = std::size_t{64} << 20;  // 64 MiB
inline constexpr int ZelPlistMaxDepth = 256;  // arrays and dictionaries inside each other

struct ZelPlistReadResult {
  ZelPlist value;  // null when reading failed
  std::vector<ZelDiagnostic> diagnostics;
  // True when no error was found (warnings may still be present).
  bool ok() const;
};

// Reads the file at `path`. Findings (all errors, `value` null):
// "cannot open the file" / "cannot read the file" (with the system's reason),
// "the file is empty", "the file is larger than 64 MiB",
// "not a property list (XML or binary)",
// "nested deeper than 256 levels",
// and, with `requireDictionary`, "the top level is not a dictionary".
ZelPlistReadResult ZelPlistReadFile(const std::string& path, bool requireDictionary = true);

// The same for bytes in memory (`bytes` may be null when `size` is 0).
ZelPlistReadResult ZelPlistReadData(const void* bytes, std::size_t size, bool requireDictionary = true);

// The value as an XML property list (UTF-8, with the usual header). Null
// values, which a property list cannot hold, are left out of arrays and
// dictionaries; a null top level gives an empty dictionary.
std::string ZelPlistToXML(const ZelPlist& value);

ZEL_NAMESPACE_END
