// Conditions that can never or must always hold. A condition is first judged by itself, with what the rules say about
// the values of the parameters in it. Then it is judged together with facts: what holds wherever it is evaluated. The
// object exists, so its child entries are available and live; a parameter that exists is available; and so on. Facts
// can be left out without making a verdict wrong, so there are limits to how many are used.

#include "lint/ConditionLint.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "expression/CompiledRules.h"
#include "expression/NamedRule.h"
#include "lint/ConditionTerms.h"
#include "lint/ConstantExpression.h"

namespace tarn::rules {

namespace {

using Node = ConditionFormula::Node;

enum class Verdict { Open, Never, Always, GivenUp, Unreachable };

/// Something that holds wherever a condition is evaluated. Most facts are in no report, so it only refers to the entry
/// that a report would name.
struct Fact {
  enum class Meaning { NotReported, IsEvaluated, ObjectExists, ParameterExists, IsRequired };

  Node node;
  Meaning meaning = Meaning::NotReported;
  ObjDependDef const* object = nullptr;
  std::string const* entry = nullptr;  // of the object
  bool isChild = false;
  std::string_view attribute = {};  // of the entry
};

std::string const& nameOf(ParamAvail const& entry) {
  return entry.name;
}
std::string const& nameOf(ChildAvail const& entry) {
  return entry.type;
}

/// An analysis that goes further into what parameters depend on hardly ever finds more.
constexpr std::size_t mostRounds = 3;
constexpr std::size_t mostParameters = 16;
constexpr std::size_t mostContextRules = 4;
/// Longer check lists are only analysed up to here.
constexpr std::size_t longestList = 50;
constexpr std::size_t mostListedValues = 5;

bool isLiteral(Expression const& expression, bool value) {
  auto const* literal = as<Literal>(expression);
  return literal != nullptr && literal->kind() == Kind::Truth && constantTruth(*literal) == value;
}

Compiled const* compiledOf(std::unique_ptr<Condition> const& condition) {
  auto const* rule = dynamic_cast<CompiledCondition const*>(condition.get());
  return rule != nullptr ? &rule->compiled() : nullptr;
}

/// Whether `name` is at `path` or above the object at `context`.
bool isAtOrAbove(std::string const& path, std::string const& context) {
  return context.starts_with(path) && (context.size() == path.size() || context[path.size()] == '/' || path.empty());
}

/// A scope for a condition whose object is not known. No two paths that can be different meet in it.
ConditionScope unknownScope(Expression const& expression, Base base = {}) {
  std::vector<PathUse> paths;
  base.context = PathPattern();
  expression.collectPaths(paths, base);
  std::size_t mostParents = 0;
  std::vector<std::string> nearest;
  for (auto const& path : paths) {
    auto const& steps = path.pattern.steps();
    mostParents =
        std::max(mostParents,
                 static_cast<std::size_t>(std::count_if(steps.begin(), steps.end(), [](PathPattern::Step const& step) {
                   return step.kind == PathPattern::StepKind::Parent;
                 })));
    auto const& type = path.pattern.startType();
    if (path.pattern.start() != PathPattern::Start::Nearest) continue;
    if (std::find(nearest.begin(), nearest.end(), type) == nearest.end()) nearest.push_back(type);
  }
  ConditionScope scope;
  std::size_t number = 0;
  auto const addUnknown = [&] {
    for (std::size_t i = 0; i <= mostParents; ++i) {
      scope.context.append(unknownObject).append(std::to_string(++number));
    }
  };
  addUnknown();
  for (auto const& type : nearest) {
    scope.context += "/" + type + ":\3";
    addUnknown();
  }
  // The owner may be another object than the context.
  scope.owner = scope.context + "/\4:owner";
  for (std::size_t i = 0; i <= mostParents; ++i) scope.owner += "/\4:" + std::to_string(++number);
  return scope;
}

/// One condition that is judged, with what it needs.
struct Subject {
  Expression const* expression;
  std::string_view source;
  ConditionScope scope;
  /// The object in which it is evaluated; null when that is not known.
  ObjDependDef const* object = nullptr;
};

class ConditionLint {
 public:
  explicit ConditionLint(LintContext& context)
      : context_(context),
        values_(context.data()),
        isLookedInto_([this](NamedRule const& rule) { return !isDecided(rule); }) {}

  void run() {
    auto const& uses = context_.rules().uses();
    for (std::size_t i = 0; i < uses.size(); ++i) {
      auto const& use = uses[i];
      if (use.role == Role::Condition) {
        if (isOfCheckList(use)) {
          std::size_t end = i + 1;
          while (end < uses.size() && isSameList(use, uses[end])) ++end;
          checkList(i, end);
          i = end - 1;
        } else {
          check(use);
        }
      } else {
        checkQuantifiers(use, *use.compiled->expression);
      }
    }
    for (auto const* object : context_.data().objects()) {
      possibleContexts_.clear();
      for (auto const& param : object->params()) {
        if (!param->contexts.empty()) checkContexts(*object, param.get(), nullptr);
      }
      for (auto const& child : object->children()) {
        if (!child->contexts.empty()) checkContexts(*object, nullptr, child.get());
      }
    }
  }

 private:
  // What is judged

  static bool isOfCheckList(ExpressionUse const& use) {
    return use.attribute == "Default Value Check List" || use.attribute == "Value Override Check List";
  }
  /// Whether `other` is a later expression of the list that `use` begins.
  static bool isSameList(ExpressionUse const& use, ExpressionUse const& other) {
    return other.attribute == use.attribute && other.kind == use.kind && other.entryName == use.entryName &&
           other.objectName == use.objectName;
  }

  [[nodiscard]] Subject subjectOf(ExpressionUse const& use) {
    Subject subject{use.compiled->expression.get(), use.compiled->source, {}, nullptr};
    if (use.named != nullptr) {
      subject.scope = unknownScope(*subject.expression);
    } else if (!use.typePath().empty()) {
      if (use.objectName != lastName_) {
        lastName_ = use.objectName;
        lastObject_ = context_.data().getObjDependDef(use.typePath(), true);
        lastPath_ = representative(context_.data(), use.typePath());
        openConditions_.clear();
      }
      subject.scope.context = subject.scope.owner = lastPath_;
      subject.object = lastObject_;
    }
    return subject;
  }

  /// A named check that holds always or never is reported where it is defined, and so is one with a comparison that
  /// cannot be meant. A constant may be a switch that people turn. Rules that call it are not affected.
  bool isDecided(NamedRule const& rule) {
    auto const [known, isNew] = decided_.try_emplace(&rule, true);
    if (!isNew) return known->second;
    bool decided = context_.hasFault(rule);
    if (auto const* body = rule.expression(); body != nullptr && !decided) {
      Subject const subject{body, rule.source(), unknownScope(*body)};
      if (isOpenAtFirstSight(subject, nullptr)) {
        openRules_.insert(&rule);
        return decided_[&rule] = false;
      }
      ConditionTerms terms(context_.data(), isLookedInto_, values_);
      auto const node = terms.add(*body, rule.source(), subject.scope);
      std::vector<Fact> facts;
      addFacts(terms, subject, nullptr, facts);
      if (!terms.isTooLarge()) {
        terms.finish();
        std::size_t steps = conditionSteps;
        bool const hasFacts = !facts.empty();
        facts = relevant(terms, std::move(facts), node);
        bool needsAbsence = false;
        auto const verdict = judge(terms, nodesOf(facts), node, steps, &needsAbsence);
        decided = verdict == Verdict::Never || verdict == Verdict::Always;
        if (verdict == Verdict::Open) {
          if (areOperandsOpen(terms, steps)) openRules_.insert(&rule);
          bool const isSameEverywhere = !hasFacts && !needsAbsence && terms.readsRootAlone();
          if (isSameEverywhere) openEverywhere_.insert(&rule);
        }
      }
    }
    decided_[&rule] = decided;
    return decided;
  }

  [[nodiscard]] static bool areOperandsOpen(ConditionTerms& terms, std::size_t& steps) {
    auto const& operands = terms.operands();
    return std::all_of(operands.begin(), operands.end(), [&](ConditionTerms::Operand const& operand) {
      return judge(terms, {}, operand.node, steps) == Verdict::Open;
    });
  }

  // Conditions that are open at first sight

  /// A comparison of a parameter with a text. The most frequent conditions are one, or call one by its name.
  struct TextComparison {
    ParameterReference const* parameter;
    std::string const* text;
  };

  /// The comparison that a condition is, or that the named checks lead to which it calls. Nothing when it is something
  /// else. `isOpaque` is set when a check in between is not looked into.
  [[nodiscard]] std::optional<TextComparison> textComparison(Expression const& condition, bool& isOpaque) {
    auto const* part = &condition;
    for (std::size_t level = 0;; ++level) {
      if (as<Kept>(*part) != nullptr) part = part->operands().front();
      auto const* call = as<NamedCall>(*part);
      if (call == nullptr) break;
      if (part->kind() != Kind::Truth || call->rule().expression() == nullptr) return std::nullopt;
      if (level == ConditionTerms::mostCallLevels || isDecided(call->rule())) {
        isOpaque = true;
        return std::nullopt;
      }
      part = call->rule().expression();
    }
    auto const* comparison = as<Comparison>(*part);
    if (comparison == nullptr) return std::nullopt;
    auto const op = comparison->op();
    auto const* parameter = as<ParameterReference>(comparison->left());
    auto const* literal = as<Literal>(comparison->right());
    bool const isEquality = op == Comparison::Operator::Equal || op == Comparison::Operator::NotEqual;
    if (!isEquality || parameter == nullptr || literal == nullptr || literal->kind() != Kind::Text) return std::nullopt;
    if (parameter->origin().isNamed() || literal->rawText().empty()) return std::nullopt;
    return TextComparison{parameter, &literal->rawText()};
  }

  /// True when a comparison can hold and can fail, and no fact says more about its parameter. False when that needs the
  /// whole analysis.
  [[nodiscard]] bool isOpenAtFirstSight(Subject const& subject, ExpressionUse const* use) {
    bool isOpaque = false;
    auto const comparison = textComparison(*subject.expression, isOpaque);
    bool const isOpenCall = !comparison && !isOpaque && callsOpenRule(*subject.expression);
    if (!comparison && !isOpaque && !isOpenCall) return false;
    // A fact may be the same condition.
    if (subject.object != nullptr && hasOwnFacts(subject, use)) return false;
    if (isOpaque) return true;
    if (isOpenCall) {
      isLaterRead_ = true;
      return true;
    }
    auto const& pattern = comparison->parameter->objectPattern();
    std::string path;
    if (!pattern.isSingle()) return false;
    if (!pattern.resolve(TDFContext(subject.scope.context, subject.scope.owner), path)) return true;
    auto const* object = context_.data().getObjDependDef(PathUtils::typePathOf(path), true);
    auto const* entry = object != nullptr ? object->findParam(comparison->parameter->name()) : nullptr;
    if (entry == nullptr) return true;
    isLaterRead_ |= object == subject.object;
    if (entry->available != nullptr || !entry->contexts.empty()) return false;
    auto const values = values_.closedOf(entry);
    // With another value the comparison has the other result.
    return values == nullptr || values->texts.size() > 1 || values->texts.front() != *comparison->text;
  }

  /// Whether a condition is the call of a named check that is open wherever it is called, when nothing else is known.
  [[nodiscard]] bool callsOpenRule(Expression const& condition) {
    auto const* part = &condition;
    if (as<Kept>(*part) != nullptr) part = part->operands().front();
    auto const* call = as<NamedCall>(*part);
    return call != nullptr && !isDecided(call->rule()) && openEverywhere_.contains(&call->rule());
  }

  /// Whether anything is known to hold wherever a rule of an object is evaluated, see `addFacts`.
  [[nodiscard]] bool hasOwnFacts(Subject const& subject, ExpressionUse const* use) {
    if (!hasObjectFacts_ || factsOf_ != subject.object) {
      factsOf_ = subject.object;
      hasObjectFacts_ = existsOnlyUnderConditions(*subject.object);
    }
    if (*hasObjectFacts_ || use == nullptr) return *hasObjectFacts_;
    if (use->kind != EntryKind::Parameter && use->kind != EntryKind::Child) return use->attribute != "When";
    auto const isConditional = [&](auto const* entry) {
      return entry != nullptr &&
             (!entry->contexts.empty() || (use->attribute != "Available" && entry->available != nullptr));
    };
    return use->kind == EntryKind::Parameter ? isConditional(subject.object->findParam(use->entry()))
                                             : isConditional(subject.object->findChild(use->entry()));
  }

  /// Whether the child entry of an object or of one above it has a condition or a context.
  [[nodiscard]] bool existsOnlyUnderConditions(ObjDependDef const& object) const {
    for (std::string_view path = object.typePath(); !path.empty(); path = PathUtils::parentOf(path)) {
      auto const* parent = context_.data().getObjDependDef(std::string(PathUtils::parentOf(path)), true);
      auto const* child = parent != nullptr ? parent->findChild(std::string(PathUtils::lastType(path))) : nullptr;
      if (child != nullptr && (child->available != nullptr || !child->contexts.empty())) return true;
    }
    return false;
  }

  // Verdicts

  /// `needsAbsence` is set when the condition was only found to be open with parameters that do not exist.
  [[nodiscard]] static Verdict judge(ConditionTerms& terms, std::vector<Node> nodes, Node condition, std::size_t& steps,
                                     bool* needsAbsence = nullptr) {
    std::vector<std::size_t> values;
    auto* const found = needsAbsence != nullptr ? &values : nullptr;
    nodes.push_back(condition);
    auto const canHold = terms.formula().isSatisfiable(nodes, steps, found);
    if (!canHold) return Verdict::GivenUp;
    if (found != nullptr && *canHold) *needsAbsence |= terms.hasAbsent(values);
    nodes.back() = terms.formula().negation(condition);
    auto const canFail = terms.formula().isSatisfiable(nodes, steps, found);
    if (!canFail) return Verdict::GivenUp;
    if (found != nullptr && *canFail) *needsAbsence |= terms.hasAbsent(values);
    if (!*canHold) return *canFail ? Verdict::Never : Verdict::Unreachable;
    return *canFail ? Verdict::Open : Verdict::Always;
  }

  [[nodiscard]] static std::vector<Node> nodesOf(std::vector<Fact> const& facts) {
    std::vector<Node> nodes;
    nodes.reserve(facts.size() + 1);
    for (auto const& fact : facts) nodes.push_back(fact.node);
    return nodes;
  }

  /// The facts that have to do with the condition: that share a parameter with it, or with a fact that does.
  [[nodiscard]] static std::vector<Fact> relevant(ConditionTerms& terms, std::vector<Fact> facts, Node condition) {
    auto& formula = terms.formula();
    if (facts.empty()) return facts;
    std::vector<bool> marks(formula.variableCount());
    formula.markVariables(condition, marks);
    std::vector<Fact> found;
    for (bool isChanged = true; isChanged && !facts.empty();) {
      isChanged = false;
      for (auto fact = facts.begin(); fact != facts.end();) {
        std::vector<bool> own(marks.size());
        formula.markVariables(fact->node, own);
        bool meets = false;
        for (std::size_t i = 0; i < own.size(); ++i) meets |= own[i] && marks[i];
        if (!meets) {
          ++fact;
          continue;
        }
        for (std::size_t i = 0; i < own.size(); ++i) marks[i] = marks[i] || own[i];
        found.push_back(*fact);
        fact = facts.erase(fact);
        isChanged = true;
      }
    }
    return found;
  }

  /// Leaves out the facts without which the verdict is the same.
  static void reduce(ConditionTerms& terms, std::vector<Fact>& facts, Node condition, Verdict verdict,
                     std::size_t& steps) {
    for (std::size_t i = 0; i < facts.size();) {
      auto nodes = nodesOf(facts);
      nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(i));
      if (judge(terms, std::move(nodes), condition, steps) == verdict) {
        facts.erase(facts.begin() + static_cast<std::ptrdiff_t>(i));
      } else {
        ++i;
      }
    }
  }

  // Facts

  /// Where an attribute of an entry is written; without the attribute, where the entry is.
  [[nodiscard]] Item placeOf(ObjDependDef const& object, std::string const& name, bool isChild,
                             std::string_view attribute) {
    auto const& places = context_.rules().objectPlaces().at(object.typePath());
    auto const& positions = context_.positionsOf(object);
    auto const& place = isChild ? places.children[EntryPositions::indexIn(positions.children, name)]
                                : places.params[EntryPositions::indexIn(positions.params, name)];
    auto const found = place.attribute(attribute);
    return found ? found : place.name;
  }

  /// The condition that the last context rule parameter before the entry has one of `contexts`. Nothing when the entry
  /// has too many context rules before it. `end` is the number of parameters before the entry.
  [[nodiscard]] std::optional<Node> liveNode(ConditionTerms& terms, ObjDependDef const& object, std::string const& path,
                                             std::vector<std::string> const& contexts, std::size_t end) {
    auto const& positions = context_.positionsOf(object).contextRules;
    auto const last = std::lower_bound(positions.begin(), positions.end(), end);
    if (static_cast<std::size_t>(last - positions.begin()) > mostContextRules) return std::nullopt;
    auto& formula = terms.formula();
    Node live = formula.constant(std::find(contexts.begin(), contexts.end(), "") != contexts.end());
    for (auto position = positions.begin(); position != last; ++position) {
      auto const& name = object.params()[*position]->name;
      Node const absent = formula.negation(terms.addExists(path, name));
      live = formula.disjunction(terms.addHasOneOf(path, name, contexts), formula.conjunction(absent, live));
    }
    return live;
  }

  /// The object of an entry, as facts about the entry need it.
  struct Owner {
    ObjDependDef const& object;
    std::string const& path;
    std::size_t end;  // the number of parameters before the entry
  };

  /// The two conditions of an entry, when it has them.
  template <typename Entry>
  void addEntryFacts(ConditionTerms& terms, Owner const& owner, Entry const& entry, Fact::Meaning meaning,
                     std::vector<Fact>& facts) {
    addContextFact(terms, owner, entry, meaning, facts);
    addAvailableFact(terms, owner, entry, meaning, facts);
  }

  template <typename Entry>
  void addContextFact(ConditionTerms& terms, Owner const& owner, Entry const& entry, Fact::Meaning meaning,
                      std::vector<Fact>& facts) {
    if (entry.contexts.empty()) return;
    if (auto const live = liveNode(terms, owner.object, owner.path, entry.contexts, owner.end)) {
      facts.push_back(factOf(*live, meaning, owner, entry, "Context"));
    }
  }

  template <typename Entry>
  void addAvailableFact(ConditionTerms& terms, Owner const& owner, Entry const& entry, Fact::Meaning meaning,
                        std::vector<Fact>& facts) {
    if (auto const* compiled = compiledOf(entry.available)) {
      Node const node = terms.add(*compiled->expression, compiled->source, {owner.path, owner.path});
      facts.push_back(factOf(node, meaning, owner, entry, "Available"));
    }
  }

  template <typename Entry>
  [[nodiscard]] static Fact factOf(Node node, Fact::Meaning meaning, Owner const& owner, Entry const& entry,
                                   std::string_view attribute) {
    return {node, meaning, &owner.object, &nameOf(entry), std::is_same_v<Entry, ChildAvail>, attribute};
  }

  [[nodiscard]] std::size_t positionOf(ObjDependDef const& object, std::string const& parameter) {
    return EntryPositions::indexIn(context_.positionsOf(object).params, parameter);
  }

  /// The object at `path` exists, so the child entries of it and of all objects above it are live and available.
  void addObjectFacts(ConditionTerms& terms, std::string const& path, std::vector<Fact>& facts) {
    std::string_view object = path;
    while (!object.empty() && !terms.isTooLarge()) {
      std::string const parentPath(PathUtils::parentOf(object));
      std::string const type(PathUtils::lastType(object));
      auto const* parent = context_.data().getObjDependDef(PathUtils::typePathOf(parentPath), true);
      auto const* child = parent != nullptr ? parent->findChild(type) : nullptr;
      if (child != nullptr) {
        addEntryFacts(terms, {*parent, parentPath, parent->params().size()}, *child, Fact::Meaning::ObjectExists,
                      facts);
      }
      object = PathUtils::parentOf(object);
    }
  }

  /// A parameter that exists is live and available, and one that is required exists then.
  void addParameterFacts(ConditionTerms& terms, Subject const& subject, std::size_t end, std::vector<Fact>& facts) {
    for (std::size_t round = 0, from = 0; round < mostRounds; ++round) {
      std::size_t const known = terms.parameters().size();
      for (std::size_t i = from; i < known && i < mostParameters && !terms.isTooLarge(); ++i) {
        auto const& parameter = terms.parameters()[i];
        if (parameter.entry == nullptr || parameter.entry->validationRelaxed) continue;
        // Consequences of a parameter that never exists are not reported too.
        if (neverThere_.contains(parameter.entry)) continue;
        auto const& entry = *parameter.entry;
        auto const* object = parameter.object;
        std::size_t const position = positionOf(*object, parameter.name);
        // A parameter that comes later in a walk may not be there yet.
        bool const isLater = object == subject.object && position >= end;
        isLaterRead_ |= isLater;
        bool const isEarlier = isAtOrAbove(parameter.path, subject.scope.context) && !isLater;
        bool const isRequired = entry.required && isEarlier && alwaysHasValues(*entry.valueDef(), parameter);
        if (entry.contexts.empty() && entry.available == nullptr) {
          if (isRequired) terms.setAlwaysThere(i);
          continue;
        }
        Owner const owner{*object, parameter.path, position};
        std::vector<Fact> own;
        addEntryFacts(terms, owner, entry, Fact::Meaning::ParameterExists, own);
        auto& formula = terms.formula();
        Node const exists = terms.addExists(parameter.path, parameter.name);
        std::vector<Node> conditions;
        for (auto& fact : own) {
          conditions.push_back(fact.node);
          fact.node = formula.disjunction(formula.negation(exists), fact.node);
          facts.push_back(fact);
        }
        // Without the condition for being live it is not known when the parameter must exist.
        bool const isComplete =
            conditions.size() == (entry.contexts.empty() ? 0U : 1U) + (entry.available == nullptr ? 0U : 1U);
        if (isRequired && isComplete) {
          Node const node = formula.disjunction(exists, formula.negation(formula.conjunction(conditions)));
          facts.push_back(factOf(node, Fact::Meaning::IsRequired, owner, entry, "Required"));
        }
      }
      if (terms.parameters().size() == known) return;
      from = known;
    }
  }

  /// Whether a parameter has a value to choose whenever it is available. Without one it would not be available.
  [[nodiscard]] static bool alwaysHasValues(ParamValueDef const& def, ConditionTerms::Parameter const& parameter) {
    if (def.allowedValueKind == ParamValueDef::NoAllowedValues || def.availableWithNoAllowedValues) return true;
    return parameter.values != nullptr && def.allowedValueChecks.empty();
  }

  /// The facts that hold wherever a rule of an entry is evaluated.
  void addFacts(ConditionTerms& terms, Subject const& subject, ExpressionUse const* use, std::vector<Fact>& facts) {
    std::size_t end = static_cast<std::size_t>(-1);
    if (subject.object != nullptr) {
      addObjectFacts(terms, subject.scope.context, facts);
      if (use != nullptr && use->kind == EntryKind::Parameter) {
        if (auto const* entry = subject.object->findParam(use->entry())) {
          end = positionOf(*subject.object, use->entry());
          addOwnFacts(terms, subject, *use, *entry, end, facts);
        }
      } else if (use != nullptr && use->kind == EntryKind::Child) {
        if (auto const* entry = subject.object->findChild(use->entry())) {
          addOwnFacts(terms, subject, *use, *entry, subject.object->params().size(), facts);
        }
      } else if (use != nullptr && use->attribute != "When") {
        for (auto const& one : subject.object->checks()) {
          if (one->name != use->entry()) continue;
          if (auto const* when = compiledOf(one->when)) {
            facts.push_back({terms.add(*when->expression, when->source, subject.scope)});
          }
        }
      }
    }
    addParameterFacts(terms, subject, end, facts);
  }

  template <typename Entry>
  void addOwnFacts(ConditionTerms& terms, Subject const& subject, ExpressionUse const& use, Entry const& entry,
                   std::size_t end, std::vector<Fact>& facts) {
    Owner const owner{*subject.object, subject.scope.context, end};
    addContextFact(terms, owner, entry, Fact::Meaning::IsEvaluated, facts);
    // The entry need not be available when its availability is evaluated.
    if (use.attribute == "Available") return;
    addAvailableFact(terms, owner, entry, Fact::Meaning::IsEvaluated, facts);
  }

  // Reports

  /// The reason for a verdict that the rules for the values of parameters give. Empty when the form of the condition
  /// alone gives it.
  [[nodiscard]] static std::string reasonOf(ConditionTerms& terms, std::vector<Node> const& facts, Node condition,
                                            Verdict verdict) {
    std::string reason;
    for (std::size_t i = 0; i < terms.parameters().size(); ++i) {
      auto const former = terms.parameters()[i];
      if (!former.values && !former.range && !former.isAlwaysThere) continue;
      terms.setOpen(i);
      terms.finish();
      std::size_t steps = conditionSteps;
      bool const isNeeded = terms.needsAllValues(i) || judge(terms, facts, condition, steps) != verdict;
      if (isNeeded) {
        reason += reason.empty() ? ", because " : ", and ";
        reason += inQuotes(former.name);
        if (former.isAlwaysThere) reason += " is required";
        if (former.isAlwaysThere && (former.values || former.range)) reason += " and";
        if (former.range) reason += " " + former.range->text;
        if (former.values) reason += " can only be " + listed(former.values->texts);
      }
      terms.restore(i, former);
    }
    terms.finish();
    return reason;
  }

  [[nodiscard]] static std::string listed(std::vector<std::string> const& values) {
    if (values.size() > mostListedValues) return "one of its allowed values";
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i > 0) text += i + 1 == values.size() ? " or " : ", ";
      text += values[i].empty() ? "blank" : inQuotes(values[i]);
    }
    return text;
  }

  static std::string textOf(Verdict verdict, std::string const& what, std::string const& reason) {
    return verdict == Verdict::Never ? what + " can never hold" + reason + "; correct it, or remove what depends on it"
                                     : what + " always holds" + reason + "; correct it, or leave it out";
  }

  void warn(ExpressionUse const& use, Expression const& part, Verdict verdict, std::string const& what,
            std::string const& reason, std::vector<Fact> const& facts) {
    if (context_.hasFaultInside(use, part.range())) return;
    auto& warning = context_.warn(verdict == Verdict::Never ? Code::NeverHolds : Code::AlwaysHolds, use, part.range(),
                                  textOf(verdict, what, reason));
    addNotes(warning, facts);
  }

  void addNotes(Diagnostic& warning, std::vector<Fact> const& facts) {
    for (auto const& fact : facts) {
      if (fact.meaning == Fact::Meaning::NotReported) continue;
      auto const item = placeOf(*fact.object, *fact.entry, fact.isChild, fact.attribute);
      DiagnosticList::note(warning, *item.source, item.node->range(), meaningOf(fact));
    }
  }

  [[nodiscard]] static std::string meaningOf(Fact const& fact) {
    switch (fact.meaning) {
      case Fact::Meaning::ObjectExists:
        return "an object " + inQuotes(*fact.entry) + " exists only under this condition";
      case Fact::Meaning::ParameterExists:
        return "the parameter " + inQuotes(*fact.entry) + " exists only under this condition";
      case Fact::Meaning::IsRequired:
        return "the parameter " + inQuotes(*fact.entry) + " is required";
      case Fact::Meaning::IsEvaluated:
      case Fact::Meaning::NotReported:
        break;
    }
    return "this is evaluated only under this condition";
  }

  /// Whether a verdict is what the author has written on purpose.
  [[nodiscard]] bool isMeant(ExpressionUse const& use, Expression const& expression, Subject const& subject) const {
    if (isLiteral(expression, true)) return true;
    // `When: ..., Check: false` is the way to forbid something.
    if (use.kind != EntryKind::Check || use.attribute != "Check" || !isLiteral(expression, false)) return false;
    if (subject.object == nullptr) return false;
    for (auto const& one : subject.object->checks()) {
      if (one->name == use.entry()) return one->when != nullptr;
    }
    return false;
  }

  void giveUp(ExpressionUse const& use, Expression const& expression) {
    context_.warn(Code::AnalysisGivenUp, use, expression.range(),
                  "lint did not find out whether this condition always or never holds; divide it into named checks");
  }

  // The checks

  void check(ExpressionUse const& use) {
    auto const subject = subjectOf(use);
    bool const isAvailability = use.kind == EntryKind::Parameter && use.attribute == "Available";
    auto const* parameter =
        isAvailability && subject.object != nullptr ? subject.object->findParam(use.entry()) : nullptr;
    if (isKnownAsOpen(use, subject, parameter)) return;
    std::size_t const warningsBefore = context_.warningCount();
    isLaterRead_ = false;
    auto verdict = Verdict::Open;
    if (!isOpenRule(use) && !isMeant(use, *subject.expression, subject)) {
      verdict = judgeAndReport(use, subject, &use);
      if (verdict == Verdict::Never && parameter != nullptr) neverThere_.insert(parameter);
    }
    checkQuantifiers(use, *subject.expression);
    bool const isSilent = verdict == Verdict::Open && context_.warningCount() == warningsBefore;
    if (isSilent && parameter != nullptr && parameter->contexts.empty() && !isLaterRead_) {
      openConditions_.try_emplace(use.compiled.get(), positionOf(*subject.object, use.entry()));
    }
  }

  /// Whether a use is the body of a named check that is open with all its parts.
  [[nodiscard]] bool isOpenRule(ExpressionUse const& use) {
    if (use.named == nullptr || use.compiled->source != use.named->source()) return false;
    return !isDecided(*use.named) && openRules_.contains(use.named);
  }

  /// Whether the same availability of an earlier parameter of the object was found to be open. A later parameter knows
  /// the same facts: one without context has none of its own, and what must exist before the earlier one was all that
  /// the condition can read in the object.
  [[nodiscard]] bool isKnownAsOpen(ExpressionUse const& use, Subject const& subject, ParamAvail const* parameter) {
    if (parameter == nullptr || !parameter->contexts.empty()) return false;
    auto const known = openConditions_.find(use.compiled.get());
    return known != openConditions_.end() && known->second < positionOf(*subject.object, use.entry());
  }

  /// Judges one condition and, when it is open, its parts. Returns its verdict. `entryUse` is null for a condition that
  /// is evaluated in other objects than those that have it.
  Verdict judgeAndReport(ExpressionUse const& use, Subject const& subject, ExpressionUse const* entryUse) {
    if (isOpenAtFirstSight(subject, entryUse)) return Verdict::Open;
    ConditionTerms terms(context_.data(), isLookedInto_, values_);
    Node const node = terms.add(*subject.expression, subject.source, subject.scope);
    auto const operands = terms.operands();
    if (terms.isTooLarge()) {
      giveUp(use, *subject.expression);
      return Verdict::GivenUp;
    }
    std::vector<Fact> facts;
    addFacts(terms, subject, entryUse, facts);
    if (terms.isTooLarge()) {
      // The condition alone can be analysed.
      ConditionTerms alone(context_.data(), isLookedInto_, values_);
      Node const only = alone.add(*subject.expression, subject.source, subject.scope);
      return judgeWith(use, subject, alone, only, alone.operands(), {});
    }
    return judgeWith(use, subject, terms, node, operands, std::move(facts));
  }

  Verdict judgeWith(ExpressionUse const& use, Subject const& subject, ConditionTerms& terms, Node node,
                    std::vector<ConditionTerms::Operand> const& operands, std::vector<Fact> facts) {
    terms.finish();
    std::size_t steps = conditionSteps;
    // Most conditions are open. One that is so together with all facts is so with some of them, and by itself.
    auto verdict = judge(terms, nodesOf(facts), node, steps);
    if (verdict != Verdict::Open) {
      steps = conditionSteps;
      verdict = judge(terms, {}, node, steps);
      if (verdict == Verdict::Never || verdict == Verdict::Always) {
        warn(use, *subject.expression, verdict, "this condition", reasonOf(terms, {}, node, verdict), {});
        return verdict;
      }
      facts = relevant(terms, std::move(facts), node);
      if (verdict == Verdict::Open && !facts.empty()) {
        verdict = judge(terms, nodesOf(facts), node, steps);
        if (verdict == Verdict::Never || verdict == Verdict::Always) {
          reduce(terms, facts, node, verdict, steps);
          auto const reason = reasonOf(terms, nodesOf(facts), node, verdict);
          warn(use, *subject.expression, verdict, "where it is evaluated this condition", reason, facts);
          return verdict;
        }
      }
    }
    std::vector<Expression const*> reported;
    for (auto operand = operands.rbegin(); operand != operands.rend() && verdict != Verdict::GivenUp; ++operand) {
      auto const* part = operand->expression;
      auto const isInside = [&](Expression const* other) {
        auto const& outer = other->range();
        auto const& inner = part->range();
        return outer.offset <= inner.offset && inner.offset + inner.length <= outer.offset + outer.length;
      };
      // The parts of a part are before it.
      if (std::any_of(reported.begin(), reported.end(), isInside)) continue;
      if (isLiteral(*part, true) || isLiteral(*part, false)) continue;
      auto const ofPart = judge(terms, {}, operand->node, steps);
      if (ofPart == Verdict::GivenUp) verdict = ofPart;
      if (ofPart != Verdict::Never && ofPart != Verdict::Always) continue;
      reported.push_back(part);
      warn(use, *part, ofPart, "this part of the condition", reasonOf(terms, {}, operand->node, ofPart), {});
    }
    if (verdict == Verdict::GivenUp) giveUp(use, *subject.expression);
    return verdict;
  }

  /// The conditions of `any`, `all`, `count` and `filter`, which are evaluated in other objects.
  void checkQuantifiers(ExpressionUse const& use, Expression const& expression) {
    struct Part {
      Expression const* expression;
      Base base;
    };
    std::vector<Part> open{{&expression, Base()}};
    while (!open.empty()) {
      auto const [part, base] = std::move(open.back());
      open.pop_back();
      auto const operands = part->operands();
      if (operands.size() == 2 && as<Quantifier>(*part) != nullptr) {
        checkBody(use, *operands[1], part->operandBase(1, base));
      }
      for (std::size_t i = 0; i < operands.size(); ++i) open.push_back({operands[i], part->operandBase(i, base)});
    }
  }

  void checkBody(ExpressionUse const& use, Expression const& body, Base const& base) {
    auto const& objects = base.context;
    if (isLiteral(body, true)) return;
    Subject subject{&body, use.compiled->source, unknownScope(body, base), nullptr};
    auto const types = context_.resolve(use, objects);
    bool const isKnown = types->size() == 1 && !types->begin()->empty();
    if (isKnown && (use.named == nullptr || objects.isAbsolute())) {
      subject.object = context_.data().getObjDependDef(*types->begin(), true);
      subject.scope.context = representative(context_.data(), *types->begin(), '\2');
      if (use.named == nullptr) subject.scope.owner = representative(context_.data(), use.typePath());
    }
    judgeAndReport(use, subject, nullptr);
  }

  /// The conditions of a check list, of which the first that holds applies. `begin` and `end` are indexes in `uses`.
  void checkList(std::size_t begin, std::size_t end) {
    auto const& uses = context_.rules().uses();
    std::vector<ExpressionUse const*> conditions;
    ExpressionUse const* always = nullptr;
    bool isReported = false;
    for (std::size_t i = begin; i < end; ++i) {
      auto const& use = uses[i];
      if (use.role != Role::Condition) {
        checkQuantifiers(use, *use.compiled->expression);
        continue;
      }
      auto const subject = subjectOf(use);
      if (always != nullptr) {
        if (!std::exchange(isReported, true)) reportUnreachable(use, {always}, defaultBehind(use));
        continue;
      }
      checkQuantifiers(use, *subject.expression);
      if (isLiteral(*subject.expression, true)) {
        always = &use;
        continue;
      }
      auto const verdict = judgeAndReport(use, subject, &use);
      if (verdict == Verdict::Always) always = &use;
      if (verdict == Verdict::Open && !conditions.empty() && conditions.size() < longestList &&
          isCovered(conditions, &use)) {
        reportUnreachable(use, conditions);
      }
      if (verdict != Verdict::Never) conditions.push_back(&use);
    }
    if (!isReported) checkDefaultBehind(uses[begin], always, conditions);
  }

  /// Whether one of `conditions` holds whenever the condition of `last` holds; always, when `last` is null.
  [[nodiscard]] bool isCovered(std::vector<ExpressionUse const*> const& conditions, ExpressionUse const* last) {
    ConditionTerms terms(context_.data(), isLookedInto_, values_);
    std::vector<Node> nodes;
    nodes.reserve(conditions.size() + 1);
    auto const subject = subjectOf(*conditions.front());
    for (auto const* use : conditions) {
      nodes.push_back(
          terms.formula().negation(terms.add(*use->compiled->expression, use->compiled->source, subject.scope)));
    }
    std::optional<Node> asked;
    if (last != nullptr) {
      asked = terms.add(*last->compiled->expression, last->compiled->source, subject.scope);
      nodes.push_back(*asked);
    }
    std::vector<Fact> facts;
    if (!terms.isTooLarge()) addFacts(terms, subject, conditions.front(), facts);
    if (terms.isTooLarge()) return false;
    terms.finish();
    facts = relevant(terms, std::move(facts), terms.formula().conjunction(nodes));
    std::size_t steps = conditionSteps;
    auto given = nodesOf(facts);
    // When nothing at all is possible here, that is reported elsewhere.
    if (!terms.formula().isSatisfiable(given, steps).value_or(false)) return false;
    if (asked) {
      given.push_back(*asked);
      if (!terms.formula().isSatisfiable(given, steps).value_or(false)) return false;
    }
    given.insert(given.end(), nodes.begin(), nodes.end());
    return !terms.formula().isSatisfiable(given, steps).value_or(true);
  }

  /// `unused` is the default that the same entry makes unreachable, when there is one.
  void reportUnreachable(ExpressionUse const& use, std::vector<ExpressionUse const*> const& earlier,
                         Item const& unused = {}) {
    auto& warning = context_.warn(Code::UnreachableEntry, use, use.compiled->expression->range(),
                                  "this entry is never reached, because an entry before it applies whenever its "
                                  "condition holds; move it up, or remove it");
    if (earlier.size() == 1) {
      auto const& item = earlier.front()->item;
      DiagnosticList::note(warning, *item.source, item.node->range(), "this condition holds then");
    }
    if (unused) {
      DiagnosticList::note(warning, *unused.source, unused.node->range(),
                           "this default is never used for the same reason");
    }
  }

  /// The `Default Value` behind a check list of defaults.
  [[nodiscard]] Item defaultBehind(ExpressionUse const& list) {
    if (list.attribute != "Default Value Check List") return {};
    auto const* object = context_.data().getObjDependDef(list.typePath(), true);
    auto const& place = context_.rules().objectPlaces().at(list.typePath()).params[positionOf(*object, list.entry())];
    return place.attribute("Default Value");
  }

  /// A default behind a check list that always applies.
  void checkDefaultBehind(ExpressionUse const& list, ExpressionUse const* always,
                          std::vector<ExpressionUse const*> const& conditions) {
    auto const item = defaultBehind(list);
    if (!item) return;
    bool const isNeverUsed = always != nullptr || (!conditions.empty() && conditions.size() <= longestList &&
                                                   isCovered(conditions, nullptr));
    if (!isNeverUsed) return;
    context_.warn(Code::UnreachableEntry, item,
                  "this default is never used, because one of the conditions of the Default Value Check List always "
                  "holds; remove it");
  }

  /// An entry that is never live, because its contexts exclude what holds wherever it could be live.
  void checkContexts(ObjDependDef const& object, ParamAvail const* param, ChildAvail const* child) {
    auto const& contexts = param != nullptr ? param->contexts : child->contexts;
    auto const& name = param != nullptr ? param->name : child->type;
    std::size_t const end = param != nullptr ? positionOf(object, name) : object.params().size();
    // Entries with the same contexts behind the same context rules are live at the same time.
    auto const& rules = context_.positionsOf(object).contextRules;
    auto const firstBehind = std::lower_bound(rules.begin(), rules.end(), end) - rules.begin();
    auto const known = possibleContexts_.find(contexts);
    if (known != possibleContexts_.end() && known->second == firstBehind) return;
    isLaterRead_ = false;
    std::size_t const warningsBefore = context_.warningCount();
    judgeContexts(object, contexts, name, end, child != nullptr);
    if (!isLaterRead_ && context_.warningCount() == warningsBefore) possibleContexts_[contexts] = firstBehind;
  }

  void judgeContexts(ObjDependDef const& object, std::vector<std::string> const& contexts, std::string const& name,
                     std::size_t end, bool isChild) {
    Subject subject{nullptr, {}, {}, &object};
    subject.scope.context = subject.scope.owner = representative(context_.data(), object.typePath());
    ConditionTerms terms(context_.data(), isLookedInto_, values_);
    auto const live = liveNode(terms, object, subject.scope.context, contexts, end);
    if (!live) return;
    std::vector<Fact> facts;
    addObjectFacts(terms, subject.scope.context, facts);
    addParameterFacts(terms, subject, end, facts);
    if (terms.isTooLarge()) return;
    facts = relevant(terms, std::move(facts), *live);
    if (facts.empty()) return;
    terms.finish();
    std::size_t steps = conditionSteps;
    // Contexts that no context rule can have are reported one by one.
    if (judge(terms, {}, *live, steps) != Verdict::Open) return;
    if (judge(terms, nodesOf(facts), *live, steps) != Verdict::Never) return;
    reduce(terms, facts, *live, Verdict::Never, steps);
    auto const item = placeOf(object, name, isChild, "Context");
    auto& warning = context_.warn(Code::NeverLive, item,
                                  "the last context rule before this entry never has this value, so the entry is never "
                                  "live; correct its context, "
                                  "or remove the entry");
    addNotes(warning, facts);
  }

  LintContext& context_;
  ValuesOfRules values_;
  std::function<bool(NamedRule const&)> isLookedInto_;
  std::unordered_map<NamedRule const*, bool> decided_;
  std::unordered_set<NamedRule const*> openRules_;       // open by themselves, with all parts
  std::unordered_set<NamedRule const*> openEverywhere_;  // see `callsOpenRule`
  std::unordered_set<ParamAvail const*> neverThere_;
  bool isLaterRead_ = false;  // facts about a parameter of the subject's object were left out, because it comes later
  // About the last object of which it was asked.
  ObjDependDef const* factsOf_ = nullptr;
  std::optional<bool> hasObjectFacts_;
  // About the object of the last rule.
  YamlNode const* lastName_ = nullptr;
  ObjDependDef const* lastObject_ = nullptr;
  std::string lastPath_;
  std::unordered_map<Compiled const*, std::size_t> openConditions_;  // and the first parameter that has each
  // The contexts of entries of one object that can occur, and the number of context rules before the entry.
  std::map<std::vector<std::string>, std::ptrdiff_t> possibleContexts_;
};

}  // namespace

void checkConditions(LintContext& context) {
  ConditionLint(context).run();
}

}  // namespace tarn::rules
