// Text forms shared by the commands: numbers, enumeration words, key paths.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "model/ZelClump.h"
#include "model/ZelDescriptionSchema.h"
#include "model/ZelParameter.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

// printf "%.9g" of the value (the evaluation contract).
std::string ZelFormatG9(double value);
// The shortest text that reads back as the same float / double ("0.1",
// "20000", "1e+10"); "nan", "inf", "-inf" for non-finite values.
std::string ZelFormatShortest(float value);
std::string ZelFormatShortest(double value);

// "x y w h" with "%.9g" each.
std::string ZelFormatRect(CGRect rect);

// The description's word for an enumeration value (the number itself for a
// value outside the enumeration).
template <class E>
std::string ZelEnumWord(E value) {
  const std::string_view word = ZelWordForEnum(value);
  return word.empty() ? std::to_string(static_cast<std::int32_t>(value)) : std::string(word);
}

// "#rrggbb" of a colour's components (alpha left out).
std::string ZelColorHex(const ZelColor& color);

// Key paths as the model's diagnostics write them: "a.b", "a[3]".
std::string ZelKeyPath(std::string_view base, std::string_view key);
std::string ZelKeyPath(std::string_view base, std::size_t index);

// The whole text as a number (decimal, "C" conventions, optional sign,
// "inf"/"nan" accepted); none for anything else.
std::optional<double> ZelParseNumber(std::string_view text);

ZEL_NAMESPACE_END
