// `json`: the whole model, every field under its member's name (its key's,
// but for the presets' value sets), in the order of the description's
// schema. "None" (an empty string, an empty list, an absent dictionary) is
// null; enumerations are
// their description words; colours are {red, green, blue, alpha}; layout and
// rule dictionaries are written as they stand. Clumps nest their parameters.
#include <string>

#include "app/describe/DescribeFormat.h"
#include "app/describe/DescribeJsonWriter.h"
#include "app/describe/DescribeTool.h"

ZEL_NAMESPACE_BEGIN
namespace {

namespace T = ZelKeyType;

// Each member under its name, by its key's type in the description's schema.
void put(ZelJsonWriter& j, std::string_view name, T::String, const std::string& value) {
  j.key(name);
  if (value.empty())
    j.null();
  else
    j.string(value);
}
template <class Type, class V>
void put(ZelJsonWriter& j, std::string_view name, Type, const V& value) {
  j.field(name, value);
}
template <class V>
void list(ZelJsonWriter& j, std::string_view name, const std::vector<V>& values) {
  if (values.empty()) {
    j.key(name);
    j.null();
  } else {
    j.field(name, values);
  }
}
void put(ZelJsonWriter& j, std::string_view name, T::Strings, const std::vector<std::string>& values) {
  list(j, name, values);
}
void put(ZelJsonWriter& j, std::string_view name, T::Numbers, const std::vector<float>& values) {
  list(j, name, values);
}
template <class E>
void put(ZelJsonWriter& j, std::string_view name, T::Enum, const E& value) {
  j.field(name, ZelEnumWord(value));
}
// Linked in the model, not written as fields.
template <class V>
void put(ZelJsonWriter&, std::string_view, T::Linked, const V&) {}
template <class V>
void put(ZelJsonWriter&, std::string_view, T::Children, const V&) {}

#define ZEL_JSON_FIELD(key, member, type) put(j, #member, T::type{}, record.member);

void metadata(ZelJsonWriter& j, const ZelMetadata& record) {
  j.beginObject();
  ZEL_METADATA_KEYS(ZEL_JSON_FIELD)
  j.endObject();
}

void parameterFields(ZelJsonWriter& j, const ZelParameter& record) { ZEL_PARAMETER_KEYS(ZEL_JSON_FIELD) }

void clump(ZelJsonWriter& j, const ZelClump& c) {
  j.beginObject();
  const ZelClump& record = c;
  ZEL_CLUMP_KEYS(ZEL_JSON_FIELD)
  j.key("parameters");
  j.beginArray();
  for (const auto& p : c.parameters) {
    j.beginObject();
    parameterFields(j, *p);
    j.endObject();
  }
  j.endArray();
  j.endObject();
}

void presets(ZelJsonWriter& j, const ZelPresets* presets) {
  j.key("presets");
  if (!presets) return j.null();
  j.beginObject();
  parameterFields(j, *presets);
  const ZelPresets& record = *presets;
  ZEL_PRESETS_KEYS(ZEL_JSON_FIELD)
  j.endObject();
}

#undef ZEL_JSON_FIELD

}  // namespace

int ZelDescribeJson(const ZelDescription& d, std::string& out) {
  const ZelConfig& config = *d.config;
  ZelJsonWriter j(out);
  j.beginObject();
  j.key("metadata");
  metadata(j, config.metadata());
  j.key("clumps");
  j.beginArray();
  config.enumerateClumps([&](const ZelClump& c) { clump(j, c); });
  j.endArray();
  presets(j, config.presets());
  j.field("categorizedPresets", config.categorizedPresets());
  j.field("numParameters", config.numParameters());
  j.field("identifier", config.identifier());
  j.endObject();
  return kDescribeOK;
}

ZEL_NAMESPACE_END
