#include "model/ZelConfig.h"

#include <sys/stat.h>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelDescriptionCheck.h"
#include "model/ZelFetch.h"

ZEL_NAMESPACE_BEGIN

ZelConfig::ZelConfig() = default;
ZelConfig::~ZelConfig() = default;

// Entries and parameters that are not dictionaries are skipped; the clumps
// that remain keep their position in "clumps" as `cid`.
ZelConfig::ZelConfig(const ZelPlist& dictionary) {
  if (const ZelPlist::Array* entries = dictionary["clumps"].asArray()) {
    clumps_.reserve(entries->size());
    for (std::size_t i = 0; i < entries->size(); ++i) {
      if (!(*entries)[i].isDictionary()) continue;
      clumps_.push_back(makeClump((*entries)[i], static_cast<std::int64_t>(i)));
      numParameters_ += static_cast<std::int64_t>(clumps_.back()->parameters.size());
    }
  }
  metadata_ = ZelMetadata(dictionary["metadata"]);
  if (dictionary["presets"].isDictionary()) {
    presets_ = std::make_unique<ZelPresets>(dictionary["presets"]);
    categorizedPresets_ = FetchDictionary(dictionary, "categorizedPresets");
  }
}

std::unique_ptr<ZelClump> ZelConfig::makeClump(const ZelPlist& entry, std::int64_t cid) {
  auto clump = std::make_unique<ZelClump>(entry["metadata"]);
  clump->cid = cid;
  if (const ZelPlist::Array* parameters = entry["parameters"].asArray()) {
    clump->parameters.reserve(parameters->size());
    for (const ZelPlist& p : *parameters)
      if (p.isDictionary()) clump->addParameter(std::make_unique<ZelParameter>(p));
  }
  return clump;
}

std::unique_ptr<ZelConfig> ZelConfig::configNamed(std::string_view name, const std::string& directory) {
  std::string path = directory;
  if (!path.empty() && path.back() != '/') path += '/';
  path.append(name);
  // The bundle ships a binary copy made by the build beside the XML source:
  // the same description, read several times faster. Without it, the XML.
  struct stat info {};
  if (::stat((path + ".bplist").c_str(), &info) == 0 && S_ISREG(info.st_mode)) {
    ZelConfigLoad binary = loadFile(path + ".bplist", false);
    if (!binary.config->clumps().empty()) return std::move(binary.config);
  }
  path.append(".plist");
  return loadFile(path, false).config;  // the editor shows no diagnostics
}

namespace {

ZelConfigLoad buildConfig(ZelPlistReadResult read, bool checkKinds) {
  ZelConfigLoad load;
  load.diagnostics = std::move(read.diagnostics);
  if (!read.value.isDictionary()) {
    load.config = std::make_unique<ZelConfig>();
    return load;
  }
  if (checkKinds) {
    std::vector<ZelDiagnostic> kinds = ZelCheckDescriptionKinds(read.value);
    load.diagnostics.insert(load.diagnostics.end(), kinds.begin(), kinds.end());
  }
  load.config = std::make_unique<ZelConfig>(read.value);
  return load;
}

}  // namespace

ZelConfigLoad ZelConfig::loadFile(const std::string& path, bool checkKinds) {
  return buildConfig(ZelPlistReadFile(path), checkKinds);
}

ZelConfigLoad ZelConfig::loadData(const void* bytes, std::size_t size, bool checkKinds) {
  return buildConfig(ZelPlistReadData(bytes, size), checkKinds);
}

CGSize ZelConfig::preferredSize() const { return CGSizeMake(metadata_.width, metadata_.height); }

std::vector<const ZelClump*> ZelConfig::clumpsOfType(ZelClumpType type) const {
  std::vector<const ZelClump*> out;
  enumerateClumpsOfType(type, [&](const ZelClump& c) { out.push_back(&c); });
  return out;
}

bool ZelConfig::hasAdvancedControls() const {
  for (const auto& c : clumps_)
    if (c->clumpType == ZelClumpType::Advanced) return true;
  return false;
}

const ZelParameter* ZelConfig::parameterForPid(std::int64_t pid) const {
  for (const auto& c : clumps_)
    for (const auto& p : c->parameters)
      if (p->pid == pid) return p.get();
  return nullptr;
}

const ZelParameter* ZelConfig::parameterForCodename(std::string_view name) const {
  if (name.empty()) return nullptr;  // an absent name matches nothing
  for (const auto& c : clumps_)
    for (const auto& p : c->parameters)
      if (p->codesafeName == name || p->minimalName == name) return p.get();
  return nullptr;
}

std::unique_ptr<ZelPluginLayout> ZelConfig::pluginLayoutForBounds(CGRect bounds) const {
  return ZelPluginLayout::layoutForLayout(metadata_.clumpsLayout, bounds, static_cast<std::int64_t>(clumps_.size()),
                                          ZelPlist::null());
}

std::unique_ptr<ZelPluginLayout> ZelConfig::advancedLayoutForBounds(CGRect bounds) const {
  // Counts every clump, not only the advanced ones, as the editor layout does.
  return ZelPluginLayout::layoutForLayout(metadata_.advancedClumpsLayout, bounds,
                                          static_cast<std::int64_t>(clumps_.size()), ZelPlist::null());
}

ZEL_NAMESPACE_END
