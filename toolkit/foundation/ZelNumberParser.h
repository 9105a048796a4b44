// Reads typed numbers the way the user writes them: decimal style in the
// user's locale (its radix character and digit grouping separator).
//
// Accepted, with white space around it: an optional sign, digits with
// optional grouping separators between them, an optional radix part, and an
// optional exponent ("e" or "E", optional sign, digits). Anything else
// (a stray letter, a separator out of place, nothing at all) is no number.
// In German "2,5" is 2.5 and "1.234,5" is 1234.5; in English "1,234.5" is
// 1234.5; "12abc" is no number in either.
//
// Threading: a parser is immutable, so any thread may use it; user() is
// built once, thread-safely.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelNumberParser {
 public:
  // A parser with these separators; `grouping` may be empty (no grouping).
  ZelNumberParser(std::string radix, std::string grouping);

  // The numeric conventions of a named locale (e.g. "de_DE.UTF-8"); none
  // when the system does not have that locale.
  static std::optional<ZelNumberParser> forLocale(const char* name);
  // The user's locale as the environment names it now (LC_ALL, LC_NUMERIC,
  // LANG, in that order); the C conventions when it names none or one the
  // system lacks. The process's own locale is not touched.
  static ZelNumberParser fromEnvironment();
  // fromEnvironment() as of the first call, kept for the life of the process.
  static const ZelNumberParser& user();

  // The value of the whole text, or none when it is not a number. Values
  // beyond a double's range read as infinity, tiny ones as zero.
  std::optional<double> parse(std::string_view text) const;

  const std::string& radix() const { return radix_; }
  const std::string& grouping() const { return grouping_; }

 private:
  bool groupingAt(std::string_view text, std::size_t at, std::size_t& length) const;

  std::string radix_;
  std::string grouping_;
};

// ZelNumberParser::user().parse(text).
std::optional<double> ZelParseUserNumber(std::string_view text);

ZEL_NAMESPACE_END
