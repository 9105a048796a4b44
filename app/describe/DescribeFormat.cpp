#include "app/describe/DescribeFormat.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

ZEL_NAMESPACE_BEGIN
namespace {

template <class T>
std::string shortest(T value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  std::array<char, 64> buffer{};
  auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return std::string(buffer.data(), result.ptr);
}

}  // namespace

std::string ZelFormatG9(double value) {
  std::array<char, 64> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.9g", value);
  return buffer.data();
}

std::string ZelFormatShortest(float value) { return shortest(value); }
std::string ZelFormatShortest(double value) { return shortest(value); }

std::string ZelFormatRect(CGRect r) {
  return ZelFormatG9(r.origin.x) + " " + ZelFormatG9(r.origin.y) + " " + ZelFormatG9(r.size.width) + " " +
         ZelFormatG9(r.size.height);
}

std::string ZelColorHex(const ZelColor& color) {
  auto byte = [](double c) {
    double v = std::round(std::clamp(std::isnan(c) ? 0.0 : c, 0.0, 1.0) * 255.0);
    return static_cast<unsigned>(v);
  };
  std::array<char, 16> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "#%02x%02x%02x", byte(color.red), byte(color.green), byte(color.blue));
  return buffer.data();
}

std::string ZelKeyPath(std::string_view base, std::string_view key) {
  if (base.empty()) return std::string(key);
  std::string path(base);
  path += '.';
  path += key;
  return path;
}

std::string ZelKeyPath(std::string_view base, std::size_t index) {
  return std::string(base) + "[" + std::to_string(index) + "]";
}

std::optional<double> ZelParseNumber(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  if (text.empty() || text.front() == '+') return std::nullopt;
  double value = 0;
  auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return value;
}

ZEL_NAMESPACE_END
