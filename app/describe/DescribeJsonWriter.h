// A small streaming writer of pretty-printed JSON (two-space indent;
// property-list arrays of scalars and small dictionaries of scalars on one
// line). Strings
// are escaped and made valid UTF-8 (a byte that is not part of a valid UTF-8
// sequence becomes U+FFFD); non-finite numbers are written as null. The
// caller keeps objects and arrays balanced.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelColor.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

class ZelJsonWriter {
 public:
  explicit ZelJsonWriter(std::string& out) : out_(out) {}

  // A compact container keeps its elements on one line ("[1, 2]"); meant
  // for containers of scalars.
  void beginObject(bool compact = false);
  void endObject();
  void beginArray(bool compact = false);
  void endArray();
  // The key of the next value inside an object.
  void key(std::string_view name);

  void string(std::string_view text);
  void boolean(bool flag);
  void null();
  void integer(std::int64_t value);
  void number(float value);   // shortest text that reads back as the float
  void number(double value);  // shortest text that reads back as the double
  // A property-list value: data as a Base64 string, reals as numbers.
  void plist(const ZelPlist& value);

  // key(name) and then the value.
  template <class T>
  void field(std::string_view name, const T& value) {
    key(name);
    write(value);
  }

 private:
  void write(const std::string& v) { string(v); }
  void write(const char* v) { string(v); }
  void write(bool v) { boolean(v); }
  void write(std::int64_t v) { integer(v); }
  void write(std::int32_t v) { integer(v); }
  void write(float v) { number(v); }
  void write(double v) { number(v); }
  void write(const ZelPlist& v) { plist(v); }
  void write(const std::vector<float>& values);
  void write(const std::vector<std::string>& values);
  void write(const ZelColor& color);

  // Separator and indentation before a value or key.
  void prepare();
  void close(char bracket);
  void newline();

  std::string& out_;
  struct Open {
    std::size_t count = 0;  // elements so far
    bool compact = false;
  };
  std::vector<Open> open_;
  bool afterKey_ = false;
};

// Standard Base64 (RFC 4648) with padding.
std::string ZelBase64Encode(const std::vector<std::uint8_t>& bytes);

ZEL_NAMESPACE_END
