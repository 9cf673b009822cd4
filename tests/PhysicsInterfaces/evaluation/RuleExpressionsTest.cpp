#include <tarn/RuleExpressions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using testing::ElementsAre;

TEST(RuleExpressions, AFixedTextIsTheSameEverywhereAndReadsNothing) {
  test::MapModel const model;
  EvalContext evaluation(&model);
  FixedText const text("Water, liquid");
  RuleReads reads;
  text.collectReads(reads);

  EXPECT_EQ(text.evaluate(TDFContext("/Case"), &evaluation), "Water, liquid");
  EXPECT_EQ(text.text(), "Water, liquid");
  EXPECT_EQ(text.sourceText(), "");
  EXPECT_FALSE(reads.readsModel());
  EXPECT_TRUE(reads.isContextFree());
}

TEST(RuleExpressions, AFixedListIsSharedWithEveryResult) {
  test::MapModel const model;
  EvalContext evaluation(&model);
  FixedList const list({"Water", "Air"});
  RuleReads reads;
  list.collectReads(reads);

  EXPECT_THAT(list.evaluate(TDFContext("/Case"), &evaluation).vector(), ElementsAre("Water", "Air"));
  SharedStrings const result = list.evaluate(TDFContext("/Case"), &evaluation);
  EXPECT_EQ(&result.vector(), &list.items().vector());
  EXPECT_FALSE(reads.readsModel());
}

// A condition that a host wrote: it looks at something outside the model, and says nothing about it.
class LicenceIsValid final : public Condition {
 public:
  [[nodiscard]] bool evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const override {
    return true;
  }
};

TEST(RuleExpressions, AnExpressionThatDoesNotListItsReadsMayReadAnything) {
  RuleReads reads;
  LicenceIsValid().collectReads(reads);

  EXPECT_TRUE(reads.unknown);
  EXPECT_TRUE(reads.readsModel());
  EXPECT_FALSE(reads.isContextFree());
}

TEST(RuleExpressions, ARuleOfAProgramHasNoSourceText) {
  EXPECT_EQ(test::always()->sourceText(), "");
}

}  // namespace
}  // namespace tarn
