// The database that is loaded from rule files: every section and attribute, the three kinds of value, and how several
// files make one database. Faulty files have tests of their own.

#include <tarn/rules/RuleLoader.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "RuleLanguage/ExpressionTable.h"

namespace tarn::rules {
namespace {

namespace fs = std::filesystem;
using test::errorsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

/// A model, an evaluation of it, and a context in it.
struct AtDomain {
  test::MapModel model{{"/Case", {{"Flow Regime", "Turbulent"}, {"Maximum Speed", "25 [m/s]"}}},
                       {"/Case/Domain:rotor", {{"Motion", "Rotating"}, {"Fluids", "Water,Oil"}}}};
  EvalContext evaluation{&model};
  TDFContext context{"/Case/Domain:rotor"};
};

/// A file with one parameter `Speed` of `/Case/Domain`, whose attributes are the lines of `attributes`.
std::string withParameter(std::string const& attributes) {
  std::string file = "Rule Database: 1\nObjects:\n  /Case/Domain:\n    Parameters:\n      Speed:\n";
  std::istringstream lines(attributes);
  for (std::string line; std::getline(lines, line);) file += "        " + line + "\n";
  return file;
}

// Sections

TEST(RuleLoader, TheSmallestFileHoldsNoRules) {
  auto const data = parseRules("Rule Database: 1");

  EXPECT_THAT(data->objects(), IsEmpty());
  EXPECT_THAT(data->getPertinentGlobalCheckRoots(), IsEmpty());
}

TEST(RuleLoader, EmptySectionsAreNoFault) {
  auto const data = parseRules(R"yaml(Rule Database: "1"
Pertinent Roots:
Quantity Types:
Lists:
Checks:
Objects:
  /Case:
  /Library:
    Parameters:
    Children:
Global Checks: {}
)yaml");
  EXPECT_EQ(data->objects().size(), 2U);
}

TEST(RuleLoader, RootsAndQuantityTypesAreKeptInTheirOrder) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Pertinent Roots: [Library, Case, Library]
Quantity Types:
  Temperature: {Units: [K, degC]}
  Angle:
    Units:
      - rad
      - 'on'
)yaml");
  EXPECT_THAT(data->getPertinentGlobalCheckRoots(), ElementsAre("Library", "Case"));
  auto const textIs = [](std::string const& text) { return testing::Field(&QuantityUnit::text, text); };
  EXPECT_THAT(data->findQuantityType("Angle")->units(), ElementsAre(textIs("rad"), textIs("on")));
  EXPECT_THAT(data->findQuantityType("Temperature")->units(), ElementsAre(textIs("K"), textIs("degC")));
}

TEST(RuleLoader, EveryScalarIsTakenAsItsText) {
  auto const data = parseRules(withParameter(R"yaml(Parameter Type: String
Ordered Allowed String List: [No, 1.50, 1e3, ~, null, 0x1F, 2026-11-21, '', " a "]
Default Value: No)yaml"));
  AtDomain at;
  auto const* def = data->getParamValueDef("/Case/Domain", "Speed", true);

  EXPECT_THAT(def->evaluateAllowedValues(nullptr, at.context, &at.evaluation).allowedValues,
              ElementsAre("No", "1.50", "1e3", "~", "null", "0x1F", "2026-11-21", "", " a "));
  EXPECT_EQ(def->evaluateDefault(nullptr, at.context, &at.evaluation), "No");
}

TEST(RuleLoader, ParametersChildrenAndObjectsKeepTheOrderOfTheFile) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Objects:
  /Case/Domain:
    Description: A region of space.
    Parameters:
      Zeta: {Parameter Type: Real}
      Alpha: {Parameter Type: Real}
    Children:
      Turbulence: {}
      Boundary:
  /Case:
    Children: {Domain: {}}
)yaml");
  ASSERT_EQ(data->objects().size(), 2U);
  auto const& domain = *data->objects()[0];
  EXPECT_EQ(domain.typePath(), "/Case/Domain");
  EXPECT_EQ(domain.description, "A region of space.");
  ASSERT_EQ(domain.params().size(), 2U);
  EXPECT_EQ(domain.params()[0]->name, "Zeta");
  EXPECT_EQ(domain.params()[1]->name, "Alpha");
  ASSERT_EQ(domain.children().size(), 2U);
  EXPECT_EQ(domain.children()[0]->type, "Turbulence");
  EXPECT_EQ(domain.children()[1]->type, "Boundary");
}

// Attributes of availability

TEST(RuleLoader, AnEntryWithoutAttributesHasTheDefaults) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters: {Speed: {Parameter Type: Real}}
    Children: {Domain: {}}
)yaml");
  auto const& param = *data->getObjDependDef("/Case", true)->findParam("Speed");
  EXPECT_FALSE(param.required);
  EXPECT_FALSE(param.contextRule);
  EXPECT_FALSE(param.validationRelaxed);
  EXPECT_THAT(param.contexts, IsEmpty());
  EXPECT_EQ(param.available, nullptr);
  EXPECT_EQ(param.description + param.reason + param.betaMessage, "");

  auto const& child = *data->getObjDependDef("/Case", true)->findChild("Domain");
  EXPECT_FALSE(child.required);
  EXPECT_FALSE(child.singleton);
  EXPECT_FALSE(child.coupled);
  EXPECT_FALSE(child.validationRelaxed);
  EXPECT_THAT(child.contexts, IsEmpty());
  EXPECT_EQ(child.available, nullptr);
  EXPECT_EQ(child.allowedNamesSource, nullptr);
  EXPECT_EQ(child.defaultNamesSource, nullptr);

  auto const& def = *param.valueDef();
  EXPECT_EQ(def.type, TDFParam::Real);
  EXPECT_EQ(def.allowedValueKind, 0);
  EXPECT_FALSE(def.availableWithNoAllowedValues);
  EXPECT_FALSE(def.completeListRequired);
  EXPECT_FALSE(def.allowsAnyValue);
  EXPECT_FALSE(def.fallbackToBlankDefault);
  EXPECT_FALSE(def.hasDefault());
  EXPECT_FALSE(def.hasValueOverride());
  EXPECT_FALSE(def.hasVariableBounds());
}

TEST(RuleLoader, AvailabilityOfAParameter) {
  auto const data = parseRules(withParameter(R"yaml(Available: ${Motion} == 'Rotating'
Required: yes
Context Rule: yes
Context: [Rotating, Moving]
Validation Relaxed: yes
Description: How fast it turns.
Reason: Only what turns has a speed.
Beta Message: Speed is new.
Parameter Type: Real)yaml"));
  auto const& param = *data->getObjDependDef("/Case/Domain", true)->findParam("Speed");
  AtDomain at;

  EXPECT_TRUE(param.required);
  EXPECT_TRUE(param.contextRule);
  EXPECT_TRUE(param.validationRelaxed);
  EXPECT_THAT(param.contexts, ElementsAre("Rotating", "Moving"));
  EXPECT_EQ(param.description, "How fast it turns.");
  EXPECT_EQ(param.reason, "Only what turns has a speed.");
  EXPECT_EQ(param.betaMessage, "Speed is new.");
  EXPECT_TRUE(param.evaluate(at.context, &at.evaluation));
  EXPECT_FALSE(param.evaluate(TDFContext("/Case"), &at.evaluation));
}

TEST(RuleLoader, AContextIsOneValueOrAList) {
  auto const contexts = [](std::string const& text) {
    auto const data = parseRules(withParameter("Parameter Type: Real\nContext: " + text));
    return data->getObjDependDef("/Case/Domain", true)->findParam("Speed")->contexts;
  };
  EXPECT_THAT(contexts("Rotating"), ElementsAre("Rotating"));
  EXPECT_THAT(contexts("Yes"), ElementsAre("Yes"));
  EXPECT_THAT(contexts("''"), ElementsAre(""));
  EXPECT_THAT(contexts("['', Rotating]"), ElementsAre("", "Rotating"));
  EXPECT_THAT(contexts("a, b"), ElementsAre("a, b"));
  EXPECT_THAT(contexts("[]"), IsEmpty());
}

TEST(RuleLoader, YesAndNoInAllSpellingsAndCases) {
  for (auto const& [text, expected] : std::map<std::string, bool>{
           {"yes", true},    {"Yes", true},    {"YES", true},  {"yEs", true},  {"true", true},
           {"True", true},   {"TRUE", true},   {"on", true},   {"On", true},   {"ON", true},
           {"'yes'", true},  {"no", false},    {"No", false},  {"NO", false},  {"false", false},
           {"False", false}, {"FALSE", false}, {"off", false}, {"Off", false}, {"OFF", false}}) {
    auto const data = parseRules(withParameter("Parameter Type: Real\nRequired: " + text));
    EXPECT_EQ(data->getObjDependDef("/Case/Domain", true)->findParam("Speed")->required, expected) << text;
  }
  for (char const* const text : {"y", "n", "1", "0", "''", "' yes'", "maybe"}) {
    EXPECT_THAT(errorsOf(withParameter(std::string("Parameter Type: Real\nRequired: ") + text)),
                HasSubstr("error: this must be yes or no, not '"))
        << text;
  }
}

TEST(RuleLoader, AChildWithAllItsAttributes) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Objects:
  /Case/Domain:
    Children:
      Boundary:
        Available: ${Motion} == 'Rotating'
        Required: yes
        Context: Rotating
        Validation Relaxed: yes
        Description: Where the domain ends.
        Reason: A domain at rest has no boundaries.
        Beta Message: Boundaries are new.
        Singleton: yes
        Coupled: yes
        Allowed Names: [inlet, outlet]
        Default Names: = ${Fluids}
      Monitor:
        Allowed Names:
          - Residual
          - {Value: Torque, When: "${Motion} == 'Rotating'"}
          - {Value: "= ${Motion}", When: "true"}
          - {Value: Drift, When: "${Motion} == 'Resting'"}
)yaml");
  auto const& child = *data->getObjDependDef("/Case/Domain", true)->findChild("Boundary");
  AtDomain at;

  EXPECT_TRUE(child.required);
  EXPECT_TRUE(child.validationRelaxed);
  EXPECT_TRUE(child.singleton);
  EXPECT_TRUE(child.coupled);
  EXPECT_THAT(child.contexts, ElementsAre("Rotating"));
  EXPECT_EQ(child.description, "Where the domain ends.");
  EXPECT_EQ(child.reason, "A domain at rest has no boundaries.");
  EXPECT_EQ(child.betaMessage, "Boundaries are new.");
  EXPECT_TRUE(child.evaluate(at.context, &at.evaluation));
  EXPECT_FALSE(child.evaluate(TDFContext("/Case"), &at.evaluation));
  std::vector<std::string> names;
  child.evaluateAllowedNames(at.context, &at.evaluation, names);
  EXPECT_THAT(names, ElementsAre("inlet", "outlet"));
  child.evaluateDefaultNames(at.context, &at.evaluation, names);
  EXPECT_THAT(names, ElementsAre("Water", "Oil"));

  auto const& monitor = *data->getObjDependDef("/Case/Domain", true)->findChild("Monitor");
  monitor.evaluateAllowedNames(at.context, &at.evaluation, names);
  EXPECT_THAT(names, ElementsAre("Residual", "Torque", "Rotating"));
}

// Attributes of values

TEST(RuleLoader, EveryParameterType) {
  for (int i = TDFParam::Integer; i <= TDFParam::StringList; ++i) {
    auto const type = static_cast<TDFParam::Type>(i);
    auto const data = parseRules(withParameter("Parameter Type: " + std::string(TDFParam::typeName(type))));
    EXPECT_EQ(data->getParamValueDef("/Case/Domain", "Speed", true)->type, type);
  }
}

TEST(RuleLoader, FixedAllowedValuesWithChecksUnusedOnesAndASubset) {
  auto const data = parseRules(withParameter(R"yaml(Parameter Type: String List
Ordered Allowed String List: [Water, Air, Oil, Lead, Steam]
Allowed String List Checks:
  Air: ${Motion} == 'Resting'
  Oil: ${Motion} == 'Rotating'
Unused Allowed String List: [Lead]
Subset Allowed String List: [Steam, Air, Water]
Available With No Allowed Values: yes
Complete List Required: yes
Beta Values: {Oil: Oil is new.})yaml"));
  auto const& def = *data->getParamValueDef("/Case/Domain", "Speed", true);
  AtDomain at;
  BetaLoggingController controller;
  at.evaluation.setBetaLoggingController(&controller);
  auto const values = def.evaluateAllowedValues(data->getRules(), at.context, &at.evaluation);

  EXPECT_NE(def.allowedValueKind, 0);
  EXPECT_TRUE(def.availableWithNoAllowedValues);
  EXPECT_TRUE(def.completeListRequired);
  EXPECT_THAT(values.allowedValues, ElementsAre("Water", "Oil", "Steam"));
  EXPECT_THAT(values.subsetValues, ElementsAre("Steam", "Water"));
  EXPECT_TRUE(values.hasSubset);
  EXPECT_FALSE(values.allowsAnyValue);
  EXPECT_THAT(controller.getParamValAvailMessages("Speed", "Oil"), ElementsAre("Oil is new."));
}

TEST(RuleLoader, ComputedAllowedValuesAndSubset) {
  auto const data = parseRules(withParameter(R"yaml(Parameter Type: String
Value List Source: union(${Fluids}, ('Air',))
Subset Value List Source: "('Air', 'Lead')"
Allows Any Value: yes)yaml"));
  AtDomain at;
  auto const values = data->getParamValueDef("/Case/Domain", "Speed", true)
                          ->evaluateAllowedValues(data->getRules(), at.context, &at.evaluation);

  EXPECT_THAT(values.allowedValues, ElementsAre("Water", "Oil", "Air"));
  EXPECT_THAT(values.subsetValues, ElementsAre("Air"));
  EXPECT_TRUE(values.allowsAnyValue);
}

TEST(RuleLoader, ATextOrBehindAnEqualsSignAnExpression) {
  auto const defaultOf = [](std::string const& text) {
    auto const data = parseRules(withParameter("Parameter Type: String\nDefault Value: " + text));
    AtDomain at;
    return data->getParamValueDef("/Case/Domain", "Speed", true)
        ->evaluateDefault(data->getRules(), at.context, &at.evaluation);
  };
  EXPECT_EQ(defaultOf("12 [m/s]"), "12 [m/s]");
  EXPECT_EQ(defaultOf("${Motion}"), "${Motion}");
  EXPECT_EQ(defaultOf("= ${Motion}"), "Rotating");
  EXPECT_EQ(defaultOf("=${Motion}"), "Rotating");
  EXPECT_EQ(defaultOf("'= ${Motion}'"), "Rotating");
  EXPECT_EQ(defaultOf("= 1 + 2"), "3");
  EXPECT_EQ(defaultOf("= true"), "true");
  EXPECT_EQ(defaultOf("= '=text'"), "=text");
  EXPECT_EQ(defaultOf("a = b"), "a = b");
  EXPECT_EQ(defaultOf("' = b'"), " = b");
  EXPECT_EQ(defaultOf("''"), "");
  EXPECT_EQ(defaultOf(""), "");
  EXPECT_EQ(defaultOf(">-\n          = ${Motion}\n          + '!'"), "Rotating!");
}

TEST(RuleLoader, DefaultsOverridesBoundsAndQuantityType) {
  auto const data = parseRules(withParameter(R"yaml(Parameter Type: Real
Default Value: 1
Default Value Check List:
  - {When: "${Motion} == 'Resting'", Value: 0}
  - {When: "${Motion} == 'Rotating'", Value: "= 2 * 3"}
  - When: true
    Value: 9
Fallback To Blank Default: yes
Value Override Check List:
  - {When: "${Motion} == 'Resting'", Value: 7}
  - {When: "exists(${Motion})", Value: "= ${/Case/Maximum Speed}"}
Lower Bound: 0 [m/s]
Upper Bound: = ${/Case/Maximum Speed}
Quantity Type: = if(${Motion} == 'Rotating', 'Velocity', 'Rate'))yaml"));
  auto const& def = *data->getParamValueDef("/Case/Domain", "Speed", true);
  AtDomain at;
  TDFContext const nowhere("/Nowhere");

  EXPECT_TRUE(def.hasDefault());
  EXPECT_TRUE(def.fallbackToBlankDefault);
  EXPECT_EQ(def.evaluateDefault(nullptr, at.context, &at.evaluation), "6");
  EXPECT_EQ(def.evaluateDefault(nullptr, nowhere, &at.evaluation), "9");
  EXPECT_TRUE(def.hasValueOverride());
  EXPECT_THAT(def.evaluateValueOverride(nullptr, at.context, &at.evaluation), Pair(true, "25 [m/s]"));
  EXPECT_THAT(def.evaluateValueOverride(nullptr, nowhere, &at.evaluation), Pair(false, ""));
  EXPECT_TRUE(def.hasVariableBounds());
  EXPECT_THAT(def.evaluateBounds(nullptr, at.context, &at.evaluation), Pair("0 [m/s]", "25 [m/s]"));
  EXPECT_EQ(def.evaluateQuantityType(nullptr, at.context, &at.evaluation), "Velocity");
}

TEST(RuleLoader, PartsMayBeRepeatedByAliases) {
  auto const data = parseRules(R"yaml(Rule Database: 1
Objects:
  /Case:
    Parameters: &shared
      Title: &text {Parameter Type: String, Available: "exists(${Motion})"}
      Author: *text
  /Case/Domain:
    Parameters: *shared
)yaml");
  AtDomain at;
  for (char const* const type : {"/Case", "/Case/Domain"}) {
    for (char const* const name : {"Title", "Author"}) {
      auto const* param = data->getObjDependDef(type, true)->findParam(name);
      ASSERT_NE(param, nullptr);
      EXPECT_EQ(param->name, name);
      EXPECT_TRUE(param->evaluate(at.context, &at.evaluation));
    }
  }
}

// Several files

class RuleFiles : public testing::Test {
 protected:
  RuleFiles()
      : folder_(fs::path(testing::TempDir()) / ("rules-" + std::to_string(reinterpret_cast<std::uintptr_t>(this)))) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~RuleFiles() override { fs::remove_all(folder_); }

  fs::path write(std::string const& name, std::string const& text) {
    std::ofstream(folder_ / name, std::ios::binary) << text;
    return folder_ / name;
  }
  /// The errors of loading, with the folder's path taken out of them.
  [[nodiscard]] std::string errors(std::vector<fs::path> const& paths, LoadLimits const& limits = {}) const {
    try {
      (void)loadRules(paths, limits);
    } catch (RuleError const& error) {
      return withoutFolder(format(error.diagnostics()));
    }
    return {};
  }
  [[nodiscard]] std::string withoutFolder(std::string text) const {
    std::string const prefix = folder_.string() + "/";
    for (std::size_t at; (at = text.find(prefix)) != std::string::npos;) text.erase(at, prefix.size());
    return text;
  }

  fs::path folder_;
};

TEST_F(RuleFiles, OnePathNeedsNoList) {
  auto const file = write("flow.rules.yaml", "Rule Database: 1\nPertinent Roots: [Case]\n");
  EXPECT_THAT(loadRules(file)->getPertinentGlobalCheckRoots(), ElementsAre("Case"));
  EXPECT_THAT(loadRules(file.string())->getPertinentGlobalCheckRoots(), ElementsAre("Case"));
  EXPECT_THAT(loadRules(folder_)->getPertinentGlobalCheckRoots(), ElementsAre("Case"));
  EXPECT_THAT(loadRules({file})->getPertinentGlobalCheckRoots(), ElementsAre("Case"));
}

TEST_F(RuleFiles, OfAFolderTheRuleFilesAreTakenInTheOrderOfTheirNames) {
  write("20-b.rules.yaml", "Rule Database: 1\nObjects: {/Case: {Parameters: {B: {Parameter Type: Real}}}}\n");
  write("10-c.rules.yaml", "Rule Database: 1\nObjects: {/Case: {Parameters: {C: {Parameter Type: Real}}}}\n");
  write("notes.yaml", "no rules");
  write("notes.rules.yaml.bak", "no rules");
  auto const data = loadRules({folder_});

  auto const& params = data->getObjDependDef("/Case", true)->params();
  ASSERT_EQ(params.size(), 2U);
  EXPECT_EQ(params[0]->name, "C");
  EXPECT_EQ(params[1]->name, "B");
}

TEST_F(RuleFiles, FilesAreTakenInTheOrderGivenWhateverTheirNames) {
  auto const z = write("z.yaml",
                       "Rule Database: 1\nPertinent Roots: [Z]\nObjects: {/Case: {Parameters: {Z: {Parameter Type: "
                       "Real}}, Description: of z}}\nGlobal Checks: {z: {Check: 'true', Message: m}}\n");
  auto const a = write("a.yaml",
                       "Rule Database: 1\nPertinent Roots: [A]\nObjects: {/Case: {Parameters: {A: {Parameter Type: "
                       "Real}}, Description: of a}}\nGlobal Checks: {a: {Check: 'true', Message: m}}\n");
  auto const data = loadRules({z, a});

  auto const& object = *data->getObjDependDef("/Case", true);
  EXPECT_EQ(object.params()[0]->name, "Z");
  EXPECT_EQ(object.params()[1]->name, "A");
  EXPECT_EQ(object.description, "of z");
  EXPECT_THAT(data->getPertinentGlobalCheckRoots(), ElementsAre("Z", "A"));
  EXPECT_THAT(data->getGlobalCheckNames(), ElementsAre("z", "a"));
}

TEST_F(RuleFiles, ACheckOfALaterFileCanBeCalledInAnEarlierOne) {
  auto const a = write("a.yaml", "Rule Database: 1\nChecks:\n  a: check('b')\n");
  auto const b = write("b.yaml", "Rule Database: 1\nChecks:\n  b: true\n");

  EXPECT_EQ(errors({a, b}), "");
}

TEST_F(RuleFiles, TextsThatWereReadLoadTheSameRulesWithoutTheFiles) {
  write("b.rules.yaml", "Rule Database: 1\nChecks:\n  b: true\n");
  write("a.rules.yaml", "Rule Database: 1\nChecks:\n  a: check('b')\n");

  std::vector<RuleText> const texts = readRules({folder_});
  fs::remove_all(folder_);

  ASSERT_EQ(texts.size(), 2U);
  EXPECT_EQ(withoutFolder(texts[0].source), "a.rules.yaml");
  EXPECT_EQ(texts[1].text, "Rule Database: 1\nChecks:\n  b: true\n");
  auto const rules = parseRules(texts);
  EXPECT_NE(rules->getCheck("a", true), nullptr);
}

TEST_F(RuleFiles, TextsAreReadWithoutLookingIntoThem) {
  auto const broken = write("broken.yaml", "no rules at all");

  EXPECT_EQ(readRules({broken}).front().text, "no rules at all");
  EXPECT_THROW((void)readRules({folder_ / "missing.yaml"}), RuleError);
  EXPECT_THROW((void)readRules({}), RuleError);
  EXPECT_THROW((void)parseRules(std::vector<RuleText>()), RuleError);
}

TEST_F(RuleFiles, WhatIsGivenTwiceIsToldWithBothPlaces) {
  auto const a = write("a.yaml", R"yaml(Rule Database: 1
Quantity Types: {Speed: {Units: [m/s]}}
Checks: {turns: "true"}
Lists: {fluids: [Water]}
Objects:
  /Case:
    Children:
      Title: {}
      Domain: {}
    Parameters:
      Title: {Parameter Type: String}
Global Checks: {all well: {Check: "true", Message: m}}
)yaml");
  auto const b = write("b.yaml", R"yaml(Rule Database: 1
Quantity Types: {Speed: {Units: [m/s]}}
Checks: {turns: "true"}
Lists: {fluids: [Water]}
Objects:
  /Case:
    Parameters:
      Title: {Parameter Type: String}
    Children:
      Domain: {}
Global Checks: {all well: {Check: "true", Message: m}}
)yaml");
  EXPECT_EQ(errors({a, b}), R"yaml(b.yaml:2:18: error: 'Speed' is given twice
    2 | Quantity Types: {Speed: {Units: [m/s]}}
      |                  ^~~~~
a.yaml:2:18: note: the first one is here
    2 | Quantity Types: {Speed: {Units: [m/s]}}
      |                  ^~~~~
b.yaml:3:10: error: 'turns' is given twice
    3 | Checks: {turns: "true"}
      |          ^~~~~
a.yaml:3:10: note: the first one is here
    3 | Checks: {turns: "true"}
      |          ^~~~~
b.yaml:4:9: error: 'fluids' is given twice
    4 | Lists: {fluids: [Water]}
      |         ^~~~~~
a.yaml:4:9: note: the first one is here
    4 | Lists: {fluids: [Water]}
      |         ^~~~~~
b.yaml:8:7: error: the object already has a parameter 'Title'
    8 |       Title: {Parameter Type: String}
      |       ^~~~~
a.yaml:11:7: note: the first one is here
   11 |       Title: {Parameter Type: String}
      |       ^~~~~
b.yaml:10:7: error: the object already has a child type 'Domain'
   10 |       Domain: {}
      |       ^~~~~~
a.yaml:9:7: note: the first one is here
    9 |       Domain: {}
      |       ^~~~~~
b.yaml:11:17: error: 'all well' is given twice
   11 | Global Checks: {all well: {Check: "true", Message: m}}
      |                 ^~~~~~~~
a.yaml:12:17: note: the first one is here
   12 | Global Checks: {all well: {Check: "true", Message: m}}
      |                 ^~~~~~~~
)yaml");
}

TEST_F(RuleFiles, AllErrorsOfAllFilesAreToldInTheOrderOfTheFiles) {
  auto const a = write("a.yaml", "Rule Database: 1\nChecks: {a: exist(1)}\n");
  auto const broken = write("broken.yaml", "Rule Database: 1\nChecks:\n\ta: true\n");
  auto const blank = write("blank.yaml", "# nothing\n\n");
  auto const b = write("b.yaml", "Objects: {Case: {}}\n");

  EXPECT_EQ(errors({b, broken, folder_ / "missing.yaml", blank, a}),
            "b.yaml:1:1: error: the key 'Rule Database' is missing; begin the file with 'Rule Database: 1'\n"
            "    1 | Objects: {Case: {}}\n"
            "      | ^\n"
            "b.yaml:1:11: error: an object type path must begin with '/'; write '/Case'\n"
            "    1 | Objects: {Case: {}}\n"
            "      |           ^~~~\n"
            "broken.yaml:3:1: error: this is not YAML: a line is indented with blanks, not with tabs\n"
            "    3 |  a: true\n"
            "      | ^\n"
            "missing.yaml: error: cannot read the rule file: No such file or directory\n"
            "blank.yaml:1:1: error: the file contains no rules; it must begin with 'Rule Database: 1'\n"
            "    1 | # nothing\n"
            "      | ^\n"
            "a.yaml:2:13: error: unknown function 'exist'; did you mean 'exists'?\n"
            "    2 | Checks: {a: exist(1)}\n"
            "      |             ^~~~~\n");
}

TEST_F(RuleFiles, AnEmptyFileHoldsNoRules) {
  EXPECT_EQ(errors({write("empty.yaml", "")}),
            "empty.yaml:1:1: error: the file contains no rules; it must begin with 'Rule Database: 1'\n"
            "    1 | \n"
            "      | ^\n");
}

TEST_F(RuleFiles, AFolderWithoutRuleFilesAndNoFileAtAllAreErrors) {
  EXPECT_EQ(errors({folder_ / ""}),
            ": error: the folder contains no rule files; their names must end in .rules.yaml\n");
  EXPECT_EQ(errors({}), "<rules>: error: no rule file is given\n");
}

TEST_F(RuleFiles, AFolderNamedLikeARuleFileCannotBeRead) {
  fs::create_directory(folder_ / "sub.rules.yaml");
  EXPECT_EQ(withoutFolder(errors({folder_})), "sub.rules.yaml: error: cannot read the rule file: Is a directory\n");
}

TEST_F(RuleFiles, ADeviceWithoutEndIsRefusedAtTheLimitOfSize) {
  LoadLimits limits;
  limits.fileSize = 1000;
  EXPECT_EQ(errors({"/dev/zero"}, limits),
            "/dev/zero: error: cannot read the rule file: it is larger than 1000 bytes\n");
  EXPECT_EQ(errorsOf(std::string(1001, ' '), limits), "flow.rules.yaml: error: the text is larger than 1000 bytes\n");
}

TEST_F(RuleFiles, TheErrorItselfReadsAsItsDiagnostics) {
  auto const a = write("a.yaml", "Rule Database: 1\nChecks: {a: exist(1)}\n");
  try {
    (void)loadRules({a});
    FAIL() << "must throw";
  } catch (Error const& error) {
    std::ostringstream stream;
    error.write(stream);
    EXPECT_EQ(withoutFolder(stream.str()),
              "a.yaml:2:13: error: unknown function 'exist'; did you mean 'exists'?\n"
              "    2 | Checks: {a: exist(1)}\n"
              "      |             ^~~~~");
    EXPECT_THAT(error.getMessage(), HasSubstr("unknown function 'exist'"));
  }
}

TEST_F(RuleFiles, LintSaysWhetherSomethingCouldNotBeRead) {
  auto const a = write("a.yaml", "Rule Database: 1\nPertinent Roots: [Case]\n");
  auto const fine = lintRules({a});
  EXPECT_FALSE(fine.unreadable);
  EXPECT_EQ(withoutFolder(format(fine.diagnostics)),
            "a.yaml:2:19: warning: there are no rules for the root type 'Case'\n"
            "    2 | Pertinent Roots: [Case]\n"
            "      |                   ^~~~\n");

  auto const missing = lintRules({a, folder_ / "missing.yaml"});
  EXPECT_TRUE(missing.unreadable);
  EXPECT_EQ(withoutFolder(format(missing.diagnostics)),
            "missing.yaml: error: cannot read the rule file: No such file or directory\n");
}

// Size

TEST(RuleLoader, BeyondTheLimitErrorsAreCountedOnly) {
  LoadLimits limits;
  limits.errors = 2;
  EXPECT_EQ(errorsOf("Rule Database: 1\nChecks:\n  a: len()\n  b: avg()\n  c: len()\n", limits),
            "flow.rules.yaml:3:6: error: unknown function 'len'; its purpose is served by length(text) and size(list)\n"
            "    3 |   a: len()\n"
            "      |      ^~~\n"
            "flow.rules.yaml:4:6: error: unknown function 'avg'; its purpose is served by sum(list) / size(list)\n"
            "    4 |   b: avg()\n"
            "      |      ^~~\n"
            "flow.rules.yaml: error: there are 3 errors; only the first 2 found are shown\n");
}

/// Runs `work` and fails when it takes as long as only a careless quadratic algorithm does: minutes of the processor,
/// where seconds are enough. Other work of the machine is not counted.
template <typename Work>
void inShortTime(Work work) {
  std::clock_t const begin = std::clock();
  work();
  EXPECT_LT((std::clock() - begin) / CLOCKS_PER_SEC, 60);
}

/// An object with that many parameters, the lines of each made by `attributes` of its number.
template <typename Attributes>
std::string manyParameters(int count, Attributes attributes) {
  std::string file =
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n      P: {Parameter Type: "
      "String, "
      "Context Rule: yes, Ordered Allowed String List: [x, y]}\n      Q: {Parameter Type: String}\n";
  for (int i = 0; i < count; ++i) {
    file += "      P" + std::to_string(i) + ": {Parameter Type: Real, " + attributes(i) + "}\n";
  }
  return file;
}

TEST(RuleLoader, AHundredThousandParametersInOneObjectAreLoadedAndLintedInShortTime) {
  auto const file = manyParameters(
      100'000, [](int) { return std::string("Context: x, Available: \"${Q} == 'x'\", Lower Bound: 0"); });
  inShortTime([&] { EXPECT_EQ(parseRules(file)->getObjDependDef("/Case", true)->params().size(), 100'002U); });
  inShortTime([&] { EXPECT_THAT(lintText(file).diagnostics, IsEmpty()); });
}

TEST(RuleLoader, ManySlipsAmongManyNamesAreToldInShortTime) {
  auto const file = manyParameters(20'000, [](int i) { return "Available: \"${Q" + std::to_string(i) + "} == 'x'\""; });
  inShortTime([&] { EXPECT_EQ(lintText(file).diagnostics.size(), 20'000U); });

  std::string checks = "Rule Database: 1\nChecks:\n";
  for (int i = 0; i < 50'000; ++i) {
    checks += "  check " + std::to_string(i) + ": " + "check('chek " + std::to_string(i) + "')\n";
  }
  inShortTime([&] {
    EXPECT_THAT(errorsOf(checks),
                StartsWith("flow.rules.yaml:3:18: error: there is no check 'chek 0'; did you mean 'check 0'?\n"));
  });
}

TEST(RuleLoader, AHundredThousandParametersGivenTwiceAreToldInShortTime) {
  std::string file = "Rule Database: 1\nObjects:\n  /Case:\n    Parameters: &all\n";
  for (int i = 0; i < 100'000; ++i) file += "      P" + std::to_string(i) + ": {Parameter Type: Real}\n";
  fs::path const path = fs::path(testing::TempDir()) / "twice.rules.yaml";
  std::ofstream(path) << file;
  inShortTime([&] {
    try {
      (void)loadRules({path, path});
      FAIL() << "must throw";
    } catch (RuleError const& error) {
      EXPECT_EQ(error.diagnostics().size(), 1001U);
      EXPECT_EQ(error.diagnostics()[0].message, "the object already has a parameter 'P0'");
      EXPECT_EQ(error.diagnostics()[0].notes.size(), 1U);
    }
  });
  fs::remove(path);
}

TEST(RuleLoader, AnExpressionFullOfMistakesOverManyLinesIsToldInShortTime) {
  std::string file = "Rule Database: 1\nChecks:\n  a: >\n    f(1)";
  for (int i = 0; i < 12'000; ++i) file += " +\n    f(1)";
  inShortTime([&] { EXPECT_THAT(errorsOf(file), StartsWith("flow.rules.yaml:4:5: error: unknown function 'f'; ")); });
}

TEST(RuleLoader, AnExpressionOfTenMegabytesIsRefusedAndWithAHigherLimitRead) {
  std::string expression = "true";
  expression.reserve(10'000'000);
  while (expression.size() < 10'000'000) expression += " or true";
  std::string const file = "Rule Database: 1\nChecks:\n  a: " + expression + "\n";
  inShortTime([&] {
    EXPECT_THAT(errorsOf(file), HasSubstr("3:100006: error: the expression is longer than 100000 characters\n"));
  });
  LoadLimits limits;
  limits.expressionLength = 20'000'000;
  inShortTime([&] { EXPECT_EQ(errorsOf(file, limits), ""); });
}

TEST(RuleLoader, ReadsWhatInterfacesShowOfParametersAndChildren) {
  auto const data = parseRules(R"(Rule Database: 1
Objects:
  /Case:
    Parameters:
      dt: {Parameter Type: Real, Group: Numerics, Label: Time step, Advanced: yes}
      Title: {Parameter Type: String}
    Children:
      Monitor: {Coupled: yes, Group: Output, Label: Points, Advanced: on}
      Domain: {Coupled: yes}
)");
  auto const& rules = *data->getObjDependDef("/Case", true);
  auto const shown = [](auto const& entry) {
    return entry.group + "|" + entry.label + "|" + (entry.advanced ? "advanced" : "");
  };
  EXPECT_EQ(shown(*rules.findParam("dt")), "Numerics|Time step|advanced");
  EXPECT_EQ(shown(*rules.findParam("Title")), "||");
  EXPECT_EQ(shown(*rules.findChild("Monitor")), "Output|Points|advanced");
  EXPECT_EQ(shown(*rules.findChild("Domain")), "||");
}

TEST(RuleLoader, ReadsWhatIsDeprecatedAndWhatWasRenamed) {
  auto const data = parseRules(R"(Rule Database: 1
Objects:
  /Case:
    Renamed From: [Study, Project]
    Rename Message: A case is what users call it.
    Parameters:
      Time Step: {Parameter Type: Real, Renamed From: dt, Rename Message: Names are words.}
      Solver Mode: {Parameter Type: String, Deprecated: Choose the solver in Solver/Kind.}
      Title: {Parameter Type: String}
    Children:
      Wall: {Coupled: yes, Renamed From: [Boundary], Deprecated: Walls are found by themselves.}
      Fluid: {Coupled: yes, Allowed Names: [hot, cold], Renamed Names: {warm: hot, cool: cold}}
)");
  auto const& rules = *data->getObjDependDef("/Case", true);
  EXPECT_THAT(rules.history.formerNames, ElementsAre("Study", "Project"));
  EXPECT_EQ(rules.history.renameMessage, "A case is what users call it.");
  EXPECT_EQ(rules.history.deprecated, "");

  auto const& step = rules.findParam("Time Step")->history;
  EXPECT_THAT(step.formerNames, ElementsAre("dt"));
  EXPECT_EQ(step.renameMessage, "Names are words.");
  EXPECT_EQ(step.deprecated, "");
  EXPECT_EQ(rules.findParam("Solver Mode")->history.deprecated, "Choose the solver in Solver/Kind.");
  EXPECT_THAT(rules.findParam("Title")->history.formerNames, IsEmpty());

  EXPECT_THAT(rules.findChild("Wall")->history.formerNames, ElementsAre("Boundary"));
  EXPECT_EQ(rules.findChild("Wall")->history.deprecated, "Walls are found by themselves.");
  EXPECT_THAT(rules.findChild("Fluid")->renamedNames, ElementsAre(Pair("cool", "cold"), Pair("warm", "hot")));
}

}  // namespace
}  // namespace tarn::rules
