// The interaction rules: what a parameter's value does to other controls
// (scope dimming, "highlights", "dims", "disables", "hides"), applied when
// the host reports a change; the channel-layout rules (a parameter that has
// no meaning for the host's channel counts is dimmed, locked and possibly
// held at a fixed value); and the small arithmetic helper of the rules.
//
// Rule data come straight from the description; anything of the wrong shape
// (not an array, a name that is not a string, a name without a control) is
// skipped.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference. Owns nothing.
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;
class ZelParameterControl;
class ZelPlist;

class ZelInteractionRules {
 public:
  explicit ZelInteractionRules(ZelGenericUI& ui) : ui_(ui) {}
  ZelInteractionRules(const ZelInteractionRules&) = delete;
  ZelInteractionRules& operator=(const ZelInteractionRules&) = delete;

  // Applies the control's parameter's rules for `value`, then schedules the
  // preset dirty check.
  void handleSideEffectsOfUpdatedControl(ZelParameterControl& control, float value);
  // The channel-layout rules for these channel counts.
  void setChannelsIn(std::uint32_t channelsIn, std::uint32_t channelsOut);
  // "x" is x; anything else a number in the user's locale (0 when it is none).
  static float valueForArg(std::string_view arg, float x);
  // "/" divides; every other operator gives 0.
  static float resultForOperator(std::string_view op, std::string_view arg1, std::string_view arg2, float x);

 private:
  void applyScope(ZelParameterControl& control, float value);
  void applyIndexedRule(const ZelPlist& rule, float value, const std::function<void(ZelParameterControl&, bool)>& apply);

  ZelGenericUI& ui_;
};

ZEL_NAMESPACE_END
