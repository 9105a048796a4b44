#include "editor/ZelUndoRedoStack.h"

#include <algorithm>

ZEL_NAMESPACE_BEGIN

ZelUndoRedoStack::ZelUndoRedoStack(std::size_t capacity, Dedup dedup)
    : maxCapacity_(capacity), dedup_(std::move(dedup)) {
  stack_.reserve(capacity);
}

void ZelUndoRedoStack::pushNew(Snapshot snapshot) {
  // An undo on an empty history leaves the point past the end; the snapshot
  // then simply goes on top.
  const std::int64_t at = std::min(insertionPoint_, count());
  if (at > 0 && dedup_) {
    // Asked and ignored: an unchanged state still makes its own undo step.
    [[maybe_unused]] const bool same = dedup_(stack_[at - 1], snapshot);
  }
  // A push after undos discards the redo branch.
  stack_.erase(stack_.begin() + at, stack_.end());
  stack_.push_back(std::move(snapshot));
  insertionPoint_ = at + 1;
}

std::optional<ZelUndoRedoStack::Snapshot> ZelUndoRedoStack::undo() {
  const std::int64_t n = insertionPoint_ - 1;
  insertionPoint_ = std::max<std::int64_t>(n, 0);
  if (n > 0 && count() >= 2) return stack_[n - 1];
  insertionPoint_ = 1;
  return std::nullopt;
}

std::optional<ZelUndoRedoStack::Snapshot> ZelUndoRedoStack::redo() {
  if (insertionPoint_ >= count()) return std::nullopt;
  return stack_[insertionPoint_++];
}

bool ZelUndoRedoStack::canUndo() const { return insertionPoint_ >= 2 && count() > 1; }

bool ZelUndoRedoStack::canRedo() const { return insertionPoint_ < count(); }

ZEL_NAMESPACE_END
