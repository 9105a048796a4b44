// `summary`: the description at a glance, tab-separated so that it reads in a
// terminal and greps cleanly:
//   metadata            then one "<TAB>key<TAB>value" line per field
//   clumps<TAB>N        then a header row and one row per clump
//   parameters<TAB>N    then a header row and one row per parameter
//   presets<TAB>N       then one "<TAB>index<TAB>name" row per preset ("none" without presets)
// Numbers are the shortest text that reads back as the same float.
#include <string>

#include "app/describe/DescribeFormat.h"
#include "app/describe/DescribeTool.h"

ZEL_NAMESPACE_BEGIN
namespace {

std::string yesNo(bool flag) { return flag ? "YES" : "NO"; }

void row(std::string& out, std::initializer_list<std::string> fields) {
  for (const std::string& field : fields) {
    out += '\t';
    out += field;
  }
  out += '\n';
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

void metadata(const ZelMetadata& m, std::string& out) {
  out += "metadata\n";
  row(out, {"classPrefix", m.classPrefix});
  row(out, {"pluginName", m.pluginName});
  row(out, {"pluginLongName", m.pluginLongName});
  row(out, {"pluginURLSlug", m.pluginURLSlug});
  row(out, {"version", m.version});
  row(out, {"versionInteger", std::to_string(m.versionInteger)});
  row(out, {"size", ZelFormatShortest(m.width) + " x " + ZelFormatShortest(m.height)});
  row(out, {"color", ZelColorHex(m.color)});
  row(out, {"hasParameterSketch", yesNo(m.hasParameterSketch)});
  row(out, {"hasGenericHQMode", yesNo(m.hasGenericHQMode)});
  row(out, {"genericHQParameter", m.genericHQParameter});
  row(out, {"tabOrder", joined(m.tabOrderNames)});
}

void clumps(const ZelConfig& config, std::string& out) {
  out += "clumps\t" + std::to_string(config.clumps().size()) + "\n";
  row(out, {"cid", "type", "name", "parameters"});
  config.enumerateClumps([&](const ZelClump& c) {
    row(out, {std::to_string(c.cid), ZelEnumWord(c.clumpType), c.name, std::to_string(c.parameters.size())});
  });
}

void parameters(const ZelConfig& config, std::string& out) {
  out += "parameters\t" + std::to_string(config.numParameters()) + "\n";
  row(out, {"pid", "codesafeName", "unit", "controlType", "min", "max", "initial"});
  config.enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    row(out, {std::to_string(p.pid), p.codesafeName, ZelEnumWord(p.unit), ZelEnumWord(p.controlType),
              ZelFormatShortest(p.minValue), ZelFormatShortest(p.maxValue), ZelFormatShortest(p.initialValue)});
  });
}

void presets(const ZelConfig& config, std::string& out) {
  const ZelPresets* presets = config.presets();
  if (!presets) {
    out += "presets\tnone\n";
    return;
  }
  out += "presets\t" + std::to_string(presets->stringValues.size()) + "\n";
  for (std::size_t i = 0; i < presets->stringValues.size(); ++i) row(out, {std::to_string(i), presets->stringValues[i]});
}

}  // namespace

int ZelDescribeSummary(const ZelDescription& d, std::string& out) {
  metadata(d.config->metadata(), out);
  clumps(*d.config, out);
  parameters(*d.config, out);
  presets(*d.config, out);
  return kDescribeOK;
}

ZEL_NAMESPACE_END
