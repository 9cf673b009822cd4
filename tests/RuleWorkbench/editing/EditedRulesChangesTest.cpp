// Findings that are shown at once after an edit, compared with those of a check of everything.

#include <tarn/workbench/EditedRules.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace tarn;
using workbench::EditedRules;
using workbench::EditorDiagnostic;
using workbench::EditorDiagnostics;

constexpr std::string_view unknownAdvice = "; what to move is not known before all rules have been checked";

std::vector<std::string> linesOf(std::string const& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t const end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

std::string joined(std::vector<std::string> const& lines) {
  std::string text;
  for (std::string const& line : lines) text += line + '\n';
  return text;
}

/// A diagnostic as a line of text.
std::string shown(std::string const& file, EditorDiagnostic const& one) {
  return file + ':' + std::to_string(one.range.begin.line + 1) + ':' + std::to_string(one.range.begin.byte) + ' ' +
         one.code + ' ' + one.message;
}

/// An error that keeps rules from being loaded. Lint finds nothing else while there are some.
bool isError(EditorDiagnostic const& one) {
  auto const codes = rules::diagnosticCodes();
  return std::any_of(codes.begin(), codes.end(),
                     [&](auto const& code) { return code.name == one.code && !code.isOfLint; });
}

bool hasErrors(EditorDiagnostics const& all) {
  return std::any_of(all.begin(), all.end(), [](auto const& file) {
    return std::any_of(file.second.begin(), file.second.end(), [](auto const& one) { return isError(one); });
  });
}

/// A plant with units that have everything that rules have, and many slips.
class RandomRules {
 public:
  explicit RandomRules(unsigned seed) : random_(seed) {}

  std::vector<std::pair<std::string, std::string>> make() {
    std::size_t const units = 12 + below(20);
    std::string base = "Rule Database: 1\n";
    if (below(4) != 0) base += "Pertinent Roots: [Plant]\n";
    base +=
        "Quantity Types:\n  Length: {Units: [m, mm]}\n  Pressure: {Units: [Pa, bar]}\n  Time: {Units: [s]}\nChecks:\n";
    for (int i = 0; i < 5; ++i) base += "  check " + std::to_string(i) + ": ${/Plant/Season} == 'Summer'\n";
    base += "  chained: check('check 0') or check('check 1')\nValues:\n";
    for (int i = 0; i < 3; ++i) base += "  value " + std::to_string(i) + ": 5\n";
    base += "Lists:\n  list 0: [Off, On]\n  list 1: [Off, On]\nTemplates:\n";
    for (int i = 0; i < 3; ++i) {
      base += "  wear " + std::to_string(i) + ":\n    Parameters:\n      Hours " + std::to_string(i) +
              ":\n        Available: ${Mode " + std::to_string(below(6)) + "} == 'On'\n        Parameter Type: Real\n";
    }
    base +=
        "Objects:\n  /Plant:\n    Parameters:\n      Season: {Parameter Type: String, Ordered Allowed String List: "
        "[Summer, Winter]}\n    Children:\n";
    std::string first = "Rule Database: 1\nObjects:\n";
    std::string second = first;
    for (std::size_t i = 0; i < units; ++i) {
      base += "      Unit" + std::to_string(i) + ": {Coupled: yes}\n";
      // One unit is so large that its entry has several parts.
      std::string const unit = makeUnit(i, units, i == 3 ? 130 : 6 + below(6));
      (below(2) == 0 ? first : second) += unit;
    }
    return {{"10.rules.yaml", base}, {"20.rules.yaml", first}, {"30.rules.yaml", second}};
  }

  /// The texts of the files after an edit of one or two lines, and which line changed.
  struct Edit {
    std::size_t file = 0;
    std::size_t line = 0;
    std::string text;
  };
  Edit edit(std::vector<std::pair<std::string, std::string>> const& files) {
    Edit edit;
    edit.file = below(files.size());
    auto lines = linesOf(files[edit.file].second);
    auto const from = linesOf(files[below(files.size())].second);
    do {
      edit.line = 1 + below(lines.size() - 1);
    } while (lines[edit.line].find(':') == std::string::npos);
    std::string& line = lines[edit.line];
    switch (below(4)) {
      case 0:  // an attribute goes, or a whole entry that is one line
        if (line.back() == ':') break;
        lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(edit.line));
        break;
      case 1:  // the value becomes what another line has
        if (auto const other = alike(line, from)) line = *other;
        break;
      case 2:  // a part of an expression changes
        replaceOne(line);
        break;
      default:  // an attribute comes from another entry
        if (line.starts_with("        ")) {
          std::string const added = attributes[below(attributes.size())];
          lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(edit.line), "        " + added);
        }
        break;
    }
    edit.text = joined(lines);
    return edit;
  }

 private:
  static constexpr std::array<char const*, 7> attributes = {"Accepted: {reads-later-decision: It is meant.}",
                                                            "Accepted: {never-live: It is meant.}",
                                                            "Accepted: {impossible-value: It is meant.}",
                                                            "Context: 'On'",
                                                            "Context Rule: yes",
                                                            "Available: ${Mode 4} == 'On'",
                                                            "Quantity Type: Pressure"};

  std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_); }

  std::optional<std::string> alike(std::string const& line, std::vector<std::string> const& lines) {
    std::string const key = line.substr(0, line.find(':') + 1);
    std::vector<std::string> found;
    for (std::string const& other : lines) {
      if (other != line && other.starts_with(key)) found.push_back(other);
    }
    if (found.empty()) return std::nullopt;
    return found[below(found.size())];
  }

  void replaceOne(std::string& line) {
    auto const digit = line.find_last_of("012345");
    if (line.find("${") == std::string::npos || digit == std::string::npos) return;
    line[digit] = static_cast<char>('0' + below(6));
  }

  std::string makeUnit(std::size_t number, std::size_t units, std::size_t params) {
    std::string text = "  /Plant/Unit" + std::to_string(number) + ":\n";
    if (below(6) == 0) text += "    Accepted: {reads-later-decision: The order is given.}\n";
    if (below(2) == 0) text += "    Use: [wear " + std::to_string(below(3)) + "]\n";
    text += "    Parameters:\n";
    for (std::size_t i = 0; i < params; ++i) {
      text += "      Mode " + std::to_string(i) + ":\n";
      std::string const other = "${Mode " + std::to_string(below(params)) + "}";
      switch (below(7)) {
        case 0:
          text += "        Available: " + other + " == 'On'\n";
          break;
        case 1:
          text += "        Available: check('check " + std::to_string(below(5)) + "') and " + other + " == 'Off'\n";
          break;
        case 2:
          text += "        Available: any({../Unit" + std::to_string(below(units)) + ":*}, ${Mode 1} == 'On')\n";
          break;
        case 3:
          text += "        Available: " + other + " == 'Broken'\n";
          break;
        default:
          break;
      }
      if (below(6) == 0) text += "        Context Rule: yes\n";
      if (below(6) == 0) text += below(3) == 0 ? "        Context: Broken\n" : "        Context: 'On'\n";
      if (below(4) == 0) {
        text += std::string("        Accepted: {") + (below(2) == 0 ? "impossible-value" : "reads-later-decision") +
                ": It is meant.}\n";
      }
      if (below(8) == 0) {
        text += "        Parameter Type: Real\n        Quantity Type: Length\n        Upper Bound: = value('value " +
                std::to_string(below(3)) + "')\n";
      } else {
        text += "        Parameter Type: String\n        Ordered Allowed String List: [Off, On]\n";
      }
    }
    return text;
  }

  std::mt19937 random_;
};

/// The lines of the entry in column 2 around a line: an object, a template, a named rule.
std::pair<std::size_t, std::size_t> entryAround(std::vector<std::string> const& lines, std::size_t line) {
  auto const isBorder = [&](std::size_t at) { return lines[at].size() > 2 && lines[at][2] != ' '; };
  std::size_t begin = std::min(line, lines.size() - 1);
  while (begin > 0 && !isBorder(begin)) --begin;
  std::size_t end = line + 1;
  while (end < lines.size() && !isBorder(end)) ++end;
  return {begin, end};
}

constexpr std::array<std::string_view, 2> ofObjects = {"reads-later-decision", "never-live"};

/// The findings that must be the same: of roots everywhere, the others in the entry with the edited line.
std::multiset<std::string> compared(EditorDiagnostics const& all, std::string const& file,
                                    std::pair<std::size_t, std::size_t> entry, std::set<std::string> const& unknown) {
  std::multiset<std::string> result;
  for (auto const& [name, diagnostics] : all) {
    for (auto const& one : diagnostics) {
      bool const isOfAll = one.code == "missing-roots";
      std::size_t const line = one.range.begin.line;
      bool const isInside = name == file && line >= entry.first && line < entry.second;
      bool const isOfObject = std::find(ofObjects.begin(), ofObjects.end(), one.code) != ofObjects.end() ||
                              one.code == "needless-acceptance";
      if (!isOfAll && !(isInside && isOfObject)) continue;
      std::string text = shown(name, one);
      // Where to move something is not known at once if other objects have to do with it.
      for (std::string const& start : unknown) {
        if (text.starts_with(start)) text = start;
      }
      result.insert(std::move(text));
    }
  }
  return result;
}

/// Whether a warning about the order of children has a number of places.
bool hasJoined(EditorDiagnostics const& all) {
  return std::any_of(all.begin(), all.end(), [](auto const& file) {
    return std::any_of(file.second.begin(), file.second.end(), [](auto const& one) {
      return one.code == "reads-later-decision" && one.message.find("; this affects ") != std::string::npos;
    });
  });
}

TEST(EditedRulesChanges, AtOnceTheEditedObjectHasTheFindingsOfACheckOfEverything) {
  std::size_t compares = 0;
  std::map<std::string, std::size_t> codes;
  for (unsigned seed = 1; seed <= 6; ++seed) {
    RandomRules random(seed);
    auto const files = random.make();
    EditedRules rules;
    for (auto const& [file, text] : files) rules.setText(file, text);
    auto const last = rules.snapshot().check();
    for (auto const& [file, all] : last) {
      for (auto const& one : all) ASSERT_FALSE(isError(one)) << shown(file, one);
    }
    rules.accept();
    for (int i = 0; i < 25; ++i) {
      auto const edit = random.edit(files);
      auto const& [file, before] = files[edit.file];
      rules.setText(file, edit.text);
      auto const quick = rules.checkChanges(last);
      auto const whole = rules.snapshot().check();
      auto const lines = linesOf(edit.text);
      auto const entry = entryAround(lines, edit.line);
      if (!hasErrors(quick) && !hasErrors(whole)) {
        ++compares;
        std::set<std::string> unknown;
        for (auto const& [name, diagnostics] : quick) {
          for (auto const& one : diagnostics) {
            std::string const text = shown(name, one);
            if (text.ends_with(unknownAdvice)) unknown.insert(text.substr(0, text.size() - unknownAdvice.size()));
          }
        }
        auto const expected = compared(whole, file, entry, unknown);
        auto found = compared(quick, file, entry, unknown);
        // Several warnings with one cause are one for the check of everything.
        if (hasJoined(whole)) {
          std::erase_if(found,
                        [&](std::string const& text) { return unknown.contains(text) && !expected.contains(text); });
        }
        std::vector<std::string> missing;
        std::set_difference(expected.begin(), expected.end(), found.begin(), found.end(), std::back_inserter(missing));
        std::vector<std::string> wrong;
        std::set_difference(found.begin(), found.end(), expected.begin(), expected.end(), std::back_inserter(wrong));
        EXPECT_THAT(std::pair(missing, wrong), testing::Pair(testing::IsEmpty(), testing::IsEmpty()))
            << "seed " << seed << ", edit " << i << " of " << file << ":" << edit.line + 1 << ": "
            << (edit.line < lines.size() ? lines[edit.line] : "");
        for (std::string const& text : expected) {
          std::size_t const code = text.find(' ') + 1;
          ++codes[text.substr(code, text.find(' ', code) - code)];
        }
      }
      rules.setText(file, before);
    }
    // Without a change, nothing changes.
    auto const again = rules.checkChanges(last);
    for (auto const& [name, diagnostics] : last) EXPECT_EQ(again.at(name).size(), diagnostics.size()) << name;
  }
  EXPECT_GE(compares, 80U);
  for (char const* const code : {"reads-later-decision", "never-live", "needless-acceptance", "missing-roots"}) {
    EXPECT_GE(codes[code], 10U) << code;
  }
}

/// Rules that are so many that they have several parts: units with a mode and two levels, the second of which reads the
/// mode.
std::string manyUnits(std::size_t units) {
  std::string text =
      "Rule Database: 1\nPertinent Roots: [Plant]\nChecks:\n  on: ${/Plant/Season} == 'Summer'\n"
      "Objects:\n  /Plant:\n    Parameters:\n      Season: {Parameter Type: String}\n    Children:\n";
  for (std::size_t i = 0; i < units; ++i) text += "      Unit" + std::to_string(i) + ": {Coupled: yes}\n";
  for (std::size_t i = 0; i < units; ++i) {
    text += "  /Plant/Unit" + std::to_string(i) +
            ":\n    Parameters:\n      Mode:\n        Parameter Type: String\n        Ordered Allowed String List: "
            "[Off, On]\n"
            "      Level:\n        Available: ${Mode} == 'On'\n        Parameter Type: Real\n"
            "      Limit:\n        Parameter Type: Real\n";
    if (i == 0) text += "        Available: check('on')\n";
  }
  return text;
}

/// The findings at once after `before` was replaced by `now` in the part of unit 100.
std::vector<std::string> foundAtOnce(std::string_view before, std::string_view now,
                                     std::size_t from = std::string::npos) {
  EditedRules rules;
  std::string text = manyUnits(300);
  rules.setText("plant.rules.yaml", text);
  auto const last = rules.snapshot().check();
  EXPECT_EQ(last.at("plant.rules.yaml").size(), 0U);
  rules.accept();
  std::size_t const at = text.find(before, from != std::string::npos ? from : text.find("  /Plant/Unit100:"));
  EXPECT_NE(at, std::string::npos);
  text.replace(at, before.size(), now);
  rules.setText("plant.rules.yaml", text);
  std::vector<std::string> found;
  auto const quick = rules.checkChanges(last);
  for (auto const& one : quick.at("plant.rules.yaml")) found.push_back(one.code + ": " + one.message);
  std::vector<std::string> whole;
  auto const all = rules.snapshot().check();
  for (auto const& one : all.at("plant.rules.yaml")) whole.push_back(one.code + ": " + one.message);
  EXPECT_EQ(found, whole);
  return found;
}

using testing::ElementsAre;

TEST(EditedRulesChanges, ARuleThatReadsALaterParameterIsFoundAtOnceWithWhatToMove) {
  EXPECT_THAT(foundAtOnce("${Mode} == 'On'", "${Limit} > 1"),
              ElementsAre("reads-later-decision: the value of 'Limit' is decided later in the same walk, so this reads "
                          "the value from before the edit; move 'Level' to just after 'Limit'"));
}

TEST(EditedRulesChanges, AContextThatNothingHasIsFoundAtOnce) {
  EXPECT_THAT(
      foundAtOnce("Available: ${Mode} == 'On'", "Context: 'On'"),
      ElementsAre("never-live: the object has no context rule, so this entry is never live; write 'Context Rule: "
                  "yes' at the parameter that selects it"));
}

TEST(EditedRulesChanges, ANeedlessAcceptanceIsFoundAtOnce) {
  EXPECT_THAT(
      foundAtOnce("        Available: ${Mode} == 'On'\n",
                  "        Available: ${Mode} == 'On'\n        Accepted: {reads-later-decision: It is meant.}\n"),
      ElementsAre("needless-acceptance: lint finds no 'reads-later-decision' here; remove this acceptance"));
}

TEST(EditedRulesChanges, MissingRootsAreFoundAtOnce) {
  EXPECT_THAT(
      foundAtOnce("Pertinent Roots: [Plant]\n", "", 0),
      ElementsAre("missing-roots: no file has Pertinent Roots, so no model can be judged; add 'Pertinent Roots: "
                  "[Plant]'"));
}

TEST(EditedRulesChanges, AnObjectThatIsTooLargeHasTheWarningWithoutAdvice) {
  std::string text = "Rule Database: 1\nPertinent Roots: [Plant]\nObjects:\n  /Plant:\n    Parameters:\n";
  for (int i = 0; i < 6000; ++i) {
    text += "      Value " + std::to_string(i) +
            ":\n        Description: One of many values of the plant.\n        Parameter Type: Real\n";
  }
  EditedRules rules;
  rules.setText("plant.rules.yaml", text);
  auto const last = rules.snapshot().check();
  rules.accept();
  std::string_view const entry = "      Value 3000:\n";
  text.insert(text.find(entry) + entry.size(), "        Available: ${Value 5000} > 1\n");
  rules.setText("plant.rules.yaml", text);
  auto const found = rules.checkChanges(last).at("plant.rules.yaml");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(
      found[0].message,
      "the value of 'Value 5000' is decided later in the same walk, so this reads the value from before the edit" +
          std::string(unknownAdvice));
  auto const whole = rules.snapshot().check().at("plant.rules.yaml");
  ASSERT_EQ(whole.size(), 1U);
  EXPECT_EQ(whole[0].range, found[0].range);
}

}  // namespace
