// The factory presets: one more parameter whose value is the index of the
// current preset and whose string values are the preset names, plus one value
// set (code-safe name -> plain value) per preset. Also the two rules the
// editor and the describe tool share (applying a preset, and whether the
// current values still match it) and a read-only view of the drawer's
// sections.
//
// Immutable after loading; every function here is safe on any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/ZelParameter.h"
#include "toolkit/foundation/ZelPlist.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;

class ZelPresets : public ZelParameter {
 public:
  // Builds the parameter part from `dictionary`, then reads "values".
  explicit ZelPresets(const ZelPlist& dictionary, const ZelPlist& refs = ZelPlist::null());

  // The "values" array as it stands (value-set dictionaries), or null.
  ZelPlist presetValues;

  // The value set of preset `index`; nullptr outside the list or when that
  // element is not a dictionary. The pointer lives as long as this record.
  const ZelPlist* presetValueSetForValue(unsigned index) const;
  // The name of preset `index` (element of `stringValues`); nullptr outside
  // the list.
  const std::string* presetNameForValue(unsigned index) const;
  // The index of the first preset named exactly `name`; 0 when none is. A
  // miss and the first preset both give 0: callers treat 0 as "no match".
  std::int64_t presetKeyForPresetName(std::string_view name) const;
};

// ---- Applying a preset.

struct ZelPresetAssignment {
  const ZelParameter* parameter;  // owned by the configuration
  float value;
  friend bool operator==(const ZelPresetAssignment&, const ZelPresetAssignment&) = default;
};

// The values preset `index` gives, in the configuration's parameter order
// (clump order, then parameter order): for every parameter that is not a
// preset wildcard, the value set's number under its code-safe name, else its
// initialValue. An entry that is not a number, a missing value set, an index
// outside the list or a configuration without presets all fall back to
// initial values the same way.
std::vector<ZelPresetAssignment> ZelPresetAssignments(const ZelConfig& config, unsigned index);

// ---- Dirty test.

// Current values keyed by code-safe name.
using ZelPresetValueMap = std::map<std::string, float, std::less<>>;

// The current value of every parameter that is not a preset wildcard and has
// a code-safe name, as `currentValue` gives it (a later parameter with the
// same code name wins).
ZelPresetValueMap ZelPresetCurrentValues(const ZelConfig& config,
                                         const std::function<float(const ZelParameter&)>& currentValue);

// True when `current` matches `valueSet`: the same keys, and every value
// printing the same with "%.7g" of the value as a 32-bit float (an entry of
// the set that is a string compares by its text; any other kind never
// matches). A null set never matches.
bool ZelPresetValuesMatch(const ZelPlist* valueSet, const ZelPresetValueMap& current);

// Whether the current values differ from preset `index` (true without
// presets or outside the list).
bool ZelPresetIsDirty(const ZelConfig& config, unsigned index,
                      const std::function<float(const ZelParameter&)>& currentValue);

// ---- The drawer's sections ("categorizedPresets").

struct ZelPresetEntry {
  std::string name;                     // "" when absent
  std::optional<std::int64_t> presetID;  // none: choosing the entry does nothing
};

struct ZelPresetSection {
  std::string title;
  bool expandable = false;  // the row has a "presets" array
  std::vector<ZelPresetEntry> presets;
};

// The rows of "sections" that carry a "section" title, in order; elements of
// the wrong kind are skipped. Empty for anything but a dictionary.
std::vector<ZelPresetSection> ZelPresetSections(const ZelPlist& categorizedPresets);

ZEL_NAMESPACE_END
