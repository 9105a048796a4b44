// `eval`: one line per expression (several for preset-apply and frames),
// fields separated by one tab, numbers as "%.9g". A name that matches
// nothing prints "none".
#include <algorithm>
#include <cmath>
#include <limits>

#include "app/describe/DescribeEval.h"
#include "app/describe/DescribeFormat.h"
#include "app/describe/DescribeTool.h"

ZEL_NAMESPACE_BEGIN
namespace {

std::string line(const std::string& text) { return text + "\n"; }

// The argument as the 32-bit float the operations take (beyond the float
// range: an infinity, as the hardware conversion gives).
float toFloat(double value) {
  constexpr double kMax = std::numeric_limits<float>::max();
  if (value > kMax) return std::numeric_limits<float>::infinity();
  if (value < -kMax) return -std::numeric_limits<float>::infinity();
  return static_cast<float>(value);
}

std::string number(float value) { return line(ZelFormatG9(value)); }

// The value operations of one parameter.
std::string evaluateParameter(const ZelParameter& p, const ZelEvalExpression& e) {
  const std::string& verb = e.verb;
  float v = toFloat(e.numbers.empty() ? 0.0 : e.numbers.front());
  if (verb == "position") return number(p.percentageFromFloatValue(v));
  if (verb == "value") return number(p.normalizedFloatValueFromPercent(v, e.granularity));
  if (verb == "normalize") return number(p.normalizeFloatValue(v, e.granularity));
  if (verb == "round") return number(p.roundFloatValue(v, e.granularity));
  if (verb == "granularity") return number(p.granularityValueForType(e.granularity, v));
  if (verb == "cycle") return number(p.floatValueAfter(v, e.forward));
  if (verb == "text") {
    std::string text, suffix;
    p.valueString(&text, &suffix, v);
    return line(text + "\t" + suffix);
  }
  // cue: the cue number is handed over at full precision.
  return line(p.displayStringFromCueValue(e.numbers.front()));
}

std::string presetKey(const ZelConfig& config, const std::string& name) {
  const ZelPresets* presets = config.presets();
  if (!presets) return line("none");
  return line(std::to_string(presets->presetKeyForPresetName(name)));
}

// The values applying preset K gives, wildcards left out; "none" when there
// are no presets or K is not one of them.
std::string presetApply(const ZelConfig& config, double k) {
  const ZelPresets* presets = config.presets();
  if (!presets || std::isnan(k)) return line("none");
  double index = std::trunc(k);
  std::size_t count = std::max(presets->stringValues.size(), presets->presetValues.count());
  if (index < 0 || index >= static_cast<double>(count)) return line("none");
  std::string out;
  for (const ZelPresetAssignment& a : ZelPresetAssignments(config, static_cast<unsigned>(index)))
    out += a.parameter->codesafeName + "\t" + ZelFormatG9(a.value) + "\n";
  return out;
}

}  // namespace

std::string ZelEvaluate(const ZelConfig& config, const ZelEvalExpression& e) {
  if (e.verb == "preset-key") return presetKey(config, e.args.front());
  if (e.verb == "preset-apply") return presetApply(config, e.numbers.front());
  if (e.verb == "frames") return ZelEvaluateFrames(config, e.args.front(), e.numbers[0], e.numbers[1]);
  const ZelParameter* p = config.parameterForCodename(e.args.front());
  if (!p) return line("none");
  return evaluateParameter(*p, e);
}

int ZelDescribeEval(const ZelDescription& d, const std::vector<std::string>& words, std::string& out,
                    std::string& err) {
  std::string error;
  std::optional<std::vector<ZelEvalExpression>> expressions = ZelParseEvalExpressions(words, error);
  if (!expressions) {
    err = "zel-describe eval: " + error + "\n";
    return kDescribeUnusable;
  }
  for (const ZelEvalExpression& e : *expressions) out += ZelEvaluate(*d.config, e);
  return kDescribeOK;
}

ZEL_NAMESPACE_END
