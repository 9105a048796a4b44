#include "toolkit/core/ZelControl.h"

ZEL_NAMESPACE_BEGIN

bool ZelControl::sendAction() {
  if (!action_) return false;
  // The action may replace itself (or the control's target); run a copy.
  Action action = action_;
  action(*this);
  return true;
}

void ZelControl::setEnabled(bool enabled) {
  if (enabled_ == enabled) return;
  enabled_ = enabled;
  setNeedsDisplay();
}

ZEL_NAMESPACE_END
