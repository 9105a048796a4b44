// The plug-in's identity and editor-wide settings: names, version, codes,
// accent colour, preferred size, the editor layouts and the tab order.
// Immutable after loading; safe to read from any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "toolkit/foundation/ZelColor.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

class ZelMetadata {
 public:
  // A record of defaults (empty strings, 0, false, opaque black, null).
  ZelMetadata() = default;
  // Builds the record from the description's "metadata" dictionary (`refs`
  // is never consulted). Anything but a dictionary gives the defaults.
  explicit ZelMetadata(const ZelPlist& dictionary, const ZelPlist& refs = ZelPlist::null());

  // ---- Identity (empty string = none).
  std::string classPrefix, pluginName, pluginLongName, pluginURLSlug, pluginPackageName;
  std::string pluginID, manufacturerID, pluginType;
  std::string version, versionHex, sha, tagline, companyName, catalog;
  std::int64_t versionInteger = 0;
  bool beta = false;

  // ---- Channels.
  std::string channelLayouts;
  std::int64_t channelLayoutsCount = 0;

  // ---- Layout (layout dictionaries, or null).
  ZelPlist clumpsLayout, advancedClumpsLayout, clumpsLayout_iOS, advancedClumpsLayout_iOS;
  bool layoutParameterBased = false;
  float width = 0, height = 0, inset = 0;

  // ---- Appearance.
  std::string logo;  // label-image text ("base64," prefix) or none
  ZelColor color = ZelColor::rgb(0, 0, 0, 1);
  bool hasParameterSketch = false;

  // ---- High-quality mode.
  std::string genericHQParameter;  // a code name, or none
  bool hasGenericHQMode = false;
  ZelPlist genericHQMultsBySampleRate;  // dictionary, or null

  // ---- Orders and groups, kept as they stand (arrays, or null).
  ZelPlist parameterOrder, tabOrder, hostClumps;
  ZelPlist meterPorts;  // the unit's levels, one output port each (lv2/tools/meter_ports.py)
  // The "tabOrder" elements as text (an element that is not a string reads
  // as ""); empty when there is no tab order.
  std::vector<std::string> tabOrderNames;
};

ZEL_NAMESPACE_END
