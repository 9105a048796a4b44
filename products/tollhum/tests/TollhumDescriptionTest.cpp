// The unit's parameter list and the description the editor reads say the
// same: ids, names, ranges and defaults, and the Chord names match the
// unit's chords.
#include <gtest/gtest.h>

#include "model/ZelConfig.h"
#include "products/tollhum/unit/ZelTollhumParameters.h"

namespace zel {
namespace {

TEST(TollhumDescription, UnitParametersMatchTheDescription) {
  ZelConfigLoad load = ZelConfig::loadFile(TOLLHUM_CONFIG);
  ASSERT_TRUE(load.diagnostics.empty());
  const ZelConfig* config = load.config.get();
  ASSERT_EQ(config->numParameters(), tollhum::kParameterCount);
  for (int pid = 0; pid < tollhum::kParameterCount; ++pid) {
    const ZelParameter* p = config->parameterForPid(pid);
    ASSERT_NE(p, nullptr) << pid;
    const tollhum::ParameterRange& u = tollhum::kParameters[pid];
    EXPECT_EQ(p->codesafeName, u.codeName) << pid;
    EXPECT_FLOAT_EQ(p->minValue, u.minimum) << u.codeName;
    EXPECT_FLOAT_EQ(p->maxValue, u.maximum) << u.codeName;
    EXPECT_FLOAT_EQ(p->initialValue, u.initial) << u.codeName;
  }
  const ZelParameter* chord = config->parameterForPid(tollhum::param::Chord);
  EXPECT_EQ(chord->stringValues.size(), std::size_t(tollhum::kChordCount));
}

}  // namespace
}  // namespace zel
