#include "editor/ZelParameterURL.h"

#include <cctype>
#include <cstdio>
#include <unordered_map>

#include "toolkit/foundation/ZelNumberParser.h"

ZEL_NAMESPACE_BEGIN

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool isHex(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

// Printable ASCII without the characters a URL never holds unescaped.
bool isURLCharacter(char c) {
  if (c <= 0x20 || c >= 0x7F) return false;
  switch (c) {
    case '"': case '<': case '>': case '\\': case '^': case '`': case '{': case '|': case '}':
      return false;
    default:
      return true;
  }
}

std::size_t schemeLength(std::string_view text) {
  if (text.empty() || !std::isalpha(static_cast<unsigned char>(text[0]))) return 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c == ':') return i;
    if (!std::isalnum(c) && c != '+' && c != '-' && c != '.') return 0;
  }
  return 0;
}

// The text between the first "?" and the "#" (if any); none without "?".
std::optional<std::string_view> queryOf(std::string_view url) {
  const std::size_t hash = url.find('#');
  const std::string_view beforeFragment = url.substr(0, hash);
  const std::size_t question = beforeFragment.find('?');
  if (question == std::string_view::npos) return std::nullopt;
  return beforeFragment.substr(question + 1);
}

}  // namespace

const ZelParameterURLEntry* ZelParameterURLQuery::find(std::string_view name) const {
  for (const ZelParameterURLEntry& entry : entries)
    if (entry.name == name) return &entry;
  return nullptr;
}

std::string ZelParameterURLValueText(float value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.7g", static_cast<double>(value));
  return text;
}

bool ZelIsAbsoluteURL(std::string_view text) {
  text = trimmed(text);
  if (schemeLength(text) == 0) return false;
  int hashes = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (!isURLCharacter(c)) return false;
    if (c == '#' && ++hashes > 1) return false;
    if (c == '%' && (i + 2 >= text.size() || !isHex(text[i + 1]) || !isHex(text[i + 2]))) return false;
  }
  return true;
}

std::optional<ZelParameterURLQuery> ZelParseParameterURL(std::string_view text, const ZelNumberParser& parser) {
  if (!ZelIsAbsoluteURL(text)) return std::nullopt;
  ZelParameterURLQuery result;
  const std::optional<std::string_view> query = queryOf(trimmed(text));
  if (!query) return result;
  const bool copyForm = query->find(':') != std::string_view::npos;
  const char itemSeparator = copyForm ? '/' : '&';
  const char valueSeparator = copyForm ? ':' : '=';
  std::unordered_map<std::string_view, std::size_t> index;  // name -> entry
  std::string_view rest = *query;
  while (true) {
    const std::size_t end = rest.find(itemSeparator);
    const std::string_view item = rest.substr(0, end);
    const std::size_t split = item.find(valueSeparator);
    if (split != std::string_view::npos) {
      const std::string_view name = item.substr(0, split);
      std::string_view value = item.substr(split + 1);
      value = value.substr(0, value.find(valueSeparator));
      std::optional<float> number;
      if (value != "x") {
        const std::optional<double> parsed = parser.parse(value);
        if (parsed) number = static_cast<float>(*parsed);
      }
      if (value == "x" || number) {
        auto [at, added] = index.try_emplace(name, result.entries.size());
        if (added) result.entries.push_back({std::string(name), number});
        else result.entries[at->second].number = number;
      }
    }
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  return result;
}

ZEL_NAMESPACE_END
