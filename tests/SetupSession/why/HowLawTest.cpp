// The search for ways against a search of everything, on small random rule bases: whatever some three edits reach, the
// search finds, and in no more edits than needed. And on flat rule bases of 1,000 truth values.

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/How.h>
#include <tarn/session/Session.h>

namespace tarn::session::test {
namespace {

std::string paramName(unsigned param) {
  return "P" + std::to_string(param);
}

class RandomBase {
 public:
  RandomBase(unsigned seed, unsigned params) : random_(seed), params_(params) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

  /// A condition on the parameters before `param`.
  std::string condition(unsigned param, unsigned depth) {
    std::string const read = "${" + paramName(below(param)) + "}";
    switch (below(depth == 0 ? 3 : 6)) {
      case 0:
        return read;
      case 1:
        return read + " == 'true'";
      case 2:
        return "exists(" + read + ")";
      case 3:
        return "not (" + condition(param, depth - 1) + ")";
      case 4:
        return "(" + condition(param, depth - 1) + ") and (" + condition(param, depth - 1) + ")";
      default:
        return "(" + condition(param, depth - 1) + ") or (" + condition(param, depth - 1) + ")";
    }
  }

  std::string rules() {
    std::string text = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n";
    for (unsigned i = 0; i < params_; ++i) {
      text += "      " + paramName(i) +
              ":\n        Parameter Type: Logical\n        Default Value: " + (below(2) == 0 ? "true" : "false") + "\n";
      if (below(3) != 0) text += "        Required: yes\n";
      if (i > 0 && below(4) != 0) text += "        Available: |\n          " + condition(i, 2) + "\n";
    }
    return text;
  }

 private:
  std::mt19937 random_;
  unsigned params_;
};

bool isReached(Session const& session, Goal const& goal) {
  auto const& state = session.provisional();
  if (!state.hasParameter("/Case", *goal.item.name)) return false;
  return !goal.value || state.getParamValue("/Case", *goal.item.name) == *goal.value;
}

/// Every edit of the parameters, without thought.
std::vector<Edit> allEdits(unsigned params) {
  std::vector<Edit> edits;
  for (unsigned i = 0; i < params; ++i) {
    edits.push_back(Edit::setParam("/Case", paramName(i), "true"));
    edits.push_back(Edit::setParam("/Case", paramName(i), "false"));
    edits.push_back(Edit::activateParam("/Case", paramName(i)));
    edits.push_back(Edit::deactivateParam("/Case", paramName(i)));
  }
  return edits;
}

/// The fewest edits that reach the goal, up to `most`.
std::optional<std::size_t> fewestEdits(Session& session, Goal const& goal, std::vector<Edit> const& edits,
                                       std::size_t most) {
  for (std::size_t length = 1; length <= most; ++length) {
    std::function<bool(std::size_t)> const reaches = [&](std::size_t left) {
      if (isReached(session, goal)) return true;
      if (left == 0) return false;
      for (Edit const& edit : edits) {
        if (session.edit(edit).refused) continue;
        bool const isSo = reaches(left - 1);
        session.undo();
        if (isSo) return true;
      }
      return false;
    };
    if (reaches(length)) return length;
  }
  return std::nullopt;
}

TEST(HowLaw, FindsWhatEveryEditTriedInTurnFindsInAsFewEdits) {
  constexpr unsigned params = 6;
  auto const edits = allEdits(params);
  std::size_t reached = 0;
  for (unsigned seed = 1; seed <= 30; ++seed) {
    RandomBase random(seed, params);
    std::string const text = random.rules();
    auto const rules = tarn::rules::parseRules(text);
    auto const session = std::move(Session::open(*rules, ModelState{{"/Case", {}}}).session);
    for (unsigned param = 0; param < params; ++param) {
      for (auto const& value : {std::optional<std::string>(), std::optional<std::string>("true")}) {
        Goal const goal{{"/Case", paramName(param)}, value};
        if (isReached(*session, goal)) continue;
        auto const fewest = fewestEdits(*session, goal, edits, 2);
        HowResult const found = session->how(goal);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", " + goal.item.text() + "\n" + textOf(found) + text);
        if (fewest) {
          ++reached;
          ASSERT_EQ(found.answer, HowAnswer::Found);
          EXPECT_EQ(found.ways.front().edits.size(), *fewest);
        } else if (found.answer == HowAnswer::Found) {
          EXPECT_EQ(found.ways.front().edits.size(), 3U);
        }
        for (Way const& way : found.ways) {
          for (Edit const& edit : way.edits) ASSERT_FALSE(session->edit(edit).refused);
          EXPECT_TRUE(way.atNextEdit || isReached(*session, goal));
          for (std::size_t i = 0; i < way.edits.size(); ++i) session->undo();
        }
        if (testing::Test::HasFailure()) return;
      }
    }
  }
  EXPECT_GT(reached, 30U);
}

/// 100 chains of ten: each parameter needs the one before it in its chain. The last of every third chain needs the
/// first ones of two other chains as well.
std::string flatRules() {
  std::string text = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n";
  constexpr unsigned chains = 100;
  constexpr unsigned length = 10;
  for (unsigned chain = 0; chain < chains; ++chain) {
    for (unsigned link = 0; link < length; ++link) {
      unsigned const param = chain * length + link;
      text += "      " + paramName(param) + ":\n        Required: yes\n        Parameter Type: Logical\n";
      text += std::string("        Default Value: ") + (link == 0 ? "false" : "true") + "\n";
      if (link == 0) continue;
      std::string condition = "${" + paramName(param - 1) + "}";
      if (link == length - 1 && chain % 3 == 2) {
        for (unsigned other : {chain - 1, chain - 2}) condition += " and ${" + paramName(other * length) + "}";
      }
      text += "        Available: " + condition + "\n";
    }
  }
  return text;
}

TEST(HowLaw, FlatRuleBaseOfAThousandParametersIsSearchedToTheEndOfItsChains) {
  auto const rules = tarn::rules::parseRules(flatRules());
  auto const session = std::move(Session::open(*rules, ModelState{{"/Case", {}}}).session);
  for (unsigned chain : {0U, 2U, 50U, 98U}) {
    Goal const goal{{"/Case", paramName(chain * 10 + 9)}, {}};
    HowResult const found = session->how(goal);
    ASSERT_EQ(found.answer, HowAnswer::Found) << textOf(found);
    EXPECT_EQ(found.ways.front().edits.size(), chain % 3 == 2 ? 3U : 1U) << textOf(found);
    EXPECT_LE(found.trials, 500U);
  }
}

}  // namespace
}  // namespace tarn::session::test
