// How a record's member is read from its key, by the key's type in the
// description's schema (ZelDescriptionSchema.h). The records' constructors
// expand their key list with ZEL_READ_KEY.
//
// Threading: pure functions.
#pragma once

#include <string>
#include <vector>

#include "model/ZelDescriptionSchema.h"
#include "model/ZelFetch.h"

ZEL_NAMESPACE_BEGIN

namespace ZelDescriptionRead {

namespace T = ZelKeyType;

inline void read(const ZelPlist& d, std::string_view key, T::String, std::string& m) { m = FetchString(d, key); }
template <class I>
void read(const ZelPlist& d, std::string_view key, T::Integer, I& m) { m = d[key].integerValue(); }
inline void read(const ZelPlist& d, std::string_view key, T::Number, float& m) { m = d[key].floatValue(); }
inline void read(const ZelPlist& d, std::string_view key, T::Boolean, bool& m) { m = d[key].boolValue(); }
inline void read(const ZelPlist& d, std::string_view key, T::Color, ZelColor& m) { m = FetchColor(d, key); }
template <class E>
void read(const ZelPlist& d, std::string_view key, T::Enum, E& m) {
  m = ZelEnumFromWord<E>(FetchFromDictionary(d, key).stringValue());
}
// Dictionaries of any shape.
template <class Type>
  requires std::is_same_v<Type, T::Dictionary> || std::is_same_v<Type, T::Layout> ||
           std::is_same_v<Type, T::StringTable> || std::is_same_v<Type, T::Inset> ||
           std::is_same_v<Type, T::Constraints>
void read(const ZelPlist& d, std::string_view key, Type, ZelPlist& m) {
  m = FetchDictionary(d, key);
}
// Arrays kept as they stand.
template <class Type>
  requires std::is_same_v<Type, T::Array> || std::is_same_v<Type, T::NameLists> ||
           std::is_same_v<Type, T::ValueSets> || std::is_same_v<Type, T::Strings> ||
           std::is_same_v<Type, T::Numbers>
void read(const ZelPlist& d, std::string_view key, Type, ZelPlist& m) {
  m = FetchArray(d, key);
}
inline void read(const ZelPlist& d, std::string_view key, T::Strings, std::vector<std::string>& m) {
  m = FetchStrings(d, key);
}
inline void read(const ZelPlist& d, std::string_view key, T::Numbers, std::vector<float>& m) {
  m = FetchFloats(d, key);
}
// A list of rule dictionaries; a dictionary is kept as it stands too. Other
// kinds read as absent.
inline void read(const ZelPlist& d, std::string_view key, T::ChannelRules, ZelPlist& m) {
  const ZelPlist& v = FetchFromDictionary(d, key);
  m = (v.isArray() || v.isDictionary()) ? v : ZelPlist::null();
}
// Filled in by the loader.
template <class M>
void read(const ZelPlist&, std::string_view, T::Linked, M&) {}
template <class M>
void read(const ZelPlist&, std::string_view, T::Children, M&) {}

}  // namespace ZelDescriptionRead

// Reads `key` of dictionary `d` into member `member` of `record`.
#define ZEL_READ_KEY(key, member, type) \
  ZelDescriptionRead::read(d, #key, ZelKeyType::type{}, record.member);

ZEL_NAMESPACE_END
