// Loads the scratch product's bundle (tests/products/scratch, built from its
// folder alone by scratch_product.sh) through lilv, as hosts do: every
// plug-in of the bundle is found with its ports, instantiated, and run at
// 48 kHz; the Gain port changes the level as the unit says (a pass-through
// at 0 dB, half at -6.02 dB); each factory preset restores its values.
//   zel-load-scratch BUNDLE_DIR
// Prints what it checked; exit 0 when all held, 1 with "FAIL: ..." lines.
#include <lilv/lilv.h>
#include <lv2/presets/presets.h>
#include <lv2/urid/urid.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

int failures = 0;
void fail(const std::string& what) {
  std::printf("FAIL: %s\n", what.c_str());
  ++failures;
}

struct Map {
  std::map<std::string, LV2_URID> ids;
  LV2_URID_Map feature{this, [](LV2_URID_Map_Handle h, const char* uri) -> LV2_URID {
                         auto& ids = static_cast<Map*>(h)->ids;
                         return ids.emplace(uri, LV2_URID(ids.size() + 1)).first->second;
                       }};
};

struct Run {
  std::map<std::string, float> controls;  // by symbol
  std::vector<std::vector<float>> in, out;
};

// Restores a preset's port values into `controls`.
void setValue(const char* symbol, void* user, const void* value, std::uint32_t size, std::uint32_t) {
  if (size == sizeof(float)) (*static_cast<std::map<std::string, float>*>(user))[symbol] = *static_cast<const float*>(value);
}

void checkPlugin(LilvWorld* world, const LilvPlugin* plugin, Map& map) {
  const std::string uri = lilv_node_as_uri(lilv_plugin_get_uri(plugin));
  LilvNode* audio = lilv_new_uri(world, LILV_URI_AUDIO_PORT);
  LilvNode* control = lilv_new_uri(world, LILV_URI_CONTROL_PORT);
  LilvNode* input = lilv_new_uri(world, LILV_URI_INPUT_PORT);
  const std::uint32_t ports = lilv_plugin_get_num_ports(plugin);
  const std::uint32_t channels = lilv_plugin_get_num_ports_of_class(plugin, audio, input, nullptr);
  std::printf("%s: %u ports, %u audio inputs\n", uri.c_str(), ports, channels);
  if (channels < 1 || channels > 2) fail(uri + ": " + std::to_string(channels) + " audio inputs");

  const LV2_Feature mapFeature{LV2_URID__map, &map.feature};
  const LV2_Feature* features[] = {&mapFeature, nullptr};
  LilvInstance* instance = lilv_plugin_instantiate(plugin, 48000, features);
  if (!instance) {
    fail(uri + ": lilv cannot instantiate it");
    return;
  }
  Run run;
  constexpr std::uint32_t kFrames = 512;
  std::vector<float> floats(ports, 0.0f);
  std::vector<std::vector<float>> buffers(ports);
  std::vector<std::uint8_t> atoms[2];
  std::map<std::string, std::uint32_t> index;
  for (std::uint32_t i = 0; i < ports; ++i) {
    const LilvPort* port = lilv_plugin_get_port_by_index(plugin, i);
    const std::string symbol = lilv_node_as_string(lilv_port_get_symbol(plugin, port));
    index[symbol] = i;
    if (lilv_port_is_a(plugin, port, control)) {
      LilvNode* def = nullptr;
      lilv_port_get_range(plugin, port, &def, nullptr, nullptr);
      floats[i] = def ? lilv_node_as_float(def) : 0.0f;
      lilv_node_free(def);
      lilv_instance_connect_port(instance, i, &floats[i]);
    } else if (lilv_port_is_a(plugin, port, audio)) {
      buffers[i].assign(kFrames, 0.0f);
      if (lilv_port_is_a(plugin, port, input))
        for (std::uint32_t n = 0; n < kFrames; ++n) buffers[i][n] = 0.5f * std::sin(0.05f * float(n + 7 * i));
      lilv_instance_connect_port(instance, i, buffers[i].data());
    } else {
      // The atom ports: an empty sequence in, room for a few messages out.
      auto& bytes = atoms[lilv_port_is_a(plugin, port, input) ? 0 : 1];
      bytes.assign(4096, 0);
      std::uint32_t header[4] = {8, map.feature.map(map.feature.handle, "http://lv2plug.in/ns/ext/atom#Sequence"), 0, 0};
      if (&bytes == &atoms[1]) header[0] = std::uint32_t(bytes.size() - 8);
      std::memcpy(bytes.data(), header, sizeof header);
      lilv_instance_connect_port(instance, i, bytes.data());
    }
  }
  for (const char* symbol : {"Gain", "Mix", "Power", "latency", "control", "notify"})
    if (!index.count(symbol)) fail(uri + ": no port " + symbol);

  // The level: 0 dB passes the input, -6.02 dB halves it.
  lilv_instance_activate(instance);
  for (const float db : {0.0f, -6.0206f}) {
    floats[index["Gain"]] = db;
    lilv_instance_run(instance, kFrames);
    double worst = 0;
    for (std::uint32_t i = 0; i < ports; ++i) {
      const LilvPort* port = lilv_plugin_get_port_by_index(plugin, i);
      if (!lilv_port_is_a(plugin, port, audio) || lilv_port_is_a(plugin, port, input)) continue;
      const std::uint32_t from = i - channels;  // the matching input
      for (std::uint32_t n = 0; n < kFrames; ++n)
        worst = std::max(worst, double(std::fabs(buffers[i][n] - std::pow(10.0f, db / 20) * buffers[from][n])));
    }
    std::printf("  Gain %.2f dB: output off by at most %.2g\n", db, worst);
    if (!(worst < 1e-4)) fail(uri + ": at Gain " + std::to_string(db) + " dB the output is off by " + std::to_string(worst));
  }
  lilv_instance_deactivate(instance);
  lilv_instance_free(instance);

  // Each factory preset, as a host restores it.
  LilvNode* presetClass = lilv_new_uri(world, LV2_PRESETS__Preset);
  LilvNodes* presets = lilv_plugin_get_related(plugin, presetClass);
  std::map<std::string, std::map<std::string, float>> restored;
  LILV_FOREACH (nodes, i, presets) {
    const LilvNode* preset = lilv_nodes_get(presets, i);
    lilv_world_load_resource(world, preset);
    LilvState* state = lilv_state_new_from_world(world, &map.feature, preset);
    if (!state) {
      fail(uri + ": preset " + lilv_node_as_uri(preset) + " does not load");
      continue;
    }
    std::map<std::string, float> values;
    lilv_state_restore(state, nullptr, setValue, &values, 0, nullptr);
    restored[lilv_state_get_label(state) ? lilv_state_get_label(state) : ""] = values;
    lilv_state_free(state);
  }
  std::printf("  %zu presets\n", restored.size());
  if (restored.size() != 2 || restored["Unity"]["Gain"] != 0.0f || restored["Quieter"]["Gain"] != -6.0f)
    fail(uri + ": the presets Unity (Gain 0) and Quieter (Gain -6) do not restore");
  lilv_nodes_free(presets);
  lilv_node_free(presetClass);
  lilv_node_free(audio);
  lilv_node_free(control);
  lilv_node_free(input);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: zel-load-scratch BUNDLE_DIR\n");
    return 2;
  }
  LilvWorld* world = lilv_world_new();
  std::string dir = argv[1];
  if (dir.back() != '/') dir += '/';
  LilvNode* bundle = lilv_new_file_uri(world, nullptr, dir.c_str());
  lilv_world_load_bundle(world, bundle);
  Map map;
  int found = 0;
  const LilvPlugins* plugins = lilv_world_get_all_plugins(world);
  LILV_FOREACH (plugins, i, plugins) {
    const LilvPlugin* plugin = lilv_plugins_get(plugins, i);
    if (!lilv_node_equals(lilv_plugin_get_bundle_uri(plugin), bundle)) continue;
    ++found;
    checkPlugin(world, plugin, map);
  }
  if (found != 2) fail("the bundle holds " + std::to_string(found) + " plug-ins, not a stereo and a mono one");
  lilv_node_free(bundle);
  lilv_world_free(world);
  std::printf("%s\n", failures ? "scratch bundle: failed" : "scratch bundle: ok");
  return failures ? 1 : 0;
}
