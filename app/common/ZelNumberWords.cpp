#include "app/common/ZelNumberWords.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <string>

ZEL_NAMESPACE_BEGIN

std::optional<double> ZelParseAnyNumberWord(std::string_view word) {
  if (word.empty()) return std::nullopt;
  const std::string text(word);
  char* end = nullptr;
  errno = 0;
  const double value = std::strtod(text.c_str(), &end);
  if (end != text.c_str() + text.size() || errno == ERANGE) return std::nullopt;
  return value;
}

std::optional<double> ZelParseNumberWord(std::string_view word) {
  const std::optional<double> value = ZelParseAnyNumberWord(word);
  if (!value || !std::isfinite(*value)) return std::nullopt;
  return value;
}

std::optional<long long> ZelParseIntegerWord(std::string_view word) {
  if (word.empty()) return std::nullopt;
  const std::string text(word);
  char* end = nullptr;
  errno = 0;
  const long long value = std::strtoll(text.c_str(), &end, 10);
  if (end != text.c_str() + text.size() || errno == ERANGE) return std::nullopt;
  return value;
}

std::optional<std::uint32_t> ZelParseCountWord(std::string_view word) {
  const std::optional<long long> value = ZelParseIntegerWord(word);
  if (!value || *value < 0 || *value > static_cast<long long>(UINT32_MAX)) return std::nullopt;
  return static_cast<std::uint32_t>(*value);
}

ZEL_NAMESPACE_END
