#include "editor/ZelEditorAccessibility.h"

#include <algorithm>
#include <functional>
#include <string>

#include "controls/ZelFloatControl.h"
#include "controls/ZelParameterControl.h"
#include "editor/ZelGenericUI.h"
#include "editor/ZelLogoStamp.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "editor/containers/ZelClumpView.h"
#include "editor/containers/ZelClumpsView.h"
#include "model/ZelConfig.h"
#include "model/ZelParameter.h"
#include "model/ZelPresets.h"
#include "toolkit/core/ZelEvent.h"
#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/widgets/ZelSymbolButton.h"

ZEL_NAMESPACE_BEGIN

namespace {

// The window: the editor itself.
class WindowElement final : public ZelViewAccessible {
 public:
  explicit WindowElement(ZelGenericUI& ui) : ZelViewAccessible(&ui), ui_(ui) {}
  ZelAccessibleRole role() const override { return ZelAccessibleRole::Window; }
  std::string name() const override { return ui_.config() ? ui_.config()->metadata().pluginName : std::string(); }
  std::string description() const override {
    return ui_.config() ? ui_.config()->metadata().pluginLongName : std::string();
  }
  // Active while it has the keyboard; an editor embedded in a host may
  // take keys without being told it has the focus: a focused control
  // says so then.
  ZelAccessibleStates states() const override {
    const auto& controls = ui_.parameterControls();
    const bool active = ui_.hasFocus() || std::any_of(controls.begin(), controls.end(),
                                                      [](const ZelParameterControl* c) { return c->focused(); });
    return visibility() | ZelAccessibleEnabled | (active ? ZelAccessibleStates{ZelAccessibleActive} : 0u);
  }

 private:
  ZelGenericUI& ui_;
};

// A group: a clump, the power box, the preset bar, a drawer. The view is
// looked up when asked (the drawers come a moment after the editor).
class PanelElement final : public ZelAccessible {
 public:
  PanelElement(std::string name, std::function<const ZelView*()> view) : name_(std::move(name)), view_(std::move(view)) {}
  ZelAccessibleRole role() const override { return ZelAccessibleRole::Panel; }
  std::string name() const override { return name_; }
  ZelAccessibleStates states() const override {
    const ZelView* v = view_();
    return v ? ZelViewVisibility(v) | ZelAccessibleEnabled : 0;
  }
  CGRect frameInWindow() const override {
    const ZelView* v = view_();
    return ZelViewFrameInWindow(v);
  }

 private:
  std::string name_;
  std::function<const ZelView*()> view_;
};

// A round symbol button, or the logo stamp: pressed through its action.
class ButtonElement final : public ZelViewAccessible {
 public:
  ButtonElement(const ZelControl* button, std::string name, std::function<void()> press, bool toggles = false)
      : ZelViewAccessible(button), button_(button), name_(std::move(name)), press_(std::move(press)), toggles_(toggles) {}
  ZelAccessibleRole role() const override { return ZelAccessibleRole::PushButton; }
  std::string name() const override { return name_; }
  ZelAccessibleStates states() const override {
    ZelAccessibleStates s = visibility();
    if (button_->isEnabled()) s |= ZelAccessibleEnabled;
    auto* symbol = dynamic_cast<const ZelSymbolButton*>(button_);
    if (toggles_ && symbol) s |= ZelAccessibleCheckable | (symbol->isSelected() ? ZelAccessibleStates{ZelAccessibleChecked} : 0u);
    return s;
  }
  std::vector<std::string> actionNames() const override { return {kZelAccessiblePress}; }
  bool performAction(std::string_view action) override {
    if (action != kZelAccessiblePress || !button_->isEnabled()) return false;
    press_();
    return true;
  }

 private:
  const ZelControl* button_;
  std::string name_;
  std::function<void()> press_;
  bool toggles_;
};

ZelAccessibleRole roleForParameter(const ZelParameter& p, bool power) {
  if (power) return ZelAccessibleRole::ToggleButton;
  switch (p.controlType) {
    case ZelControlType::Boolean:
    case ZelControlType::Toggle:
      return ZelAccessibleRole::ToggleButton;
    case ZelControlType::Cycle:
    case ZelControlType::Preset:
      return ZelAccessibleRole::ComboBox;
    case ZelControlType::Number:
      return ZelAccessibleRole::SpinButton;
    case ZelControlType::Slider:
    case ZelControlType::NoteSlider:
      break;
  }
  return ZelAccessibleRole::Slider;
}

bool isTwoState(const ZelParameter& p) {
  return p.unit == ZelUnit::Boolean || (p.unit == ZelUnit::Indexed && p.valueRange() == 1.0f);
}

// One parameter's control. Changes made here are gestures of their own.
class ParameterElement final : public ZelViewAccessible {
 public:
  ParameterElement(ZelGenericUI& ui, ZelParameterControl& control)
      : ZelViewAccessible(&control), ui_(ui), control_(control) {}

  const ZelParameter& parameter() const { return *control_.parameter(); }
  bool isPower() const { return ui_.powerBox() && ui_.powerBox()->powerControl() == &control_; }
  bool isPreset() const { return parameter().controlType == ZelControlType::Preset; }
  bool usable() const { return control_.primaryControl() && !control_.primaryControl()->isDisabled(); }

  ZelAccessibleRole role() const override { return roleForParameter(parameter(), isPower()); }
  std::string name() const override {
    if (isPreset() && parameter().name.empty()) return "Preset";
    return parameter().name;
  }
  std::string description() const override {
    std::string text, suffix;
    parameter().valueString(&text, &suffix, control_.floatValue());
    if (!suffix.empty()) text += " " + suffix;
    if (isPreset() && ui_.presetBar() && ui_.presetBar()->dirty()) text += ", modified";
    return text;
  }
  ZelAccessibleStates states() const override {
    ZelAccessibleStates s = visibility() | ZelAccessibleFocusable;
    if (usable()) s |= ZelAccessibleEnabled;
    if (control_.focused()) s |= ZelAccessibleFocused;
    if (isTwoState(parameter()) && role() == ZelAccessibleRole::ToggleButton) {
      s |= ZelAccessibleCheckable;
      if (control_.floatValue() != parameter().minValue) s |= ZelAccessibleChecked;
    }
    return s;
  }
  std::optional<ZelAccessibleValue> value() const override {
    const ZelParameter& p = parameter();
    float step = p.granularity > 0 ? p.granularity : p.fineGranularity;
    return ZelAccessibleValue{p.minValue, p.maxValue, control_.floatValue(), step > 0 ? step : 0.0};
  }
  bool setCurrentValue(double value) override {
    if (!usable() || !(value == value)) return false;
    gesture([&] {
      control_.setFloatValue(static_cast<float>(value));
      control_.reportValueChange();
    });
    return true;
  }
  std::vector<std::string> actionNames() const override {
    std::vector<std::string> names{kZelAccessibleIncrement, kZelAccessibleDecrement, kZelAccessibleReset};
    if (isTwoState(parameter())) names.emplace_back(kZelAccessibleToggle);
    return names;
  }
  bool performAction(std::string_view action) override {
    if (!usable()) return false;
    if (action == kZelAccessibleIncrement || action == kZelAccessibleDecrement) {
      const char16_t arrow = action == kZelAccessibleIncrement ? ZelUpArrowFunctionKey : ZelDownArrowFunctionKey;
      gesture([&] { control_.incrementWithArrow(arrow, ZelGranularityNormal); });
      return true;
    }
    if (action == kZelAccessibleReset) return setCurrentValue(parameter().initialValue);
    if (action == kZelAccessibleToggle && isTwoState(parameter())) {
      gesture([&] { control_.toggleBooleanControl(); });
      return true;
    }
    return false;
  }
  bool grabFocus() override {
    if (!usable() || isPower() || !(visibility() & ZelAccessibleShowing)) return false;
    if (isPreset()) return false;
    ui_.focus().bringParameterControlIntoFocus(&control_);
    return control_.focused();
  }

 private:
  // Begin, change, end: what a typed number does, told to the host as a
  // gesture so that automation records it.
  template <class Change>
  void gesture(Change&& change) {
    ui_.keyboard().resetNumberBuffer();
    ZelGenericUIDelegate* host = ui_.delegate();
    const bool tell = host && host->respondsToInteractionGestures() && !isPreset();
    const std::int64_t pid = parameter().pid;
    if (tell) host->interfaceBeganInteractionWithParameterKeyed(ui_, pid);
    change();
    if (tell && ui_.delegate()) ui_.delegate()->interfaceEndedInteractionWithParameterKeyed(ui_, pid);
  }

  ZelGenericUI& ui_;
  ZelParameterControl& control_;
};

std::string clumpTitle(const ZelClump& clump) { return clump.labelString.empty() ? clump.name : clump.labelString; }

}  // namespace

ZelEditorAccessibility::ZelEditorAccessibility(ZelGenericUI& ui) : ui_(ui) {}
ZelEditorAccessibility::~ZelEditorAccessibility() = default;

template <class T, class... Args>
T* ZelEditorAccessibility::make(ZelAccessible* parent, Args&&... args) {
  auto element = std::make_unique<T>(std::forward<Args>(args)...);
  T* raw = element.get();
  raw->setIdentifier(static_cast<int>(elements_.size()));
  if (parent) parent->addChild(raw);
  elements_.push_back(std::move(element));
  return raw;
}

ZelAccessible* ZelEditorAccessibility::root() {
  if (elements_.empty()) build();
  return elements_.front().get();
}

ZelAccessible* ZelEditorAccessibility::elementForControl(const ZelParameterControl* control) {
  root();
  for (auto& element : elements_) {
    auto* view = dynamic_cast<ZelViewAccessible*>(element.get());
    if (view && view->view() == control && dynamic_cast<ParameterElement*>(element.get())) return element.get();
  }
  return nullptr;
}

void ZelEditorAccessibility::build() {
  ZelGenericUI& ui = ui_;
  ZelAccessible* window = make<WindowElement>(nullptr, ui);

  // Every clump view of a clumps view, as a panel holding the controls
  // that sit in it.
  std::vector<std::pair<const ZelView*, ZelAccessible*>> panels;
  auto addClumps = [&](ZelClumpsView* clumps, ZelAccessible* into) {
    if (!clumps) return;
    for (const auto& sub : clumps->subviews()) {
      auto* clumpView = dynamic_cast<ZelClumpView*>(sub.get());
      if (!clumpView || !clumpView->clump()) continue;
      const ZelView* v = clumpView;
      panels.emplace_back(v, make<PanelElement>(into, clumpTitle(*clumpView->clump()), [v] { return v; }));
    }
  };
  addClumps(ui.clumpsView(), window);

  ZelAccessible* power = nullptr;
  if (ZelPowerBox* box = ui.powerBox()) {
    const ZelView* v = box;
    power = make<PanelElement>(window, "Power", [v] { return v; });
    panels.emplace_back(v, power);
  }
  ZelAccessible* presetPanel = nullptr;
  if (ZelPresetBar* bar = ui.presetBar()) {
    const ZelView* v = bar;
    presetPanel = make<PanelElement>(window, "Presets", [v] { return v; });
    panels.emplace_back(v, presetPanel);
  }
  ZelAccessible* advanced = nullptr;
  if (ui.advClumpsView()) {
    advanced = make<PanelElement>(window, "Advanced", [&ui]() -> const ZelView* {
      return ui.advDrawer() ? static_cast<const ZelView*>(ui.advDrawer()) : ui.advClumpsView();
    });
    panels.emplace_back(ui.advClumpsView(), advanced);
    addClumps(ui.advClumpsView(), advanced);
  }

  // The controls, in the registry's order, each under the innermost panel
  // that holds it.
  for (ZelParameterControl* control : ui.parameterControls()) {
    // Its clump's panel (a control displaced out of its clump view still
    // belongs there), else the panel of the nearest view that holds it.
    ZelAccessible* into = nullptr;
    for (auto& [view, panel] : panels) {
      if (control->clumpView() && view == control->clumpView()) into = panel;
    }
    for (const ZelView* v = control->superview(); v && !into; v = v->superview()) {
      for (auto& [view, panel] : panels) {
        if (view == v) {
          into = panel;
          break;
        }
      }
    }
    make<ParameterElement>(into ? into : window, ui, *control);
  }

  if (ZelPowerBox* box = ui.powerBox()) {
    make<ButtonElement>(power, box->book(), "Manual", [&ui] { ui.hostLink().bookTapped(); });
    if (box->hasAdvancedControls())
      make<ButtonElement>(power, box->gear(), "Advanced controls", [&ui] { ui.drawers().gearTapped(); }, true);
    make<ButtonElement>(power, box->themeButton(), "Light or dark theme", [&ui] { ui.hostLink().toggleUITheme(); });
    ZelLogoStamp* logo = box->logo();
    make<ButtonElement>(power, logo, "About", [logo] {
      if (ZelWindow* w = logo->window()) {
        CGRect r = logo->convertRectToView(logo->bounds(), nullptr);
        w->popUpMenu(logo->newAboutMenu(), {CGRectGetMidX(r), CGRectGetMinY(r)}, logo);
      }
    });
  }
  if (ZelPresetBar* bar = ui.presetBar()) {
    if (ZelParameterControl* preset = bar->presetControl()) make<ParameterElement>(presetPanel, ui, *preset);
    auto pressOf = [](ZelSymbolButton* b) { return [b] { b->sendAction(); }; };
    make<ButtonElement>(presetPanel, bar->undo(), "Undo", pressOf(bar->undo()));
    make<ButtonElement>(presetPanel, bar->redo(), "Redo", pressOf(bar->redo()));
    make<ButtonElement>(presetPanel, bar->save(), "Copy settings", pressOf(bar->save()));
    make<ButtonElement>(presetPanel, bar->more(), "Preset list", pressOf(bar->more()), true);
    if (ui.config() && ui.config()->presets())
      make<PanelElement>(window, "Preset list", [&ui]() -> const ZelView* { return ui.presetDrawer(); });
  }
}

ZEL_NAMESPACE_END

ZEL_NAMESPACE_BEGIN

ZelAccessible* ZelGenericUI::accessibilityElement() {
  if (!accessibility_) accessibility_ = std::make_unique<ZelEditorAccessibility>(*this);
  return accessibility_->root();
}

ZEL_NAMESPACE_END
