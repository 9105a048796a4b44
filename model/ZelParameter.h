// One parameter of the description, as the editor sees it: identity, range
// and scaling, units and display text, control and appearance, and the rules
// that tie it to other parameters. Immutable after loading (only the
// non-owning `clump` back-reference is set by the loader).
//
// The value operations (positions, snapping, stepping, display text) are the
// only place in the editor where those are computed; they run on every drag
// event and host change, work in 32-bit floats and allocate nothing but the
// strings they fill.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/Geometry.h"
#include "toolkit/foundation/ZelColor.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

class ZelClump;
class ZelPluginLayout;

enum class ZelUnit : std::int32_t {
  Indexed = 0, Percent = 1, Boolean = 2, Degrees = 3, Decibels = 4, Hertz = 5, BPM = 6,
  Pan = 7, Milliseconds = 8, Generic = 9, Note = 10, DecibelsPerOctave = 11,
};
enum class ZelControlType : std::int32_t { Slider = 0, Boolean = 1, Cycle = 2, Number = 3, Toggle = 4, NoteSlider = 5, Preset = 6 };
enum class ZelControlStyle : std::int32_t { Default = 0, Pilled = 1, Filled = 2, Shadowed = 3 };
enum class ZelScope : std::int32_t { Self = 0, Global = 1, Clump = 2 };
enum class ZelLabelDisplay : std::int32_t { Below = 0, Above = 1, Left = 2, Right = 3, Hidden = 4 };
enum class ZelCueSymbolDisplay : std::int32_t { Below = 0, Above = 1, Hidden = 2, Inline = 3 };

// Granularity types: 0 normal, 1 fine, 2 coarse.
using ZelGranularityType = std::int32_t;
inline constexpr ZelGranularityType ZelGranularityNormal = 0;
inline constexpr ZelGranularityType ZelGranularityFine = 1;
inline constexpr ZelGranularityType ZelGranularityCoarse = 2;

class ZelParameter {
 public:
  // Builds the record from one parameter dictionary (`refs` is never
  // consulted; it is kept so every record is built the same way). A value
  // that is not a dictionary gives a record of defaults.
  explicit ZelParameter(const ZelPlist& dictionary, const ZelPlist& refs = ZelPlist::null());
  virtual ~ZelParameter() = default;
  ZelParameter(const ZelParameter&) = delete;
  ZelParameter& operator=(const ZelParameter&) = delete;

  // ---- Identity and names (empty string = none).
  std::int64_t pid = 0;
  std::int64_t indexInClump = 0;
  std::string name, codesafeName, aaxName, label, labelString, minimalName, hostClump;
  bool distinctLabel = false;

  // ---- Value and scaling.
  float minValue = 0, maxValue = 0, initialValue = 0;
  bool logarithmic = false, auLogarithmic = false, automatesSmoothly = false;
  float granularity = 0, fineGranularity = 0, coarseGranularity = 0;
  std::vector<float> coarseGranularityOptions;  // empty = none
  bool presetWildcard = false;

  // ---- Units and text.
  ZelUnit unit = ZelUnit::Percent;
  std::string unitSymbol, unitEnumIdentifier, customUnit, formatString;
  std::vector<std::string> stringValues;  // empty = none
  bool showsNegativeInfinity = false, substituteOffForMinimum = false;

  // ---- Control and appearance.
  ZelControlType controlType = ZelControlType::Slider;
  float controlScale = 0;
  ZelControlStyle controlStyle = ZelControlStyle::Default;
  ZelLabelDisplay labelDisplay = ZelLabelDisplay::Below;
  ZelPlist displacedFrame;  // array of 4 numbers, or null
  ZelPlist computedLayout;  // layout dictionary, or null
  ZelPlist border;          // array of 4 integers, or null
  bool horizontal = false;
  ZelColor color = ZelColor::rgb(0, 0, 0, 1);
  std::vector<float> tickmarks, minorTickmarks, cueValues, cueSymbolPositions;
  std::vector<std::string> cueSymbols;
  ZelCueSymbolDisplay cueSymbolDisplay = ZelCueSymbolDisplay::Below;

  // ---- Rules, kept as they stand (arrays indexed by value of arrays of
  // code names; channel-layout rules an array of dictionaries), or null.
  ZelScope scope = ZelScope::Self;
  ZelPlist highlights, dims, disables, hides, channelLayoutRules;

  // The clump that lists this parameter (set by the loader; not owned).
  ZelClump* clump = nullptr;

  // The code name as a NUL-terminated string.
  const char* C_codename() const { return codesafeName.c_str(); }

  // ---- Value operations (32-bit float arithmetic, no allocation beyond the
  // strings they fill). Const and free of shared state: safe on any thread.
  float percentageFromFloatValue(float value) const;
  float normalizedFloatValueFromPercent(float percent, ZelGranularityType granularity) const;
  float normalizeFloatValue(float value, ZelGranularityType granularity) const;
  float roundFloatValue(float value, ZelGranularityType granularity) const;
  float granularityValueForType(ZelGranularityType type, float value) const;
  float closestCoarseGranularityOptionToValue(float value, std::size_t* atIndex) const;
  float floatValueAfter(float value, bool cyclingForward) const;
  float valueRange() const { return maxValue - minValue; }
  // Fills `string` (never null) with the display text and, when given,
  // `suffix` with the unit suffix of `fromValue` (both are overwritten,
  // their capacity reused).
  void valueString(std::string* string, std::string* suffix, float fromValue) const;
  std::string_view unitSuffixFromUnit(ZelUnit unit) const;
  std::string displayStringFromCueValue(double cueValue) const;
  CGRect displacedRect() const;
  // The parameter's own layout inside `frame`, or nullptr without a
  // "computedLayout".
  std::unique_ptr<ZelPluginLayout> layoutForFrame(CGRect frame) const;
  CGRectEdge labelEdge() const;

 private:
  // "formatString" comes from a file and is never handed to printf
  // unchecked: it is checked once, when the record is built (a later change
  // of the field is not seen). Accepted: literal text, "%%", and at most one
  // conversion "%[flags][width][.precision]conv" with flags from "-+ #0",
  // width and precision of at most two digits each, and conv one of
  // f F e E g G a A (given the value as a double) or d i (given the value
  // truncated to an int). Anything else (%s, %n, %p, %c, a second
  // conversion, a `*` width, a `$` position, a length modifier) makes the
  // format invalid and its text empty, as does a missing "formatString".
  enum class FormatArgument : std::uint8_t { Invalid, None, Double, Int };
  static FormatArgument checkFormat(std::string_view format);
  // Writes the formatted value into `out` (capacity reused).
  void formatValue(std::string* out, float value) const;

  FormatArgument formatArgument_ = FormatArgument::Invalid;
};

ZEL_NAMESPACE_END
