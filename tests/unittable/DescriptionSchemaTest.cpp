// The description's schema against everything that reads it: each record's
// reader fills the member of every key, zel-describe check knows the kind of
// every key, every enumeration word reads back to itself, and the Python
// tools (the parameter table, the Turtle, the description writers) read the
// same keys, types and words.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>

#include "model/ZelClump.h"
#include "model/ZelDescriptionCheck.h"
#include "model/ZelDescriptionSchema.h"
#include "model/ZelMetadata.h"
#include "model/ZelParameter.h"
#include "model/ZelPresets.h"

namespace zel {
namespace {

namespace T = ZelKeyType;
using D = ZelPlist::Dictionary;
using A = ZelPlist::Array;

ZelPlist str(const char* s) { return ZelPlist::string(s); }
ZelPlist num(double v) { return ZelPlist::real(v); }

// A value of the key's type that differs from what a missing key reads as.
template <class Type, class Member>
ZelPlist sample() {
  if constexpr (std::is_same_v<Type, T::String>) return str("x");
  if constexpr (std::is_same_v<Type, T::Integer> || std::is_same_v<Type, T::Number>) return num(7);
  if constexpr (std::is_same_v<Type, T::Boolean>) return ZelPlist::boolean(true);
  if constexpr (std::is_same_v<Type, T::Color>) return str("#102030");
  if constexpr (std::is_same_v<Type, T::Enum>) return str(std::string(std::end(ZelEnumWords<Member>::words)[-1].first).c_str());
  if constexpr (std::is_same_v<Type, T::Dictionary> || std::is_same_v<Type, T::Layout>)
    return ZelPlist::dictionary(D{{"width", num(1)}});
  if constexpr (std::is_same_v<Type, T::StringTable>) return ZelPlist::dictionary(D{{"a", str("x")}});
  if constexpr (std::is_same_v<Type, T::Inset>) return ZelPlist::dictionary(D{{"x", num(1)}});
  if constexpr (std::is_same_v<Type, T::Constraints>)
    return ZelPlist::dictionary(D{{"1", ZelPlist::dictionary(D{{"height", num(2)}})}});
  if constexpr (std::is_same_v<Type, T::Array> || std::is_same_v<Type, T::Numbers>) return ZelPlist::array(A{num(1)});
  if constexpr (std::is_same_v<Type, T::Strings>) return ZelPlist::array(A{str("x")});
  if constexpr (std::is_same_v<Type, T::NameLists>) return ZelPlist::array(A{ZelPlist::array(A{str("x")})});
  if constexpr (std::is_same_v<Type, T::ValueSets>) return ZelPlist::array(A{ZelPlist::dictionary(D{{"a", num(1)}})});
  if constexpr (std::is_same_v<Type, T::ChannelRules>)
    return ZelPlist::array(A{ZelPlist::dictionary(D{{"map", ZelPlist::array(A{num(1), num(1)})}})});
  return {};
}

template <class Type>
constexpr bool kLinked = std::is_same_v<Type, T::Linked> || std::is_same_v<Type, T::Children>;

// A dictionary holding only `key` gives a record whose member differs from
// the empty record's. 1 for a key that is read, 0 for one the loader fills.
template <class Record, class Type, class Owner, class M>
int expectRead(const char* key, M Owner::*member) {
  if constexpr (kLinked<Type>) {
    return 0;
  } else {
    const auto empty = std::make_unique<Record>(ZelPlist::dictionary({}));
    const auto read = std::make_unique<Record>(ZelPlist::dictionary(D{{key, sample<Type, M>()}}));
    EXPECT_FALSE((*read).*member == (*empty).*member) << key << " is not read into its member";
    return 1;
  }
}

#define ZEL_EXPECT_READ(key, member, type) keys += expectRead<Record, T::type>(#key, &Record::member);

TEST(DescriptionSchema, EveryKeyIsReadIntoItsMember) {
  int keys = 0;
  {
    using Record = ZelMetadata;
    ZEL_METADATA_KEYS(ZEL_EXPECT_READ)
  }
  {
    using Record = ZelClump;
    ZEL_CLUMP_KEYS(ZEL_EXPECT_READ)
  }
  {
    using Record = ZelParameter;
    ZEL_PARAMETER_KEYS(ZEL_EXPECT_READ)
  }
  {
    using Record = ZelPresets;
    ZEL_PARAMETER_KEYS(ZEL_EXPECT_READ)
    ZEL_PRESETS_KEYS(ZEL_EXPECT_READ)
  }
  EXPECT_GT(keys, 100);  // the lists expanded
}
#undef ZEL_EXPECT_READ

// Puts `value` under `key` in the record `where` of an otherwise empty
// description.
ZelPlist descriptionWith(std::string_view where, const char* key, ZelPlist value) {
  const ZelPlist record = ZelPlist::dictionary(D{{key, std::move(value)}});
  if (where == "metadata") return ZelPlist::dictionary(D{{"metadata", record}});
  if (where == "presets") return ZelPlist::dictionary(D{{"presets", record}});
  const ZelPlist entry = where == "clump" ? ZelPlist::dictionary(D{{"metadata", record}})
                                          : ZelPlist::dictionary(D{{"parameters", ZelPlist::array(A{record})}});
  return ZelPlist::dictionary(D{{"clumps", ZelPlist::array(A{entry})}});
}

// A value of no type but "any": text where a number is wanted, a number
// where text is.
template <class Type>
ZelPlist wrongKind() {
  if constexpr (std::is_same_v<Type, T::String> || std::is_same_v<Type, T::Color> || std::is_same_v<Type, T::Enum>)
    return num(5);
  return str("x");
}

// A value of the wrong kind under `key` is reported, at that key. 1 for a
// key whose kind is checked, 0 for one that takes any value.
template <class Type>
int expectReported(std::string_view where, const char* key) {
  if constexpr (std::is_same_v<Type, T::Linked>) {
    return 0;
  } else {
    const auto found = ZelCheckDescriptionKinds(descriptionWith(where, key, wrongKind<Type>()));
    EXPECT_EQ(found.size(), 1u) << where << "." << key;
    EXPECT_TRUE(!found.empty() && found[0].keyPath.ends_with(key)) << where << "." << key;
    return 1;
  }
}

#define ZEL_EXPECT_REPORTED(key, member, type) keys += expectReported<T::type>(where, #key);

TEST(DescriptionSchema, ZelDescribeCheckKnowsTheKindOfEveryKey) {
  int keys = 0;
  std::string_view where = "metadata";
  ZEL_METADATA_KEYS(ZEL_EXPECT_REPORTED)
  where = "clump";
  ZEL_CLUMP_KEYS(ZEL_EXPECT_REPORTED)
  where = "parameter";
  ZEL_PARAMETER_KEYS(ZEL_EXPECT_REPORTED)
  where = "presets";
  ZEL_PARAMETER_KEYS(ZEL_EXPECT_REPORTED)
  ZEL_PRESETS_KEYS(ZEL_EXPECT_REPORTED)
  EXPECT_GT(keys, 100);  // the lists expanded
  // A key the format does not have is not the check's business.
  EXPECT_TRUE(ZelCheckDescriptionKinds(descriptionWith("parameter", "noSuchKey", num(1))).empty());
}
#undef ZEL_EXPECT_REPORTED

template <class E>
void expectWordsReadBack() {
  for (const auto& [word, value] : ZelEnumWords<E>::words) {
    EXPECT_EQ(ZelEnumFromWord<E>(word), value) << word;
    EXPECT_EQ(ZelWordForEnum(value), word);
  }
  // Exact words only: another case or an unknown word gives the default.
  EXPECT_EQ(ZelEnumFromWord<E>("NoSuchWord"), ZelEnumWords<E>::fallback);
  const std::string_view first = ZelEnumWords<E>::words[0].first;
  std::string shouted(first);
  for (char& c : shouted) c = static_cast<char>(c ^ 0x20);
  EXPECT_EQ(ZelEnumFromWord<E>(shouted), ZelEnumWords<E>::fallback) << shouted;
}

TEST(DescriptionSchema, EveryEnumerationWordReadsBackToItself) {
#define ZEL_EXPECT_WORDS(Type, byDefault, WORDS) expectWordsReadBack<Type>();
  ZEL_ENUMS(ZEL_EXPECT_WORDS)
#undef ZEL_EXPECT_WORDS
  // The defaults the editor relies on.
  EXPECT_EQ(ZelParameter(ZelPlist::dictionary({})).unit, ZelUnit::Percent);
  EXPECT_EQ(ZelParameter(ZelPlist::dictionary({})).scope, ZelScope::Self);
}

// The schema as the Python tools' reader prints it (--dump).
std::string cppDump() {
  std::string out;
  std::string record;
#define ZEL_DUMP_KEY(key, member, type) out += record + " " #key " " #member " " #type "\n";
  record = "metadata";
  ZEL_METADATA_KEYS(ZEL_DUMP_KEY)
  record = "clump";
  ZEL_CLUMP_KEYS(ZEL_DUMP_KEY)
  record = "parameter";
  ZEL_PARAMETER_KEYS(ZEL_DUMP_KEY)
  record = "presets";
  ZEL_PRESETS_KEYS(ZEL_DUMP_KEY)
#undef ZEL_DUMP_KEY
#define ZEL_DUMP_ENUM(Type, byDefault, WORDS)                                   \
  out += "enum " #Type " " + std::string(ZelWordForEnum(Type::byDefault));      \
  for (const auto& [word, value] : ZelEnumWords<Type>::words) out += " " + std::string(word); \
  out += "\n";
  ZEL_ENUMS(ZEL_DUMP_ENUM)
#undef ZEL_DUMP_ENUM
  return out;
}

TEST(DescriptionSchema, ThePythonToolsReadTheSameSchema) {
  const std::string script = std::string(ZEL_TEST_DATA_DIR) + "/../../model/tools/zel_description_schema.py";
  const std::string command = "python3 '" + script + "' --dump";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string python;
  char buffer[4096];
  for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) python.append(buffer, n);
  ASSERT_EQ(pclose(pipe), 0) << command;
  EXPECT_EQ(python, cppDump());
}

}  // namespace
}  // namespace zel
