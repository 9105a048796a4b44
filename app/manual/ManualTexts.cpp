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
    if (key != "overview" && key != "clumps" && key != "parameters")
      load.errors.push_back(key + ": not a key of the manual's texts (overview, clumps, parameters)");
  }
  const std::string* overview = file["overview"].asString();
  if (!overview || overview->empty()) load.errors.push_back("overview: expected a non-empty string");
  else load.texts.overview = *overview;

  std::set<std::string, std::less<>> clumps, parameters;
  config.enumerateClumps([&](const ZelClump& c) { clumps.insert(c.codesafeName); });
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) { parameters.insert(p.codesafeName); });
  readTable(file["clumps"], "clumps", clumps, load.texts.clumps, load.errors);
  readTable(file["parameters"], "parameters", parameters, load.texts.parameters, load.errors);
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
