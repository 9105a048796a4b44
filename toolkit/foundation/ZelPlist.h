// An immutable property-list value: null, boolean, integer, real, string,
// data, array or dictionary. The description file is converted into this
// type once, by the reader (ZelPlistReader.h); nothing above the reader sees
// the parsing library.
//
// Values are cheap to copy (the tree is shared, never modified). Every
// accessor is total: asking a value of the wrong kind for its elements, its
// string or a key gives null or nullptr, never a crash, so a description with
// a string where a dictionary belongs reads as if the dictionary were absent.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelPlist {
 public:
  enum class Kind : std::uint8_t { Null, Boolean, Integer, Real, String, Data, Array, Dictionary };
  using Array = std::vector<ZelPlist>;
  using Dictionary = std::map<std::string, ZelPlist, std::less<>>;
  using Data = std::vector<std::uint8_t>;

  ZelPlist();  // null
  static ZelPlist boolean(bool value);
  static ZelPlist integer(std::int64_t value);
  static ZelPlist real(double value);
  static ZelPlist string(std::string value);
  static ZelPlist data(Data value);
  static ZelPlist array(Array value);
  static ZelPlist dictionary(Dictionary value);

  Kind kind() const;
  bool isNull() const { return kind() == Kind::Null; }
  bool isNumber() const { return kind() == Kind::Integer || kind() == Kind::Real || kind() == Kind::Boolean; }
  bool isString() const { return kind() == Kind::String; }
  bool isArray() const { return kind() == Kind::Array; }
  bool isDictionary() const { return kind() == Kind::Dictionary; }

  // The contents of a value of that kind; nullptr for any other kind.
  const std::string* asString() const;
  const Array* asArray() const;
  const Dictionary* asDictionary() const;
  const Data* asData() const;

  // The element for a key (dictionaries) or an index (arrays); a shared null
  // value when missing or when this value is of another kind.
  const ZelPlist& operator[](std::string_view key) const;
  const ZelPlist& operator[](std::size_t index) const;
  bool contains(std::string_view key) const;
  // Elements of an array or dictionary, characters of a string, 0 otherwise.
  std::size_t count() const;

  // Readings as the platform's number and string objects answer them:
  // booleans are 1/0, reals truncate toward zero for integers, strings are
  // parsed from their start ("12abc" reads 12, "YES" reads true); every other
  // kind reads 0 / false.
  bool boolValue() const;
  std::int64_t integerValue() const;
  int intValue() const;
  float floatValue() const;
  double doubleValue() const;

  // The string, or an empty view for any other kind.
  std::string_view stringValue() const;

  // Structural equality (an integer 1 and a real 1.0 are different values).
  friend bool operator==(const ZelPlist& a, const ZelPlist& b);

  static const ZelPlist& null();

 private:
  struct Node;
  explicit ZelPlist(std::shared_ptr<const Node> node);
  std::shared_ptr<const Node> node_;
};

ZEL_NAMESPACE_END
