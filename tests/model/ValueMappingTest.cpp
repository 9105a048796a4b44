// Positions, snapping, stepping and the texts of parameter values.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelParameter.h"
#include "tests/model/ParameterFixtures.h"

using namespace zel;
using namespace zel_test;

namespace {

std::unique_ptr<ZelParameter> LogHertz(ZelPlist::Dictionary extra = {}) {
  extra.insert({{"unit", Str("Hertz")}, {"logarithmic", Yes()}, {"minValue", Num(20)}, {"maxValue", Num(20000)},
                {"granularity", Num(1)}, {"formatString", Str("%0.1f")}});
  return Param(std::move(extra));
}

}  // namespace

TEST(ValueMapping, LinearPositionsRoundHalfAwayAndClamp) {
  auto p = Param({{"minValue", Num(0)}, {"maxValue", Num(100)}, {"granularity", Num(1)}});
  EXPECT_EQ(p->normalizedFloatValueFromPercent(0.125f, ZelGranularityNormal), 13.0f);
  EXPECT_EQ(p->normalizedFloatValueFromPercent(1.2f, ZelGranularityNormal), 100.0f);
  EXPECT_EQ(p->normalizedFloatValueFromPercent(-0.3f, ZelGranularityNormal), 0.0f);
  EXPECT_EQ(p->percentageFromFloatValue(25.0f), 0.25f);
  EXPECT_EQ(p->percentageFromFloatValue(150.0f), 1.5f);  // not clamped
  EXPECT_EQ(p->roundFloatValue(-2.5f, ZelGranularityNormal), -3.0f);
}

TEST(ValueMapping, LogarithmicHertzPositionsAndStepFloors) {
  auto p = LogHertz({{"coarseGranularity", Num(500)}});
  EXPECT_NEAR(p->percentageFromFloatValue(632.456f), 0.5f, 1e-6f);
  EXPECT_EQ(p->granularityValueForType(ZelGranularityNormal, 999.9f), 1.0f);
  EXPECT_EQ(p->granularityValueForType(ZelGranularityNormal, 9999.0f), 10.0f);
  EXPECT_EQ(p->granularityValueForType(ZelGranularityCoarse, 12000.0f), 500.0f);
  EXPECT_EQ(p->normalizeFloatValue(5005.0f, ZelGranularityNormal), 5010.0f);
  // Only logarithmic frequencies get the floors.
  auto linear = Param({{"unit", Str("Hertz")}, {"granularity", Num(1)}});
  EXPECT_EQ(linear->granularityValueForType(ZelGranularityNormal, 12000.0f), 1.0f);
}

TEST(ValueMapping, CoarseOptionsSnapTwiceAndTiesGoToTheEarlier) {
  auto p = Param({{"minValue", Num(0)}, {"maxValue", Num(10)}, {"granularity", Num(0.5)}, {"coarseGranularity", Num(2)},
                  {"coarseGranularityOptions", Numbers({0, 5, 10})}});
  std::size_t index = 99;
  EXPECT_EQ(p->closestCoarseGranularityOptionToValue(7.5f, &index), 5.0f);
  EXPECT_EQ(index, 1u);
  EXPECT_EQ(p->closestCoarseGranularityOptionToValue(9.0f, &index), 10.0f);
  EXPECT_EQ(index, 2u);
  EXPECT_EQ(p->normalizeFloatValue(7.4f, ZelGranularityCoarse), 6.0f);  // 5, then 5 / 2 = 2.5 -> 3 -> 6
  EXPECT_EQ(p->normalizeFloatValue(7.5f, ZelGranularityCoarse), 6.0f);
  EXPECT_EQ(p->normalizeFloatValue(7.4f, ZelGranularityNormal), 7.5f);  // options only for coarse
  auto none = Param({{"maxValue", Num(10)}, {"coarseGranularity", Num(4)}});
  EXPECT_EQ(none->closestCoarseGranularityOptionToValue(7.0f, &index), 0.0f);
  EXPECT_EQ(index, 0u);
  EXPECT_EQ(none->normalizeFloatValue(7.0f, ZelGranularityCoarse), 8.0f);
}

TEST(ValueMapping, ClampingWithInvertedRangeOrZeroStep) {
  auto inverted = Param({{"minValue", Num(10)}, {"maxValue", Num(0)}, {"granularity", Num(1)}});
  EXPECT_EQ(inverted->normalizeFloatValue(5.0f, ZelGranularityNormal), 0.0f);
  EXPECT_EQ(inverted->normalizeFloatValue(20.0f, ZelGranularityNormal), 0.0f);
  auto zeroStep = Param({{"minValue", Num(-1)}, {"maxValue", Num(1)}});
  EXPECT_FALSE(std::isfinite(zeroStep->roundFloatValue(0.5f, ZelGranularityNormal)));
  EXPECT_EQ(zeroStep->normalizeFloatValue(0.0f, ZelGranularityNormal), -1.0f);  // NaN settles on the minimum
}

TEST(ValueMapping, SteppingWrapsTogglesOrStays) {
  auto percent = Param({{"maxValue", Num(100)}, {"granularity", Num(10)}});  // no "unit": Percent
  auto indexed = Param({{"unit", Str("Indexed")}, {"minValue", Num(1)}, {"maxValue", Num(3)}, {"granularity", Num(1)}});
  auto boolean = Param({{"unit", Str("Boolean")}, {"maxValue", Num(1)}, {"granularity", Num(1)}});
  auto decibels = Param({{"unit", Str("Decibels")}, {"maxValue", Num(10)}, {"granularity", Num(1)}});
  struct Case { const ZelParameter* p; float from; bool forward; float to; };
  const Case cases[] = {
      {percent.get(), 100, true, 0}, {percent.get(), 90, true, 100}, {percent.get(), 0, false, 100},
      {indexed.get(), 3, true, 1}, {indexed.get(), 1, false, 3}, {boolean.get(), 0.7f, true, 1},
      {boolean.get(), -0.5f, false, 1}, {boolean.get(), 2, true, 0}, {decibels.get(), 4, true, 4},
  };
  for (const Case& c : cases) EXPECT_EQ(c.p->floatValueAfter(c.from, c.forward), c.to) << c.from;
}

TEST(ValueText, UnitSuffixesAndSymbolOverride) {
  auto p = Param({});
  const std::pair<ZelUnit, const char*> table[] = {
      {ZelUnit::Percent, "%"}, {ZelUnit::Pan, "%"}, {ZelUnit::Degrees, "dg"}, {ZelUnit::Decibels, "dB"},
      {ZelUnit::Hertz, "Hz"}, {ZelUnit::BPM, "BPM"}, {ZelUnit::Milliseconds, ""}, {ZelUnit::Indexed, ""}};
  for (auto [unit, text] : table) EXPECT_EQ(p->unitSuffixFromUnit(unit), text);
  auto x = Param({{"unit", Str("Decibels")}, {"unitSymbol", Str("x")}, {"formatString", Str("%0.1f")}});
  EXPECT_EQ(x->unitSuffixFromUnit(ZelUnit::Hertz), "x");
  EXPECT_EQ(Text(*x, 3), (std::pair<std::string, std::string>{"3.0", "x"}));
}

TEST(ValueText, KilohertzOnlyForLogarithmicFrequencies) {
  using T = std::pair<std::string, std::string>;
  auto p = LogHertz();
  EXPECT_EQ(Text(*p, 999.9f), (T{"999.9", "Hz"}));
  auto linear = Param({{"unit", Str("Hertz")}, {"maxValue", Num(20000)}, {"formatString", Str("%0.0f")}});
  EXPECT_EQ(Text(*linear, 1000), (T{"1000", "Hz"}));
}

TEST(ValueText, MinimumShowsInfinityOrOff) {
  using T = std::pair<std::string, std::string>;
  ZelPlist::Dictionary db = {{"unit", Str("Decibels")}, {"minValue", Num(-60)}, {"maxValue", Num(12)},
                             {"formatString", Str("%0.1f")}};
  auto plain = Param(db);
  db.insert({"substituteOffForMinimum", Yes()});
  auto off = Param(db);
  db.insert({"showsNegativeInfinity", Yes()});
  auto inf = Param(db);  // both flags: infinity wins
  EXPECT_EQ(Text(*inf, -60), (T{"-\u221E", "dB"}));
  EXPECT_EQ(Text(*inf, -70), (T{"-\u221E", "dB"}));
  EXPECT_EQ(Text(*inf, -59.9f), (T{"-59.9", "dB"}));
  EXPECT_EQ(Text(*off, -60), (T{"Off", ""}));
  EXPECT_EQ(Text(*plain, -60), (T{"-60.0", "dB"}));
  EXPECT_EQ(Text(*plain, -0.0f).first, "0.0");  // never "-0.0"
  std::string text;
  off->valueString(&text, nullptr, -60);  // the suffix is optional
  EXPECT_EQ(text, "Off");
}

TEST(ValueText, StringValuesTruncateClampAndDeferToCueSymbols) {
  using T = std::pair<std::string, std::string>;
  ZelPlist::Dictionary d = {{"unit", Str("Decibels")}, {"maxValue", Num(2)}, {"stringValues", Strings({"Off", "Low", "High"})}};
  auto p = Param(d);
  EXPECT_EQ(Text(*p, 1.9f), (T{"Low", ""}));
  EXPECT_EQ(Text(*p, 7), (T{"High", ""}));
  EXPECT_EQ(Text(*p, -3), (T{"Off", ""}));
  d["cueSymbols"] = Strings({"o", "l", "h"});
  EXPECT_EQ(Text(*Param(d), 2).first, "h");
  d["cueSymbols"] = Strings({"o", "l"});  // counts differ: the string values stay
  EXPECT_EQ(Text(*Param(d), 2).first, "High");
  d["minValue"] = Num(1);
  EXPECT_EQ(Text(*Param(d), 1).first, "Off");
}

TEST(ValueText, FormatStringsFromTheFileAreChecked) {
  const std::pair<const char*, const char*> cases[] = {
      {"%d", "2"}, {"%i dB", "2 dB"}, {"%+.2e", "+2.50e+00"}, {"%5.1f%%", "  2.5%"},
      {"%-6.1f|", "2.5   |"}, {"Auto", "Auto"}, {"%99.99f", nullptr},
      {"%s", ""}, {"%n", ""}, {"%d%d", ""}, {"%*f", ""}, {"%.300f", ""},
      {"%100f", ""}, {"%1$f", ""}, {"%lf", ""}, {"%x", ""}, {"%", ""}, {"%.1", ""}, {"%5%", ""},
  };
  for (auto [format, expected] : cases) {
    auto p = Param({{"maxValue", Num(10)}, {"formatString", Str(format)}});
    auto [text, suffix] = Text(*p, 2.5f);
    if (expected) EXPECT_EQ(text, expected) << format;
    else EXPECT_EQ(text.size(), 101u) << format;  // "2." and 99 decimals; the width does not bind
    EXPECT_EQ(suffix, "%") << format;
  }
  EXPECT_EQ(Text(*Param({{"maxValue", Num(1)}}), 0.5f).first, "");  // no format, no text
  auto huge = Param({{"maxValue", Num(1e30)}, {"formatString", Str("%d")}});
  EXPECT_EQ(Text(*huge, 1e20f).first, "2147483647");
}

TEST(ValueText, LongTextsAndReusedCapacity) {
  std::string literal(300, 'a');
  auto longFormat = Param({{"maxValue", Num(10)}, {"formatString", Str((literal + "%0.1f").c_str())}});
  EXPECT_EQ(Text(*longFormat, 2.5f).first, literal + "2.5");
  auto p = LogHertz();
  std::string text, suffix;
  text.reserve(64);
  suffix.reserve(16);
  const char* textData = text.data();
  const char* suffixData = suffix.data();
  for (float v : {20.0f, 999.0f, 5000.0f, 15000.0f}) p->valueString(&text, &suffix, v);
  EXPECT_EQ(text, "15.0");
  EXPECT_EQ(text.data(), textData);
  EXPECT_EQ(suffix.data(), suffixData);
}

TEST(CueText, HertzInWholeUnitsOthersSigned) {
  auto hz = LogHertz();
  auto signedDb = Param({{"unit", Str("Decibels")}, {"minValue", Num(-12)}, {"maxValue", Num(12)}});
  auto unsignedDb = Param({{"unit", Str("Decibels")}, {"maxValue", Num(12)}});
  struct Case { const ZelParameter* p; double cue; const char* text; };
  const Case cases[] = {
      {hz.get(), 2500, "2"}, {hz.get(), 999.9, "999"}, {hz.get(), 20000, "20"},
      {signedDb.get(), double(0.1f), "+0.1"}, {unsignedDb.get(), 6, "6"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.p->displayStringFromCueValue(c.cue), c.text) << c.cue;
}

TEST(ParameterFrames, DisplacedRectLayoutAndLabelEdge) {
  EXPECT_EQ(Param({{"displacedFrame", Numbers({10, 20, 30, 40})}})->displacedRect(), CGRectMake(10, 20, 30, 40));
  EXPECT_EQ(Param({{"displacedFrame", Numbers({1, 2})}})->displacedRect(), CGRectMake(1, 2, 0, 0));
  EXPECT_EQ(Param({})->displacedRect(), CGRectZero);
  EXPECT_EQ(Param({})->layoutForFrame(CGRectMake(0, 0, 50, 50)), nullptr);
  EXPECT_NE(Param({{"computedLayout", ZelPlist::dictionary({{"k", Num(1)}})}})->layoutForFrame(CGRectMake(0, 0, 50, 50)),
            nullptr);
  const std::pair<const char*, CGRectEdge> edges[] = {
      {"below", CGRectMinYEdge}, {"above", CGRectMaxYEdge}, {"left", CGRectMinXEdge},
      {"right", CGRectMaxXEdge}, {"hidden", CGRectMinXEdge}};
  for (auto [word, edge] : edges) EXPECT_EQ(Param({{"labelDisplay", Str(word)}})->labelEdge(), edge) << word;
}
