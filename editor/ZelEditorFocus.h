// The editor's keyboard focus: which parameter control has it, and what
// happens to it when the window loses and regains focus (the control is
// remembered and focused again, unless it sits in the advanced drawer and
// that drawer has closed). Focusing a control closes a drawer that hides it.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference. The focused and remembered controls are non-owning pointers
// into the editor's registry; the editor clears them (clear()) before its
// controls go.
// Threading: main thread only.
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;
class ZelParameterControl;

class ZelEditorFocus {
 public:
  explicit ZelEditorFocus(ZelGenericUI& ui) : ui_(ui) {}
  ZelEditorFocus(const ZelEditorFocus&) = delete;
  ZelEditorFocus& operator=(const ZelEditorFocus&) = delete;

  // The focused control, when it is still valid for the drawer shown (an
  // invalid focus is cleared).
  ZelParameterControl* focusedControl();
  // Focuses `control` (nullptr clears focus). Power-box controls are
  // ignored; the power parameter is never drawn focused.
  void bringParameterControlIntoFocus(ZelParameterControl* control);
  ZelParameterControl* wasFocusedControl() const { return wasFocusedControl_; }
  // The window gained or lost focus.
  bool hasFocus() const { return hasFocus_; }
  void setHasFocus(bool hasFocus);
  // Forgets both controls (the editor's teardown).
  void clear() { focusedControl_ = wasFocusedControl_ = nullptr; }

 private:
  ZelGenericUI& ui_;
  ZelParameterControl* focusedControl_ = nullptr;
  ZelParameterControl* wasFocusedControl_ = nullptr;
  bool hasFocus_ = false;
};

ZEL_NAMESPACE_END
