#include "toolkit/core/ZelMenu.h"

ZEL_NAMESPACE_BEGIN

ZelMenuItem& ZelMenu::addItem(std::string title, std::function<void()> action, bool enabled) {
  items_.push_back(ZelMenuItem{std::move(title), std::move(action), enabled, false});
  return items_.back();
}

ZelMenuItem& ZelMenu::addSeparator() {
  items_.push_back(ZelMenuItem{{}, {}, false, true});
  return items_.back();
}

int ZelMenu::indexOfItem(std::string_view title) const {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (!items_[i].separator && items_[i].title == title) return static_cast<int>(i);
  }
  return -1;
}

bool ZelMenu::isSelectable(int index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= items_.size()) return false;
  const ZelMenuItem& item = items_[static_cast<std::size_t>(index)];
  return item.enabled && !item.separator;
}

ZEL_NAMESPACE_END
