// The law of proofs about computed lists of allowed values: `union`, `intersection`, `difference`, `unique`, `filter`,
// `names`, `values` and `if` in any nesting. A proof that a value is allowed or not is evaluated once more from the
// facts that it names, by a plain evaluation in three-valued logic. With everything else unknown the answer is the
// same, and without any one of the facts it is not known.

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Session.h>

namespace tarn::session::test {
namespace {

using Known = std::optional<bool>;
using Facts = std::vector<ModelRead>;

std::string const parts = "{/Case/Part:*}";

/// The value of a parameter, nothing when the facts do not tell. "" for an absent one.
std::optional<std::string> valueOf(Facts const& facts, std::string const& object, std::string const& name) {
  for (ModelRead const& fact : facts) {
    bool const isOfParam = fact.isParameter() && fact.object == object && fact.name == name;
    if (isOfParam && (fact.kind == ModelRead::Kind::Value || !fact.isPresent)) return fact.value;
  }
  return std::nullopt;
}

std::optional<bool> isPresent(Facts const& facts, std::string const& object, std::string const& name) {
  for (ModelRead const& fact : facts) {
    if (fact.isParameter() && fact.object == object && fact.name == name) return fact.isPresent;
  }
  return std::nullopt;
}

std::optional<std::vector<std::string>> partsIn(Facts const& facts) {
  for (ModelRead const& fact : facts) {
    if (fact.kind == ModelRead::Kind::ChildrenOfType && fact.object == "/Case" && fact.name == "Part")
      return fact.items;
  }
  return std::nullopt;
}

Known negation(Known known) {
  return known ? Known(!*known) : known;
}
/// `decisive` when one is `decisive`; otherwise known when both are.
Known junction(Known a, Known b, bool decisive) {
  if (a == decisive || b == decisive) return decisive;
  return a && b ? Known(!decisive) : std::nullopt;
}

/// A condition on a part, or on the case.
struct Condition {
  enum class Kind { Equals, Exists, Not, And, Or } kind = Kind::Equals;
  std::string name;
  std::string value;
  std::vector<Condition> operands;

  [[nodiscard]] std::string text(std::string const& prefix) const {
    switch (kind) {
      case Kind::Equals:
        return "${" + prefix + name + "} == '" + value + "'";
      case Kind::Exists:
        return "exists(${" + prefix + name + "})";
      case Kind::Not:
        return "not (" + operands[0].text(prefix) + ")";
      case Kind::And:
      case Kind::Or:
        break;
    }
    return "(" + operands[0].text(prefix) + (kind == Kind::And ? ") and (" : ") or (") + operands[1].text(prefix) + ")";
  }
  [[nodiscard]] Known holds(Facts const& facts, std::string const& at) const {
    switch (kind) {
      case Kind::Equals: {
        auto const known = valueOf(facts, at, name);
        return known ? Known(*known == value) : std::nullopt;
      }
      case Kind::Exists:
        return isPresent(facts, at, name);
      case Kind::Not:
        return negation(operands[0].holds(facts, at));
      case Kind::And:
      case Kind::Or:
        break;
    }
    return junction(operands[0].holds(facts, at), operands[1].holds(facts, at), kind == Kind::Or);
  }
};

/// An expression for a list.
struct List {
  enum class Kind { Literal, Values, Names, NamesOfSome, Union, Intersection, Difference, Unique, If };
  Kind kind = Kind::Literal;
  std::vector<std::string> items;
  std::string name;
  std::optional<Condition> condition;
  std::vector<List> lists;

  [[nodiscard]] std::string text() const {
    std::string const first = lists.empty() ? "" : lists[0].text();
    std::string const both = lists.size() < 2 ? first : first + ", " + lists[1].text();
    switch (kind) {
      case Kind::Literal: {
        std::string text;
        for (std::string const& item : items) text += (text.empty() ? "('" : ", '") + item + "'";
        return text + ")";
      }
      case Kind::Values:
        return "values(${/Case/Part:*/" + name + "})";
      case Kind::Names:
        return "names(" + parts + ")";
      case Kind::NamesOfSome:
        return "names(filter(" + parts + ", " + condition->text("") + "))";
      case Kind::Union:
        return "union(" + both + ")";
      case Kind::Intersection:
        return "intersection(" + both + ")";
      case Kind::Difference:
        return "difference(" + both + ")";
      case Kind::Unique:
        return "unique(" + first + ")";
      case Kind::If:
        return "if(" + condition->text("/Case/") + ", " + both + ")";
    }
    return {};
  }

  [[nodiscard]] Known has(Facts const& facts, std::string const& value) const {
    switch (kind) {
      case Kind::Literal:
        return std::find(items.begin(), items.end(), value) != items.end();
      case Kind::Values:
      case Kind::Names:
      case Kind::NamesOfSome:
        return hasInParts(facts, value);
      case Kind::Union:
        return junction(lists[0].has(facts, value), lists[1].has(facts, value), true);
      case Kind::Intersection:
        return junction(lists[0].has(facts, value), lists[1].has(facts, value), false);
      case Kind::Difference:
        return junction(lists[0].has(facts, value), negation(lists[1].has(facts, value)), false);
      case Kind::Unique:
        return lists[0].has(facts, value);
      case Kind::If: {
        Known const known = condition->holds(facts, "/Case");
        return known ? lists[*known ? 0 : 1].has(facts, value) : std::nullopt;
      }
    }
    return std::nullopt;
  }

 private:
  [[nodiscard]] Known hasInParts(Facts const& facts, std::string const& value) const {
    auto const paths = partsIn(facts);
    if (!paths) return std::nullopt;
    Known found = false;
    for (std::string const& path : *paths) {
      bool const isNamed = path == "/Case/Part:" + value;
      Known one = isNamed;
      if (kind == Kind::NamesOfSome && isNamed) one = condition->holds(facts, path);
      if (kind == Kind::Values) {
        auto const known = valueOf(facts, path, name);
        one = known ? Known(*known == value) : std::nullopt;
      }
      found = junction(found, one, true);
    }
    return found;
  }
};

class RandomLists {
 public:
  explicit RandomLists(unsigned seed) : random_(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }
  std::string name() { return std::string(1, static_cast<char>('A' + below(3))); }
  std::string value() {
    char const* const values[] = {"a", "b", "p1", "p2", "q"};
    return values[below(5)];
  }

  Condition condition(unsigned depth) {
    unsigned const kind = below(depth == 0 ? 2 : 5);
    if (kind < 2) return {static_cast<Condition::Kind>(kind), name(), value(), {}};
    Condition condition = {static_cast<Condition::Kind>(kind), {}, {}, {}};
    for (unsigned i = kind == 2 ? 1 : 2; i > 0; --i) condition.operands.push_back(this->condition(depth - 1));
    return condition;
  }

  List list(unsigned depth) {
    List list;
    list.kind = static_cast<List::Kind>(below(depth == 0 ? 4 : 9));
    if (list.kind == List::Kind::Literal) list.items = {value(), value()};
    if (list.kind == List::Kind::Values) list.name = name();
    bool const isChosen = list.kind == List::Kind::If;
    if (list.kind == List::Kind::NamesOfSome || isChosen) list.condition = condition(2);
    unsigned const count = list.kind == List::Kind::Unique ? 1 : list.kind >= List::Kind::Union ? 2 : 0;
    for (unsigned i = 0; i < count; ++i) list.lists.push_back(this->list(depth - 1));
    return list;
  }

  ModelState model() {
    ModelState model;
    fill(model["/Case"]);
    for (unsigned i = below(4); i > 0; --i) fill(model["/Case/Part:p" + std::to_string(i)]);
    return model;
  }

 private:
  void fill(std::map<std::string, std::string>& params) {
    for (char const* name : {"A", "B", "C"}) {
      if (below(3) != 0) params[name] = value();
    }
  }

  std::mt19937 random_;
};

/// The lists are allowed values of `/Case/Report`, which the walk decides last. So its rules read what is there now.
std::string rulesOf(std::vector<List> const& lists) {
  std::string text =
      "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n"
      "  /Case:\n    Parameters:\n      A: {Parameter Type: String}\n      B: {Parameter Type: String}\n"
      "      C: {Parameter Type: String}\n"
      "    Children:\n      Part: {Required: yes, Minimum Count: 0}\n      Report: {Singleton: yes, Required: yes}\n"
      "  /Case/Part:\n    Parameters:\n      A: {Parameter Type: String}\n      B: {Parameter Type: String}\n"
      "      C: {Parameter Type: String}\n  /Case/Report:\n    Parameters:\n";
  for (std::size_t i = 0; i < lists.size(); ++i) {
    text += "      L" + std::to_string(i) +
            ":\n        Parameter Type: String\n        Available With No Allowed Values: yes\n        Value List "
            "Source: |\n          " +
            lists[i].text() + "\n";
  }
  return text;
}

TEST(ListLaw, ProofsAboutComputedListsHoldByTheirFactsAloneAndNeedAllOfThem) {
  std::size_t proofs = 0;
  std::size_t allowed = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    RandomLists random(seed);
    std::vector<List> lists;
    for (unsigned i = 0; i < 30; ++i) lists.push_back(random.list(1 + random.below(3)));
    auto const rules = tarn::rules::parseRules(rulesOf(lists));
    for (unsigned models = 0; models < 3; ++models) {
      auto const session = std::move(Session::open(*rules, random.model()).session);
      ASSERT_NE(session, nullptr);
      for (std::size_t i = 0; i < lists.size(); ++i) {
        std::string const value = random.value();
        Item const item = {"/Case/Report", "L" + std::to_string(i)};
        Proof const proof = session->why(item, {Question::Allowed, value, 1});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": '" + value + "' in " + lists[i].text() + '\n' + textOf(proof));
        ProofNode const& node = proof.answer();
        bool const isAllowed = node.fact == Fact::ValueAllowed;
        ASSERT_TRUE(isAllowed || node.fact == Fact::NotInList);
        ASSERT_EQ(isAllowed, session->lookParam(item.path, *item.name)->allowed.allowedValues.contains(value));
        ASSERT_EQ(node.rules.size(), 1U);
        Explanation const& explanation = node.rules.front().explanation;
        Facts facts;
        std::vector<bool> const isNeeded = explanation.neededReads();
        for (std::size_t r = 0; r < isNeeded.size(); ++r) {
          if (isNeeded[r]) facts.push_back(explanation.reads[r]);
        }
        std::string named;
        for (ModelRead const& fact : facts) named += fact.object + '/' + fact.name + " = " + fact.value + '\n';
        SCOPED_TRACE(named);
        ASSERT_EQ(lists[i].has(facts, value), Known(isAllowed)) << "a fact is missing";
        for (std::size_t r = 0; r < facts.size(); ++r) {
          Facts without = facts;
          without.erase(without.begin() + static_cast<std::ptrdiff_t>(r));
          ASSERT_EQ(lists[i].has(without, value), std::nullopt)
              << facts[r].object << '/' << facts[r].name << " could be left out";
        }
        ++proofs;
        allowed += isAllowed ? 1 : 0;
      }
    }
  }
  EXPECT_GT(proofs, 3000U);
  EXPECT_GT(allowed, 500U);
}

}  // namespace
}  // namespace tarn::session::test
