#include "model/ZelPresets.h"

#include <gtest/gtest.h>

#include <map>

#include "model/ZelConfig.h"
#include "tests/model/ModelTestSupport.h"

using namespace zel;
using namespace zel_test;

namespace {

// Three parameters (one a preset wildcard) and presets over them.
std::unique_ptr<ZelConfig> presetConfig(const std::string& names, const std::string& values) {
  const std::string params =
      parameter(1, "gain", key("initialValue", num(-3))) + parameter(2, "mix", key("initialValue", integer(50))) +
      parameter(3, "bypass", key("presetWildcard", "<true/>") + key("initialValue", integer(1)));
  ZelConfigLoad load = loadDescription(
      clumps(clump("", params)) +
      key("presets", "<dict>" + key("stringValues", "<array>" + names + "</array>") + values + "</dict>"));
  return std::move(load.config);
}

std::string set(const std::string& entries) { return "<dict>" + entries + "</dict>"; }

std::map<std::string, float> applied(const ZelConfig& config, unsigned index) {
  std::map<std::string, float> out;
  for (const ZelPresetAssignment& a : ZelPresetAssignments(config, index)) out[a.parameter->codesafeName] = a.value;
  return out;
}

}  // namespace

TEST(ZelPresets, NameAndIndexLookups) {
  auto config = presetConfig(str("Default") + str("Loud") + str("Loud") + str("Soft"),
                             key("values", "<array>" + set("") + "<string>not a set</string></array>"));
  const ZelPresets& presets = *config->presets();
  EXPECT_EQ(presets.presetKeyForPresetName("Default"), 0);  // same as a miss
  EXPECT_EQ(presets.presetKeyForPresetName("nothing"), 0);
  EXPECT_EQ(presets.presetKeyForPresetName("Loud"), 1);  // the earlier of two
  EXPECT_EQ(presets.presetKeyForPresetName("Soft"), 3);
  EXPECT_EQ(presets.presetKeyForPresetName("soft"), 0);

  EXPECT_EQ(*presets.presetNameForValue(3), "Soft");
  EXPECT_EQ(presets.presetNameForValue(4), nullptr);
  EXPECT_NE(presets.presetValueSetForValue(0), nullptr);
  EXPECT_EQ(presets.presetValueSetForValue(1), nullptr);  // not a dictionary
  EXPECT_EQ(presets.presetValueSetForValue(2), nullptr);  // beyond the sets

  auto namesOnly = presetConfig(str("A") + str("B"), "");
  EXPECT_EQ(*namesOnly->presets()->presetNameForValue(1), "B");
  EXPECT_EQ(namesOnly->presets()->presetValueSetForValue(0), nullptr);
  EXPECT_TRUE(namesOnly->presets()->presetValues.isNull());
}

TEST(ZelPresets, ApplyingFallsBackToInitialValuesAndSkipsWildcards) {
  auto config = presetConfig(
      str("A") + str("B"),
      key("values", "<array>" + set(key("gain", "<real>6.5</real>") + key("bypass", integer(0))) +
                        set(key("gain", str("2")) + key("mix", "<true/>")) + "</array>"));
  const std::vector<ZelPresetAssignment> first = ZelPresetAssignments(*config, 0);
  ASSERT_EQ(first.size(), 2u);  // the wildcard is left alone
  EXPECT_EQ(first[0].parameter->codesafeName, "gain");
  EXPECT_EQ(first[0].value, 6.5f);
  EXPECT_EQ(first[1].parameter->codesafeName, "mix");
  EXPECT_EQ(first[1].value, 50.0f);  // missing key: initial value

  // A text entry is not a number; a boolean is.
  EXPECT_EQ(applied(*config, 1), (std::map<std::string, float>{{"gain", -3.0f}, {"mix", 1.0f}}));
  // No value set at all: every parameter returns to its initial value.
  EXPECT_EQ(applied(*config, 7), (std::map<std::string, float>{{"gain", -3.0f}, {"mix", 50.0f}}));
  auto noPresets = loadDescription(clumps(clump("", parameter(1, "gain", key("initialValue", integer(4))))));
  EXPECT_EQ(applied(*noPresets.config, 0), (std::map<std::string, float>{{"gain", 4.0f}}));
}

TEST(ZelPresets, DirtyTestComparesPrintedValues) {
  auto config = presetConfig(
      str("A") + str("B") + str("C") + str("D"),
      key("values", "<array>" + set(key("gain", "<real>0.1</real>") + key("mix", integer(50))) +
                        set(key("gain", str("0.1")) + key("mix", integer(50))) +
                        set(key("gain", "<real>0.1</real>")) +
                        set(key("gain", "<real>0.1</real>") + key("mix", integer(50)) + key("bypass", integer(1))) +
                        "</array>"));
  std::map<std::string, float> now{{"gain", 0.1f}, {"mix", 50.0f}, {"bypass", 0.0f}};
  auto current = [&](const ZelParameter& p) { return now.at(p.codesafeName); };

  EXPECT_FALSE(ZelPresetIsDirty(*config, 0, current));  // 0.1 as a double prints like 0.1f
  EXPECT_FALSE(ZelPresetIsDirty(*config, 1, current));  // text compares by its text
  now["bypass"] = 1;                                     // wildcards never make a preset dirty
  EXPECT_FALSE(ZelPresetIsDirty(*config, 0, current));
  EXPECT_TRUE(ZelPresetIsDirty(*config, 2, current));  // the set lacks "mix"
  EXPECT_TRUE(ZelPresetIsDirty(*config, 3, current));  // the set has a key the current values don't
  EXPECT_TRUE(ZelPresetIsDirty(*config, 9, current));  // no set

  now["gain"] = 0.1000001f;  // differs in the seventh significant digit
  EXPECT_TRUE(ZelPresetIsDirty(*config, 0, current));
  now["gain"] = 0.10000001f;  // a neighbour of 0.1f that prints as 0.1
  EXPECT_FALSE(ZelPresetIsDirty(*config, 0, current));

  const ZelPresetValueMap values = ZelPresetCurrentValues(*config, current);
  EXPECT_EQ(values.size(), 2u);
  EXPECT_FALSE(ZelPresetValuesMatch(nullptr, {}));
  const ZelPlist emptySet = ZelPlist::dictionary({});
  EXPECT_TRUE(ZelPresetValuesMatch(&emptySet, {}));
}

TEST(ZelPresets, SectionsView) {
  const ZelPlist categorized = ZelPlist::dictionary({{"sections", ZelPlist::array({
      ZelPlist::dictionary({{"section", ZelPlist::string("Voices")},
                            {"presets", ZelPlist::array({
                                ZelPlist::dictionary({{"name", ZelPlist::string("Radio")},
                                                      {"presetID", ZelPlist::integer(2)}}),
                                ZelPlist::dictionary({{"name", ZelPlist::string("Label only")}}),
                                ZelPlist::dictionary({{"name", ZelPlist::string("Text id")},
                                                      {"presetID", ZelPlist::string("3")}}),
                                ZelPlist::string("not an entry"),
                            })}}),
      ZelPlist::dictionary({{"presets", ZelPlist::array({})}}),  // no title: not a section
      ZelPlist::dictionary({{"section", ZelPlist::string("Empty")}}),
  })}});
  const std::vector<ZelPresetSection> sections = ZelPresetSections(categorized);
  ASSERT_EQ(sections.size(), 2u);
  EXPECT_EQ(sections[0].title, "Voices");
  EXPECT_TRUE(sections[0].expandable);
  ASSERT_EQ(sections[0].presets.size(), 3u);
  EXPECT_EQ(sections[0].presets[0].name, "Radio");
  EXPECT_EQ(sections[0].presets[0].presetID, 2);
  EXPECT_FALSE(sections[0].presets[1].presetID.has_value());
  EXPECT_FALSE(sections[0].presets[2].presetID.has_value());
  EXPECT_EQ(sections[1].title, "Empty");
  EXPECT_FALSE(sections[1].expandable);
  EXPECT_TRUE(ZelPresetSections(ZelPlist::string("x")).empty());
}
