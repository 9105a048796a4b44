// The manual's own texts (resources/manual.plist) against the description:
// every clump and parameter has one, nothing else is named, and the file's
// shape is checked strictly.
#include <gtest/gtest.h>

#include <algorithm>

#include "app/common/ZelDescriptionFile.h"
#include "app/manual/ManualDocument.h"
#include "app/manual/ManualTexts.h"
#include "model/ZelConfig.h"

namespace {

using namespace zel;

std::unique_ptr<ZelConfig> productConfig() {
  std::string error;
  auto config = ZelLoadDescription(std::string(ZEL_RESOURCES_DIR) + "/config.plist", error);
  EXPECT_NE(config, nullptr) << error;
  return config;
}

bool mentions(const std::vector<std::string>& errors, std::string_view part) {
  return std::any_of(errors.begin(), errors.end(), [&](const std::string& e) { return e.find(part) != e.npos; });
}

// A complete set of texts for the product's description.
ZelPlist::Dictionary completeTexts(const ZelConfig& config) {
  ZelPlist::Dictionary clumps, parameters;
  config.enumerateClumps([&](const ZelClump& c) { clumps[c.codesafeName] = ZelPlist::string("About " + c.name); });
  config.enumerateParameters(
      [&](const ZelParameter& p, const ZelClump&) { parameters[p.codesafeName] = ZelPlist::string("About " + p.name); });
  return {{"overview", ZelPlist::string("Overview")},
          {"clumps", ZelPlist::dictionary(clumps)},
          {"parameters", ZelPlist::dictionary(parameters)}};
}

TEST(ManualTexts, TheShippedFileCoversEveryClumpAndParameter) {
  auto config = productConfig();
  const ZelManualTextsLoad load = ZelLoadManualTexts(std::string(ZEL_RESOURCES_DIR) + "/manual.plist", *config);
  for (const std::string& e : load.errors) ADD_FAILURE() << e;
  std::size_t parameters = 0;
  config->enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    ++parameters;
    EXPECT_TRUE(load.texts.parameters.contains(p.codesafeName)) << p.codesafeName;
  });
  EXPECT_EQ(load.texts.parameters.size(), parameters);
  EXPECT_EQ(load.texts.clumps.size(), config->clumps().size());
  EXPECT_FALSE(load.texts.overview.empty());
}

TEST(ManualTexts, MissingUnknownAndMalformedEntriesAreErrors) {
  auto config = productConfig();
  EXPECT_TRUE(ZelReadManualTexts(ZelPlist::dictionary(completeTexts(*config)), *config).errors.empty());

  // A parameter without its text, and one the description does not have.
  ZelPlist::Dictionary texts = completeTexts(*config);
  ZelPlist::Dictionary parameters = *texts["parameters"].asDictionary();
  parameters.erase("Hiss");
  parameters["Resonance"] = ZelPlist::string("Not a parameter of Vantry");
  texts["parameters"] = ZelPlist::dictionary(parameters);
  std::vector<std::string> errors = ZelReadManualTexts(ZelPlist::dictionary(texts), *config).errors;
  EXPECT_TRUE(mentions(errors, "parameters.Hiss: no text")) << testing::PrintToString(errors);
  EXPECT_TRUE(mentions(errors, "parameters.Resonance: the description has no such code name"));
  EXPECT_EQ(errors.size(), 2u);

  // Values of the wrong kind, an empty text, a stray key, a missing overview.
  texts = completeTexts(*config);
  parameters = *texts["parameters"].asDictionary();
  parameters["Mix"] = ZelPlist::integer(3);
  parameters["Drive"] = ZelPlist::string("  \n");
  texts["parameters"] = ZelPlist::dictionary(parameters);
  texts["clump"] = ZelPlist::string("a misspelt key");
  texts.erase("overview");
  errors = ZelReadManualTexts(ZelPlist::dictionary(texts), *config).errors;
  EXPECT_TRUE(mentions(errors, "parameters.Mix: expected a string"));
  EXPECT_TRUE(mentions(errors, "parameters.Drive: the text is empty"));
  EXPECT_TRUE(mentions(errors, "clump: not a key"));
  EXPECT_TRUE(mentions(errors, "overview: expected a non-empty string"));

  EXPECT_FALSE(ZelReadManualTexts(ZelPlist::string("no"), *config).errors.empty());
  EXPECT_FALSE(ZelLoadManualTexts("/nonexistent/manual.plist", *config).errors.empty());
}

TEST(ManualTexts, MarksBecomeMarkupWithEverythingElseEscaped) {
  EXPECT_EQ(ZelManualHTMLText("**Ctrl** & `a<b`\nnext"), "<b>Ctrl</b> &amp; <code>a&lt;b</code><br>next");
  EXPECT_EQ(ZelManualHTMLText("`` ` `` (grave)"), "<code>`</code> (grave)");
  EXPECT_EQ(ZelManualPangoMarkup("`x` > **y**", "Mono"),
            "<span font_family=\"Mono\" size=\"92%\">x</span> &gt; <b>y</b>");
}

}  // namespace

namespace {

ZelPlist stepList(std::vector<const char*> steps) {
  ZelPlist::Array a;
  for (const char* s : steps) a.push_back(ZelPlist::string(s));
  return ZelPlist::array(std::move(a));
}

}  // namespace

TEST(ManualTexts, TheSignalFlowIsOptionalAndCheckedWhenGiven) {
  auto config = productConfig();
  ZelPlist::Dictionary texts = completeTexts(*config);
  ZelManualTextsLoad load = ZelReadManualTexts(ZelPlist::dictionary(texts), *config);
  EXPECT_TRUE(load.texts.flow.steps.empty());  // no flow, no chain drawn

  texts["flow"] = ZelPlist::dictionary({{"steps", stepList({"In", "Filter", "Out"})},
                                        {"chainFirst", ZelPlist::integer(1)},
                                        {"chainLast", ZelPlist::integer(1)},
                                        {"chainLabel", ZelPlist::string("per channel")}});
  load = ZelReadManualTexts(ZelPlist::dictionary(texts), *config);
  EXPECT_TRUE(load.errors.empty());
  EXPECT_EQ(load.texts.flow.steps, (std::vector<std::string>{"In", "Filter", "Out"}));
  EXPECT_EQ(load.texts.flow.chainFirst, 1);
  EXPECT_EQ(load.texts.flow.chainLabel, "per channel");

  texts["flow"] = ZelPlist::dictionary({{"steps", stepList({"In", "Out"})}, {"chainFirst", ZelPlist::integer(1)},
                                        {"chainLast", ZelPlist::integer(2)}, {"colour", ZelPlist::string("red")}});
  load = ZelReadManualTexts(ZelPlist::dictionary(texts), *config);
  EXPECT_TRUE(mentions(load.errors, "flow: chainFirst and chainLast"));
  EXPECT_TRUE(mentions(load.errors, "flow.colour"));
  EXPECT_EQ(load.texts.flow.chainFirst, -1);
  texts["flow"] = ZelPlist::dictionary({{"steps", ZelPlist::array({})}});
  EXPECT_TRUE(mentions(ZelReadManualTexts(ZelPlist::dictionary(texts), *config).errors, "flow: expected"));
}
