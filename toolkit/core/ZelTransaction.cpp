#include "toolkit/core/ZelTransaction.h"

ZEL_NAMESPACE_BEGIN

namespace {
// The innermost open scope of this thread.
thread_local ZelTransaction* tInnermost = nullptr;
}  // namespace

ZelTransaction::ZelTransaction() : outer_(tInnermost) { tInnermost = this; }

ZelTransaction::~ZelTransaction() { tInnermost = outer_; }

bool ZelTransaction::disableActions() {
  for (const ZelTransaction* t = tInnermost; t; t = t->outer_)
    if (t->disableActions_) return *t->disableActions_;
  return false;
}

double ZelTransaction::animationDuration() {
  for (const ZelTransaction* t = tInnermost; t; t = t->outer_)
    if (t->duration_) return *t->duration_;
  return 0.25;
}

ZelTimingFunction ZelTransaction::animationTimingFunction() {
  for (const ZelTransaction* t = tInnermost; t; t = t->outer_)
    if (t->timing_) return *t->timing_;
  return ZelTimingFunction::defaultTiming();
}

ZEL_NAMESPACE_END
