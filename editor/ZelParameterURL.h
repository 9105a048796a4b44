// The text form of a parameter state: "<base>/?name:value/name:value..."
// (what copy writes) or "<base>?name=value&name=value" (what a web page
// might link to). Reading it is bounded: one pass over the text, and each
// name is kept once (a later item replaces an earlier one), so a megabyte of
// pasted text costs one pass and one entry per distinct name.
//
// Threading: pure functions; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelNumberParser;

// One item of the query: a number, or "x" (keep the current value).
struct ZelParameterURLEntry {
  std::string name;
  std::optional<float> number;  // none: the value was "x"
  bool keeps() const { return !number.has_value(); }
};

struct ZelParameterURLQuery {
  // Distinct names in the order of their first appearance; the value is the
  // last one given. Values that are neither "x" nor a number are skipped.
  std::vector<ZelParameterURLEntry> entries;
  // The entry for `name`, or nullptr.
  const ZelParameterURLEntry* find(std::string_view name) const;
};

// A value as copy writes it: the shortest text that reads back as the same
// 32-bit float ("%.7g"), never in the user's locale.
std::string ZelParameterURLValueText(float value);

// Whether `text` (white space around it ignored) is an absolute URL: a
// scheme ("letter, then letters, digits, +, - or .", then ":") followed only
// by characters a URL may hold, percent escapes of two hexadecimal digits
// and at most one "#".
bool ZelIsAbsoluteURL(std::string_view text);

// The query of `text` read as items, or none when `text` is not a URL (see
// ZelIsAbsoluteURL). A URL without a query gives no entries. Separators: "/"
// between items and ":" inside them when the query holds a ":", else "&"
// and "="; an item without its inner separator is ignored. Numbers are read
// with `parser`.
std::optional<ZelParameterURLQuery> ZelParseParameterURL(std::string_view text, const ZelNumberParser& parser);

ZEL_NAMESPACE_END
