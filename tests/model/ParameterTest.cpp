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
      {"unit", "", 1}, {"controlType", "Toggle", 4}, {"controlType", "slider", 0},
      {"controlStyle", "Shadowed", 3}, {"controlStyle", "pilled", 0}, {"scope", "clump", 2}, {"scope", "Global", 0},
      {"labelDisplay", "hidden", 4}, {"labelDisplay", "Above", 0}, {"cueSymbolDisplay", "inline", 3},
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
