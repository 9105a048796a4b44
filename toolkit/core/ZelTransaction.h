// A scope that changes how layer property changes animate, as the platform's
// transactions do:
//
//   { ZelTransaction t; t.setDisableActions(true); layer->setOpacity(0); }
//
// Scopes nest; an inner scope inherits each setting its outer scopes made
// until it sets its own. Outside every scope, standalone layers animate
// their changes of opacity, transform and background colour over 0.25 s
// with the default timing function.
//
// Threading: the stack of scopes is per thread (layers live on the UI
// thread). A transaction must be destroyed on the thread that made it, in
// reverse order of creation (it is meant to live on the stack).
#pragma once

#include <optional>

#include "toolkit/core/ZelTimingFunction.h"

ZEL_NAMESPACE_BEGIN

class ZelTransaction {
 public:
  ZelTransaction();
  ~ZelTransaction();
  ZelTransaction(const ZelTransaction&) = delete;
  ZelTransaction& operator=(const ZelTransaction&) = delete;

  void setDisableActions(bool disable) { disableActions_ = disable; }
  void setAnimationDuration(double seconds) { duration_ = seconds; }
  void setAnimationTimingFunction(const ZelTimingFunction& f) { timing_ = f; }

  // The settings in force on this thread (innermost scope that set them).
  static bool disableActions();               // default false
  static double animationDuration();          // default 0.25 s
  static ZelTimingFunction animationTimingFunction();  // default: defaultTiming()

 private:
  ZelTransaction* outer_;
  std::optional<bool> disableActions_;
  std::optional<double> duration_;
  std::optional<ZelTimingFunction> timing_;
};

ZEL_NAMESPACE_END
