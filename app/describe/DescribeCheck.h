// The checks behind `check`, each a function over the loaded model (and the
// raw description where the model keeps only part of it). Findings carry the
// key path of what they are about, in the model's diagnostic style:
//   clumps[2].parameters[0].minValue, presets.values[4].Cutoff
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "model/ZelConfig.h"
#include "toolkit/foundation/ZelPlistReader.h"

ZEL_NAMESPACE_BEGIN

class ZelCheckFindings {
 public:
  void error(std::string keyPath, std::string message);
  void warning(std::string keyPath, std::string message);
  void add(const ZelDiagnostic& diagnostic) { list_.push_back(diagnostic); }
  const std::vector<ZelDiagnostic>& list() const { return list_; }
  bool hasErrors() const;

 private:
  std::vector<ZelDiagnostic> list_;
};

// Calls `visit(parameter, clump, keyPath)` for every parameter in the
// model's order.
void ZelForEachParameter(const ZelConfig& config,
                         const std::function<void(const ZelParameter&, const ZelClump&, const std::string&)>& visit);
std::string ZelClumpPath(const ZelClump& clump);
// Parameters by name, built once so that checks stay linear in the size of
// the description. Pointers are owned by the configuration.
class ZelParameterIndex {
 public:
  explicit ZelParameterIndex(const ZelConfig& config);
  // The first parameter with that codesafeName (what rules and presets use).
  const ZelParameter* withCodeName(std::string_view name) const;
  // What parameterForCodename finds: the first parameter whose codesafeName
  // or minimalName equals the name.
  const ZelParameter* forCodename(std::string_view name) const;
  // The key path of a parameter of this configuration.
  const std::string& pathOf(const ZelParameter& p) const;
  const std::vector<const ZelParameter*>& parameters() const { return order_; }

 private:
  std::vector<const ZelParameter*> order_;
  std::vector<std::string> paths_;
  std::map<const ZelParameter*, std::size_t> position_;
  std::map<std::string, std::size_t, std::less<>> byCode_, byMinimal_;
};

// "'Cutoff'" or "pid 4" when the parameter has no code name.
std::string ZelParameterTitle(const ZelParameter& p);

// pids, code names and minimal names: missing, duplicated, out of range.
void ZelCheckIdentities(const ZelConfig& config, ZelCheckFindings& findings);
// Names used by the tab order, the interaction rules, the channel-layout
// rules and the HQ switch.
void ZelCheckReferences(const ZelConfig& config, ZelCheckFindings& findings);
// Ranges, steps, formats and marks of every parameter.
void ZelCheckParameterValues(const ZelConfig& config, ZelCheckFindings& findings);
// Preset names, value sets and the drawer's sections.
void ZelCheckPresets(const ZelConfig& config, ZelCheckFindings& findings);
// Grid layouts, in grid units and laid out over the editor's real bounds.
void ZelCheckLayouts(const ZelConfig& config, ZelCheckFindings& findings);
// Label and logo images ("base64," text).
void ZelCheckLabels(const ZelConfig& config, ZelCheckFindings& findings);

ZEL_NAMESPACE_END
