#include "app/manual/ManualTexts.h"

#include <set>

#include "model/ZelConfig.h"
#include "toolkit/foundation/ZelPlistReader.h"

ZEL_NAMESPACE_BEGIN

namespace {

// Reads one dictionary of texts keyed by code name into `out`, checking it
// against `known` (the description's code names, for `what`).
void readTable(const ZelPlist& value, std::string_view key, const std::set<std::string, std::less<>>& known,
               std::map<std::string, std::string, std::less<>>& out, std::vector<std::string>& errors) {
  const ZelPlist::Dictionary* table = value.asDictionary();
  if (!table) {
    errors.push_back(std::string(key) + ": expected a dictionary of texts by code name");
    return;
  }
  for (const auto& [name, text] : *table) {
    const std::string* s = text.asString();
    if (!known.contains(name)) {
      errors.push_back(std::string(key) + "." + name + ": the description has no such code name");
    } else if (!s) {
      errors.push_back(std::string(key) + "." + name + ": expected a string");
    } else if (s->find_first_not_of(" \t\n") == std::string::npos) {
      errors.push_back(std::string(key) + "." + name + ": the text is empty");
    } else {
      out[name] = *s;
    }
  }
  for (const std::string& name : known)
    if (!table->contains(name)) errors.push_back(std::string(key) + "." + name + ": no text for it");
}

void readFlow(const ZelPlist& value, ZelManualFlow& flow, std::vector<std::string>& errors) {
  if (value.isNull()) return;
  const ZelPlist::Dictionary* dict = value.asDictionary();
  const ZelPlist::Array* steps = dict ? value["steps"].asArray() : nullptr;
  if (!steps || steps->empty()) {
    errors.push_back("flow: expected a dictionary with a non-empty array of steps");
    return;
  }
  for (const auto& [key, v] : *dict) {
    (void)v;
    if (key != "steps" && key != "chainFirst" && key != "chainLast" && key != "chainLabel" && key != "note")
      errors.push_back("flow." + key + ": not a key of the flow (steps, chainFirst, chainLast, chainLabel, note)");
  }
  for (const ZelPlist& step : *steps) {
    const std::string* s = step.asString();
    if (!s || s->empty()) {
      errors.push_back("flow.steps: expected non-empty strings");
      return;
    }
    flow.steps.push_back(*s);
  }
  const auto count = static_cast<std::int64_t>(flow.steps.size());
  if (value.contains("chainFirst") || value.contains("chainLast")) {
    const std::int64_t first = value["chainFirst"].integerValue(), last = value["chainLast"].integerValue();
    if (first < 0 || last < first || last >= count) {
      errors.push_back("flow: chainFirst and chainLast are not steps in order");
    } else {
      flow.chainFirst = static_cast<int>(first);
      flow.chainLast = static_cast<int>(last);
    }
  }
  if (const std::string* s = value["chainLabel"].asString()) flow.chainLabel = *s;
  if (const std::string* s = value["note"].asString()) flow.note = *s;
}

}  // namespace

ZelManualTextsLoad ZelReadManualTexts(const ZelPlist& file, const ZelConfig& config) {
  ZelManualTextsLoad load;
  const ZelPlist::Dictionary* top = file.asDictionary();
  if (!top) {
    load.errors.push_back("the manual's texts are not a dictionary");
    return load;
  }
  for (const auto& [key, value] : *top) {
    (void)value;
    if (key != "overview" && key != "clumps" && key != "parameters" && key != "flow")
      load.errors.push_back(key + ": not a key of the manual's texts (overview, clumps, parameters, flow)");
  }
  const std::string* overview = file["overview"].asString();
  if (!overview || overview->empty()) load.errors.push_back("overview: expected a non-empty string");
  else load.texts.overview = *overview;

  std::set<std::string, std::less<>> clumps, parameters;
  config.enumerateClumps([&](const ZelClump& c) { clumps.insert(c.codesafeName); });
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) { parameters.insert(p.codesafeName); });
  readTable(file["clumps"], "clumps", clumps, load.texts.clumps, load.errors);
  readTable(file["parameters"], "parameters", parameters, load.texts.parameters, load.errors);
  readFlow(file["flow"], load.texts.flow, load.errors);
  return load;
}

ZelManualTextsLoad ZelLoadManualTexts(const std::string& path, const ZelConfig& config) {
  ZelPlistReadResult read = ZelPlistReadFile(path, true);
  if (read.value.isNull()) {
    ZelManualTextsLoad load;
    for (const auto& d : read.diagnostics) load.errors.push_back(path + ": " + d.message);
    if (load.errors.empty()) load.errors.push_back(path + ": cannot be read");
    return load;
  }
  return ZelReadManualTexts(read.value, config);
}

ZEL_NAMESPACE_END
