// One clump: a titled group of parameters with its own layout, label and
// borders. Owns its parameters; each parameter points back at it. Immutable
// after loading; safe to read from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/ZelParameter.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

// Clump types; Advanced and PowerBox are single bits so that a mask can
// select them (Normal, 0, is never selected by a mask).
enum class ZelClumpType : std::int32_t { Normal = 0, Advanced = 1, PowerBox = 2 };

class ZelClump {
 public:
  // Builds the record from a clump entry's "metadata" dictionary (`refs` is
  // never consulted); anything but a dictionary gives the defaults. The
  // parameters and `cid` are set by the configuration's loader.
  explicit ZelClump(const ZelPlist& dictionary, const ZelPlist& refs = ZelPlist::null());
  ~ZelClump();
  ZelClump(const ZelClump&) = delete;
  ZelClump& operator=(const ZelClump&) = delete;

  // ---- Names and label (empty string = none).
  std::string name, codesafeName, label, labelString;

  ZelClumpType clumpType = ZelClumpType::Normal;
  bool showInteriorBorders = false;

  // ---- Kept as they stand, or null: "inset" ({"x", "y"}), "computedLayout",
  // "computedLayout_iOS", "layoutConstraints" and "taggedLabels" and
  // "layoutTags" (dictionaries), "labelBorder" (array of four integers).
  ZelPlist inset, computedLayout, computedLayout_iOS, layoutConstraints, labelBorder, taggedLabels, layoutTags;

  // The clump's position in the description (the file's "cid" never survives).
  std::int64_t cid = 0;

  // The clump's parameters in file order, owned here. Each one's `clump`
  // points at this clump.
  std::vector<std::unique_ptr<ZelParameter>> parameters;

  // Takes ownership of `parameter` and points it back at this clump.
  void addParameter(std::unique_ptr<ZelParameter> parameter);
};

// The clump type for a description word: exact "Normal", "Advanced",
// "PowerBox"; anything else is Normal.
ZelClumpType ZelClumpTypeFromString(std::string_view word);

ZEL_NAMESPACE_END
