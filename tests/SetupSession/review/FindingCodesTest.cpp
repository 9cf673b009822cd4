// The codes of findings: their names are fit for programs, and the page on findings lists them all, each with an
// example.

#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <tarn/session/Finding.h>

#include "Places.h"
#include "support/FileText.h"

namespace tarn::session {
namespace {

std::string const page = test::fileText(TARN_SOURCE_DIR "/docs/findings.md");

TEST(FindingCodes, AreWordsInLowerCaseWithHyphensEachOnce) {
  std::regex const form("[a-z]+(-[a-z]+)*");
  std::set<std::string_view> names;
  for (FindingCodeInfo const& code : findingCodes()) {
    EXPECT_TRUE(std::regex_match(std::string(code.name), form)) << code.name;
    EXPECT_TRUE(names.insert(code.name).second) << code.name << " is there twice";
  }
}

TEST(FindingCodes, EachHasOneSentenceAsItsMeaning) {
  for (FindingCodeInfo const& code : findingCodes()) {
    EXPECT_TRUE(code.meaning.ends_with('.')) << code.name;
    EXPECT_EQ(code.meaning.find('.'), code.meaning.size() - 1) << code.name;
    EXPECT_EQ(code.meaning.find('|'), std::string_view::npos) << code.name << " does not fit into a table";
  }
}

TEST(FindingCodes, EachDescribesItself) {
  for (FindingCodeInfo const& code : findingCodes()) EXPECT_EQ(&describe(code.code), &code) << code.name;
}

TEST(FindingCodes, ComeInTheOrderOfTheKinds) {
  FindingKind last = FindingKind::Model;
  for (FindingCodeInfo const& code : findingCodes()) {
    EXPECT_LE(last, code.kind) << code.name;
    last = code.kind;
  }
}

TEST(FindingCodes, ThePageListsThemInTheirOrder) {
  std::string listed;
  for (FindingCodeInfo const& code : findingCodes()) {
    listed += "| `" + std::string(code.name) + "` | " + std::string(severityName(code.severity)) + " | " +
              std::string(code.meaning) + " |\n";
  }
  auto const begin = page.find("\n## Codes\n");
  ASSERT_NE(begin, std::string::npos);
  std::istringstream section(page.substr(begin, page.find("\n## ", begin + 1) - begin));
  std::string shown;
  for (std::string line; std::getline(section, line);) {
    if (line.starts_with("| `")) shown += line + "\n";
  }
  EXPECT_EQ(shown, listed);
}

// Another test runs the examples and compares what comes out.
TEST(FindingCodes, ThePageHasAnExampleOfEach) {
  std::set<std::string> shown;
  std::istringstream lines(page);
  bool inExample = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("```")) {
      inExample = line == "```text reviewed";
    } else if (inExample) {
      shown.insert(line.substr(0, line.find(": ")));
    }
  }
  for (FindingCodeInfo const& code : findingCodes()) {
    EXPECT_TRUE(shown.contains(std::string(code.name))) << code.name << " has no example in docs/findings.md";
  }
}

}  // namespace
}  // namespace tarn::session
