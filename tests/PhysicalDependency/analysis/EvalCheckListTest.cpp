// Named checks and lists on demand, with models made for each question.

#include <tarn/EvalCheckList.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PhysicsData.h>

#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::Rules;
using CheckResult = std::pair<bool, bool>;
using ListResult = std::pair<std::vector<std::string>, bool>;

struct PumpRules : PhysicsData {
  PumpRules() {
    Rules rules(*this);
    rules.check("Is Rotating", [](TDFContext const& at, ModelTDF const& model) {
      return model.getParameterValue(at.objPath(), "Motion") == "Rotating";
    });
    rules.check("Is Broken", [](TDFContext const&, ModelTDF const&) -> bool { throw std::domain_error("broken"); });
    rules.namedList("Materials", [](TDFContext const& at, ModelTDF const& model) {
      std::vector<std::string> items;
      model.getParamValueAsList(at.objPath(), "Materials", items);
      return items;
    });
    rules.namedList("Broken", [](TDFContext const&, ModelTDF const&) -> std::vector<std::string> {
      throw std::domain_error("broken");
    });
  }
};

class EvalCheckListTest : public testing::Test {
 protected:
  PumpRules const rules_;
  EvalCheckList const evaluator_{&rules_};
  MapModel const rotating_{{"/Case/Domain:rotor", {{"Motion", "Rotating"}, {"Materials", "Water,Air"}}}};
  MapModel const stationary_{{"/Case/Domain:rotor", {{"Motion", "Stationary"}}}};
};

TEST_F(EvalCheckListTest, ACheckThatHoldsGivesTrueAndKnown) {
  EXPECT_EQ(evaluator_.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &rotating_), CheckResult(true, true));
}

TEST_F(EvalCheckListTest, ACheckThatDoesNotHoldGivesFalseAndKnown) {
  EXPECT_EQ(evaluator_.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &stationary_), CheckResult(false, true));
}

TEST_F(EvalCheckListTest, AnUnknownCheckGivesFalseAndUnknown) {
  EXPECT_EQ(evaluator_.evaluateCheck("Is Reacting", "/Case/Domain:rotor", &rotating_), CheckResult(false, false));
}

TEST_F(EvalCheckListTest, ACheckIsEvaluatedAtThePathGiven) {
  EXPECT_EQ(evaluator_.evaluateCheck("Is Rotating", "/Case", &rotating_), CheckResult(false, true));
}

TEST_F(EvalCheckListTest, AListGivesItsItemsAndKnown) {
  EXPECT_EQ(evaluator_.evaluateList("Materials", "/Case/Domain:rotor", &rotating_), ListResult({"Water", "Air"}, true));
}

TEST_F(EvalCheckListTest, AListThatComesOutEmptyGivesNothingAndKnown) {
  EXPECT_EQ(evaluator_.evaluateList("Materials", "/Case/Domain:rotor", &stationary_), ListResult({}, true));
}

TEST_F(EvalCheckListTest, AnUnknownListGivesNothingAndUnknown) {
  EXPECT_EQ(evaluator_.evaluateList("Species", "/Case/Domain:rotor", &rotating_), ListResult({}, false));
}

TEST_F(EvalCheckListTest, AModelLeavesNothingBehindForTheNextOne) {
  EXPECT_TRUE(evaluator_.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &rotating_).first);
  EXPECT_FALSE(evaluator_.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &stationary_).first);
  EXPECT_TRUE(evaluator_.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &rotating_).first);
}

TEST_F(EvalCheckListTest, WhatARuleThrowsReachesTheCaller) {
  EXPECT_THROW((void)evaluator_.evaluateCheck("Is Broken", "/Case", &rotating_), std::domain_error);
  EXPECT_THROW((void)evaluator_.evaluateList("Broken", "/Case", &rotating_), std::domain_error);
}

TEST_F(EvalCheckListTest, ChecksAndListsAreKnownByTheirOwnNamesOnlyWhateverTheFlag) {
  for (bool const flag : {false, true}) {
    EXPECT_TRUE(evaluator_.hasCheck("Is Rotating", flag));
    EXPECT_FALSE(evaluator_.hasCheck("Materials", flag));
    EXPECT_TRUE(evaluator_.hasList("Materials", flag));
    EXPECT_FALSE(evaluator_.hasList("Is Rotating", flag));
  }
}

TEST_F(EvalCheckListTest, ACopyAnswersFromTheSameRules) {
  EvalCheckList const copy(evaluator_);
  PhysicsData const noRules;
  EvalCheckList assigned(&noRules);
  assigned = evaluator_;
  EXPECT_TRUE(copy.hasCheck("Is Rotating", false));
  EXPECT_TRUE(assigned.hasCheck("Is Rotating", false));
}

TEST_F(EvalCheckListTest, CallersNeedToKnowTheInterfaceOnly) {
  PhysicsEvaluator const& evaluator = evaluator_;
  EXPECT_EQ(evaluator.evaluateCheck("Is Rotating", "/Case/Domain:rotor", &rotating_), CheckResult(true, true));
}

}  // namespace
}  // namespace tarn
