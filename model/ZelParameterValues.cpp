// The value operations of a parameter: positions, snapping, stepping and the
// texts of values and cue marks. All arithmetic is in 32-bit floats (the
// build compiles this file without floating-point contraction so results do
// not depend on the target's fused multiply-add), and nothing here allocates
// except the strings handed back.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelParameter.h"
#include "model/ZelTruncate.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::string_view kMinusInfinity = "-\xE2\x88\x9E";  // "-" U+221E

// Index into a list of `count` step texts: the value's whole part past the
// minimum, clamped to the list (values below the minimum give the first).
std::size_t stepIndex(float value, float minValue, std::size_t count) {
  float whole = static_cast<float>(ZelTruncateToInt32(value));
  float index = std::min(whole - minValue, static_cast<float>(count) - 1.0f);
  std::int32_t i = ZelTruncateToInt32(index);
  return i < 0 ? 0 : std::min(static_cast<std::size_t>(i), count - 1);
}

// A number as it describes itself: whole values without a fraction, others
// in the shortest text that reads back as the same 32-bit float.
std::string numberDescription(double n) {
  char buffer[64];
  if (std::isfinite(n) && n == std::trunc(n) && std::fabs(n) < 1e15) {
    int length = std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(n));
    return std::string(buffer, static_cast<std::size_t>(length));
  }
  auto result = std::to_chars(buffer, buffer + sizeof buffer, static_cast<float>(n));
  return std::string(buffer, result.ptr);
}

}  // namespace

// ---- Positions.

float ZelParameter::percentageFromFloatValue(float value) const {
  if (logarithmic) {
    float logMin = std::log(minValue);
    return (1.0f / (std::log(maxValue) - logMin)) * (std::log(value) - logMin) + 0.0f;
  }
  return (value - minValue) / (maxValue - minValue);
}

float ZelParameter::normalizedFloatValueFromPercent(float percent, ZelGranularityType type) const {
  float value;
  if (logarithmic) {
    float logMin = std::log(minValue);
    value = std::exp((std::log(maxValue) - logMin) * percent + logMin);
  } else {
    value = (maxValue - minValue) * percent + minValue;
  }
  return normalizeFloatValue(value, type);
}

// ---- Steps and snapping.

// Logarithmic frequencies never move finer than 10 Hz above 1 kHz nor finer
// than 100 Hz above 10 kHz, whatever the file says.
float ZelParameter::granularityValueForType(ZelGranularityType type, float value) const {
  float step = type == ZelGranularityFine ? fineGranularity : type == ZelGranularityCoarse ? coarseGranularity : granularity;
  if (unit == ZelUnit::Hertz && logarithmic && value >= 1000.0f) {
    step = std::max(step, value < 10000.0f ? 10.0f : 100.0f);
  }
  return step;
}

// Halves round away from zero. A step of 0 is not guarded: the result is
// an infinity or NaN, which the clamp of normalizeFloatValue then settles.
float ZelParameter::roundFloatValue(float value, ZelGranularityType type) const {
  float step = granularityValueForType(type, value);
  return std::round(value / step) * step;
}

// Ties go to the earlier option; no options give 0 at index 0.
float ZelParameter::closestCoarseGranularityOptionToValue(float value, std::size_t* atIndex) const {
  float best = std::numeric_limits<float>::max();
  float result = 0.0f;
  std::size_t index = 0;
  for (std::size_t k = 0; k < coarseGranularityOptions.size(); ++k) {
    float distance = std::fabs(coarseGranularityOptions[k] - value);
    if (best > distance) {
      result = coarseGranularityOptions[k];
      index = k;
    }
    best = std::min(best, distance);
  }
  if (atIndex) *atIndex = index;
  return result;
}

// The coarse option is itself rounded to the coarse step (an option off the
// step moves onto it). The clamp takes the maximum last, so min > max gives
// max, and a NaN from a zero step gives the minimum.
float ZelParameter::normalizeFloatValue(float value, ZelGranularityType type) const {
  if (type == ZelGranularityCoarse && !coarseGranularityOptions.empty()) {
    value = closestCoarseGranularityOptionToValue(value, nullptr);
  }
  value = roundFloatValue(value, type);
  return std::min(maxValue, std::max(minValue, value));
}

// Booleans toggle; indexed and percent values (percent being the default
// unit) step by the normal granularity and wrap; other units stay put.
float ZelParameter::floatValueAfter(float value, bool cyclingForward) const {
  if (unit == ZelUnit::Boolean) return ZelTruncateToInt32(value) == 0 ? 1.0f : 0.0f;
  if (unit != ZelUnit::Indexed && unit != ZelUnit::Percent) return value;
  if (cyclingForward) {
    float next = value + granularity;
    return next <= maxValue ? next : minValue;
  }
  float previous = value - granularity;
  return previous >= minValue ? previous : maxValue;
}

// ---- Texts.

std::string_view ZelParameter::unitSuffixFromUnit(ZelUnit forUnit) const {
  if (!unitSymbol.empty()) return unitSymbol;
  switch (forUnit) {
    case ZelUnit::Percent:
    case ZelUnit::Pan: return "%";
    case ZelUnit::Degrees: return "dg";
    case ZelUnit::Decibels: return "dB";
    case ZelUnit::Hertz: return "Hz";
    case ZelUnit::BPM: return "BPM";
    default: return "";
  }
}

// `string` must not be null; `suffix` may be.
void ZelParameter::valueString(std::string* string, std::string* suffix, float fromValue) const {
  float value = fromValue == 0.0f ? 0.0f : fromValue;  // never "-0"
  std::string_view unitText;
  if (!stringValues.empty()) {
    std::size_t i = stepIndex(value, minValue, stringValues.size());
    string->assign(cueSymbols.size() == stringValues.size() ? cueSymbols[i] : stringValues[i]);
  } else if (unit == ZelUnit::Hertz && value >= 1000.0f && logarithmic) {
    char buffer[64];
    float kilohertz = value / 1000.0f;
    int n = std::snprintf(buffer, sizeof buffer, kilohertz < 10.0f ? "%0.2f" : "%0.1f", static_cast<double>(kilohertz));
    string->assign(buffer, static_cast<std::size_t>(std::clamp(n, 0, static_cast<int>(sizeof buffer) - 1)));
    unitText = "kHz";
  } else {
    formatValue(string, value);
    unitText = unitSuffixFromUnit(unit);
  }
  if (minValue >= value) {
    if (showsNegativeInfinity) {
      string->assign(kMinusInfinity);  // the suffix stays: "-∞" "dB"
    } else if (substituteOffForMinimum) {
      string->assign("Off");
      unitText = {};
    }
  }
  if (suffix) suffix->assign(unitText);
}

// Frequencies print whole hertz below 1 kHz and whole kilohertz above,
// without a "k" (the scale beside the control says so). Other units mark
// positive cues of a signed range with "+".
std::string ZelParameter::displayStringFromCueValue(double cueValue) const {
  if (unit == ZelUnit::Hertz) {
    double shown = cueValue < 1000.0 ? cueValue : cueValue / 1000.0;
    return std::to_string(ZelTruncateToInt32(shown));
  }
  std::string text = numberDescription(cueValue);
  if (minValue < 0.0f && cueValue > 0.0) text.insert(0, 1, '+');
  return text;
}

// ---- Frames.

CGRect ZelParameter::displacedRect() const {
  if (displacedFrame.isNull()) return CGRectZero;
  return CGRectMake(displacedFrame[0].floatValue(), displacedFrame[1].floatValue(), displacedFrame[2].floatValue(),
                    displacedFrame[3].floatValue());
}

std::unique_ptr<ZelPluginLayout> ZelParameter::layoutForFrame(CGRect frame) const {
  if (computedLayout.isNull()) return nullptr;
  return ZelPluginLayout::layoutForLayout(computedLayout, frame, 1, ZelPlist::null());
}

CGRectEdge ZelParameter::labelEdge() const {
  switch (labelDisplay) {
    case ZelLabelDisplay::Below: return CGRectMinYEdge;
    case ZelLabelDisplay::Above: return CGRectMaxYEdge;
    case ZelLabelDisplay::Left: return CGRectMinXEdge;
    case ZelLabelDisplay::Right: return CGRectMaxXEdge;
    default: return CGRectMinXEdge;
  }
}

ZEL_NAMESPACE_END
