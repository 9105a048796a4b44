// The editor's undo snapshots and its undo and redo buttons.
#include "editor/ZelEditorUndo.h"

#include "editor/ZelGenericUI.h"
#include "editor/ZelPresetBar.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "model/ZelConfig.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kUndoSnapshotDelay = 0.5;

}  // namespace

void ZelEditorUndo::potentiallySaveToUndoRedoStack() {
  const ZelCallKey key{&ui_, "saveParametersToUndoRedoStack"};
  ui_.runLoop().cancel(key);
  if (ui_.keyboard().undoRedoStack().locks() != 0) return;
  ui_.runLoop().schedule(kUndoSnapshotDelay, [this] { saveParametersToUndoRedoStack(); }, key);
}

void ZelEditorUndo::saveParametersToUndoRedoStack() {
  ZelUndoRedoStack::Snapshot snapshot;
  const std::span<const float> memo = ui_.values().memoizedPValues();
  if (const ZelConfig* config = ui_.config()) {
    config->enumerateParameters([&](const ZelParameter& p, const ZelClump&) {
      if (p.pid >= 0 && p.pid < static_cast<std::int64_t>(memo.size()))
        snapshot[p.pid] = memo[static_cast<std::size_t>(p.pid)];
    });
  }
  ui_.keyboard().undoRedoStack().pushNew(std::move(snapshot));
  syncUndoRedoButtonsToStackState();
}

void ZelEditorUndo::syncUndoRedoButtonsToStackState() {
  ZelPresetBar* presetBar = ui_.presetBar();
  if (!presetBar) return;
  const ZelUndoRedoStack& stack = ui_.keyboard().undoRedoStack();
  if (presetBar->undo()) presetBar->undo()->setEnabled(stack.canUndo());
  if (presetBar->redo()) presetBar->redo()->setEnabled(stack.canRedo());
}

ZEL_NAMESPACE_END
