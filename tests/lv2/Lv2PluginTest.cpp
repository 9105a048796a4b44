// The plug-in library as a host sees it: descriptors, audio, the latency
// port, patch messages (good and malformed), state, and the audio thread's
// rules.
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <set>

#include "../dsp/RealTimeTrap.h"
#include "Lv2TestHost.h"

namespace zel::lv2test {
namespace {

using Replies = std::map<std::string, std::string>;

std::vector<float> sine(std::size_t n, double hz, double amplitude = 0.5) {
  std::vector<float> s(n);
  for (std::size_t i = 0; i < n; ++i) s[i] = float(amplitude * std::sin(2 * std::numbers::pi * hz * double(i) / 48000));
  return s;
}

double rms(const std::vector<float>& s, std::size_t from) {
  double sum = 0;
  for (std::size_t i = from; i < s.size(); ++i) sum += double(s[i]) * s[i];
  return std::sqrt(sum / double(s.size() - from));
}

// Runs both channels through in place, in blocks of 256.
void render(Instance& p, std::vector<float>& l, std::vector<float>& r) {
  for (std::size_t at = 0; at < l.size(); at += 256) {
    const auto n = std::uint32_t(std::min<std::size_t>(256, l.size() - at));
    float* io[2] = {l.data() + at, r.data() + at};
    p.run(n, io, io);
  }
}

TEST(Lv2Plugin, DescriptorsAreStereoThenMono) {
  ASSERT_NE(descriptor(0), nullptr);
  EXPECT_STREQ(descriptor(0)->URI, ids::kStereoURI);
  ASSERT_NE(descriptor(1), nullptr);
  EXPECT_STREQ(descriptor(1)->URI, ids::kMonoURI);
  EXPECT_EQ(descriptor(2), nullptr);
}

TEST(Lv2Plugin, RefusesToStartOnlyAtAnUnusableRate) {
  const LV2_Descriptor* d = descriptor(0);
  ASSERT_NE(d, nullptr);
  const LV2_Feature* none[] = {nullptr};
  for (double rate : {0.0, -48000.0, double(NAN), 1e7}) EXPECT_EQ(d->instantiate(d, rate, "", none), nullptr) << rate;
  for (const LV2_Feature* const* features : {static_cast<const LV2_Feature* const*>(none),
                                             static_cast<const LV2_Feature* const*>(nullptr)}) {
    LV2_Handle h = d->instantiate(d, 44100, "", features);
    EXPECT_NE(h, nullptr);
    if (h) d->cleanup(h);
  }
}

// lv2apply, ecasound and other minimal hosts: no urid:map, or the atom
// ports left unconnected. The sound is the same as in a full host; the
// messages and the state of our own are simply not there.
TEST(Lv2Plugin, MinimalHostsHearTheSameSound) {
  for (HostOffer offer : {HostOffer{false, true}, HostOffer{true, false}, HostOffer{false, false}}) {
    Instance full(0), minimal(0, 48000, offer);
    ASSERT_TRUE(full.ok());
    ASSERT_TRUE(minimal.ok()) << offer.map << offer.atomPorts;
    for (Instance* p : {&full, &minimal}) {
      p->control(kPidDrive) = 60, p->control(kPidHighCut) = 3000, p->control(kPidHQ) = 1;
      if (p == &minimal) {
        // Whatever lies in the control buffer is not read without a map.
        p->sendSetString(p->urid(ids::kPresetName), "Unread");
        p->sendGet();
      }
    }
    const std::vector<float> dry = sine(9600, 440);
    std::vector<float> l1 = dry, r1 = dry, l2 = dry, r2 = dry;
    render(full, l1, r1);
    {
      dsptest::RealTimeTrap trap;
      render(minimal, l2, r2);
      EXPECT_EQ(trap.violations(), 0);
    }
    EXPECT_EQ(l1, l2) << offer.map << offer.atomPorts;
    EXPECT_EQ(r1, r2);
    EXPECT_EQ(minimal.latency(), full.latency());
    EXPECT_GT(minimal.latency(), 0);
    if (offer.atomPorts) {
      minimal.run();
      EXPECT_TRUE(minimal.messages().empty()) << "messages without a map";
    }
    // No state of its own to save, and none is asked for.
    const auto* state = static_cast<const LV2_State_Interface*>(
        minimal.lv2Descriptor()->extension_data(LV2_STATE__interface));
    ASSERT_NE(state, nullptr);
    int stored = 0;
    const auto store = [](LV2_State_Handle h, std::uint32_t, const void*, std::size_t, std::uint32_t, std::uint32_t) {
      ++*static_cast<int*>(h);
      return LV2_STATE_SUCCESS;
    };
    if (!offer.map) {
      EXPECT_EQ(state->save(minimal.handle(), store, &stored, 0, nullptr), LV2_STATE_SUCCESS);
      EXPECT_EQ(stored, 0);
    }
  }
}

TEST(Lv2Plugin, DefaultSettingsPassAudioAtUnityAndPowerOffPassesItUntouched) {
  for (std::uint32_t index : {0u, 1u}) {
    Instance p(index);
    ASSERT_TRUE(p.ok());
    const std::vector<float> dry = sine(9600, 1000);
    std::vector<float> l = dry, r = dry;
    render(p, l, r);
    EXPECT_NEAR(20 * std::log10(rms(l, 4800) / rms(dry, 4800)), 0.0, 0.1) << index;

    // Heavy settings change the sound; the host's enabled port at 0 undoes them.
    p.control(kPidDrive) = 100, p.control(kPidDegrade) = 100, p.control(kPidHighCut) = 800;
    l = dry, r = dry;
    render(p, l, r);
    EXPECT_GT(std::abs(20 * std::log10(rms(l, 4800) / rms(dry, 4800))), 1.0) << index;
    p.control(kPidMasterOnOff) = 0;
    l = dry, r = dry;
    render(p, l, r);
    for (std::size_t i = 4800; i < dry.size(); ++i) ASSERT_NEAR(l[i], dry[i], 1e-6) << index << " at " << i;
  }
}

TEST(Lv2Plugin, LatencyPortFollowsHQ) {
  // The unit switches HQ at the bottom of a short dip; 100 ms covers it.
  constexpr std::uint32_t kSwitch = 4800;
  Instance p(0);
  ASSERT_TRUE(p.ok());
  p.run(kSwitch);
  EXPECT_EQ(p.latency(), 0);
  p.control(kPidHQ) = 1;
  p.run(kSwitch);
  const float hq = p.latency();
  EXPECT_GT(hq, 0);
  p.control(kPidHQ) = NAN;  // ignored: HQ stays on
  p.run(kSwitch);
  EXPECT_EQ(p.latency(), hq);
  p.control(kPidHQ) = 0;
  p.run(kSwitch);
  EXPECT_EQ(p.latency(), 0);
  p.control(kPidHQ) = 0.25f;  // LV2 toggles: anything above zero is on
  p.run(kSwitch);
  EXPECT_EQ(p.latency(), hq);
}

TEST(Lv2Patch, GetAnswersWithPresetNameThemeAndChannels) {
  for (std::uint32_t index : {0u, 1u}) {
    Instance p(index);
    ASSERT_TRUE(p.ok());
    p.sendSetString(p.urid(ids::kPresetName), "Telephone");
    p.run();
    EXPECT_TRUE(p.replies().empty()) << "a Set is not echoed";
    const std::string channels = std::to_string(p.channels());
    EXPECT_EQ(p.query(), (Replies{{ids::kPresetName, "Telephone"},
                                  {ids::kTheme, "0"},
                                  {ids::kZoom, "100"},
                                  {ids::kChannelsIn, channels},
                                  {ids::kChannelsOut, channels}}));
    p.sendGet(p.urid(ids::kTheme));
    p.run();
    EXPECT_EQ(p.replies(), (Replies{{ids::kTheme, "0"}}));
    p.sendGet(p.urid("https://www.zel-audio.example/unknown"));
    p.run();
    EXPECT_TRUE(p.replies().empty());
  }
}

TEST(Lv2Patch, ZoomIsKeptInPercentWithinItsRange) {
  Instance p(0);
  ASSERT_TRUE(p.ok());
  const LV2_URID zoom = p.urid(ids::kZoom);
  p.sendSetInt(zoom, 150);
  p.run();
  EXPECT_EQ(p.query()[ids::kZoom], "150");
  for (std::int32_t bad : {99, 201, -150, 0}) p.sendSetInt(zoom, bad);
  p.sendSetBool(zoom, true);  // not an Int
  p.run();
  EXPECT_EQ(p.query()[ids::kZoom], "150");
}

TEST(Lv2Patch, ThemeToggleFlipsTheParity) {
  Instance p(0);
  ASSERT_TRUE(p.ok());
  const LV2_URID toggle = p.urid(ids::kThemeToggle);
  p.sendSetBool(toggle, true);
  p.run();
  EXPECT_EQ(p.query()[ids::kTheme], "1");
  p.sendSetBool(toggle, false);  // not a toggle
  p.run();
  EXPECT_EQ(p.query()[ids::kTheme], "1");
  p.sendSetBool(toggle, true);
  p.sendSetBool(toggle, true);
  p.sendSetBool(toggle, true);
  p.run();
  EXPECT_EQ(p.query()[ids::kTheme], "0");
}

TEST(Lv2Patch, NamesUpToTheLimitAreKeptWholeLongerOnesIgnored) {
  Instance p(0);
  ASSERT_TRUE(p.ok());
  std::string longest(ids::kMaxPresetNameBytes - 2, 'x');
  longest += "\xC3\xA9";  // é: 255 bytes in all
  p.sendSetString(p.urid(ids::kPresetName), longest);
  p.run();
  EXPECT_EQ(p.query()[ids::kPresetName], longest);
  p.sendSetString(p.urid(ids::kPresetName), longest + "y");
  p.run();
  EXPECT_EQ(p.query()[ids::kPresetName], longest);
}

// Bytes of an event body, built by hand so that they can lie.
struct Bytes {
  std::vector<std::uint8_t> b;
  void u32(std::uint32_t v) { b.insert(b.end(), reinterpret_cast<std::uint8_t*>(&v), reinterpret_cast<std::uint8_t*>(&v) + 4); }
  void raw(const std::string& s) { b.insert(b.end(), s.begin(), s.end()); }
  void pad() { b.resize((b.size() + 7) & ~std::size_t(7), 0); }
};

struct Property {
  LV2_URID key, type;
  std::string value;
  std::uint32_t declaredSize;  // the value atom's size field
};

// A patch:Set object with the given properties; `objectSize` overrides the
// object's size field when not 0.
std::vector<std::uint8_t> object(Instance& p, const std::vector<Property>& props, std::uint32_t objectSize = 0) {
  Bytes o;
  o.u32(0), o.u32(p.urid(LV2_ATOM__Object)), o.u32(0), o.u32(p.urid(zel_lv2::kSetMessage));
  for (const Property& prop : props) {
    o.u32(prop.key), o.u32(0), o.u32(prop.declaredSize), o.u32(prop.type);
    o.raw(prop.value);
    o.pad();
  }
  const auto size = objectSize ? objectSize : std::uint32_t(o.b.size() - sizeof(LV2_Atom));
  std::memcpy(o.b.data(), &size, 4);
  return o.b;
}

std::string u32s(std::uint32_t v) { return std::string(reinterpret_cast<const char*>(&v), 4); }

TEST(Lv2Patch, MalformedMessagesAreIgnored) {
  struct Case {
    const char* what;
    std::function<void(Instance&)> send;
    bool laterEventsSurvive;  // whether a good message after it is still read
  };
  const auto setName = [](Instance& p, LV2_URID type, const std::string& bytes, std::uint32_t size) {
    p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID), u32s(p.urid(ids::kPresetName)), 4},
                         {p.urid(LV2_PATCH__value), type, bytes, size}}));
  };
  const auto str = [](Instance& p) { return p.urid(LV2_ATOM__String); };
  const std::string s(1, '\0');
  const Case cases[] = {
      {"name as an Int", [&](Instance& p) { setName(p, p.urid(LV2_ATOM__Int), u32s(7), 4); }, true},
      {"unterminated name", [&](Instance& p) { setName(p, str(p), "Bad", 3); }, true},
      {"zero inside the name", [&](Instance& p) { setName(p, str(p), "Ba" + s + "d" + s, 5); }, true},
      {"empty string atom", [&](Instance& p) { setName(p, str(p), "", 0); }, true},
      {"name too long", [&](Instance& p) { setName(p, str(p), std::string(256, 'x') + s, 257); }, true},
      {"broken UTF-8", [&](Instance& p) { setName(p, str(p), "\xC3(" + s, 3); }, true},
      {"overlong UTF-8", [&](Instance& p) { setName(p, str(p), "\xC0\xAF" + s, 3); }, true},
      {"UTF-8 surrogate", [&](Instance& p) { setName(p, str(p), "\xED\xA0\x80" + s, 4); }, true},
      {"value larger than its object", [&](Instance& p) { setName(p, str(p), "Bad" + s, 0xFFFFFFF0u); }, true},
      {"value past the end of its object",
       [&](Instance& p) {
         // 56 bytes of body with the value's 4 bytes at 48; the object claims 50.
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID), u32s(p.urid(ids::kPresetName)), 4},
                              {p.urid(LV2_PATCH__value), str(p), "Bad" + s, 4}},
                          50));
       },
       true},
      {"property URID of 8 bytes",
       [&](Instance& p) {
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID),
                               u32s(p.urid(ids::kPresetName)) + u32s(0), 8},
                              {p.urid(LV2_PATCH__value), str(p), "Bad" + s, 4}}));
       },
       true},
      {"property given as a string",
       [&](Instance& p) {
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), str(p), ids::kPresetName + s,
                               std::uint32_t(sizeof(ids::kPresetName))},
                              {p.urid(LV2_PATCH__value), str(p), "Bad" + s, 4}}));
       },
       true},
      {"value given twice",
       [&](Instance& p) {
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID), u32s(p.urid(ids::kPresetName)), 4},
                              {p.urid(LV2_PATCH__value), str(p), "Bad" + s, 4},
                              {p.urid(LV2_PATCH__value), str(p), "Bad" + s, 4}}));
       },
       true},
      {"object shorter than its header", [&](Instance& p) { p.sendRaw(object(p, {}, 4)); }, true},
      {"object without a value",
       [&](Instance& p) {
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID), u32s(p.urid(ids::kPresetName)), 4}}));
       },
       true},
      {"an atom that is no object", [&](Instance& p) { p.sendRaw({4, 0, 0, 0, 0, 0, 0, 0, 'B', 'a', 'd', 0}); },
       true},
      {"theme toggle as an Int",
       [&](Instance& p) {
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID), u32s(p.urid(ids::kThemeToggle)), 4},
                              {p.urid(LV2_PATCH__value), p.urid(LV2_ATOM__Int), u32s(1), 4}}));
       },
       true},
      {"theme toggle Bool of 8 bytes",
       [&](Instance& p) {
         p.sendRaw(object(p, {{p.urid(LV2_PATCH__property), p.urid(LV2_ATOM__URID), u32s(p.urid(ids::kThemeToggle)), 4},
                              {p.urid(LV2_PATCH__value), p.urid(LV2_ATOM__Bool), u32s(1) + u32s(1), 8}}));
       },
       true},
      {"object larger than the sequence", [&](Instance& p) { p.sendRaw(object(p, {}, 0x7FFFFFF0u)); }, false},
  };
  for (const Case& c : cases) {
    Instance p(0);
    ASSERT_TRUE(p.ok());
    p.sendSetString(p.urid(ids::kPresetName), "Keep");
    p.run();
    c.send(p);
    p.run();
    Replies r = p.query();
    EXPECT_EQ(r[ids::kPresetName], "Keep") << c.what;
    EXPECT_EQ(r[ids::kTheme], "0") << c.what;
    // The reading finds the next event behind a malformed one.
    c.send(p);
    p.sendSetString(p.urid(ids::kPresetName), "After");
    p.run();
    r = p.query();
    EXPECT_EQ(r[ids::kPresetName], c.laterEventsSurvive ? "After" : "Keep") << c.what;
  }
}

TEST(Lv2Patch, ACutOrMistypedSequenceIsNotRead) {
  for (bool cut : {true, false}) {
    Instance p(0);
    ASSERT_TRUE(p.ok());
    p.sendSetString(p.urid(ids::kPresetName), "Keep");
    p.run();
    p.sendSetString(p.urid(ids::kPresetName), "Lost");
    if (cut)
      p.controlSequence()->atom.size -= 8;  // ends inside the event
    else
      p.controlSequence()->atom.type = p.urid(LV2_ATOM__Chunk);
    p.run();
    EXPECT_EQ(p.query()[ids::kPresetName], "Keep") << cut;
  }
}

// A state store keyed by URI, so instances with different maps can share it.
struct FakeState {
  struct Value {
    std::string type;
    std::vector<std::uint8_t> bytes;
  };
  std::map<std::string, Value> values;
  UridMap* map = nullptr;

  static LV2_State_Status store(LV2_State_Handle h, std::uint32_t key, const void* value, std::size_t size,
                                std::uint32_t type, std::uint32_t) {
    auto* s = static_cast<FakeState*>(h);
    const auto* b = static_cast<const std::uint8_t*>(value);
    s->values[s->map->unmap(key)] = {s->map->unmap(type), std::vector<std::uint8_t>(b, b + size)};
    return LV2_STATE_SUCCESS;
  }
  static const void* retrieve(LV2_State_Handle h, std::uint32_t key, std::size_t* size, std::uint32_t* type,
                              std::uint32_t* flags) {
    auto* s = static_cast<FakeState*>(h);
    const auto it = s->values.find(s->map->unmap(key));
    if (it == s->values.end()) return nullptr;
    *size = it->second.bytes.size();
    *type = (*s->map)(it->second.type.c_str());
    *flags = LV2_STATE_IS_POD;
    return it->second.bytes.data();
  }
  void put(const char* key, const char* type, const std::string& bytes) {
    values[key] = {type, std::vector<std::uint8_t>(bytes.begin(), bytes.end())};
  }
};

const LV2_State_Interface* stateOf(Instance& p) {
  return static_cast<const LV2_State_Interface*>(p.lv2Descriptor()->extension_data(LV2_STATE__interface));
}

TEST(Lv2State, SaveAndRestoreCarryPresetNameAndTheme) {
  Instance a(0);
  ASSERT_TRUE(a.ok());
  ASSERT_NE(stateOf(a), nullptr);
  EXPECT_EQ(a.lv2Descriptor()->extension_data("https://www.zel-audio.example/unknown"), nullptr);
  a.sendSetString(a.urid(ids::kPresetName), "Dusty Vinyl");
  a.sendSetBool(a.urid(ids::kThemeToggle), true);
  a.sendSetInt(a.urid(ids::kZoom), 175);
  a.run();
  FakeState saved;
  saved.map = &a.map();
  ASSERT_EQ(stateOf(a)->save(a.handle(), FakeState::store, &saved, 0, nullptr), LV2_STATE_SUCCESS);
  ASSERT_EQ(saved.values.count(ids::kPresetName), 1u);
  EXPECT_EQ(saved.values[ids::kPresetName].type, LV2_ATOM__String);
  EXPECT_EQ(std::string(saved.values[ids::kPresetName].bytes.begin(), saved.values[ids::kPresetName].bytes.end()),
            std::string("Dusty Vinyl", 12));
  EXPECT_EQ(saved.values[ids::kTheme].type, LV2_ATOM__Int);

  Instance b(1);  // another map, another channel count
  ASSERT_TRUE(b.ok());
  saved.map = &b.map();
  ASSERT_EQ(stateOf(b)->restore(b.handle(), FakeState::retrieve, &saved, 0, nullptr), LV2_STATE_SUCCESS);
  b.run();  // announced without being asked
  EXPECT_EQ(b.replies(), (Replies{{ids::kPresetName, "Dusty Vinyl"}, {ids::kTheme, "1"}, {ids::kZoom, "175"}}));
  b.run();
  EXPECT_TRUE(b.replies().empty()) << "announced once";
}

TEST(Lv2State, RestoreIgnoresValuesOfTheWrongShape) {
  const std::string nul(1, '\0');
  const std::vector<std::pair<const char*, std::function<void(FakeState&)>>> cases = {
      {"name as an Int", [](FakeState& s) { s.put(ids::kPresetName, LV2_ATOM__Int, u32s(3)); }},
      {"unterminated name", [](FakeState& s) { s.put(ids::kPresetName, LV2_ATOM__String, "Bad"); }},
      {"empty name value", [](FakeState& s) { s.put(ids::kPresetName, LV2_ATOM__String, ""); }},
      {"name too long", [&](FakeState& s) { s.put(ids::kPresetName, LV2_ATOM__String, std::string(300, 'x') + nul); }},
      {"theme as a string", [&](FakeState& s) { s.put(ids::kTheme, LV2_ATOM__String, "0" + nul); }},
      {"theme out of range", [](FakeState& s) { s.put(ids::kTheme, LV2_ATOM__Int, u32s(7)); }},
      {"theme of 8 bytes", [](FakeState& s) { s.put(ids::kTheme, LV2_ATOM__Int, u32s(0) + u32s(0)); }},
      {"zoom out of range", [](FakeState& s) { s.put(ids::kZoom, LV2_ATOM__Int, u32s(500)); }},
      {"zoom as a string", [&](FakeState& s) { s.put(ids::kZoom, LV2_ATOM__String, "150" + nul); }},
  };
  for (const auto& [what, fill] : cases) {
    Instance p(0);
    ASSERT_TRUE(p.ok());
    p.sendSetString(p.urid(ids::kPresetName), "Keep");
    p.sendSetBool(p.urid(ids::kThemeToggle), true);
    p.run();
    FakeState state;
    state.map = &p.map();
    fill(state);
    EXPECT_EQ(stateOf(p)->restore(p.handle(), FakeState::retrieve, &state, 0, nullptr), LV2_STATE_SUCCESS);
    p.run();
    EXPECT_EQ(p.replies(), (Replies{{ids::kPresetName, "Keep"}, {ids::kTheme, "1"}, {ids::kZoom, "100"}})) << what;
  }
}

TEST(Lv2Notify, ASmallBufferGetsWholeMessagesOnlyAndTheRestLater) {
  Instance p(0);
  ASSERT_TRUE(p.ok());
  p.sendSetString(p.urid(ids::kPresetName), "Telephone");
  p.run();
  for (std::uint32_t capacity = sizeof(LV2_Atom); capacity <= 400; ++capacity) {
    p.sendGet();
    p.run(64, capacity);
    bool wellFormed = false;
    std::vector<Message> all = p.messages(&wellFormed);
    EXPECT_TRUE(wellFormed) << capacity;
    const auto& bytes = p.notifyBytes();
    for (std::size_t i = capacity; i < bytes.size(); ++i)
      ASSERT_EQ(bytes[i], 0xA5) << "written past a capacity of " << capacity << " at " << i;
    p.run();  // room enough for what is still owed
    for (const Message& m : p.messages()) all.push_back(m);
    std::set<LV2_URID> properties;
    for (const Message& m : all) properties.insert(m.property);
    EXPECT_EQ(all.size(), 5u) << capacity;  // name, theme, zoom, channels in and out
    EXPECT_EQ(properties.size(), 5u) << capacity;
  }
}

TEST(Lv2RealTime, TheTrapSeesIntoThePluginLibrary) {
  UridMap map;
  const LV2_Descriptor* d = descriptor(0);
  ASSERT_NE(d, nullptr);
  const LV2_Feature* features[] = {map.feature(), nullptr};
  d->cleanup(d->instantiate(d, 48000, "", features));  // maps every URI once
  LV2_Handle h;
  {
    dsptest::RealTimeTrap trap;
    h = d->instantiate(d, 48000, "", features);
    EXPECT_GT(trap.violations(), 0);
  }
  d->cleanup(h);
}

TEST(Lv2RealTime, RunNeverAllocatesLocksOrWaits) {
  for (std::uint32_t index : {0u, 1u}) {
    Instance p(index);
    ASSERT_TRUE(p.ok());
    const LV2_URID name = p.urid(ids::kPresetName), toggle = p.urid(ids::kThemeToggle), theme = p.urid(ids::kTheme);
    (void)p.urid(zel_lv2::kGetMessage), (void)p.urid(zel_lv2::kSetMessage), (void)p.urid(LV2_PATCH__property);
    (void)p.urid(LV2_PATCH__value), (void)p.urid(LV2_ATOM__String), (void)p.urid(LV2_ATOM__Bool);
    (void)p.urid(LV2_ATOM__URID);
    std::vector<float> l = sine(8192, 440), r = sine(8192, 660);
    const std::string names[] = {"Telephone", "AM Radio", std::string(255, 'n')};
    std::mt19937 random(5);
    dsptest::RealTimeTrap trap;
    for (int block = 0; block < 300; ++block) {
      for (int pid = 0; pid < kZelParameterCount; ++pid) {
        const auto& q = kZelParameters[pid];
        p.control(pid) = q.minimum + (q.maximum - q.minimum) * float(random() % 1000) / 1000.0f;
      }
      p.sendSetString(name, names[block % 3]);
      if (block % 7 == 0) p.sendSetBool(toggle, true);
      if (block % 5 == 0) p.sendGet();
      if (block % 11 == 0) p.sendGet(theme);
      const std::uint32_t frames = std::uint32_t(block * 37 % 700 + (block % 50 == 0 ? 7000 : 1));
      float* io[2] = {l.data(), r.data()};
      p.run(frames, io, io, block % 3 == 0 ? 100 : Instance::kAtomBytes);
    }
    EXPECT_EQ(trap.violations(), 0) << index;
  }
}

}  // namespace
}  // namespace zel::lv2test
