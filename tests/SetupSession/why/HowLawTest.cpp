// The search for ways against a search of everything: `how` finds all that some edits reach, and in no more edits.
// Every sequence is tried on small random rule bases, random sequences on the example cases; on flat rule bases of
// 1,000 truth values the answer is known because the rules are made from it.
//
// With TARN_HOW_LAW_BASES the first law takes that many rule bases, from the seed TARN_HOW_LAW_SEED on.

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/How.h>
#include <tarn/session/Sentences.h>
#include <tarn/session/Session.h>

#include "Places.h"
#include "support/Reachable.h"

namespace tarn::session::test {
namespace {

using tarn::test::checkHow;
using tarn::test::everyEdit;
using tarn::test::everythingReached;
using tarn::test::ReachedGoal;

std::string paramName(unsigned param) {
  return "P" + std::to_string(param);
}

unsigned numberFrom(char const* variable, unsigned otherwise) {
  char const* const text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
  return text != nullptr ? static_cast<unsigned>(std::stoul(text)) : otherwise;
}

/// Rules with truth values, choices and numbers; with checked values and overrides; some with objects, and some that
/// read ahead.
class RandomBase {
 public:
  RandomBase(unsigned seed, unsigned params) : random_(seed), params_(params), hasObjects_(seed % 2 == 0) {
    for (unsigned i = 0; i < params; ++i) types_.push_back("LSSI"[below(4)]);
  }

  std::string rules() {
    std::string text = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n";
    for (unsigned i = 0; i < params_; ++i) {
      text += "      " + paramName(i) + ":\n" + valueRules(types_[i]);
      if (below(3) != 0) text += "        Required: yes\n";
      unsigned const readable = below(6) == 0 ? params_ : i;
      if (readable == 0) continue;
      if (below(4) != 0) text += "        Available: |\n          " + condition(readable, 2) + "\n";
      if (types_[i] == 'S' && below(3) == 0) {
        text += "        Allowed String List Checks:\n          b: |\n            " + condition(readable, 1) + "\n";
      }
      if (types_[i] != 'I' && below(8) == 0) {
        text += "        Value Override Check List:\n          - When: |\n              " + condition(readable, 1) +
                "\n            Value: " + (types_[i] == 'L' ? "false" : "a") + "\n";
      }
    }
    return hasObjects_ ? text + objectRules() : text;
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

  std::string valueRules(char type) {
    switch (type) {
      case 'L':
        return std::string("        Parameter Type: Logical\n        Default Value: ") +
               (below(2) == 0 ? "yes" : "no") + "\n";
      case 'S':
        return std::string("        Parameter Type: String\n        Ordered Allowed String List: [a, b, c]\n") +
               "        Default Value: " + (below(2) == 0 ? "a" : "b") + "\n";
      default:
        return "        Parameter Type: Integer\n        Default Value: " + std::to_string(below(4)) + "\n";
    }
  }

  std::string objectRules() {
    return "    Children:\n      Part: {Required: yes}\n      Box:\n        Coupled: yes\n        Singleton: yes\n" +
           std::string(below(2) == 0 ? "        Required: yes\n" : "") + "        Available: |\n          " +
           condition(params_, 1) +
           "\n"
           "  /Case/Part:\n    Parameters:\n      Size:\n        Required: yes\n        Parameter Type: String\n"
           "        Ordered Allowed String List: [small, big]\n"
           "        Allowed String List Checks:\n          big: exists(${/Case/" +
           paramName(below(params_)) +
           "})\n"
           "  /Case/Box:\n    Parameters:\n      Deep: {Required: yes, Parameter Type: Logical, Default Value: no}\n"
           "      Lid:\n        Available: ${Deep}\n        Parameter Type: String\n"
           "        Ordered Allowed String List: [x, y]\n";
  }

  std::string leaf(unsigned readable) {
    unsigned const param = below(readable);
    std::string const read = "${" + paramName(param) + "}";
    static std::map<char, std::vector<std::pair<char const*, char const*>>> const forms = {
        {'L', {{"", ""}, {"", " == 'true'"}, {"not ", ""}, {"exists(", ")"}}},
        {'S', {{"", " == 'b'"}, {"", " in ('b', 'c')"}, {"", " != 'a'"}, {"exists(", ")"}}},
        {'I', {{"", " > 3"}, {"", " <= 1"}, {"", " == 4"}, {"", " + 1 >= 6"}, {"exists(", ")"}}}};
    auto const& ofType = forms.at(types_[param]);
    auto const& [before, after] = ofType[below(static_cast<unsigned>(ofType.size()))];
    return before + read + after;
  }

  std::string condition(unsigned readable, unsigned depth) {
    if (hasObjects_ && below(5) == 0) {
      char const* const ofObjects[] = {"count({/Case/Part:*}) > 1", "any({/Case/Part:*}, ${Size} == 'big')",
                                       "all({/Case/Part:*}, ${Size} == 'small')", "exists({/Case/Box})"};
      return ofObjects[below(4)];
    }
    switch (below(depth == 0 ? 2 : 6)) {
      case 0:
      case 1:
        return leaf(readable);
      case 2:
        return "not (" + condition(readable, depth - 1) + ")";
      case 3:
        return "(" + condition(readable, depth - 1) + ") and (" + condition(readable, depth - 1) + ")";
      default:
        return "(" + condition(readable, depth - 1) + ") or (" + condition(readable, depth - 1) + ")";
    }
  }

  std::mt19937 random_;
  unsigned params_;
  bool hasObjects_;
  std::string types_;
};

/// A goal that a user could have: no object that only the other search has named, and no number of its own.
bool isMeant(ReachedGoal const& goal) {
  bool const isNumber = goal.value && (goal.value->empty() || goal.value->front() <= '9');
  return goal.item.path.find(":new") == std::string::npos && !isNumber;
}

struct Compared {
  std::size_t goals = 0;
  std::map<std::size_t, std::size_t> byEdits;
};

void compare(Session& session, std::map<ReachedGoal, std::vector<Edit>> const& reached, Compared& compared) {
  for (auto const& [goal, edits] : reached) {
    if (edits.empty() || !isMeant(goal)) continue;
    ++compared.goals;
    ++compared.byEdits[edits.size()];
    HowResult const found = session.how({goal.item, goal.value});
    std::string other;
    for (Edit const& edit : edits) other += sentenceOf(edit) + '\n';
    ASSERT_EQ(checkHow(session, {goal.item, goal.value}, edits.size(), found), "") << textOf(found) << "or\n" << other;
  }
}

void compareOnBases(unsigned firstSeed, unsigned bases, unsigned params, std::size_t edits, Compared& compared) {
  for (unsigned seed = firstSeed; seed < firstSeed + bases; ++seed) {
    std::string const text = RandomBase(seed, params).rules();
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + text);
    auto const rules = tarn::rules::parseRules(text);
    auto const session = std::move(Session::open(*rules, ModelState{{"/Case", {}}, {"/Case/Part:p", {}}}).session);
    ASSERT_NE(session, nullptr);
    compare(*session, everythingReached(*session, edits, {"0", "1", "2", "3", "4", "5", "6"}), compared);
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(HowLaw, FindsWhateverTwoEditsReachInAsFewEdits) {
  Compared compared;
  compareOnBases(numberFrom("TARN_HOW_LAW_SEED", 1), numberFrom("TARN_HOW_LAW_BASES", 14), 6, 2, compared);
  EXPECT_GT(compared.byEdits[1], 60U);
  EXPECT_GT(compared.byEdits[2], 30U);
}

TEST(HowLaw, FindsWhateverThreeEditsReachInAsFewEdits) {
  Compared compared;
  compareOnBases(numberFrom("TARN_HOW_LAW_SEED", 500), numberFrom("TARN_HOW_LAW_BASES", 6), 4, 3, compared);
  EXPECT_GT(compared.byEdits[2], 5U);
  EXPECT_GT(compared.byEdits[3], 2U);
}

/// Random edits of which the later ones mostly touch what the earlier ones have brought; what they reach.
std::map<ReachedGoal, std::vector<Edit>> randomlyReached(Session& session, unsigned seed) {
  std::mt19937 random(seed);
  std::map<ReachedGoal, std::vector<Edit>> reached;
  std::vector<Edit> edits;
  std::set<std::string> brought;
  for (int tries = 0; edits.size() < 3 && tries < 20; ++tries) {
    std::vector<Edit> const all = everyEdit(session, {"0", "1", "2", "5"});
    std::vector<Edit> near;
    std::copy_if(all.begin(), all.end(), std::back_inserter(near), [&](Edit const& edit) {
      return brought.contains(edit.path) || brought.contains(edit.path + '/' + edit.name);
    });
    auto const& from = near.empty() || random() % 4 == 0 ? all : near;
    Edit const edit = from[random() % from.size()];
    EditResult const result = session.edit(edit);
    if (result.refused) continue;
    edits.push_back(edit);
    for (Item const& item : result.effect.offersGained) brought.insert(item.text());
    for (ChoicesChange const& change : result.effect.choices) brought.insert(change.path + '/' + change.name);
    for (std::string const& path : result.effect.objectsCreated) {
      brought.insert(path);
      reached.try_emplace({{path, std::nullopt}, std::nullopt}, edits);
    }
    for (ValueChange const& change : result.effect.values) {
      if (!change.after) continue;
      brought.insert(change.path + '/' + change.name);
      if (!change.before) reached.try_emplace({{change.path, change.name}, std::nullopt}, edits);
      reached.try_emplace({{change.path, change.name}, *change.after}, edits);
    }
  }
  while (!session.steps().empty()) session.undo();
  return reached;
}

void compareOnCase(std::string const& example, std::string const& model, unsigned sequences, Compared& compared) {
  std::string const folder = std::string(TARN_SOURCE_DIR) + "/examples/" + example;
  auto const rules = tarn::rules::loadRules(folder + "/rules");
  auto const session = std::move(Session::open(*rules, ModelText::read(folder + "/models/" + model)).session);
  ASSERT_NE(session, nullptr);
  std::map<ReachedGoal, std::vector<Edit>> reached;
  for (unsigned seed = 1; seed <= sequences; ++seed) {
    for (auto& [goal, edits] : randomlyReached(*session, seed)) {
      auto const [entry, isNew] = reached.try_emplace(goal, edits);
      if (!isNew && edits.size() < entry->second.size()) entry->second = std::move(edits);
    }
  }
  // Items that were there at the start were only lost and found again.
  ModelState const start = session->result();
  std::erase_if(reached, [&](auto const& entry) {
    auto const object = start.find(entry.first.item.path);
    if (object == start.end()) return false;
    if (!entry.first.item.isParam()) return true;
    auto const param = object->second.find(*entry.first.item.name);
    return param != object->second.end() && (!entry.first.value || *entry.first.value == param->second);
  });
  compare(*session, reached, compared);
}

TEST(HowLaw, FindsOnTheExampleCasesWhatRandomEditsReach) {
  Compared compared;
  compareOnCase("heating", "house.tdf", 60, compared);
  compareOnCase("flow", "early.tdf", 40, compared);
  EXPECT_GT(compared.goals, 50U);
  EXPECT_GT(compared.byEdits[2] + compared.byEdits[3], 10U);
}

/// 100 chains of ten truth values, most of which are there: each but the first needs the one before it, in one of
/// several forms, and sometimes the first of an earlier chain. `off` are the first ones that are false, so that
/// nothing that needs them is there.
class FlatBase {
 public:
  static constexpr unsigned chains = 100;
  static constexpr unsigned length = 10;

  FlatBase(unsigned seed, std::set<unsigned> const& off) : random_(seed), off_(off), needs_(chains) {
    text_ = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n";
    for (unsigned chain = 0; chain < chains; ++chain) {
      if (off.contains(chain)) needs_[chain].insert(chain);
      for (unsigned link = 0; link < length; ++link) addParam(chain, link);
    }
  }

  [[nodiscard]] std::string const& text() const { return text_; }
  /// The first parameters that must be set to true for the end of a chain.
  [[nodiscard]] std::set<std::string> needed(unsigned chain) const {
    std::set<std::string> names;
    for (unsigned const other : needs_[chain]) names.insert(paramName(other * length));
    return names;
  }

 private:
  void addParam(unsigned chain, unsigned link) {
    unsigned const param = chain * length + link;
    bool const isOff = link == 0 && off_.contains(chain);
    text_ += "      " + paramName(param) + ":\n        Required: yes\n        Parameter Type: Logical\n";
    text_ += std::string("        Default Value: ") + (isOff ? "false" : "true") + "\n";
    if (link == 0) return;
    std::string const before = "${" + paramName(param - 1) + "}";
    std::string const forms[] = {before,
                                 before + " == 'true'",
                                 "not (not " + before + ")",
                                 "exists(" + before + ") and " + before,
                                 before + " and not ${Never}",
                                 before + " or ${Never}"};
    std::string condition = forms[random_() % 6];
    if (chain > 0 && needs_[chain].size() < 3 && random_() % 8 == 0) {
      auto const other = static_cast<unsigned>(random_() % chain);
      condition = "(" + condition + ") and ${" + paramName(other * length) + "}";
      if (off_.contains(other)) needs_[chain].insert(other);
    }
    text_ += "        Available: " + condition + "\n";
    if (param + 1 == chains * length) {
      text_ += "      Never:\n        Available: \"false\"\n        Parameter Type: Logical\n";
    }
  }

  std::mt19937 random_;
  std::set<unsigned> off_;
  std::vector<std::set<unsigned>> needs_;
  std::string text_;
};

TEST(HowLaw, FlatRuleBasesOfAThousandParametersAreSearchedToTheEndOfTheirChains) {
  std::map<std::size_t, std::size_t> byEdits;
  for (unsigned seed = 1; seed <= 2; ++seed) {
    std::set<unsigned> off;
    for (unsigned chain = seed; chain < FlatBase::chains; chain += 3) off.insert(chain);
    FlatBase const base(seed, off);
    auto const rules = tarn::rules::parseRules(base.text());
    auto const session = std::move(Session::open(*rules, ModelState{{"/Case", {}}}).session);
    std::map<std::size_t, unsigned> asked;
    for (unsigned chain = 0; chain < FlatBase::chains; ++chain) {
      std::set<std::string> const needed = base.needed(chain);
      if (needed.size() > 3 || ++asked[needed.size()] > 2) continue;
      HowResult const found = session->how({{"/Case", paramName(chain * 10 + 9)}, {}});
      SCOPED_TRACE("seed " + std::to_string(seed) + ", chain " + std::to_string(chain) + "\n" + textOf(found));
      ++byEdits[needed.size()];
      if (needed.empty()) {
        EXPECT_EQ(found.answer, HowAnswer::AlreadySo);
        continue;
      }
      ASSERT_EQ(found.answer, HowAnswer::Found);
      std::set<std::string> changed;
      for (Edit const& edit : found.ways.front().edits) changed.insert(edit.name);
      EXPECT_EQ(changed, needed);
      EXPECT_EQ(found.ways.front().edits.size(), needed.size());
    }
  }
  EXPECT_GT(byEdits[1], 2U);
  EXPECT_GT(byEdits[2], 2U);
  EXPECT_GT(byEdits[3], 2U);
}

}  // namespace
}  // namespace tarn::session::test
