// A view that reports user changes to a target through an action, and can
// be disabled. Subclasses call sendAction() when the user changes them.
//
// Ownership: the action is a callable owned by the control; the target is a
// plain non-owning pointer, which its owner clears (setTarget(nullptr))
// before the target goes. Threading: main thread only.
#pragma once

#include <functional>

#include "toolkit/core/ZelView.h"

ZEL_NAMESPACE_BEGIN

class ZelControl : public ZelView {
 public:
  using Action = std::function<void(ZelControl& sender)>;

  using ZelView::ZelView;

  // The action runs with this control as the sender. An empty action sends
  // nothing.
  const Action& action() const { return action_; }
  void setAction(Action action) { action_ = std::move(action); }
  // Who the action is meant for; the control only stores it, for actions
  // written as "call this method on the target" (see setTargetAction).
  void* target() const { return target_; }
  void setTarget(void* target) { target_ = target; }
  // Target and action at once: the action calls `method` on `target` with
  // the sender, as long as the target is set.
  template <class T>
  void setTargetAction(T* target, void (T::*method)(ZelControl&)) {
    target_ = target;
    action_ = [method](ZelControl& sender) {
      if (void* t = sender.target()) (static_cast<T*>(t)->*method)(sender);
    };
  }

  // Runs the action; false when there is none. A disabled control still
  // sends when asked to: enabled only stops user input (subclasses test it).
  bool sendAction();

  bool isEnabled() const { return enabled_; }
  // Redraws when the state changes.
  virtual void setEnabled(bool enabled);

  // An integer tag for telling controls apart in a shared action.
  int tag() const { return tag_; }
  void setTag(int tag) { tag_ = tag; }

 private:
  Action action_;
  void* target_ = nullptr;
  bool enabled_ = true;
  int tag_ = 0;
};

ZEL_NAMESPACE_END
