// The standalone app's session file as Vantry 1.1.1 wrote it (the fixture
// in products/vantry/tests/fixtures/standalone-1.1.1, written by the app
// before Vantry moved into its product folder): today's app reads every
// value by its code name, the preset, the theme and the zoom, hands them
// to the unit, and writes them back the same.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <string>

#include "app/standalone/ZelSessionFile.h"
#include "app/standalone/ZelStandaloneUnit.h"
#include "dsp/ZelVantryParameterTable.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace {

using namespace zel;

const std::string kFixture = ZEL_VANTRY_FIXTURES "/standalone-1.1.1/session.plist";

// What the app saved, by pid, in each parameter's own units.
void expectSavedValues(const std::vector<float>& v) {
  ASSERT_EQ(v.size(), std::size_t(kZelParameterCount));
  EXPECT_NEAR(v[kPidLowCut], 180, 0.01);
  EXPECT_NEAR(v[kPidHighCut], 6200, 0.01);
  EXPECT_EQ(v[kPidSlope], 24);
  EXPECT_EQ(v[kPidDegrade], 33);
  EXPECT_EQ(v[kPidDrive], 47.5f);
  EXPECT_EQ(v[kPidMix], 80);
  EXPECT_EQ(v[kPidOutput], -3.5f);
  EXPECT_EQ(v[kPidHiss], -60);
  EXPECT_EQ(v[kPidMode], 1);
  EXPECT_EQ(v[kPidWidth], 55);
  EXPECT_EQ(v[kPidHQ], 1);
  EXPECT_EQ(v[kPidMasterOnOff], 1);
}

TEST(SavedSession, Vantry111SessionLoadsWithEveryValueAndIsWrittenBackTheSame) {
  const ZelSessionReading reading = ZelReadSession(kFixture);
  ASSERT_EQ(reading.outcome, ZelSessionReading::Outcome::Restored) << reading.problem;
  EXPECT_TRUE(reading.notes.empty()) << reading.notes.front();
  expectSavedValues(reading.state.values);
  EXPECT_EQ(reading.state.presetName, "Telephone");
  EXPECT_TRUE(reading.state.dark);
  EXPECT_EQ(reading.state.zoom, 1.25);

  // Through the unit, as the app starts with it, and back.
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelStandaloneUnit unit(loop, 2, 2, 48000);
  reading.state.applyTo(unit);
  const ZelSessionState back = ZelSessionState::of(unit);
  expectSavedValues(back.values);
  EXPECT_EQ(back.presetName, "Telephone");
  EXPECT_TRUE(back.dark);
  EXPECT_EQ(back.zoom, 1.25);

  char name[] = "/tmp/vantry-saved-XXXXXX";
  ASSERT_NE(::mkdtemp(name), nullptr);
  const std::string path = std::string(name) + "/session.plist";
  std::string error;
  ASSERT_TRUE(ZelWriteSession(path, back, error)) << error;
  const ZelSessionReading again = ZelReadSession(path);
  std::remove(path.c_str());
  ::rmdir(name);
  ASSERT_EQ(again.outcome, ZelSessionReading::Outcome::Restored) << again.problem;
  expectSavedValues(again.state.values);
  EXPECT_EQ(again.state.presetName, "Telephone");
}

}  // namespace
