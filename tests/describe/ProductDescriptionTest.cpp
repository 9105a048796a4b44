// The product's own description, resources/config.plist: the parameters the
// host side is built for, presets that load clean, and a layout whose parts
// fit together.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelConfig.h"

using namespace zel;

namespace {

const ZelConfig& product() {
  static ZelConfigLoad load = ZelConfig::loadFile(std::string(ZEL_RESOURCES_DIR) + "/config.plist");
  return *load.config;
}

struct HostParameter {
  const char* code;
  float min, max, initial;
};

// Ids 0-11 as the host side converts them.
const HostParameter kHostTable[] = {
    {"MasterOnOff", 0, 1, 1}, {"Degrade", 0, 100, 0},    {"Drive", 0, 100, 0}, {"Output", -24, 24, 0},
    {"LowCut", 20, 20000, 20}, {"HighCut", 20, 20000, 20000}, {"Slope", 6, 96, 12}, {"Mix", 0, 100, 100},
    {"Mode", 0, 2, 0},         {"Hiss", -96, 0, -96},      {"HQ", 0, 1, 0},      {"Width", 0, 100, 100},
};

bool overlap(CGRect a, CGRect b) { return CGRectIntersectsRect(a, b); }

}  // namespace

TEST(ProductDescription, LoadsCleanlyWithTheParametersTheHostExpects) {
  ZelConfigLoad load = ZelConfig::loadFile(std::string(ZEL_RESOURCES_DIR) + "/config.plist");
  for (const ZelDiagnostic& d : load.diagnostics) ADD_FAILURE() << d.description();
  const ZelConfig& config = *load.config;
  ASSERT_EQ(config.numParameters(), 12);
  for (std::int64_t pid = 0; pid < 12; ++pid) {
    const HostParameter& host = kHostTable[pid];
    const ZelParameter* p = config.parameterForPid(pid);
    ASSERT_NE(p, nullptr) << pid;
    EXPECT_EQ(p->codesafeName, host.code);
    EXPECT_EQ(p->minValue, host.min) << host.code;
    EXPECT_EQ(p->maxValue, host.max) << host.code;
    EXPECT_EQ(p->initialValue, host.initial) << host.code;
    EXPECT_EQ(p->normalizeFloatValue(p->initialValue, ZelGranularityFine), p->initialValue) << host.code;
  }
  EXPECT_TRUE(config.parameterForCodename("LowCut")->logarithmic);
  EXPECT_TRUE(config.parameterForCodename("MasterOnOff")->presetWildcard);
  EXPECT_EQ(config.parameterForCodename("MasterOnOff")->clump->clumpType, ZelClumpType::PowerBox);
  EXPECT_EQ(config.metadata().versionInteger, 65793);
  EXPECT_EQ(config.preferredSize(), CGSizeMake(480, 380));
}

TEST(ProductDescription, EveryPresetSetsEveryGovernedParameterAndReadsCleanOnceLoaded) {
  const ZelConfig& config = product();
  const ZelPresets* presets = config.presets();
  ASSERT_NE(presets, nullptr);
  ASSERT_GE(presets->stringValues.size(), 10u);
  EXPECT_EQ(presets->stringValues[0], "Default");
  std::set<std::string> governed;
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    if (!p.presetWildcard) governed.insert(p.codesafeName);
  });
  ASSERT_EQ(governed.size(), 11u);
  for (unsigned k = 0; k < presets->stringValues.size(); ++k) {
    const ZelPlist* set = presets->presetValueSetForValue(k);
    ASSERT_NE(set, nullptr) << k;
    std::set<std::string> keys;
    for (const auto& entry : *set->asDictionary()) keys.insert(entry.first);
    EXPECT_EQ(keys, governed) << presets->stringValues[k];
    // What each control holds after loading: the preset value, snapped.
    std::map<const ZelParameter*, float> held;
    for (const ZelPresetAssignment& a : ZelPresetAssignments(config, k)) {
      EXPECT_GE(a.value, a.parameter->minValue) << presets->stringValues[k] << " " << a.parameter->codesafeName;
      EXPECT_LE(a.value, a.parameter->maxValue) << presets->stringValues[k] << " " << a.parameter->codesafeName;
      held[a.parameter] = a.parameter->normalizeFloatValue(a.value, ZelGranularityFine);
      if (k == 0) {
        EXPECT_EQ(a.value, a.parameter->initialValue) << a.parameter->codesafeName;
      }
    }
    EXPECT_FALSE(ZelPresetIsDirty(config, k, [&](const ZelParameter& p) { return held.at(&p); }))
        << presets->stringValues[k];
  }
}

TEST(ProductDescription, DrawerSectionsListEveryPresetByItsOwnName) {
  const ZelConfig& config = product();
  std::vector<ZelPresetSection> sections = ZelPresetSections(config.categorizedPresets());
  ASSERT_GE(sections.size(), 3u);
  std::set<std::int64_t> listed;
  for (const ZelPresetSection& section : sections) {
    EXPECT_FALSE(section.presets.empty()) << section.title;
    for (const ZelPresetEntry& entry : section.presets) {
      ASSERT_TRUE(entry.presetID.has_value()) << entry.name;
      const std::string* name = config.presets()->presetNameForValue(static_cast<unsigned>(*entry.presetID));
      ASSERT_NE(name, nullptr) << entry.name;
      EXPECT_EQ(*name, entry.name);
      listed.insert(*entry.presetID);
    }
  }
  EXPECT_EQ(listed.size(), config.presets()->stringValues.size());
}

TEST(ProductDescription, MainAndAdvancedClumpsTileTheirAreasWithoutOverlap) {
  const ZelConfig& config = product();
  CGRect area = CGRectMake(0, 0, 418, 350);
  auto main = config.pluginLayoutForBounds(area);
  auto advanced = config.advancedLayoutForBounds(CGRectInset(area, 14, 14));
  struct Placed {
    CGRect frame;
    const ZelClump* clump;
  };
  std::vector<Placed> mains, advanceds;
  config.enumerateClumps([&](const ZelClump& c) {
    if (c.clumpType == ZelClumpType::Normal) mains.push_back({main->frameForIndex(c.cid), &c});
    if (c.clumpType == ZelClumpType::Advanced) advanceds.push_back({advanced->frameForIndex(c.cid), &c});
  });
  ASSERT_EQ(mains.size(), 3u);
  ASSERT_EQ(advanceds.size(), 3u);
  double mainArea = 0, advancedArea = 0;
  for (const auto* group : {&mains, &advanceds}) {
    for (std::size_t i = 0; i < group->size(); ++i) {
      for (std::size_t k = i + 1; k < group->size(); ++k)
        EXPECT_FALSE(overlap((*group)[i].frame, (*group)[k].frame)) << (*group)[i].clump->name << " " << (*group)[k].clump->name;
      double a = (*group)[i].frame.size.width * (*group)[i].frame.size.height;
      (group == &mains ? mainArea : advancedArea) += a;
    }
  }
  // Whole-point grid cells leave at most a few points of the areas unused.
  EXPECT_GE(mainArea, 0.98 * 418 * 350);
  EXPECT_GE(advancedArea, 0.98 * 390 * 322);
}

// The advanced view's dashed border (inset 14, so B runs 7 points in) bends
// round the HQ control on a circle centred at the control's centre less
// (40, 40), of radius half its width plus 64. The bend reads as intended
// when that centre is B's corner: the arc leaves the bottom edge and meets
// the left edge exactly where the straight border resumes.
TEST(ProductDescription, OutsideBorderBendsRoundTheHQControlAsAQuarterCircle) {
  const ZelConfig& config = product();
  const ZelParameter* hq = config.parameterForCodename(config.metadata().genericHQParameter);
  ASSERT_NE(hq, nullptr);
  CGRect B = CGRectIntegral(CGRectInset(CGRectMake(0, 0, 418, 350), 7, 7));
  B.size.height -= 1;
  CGRect C = CGRectOffset(CGRectInset(hq->displacedRect(), -64, -64), -40, -40);
  double mx = CGRectGetMidX(C), my = CGRectGetMidY(C), R = C.size.width / 2;
  double a = std::asin((B.origin.y - my) / R);
  double arcEndX = mx + R * std::cos(M_PI / 2 - a), arcEndY = my + R * std::sin(M_PI / 2 - a);
  EXPECT_DOUBLE_EQ(mx + R * std::cos(a), mx + R) << "the arc starts where the bottom edge stops";
  EXPECT_NEAR(arcEndX, B.origin.x, 1e-9);
  EXPECT_NEAR(arcEndY, B.origin.y + (mx + R - B.origin.x), 1e-9);

  // The cleared corner (the circle grown by 10) keeps clear of the other
  // advanced clumps, and the control sits inside its own clump.
  auto advanced = config.advancedLayoutForBounds(CGRectInset(CGRectMake(0, 0, 418, 350), 14, 14));
  config.enumerateClumpsOfType(ZelClumpType::Advanced, [&](const ZelClump& c) {
    CGRect frame = advanced->frameForIndex(c.cid);
    if (&c == hq->clump) {
      EXPECT_TRUE(CGRectContainsRect(frame, hq->displacedRect()));
      return;
    }
    double nx = std::clamp(mx, CGRectGetMinX(frame), CGRectGetMaxX(frame));
    double ny = std::clamp(my, CGRectGetMinY(frame), CGRectGetMaxY(frame));
    EXPECT_GT(std::hypot(nx - mx, ny - my), R + 10) << c.name;
  });
}
