#include "toolkit/core/ZelFrameClock.h"

#include <algorithm>

#include "toolkit/core/ZelLayer.h"

ZEL_NAMESPACE_BEGIN

ZelFrameClock::ZelFrameClock(ZelRunLoop& runLoop, double framesPerSecond)
    : runLoop_(runLoop), fps_(framesPerSecond > 0 ? framesPerSecond : 60) {}

ZelFrameClock::~ZelFrameClock() {
  if (pending_) runLoop_.cancel(pending_);
  for (ZelLayer* layer : layers_)
    if (layer) layer->frameClockWillDisappear();
  // A client may remove itself from here; work on a copy.
  std::vector<ZelFrameClockClient*> clients = clients_;
  for (ZelFrameClockClient* client : clients)
    if (client) client->frameClockWillDisappear(*this);
}

void ZelFrameClock::setFramesPerSecond(double fps) {
  if (fps > 0) fps_ = fps;
}

void ZelFrameClock::addAnimatingLayer(ZelLayer& layer) {
  if (std::find(layers_.begin(), layers_.end(), &layer) == layers_.end()) layers_.push_back(&layer);
  ensureScheduled();
}

void ZelFrameClock::removeAnimatingLayer(ZelLayer& layer) {
  auto it = std::find(layers_.begin(), layers_.end(), &layer);
  if (it == layers_.end()) return;
  if (ticking_) *it = nullptr;  // compacted when the tick ends
  else layers_.erase(it);
}

std::size_t ZelFrameClock::animatingLayerCount() const {
  return std::count_if(layers_.begin(), layers_.end(), [](ZelLayer* l) { return l != nullptr; });
}

void ZelFrameClock::addClient(ZelFrameClockClient& client) {
  if (std::find(clients_.begin(), clients_.end(), &client) == clients_.end()) clients_.push_back(&client);
  ensureScheduled();
}

void ZelFrameClock::removeClient(ZelFrameClockClient& client) {
  auto it = std::find(clients_.begin(), clients_.end(), &client);
  if (it == clients_.end()) return;
  if (ticking_) *it = nullptr;
  else clients_.erase(it);
}

std::size_t ZelFrameClock::clientCount() const {
  return std::count_if(clients_.begin(), clients_.end(), [](ZelFrameClockClient* c) { return c != nullptr; });
}

void ZelFrameClock::ensureScheduled() {
  if (pending_ || ticking_) return;  // a tick in progress reschedules at its end
  pending_ = runLoop_.schedule(frameDuration(), [this] {
    pending_ = 0;
    tick();
  });
}

void ZelFrameClock::tick() {
  if (ticking_) return;
  if (pending_) {
    runLoop_.cancel(pending_);
    pending_ = 0;
  }
  ticking_ = true;
  invalidateLayers();
  tickClients();
  finishAnimations();
  // Completions run last; they may add animations or clients and destroy
  // layers (removals still only mark entries), but not tick again.
  for (std::size_t i = 0; i < completions_.size(); ++i) completions_[i]();
  completions_.clear();
  ticking_ = false;
  compact();
  if (!layers_.empty() || !clients_.empty()) ensureScheduled();
}

void ZelFrameClock::invalidateLayers() {
  // Hosts only record areas here; they must not change the layer tree.
  for (ZelLayer* layer : layers_)
    if (layer) layer->frameClockInvalidate();
}

void ZelFrameClock::tickClients() {
  double duration = frameDuration();
  // Clients added during the tick wait for the next one.
  std::size_t count = clients_.size();
  for (std::size_t i = 0; i < count; ++i)
    if (ZelFrameClockClient* client = clients_[i]) client->frameClockDidTick(*this, duration);
}

void ZelFrameClock::finishAnimations() {
  double t = now();
  for (ZelLayer*& layer : layers_) {
    if (layer && !layer->frameClockFinishAnimations(t, completions_)) {
      // The layer unregisters itself when it stops; make sure either way.
      layer = nullptr;
    }
  }
}

void ZelFrameClock::compact() {
  std::erase(layers_, nullptr);
  std::erase(clients_, nullptr);
}

ZEL_NAMESPACE_END
