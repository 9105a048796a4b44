// Value checks of every parameter: a usable range, steps that snapping can
// divide by, an initial value the control can show, marks inside the range
// and a value text.
#include <cmath>

#include "app/describe/DescribeCheck.h"
#include "app/describe/DescribeFormat.h"

ZEL_NAMESPACE_BEGIN
namespace {

bool inRange(const ZelParameter& p, float v) { return v >= p.minValue && v <= p.maxValue; }

void checkRange(const ZelParameter& p, const std::string& path, ZelCheckFindings& findings) {
  if (!std::isfinite(p.minValue) || !std::isfinite(p.maxValue))
    return findings.error(path, "minValue and maxValue must be finite");
  if (p.minValue > p.maxValue)
    findings.error(ZelKeyPath(path, "minValue"), "minValue " + ZelFormatShortest(p.minValue) + " is above maxValue " +
                                                     ZelFormatShortest(p.maxValue));
  else if (p.minValue == p.maxValue)
    findings.warning(ZelKeyPath(path, "maxValue"), "minValue equals maxValue: control positions are undefined");
  if (p.logarithmic && p.minValue <= 0)
    findings.error(ZelKeyPath(path, "minValue"), "a logarithmic parameter needs minValue above 0");
}

void checkSteps(const ZelParameter& p, const std::string& path, ZelCheckFindings& findings) {
  const std::pair<const char*, float> steps[] = {
      {"granularity", p.granularity}, {"fineGranularity", p.fineGranularity}, {"coarseGranularity", p.coarseGranularity}};
  for (const auto& [key, step] : steps) {
    if (!(step > 0) || !std::isfinite(step))
      findings.error(ZelKeyPath(path, key), "must be above 0: snapping divides by it");
  }
  for (std::size_t i = 0; i < p.coarseGranularityOptions.size(); ++i) {
    if (!inRange(p, p.coarseGranularityOptions[i]))
      findings.warning(ZelKeyPath(ZelKeyPath(path, "coarseGranularityOptions"), i), "outside minValue...maxValue");
  }
}

void checkInitial(const ZelParameter& p, const std::string& path, ZelCheckFindings& findings) {
  std::string key = ZelKeyPath(path, "initialValue");
  if (!inRange(p, p.initialValue))
    return findings.error(key, ZelFormatShortest(p.initialValue) + " is outside minValue...maxValue");
  if (!(p.fineGranularity > 0)) return;
  float shown = p.normalizeFloatValue(p.initialValue, ZelGranularityFine);
  if (shown != p.initialValue)
    findings.warning(key, ZelFormatShortest(p.initialValue) + " is off its fine step: the control shows " +
                              ZelFormatShortest(shown));
}

void checkMarks(const ZelParameter& p, const std::string& path, ZelCheckFindings& findings) {
  const std::pair<const char*, const std::vector<float>*> marks[] = {
      {"tickmarks", &p.tickmarks}, {"minorTickmarks", &p.minorTickmarks}, {"cueValues", &p.cueValues}};
  for (const auto& [key, values] : marks) {
    for (std::size_t i = 0; i < values->size(); ++i) {
      if (!inRange(p, (*values)[i]))
        findings.warning(ZelKeyPath(ZelKeyPath(path, key), i), "outside minValue...maxValue");
    }
  }
}

// A value whose text comes from the format string, or none when every value
// of the range is shown otherwise.
std::optional<float> formattedProbe(const ZelParameter& p) {
  bool minimumReplaced = p.showsNegativeInfinity || p.substituteOffForMinimum;
  float probe = minimumReplaced ? p.maxValue : p.minValue;
  if (p.unit == ZelUnit::Hertz && p.logarithmic && probe >= 1000) return std::nullopt;
  if (minimumReplaced && probe <= p.minValue) return std::nullopt;
  return probe;
}

void checkText(const ZelParameter& p, const std::string& path, ZelCheckFindings& findings) {
  if (!p.stringValues.empty()) {
    double steps = std::floor(static_cast<double>(p.maxValue) - p.minValue) + 1;
    if (p.unit == ZelUnit::Indexed && static_cast<double>(p.stringValues.size()) < steps)
      findings.warning(ZelKeyPath(path, "stringValues"),
                       std::to_string(p.stringValues.size()) + " names for " + ZelFormatShortest(steps) +
                           " values: the higher values show the last name");
    return;
  }
  std::optional<float> probe = formattedProbe(p);
  if (!probe) return;
  if (p.formatString.empty()) return findings.warning(path, "no formatString: the value has no text");
  std::string text;
  p.valueString(&text, nullptr, *probe);
  if (text.empty())
    findings.warning(ZelKeyPath(path, "formatString"), "'" + p.formatString + "' gives no text for a number");
}

void checkParameter(const ZelParameter& p, const std::string& path, ZelCheckFindings& findings) {
  checkRange(p, path, findings);
  checkSteps(p, path, findings);
  checkInitial(p, path, findings);
  checkMarks(p, path, findings);
  checkText(p, path, findings);
}

}  // namespace

void ZelCheckParameterValues(const ZelConfig& config, ZelCheckFindings& findings) {
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    checkParameter(p, path, findings);
  });
}

ZEL_NAMESPACE_END
