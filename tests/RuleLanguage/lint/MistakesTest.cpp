// Mistakes that authors of rules make, introduced one at a time into a sound rule base of a railway station.

#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>

#include "Places.h"
#include "support/FileText.h"

namespace tarn::rules {
namespace {

/// One change of the rules, and what lint reports after it.
struct Mistake {
  std::string_view situation;
  std::string_view written;
  std::string_view instead;
  std::string_view found;
};

std::string soundRules() {
  return tarn::test::fileText(TARN_SOURCE_DIR "/tests/RuleLanguage/lint/station.rules.yaml");
}

/// Severity, code and message of each diagnostic, each in a line.
std::string foundIn(std::string const& rules) {
  std::string found;
  for (auto const& one : lintText(rules, "station.rules.yaml").diagnostics) {
    found.append(severityName(one.severity)).append(" ").append(one.code).append(": ").append(one.message).append("\n");
  }
  return found;
}

constexpr Mistake mistakes[] = {
    {"a default of the wrong type", "Cars: {Required: yes, Parameter Type: Integer, Default Value: 6}",
     "Cars: {Required: yes, Parameter Type: Integer, Default Value: six}",
     "error default-of-wrong-type: the default 'six' is not a whole number; write it in digits\n"},
    {"a default that is not allowed", "Default Value: Electric", "Default Value: Electrik",
     "warning default-not-allowed: the default 'Electrik' is not among the allowed values; did you mean 'Electric'?\n"},
    {"a conditional default of the wrong type", "Value: \"25 [km/h]\"", "Value: slow",
     "error default-of-wrong-type: the default 'slow' is not a number; write it in digits\n"},
    {"an override that is not allowed", "Value: Full}", "Value: Fully}",
     "warning override-not-allowed: the override 'Fully' is not among the allowed values; did you mean 'Full'?\n"},
    {"an item of a default that is not allowed", "Default Value: \"Passenger, Freight\"",
     "Default Value: \"Passenger, Fright\"",
     "warning default-not-allowed: the default 'Fright' is not among the allowed values; did you mean 'Freight'?\n"},
    {"an allowed value of the wrong type", "'1520'", "broad",
     "error allowed-value-of-wrong-type: the allowed value 'broad' is not a whole number; write it in digits\n"},
    {"an allowed value that is written twice", "[LED, Bulb]", "[LED, Bulb, LED]",
     "warning duplicate-value: 'LED' is in the list twice; remove one of the two\n"},
    {"an allowed value that is written twice in a list", "[Stop, Caution, Clear]", "[Stop, Caution, Stop]",
     "warning duplicate-value: 'Stop' is in the list twice; remove one of the two\n"},
    {"a quantity that is compared as text", "== 0.76 [m]", "== '0.76 [m]'",
     "warning compared-as-written: this compares the value of 'Height' as text, so the same quantity written in "
     "another way is not equal; write 0.76 [m] without quotes\n"},
    {"a logical value that is compared as text", "${/Station/Staffed}", "${/Station/Staffed} == 'yes'",
     "warning compared-as-written: this compares the value of 'Staffed' as text, so 'yes', 'on' and '1' are not equal "
     "to 'true'; write true without quotes\n"},
    {"a default with wrong units", "6 [s]", "6 [kg]",
     "error units-not-listed: the quantity type 'Time' does not list the units [kg]; it lists [s], [min]\n"},
    {"a bound with wrong units", "1 [min]", "1 [h]",
     "error units-not-listed: the quantity type 'Time' does not list the units [h]; it lists [s], [min]; write 3600 "
     "[s]\n"},
    {"a computed text that ends in wrong units", "+ ' [s]'", "+ ' [ms]'",
     "error units-not-listed: the quantity type 'Time' does not list the units [ms]; it lists [s], [min]\n"},
    {"a computed text that ends in units without brackets", "+ ' [s]'", "+ ' s'",
     "error default-of-wrong-type: this default ends in 's', so it is never a number; units are written in brackets: ' "
     "[s]'\n"},
    {"a name that is not allowed", "name() == 'entry'", "name() == 'entrance'",
     "warning impossible-value: the name of the object can never be 'entrance': it is not among the allowed names; "
     "allowed are entry, exit\n"},
    {"a type that is not there", "name() == 'entry'", "type() == 'Signals'",
     "warning impossible-value: the type of the object can never be 'Signals': it is always 'Signal'\n"},
    {"an item that a list cannot have", "${Class} in ${../Classes}", "'Cargo' in ${../Classes}",
     "warning impossible-value: an item of the parameter 'Classes' can never be 'Cargo': it is not among its allowed "
     "values; allowed are Passenger, Freight\n"},
    {"a part that no allowed value contains", "${Class} in ${../Classes}", "contains(${Class}, 'Goods')",
     "warning impossible-value: the parameter 'Class' can never contain 'Goods': none of its allowed values does\n"},
    {"a text that is compared with a number", "${Use} == 'Yard'", "${Use} == 5",
     "warning impossible-value: the parameter 'Use' can never be '5': it is not among its allowed values; allowed are "
     "Main, Siding, Yard\n"},
    {"a division by zero", "180 / ${Blocks}", "180 / 0",
     "error division-by-zero: this divides by 0, so the result is never a number\n"},
    {"a default that lacks its sign", "\"= ${^Station/Line Speed}\"", "\"${^Station/Line Speed}\"",
     "error default-of-wrong-type: the default '${^Station/Line Speed}' is not a number; an expression begins with "
     "'=': = ${^Station/Line Speed}\n"},
    {"a text default that lacks its sign", "Default Value: Unnamed", "Default Value: \"${Traction}\"",
     "warning text-looks-computed: this is the text '${Traction}', not a value of the model; an expression begins with "
     "'=': = ${Traction}\n"},
    {"a message that lacks its sign", "Message: A station needs a main track.",
     "Message: \"The station ${/Station/Title} needs a main track.\"",
     "warning text-looks-computed: this is the text 'The station ${/Station/Title} needs a main track.', not a value "
     "of the model; an expression begins with '=': = 'The station ' + ${/Station/Title} + ' needs a main track.'\n"},
    {"the owner of a global check", "any({/Station/Track:*}", "any({@/Station/Track:*}",
     "warning owner-in-global-check: a global check belongs to no object, so '@' is the root of the model; write a "
     "path that begins with '/', or move the check into the Checks of an object\n"},
    {"a reason without a condition", "Available: check('is electric'), Reason", "Reason",
     "warning unused-name: no rule uses 'is electric'; remove it, unless a program evaluates it by its name\n"
     "warning no-effect: Reason has no effect without Available\n"},
    {"a null default", "Unnamed", "null",
     "warning null-as-text: this is the text 'null'; to give no value, leave the key out, or put the text in quotes\n"},
    {"Type for Parameter Type", "Lines: {Required: yes, Parameter Type", "Lines: {Required: yes, Type",
     "error unknown-key: unknown key 'Type' in a parameter; here it is called 'Parameter Type'\n"},
    {"Default for Default Value", "Default Value: 4}", "Default: 4}",
     "error unknown-key: unknown key 'Default' in a parameter; here it is called 'Default Value'\n"},
    {"Min for Lower Bound", "Lower Bound: \"10 [m]\"", "Min: \"10 [m]\"",
     "error unknown-key: unknown key 'Min' in a parameter; here it is called 'Lower Bound'\n"},
    {"Max for Upper Bound", "Upper Bound: \"320 [km/h]\"", "Max: \"320 [km/h]\"",
     "error unknown-key: unknown key 'Max' in a parameter; here it is called 'Upper Bound'\n"},
    {"Options for the allowed values", "Ordered Allowed String List: [AC, DC]", "Options: [AC, DC]",
     "error unknown-key: unknown key 'Options' in a parameter; here it is called 'Ordered Allowed String List'\n"},
    {"&&", "\"name() == 'entry'\"", "\"name() == 'entry' && true\"",
     "error expression-syntax: '&&' is not part of the language; write 'and'\n"},
    {"||", "\"name() == 'entry'\"", "\"name() == 'entry' || true\"",
     "error expression-syntax: '||' is not part of the language; write 'or'\n"},
    {"!", "\"name() == 'entry'\"", "\"!true\"",
     "error expression-syntax: '!' is not part of the language; write 'not'\n"},
    {"a choice by ? and :", "\"name() == 'entry'\"", "\"true ? true : false\"",
     "error expression-syntax: '?' is not part of the language; a choice is written if(condition, a, b)\n"},
    {"%", "\"= text(180 / ${Blocks}", "\"= text(180 % ${Blocks}",
     "error expression-syntax: '%' is not part of the language; write mod(a, b) for a remainder, and 5 [%] for "
     "units\n"},
    {"<>", "${Use} == 'Yard'", "${Use} <> 'Yard'",
     "error expression-syntax: '<>' is not part of the language; write '!='\n"},
    {"=", "${Use} == 'Yard'", "${Use} = 'Yard'", "error expression-syntax: '=' does not compare; write '=='\n"},
    {"null in a condition", "${Use} == 'Yard'", "${Use} == null",
     "error unknown-word: unknown name 'null'; a parameter that is absent reads as ''; write not exists(${Name}), or "
     "compare it with ''\n"},
    {"the merge key", "Barriers: {", "Barriers: {<<: {Required: yes}, ",
     "error unknown-key: '<<' does not merge maps here; put entries that objects share into Templates, or take a whole "
     "map by an alias\n"},
    {"a sign before a condition", "is electric: $", "is electric: = $",
     "error expression-syntax: this is always an expression; remove the '=' before it\n"},
    {"a quantity in braces", "== 0.76 [m]", "== {0.76 [m]}",
     "error invalid-path: braces are for paths; a quantity is written without them: 0.76 [m]\n"},
    {"a function of another language", "name() == 'entry'", "substr(name(), 0, 5) == 'entry'",
     "error unknown-function: unknown function 'substr'; its purpose is served by starts_with(x, y), ends_with(x, y) "
     "and matches(text, pattern)\n"},
    {"a slip in the name of a function", "any({/Station", "amy({/Station",
     "error unknown-function: unknown function 'amy'; did you mean 'any'?\n"},
};

TEST(Mistakes, SoundRulesHaveNone) {
  EXPECT_EQ(foundIn(soundRules()), "");
}

TEST(Mistakes, EachIsReportedWithItsRemedyAndNothingElseIs) {
  for (auto const& mistake : mistakes) {
    std::string rules = soundRules();
    auto const at = rules.find(mistake.written);
    ASSERT_NE(at, std::string::npos) << mistake.situation;
    rules.replace(at, mistake.written.size(), mistake.instead);
    EXPECT_EQ(foundIn(rules), mistake.found) << mistake.situation;
  }
}

TEST(Mistakes, ALineThatIsNotYamlHidesNoOther) {
  std::string rules = soundRules();
  for (auto const& [written, instead] :
       {std::pair("Default Value: Relay}", "Default Value: 'Relay' first}"), std::pair("[AC, DC]", "[AC, DC"),
        std::pair("Lines: {Required: yes, Parameter Type", "Lines: {Required: yes, Type")}) {
    rules.replace(rules.find(written), std::string_view(written).size(), instead);
  }
  EXPECT_EQ(
      foundIn(rules),
      "error yaml-syntax: this is not YAML: the text in quotes ends before this, but the value goes on; put other "
      "quotes around the whole value: \"'Relay' first\"\n"
      "error unknown-key: unknown key 'Type' in a parameter; here it is called 'Parameter Type'\n"
      "error yaml-syntax: this is not YAML: did not find expected ',' or ']'; check the indentation, and put "
      "quotes around a value that begins with a quote, '{', '[' or '*', or that contains ': ' or ' #', and here "
      "also around one with '[', '{' or ','\n");
}

}  // namespace
}  // namespace tarn::rules
