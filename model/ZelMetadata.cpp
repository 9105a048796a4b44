#include "model/ZelMetadata.h"

#include "model/ZelFetch.h"

ZEL_NAMESPACE_BEGIN

ZelMetadata::ZelMetadata(const ZelPlist& d, const ZelPlist& /*refs*/) {
  classPrefix = FetchString(d, "classPrefix");
  pluginName = FetchString(d, "pluginName");
  pluginLongName = FetchString(d, "pluginLongName");
  pluginURLSlug = FetchString(d, "pluginURLSlug");
  pluginPackageName = FetchString(d, "pluginPackageName");
  pluginID = FetchString(d, "pluginID");
  manufacturerID = FetchString(d, "manufacturerID");
  pluginType = FetchString(d, "pluginType");
  version = FetchString(d, "version");
  versionHex = FetchString(d, "versionHex");
  versionInteger = d["versionInteger"].integerValue();
  sha = FetchString(d, "sha");
  tagline = FetchString(d, "tagline");
  companyName = FetchString(d, "companyName");
  catalog = FetchString(d, "catalog");
  beta = d["beta"].boolValue();

  channelLayouts = FetchString(d, "channelLayouts");
  channelLayoutsCount = d["channelLayoutsCount"].integerValue();

  clumpsLayout = FetchDictionary(d, "clumpsLayout");
  advancedClumpsLayout = FetchDictionary(d, "advancedClumpsLayout");
  clumpsLayout_iOS = FetchDictionary(d, "clumpsLayout_iOS");
  advancedClumpsLayout_iOS = FetchDictionary(d, "advancedClumpsLayout_iOS");
  layoutParameterBased = d["layoutParameterBased"].boolValue();
  width = d["width"].floatValue();
  height = d["height"].floatValue();
  inset = d["inset"].floatValue();

  logo = FetchString(d, "logo");
  color = FetchColor(d, "color");
  hasParameterSketch = d["hasParameterSketch"].boolValue();

  genericHQParameter = FetchString(d, "genericHQParameter");
  hasGenericHQMode = d["hasGenericHQMode"].boolValue();
  genericHQMultsBySampleRate = FetchDictionary(d, "genericHQMultsBySampleRate");

  parameterOrder = FetchArray(d, "parameterOrder");
  tabOrder = FetchArray(d, "tabOrder");
  hostClumps = FetchArray(d, "hostClumps");
  tabOrderNames = FetchStrings(d, "tabOrder");
}

ZEL_NAMESPACE_END
