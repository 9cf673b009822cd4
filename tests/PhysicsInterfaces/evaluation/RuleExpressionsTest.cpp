#include <tarn/RuleExpressions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MapModel.h"
#include "support/RuleLambdas.h"

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
  EXPECT_EQ(&list.evaluate(TDFContext("/Case"), &evaluation).vector(), &list.items().vector());
  EXPECT_FALSE(reads.readsModel());
}

TEST(RuleExpressions, ARuleOfAProgramHasNoSourceText) {
  EXPECT_EQ(test::always()->sourceText(), "");
}

}  // namespace
}  // namespace tarn
