#include "toolkit/x11/ZelX11Scale.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kWhitespace = " \t";

std::string_view trimmed(std::string_view s) {
  std::size_t first = s.find_first_not_of(kWhitespace);
  if (first == std::string_view::npos) return {};
  std::size_t last = s.find_last_not_of(kWhitespace);
  return s.substr(first, last - first + 1);
}

std::optional<double> positiveNumber(std::string_view text) {
  std::string copy(text);
  char* end = nullptr;
  double value = std::strtod(copy.c_str(), &end);
  if (end == copy.c_str() || *end != '\0' || !std::isfinite(value) || value <= 0) return std::nullopt;
  return value;
}

}  // namespace

std::optional<double> ZelX11DPIFromResources(std::string_view resources) {
  std::optional<double> dpi;
  while (!resources.empty()) {
    std::size_t eol = resources.find('\n');
    std::string_view line = resources.substr(0, eol);
    resources = eol == std::string_view::npos ? std::string_view{} : resources.substr(eol + 1);
    std::size_t colon = line.find(':');
    if (colon == std::string_view::npos || trimmed(line.substr(0, colon)) != "Xft.dpi") continue;
    if (auto value = positiveNumber(trimmed(line.substr(colon + 1)))) dpi = value;  // the last one wins
  }
  return dpi;
}

double ZelX11ScaleForDPI(std::optional<double> dpi) {
  if (!dpi) return 1;
  double quarters = std::round(*dpi / 96.0 * 4.0) / 4.0;
  return std::clamp(quarters, 1.0, 4.0);
}

ZEL_NAMESPACE_END
