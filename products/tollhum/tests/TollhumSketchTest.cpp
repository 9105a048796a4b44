// Tollhum's sketch: a meter on the window's frame clock for as long as it is
// in a window, fed by the unit's meter through the metering callback; and
// its stems, which stand where the strings ring.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "TollhumTestSupport.h"
#include "products/tollhum/sketch/ZelTollhumParameterSketch.h"
#include "sketch/SketchTestSupport.h"

namespace zel {
namespace {

using namespace tollhumtest;
using namespace tollhum;
using testing::VirtualWindow;

std::unique_ptr<ZelConfig> TollhumDefaults() {
  std::vector<float> initial;
  for (const auto& p : kParameters) initial.push_back(p.initial);
  return testing::ConfigWithInitialValues(initial);
}

struct MeterFixture : ::testing::Test {
  VirtualWindow w;
  std::unique_ptr<ZelConfig> config = TollhumDefaults();
  Unit unit{2, 48000};
  ZelTollhumParameterSketch* sketch = nullptr;

  void SetUp() override {
    auto made = std::make_unique<ZelTollhumParameterSketch>(CGRectMake(0, 0, 50, 200), config.get());
    made->setMeteringCallback(ZelTollhumMeteringCallbackFor(&unit.meter()));
    sketch = w.add(std::move(made));
  }
  void play(float amplitude, std::size_t frames) {
    Signal l = Sine(1000, 48000, frames, amplitude), r(frames, 0.0f);
    const float* in[2] = {l.data(), r.data()};
    float* out[2] = {l.data(), r.data()};
    unit.setParameter(param::Mix, 0);
    unit.process(in, out, std::uint32_t(frames));
  }
};

TEST_F(MeterFixture, FrameClockRunsWhileShownAndNotAfterwards) {
  // A meter keeps its link running with no value change at all.
  w.advance(2.0);
  EXPECT_TRUE(sketch->isDisplayLinkRunning());
  EXPECT_EQ(w.window.frameClock().clientCount(), 1u);
  // Out of the window (an editor hidden or closed): no client, no frames.
  std::unique_ptr<ZelView> detached = sketch->removeFromSuperview();
  EXPECT_EQ(w.window.frameClock().clientCount(), 0u);
  play(0.5f, 4800);
  w.advance(0.5);
  EXPECT_EQ(sketch->meterReading().peak[0], Meter::kFloorDb);  // nothing read while away
  w.window.contentView()->addSubview(std::move(detached));
  EXPECT_EQ(w.window.frameClock().clientCount(), 1u);
  w.frame();
  EXPECT_NEAR(sketch->meterReading().peak[0], Db(0.5), 0.05);
}

TEST_F(MeterFixture, EachFrameShowsWhatTheUnitPublished) {
  play(0.5f, 4800);
  w.frame();
  const MeterReading shown = sketch->meterReading();
  const MeterReading published = unit.meter().read();
  EXPECT_EQ(shown.peak[0], published.peak[0]);
  EXPECT_EQ(shown.rms[0], published.rms[0]);
  EXPECT_EQ(shown.peak[1], Meter::kFloorDb);
  // The left bar's RMS fill reaches the level's place on the scale.
  const CGRect fill = sketch->rmsLayer()->path().boundingBox();
  ASSERT_FALSE(CGRectIsEmpty(fill));
  const double barTop = CGRectGetMaxY(fill);
  play(0.05f, 48000);  // 20 dB quieter, long enough for the RMS to follow
  w.frame();
  EXPECT_LT(CGRectGetMaxY(sketch->rmsLayer()->path().boundingBox()), barTop - 10);
}

TEST_F(MeterFixture, AMonoUnitHasOneBarAcrossTheMeter) {
  play(0.5f, 4800);
  w.frame();
  const CGRect left = sketch->rmsLayer()->path().boundingBox();  // the left bar of two
  sketch->setChannels(1, 1);
  EXPECT_EQ(sketch->meterBars(), 1);
  const CGRect one = sketch->rmsLayer()->path().boundingBox();
  EXPECT_EQ(one.origin.x, left.origin.x);
  EXPECT_NEAR(one.size.width, 2 * left.size.width + 4, 1.0);  // both bars and the gap between them
  sketch->setChannels(1, 2);  // a mono-to-stereo unit meters two outputs
  EXPECT_EQ(sketch->meterBars(), 2);
  EXPECT_EQ(sketch->rmsLayer()->path().boundingBox().size.width, left.size.width);
}

TEST_F(MeterFixture, WithoutACallbackTheBarsRestAtTheBottom) {
  sketch->setMeteringCallback({});
  play(0.5f, 4800);
  w.advance(0.2);
  EXPECT_EQ(sketch->meterReading().peak[0], Meter::kFloorDb);
  EXPECT_TRUE(sketch->rmsLayer()->path().empty());
}

TEST(TollhumSketchScale, MeterPositionsFromFloorToCeiling) {
  EXPECT_EQ(ZelTollhumParameterSketch::meterPosition(-90), 0.0);
  EXPECT_EQ(ZelTollhumParameterSketch::meterPosition(-60), 0.0);
  EXPECT_NEAR(ZelTollhumParameterSketch::meterPosition(0), 60.0 / 66.0, 1e-6);
  EXPECT_EQ(ZelTollhumParameterSketch::meterPosition(12), 1.0);
  EXPECT_EQ(ZelTollhumParameterSketch::meterPosition(std::nanf("")), 0.0);
}

TEST(TollhumSketchStems, StemsStandOnEveryStringsHarmonicsUpToTheTop) {
  std::vector<float> values;
  for (const auto& p : kParameters) values.push_back(p.initial);
  values[param::Note] = 57;  // A3, 220 Hz
  values[param::Chord] = 3;  // Major: 0, 4, 7, 12
  values[param::Detune] = 0;
  std::array<ZelTollhumParameterSketch::Stem, ZelTollhumParameterSketch::kMaxStems> stems;
  const std::size_t n = ZelTollhumParameterSketch::computeStems(values, stems);
  EXPECT_EQ(n, ZelTollhumParameterSketch::kMaxStems);  // 8 harmonics of 4 strings, all below 220 * 2^5.25
  EXPECT_NEAR(stems[0].hertz, 220, 1e-9);
  EXPECT_NEAR(stems[8].hertz, 220 * std::exp2(4 / 12.0), 1e-9);
  EXPECT_NEAR(stems[7].hertz, 8 * 220, 1e-9);
  // Four strings in unison at the darkest Tone: the fundamental rings
  // loudest; a brighter Tone raises the upper harmonics.
  values[param::Chord] = 0;
  values[param::Tone] = 0;
  ZelTollhumParameterSketch::computeStems(values, stems);
  for (std::size_t h = 1; h < 8; ++h) EXPECT_GT(stems[0].gainDb, stems[h].gainDb) << h;
  const double darkTop = stems[7].gainDb;
  values[param::Tone] = 100;
  ZelTollhumParameterSketch::computeStems(values, stems);
  EXPECT_GT(stems[7].gainDb, darkTop + 6);
  // High up, harmonics past the top of the picture are left out.
  values[param::Note] = 96;
  values[param::Chord] = 1;  // Octaves: up to two octaves above C7
  EXPECT_LT(ZelTollhumParameterSketch::computeStems(values, stems), ZelTollhumParameterSketch::kMaxStems);
}

}  // namespace
}  // namespace zel
