#include <gtest/gtest.h>

#include <sstream>

#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleError.h>

namespace tarn::rules {
namespace {

Diagnostic at(std::size_t line, std::size_t column, std::string message, std::string sourceLine, std::size_t length) {
  Diagnostic one;
  one.source = "flow.rules.yaml";
  one.line = line;
  one.column = column;
  one.message = std::move(message);
  one.sourceLine = std::move(sourceLine);
  one.endLine = line;
  one.endColumn = column + length;
  return one;
}

TEST(DiagnosticFormat, ShowsTheLineAndMarksThePlace) {
  EXPECT_EQ(format(at(34, 20, "unknown function 'exist'; did you mean 'exists'?",
                      "        Available: exist(${Roughness})", 5)),
            "flow.rules.yaml:34:20: error: unknown function 'exist'; did you mean 'exists'?\n"
            "   34 |         Available: exist(${Roughness})\n"
            "      |                    ^~~~~\n");
}

TEST(DiagnosticFormat, AWarningSaysSo) {
  auto one = at(1, 1, "doubtful", "a", 1);
  one.severity = Severity::Warning;
  EXPECT_EQ(format(one), "flow.rules.yaml:1:1: warning: doubtful\n    1 | a\n      | ^\n");
}

TEST(DiagnosticFormat, WhatIsAboutAFileAsAWholeHasNoPlace) {
  EXPECT_EQ(format(at(0, 0, "cannot read the rule file: it is gone", "", 1)),
            "flow.rules.yaml: error: cannot read the rule file: it is gone\n");
}

TEST(DiagnosticFormat, NotesFollowInTheSameForm) {
  auto one = at(9, 3, "'a' is given twice", "  a: true", 1);
  Diagnostic::Note note;
  note.source = "first.rules.yaml";
  note.line = 123456;
  note.column = 5;
  note.message = "the first one is here";
  note.sourceLine = "    a: true";
  one.notes = {note};
  EXPECT_EQ(format(one),
            "flow.rules.yaml:9:3: error: 'a' is given twice\n"
            "    9 |   a: true\n"
            "      |   ^\n"
            "first.rules.yaml:123456:5: note: the first one is here\n"
            "123456 |     a: true\n"
            "       |     ^\n");
}

TEST(DiagnosticFormat, ColumnsCountCharacters) {
  EXPECT_EQ(format(at(1, 6, "m", "Größe: x", 1)), "flow.rules.yaml:1:6: error: m\n    1 | Größe: x\n      |      ^\n");
}

TEST(DiagnosticFormat, AMarkEndsWithItsLine) {
  EXPECT_EQ(format(at(1, 2, "m", "abc", 100)), "flow.rules.yaml:1:2: error: m\n    1 | abc\n      |  ^~\n");
  EXPECT_EQ(format(at(1, 4, "m", "abc", 1)), "flow.rules.yaml:1:4: error: m\n    1 | abc\n      |    ^\n");
  EXPECT_EQ(format(at(1, 1, "m", "", 0)), "flow.rules.yaml:1:1: error: m\n    1 | \n      | ^\n");
}

TEST(DiagnosticFormat, ControlCharactersAreShownAsBlanks) {
  auto one = at(1, 3, "a\x1B[2J\nb", "\tx\x7Fy", 1);
  one.source = "a\nb";
  EXPECT_EQ(format(one), "a b:1:3: error: a [2J b\n    1 |  x y\n      |   ^\n");
}

TEST(DiagnosticFormat, OfALongLineThePartAroundThePlaceIsShown) {
  std::string const line(300, 'a');
  EXPECT_EQ(format(at(1, 10, "m", line, 3)),
            "flow.rules.yaml:1:10: error: m\n    1 | " + line.substr(0, 120) + "...\n      |          ^~~\n");
  EXPECT_EQ(format(at(1, 101, "m", line, 3)), "flow.rules.yaml:1:101: error: m\n    1 | ..." + line.substr(0, 120) +
                                                  "...\n      | " + std::string(63, ' ') + "^~~\n");
  EXPECT_EQ(format(at(1, 290, "m", line, 30)), "flow.rules.yaml:1:290: error: m\n    1 | ..." + line.substr(0, 71) +
                                                   "\n      | " + std::string(63, ' ') + "^" + std::string(10, '~') +
                                                   "\n");
}

TEST(DiagnosticFormat, OfALineThatIsKeptInPartColumnsGoOnCountingFromItsBeginning) {
  auto one = at(1, 1001, "m", std::string(100, 'a') + "fault" + std::string(100, 'b'), 5);
  one.sourceColumn = 901;
  EXPECT_EQ(format(one), "flow.rules.yaml:1:1001: error: m\n    1 | ..." + std::string(60, 'a') + "fault" +
                             std::string(55, 'b') + "...\n      | " + std::string(63, ' ') + "^~~~~\n");
}

TEST(RuleError, HoldsItsDiagnosticsAndReadsAsThey) {
  RuleError const error({at(1, 1, "one", "a", 1), at(2, 1, "two", "b", 1)});
  std::ostringstream stream;
  error.write(stream);

  ASSERT_EQ(error.diagnostics().size(), 2U);
  EXPECT_EQ(error.diagnostics()[1].message, "two");
  EXPECT_EQ(error.getMessage(), format(error.diagnostics()));
  EXPECT_EQ(stream.str() + "\n", format(error.diagnostics()));
}

}  // namespace
}  // namespace tarn::rules
