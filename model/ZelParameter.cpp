// Building a parameter record from its dictionary in the description file.
#include "model/ZelParameter.h"

#include <utility>

#include "model/ZelFetch.h"

ZEL_NAMESPACE_BEGIN

namespace {

template <typename E>
using WordTable = std::initializer_list<std::pair<std::string_view, E>>;

// The value whose word is the key's text, matched exactly; anything else
// (unknown word, wrong case, another kind, absent) gives the fallback.
template <typename E>
E enumFromKey(const ZelPlist& dictionary, std::string_view key, WordTable<E> words, E fallback) {
  std::string_view text = FetchFromDictionary(dictionary, key).stringValue();
  for (const auto& [word, value] : words) {
    if (word == text) return value;
  }
  return fallback;
}

ZelUnit unitFrom(const ZelPlist& d) {
  using U = ZelUnit;
  return enumFromKey<U>(d, "unit",
                        {{"Indexed", U::Indexed}, {"Percent", U::Percent}, {"Boolean", U::Boolean},
                         {"Degrees", U::Degrees}, {"Decibels", U::Decibels}, {"Hertz", U::Hertz},
                         {"BPM", U::BPM}, {"Pan", U::Pan}, {"Milliseconds", U::Milliseconds},
                         {"Generic", U::Generic}, {"Note", U::Note},
                         {"DecibelsPerOctave", U::DecibelsPerOctave}},
                        U::Percent);
}

ZelControlType controlTypeFrom(const ZelPlist& d) {
  using C = ZelControlType;
  return enumFromKey<C>(d, "controlType",
                        {{"Slider", C::Slider}, {"Boolean", C::Boolean}, {"Cycle", C::Cycle}, {"Number", C::Number},
                         {"Toggle", C::Toggle}, {"NoteSlider", C::NoteSlider}, {"Preset", C::Preset}},
                        C::Slider);
}

ZelControlStyle controlStyleFrom(const ZelPlist& d) {
  using S = ZelControlStyle;
  return enumFromKey<S>(d, "controlStyle",
                        {{"Default", S::Default}, {"Pilled", S::Pilled}, {"Filled", S::Filled},
                         {"Shadowed", S::Shadowed}},
                        S::Default);
}

ZelScope scopeFrom(const ZelPlist& d) {
  using S = ZelScope;
  return enumFromKey<S>(d, "scope", {{"self", S::Self}, {"global", S::Global}, {"clump", S::Clump}}, S::Self);
}

ZelLabelDisplay labelDisplayFrom(const ZelPlist& d) {
  using L = ZelLabelDisplay;
  return enumFromKey<L>(d, "labelDisplay",
                        {{"below", L::Below}, {"above", L::Above}, {"left", L::Left}, {"right", L::Right},
                         {"hidden", L::Hidden}},
                        L::Below);
}

ZelCueSymbolDisplay cueSymbolDisplayFrom(const ZelPlist& d) {
  using C = ZelCueSymbolDisplay;
  return enumFromKey<C>(d, "cueSymbolDisplay",
                        {{"below", C::Below}, {"above", C::Above}, {"hidden", C::Hidden}, {"inline", C::Inline}},
                        C::Below);
}

// The channel-layout rules are a list of rule dictionaries; a dictionary is
// kept as it stands too. Other kinds read as absent.
ZelPlist arrayOrDictionary(const ZelPlist& d, std::string_view key) {
  const ZelPlist& v = FetchFromDictionary(d, key);
  return (v.isArray() || v.isDictionary()) ? v : ZelPlist::null();
}

void readIdentity(ZelParameter& p, const ZelPlist& d) {
  p.pid = d["pid"].integerValue();
  p.indexInClump = d["indexInClump"].integerValue();
  p.name = FetchString(d, "name");
  p.codesafeName = FetchString(d, "codesafeName");
  p.aaxName = FetchString(d, "aaxName");
  p.label = FetchString(d, "label");
  p.labelString = FetchString(d, "labelString");
  p.minimalName = FetchString(d, "minimalName");
  p.hostClump = FetchString(d, "hostClump");
  p.distinctLabel = d["distinctLabel"].boolValue();
}

void readScaling(ZelParameter& p, const ZelPlist& d) {
  p.minValue = d["minValue"].floatValue();
  p.maxValue = d["maxValue"].floatValue();
  p.initialValue = d["initialValue"].floatValue();
  p.logarithmic = d["logarithmic"].boolValue();
  p.auLogarithmic = d["auLogarithmic"].boolValue();
  p.automatesSmoothly = d["automatesSmoothly"].boolValue();
  p.granularity = d["granularity"].floatValue();
  p.fineGranularity = d["fineGranularity"].floatValue();
  p.coarseGranularity = d["coarseGranularity"].floatValue();
  p.coarseGranularityOptions = FetchFloats(d, "coarseGranularityOptions");
  p.presetWildcard = d["presetWildcard"].boolValue();
}

void readText(ZelParameter& p, const ZelPlist& d) {
  p.unit = unitFrom(d);
  p.unitSymbol = FetchString(d, "unitSymbol");
  p.unitEnumIdentifier = FetchString(d, "unitEnumIdentifier");
  p.customUnit = FetchString(d, "customUnit");
  p.formatString = FetchString(d, "formatString");
  p.stringValues = FetchStrings(d, "stringValues");
  p.showsNegativeInfinity = d["showsNegativeInfinity"].boolValue();
  p.substituteOffForMinimum = d["substituteOffForMinimum"].boolValue();
}

void readAppearance(ZelParameter& p, const ZelPlist& d) {
  p.controlType = controlTypeFrom(d);
  p.controlScale = d["controlScale"].floatValue();
  p.controlStyle = controlStyleFrom(d);
  p.labelDisplay = labelDisplayFrom(d);
  p.displacedFrame = FetchArray(d, "displacedFrame");
  p.computedLayout = FetchDictionary(d, "computedLayout");
  p.border = FetchArray(d, "border");
  p.horizontal = d["horizontal"].boolValue();
  p.color = FetchColor(d, "color");
  p.tickmarks = FetchFloats(d, "tickmarks");
  p.minorTickmarks = FetchFloats(d, "minorTickmarks");
  p.cueValues = FetchFloats(d, "cueValues");
  p.cueSymbols = FetchStrings(d, "cueSymbols");
  p.cueSymbolPositions = FetchFloats(d, "cueSymbolPositions");
  p.cueSymbolDisplay = cueSymbolDisplayFrom(d);
}

void readRules(ZelParameter& p, const ZelPlist& d) {
  p.scope = scopeFrom(d);
  p.highlights = FetchArray(d, "highlights");
  p.dims = FetchArray(d, "dims");
  p.disables = FetchArray(d, "disables");
  p.hides = FetchArray(d, "hides");
  p.channelLayoutRules = arrayOrDictionary(d, "channelLayoutRules");
}

}  // namespace

// "clump" is deliberately not read: the loader points `clump` at the clump
// that lists the record. A value that is not a dictionary answers null for
// every key, so every field keeps its default.
ZelParameter::ZelParameter(const ZelPlist& dictionary, const ZelPlist& /*refs*/) {
  readIdentity(*this, dictionary);
  readScaling(*this, dictionary);
  readText(*this, dictionary);
  readAppearance(*this, dictionary);
  readRules(*this, dictionary);
  formatArgument_ = formatString.empty() ? FormatArgument::Invalid : checkFormat(formatString);
}

ZEL_NAMESPACE_END
