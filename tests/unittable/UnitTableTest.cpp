// The parameter table the unit is built with, generated from the
// description at build time, says what the description says.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "dsp/ZelVantryParameterTable.h"
#include "model/ZelConfig.h"
#include "model/ZelMetadata.h"
#include "model/ZelParameter.h"

namespace zel {
namespace {

const ZelConfig& description() {
  static ZelConfigLoad load = ZelConfig::loadFile(std::string(ZEL_RESOURCES_DIR) + "/config.plist");
  return *load.config;
}

ZelParameterKind kindFor(const ZelParameter& p) {
  switch (p.unit) {
    case ZelUnit::Boolean: return ZelParameterKind::Switch;
    case ZelUnit::Hertz: return ZelParameterKind::Frequency;
    case ZelUnit::Indexed: return ZelParameterKind::WholeNumber;
    default: return ZelParameterKind::Plain;
  }
}

TEST(UnitTable, EveryParameterMatchesTheDescription) {
  int described = 0;
  for (int pid = 0; pid < 64; ++pid) described += description().parameterForPid(pid) != nullptr;
  ASSERT_EQ(described, kZelParameterCount);
  for (const ZelUnitParameter& t : kZelParameters) {
    const ZelParameter* p = description().parameterForPid(t.pid);
    ASSERT_NE(p, nullptr) << t.pid;
    EXPECT_EQ(p->codesafeName, t.codeName);
    EXPECT_EQ(p->name, t.name);
    EXPECT_EQ(p->minValue, t.minimum) << t.codeName;
    EXPECT_EQ(p->maxValue, t.maximum) << t.codeName;
    EXPECT_EQ(p->initialValue, t.initial) << t.codeName;
    EXPECT_EQ(kindFor(*p), t.kind) << t.codeName;
    EXPECT_EQ(p->logarithmic, t.logarithmic) << t.codeName;
    ASSERT_EQ(int(p->stringValues.size()), t.stringValueCount) << t.codeName;
    for (int i = 0; i < t.stringValueCount; ++i) EXPECT_EQ(p->stringValues[i], t.stringValues[i]) << t.codeName;
  }
}

TEST(UnitTable, OversamplingFactorsAreTheDescriptions) {
  const ZelPlist& mults = description().metadata().genericHQMultsBySampleRate;
  ASSERT_TRUE(mults.isDictionary());
  EXPECT_EQ(int(mults.count()), kZelHQMultCount);
  for (int i = 0; i < kZelHQMultCount; ++i) {
    char key[32];
    std::snprintf(key, sizeof key, "%.0f", kZelHQMults[i].sampleRate);
    EXPECT_EQ(mults[key].intValue(), kZelHQMults[i].factor) << key;
  }
  // Between and beyond the listed rates: the next listed rate up decides.
  EXPECT_EQ(ZelHQFactorForSampleRate(8000), 4);
  EXPECT_EQ(ZelHQFactorForSampleRate(44100), 4);
  EXPECT_EQ(ZelHQFactorForSampleRate(48000), 4);
  EXPECT_EQ(ZelHQFactorForSampleRate(64000), 2);
  EXPECT_EQ(ZelHQFactorForSampleRate(96000), 2);
  EXPECT_EQ(ZelHQFactorForSampleRate(176400), 1);
}

}  // namespace
}  // namespace zel
