#include <tarn/TextPlace.h>

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>

namespace tarn {
namespace {

TEST(TextPlace, OfARuleThatAProgramMadeIsNotKnown) {
  PhysicsData data;
  auto& object = data.addObject("/Case");
  ParamAvail entry;
  entry.name = "Flow Regime";
  ParamValueDef def;
  def.defaultValue = std::make_unique<FixedText>("Laminar");
  ASSERT_TRUE(object.addParam(std::move(entry), std::move(def)));

  auto const& param = *object.findParam("Flow Regime");
  EXPECT_FALSE(object.rulePlace.isKnown());
  EXPECT_FALSE(param.rulePlace.isKnown());
  EXPECT_FALSE(param.valueDef()->rulePlace.isKnown());
  EXPECT_FALSE(param.valueDef()->defaultValue->rulePlace().isKnown());
  EXPECT_EQ(param.rulePlace.source(), "");
  EXPECT_EQ(param.rulePlace.line(), 0U);
  EXPECT_EQ(param.rulePlace.column(), 0U);
  EXPECT_EQ(param.rulePlace.text(), "");
}

TEST(TextPlace, ReadsAsCompilersWriteIt) {
  TextPlace const place(std::make_shared<std::string const>("flow.rules.yaml"), 34, 20);
  EXPECT_TRUE(place.isKnown());
  EXPECT_EQ(place.source(), "flow.rules.yaml");
  EXPECT_EQ(place.line(), 34U);
  EXPECT_EQ(place.column(), 20U);
  EXPECT_EQ(place.text(), "flow.rules.yaml:34:20");
}

TEST(TextPlace, ACopyOutlivesTheRulesAndSharesTheNameOfTheFile) {
  auto name = std::make_shared<std::string const>("flow.rules.yaml");
  TextPlace copy;
  {
    FixedText text("Laminar");
    text.setRulePlace({name, 3, 7});
    copy = text.rulePlace();
  }
  EXPECT_EQ(&copy.source(), name.get());
  EXPECT_EQ(copy.text(), "flow.rules.yaml:3:7");
}

}  // namespace
}  // namespace tarn
