// Preset checks: one value set per name, every value set naming parameters
// that exist with numbers in their range, and sets that read clean right
// after loading (the dirty test wants every non-wildcard parameter, with the
// value its control ends up holding). The drawer's sections must point at
// presets that exist.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>

#include "app/describe/DescribeCheck.h"
#include "app/describe/DescribeFormat.h"

ZEL_NAMESPACE_BEGIN
namespace {

// The number as the dirty test prints it.
std::string printed(float value) {
  std::array<char, 48> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.7g", static_cast<double>(value));
  return buffer.data();
}

void checkEntry(const ZelParameter* p, const std::string& key, const ZelPlist& value, const std::string& path,
                ZelCheckFindings& findings) {
  if (!p) return findings.error(path, "'" + key + "' names no parameter");
  if (p->presetWildcard) return findings.warning(path, "'" + key + "' is a preset wildcard: presets never set it");
  if (!value.isNumber()) return findings.error(path, "the value must be a number");
  float v = value.floatValue();
  if (!(v >= p->minValue && v <= p->maxValue))
    return findings.error(path, ZelFormatShortest(v) + " is outside " + ZelFormatShortest(p->minValue) + "..." +
                                    ZelFormatShortest(p->maxValue));
  float held = p->fineGranularity > 0 ? p->normalizeFloatValue(v, ZelGranularityFine) : v;
  if (printed(held) != printed(v))
    findings.warning(path, ZelFormatShortest(v) + " is off the parameter's step: the control holds " +
                               ZelFormatShortest(held) + " and the preset reads as changed");
}

// The parameters presets govern: not wildcards, named, first of their name.
std::vector<const ZelParameter*> governed(const ZelParameterIndex& index) {
  std::vector<const ZelParameter*> list;
  for (const ZelParameter* p : index.parameters())
    if (!p->presetWildcard && !p->codesafeName.empty() && index.withCodeName(p->codesafeName) == p) list.push_back(p);
  return list;
}

// The governed parameters a value set leaves out: a few by name, then how
// many more. Costs the set's own size plus a few lookups, whatever the
// number of parameters.
std::string leftOut(const ZelParameterIndex& index, const std::vector<const ZelParameter*>& governed,
                    const ZelPlist::Dictionary& set) {
  constexpr std::size_t kNamed = 8;
  std::size_t present = 0;
  for (const auto& entry : set) {
    const ZelParameter* p = index.withCodeName(entry.first);
    if (p && !p->presetWildcard) ++present;
  }
  std::size_t missing = governed.size() - present;
  std::string names;
  std::size_t named = 0;
  for (std::size_t i = 0; i < governed.size() && named < std::min(missing, kNamed); ++i) {
    if (set.find(governed[i]->codesafeName) != set.end()) continue;
    names += (names.empty() ? "" : ", ") + governed[i]->codesafeName;
    ++named;
  }
  if (missing > named) names += " and " + std::to_string(missing - named) + " more";
  return names;
}

void checkValueSet(const ZelParameterIndex& index, const std::vector<const ZelParameter*>& governed,
                   const ZelPlist& set, const std::string& path, ZelCheckFindings& findings) {
  const ZelPlist::Dictionary* entries = set.asDictionary();
  if (!entries) return findings.error(path, "a value set must be a dictionary");
  for (const auto& [key, value] : *entries) checkEntry(index.withCodeName(key), key, value, ZelKeyPath(path, key), findings);
  std::string missing = leftOut(index, governed, *entries);
  if (!missing.empty())
    findings.warning(path, "leaves out " + missing + ": they load their initial values and the preset reads as changed");
}

void checkNames(const ZelPresets& presets, ZelCheckFindings& findings) {
  const std::vector<std::string>& names = presets.stringValues;
  if (names.empty()) return findings.warning("presets.stringValues", "no preset names");
  std::map<std::string, std::size_t, std::less<>> seen;
  for (std::size_t i = 0; i < names.size(); ++i) {
    auto [it, inserted] = seen.emplace(names[i], i);
    if (!inserted)
      findings.warning(ZelKeyPath("presets.stringValues", i),
                       "'" + names[i] + "' is also preset " + std::to_string(it->second) + ": a request by name finds that one");
  }
  double last = static_cast<double>(names.size() - 1);
  if (presets.minValue != 0 || presets.maxValue != last)
    findings.warning("presets.maxValue", "the preset control steps through minValue...maxValue, which should be 0..." +
                                             ZelFormatShortest(last));
}

void checkValueSets(const ZelConfig& config, const ZelPresets& presets, ZelCheckFindings& findings) {
  const ZelPlist::Array* sets = presets.presetValues.asArray();
  if (!sets) return findings.error("presets.values", "no value sets: every preset loads the initial values");
  if (sets->size() != presets.stringValues.size())
    findings.error("presets.values", std::to_string(sets->size()) + " value sets for " +
                                         std::to_string(presets.stringValues.size()) + " preset names");
  ZelParameterIndex index(config);
  std::vector<const ZelParameter*> list = governed(index);
  for (std::size_t i = 0; i < sets->size(); ++i)
    checkValueSet(index, list, (*sets)[i], ZelKeyPath("presets.values", i), findings);
}

void checkSectionEntry(const ZelPresets& presets, const ZelPlist& entry, const std::string& path,
                       ZelCheckFindings& findings) {
  if (!entry.isDictionary()) return findings.error(path, "a preset entry must be a dictionary");
  if (!entry.contains("presetID")) return findings.warning(path, "no presetID: choosing it does nothing");
  double id = entry["presetID"].doubleValue();
  std::size_t count = presets.stringValues.size();
  if (!(id >= 0 && id < static_cast<double>(count)) || id != std::trunc(id))
    return findings.error(ZelKeyPath(path, "presetID"), ZelFormatShortest(id) + " is not a preset index");
  const std::string& name = presets.stringValues[static_cast<std::size_t>(id)];
  if (entry["name"].stringValue() != name)
    findings.warning(ZelKeyPath(path, "name"), "'" + std::string(entry["name"].stringValue()) + "' but preset " +
                                                   ZelFormatShortest(id) + " is '" + name + "'");
}

void checkSections(const ZelConfig& config, ZelCheckFindings& findings) {
  const ZelPlist& categorized = config.categorizedPresets();
  if (categorized.isNull() || !config.presets()) return;
  const ZelPlist::Array* sections = categorized["sections"].asArray();
  if (!sections) return findings.warning("categorizedPresets.sections", "no sections: the drawer lists nothing");
  for (std::size_t i = 0; i < sections->size(); ++i) {
    const ZelPlist& section = (*sections)[i];
    std::string path = ZelKeyPath("categorizedPresets.sections", i);
    if (section.isDictionary() && !section.contains("section"))
      findings.warning(path, "no \"section\" title: the row is not shown as a section");
    const ZelPlist::Array* entries = section["presets"].asArray();
    if (!entries) continue;
    for (std::size_t k = 0; k < entries->size(); ++k)
      checkSectionEntry(*config.presets(), (*entries)[k], ZelKeyPath(ZelKeyPath(path, "presets"), k), findings);
  }
}

}  // namespace

void ZelCheckPresets(const ZelConfig& config, ZelCheckFindings& findings) {
  const ZelPresets* presets = config.presets();
  if (!presets) return;
  checkNames(*presets, findings);
  checkValueSets(config, *presets, findings);
  checkSections(config, findings);
}

ZEL_NAMESPACE_END
