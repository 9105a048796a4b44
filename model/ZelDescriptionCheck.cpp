#include "model/ZelDescriptionCheck.h"

#include <span>
#include <string>
#include <string_view>

#include "model/ZelDescriptionSchema.h"

ZEL_NAMESPACE_BEGIN

namespace {

using Findings = std::vector<ZelDiagnostic>;

// Where a value sits, as a chain of steps on the walker's stack; only turned
// into text when there is something to report.
struct Path {
  const Path* parent = nullptr;
  std::string_view key;  // a dictionary step, or
  std::size_t index = 0;  // an array step when `key` is empty and `parent` set
  bool isIndex = false;

  std::string text() const {
    std::string head = parent ? parent->text() : std::string();
    if (isIndex) return head + "[" + std::to_string(index) + "]";
    if (head.empty()) return std::string(key);
    return head + "." + std::string(key);
  }
  Path child(std::string_view k) const { return Path{this, k, 0, false}; }
  Path element(std::size_t i) const { return Path{this, {}, i, true}; }
};

using Check = void (*)(const ZelPlist& value, const Path& path, Findings& out);

struct Rule {
  std::string_view key;
  Check check;
};

std::string_view kindName(const ZelPlist& v) {
  switch (v.kind()) {
    case ZelPlist::Kind::Boolean: return "a boolean";
    case ZelPlist::Kind::Integer:
    case ZelPlist::Kind::Real: return "a number";
    case ZelPlist::Kind::String: return "a string";
    case ZelPlist::Kind::Data: return "data";
    case ZelPlist::Kind::Array: return "an array";
    case ZelPlist::Kind::Dictionary: return "a dictionary";
    default: return "nothing";
  }
}

void report(Findings& out, const Path& path, std::string_view expected, const ZelPlist& found) {
  out.push_back({ZelDiagnostic::Severity::Warning, path.text(),
                 "expected " + std::string(expected) + ", found " + std::string(kindName(found))});
}

// Strings, arrays and dictionaries are read so that "" and an empty array
// mean "none"; such values are never of the wrong kind.
bool readsAsAbsent(const ZelPlist& v) { return (v.isString() || v.isArray()) && v.count() == 0; }

void checkRecord(const ZelPlist& dict, const Path& path, std::span<const Rule> rules, Findings& out) {
  for (const Rule& rule : rules)
    if (const ZelPlist& v = dict[rule.key]; !v.isNull()) rule.check(v, path.child(rule.key), out);
}

// ---- Scalars.

void number(const ZelPlist& v, const Path& path, Findings& out) {
  if (v.kind() != ZelPlist::Kind::Integer && v.kind() != ZelPlist::Kind::Real) report(out, path, "a number", v);
}
void boolean(const ZelPlist& v, const Path& path, Findings& out) {
  if (v.kind() != ZelPlist::Kind::Boolean && v.kind() != ZelPlist::Kind::Integer && v.kind() != ZelPlist::Kind::Real)
    report(out, path, "a boolean", v);
}
void string(const ZelPlist& v, const Path& path, Findings& out) {
  if (!v.isString() && !readsAsAbsent(v)) report(out, path, "a string", v);
}
void anything(const ZelPlist&, const Path&, Findings&) {}

// ---- Containers.

bool isArray(const ZelPlist& v, const Path& path, Findings& out) {
  if (v.isArray() || readsAsAbsent(v)) return v.isArray();
  report(out, path, "an array", v);
  return false;
}
bool isDictionary(const ZelPlist& v, const Path& path, Findings& out) {
  if (v.isDictionary() || readsAsAbsent(v)) return v.isDictionary();
  report(out, path, "a dictionary", v);
  return false;
}

template <Check element> void arrayOf(const ZelPlist& v, const Path& path, Findings& out) {
  if (!isArray(v, path, out)) return;
  for (std::size_t i = 0; i < v.count(); ++i) element(v[i], path.element(i), out);
}
template <Check element> void dictionaryOf(const ZelPlist& v, const Path& path, Findings& out) {
  if (!isDictionary(v, path, out)) return;
  for (const auto& [key, e] : *v.asDictionary()) element(e, path.child(key), out);
}
template <const auto& rules> void record(const ZelPlist& v, const Path& path, Findings& out) {
  if (isDictionary(v, path, out)) checkRecord(v, path, rules, out);
}
void array(const ZelPlist& v, const Path& path, Findings& out) { isArray(v, path, out); }
void dictionary(const ZelPlist& v, const Path& path, Findings& out) { isDictionary(v, path, out); }

// ---- Layout dictionaries.

constexpr Rule kOriginRules[] = {{"x", number}, {"y", number}};
constexpr Rule kSizeRules[] = {{"w", number}, {"h", number}};
constexpr Rule kCellRules[] = {{"origin", record<kOriginRules>}, {"size", record<kSizeRules>}};
constexpr Rule kLayoutRules[] = {{"width", number}, {"height", number}, {"matrix", dictionaryOf<record<kCellRules>>}};
constexpr Rule kConstraintRules[] = {{"height", number}};
constexpr auto layout = record<kLayoutRules>;
constexpr auto constraints = dictionaryOf<record<kConstraintRules>>;

// ---- The records, from the description's schema.

constexpr Rule kInsetRules[] = {{"x", number}, {"y", number}};
constexpr Rule kChannelRuleRules[] = {{"map", arrayOf<number>}, {"disabled", anything}, {"immutable", number}};

// Rules keyed by channel layout: an array of rule dictionaries (a dictionary
// is accepted as it stands).
void channelLayoutRules(const ZelPlist& v, const Path& path, Findings& out) {
  if (v.isDictionary()) return;
  if (!v.isArray() && !readsAsAbsent(v)) return report(out, path, "an array", v);
  arrayOf<record<kChannelRuleRules>>(v, path, out);
}

// The check of each type of key.
template <class Type> constexpr Check kCheck = nullptr;
template <> constexpr Check kCheck<ZelKeyType::String> = string;
template <> constexpr Check kCheck<ZelKeyType::Integer> = number;
template <> constexpr Check kCheck<ZelKeyType::Number> = number;
template <> constexpr Check kCheck<ZelKeyType::Boolean> = boolean;
template <> constexpr Check kCheck<ZelKeyType::Color> = string;
template <> constexpr Check kCheck<ZelKeyType::Enum> = string;
template <> constexpr Check kCheck<ZelKeyType::Dictionary> = dictionary;
template <> constexpr Check kCheck<ZelKeyType::Array> = array;
template <> constexpr Check kCheck<ZelKeyType::Layout> = layout;
template <> constexpr Check kCheck<ZelKeyType::Strings> = arrayOf<string>;
template <> constexpr Check kCheck<ZelKeyType::Numbers> = arrayOf<number>;
template <> constexpr Check kCheck<ZelKeyType::NameLists> = arrayOf<arrayOf<string>>;
template <> constexpr Check kCheck<ZelKeyType::StringTable> = dictionaryOf<string>;
template <> constexpr Check kCheck<ZelKeyType::Inset> = record<kInsetRules>;
template <> constexpr Check kCheck<ZelKeyType::Constraints> = constraints;
template <> constexpr Check kCheck<ZelKeyType::ValueSets> = arrayOf<dictionaryOf<number>>;
template <> constexpr Check kCheck<ZelKeyType::ChannelRules> = channelLayoutRules;
template <> constexpr Check kCheck<ZelKeyType::Linked> = anything;
template <> constexpr Check kCheck<ZelKeyType::Children> = array;

#define ZEL_CHECK_RULE(key, member, type) {#key, kCheck<ZelKeyType::type>},
constexpr Rule kMetadataRules[] = {ZEL_METADATA_KEYS(ZEL_CHECK_RULE)};
constexpr Rule kClumpRules[] = {ZEL_CLUMP_KEYS(ZEL_CHECK_RULE)};
constexpr Rule kParameterRules[] = {ZEL_PARAMETER_KEYS(ZEL_CHECK_RULE)};
constexpr Rule kPresetsRules[] = {ZEL_PARAMETER_KEYS(ZEL_CHECK_RULE) ZEL_PRESETS_KEYS(ZEL_CHECK_RULE)};
#undef ZEL_CHECK_RULE

constexpr Rule kClumpEntryRules[] = {{"metadata", record<kClumpRules>},
                                     {"parameters", arrayOf<record<kParameterRules>>}};

constexpr Rule kPresetEntryRules[] = {{"name", string}, {"presetID", number}};
constexpr Rule kSectionRules[] = {{"section", string}, {"presets", arrayOf<record<kPresetEntryRules>>}};
constexpr Rule kCategorizedRules[] = {{"sections", arrayOf<record<kSectionRules>>}};

constexpr Rule kTopRules[] = {
    {"clumps", arrayOf<record<kClumpEntryRules>>},
    {"metadata", record<kMetadataRules>},
    {"presets", record<kPresetsRules>},
    {"categorizedPresets", record<kCategorizedRules>},
};

}  // namespace

std::vector<ZelDiagnostic> ZelCheckDescriptionKinds(const ZelPlist& description) {
  Findings out;
  if (!description.isDictionary()) {
    out.push_back({ZelDiagnostic::Severity::Error, "", "the top level is not a dictionary"});
    return out;
  }
  checkRecord(description, Path{}, kTopRules, out);
  return out;
}

ZEL_NAMESPACE_END
