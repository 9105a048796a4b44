// The factory presets as lilv (the library most hosts use) reads them from
// the bundle, restored into the plug-in.
#include <lilv/lilv.h>
#include <lv2/presets/presets.h>

#include <set>

#include "Lv2TestHost.h"

namespace zel::lv2test {
namespace {

struct PortValues {
  std::map<std::string, float> values;
  LV2_URID floatType;
  bool allFloats = true;
};

void setValue(const char* symbol, void* user, const void* value, std::uint32_t size, std::uint32_t type) {
  auto* v = static_cast<PortValues*>(user);
  if (type != v->floatType || size != sizeof(float)) {
    v->allFloats = false;
    return;
  }
  v->values[symbol] = *static_cast<const float*>(value);
}

class Lv2Presets : public ::testing::Test {
 protected:
  void SetUp() override {
    world_ = lilv_world_new();
    LilvNode* bundle = lilv_new_file_uri(world_, nullptr, ZEL_LV2_BUNDLE_DIR "/");
    lilv_world_load_bundle(world_, bundle);
    lilv_node_free(bundle);
  }
  void TearDown() override { lilv_world_free(world_); }
  LilvWorld* world_ = nullptr;
};

TEST_F(Lv2Presets, EveryFactoryPresetLoadsAndRestoresPortsAndName) {
  LilvNode* presetClass = lilv_new_uri(world_, LV2_PRESETS__Preset);
  LilvNode* bankProperty = lilv_new_uri(world_, LV2_PRESETS__bank);
  LilvNode* label = lilv_new_uri(world_, "http://www.w3.org/2000/01/rdf-schema#label");
  std::set<std::string> namesOf[2];
  for (std::uint32_t index : {0u, 1u}) {
    Instance p(index);
    ASSERT_TRUE(p.ok());
    LilvNode* uri = lilv_new_uri(world_, p.lv2Descriptor()->URI);
    const LilvPlugin* plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world_), uri);
    lilv_node_free(uri);
    ASSERT_NE(plugin, nullptr) << index;
    LilvNodes* presets = lilv_plugin_get_related(plugin, presetClass);
    EXPECT_GT(lilv_nodes_size(presets), 0u);
    LILV_FOREACH (nodes, i, presets) {
      const LilvNode* preset = lilv_nodes_get(presets, i);
      const std::string where = lilv_node_as_uri(preset);
      lilv_world_load_resource(world_, preset);
      LilvState* state = lilv_state_new_from_world(world_, p.map().map(), preset);
      ASSERT_NE(state, nullptr) << where;
      const std::string name = lilv_state_get_label(state) ? lilv_state_get_label(state) : "";
      EXPECT_FALSE(name.empty()) << where;
      EXPECT_TRUE(namesOf[index].insert(name).second) << "two presets named " << name;

      // Every preset sits in at least one labelled bank.
      LilvNodes* banks = lilv_world_find_nodes(world_, preset, bankProperty, nullptr);
      EXPECT_GT(lilv_nodes_size(banks), 0u) << where;
      LILV_FOREACH (nodes, b, banks) {
        LilvNode* bankLabel = lilv_world_get(world_, lilv_nodes_get(banks, b), label, nullptr);
        EXPECT_TRUE(bankLabel && lilv_node_is_string(bankLabel)) << where;
        lilv_node_free(bankLabel);
      }
      lilv_nodes_free(banks);

      PortValues ports{{}, p.urid(LV2_ATOM__Float)};
      LilvInstance instance{p.lv2Descriptor(), p.handle(), nullptr};
      lilv_state_restore(state, &instance, setValue, &ports, 0, nullptr);
      EXPECT_TRUE(ports.allFloats) << where;
      EXPECT_FALSE(ports.values.empty()) << where;
      // A preset never switches the plug-in off: Power is the host's bypass.
      EXPECT_EQ(ports.values.count(kZelParameters[kPidMasterOnOff].codeName), 0u) << where;
      for (const auto& [symbol, value] : ports.values) {
        int pid = -1;
        for (int k = 0; k < kZelParameterCount; ++k)
          if (symbol == kZelParameters[k].codeName) pid = k;
        ASSERT_GE(pid, 0) << where << ": no port " << symbol;
        EXPECT_GE(value, kZelParameters[pid].minimum) << where << " " << symbol;
        EXPECT_LE(value, kZelParameters[pid].maximum) << where << " " << symbol;
      }
      // The plug-in tells the editor which preset it now holds.
      p.run();
      EXPECT_EQ(p.replies()[ids::kPresetName], name) << where;
      lilv_state_free(state);
    }
    lilv_nodes_free(presets);
  }
  EXPECT_EQ(namesOf[0], namesOf[1]) << "the stereo and mono plug-ins offer the same presets";
  lilv_node_free(label);
  lilv_node_free(bankProperty);
  lilv_node_free(presetClass);
}

}  // namespace
}  // namespace zel::lv2test
