#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <tarn/Export.h>

namespace tarn {

/// Receives the measurements of `OperationTimer` and `EvalCache::report`. Without a sink the measurements are dropped.
class TARN_EXPORT MeasurementSink {
 public:
  struct Section {
    std::string name;
    std::chrono::nanoseconds duration;
  };

  virtual ~MeasurementSink();

  /// An operation has ended. `sections` are the sections that it entered, in order; empty if it entered none.
  virtual void operationEnded(std::string const& name, std::chrono::nanoseconds duration,
                              std::vector<Section> const& sections) = 0;
  /// An evaluation cache reports how often it had a result, how often it had none, and how many results it holds.
  virtual void cacheReported(std::size_t hits, std::size_t misses, std::size_t entries) = 0;

  /// Sets the sink of the calling thread. Null, the default, drops all measurements. The sink must live until it is
  /// replaced, and it must not throw.
  static void set(MeasurementSink* sink) noexcept;
  [[nodiscard]] static MeasurementSink* get() noexcept;
};

}  // namespace tarn
