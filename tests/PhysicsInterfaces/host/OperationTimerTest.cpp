// Timers with and without a sink.
#include <tarn/OperationTimer.h>

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include <tarn/MeasurementSink.h>

namespace tarn {
namespace {

class RecordingSink : public MeasurementSink {
 public:
  struct Operation {
    std::string name;
    std::chrono::nanoseconds duration;
    std::vector<Section> sections;
  };

  RecordingSink() { MeasurementSink::set(this); }
  RecordingSink(RecordingSink const&) = delete;
  RecordingSink& operator=(RecordingSink const&) = delete;
  ~RecordingSink() override { MeasurementSink::set(nullptr); }

  void operationEnded(std::string const& name, std::chrono::nanoseconds duration,
                      std::vector<Section> const& sections) override {
    operations.push_back({name, duration, sections});
  }
  void cacheReported(std::size_t, std::size_t, std::size_t) override {}

  std::vector<Operation> operations;
};

TEST(OperationTimer, ReportsAnOperationWithItsSectionsInOrder) {
  RecordingSink sink;
  {
    OperationTimer timer("ProvisionalTDF::updateActiveTDF");
    timer.enterSection("analyse");
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    timer.enterSection("extract updates");
    EXPECT_TRUE(sink.operations.empty());
  }
  ASSERT_EQ(sink.operations.size(), 1U);
  RecordingSink::Operation const& operation = sink.operations.front();
  EXPECT_EQ(operation.name, "ProvisionalTDF::updateActiveTDF");
  ASSERT_EQ(operation.sections.size(), 2U);
  EXPECT_EQ(operation.sections[0].name, "analyse");
  EXPECT_EQ(operation.sections[1].name, "extract updates");
  EXPECT_GE(operation.sections[0].duration, std::chrono::milliseconds(2));
  EXPECT_GE(operation.duration, operation.sections[0].duration + operation.sections[1].duration);
}

TEST(OperationTimer, ReportsAnOperationWithoutSections) {
  RecordingSink sink;
  { OperationTimer const timer("Physics global checks"); }
  ASSERT_EQ(sink.operations.size(), 1U);
  EXPECT_TRUE(sink.operations.front().sections.empty());
}

TEST(OperationTimer, ReportsInnerOperationsFirst) {
  RecordingSink sink;
  {
    OperationTimer const outer("outer");
    OperationTimer const inner("inner");
  }
  ASSERT_EQ(sink.operations.size(), 2U);
  EXPECT_EQ(sink.operations[0].name, "inner");
  EXPECT_EQ(sink.operations[1].name, "outer");
}

TEST(OperationTimer, ReportsAnOperationThatAnExceptionEnds) {
  RecordingSink sink;
  try {
    OperationTimer const timer("failing");
    throw std::runtime_error("stop");
  } catch (std::runtime_error const&) {
  }
  EXPECT_EQ(sink.operations.size(), 1U);
}

TEST(OperationTimer, WithoutASinkWritesNothing) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  {
    OperationTimer timer("quiet");
    timer.enterSection("section");
  }
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(OperationTimer, DropsTheMeasurementWhenTheSinkWasReplaced) {
  RecordingSink second;
  MeasurementSink::set(nullptr);
  {
    RecordingSink first;
    {
      OperationTimer const timer("between");
      MeasurementSink::set(&second);
    }
    EXPECT_TRUE(first.operations.empty());
  }
  EXPECT_TRUE(second.operations.empty());
}

TEST(MeasurementSink, BelongsToOneThread) {
  RecordingSink sink;
  EXPECT_EQ(MeasurementSink::get(), &sink);
  MeasurementSink* other = &sink;
  std::thread([&other] { other = MeasurementSink::get(); }).join();
  EXPECT_EQ(other, nullptr);
}

}  // namespace
}  // namespace tarn
