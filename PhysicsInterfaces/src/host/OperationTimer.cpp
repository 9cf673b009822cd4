// Measures an operation and its sections. Without a sink nothing is copied and no clock is read, so timers are cheap in
// code that is called often.
#include <tarn/OperationTimer.h>

namespace tarn {

OperationTimer::OperationTimer(std::string const& name) : sink_(MeasurementSink::get()) {
  if (!sink_) return;
  name_ = name;
  start_ = Clock::now();
}

OperationTimer::~OperationTimer() {
  // A sink that was replaced may have been destroyed.
  if (!sink_ || sink_ != MeasurementSink::get()) return;
  auto const now = Clock::now();
  try {
    endSection(now);
    sink_->operationEnded(name_, now - start_, sections_);
  } catch (...) {
    // A destructor must not throw. Only a measurement is lost.
  }
}

void OperationTimer::enterSection(std::string const& name) {
  if (!sink_) return;
  auto const now = Clock::now();
  endSection(now);
  section_ = name;
  sectionStart_ = now;
  inSection_ = true;
}

void OperationTimer::endSection(Clock::time_point now) {
  if (!inSection_) return;
  sections_.push_back({section_, now - sectionStart_});
  inSection_ = false;
}

}  // namespace tarn
