// The listener bookkeeping every unit connection needs: which listeners
// exist and which parameter ids each one hears, with the statuses the
// connection calls return. Not owning: a listener disposes of itself.
//
// Threading: main thread only.
#pragma once

#include <algorithm>
#include <cstdint>
#include <set>
#include <vector>

#include "host/ZelUnitConnection.h"

ZEL_NAMESPACE_BEGIN

class ZelUnitListeners {
 public:
  ZelUnitStatus create(ZelUnitParameterListener* listener) {
    if (!listener) return kZelUnitInvalidParameter;
    if (!find(listener)) entries_.push_back({listener, {}});
    return kZelUnitNoErr;
  }
  ZelUnitStatus add(ZelUnitParameterListener* listener, std::uint32_t pid) {
    Entry* e = find(listener);
    if (!e) return kZelUnitInvalidParameter;
    e->pids.insert(pid);
    return kZelUnitNoErr;
  }
  ZelUnitStatus remove(ZelUnitParameterListener* listener, std::uint32_t pid) {
    Entry* e = find(listener);
    if (!e) return kZelUnitInvalidParameter;
    e->pids.erase(pid);
    return kZelUnitNoErr;
  }
  ZelUnitStatus dispose(ZelUnitParameterListener* listener) {
    return std::erase_if(entries_, [&](const Entry& e) { return e.listener == listener; }) ? kZelUnitNoErr
                                                                                          : kZelUnitInvalidParameter;
  }

  // Tells every listener of `pid` the value. A listener may create or
  // dispose of listeners while it is told; one disposed of meanwhile is not
  // told.
  // (By index, without a copy: a host's flood of values comes through here.)
  void tell(const void* sender, std::uint32_t pid, float value) {
    for (std::size_t i = 0; i < entries_.size();) {
      ZelUnitParameterListener* listener = entries_[i].listener;
      if (entries_[i].pids.count(pid)) listener->parameterListener(sender, pid, value);
      // Unless the list moved under us (a dispose), the next one is at i + 1.
      if (i < entries_.size() && entries_[i].listener == listener) ++i;
    }
  }

 private:
  struct Entry {
    ZelUnitParameterListener* listener;
    std::set<std::uint32_t> pids;
  };
  Entry* find(ZelUnitParameterListener* listener) {
    auto it = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& e) { return e.listener == listener; });
    return it == entries_.end() ? nullptr : &*it;
  }

  std::vector<Entry> entries_;
};

// A connection whose listener calls are the registry's: what every
// connection of ours shares.
class ZelListeningUnitConnection : public ZelUnitConnection {
 public:
  ZelUnitStatus createListener(ZelUnitParameterListener* listener) override { return listeners_.create(listener); }
  ZelUnitStatus addListenerParameter(ZelUnitParameterListener* listener, std::uint32_t pid) override {
    return listeners_.add(listener, pid);
  }
  ZelUnitStatus removeListenerParameter(ZelUnitParameterListener* listener, std::uint32_t pid) override {
    return listeners_.remove(listener, pid);
  }
  ZelUnitStatus disposeListener(ZelUnitParameterListener* listener) override { return listeners_.dispose(listener); }

 protected:
  ZelUnitListeners listeners_;
};

// The answer to a channel-count property, for connections that know both.
inline ZelUnitStatus ZelUnitChannelCount(ZelUnitProperty which, std::uint32_t in, std::uint32_t out,
                                         std::uint32_t& count) {
  if (which == ZelUnitProperty::ChannelsIn) {
    count = in;
  } else if (which == ZelUnitProperty::ChannelsOut) {
    count = out;
  } else {
    return kZelUnitInvalidProperty;
  }
  return kZelUnitNoErr;
}

ZEL_NAMESPACE_END
