#include "editor/ZelKeyboardHandler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>

#include "controls/ZelNoteSlider.h"
#include "controls/ZelParameterControl.h"
#include "editor/ZelGenericUI.h"
#include "editor/ZelParameterURL.h"
#include "editor/ZelPresetBar.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelBundle.h"
#include "toolkit/foundation/ZelNumberParser.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::size_t kUndoCapacity = 100;

// The Command (Ctrl) shortcuts, by the key's characters ignoring modifiers
// (an upper-case letter: Shift is held too).
using Shortcut = bool (ZelKeyboardHandler::*)();
constexpr std::array<std::pair<std::string_view, Shortcut>, 16> kCmdShortcutMap{{
    {"n", &ZelKeyboardHandler::keyboardShortcutToggleNumericDisplay},
    {"r", &ZelKeyboardHandler::keyboardShortcutRefreshInitialParameterValues},
    {"v", &ZelKeyboardHandler::keyboardShortcutHandlePaste},
    {"c", &ZelKeyboardHandler::keyboardShortcutHandleCopy},
    {"z", &ZelKeyboardHandler::keyboardShortcutUndo},
    {"y", &ZelKeyboardHandler::keyboardShortcutRedo},
    {"Z", &ZelKeyboardHandler::keyboardShortcutRedo},
    {"m", &ZelKeyboardHandler::keyboardShortcutOpenManual},
    {"a", &ZelKeyboardHandler::keyboardShortcutToggleAdvancedDrawer},
    {"t", &ZelKeyboardHandler::keyboardShortcutToggleTheme},
    {"o", &ZelKeyboardHandler::keyboardShortcutTogglePower},
    {"p", &ZelKeyboardHandler::keyboardShortcutTogglePresetDrawer},
    {"=", &ZelKeyboardHandler::keyboardShortcutZoomIn},
    {"+", &ZelKeyboardHandler::keyboardShortcutZoomIn},
    {"-", &ZelKeyboardHandler::keyboardShortcutZoomOut},
    {"0", &ZelKeyboardHandler::keyboardShortcutResetZoom},
}};

// Snapshots compare equal when every key of the previous one maps to the
// same number in the new one.
bool sameSnapshot(const ZelUndoRedoStack::Snapshot& previous, const ZelUndoRedoStack::Snapshot& next) {
  for (const auto& [pid, value] : previous) {
    auto it = next.find(pid);
    if (it == next.end() || it->second != value) return false;
  }
  return true;
}

ZelClumpType clumpTypeOf(const ZelParameterControl& control) {
  const ZelParameter* p = control.parameter();
  return p && p->clump ? p->clump->clumpType : ZelClumpType::Normal;
}

bool isNumberKey(std::string_view c) { return c.size() == 1 && c[0] != '\0' && std::strchr(".0123456789", c[0]); }

}  // namespace

ZelKeyboardHandler::ZelKeyboardHandler()
    : undoRedoStack_(kUndoCapacity, sameSnapshot), self_(std::make_shared<ZelKeyboardHandler*>(this)) {}

ZelKeyboardHandler::~ZelKeyboardHandler() { *self_ = nullptr; }

ZelParameterControl* ZelKeyboardHandler::focused() const { return ui_ ? ui_->focus().focusedControl() : nullptr; }

// ---- Events.

bool ZelKeyboardHandler::handleKeyDownEvent(const ZelEvent& event) {
  const std::string& c = event.charactersIgnoringModifiers;
  if (c == "-" && numberBuffer_.empty()) return appendToNumberBuffer("-");
  if (c == "k") return appendToNumberBuffer("k");
  if (isNumberKey(c)) return appendToNumberBuffer(c);
  // A pitch is also typed as a note name: its letter, sharp or flat, octave.
  if (const ZelParameterControl* control = focused();
      control && control->parameter()->unit == ZelUnit::Note && ZelIsNoteNameCharacter(numberBuffer_, c))
    return appendToNumberBuffer(c);
  switch (event.keyCode) {
    case ZelKeyCodeReturn:
    case ZelKeyCodeKeypadEnter:
      return sendCompletedNumberBuffer();
    case ZelKeyCodeTab:
      return tabToNextControlWithEvent(event);
    case ZelKeyCodeGrave:
      return tabToNextControlWithDirection(-1);
    case ZelKeyCodeDelete:
      return deleteLastCharacterInNumberBuffer();
    case ZelKeyCodeEscape:
      return escapeFocusedControl();
    default:
      return false;
  }
}

bool ZelKeyboardHandler::handlePerformKeyEquivalent(const ZelEvent& event) {
  const char32_t key = ZelFirstCodePoint(event.charactersIgnoringModifiers);
  if (event.has(ZelEventModifierNumericPad)) {
    if (key < ZelUpArrowFunctionKey || key > ZelRightArrowFunctionKey) return false;
    return incrementFocusedWithArrow(key, event);
  }
  if (!event.has(ZelEventModifierCommand)) return false;
  return runShortcut(event.charactersIgnoringModifiers);
}

bool ZelKeyboardHandler::incrementFocusedWithArrow(char32_t key, const ZelEvent& event) {
  ZelParameterControl* control = focused();
  if (!control) return false;
  const ZelGranularityType granularity = event.has(ZelEventModifierShift)     ? ZelGranularityCoarse
                                         : event.has(ZelEventModifierCommand) ? ZelGranularityFine
                                                                              : ZelGranularityNormal;
  return control->incrementWithArrow(static_cast<char16_t>(key), granularity);
}

void ZelKeyboardHandler::handleFlagsChanged(const ZelEvent& event, ZelWindow* window) { (void)event, (void)window; }

bool ZelKeyboardHandler::runShortcut(std::string_view key) {
  for (const auto& [name, operation] : kCmdShortcutMap)
    if (name == key) return (this->*operation)();
  return false;
}

// ---- The number buffer.

bool ZelKeyboardHandler::appendToNumberBuffer(std::string_view text) {
  // "k" closes the entry; one radix point only.
  if (!numberBuffer_.empty() && numberBuffer_.back() == 'k') return false;
  if (text == "." && numberBuffer_.find('.') != std::string::npos) return false;
  numberBuffer_.append(text);
  showBufferOnFocusedControl();
  return true;
}

bool ZelKeyboardHandler::deleteLastCharacterInNumberBuffer() {
  if (numberBuffer_.empty()) return false;
  numberBuffer_.pop_back();
  showBufferOnFocusedControl();
  return true;
}

void ZelKeyboardHandler::showBufferOnFocusedControl() {
  if (ZelParameterControl* control = focused()) control->setTransientStringValue(numberBuffer_);
}

bool ZelKeyboardHandler::sendCompletedNumberBuffer() {
  ZelParameterControl* control = focused();
  // Return toggles a boolean control and leaves the buffer alone.
  if (control && control->toggleBooleanControl()) return true;
  if (numberBuffer_.empty()) return true;
  if (control) control->setStringValue(numberBuffer_);
  numberBuffer_.clear();
  return true;
}

void ZelKeyboardHandler::resetNumberBuffer() { numberBuffer_.clear(); }

// ---- Navigation.

bool ZelKeyboardHandler::tabToNextControlWithEvent(const ZelEvent& event) {
  return tabToNextControlWithDirection(event.has(ZelEventModifierShift) ? -1 : 1);
}

bool ZelKeyboardHandler::tabToNextControlWithDirection(int direction) {
  if (!ui_) return false;
  ZelParameterControl* control = focused();
  // Tabbing commits a typed number.
  if (control && control->acceptsTransientStringBuffers()) sendCompletedNumberBuffer();
  ui_->focus().bringParameterControlIntoFocus(adjacentParameterControl(control, direction));
  resetNumberBuffer();
  return true;
}

ZelParameterControl* ZelKeyboardHandler::adjacentParameterControl(ZelParameterControl* control, int direction) const {
  if (!ui_ || !config_ || !ui_->isProcessing()) return nullptr;
  const std::vector<std::string>& order = config_->metadata().tabOrderNames;
  if (order.empty()) return nullptr;
  const ZelClumpType wanted = ui_->drawers().isAdvancedDrawerVisible() ? ZelClumpType::Advanced : ZelClumpType::Normal;
  if (!control) {
    for (const std::string& name : order) {
      ZelParameterControl* candidate = ui_->parameterControlWithCodename(name);
      if (candidate && clumpTypeOf(*candidate) == wanted) return candidate;
    }
    return ui_->parameterControlWithCodename(order.front());
  }
  const std::string& current = control->parameter() ? control->parameter()->codesafeName : std::string();
  const auto n = static_cast<std::ptrdiff_t>(order.size());
  const std::ptrdiff_t step = direction >= 1 ? 1 : -1;
  std::ptrdiff_t i = direction >= 1 ? 0 : n - 1;
  bool met = false;
  // The focused name is met within one round, the answer within the next.
  for (std::ptrdiff_t walked = 0; walked < 2 * n; ++walked, i = (i + step + n) % n) {
    const std::string& name = order[static_cast<std::size_t>(i)];
    if (!met) {
      met = name == current;
      continue;
    }
    if (name == current) return nullptr;
    ZelParameterControl* candidate = ui_->parameterControlWithCodename(name);
    if (candidate && candidate->primaryControl() && !candidate->primaryControl()->isDisabled() &&
        clumpTypeOf(*candidate) == wanted)
      return candidate;
  }
  return nullptr;
}

bool ZelKeyboardHandler::escapeFocusedControl() {
  resetNumberBuffer();
  if (!ui_) return false;
  // Escape first unfocuses, then closes drawers.
  if (focused()) {
    ui_->focus().bringParameterControlIntoFocus(nullptr);
    return true;
  }
  return ui_->drawers().hideAllDrawers();
}

// ---- Shortcuts.

bool ZelKeyboardHandler::keyboardShortcutToggleNumericDisplay() { return true; }

bool ZelKeyboardHandler::keyboardShortcutRefreshInitialParameterValues() {
  ZelParameterControl* preset = ui_ && ui_->presetBar() ? ui_->presetBar()->presetControl() : nullptr;
  if (!preset) return true;
  preset->setFloatValue(0);
  ui_->presets().presetUpdated(*preset);
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutUndo() { return applyUndoRedoStackValues(undoRedoStack_.undo()); }

bool ZelKeyboardHandler::keyboardShortcutRedo() { return applyUndoRedoStackValues(undoRedoStack_.redo()); }

bool ZelKeyboardHandler::keyboardShortcutOpenManual() {
  if (!ui_ || !config_) return true;
  const std::string path = ZelBundle::pathForResource(config_->metadata().classPrefix + "_Manual", "pdf");
  ZelURLOpener* opener = ui_->window() ? ui_->window()->urlOpener() : nullptr;
  if (!path.empty() && opener) opener->open(path);
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutToggleAdvancedDrawer() { return ui_ && ui_->drawers().toggleAdvancedDrawer(); }

bool ZelKeyboardHandler::keyboardShortcutToggleTheme() {
  if (ui_) ui_->hostLink().toggleUITheme();
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutZoomIn() {
  if (ui_) ui_->hostLink().zoomIn();
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutZoomOut() {
  if (ui_) ui_->hostLink().zoomOut();
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutResetZoom() {
  if (ui_) ui_->hostLink().zoomTo(1.0);
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutTogglePower() {
  const ZelParameter* power = config_ ? config_->parameterForPid(0) : nullptr;
  if (ui_ && power) ui_->values().notifyParameter(*power, ui_->isProcessing() ? 0.0f : 1.0f);
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutTogglePresetDrawer() { return ui_ && ui_->drawers().togglePresetsDrawer(); }

// ---- Undo and redo.

bool ZelKeyboardHandler::applyUndoRedoStackValues(const std::optional<ZelUndoRedoStack::Snapshot>& snapshot) {
  if (ui_) ui_->undo().syncUndoRedoButtonsToStackState();
  if (!snapshot || !ui_ || !config_) return true;
  // Locked: the changes below schedule no snapshot of their own.
  undoRedoStack_.setLocks(1);
  for (const auto& [pid, value] : *snapshot)
    if (const ZelParameter* p = config_->parameterForPid(pid)) ui_->values().notifyParameter(*p, value);
  undoRedoStack_.setLocks(0);
  return true;
}

// ---- Copy and paste.

std::string ZelKeyboardHandler::baseURLForPluginVersion() const {
  std::string url = ZelEditorHostLink::kMakerWebSite;
  if (!config_) return url + "//";
  return url + "/" + config_->metadata().pluginURLSlug + "/" + config_->metadata().version;
}

std::string ZelKeyboardHandler::currentParametersURLEncoded() const {
  std::string items;
  if (ui_) {
    for (const ZelParameterControl* control : ui_->parameterControls()) {
      const ZelParameter* p = control->parameter();
      if (!p || p->pid == 0 || control->floatValue() == p->initialValue) continue;
      if (!items.empty()) items += "/";
      items += (p->minimalName.empty() ? p->codesafeName : p->minimalName) + ":" +
               ZelParameterURLValueText(control->floatValue());
    }
  }
  return baseURLForPluginVersion() + "/?" + items;
}

bool ZelKeyboardHandler::keyboardShortcutHandleCopy() {
  ZelPasteboard* pasteboard = ui_ && ui_->window() ? ui_->window()->pasteboard() : nullptr;
  if (pasteboard) pasteboard->setString(currentParametersURLEncoded());
  return true;
}

bool ZelKeyboardHandler::keyboardShortcutHandlePaste() {
  ZelPasteboard* pasteboard = ui_ && ui_->window() ? ui_->window()->pasteboard() : nullptr;
  if (!pasteboard) return false;
  std::weak_ptr<ZelKeyboardHandler*> weak = self_;
  pasteboard->requestString([weak](std::optional<std::string> text) {
    const std::shared_ptr<ZelKeyboardHandler*> alive = weak.lock();
    if (alive && *alive && text) (*alive)->applyURLEncodedPreset(*text);
  });
  return true;
}

bool ZelKeyboardHandler::applyURLEncodedPreset(std::string_view text) {
  const std::optional<ZelParameterURLQuery> query = ZelParseParameterURL(text, ZelNumberParser::user());
  if (!query || !ui_ || !config_) return false;
  // Everything not named is reset (the power too); "x" keeps a value only
  // under the key copy writes for it: the minimal name, or the code name of
  // a parameter without one.
  for (ZelParameterControl* control : std::vector<ZelParameterControl*>(ui_->parameterControls())) {
    const ZelParameter* p = control->parameter();
    if (!p) continue;
    const ZelParameterURLEntry* entry = query->find(p->minimalName.empty() ? p->codesafeName : p->minimalName);
    if (!entry || !entry->keeps()) ui_->values().notifyParameter(*p, p->initialValue);
  }
  // A value outside the parameter's range (hand-edited text, another
  // version's) is taken at the nearest end; not a number is left out.
  for (const ZelParameterURLEntry& entry : query->entries) {
    const ZelParameter* p = entry.keeps() ? nullptr : config_->parameterForCodename(entry.name);
    if (p && !std::isnan(*entry.number)) ui_->values().notifyParameter(*p, std::clamp(*entry.number, p->minValue, p->maxValue));
  }
  return true;
}

ZEL_NAMESPACE_END
