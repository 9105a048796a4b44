// The editor's side of undo: a snapshot of every memoized value is pushed
// on the keyboard handler's undo stack half a second after the last change
// (one snapshot per burst, none while a snapshot is being applied), and the
// preset bar's undo and redo buttons follow the stack.
//
// Ownership: owned by the editor, which it reaches through a non-owning
// reference. The stack belongs to the keyboard handler. The delayed
// snapshot is keyed on the editor, which cancels it.
// Threading: main thread only.
#pragma once

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelGenericUI;

class ZelEditorUndo {
 public:
  explicit ZelEditorUndo(ZelGenericUI& ui) : ui_(ui) {}
  ZelEditorUndo(const ZelEditorUndo&) = delete;
  ZelEditorUndo& operator=(const ZelEditorUndo&) = delete;

  // Cancels a pending snapshot; schedules one 0.5 s later unless the stack
  // is locked.
  void potentiallySaveToUndoRedoStack();
  // Pushes the memoized values (pid -> value) and syncs the buttons.
  void saveParametersToUndoRedoStack();
  // Undo enabled exactly when the stack can undo, redo when it can redo.
  void syncUndoRedoButtonsToStackState();

 private:
  ZelGenericUI& ui_;
};

ZEL_NAMESPACE_END
