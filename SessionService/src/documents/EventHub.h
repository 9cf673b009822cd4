#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <tarn/service/Service.h>

namespace tarn::service {

/// Hands each event to all streams. Any thread may call it.
///
/// Events are published while their document is locked, so their order is that of the changes. They are delivered after
/// that: a hundred streams take longer than an edit.
class EventHub {
 public:
  EventHub(std::size_t mostStreams, std::size_t mostWaiting) noexcept
      : mostStreams_(mostStreams), mostWaiting_(mostWaiting) {}

  /// Null when there are too many.
  [[nodiscard]] std::shared_ptr<EventStream> subscribe();
  /// Whether an event would reach anyone.
  [[nodiscard]] bool hasListeners();
  /// Keeps the event for `deliver`.
  void publish(std::string method, nlohmann::ordered_json params);
  /// Hands on everything that was published, in its order. Afterwards the streams have it, also what another thread has
  /// begun to deliver. When memory runs out, the streams end: their clients look at everything again.
  void deliver();
  void closeAll();

 private:
  struct Event {
    std::string method;
    nlohmann::ordered_json params;
  };

  std::vector<std::shared_ptr<EventStream>> streams();

  std::size_t mostStreams_;
  std::size_t mostWaiting_;
  /// Held while events are delivered. Taken before `mutex_`.
  std::mutex delivering_;
  std::mutex mutex_;
  std::vector<Event> published_;
  std::vector<std::weak_ptr<EventStream>> streams_;
};

}  // namespace tarn::service
