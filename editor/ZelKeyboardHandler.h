// The editor's keyboard: Command (Ctrl) shortcuts, typed numbers for the
// focused control, Tab and Shift-Tab through the description's tab order,
// escape, arrow-key nudging, undo and redo (it owns the undo history), and
// copy and paste of the whole parameter state as URL-shaped text.
//
// The copied text is "<base URL>/?name:value/name:value..." with the
// base URL "https://www.zel-audio.example/<slug>/<version>", one item per
// parameter that is not at its initial value (the power parameter never),
// named by its minimal name (else its code name). A paste resets every
// parameter it does not mention to its initial value, keeps those given as
// "x", and sets the others; text that is not a URL changes nothing.
//
// Ownership: the description and the editor are non-owning pointers (the
// editor owns this handler and sets both). The undo stack is owned here.
// A paste waits for the clipboard's answer through the run loop; an answer
// that arrives after the handler is gone is dropped.
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "editor/ZelUndoRedoStack.h"
#include "toolkit/core/ZelEvent.h"

ZEL_NAMESPACE_BEGIN

class ZelConfig;
class ZelGenericUI;
class ZelParameterControl;
class ZelWindow;

class ZelKeyboardHandler {
 public:
  ZelKeyboardHandler();
  ~ZelKeyboardHandler();
  ZelKeyboardHandler(const ZelKeyboardHandler&) = delete;
  ZelKeyboardHandler& operator=(const ZelKeyboardHandler&) = delete;

  const ZelConfig* config() const { return config_; }
  void setConfig(const ZelConfig* config) { config_ = config; }
  ZelGenericUI* ui() const { return ui_; }
  void setUi(ZelGenericUI* ui) { ui_ = ui; }
  ZelUndoRedoStack& undoRedoStack() { return undoRedoStack_; }
  const ZelUndoRedoStack& undoRedoStack() const { return undoRedoStack_; }

  // ---- Events; each returns whether the key was handled.
  bool handleKeyDownEvent(const ZelEvent& event);
  bool handlePerformKeyEquivalent(const ZelEvent& event);
  void handleFlagsChanged(const ZelEvent& event, ZelWindow* window);

  // ---- The number being typed.
  const std::string& numberBuffer() const { return numberBuffer_; }
  bool appendToNumberBuffer(std::string_view text);
  bool deleteLastCharacterInNumberBuffer();
  bool sendCompletedNumberBuffer();
  void resetNumberBuffer();
  void clearNumberBuffer() { resetNumberBuffer(); }

  // ---- Navigation.
  bool tabToNextControlWithEvent(const ZelEvent& event);
  bool tabToNextControlWithDirection(int direction);
  // The control Tab (+1) or Shift-Tab (-1) goes to from `control` (nullptr:
  // none focused); nullptr while the power is off or when none qualifies.
  ZelParameterControl* adjacentParameterControl(ZelParameterControl* control, int direction) const;
  bool escapeFocusedControl();

  // ---- Shortcuts (Ctrl + the key in the table; see the .cpp).
  bool keyboardShortcutToggleNumericDisplay();
  bool keyboardShortcutRefreshInitialParameterValues();
  // Asks the clipboard; the paste happens when it answers (through the run
  // loop). True when a request was made.
  bool keyboardShortcutHandlePaste();
  bool keyboardShortcutHandleCopy();
  bool keyboardShortcutUndo();
  bool keyboardShortcutRedo();
  bool keyboardShortcutOpenManual();
  bool keyboardShortcutToggleAdvancedDrawer();
  bool keyboardShortcutToggleTheme();
  bool keyboardShortcutTogglePower();
  // Ctrl+plus (or Ctrl+=), Ctrl+minus, Ctrl+0: the editor's zoom one step
  // up, one step down, back to 100%.
  bool keyboardShortcutZoomIn();
  bool keyboardShortcutZoomOut();
  bool keyboardShortcutResetZoom();
  bool keyboardShortcutTogglePresetDrawer();
  // Runs the shortcut for `key` (the characters ignoring modifiers); false
  // when the table has none.
  bool runShortcut(std::string_view key);

  // ---- Undo and redo.
  // Syncs the buttons; applies a snapshot (if any) with the stack locked so
  // that it records no new one. Always true.
  bool applyUndoRedoStackValues(const std::optional<ZelUndoRedoStack::Snapshot>& snapshot);

  // ---- The parameter state as text.
  std::string baseURLForPluginVersion() const;
  std::string currentParametersURLEncoded() const;
  // False (and nothing changes) when `text` is not a URL.
  bool applyURLEncodedPreset(std::string_view text);

 private:
  ZelParameterControl* focused() const;
  bool incrementFocusedWithArrow(char32_t key, const ZelEvent& event);
  void showBufferOnFocusedControl();

  const ZelConfig* config_ = nullptr;
  ZelGenericUI* ui_ = nullptr;
  ZelUndoRedoStack undoRedoStack_;
  std::string numberBuffer_;
  // Lets a pending clipboard answer know whether this handler still exists.
  std::shared_ptr<ZelKeyboardHandler*> self_;
};

ZEL_NAMESPACE_END
