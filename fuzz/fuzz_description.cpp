// Feeds arbitrary bytes to the description loader and then uses everything
// it built the way the editor does: the editor layouts, every clump's and
// parameter's layout, display text of a few values of every parameter, and
// the preset rules.
#include <cstddef>
#include <cstdint>
#include <string>

#include "layout/engine/ZelPluginLayout.h"
#include "model/ZelConfig.h"

using namespace zel;

namespace {

void exerciseParameter(const ZelParameter& p, CGRect bounds) {
  p.layoutForFrame(bounds);
  p.displacedRect();
  std::string text, suffix;
  const float values[] = {p.minValue, p.maxValue, p.initialValue, (p.minValue + p.maxValue) / 2, -1e30f, 1e30f};
  for (float v : values) {
    p.valueString(&text, &suffix, v);
    p.displayStringFromCueValue(v);
    p.normalizeFloatValue(v, ZelGranularityCoarse);
  }
  for (float cue : p.cueValues) p.displayStringFromCueValue(cue);
}

void exercisePresets(const ZelConfig& config) {
  const ZelPresets* presets = config.presets();
  if (!presets) return;
  const unsigned count = static_cast<unsigned>(presets->stringValues.size());
  for (unsigned i = 0; i <= count && i < 64; ++i) {
    ZelPresetAssignments(config, i);
    ZelPresetIsDirty(config, i, [](const ZelParameter& p) { return p.initialValue; });
    presets->presetNameForValue(i);
  }
  ZelPresetSections(config.categorizedPresets());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const ZelConfigLoad load = ZelConfig::loadData(data, size);
  const ZelConfig& config = *load.config;
  const CGRect bounds = CGRectMake(0, 0, 480, 380);
  config.pluginLayoutForBounds(bounds);
  config.advancedLayoutForBounds(bounds);
  config.enumerateClumps([&](const ZelClump& clump) {
    ZelPluginLayout::layoutForLayout(clump.computedLayout, CGRectMake(4, 4, 200, 150),
                                     static_cast<std::int64_t>(clump.parameters.size()), clump.layoutConstraints);
    for (const auto& p : clump.parameters) exerciseParameter(*p, CGRectMake(0, 0, 60, 90));
  });
  config.parameterForCodename(config.metadata().genericHQParameter);
  exercisePresets(config);
  return 0;
}
