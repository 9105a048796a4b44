#include "model/ZelConfig.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelFetch.h"
#include "tests/model/ModelTestSupport.h"

using namespace zel;
using namespace zel_test;

namespace {

ZelColor colorOf(const std::string& text) {
  return FetchColor(ZelPlist::dictionary({{"color", ZelPlist::string(text)}}), "color");
}

}  // namespace

TEST(ZelFetch, ColourRule) {
  const ZelColor orange = ZelColor::rgb(1.0, 128 / 255.0, 0, 1);
  EXPECT_EQ(colorOf("#ff8000"), orange);
  EXPECT_EQ(colorOf("ff8000"), orange);
  EXPECT_EQ(colorOf("#FF8000 trailing"), orange);
  EXPECT_EQ(colorOf("12zz"), ZelColor::rgb(0, 0, 18 / 255.0, 1));  // scanning stops at "z"
  EXPECT_EQ(colorOf("#123456789"), ZelColor::rgb(1, 1, 1, 1));     // saturates at 0xFFFFFFFF
  EXPECT_EQ(colorOf(""), ZelColor::rgb(0, 0, 0, 1));
  EXPECT_EQ(colorOf("#"), ZelColor::rgb(0, 0, 0, 1));
  EXPECT_EQ(FetchColor(ZelPlist::dictionary({}), "color"), ZelColor::rgb(0, 0, 0, 1));
  EXPECT_EQ(FetchColor(ZelPlist::dictionary({{"color", ZelPlist::integer(0xff8000)}}), "color"),
            ZelColor::rgb(0, 0, 0, 1));
}

TEST(ZelConfig, LoadsMetadataClumpsAndOwnership) {
  ZelConfigLoad load = loadDescription(
      key("metadata", "<dict>" + key("pluginName", str("Tiny")) + key("versionInteger", integer(65793)) +
                          key("width", num(480)) + key("height", integer(380)) + key("beta", "<true/>") +
                          key("tagline", str("")) + key("color", str("#ff8000")) +
                          key("tabOrder", "<array>" + str("gain") + integer(3) + "</array>") + "</dict>") +
      clumps(clump(key("cid", integer(5)) + key("label", str("")), parameter(1, "a") + parameter(2, "b")) +
             str("not a clump") +
             clump(key("cid", integer(5)) + key("clumpType", str("Advanced")),
                   parameter(3, "c", key("clump", str("Main"))) + "<string>not a parameter</string>")));
  ASSERT_EQ(load.diagnostics.size(), 3u);
  EXPECT_EQ(load.diagnostics[0].keyPath, "clumps[1]");
  EXPECT_EQ(load.diagnostics[1].keyPath, "clumps[2].parameters[1]");
  EXPECT_EQ(load.diagnostics[2].keyPath, "metadata.tabOrder[1]");
  const ZelConfig& config = *load.config;

  const ZelMetadata& m = config.metadata();
  EXPECT_EQ(m.pluginName, "Tiny");
  EXPECT_EQ(m.versionInteger, 65793);
  EXPECT_TRUE(m.beta);
  EXPECT_EQ(m.tagline, "");  // an empty string reads as absent
  EXPECT_EQ(m.color, ZelColor::rgb(1.0, 128 / 255.0, 0, 1));
  EXPECT_EQ(m.tabOrderNames, (std::vector<std::string>{"gain", ""}));
  EXPECT_EQ(config.preferredSize().width, 480);
  EXPECT_EQ(config.preferredSize().height, 380);

  // Entries that are not dictionaries are skipped; the file's "cid" never survives.
  ASSERT_EQ(config.clumps().size(), 2u);
  EXPECT_EQ(config.clumps()[0]->cid, 0);
  EXPECT_EQ(config.clumps()[1]->cid, 2);
  EXPECT_EQ(config.clumps()[0]->label, "");
  EXPECT_EQ(config.numParameters(), 3);
  config.enumerateParameters([](const ZelParameter& p, const ZelClump& c) { EXPECT_EQ(p.clump, &c); });
  EXPECT_EQ(config.identifier(), 0);
}

TEST(ZelConfig, PidAndCodenameLookups) {
  ZelConfigLoad load = loadDescription(
      clumps(clump("", parameter(4, "first", key("minimalName", str("shared"))) + parameter(4, "second")) +
             clump("", parameter(5, "shared", key("minimalName", str(""))) + parameter(6, ""))));
  const ZelConfig& config = *load.config;

  EXPECT_EQ(config.parameterForPid(4)->codesafeName, "first");
  EXPECT_EQ(config.parameterForPid(99), nullptr);
  std::vector<std::string> visited;
  config.executeBlockWithPid(4, [&](const ZelParameter& p, const ZelClump& c) {
    visited.push_back(p.codesafeName);
    EXPECT_EQ(&c, config.clumps()[0].get());
  });
  EXPECT_EQ(visited, (std::vector<std::string>{"first", "second"}));

  // Both names of one parameter are tried before the next parameter.
  EXPECT_EQ(config.parameterForCodename("shared")->codesafeName, "first");
  EXPECT_EQ(config.parameterForCodename("second")->pid, 4);
  EXPECT_EQ(config.parameterForCodename(""), nullptr);  // absent names never match
  EXPECT_EQ(config.parameterForCodename("nothing"), nullptr);
}

TEST(ZelConfig, ClumpTypesAndMasks) {
  ZelConfigLoad load = loadDescription(clumps(
      clump(key("codesafeName", str("n")) + key("clumpType", str("Normal"))) +
      clump(key("codesafeName", str("a")) + key("clumpType", str("Advanced"))) +
      clump(key("codesafeName", str("p")) + key("clumpType", str("PowerBox"))) +
      clump(key("codesafeName", str("lower")) + key("clumpType", str("powerbox"))) +
      clump(key("codesafeName", str("a2")) + key("clumpType", str("Advanced")))));
  const ZelConfig& config = *load.config;
  auto visit = [&](auto enumerate) {
    std::vector<std::string> names;
    enumerate([&](const ZelClump& c) { names.push_back(c.codesafeName); });
    return names;
  };
  using V = std::vector<std::string>;
  EXPECT_EQ(visit([&](auto b) { config.enumerateClumpsOfTypes(3, b); }), (V{"a", "p", "a2"}));
  EXPECT_EQ(visit([&](auto b) { config.enumerateClumpsOfTypes(2, b); }), (V{"p"}));
  EXPECT_EQ(visit([&](auto b) { config.enumerateClumpsOfTypes(0, b); }), V{});
  EXPECT_EQ(visit([&](auto b) { config.enumerateClumpsOfType(ZelClumpType::Normal, b); }), (V{"n", "lower"}));
  EXPECT_EQ(visit([&](auto b) { config.enumerateClumps(b); }), (V{"n", "a", "p", "lower", "a2"}));
  std::vector<std::string> advanced;
  for (const ZelClump* c : config.clumpsOfType(ZelClumpType::Advanced)) advanced.push_back(c->codesafeName);
  EXPECT_EQ(advanced, (V{"a", "a2"}));
  EXPECT_TRUE(config.hasAdvancedControls());
  EXPECT_FALSE(loadDescription(clumps(clump(key("clumpType", str("advanced"))))).config->hasAdvancedControls());
}

TEST(ZelConfig, EditorLayoutsCountEveryClump) {
  const std::string grid = "<dict>" + key("width", integer(2)) + key("height", integer(1)) +
                           key("matrix", "<dict>" +
                                             key("0", "<dict>" + key("origin", "<dict>" + key("x", integer(1)) +
                                                                                   key("y", integer(0)) + "</dict>") +
                                                          key("size", "<dict>" + key("w", integer(1)) +
                                                                                 key("h", integer(1)) + "</dict>") +
                                                          "</dict>") +
                                             "</dict>") +
                           "</dict>";
  ZelConfigLoad load = loadDescription(key("metadata", "<dict>" + key("clumpsLayout", grid) + "</dict>") +
                                       clumps(clump("") + clump(key("clumpType", str("Advanced"))) + clump("")));
  const CGRect bounds = CGRectMake(0, 0, 300, 100);
  auto main = load.config->pluginLayoutForBounds(bounds);
  EXPECT_EQ(main->frameForIndex(0).origin.x, 150);
  // Without a layout the advanced area falls back to one column per clump of every type.
  auto advanced = load.config->advancedLayoutForBounds(bounds);
  auto fallback = ZelPluginLayout::layoutForLayout(ZelPlist::null(), bounds, 3, ZelPlist::null());
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(advanced->frameForIndex(i).origin.x, fallback->frameForIndex(i).origin.x);
    EXPECT_EQ(advanced->frameForIndex(i).size.width, fallback->frameForIndex(i).size.width);
  }
  EXPECT_GT(advanced->frameForIndex(2).size.width, 0);
}

TEST(ZelConfig, PresetSectionsNeedPresets) {
  const std::string sections =
      key("categorizedPresets", "<dict>" + key("sections", "<array><dict>" + key("section", str("All")) +
                                                               "</dict></array>") +
                                    "</dict>");
  ZelConfigLoad without = loadDescription(sections);
  EXPECT_EQ(without.config->presets(), nullptr);
  EXPECT_TRUE(without.config->categorizedPresets().isNull());

  ZelConfigLoad with = loadDescription(sections + key("presets", "<dict/>"));
  ASSERT_NE(with.config->presets(), nullptr);
  EXPECT_TRUE(with.config->categorizedPresets().isDictionary());
}

TEST(ZelConfig, TheBinaryCopyIsPreferredWhenItLoads) {
  namespace fs = std::filesystem;
  const fs::path data = fs::path(ZEL_TEST_DATA_DIR) / "model";
  const fs::path dir = fs::path(::testing::TempDir()) / ("zel-config-named-" + std::to_string(::getpid()));
  fs::remove_all(dir);
  fs::create_directories(dir);
  auto write = [&](const char* name, const std::string& text) { std::ofstream(dir / name, std::ios::binary) << text; };

  // Only the binary copy.
  fs::copy_file(data / "tiny.bplist", dir / "config.bplist");
  EXPECT_EQ(ZelConfig::configNamed("config", dir.string())->metadata().pluginName, "Tiny");

  // Both: the binary copy wins over an XML that says otherwise.
  write("config.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>");
  EXPECT_EQ(ZelConfig::configNamed("config", dir.string())->numParameters(), 2);

  // A binary copy that does not load: the XML.
  write("config.bplist", "bplist00 not really");
  fs::copy_file(data / "tiny.plist", dir / "config.plist", fs::copy_options::overwrite_existing);
  EXPECT_EQ(ZelConfig::configNamed("config", dir.string())->metadata().pluginName, "Tiny");
  fs::remove_all(dir);
}

TEST(ZelConfig, MissingFileGivesTheEmptyModel) {
  std::unique_ptr<ZelConfig> config = ZelConfig::configNamed("config", std::string(ZEL_TEST_DATA_DIR) + "/nowhere");
  ASSERT_NE(config, nullptr);
  EXPECT_TRUE(config->clumps().empty());
  EXPECT_EQ(config->numParameters(), 0);
  EXPECT_EQ(config->presets(), nullptr);
  EXPECT_EQ(config->metadata().pluginName, "");
  EXPECT_EQ(config->metadata().color, ZelColor::rgb(0, 0, 0, 1));

  std::unique_ptr<ZelConfig> tiny = ZelConfig::configNamed("tiny", std::string(ZEL_TEST_DATA_DIR) + "/model");
  EXPECT_EQ(tiny->numParameters(), 2);
  EXPECT_EQ(tiny->metadata().pluginName, "Tiny");
}
