#include <tarn/ParamValueDef.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>

#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::Rules;
using test::when;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// The value rule of the parameter "Material" of a domain; each test writes it by `rule`.
class ParamValueDefRecord : public testing::Test {
 protected:
  ParamValueDefRecord() : rules_(data_, "/Domain") {}

  Rules& rule() { return rules_.param("Material"); }
  [[nodiscard]] ParamValueDef const& def() {
    rules_.object("/Domain");  // the entry is in the database when the next thing is named
    return *data_.getParamValueDef("/Domain", "Material", true);
  }

  [[nodiscard]] ParamAllowedValues allowed() {
    return def().evaluateAllowedValues(data_.getRules(), context_, &evaluation_);
  }
  [[nodiscard]] std::string plainDefault() { return def().evaluateDefault(data_.getRules(), context_, &evaluation_); }
  [[nodiscard]] std::string defaultInTheLightOfAllowed() {
    auto const& rule = def();
    return rule.evaluateDefault(data_.getRules(), context_, &evaluation_,
                                rule.evaluateAllowedValues(data_.getRules(), context_, &evaluation_));
  }
  [[nodiscard]] std::pair<bool, std::string> valueOverride() {
    auto const& rule = def();
    auto const plain = rule.evaluateValueOverride(data_.getRules(), context_, &evaluation_);
    EXPECT_EQ(plain, rule.evaluateValueOverride(data_.getRules(), context_, &evaluation_,
                                                rule.evaluateAllowedValues(data_.getRules(), context_, &evaluation_)))
        << "the allowed values must make no difference";
    return plain;
  }

  PhysicsData data_;
  MapModel model_{{"/Domain:pump", {{"Fluid Group", "Liquids"}, {"Liquids", "Water,Oil"}, {"Limit", "9 [m]"}}}};
  EvalContext evaluation_{&model_};
  TDFContext context_{"/Domain:pump"};
  BetaLoggingController controller_;

 private:
  Rules rules_;
};

// Allowed values

TEST_F(ParamValueDefRecord, WithoutAllowedValuesTheEvaluatedRecordIsADefaultOne) {
  rule().type(TDFParam::Real);

  EXPECT_EQ(def().allowedValueKind, 0);
  EXPECT_TRUE(allowed().isEqualTo(ParamAllowedValues()));
}

TEST_F(ParamValueDefRecord, FixedAllowedValuesKeepTheirOrder) {
  rule().allowed({"Water", "Air", "Oil"});
  auto const values = allowed();

  EXPECT_TRUE(values.hasAllowedValues);
  EXPECT_FALSE(values.hasSubset);
  EXPECT_FALSE(values.allowsAnyValue);
  EXPECT_THAT(values.allowedValues, ElementsAre("Water", "Air", "Oil"));
  EXPECT_THAT(values.subsetValues, IsEmpty());
}

TEST_F(ParamValueDefRecord, ComputedAllowedValuesAreReadFromTheModel) {
  rule().allowed(test::listOf("Liquids"));
  EXPECT_THAT(allowed().allowedValues, ElementsAre("Water", "Oil"));

  model_.set("/Domain:pump", "Liquids", "Mercury");
  EXPECT_THAT(allowed().allowedValues, ElementsAre("Mercury"));
}

TEST_F(ParamValueDefRecord, AnAllowedListThatIsEmptyNowStillHasAllowedValues) {
  rule().allowed(test::listOf("Gases"));
  auto const values = allowed();

  EXPECT_TRUE(values.hasAllowedValues);
  EXPECT_THAT(values.allowedValues, IsEmpty());
  EXPECT_TRUE(values.isEmpty());
}

TEST_F(ParamValueDefRecord, AValueIsAllowedOnlyWhileItsCheckHolds) {
  rule()
      .allowed({"Water", "Air", "Oil"})
      .allowedWhile("Air", when("Fluid Group", "Gases"))
      .allowedWhile("Oil", when("Fluid Group", "Liquids"))
      .allowedWhile("Helium", test::always());
  EXPECT_THAT(allowed().allowedValues, ElementsAre("Water", "Oil"));

  model_.set("/Domain:pump", "Fluid Group", "Gases");
  EXPECT_THAT(allowed().allowedValues, ElementsAre("Water", "Air"));
}

TEST_F(ParamValueDefRecord, AValueThatIsBothAllowedAndUnusedIsNotAllowed) {
  rule().allowed({"Water", "Lead", "Oil"}).allowedWhile("Lead", test::always());
  const_cast<ParamValueDef&>(def()).unusedValues = {"Lead", "Mercury"};

  EXPECT_THAT(allowed().allowedValues, ElementsAre("Water", "Oil"));
}

TEST_F(ParamValueDefRecord, ASubsetKeepsItsOwnOrderAndLosesWhatIsNotAllowedNow) {
  rule()
      .allowed({"Water", "Air", "Oil", "Steam"})
      .allowedWhile("Air", test::never())
      .subset({"Steam", "Air", "Helium", "Water"});
  auto const values = allowed();

  EXPECT_TRUE(values.hasSubset);
  EXPECT_THAT(values.allowedValues, ElementsAre("Water", "Oil", "Steam"));
  EXPECT_THAT(values.subsetValues, ElementsAre("Steam", "Water"));
}

TEST_F(ParamValueDefRecord, AComputedSubsetMayBeEmptyAndIsStillASubset) {
  rule().allowed({"Water", "Air"}).subset(test::listOf("Favourites"));
  auto const values = allowed();

  EXPECT_TRUE(values.hasSubset);
  EXPECT_THAT(values.subsetValues, IsEmpty());
  EXPECT_FALSE(values.isEmpty());
}

TEST_F(ParamValueDefRecord, ASubsetWithoutAllowedValuesIsNotLookedAt) {
  rule().subset({"Water"});

  EXPECT_FALSE(allowed().hasSubset);
}

TEST_F(ParamValueDefRecord, AllowsAnyValueIsHandedOn) {
  rule().allowed({"Water"}).anyValueAllowed();
  auto const values = allowed();

  EXPECT_TRUE(values.allowsAnyValue);
  EXPECT_TRUE(values.isAllowedValue("Mercury", false));
}

// Beta messages of values

TEST_F(ParamValueDefRecord, TheBetaMessageOfAValueIsGatheredWhileTheAllowedValuesHoldIt) {
  rule()
      .allowed({"Water", "Air", "Oil"})
      .allowedWhile("Air", test::never())
      .betaValue("Oil", "Oil is new.")
      .betaValue("Air", "Air is new.")
      .betaValue("Helium", "Helium is new.");
  data_.attach(&controller_);
  (void)allowed();

  EXPECT_THAT(controller_.getParamValAvailMessages("Material", "Oil"), ElementsAre("Oil is new."));
  EXPECT_THAT(controller_.getParamValAvailMessages("Material", "Air"), IsEmpty());
  EXPECT_THAT(controller_.getParamValAvailMessages("Material", "Helium"), IsEmpty());
}

TEST_F(ParamValueDefRecord, WithoutRulesHandedInBetaMessagesGoToTheEvaluationOnly) {
  rule().allowed({"Oil"}).betaValue("Oil", "Oil is new.");
  data_.attach(&controller_);
  (void)def().evaluateAllowedValues(nullptr, context_, &evaluation_);
  EXPECT_FALSE(controller_.anyLoggedMessages());

  BetaLoggingController own;
  evaluation_.setBetaLoggingController(&own);
  (void)def().evaluateAllowedValues(nullptr, context_, &evaluation_);
  EXPECT_THAT(own.getParamValAvailMessages("Material", "Oil"), ElementsAre("Oil is new."));
}

// Defaults without allowed values

TEST_F(ParamValueDefRecord, WithoutADefaultTheDefaultIsBlank) {
  rule().type(TDFParam::Real);

  EXPECT_FALSE(def().hasDefault());
  EXPECT_EQ(plainDefault(), "");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, ADefaultIsGivenAsItStands) {
  rule().type(TDFParam::RealList).byDefault(" 1 ,  2 [m] ");

  EXPECT_TRUE(def().hasDefault());
  EXPECT_EQ(plainDefault(), " 1 ,  2 [m] ");
  EXPECT_EQ(defaultInTheLightOfAllowed(), " 1 ,  2 [m] ");
}

TEST_F(ParamValueDefRecord, TheFirstConditionalDefaultThatHoldsGoesBeforeTheDefault) {
  rule().byDefault("Water");
  auto& checks = const_cast<ParamValueDef&>(def()).defaultChecks;
  checks.push_back({when("Fluid Group", "Gases"), test::text("Air")});
  checks.push_back({when("Fluid Group", "Liquids"), test::text("Oil")});
  checks.push_back({test::always(), test::text("Steam")});

  EXPECT_EQ(plainDefault(), "Oil");
  model_.set("/Domain:pump", "Fluid Group", "Gases");
  EXPECT_EQ(plainDefault(), "Air");
  model_.set("/Domain:pump", "Fluid Group", "Solids");
  EXPECT_EQ(plainDefault(), "Steam");
  checks.pop_back();
  EXPECT_EQ(plainDefault(), "Water");
}

TEST_F(ParamValueDefRecord, AListOfConditionalDefaultsAloneIsADefault) {
  rule().type(TDFParam::String);
  const_cast<ParamValueDef&>(def()).defaultChecks.push_back({test::never(), test::text("Air")});

  EXPECT_TRUE(def().hasDefault());
  EXPECT_EQ(plainDefault(), "");
}

// Defaults in the light of the allowed values: a row of the table each

TEST_F(ParamValueDefRecord, AnAllowedDefaultIsGiven) {
  rule().allowed({"Water", "Oil"}).byDefault("Oil");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Oil");
}

TEST_F(ParamValueDefRecord, ADefaultThatIsNotAllowedGivesTheFirstAllowedValue) {
  rule().allowed({"Water", "Oil"}).byDefault("Air");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Water");
  EXPECT_EQ(plainDefault(), "Air");
}

TEST_F(ParamValueDefRecord, ADefaultThatIsNotAllowedGivesBlankWithTheFallback) {
  rule().allowed({"Water", "Oil"}).byDefault("Air").fallbackToBlankDefault();
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, NoDefaultGivesTheFirstAllowedValue) {
  rule().allowed({"Water", "Oil"});
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Water");
}

TEST_F(ParamValueDefRecord, NoDefaultGivesBlankWithTheFallback) {
  rule().allowed({"Water", "Oil"}).fallbackToBlankDefault();
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, AnEmptyAllowedListGivesBlank) {
  rule().allowed(test::listOf("Gases")).byDefault("Air");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, TheFirstOnOfferIsTheFirstOfTheSubset) {
  rule().allowed({"Water", "Oil", "Air"}).subset({"Air", "Oil"});
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Air");
}

TEST_F(ParamValueDefRecord, AnEmptySubsetHasNothingOnOffer) {
  rule().allowed({"Water", "Oil"}).subset(test::listOf("Favourites"));
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, ADefaultOutsideTheSubsetIsStillAllowed) {
  rule().allowed({"Water", "Oil", "Air"}).subset({"Air"}).byDefault("Oil");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Oil");
}

TEST_F(ParamValueDefRecord, WhereAnyValueIsAllowedEveryDefaultIs) {
  rule().allowed({"Water"}).anyValueAllowed().byDefault("Mercury");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Mercury");
}

TEST_F(ParamValueDefRecord, AConditionalDefaultThatIsNotAllowedDoesNotFallBackToTheDefault) {
  rule().allowed({"Water", "Oil"}).byDefault("Oil");
  const_cast<ParamValueDef&>(def()).defaultChecks.push_back({test::always(), test::text("Air")});

  EXPECT_EQ(defaultInTheLightOfAllowed(), "Water");
}

TEST_F(ParamValueDefRecord, ConditionalDefaultsOfWhichNoneHoldsGiveTheFirstOnOffer) {
  rule().allowed({"Water", "Oil"});
  const_cast<ParamValueDef&>(def()).defaultChecks.push_back({test::never(), test::text("Oil")});

  EXPECT_EQ(defaultInTheLightOfAllowed(), "Water");
}

TEST_F(ParamValueDefRecord, OfAListDefaultTheItemsThatAreNotAllowedAreDropped) {
  rule().type(TDFParam::StringList).allowed({"Water", "Oil", "Air"}).byDefault("Air, Lead ,Water");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Air,Water");
}

TEST_F(ParamValueDefRecord, AListDefaultThatLosesAllItsItemsCountsAsNotAllowed) {
  rule().type(TDFParam::StringList).allowed({"Water", "Oil"}).byDefault("Lead,Air");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Water");
}

TEST_F(ParamValueDefRecord, AListDefaultThatLosesAllItsItemsGivesBlankWithTheFallback) {
  rule().type(TDFParam::StringList).allowed({"Water", "Oil"}).byDefault("Lead").fallbackToBlankDefault();
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, AnEmptyListIsADefaultOfItsOwnRight) {
  rule().type(TDFParam::StringList).allowed({"Water", "Oil"}).byDefault("");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "");
}

TEST_F(ParamValueDefRecord, ASingleValueOfAScalarTypeIsNotDividedAtItsCommas) {
  rule().allowed({"Water, liquid", "Water"}).byDefault("Water, liquid");
  EXPECT_EQ(defaultInTheLightOfAllowed(), "Water, liquid");
}

// Overrides

TEST_F(ParamValueDefRecord, WithoutOverridesNoneIsInForce) {
  rule().type(TDFParam::String);

  EXPECT_FALSE(def().hasValueOverride());
  EXPECT_THAT(valueOverride(), Pair(false, ""));
}

TEST_F(ParamValueDefRecord, TheFirstOverrideWhoseConditionHoldsIsInForce) {
  rule()
      .overriddenWhen(when("Fluid Group", "Gases"), "Air")
      .overriddenWhen(when("Fluid Group", "Liquids"), "Oil")
      .overriddenWhen(test::always(), "Steam");

  EXPECT_TRUE(def().hasValueOverride());
  EXPECT_THAT(valueOverride(), Pair(true, "Oil"));
}

TEST_F(ParamValueDefRecord, OverridesOfWhichNoneHoldsAreThereButNotInForce) {
  rule().overriddenWhen(test::never(), "Air");

  EXPECT_TRUE(def().hasValueOverride());
  EXPECT_THAT(valueOverride(), Pair(false, ""));
}

TEST_F(ParamValueDefRecord, AnOverrideIsGivenAsItStandsAllowedOrNot) {
  rule().allowed({"Water"}).overriddenWhen(test::always(), "Lead, Mercury ");
  EXPECT_THAT(valueOverride(), Pair(true, "Lead, Mercury "));
}

TEST_F(ParamValueDefRecord, AnOverrideMayBeBlank) {
  rule().overriddenWhen(test::always(), "");
  EXPECT_THAT(valueOverride(), Pair(true, ""));
}

// Bounds and quantity type

TEST_F(ParamValueDefRecord, WithoutBoundsBothAreEmptyAndNotVariable) {
  rule().type(TDFParam::Real);

  EXPECT_FALSE(def().hasVariableBounds());
  EXPECT_THAT(def().evaluateBounds(data_.getRules(), context_, &evaluation_), Pair("", ""));
}

TEST_F(ParamValueDefRecord, FixedBoundsAreNotVariable) {
  rule().type(TDFParam::Real).bounds("0 [m]", "9 [m]");

  EXPECT_FALSE(def().hasVariableBounds());
  EXPECT_THAT(def().evaluateBounds(data_.getRules(), context_, &evaluation_), Pair("0 [m]", "9 [m]"));
}

TEST_F(ParamValueDefRecord, BoundsAreVariableWhenEitherReadsTheModel) {
  auto const limit = [] {
    return test::text(
        [](TDFContext const& at, ModelTDF const& model) { return model.getParameterValue(at.objPath(), "Limit"); });
  };
  rule().type(TDFParam::Real).bounds(test::text("0 [m]"), limit());
  EXPECT_TRUE(def().hasVariableBounds());
  EXPECT_THAT(def().evaluateBounds(data_.getRules(), context_, &evaluation_), Pair("0 [m]", "9 [m]"));

  PhysicsData lower;
  Rules(lower, "/Domain").param("Speed").bounds(limit(), nullptr);
  EXPECT_TRUE(lower.getParamValueDef("/Domain", "Speed", true)->hasVariableBounds());
  EXPECT_THAT(lower.getParamValueDef("/Domain", "Speed", true)->evaluateBounds(nullptr, context_, &evaluation_),
              Pair("9 [m]", ""));
}

TEST_F(ParamValueDefRecord, TheQuantityTypeIsEvaluatedOrEmpty) {
  rule().type(TDFParam::Real).quantityType("Temperature");
  EXPECT_EQ(def().evaluateQuantityType(data_.getRules(), context_, &evaluation_), "Temperature");

  PhysicsData without;
  Rules(without, "/Domain").param("Speed");
  EXPECT_EQ(without.getParamValueDef("/Domain", "Speed", true)->evaluateQuantityType(nullptr, context_, &evaluation_),
            "");
}

// Null members

TEST(ParamValueDef, WithoutAListThereAreNoAllowedValuesWhateverTheKind) {
  MapModel const model;
  EvalContext evaluation(&model);
  ParamValueDef def;
  def.allowedValueKind = ParamValueDef::FixedAllowedValues;
  EXPECT_FALSE(def.evaluateAllowedValues(nullptr, TDFContext("/Case"), &evaluation).hasAllowedValues);
}

TEST(ParamValueDef, ANullConditionHoldsAlways) {
  MapModel const model;
  EvalContext evaluation(&model);
  TDFContext const context("/Case");
  ParamValueDef def;
  def.allowedValueKind = ParamValueDef::FixedAllowedValues;
  def.allowedValues = test::list({"Water", "Air"});
  def.allowedValueChecks["Air"] = nullptr;
  def.defaultChecks.push_back({nullptr, test::text("Air")});
  def.overrideChecks.push_back({nullptr, test::text("Oil")});

  EXPECT_EQ(def.evaluateAllowedValues(nullptr, context, &evaluation).allowedValues.size(), 2u);
  EXPECT_EQ(def.evaluateDefault(nullptr, context, &evaluation), "Air");
  EXPECT_THAT(def.evaluateValueOverride(nullptr, context, &evaluation), Pair(true, "Oil"));
}

TEST(ParamValueDef, ANullValueThatIsInForceEndsTheSearch) {
  MapModel const model;
  EvalContext evaluation(&model);
  TDFContext const context("/Case");
  ParamValueDef def;
  def.defaultValue = test::text("Water");
  def.defaultChecks.push_back({test::always(), nullptr});
  def.defaultChecks.push_back({test::always(), test::text("Air")});
  def.overrideChecks.push_back({test::always(), nullptr});
  def.overrideChecks.push_back({test::always(), test::text("Oil")});

  EXPECT_EQ(def.evaluateDefault(nullptr, context, &evaluation), "Water");
  EXPECT_THAT(def.evaluateValueOverride(nullptr, context, &evaluation), Pair(false, ""));
}

}  // namespace
}  // namespace tarn
