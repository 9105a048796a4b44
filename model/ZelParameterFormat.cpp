// The checked number format of a parameter's value text. The format comes
// from the description file, so it is parsed once when the record is built
// and only a format that takes exactly the argument we pass ever reaches
// snprintf.
#include <cstdio>

#include "model/ZelParameter.h"
#include "model/ZelTruncate.h"

ZEL_NAMESPACE_BEGIN

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Skips at most two digits; false when a third follows.
bool skipShortNumber(std::string_view f, std::size_t* i) {
  std::size_t digits = 0;
  while (*i < f.size() && isDigit(f[*i])) { ++*i; ++digits; }
  return digits <= 2;
}

// The conversion character of the directive that starts at f[*i] ('%'),
// with *i left on it; '\0' when the directive is not one we accept.
char conversionAt(std::string_view f, std::size_t* i) {
  ++*i;
  while (*i < f.size() && std::string_view("-+ #0").find(f[*i]) != std::string_view::npos) ++*i;
  if (!skipShortNumber(f, i)) return '\0';
  if (*i < f.size() && f[*i] == '.') {
    ++*i;
    if (!skipShortNumber(f, i)) return '\0';
  }
  if (*i >= f.size()) return '\0';
  return std::string_view("fFeEgGaAdi").find(f[*i]) != std::string_view::npos ? f[*i] : '\0';
}

}  // namespace

ZelParameter::FormatArgument ZelParameter::checkFormat(std::string_view f) {
  FormatArgument argument = FormatArgument::None;
  for (std::size_t i = 0; i < f.size(); ++i) {
    if (f[i] != '%') continue;
    if (i + 1 < f.size() && f[i + 1] == '%') {
      ++i;
      continue;
    }
    if (argument != FormatArgument::None) return FormatArgument::Invalid;
    char conversion = conversionAt(f, &i);
    if (conversion == '\0') return FormatArgument::Invalid;
    argument = (conversion == 'd' || conversion == 'i') ? FormatArgument::Int : FormatArgument::Double;
  }
  return argument;
}

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
#endif

// Short texts go through a stack buffer; a longer one is formatted a second
// time straight into the string (the only case that may grow it).
void ZelParameter::formatValue(std::string* out, float value) const {
  const char* format = formatString.c_str();
  auto print = [&](char* dst, std::size_t size) -> int {
    switch (formatArgument_) {
      case FormatArgument::None: return std::snprintf(dst, size, format);
      case FormatArgument::Double: return std::snprintf(dst, size, format, static_cast<double>(value));
      case FormatArgument::Int: return std::snprintf(dst, size, format, static_cast<int>(ZelTruncateToInt32(value)));
      case FormatArgument::Invalid: break;
    }
    return -1;
  };
  char buffer[256];
  int n = print(buffer, sizeof buffer);
  if (n < 0) {
    out->clear();
  } else if (static_cast<std::size_t>(n) < sizeof buffer) {
    out->assign(buffer, static_cast<std::size_t>(n));
  } else {
    out->resize(static_cast<std::size_t>(n));
    print(out->data(), out->size() + 1);
  }
}

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

ZEL_NAMESPACE_END
