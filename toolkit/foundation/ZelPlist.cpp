#include "toolkit/foundation/ZelPlist.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <variant>

ZEL_NAMESPACE_BEGIN

struct ZelPlist::Node {
  std::variant<std::monostate, bool, std::int64_t, double, std::string, Data, Array, Dictionary> v;
};

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

std::string_view skipSpace(std::string_view s) {
  while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
  return s;
}

// "Y", "y", "T", "t" or a digit 1-9 after optional white space, sign and
// leading zeros means true; anything else false.
bool stringBool(std::string_view s) {
  s = skipSpace(s);
  if (!s.empty() && (s.front() == '+' || s.front() == '-')) s.remove_prefix(1);
  while (!s.empty() && s.front() == '0') s.remove_prefix(1);
  if (s.empty()) return false;
  char c = s.front();
  return c == 'Y' || c == 'y' || c == 'T' || c == 't' || (c >= '1' && c <= '9');
}

std::int64_t stringInteger(std::string_view s) {
  s = skipSpace(s);
  bool negative = false;
  if (!s.empty() && (s.front() == '+' || s.front() == '-')) {
    negative = s.front() == '-';
    s.remove_prefix(1);
  }
  std::int64_t value = 0;
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  for (char c : s) {
    if (c < '0' || c > '9') break;
    int digit = c - '0';
    if (value > (kMax - digit) / 10) return negative ? std::numeric_limits<std::int64_t>::min() : kMax;
    value = value * 10 + digit;
  }
  return negative ? -value : value;
}

double stringDouble(std::string_view s) {
  s = skipSpace(s);
  bool negative = false;
  if (!s.empty() && (s.front() == '+' || s.front() == '-')) {
    negative = s.front() == '-';
    s.remove_prefix(1);
  }
  double value = 0;
  auto result = std::from_chars(s.data(), s.data() + s.size(), value, std::chars_format::general);
  if (result.ec == std::errc::result_out_of_range) {
    // from_chars leaves the value alone when out of range; the platform
    // saturates to infinity, or to zero when the exponent is very negative.
    std::string_view parsed(s.data(), static_cast<std::size_t>(result.ptr - s.data()));
    std::size_t e = parsed.find_first_of("eE");
    bool tiny = e != std::string_view::npos && e + 1 < parsed.size() && parsed[e + 1] == '-';
    value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
  } else if (result.ec != std::errc()) {
    value = 0;
  }
  return negative ? -value : value;
}

std::int64_t doubleToInteger(double d) {
  if (std::isnan(d)) return 0;
  if (d >= 9.2233720368547758e18) return std::numeric_limits<std::int64_t>::max();
  if (d <= -9.2233720368547758e18) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(d);
}

}  // namespace

ZelPlist::ZelPlist() = default;
ZelPlist::ZelPlist(std::shared_ptr<const Node> node) : node_(std::move(node)) {}

ZelPlist ZelPlist::boolean(bool value) { return ZelPlist(std::make_shared<const Node>(Node{value})); }
ZelPlist ZelPlist::integer(std::int64_t value) { return ZelPlist(std::make_shared<const Node>(Node{value})); }
ZelPlist ZelPlist::real(double value) { return ZelPlist(std::make_shared<const Node>(Node{value})); }
ZelPlist ZelPlist::string(std::string value) {
  return ZelPlist(std::make_shared<const Node>(Node{std::move(value)}));
}
ZelPlist ZelPlist::data(Data value) { return ZelPlist(std::make_shared<const Node>(Node{std::move(value)})); }
ZelPlist ZelPlist::array(Array value) { return ZelPlist(std::make_shared<const Node>(Node{std::move(value)})); }
ZelPlist ZelPlist::dictionary(Dictionary value) {
  return ZelPlist(std::make_shared<const Node>(Node{std::move(value)}));
}

const ZelPlist& ZelPlist::null() {
  static const ZelPlist kNull;
  return kNull;
}

ZelPlist::Kind ZelPlist::kind() const {
  if (!node_) return Kind::Null;
  return static_cast<Kind>(node_->v.index());
}

const std::string* ZelPlist::asString() const { return node_ ? std::get_if<std::string>(&node_->v) : nullptr; }
const ZelPlist::Array* ZelPlist::asArray() const { return node_ ? std::get_if<Array>(&node_->v) : nullptr; }
const ZelPlist::Dictionary* ZelPlist::asDictionary() const {
  return node_ ? std::get_if<Dictionary>(&node_->v) : nullptr;
}
const ZelPlist::Data* ZelPlist::asData() const { return node_ ? std::get_if<Data>(&node_->v) : nullptr; }

const ZelPlist& ZelPlist::operator[](std::string_view key) const {
  const Dictionary* d = asDictionary();
  if (!d) return null();
  auto it = d->find(key);
  return it == d->end() ? null() : it->second;
}

const ZelPlist& ZelPlist::operator[](std::size_t index) const {
  const Array* a = asArray();
  if (!a || index >= a->size()) return null();
  return (*a)[index];
}

bool ZelPlist::contains(std::string_view key) const {
  const Dictionary* d = asDictionary();
  return d && d->find(key) != d->end();
}

std::size_t ZelPlist::count() const {
  if (const Array* a = asArray()) return a->size();
  if (const Dictionary* d = asDictionary()) return d->size();
  if (const std::string* s = asString()) return s->size();
  if (const Data* b = asData()) return b->size();
  return 0;
}

bool ZelPlist::boolValue() const {
  if (!node_) return false;
  return std::visit(
      [](const auto& x) -> bool {
        using T = std::decay_t<decltype(x)>;
        if constexpr (std::is_same_v<T, bool>) return x;
        else if constexpr (std::is_same_v<T, std::int64_t>) return x != 0;
        else if constexpr (std::is_same_v<T, double>) return x != 0;
        else if constexpr (std::is_same_v<T, std::string>) return stringBool(x);
        else return false;
      },
      node_->v);
}

std::int64_t ZelPlist::integerValue() const {
  if (!node_) return 0;
  return std::visit(
      [](const auto& x) -> std::int64_t {
        using T = std::decay_t<decltype(x)>;
        if constexpr (std::is_same_v<T, bool>) return x ? 1 : 0;
        else if constexpr (std::is_same_v<T, std::int64_t>) return x;
        else if constexpr (std::is_same_v<T, double>) return doubleToInteger(x);
        else if constexpr (std::is_same_v<T, std::string>) return stringInteger(x);
        else return 0;
      },
      node_->v);
}

int ZelPlist::intValue() const { return static_cast<int>(static_cast<std::uint32_t>(integerValue())); }

double ZelPlist::doubleValue() const {
  if (!node_) return 0;
  return std::visit(
      [](const auto& x) -> double {
        using T = std::decay_t<decltype(x)>;
        if constexpr (std::is_same_v<T, bool>) return x ? 1 : 0;
        else if constexpr (std::is_same_v<T, std::int64_t>) return static_cast<double>(x);
        else if constexpr (std::is_same_v<T, double>) return x;
        else if constexpr (std::is_same_v<T, std::string>) return stringDouble(x);
        else return 0;
      },
      node_->v);
}

float ZelPlist::floatValue() const { return static_cast<float>(doubleValue()); }

std::string_view ZelPlist::stringValue() const {
  const std::string* s = asString();
  return s ? std::string_view(*s) : std::string_view();
}

bool operator==(const ZelPlist& a, const ZelPlist& b) {
  if (a.node_ == b.node_) return true;
  if (a.kind() != b.kind()) return false;
  if (a.isNull()) return true;
  return a.node_->v == b.node_->v;
}

ZEL_NAMESPACE_END
