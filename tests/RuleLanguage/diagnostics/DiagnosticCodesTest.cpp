// The codes of diagnostics: their names are fit for programs, and the rule reference lists them all.

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <tarn/rules/Diagnostic.h>

#include "Places.h"
#include "support/FileText.h"

namespace tarn::rules {
namespace {

using tarn::test::fileText;

TEST(DiagnosticCodes, AreWordsInLowerCaseWithHyphensEachOnce) {
  std::regex const form("[a-z]+(-[a-z]+)*");
  std::set<std::string_view> names;
  for (auto const& code : diagnosticCodes()) {
    EXPECT_TRUE(std::regex_match(std::string(code.name), form)) << code.name;
    EXPECT_TRUE(names.insert(code.name).second) << code.name << " is there twice";
  }
}

TEST(DiagnosticCodes, EachHasOneSentenceAsItsMeaning) {
  for (auto const& code : diagnosticCodes()) {
    EXPECT_TRUE(code.meaning.ends_with('.')) << code.name;
    EXPECT_EQ(code.meaning.find('.'), code.meaning.size() - 1) << code.name;
    EXPECT_EQ(code.meaning.find('|'), std::string_view::npos) << code.name << " does not fit into a table";
  }
}

TEST(DiagnosticCodes, TheRuleReferenceListsThemInTheirOrder) {
  std::string listed;
  for (auto const& code : diagnosticCodes()) {
    listed += "| `" + std::string(code.name) + "` | " + std::string(severityName(code.severity)) +
              (code.isOffByDefault ? ", off by default" : "") + " | " + std::string(code.meaning) + " |\n";
  }
  std::string const reference = fileText(TARN_SOURCE_DIR "/docs/rule-reference.md");
  auto const begin = reference.find("\n### Codes\n");
  ASSERT_NE(begin, std::string::npos);
  std::istringstream section(reference.substr(begin, reference.find("\n### ", begin + 1) - begin));
  std::string shown;
  for (std::string line; std::getline(section, line);) {
    if (line.starts_with("| `")) shown += line + "\n";
  }
  EXPECT_EQ(shown, listed);
}

}  // namespace
}  // namespace tarn::rules
