#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// Receives the measurements that `OperationTimer` and `EvalCache::report` make. Nothing is written anywhere unless a
/// host sets a sink.
class TARN_EXPORT MeasurementSink {
 public:
  struct Section {
    std::string name;
    std::chrono::nanoseconds duration;
  };

  virtual ~MeasurementSink();

  /// An operation has ended. `sections` are those entered within it, in order; it is empty when there were none.
  virtual void operationEnded(std::string const& name, std::chrono::nanoseconds duration,
                              std::vector<Section> const& sections) = 0;
  /// An evaluation cache reports how often it could answer, how often not, and how many results it holds.
  virtual void cacheReported(std::size_t hits, std::size_t misses, std::size_t entries) = 0;

  /// Sets the sink of the calling thread; null, the state at the start, drops all measurements. The sink must live
  /// until it is replaced. It must not throw.
  static void set(MeasurementSink* sink) noexcept;
  [[nodiscard]] static MeasurementSink* get() noexcept;
};

}  // namespace tarn
