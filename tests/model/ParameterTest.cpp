// Reading a parameter record from its dictionary.
#include <gtest/gtest.h>

#include "model/ZelParameter.h"
#include "tests/model/ParameterFixtures.h"

using namespace zel;
using namespace zel_test;

namespace {

void ExpectDefaults(const ZelParameter& p) {
  EXPECT_TRUE(p.pid == 0 && p.name.empty() && p.minValue == 0 && !p.logarithmic && p.clump == nullptr);
  EXPECT_TRUE(p.unit == ZelUnit::Percent && p.controlType == ZelControlType::Slider);
  EXPECT_TRUE(p.labelDisplay == ZelLabelDisplay::Below && p.cueSymbolDisplay == ZelCueSymbolDisplay::Below);
  EXPECT_EQ(p.color, ZelColor::rgb(0, 0, 0, 1));
  EXPECT_TRUE(p.coarseGranularityOptions.empty() && p.stringValues.empty());
  EXPECT_TRUE(p.computedLayout.isNull() && p.displacedFrame.isNull() && p.channelLayoutRules.isNull());
}

}  // namespace

TEST(ParameterRecord, EmptyOrNonDictionaryGivesDefaults) {
  ExpectDefaults(*Param({}));
  ExpectDefaults(ZelParameter(ZelPlist::string("not a dictionary")));
  ExpectDefaults(ZelParameter(Numbers({1, 2})));
}

TEST(ParameterRecord, EnumerationsMatchExactWordsOnly) {
  struct Case { const char* key; const char* word; int expected; };
  const Case cases[] = {
      {"unit", "Hertz", 5}, {"unit", "hertz", 1}, {"unit", "DecibelsPerOctave", 11}, {"unit", "Indexed", 0},
      {"unit", "Boolean", 2}, {"unit", "Generic", 9}, {"unit", "", 1},
      {"controlType", "Toggle", 4}, {"controlType", "Boolean", 1}, {"controlType", "Preset", 6},
      {"controlType", "slider", 0}, {"controlStyle", "Shadowed", 3}, {"controlStyle", "pilled", 0},
      {"scope", "clump", 2}, {"scope", "global", 1}, {"scope", "Global", 0},
      {"labelDisplay", "hidden", 4}, {"labelDisplay", "right", 3}, {"labelDisplay", "inline", 0},
      {"labelDisplay", "Above", 0}, {"cueSymbolDisplay", "inline", 3}, {"cueSymbolDisplay", "hidden", 2},
      {"cueSymbolDisplay", "left", 0},
  };
  for (const Case& c : cases) {
    auto p = Param({{c.key, Str(c.word)}});
    int got = std::string_view(c.key) == "unit"               ? int(p->unit)
              : std::string_view(c.key) == "controlType"      ? int(p->controlType)
              : std::string_view(c.key) == "controlStyle"     ? int(p->controlStyle)
              : std::string_view(c.key) == "scope"            ? int(p->scope)
              : std::string_view(c.key) == "labelDisplay"     ? int(p->labelDisplay)
                                                               : int(p->cueSymbolDisplay);
    EXPECT_EQ(got, c.expected) << c.key << " = \"" << c.word << "\"";
  }
  EXPECT_EQ(Param({{"unit", Num(5)}})->unit, ZelUnit::Percent);  // a number is not a word
}

TEST(ParameterRecord, ReadsEveryKeyOfARealisticDictionary) {
  auto p = Param({
      {"pid", ZelPlist::integer(7)}, {"indexInClump", ZelPlist::integer(2)}, {"name", Str("Cutoff")},
      {"codesafeName", Str("cutoff")}, {"minimalName", Str("Cut")}, {"labelString", Str("Freq")},
      {"distinctLabel", Yes()}, {"minValue", Num(20)}, {"maxValue", Num(20000)}, {"initialValue", Num(1000)},
      {"logarithmic", Yes()}, {"granularity", Num(1)}, {"fineGranularity", Num(0.1)},
      {"coarseGranularity", Num(100)}, {"coarseGranularityOptions", Numbers({100, 1000})},
      {"presetWildcard", Yes()}, {"unit", Str("Hertz")}, {"unitSymbol", Str("cps")},
      {"formatString", Str("%0.1f")}, {"showsNegativeInfinity", Yes()}, {"substituteOffForMinimum", Yes()},
      {"controlScale", Num(1.5)}, {"horizontal", Yes()}, {"color", Str("#FF8000")},
      {"tickmarks", Numbers({20, 200})}, {"minorTickmarks", Numbers({50})}, {"cueValues", Numbers({100, 1000})},
      {"cueSymbols", Strings({"a", "b"})}, {"cueSymbolPositions", Numbers({0.25})},
      {"displacedFrame", Numbers({1, 2, 3, 4})}, {"border", Numbers({0, 1, 0, 1})},
      {"computedLayout", ZelPlist::dictionary({{"rows", Numbers({1})}})},
      {"dims", ZelPlist::array({Strings({"a"})})}, {"hides", ZelPlist::array({Strings({"b"})})},
      {"channelLayoutRules", ZelPlist::array({ZelPlist::dictionary({{"map", Numbers({1, 2})}})})},
      {"clump", Str("Main")},
  });
  EXPECT_TRUE(p->pid == 7 && p->indexInClump == 2);
  EXPECT_STREQ(p->C_codename(), "cutoff");
  EXPECT_EQ(p->minimalName + p->labelString + p->unitSymbol, "CutFreqcps");
  EXPECT_TRUE(p->distinctLabel && p->logarithmic && p->presetWildcard && p->horizontal);
  EXPECT_TRUE(p->showsNegativeInfinity && p->substituteOffForMinimum);
  EXPECT_EQ((std::vector<float>{p->maxValue, p->initialValue, p->fineGranularity, p->coarseGranularity, p->controlScale}),
            (std::vector<float>{20000, 1000, 0.1f, 100, 1.5f}));
  EXPECT_EQ(p->coarseGranularityOptions, (std::vector<float>{100, 1000}));
  EXPECT_EQ(p->color, ZelColor::rgb(1, 128 / 255.0, 0, 1));
  EXPECT_EQ(p->tickmarks.size() + p->minorTickmarks.size() + p->cueValues.size(), 5u);
  EXPECT_EQ(p->cueSymbols, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(p->cueSymbolPositions, std::vector<float>{0.25f});
  EXPECT_TRUE(p->border.count() == 4 && p->computedLayout.isDictionary());
  EXPECT_TRUE(p->dims.isArray() && p->hides.isArray() && p->highlights.isNull());
  EXPECT_EQ(p->channelLayoutRules[0]["map"][1].integerValue(), 2);
  EXPECT_EQ(p->clump, nullptr);  // "clump" in the file is never read
}

TEST(ParameterRecord, EmptyAndWrongKindsReadAsAbsent) {
  auto p = Param({
      {"minimalName", Str("")}, {"name", Num(5)}, {"stringValues", ZelPlist::array({})},
      {"computedLayout", Numbers({1})}, {"displacedFrame", ZelPlist::dictionary({})},
      {"channelLayoutRules", Str("stereo")}, {"dims", Str("x")}, {"color", Str("")},
      {"minValue", Str("-12.5")}, {"logarithmic", Str("YES")}, {"coarseGranularityOptions", Strings({"5", "x"})},
  });
  EXPECT_TRUE(p->minimalName.empty() && p->name.empty() && p->stringValues.empty());
  EXPECT_TRUE(p->computedLayout.isNull() && p->displacedFrame.isNull());
  EXPECT_TRUE(p->channelLayoutRules.isNull() && p->dims.isNull());
  EXPECT_EQ(p->color, ZelColor::rgb(0, 0, 0, 1));
  // Numbers and booleans take the value's own reading.
  EXPECT_EQ(p->minValue, -12.5f);
  EXPECT_TRUE(p->logarithmic);
  EXPECT_EQ(p->coarseGranularityOptions, (std::vector<float>{5, 0}));
}
