// The advice of the order warning, applied to the text of random rules: the warning must go away, and no other one may
// come. Each entry of the rules is one line.

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {
namespace {

std::vector<Diagnostic> lateReads(std::string const& text) {
  auto all = lintText(text, "plant.rules.yaml").diagnostics;
  std::erase_if(all, [](Diagnostic const& one) { return one.code != "reads-later-decision"; });
  return all;
}

std::string messages(std::string const& text) {
  std::string result;
  for (auto const& one : lateReads(text)) {
    result += std::to_string(one.line) + ": " + one.message + "\n";
    for (auto const& note : one.notes) result += "  " + std::to_string(note.line) + ": " + note.message + "\n";
  }
  return result;
}

TEST(OrderLint, TheEntryThatReadsIsMovedAfterWhatItReads) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Speed: {Parameter Type: Real, Available: "${Drive} == 'Variable'"}
      Title: {Parameter Type: String}
      Drive: {Parameter Type: String, Ordered Allowed String List: [Fixed, Variable]}
)yaml"),
            "6: the value of 'Drive' is decided later in the same walk, so this reads the value from before the edit; "
            "move 'Speed' to just after 'Drive'\n"
            "  6: move this entry\n"
            "  8: to just after this entry\n");
}

TEST(OrderLint, AnEntryOnWhichOthersDependLeavesThemWhereTheyAre) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Speed: {Parameter Type: Real, Available: "${Drive} == 'Variable'"}
      Slip: {Parameter Type: Real, Available: "${Speed} > 1"}
      Drive: {Parameter Type: String, Ordered Allowed String List: [Fixed, Variable]}
)yaml"),
            "6: the value of 'Drive' is decided later in the same walk, so this reads the value from before the edit; "
            "move 'Drive' to just before 'Speed'\n"
            "  8: move this entry\n"
            "  6: to just before this entry\n");
}

TEST(OrderLint, OneMoveServesAllThatAnEntryReads) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Power: {Parameter Type: Real, Default Value: "= ${Head} * ${Flow}"}
      Head: {Parameter Type: Real}
      Flow: {Parameter Type: Real}
)yaml"),
            "6: the value of 'Head' is decided later in the same walk, so this reads the value from before the edit; "
            "move 'Power' to just after 'Flow'\n"
            "  6: move this entry\n"
            "  8: to just after this entry\n"
            "6: the value of 'Flow' is decided later in the same walk, so this reads the value from before the edit; "
            "move 'Power' to just after 'Flow'\n"
            "  6: move this entry\n"
            "  8: to just after this entry\n");
}

TEST(OrderLint, ACircleIsReportedOnceWithItsReads) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Head: {Parameter Type: Real, Default Value: "= ${Flow}"}
      Flow: {Parameter Type: Real, Upper Bound: "= ${Power}"}
      Power: {Parameter Type: Real, Available: "${Head} > 1"}
)yaml"),
            "6: the value of 'Flow' is decided later in the same walk, so this reads the value from before the edit; "
            "no order of the entries changes that, because they read each other in a circle: 'Head' reads 'Flow', "
            "'Flow' reads 'Power', and 'Power' reads 'Head'; this affects 2 places\n"
            "  7: it is read here, in Upper Bound of 'Flow'\n"
            "  8: it is read here, in Available of 'Power'\n"
            "  7: it is also here\n");
}

TEST(OrderLint, AnEntryThatSeveralReadIsMovedBeforeThemAndReportedOnce) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Checks:
  is variable: ${Drive} == 'Variable'
Objects:
  /Pump:
    Parameters:
      Speed: {Parameter Type: Real, Available: check('is variable')}
      Slip: {Parameter Type: Real, Available: check('is variable')}
      Drive: {Parameter Type: String, Ordered Allowed String List: [Fixed, Variable]}
)yaml"),
            "8: the value of 'Drive' is decided later in the same walk, so this reads the value from before the edit; "
            "move 'Drive' to just before 'Speed'; this affects 2 places\n"
            "  10: move this entry\n"
            "  8: to just before this entry\n"
            "  9: it is also here\n");
}

TEST(OrderLint, AnEntryKeepsItsContextRule) {
  // After Drive, which is a context rule, Speed would have another context.
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Kind: {Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [Radial, Axial]}
      Speed: {Parameter Type: Real, Context: Radial, Available: "${Drive} == 'Variable'"}
      Drive: {Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [Fixed, Variable]}
)yaml"),
            "7: the value of 'Drive' is decided later in the same walk, so this reads the value from before the "
            "edit\n");
}

TEST(OrderLint, ParametersComeBeforeChildren) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Parameters:
      Speed: {Parameter Type: Real, Available: "exists({Motor})"}
    Children:
      Motor: {Singleton: yes}
  /Pump/Motor: {}
)yaml"),
            "6: the objects of type 'Motor' are decided later in the same walk, so this sees the objects from before "
            "the edit; no order of the entries changes that, because the parameters of an object come before its "
            "children\n");
}

TEST(OrderLint, AChildIsMovedForRulesBelowIt) {
  EXPECT_EQ(messages(R"yaml(Rule Database: 1
Pertinent Roots: [Pump]
Objects:
  /Pump:
    Children:
      Motor: {Singleton: yes}
      Supply: {Singleton: yes}
  /Pump/Motor:
    Parameters:
      Voltage: {Parameter Type: Real, Default Value: "= ${/Pump/Supply/Voltage}"}
  /Pump/Supply:
    Parameters:
      Voltage: {Parameter Type: Real}
)yaml"),
            "10: the value of 'Voltage' is decided later in the same walk, so this reads the value from before the "
            "edit; move the child 'Motor' of /Pump to just after 'Supply'\n"
            "  6: move this entry\n"
            "  7: to just after this entry\n");
}

// Random rules

using Random = std::mt19937;

std::size_t below(Random& random, std::size_t limit) {
  return random() % limit;
}

/// Rules as sections of lines. A section is moved in by itself.
struct Plant {
  std::map<std::string, std::vector<std::string>>
      sections;  // "template", "/Plant", "/Plant children", "/Plant/C0", ...
  bool hasContexts = false;
  bool hasTemplate = false;

  [[nodiscard]] std::string text() const {
    std::string result = "Rule Database: 1\nPertinent Roots: [Plant]\n";
    auto const add = [&](std::string const& section) {
      for (auto const& line : sections.at(section)) result += "      " + line + "\n";
    };
    if (hasTemplate) {
      result += "Templates:\n  shared:\n    Parameters:\n";
      add("template");
    }
    result += "Objects:\n  /Plant:\n    Parameters:\n";
    add("/Plant");
    result += "    Children:\n";
    add("/Plant children");
    for (auto const& [section, lines] : sections) {
      if (!section.starts_with("/Plant/")) continue;
      result += "  " + section + ":\n    Parameters:\n";
      add(section);
    }
    return result;
  }
};

std::string nameOf(std::string const& line) {
  return line.substr(0, line.find(':'));
}

Plant randomPlant(Random& random) {
  Plant plant;
  plant.hasContexts = below(random, 3) == 0;
  plant.hasTemplate = below(random, 3) == 0;
  std::size_t const own = 3 + below(random, 6);
  std::size_t const shared = plant.hasTemplate ? 1 + below(random, 3) : 0;
  std::size_t const children = 2 + below(random, 3);
  auto const number = [&](std::size_t limit) { return std::to_string(below(random, limit)); };
  auto const ownName = [&] {
    return below(random, own + shared) < own ? "P" + number(own) : "S" + number(std::max<std::size_t>(shared, 1));
  };
  auto const ofChild = [&] {
    std::string const child = "C" + number(children);
    switch (below(random, 4)) {
      case 0:
        return "count({/Plant/" + child + "})";
      case 1:
        return std::string("count({/Plant/*})");
      case 2:
        return std::string("sum(values(${/Plant/*/Q0}))");
      default:
        return "${/Plant/" + child + "/Q" + number(2) + "}";
    }
  };
  auto const parameterLine = [&](std::string const& name, bool isOfPlant) {
    std::string line = name + ": {Parameter Type: Real";
    if (plant.hasContexts && isOfPlant) {
      switch (below(random, 5)) {
        case 0:
          return name + ": {Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [on, off]}";
        case 1:
          line += ", Context: 'on'";
          break;
        default:
          break;
      }
    }
    std::string reads;
    for (std::size_t count = below(random, 3); count > 0; --count) {
      if (!reads.empty()) reads += " + ";
      reads += isOfPlant && below(random, 8) > 0 ? "${" + ownName() + "}" : ofChild();
    }
    std::string const attribute = below(random, 2) == 0 ? "Available: \"" : "Upper Bound: \"= ";
    if (!reads.empty()) line += ", " + attribute + reads + (attribute[0] == 'A' ? " > 0\"" : "\"");
    return line + "}";
  };
  auto& lines = plant.sections["/Plant"];
  for (std::size_t i = 0; i < own; ++i) lines.push_back(parameterLine("P" + std::to_string(i), true));
  if (plant.hasTemplate) {
    auto& inTemplate = plant.sections["template"];
    for (std::size_t i = 0; i < shared; ++i) inTemplate.push_back(parameterLine("S" + std::to_string(i), true));
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(below(random, own + 1)), "Use: [shared]");
  }
  for (std::size_t i = 0; i < children; ++i) {
    std::string const child = "C" + std::to_string(i);
    std::string const available = below(random, 3) == 0 ? ", Available: \"" + ofChild() + " > 0\"" : "";
    plant.sections["/Plant children"].push_back(child + ": {Singleton: yes" + available + "}");
    auto& ofOne = plant.sections["/Plant/" + child];
    for (std::size_t q = 0; q < 2; ++q) ofOne.push_back(parameterLine("Q" + std::to_string(q), false));
  }
  return plant;
}

/// The place of a warning, which stays when its line is moved.
template <typename Shown>
std::string placeOf(Shown const& one) {
  return one.sourceLine + std::to_string(one.column);
}

/// The places of all warnings, with those that are reported together. Nothing when some of these are not shown.
std::optional<std::multiset<std::string>> places(std::vector<Diagnostic> const& warnings) {
  std::multiset<std::string> result;
  for (auto const& one : warnings) {
    result.insert(placeOf(one));
    if (one.affected > 4) return std::nullopt;
    for (auto const& note : one.notes) {
      if (note.message == "it is also here") result.insert(placeOf(note));
    }
  }
  return result;
}

/// The context rules before each entry that has a context.
std::map<std::string, std::vector<std::string>> contexts(Plant const& plant) {
  std::vector<std::string> lines;
  for (auto const& line : plant.sections.at("/Plant")) {
    if (line.starts_with("Use")) {
      auto const& shared = plant.sections.at("template");
      lines.insert(lines.end(), shared.begin(), shared.end());
    } else {
      lines.push_back(line);
    }
  }
  std::map<std::string, std::vector<std::string>> result;
  std::vector<std::string> rules;
  for (auto const& line : lines) {
    if (line.find("Context: ") != std::string::npos) result[nameOf(line)] = rules;
    if (line.find("Context Rule: yes") != std::string::npos) rules.push_back(nameOf(line));
  }
  return result;
}

/// Does what the advice of a message says. Returns false when it cannot be done.
bool apply(Plant& plant, std::string const& message) {
  static std::regex const advice(
      "; move (?:the child(?:ren)? )?((?:'\\w+'(?:, | and )?)+)(?: of (/\\w+))?"
      "(?:, in this order,)? to just (after|before) (the Use of )?'(\\w+)'");
  std::smatch found;
  if (!std::regex_search(message, found, advice)) return false;
  std::vector<std::string> names;
  std::string const listed = found[1];
  static std::regex const quoted("'(\\w+)'");
  for (std::sregex_iterator at(listed.begin(), listed.end(), quoted); at != std::sregex_iterator(); ++at) {
    names.push_back((*at)[1]);
  }
  std::string const anchor = found[4].matched ? "Use" : std::string(found[5]);
  for (auto& [section, lines] : plant.sections) {
    if (found[2].matched != (section == "/Plant children")) continue;
    if (section.starts_with("/Plant/")) continue;  // their parameters have names that are not unique
    std::vector<std::string> moved;
    for (auto const& name : names) {
      auto const line = std::find_if(lines.begin(), lines.end(), [&](auto const& one) { return nameOf(one) == name; });
      if (line == lines.end()) break;
      moved.push_back(*line);
    }
    if (moved.size() != names.size()) continue;
    std::erase_if(lines, [&](auto const& line) { return std::find(moved.begin(), moved.end(), line) != moved.end(); });
    auto at = std::find_if(lines.begin(), lines.end(), [&](auto const& one) { return nameOf(one) == anchor; });
    if (at == lines.end()) return false;
    if (found[3] == "after") ++at;
    lines.insert(at, moved.begin(), moved.end());
    return true;
  }
  return false;
}

TEST(OrderLint, AdviceRemovesItsWarningAndCausesNoOther) {
  std::size_t moves = 0;
  std::size_t circles = 0;
  for (unsigned seed = 1; seed <= 600; ++seed) {
    Random random(seed);
    Plant const plant = randomPlant(random);
    std::string const text = plant.text();
    auto const warnings = lateReads(text);
    auto const before = places(warnings);
    if (!before) continue;
    for (auto const& one : warnings) {
      std::string const context = "seed " + std::to_string(seed) + "\n" + text + format(one);
      if (one.message.find("no order of the entries") != std::string::npos) {
        circles += one.message.find("in a circle") != std::string::npos ? 1 : 0;
        continue;
      }
      if (one.message.find("; move ") == std::string::npos) {
        // Only contexts, templates, and reads of several types can prevent a move where there is no circle.
        EXPECT_TRUE(plant.hasContexts || plant.hasTemplate || text.find("/Plant/*/") != std::string::npos) << context;
        continue;
      }
      // Parameters of the children read nothing of their own object, so only lists that `apply` knows are named.
      Plant changed = plant;
      ASSERT_TRUE(apply(changed, one.message)) << context;
      ++moves;
      auto expected = *before;
      expected.erase(expected.find(placeOf(one)));
      auto const after = places(lateReads(changed.text()));
      if (!after) continue;
      EXPECT_TRUE(std::includes(expected.begin(), expected.end(), after->begin(), after->end()))
          << context << "afterwards:\n"
          << changed.text() << messages(changed.text());
      EXPECT_EQ(contexts(changed), contexts(plant)) << context;
    }
  }
  EXPECT_GT(moves, 300U);
  EXPECT_GT(circles, 100U);
}

TEST(OrderLint, CirclesAreReadsThatCloseAndAreShortest) {
  static std::regex const hop("'(\\w+)' reads '(\\w+)'");
  std::size_t circles = 0;
  for (unsigned seed = 1; seed <= 300; ++seed) {
    Random random(seed);
    // Parameters of one object alone, so that the reads are known from the text.
    std::size_t const size = 3 + below(random, 5);  // so no circle is shown in part
    std::string text = "Rule Database: 1\nPertinent Roots: [Plant]\nObjects:\n  /Plant:\n    Parameters:\n";
    std::map<std::string, std::set<std::string>> reads;
    for (std::size_t i = 0; i < size; ++i) {
      std::string const name = "P" + std::to_string(i);
      std::string sum = "1";
      for (std::size_t count = below(random, 3); count > 0; --count) {
        std::string const read = "P" + std::to_string(below(random, size));
        sum += " + ${" + read + "}";
        reads[name].insert(read);
      }
      text += "      " + name + ": {Parameter Type: Real, Default Value: \"= " + sum + "\"}\n";
    }
    auto const distance = [&](std::string const& from, std::string const& to) {
      std::map<std::string, std::size_t> reached{{from, 0}};
      std::vector<std::string> next{from};
      for (std::size_t i = 0; i < next.size(); ++i) {
        for (auto const& read : reads[next[i]]) {
          if (reached.try_emplace(read, reached[next[i]] + 1).second) next.push_back(read);
        }
      }
      return reached.contains(to) ? reached[to] : 0;
    };
    for (auto const& one : lateReads(text)) {
      std::string const context = "seed " + std::to_string(seed) + "\n" + text + format(one);
      std::vector<std::pair<std::string, std::string>> hops;
      for (std::sregex_iterator at(one.message.begin(), one.message.end(), hop); at != std::sregex_iterator(); ++at) {
        hops.emplace_back((*at)[1], (*at)[2]);
      }
      if (hops.empty()) {
        EXPECT_NE(one.message.find("; move "), std::string::npos) << context;
        continue;
      }
      ++circles;
      for (std::size_t i = 0; i < hops.size(); ++i) {
        EXPECT_TRUE(reads[hops[i].first].contains(hops[i].second)) << context;
        EXPECT_EQ(hops[i].first, hops[(i == 0 ? hops.size() : i) - 1].second) << context;
      }
      EXPECT_EQ(hops.size(), 1 + distance(hops.front().second, hops.front().first)) << context;
    }
  }
  EXPECT_GT(circles, 50U);
}

}  // namespace
}  // namespace tarn::rules
