#include <tarn/workbench/EditedRules.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tarn;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using workbench::EditedRules;
using workbench::EditorPosition;
using workbench::EditorRange;

constexpr char const* pumpRules = R"yaml(Rule Database: 1
Pertinent Roots: [Plant]
Quantity Types:
  Pressure: {Units: [bar, Pa]}
Checks:
  pumps run: count({/Plant/Pump:*}, ${Mode} == 'On') > 0
  high: ${Pressure} > value('most')
Values:
  most: 5 [bar]
Templates:
  wear:
    Parameters:
      Hours: {Parameter Type: Real}
Objects:
  /Plant:
    Parameters:
      Limit: {Parameter Type: Real, Quantity Type: Pressure}
    Children:
      Pump: {Coupled: yes}
  /Plant/Pump:
    Use: [wear]
    Parameters:
      Mode:
        Description: Whether it runs.
        Parameter Type: String
        Ordered Allowed String List: [Off, On]
      Pressure:
        Available: ${Mode} == 'On'
        Parameter Type: Real
        Quantity Type: Pressure
        Upper Bound: = ${/Plant/Limit}
)yaml";

/// Rules in which "^^" marks the cursor.
struct Marked {
  explicit Marked(std::string text, std::string const& name = "pump.rules.yaml") : file(name) {
    std::size_t const at = text.find("^^");
    EXPECT_NE(at, std::string::npos);
    text.erase(at, 2);
    cursor.line =
        static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    std::size_t const lineBegin = text.rfind('\n', at == 0 ? 0 : at - 1);
    cursor.byte = at - (lineBegin == std::string::npos ? 0 : lineBegin + 1);
    rules.setText(file, std::move(text));
  }
  EditedRules rules;
  std::string file;
  EditorPosition cursor;
};

/// The rules with `now` in place of `before`, which they contain once.
std::string with(std::string const& before, std::string const& now) {
  std::string text = pumpRules;
  std::size_t const at = text.find(before);
  EXPECT_NE(at, std::string::npos) << before;
  return text.replace(at, before.size(), now);
}

std::vector<std::string> proposals(Marked const& marked) {
  std::vector<std::string> labels;
  for (auto const& one : marked.rules.complete(marked.file, marked.cursor)) labels.push_back(one.label);
  return labels;
}

std::vector<std::string> proposalsFor(std::string const& before, std::string const& now) {
  return proposals(Marked(with(before, now)));
}

/// The lines at which locations begin, counted from 1, each with the text there.
std::vector<std::string> shown(EditedRules const& rules, std::vector<workbench::EditorLocation> const& all) {
  std::vector<std::string> result;
  for (auto const& one : all) {
    std::string_view const line = rules.line(one.file, one.range.begin.line);
    result.push_back(std::to_string(one.range.begin.line + 1) + ": " +
                     std::string(line.substr(one.range.begin.byte, one.range.end.byte - one.range.begin.byte)));
  }
  return result;
}

/// Object types with parameters, as many as make a large file.
std::string largeRules(std::size_t types, std::string const& condition = "${Mode 0} == 'On'") {
  std::string text =
      "Rule Database: 1\nPertinent Roots: [Plant]\nChecks:\n  one: ${/Plant/Level} > 1\nObjects:\n  /Plant:\n"
      "    Parameters:\n      Level: {Parameter Type: Real}\n    Children:\n";
  for (std::size_t i = 0; i < types; ++i) text += "      Part" + std::to_string(i) + ": {Coupled: yes}\n";
  for (std::size_t i = 0; i < types; ++i) {
    text += "  /Plant/Part" + std::to_string(i) + ":\n    Parameters:\n";
    for (std::size_t k = 0; k < 5; ++k) {
      text += "      Mode " + std::to_string(k) +
              ":\n        Parameter Type: String\n        Ordered Allowed String List: [Off, On]\n";
    }
    text += "      Level:\n        Available: " + condition + "\n        Parameter Type: Real\n";
  }
  return text;
}

TEST(EditedRules, ProposesTheKeysThatAParameterDoesNotHaveYet) {
  auto const keys = proposalsFor("        Description: Whether it runs.\n", "        ^^\n");
  EXPECT_THAT(keys, Contains("Description"));
  EXPECT_THAT(keys, Contains("Default Value"));
  EXPECT_THAT(keys, Not(Contains("Parameter Type")));
  EXPECT_THAT(keys, Not(Contains("Singleton")));
}

TEST(EditedRules, ProposesKeysInAMapInFlowStyle) {
  auto const keys = proposalsFor("{Parameter Type: Real, Quantity Type: Pressure}", "{Parameter Type: Real, Qu^^");
  EXPECT_THAT(keys, Contains("Quantity Type"));
  EXPECT_THAT(keys, Not(Contains("Parameter Type")));
}

TEST(EditedRules, ProposesValuesOfAttributes) {
  EXPECT_THAT(proposalsFor("Description: Whether it runs.", "Required: ^^"), ElementsAre("yes", "no"));
  EXPECT_THAT(proposalsFor("Description: Whether it runs.", "Default Value: ^^"), ElementsAre("Off", "On"));
  EXPECT_THAT(proposalsFor("        Quantity Type: Pressure\n", "        Quantity Type: ^^\n"),
              ElementsAre("Pressure"));
  EXPECT_THAT(proposalsFor("Use: [wear]", "Use: [^^]"), ElementsAre("wear"));
  EXPECT_THAT(proposalsFor("        Parameter Type: String\n", "        Parameter Type: ^^\n"), Contains("Real List"));
}

TEST(EditedRules, ProposesParametersOfTheObjectAndOfItsTemplates) {
  auto const names = proposalsFor("${Mode} == 'On'\n        Par", "${^^\n        Par");
  EXPECT_THAT(names, testing::IsSupersetOf({"Mode", "Pressure", "Hours", "..", "^Plant", "/Plant"}));
  EXPECT_THAT(names, Not(Contains("Limit")));
}

TEST(EditedRules, ProposesWhatAPathCanGoOnWith) {
  EXPECT_THAT(proposalsFor("= ${/Plant/Limit}", "= ${/Plant/^^}"), ElementsAre("Limit", "Pump"));
  EXPECT_THAT(proposalsFor("= ${/Plant/Limit}", "= ${../L^^}"), Contains("Limit"));
}

TEST(EditedRules, ProposesParametersOfTheObjectsUnderTest) {
  auto const names = proposalsFor("count({/Plant/Pump:*}, ${Mode} == 'On') > 0", "any({/Plant/Pump:*}, ${^^");
  EXPECT_THAT(names, testing::IsSupersetOf({"Mode", "Hours"}));
}

TEST(EditedRules, ProposesAllowedValuesAfterAComparisonAndInAList) {
  EXPECT_THAT(proposalsFor("${Mode} == 'On'\n        Par", "${Mode} == '^^\n        Par"), ElementsAre("Off", "On"));
  EXPECT_THAT(proposalsFor("${Mode} == 'On'\n        Par", "${Mode} in ('Off', '^^\n        Par"),
              ElementsAre("Off", "On"));
  EXPECT_THAT(proposalsFor("${Mode} == 'On'\n        Par", "${Mode} != ^^\n        Par"), Contains("'On'"));
}

TEST(EditedRules, ProposesFunctionsAndNamedRules) {
  auto const words = proposalsFor("${Mode} == 'On'\n        Par", "not ^^\n        Par");
  EXPECT_THAT(words, testing::IsSupersetOf({"count", "exists", "check('pumps run')", "${Mode}"}));
  EXPECT_THAT(proposalsFor("${Mode} == 'On'\n        Par", "check('^^\n        Par"), ElementsAre("high", "pumps run"));
}

TEST(EditedRules, ProposesNothingInAComment) {
  EXPECT_THAT(proposalsFor("    Use: [wear]\n", "    # Use: ^^\n"), IsEmpty());
}

TEST(EditedRules, AProposalReplacesTheComponentAroundTheCursor) {
  Marked const marked(with("= ${/Plant/Limit}", "= ${/Plant/Li^^m}"));
  auto const all = marked.rules.complete(marked.file, marked.cursor);
  auto const limit = std::find_if(all.begin(), all.end(), [](auto const& one) { return one.label == "Limit"; });
  ASSERT_NE(limit, all.end());
  EXPECT_EQ(limit->text, "Limit");
  EXPECT_EQ(limit->replaced,
            (EditorRange{{marked.cursor.line, marked.cursor.byte - 2}, {marked.cursor.line, marked.cursor.byte + 1}}));
}

TEST(EditedRules, DescribesAParameterAndItsReaders) {
  Marked const marked(with("${Mode} == 'On'\n        Par", "${Mo^^de} == 'On'\n        Par"));
  auto const hover = marked.rules.hover(marked.file, marked.cursor);
  ASSERT_TRUE(hover);
  EXPECT_EQ(hover->markdown,
            "**Mode** (parameter) of /Plant/Pump\n\nWhether it runs.\n\n- Parameter Type: `String`\n"
            "- Ordered Allowed String List: `Off`, `On`\n\nRead by:\n\n- pumps run, Checks\n- /Plant/Pump/Pressure, "
            "Available");
}

TEST(EditedRules, DescribesAKeyAndWhatItsExpressionReads) {
  Marked const marked(with("Available: ${Mode}", "Avail^^able: ${Mode}"));
  auto const hover = marked.rules.hover(marked.file, marked.cursor);
  ASSERT_TRUE(hover);
  EXPECT_THAT(hover->markdown, HasSubstr("A condition; the entry is available while it holds."));
  EXPECT_THAT(hover->markdown, HasSubstr("- `/Plant/Pump/Mode`"));
}

TEST(EditedRules, FindsDefinitionsAcrossFiles) {
  EditedRules rules;
  rules.setText("a.rules.yaml",
                "Rule Database: 1\nObjects:\n  /Plant:\n    Parameters:\n      Limit: {Parameter Type: Real}\n");
  rules.setText("b.rules.yaml",
                "Rule Database: 1\nObjects:\n  /Plant/Pump:\n    Parameters:\n      P: {Parameter Type: Real, "
                "Available: \"${/Plant/Limit} > 1\"}\n");
  std::string_view const line = rules.line("b.rules.yaml", 4);
  auto const found = rules.definition("b.rules.yaml", {4, line.find("Limit") + 1});
  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found[0].file, "a.rules.yaml");
  EXPECT_EQ(found[0].range, (EditorRange{{4, 6}, {4, 11}}));
}

TEST(EditedRules, FindsUsesFromNamedChecksAndFromTheObjectsUnderTest) {
  Marked const marked(with("      Mode:\n", "      Mo^^de:\n"));
  EXPECT_THAT(shown(marked.rules, marked.rules.references(marked.file, marked.cursor, true)),
              ElementsAre("6: Mode", "23: Mode", "28: Mode"));
}

TEST(EditedRules, FindsUsesOfAnObjectType) {
  Marked const marked(with("      Pump: {Coupled", "      Pu^^mp: {Coupled"));
  EXPECT_THAT(shown(marked.rules, marked.rules.references(marked.file, marked.cursor, true)),
              ElementsAre("6: Pump", "19: Pump", "20: Pump"));
}

TEST(EditedRules, RenamesEverywhereInRulesAndTests) {
  Marked marked(with("      Mode:\n", "      Mo^^de:\n"));
  marked.rules.setText("pump.rule-tests.yaml",
                       "Rule Tests: 1\nTests:\n  off:\n    Model: |\n      /Plant/Pump:a/Mode=Off\n    Expect:\n"
                       "      Absent: /Plant/Pump:a/Pressure\n");
  auto const renamed = marked.rules.rename(marked.file, marked.cursor, "State");
  EXPECT_EQ(renamed.refusal, "");
  std::vector<std::string> places;
  for (auto const& change : renamed.changes) {
    places.push_back(change.file + ':' + std::to_string(change.range.begin.line + 1) + ':' +
                     std::to_string(change.range.begin.byte));
  }
  EXPECT_THAT(places, testing::UnorderedElementsAre("pump.rules.yaml:6:38", "pump.rules.yaml:23:6",
                                                    "pump.rules.yaml:28:21", "pump.rule-tests.yaml:5:20"));
}

/// A test that names the mode of a pump in all ways: in a block, below the object that is edited, and in expressions.
constexpr char const* modeTests = R"yaml(Rule Tests: 1
Tests:
  in a block:
    Model: |
      Plant: 
        Pump: a
          Mode = Off
        END # Pump:a
      END # Plant:
    Steps:
      - Set: {Pump:a/Mode: On}
        Expect: {Present: [Pump:a/Mode], Value: {/Plant/Pump:a/Mode: On}}
    Evaluate:
      - {Expression: "${Pump:a/Mode} == 'On'", Gives: yes}
      - At: /Plant/Pump:a
        Expression: ${Mode} == 'On'
        Gives: yes
      - Expression: ${Mode} == 'On'
        At: Pump:a
        Gives: yes
)yaml";

TEST(EditedRules, FindsTheItemsOfTestsHoweverTheyAreWritten) {
  Marked marked(with("      Mode:\n", "      Mo^^de:\n"));
  marked.rules.setText("pump.rule-tests.yaml", modeTests);
  std::vector<std::string> lines;
  for (auto const& one : marked.rules.references(marked.file, marked.cursor, false)) {
    if (one.file == "pump.rule-tests.yaml") lines.push_back(std::to_string(one.range.begin.line + 1));
  }
  EXPECT_THAT(lines, ElementsAre("7", "11", "12", "12", "14", "16", "18"));
}

TEST(EditedRules, RenamesAnObjectTypeInTheBlocksOfATest) {
  Marked marked(with("      Pump: {Coupled", "      Pu^^mp: {Coupled"));
  marked.rules.setText("pump.rule-tests.yaml", modeTests);
  auto const renamed = marked.rules.rename(marked.file, marked.cursor, "Fan");
  EXPECT_EQ(renamed.refusal, "");
  std::vector<std::size_t> lines;
  for (auto const& change : renamed.changes) {
    if (change.file == "pump.rule-tests.yaml") lines.push_back(change.range.begin.line + 1);
  }
  std::sort(lines.begin(), lines.end());
  EXPECT_THAT(lines, ElementsAre(6, 8, 11, 12, 12, 14, 15, 19));
}

TEST(EditedRules, ProposesWhatTheObjectOfATestHas) {
  for (std::string const evaluate : {
           "{At: /Plant/Pump:a, Expression: \"${^^\"}",
           "{Expression: \"${^^\", At: /Plant/Pump:a}",
           "\n      At: /Plant/Pump:a\n      Expression: ${^^",
           "\n      Expression: ${^^\n      At: '/Plant/Pump:a'",
           "\n      - Expression: ${^^\n        At: /Plant/Pump:a\n      - Expression: 1",
           "\n      - At: /Plant\n        Expression: 1\n      - At: Pump:a\n        Expression: ${^^",
       }) {
    Marked marked("Rule Tests: 1\nTests:\n  one:\n    Evaluate: " + evaluate + "\n", "pump.rule-tests.yaml");
    marked.rules.setText("pump.rules.yaml", pumpRules);
    auto const names = proposals(marked);
    EXPECT_THAT(names, testing::IsSupersetOf({"Mode", "Pressure", "Hours"})) << evaluate;
    EXPECT_THAT(names, Not(Contains("Limit"))) << evaluate;
  }
  Marked marked("Rule Tests: 1\nTests:\n  one:\n    Evaluate: {Expression: \"${^^\"}\n", "pump.rule-tests.yaml");
  marked.rules.setText("pump.rules.yaml", pumpRules);
  EXPECT_THAT(proposals(marked), Contains("Limit"));
}

TEST(EditedRules, SaysWhatAnExpressionOnSeveralLinesReads) {
  for (std::string const value : {"${Mode} ==\n          'O^^n' and ${/Plant/Limit} > 1",
                                  ">-\n          ${Mode} == 'O^^n'\n          and ${/Plant/Limit} > 1",
                                  "\"${Mode} == 'O^^n'\n          and ${/Plant/Limit} > 1\""}) {
    Marked const marked(with("${Mode} == 'On'\n        Par", value + "\n        Par"));
    auto const hover = marked.rules.hover(marked.file, marked.cursor);
    ASSERT_TRUE(hover) << value;
    EXPECT_EQ(hover->markdown, "This expression reads:\n\n- `/Plant/Pump/Mode`\n- `/Plant/Limit`") << value;
  }
  Marked const key(
      with("Available: ${Mode} == 'On'", "Avail^^able:\n          ${Mode} == 'On'\n          or ${/Plant/Limit} > 1"));
  auto const hover = key.rules.hover(key.file, key.cursor);
  ASSERT_TRUE(hover);
  EXPECT_THAT(hover->markdown, HasSubstr("Reads:\n\n- `/Plant/Pump/Mode`\n- `/Plant/Limit`"));
}

TEST(EditedRules, RefusesNamesThatAreTakenOrCannotBeWritten) {
  Marked const marked(with("      Mode:\n", "      Mo^^de:\n"));
  auto const refusal = [&](std::string const& name) {
    return marked.rules.rename(marked.file, marked.cursor, name).refusal;
  };
  EXPECT_EQ(refusal("Pressure"), "'Pressure' is taken: /Plant/Pump has a parameter of that name");
  EXPECT_EQ(refusal("Hours"), "'Hours' is taken: /Plant/Pump has a parameter of that name");
  EXPECT_EQ(refusal(""), "the name is empty");
  EXPECT_EQ(refusal("a/b"), "the character '/' cannot be written at every place of the name");
  EXPECT_EQ(refusal(" a"), "a name cannot begin or end with a blank");
}

TEST(EditedRules, RefusesToRenameWhileTheRulesHaveErrors) {
  Marked const marked(with("      Mode:\n", "      Mo^^de:\n        Requird: yes\n"));
  EXPECT_THAT(marked.rules.rename(marked.file, marked.cursor, "State").refusal,
              HasSubstr("the rules have errors; correct them first"));
}

TEST(EditedRules, ReadsWhatItCanOfAFileThatIsNotYaml) {
  Marked const marked(with("      Pressure:\n        Available: ${Mode}",
                           "      Broken: [\n      Pressure:\n        Available: ${Mo^^de}"));
  EXPECT_THAT(shown(marked.rules, marked.rules.definition(marked.file, marked.cursor)), ElementsAre("23: Mode"));
}

TEST(EditedRules, ColoursTheTokensOfAnExpressionInEveryStyle) {
  for (std::string const value : {"${Mode} == 'On'", "\"${Mode} == 'On'\"", "'${Mode} == ''On'''",
                                  ">-\n          ${Mode} ==\n          'On'", "|-\n          ${Mode} == 'On'"}) {
    EditedRules rules;
    rules.setText("pump.rules.yaml", with("${Mode} == 'On'\n        Par", value + "\n        Par"));
    std::vector<std::string> texts;
    for (auto const& token : rules.tokens("pump.rules.yaml", 27, 30)) {
      texts.emplace_back(rules.line("pump.rules.yaml", token.position.line).substr(token.position.byte, token.bytes));
    }
    EXPECT_THAT(texts, ElementsAre("${Mode}", "==", testing::AnyOf("'On'", "''On''"))) << value;
  }
}

TEST(EditedRules, ListsTheItemsOfAFileAsATree) {
  EditedRules rules;
  rules.setText("pump.rules.yaml", pumpRules);
  std::string text;
  for (auto const& section : rules.symbols("pump.rules.yaml")) {
    text += section.name + '\n';
    for (auto const& item : section.children) {
      text += "  " + item.name + '\n';
      for (auto const& entry : item.children) text += "    " + entry.name + '\n';
    }
  }
  EXPECT_EQ(
      text,
      "Quantity Types\n  Pressure\nChecks\n  pumps run\n  high\nValues\n  most\nTemplates\n  wear\n    Hours\nObjects\n"
      "  /Plant\n    Limit\n    Pump\n  /Plant/Pump\n    Mode\n    Pressure\n");
}

TEST(EditedRules, FindsItemsByAPartOfTheirNames) {
  EditedRules rules;
  rules.setText("pump.rules.yaml", pumpRules);
  std::vector<std::string> names;
  for (auto const& one : rules.findSymbols("PRESS")) names.push_back(one.container + ':' + one.name);
  EXPECT_THAT(names, ElementsAre(":Pressure", "/Plant/Pump:Pressure"));
}

TEST(EditedRules, ChecksTheWholeRuleBaseWithUnsavedText) {
  EditedRules rules;
  rules.setText("pump.rules.yaml", pumpRules);
  auto const found = rules.snapshot().check();
  auto const isUnknown = [](auto const& one) { return one.code == "unknown-parameter"; };
  EXPECT_EQ(std::count_if(found.at("pump.rules.yaml").begin(), found.at("pump.rules.yaml").end(), isUnknown), 0);
  rules.change("pump.rules.yaml", {{16, 6}, {16, 11}}, "Bound");
  auto const now = rules.snapshot().check();
  EXPECT_EQ(std::count_if(now.at("pump.rules.yaml").begin(), now.at("pump.rules.yaml").end(), isUnknown), 1);
}

TEST(EditedRules, ChecksOnlyWhatChangedInALargeFile) {
  EditedRules rules;
  rules.setText("plant.rules.yaml", largeRules(400));
  auto last = rules.snapshot().check();
  ASSERT_THAT(last.at("plant.rules.yaml"),
              Not(Contains(testing::Field(&workbench::EditorDiagnostic::severity, rules::Severity::Error))));
  rules.accept();
  auto const lineOf = [&](std::string const& text) {
    std::string const& all = rules.text("plant.rules.yaml");
    return static_cast<std::size_t>(
        std::count(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(all.find(text)), '\n'));
  };
  std::size_t const line = lineOf("  /Plant/Part200:") + 18;
  ASSERT_EQ(rules.line("plant.rules.yaml", line), "        Available: ${Mode 0} == 'On'");
  rules.change("plant.rules.yaml", {{line, 19}, {line, 19}}, "exist(${Mode 1}) and ");
  auto const found = rules.checkChanges(last).at("plant.rules.yaml");
  ASSERT_THAT(found, SizeIs(1));
  EXPECT_EQ(found[0].message, "unknown function 'exist'; did you mean 'exists'?");
  EXPECT_EQ(found[0].range, (EditorRange{{line, 19}, {line, 24}}));
  EXPECT_EQ(rules.snapshot().check().at("plant.rules.yaml").size(), 1U);
}

TEST(EditedRules, DiagnosticsOfUnchangedPartsMoveWithTheirLines) {
  EditedRules rules;
  rules.setText("plant.rules.yaml", largeRules(400, "${Mode 0} == 'Broken'"));
  auto const last = rules.snapshot().check();
  ASSERT_THAT(last.at("plant.rules.yaml"), SizeIs(testing::Ge(400U)));
  rules.accept();
  rules.change("plant.rules.yaml", {{0, 0}, {0, 0}}, "# A comment.\n\n");
  auto const moved = rules.checkChanges(last).at("plant.rules.yaml");
  auto const fresh = rules.snapshot().check().at("plant.rules.yaml");
  // Those in the part with the comment wait for the whole check.
  for (auto const& one : moved) {
    EXPECT_THAT(fresh, Contains(testing::AllOf(testing::Field(&workbench::EditorDiagnostic::range, one.range),
                                               testing::Field(&workbench::EditorDiagnostic::message, one.message))));
  }
  EXPECT_THAT(moved, SizeIs(testing::Ge(300U)));
}

/// Rules of many units with all that rules have, in two files.
std::vector<std::pair<std::string, std::string>> manyUnits(std::size_t count) {
  std::string base =
      "Rule Database: 1\nPertinent Roots: [Plant]\nQuantity Types:\n  Length: {Units: [m, mm]}\nChecks:\n"
      "  warm: ${/Plant/Season} == 'Summer'\nValues:\n  most: 5\nTemplates:\n  wear:\n    Parameters:\n"
      "      Hours: {Parameter Type: Real, Lower Bound: 0}\nObjects:\n  /Plant:\n    Parameters:\n"
      "      Season: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Summer, Winter]}\n"
      "      Limit: {Parameter Type: Real, Quantity Type: Length}\n    Children:\n";
  std::string units = "Rule Database: 1\nObjects:\n";
  for (std::size_t i = 0; i < count; ++i) {
    std::string const name = "Unit" + std::to_string(i);
    base += "      " + name + ": {Coupled: yes}\n";
    units +=
        "  /Plant/" + name + ":\n    Use: [wear]\n    Parameters:\n" +
        "      Mode:\n        Required: yes\n        Parameter Type: String\n"
        "        Ordered Allowed String List: [Off, On]\n        Default Value: Off\n"
        "      Level:\n        Available: ${Mode} == 'On' and check('warm')\n        Parameter Type: Real\n"
        "        Quantity Type: Length\n        Lower Bound: 1 [m]\n        Upper Bound: 2 [m]\n"
        "      Share:\n        Available: any({../Unit" +
        std::to_string(count - 1 - i) +
        ":*}, ${Level} > 1)\n        Parameter Type: Integer\n        Upper Bound: = ${/Plant/Limit} * value('most')\n";
  }
  return {{"10.rules.yaml", std::move(base)}, {"20.rules.yaml", std::move(units)}};
}

TEST(EditedRules, FindsAtOnceWhatACheckOfEverythingFindsInTheEditedLine) {
  // A change of one line, and the code of what is then wrong with it; "" for nothing.
  struct Slip {
    std::string_view written, instead, code;
  };
  constexpr Slip slips[] = {
      {"${Mode} == 'On'", "${Mode} == 'Onn'", "impossible-value"},
      {"${Mode} == 'On'", "${Mod} == 'On'", "unknown-parameter"},
      {"${Mode} == 'On'", "${Hours} > 5", ""},
      {"${Mode} == 'On'", "${/Plant/Unit7:*/Mode} == 'On'", "several-parameters"},
      {"${Mode} == 'On' and check('warm')", "any({/Plant/Unit7:*}, ${Mode} == 'Un')", "impossible-value"},
      {"${Mode} == 'On' and check('warm')", "any({/Plant/Unti7:*}, ${Mode} == 'On')", "unknown-object-path"},
      {"check('warm')", "check('wram')", "unknown-named-rule"},
      {"check('warm')", "not check('warm') and check('warm')", "never-holds"},
      {"check('warm')", "${/Plant/Season} == 'Autumn'", "impossible-value"},
      {"Lower Bound: 1 [m]", "Lower Bound: 1 [cm]", "units-not-listed"},
      {"Upper Bound: 2 [m]", "Upper Bound: 500 [mm]", "bounds-reversed"},
      {"Quantity Type: Length", "Quantity Type: Lenght", "unknown-quantity-type"},
      {"${/Plant/Limit} * value('most')", "${/Plant/Limits}", "unknown-parameter"},
      {"${/Plant/Limit} * value('most')", "value('least')", "unknown-named-rule"},
      {"Default Value: Off", "Default Value: Of", "default-not-allowed"},
      {"[Off, On]", "[Off, On, Off]", "duplicate-value"},
      {"Parameter Type: Integer", "Parameter Type: Int", "unknown-parameter-type"},
      {"Required: yes", "Required: maybe", "not-yes-or-no"},
      {"Use: [wear]", "Use: [waer]", "unknown-template"},
      {"      Share:", "      Mode:", "duplicate-key"},
      {"{Coupled: yes}", "{Coupled: yes, Default Names: [a, a]}", "duplicate-value"},
  };
  EditedRules rules;
  for (auto& [file, text] : manyUnits(120)) rules.setText(file, text);
  auto const last = rules.snapshot().check();
  rules.accept();
  auto const linesOf = [&](workbench::EditorDiagnostics const& all, std::string const& file, std::size_t line) {
    std::vector<std::string> found;
    for (auto const& one : all.at(file)) {
      if (one.range.begin.line != line || one.code == "reads-later-decision") continue;
      found.push_back(std::to_string(one.range.begin.byte) + ' ' + one.code + ' ' + one.message);
    }
    return found;
  };
  for (Slip const& slip : slips) {
    std::string const file = slip.written.starts_with("{Coupled") ? "10.rules.yaml" : "20.rules.yaml";
    std::string const before = rules.text(file);
    std::size_t at = 0;
    for (int i = 0; i < 60; ++i) at = before.find(slip.written, at + 1);
    ASSERT_NE(at, std::string::npos) << slip.written;
    std::string now = before;
    now.replace(at, slip.written.size(), slip.instead);
    auto const line =
        static_cast<std::size_t>(std::count(before.begin(), before.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    rules.setText(file, now);
    auto const quick = rules.checkChanges(last);
    auto const whole = rules.snapshot().check();
    auto const found = linesOf(whole, file, line);
    EXPECT_EQ(linesOf(quick, file, line), found) << slip.instead;
    EXPECT_THAT(found, slip.code.empty() ? testing::Matcher<std::vector<std::string>>(IsEmpty())
                                         : Contains(HasSubstr(" " + std::string(slip.code) + " ")))
        << slip.instead;
    // Nothing is said that a check of everything does not say.
    for (auto const& [name, diagnostics] : quick) {
      for (auto const& one : diagnostics) {
        EXPECT_THAT(whole.at(name),
                    Contains(testing::AllOf(testing::Field(&workbench::EditorDiagnostic::range, one.range),
                                            testing::Field(&workbench::EditorDiagnostic::code, one.code))))
            << slip.instead << ": " << one.message;
      }
    }
    rules.setText(file, before);
  }
}

TEST(EditedRules, ALargeFileHasTheSameNamesAsItsParts) {
  EditedRules large;
  large.setText("plant.rules.yaml", largeRules(400));
  EditedRules marked;  // an anchor keeps the file in one part
  marked.setText("plant.rules.yaml", largeRules(400) + "Values:\n  none: &none 1\n");
  EXPECT_EQ(large.findSymbols("", 100'000).size() + 1, marked.findSymbols("", 100'000).size());
  auto const line = [&](EditedRules const& rules) { return rules.references("plant.rules.yaml", {7, 7}, true); };
  EXPECT_EQ(shown(large, line(large)), shown(marked, line(marked)));
}

TEST(EditedRules, AnswersEmptyForAFileThatItDoesNotKnow) {
  EditedRules const rules;
  EXPECT_THAT(rules.complete("none", {}), IsEmpty());
  EXPECT_FALSE(rules.hover("none", {}));
  EXPECT_THAT(rules.definition("none", {}), IsEmpty());
  EXPECT_THAT(rules.symbols("none"), IsEmpty());
  EXPECT_THAT(rules.tokens("none", 0, 10), IsEmpty());
  EXPECT_NE(rules.rename("none", {}, "x").refusal, "");
}

TEST(EditedRules, KeepsTheOrderOfTheNamesInAFolder) {
  EditedRules rules;
  for (char const* const file :
       {"rules/20.rules.yaml", "rules/10.rules.yaml", "base/30.rules.yaml", "rules/15.rules.yaml"}) {
    rules.setText(file, "");
  }
  EXPECT_THAT(rules.files(),
              ElementsAre("rules/10.rules.yaml", "rules/15.rules.yaml", "rules/20.rules.yaml", "base/30.rules.yaml"));
}

}  // namespace
