#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/MeasurementSink.h>

namespace tarn {

/// Measures an operation from construction to destruction, with sections within it. It passes the result to the
/// `MeasurementSink` that the thread had at construction. Without a sink it does nothing. If the sink was replaced in
/// the meantime, the measurement is dropped.
class TARN_EXPORT OperationTimer {
 public:
  explicit OperationTimer(std::string const& name);
  OperationTimer(OperationTimer const&) = delete;
  OperationTimer& operator=(OperationTimer const&) = delete;
  ~OperationTimer();

  /// Ends the current section, if there is one, and begins another.
  void enterSection(std::string const& name);

 private:
  using Clock = std::chrono::steady_clock;
  void endSection(Clock::time_point now);

  MeasurementSink* sink_;
  std::string name_;
  Clock::time_point start_;
  Clock::time_point sectionStart_;
  bool inSection_ = false;
  std::string section_;
  std::vector<MeasurementSink::Section> sections_;
};

}  // namespace tarn
