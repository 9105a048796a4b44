#include "toolkit/core/ZelDisplayLink.h"

ZEL_NAMESPACE_BEGIN

ZelDisplayLink::ZelDisplayLink(ZelFrameClock& clock, Callback callback)
    : clock_(&clock), callback_(std::move(callback)) {}

ZelDisplayLink::~ZelDisplayLink() { stop(); }

void ZelDisplayLink::start() {
  if (running_ || !clock_) return;
  running_ = true;
  clock_->addClient(*this);
}

void ZelDisplayLink::stop() {
  if (!running_) return;
  running_ = false;
  if (clock_) clock_->removeClient(*this);
}

double ZelDisplayLink::nominalFramesPerSecond() const { return clock_ ? clock_->framesPerSecond() : 0; }

void ZelDisplayLink::frameClockDidTick(ZelFrameClock&, double frameDuration) {
  if (running_ && callback_) callback_(frameDuration);
}

void ZelDisplayLink::frameClockWillDisappear(ZelFrameClock&) {
  running_ = false;
  clock_ = nullptr;
}

ZEL_NAMESPACE_END
