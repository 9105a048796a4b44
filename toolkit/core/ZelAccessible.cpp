#include "toolkit/core/ZelAccessible.h"

#include <algorithm>

#include "toolkit/core/ZelLayer.h"
#include "toolkit/core/ZelView.h"

ZEL_NAMESPACE_BEGIN

void ZelAccessible::addChild(ZelAccessible* child) {
  child->parent_ = this;
  children_.push_back(child);
}

int ZelAccessible::indexInParent() const {
  if (!parent_) return -1;
  const auto& siblings = parent_->children_;
  auto it = std::find(siblings.begin(), siblings.end(), this);
  return it == siblings.end() ? -1 : static_cast<int>(it - siblings.begin());
}

ZelAccessible* ZelAccessible::find(int identifier) {
  if (identifier_ == identifier) return this;
  for (ZelAccessible* child : children_) {
    if (ZelAccessible* found = child->find(identifier)) return found;
  }
  return nullptr;
}

CGRect ZelViewFrameInWindow(const ZelView* view) {
  if (!view || !view->window()) return CGRectZero;
  return view->convertRectToView(view->bounds(), nullptr);
}

ZelAccessibleStates ZelViewVisibility(const ZelView* view) {
  if (!view) return 0;
  ZelAccessibleStates states = 0;
  if (!view->isHidden()) states |= ZelAccessibleVisible;
  bool showing = view->window() != nullptr;
  for (const ZelView* v = view; v && showing; v = v->superview()) {
    if (v->isHidden() || v->alphaValue() <= 0) showing = false;
    if (v->layer() && v->layer()->opacity() <= 0) showing = false;
  }
  if (showing) states |= ZelAccessibleShowing;
  return states;
}

std::vector<ZelAccessibleEvent> ZelAccessibleWatcher::look(ZelAccessible* root) {
  std::vector<ZelAccessibleEvent> events;
  const bool report = root && root == root_;
  if (!report) seen_.clear();
  root_ = root;
  if (root) collect(*root, events, report);
  return events;
}

void ZelAccessibleWatcher::forget() {
  root_ = nullptr;
  seen_.clear();
}

void ZelAccessibleWatcher::collect(ZelAccessible& element, std::vector<ZelAccessibleEvent>& events, bool report) {
  using Kind = ZelAccessibleEvent::Kind;
  Seen now;
  now.states = element.states();
  if (auto v = element.value()) now.value = v->current;
  now.name = element.name();
  now.description = element.description();
  const int id = element.identifier();
  auto it = seen_.find(id);
  if (report && it != seen_.end()) {
    const Seen& was = it->second;
    const ZelAccessibleStates flipped = was.states ^ now.states;
    for (std::uint32_t bit = 1; bit != 0 && bit <= flipped; bit <<= 1) {
      if (!(flipped & bit)) continue;
      const bool on = (now.states & bit) != 0;
      events.push_back({Kind::State, id, static_cast<ZelAccessibleState>(bit), on, 0});
      if (bit == ZelAccessibleFocused && on) events.push_back({Kind::Focus, id});
    }
    if (now.value && was.value != now.value) events.push_back({Kind::Value, id, ZelAccessibleEnabled, false, *now.value});
    if (was.name != now.name) events.push_back({Kind::Name, id});
    if (was.description != now.description) events.push_back({Kind::Description, id});
  }
  seen_[id] = std::move(now);
  for (ZelAccessible* child : element.children()) collect(*child, events, report);
}

ZEL_NAMESPACE_END
