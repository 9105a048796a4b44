// The UI's connection over the host's ports: conversions between the ports'
// hertz and the unit's positions, what is (and is not) written to the host,
// touches, and the patch messages both ways, malformed ones included.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include <lv2/atom/forge.h>
#include <lv2/patch/patch.h>

#include "host/ZelHostView.h"
#include "lv2/common/ZelVantryURIs.h"
#include "lv2/ui/ZelLV2Connection.h"

namespace {

using namespace zel;
namespace ids = zel_vantry_lv2;

struct Host {
  std::map<std::string, LV2_URID> urids;
  LV2_URID_Map map{this, [](LV2_URID_Map_Handle h, const char* uri) -> LV2_URID {
                     auto& u = static_cast<Host*>(h)->urids;
                     return u.emplace(uri, static_cast<LV2_URID>(u.size() + 1)).first->second;
                   }};
  struct Write {
    std::uint32_t port, size, format;
    std::vector<std::uint8_t> bytes;
    float value() const {
      float f;
      std::memcpy(&f, bytes.data(), sizeof f);
      return f;
    }
  };
  std::vector<Write> writes;
  std::vector<std::pair<std::uint32_t, bool>> touches;
  LV2UI_Touch touch{this, [](LV2UI_Feature_Handle h, uint32_t port, bool grabbed) {
                      static_cast<Host*>(h)->touches.emplace_back(port, grabbed);
                    }};
  static void write(LV2UI_Controller c, uint32_t port, uint32_t size, uint32_t format, const void* buffer) {
    const auto* b = static_cast<const std::uint8_t*>(buffer);
    static_cast<Host*>(c)->writes.push_back({port, size, format, {b, b + size}});
  }
  LV2_URID id(const char* uri) { return map.map(this, uri); }

  // A patch:Set as the plug-in sends it.
  std::vector<std::uint8_t> set(const char* property, LV2_URID type, const void* body, std::uint32_t bodySize) {
    std::vector<std::uint8_t> buffer(1024);
    LV2_Atom_Forge forge;
    lv2_atom_forge_init(&forge, &map);
    lv2_atom_forge_set_buffer(&forge, buffer.data(), buffer.size());
    LV2_Atom_Forge_Frame frame;
    auto* object = reinterpret_cast<LV2_Atom*>(lv2_atom_forge_object(&forge, &frame, 0, id(LV2_PATCH__Set)));
    lv2_atom_forge_key(&forge, id(LV2_PATCH__property));
    lv2_atom_forge_urid(&forge, id(property));
    lv2_atom_forge_key(&forge, id(LV2_PATCH__value));
    lv2_atom_forge_atom(&forge, bodySize, type);
    lv2_atom_forge_write(&forge, body, bodySize);
    lv2_atom_forge_pad(&forge, bodySize);
    lv2_atom_forge_pop(&forge, &frame);
    buffer.resize(lv2_atom_total_size(object));
    return buffer;
  }
};

struct Listener final : ZelUnitParameterListener {
  std::vector<std::pair<std::uint32_t, float>> heard;
  void parameterListener(const void*, std::uint32_t pid, float value) override { heard.emplace_back(pid, value); }
};

struct Fixture {
  Host host;
  ZelLV2Connection c{Host::write, &host, &host.map, &host.touch, 2};
  Listener listener;
  Fixture() {
    c.createListener(&listener);
    for (std::uint32_t pid = 0; pid < 12; ++pid) c.addListenerParameter(&listener, pid);
  }
  void port(std::uint32_t index, float value) { c.portEvent(index, sizeof value, 0, &value); }
  void atom(const std::vector<std::uint8_t>& a, std::uint32_t size = 0) {
    c.portEvent(ids::kNotifyAtomPort, size ? size : static_cast<std::uint32_t>(a.size()),
                host.id(LV2_ATOM__eventTransfer), a.data());
  }
};

TEST(LV2Connection, PortsCarryHertzTheUnitPositions) {
  Fixture f;
  f.port(4, 632.4555f);
  ASSERT_EQ(f.listener.heard.size(), 1u);
  EXPECT_NEAR(f.listener.heard[0].second, 10010.0f, 0.05f);
  EXPECT_TRUE(f.host.writes.empty()) << "a host value is never written back";
  // The host view's round trip: the editor shows hertz again.
  EXPECT_NEAR(ZelHostView::editorValueFromUnit(4, f.listener.heard[0].second), 632.4555f, 0.01f);

  f.c.setParameter(5, 10010.0f, nullptr);
  ASSERT_EQ(f.host.writes.size(), 1u);
  EXPECT_EQ(f.host.writes[0].port, 5u);
  EXPECT_EQ(f.host.writes[0].format, 0u);
  EXPECT_NEAR(f.host.writes[0].value(), 632.4555f, 0.01f);
  EXPECT_EQ(f.listener.heard.back(), std::make_pair(5u, 10010.0f)) << "the sender hears its own change";

  // Setting what the port already holds writes nothing (start-up
  // synchronisation), other parameters pass unchanged, out of range clamps.
  float current = 0;
  f.c.getParameter(1, current);
  f.c.setParameter(1, current, nullptr);
  EXPECT_EQ(f.host.writes.size(), 1u);
  f.c.setParameter(1, 42, nullptr);
  EXPECT_EQ(f.host.writes.back().value(), 42.0f);
  f.c.setParameter(4, 30000, nullptr);
  EXPECT_EQ(f.host.writes.back().value(), 20000.0f);
  EXPECT_NE(f.c.setParameter(12, 1, nullptr), kZelUnitNoErr);
  EXPECT_NE(f.c.setParameter(1, NAN, nullptr), kZelUnitNoErr);
}

TEST(LV2Connection, UntrustedPortEventsAreIgnored) {
  Fixture f;
  const float nan = NAN;
  const double wide = 5;
  f.c.portEvent(1, sizeof nan, 0, &nan);
  f.c.portEvent(1, sizeof wide, 0, &wide);
  f.c.portEvent(1, 4, 77, &wide);
  f.c.portEvent(12, sizeof nan, 0, &nan);  // the latency port
  f.c.portEvent(99, sizeof nan, 0, &nan);
  f.c.portEvent(1, 4, 0, nullptr);
  EXPECT_TRUE(f.listener.heard.empty());
}

TEST(LV2Connection, GesturesBecomeTouches) {
  Fixture f;
  f.c.postGesture(ZelUnitGesture::Begin, 3, nullptr);
  f.c.postGesture(ZelUnitGesture::End, 3, nullptr);
  EXPECT_EQ(f.host.touches, (std::vector<std::pair<std::uint32_t, bool>>{{3, true}, {3, false}}));
  ZelLV2Connection noTouch{Host::write, &f.host, &f.host.map, nullptr, 2};
  EXPECT_EQ(noTouch.postGesture(ZelUnitGesture::Begin, 3, nullptr), kZelUnitNoErr);
}

TEST(LV2Connection, PrivateStateTravelsAsPatchMessages) {
  Fixture f;
  f.c.requestState();
  f.c.setPresetName("Telephone");
  f.c.setInterfacePreference(true);
  f.c.setZoom(1.75);
  ASSERT_EQ(f.host.writes.size(), 4u);
  for (const auto& w : f.host.writes) {
    EXPECT_EQ(w.port, ids::kControlAtomPort);
    EXPECT_EQ(w.format, f.host.id(LV2_ATOM__eventTransfer));
  }
  auto object = [&](std::size_t i) { return reinterpret_cast<const LV2_Atom_Object*>(f.host.writes[i].bytes.data()); };
  EXPECT_EQ(object(0)->body.otype, f.host.id(LV2_PATCH__Get));
  const LV2_Atom* property = nullptr;
  const LV2_Atom* value = nullptr;
  lv2_atom_object_get(object(1), f.host.id(LV2_PATCH__property), &property, f.host.id(LV2_PATCH__value), &value, 0);
  ASSERT_TRUE(property && value);
  EXPECT_EQ(reinterpret_cast<const LV2_Atom_URID*>(property)->body, f.host.id(ids::kPresetName));
  EXPECT_STREQ(static_cast<const char*>(LV2_ATOM_BODY_CONST(value)), "Telephone");
  property = value = nullptr;  // lv2_atom_object_get fills only empty slots
  lv2_atom_object_get(object(2), f.host.id(LV2_PATCH__property), &property, f.host.id(LV2_PATCH__value), &value, 0);
  ASSERT_TRUE(property && value);
  EXPECT_EQ(reinterpret_cast<const LV2_Atom_URID*>(property)->body, f.host.id(ids::kThemeToggle));
  EXPECT_EQ(reinterpret_cast<const LV2_Atom_Bool*>(value)->body, 1);
  property = value = nullptr;
  lv2_atom_object_get(object(3), f.host.id(LV2_PATCH__property), &property, f.host.id(LV2_PATCH__value), &value, 0);
  ASSERT_TRUE(property && value);
  EXPECT_EQ(reinterpret_cast<const LV2_Atom_URID*>(property)->body, f.host.id(ids::kZoom));
  EXPECT_EQ(reinterpret_cast<const LV2_Atom_Int*>(value)->body, 175) << "the zoom travels in percent";

  // A long name is cut on a character boundary to what the plug-in keeps.
  std::string longName(ids::kMaxPresetNameBytes - 1, 'a');
  longName += "\xC3\xA9\xC3\xA9";
  f.c.setPresetName(longName);
  std::string kept;
  f.c.getPresetName(kept);
  EXPECT_EQ(kept.size(), ids::kMaxPresetNameBytes - 1);
}

TEST(LV2Connection, PluginAnswersAreCheckedBeforeUse) {
  Fixture f;
  std::vector<std::string> names;
  std::vector<bool> themes;
  std::vector<double> zooms;
  f.c.setObserver({[&](const std::string& n) { names.push_back(n); }, [&](bool t) { themes.push_back(t); },
                   [&](double z) { zooms.push_back(z); }});
  const LV2_URID string = f.host.id(LV2_ATOM__String), integer = f.host.id(LV2_ATOM__Int);
  const std::int32_t one = 1, mono = 1;
  f.atom(f.host.set(ids::kPresetName, string, "Underwater", 11));
  f.atom(f.host.set(ids::kTheme, integer, &one, 4));
  f.atom(f.host.set(ids::kChannelsIn, integer, &mono, 4));
  const std::int32_t percent = 150, tooBig = 400;
  f.atom(f.host.set(ids::kZoom, integer, &percent, 4));
  f.atom(f.host.set(ids::kZoom, integer, &tooBig, 4));
  EXPECT_EQ(zooms, std::vector<double>{1.5});
  double zoom = 0;
  f.c.getZoom(zoom);
  EXPECT_EQ(zoom, 1.5);
  EXPECT_EQ(names, std::vector<std::string>{"Underwater"});
  EXPECT_EQ(themes, std::vector<bool>{true});
  std::uint32_t in = 0, out = 0;
  f.c.getChannelCount(ZelUnitProperty::ChannelsIn, in);
  f.c.getChannelCount(ZelUnitProperty::ChannelsOut, out);
  EXPECT_EQ(in, 1u);
  EXPECT_EQ(out, 2u);

  // Unterminated, wrongly typed, truncated or oversized: ignored.
  f.atom(f.host.set(ids::kPresetName, string, "Unterminated", 12));
  f.atom(f.host.set(ids::kPresetName, integer, &one, 4));
  f.atom(f.host.set(ids::kTheme, string, "1", 2));
  const std::int32_t many = 100000;
  f.atom(f.host.set(ids::kChannelsOut, integer, &many, 4));
  auto good = f.host.set(ids::kPresetName, string, "Cassette Dub", 13);
  f.atom(good, static_cast<std::uint32_t>(good.size() - 8));  // the host's size cuts the atom short
  auto lying = good;
  reinterpret_cast<LV2_Atom*>(lying.data())->size += 4096;
  f.atom(lying);
  std::string huge(1000, 'x');
  f.atom(f.host.set(ids::kPresetName, string, huge.c_str(), static_cast<std::uint32_t>(huge.size() + 1)));
  std::vector<std::uint8_t> tiny(4, 0);
  f.atom(tiny);
  EXPECT_EQ(names.size(), 1u);
  EXPECT_EQ(themes.size(), 1u);
  f.c.getChannelCount(ZelUnitProperty::ChannelsOut, out);
  EXPECT_EQ(out, 2u);
}

}  // namespace
