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
class EventHub {
 public:
  EventHub(std::size_t mostStreams, std::size_t mostWaiting) noexcept
      : mostStreams_(mostStreams), mostWaiting_(mostWaiting) {}

  /// Null when there are too many.
  [[nodiscard]] std::shared_ptr<EventStream> subscribe();
  /// Whether an event would reach anyone.
  [[nodiscard]] bool hasListeners();
  void publish(std::string const& method, nlohmann::ordered_json const& params);
  void closeAll();

 private:
  std::vector<std::shared_ptr<EventStream>> streams();

  std::size_t mostStreams_;
  std::size_t mostWaiting_;
  std::mutex mutex_;
  std::vector<std::weak_ptr<EventStream>> streams_;
};

}  // namespace tarn::service
