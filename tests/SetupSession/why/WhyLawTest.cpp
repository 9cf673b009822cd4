// The law of proofs over random rules and sessions. The rules read ahead, so that some were decided on old values. A
// second, plain model keeps for each walk what was there before it. After any edits:
// - the proof gives the state that is there: no rule that was asked contradicts it;
// - every value that it names is what the rule has read: the new one of what the walk decides before, the old one else;
// - with everything else unknown it gives the same result. Here: changing any parameter that it does not need changes
//   nothing.

#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Session.h>

#include "support/MapModel.h"

namespace tarn::session::test {
namespace {

using tarn::test::MapModel;

constexpr unsigned paramCount = 8;

class RandomFlat {
 public:
  explicit RandomFlat(unsigned seed) : random_(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }
  static std::string name(unsigned param) { return "P" + std::to_string(param); }

  std::string condition(unsigned depth) {
    unsigned const kind = below(depth == 0 ? 3 : 6);
    std::string const param = "${" + name(below(paramCount)) + "}";
    switch (kind) {
      case 0:
        return param + " == '" + value() + "'";
      case 1:
        return "exists(" + param + ")";
      case 2:
        return param + " in ('a', 'b')";
      case 3:
        return "not (" + condition(depth - 1) + ")";
      case 4:
        return "(" + condition(depth - 1) + ") and (" + condition(depth - 1) + ")";
      default:
        return "(" + condition(depth - 1) + ") or (" + condition(depth - 1) + ")";
    }
  }
  std::string value() { return std::string(1, static_cast<char>('a' + below(3))); }

  std::string rules() {
    std::string text = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Parameters:\n";
    for (unsigned i = 0; i < paramCount; ++i) {
      text +=
          "      " + name(i) + ":\n        Parameter Type: String\n        Ordered Allowed String List: [a, b, c]\n";
      text += "        Default Value: " + value() + "\n";
      if (below(3) != 0) text += "        Required: yes\n";
      if (below(4) != 0) text += "        Available: |\n          " + condition(2) + "\n";
      if (below(4) == 0) {
        text += "        Default Value Check List:\n          - When: |\n              " + condition(1) +
                "\n            Value: " + value() + "\n";
      }
      if (below(5) == 0) {
        text += "        Allowed String List Checks:\n          b: |\n            " + condition(1) + "\n";
      }
      if (below(8) == 0) {
        text += "        Value Override Check List:\n          - When: |\n              " + condition(1) +
                "\n            Value: " + value() + "\n";
      }
    }
    return text;
  }

  Edit edit() {
    std::string const param = name(below(paramCount));
    switch (below(6)) {
      case 0:
        return Edit::activateParam("/Case", param);
      case 1:
        return Edit::deactivateParam("/Case", param);
      default:
        return Edit::setParam("/Case", param, value());
    }
  }

 private:
  std::mt19937 random_;
};

using Values = std::map<std::string, std::string>;

Values valuesOf(Session const& session) {
  Values values;
  for (unsigned i = 0; i < paramCount; ++i) {
    std::string const name = RandomFlat::name(i);
    if (session.provisional().hasParameter("/Case", name)) {
      values[name] = session.provisional().getParamValue("/Case", name);
    }
  }
  return values;
}

/// The values that the rules of a parameter saw: the new values of the parameters before it, the old ones of all
/// others.
Values seenBy(unsigned param, Values const& before, Values const& after) {
  Values seen;
  for (unsigned i = 0; i < paramCount; ++i) {
    std::string const name = RandomFlat::name(i);
    Values const& from = i < param ? after : before;
    if (auto const found = from.find(name); found != from.end()) seen.insert(*found);
  }
  return seen;
}

MapModel modelOf(Values const& values) {
  MapModel model;
  model.add("/Case");
  for (auto const& [name, value] : values) model.set("/Case", name, value);
  return model;
}

class WhyLaw : public testing::Test {
 protected:
  void expectProof(Session const& session, PhysicsData const& rules, unsigned param, Values const& before,
                   Values const& after, RandomFlat& random) {
    std::string const name = RandomFlat::name(param);
    Proof const proof = session.why({"/Case", name}, {Question::Presence, {}, 1});
    ProofNode const& node = proof.answer();
    SCOPED_TRACE(textOf(proof));
    EXPECT_FALSE(node.isOutdated);
    Values const seen = seenBy(param, before, after);
    auto const* entry = rules.getObjDependDef("/Case", true)->findParam(name);
    for (ProofRule const& rule : node.rules) {
      for (ProofRead const& read : rule.reads) {
        auto const found = seen.find(read.read.name);
        EXPECT_EQ(read.read.isPresent, found != seen.end()) << read.read.name;
        if (found != seen.end() && read.read.kind == ModelRead::Kind::Value) {
          EXPECT_EQ(read.read.value, found->second) << read.read.name;
        }
        auto const now = after.find(read.read.name);
        bool const isSame =
            (now == after.end()) == (found == seen.end()) &&
            (now == after.end() || read.read.kind == ModelRead::Kind::Presence || now->second == found->second);
        EXPECT_EQ(read.isOld, !isSame) << read.read.name;
      }
      if (rule.attribute != "Available") continue;
      // Everything that was not needed may be anything.
      auto const isNeeded = rule.explanation.neededReads();
      for (int i = 0; i < 10; ++i) {
        Values other = seen;
        for (unsigned p = 0; p < paramCount; ++p) {
          std::string const changed = RandomFlat::name(p);
          bool isFixed = false;
          for (std::size_t r = 0; r < isNeeded.size(); ++r) {
            isFixed = isFixed || (isNeeded[r] && rule.explanation.reads[r].name == changed);
          }
          if (isFixed) continue;
          other.erase(changed);
          if (random.below(2) == 0) other[changed] = random.value();
        }
        MapModel const model = modelOf(other);
        EvalContext context(&model);
        EXPECT_EQ(entry->available->evaluate(TDFContext("/Case"), &context),
                  rule.explanation.nodes.front().result.truth);
      }
    }
  }
};

TEST_F(WhyLaw, ProofsGiveTheStateFromWhatWasRead) {
  std::size_t proofs = 0;
  std::size_t old = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    RandomFlat random(seed);
    std::string const text = random.rules();
    auto const rules = tarn::rules::parseRules(text);
    auto const session = std::move(Session::open(*rules, ModelState{{"/Case", {}}}).session);
    ASSERT_NE(session, nullptr);
    Values before;
    Values after = valuesOf(*session);
    for (unsigned step = 0; step < 12; ++step) {
      for (unsigned param = 0; param < paramCount; ++param) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step) + "\n" + text);
        expectProof(*session, *rules, param, before, after, random);
        ++proofs;
        Proof const proof = session->why({"/Case", RandomFlat::name(param)}, {Question::Presence, {}, 1});
        for (ProofRule const& rule : proof.answer().rules) {
          old += static_cast<std::size_t>(
              std::count_if(rule.reads.begin(), rule.reads.end(), [](ProofRead const& read) { return read.isOld; }));
        }
        if (HasFailure()) return;
      }
      Values const last = after;
      if (session->edit(random.edit()).refused) continue;
      before = last;
      after = valuesOf(*session);
    }
  }
  EXPECT_GT(proofs, 5000U);
  EXPECT_GT(old, 100U) << "the rules should have read ahead";
}

}  // namespace
}  // namespace tarn::session::test
