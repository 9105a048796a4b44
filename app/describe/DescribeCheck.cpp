// `check`: every finding, one line each ("error: path: message" or
// "warning: path: message"): first the reader's and the kind checker's, then
// the model's own checks. Exit status 0 without errors, 1 with errors, 2
// when the file could not be read at all.
#include "app/describe/DescribeCheck.h"

#include <algorithm>

#include "app/describe/DescribeFormat.h"
#include "app/describe/DescribeTool.h"
#include "model/ZelDescriptionCheck.h"

ZEL_NAMESPACE_BEGIN

void ZelCheckFindings::error(std::string keyPath, std::string message) {
  list_.push_back({ZelDiagnostic::Severity::Error, std::move(keyPath), std::move(message)});
}

void ZelCheckFindings::warning(std::string keyPath, std::string message) {
  list_.push_back({ZelDiagnostic::Severity::Warning, std::move(keyPath), std::move(message)});
}

bool ZelCheckFindings::hasErrors() const {
  for (const ZelDiagnostic& d : list_)
    if (d.severity == ZelDiagnostic::Severity::Error) return true;
  return false;
}

std::string ZelClumpPath(const ZelClump& clump) { return ZelKeyPath("clumps", static_cast<std::size_t>(clump.cid)); }

void ZelForEachParameter(const ZelConfig& config,
                         const std::function<void(const ZelParameter&, const ZelClump&, const std::string&)>& visit) {
  config.enumerateClumps([&](const ZelClump& clump) {
    std::string base = ZelKeyPath(ZelClumpPath(clump), "parameters");
    for (std::size_t j = 0; j < clump.parameters.size(); ++j) visit(*clump.parameters[j], clump, ZelKeyPath(base, j));
  });
}

ZelParameterIndex::ZelParameterIndex(const ZelConfig& config) {
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    std::size_t i = order_.size();
    order_.push_back(&p);
    paths_.push_back(path);
    position_.emplace(&p, i);
    if (!p.codesafeName.empty()) byCode_.emplace(p.codesafeName, i);
    if (!p.minimalName.empty()) byMinimal_.emplace(p.minimalName, i);
  });
}

const ZelParameter* ZelParameterIndex::withCodeName(std::string_view name) const {
  auto it = byCode_.find(name);
  return it == byCode_.end() ? nullptr : order_[it->second];
}

const ZelParameter* ZelParameterIndex::forCodename(std::string_view name) const {
  auto code = byCode_.find(name);
  auto minimal = byMinimal_.find(name);
  std::size_t best = order_.size();
  if (code != byCode_.end()) best = code->second;
  if (minimal != byMinimal_.end()) best = std::min(best, minimal->second);
  return best < order_.size() ? order_[best] : nullptr;
}

const std::string& ZelParameterIndex::pathOf(const ZelParameter& p) const { return paths_[position_.at(&p)]; }

std::string ZelParameterTitle(const ZelParameter& p) {
  if (!p.codesafeName.empty()) return "'" + p.codesafeName + "'";
  return "pid " + std::to_string(p.pid);
}

int ZelDescribeCheck(const ZelDescription& d, std::string& out) {
  ZelCheckFindings findings;
  for (const ZelDiagnostic& diagnostic : d.read.diagnostics) findings.add(diagnostic);
  if (d.readable()) {
    for (const ZelDiagnostic& diagnostic : ZelCheckDescriptionKinds(d.read.value)) findings.add(diagnostic);
  }
  if (d.read.value.isDictionary()) {
    const ZelConfig& config = *d.config;
    ZelCheckIdentities(config, findings);
    ZelCheckReferences(config, findings);
    ZelCheckParameterValues(config, findings);
    ZelCheckPresets(config, findings);
    ZelCheckLayouts(config, findings);
    ZelCheckLabels(config, findings);
  }
  for (const ZelDiagnostic& diagnostic : findings.list()) out += diagnostic.description() + "\n";
  if (!d.readable()) return kDescribeUnusable;
  return findings.hasErrors() ? kDescribeFindings : kDescribeOK;
}

ZEL_NAMESPACE_END
