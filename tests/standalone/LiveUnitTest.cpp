// The path from the editor to the audio thread: the mailbox, the live unit
// and its hand-over of a unit for another rate.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "../dsp/RealTimeTrap.h"
#include "app/standalone/ZelLiveUnit.h"
#include "app/standalone/ZelStandaloneUnit.h"
#include "host/ZelHostView.h"
#include "products/vantry/unit/ZelVantryUnit.h"

namespace {

using namespace zel;

struct Block {
  std::vector<float> left, right;
  const float* in[2];
  float* out[2];
  explicit Block(std::uint32_t frames = 256) : left(frames, 0.1f), right(frames, -0.1f) {
    in[0] = left.data(), in[1] = right.data();
    out[0] = left.data(), out[1] = right.data();
  }
  void play(ZelLiveUnit& live) { live.process(in, out, std::uint32_t(left.size())); }
};

TEST(ParameterMailbox, TakesTheLatestValueOfEachParameterOnce) {
  ZelParameterMailbox mailbox(kZelParameterCount);
  mailbox.post(kPidLowCut, 300);
  mailbox.post(kPidLowCut, 700);
  mailbox.post(kPidMode, 2);
  mailbox.post(-1, 5);
  mailbox.post(kZelParameterCount, 5);
  std::vector<std::pair<int, float>> taken;
  EXPECT_EQ(mailbox.take([&](int pid, float v) { taken.emplace_back(pid, v); }), 2);
  EXPECT_EQ(taken, (std::vector<std::pair<int, float>>{{kPidLowCut, 700.0f}, {kPidMode, 2.0f}}));
  EXPECT_EQ(mailbox.take([&](int, float) { ADD_FAILURE() << "taken twice"; }), 0);
}

TEST(ParameterMailbox, AConsumerRacingTheProducerEndsWithTheLastValue) {
  ZelParameterMailbox mailbox(kZelParameterCount);
  constexpr int kPosts = 200000;
  std::atomic<bool> done{false};
  float seen = -1;
  bool ordered = true;
  std::thread consumer([&] {
    auto apply = [&](int pid, float v) {
      if (pid != kPidDegrade) return;
      if (v < seen) ordered = false;
      seen = v;
    };
    while (!done.load()) mailbox.take(apply);
    mailbox.take(apply);
  });
  for (int i = 1; i <= kPosts; ++i) mailbox.post(kPidDegrade, float(i));
  done = true;
  consumer.join();
  EXPECT_TRUE(ordered) << "an older value was taken after a newer one";
  EXPECT_EQ(seen, float(kPosts)) << "the last value was lost";
}

TEST(LiveUnit, PostedValuesReachTheUnitAtTheNextBlock) {
  ZelLiveUnit live(std::make_unique<ZelVantryUnit>(2, 48000), kZelParameterCount);
  Block block;
  live.post(kPidLowCut, 300);
  live.post(kPidLowCut, 1200);
  live.post(kPidOutput, -6);
  EXPECT_EQ(live.playing().parameter(kPidLowCut), 20.0f) << "nothing reaches the unit between blocks";
  block.play(live);
  EXPECT_EQ(live.playing().parameter(kPidLowCut), 1200.0f);
  EXPECT_EQ(live.playing().parameter(kPidOutput), -6.0f);
  live.post(kPidOutput, 99);  // the unit clamps
  block.play(live);
  EXPECT_EQ(live.playing().parameter(kPidOutput), 24.0f);
  EXPECT_EQ(live.playing().parameter(kPidLowCut), 1200.0f);
}

TEST(LiveUnit, AReplacementIsPlayedFromTheNextBlockAndTheOldUnitFreedByTheMainThread) {
  ZelLiveUnit live(std::make_unique<ZelVantryUnit>(2, 48000), kZelParameterCount);
  Block block;
  // Two offers before a block: only the later one plays.
  live.replace(std::make_unique<ZelVantryUnit>(2, 44100));
  live.replace(std::make_unique<ZelVantryUnit>(2, 96000));
  live.post(kPidHighCut, 5000);
  {
    dsptest::RealTimeTrap trap;
    block.play(live);
    EXPECT_EQ(trap.violations(), 0) << "the audio thread allocated or freed while taking the new unit";
  }
  EXPECT_EQ(live.playing().sampleRate(), 96000.0);
  EXPECT_EQ(live.playing().parameter(kPidHighCut), 5000.0f) << "a value posted with the swap reaches the new unit";
  EXPECT_TRUE(live.hasLeftovers()) << "the old unit waits for the main thread";

  // Another offer frees the unit put aside before it waits itself.
  live.replace(std::make_unique<ZelVantryUnit>(2, 88200));
  block.play(live);
  EXPECT_EQ(live.playing().sampleRate(), 88200.0);
  live.collect();
  EXPECT_FALSE(live.hasLeftovers());
}

TEST(LiveUnit, TheAudioPathNeverAllocatesLocksOrWaits) {
  ZelLiveUnit live(std::make_unique<ZelVantryUnit>(2, 48000), kZelParameterCount);
  live.replace(std::make_unique<ZelVantryUnit>(2, 48000));
  Block small(64), large(ZelVantryUnit::kMaxBlock * 2 + 17);
  std::uint32_t seed = 5;
  dsptest::RealTimeTrap trap;
  for (int i = 0; i < 300; ++i) {
    for (int pid = 0; pid < kZelParameterCount; ++pid) {
      seed = seed * 1664525u + 1013904223u;
      const auto& p = kZelParameters[pid];
      live.post(pid, p.minimum + (p.maximum - p.minimum) * float(seed >> 8) / float(1 << 24));
    }
    (i % 50 == 0 ? large : small).play(live);
  }
  EXPECT_EQ(trap.violations(), 0);
}

// A unit that meters: its levels are the last block's peak (left, right),
// `rest` until a block has played.
class MeteringUnit final : public ZelAudioUnit {
 public:
  explicit MeteringUnit(float rest) : peak_{rest, rest} {}
  int channels() const override { return 2; }
  double sampleRate() const override { return 48000; }
  void setSampleRate(double) override {}
  void setParameter(int, float) override {}
  float parameter(int) const override { return 0; }
  void reset() override {}
  void process(const float* const* in, float* const*, std::uint32_t frames) override {
    for (int c = 0; c < 2; ++c) {
      peak_[c] = 0;
      for (std::uint32_t i = 0; i < frames; ++i) peak_[c] = std::max(peak_[c], std::abs(in[c][i]));
    }
  }
  std::uint32_t latency() const override { return 0; }
  std::uint32_t meterCount() const override { return 2; }
  void readMeters(float* levels, std::uint32_t count) const override {
    for (std::uint32_t i = 0; i < std::min(count, 2u); ++i) levels[i] = peak_[i];
  }

 private:
  float peak_[2];
};

TEST(LiveUnit, MetersAreTheLastBlocksAndOutliveASwap) {
  ZelLiveUnit live(std::make_unique<MeteringUnit>(-1), kZelParameterCount);
  ASSERT_EQ(live.meterCount(), 2u);
  float levels[3] = {7, 7, 7};
  live.readMeters(levels, 3);
  EXPECT_EQ(levels[0], -1.0f) << "before any block: the unit's resting levels";
  EXPECT_EQ(levels[2], 7.0f) << "only meterCount() levels are written";
  Block block;
  block.left[3] = 0.5f;
  {
    dsptest::RealTimeTrap trap;
    block.play(live);
    EXPECT_EQ(trap.violations(), 0);
  }
  live.readMeters(levels, 2);
  EXPECT_EQ(levels[0], 0.5f);
  EXPECT_EQ(levels[1], 0.1f);
  // A new unit waiting, and the old one freed: the levels stay readable and
  // are the last block's until the new unit plays.
  live.replace(std::make_unique<MeteringUnit>(-2));
  live.readMeters(levels, 2);
  EXPECT_EQ(levels[0], 0.5f);
  Block quiet;
  quiet.left.assign(quiet.left.size(), 0.25f);
  quiet.play(live);
  live.collect();
  live.readMeters(levels, 2);
  EXPECT_EQ(levels[0], 0.25f);
  // Vantry's unit has no meters.
  ZelLiveUnit plain(std::make_unique<ZelVantryUnit>(2, 48000), kZelParameterCount);
  EXPECT_EQ(plain.meterCount(), 0u);
}

TEST(LiveUnit, MetersReadWhileTheAudioThreadPlaysAndSwaps) {
  ZelLiveUnit live(std::make_unique<MeteringUnit>(0.1f), kZelParameterCount);
  std::atomic<bool> done{false};
  std::thread audio([&] {
    Block block;
    while (!done.load()) block.play(live);
  });
  bool valid = true;
  for (int i = 0; i < 2000; ++i) {
    if (i % 100 == 0) live.replace(std::make_unique<MeteringUnit>(0.1f));
    float levels[2];
    live.readMeters(levels, 2);
    valid = valid && levels[0] == 0.1f && levels[1] == 0.1f;
  }
  done = true;
  audio.join();
  EXPECT_TRUE(valid) << "a reading showed something no unit published";
}

TEST(StandaloneUnit, OffersMeteringOnlyForAUnitThatMeters) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelStandaloneUnit unit(loop, 2, 2, 48000);
  ZelUnitMetering metering;
  EXPECT_EQ(unit.getMetering(metering), kZelUnitInvalidProperty) << "Vantry does not meter";
  EXPECT_EQ(metering.function, nullptr);
}

TEST(StandaloneUnit, ANewRateKeepsEveryValue) {
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelStandaloneUnit unit(loop, 2, 2, 48000);
  unit.setParameter(kPidLowCut, ZelHostView::unitValueFromEditor(kPidLowCut, 640), nullptr);
  unit.setParameter(kPidMode, 2, nullptr);
  unit.setSampleRate(44100);
  Block block;
  block.play(unit.live());
  EXPECT_EQ(unit.live().playing().sampleRate(), 44100.0);
  EXPECT_NEAR(unit.live().playing().parameter(kPidLowCut), 640.0f, 0.1f);
  EXPECT_EQ(unit.live().playing().parameter(kPidMode), 2.0f);
  unit.live().collect();
  EXPECT_FALSE(unit.live().hasLeftovers());
}

}  // namespace
