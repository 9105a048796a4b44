#include "toolkit/core/ZelFrameClock.h"

#include <algorithm>
#include <vector>

#include "toolkit/core/ZelLayer.h"

ZEL_NAMESPACE_BEGIN

namespace {

// The layer and client lists: an entry is added once; one removed during a
// tick is only marked (null) and compacted when the tick ends.
template <class T>
void addOnce(std::vector<T*>& list, T* entry) {
  if (std::find(list.begin(), list.end(), entry) == list.end()) list.push_back(entry);
}

template <class T>
void removeEntry(std::vector<T*>& list, T* entry, bool ticking) {
  auto it = std::find(list.begin(), list.end(), entry);
  if (it == list.end()) return;
  if (ticking) *it = nullptr;
  else list.erase(it);
}

template <class T>
std::size_t liveEntries(const std::vector<T*>& list) {
  return list.size() - static_cast<std::size_t>(std::count(list.begin(), list.end(), nullptr));
}

}  // namespace

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
  addOnce(layers_, &layer);
  ensureScheduled();
}

void ZelFrameClock::removeAnimatingLayer(ZelLayer& layer) { removeEntry(layers_, &layer, ticking_); }

std::size_t ZelFrameClock::animatingLayerCount() const { return liveEntries(layers_); }

void ZelFrameClock::addClient(ZelFrameClockClient& client) {
  addOnce(clients_, &client);
  ensureScheduled();
}

void ZelFrameClock::removeClient(ZelFrameClockClient& client) { removeEntry(clients_, &client, ticking_); }

std::size_t ZelFrameClock::clientCount() const { return liveEntries(clients_); }

void ZelFrameClock::setSuspended(bool suspended) {
  if (suspended == suspended_) return;
  suspended_ = suspended;
  if (suspended_ && pending_) {
    runLoop_.cancel(pending_);
    pending_ = 0;
  } else if (!suspended_ && (liveEntries(layers_) > 0 || liveEntries(clients_) > 0)) {
    ensureScheduled();
  }
}

void ZelFrameClock::ensureScheduled() {
  if (pending_ || ticking_ || suspended_) return;  // a tick in progress reschedules at its end
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
