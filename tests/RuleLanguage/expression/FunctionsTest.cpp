// The table of functions: its statements about each function are true, and all lists of functions agree with it.

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <tarn/rules/RuleFunction.h>

#include "Places.h"
#include "RuleLanguage/ExpressionTable.h"
#include "support/FileText.h"

namespace tarn::rules {
namespace {

using tarn::test::fileText;

/// The tables of functions as the rule reference shows them, group by group.
std::string referenceTables() {
  std::string text;
  std::string_view group;
  for (auto const& function : ruleFunctions()) {
    if (function.group != group) text += std::string(function.group) + "\n";
    group = function.group;
    std::string signature(function.signature);
    for (auto at = signature.find("), "); at != std::string::npos; at = signature.find("), ", at + 1)) {
      signature.replace(at, 3, ")`, `");
    }
    text += "| `" + signature + "` | " + std::string(function.help) + " |\n";
  }
  return text;
}

TEST(RuleFunction, TheRuleReferenceShowsEveryFunctionAsTheTableDescribesIt) {
  std::string const reference = fileText(TARN_SOURCE_DIR "/docs/rule-reference.md");
  auto const begin = reference.find("\n### Functions\n");
  ASSERT_NE(begin, std::string::npos);
  std::istringstream section(reference.substr(begin + 1, reference.find("\n## ", begin) - begin));

  std::set<std::string_view> groups;
  for (auto const& function : ruleFunctions()) groups.insert(function.group);
  std::string shown;
  for (std::string line; std::getline(section, line);) {
    auto const heading = line.substr(0, line.find_first_of(".:"));
    if (groups.contains(heading)) shown += heading + "\n";
    if (line.starts_with("| `")) shown += line + "\n";
  }
  EXPECT_EQ(shown, referenceTables());
}

TEST(RuleFunction, TheFuzzerIsGivenEveryFunction) {
  std::istringstream dictionary(fileText(TARN_SOURCE_DIR "/fuzz/dictionaries/ExpressionFuzz"));
  std::set<std::string> given;
  for (std::string line; std::getline(dictionary, line);) {
    auto const bracket = line.find('(');
    if (bracket != std::string::npos && bracket > 1) given.insert(line.substr(1, bracket - 1));
  }
  std::set<std::string> known;
  for (auto const& function : ruleFunctions()) known.emplace(function.name);
  EXPECT_EQ(given, known);
}

TEST(RuleFunction, ACallWithFewerOrMoreArgumentsThanTheTableSaysIsAnError) {
  auto const calledWith = [](RuleFunction const& function, std::size_t count) {
    std::string call = std::string(function.name) + "(";
    for (std::size_t i = 0; i < count; ++i) call += i == 0 ? "1" : ", 1";
    auto const faults = test::conditionFault(call + ")");
    return faults.find(std::string(function.name) + " takes ") != std::string::npos &&
           faults.find(", not " + std::to_string(count)) != std::string::npos;
  };
  for (auto const& function : ruleFunctions()) {
    if (function.least > 0) {
      EXPECT_TRUE(calledWith(function, function.least - 1)) << function.name;
    }
    EXPECT_FALSE(calledWith(function, function.least)) << function.name;
    if (function.most == RuleFunction::unlimited) {
      EXPECT_FALSE(calledWith(function, 1001)) << function.name;
    } else {
      EXPECT_FALSE(calledWith(function, function.most)) << function.name;
      EXPECT_TRUE(calledWith(function, function.most + 1)) << function.name;
    }
  }
}

TEST(RuleFunction, ASignatureShowsAsManyArgumentsAsACallTakes) {
  for (auto const& function : ruleFunctions()) {
    std::istringstream forms(std::string(function.signature));
    std::size_t least = RuleFunction::unlimited;
    std::size_t most = 0;
    for (std::string form; std::getline(forms, form, ')');) {
      auto const name = form.find(std::string(function.name) + "(");
      ASSERT_NE(name, std::string::npos) << function.signature;
      auto const inside = form.substr(name + function.name.size() + 1);
      auto const commas = static_cast<std::size_t>(std::count(inside.begin(), inside.end(), ','));
      bool const open = inside.ends_with(", ...");
      least = std::min(least, inside.empty() ? 0 : open ? 1 : commas + 1);
      most = std::max(most, inside.empty() ? 0 : open ? RuleFunction::unlimited : commas + 1);
    }
    EXPECT_EQ(least, function.least) << function.signature;
    EXPECT_EQ(most, function.most) << function.signature;
  }
}

TEST(RuleFunction, TheKindOfTheResultIsNamedInWords) {
  auto const resultOf = [](std::string_view name) {
    auto const& all = ruleFunctions();
    return std::find_if(all.begin(), all.end(), [&](auto const& function) { return function.name == name; })->result;
  };
  EXPECT_EQ(resultOf("exists"), "a truth value");
  EXPECT_EQ(resultOf("count"), "a number");
  EXPECT_EQ(resultOf("filter"), "a set of objects");
  EXPECT_EQ(resultOf("union"), "a list");
  EXPECT_EQ(resultOf("if"), "a value");
}

}  // namespace
}  // namespace tarn::rules
