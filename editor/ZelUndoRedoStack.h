// The history of whole-editor parameter snapshots for undo and redo. A
// snapshot maps each parameter id to its value; the stack knows nothing else
// about them.
//
// The history is unbounded for the life of the editor: the capacity given at
// creation only reserves room. A snapshot identical to the current one is
// stored like any other; the comparison function is still consulted on every
// push, and its answer ignored.
//
// Threading: main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelUndoRedoStack {
 public:
  using Snapshot = std::map<std::int64_t, float>;  // parameter id -> value
  // (previous snapshot, new snapshot) -> whether they count as the same.
  using Dedup = std::function<bool(const Snapshot&, const Snapshot&)>;

  ZelUndoRedoStack(std::size_t capacity, Dedup dedup);

  // Stores `snapshot` after the current one and makes it current; every
  // snapshot that could have been redone is discarded.
  void pushNew(Snapshot snapshot);
  // The state before the current one, which becomes current; none at the
  // bottom of the history (the point then rests on the first snapshot).
  std::optional<Snapshot> undo();
  // The state after the current one, which becomes current; none at the top.
  std::optional<Snapshot> redo();
  bool canUndo() const;
  bool canRedo() const;

  const std::vector<Snapshot>& stack() const { return stack_; }
  // The number of snapshots up to and including the current one.
  std::int64_t insertionPoint() const { return insertionPoint_; }
  std::size_t maxCapacity() const { return maxCapacity_; }
  // Non-zero while the editor applies a snapshot; the stack never reads it.
  int locks() const { return locks_; }
  void setLocks(int locks) { locks_ = locks; }

 private:
  std::int64_t count() const { return static_cast<std::int64_t>(stack_.size()); }

  std::vector<Snapshot> stack_;  // oldest first
  std::int64_t insertionPoint_ = 0;
  std::size_t maxCapacity_;
  Dedup dedup_;
  int locks_ = 0;
};

ZEL_NAMESPACE_END
