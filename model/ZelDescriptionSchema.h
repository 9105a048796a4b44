// The description format, written once: every key of every record, its
// type, the member that holds it, and the words of every enumeration with
// its default. The records' readers (model/), `zel-describe check` (the kind
// of every value), the JSON writer of `zel-describe json`, and the Python
// generators (tools/zel_description_schema.py reads this file) all follow
// these lists. Adding a key is one line here plus its use.
//
// Lists, one per record, in the order `zel-describe json` writes them:
//   ZEL_METADATA_KEYS   the "metadata" dictionary
//   ZEL_CLUMP_KEYS      a clump entry's "metadata" dictionary
//   ZEL_PARAMETER_KEYS  a parameter (clump entries' "parameters"), and the
//                       preset parameter ("presets")
//   ZEL_PRESETS_KEYS    what the preset parameter has besides
// Each entry is KEY(key, member, type). The key is the description's word,
// the member the record's field. The types:
//   String       text; "" is none                     Number   a real number
//   Integer      a whole number                       Boolean  YES/NO (numbers too)
//   Color        "#rrggbb" text                       Enum     one of its words
//   Dictionary   any dictionary                       Array    any array
//   Layout       a layout dictionary (width, height, matrix of cells)
//   Strings      an array of texts                    Numbers  an array of numbers
//   NameLists    an array of arrays of code names (the rules)
//   StringTable  a dictionary of texts                Inset    {x, y}
//   Constraints  a dictionary of {height}             ValueSets an array of
//                                                     dictionaries of numbers
//   ChannelRules an array of {map, disabled, immutable} (a dictionary is kept)
//   Linked       the record's clump: any value, not read (the loader links it)
//   Children     the clump's parameters: an array, read by the loader
// A missing key, or a value of the wrong kind, reads as none, NO, 0 or the
// enumeration's default; an unknown word gives the default.
//
// Enumerations: ZEL_ENUM(Type, default, WORDS) with WORDS a list of
// WORD("text", Enumerator), in the enumeration's order.
//
// Threading: constant data.
#pragma once

#include <string_view>
#include <utility>

#include "model/ZelClump.h"
#include "model/ZelParameter.h"

ZEL_NAMESPACE_BEGIN

// clang-format off
#define ZEL_METADATA_KEYS(KEY)                                           \
  KEY(classPrefix, classPrefix, String)                                  \
  KEY(pluginName, pluginName, String)                                    \
  KEY(pluginLongName, pluginLongName, String)                            \
  KEY(pluginURLSlug, pluginURLSlug, String)                              \
  KEY(pluginPackageName, pluginPackageName, String)                      \
  KEY(pluginID, pluginID, String)                                        \
  KEY(manufacturerID, manufacturerID, String)                            \
  KEY(pluginType, pluginType, String)                                    \
  KEY(version, version, String)                                          \
  KEY(versionHex, versionHex, String)                                    \
  KEY(versionInteger, versionInteger, Integer)                           \
  KEY(sha, sha, String)                                                  \
  KEY(tagline, tagline, String)                                          \
  KEY(companyName, companyName, String)                                  \
  KEY(catalog, catalog, String)                                          \
  KEY(beta, beta, Boolean)                                               \
  KEY(channelLayouts, channelLayouts, String)                            \
  KEY(channelLayoutsCount, channelLayoutsCount, Integer)                 \
  KEY(clumpsLayout, clumpsLayout, Layout)                                \
  KEY(advancedClumpsLayout, advancedClumpsLayout, Layout)                \
  KEY(clumpsLayout_iOS, clumpsLayout_iOS, Dictionary)                    \
  KEY(advancedClumpsLayout_iOS, advancedClumpsLayout_iOS, Dictionary)    \
  KEY(layoutParameterBased, layoutParameterBased, Boolean)               \
  KEY(logo, logo, String)                                                \
  KEY(width, width, Number)                                              \
  KEY(height, height, Number)                                            \
  KEY(inset, inset, Number)                                              \
  KEY(color, color, Color)                                               \
  KEY(hasParameterSketch, hasParameterSketch, Boolean)                   \
  KEY(genericHQParameter, genericHQParameter, String)                    \
  KEY(hasGenericHQMode, hasGenericHQMode, Boolean)                       \
  KEY(genericHQMultsBySampleRate, genericHQMultsBySampleRate, Dictionary) \
  KEY(parameterOrder, parameterOrder, Array)                             \
  KEY(tabOrder, tabOrder, Strings)                                       \
  KEY(hostClumps, hostClumps, Array)                                     \
  KEY(meterPorts, meterPorts, Array)

#define ZEL_CLUMP_KEYS(KEY)                                              \
  KEY(name, name, String)                                                \
  KEY(codesafeName, codesafeName, String)                                \
  KEY(label, label, String)                                              \
  KEY(labelString, labelString, String)                                  \
  KEY(inset, inset, Inset)                                               \
  KEY(clumpType, clumpType, Enum)                                        \
  KEY(showInteriorBorders, showInteriorBorders, Boolean)                 \
  KEY(computedLayout, computedLayout, Layout)                            \
  KEY(computedLayout_iOS, computedLayout_iOS, Dictionary)                \
  KEY(layoutConstraints, layoutConstraints, Constraints)                 \
  KEY(labelBorder, labelBorder, Numbers)                                 \
  KEY(taggedLabels, taggedLabels, StringTable)                           \
  KEY(layoutTags, layoutTags, Dictionary)                                \
  KEY(cid, cid, Integer)                                                 \
  KEY(parameters, parameters, Children)

#define ZEL_PARAMETER_KEYS(KEY)                                          \
  KEY(pid, pid, Integer)                                                 \
  KEY(indexInClump, indexInClump, Integer)                               \
  KEY(name, name, String)                                                \
  KEY(codesafeName, codesafeName, String)                                \
  KEY(aaxName, aaxName, String)                                          \
  KEY(label, label, String)                                              \
  KEY(labelString, labelString, String)                                  \
  KEY(distinctLabel, distinctLabel, Boolean)                             \
  KEY(minimalName, minimalName, String)                                  \
  KEY(hostClump, hostClump, String)                                      \
  KEY(clump, clump, Linked)                                              \
  KEY(unit, unit, Enum)                                                  \
  KEY(unitSymbol, unitSymbol, String)                                    \
  KEY(unitEnumIdentifier, unitEnumIdentifier, String)                    \
  KEY(customUnit, customUnit, String)                                    \
  KEY(logarithmic, logarithmic, Boolean)                                 \
  KEY(auLogarithmic, auLogarithmic, Boolean)                             \
  KEY(automatesSmoothly, automatesSmoothly, Boolean)                     \
  KEY(minValue, minValue, Number)                                        \
  KEY(maxValue, maxValue, Number)                                        \
  KEY(initialValue, initialValue, Number)                                \
  KEY(presetWildcard, presetWildcard, Boolean)                           \
  KEY(granularity, granularity, Number)                                  \
  KEY(fineGranularity, fineGranularity, Number)                          \
  KEY(coarseGranularity, coarseGranularity, Number)                      \
  KEY(coarseGranularityOptions, coarseGranularityOptions, Numbers)       \
  KEY(controlType, controlType, Enum)                                    \
  KEY(controlScale, controlScale, Number)                                \
  KEY(controlStyle, controlStyle, Enum)                                  \
  KEY(scope, scope, Enum)                                                \
  KEY(labelDisplay, labelDisplay, Enum)                                  \
  KEY(displacedFrame, displacedFrame, Numbers)                           \
  KEY(computedLayout, computedLayout, Layout)                            \
  KEY(border, border, Numbers)                                           \
  KEY(stringValues, stringValues, Strings)                               \
  KEY(formatString, formatString, String)                                \
  KEY(tickmarks, tickmarks, Numbers)                                     \
  KEY(minorTickmarks, minorTickmarks, Numbers)                           \
  KEY(cueValues, cueValues, Numbers)                                     \
  KEY(cueSymbols, cueSymbols, Strings)                                   \
  KEY(cueSymbolPositions, cueSymbolPositions, Numbers)                   \
  KEY(cueSymbolDisplay, cueSymbolDisplay, Enum)                          \
  KEY(horizontal, horizontal, Boolean)                                   \
  KEY(showsNegativeInfinity, showsNegativeInfinity, Boolean)             \
  KEY(substituteOffForMinimum, substituteOffForMinimum, Boolean)         \
  KEY(color, color, Color)                                               \
  KEY(channelLayoutRules, channelLayoutRules, ChannelRules)              \
  KEY(highlights, highlights, NameLists)                                 \
  KEY(dims, dims, NameLists)                                             \
  KEY(disables, disables, NameLists)                                     \
  KEY(hides, hides, NameLists)

#define ZEL_PRESETS_KEYS(KEY)                                            \
  KEY(values, presetValues, ValueSets)

#define ZEL_UNIT_WORDS(WORD)                                             \
  WORD("Indexed", Indexed) WORD("Percent", Percent) WORD("Boolean", Boolean) \
  WORD("Degrees", Degrees) WORD("Decibels", Decibels) WORD("Hertz", Hertz) \
  WORD("BPM", BPM) WORD("Pan", Pan) WORD("Milliseconds", Milliseconds)   \
  WORD("Generic", Generic) WORD("Note", Note)                            \
  WORD("DecibelsPerOctave", DecibelsPerOctave)
#define ZEL_CONTROL_TYPE_WORDS(WORD)                                     \
  WORD("Slider", Slider) WORD("Boolean", Boolean) WORD("Cycle", Cycle)   \
  WORD("Number", Number) WORD("Toggle", Toggle)                          \
  WORD("NoteSlider", NoteSlider) WORD("Preset", Preset)
#define ZEL_CONTROL_STYLE_WORDS(WORD)                                    \
  WORD("Default", Default) WORD("Pilled", Pilled) WORD("Filled", Filled) \
  WORD("Shadowed", Shadowed)
#define ZEL_SCOPE_WORDS(WORD)                                            \
  WORD("self", Self) WORD("global", Global) WORD("clump", Clump)
#define ZEL_LABEL_DISPLAY_WORDS(WORD)                                    \
  WORD("below", Below) WORD("above", Above) WORD("left", Left)           \
  WORD("right", Right) WORD("hidden", Hidden)
#define ZEL_CUE_SYMBOL_DISPLAY_WORDS(WORD)                               \
  WORD("below", Below) WORD("above", Above) WORD("hidden", Hidden)       \
  WORD("inline", Inline)
#define ZEL_CLUMP_TYPE_WORDS(WORD)                                       \
  WORD("Normal", Normal) WORD("Advanced", Advanced) WORD("PowerBox", PowerBox)

#define ZEL_ENUMS(ENUM)                                                  \
  ENUM(ZelUnit, Percent, ZEL_UNIT_WORDS)                                 \
  ENUM(ZelControlType, Slider, ZEL_CONTROL_TYPE_WORDS)                   \
  ENUM(ZelControlStyle, Default, ZEL_CONTROL_STYLE_WORDS)                \
  ENUM(ZelScope, Self, ZEL_SCOPE_WORDS)                                  \
  ENUM(ZelLabelDisplay, Below, ZEL_LABEL_DISPLAY_WORDS)                  \
  ENUM(ZelCueSymbolDisplay, Below, ZEL_CUE_SYMBOL_DISPLAY_WORDS)         \
  ENUM(ZelClumpType, Normal, ZEL_CLUMP_TYPE_WORDS)
// clang-format on

// The words of an enumeration, in its order, and its default.
template <typename E>
struct ZelEnumWords;

#define ZEL_SCHEMA_WORD_ENTRY(text, enumerator) {text, Type::enumerator},
#define ZEL_SCHEMA_ENUM_WORDS(T, byDefault, WORDS)                          \
  template <>                                                              \
  struct ZelEnumWords<T> {                                                 \
    using Type = T;                                                        \
    static constexpr std::pair<std::string_view, T> words[] = {WORDS(ZEL_SCHEMA_WORD_ENTRY)}; \
    static constexpr T fallback = T::byDefault;                            \
  };
ZEL_ENUMS(ZEL_SCHEMA_ENUM_WORDS)
#undef ZEL_SCHEMA_ENUM_WORDS
#undef ZEL_SCHEMA_WORD_ENTRY

// The value whose word is `text`, matched exactly; the default otherwise.
template <typename E>
constexpr E ZelEnumFromWord(std::string_view text) {
  for (const auto& [word, value] : ZelEnumWords<E>::words)
    if (word == text) return value;
  return ZelEnumWords<E>::fallback;
}

// The word of `value`; "" for a value outside the enumeration.
template <typename E>
constexpr std::string_view ZelWordForEnum(E value) {
  for (const auto& [word, v] : ZelEnumWords<E>::words)
    if (v == value) return word;
  return {};
}

// The types, as tags for the readers and writers to choose by.
namespace ZelKeyType {
struct String {};
struct Integer {};
struct Number {};
struct Boolean {};
struct Color {};
struct Enum {};
struct Dictionary {};
struct Array {};
struct Layout {};
struct Strings {};
struct Numbers {};
struct NameLists {};
struct StringTable {};
struct Inset {};
struct Constraints {};
struct ValueSets {};
struct ChannelRules {};
struct Linked {};
struct Children {};
}  // namespace ZelKeyType

ZEL_NAMESPACE_END
