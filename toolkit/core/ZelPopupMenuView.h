// The view that shows an open menu above a window's content: a rounded
// panel with one row per item, disabled items greyed, the highlighted item
// marked. The window creates it (ZelWindow::popUpMenu), sends it the events
// while it is open, and destroys it when the menu closes.
//
// Ownership: owns the menu it shows. Threading: main thread only.
#pragma once

#include <memory>

#include "toolkit/core/ZelMenu.h"
#include "toolkit/core/ZelView.h"

ZEL_NAMESPACE_BEGIN

class ZelPopupMenuView final : public ZelView {
 public:
  static constexpr double kItemHeight = 20;
  static constexpr double kSeparatorHeight = 9;
  static constexpr double kVerticalPadding = 5;
  static constexpr double kHorizontalPadding = 14;
  static constexpr double kMinimumWidth = 100;
  static constexpr double kCornerRadius = 5;
  static constexpr double kFontSize = 13;

  // Lays the menu out with its top-left corner just right of and below
  // `location`, so the pointer starts outside every item; moved to the
  // other side of the pointer, or inside the window, when it would not fit.
  ZelPopupMenuView(std::unique_ptr<ZelMenu> menu, CGPoint location, CGSize windowSize);

  ZelMenu& menu() const { return *menu_; }
  // The row of an item in bounds coordinates.
  CGRect itemRect(int index) const;
  // The item under a point in window coordinates, or -1.
  int itemAtWindowPoint(CGPoint point) const;

  int highlightedIndex() const { return highlighted_; }
  // Highlights a selectable item (anything else clears the highlight).
  void setHighlightedIndex(int index);
  // Moves the highlight to the next selectable item downwards (+1) or
  // upwards (-1); from no highlight, to the first or the last one.
  void moveHighlight(int direction);

  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

 private:
  static CGSize measure(const ZelMenu& menu);
  double rowHeight(int index) const;
  void drawItem(ZelGraphicsContext& ctx, int index);

  std::unique_ptr<ZelMenu> menu_;
  int highlighted_ = -1;
};

ZEL_NAMESPACE_END
