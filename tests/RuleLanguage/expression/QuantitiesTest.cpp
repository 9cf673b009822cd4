// Quantities in expressions: numbers of parameters that declare a quantity type count in its first unit.

#include <gtest/gtest.h>

#include <string>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

/// The timing of a chip, beside the parameters of the pump.
class Quantities : public test::ExpressionTable {
 protected:
  Quantities() {
    sections_ = R"yaml(Quantity Types:
  Time: {Units: [s, ms, min]}
  Length: {Units: [m, mm, in]}
  Temperature: {Units: {K: 1, degC: {Factor: 1, Offset: 273.15}}}
  Level: {Units: [bar, jar]}
Lists:
  periods: = values(${/Case/Domain:*/Period})
Checks:
  is slow: ${Timeout} > 400 [ms]
)yaml";
    declarations_ = R"yaml(      Timeout: {Parameter Type: Real, Quantity Type: Time}
      Window: {Parameter Type: Real, Quantity Type: Time}
      Period: {Parameter Type: Real, Quantity Type: Time}
      Waits: {Parameter Type: Real List, Quantity Type: Time}
      Delays: {Parameter Type: Real List, Quantity Type: Time}
      Gap: {Parameter Type: Real, Quantity Type: Length}
      Width: {Parameter Type: Real, Quantity Type: Length}
      Ambient: {Parameter Type: Real, Quantity Type: Temperature}
      Limit: {Parameter Type: Real, Quantity Type: Temperature}
      Fill: {Parameter Type: Real, Quantity Type: Level}
      Fill Limit: {Parameter Type: Real, Quantity Type: Level}
      Size: {Parameter Type: Real}
      Kind Of Size: {Parameter Type: String}
      Computed: {Parameter Type: Real, Quantity Type: "= ${Kind Of Size}"}
      Own: {Parameter Type: Real, Quantity Type: "= if(${Own} > 4, 'Length', 'Time')"}
)yaml";
    std::string const rotor = "/Case/Domain:rotor";
    model_.set(rotor, "Timeout", "500 [ms]");
    model_.set(rotor, "Window", "2 [s]");
    model_.set(rotor, "Period", "20 [ms]");
    model_.set(rotor, "Waits", "1 [s], 250 [ms], 0.5");
    model_.set(rotor, "Delays", "1000 [ms], 0.25, 500 [ms]");
    model_.set(rotor, "Gap", "25.4 [mm]");
    model_.set(rotor, "Width", "1 [in]");
    model_.set(rotor, "Ambient", "20 [degC]");
    model_.set(rotor, "Limit", "293.15");
    model_.set(rotor, "Fill", "3 [jar]");
    model_.set(rotor, "Fill Limit", "3 [bar]");
    model_.set(rotor, "Size", "5 [mm]");
    model_.set(rotor, "Kind Of Size", "Length");
    model_.set(rotor, "Computed", "5 [mm]");
    model_.set(rotor, "Own", "5 [mm]");
    model_.set("/Case/Domain:stator", "Period", "1 [min]");
  }
};

TEST_F(Quantities, ANumberOfAParameterCountsInTheFirstUnitOfItsType) {
  expectTexts({{"${Timeout} + 0", "0.5"},
               {"number(${Timeout})", "0.5"},
               {"-${Timeout}", "-0.5"},
               {"${Timeout} + ${Window}", "2.5"},
               {"${Timeout} * 2", "1"},
               {"${Window} / ${Timeout}", "4"},
               {"abs(${Timeout})", "0.5"},
               {"if(true, ${Timeout}, 3) + 1", "1.5"},
               {"${Ambient} + 0", "293.15"},
               {"${Limit} + 0", "293.15"}});
}

TEST_F(Quantities, TheTextOfAParameterStaysWhatItIs) {
  expectTexts({{"${Timeout}", "500 [ms]"}, {"text(${Timeout})", "500 [ms]"}, {"'in ' + ${Timeout}", "in 500 [ms]"}});
}

TEST_F(Quantities, AreComparedAcrossUnits) {
  expectTexts({{"${Window} > ${Timeout}", "true"},
               {"${Window} < ${Timeout}", "false"},
               {"${Timeout} < 1", "true"},
               {"${Ambient} >= ${Limit}", "true"}});
}

TEST_F(Quantities, AreEqualWhenTheirConvertedNumbersAreEqualUpToRounding) {
  expectTexts({{"${Gap} == ${Width}", "true"},
               {"${Gap} != ${Width}", "false"},
               {"${Gap} <= ${Width}", "true"},
               {"${Gap} >= ${Width}", "true"},
               {"${Gap} < ${Width}", "false"},
               {"${Gap} > ${Width}", "false"},
               {"${Ambient} == ${Limit}", "true"},
               {"${Timeout} == ${Window}", "false"}});
}

TEST_F(Quantities, OfListsAreComparedItemByItem) {
  expectTexts({{"${Waits} == ${Delays}", "true"}, {"${Waits} == ${Timeout}", "false"}});
}

TEST_F(Quantities, CanBeWrittenInAnExpression) {
  expectTexts({{"${Timeout} < 600 [ms]", "true"},
               {"${Timeout} < 0.4 [s]", "false"},
               {"${Timeout} == 500 [ms]", "true"},
               {"500 [ms] == ${Timeout}", "true"},
               {"${Gap} == 1 [in]", "true"},
               {"${Ambient} > 19 [degC]", "true"},
               {"2 * ${Period} + 1 [s]", "1.04"},
               {"${Window} > 2 * 500 [ms]", "true"},
               {"${Window} - -500 [ms]", "2.5"},
               {"${Timeout}<500[ms]", "false"},
               {"if(${Window} > 1500 [ms], 'long', 'short')", "long"}});
}

TEST_F(Quantities, ThatAreWrittenOutAreTheTextAsWritten) {
  expectTexts({{"500 [ms]", "500 [ms]"}, {"if(${Timeout} > 1 [s], 1 [s], 500 [ms])", "500 [ms]"}});
}

TEST_F(Quantities, ThatStandAloneCountInTheFirstUnitOfTheTypeThatListsTheirUnits) {
  expectTexts({{"2 * 500 [ms]", "1"}, {"${Size} < 5.1 [mm]", "false"}});
}

TEST_F(Quantities, InListsCountInTheFirstUnit) {
  expectTexts({{"sum(${Waits})", "1.75"},
               {"max(values(${/Case/Domain:*/Period}))", "60"},
               {"min(list('periods'))", "0.02"},
               {"max(union(${Waits}, ${Delays})) < 1001 [ms]", "true"},
               {"1 * first(${Delays})", "1"},
               {"max((${Timeout}, ${Window}))", "2"}});
}

TEST_F(Quantities, InNamedChecksCountInTheFirstUnit) {
  expectTexts({{"check('is slow')", "true"}});
}

TEST_F(Quantities, ThatCannotBeConvertedCountByTheirNumberAlone) {
  expectTexts({{"${Fill} + 0", "3"},
               {"${Fill} < ${Fill Limit}", "false"},
               {"${Fill} == ${Fill Limit}", "false"},
               {"${Size} + 0", "5"}});
}

TEST_F(Quantities, OfAComputedTypeCountInItsFirstUnit) {
  expectTexts({{"${Computed} + 0", "0.005"}, {"${Computed} < ${Gap}", "true"}, {"${Computed} == 5 [mm]", "true"}});
}

TEST_F(Quantities, OfOneNameMayHaveDifferentTypesInDifferentObjects) {
  sections_ = "Quantity Types: {Length: {Units: [m, mm]}, Area: {Units: [m^2, mm^2]}}\n";
  declarations_ = "      Size: {Parameter Type: Real, Quantity Type: Length}\n";
  std::string const file = "Rule Database: 1\n" + sections_ +
                           "Objects:\n"
                           "  /Case/Domain: {Parameters: {Size: {Parameter Type: Real, Quantity Type: Length}}}\n"
                           "  /Case/Patch:\n    Parameters:\n"
                           "      Size: {Parameter Type: Real, Quantity Type: Area}\n"
                           "      Sum: {Parameter Type: Real, Default Value: '= ${Size} + ${../Domain:rotor/Size}'}\n"
                           "  /Case/Plain: {Parameters: {Size: {Parameter Type: Real}}}\n";
  auto const data = parseRules(file);
  model_.set("/Case/Patch:wet", "Size", "2000000 [mm^2]");
  EvalContext evaluation(&model_);
  EXPECT_EQ(data->getParamValueDef("/Case/Patch", "Sum", true)
                ->evaluateDefault(data->getRules(), TDFContext("/Case/Patch:wet"), &evaluation),
            "2.005");
}

TEST(QuantitiesOfRules, UnitsThatTheOtherSideDoesNotListAreAnError) {
  EXPECT_EQ(test::errorsOf("Rule Database: 1\n"
                           "Quantity Types: {Time: {Units: [s, min]}}\n"
                           "Objects:\n"
                           "  /Case:\n"
                           "    Parameters:\n"
                           "      Timeout: {Parameter Type: Real, Quantity Type: Time}\n"
                           "      Slow:\n"
                           "        Available: ${Timeout} > 500 [ms]\n"
                           "        Parameter Type: Logical\n"),
            "flow.rules.yaml:8:33: error: the quantity type 'Time' does not list the units [ms]; it lists [s], [min]\n"
            "    8 |         Available: ${Timeout} > 500 [ms]\n"
            "      |                                 ^~~~~~~~\n");
}

TEST(QuantitiesOfRules, UnitsThatTypesConvertDifferentlyNeedANeighbourWithAType) {
  EXPECT_EQ(test::errorsOf("Rule Database: 1\n"
                           "Quantity Types: {Delay: {Units: [ms, s]}, Time: {Units: [s, ms]}}\n"
                           "Checks: {is slow: \"${/Case/Note} > 500 [ms]\"}\n"),
            "flow.rules.yaml:3:36: error: it is not known which quantity type this is of: 'Delay' and 'Time' convert "
            "[ms] differently; write the number in the unit in which the other numbers count\n"
            "    3 | Checks: {is slow: \"${/Case/Note} > 500 [ms]\"}\n"
            "      |                                    ^~~~~~~~\n");
}

TEST(QuantitiesOfRules, UnitsInSeveralTypesAreClearWhenAllConvertThemAlike) {
  EXPECT_EQ(test::errorsOf("Rule Database: 1\n"
                           "Quantity Types: {Delay: {Units: [s, ms]}, Time: {Units: [s, ms, min]}}\n"
                           "Checks: {is slow: \"${/Case/Note} > 500 [ms]\"}\n"),
            "");
}

// Its number without units decides: the type is not known yet.
TEST_F(Quantities, AQuantityTypeMayDependOnTheNumberOfItsOwnParameter) {
  expectTexts({
      {"number(${Own})", "0.005"},
      {"${Own} == ${Computed}", "true"},
  });
}

}  // namespace
}  // namespace tarn::rules
