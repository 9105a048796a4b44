// Identity and reference checks: every parameter reachable under one pid and
// one code name, and every name the description uses naming a parameter.
#include <map>

#include "app/describe/DescribeCheck.h"
#include "app/describe/DescribeFormat.h"

ZEL_NAMESPACE_BEGIN
namespace {

using PathByName = std::map<std::string, std::string, std::less<>>;

void checkPid(const ZelParameter& p, const std::string& path, std::int64_t count,
              std::map<std::int64_t, std::string>& seen, ZelCheckFindings& findings) {
  auto [it, inserted] = seen.emplace(p.pid, path);
  if (!inserted) findings.error(ZelKeyPath(path, "pid"), "pid " + std::to_string(p.pid) + " is also used by " + it->second);
  if (p.pid < 0 || p.pid >= count) {
    findings.error(ZelKeyPath(path, "pid"), "pid " + std::to_string(p.pid) + " is outside 0..." +
                                                std::to_string(count - 1) + ": the editor keeps one value per parameter, by pid");
  }
}

void checkCodeName(const ZelParameter& p, const std::string& path, PathByName& seen, ZelCheckFindings& findings) {
  if (p.codesafeName.empty()) {
    findings.warning(path, "no codesafeName: presets, rules and the tab order cannot name this parameter");
    return;
  }
  auto [it, inserted] = seen.emplace(p.codesafeName, path);
  if (!inserted) findings.error(ZelKeyPath(path, "codesafeName"), "'" + p.codesafeName + "' is also used by " + it->second);
}

void checkMinimalName(const ZelParameterIndex& index, const ZelParameter& p, const std::string& path,
                      ZelCheckFindings& findings) {
  if (p.minimalName.empty()) return;
  const ZelParameter* found = index.forCodename(p.minimalName);
  if (found && found != &p) {
    findings.warning(ZelKeyPath(path, "minimalName"),
                     "'" + p.minimalName + "' finds " + ZelParameterTitle(*found) + ", not this parameter");
  }
}

// One rule list ("highlights", "dims", ...): arrays of code names by value.
void checkRuleList(const ZelParameter& p, const ZelPlist& rule, const std::string& path,
                   const ZelParameterIndex& names, ZelCheckFindings& findings) {
  const ZelPlist::Array* elements = rule.asArray();
  if (!elements) return;
  for (std::size_t i = 0; i < elements->size(); ++i) {
    const ZelPlist::Array* list = (*elements)[i].asArray();
    if (!list) continue;  // the kind checker reports it
    std::string elementPath = ZelKeyPath(path, i);
    double at = static_cast<double>(i);
    if (!list->empty() && (at < p.minValue || at > p.maxValue))
      findings.warning(elementPath, "applies at value " + std::to_string(i) + ", outside minValue...maxValue");
    for (std::size_t k = 0; k < list->size(); ++k) {
      std::string_view name = (*list)[k].stringValue();
      if (!names.withCodeName(name))
        findings.error(ZelKeyPath(elementPath, k), "'" + std::string(name) + "' names no parameter");
    }
  }
}

void checkChannelRule(const ZelParameter& p, const ZelPlist& rule, const std::string& path,
                      ZelCheckFindings& findings) {
  if (!rule.isDictionary()) return findings.error(path, "a channel-layout rule must be a dictionary");
  const ZelPlist& map = rule["map"];
  if (!map.isArray() || map.count() != 2 || !map[std::size_t{0}].isNumber() || !map[std::size_t{1}].isNumber())
    findings.error(ZelKeyPath(path, "map"), "must be [input channels, output channels]");
  if (!rule.contains("immutable")) return;
  if (!rule.contains("disabled")) findings.warning(ZelKeyPath(path, "immutable"), "ignored without \"disabled\"");
  float value = rule["immutable"].floatValue();
  if (!(value >= p.minValue && value <= p.maxValue))
    findings.error(ZelKeyPath(path, "immutable"), ZelFormatShortest(value) + " is outside minValue...maxValue");
}

void checkRules(const ZelParameter& p, const std::string& path, const ZelParameterIndex& names,
                ZelCheckFindings& findings) {
  checkRuleList(p, p.highlights, ZelKeyPath(path, "highlights"), names, findings);
  checkRuleList(p, p.dims, ZelKeyPath(path, "dims"), names, findings);
  checkRuleList(p, p.disables, ZelKeyPath(path, "disables"), names, findings);
  checkRuleList(p, p.hides, ZelKeyPath(path, "hides"), names, findings);
  std::string rulesPath = ZelKeyPath(path, "channelLayoutRules");
  if (const ZelPlist::Array* rules = p.channelLayoutRules.asArray()) {
    for (std::size_t i = 0; i < rules->size(); ++i) checkChannelRule(p, (*rules)[i], ZelKeyPath(rulesPath, i), findings);
  } else if (p.channelLayoutRules.isDictionary()) {
    findings.error(rulesPath, "must be an array of rule dictionaries");
  }
}

void checkTabOrder(const ZelConfig& config, const ZelParameterIndex& names, ZelCheckFindings& findings) {
  const std::vector<std::string>& order = config.metadata().tabOrderNames;
  if (order.empty()) return;
  PathByName listed;
  for (std::size_t i = 0; i < order.size(); ++i) {
    std::string path = ZelKeyPath("metadata.tabOrder", i);
    if (!names.withCodeName(order[i])) findings.error(path, "'" + order[i] + "' names no parameter");
    if (!listed.emplace(order[i], path).second) findings.warning(path, "'" + order[i] + "' is listed twice");
  }
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump& c, const std::string& path) {
    bool reachable = c.clumpType == ZelClumpType::Normal || c.clumpType == ZelClumpType::Advanced;
    if (reachable && !p.codesafeName.empty() && listed.find(p.codesafeName) == listed.end())
      findings.warning(path, ZelParameterTitle(p) + " is not in metadata.tabOrder: the Tab key never reaches it");
  });
}

void checkHQ(const ZelConfig& config, ZelCheckFindings& findings) {
  const ZelMetadata& m = config.metadata();
  const ZelParameter* hq = m.genericHQParameter.empty() ? nullptr : config.parameterForCodename(m.genericHQParameter);
  if (m.hasGenericHQMode && !hq)
    findings.error("metadata.genericHQParameter", "'" + m.genericHQParameter + "' names no parameter");
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    bool shown = m.hasGenericHQMode && &p == hq && config.hasAdvancedControls();
    if (p.displacedFrame.isNull() || shown) return;
    findings.warning(ZelKeyPath(path, "displacedFrame"),
                     "only the high-quality switch of an editor with advanced clumps is placed by its displacedFrame; "
                     "this control is never shown");
  });
}

}  // namespace

void ZelCheckIdentities(const ZelConfig& config, ZelCheckFindings& findings) {
  std::map<std::int64_t, std::string> pids;
  PathByName names;
  ZelParameterIndex index(config);
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    checkPid(p, path, config.numParameters(), pids, findings);
    checkCodeName(p, path, names, findings);
    checkMinimalName(index, p, path, findings);
  });
  if (config.clumpsOfType(ZelClumpType::PowerBox).empty())
    findings.warning("clumps", "no clump of type PowerBox: the power strip has no controls");
}

void ZelCheckReferences(const ZelConfig& config, ZelCheckFindings& findings) {
  ZelParameterIndex names(config);
  checkTabOrder(config, names, findings);
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    checkRules(p, path, names, findings);
  });
  checkHQ(config, findings);
}

ZEL_NAMESPACE_END
