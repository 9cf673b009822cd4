// Each thread has its own sink. So a host that measures one thread gets nothing from the others, and no lock is needed.
#include <tarn/MeasurementSink.h>

namespace tarn {

namespace {

thread_local MeasurementSink* sinkOfThread = nullptr;

}  // namespace

MeasurementSink::~MeasurementSink() = default;

void MeasurementSink::set(MeasurementSink* sink) noexcept {
  sinkOfThread = sink;
}

MeasurementSink* MeasurementSink::get() noexcept {
  return sinkOfThread;
}

}  // namespace tarn
