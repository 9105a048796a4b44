// Malformed descriptions must load without crashing, read wrong values as
// absent, and say what is wrong where.
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelConfig.h"
#include "tests/model/ModelTestSupport.h"

using namespace zel;
using namespace zel_test;

namespace {

const std::string kDataDir = std::string(ZEL_TEST_DATA_DIR) + "/model/";

// Touches everything a description feeds: layouts and display text.
void exercise(const ZelConfig& config) {
  const CGRect bounds = CGRectMake(0, 0, 480, 380);
  EXPECT_NE(config.pluginLayoutForBounds(bounds), nullptr);
  EXPECT_NE(config.advancedLayoutForBounds(bounds), nullptr);
  std::string text, suffix;
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump& c) {
    ZelPluginLayout::layoutForLayout(c.computedLayout, bounds, static_cast<std::int64_t>(c.parameters.size()),
                                     c.layoutConstraints);
    p.layoutForFrame(bounds);
    for (float v : {p.minValue, p.maxValue, p.initialValue}) p.valueString(&text, &suffix, v);
  });
  if (config.presets()) ZelPresetAssignments(config, 0);
}

std::string onlyFinding(const ZelConfigLoad& load) {
  if (load.diagnostics.size() != 1) {
    std::string all = std::to_string(load.diagnostics.size()) + " diagnostics:";
    for (const ZelDiagnostic& d : load.diagnostics) all += " [" + d.description() + "]";
    return all;
  }
  return load.diagnostics[0].description();
}

struct Section {
  const char* path;
  std::string (*wrap)(const std::string& entry);
};

const Section kMetadata{"metadata", [](const std::string& e) { return key("metadata", "<dict>" + e + "</dict>"); }};
const Section kClump{"clumps[0].metadata", [](const std::string& e) { return clumps(clump(e)); }};
const Section kParameter{"clumps[0].parameters[0]", [](const std::string& e) {
                           return clumps(clump("", "<dict>" + e + "</dict>"));
                         }};
const Section kPresets{"presets", [](const std::string& e) { return key("presets", "<dict>" + e + "</dict>"); }};

struct KindCase {
  std::vector<std::string> keys;
  const char* wrongValue;
  const char* message;
};

void expectEachKeyReported(const Section& section, const std::vector<KindCase>& cases) {
  for (const KindCase& c : cases) {
    for (const std::string& k : c.keys) {
      SCOPED_TRACE(std::string(section.path) + "." + k);
      ZelConfigLoad load = loadDescription(section.wrap(key(k, c.wrongValue)));
      EXPECT_EQ(onlyFinding(load), "warning: " + std::string(section.path) + "." + k + ": " + c.message);
      exercise(*load.config);
    }
  }
}

const char* kString = "<string>x</string>";
const char* kNumber = "<integer>5</integer>";
const char* kNeedNumber = "expected a number, found a string";
const char* kNeedString = "expected a string, found a number";
const char* kNeedBoolean = "expected a boolean, found a string";
const char* kNeedArray = "expected an array, found a string";
const char* kNeedDictionary = "expected a dictionary, found a string";

}  // namespace

TEST(ZelDescriptionLoad, WrongKindAtEveryMetadataKey) {
  expectEachKeyReported(
      kMetadata,
      {{{"classPrefix", "pluginName", "pluginLongName", "pluginURLSlug", "pluginPackageName", "pluginID",
         "manufacturerID", "pluginType", "version", "versionHex", "sha", "tagline", "companyName", "catalog",
         "channelLayouts", "logo", "color", "genericHQParameter"},
        kNumber, kNeedString},
       {{"versionInteger", "channelLayoutsCount", "width", "height", "inset"}, kString, kNeedNumber},
       {{"beta", "layoutParameterBased", "hasParameterSketch", "hasGenericHQMode"}, "<string>YES</string>",
        kNeedBoolean},
       {{"clumpsLayout", "advancedClumpsLayout", "clumpsLayout_iOS", "advancedClumpsLayout_iOS",
         "genericHQMultsBySampleRate"},
        kString, kNeedDictionary},
       {{"parameterOrder", "tabOrder", "hostClumps"}, kString, kNeedArray}});
}

TEST(ZelDescriptionLoad, WrongKindAtEveryClumpKey) {
  expectEachKeyReported(kClump, {{{"name", "codesafeName", "label", "labelString", "clumpType"}, kNumber, kNeedString},
                                 {{"inset", "computedLayout", "computedLayout_iOS", "layoutConstraints",
                                   "taggedLabels", "layoutTags"},
                                  kString, kNeedDictionary},
                                 {{"showInteriorBorders"}, kString, kNeedBoolean},
                                 {{"labelBorder", "parameters"}, kString, kNeedArray},
                                 {{"cid"}, kString, kNeedNumber}});
}

TEST(ZelDescriptionLoad, WrongKindAtEveryParameterKey) {
  const std::vector<KindCase> cases = {
      {{"pid", "indexInClump", "minValue", "maxValue", "initialValue", "granularity", "fineGranularity",
        "coarseGranularity", "controlScale"},
       kString, kNeedNumber},
      {{"name", "codesafeName", "aaxName", "label", "labelString", "minimalName", "hostClump", "unit", "unitSymbol",
        "unitEnumIdentifier", "customUnit", "formatString", "controlType", "controlStyle", "labelDisplay", "color",
        "cueSymbolDisplay", "scope"},
       kNumber, kNeedString},
      {{"distinctLabel", "logarithmic", "auLogarithmic", "automatesSmoothly", "presetWildcard",
        "showsNegativeInfinity", "substituteOffForMinimum", "horizontal"},
       kString, kNeedBoolean},
      {{"coarseGranularityOptions", "stringValues", "displacedFrame", "border", "tickmarks", "minorTickmarks",
        "cueValues", "cueSymbols", "cueSymbolPositions", "highlights", "dims", "disables", "hides",
        "channelLayoutRules"},
       kString, kNeedArray},
      {{"computedLayout"}, kString, kNeedDictionary},
  };
  expectEachKeyReported(kParameter, cases);
  expectEachKeyReported(kPresets, cases);
  expectEachKeyReported(kPresets, {{{"values"}, kString, kNeedArray}});
}

TEST(ZelDescriptionLoad, WrongKindsInsideArraysAndNestedRecords) {
  const std::string cell = "<dict>" + key("origin", "<dict>" + key("x", str("1")) + "</dict>") + "</dict>";
  struct Case {
    const char* name;
    std::string body;
    const char* expected;
  } cases[] = {
      {"number list", kParameter.wrap(key("tickmarks", "<array>" + integer(1) + str("2") + "</array>")),
       "clumps[0].parameters[0].tickmarks[1]: expected a number, found a string"},
      {"rule names", kParameter.wrap(key("highlights", "<array><array>" + integer(5) + "</array></array>")),
       "clumps[0].parameters[0].highlights[0][0]: expected a string, found a number"},
      {"channel rule", kParameter.wrap(key("channelLayoutRules", "<array><dict>" + key("map", str("1,2")) +
                                                                     "</dict></array>")),
       "clumps[0].parameters[0].channelLayoutRules[0].map: expected an array, found a string"},
      {"layout cell", kMetadata.wrap(key("clumpsLayout", "<dict>" + key("matrix", "<dict>" + key("0", cell) +
                                                                                      "</dict>") +
                                                             "</dict>")),
       "metadata.clumpsLayout.matrix.0.origin.x: expected a number, found a string"},
      {"constraint", kClump.wrap(key("layoutConstraints", "<dict>" + key("1", str("tall")) + "</dict>")),
       "clumps[0].metadata.layoutConstraints.1: expected a dictionary, found a string"},
      {"value set entry",
       kPresets.wrap(key("values", "<array><dict/><dict>" + key("gain", str("loud")) + "</dict></array>")),
       "presets.values[1].gain: expected a number, found a string"},
      {"value set", kPresets.wrap(key("values", "<array>" + integer(3) + "</array>")),
       "presets.values[0]: expected a dictionary, found a number"},
      {"preset entry",
       key("categorizedPresets",
           "<dict>" + key("sections", "<array><dict>" + key("presets", "<array><dict>" + key("presetID", str("2")) +
                                                                          "</dict></array>") +
                                          "</dict></array>") +
               "</dict>"),
       "categorizedPresets.sections[0].presets[0].presetID: expected a number, found a string"},
      {"clump entry", clumps(clump("") + str("solo")), "clumps[1]: expected a dictionary, found a string"},
      {"clump list", key("clumps", "<dict/>"), "clumps: expected an array, found a dictionary"},
      {"metadata record", key("metadata", "<array><true/></array>"),
       "metadata: expected a dictionary, found an array"},
      {"presets record", key("presets", integer(1)), "presets: expected a dictionary, found a number"},
      {"boolean as number", kParameter.wrap(key("pid", "<true/>")),
       "clumps[0].parameters[0].pid: expected a number, found a boolean"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ZelConfigLoad load = loadDescription(c.body);
    EXPECT_EQ(onlyFinding(load), "warning: " + std::string(c.expected));
    exercise(*load.config);
  }
}

TEST(ZelDescriptionLoad, EmptyStringsAndArraysAreNotWrongKinds) {
  ZelConfigLoad load = loadDescription(kMetadata.wrap(key("clumpsLayout", str("")) + key("tabOrder", str("")) +
                                                      key("logo", "<array/>") + key("beta", integer(1))));
  EXPECT_TRUE(load.diagnostics.empty()) << onlyFinding(load);
  EXPECT_TRUE(load.config->metadata().clumpsLayout.isNull());
  EXPECT_TRUE(load.config->metadata().beta);
}

TEST(ZelDescriptionLoad, UnreadableFilesGiveTheEmptyModel) {
  std::ifstream in(kDataDir + "tiny.bplist", std::ios::binary);
  const std::string binary{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const std::string truncatedXML = descriptionXML(clumps(clump("", parameter(1, "a")))).substr(0, 120);
  std::string noise(10 << 20, '\0');
  std::mt19937 random(7);
  for (char& c : noise) c = static_cast<char>(random());
  std::string nested = "<?xml version=\"1.0\"?><plist><dict><key>clumps</key>";
  for (int i = 0; i < 100000; ++i) nested += "<array>";

  struct Case {
    const char* name;
    std::string bytes;
    const char* expected;
  } cases[] = {
      {"empty", "", "error: the file is empty"},
      {"truncated XML", truncatedXML, "error: not a property list (XML or binary)"},
      {"truncated binary", binary.substr(0, binary.size() - 9), "error: not a property list (XML or binary)"},
      {"random bytes", noise, "error: not a property list (XML or binary)"},
      {"deeply nested", nested, "error: nested deeper than 256 levels"},
      {"array at the top", "<plist><array/></plist>", "error: the top level is not a dictionary"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ZelConfigLoad load = ZelConfig::loadData(c.bytes.data(), c.bytes.size());
    EXPECT_EQ(onlyFinding(load), c.expected);
    ASSERT_NE(load.config, nullptr);
    EXPECT_TRUE(load.config->clumps().empty());
    EXPECT_EQ(load.config->presets(), nullptr);
  }

  ZelConfigLoad fromBinary = ZelConfig::loadData(binary.data(), binary.size());
  EXPECT_TRUE(fromBinary.diagnostics.empty()) << onlyFinding(fromBinary);
  EXPECT_EQ(fromBinary.config->numParameters(), 2);
  EXPECT_EQ(fromBinary.config->clumps()[0]->cid, 0);
  exercise(*fromBinary.config);

  ZelConfigLoad missing = ZelConfig::loadFile(kDataDir + "absent.plist");
  EXPECT_EQ(onlyFinding(missing), "error: cannot open the file: No such file or directory");
}
