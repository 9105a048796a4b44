#include "app/describe/DescribeJsonWriter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "app/describe/DescribeFormat.h"

ZEL_NAMESPACE_BEGIN
namespace {

// Length of the valid UTF-8 sequence starting at text[i], 0 when invalid.
std::size_t utf8Length(std::string_view text, std::size_t i) {
  auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
  unsigned char c = byte(i);
  if (c < 0x80) return 1;
  std::size_t n = (c >= 0xC2 && c <= 0xDF) ? 2 : (c >= 0xE0 && c <= 0xEF) ? 3 : (c >= 0xF0 && c <= 0xF4) ? 4 : 0;
  if (n == 0 || i + n > text.size()) return 0;
  for (std::size_t k = 1; k < n; ++k)
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
  unsigned char c1 = byte(i + 1);
  if ((c == 0xE0 && c1 < 0xA0) || (c == 0xED && c1 > 0x9F)) return 0;  // overlong, surrogates
  if ((c == 0xF0 && c1 < 0x90) || (c == 0xF4 && c1 > 0x8F)) return 0;  // overlong, beyond U+10FFFF
  return n;
}

constexpr std::size_t kCompactKeys = 4;

bool isScalar(const ZelPlist& v) { return !v.isArray() && !v.isDictionary(); }

// True for an array or dictionary whose elements are all scalars.
bool onlyScalars(const ZelPlist& v) {
  if (const ZelPlist::Array* a = v.asArray()) return std::all_of(a->begin(), a->end(), isScalar);
  if (const ZelPlist::Dictionary* d = v.asDictionary())
    return std::all_of(d->begin(), d->end(), [](const auto& e) { return isScalar(e.second); });
  return false;
}

void appendEscaped(std::string& out, char c) {
  switch (c) {
    case '"': out += "\\\""; return;
    case '\\': out += "\\\\"; return;
    case '\n': out += "\\n"; return;
    case '\r': out += "\\r"; return;
    case '\t': out += "\\t"; return;
    case '\b': out += "\\b"; return;
    case '\f': out += "\\f"; return;
    default: break;
  }
  if (static_cast<unsigned char>(c) < 0x20) {
    std::array<char, 8> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
    out += buffer.data();
  } else {
    out += c;
  }
}

}  // namespace

void ZelJsonWriter::newline() {
  out_ += '\n';
  out_.append(2 * open_.size(), ' ');
}

void ZelJsonWriter::prepare() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (open_.empty()) return;
  Open& container = open_.back();
  if (container.count++ > 0) out_ += container.compact ? ", " : ",";
  if (!container.compact) newline();
}

void ZelJsonWriter::close(char bracket) {
  Open container = open_.empty() ? Open{} : open_.back();
  if (!open_.empty()) open_.pop_back();
  if (container.count > 0 && !container.compact) newline();
  out_ += bracket;
  if (open_.empty()) out_ += '\n';
}

void ZelJsonWriter::beginObject(bool compact) {
  prepare();
  out_ += '{';
  open_.push_back({0, compact || (!open_.empty() && open_.back().compact)});
}

void ZelJsonWriter::endObject() { close('}'); }

void ZelJsonWriter::beginArray(bool compact) {
  prepare();
  out_ += '[';
  open_.push_back({0, compact || (!open_.empty() && open_.back().compact)});
}

void ZelJsonWriter::endArray() { close(']'); }

void ZelJsonWriter::key(std::string_view name) {
  string(name);
  out_ += ": ";
  afterKey_ = true;
}

void ZelJsonWriter::string(std::string_view text) {
  prepare();
  out_ += '"';
  for (std::size_t i = 0; i < text.size();) {
    std::size_t n = utf8Length(text, i);
    if (n == 0) {
      out_ += "\xEF\xBF\xBD";  // U+FFFD
      ++i;
    } else if (n == 1) {
      appendEscaped(out_, text[i++]);
    } else {
      out_.append(text.substr(i, n));
      i += n;
    }
  }
  out_ += '"';
}

void ZelJsonWriter::boolean(bool flag) {
  prepare();
  out_ += flag ? "true" : "false";
}

void ZelJsonWriter::null() {
  prepare();
  out_ += "null";
}

void ZelJsonWriter::integer(std::int64_t value) {
  prepare();
  out_ += std::to_string(value);
}

void ZelJsonWriter::number(float value) {
  if (!std::isfinite(value)) return null();
  prepare();
  out_ += ZelFormatShortest(value);
}

void ZelJsonWriter::number(double value) {
  if (!std::isfinite(value)) return null();
  prepare();
  out_ += ZelFormatShortest(value);
}

void ZelJsonWriter::plist(const ZelPlist& value) {
  switch (value.kind()) {
    case ZelPlist::Kind::Null: return null();
    case ZelPlist::Kind::Boolean: return boolean(value.boolValue());
    case ZelPlist::Kind::Integer: return integer(value.integerValue());
    case ZelPlist::Kind::Real: return number(value.doubleValue());
    case ZelPlist::Kind::String: return string(value.stringValue());
    case ZelPlist::Kind::Data: return string(ZelBase64Encode(*value.asData()));
    case ZelPlist::Kind::Array:
      beginArray(onlyScalars(value));
      for (const ZelPlist& element : *value.asArray()) plist(element);
      return endArray();
    case ZelPlist::Kind::Dictionary:
      beginObject(value.count() <= kCompactKeys && onlyScalars(value));
      for (const auto& [name, element] : *value.asDictionary()) field(name, element);
      return endObject();
  }
}

void ZelJsonWriter::write(const std::vector<float>& values) {
  beginArray(true);
  for (float v : values) number(v);
  endArray();
}

void ZelJsonWriter::write(const std::vector<std::string>& values) {
  beginArray(true);
  for (const std::string& v : values) string(v);
  endArray();
}

void ZelJsonWriter::write(const ZelColor& color) {
  beginObject(true);
  field("red", color.red);
  field("green", color.green);
  field("blue", color.blue);
  field("alpha", color.alpha);
  endObject();
}

std::string ZelBase64Encode(const std::vector<std::uint8_t>& bytes) {
  static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t n = static_cast<std::uint32_t>(bytes[i]) << 16;
    if (i + 1 < bytes.size()) n |= static_cast<std::uint32_t>(bytes[i + 1]) << 8;
    if (i + 2 < bytes.size()) n |= bytes[i + 2];
    out += kAlphabet[(n >> 18) & 63];
    out += kAlphabet[(n >> 12) & 63];
    out += i + 1 < bytes.size() ? kAlphabet[(n >> 6) & 63] : '=';
    out += i + 2 < bytes.size() ? kAlphabet[n & 63] : '=';
  }
  return out;
}

ZEL_NAMESPACE_END
