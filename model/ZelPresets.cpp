#include "model/ZelPresets.h"

#include <cstdio>

#include "model/ZelConfig.h"
#include "model/ZelDescriptionRead.h"

ZEL_NAMESPACE_BEGIN

ZelPresets::ZelPresets(const ZelPlist& dictionary, const ZelPlist& refs) : ZelParameter(dictionary, refs) {
  const ZelPlist& d = dictionary;
  ZelPresets& record = *this;
  ZEL_PRESETS_KEYS(ZEL_READ_KEY)
}

const ZelPlist* ZelPresets::presetValueSetForValue(unsigned index) const {
  const ZelPlist& set = presetValues[index];
  return set.isDictionary() ? &set : nullptr;
}

const std::string* ZelPresets::presetNameForValue(unsigned index) const {
  return index < stringValues.size() ? &stringValues[index] : nullptr;
}

std::int64_t ZelPresets::presetKeyForPresetName(std::string_view name) const {
  for (std::size_t i = 0; i < stringValues.size(); ++i)
    if (stringValues[i] == name) return static_cast<std::int64_t>(i);
  return 0;
}

namespace {

const ZelPlist* valueSetOf(const ZelConfig& config, unsigned index) {
  const ZelPresets* presets = config.presets();
  return presets ? presets->presetValueSetForValue(index) : nullptr;
}

// How a value prints in the comparison: "%.7g" of the 32-bit float.
std::string printed(float value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.7g", static_cast<double>(value));
  return buffer;
}

bool entryMatches(const ZelPlist& entry, float current) {
  if (entry.isNumber()) return printed(entry.floatValue()) == printed(current);
  if (entry.isString()) return entry.stringValue() == printed(current);
  return false;
}

}  // namespace

std::vector<ZelPresetAssignment> ZelPresetAssignments(const ZelConfig& config, unsigned index) {
  const ZelPlist* set = valueSetOf(config, index);
  std::vector<ZelPresetAssignment> out;
  out.reserve(static_cast<std::size_t>(config.numParameters()));
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    if (p.presetWildcard) return;
    const ZelPlist& entry = set && !p.codesafeName.empty() ? (*set)[p.codesafeName] : ZelPlist::null();
    out.push_back({&p, entry.isNumber() ? entry.floatValue() : p.initialValue});
  });
  return out;
}

ZelPresetValueMap ZelPresetCurrentValues(const ZelConfig& config,
                                         const std::function<float(const ZelParameter&)>& currentValue) {
  ZelPresetValueMap out;
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    if (!p.presetWildcard && !p.codesafeName.empty()) out.insert_or_assign(p.codesafeName, currentValue(p));
  });
  return out;
}

bool ZelPresetValuesMatch(const ZelPlist* valueSet, const ZelPresetValueMap& current) {
  const ZelPlist::Dictionary* set = valueSet ? valueSet->asDictionary() : nullptr;
  if (!set || set->size() != current.size()) return false;
  auto c = current.begin();
  for (const auto& [key, entry] : *set) {  // both sorted by key
    if (key != c->first || !entryMatches(entry, c->second)) return false;
    ++c;
  }
  return true;
}

bool ZelPresetIsDirty(const ZelConfig& config, unsigned index,
                      const std::function<float(const ZelParameter&)>& currentValue) {
  return !ZelPresetValuesMatch(valueSetOf(config, index), ZelPresetCurrentValues(config, currentValue));
}

namespace {

ZelPresetEntry presetEntry(const ZelPlist& entry) {
  ZelPresetEntry out;
  out.name = FetchString(entry, "name");
  if (const ZelPlist& id = entry["presetID"]; id.isNumber()) out.presetID = id.integerValue();
  return out;
}

}  // namespace

std::vector<ZelPresetSection> ZelPresetSections(const ZelPlist& categorizedPresets) {
  std::vector<ZelPresetSection> out;
  const ZelPlist::Array* rows = categorizedPresets["sections"].asArray();
  if (!rows) return out;
  for (const ZelPlist& row : *rows) {
    if (!row["section"].isString()) continue;
    ZelPresetSection& section = out.emplace_back();
    section.title = std::string(row["section"].stringValue());
    const ZelPlist::Array* presets = row["presets"].asArray();
    section.expandable = presets != nullptr;
    if (!presets) continue;
    for (const ZelPlist& entry : *presets)
      if (entry.isDictionary()) section.presets.push_back(presetEntry(entry));
  }
  return out;
}

ZEL_NAMESPACE_END
