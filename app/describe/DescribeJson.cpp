// `json`: the whole model, every field under its key's name. "None" (an empty
// string, an empty list, an absent dictionary) is null; enumerations are
// their description words; colours are {red, green, blue, alpha}; layout and
// rule dictionaries are written as they stand. Clumps nest their parameters.
#include <string>

#include "app/describe/DescribeFormat.h"
#include "app/describe/DescribeJsonWriter.h"
#include "app/describe/DescribeTool.h"

ZEL_NAMESPACE_BEGIN
namespace {

void text(ZelJsonWriter& j, std::string_view name, const std::string& value) {
  j.key(name);
  if (value.empty())
    j.null();
  else
    j.string(value);
}

template <class T>
void list(ZelJsonWriter& j, std::string_view name, const std::vector<T>& values) {
  if (values.empty()) {
    j.key(name);
    j.null();
  } else {
    j.field(name, values);
  }
}

void identity(ZelJsonWriter& j, const ZelMetadata& m) {
  text(j, "classPrefix", m.classPrefix);
  text(j, "pluginName", m.pluginName);
  text(j, "pluginLongName", m.pluginLongName);
  text(j, "pluginURLSlug", m.pluginURLSlug);
  text(j, "pluginPackageName", m.pluginPackageName);
  text(j, "pluginID", m.pluginID);
  text(j, "manufacturerID", m.manufacturerID);
  text(j, "pluginType", m.pluginType);
  text(j, "version", m.version);
  text(j, "versionHex", m.versionHex);
  j.field("versionInteger", m.versionInteger);
  text(j, "sha", m.sha);
  text(j, "tagline", m.tagline);
  text(j, "companyName", m.companyName);
  text(j, "catalog", m.catalog);
  j.field("beta", m.beta);
}

void metadata(ZelJsonWriter& j, const ZelMetadata& m) {
  j.beginObject();
  identity(j, m);
  text(j, "channelLayouts", m.channelLayouts);
  j.field("channelLayoutsCount", m.channelLayoutsCount);
  j.field("clumpsLayout", m.clumpsLayout);
  j.field("advancedClumpsLayout", m.advancedClumpsLayout);
  j.field("clumpsLayout_iOS", m.clumpsLayout_iOS);
  j.field("advancedClumpsLayout_iOS", m.advancedClumpsLayout_iOS);
  j.field("layoutParameterBased", m.layoutParameterBased);
  text(j, "logo", m.logo);
  j.field("width", m.width);
  j.field("height", m.height);
  j.field("inset", m.inset);
  j.field("color", m.color);
  j.field("hasParameterSketch", m.hasParameterSketch);
  text(j, "genericHQParameter", m.genericHQParameter);
  j.field("hasGenericHQMode", m.hasGenericHQMode);
  j.field("genericHQMultsBySampleRate", m.genericHQMultsBySampleRate);
  j.field("parameterOrder", m.parameterOrder);
  j.field("tabOrder", m.tabOrder);
  j.field("hostClumps", m.hostClumps);
  j.endObject();
}

void names(ZelJsonWriter& j, const ZelParameter& p) {
  j.field("pid", p.pid);
  j.field("indexInClump", p.indexInClump);
  text(j, "name", p.name);
  text(j, "codesafeName", p.codesafeName);
  text(j, "aaxName", p.aaxName);
  text(j, "label", p.label);
  text(j, "labelString", p.labelString);
  j.field("distinctLabel", p.distinctLabel);
  text(j, "minimalName", p.minimalName);
  text(j, "hostClump", p.hostClump);
}

void values(ZelJsonWriter& j, const ZelParameter& p) {
  j.field("unit", ZelUnitWord(p.unit));
  text(j, "unitSymbol", p.unitSymbol);
  text(j, "unitEnumIdentifier", p.unitEnumIdentifier);
  text(j, "customUnit", p.customUnit);
  j.field("logarithmic", p.logarithmic);
  j.field("auLogarithmic", p.auLogarithmic);
  j.field("automatesSmoothly", p.automatesSmoothly);
  j.field("minValue", p.minValue);
  j.field("maxValue", p.maxValue);
  j.field("initialValue", p.initialValue);
  j.field("presetWildcard", p.presetWildcard);
  j.field("granularity", p.granularity);
  j.field("fineGranularity", p.fineGranularity);
  j.field("coarseGranularity", p.coarseGranularity);
  list(j, "coarseGranularityOptions", p.coarseGranularityOptions);
}

void appearance(ZelJsonWriter& j, const ZelParameter& p) {
  j.field("controlType", ZelControlTypeWord(p.controlType));
  j.field("controlScale", p.controlScale);
  j.field("controlStyle", ZelControlStyleWord(p.controlStyle));
  j.field("scope", ZelScopeWord(p.scope));
  j.field("labelDisplay", ZelLabelDisplayWord(p.labelDisplay));
  j.field("displacedFrame", p.displacedFrame);
  j.field("computedLayout", p.computedLayout);
  j.field("border", p.border);
  list(j, "stringValues", p.stringValues);
  text(j, "formatString", p.formatString);
  list(j, "tickmarks", p.tickmarks);
  list(j, "minorTickmarks", p.minorTickmarks);
  list(j, "cueValues", p.cueValues);
  list(j, "cueSymbols", p.cueSymbols);
  list(j, "cueSymbolPositions", p.cueSymbolPositions);
  j.field("cueSymbolDisplay", ZelCueSymbolDisplayWord(p.cueSymbolDisplay));
  j.field("horizontal", p.horizontal);
  j.field("showsNegativeInfinity", p.showsNegativeInfinity);
  j.field("substituteOffForMinimum", p.substituteOffForMinimum);
  j.field("color", p.color);
}

void rules(ZelJsonWriter& j, const ZelParameter& p) {
  j.field("channelLayoutRules", p.channelLayoutRules);
  j.field("highlights", p.highlights);
  j.field("dims", p.dims);
  j.field("disables", p.disables);
  j.field("hides", p.hides);
}

void parameterFields(ZelJsonWriter& j, const ZelParameter& p) {
  names(j, p);
  values(j, p);
  appearance(j, p);
  rules(j, p);
}

void clump(ZelJsonWriter& j, const ZelClump& c) {
  j.beginObject();
  text(j, "name", c.name);
  text(j, "codesafeName", c.codesafeName);
  text(j, "label", c.label);
  text(j, "labelString", c.labelString);
  j.field("inset", c.inset);
  j.field("clumpType", ZelClumpTypeWord(c.clumpType));
  j.field("showInteriorBorders", c.showInteriorBorders);
  j.field("computedLayout", c.computedLayout);
  j.field("computedLayout_iOS", c.computedLayout_iOS);
  j.field("layoutConstraints", c.layoutConstraints);
  j.field("labelBorder", c.labelBorder);
  j.field("taggedLabels", c.taggedLabels);
  j.field("layoutTags", c.layoutTags);
  j.field("cid", c.cid);
  j.key("parameters");
  j.beginArray();
  for (const auto& p : c.parameters) {
    j.beginObject();
    parameterFields(j, *p);
    j.endObject();
  }
  j.endArray();
  j.endObject();
}

void presets(ZelJsonWriter& j, const ZelPresets* presets) {
  j.key("presets");
  if (!presets) return j.null();
  j.beginObject();
  parameterFields(j, *presets);
  j.field("presetValues", presets->presetValues);
  j.endObject();
}

}  // namespace

int ZelDescribeJson(const ZelDescription& d, std::string& out) {
  const ZelConfig& config = *d.config;
  ZelJsonWriter j(out);
  j.beginObject();
  j.key("metadata");
  metadata(j, config.metadata());
  j.key("clumps");
  j.beginArray();
  config.enumerateClumps([&](const ZelClump& c) { clump(j, c); });
  j.endArray();
  presets(j, config.presets());
  j.field("categorizedPresets", config.categorizedPresets());
  j.field("numParameters", config.numParameters());
  j.field("identifier", config.identifier());
  j.endObject();
  return kDescribeOK;
}

ZEL_NAMESPACE_END
