// The one way records read the description's dictionaries: an empty string
// or an empty array reads as absent, a value of the wrong kind reads as
// absent, and a colour is hex text RRGGBB (optional leading "#") that always
// yields a colour (opaque black when absent or unreadable).
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelColor.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

// The value for `key` unless it is absent, an empty string or an empty array.
inline const ZelPlist& FetchFromDictionary(const ZelPlist& dictionary, std::string_view key) {
  const ZelPlist& value = dictionary[key];
  if ((value.isString() || value.isArray()) && value.count() == 0) return ZelPlist::null();
  return value;
}

inline std::string FetchString(const ZelPlist& dictionary, std::string_view key) {
  return std::string(FetchFromDictionary(dictionary, key).stringValue());
}

// An array or dictionary as it stands, or null for absent, empty or another kind.
inline ZelPlist FetchArray(const ZelPlist& dictionary, std::string_view key) {
  const ZelPlist& v = FetchFromDictionary(dictionary, key);
  return v.isArray() ? v : ZelPlist::null();
}
inline ZelPlist FetchDictionary(const ZelPlist& dictionary, std::string_view key) {
  const ZelPlist& v = FetchFromDictionary(dictionary, key);
  return v.isDictionary() ? v : ZelPlist::null();
}

// Each element's 32-bit float reading (strings are parsed, other kinds are 0).
inline std::vector<float> FetchFloats(const ZelPlist& dictionary, std::string_view key) {
  std::vector<float> out;
  if (const ZelPlist::Array* a = FetchFromDictionary(dictionary, key).asArray()) {
    out.reserve(a->size());
    for (const ZelPlist& e : *a) out.push_back(e.floatValue());
  }
  return out;
}

// Each element's string (an element of another kind reads as "").
inline std::vector<std::string> FetchStrings(const ZelPlist& dictionary, std::string_view key) {
  std::vector<std::string> out;
  if (const ZelPlist::Array* a = FetchFromDictionary(dictionary, key).asArray()) {
    out.reserve(a->size());
    for (const ZelPlist& e : *a) out.emplace_back(e.stringValue());
  }
  return out;
}

inline int ZelHexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Hex digits scanned as an unsigned 32-bit number up to the first non-hex
// character, after optional white space and an optional "0x"/"0X"; more
// digits than fit saturate at 0xFFFFFFFF, nothing scanned gives 0.
inline std::uint32_t ZelScanHexUInt32(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t' || text.front() == '\n' || text.front() == '\r'))
    text.remove_prefix(1);
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && ZelHexDigitValue(text[2]) >= 0)
    text.remove_prefix(2);
  std::uint64_t v = 0;
  for (char c : text) {
    int d = ZelHexDigitValue(c);
    if (d < 0) break;
    v = std::min<std::uint64_t>((v << 4) | static_cast<std::uint64_t>(d), 0xFFFFFFFFu);
  }
  return static_cast<std::uint32_t>(v);
}

// Hex text to an opaque device-RGB colour: "#" dropped, the rest scanned as
// an unsigned 32-bit hex number; red bits 16-23, green 8-15, blue 0-7.
inline ZelColor ZelColorFromHexString(std::string_view text) {
  if (!text.empty() && text.front() == '#') text.remove_prefix(1);
  const std::uint32_t v = ZelScanHexUInt32(text);
  return ZelColor::rgb(((v >> 16) & 0xff) / 255.0, ((v >> 8) & 0xff) / 255.0, (v & 0xff) / 255.0, 1.0);
}

inline ZelColor FetchColor(const ZelPlist& dictionary, std::string_view key) {
  return ZelColorFromHexString(FetchFromDictionary(dictionary, key).stringValue());
}

ZEL_NAMESPACE_END
