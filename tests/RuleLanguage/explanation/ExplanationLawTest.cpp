// The law of explanations, over random conditions and models: with everything unknown but what an explanation needed,
// the condition still has its result; without any one of these reads it has not; and every value shown is the model's.
// The conditions are evaluated by a second, plain evaluation in three-valued logic that shares nothing with the
// library.

#include <tarn/Explanation.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules::test {
namespace {

using tarn::test::MapModel;

std::string const owner = "/Case/Domain:d";

/// A model of which only some facts are known.
struct PartlyKnown {
  MapModel const& model;
  std::vector<ModelRead> const& known;

  [[nodiscard]] bool knows(ModelRead const& asked) const {
    for (ModelRead const& read : known) {
      // Knowing a value means knowing that it is there, but not the other way round.
      if (read.isSameFact(asked) && (read.kind == asked.kind || read.kind == ModelRead::Kind::Value)) return true;
    }
    return false;
  }
};

ModelRead readOf(ModelRead::Kind kind, std::string object, std::string name) {
  ModelRead read;
  read.kind = kind;
  read.object = std::move(object);
  read.name = std::move(name);
  return read;
}

using Known = std::optional<bool>;

/// A condition with its text and its own evaluation, which gives nothing when the result is not known.
struct Term {
  virtual ~Term() = default;
  [[nodiscard]] virtual std::string text() const = 0;
  [[nodiscard]] virtual Known evaluate(PartlyKnown const& facts, std::string const& at) const = 0;
};
using TermPtr = std::unique_ptr<Term>;

struct Equals final : Term {
  std::string name;
  std::string value;
  bool isMembership = false;
  [[nodiscard]] std::string text() const override {
    return isMembership ? "${" + name + "} in ('z', '" + value + "')" : "${" + name + "} == '" + value + "'";
  }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    if (!facts.knows(readOf(ModelRead::Kind::Value, at, name))) return std::nullopt;
    return facts.model.getParameterValue(at, name) == value;
  }
};

struct SameAs final : Term {
  std::string name;
  std::string other;
  [[nodiscard]] std::string text() const override { return "${" + name + "} + '' == ${" + other + "} + ''"; }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    if (!facts.knows(readOf(ModelRead::Kind::Value, at, name))) return std::nullopt;
    if (!facts.knows(readOf(ModelRead::Kind::Value, at, other))) return std::nullopt;
    return facts.model.getParameterValue(at, name) == facts.model.getParameterValue(at, other);
  }
};

struct Exists final : Term {
  std::string name;
  [[nodiscard]] std::string text() const override { return "exists(${" + name + "})"; }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    if (!facts.knows(readOf(ModelRead::Kind::Presence, at, name))) return std::nullopt;
    return facts.model.hasParameter(at, name);
  }
};

struct Not final : Term {
  TermPtr term;
  [[nodiscard]] std::string text() const override { return "not (" + term->text() + ")"; }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    auto const known = term->evaluate(facts, at);
    return known ? Known(!*known) : std::nullopt;
  }
};

/// `and`, `or` or `implies`, by the value of an operand that decides alone.
struct Junction final : Term {
  std::vector<TermPtr> terms;
  bool isAnd = false;
  bool isImplies = false;
  [[nodiscard]] std::string text() const override {
    std::string result;
    std::string const word = isImplies ? " implies " : isAnd ? " and " : " or ";
    for (auto const& term : terms) result += (result.empty() ? "" : word) + "(" + term->text() + ")";
    return result;
  }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    bool isAllKnown = true;
    for (auto const& term : terms) {
      auto known = term->evaluate(facts, at);
      if (known && isImplies && &term == terms.data()) known = !*known;
      if (known && *known == !isAnd) return !isAnd;
      isAllKnown = isAllKnown && known.has_value();
    }
    return isAllKnown ? Known(isAnd) : std::nullopt;
  }
};

struct IfThenElse final : Term {
  TermPtr condition;
  TermPtr first;
  TermPtr second;
  [[nodiscard]] std::string text() const override {
    return "if(" + condition->text() + ", " + first->text() + ", " + second->text() + ")";
  }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    auto const known = condition->evaluate(facts, at);
    if (!known) return std::nullopt;
    return (*known ? first : second)->evaluate(facts, at);
  }
};

/// `any`, `all`, or a comparison of `count`.
struct OverParts final : Term {
  enum class Kind { Any, All, Count };
  Kind kind = Kind::Any;
  TermPtr condition;
  [[nodiscard]] std::string text() const override {
    std::string const arguments = "({Part:*}, " + condition->text() + ")";
    if (kind == Kind::Count) return "count" + arguments + " > 1";
    return (kind == Kind::Any ? "any" : "all") + arguments;
  }
  [[nodiscard]] Known evaluate(PartlyKnown const& facts, std::string const& at) const override {
    if (!facts.knows(readOf(ModelRead::Kind::ChildrenOfType, at, "Part"))) return std::nullopt;
    std::vector<std::string> paths;
    facts.model.getChildObjectPathsByType(at, "Part", paths);
    bool isAllKnown = true;
    std::size_t count = 0;
    for (auto const& path : paths) {
      auto const known = condition->evaluate(facts, path);
      if (known && kind != Kind::Count && *known == (kind == Kind::Any)) return kind == Kind::Any;
      isAllKnown = isAllKnown && known.has_value();
      count += known.value_or(false) ? 1 : 0;
    }
    if (!isAllKnown) return std::nullopt;
    return kind == Kind::Count ? count > 1 : kind == Kind::All;
  }
};

class RandomTerms {
 public:
  explicit RandomTerms(unsigned seed) : random_(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }
  std::string name() { return std::string(1, static_cast<char>('A' + below(4))); }
  std::string value() { return below(2) == 0 ? "x" : "y"; }

  TermPtr term(unsigned depth, bool isInParts) {
    unsigned const kind = below(depth == 0 ? 4 : 12);
    switch (kind) {
      case 0:
      case 1: {
        auto result = std::make_unique<Equals>();
        result->name = name();
        result->value = value();
        result->isMembership = kind == 1;
        return result;
      }
      case 2: {
        auto result = std::make_unique<Exists>();
        result->name = name();
        return result;
      }
      case 3: {
        auto result = std::make_unique<SameAs>();
        result->name = name();
        result->other = name();
        return result;
      }
      case 4: {
        auto result = std::make_unique<Not>();
        result->term = term(depth - 1, isInParts);
        return result;
      }
      case 5: {
        auto result = std::make_unique<IfThenElse>();
        result->condition = term(depth - 1, isInParts);
        result->first = term(depth - 1, isInParts);
        result->second = term(depth - 1, isInParts);
        return result;
      }
      case 6:
      case 7:
        if (!isInParts) {
          auto result = std::make_unique<OverParts>();
          result->kind = static_cast<OverParts::Kind>(below(3));
          result->condition = term(depth - 1, true);
          return result;
        }
        [[fallthrough]];
      default: {
        auto result = std::make_unique<Junction>();
        result->isAnd = below(2) == 0;
        result->isImplies = !result->isAnd && below(3) == 0;
        unsigned const count = result->isImplies ? 2 : 2 + below(3);
        for (unsigned i = 0; i < count; ++i) result->terms.push_back(term(depth - 1, isInParts));
        return result;
      }
    }
  }

  MapModel model() {
    MapModel result;
    result.add(owner);
    fill(result, owner);
    for (unsigned i = below(4); i > 0; --i) {
      std::string const part = owner + "/Part:p" + std::to_string(i);
      result.add(part);
      fill(result, part);
    }
    return result;
  }

 private:
  void fill(MapModel& model, std::string const& path) {
    for (char const* name : {"A", "B", "C", "D"}) {
      if (below(3) != 0) model.set(path, name, value());
    }
  }

  std::mt19937 random_;
};

void expectLaw(Term const& term, Condition const& condition, MapModel const& model) {
  TDFContext const context(owner);
  Explanation const explanation = condition.explain(context, model);
  EvalContext evalContext(&model);
  bool const result = condition.evaluate(context, &evalContext);
  ASSERT_EQ(explanation.nodes.front().result.truth, result);
  ASSERT_TRUE(explanation.isComplete);
  ASSERT_TRUE(explanation.isMinimal);

  for (ModelRead const& read : explanation.reads) {
    if (!read.isParameter()) continue;
    EXPECT_EQ(read.isPresent, model.hasParameter(read.object, read.name));
    if (read.kind == ModelRead::Kind::Value) {
      EXPECT_EQ(read.value, model.getParameterValue(read.object, read.name));
    }
  }
  for (Explanation::Node const& node : explanation.nodes) {
    if (node.operation != Explanation::Operation::Parameter) continue;
    ASSERT_EQ(node.reads.size(), 1U);
    EXPECT_EQ(node.result.text, explanation.reads[node.reads.front()].value);
  }

  auto const isNeeded = explanation.neededReads();
  std::vector<ModelRead> needed;
  for (std::size_t i = 0; i < isNeeded.size(); ++i) {
    if (isNeeded[i]) needed.push_back(explanation.reads[i]);
  }
  EXPECT_EQ(term.evaluate({model, needed}, owner), Known(result)) << "a read is missing";
  for (std::size_t i = 0; i < needed.size(); ++i) {
    std::vector<ModelRead> without = needed;
    without.erase(without.begin() + static_cast<std::ptrdiff_t>(i));
    EXPECT_EQ(term.evaluate({model, without}, owner), std::nullopt)
        << needed[i].object << "/" << needed[i].name << " could be left out";
  }
}

TEST(ExplanationLaw, WhatWasNeededGivesTheResultAloneAndNothingOfItCanBeLeftOut) {
  constexpr unsigned files = 40;
  constexpr unsigned conditions = 60;
  constexpr unsigned models = 3;
  for (unsigned seed = 1; seed <= files; ++seed) {
    RandomTerms random(seed);
    std::vector<TermPtr> terms;
    std::string text = "Rule Database: 1\nObjects:\n  /Case/Domain:\n    Parameters:\n";
    for (unsigned i = 0; i < conditions; ++i) {
      terms.push_back(random.term(1 + random.below(4), false));
      text += "      P" + std::to_string(i) + ":\n        Parameter Type: String\n        Available: |\n          " +
              terms.back()->text() + "\n";
    }
    auto const rules = parseRules(text);
    auto const* domain = rules->getObjDependDef("/Case/Domain", true);
    for (unsigned i = 0; i < conditions * models; ++i) {
      Term const& term = *terms[i % conditions];
      SCOPED_TRACE("seed " + std::to_string(seed) + ": " + term.text());
      expectLaw(term, *domain->findParam("P" + std::to_string(i % conditions))->available, random.model());
      if (HasFailure()) return;
    }
  }
}

}  // namespace
}  // namespace tarn::rules::test
