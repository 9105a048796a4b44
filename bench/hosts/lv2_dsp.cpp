// The unit's processing beside other LV2 plug-ins, loaded the way a host
// loads them (lilv, by URI, from LV2_PATH): 256-frame stereo blocks at
// 48 kHz of white noise, each block timed on its own. Rounds are interleaved
// (every setting once per round); the figure is the median over the rounds
// of each round's median time per block.
//   lv2-dsp-compare [--rounds N] [--blocks N] [--plugin 'LABEL;URI[;SYMBOL=VALUE]...']...
//                   [--no-defaults]
// --plugin adds a setting (another product, a peer), --no-defaults leaves
// out the built-in ones.
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kRate = 48000;
constexpr uint32_t kFrames = 256;
constexpr size_t kAtomBytes = 8192;

// ---- urid:map and the options every plug-in here may ask for.
std::map<std::string, LV2_URID> gUrids;
LV2_URID mapURI(LV2_URID_Map_Handle, const char* uri) {
  auto [it, added] = gUrids.emplace(uri, LV2_URID(gUrids.size() + 1));
  return it->second;
}
LV2_URID_Map gMap{nullptr, mapURI};
const LV2_Feature gMapFeature{LV2_URID__map, &gMap};

struct Setting {
  std::string label;
  std::string uri;
  std::map<std::string, float> controls;  // by port symbol; the rest at their defaults
};

struct Instance {
  Setting setting;
  LilvInstance* instance = nullptr;
  std::vector<float> controls;
  std::vector<std::vector<float>> audio;
  std::vector<std::unique_ptr<uint8_t[]>> atoms;
  std::vector<std::pair<LV2_Atom*, bool>> atomPorts;  // buffer, is an input
  std::vector<double> roundMedians;
};

std::vector<float> gNoiseLeft(kFrames), gNoiseRight(kFrames);

bool instantiate(LilvWorld* world, Instance& it, const LV2_Feature* const* features) {
  LilvNode* uri = lilv_new_uri(world, it.setting.uri.c_str());
  const LilvPlugin* plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), uri);
  lilv_node_free(uri);
  if (!plugin) {
    std::fprintf(stderr, "%s: %s is not installed (LV2_PATH)\n", it.setting.label.c_str(), it.setting.uri.c_str());
    return false;
  }
  it.instance = lilv_plugin_instantiate(plugin, kRate, features);
  if (!it.instance) {
    std::fprintf(stderr, "%s: cannot instantiate %s\n", it.setting.label.c_str(), it.setting.uri.c_str());
    return false;
  }
  LilvNode* audioClass = lilv_new_uri(world, LV2_CORE__AudioPort);
  LilvNode* controlClass = lilv_new_uri(world, LV2_CORE__ControlPort);
  LilvNode* atomClass = lilv_new_uri(world, LV2_ATOM__AtomPort);
  LilvNode* inputClass = lilv_new_uri(world, LV2_CORE__InputPort);
  const uint32_t n = lilv_plugin_get_num_ports(plugin);
  std::vector<float> mins(n), maxs(n), defaults(n);
  lilv_plugin_get_port_ranges_float(plugin, mins.data(), maxs.data(), defaults.data());
  it.controls.assign(n, 0.0f);
  it.audio.reserve(n);
  unsigned audioInputs = 0;
  for (uint32_t i = 0; i < n; ++i) {
    const LilvPort* port = lilv_plugin_get_port_by_index(plugin, i);
    const bool input = lilv_port_is_a(plugin, port, inputClass);
    const std::string symbol = lilv_node_as_string(lilv_port_get_symbol(plugin, port));
    if (lilv_port_is_a(plugin, port, audioClass)) {
      if (input) {
        lilv_instance_connect_port(it.instance, i, audioInputs++ % 2 ? gNoiseRight.data() : gNoiseLeft.data());
      } else {
        it.audio.emplace_back(kFrames);
        lilv_instance_connect_port(it.instance, i, it.audio.back().data());
      }
    } else if (lilv_port_is_a(plugin, port, atomClass)) {
      it.atoms.emplace_back(new uint8_t[kAtomBytes]());
      auto* atom = reinterpret_cast<LV2_Atom*>(it.atoms.back().get());
      it.atomPorts.emplace_back(atom, input);
      lilv_instance_connect_port(it.instance, i, atom);
    } else {
      float value = std::isnan(defaults[i]) ? 0.0f : defaults[i];
      if (auto c = it.setting.controls.find(symbol); c != it.setting.controls.end()) value = c->second;
      it.controls[i] = value;
      lilv_instance_connect_port(it.instance, i, &it.controls[i]);
      (void)controlClass;
    }
  }
  for (const auto& [symbol, value] : it.setting.controls) {
    LilvNode* s = lilv_new_string(world, symbol.c_str());
    if (!lilv_plugin_get_port_by_symbol(plugin, s))
      std::fprintf(stderr, "%s: no port named %s\n", it.setting.label.c_str(), symbol.c_str());
    lilv_node_free(s);
  }
  lilv_node_free(audioClass);
  lilv_node_free(controlClass);
  lilv_node_free(atomClass);
  lilv_node_free(inputClass);
  lilv_instance_activate(it.instance);
  return true;
}

void prepareAtoms(Instance& it) {
  for (auto [atom, input] : it.atomPorts) {
    if (input) {  // an empty sequence
      atom->type = mapURI(nullptr, LV2_ATOM__Sequence);
      atom->size = sizeof(LV2_Atom_Sequence_Body);
      reinterpret_cast<LV2_Atom_Sequence*>(atom)->body.unit = 0;
      reinterpret_cast<LV2_Atom_Sequence*>(atom)->body.pad = 0;
    } else {  // room for the plug-in's messages
      atom->type = mapURI(nullptr, LV2_ATOM__Chunk);
      atom->size = kAtomBytes - sizeof(LV2_Atom);
    }
  }
}

void fillNoise(std::minstd_rand& random) {
  std::uniform_real_distribution<float> d(-0.5f, 0.5f);
  for (uint32_t i = 0; i < kFrames; ++i) {
    gNoiseLeft[i] = d(random);
    gNoiseRight[i] = d(random);
  }
}

// The processor's name as the kernel reports it.
std::string cpuModel() {
  std::FILE* f = std::fopen("/proc/cpuinfo", "r");
  if (!f) return "unknown";
  char line[512];
  std::string model = "unknown";
  while (std::fgets(line, sizeof line, f)) {
    if (std::strncmp(line, "model name", 10)) continue;
    const char* colon = std::strchr(line, ':');
    if (!colon) continue;
    model = colon + 2;
    while (!model.empty() && (model.back() == '\n' || model.back() == ' ')) model.pop_back();
    break;
  }
  std::fclose(f);
  return model;
}

double median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

}  // namespace

int main(int argc, char** argv) {
  int rounds = 5, blocks = 4000;
  bool defaults = true;
  std::vector<Setting> added;
  for (int i = 1; i < argc; ++i) {
    if (!std::strcmp(argv[i], "--no-defaults")) {
      defaults = false;
      continue;
    }
    if (i + 1 >= argc) break;
    if (!std::strcmp(argv[i], "--rounds")) rounds = std::max(1, std::atoi(argv[i + 1]));
    else if (!std::strcmp(argv[i], "--blocks")) blocks = std::max(1, std::atoi(argv[i + 1]));
    else if (!std::strcmp(argv[i], "--plugin")) {
      // LABEL;URI;SYMBOL=VALUE;...
      std::vector<std::string> fields;
      std::string rest = argv[i + 1];
      for (std::size_t at; (at = rest.find(';')) != std::string::npos; rest.erase(0, at + 1))
        fields.push_back(rest.substr(0, at));
      fields.push_back(rest);
      if (fields.size() < 2) {
        std::fprintf(stderr, "lv2-dsp-compare: --plugin wants 'LABEL;URI[;SYMBOL=VALUE]...'\n");
        return 2;
      }
      Setting s{fields[0], fields[1], {}};
      for (std::size_t f = 2; f < fields.size(); ++f) {
        const std::size_t eq = fields[f].find('=');
        if (eq != std::string::npos) s.controls[fields[f].substr(0, eq)] = std::strtof(fields[f].c_str() + eq + 1, nullptr);
      }
      added.push_back(std::move(s));
    } else {
      continue;
    }
    ++i;
  }
  const char* vantry = "https://www.zel-audio.example/plugins/vantry#stereo";
  const std::map<std::string, float> heavy{{"Drive", 100},  {"Degrade", 100}, {"Slope", 96}, {"HighCut", 2000},
                                           {"LowCut", 200}, {"Hiss", -20},    {"Mode", 2}};
  std::map<std::string, float> heavyHQ = heavy;
  heavyHQ["HQ"] = 1;
  // The same job for every filter row: a Butterworth high-pass at 200 Hz and
  // a low-pass at 2 kHz. LSP's parametric equaliser in IIR mode with both
  // filters "BWC (BT)" (bilinear Butterworth) at slopes x1/x2/x4; Vantry at
  // Slope 12/24/48/96 with every other stage at rest (its defaults).
  const auto lsp = [](int slope) {
    return std::map<std::string, float>{{"mode", 0}, {"fft", 0},        {"ft_0", 2},     {"fm_0", 2},
                                        {"s_0", float(slope)}, {"f_0", 200}, {"ft_1", 4},
                                        {"fm_1", 2},           {"s_1", float(slope)}, {"f_1", 2000}};
  };
  const auto band = [](float slope) {
    return std::map<std::string, float>{{"LowCut", 200}, {"HighCut", 2000}, {"Slope", slope}};
  };
  const char* lspUri = "http://lsp-plug.in/plugins/lv2/para_equalizer_x16_stereo";
  std::vector<Setting> settings{
      {"vantry defaults", vantry, {}},
      {"vantry heavy", vantry, heavy},
      {"vantry heavy + HQ", vantry, heavyHQ},
      {"x42 fil4 HP 200 + LP 2000", "http://gareus.org/oss/lv2/fil4#stereo",
       {{"HighPass", 1}, {"HPfreq", 200}, {"LowPass", 1}, {"LPfreq", 2000}}},
      {"LSP para EQ x16 BWC (BT) x1 12 dB/oct", lspUri, lsp(0)},
      {"LSP para EQ x16 BWC (BT) x2 24 dB/oct", lspUri, lsp(1)},
      {"LSP para EQ x16 BWC (BT) x4 48 dB/oct", lspUri, lsp(3)},
      {"vantry Slope 12", vantry, band(12)},
      {"vantry Slope 24", vantry, band(24)},
      {"vantry Slope 48", vantry, band(48)},
      {"vantry Slope 96", vantry, band(96)},
  };
  enum { kDefaults, kHeavy, kHeavyHQ, kFil4, kLsp12, kLsp24, kLsp48, kVantry12, kVantry24, kVantry48, kVantry96 };
  if (!defaults) settings.clear();
  settings.insert(settings.end(), added.begin(), added.end());

  LilvWorld* world = lilv_world_new();
  lilv_world_load_all(world);
  const int32_t block = kFrames;
  const float rate = kRate;
  const LV2_Options_Option options[] = {
      {LV2_OPTIONS_INSTANCE, 0, mapURI(nullptr, LV2_BUF_SIZE__minBlockLength), sizeof(int32_t),
       mapURI(nullptr, LV2_ATOM__Int), &block},
      {LV2_OPTIONS_INSTANCE, 0, mapURI(nullptr, LV2_BUF_SIZE__maxBlockLength), sizeof(int32_t),
       mapURI(nullptr, LV2_ATOM__Int), &block},
      {LV2_OPTIONS_INSTANCE, 0, mapURI(nullptr, LV2_BUF_SIZE__nominalBlockLength), sizeof(int32_t),
       mapURI(nullptr, LV2_ATOM__Int), &block},
      {LV2_OPTIONS_INSTANCE, 0, mapURI(nullptr, "http://lv2plug.in/ns/ext/parameters#sampleRate"), sizeof(float),
       mapURI(nullptr, LV2_ATOM__Float), &rate},
      {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
  const LV2_Feature optionsFeature{LV2_OPTIONS__options, const_cast<LV2_Options_Option*>(options)};
  const LV2_Feature boundedFeature{LV2_BUF_SIZE__boundedBlockLength, nullptr};
  const LV2_Feature* features[] = {&gMapFeature, &optionsFeature, &boundedFeature, nullptr};

  std::vector<Instance> instances;
  for (const Setting& s : settings) {
    Instance it;
    it.setting = s;
    instances.push_back(std::move(it));
  }
  if (instances.empty()) {
    std::fprintf(stderr, "lv2-dsp-compare: nothing to compare\n");
    return 2;
  }
  for (Instance& it : instances)
    if (!instantiate(world, it, features)) return 1;

  std::minstd_rand random(1);
  std::vector<double> times(blocks);
  for (int round = -1; round < rounds; ++round) {  // round -1 warms up and is left out
    for (Instance& it : instances) {
      for (int b = 0; b < blocks; ++b) {
        fillNoise(random);
        prepareAtoms(it);
        const auto t0 = std::chrono::steady_clock::now();
        lilv_instance_run(it.instance, kFrames);
        const auto t1 = std::chrono::steady_clock::now();
        times[b] = std::chrono::duration<double, std::micro>(t1 - t0).count();
      }
      if (round >= 0) it.roundMedians.push_back(median(times));
    }
  }

  const double budget = kFrames / kRate * 1e6;
  // Each figure against the first setting, and against x42's fil4 when the
  // built-in list is there.
  const double base = median(instances[0].roundMedians);
  const double fil4 = defaults ? median(instances[kFil4].roundMedians) : 0;
  std::printf("CPU: %s\n\n", cpuModel().c_str());
  std::printf("| plug-in, setting | us per 256-frame block | %% of real time | vs %s |%s\n",
              instances[0].setting.label.c_str(), defaults ? " vs x42 fil4 |" : "");
  std::printf("|---|---|---|---|%s\n", defaults ? "---|" : "");
  for (Instance& it : instances) {
    const double m = median(it.roundMedians);
    std::printf("| %s | %.2f [%.2f-%.2f] | %.3f | x%.2f |", it.setting.label.c_str(), m,
                *std::min_element(it.roundMedians.begin(), it.roundMedians.end()),
                *std::max_element(it.roundMedians.begin(), it.roundMedians.end()), 100 * m / budget, m / base);
    if (defaults) std::printf(" x%.2f |", m / fil4);
    std::printf("\n");
  }
  std::printf("\n%d interleaved rounds of %d blocks (48 kHz stereo noise); median of the rounds' median block time "
              "[min-max of those]; real time is %.0f us per block.\n",
              rounds, blocks, budget);

  if (defaults) {
    // The same job against LSP, each ratio from the two settings' medians of
    // this run, with the goal it is held to.
    const auto at = [&](int i) { return median(instances[i].roundMedians); };
    struct Ratio {
      const char* what;
      double value, goal;
    };
    const Ratio ratios[] = {
        {"Slope 12 / LSP x1 (12 dB/oct)", at(kVantry12) / at(kLsp12), 1.0},
        {"Slope 24 / LSP x2 (24 dB/oct)", at(kVantry24) / at(kLsp24), 1.0},
        {"Slope 48 / LSP x4 (48 dB/oct)", at(kVantry48) / at(kLsp48), 1.0},
        {"Slope 96 / LSP x4 (48 dB/oct)", at(kVantry96) / at(kLsp48), 2.0},
        {"defaults / LSP x1 (12 dB/oct)", at(kDefaults) / at(kLsp12), 0.6},
    };
    std::printf("\n| same job: HP 200 Hz + LP 2 kHz | ratio | goal |\n|---|---|---|\n");
    for (const Ratio& r : ratios)
      std::printf("| vantry %s | %.2f | <= %.1f %s |\n", r.what, r.value, r.goal, r.value <= r.goal ? "met" : "NOT met");
  }

  for (Instance& it : instances) {
    lilv_instance_deactivate(it.instance);
    lilv_instance_free(it.instance);
  }
  lilv_world_free(world);
  return 0;
}
