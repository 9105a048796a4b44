// A menu as a value the views build: a title and items, each with a title,
// an enabled state and an action. The window shows it as a popup
// (ZelWindow::popUpMenu); choosing an item closes the menu and then runs the
// item's action.
//
// Ownership: the window owns the open menu; an action typically captures a
// plain pointer to the view that made the menu, which is safe because the
// window closes the menu when that view leaves it. Threading: main thread.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

struct ZelMenuItem {
  std::string title;
  std::function<void()> action;  // may be empty (the item does nothing)
  bool enabled = true;
  bool separator = false;  // a divider line; never enabled or chosen
};

class ZelMenu {
 public:
  explicit ZelMenu(std::string title = {}) : title_(std::move(title)) {}

  const std::string& title() const { return title_; }
  void setTitle(std::string title) { title_ = std::move(title); }

  // Appends an item and returns it (valid until the next add).
  ZelMenuItem& addItem(std::string title, std::function<void()> action, bool enabled = true);
  ZelMenuItem& addSeparator();
  const std::vector<ZelMenuItem>& items() const { return items_; }
  std::vector<ZelMenuItem>& items() { return items_; }
  std::size_t size() const { return items_.size(); }

  // The index of the first item titled `title` (separators excluded), or -1.
  int indexOfItem(std::string_view title) const;
  // Whether the item at `index` exists, is no separator and is enabled.
  bool isSelectable(int index) const;

 private:
  std::string title_;
  std::vector<ZelMenuItem> items_;
};

ZEL_NAMESPACE_END
