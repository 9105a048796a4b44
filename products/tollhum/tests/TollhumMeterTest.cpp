// The level meter against a tone burst: attack, fall, hold and RMS as the
// manual states them, and a reader on another thread while the audio thread
// writes.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "TollhumTestSupport.h"

namespace zel {
namespace {

using namespace tollhumtest;
using namespace tollhum;

struct BurstRun {
  std::vector<double> time;  // end of each block, seconds
  std::vector<MeterReading> readings;
};

// A 1 kHz burst at -6 dBFS peak (-9 dBFS RMS) for `burst` seconds, then
// silence, through the dry path (Mix 0), read after every 32-sample block;
// a stereo unit gets silence on the right.
BurstRun RunBurst(double rate, double burst, double total, int channels = 1) {
  Unit unit(channels, rate);
  unit.setParameter(param::Mix, 0);
  const auto n = std::size_t(total * rate), on = std::size_t(burst * rate);
  Signal in = Sine(1000, rate, n, 0.5);
  std::fill(in.begin() + std::ptrdiff_t(on), in.end(), 0.0f);
  Signal out(n), silence(n, 0.0f);
  BurstRun run;
  for (std::size_t at = 0; at < n; at += 32) {
    const float* i[2] = {in.data() + at, silence.data() + at};
    float* o[2] = {out.data() + at, out.data() + at};
    Signal right(32);
    if (channels == 2) o[1] = right.data();
    unit.process(i, o, std::uint32_t(std::min<std::size_t>(32, n - at)));
    run.time.push_back(double(at + 32) / rate);
    run.readings.push_back(unit.meter().read());
  }
  return run;
}

const MeterReading& At(const BurstRun& run, double seconds) {
  std::size_t i = 0;
  while (i + 1 < run.time.size() && run.time[i] < seconds) ++i;
  return run.readings[i];
}

TEST(TollhumMeter, BallisticsAgainstAToneBurst) {
  for (double rate : {44100.0, 96000.0}) {
    const BurstRun run = RunBurst(rate, 0.5, 3.0);
    const double peakDb = Db(0.5), rmsDb = Db(0.5 / std::sqrt(2.0));
    // Attack: the peak is there within the first quarter period (the first block).
    EXPECT_NEAR(At(run, 0.001).peak[0], peakDb, 0.05) << rate;
    // RMS: within 0.25 dB 300 ms in, and not there yet at 100 ms (1 - 1/e of the power).
    EXPECT_NEAR(At(run, 0.3).rms[0], rmsDb, 0.25) << rate;
    EXPECT_NEAR(At(run, 0.1).rms[0], rmsDb + 10 * std::log10(1 - std::exp(-1.0)), 0.3) << rate;
    // The burst ends at 0.5 s. Peak falls 20 dB per second.
    EXPECT_NEAR(At(run, 1.0).peak[0], peakDb - 10, 0.3) << rate;
    EXPECT_NEAR(At(run, 2.0).peak[0], peakDb - 30, 0.3) << rate;
    // Hold: the burst's peak for 1.5 s, then it follows the peak down.
    EXPECT_NEAR(At(run, 1.9).hold[0], peakDb, 0.05) << rate;
    EXPECT_NEAR(At(run, 2.5).hold[0], peakDb - 40, 0.5) << rate;
    // RMS falls with its 100 ms time constant: 4.34 dB per 100 ms.
    EXPECT_NEAR(At(run, 0.7).rms[0], rmsDb - 8.69, 0.3) << rate;
    // Nothing is left at the end but the floor or just above it.
    EXPECT_LT(At(run, 3.0).rms[0], -90 + 1e-3);
  }
}

TEST(TollhumMeter, MonoShowsItsChannelOnBothSidesAndStereoEachSide) {
  const BurstRun mono = RunBurst(48000, 0.2, 0.3, 1);
  EXPECT_EQ(mono.readings.back().peak[0], mono.readings.back().peak[1]);
  EXPECT_EQ(mono.readings.back().rms[0], mono.readings.back().rms[1]);
  const BurstRun stereo = RunBurst(48000, 0.2, 0.3, 2);  // silence on the right
  EXPECT_GT(stereo.readings.back().peak[0], -20);
  EXPECT_EQ(stereo.readings.back().peak[1], Meter::kFloorDb);
}

TEST(TollhumMeter, ZeroFramesChangeNothingAndResetFallsToTheFloor) {
  Unit unit(1, 48000);
  const Signal in = Sine(440, 48000, 512);
  Signal out(512);
  const float* i[1] = {in.data()};
  float* o[1] = {out.data()};
  unit.process(i, o, 512);
  const float before = unit.meter().read().peak[0];
  unit.process(i, o, 0);
  EXPECT_EQ(unit.meter().read().peak[0], before);
  unit.reset();
  EXPECT_EQ(unit.meter().read().peak[0], Meter::kFloorDb);
}

TEST(TollhumMeter, AnotherThreadReadsWholeValuesWhileTheAudioThreadWrites) {
  Unit unit(2, 48000);
  std::atomic<bool> done{false};
  std::atomic<int> bad{0}, reads{0};
  std::thread reader([&] {
    float values[Meter::kValueCount];
    while (!done.load()) {
      const int n = unit.meter().readValues(values, Meter::kValueCount);
      for (int k = 0; k < n; ++k)
        if (!(values[k] >= Meter::kFloorDb && values[k] < 40)) bad.fetch_add(1);
      reads.fetch_add(1);
    }
  });
  Signal l = Sine(300, 48000, 256, 0.9), r = Sine(500, 48000, 256, 0.1), ol(256), orr(256);
  for (int block = 0; block < 4000; ++block) {
    const float* i[2] = {l.data(), r.data()};
    float* o[2] = {ol.data(), orr.data()};
    unit.process(i, o, 256);
  }
  done = true;
  reader.join();
  EXPECT_EQ(bad.load(), 0);
  EXPECT_GT(reads.load(), 0);
}

}  // namespace
}  // namespace zel
