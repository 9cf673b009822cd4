// Which results of rules are kept during a walk, and when they are dropped.

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <variant>

#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>

#include "PhysicalDependency/provisional/ProvisionalFixture.h"
#include "provisional/ProvisionalTDFAccess.h"

namespace tarn {
namespace {

using test::rotor;
using test::Rules;

/// Holds while the rotor has the Title "Impeller". Keeps the result, as it does not depend on the context.
class IsImpeller final : public Condition {
 public:
  explicit IsImpeller(int& evaluations) : evaluations_(evaluations) {}

  [[nodiscard]] bool evaluate(TDFContext const& /*context*/, EvalContext* evalContext) const override {
    EvalCache* const cache = evalContext->getCache();
    if (cache != nullptr) {
      if (auto const* known = cache->find(this)) return std::get<bool>(*known);
    }
    ++evaluations_;
    bool const result = evalContext->getDB()->getParameterValue(rotor, "Title") == "Impeller";
    if (cache != nullptr) cache->store(this, result);
    return result;
  }
  void collectReads(RuleReads& reads) const override { reads.objectSets.emplace_back("/**"); }

 private:
  int& evaluations_;
};

/// Hands the questions on to a condition that several entries share.
class Shared final : public Condition {
 public:
  explicit Shared(Condition const& condition) : condition_(condition) {}
  [[nodiscard]] bool evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    return condition_.evaluate(context, evalContext);
  }
  void collectReads(RuleReads& reads) const override { condition_.collectReads(reads); }

 private:
  Condition const& condition_;
};

/// A rotor whose Blades, Pitch and Shaft depend on its Title. The Blades come before it and so read its old value, the
/// others come after it.
class ProvisionalKeptResultsTest : public test::ProvisionalTest {
 protected:
  ProvisionalKeptResultsTest() {
    Rules rules(rules_, "/Case/Domain");
    rules.param("Blades").required().byDefault("12").availableWhen(std::make_unique<Shared>(isImpeller_));
    rules.param("Title").required().byDefault("Untitled");
    rules.param("Pitch").required().byDefault("15").availableWhen(std::make_unique<Shared>(isImpeller_));
    rules.child("Shaft").required().singleton().availableWhen(std::make_unique<Shared>(isImpeller_));
    rules.object("/Case/Domain/Shaft").param("Length").required().byDefault("1");
  }
  /// In walks of everything. Walks that leave visits out have results of their own.
  int evaluationsOf(std::function<void()> const& edit) {
    ProvisionalTDFAccess::walkEverything(state(), true);
    evaluations_ = 0;
    edit();
    return evaluations_;
  }

  int evaluations_ = 0;
  IsImpeller const isImpeller_{evaluations_};
};

TEST_F(ProvisionalKeptResultsTest, WhereNothingChangesAResultServesTheWholeWalk) {
  start();
  EXPECT_EQ(evaluationsOf([&] { walkAgain(); }), 1);
}

TEST_F(ProvisionalKeptResultsTest, AChangeDuringTheWalkDropsThem) {
  start();
  set("Title", "Impeller");
  EXPECT_EQ(value("Blades"), std::nullopt);
  EXPECT_EQ(value("Pitch"), "15");
  EXPECT_EQ(value("Length", rotor + "/Shaft"), "1");
  set("Title", "Diffuser");
  EXPECT_EQ(value("Blades"), "12");
  EXPECT_EQ(value("Pitch"), std::nullopt);
  EXPECT_EQ(value("Length", rotor + "/Shaft"), std::nullopt);
}

TEST_F(ProvisionalKeptResultsTest, EveryWalkBeginsWithoutThem) {
  start();
  EXPECT_EQ(evaluationsOf([&] {
              walkAgain();
              walkAgain();
            }),
            2);
}

TEST_F(ProvisionalKeptResultsTest, TheyCanBeSwitchedOffInTheEnvironment) {
  start();
  setenv("TARN_PHYSVAL_DONTUSECACHE", "1", 1);
  int const evaluations = evaluationsOf([&] { walkAgain(); });
  unsetenv("TARN_PHYSVAL_DONTUSECACHE");
  EXPECT_EQ(evaluations, 3);
}

}  // namespace
}  // namespace tarn
