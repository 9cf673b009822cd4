// The logger interface as a derived logger and its caller see it: findings reach the derived one, which is destroyed
// through the base.
#include <tarn/PhysicsErrorLogger.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace tarn {
namespace {

class NotingLogger : public PhysicsErrorLogger {
 public:
  explicit NotingLogger(std::vector<std::string>& notes) : notes_(notes) {}
  ~NotingLogger() override { notes_.emplace_back("gone"); }
  void logDependencyError(std::string const& path, PhysicsErrorMsg const& message) override {
    notes_.push_back(path + ": " + message.message);
  }
  void logGlobalError(PhysicsErrorMsg const& message) override { notes_.push_back(message.message); }
  void logTermination(std::string const& text) override { notes_.push_back(text); }
  void reset() override { notes_.clear(); }
  bool hasDependencyErrors() const override { return !notes_.empty(); }
  bool hasGlobalErrors() const override { return false; }

 private:
  std::vector<std::string>& notes_;
};

TEST(PhysicsErrorLogger, ADerivedLoggerGetsTheFindingsAndIsDestroyedThroughTheBase) {
  std::vector<std::string> notes;
  std::unique_ptr<PhysicsErrorLogger> logger = std::make_unique<NotingLogger>(notes);
  logger->logDependencyError("/Case/Domain:rotor", std::string("no such parameter"));
  logger->logGlobalError(std::string("no inlet"));
  EXPECT_TRUE(logger->hasDependencyErrors());
  EXPECT_EQ(notes, (std::vector<std::string>{"/Case/Domain:rotor: no such parameter", "no inlet"}));
  logger->reset();
  EXPECT_FALSE(logger->hasDependencyErrors());
  logger.reset();
  EXPECT_EQ(notes, (std::vector<std::string>{"gone"}));
}

}  // namespace
}  // namespace tarn
