#include "toolkit/foundation/ZelNotificationCenter.h"

#include <algorithm>

ZEL_NAMESPACE_BEGIN

struct ZelNotificationCenter::Observation::Record {
  std::string name;
  const void* object;
  Callback callback;
  bool registered = true;
};

// Shared between the centre and its handles, so that a handle dropped after
// the centre finds nothing to unregister from.
struct ZelNotificationCenter::Observation::State {
  std::vector<std::shared_ptr<Record>> records;  // registration order
};

ZelNotificationCenter::Observation::Observation(std::weak_ptr<State> state, std::shared_ptr<Record> record)
    : state_(std::move(state)), record_(std::move(record)) {}

ZelNotificationCenter::Observation& ZelNotificationCenter::Observation::operator=(Observation&& other) noexcept {
  if (this != &other) {
    reset();
    state_ = std::move(other.state_);
    record_ = std::move(other.record_);
  }
  return *this;
}

void ZelNotificationCenter::Observation::reset() {
  if (!record_) return;
  record_->registered = false;
  if (auto state = state_.lock()) std::erase(state->records, record_);
  record_.reset();
  state_.reset();
}

bool ZelNotificationCenter::Observation::active() const {
  return record_ && record_->registered && !state_.expired();
}

ZelNotificationCenter::ZelNotificationCenter() : state_(std::make_shared<Observation::State>()) {}

ZelNotificationCenter::~ZelNotificationCenter() {
  for (auto& record : state_->records) record->registered = false;
}

ZelNotificationCenter::Observation ZelNotificationCenter::addObserver(std::string name, const void* object,
                                                                      Callback callback) {
  auto record = std::make_shared<Observation::Record>(
      Observation::Record{std::move(name), object, std::move(callback)});
  state_->records.push_back(record);
  return Observation(state_, std::move(record));
}

void ZelNotificationCenter::post(std::string_view name, const void* object) {
  // Call a copy of the list: callbacks may add or remove observers. Holding
  // the records also keeps a callback alive while it drops its own handle.
  std::vector<std::shared_ptr<Observation::Record>> matching;
  for (const auto& record : state_->records) {
    if (record->name == name && (record->object == nullptr || record->object == object)) matching.push_back(record);
  }
  const ZelNotification note{name, object};
  for (const auto& record : matching) {
    if (record->registered) record->callback(note);
  }
}

std::size_t ZelNotificationCenter::observerCount() const { return state_->records.size(); }

ZelNotificationCenter& ZelNotificationCenter::defaultCenter() {
  static ZelNotificationCenter center;
  return center;
}

ZEL_NAMESPACE_END
