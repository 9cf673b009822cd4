#include "documents/EventHub.h"

#include <condition_variable>
#include <deque>
#include <new>
#include <utility>

#include <tarn/service/JsonText.h>

namespace tarn::service {

namespace {

using Json = nlohmann::ordered_json;

std::shared_ptr<std::string const> notification(std::string const& method, Json const& params) {
  Json const json = {{"jsonrpc", "2.0"}, {"method", method}, {"params", params}};
  return std::make_shared<std::string const>(jsonLine(json));
}

}  // namespace

struct EventStream::State {
  explicit State(std::size_t most) noexcept : mostWaiting(most) {}

  std::size_t const mostWaiting;
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::shared_ptr<std::string const>> waiting;
  bool isClosed = false;
};

EventStream::EventStream(std::size_t mostWaiting) : state_(std::make_unique<State>(mostWaiting)) {}
EventStream::~EventStream() = default;

std::shared_ptr<std::string const> EventStream::next(std::chrono::milliseconds most) {
  std::unique_lock lock(state_->mutex);
  state_->changed.wait_for(lock, most, [this] { return state_->isClosed || !state_->waiting.empty(); });
  if (state_->isClosed || state_->waiting.empty()) return nullptr;
  auto event = std::move(state_->waiting.front());
  state_->waiting.pop_front();
  return event;
}

bool EventStream::isClosed() const {
  std::lock_guard const lock(state_->mutex);
  return state_->isClosed;
}

void EventStream::close() {
  std::lock_guard const lock(state_->mutex);
  state_->isClosed = true;
  state_->changed.notify_all();
}

void EventStream::push(std::shared_ptr<std::string const> const& event) {
  std::lock_guard const lock(state_->mutex);
  if (state_->isClosed) return;
  if (state_->waiting.size() >= state_->mostWaiting) {
    // The client reads too slowly. It must look at everything again, so none of the waiting events helps it.
    state_->waiting.clear();
    state_->waiting.push_back(notification("eventsLost", Json::object()));
  } else {
    state_->waiting.push_back(event);
  }
  state_->changed.notify_one();
}

std::shared_ptr<EventStream> EventHub::subscribe() {
  std::lock_guard const lock(mutex_);
  std::erase_if(streams_, [](std::weak_ptr<EventStream> const& stream) { return stream.expired(); });
  if (streams_.size() >= mostStreams_) return nullptr;
  auto stream = std::make_shared<EventStream>(mostWaiting_);
  streams_.push_back(stream);
  return stream;
}

bool EventHub::hasListeners() {
  return !streams().empty();
}

void EventHub::publish(std::string method, Json params) {
  std::lock_guard const lock(mutex_);
  published_.push_back({std::move(method), std::move(params)});
}

void EventHub::deliver() {
  std::lock_guard const order(delivering_);
  std::vector<Event> events;
  {
    std::lock_guard const lock(mutex_);
    events.swap(published_);
  }
  if (events.empty()) return;
  try {
    auto const listeners = streams();
    if (listeners.empty()) return;
    for (Event const& one : events) {
      auto const event = notification(one.method, one.params);
      for (auto const& stream : listeners) stream->push(event);
    }
  } catch (std::bad_alloc const&) {
    std::lock_guard const lock(mutex_);
    for (auto const& stream : streams_) {
      if (auto const held = stream.lock()) held->close();
    }
  }
}

void EventHub::closeAll() {
  for (auto const& stream : streams()) stream->close();
}

std::vector<std::shared_ptr<EventStream>> EventHub::streams() {
  std::lock_guard const lock(mutex_);
  std::vector<std::shared_ptr<EventStream>> present;
  for (auto const& stream : streams_) {
    if (auto held = stream.lock()) present.push_back(std::move(held));
  }
  return present;
}

}  // namespace tarn::service
