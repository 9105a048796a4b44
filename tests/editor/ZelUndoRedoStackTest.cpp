#include "editor/ZelUndoRedoStack.h"

#include <gtest/gtest.h>

using namespace zel;
using Snapshot = ZelUndoRedoStack::Snapshot;

static Snapshot S(float v) { return Snapshot{{1, v}, {7, -v}}; }

TEST(ZelUndoRedoStack, UndoRedoAndBranchingFollowTheInsertionPoint) {
  ZelUndoRedoStack stack(100, {});
  for (float v : {0.f, 1.f, 2.f}) stack.pushNew(S(v));
  EXPECT_EQ(stack.undo(), S(1));
  EXPECT_EQ(stack.insertionPoint(), 2);
  EXPECT_EQ(stack.undo(), S(0));
  EXPECT_FALSE(stack.canUndo());
  EXPECT_EQ(stack.undo(), std::nullopt);
  EXPECT_EQ(stack.insertionPoint(), 1);
  EXPECT_TRUE(stack.canRedo());
  EXPECT_EQ(stack.redo(), S(1));
  stack.pushNew(S(3));  // the redo branch (S2) is gone
  EXPECT_EQ(stack.stack(), (std::vector<Snapshot>{S(0), S(1), S(3)}));
  EXPECT_EQ(stack.insertionPoint(), 3);
  EXPECT_FALSE(stack.canRedo());
  EXPECT_EQ(stack.redo(), std::nullopt);
}

TEST(ZelUndoRedoStack, EmptyAndSingleSnapshotHistories) {
  ZelUndoRedoStack stack(100, {});
  EXPECT_FALSE(stack.canUndo() || stack.canRedo());
  EXPECT_EQ(stack.undo(), std::nullopt);
  EXPECT_EQ(stack.insertionPoint(), 1);
  EXPECT_EQ(stack.redo(), std::nullopt);
  stack.pushNew(S(5));  // after an undo on nothing, the first snapshot still lands at the bottom
  EXPECT_EQ(stack.stack(), std::vector<Snapshot>{S(5)});
  EXPECT_EQ(stack.undo(), std::nullopt);
  EXPECT_EQ(stack.insertionPoint(), 1);
  EXPECT_FALSE(stack.canUndo() || stack.canRedo());
}

TEST(ZelUndoRedoStack, KeepsDuplicatesAndEveryPushBeyondTheCapacity) {
  int comparisons = 0;
  ZelUndoRedoStack stack(100, [&](const Snapshot& before, const Snapshot& after) {
    ++comparisons;
    return before == after;
  });
  stack.pushNew(S(1));
  stack.pushNew(S(1));
  EXPECT_EQ(comparisons, 1);  // asked once, answered "same", stored anyway
  EXPECT_EQ(stack.undo(), S(1));
  for (int i = 0; i < 150; ++i) stack.pushNew(S(static_cast<float>(i)));
  ASSERT_EQ(stack.stack().size(), 151u);
  int undos = 0;
  while (stack.undo()) ++undos;
  EXPECT_EQ(undos, 150);
}
