#include "toolkit/foundation/ZelNumberParser.h"

#include <langinfo.h>
#include <locale.h>

#include <stdlib.h>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kSpace = " \t\n\r\f\v";
constexpr std::string_view kMinusSign = "\xE2\x88\x92";        // U+2212
constexpr std::string_view kNoBreakSpace = "\xC2\xA0";         // U+00A0
constexpr std::string_view kNarrowNoBreakSpace = "\xE2\x80\xAF";  // U+202F

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The numeric conventions of a locale handle, which is released.
ZelNumberParser conventionsOf(locale_t locale) {
  ZelNumberParser parser(nl_langinfo_l(RADIXCHAR, locale), nl_langinfo_l(THOUSEP, locale));
  freelocale(locale);
  return parser;
}

// The C conventions, for converting the normalised text whatever the
// process's locale is.
locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return locale;
}

// Text consumed while it is being read; the normalised number is collected in
// `out` as the C conventions write it.
struct Reader {
  std::string_view text;
  std::size_t at = 0;
  std::string out;

  bool done() const { return at >= text.size(); }
  bool take(std::string_view token) {
    if (token.empty() || text.substr(at, token.size()) != token) return false;
    at += token.size();
    return true;
  }
  std::size_t digits() {
    std::size_t n = 0;
    for (; !done() && isDigit(text[at]); ++at, ++n) out += text[at];
    return n;
  }
};

}  // namespace

ZelNumberParser::ZelNumberParser(std::string radix, std::string grouping)
    : radix_(radix.empty() ? "." : std::move(radix)), grouping_(std::move(grouping)) {}

std::optional<ZelNumberParser> ZelNumberParser::forLocale(const char* name) {
  locale_t locale = newlocale(LC_NUMERIC_MASK, name, static_cast<locale_t>(nullptr));
  if (locale == static_cast<locale_t>(nullptr)) return std::nullopt;
  return conventionsOf(locale);
}

ZelNumberParser ZelNumberParser::fromEnvironment() {
  // The empty name resolves LC_ALL, LC_NUMERIC and LANG as setlocale does.
  if (auto parser = forLocale("")) return *parser;
  return ZelNumberParser(".", "");
}

const ZelNumberParser& ZelNumberParser::user() {
  static const ZelNumberParser parser = fromEnvironment();
  return parser;
}

// Whether a grouping separator starts at `at`, and its length. Where the
// locale groups with a no-break space, a plain space is taken for one too:
// that is what people type.
bool ZelNumberParser::groupingAt(std::string_view text, std::size_t at, std::size_t& length) const {
  const std::string_view rest = text.substr(at);
  if (!grouping_.empty() && rest.starts_with(grouping_)) {
    length = grouping_.size();
    return true;
  }
  const bool spaceGroups = grouping_ == kNoBreakSpace || grouping_ == kNarrowNoBreakSpace;
  length = 1;
  return spaceGroups && rest.starts_with(' ');
}

std::optional<double> ZelNumberParser::parse(std::string_view text) const {
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return std::nullopt;
  Reader r{text.substr(first, text.find_last_not_of(kSpace) - first + 1), 0, {}};
  if (r.take("-") || r.take(kMinusSign)) r.out += '-';
  else r.take("+");
  std::size_t mantissa = 0;
  for (std::size_t length = 0;;) {
    mantissa += r.digits();
    // A separator counts only between digits.
    if (mantissa == 0 || !groupingAt(r.text, r.at, length)) break;
    if (r.at + length >= r.text.size() || !isDigit(r.text[r.at + length])) break;
    r.at += length;
  }
  if (r.take(radix_)) {
    r.out += '.';
    mantissa += r.digits();
  }
  if (mantissa == 0) return std::nullopt;
  if (!r.done() && (r.text[r.at] == 'e' || r.text[r.at] == 'E')) {
    ++r.at;
    r.out += 'e';
    if (r.take("-")) r.out += '-';
    else r.take("+");
    if (r.digits() == 0) return std::nullopt;
  }
  if (!r.done()) return std::nullopt;
  return ::strtod_l(r.out.c_str(), nullptr, cLocale());
}

std::optional<double> ZelParseUserNumber(std::string_view text) { return ZelNumberParser::user().parse(text); }

ZEL_NAMESPACE_END
