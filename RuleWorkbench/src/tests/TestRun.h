#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tarn/ModelTDF.h>
#include <tarn/session/Session.h>
#include <tarn/workbench/RuleTests.h>

#include "tests/TestPlan.h"

namespace tarn::workbench {

/// One run of one test, in a session of its own.
class TestRun {
 public:
  /// `coverage` may be null.
  TestRun(TestPlan const& test, PhysicsData const& rules, RuleCoverage* coverage);

  [[nodiscard]] TestResult result() &&;

 private:
  /// Why an item is as it is.
  struct Cause {
    std::string text;
    TextPlace rule;
  };

  void run();
  [[nodiscard]] bool open();
  /// False when what comes after the step is not worth looking at.
  [[nodiscard]] bool make(PlannedStep const& step);
  [[nodiscard]] std::vector<Edit> editsOf(PlannedStep const& step) const;
  void check(Expectation const& expectation);
  void checkPresence(Expectation const& expectation, session::Item const& item);
  void checkNeed(Expectation const& expectation, session::Item const& item);
  void checkParam(Expectation const& expectation, session::Item const& item);
  void checkValue(Expectation const& expectation, session::ParamRecord const& param);
  void checkAllowed(Expectation const& expectation, session::ParamRecord const& param);
  void checkReason(Expectation const& expectation, session::Item const& item);
  void checkFindings(Expectation const& expectation, session::Item const* item);
  /// `model` is the result of the session.
  void evaluate(PlannedEvaluation const& evaluation, ModelTDF const& model);

  /// The item that an expectation names. When there is none, that is a failure.
  [[nodiscard]] std::optional<session::Item> itemOf(PlacedText const& path, bool mayBeGone);
  /// The item at a path that the rules know, whether it exists or not.
  [[nodiscard]] std::optional<session::Item> knownItem(std::string const& path) const;
  /// Whether the model, an edit of the test or the rules give each name in a path. Otherwise it is a slip.
  [[nodiscard]] bool hasBeenNamed(std::string const& path) const;

  [[nodiscard]] Cause whyPresence(session::Item const& item) const;
  [[nodiscard]] Cause whyValue(session::Item const& item) const;
  [[nodiscard]] Cause whyAllowed(session::Item const& item, std::string const& value) const;
  [[nodiscard]] Cause causeOf(session::Item const& item, session::WhyOptions const& options) const;
  [[nodiscard]] Cause causeOf(session::Refused const& refused) const;

  void fail(TextPlace const& place, std::string subject, std::string expected, std::string actual, Cause cause = {});

  TestPlan const& test_;
  PhysicsData const& rules_;
  RuleCoverage* coverage_;
  std::unique_ptr<session::Session> session_;
  TestResult result_;
};

}  // namespace tarn::workbench
