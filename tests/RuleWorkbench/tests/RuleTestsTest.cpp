#include <tarn/workbench/RuleTests.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <tarn/rules/RuleLoader.h>

#include "support/TemporaryFolder.h"

namespace {

using namespace tarn;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using workbench::RuleTests;
using workbench::TestFailure;

constexpr char const* pumpRules = R"(Rule Database: 1
Pertinent Roots: [Case]
Quantity Types:
  Angular Velocity:
    Units: [rad s^-1]
Objects:
  /Case:
    Parameters:
      Title:
        Parameter Type: String
    Children:
      Domain:
        Required: no
        Coupled: yes
        Maximum Count: 2
  /Case/Domain:
    Parameters:
      Motion:
        Parameter Type: String
        Required: yes
        Ordered Allowed String List: [Stationary, Rotating]
        Default Value: Stationary
      Angular Velocity:
        Available: ${Motion} == 'Rotating'
        Reason: Only a rotating domain turns.
        Required: yes
        Parameter Type: Real
        Quantity Type: Angular Velocity
        Default Value: 0 [rad s^-1]
        Lower Bound: 0 [rad s^-1]
        Upper Bound: 100 [rad s^-1]
)";

std::unique_ptr<PhysicsData> pump() {
  return rules::parseRules(pumpRules, "pump.rules.yaml");
}

/// A file with one test, "it", whose body is `body`, indented by four blanks.
RuleTests testOf(std::string const& body) {
  return RuleTests::parse("Rule Tests: 1\nTests:\n  it:\n" + body, "pump.rule-tests.yaml");
}

/// The failures of a test with this body.
std::vector<TestFailure> failuresOf(std::string const& body) {
  RuleTests const tests = testOf(body);
  EXPECT_EQ(rules::format(tests.diagnostics()), "");
  if (tests.size() != 1) return {};
  return tests.run(0, *pump()).failures;
}

/// Expected and actual of the only failure of a test.
std::string failureOf(std::string const& body) {
  auto const failures = failuresOf(body);
  if (failures.size() != 1) return "there are " + std::to_string(failures.size()) + " failures";
  return failures.front().subject + " | " + failures.front().expected + " | " + failures.front().actual;
}

std::string problemsOf(std::string const& body) {
  RuleTests const tests = testOf(body);
  EXPECT_EQ(tests.size(), 0U);
  std::string text;
  for (auto const& one : tests.diagnostics()) {
    text += std::to_string(one.line) + ':' + std::to_string(one.column) + ": " + one.message + '\n';
  }
  return text;
}

constexpr char const* withRotor = "    Model: |\n      /Case/Domain:rotor/Motion=Stationary\n";

std::string rotor(std::string const& body) {
  return withRotor + body;
}

TEST(RuleTests, ATestPassesWhenTheRulesDoWhatItExpects) {
  EXPECT_THAT(failuresOf(rotor(R"(    Expect:
      Absent: /Case/Domain:rotor/Angular Velocity
      On Offer: /Case/Title
      Optional: [/Case/Title]
      Reason: {/Case/Domain:rotor/Angular Velocity: Only a rotating domain turns.}
    Steps:
      - Set: {/Case/Domain:rotor/Motion: Rotating}
        Expect:
          Present: [/Case/Domain:rotor, /Case/Domain:rotor/Angular Velocity]
          Required: /Case/Domain:rotor/Angular Velocity
          Value:
            /Case/Domain:rotor/Angular Velocity: 0 [rad s^-1]
          Default:
            /Case/Domain:rotor/Angular Velocity: 0 [rad s^-1]
          Lower Bound:
            /Case/Domain:rotor/Angular Velocity: 0 [rad s^-1]
          Upper Bound:
            /Case/Domain:rotor/Angular Velocity: 100 [rad s^-1]
          Allowed:
            /Case/Domain:rotor/Motion: [Stationary, Rotating]
          Findings: none
)")),
              IsEmpty());
}

TEST(RuleTests, AFailureNamesTheExpectationTheRuleAndTheProof) {
  auto const failures = failuresOf(rotor(R"(    Expect:
      Present: /Case/Domain:rotor/Angular Velocity
)"));
  ASSERT_EQ(failures.size(), 1U);
  TestFailure const& failure = failures.front();
  EXPECT_EQ(failure.place.text(), "pump.rule-tests.yaml:7:16");
  EXPECT_EQ(failure.subject, "/Case/Domain:rotor/Angular Velocity");
  EXPECT_EQ(failure.expected, "present");
  EXPECT_EQ(failure.actual, "not available");
  EXPECT_EQ(failure.rule.text(), "pump.rules.yaml:24:20");
  EXPECT_EQ(failure.because,
            "/Case/Domain:rotor/Angular Velocity is absent: not available\n"
            "  \"Only a rotating domain turns.\"\n"
            "  Available: ${Motion} == 'Rotating'  (pump.rules.yaml:24:20)\n"
            "    Motion is 'Stationary', needs 'Rotating'  (model)");
}

struct Missed {
  char const* expectation;
  char const* failure;
};

class RuleTestsExpectation : public testing::TestWithParam<Missed> {};

TEST_P(RuleTestsExpectation, SaysWhatItIsInstead) {
  EXPECT_EQ(failureOf(rotor("    Expect:\n      " + std::string(GetParam().expectation) + "\n")), GetParam().failure);
}

INSTANTIATE_TEST_SUITE_P(
    Each, RuleTestsExpectation,
    testing::Values(
        Missed{"Value: {/Case/Domain:rotor/Motion: Rotating}",
               "/Case/Domain:rotor/Motion | the value 'Rotating' | present, with the value 'Stationary'"},
        Missed{"Value: {/Case/Title: Pump}", "/Case/Title | the value 'Pump' | on offer"},
        Missed{"Absent: /Case/Domain:rotor", "/Case/Domain:rotor | absent, and not on offer | present"},
        Missed{"Absent: /Case/Title", "/Case/Title | absent, and not on offer | on offer"},
        Missed{"On Offer: /Case/Domain:rotor/Angular Velocity",
               "/Case/Domain:rotor/Angular Velocity | on offer | not available"},
        Missed{"Waiting: /Case/Title", "/Case/Title | waiting | on offer"},
        Missed{"Required: /Case/Title", "/Case/Title | required | optional"},
        Missed{"Optional: /Case/Domain:rotor/Angular Velocity",
               "/Case/Domain:rotor/Angular Velocity | optional | not available"},
        Missed{"Allowed: {/Case/Domain:rotor/Motion: [Rotating]}",
               "/Case/Domain:rotor/Motion | 'Rotating' | 'Stationary', 'Rotating'"},
        Missed{"Allowed: {/Case/Domain:rotor/Motion: [Rotating, Stationary]}",
               "/Case/Domain:rotor/Motion | 'Rotating', 'Stationary' | 'Stationary', 'Rotating', in this order"},
        Missed{"Allowed: {/Case/Title: [Pump]}", "/Case/Title | 'Pump' | any value"},
        Missed{"Default: {/Case/Domain:rotor/Motion: Rotating}",
               "/Case/Domain:rotor/Motion | the default 'Rotating' | the default 'Stationary'"},
        Missed{"Lower Bound: {/Case/Domain:rotor/Motion: '1'}",
               "/Case/Domain:rotor/Motion | the lower bound '1' | the lower bound ''"},
        Missed{"Reason: {/Case/Title: Because.}", "/Case/Title | the reason 'Because.' | on offer, without a reason"},
        Missed{"Findings: [missing-object]", "the whole model | findings: missing-object | findings: none"},
        Missed{"Findings: {/Case/Domain:rotor: missing-parameter}",
               "/Case/Domain:rotor | findings: missing-parameter | findings: none"},
        Missed{"Findings: [object-check-failed]", "the whole model | findings: object-check-failed | findings: none"},
        Missed{"Failed Checks: [one part turns]",
               "the whole model | failed checks: one part turns | failed checks: none"},
        Missed{"Allowed: {/Case/Domain:rotor/Motion: any}",
               "/Case/Domain:rotor/Motion | any value | 'Stationary', 'Rotating'"},
        Missed{"Allowed: {/Case/Domain:rotor/Angular Velocity: any}",
               "/Case/Domain:rotor/Angular Velocity | an available parameter | not available"},
        Missed{"Default: {/Case/Domain:rotor/Angular Velocity: '0 [rad s^-1]'}",
               "/Case/Domain:rotor/Angular Velocity | an available parameter | not available"},
        Missed{"Value: {/Case: x}", "/Case | a parameter | an object"}));

TEST(RuleTests, AnExpectationAboutAnUnknownPathFailsAndProposesThePathThatWasMeant) {
  EXPECT_EQ(
      failureOf(rotor("    Expect:\n      Absent: /Case/Domain:rotor/Angular Velocty\n")),
      "/Case/Domain:rotor/Angular Velocty | an object or a parameter that the rules know | The rules know no "
      "parameter \"Angular Velocty\" in \"/Case/Domain:rotor\". Did you mean /Case/Domain:rotor/Angular Velocity?");
}

TEST(RuleTests, AnObjectThatNothingHasNamedIsASlipAndNotAbsent) {
  EXPECT_EQ(failureOf(rotor("    Expect:\n      Absent: /Case/Domain:roter/Angular Velocity\n")).substr(0, 72),
            "/Case/Domain:roter/Angular Velocity | an object or a parameter that the ");
}

TEST(RuleTests, FailedChecksAreExpectedByTheirNames) {
  auto const rules = rules::parseRules(
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n"
      "      Speed: {Parameter Type: Real, Required: yes, Default Value: '1'}\n"
      "    Checks:\n      fast: {Check: '${Speed} > 2', Message: Too slow.}\n"
      "Global Checks:\n  slow: {Check: '${/Case/Speed} < 5', Message: Too fast.}\n");
  RuleTests const tests = testOf(
      "    Expect: {Failed Checks: {/Case: fast}, Findings: {/Case: object-check-failed}}\n"
      "    Steps:\n      - {Set: {/Case/Speed: '3'}, Expect: {Failed Checks: none}}\n"
      "      - {Set: {/Case/Speed: '7'}, Expect: {Failed Checks: [slow]}}\n");
  EXPECT_THAT(tests.run(0, *rules).failures, IsEmpty());
}

TEST(RuleTests, WhatIsInARemovedObjectIsAbsent) {
  EXPECT_THAT(failuresOf(rotor(R"(    Steps:
      - Add: /Case/Domain:stator
        Expect: {Present: /Case/Domain:stator}
      - Remove: /Case/Domain:stator
        Expect: {Absent: [/Case/Domain:stator, /Case/Domain:stator/Angular Velocity]}
)")),
              IsEmpty());
}

TEST(RuleTests, AnObjectThatNobodyHasAskedForHasTheReasonOfItsType) {
  auto const rules = rules::parseRules(
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Children:\n"
      "      Meter: {Available: 'false', Reason: Nothing is billed., Allowed Names: [heat]}\n  /Case/Meter: {}\n",
      "meter.rules.yaml");
  RuleTests const tests = testOf("    Expect: {Reason: {/Case/Meter:heat: Nothing is billed.}}\n");
  EXPECT_TRUE(tests.run(0, *rules).passed());
  RuleTests const wrong = testOf("    Expect: {Reason: {/Case/Meter:heat: All is billed.}}\n");
  ASSERT_EQ(wrong.run(0, *rules).failures.size(), 1U);
  EXPECT_EQ(wrong.run(0, *rules).failures.front().actual, "the reason 'Nothing is billed.'");
}

TEST(RuleTests, AllKindsOfEditsCanBeMade) {
  EXPECT_THAT(failuresOf(rotor(R"(    Steps:
      - Copy: {/Case/Domain:rotor: stator}
        Expect: {Value: {/Case/Domain:stator/Motion: Stationary}}
      - Rename: {/Case/Domain:stator: casing}
        Expect: {Present: /Case/Domain:casing, Absent: /Case/Domain:stator}
      - Switch On: /Case/Title
        Expect: {Present: /Case/Title}
      - Switch Off: [/Case/Title]
        Expect: {On Offer: /Case/Title}
      - Switch On: /Case/Title
        Set: {/Case/Title: Pump}
        Remove: /Case/Domain:casing
        Expect: {Value: {/Case/Title: Pump}, Absent: /Case/Domain:casing}
)")),
              IsEmpty());
}

TEST(RuleTests, AValueThatCannotBeInForceNowWaits) {
  EXPECT_THAT(failuresOf(rotor(R"(    Steps:
      - Set: {/Case/Domain:rotor/Angular Velocity: '5 [rad s^-1]'}
        Expect: {Waiting: /Case/Domain:rotor/Angular Velocity}
      - Set: {/Case/Domain:rotor/Motion: Rotating}
        Expect: {Value: {/Case/Domain:rotor/Angular Velocity: '5 [rad s^-1]'}}
)")),
              IsEmpty());
}

TEST(RuleTests, AnEditThatIsRefusedFailsTheTestAndEndsIt) {
  EXPECT_EQ(failureOf(rotor(R"(    Steps:
      - Set: {/Case/Domain:rotor/Motion: Flying}
      - Set: {/Case/Domain:rotor/Motion: Swimming}
)")),
            "set /Case/Domain:rotor/Motion to \"Flying\" | the edit is made | refused (value-not-allowed): The "
            "parameter \"Motion\" in \"/Case/Domain:rotor\" cannot have the value \"Flying\": it is not an allowed "
            "value. Possible now: \"Stationary\", \"Rotating\".");
}

TEST(RuleTests, ARefusalCanBeExpectedWithOrWithoutItsCode) {
  std::string const step = "    Steps:\n      - Set: {/Case/Domain:rotor/Motion: Flying}\n        Expect: {Refused: ";
  EXPECT_THAT(failuresOf(rotor(step + "yes}\n")), IsEmpty());
  EXPECT_THAT(failuresOf(rotor(step + "value-not-allowed}\n")), IsEmpty());
  EXPECT_THAT(failureOf(rotor(step + "unknown-units}\n")),
              HasSubstr("refused (unknown-units) | refused (value-not-allowed): "));
  EXPECT_THAT(failureOf(rotor(step + "no}\n")), HasSubstr("the edit is made | refused (value-not-allowed): "));
}

TEST(RuleTests, AnEditThatIsMadeFailsWhenARefusalIsExpected) {
  EXPECT_THAT(failureOf(rotor("    Steps:\n      - Set: {/Case/Title: Pump}\n        Expect: {Refused: yes}\n")),
              HasSubstr("set /Case/Title to \"Pump\" | refused | "));
}

TEST(RuleTests, ExpressionsAreEvaluatedInTheModelAsTheRulesMakeIt) {
  EXPECT_THAT(failuresOf(rotor(R"yaml(    Evaluate:
      - {Expression: "count({/Case/Domain:*})", Gives: 1}
      - {Expression: "0.1 + 0.2", Gives: 0.3}
      - {At: /Case/Domain:rotor, Expression: "${Motion}", Gives: Stationary}
      - {At: /Case/Domain:rotor, Expression: "${Motion} == 'Rotating'", Gives: no}
      - {Expression: "names({/Case/Domain:*})", Gives: [rotor]}
      - {Expression: "number(${Title})", Gives: not a number}
)yaml")),
              IsEmpty());
  EXPECT_EQ(failureOf(rotor("    Evaluate: {Expression: 'count({/Case/Domain:*})', Gives: 2}\n")),
            "count({/Case/Domain:*}) | 2 | 1");
  EXPECT_EQ(failureOf(rotor("    Evaluate: {Expression: 'count(', Gives: 2}\n")).substr(0, 24),
            "count( | an expression |");
  EXPECT_EQ(failureOf(rotor("    Evaluate: {At: /Case/Domain:stator, Expression: 'yes', Gives: yes}\n")).substr(0, 20),
            "/Case/Domain:stator ");
}

TEST(RuleTests, AModelThatCannotBeEditedFailsTheTest) {
  EXPECT_EQ(failureOf("    Root: /Cake\n    Expect: {Absent: /Cake}\n"),
            "/Cake | a model that can be edited | The rules know no object \"/Cake\". Possible after 'Root': '/Case'.");
}

struct Wrong {
  char const* body;
  char const* problems;
};

class RuleTestsForm : public testing::TestWithParam<Wrong> {};

TEST_P(RuleTestsForm, IsReportedWithItsPlaceAndTheRemedy) {
  EXPECT_EQ(problemsOf(GetParam().body), GetParam().problems);
}

INSTANTIATE_TEST_SUITE_P(
    Each, RuleTestsForm,
    testing::Values(Wrong{"    Expct: {}\n", "4:5: unknown key 'Expct' in a test; did you mean 'Expect'?\n"},
                    Wrong{"    Model: x\n",
                          "3:3: the test expects nothing; give it 'Expect', 'Steps' or 'Evaluate'\n"
                          "4:12: the model cannot be read: neither \"=\" nor \":\" in the line; write name = value, "
                          "Type: name or END # Type:name\n"},
                    Wrong{"    Expect: {Valu: {/Case/Title: x}}\n",
                          "4:14: unknown key 'Valu' in an expectation; did you mean 'Value'?\n"},
                    Wrong{"    Steps: {Set: {/Case/Title: x}}\n",
                          "4:12: 'Steps' must be a list of maps, but this is a map; begin each step with '- '\n"},
                    Wrong{"    Steps: [{Expect: {Refused: yes}}]\n",
                          "4:13: 'Refused' needs an edit in the same step, and there is none\n"},
                    Wrong{"    Steps: [{Set: {/Case/Title: x}, Expect: {Refused: value-not-alowed}}]\n",
                          "4:55: this must be yes, no, or the code of a refusal, not 'value-not-alowed'; did you mean "
                          "'value-not-allowed'?\n"},
                    Wrong{"    Expect: {Findings: [mising-object]}\n",
                          "4:25: there is no finding with the code 'mising-object'; did you mean 'missing-object'?\n"},
                    Wrong{"    Expect: {Findings: beta-message}\n",
                          "4:24: there is no finding with the code 'beta-message'\n"},
                    Wrong{"    Expect: {Value: {/Case/Title: x}\n",
                          "5:1: this is not YAML: the '{' of line 4 is not closed before this, or a ',' is missing\n"},
                    Wrong{"    Expect: {Allowed: {/Case/Title: x}}\n",
                          "4:37: this must be a list of texts, but it is a single value; write a list of one as [x]\n"},
                    Wrong{"    Evaluate: {Expression: '1'}\n", "4:15: the evaluation has no 'Gives'\n"},
                    Wrong{"    Model: {File: no such.tdf}\n    Expect: {Findings: none}\n",
                          "4:19: cannot read the model: cannot open \"no such.tdf\": No such file or directory\n"}));

TEST(RuleTests, TestsThatAreRightAreKeptBesideWrongOnes) {
  RuleTests const tests = RuleTests::parse(
      "Rule Tests: 1\nTests:\n  good:\n    Expect: {On Offer: /Case/Title}\n  bad:\n    Expect: 5\n", "t");
  ASSERT_EQ(tests.size(), 1U);
  EXPECT_EQ(tests.name(0), "good");
  EXPECT_EQ(tests.place(0).text(), "t:3:3");
  EXPECT_EQ(tests.diagnostics().size(), 1U);
}

TEST(RuleTests, AFileMustSayThatItHasRuleTests) {
  EXPECT_EQ(RuleTests::parse("Tests: {}\n", "t").diagnostics().front().message,
            "the key 'Rule Tests' is missing; begin the file with 'Rule Tests: 1'");
  EXPECT_EQ(RuleTests::parse("", "t").diagnostics().front().message,
            "the file contains no tests; begin it with 'Rule Tests: 1'");
}

TEST(RuleTests, AFolderMeansItsFilesOfTestsInTheOrderOfTheirNames) {
  test::TemporaryFolder const folder("rule-tests");
  std::ofstream(folder.path() / "b.rule-tests.yaml")
      << "Rule Tests: 1\nTests:\n  from b:\n    Model: {File: pump.tdf}\n    Expect: {Value: {/Case/Title: Pump}}\n";
  std::ofstream(folder.path() / "a.rule-tests.yaml")
      << "Rule Tests: 1\nTests:\n  from a:\n    Expect: {On Offer: /Case/Title}\n";
  std::ofstream(folder.path() / "notes.yaml") << "not: tests\n";
  std::ofstream(folder.path() / "pump.tdf") << "/Case/Title=Pump\n";
  RuleTests const tests = RuleTests::read({folder.path()});
  EXPECT_EQ(rules::format(tests.diagnostics()), "");
  ASSERT_EQ(tests.size(), 2U);
  EXPECT_EQ(tests.name(0), "from a");
  EXPECT_EQ(tests.name(1), "from b");
  auto const rules = pump();
  EXPECT_TRUE(tests.run(0, *rules).passed());
  EXPECT_TRUE(tests.run(1, *rules).passed());
}

TEST(RuleTests, AFileThatDoesNotExistIsReported) {
  RuleTests const tests = RuleTests::read({"no such.rule-tests.yaml"});
  EXPECT_TRUE(tests.hasUnreadable());
  ASSERT_EQ(tests.diagnostics().size(), 1U);
  EXPECT_EQ(tests.diagnostics().front().message, "cannot read the file of rule tests: No such file or directory");
}

TEST(RuleTests, AFileBeyondALimitIsRefused) {
  auto const firstProblem = [](std::string const& text, workbench::TestLimits const& limits) {
    RuleTests const tests = RuleTests::parse(text, "t", {}, limits);
    return tests.diagnostics().empty() ? std::string() : tests.diagnostics().back().code;
  };
  std::string const text = "Rule Tests: 1\nTests:\n  it:\n    Expect: {Absent: [[/Case/Title]]}\n";
  workbench::TestLimits limits;
  limits.fileSize = text.size() - 1;
  EXPECT_EQ(firstProblem(text, limits), "unreadable-file");
  limits = {};
  limits.yamlDepth = 4;
  EXPECT_EQ(firstProblem(text, limits), "limit-exceeded");
  limits = {};
  limits.yamlNodes = 8;
  EXPECT_EQ(firstProblem(text, limits), "limit-exceeded");
  limits = {};
  limits.errors = 1;
  EXPECT_EQ(firstProblem(text + "  other: 5\n", limits), "too-many-errors");
}

}  // namespace
