// The unit's chords and the description's Chord say the same: one name per
// chord, in the unit's order.
#include <gtest/gtest.h>

#include "model/ZelConfig.h"
#include "products/tollhum/unit/ZelTollhumParameters.h"

namespace zel {
namespace {

TEST(TollhumDescription, ChordNamesAreTheUnitsChords) {
  ZelConfigLoad load = ZelConfig::loadFile(TOLLHUM_CONFIG);
  ASSERT_TRUE(load.diagnostics.empty());
  const ZelParameter* chord = load.config->parameterForPid(tollhum::param::Chord);
  ASSERT_NE(chord, nullptr);
  EXPECT_EQ(chord->codesafeName, "Chord");
  EXPECT_EQ(chord->stringValues.size(), std::size_t(tollhum::kChordCount));
  EXPECT_EQ(chord->maxValue, float(tollhum::kChordCount - 1));
}

}  // namespace
}  // namespace zel
