// Named broadcasts within the process: observers register for a name and,
// optionally, one posting object, and are called synchronously, in the order
// they registered, by every matching post.
//
// An observer is registered for as long as the handle returned by
// addObserver lives. Observers may register and unregister (their own handle
// or others') from inside a callback: an observer added during a post is not
// called by that post; one removed during a post is not called after its
// removal. A handle may outlive its centre.
//
// Threading: a centre and its handles belong to one thread; the default
// centre is the main thread's.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

struct ZelNotification {
  std::string_view name;
  const void* object = nullptr;  // the posting object, or nullptr
};

class ZelNotificationCenter {
 public:
  using Callback = std::function<void(const ZelNotification&)>;

  // Unregisters its observer when destroyed or reset. Move-only.
  class Observation {
   public:
    Observation() = default;
    Observation(Observation&&) noexcept = default;
    Observation& operator=(Observation&& other) noexcept;
    ~Observation() { reset(); }
    void reset();
    bool active() const;

   private:
    friend class ZelNotificationCenter;
    struct Record;
    struct State;
    Observation(std::weak_ptr<State> state, std::shared_ptr<Record> record);
    std::weak_ptr<State> state_;
    std::shared_ptr<Record> record_;
  };

  ZelNotificationCenter();
  ~ZelNotificationCenter();
  ZelNotificationCenter(const ZelNotificationCenter&) = delete;
  ZelNotificationCenter& operator=(const ZelNotificationCenter&) = delete;

  // Calls `callback` for every post of `name` whose object is `object`, or
  // of any object when `object` is nullptr, until the handle is dropped.
  [[nodiscard]] Observation addObserver(std::string name, const void* object, Callback callback);
  // Calls the matching observers now, on this thread. An exception from a
  // callback propagates and skips the remaining observers.
  void post(std::string_view name, const void* object = nullptr);
  std::size_t observerCount() const;

  // The process-wide centre (main thread only).
  static ZelNotificationCenter& defaultCenter();

 private:
  std::shared_ptr<Observation::State> state_;
};

ZEL_NAMESPACE_END
