// The loaded plug-in description: metadata, clumps (each owning its
// parameters), the preset parameter and the drawer's preset sections, with
// the lookups the editor uses.
//
// Ownership: the configuration owns its clumps, each clump its parameters;
// pointers handed out live as long as the configuration. Immutable after
// loading (only `identifier` is settable); reading is safe from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/ZelClump.h"
#include "model/ZelMetadata.h"
#include "model/ZelParameter.h"
#include "model/ZelPresets.h"
#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelPlistReader.h"

ZEL_NAMESPACE_BEGIN

class ZelPluginLayout;
class ZelConfig;

// A configuration together with everything found while reading it.
struct ZelConfigLoad {
  std::unique_ptr<ZelConfig> config;  // never null
  // The reader's errors (file missing, not a property list, ...) followed by
  // warnings about values of the wrong kind ("clumps[2].parameters[0].
  // minValue": "expected a number, found a string").
  std::vector<ZelDiagnostic> diagnostics;
};

class ZelConfig {
 public:
  // The empty model: no clumps, default metadata, no presets.
  ZelConfig();
  // Builds the model from the description's top-level dictionary; anything
  // else gives the empty model. Never throws on a malformed description.
  explicit ZelConfig(const ZelPlist& dictionary);
  ~ZelConfig();
  ZelConfig(const ZelConfig&) = delete;
  ZelConfig& operator=(const ZelConfig&) = delete;

  // "<directory>/<name>.plist" (the bundle's resources folder), or rather
  // "<name>.bplist" beside it when there is one that loads (the binary copy
  // the build writes into the LV2 bundle); the empty model when neither
  // loads. Never null.
  static std::unique_ptr<ZelConfig> configNamed(std::string_view name, const std::string& directory);
  // Load a description file or bytes, with diagnostics (see ZelConfigLoad).
  // `checkKinds` false skips the walk for values of the wrong kind (its
  // warnings): for callers that only want the model and the reader's errors.
  static ZelConfigLoad loadFile(const std::string& path, bool checkKinds = true);
  static ZelConfigLoad loadData(const void* bytes, std::size_t size, bool checkKinds = true);

  const ZelMetadata& metadata() const { return metadata_; }
  const std::vector<std::unique_ptr<ZelClump>>& clumps() const { return clumps_; }
  const ZelPresets* presets() const { return presets_.get(); }  // nullptr without "presets"
  // The raw "categorizedPresets" dictionary (null without presets); see
  // ZelPresetSections() for a structured view.
  const ZelPlist& categorizedPresets() const { return categorizedPresets_; }
  std::int64_t numParameters() const { return numParameters_; }
  std::int32_t identifier() const { return identifier_; }
  void setIdentifier(std::int32_t identifier) { identifier_ = identifier; }

  // (metadata width, metadata height).
  CGSize preferredSize() const;

  // ---- Enumeration, in file order. Blocks get `const ZelClump&` and
  // `const ZelParameter&`.
  template <class F> void enumerateClumps(F&& block) const {
    for (const auto& c : clumps_) block(*c);
  }
  template <class F> void enumerateClumpsOfType(ZelClumpType type, F&& block) const {
    for (const auto& c : clumps_)
      if (c->clumpType == type) block(*c);
  }
  // Clumps whose type shares a bit with `mask` (Normal clumps never do).
  template <class F> void enumerateClumpsOfTypes(std::int32_t mask, F&& block) const {
    for (const auto& c : clumps_)
      if ((static_cast<std::int32_t>(c->clumpType) & mask) != 0) block(*c);
  }
  // block(parameter, clump) for every parameter, clump order then parameter order.
  template <class F> void enumerateParameters(F&& block) const {
    for (const auto& c : clumps_)
      for (const auto& p : c->parameters) block(*p, *c);
  }
  // block(parameter, clump) for every parameter whose pid equals `pid`.
  template <class F> void executeBlockWithPid(std::int64_t pid, F&& block) const {
    for (const auto& c : clumps_)
      for (const auto& p : c->parameters)
        if (p->pid == pid) block(*p, *c);
  }

  std::vector<const ZelClump*> clumpsOfType(ZelClumpType type) const;
  bool hasAdvancedControls() const;

  // The first parameter with that pid; nullptr when none.
  const ZelParameter* parameterForPid(std::int64_t pid) const;
  // The first parameter whose codesafeName, or failing that whose
  // minimalName, equals `name` (both names tried on each parameter before
  // the next). An empty name matches nothing; nullptr when none.
  const ZelParameter* parameterForCodename(std::string_view name) const;

  // The editor layout over `bounds` ("clumpsLayout", or "advancedClumpsLayout"
  // for the advanced drawer), both counting every clump. Never null.
  std::unique_ptr<ZelPluginLayout> pluginLayoutForBounds(CGRect bounds) const;
  std::unique_ptr<ZelPluginLayout> advancedLayoutForBounds(CGRect bounds) const;

 private:
  static std::unique_ptr<ZelClump> makeClump(const ZelPlist& entry, std::int64_t cid);

  ZelMetadata metadata_;
  std::vector<std::unique_ptr<ZelClump>> clumps_;
  std::unique_ptr<ZelPresets> presets_;
  ZelPlist categorizedPresets_;
  std::int64_t numParameters_ = 0;
  std::int32_t identifier_ = 0;
};

ZEL_NAMESPACE_END
