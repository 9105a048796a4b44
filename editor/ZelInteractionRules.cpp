// The interaction rules: what a parameter's value does to other controls,
// the channel-layout rules, and the small arithmetic helper.
#include <cmath>

#include "editor/ZelInteractionRules.h"

#include "editor/ZelGenericUI.h"
#include "editor/containers/ZelClumpView.h"
#include "editor/containers/ZelClumpsView.h"
#include "model/ZelConfig.h"
#include "toolkit/foundation/ZelNumberParser.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::uint32_t kGlobalScopePriority = 0;
constexpr std::uint32_t kClumpScopePriority = 5;
constexpr std::uint32_t kRulePriority = 10;
constexpr std::uint32_t kChannelLayoutPriority = 1000;

// Whether the value, truncated toward zero, is 0 (a NaN counts as 0).
bool truncatesToZero(float value) { return !(std::fabs(value) >= 1.0f); }

// Dims a view that can be dimmed: a clump view or a parameter control.
void dimIfDimmable(ZelView& view, bool dimmed, std::uint32_t priority) {
  if (auto* clump = dynamic_cast<ZelClumpView*>(&view)) clump->setDimmed(dimmed, 0, priority);
  else if (auto* control = dynamic_cast<ZelParameterControl*>(&view)) control->setDimmed(dimmed, 0, priority);
}

}  // namespace

void ZelInteractionRules::handleSideEffectsOfUpdatedControl(ZelParameterControl& control, float value) {
  const ZelParameter* p = control.parameter();
  if (!p) return;
  applyScope(control, value);
  applyIndexedRule(p->highlights, value, [](ZelParameterControl& c, bool match) { c.setDimmed(!match, 0, kRulePriority); });
  applyIndexedRule(p->dims, value, [](ZelParameterControl& c, bool match) { c.setDimmed(match, 0, kRulePriority); });
  applyIndexedRule(p->disables, value, [](ZelParameterControl& c, bool match) {
    if (c.primaryControl()) c.primaryControl()->setPreventInteraction(match);
  });
  applyIndexedRule(p->hides, value, [](ZelParameterControl& c, bool match) { c.setHidden(match); });
  ui_.presets().scheduleDirtyCheck();
}

void ZelInteractionRules::applyScope(ZelParameterControl& control, float value) {
  const bool dimmed = truncatesToZero(value);
  switch (control.parameter()->scope) {
    case ZelScope::Global:
      for (ZelClumpsView* clumps : {ui_.clumpsView(), ui_.advClumpsView()}) {
        if (!clumps) continue;
        for (const auto& view : clumps->subviews()) dimIfDimmable(*view, dimmed, kGlobalScopePriority);
      }
      break;
    case ZelScope::Clump:
      if (auto* clump = dynamic_cast<ZelClumpView*>(control.clumpView()))
        clump->setDimmed(dimmed, 0, kClumpScopePriority);
      break;
    case ZelScope::Self:
      break;
  }
}

// Element i of `rule` (an array of code names) applies when `value` is i;
// every named control hears about every element, in index order.
void ZelInteractionRules::applyIndexedRule(const ZelPlist& rule, float value,
                                    const std::function<void(ZelParameterControl&, bool)>& apply) {
  const ZelPlist::Array* elements = rule.asArray();
  if (!elements) return;
  for (std::size_t i = 0; i < elements->size(); ++i) {
    const ZelPlist::Array* names = (*elements)[i].asArray();
    if (!names) continue;
    const bool match = static_cast<float>(i) == value;
    for (const ZelPlist& name : *names) {
      const std::string* text = name.asString();
      ZelParameterControl* target = text ? ui_.parameterControlWithCodename(*text) : nullptr;
      if (target) apply(*target, match);
    }
  }
}

// ---- Channel layouts.

void ZelInteractionRules::setChannelsIn(std::uint32_t channelsIn, std::uint32_t channelsOut) {
  const ZelConfig* config = ui_.config();
  if (!config) return;
  config->enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
    const ZelPlist::Array* rules = p.channelLayoutRules.asArray();
    if (!rules) return;
    for (const ZelPlist& rule : *rules) {
      const ZelPlist& map = rule["map"];
      if (map.count() < 2 || !map.isArray()) continue;
      if (map[0].integerValue() != channelsIn || map[1].integerValue() != channelsOut) continue;
      ZelParameterControl* control = ui_.parameterControlWithCodename(p.codesafeName);
      if (!control || !rule.contains("disabled")) continue;
      control->setDimmed(true, 0, kChannelLayoutPriority);
      if (control->primaryControl()) control->primaryControl()->setPreventInteraction(true);
      if (rule.contains("immutable")) {
        control->setImmutableFloatValue(rule["immutable"].floatValue());
        control->setFloatValue(rule["immutable"].floatValue());  // and show it now
      }
    }
  });
}

// ---- Arithmetic.

float ZelInteractionRules::valueForArg(std::string_view arg, float x) {
  if (arg == "x") return x;
  return static_cast<float>(ZelParseUserNumber(arg).value_or(0.0));
}

float ZelInteractionRules::resultForOperator(std::string_view op, std::string_view arg1, std::string_view arg2, float x) {
  const float a = valueForArg(arg1, x);
  const float b = valueForArg(arg2, x);
  if (op == "/") return a / b;
  return 0;
}

ZEL_NAMESPACE_END
