// The built plug-in loaded through lilv, as hosts load it, under abuse: any
// block size (1 to past the unit's largest block) at rates from 22050 to
// 192000 Hz, NaN, infinities, huge and denormal samples, HQ switched while
// running, activate and deactivate over and over, two instances at once;
// run() is watched by the real-time trap throughout.
#include <lilv/lilv.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>

#include "../dsp/RealTimeTrap.h"
#include "Lv2TestHost.h"

namespace zel::lv2test {
namespace {

class Lv2Torture : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    world_ = lilv_world_new();
    LilvNode* bundle = lilv_new_file_uri(world_, nullptr, ZEL_LV2_BUNDLE_DIR "/");
    lilv_world_load_bundle(world_, bundle);
    lilv_node_free(bundle);
  }
  static void TearDownTestSuite() {
    lilv_world_free(world_);
    world_ = nullptr;
  }
  static const LilvPlugin* plugin(const char* uri) {
    LilvNode* node = lilv_new_uri(world_, uri);
    const LilvPlugin* p = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world_), node);
    lilv_node_free(node);
    return p;
  }
  static LilvWorld* world_;
};
LilvWorld* Lv2Torture::world_ = nullptr;

// One instance made by lilv, its ports connected by symbol.
class LilvPluginInstance {
 public:
  LilvPluginInstance(LilvWorld* world, const LilvPlugin* plugin, double rate) {
    if (!plugin) return;
    channels_ = lilv_plugin_get_num_ports(plugin) > ids::kFirstAudioPort + 2 ? 2 : 1;
    const LV2_Feature* features[] = {map_.feature(), nullptr};
    instance_ = lilv_plugin_instantiate(plugin, rate, features);
    if (!instance_) return;
    for (int pid = 0; pid < kZelParameterCount; ++pid) {
      LilvNode* symbol = lilv_new_string(world, kZelParameters[pid].codeName);
      const LilvPort* port = lilv_plugin_get_port_by_symbol(plugin, symbol);
      lilv_node_free(symbol);
      if (!port) return;
      controls_[pid] = kZelParameters[pid].initial;
      lilv_instance_connect_port(instance_, lilv_port_get_index(plugin, port), &controls_[pid]);
    }
    LilvNode* latencySymbol = lilv_new_string(world, "latency");
    const LilvPort* latencyPort = lilv_plugin_get_port_by_symbol(plugin, latencySymbol);
    lilv_node_free(latencySymbol);
    if (!latencyPort) return;
    lilv_instance_connect_port(instance_, lilv_port_get_index(plugin, latencyPort), &latency_);
    // An empty control sequence and a notify port with room.
    auto* control = reinterpret_cast<LV2_Atom_Sequence*>(control_.data());
    control->atom = {sizeof(LV2_Atom_Sequence_Body), map_(LV2_ATOM__Sequence)};
    lilv_instance_connect_port(instance_, ids::kControlAtomPort, control_.data());
    lilv_instance_connect_port(instance_, ids::kNotifyAtomPort, notify_.data());
    ready_ = true;
  }
  ~LilvPluginInstance() {
    if (instance_) lilv_instance_free(instance_);
  }
  LilvPluginInstance(const LilvPluginInstance&) = delete;
  LilvPluginInstance& operator=(const LilvPluginInstance&) = delete;

  bool ok() const { return ready_; }
  int channels() const { return channels_; }
  float& control(int pid) { return controls_[pid]; }
  float latency() const { return latency_; }
  void activate() { lilv_instance_activate(instance_); }
  void deactivate() { lilv_instance_deactivate(instance_); }

  // Runs `frames` of each channel in place (nothing allocated here: callers
  // may hold the real-time trap).
  void run(float* const* io, std::uint32_t frames) {
    for (int c = 0; c < channels_; ++c) {
      lilv_instance_connect_port(instance_, ids::kFirstAudioPort + c, io[c]);
      lilv_instance_connect_port(instance_, ids::kFirstAudioPort + channels_ + c, io[c]);
    }
    reinterpret_cast<LV2_Atom*>(notify_.data())->size = std::uint32_t(notify_.size() - sizeof(LV2_Atom));
    lilv_instance_run(instance_, frames);
  }

 private:
  UridMap map_;
  LilvInstance* instance_ = nullptr;
  int channels_ = 2;
  bool ready_ = false;
  float controls_[ids::kControlPortCount] = {};
  float latency_ = -1;
  std::vector<std::uint8_t> control_ = std::vector<std::uint8_t>(64);
  std::vector<std::uint8_t> notify_ = std::vector<std::uint8_t>(4096);
};

// A stereo signal: a 1 kHz sine on the left, 1.5 kHz on the right.
struct Signal {
  Signal(std::size_t frames, double rate) : l(frames), r(frames) {
    for (std::size_t i = 0; i < frames; ++i) {
      l[i] = float(0.5 * std::sin(2 * std::numbers::pi * 1000 * double(i) / rate));
      r[i] = float(0.5 * std::sin(2 * std::numbers::pi * 1500 * double(i) / rate));
    }
  }
  std::vector<float> l, r;
};

// Runs the whole signal through in blocks whose sizes cycle through `blocks`.
void render(LilvPluginInstance& p, Signal& s, const std::vector<std::uint32_t>& blocks) {
  std::size_t at = 0;
  for (std::size_t b = 0; at < s.l.size(); ++b) {
    const auto n = std::uint32_t(std::min<std::size_t>(blocks[b % blocks.size()], s.l.size() - at));
    float* io[2] = {s.l.data() + at, s.r.data() + at};
    p.run(io, n);
    at += n;
  }
}

double rmsDb(const std::vector<float>& s, std::size_t from, std::size_t to) {
  double sum = 0;
  for (std::size_t i = from; i < to; ++i) sum += double(s[i]) * s[i];
  return 10 * std::log10(sum / double(to - from));
}

bool allFinite(const std::vector<float>& s) {
  for (float x : s)
    if (!std::isfinite(x)) return false;
  return true;
}

// Heavy settings that wake every stage of the chain.
void heavy(LilvPluginInstance& p, bool hq) {
  p.control(kPidDrive) = 70, p.control(kPidDegrade) = 60, p.control(kPidLowCut) = 200;
  p.control(kPidHighCut) = 5000, p.control(kPidSlope) = 48, p.control(kPidMix) = 80;
  p.control(kPidMode) = 2, p.control(kPidWidth) = 60, p.control(kPidHQ) = hq ? 1 : 0;
}

const double kRates[] = {22050, 32000, 44100, 48000, 88200, 96000, 176400, 192000};

// At every rate, blocks of 1, odd sizes, 4096, the unit's 8192 and past it:
// default settings pass a sine at unity once settled, heavy ones with HQ
// give finite sound, the latency port tells HQ's delay (none above 96 kHz,
// where HQ does not oversample), and run() never allocates, locks or waits.
TEST_F(Lv2Torture, AnyBlockSizeAtAnyRateIsRealTimeSafeAndSane) {
  const std::vector<std::uint32_t> blocks = {1, 7, 333, 4096, 8192, 8193, 16384, 1};
  for (double rate : kRates) {
    SCOPED_TRACE(rate);
    LilvPluginInstance p(world_, plugin(ids::kStereoURI), rate);
    ASSERT_TRUE(p.ok());
    p.activate();
    const auto frames = std::size_t(rate);  // one second
    Signal dry(frames, rate), s = dry;
    {
      dsptest::RealTimeTrap trap;
      render(p, s, blocks);
      EXPECT_EQ(trap.violations(), 0);
    }
    EXPECT_EQ(p.latency(), 0);
    EXPECT_NEAR(rmsDb(s.l, frames / 2, frames), rmsDb(dry.l, frames / 2, frames), 0.1);
    EXPECT_NEAR(rmsDb(s.r, frames / 2, frames), rmsDb(dry.r, frames / 2, frames), 0.1);

    heavy(p, true);
    s = dry;
    {
      dsptest::RealTimeTrap trap;
      render(p, s, blocks);
      EXPECT_EQ(trap.violations(), 0);
    }
    EXPECT_TRUE(allFinite(s.l) && allFinite(s.r));
    if (rate <= 96000)
      EXPECT_GT(p.latency(), 0);
    else
      EXPECT_EQ(p.latency(), 0);
    p.deactivate();
  }
}

// NaN, infinities, the largest floats and denormals as input: what is not
// finite counts as silence (the output is bit for bit that of the same input
// with those samples zeroed), huge values give finite output, and after
// denormals the sound is that of silence within a hair.
TEST_F(Lv2Torture, NonFiniteHugeAndDenormalInputIsHarmless) {
  constexpr double kRate = 48000;
  constexpr std::size_t kFrames = 24000;
  const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
  const float denormal = std::numeric_limits<float>::denorm_min() * 1000;
  for (bool hq : {false, true}) {
    SCOPED_TRACE(hq);
    LilvPluginInstance bad(world_, plugin(ids::kStereoURI), kRate), clean(world_, plugin(ids::kStereoURI), kRate);
    ASSERT_TRUE(bad.ok() && clean.ok());
    heavy(bad, hq), heavy(clean, hq);
    bad.activate(), clean.activate();
    Signal a(kFrames, kRate), b = a;
    const float poison[] = {nan, -nan, inf, -inf};
    for (std::size_t i = 1000; i < 3000; i += 3) {
      a.l[i] = poison[i % 4], a.r[i + 1] = poison[(i + 1) % 4];
      b.l[i] = 0, b.r[i + 1] = 0;
    }
    for (std::size_t i = 6000; i < 7000; ++i) a.l[i] = b.l[i] = a.r[i] = b.r[i] = (i % 2 ? denormal : -denormal);
    render(bad, a, {61});
    render(clean, b, {61});
    EXPECT_EQ(a.l, b.l);
    EXPECT_EQ(a.r, b.r);
    EXPECT_TRUE(allFinite(a.l) && allFinite(a.r));

    Signal loud(kFrames, kRate);
    for (std::size_t i = 0; i < kFrames; ++i) loud.l[i] = loud.r[i] = (i / 100) % 2 ? FLT_MAX : -FLT_MAX;
    render(bad, loud, {128});
    EXPECT_TRUE(allFinite(loud.l) && allFinite(loud.r));
  }
}

// HQ switched on and off every tenth of a second while the host runs odd
// blocks: the latency port follows each switch within 100 ms, the sound
// stays finite, run() stays real-time safe.
TEST_F(Lv2Torture, HQSwitchedWhileRunningMovesTheLatencyPortWithIt) {
  for (double rate : {44100.0, 96000.0}) {
    SCOPED_TRACE(rate);
    LilvPluginInstance p(world_, plugin(ids::kStereoURI), rate);
    ASSERT_TRUE(p.ok());
    heavy(p, true);
    p.activate();
    Signal warm(std::size_t(rate / 5), rate);
    render(p, warm, {97});
    const float hqLatency = p.latency();
    ASSERT_GT(hqLatency, 0);
    const auto tenth = std::size_t(rate / 10);
    std::vector<float> l(tenth), r(tenth);
    dsptest::RealTimeTrap trap;
    for (int flip = 0; flip < 20; ++flip) {
      const bool on = flip % 2 == 1;
      p.control(kPidHQ) = on ? 1 : 0;
      for (std::size_t i = 0; i < tenth; ++i) l[i] = r[i] = float(0.3 * std::sin(double(i) * 0.05));
      for (std::size_t at = 0; at < tenth; at += 97) {
        const auto n = std::uint32_t(std::min<std::size_t>(97, tenth - at));
        float* io[2] = {l.data() + at, r.data() + at};
        p.run(io, n);
      }
      EXPECT_EQ(p.latency(), on ? hqLatency : 0) << "flip " << flip;
      EXPECT_TRUE(allFinite(l) && allFinite(r)) << "flip " << flip;
    }
    EXPECT_EQ(trap.violations(), 0);
  }
}

// Deactivate and activate fifty times with sound in between: after each
// activation the plug-in sounds exactly as a new instance with the same
// settings does.
TEST_F(Lv2Torture, ActivateAfterDeactivateStartsAfreshEveryTime) {
  constexpr double kRate = 48000;
  LilvPluginInstance p(world_, plugin(ids::kStereoURI), kRate), fresh(world_, plugin(ids::kStereoURI), kRate);
  ASSERT_TRUE(p.ok() && fresh.ok());
  heavy(p, true), heavy(fresh, true);
  fresh.activate();
  Signal reference(4800, kRate);
  render(fresh, reference, {256});
  for (int cycle = 0; cycle < 50; ++cycle) {
    p.activate();
    Signal s(4800, kRate);
    render(p, s, {256});
    ASSERT_EQ(s.l, reference.l) << "cycle " << cycle;
    ASSERT_EQ(s.r, reference.r) << "cycle " << cycle;
    Signal noise(1000 + std::size_t(cycle) * 17, kRate);
    render(p, noise, {31});
    p.deactivate();
  }
}

// Two instances (stereo and mono, different settings) run interleaved in
// one thread: each sounds exactly as when it runs alone.
TEST_F(Lv2Torture, TwoInstancesAtOnceDoNotShareState) {
  constexpr double kRate = 44100;
  auto make = [&](const char* uri, bool hq) {
    auto p = std::make_unique<LilvPluginInstance>(world_, plugin(uri), kRate);
    if (p->ok()) {
      heavy(*p, hq);
      p->activate();
    }
    return p;
  };
  auto aloneStereo = make(ids::kStereoURI, true), aloneMono = make(ids::kMonoURI, false);
  ASSERT_TRUE(aloneStereo->ok() && aloneMono->ok());
  Signal stereoRef(8000, kRate), monoRef(8000, kRate);
  render(*aloneStereo, stereoRef, {100});
  render(*aloneMono, monoRef, {100});

  auto stereo = make(ids::kStereoURI, true), mono = make(ids::kMonoURI, false);
  Signal a(8000, kRate), b(8000, kRate);
  for (std::size_t at = 0; at < 8000; at += 100) {
    float* ioA[2] = {a.l.data() + at, a.r.data() + at};
    float* ioB[2] = {b.l.data() + at, b.r.data() + at};
    stereo->run(ioA, 100);
    mono->run(ioB, 100);
  }
  EXPECT_EQ(a.l, stereoRef.l);
  EXPECT_EQ(a.r, stereoRef.r);
  EXPECT_EQ(b.l, monoRef.l);
}

}  // namespace
}  // namespace zel::lv2test
