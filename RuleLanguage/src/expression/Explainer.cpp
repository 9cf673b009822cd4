// Explains one evaluation in three steps.
//
// First, the expression is evaluated as a tree of parts that holds all that could decide: every failing operand of an
// `and` that fails, not only the first. Each part knows what it read itself, which parts it always needs, and of which
// parts one is enough. So the tree says for any set of facts whether they determine the result: a part is determined
// when its own reads are known, all parts that it needs are determined, and so is one of those of which one is enough.
// This is evaluation in three-valued logic, in which everything else is unknown.
//
// Second, a smallest set of facts is looked for. It begins with the reads of the first part wherever one is enough, and
// each read that can be left out is left out. There can be some: `(a or b) and b` is decided by b alone.
//
// Third, the parts that these facts determine are written out. The other failing operands come beside them, marked.

#include "expression/Explainer.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/RecordingModel.h>

#include "expression/NamedRule.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

using Operation = Explanation::Operation;
using Result = Explanation::Result;

constexpr std::size_t none = static_cast<std::size_t>(-1);
/// Up to this number, operands or objects are looked at one by one. A longer row of operands becomes one part.
constexpr std::size_t maxRow = 500;
/// So many objects of a longer row are shown, and what they read is kept.
constexpr std::size_t maxExamples = 3;
/// So many witnesses of `any` are looked at to find one that needs no further fact.
constexpr std::size_t maxWitnesses = 20;
/// So many counterexamples of `all` are shown.
constexpr std::size_t maxCounterexamples = 3;
/// The work for leaving out reads: reads times parts.
constexpr std::size_t maxReduction = 200'000;

struct Part {
  Explanation::Node node;             // without children
  std::vector<std::size_t> needed;    // parts
  std::vector<std::size_t> deciders;  // parts; when there are any, one of them is needed
  bool showsOthers = false;           // the deciders that are not needed fail as well, and are shown
};

Operation operationOf(Comparison::Operator op) {
  switch (op) {
    case Comparison::Operator::Equal:
      return Operation::Equal;
    case Comparison::Operator::NotEqual:
      return Operation::NotEqual;
    case Comparison::Operator::Less:
      return Operation::Less;
    case Comparison::Operator::LessEqual:
      return Operation::LessEqual;
    case Comparison::Operator::Greater:
      return Operation::Greater;
    case Comparison::Operator::GreaterEqual:
      break;
  }
  return Operation::GreaterEqual;
}

Operation operationOf(Logic::Operator op) {
  switch (op) {
    case Logic::Operator::And:
      return Operation::And;
    case Logic::Operator::Or:
      return Operation::Or;
    case Logic::Operator::Implies:
      return Operation::Implies;
    case Logic::Operator::Not:
      break;
  }
  return Operation::Not;
}

Operation operationOf(Quantifier::Operator op) {
  switch (op) {
    case Quantifier::Operator::Count:
      return Operation::Count;
    case Quantifier::Operator::Any:
      return Operation::Any;
    case Quantifier::Operator::All:
      return Operation::All;
    case Quantifier::Operator::Filter:
      break;
  }
  return Operation::Filter;
}

/// The operation of a part whose operands all count.
Operation strictOperationOf(Expression const& expression) {
  if (auto const* comparison = as<Comparison>(expression)) return operationOf(comparison->op());
  if (auto const* membership = as<Membership>(expression)) {
    return membership->negated() ? Operation::NotIn : Operation::In;
  }
  if (as<Arithmetic>(expression) != nullptr || as<Negation>(expression) != nullptr) return Operation::Arithmetic;
  if (auto const* call = as<FunctionCall>(expression)) {
    return call->function().name == "exists" ? Operation::Exists : Operation::Function;
  }
  if (as<ListLiteral>(expression) != nullptr) return Operation::ListOfItems;
  if (as<ParameterReference>(expression) != nullptr) return Operation::Parameter;
  if (as<ObjectSet>(expression) != nullptr) return Operation::Objects;
  if (as<Literal>(expression) != nullptr || as<QuantityLiteral>(expression) != nullptr) return Operation::Literal;
  return Operation::Function;
}

Form naturalForm(Kind kind) {
  switch (kind) {
    case Kind::Truth:
      return Form::Truth;
    case Kind::Number:
      return Form::Number;
    case Kind::List:
      return Form::List;
    case Kind::Objects:
      return Form::Objects;
    case Kind::Text:
    case Kind::Value:
      break;
  }
  return Form::Text;
}

template <typename Items>
void setItems(Result& result, Items const& items) {
  result.itemCount = items.size();
  auto const kept = static_cast<std::ptrdiff_t>(std::min(items.size(), Result::maxItems));
  result.items.assign(items.begin(), items.begin() + kept);
}

Result evaluate(Expression const& expression, Form form, Frame const& frame) {
  Result result;
  switch (form) {
    case Form::Truth:
      result.kind = Result::Kind::Truth;
      result.truth = expression.truth(frame);
      break;
    case Form::Number:
      result.kind = Result::Kind::Number;
      result.number = expression.number(frame);
      result.text = expression.text(frame);
      break;
    case Form::Text:
      result.kind = Result::Kind::Text;
      result.text = expression.text(frame).substr(0, ModelRead::maxValue);
      break;
    case Form::List:
      result.kind = Result::Kind::List;
      setItems(result, expression.list(frame));
      break;
    case Form::Objects:
      result.kind = Result::Kind::Objects;
      setItems(result, expression.objects(frame));
      break;
  }
  return result;
}

/// Which parts of an expression are wanted.
enum class Extent { DecidingParts, AllParts };

class Explainer {
 public:
  Explainer(ModelTDF const& model, Extent extent)
      : showsAll_(extent == Extent::AllParts), recording_(model, Explanation::maxReads), evalContext_(&recording_) {
    recording_.recordAll(false);
  }

  Explanation explain(ExplainedRule const& rule, Form form, TDFContext const& context) {
    sources_.push_back({rule.source, rule.place, {}});
    (void)add(rule.expression, form, Frame{recording_, context, &evalContext_}, Position{0, 0});
    reduce();
    return write();
  }

 private:
  /// The text that ranges belong to, or `none`, and the depth of a part.
  struct Position {
    std::size_t source;
    std::size_t depth;

    [[nodiscard]] Position below() const { return {source, depth + 1}; }
  };

  // The tree of parts. Parts of a part come after it. The depth is limited, so these may recurse.

  std::size_t add(Expression const& written, Form form, Frame const& frame, Position at) {
    Expression const* expression = &written;
    while (auto const* kept = as<Kept>(*expression)) expression = kept->operands().front();
    if (parts_.size() >= Explanation::maxNodes || at.depth >= Explanation::maxDepth) {
      return addLeaf(*expression, Operation::Opaque, form, frame, at);
    }
    if (auto const* logic = as<Logic>(*expression)) return addLogic(*logic, form, frame, at);
    if (auto const* quantifier = as<Quantifier>(*expression)) return addQuantifier(*quantifier, form, frame, at);
    if (auto const* choice = as<Choice>(*expression)) return addChoice(*choice, form, frame, at);
    if (auto const* call = as<NamedCall>(*expression)) return addNamedCall(*call, form, frame, at);
    if (auto const* list = as<GuardedList>(*expression)) return addGuardedList(*list, form, frame, at);
    return addStrict(*expression, form, frame, at);
  }

  /// Makes the part of an expression without its result.
  std::size_t addPart(Expression const& expression, Operation operation, Frame const& frame, Position at) {
    Part& part = parts_.emplace_back();
    part.node.operation = operation;
    part.node.context = frame.context.objPath();
    if (at.source != none) {
      part.node.source = at.source;
      part.node.offset = expression.range().offset;
      part.node.length = expression.range().length;
    }
    if (auto const* call = as<FunctionCall>(expression)) part.node.name = call->function().name;
    return parts_.size() - 1;
  }

  /// Evaluates, and adds everything that is read to `reads`.
  Result evaluateRecorded(Expression const& expression, Form form, Frame const& frame,
                          std::vector<std::size_t>& reads) {
    recording_.setSink(&reads);
    Result result = evaluate(expression, form, frame);
    recording_.setSink(nullptr);
    if (auto const* parameter = as<ParameterReference>(expression);
        parameter != nullptr && parameter->objectPattern().isSingle()) {
      result.truth = parameter->truth(frame);
      result.number = parameter->number(frame);
      result.text = parameter->text(frame).substr(0, ModelRead::maxValue);
    }
    return result;
  }

  std::size_t addLeaf(Expression const& expression, Operation operation, Form form, Frame const& frame, Position at) {
    if (operation == Operation::Opaque) isMinimal_ = false;
    std::size_t const index = addPart(expression, operation, frame, at);
    std::vector<std::size_t> reads;
    Result result = evaluateRecorded(expression, form, frame, reads);
    parts_[index].node.result = std::move(result);
    parts_[index].node.reads = std::move(reads);
    return index;
  }

  /// A part whose operands all count. It may read more than they show, such as the quantity type of a parameter.
  std::size_t addStrict(Expression const& expression, Form form, Frame const& frame, Position at) {
    auto const operands = expression.operands();
    bool const isOfLongSet = std::any_of(operands.begin(), operands.end(), [&](Expression const* operand) {
      auto const* quantifier = as<Quantifier>(*operand);
      return quantifier != nullptr && hasMoreThan(maxRow, *quantifier->operands().front(), frame);
    });
    if (isOfLongSet) return addOverLongSet(expression, form, frame, at);
    std::size_t const index = addLeaf(expression, strictOperationOf(expression), form, frame, at);
    if (operands.size() > maxRow) {
      isMinimal_ = false;
      return index;
    }
    std::vector<std::size_t> needed;
    std::vector<std::size_t> ofOperands;
    for (Expression const* operand : operands) {
      // `values(...)` and `exists(...)` ask for a parameter in their own way.
      bool const isAsked = as<FunctionCall>(expression) != nullptr && as<ParameterReference>(*operand) != nullptr &&
                           (parts_[index].node.operation == Operation::Exists ||
                            !as<ParameterReference>(*operand)->objectPattern().isSingle());
      if (isAsked) continue;
      Form const operandForm = naturalForm(operand->kind());
      needed.push_back(add(*operand, operandForm, frame, at.below()));
      // The operand may have read what it did not need: the operands of an `or` before the one that decided.
      recording_.setSink(&ofOperands);
      (void)evaluate(*operand, operandForm, frame);
      recording_.setSink(nullptr);
    }
    std::erase_if(parts_[index].node.reads, [&](std::size_t read) {
      return std::find(ofOperands.begin(), ofOperands.end(), read) != ofOperands.end();
    });
    parts_[index].needed = std::move(needed);
    return index;
  }

  /// A part with an operand over very many objects. Only the operands say what was read: to record it again would take
  /// longer than everything else.
  std::size_t addOverLongSet(Expression const& expression, Form form, Frame const& frame, Position at) {
    std::size_t const index = addPart(expression, strictOperationOf(expression), frame, at);
    std::vector<std::size_t> needed;
    for (Expression const* operand : expression.operands()) {
      needed.push_back(add(*operand, naturalForm(operand->kind()), frame, at.below()));
    }
    parts_[index].node.result = evaluate(expression, form, frame);
    parts_[index].needed = std::move(needed);
    return index;
  }

  /// Adds those of `operands` whose truth is `truth`.
  std::vector<std::size_t> addAllThatAre(bool truth, std::vector<Expression const*> const& operands, Frame const& frame,
                                         Position at) {
    std::vector<std::size_t> result;
    for (Expression const* operand : operands) {
      if (operand->truth(frame) == truth) result.push_back(add(*operand, Form::Truth, frame, at.below()));
    }
    return result;
  }

  std::size_t addLogic(Logic const& logic, Form form, Frame const& frame, Position at) {
    auto const operands = logic.operands();
    if (operands.size() > maxRow || form != Form::Truth) return addLeaf(logic, Operation::Opaque, form, frame, at);
    std::size_t const index = addPart(logic, Operation::Not, frame, at);
    bool const truth = logic.truth(frame);
    std::vector<std::size_t> needed;
    std::vector<std::size_t> deciders;
    Operation operation = Operation::Not;
    bool showsOthers = false;
    std::size_t total = operands.size();
    if (showsAll_) {
      for (Expression const* operand : operands) needed.push_back(add(*operand, Form::Truth, frame, at.below()));
      Part& part = parts_[index];
      part.node.operation = operationOf(logic.op());
      part.node.result.truth = truth;
      part.node.total = total;
      part.node.agreeing = agreeingWith(logic, truth, needed);
      part.needed = std::move(needed);
      return index;
    }
    switch (logic.op()) {
      case Logic::Operator::Not:
        needed.push_back(add(*operands.front(), Form::Truth, frame, at.below()));
        break;
      case Logic::Operator::And:
      case Logic::Operator::Or: {
        bool const isAnd = logic.op() == Logic::Operator::And;
        operation = isAnd ? Operation::And : Operation::Or;
        auto agreeing = addAllThatAre(truth, operands, frame, at);
        showsOthers = isAnd && !truth;
        (truth == isAnd ? needed : deciders) = std::move(agreeing);
        break;
      }
      case Logic::Operator::Implies: {
        operation = Operation::Implies;
        bool const first = operands[0]->truth(frame);
        bool const second = operands[1]->truth(frame);
        auto& parts = truth ? deciders : needed;
        if (!truth || !first) parts.push_back(add(*operands[0], Form::Truth, frame, at.below()));
        if (!truth || second) parts.push_back(add(*operands[1], Form::Truth, frame, at.below()));
        break;
      }
    }
    Part& part = parts_[index];
    part.node.operation = operation;
    part.node.result.truth = truth;
    part.node.total = total;
    part.node.agreeing = needed.size() + deciders.size();
    part.needed = std::move(needed);
    part.deciders = std::move(deciders);
    part.showsOthers = showsOthers;
    return index;
  }

  /// How many of the operands of a logical expression lead to its result.
  [[nodiscard]] std::size_t agreeingWith(Logic const& logic, bool truth,
                                         std::vector<std::size_t> const& operands) const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < operands.size(); ++i) {
      bool const isTurned = logic.op() == Logic::Operator::Not || (logic.op() == Logic::Operator::Implies && i == 0);
      if (parts_[operands[i]].node.result.truth == (isTurned ? !truth : truth)) ++count;
    }
    // An implication that does not hold needs both.
    return logic.op() == Logic::Operator::Implies && !truth ? operands.size() : count;
  }

  static bool hasMoreThan(std::size_t number, Expression const& set, Frame const& frame) {
    std::size_t count = 0;
    return set.anyObject(frame, [&](std::string const&) { return ++count > number; });
  }

  std::size_t addQuantifier(Quantifier const& quantifier, Form form, Frame const& frame, Position at) {
    auto const operands = quantifier.operands();
    Operation const operation = operationOf(quantifier.op());
    bool const isLong = hasMoreThan(maxRow, *operands.front(), frame);
    bool const isInNaturalForm = form == naturalForm(quantifier.kind()) && operation != Operation::Filter;
    if (isLong && operands.size() == 2 && isInNaturalForm) {
      return addLongQuantifier(quantifier, operation, frame, at);
    }
    auto const objects = operands.front()->objects(frame);
    if (isLong) {
      std::size_t const index = addLeaf(quantifier, operation, form, frame, at);
      isMinimal_ = false;
      parts_[index].node.total = objects.size();
      return index;
    }
    std::size_t const index = addPart(quantifier, operation, frame, at);
    Result const result = evaluate(quantifier, form, frame);
    bool const isEitherWay = operation == Operation::Any || operation == Operation::All;
    bool const isDecidedByOne = !showsAll_ && isEitherWay && result.truth == (operation == Operation::Any);

    std::vector<std::size_t> needed;
    std::vector<std::size_t> deciders;
    std::size_t agreeing = 0;
    if (!isDecidedByOne) needed.push_back(add(*operands[0], Form::Objects, frame, at.below()));
    for (std::string const& path : objects) {
      if (operands.size() < 2) break;
      quantifier.atObject(frame, path, [&](Frame const& inner) {
        bool const holds = operands[1]->truth(inner);
        if (isEitherWay ? holds == result.truth : holds) ++agreeing;
        if (!isDecidedByOne) {
          needed.push_back(add(*operands[1], Form::Truth, inner, at.below()));
        } else if (holds == result.truth && deciders.size() < maxWitnesses) {
          deciders.push_back(add(*operands[1], Form::Truth, inner, at.below()));
          addMembership(*operands[0], frame, path, parts_[deciders.back()]);
        }
        return holds;
      });
    }
    Part& part = parts_[index];
    part.node.result = result;
    part.node.total = objects.size();
    part.node.agreeing = operands.size() < 2 ? objects.size() : agreeing;
    part.needed = std::move(needed);
    part.deciders = std::move(deciders);
    part.showsOthers = operation == Operation::All;
    return index;
  }

  /// A condition on very many objects, in one pass over them. It ends when enough objects have decided. If the result
  /// needs all objects, the first ones are shown as examples.
  std::size_t addLongQuantifier(Quantifier const& quantifier, Operation operation, Frame const& frame, Position at) {
    auto const operands = quantifier.operands();
    std::size_t const index = addPart(quantifier, operation, frame, at);
    bool const isEitherWay = operation == Operation::Any || operation == Operation::All;
    bool const decisive = operation == Operation::Any;
    std::vector<std::size_t> deciders;
    std::vector<std::size_t> examples;
    std::size_t total = 0;
    std::size_t holding = 0;
    std::size_t firstDecider = 0;
    bool const isDecided = operands[0]->anyObject(frame, [&](std::string const& path) {
      ++total;
      return quantifier.atObject(frame, path, [&](Frame const& inner) {
        bool const holds = operands[1]->truth(inner);
        if (holds) ++holding;
        bool const isDecider = isEitherWay && !showsAll_ && holds == decisive;
        auto& shown = isDecider ? deciders : examples;
        if (shown.size() < maxExamples) shown.push_back(add(*operands[1], Form::Truth, inner, at.below()));
        if (isDecider && deciders.size() == 1) firstDecider = total;
        if (isDecider) addMembership(*operands[0], frame, path, parts_[deciders.back()]);
        // One witness is enough. Counterexamples are looked for a little longer.
        return !deciders.empty() && (decisive || deciders.size() == maxExamples || total - firstDecider == maxRow);
      });
    });
    if (!deciders.empty()) {
      Part& part = parts_[index];
      part.node.total = total;
      part.node.isCutShort = isDecided && hasMoreThan(total, *operands[0], frame);
      part.node.result.truth = decisive;
      part.node.agreeing = deciders.size();
      part.deciders = std::move(deciders);
      part.showsOthers = operation == Operation::All;
      return index;
    }
    isMinimal_ = false;
    isCut_ = true;
    examples.insert(examples.begin(), addLongSet(*operands[0], frame, at.below()));
    Part& part = parts_[index];
    part.node.total = total;
    Result& result = part.node.result;
    if (isEitherWay) {
      result.truth = operation == Operation::Any ? holding > 0 : holding == total;
      part.node.agreeing = result.truth ? holding : total - holding;
    } else {
      result.kind = Result::Kind::Number;
      result.number = static_cast<double>(holding);
      result.text = std::to_string(holding);
      part.node.agreeing = holding;
    }
    part.needed = std::move(examples);
    return index;
  }

  /// That the set has this object is a fact that the part of the object needs.
  void addMembership(Expression const& set, Frame const& frame, std::string const& path, Part& part) {
    recording_.setSink(&part.node.reads);
    (void)set.anyObject(frame, [&](std::string const& other) { return other == path; });
    recording_.setSink(nullptr);
  }

  std::size_t addLongSet(Expression const& set, Frame const& frame, Position at) {
    std::size_t const index = addPart(set, strictOperationOf(set), frame, at);
    Result result;
    result.kind = Result::Kind::Objects;
    std::vector<std::size_t> reads;
    recording_.setSink(&reads);
    (void)set.anyObject(frame, [&](std::string const& path) {
      if (result.itemCount++ < Result::maxItems) result.items.push_back(path);
      return false;
    });
    recording_.setSink(nullptr);
    parts_[index].node.result = std::move(result);
    parts_[index].node.reads = std::move(reads);
    return index;
  }

  std::size_t addChoice(Choice const& choice, Form form, Frame const& frame, Position at) {
    std::size_t const index = addPart(choice, Operation::Choice, frame, at);
    auto const operands = choice.operands();
    std::size_t const condition = add(*operands[0], Form::Truth, frame, at.below());
    bool const isFirst = parts_[condition].node.result.truth;
    if (showsAll_) {
      std::size_t const first = add(*operands[1], form, frame, at.below());
      std::size_t const second = add(*operands[2], form, frame, at.below());
      parts_[index].node.result = parts_[isFirst ? first : second].node.result;
      parts_[index].needed = {condition, first, second};
      return index;
    }
    std::size_t const chosen = add(*operands[isFirst ? 1 : 2], form, frame, at.below());
    parts_[index].node.result = parts_[chosen].node.result;
    parts_[index].needed = {condition, chosen};
    return index;
  }

  std::size_t addNamedCall(NamedCall const& call, Form form, Frame const& frame, Position at) {
    std::size_t const index = addPart(call, Operation::NamedRule, frame, at);
    NamedRule const& rule = call.rule();
    // A check, a list and a value may have one name.
    auto const known = std::find_if(sources_.begin(), sources_.end(), [&](auto const& source) {
      return source.name == rule.name() && source.text == rule.source();
    });
    auto const source = static_cast<std::size_t>(known - sources_.begin());
    if (known == sources_.end()) sources_.push_back({rule.source(), rule.place(), rule.name()});
    std::size_t const called = add(*rule.expression(), form, frame, Position{source, at.depth + 1});
    parts_[index].node.name = rule.name();
    parts_[index].node.result = parts_[called].node.result;
    parts_[index].needed = {called};
    return index;
  }

  /// The items are written in places of their own, so each part of them has its own source. An item with a condition is
  /// a choice between its value and nothing.
  std::size_t addGuardedList(GuardedList const& list, Form form, Frame const& frame, Position at) {
    std::size_t const index = addPart(list, Operation::ListOfItems, frame, {none, at.depth});
    parts_[index].node.source = at.source;
    auto const positionOf = [&](Explanation::Source const& source, std::size_t depth) {
      auto const [known, isNew] = sourcesOfItems_.try_emplace(&source, sources_.size());
      if (isNew) sources_.push_back(source);
      return Position{known->second, depth};
    };
    std::vector<std::size_t> needed;
    for (auto const& item : list.items()) {
      if (!item.when) {
        needed.push_back(add(*item.value, Form::Text, frame, positionOf(item.valueSource, at.depth + 1)));
        continue;
      }
      std::size_t const choice = addPart(*item.when, Operation::Choice, frame, {none, at.depth + 1});
      std::size_t const when = add(*item.when, Form::Truth, frame, positionOf(item.whenSource, at.depth + 2));
      parts_[choice].needed = {when};
      bool const holds = parts_[when].node.result.truth;
      // An item that does not count was not evaluated. Its text is shown if it reads nothing.
      if (holds || as<Literal>(*item.value) != nullptr) {
        std::size_t const value = add(*item.value, Form::Text, frame, positionOf(item.valueSource, at.depth + 2));
        parts_[choice].node.result = parts_[value].node.result;
        parts_[choice].needed.push_back(value);
      }
      parts_[choice].node.result.truth = holds;
      needed.push_back(choice);
    }
    parts_[index].node.result = evaluate(list, form, frame);
    parts_[index].needed = std::move(needed);
    return index;
  }

  // The smallest set of facts.

  void reduce() {
    if (showsAll_) {
      isMinimal_ = false;
      return;
    }
    isKnown_.assign(recording_.reads().size(), false);
    std::vector<std::size_t> picked;
    bool hasAlternatives = false;
    std::vector<std::size_t> open{0};
    while (!open.empty()) {
      Part const& part = parts_[open.back()];
      open.pop_back();
      for (std::size_t const read : part.node.reads) {
        if (!isKnown_[read]) picked.push_back(read);
        isKnown_[read] = true;
      }
      open.insert(open.end(), part.needed.begin(), part.needed.end());
      if (!part.deciders.empty()) open.push_back(part.deciders.front());
      hasAlternatives |= part.deciders.size() > 1;
    }
    determine();
    if (!hasAlternatives) return;
    if (picked.size() * parts_.size() > maxReduction) {
      isMinimal_ = false;
      return;
    }
    for (auto read = picked.rbegin(); read != picked.rend(); ++read) {
      isKnown_[*read] = false;
      determine();
      if (!isDetermined_.front()) isKnown_[*read] = true;
    }
    determine();
  }

  /// Which parts the known facts determine. Parts of a part come after it, so one pass from the end does it.
  void determine() {
    isDetermined_.assign(parts_.size(), false);
    auto const isDetermined = [&](std::size_t part) { return isDetermined_[part]; };
    for (std::size_t i = parts_.size(); i-- > 0;) {
      Part const& part = parts_[i];
      isDetermined_[i] =
          std::all_of(part.node.reads.begin(), part.node.reads.end(),
                      [&](std::size_t read) { return isKnown_[read]; }) &&
          std::all_of(part.needed.begin(), part.needed.end(), isDetermined) &&
          (part.deciders.empty() || std::any_of(part.deciders.begin(), part.deciders.end(), isDetermined));
    }
  }

  // Writing.

  struct Shown {
    std::size_t part;
    std::size_t parent;  // node
    bool alsoFails;
  };

  /// The parts of a part that are shown, and whether each stands only beside the one that decided.
  [[nodiscard]] std::vector<std::pair<std::size_t, bool>> shownParts(Part const& part) const {
    std::vector<std::pair<std::size_t, bool>> result;
    for (std::size_t const needed : part.needed) result.emplace_back(needed, false);
    if (part.deciders.empty()) return result;
    auto const determined = std::find_if(part.deciders.begin(), part.deciders.end(),
                                         [&](std::size_t decider) { return isDetermined_[decider]; });
    std::size_t const chosen = determined != part.deciders.end() ? *determined : part.deciders.front();
    bool const isSet = part.node.operation == Operation::All;
    std::size_t others = isSet ? maxCounterexamples - 1 : maxRow;
    for (std::size_t const decider : part.deciders) {
      if (decider == chosen) {
        result.emplace_back(decider, false);
      } else if (part.showsOthers && others > 0) {
        result.emplace_back(decider, true);
        --others;
      }
    }
    return result;
  }

  Explanation write() {
    Explanation result;
    result.sources = std::move(sources_);
    result.isComplete = !isCut_ && !recording_.isOverfull();
    result.isMinimal = isMinimal_;
    std::vector<std::size_t> newIndex(recording_.reads().size(), none);
    // In order of depth first, so that a node comes before its children and these in the order of the text.
    std::vector<Shown> open{{0, none, false}};
    while (!open.empty()) {
      Shown const next = open.back();
      open.pop_back();
      Part const& part = parts_[next.part];
      std::size_t const index = result.nodes.size();
      if (next.parent != none) result.nodes[next.parent].children.push_back(index);
      Explanation::Node& node = result.nodes.emplace_back(part.node);
      node.alsoFails = next.alsoFails;
      for (std::size_t& read : node.reads) {
        if (newIndex[read] == none) {
          newIndex[read] = result.reads.size();
          result.reads.push_back(recording_.reads()[read]);
        }
        read = newIndex[read];
      }
      auto const shown = shownParts(part);
      for (auto child = shown.rbegin(); child != shown.rend(); ++child) {
        open.push_back({child->first, index, child->second});
      }
    }
    return result;
  }

  bool const showsAll_;
  RecordingModel recording_;
  EvalContext evalContext_;
  std::vector<Explanation::Source> sources_;
  std::map<Explanation::Source const*, std::size_t> sourcesOfItems_;
  std::vector<Part> parts_;
  std::vector<bool> isKnown_;       // by read
  std::vector<bool> isDetermined_;  // by part
  bool isMinimal_ = true;
  bool isCut_ = false;
};

}  // namespace

Explanation explain(ExplainedRule const& rule, Form form, TDFContext const& context, ModelTDF const& model) {
  return Explainer(model, Extent::DecidingParts).explain(rule, form, context);
}

Explanation explainAllParts(ExplainedRule const& rule, Form form, TDFContext const& context, ModelTDF const& model) {
  return Explainer(model, Extent::AllParts).explain(rule, form, context);
}

}  // namespace tarn::rules
