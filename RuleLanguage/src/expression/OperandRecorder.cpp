// A second reading of conditions, which shows their operands one by one. `Expression::truth` stays the one that rules
// are evaluated with; a test holds the two together.
#include <tarn/rules/OperandRecorder.h>

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "expression/CompiledRules.h"
#include "expression/NamedRule.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

struct Counts {
  std::size_t timesTrue = 0;
  std::size_t timesFalse = 0;
};

/// Without the wrapper that keeps results.
Expression const& bare(Expression const& expression) {
  Expression const* part = &expression;
  while (as<Kept>(*part) != nullptr) part = part->operands().front();
  return *part;
}

bool isWrittenOut(Expression const& expression) {
  return as<Literal>(expression) != nullptr;
}

/// The expression of a rule of a rule file, and its text.
struct Written {
  Expression const* expression = nullptr;
  std::string_view text;
  /// Whose expression it is. Rules with the same text share one, but are counted one by one.
  void const* owner = nullptr;
};

template <typename Base>
bool takeCompiled(RuleExpression const& rule, Written& written) {
  auto const* compiled = dynamic_cast<CompiledRule<Base> const*>(&rule);
  if (compiled == nullptr) return false;
  written = {&compiled->expression(), compiled->compiled().source, &rule};
  return true;
}

template <typename Named>
bool takeNamed(RuleExpression const& rule, Written& written) {
  auto const* named = dynamic_cast<Named const*>(&rule);
  if (named == nullptr || named->rule().expression() == nullptr) return false;
  written = {named->rule().expression(), named->rule().source(), &named->rule()};
  return true;
}

Written writtenOf(RuleExpression const& rule) {
  Written written;
  takeCompiled<Condition>(rule, written) || takeCompiled<TextExpression>(rule, written) ||
      takeCompiled<ListExpression>(rule, written) || takeCompiled<GlobalCheck>(rule, written) ||
      takeNamed<NamedCheck>(rule, written) || takeNamed<NamedList>(rule, written) ||
      takeNamed<NamedValue>(rule, written);
  return written;
}

/// Whether the rule is used as a condition, whatever the kind of its expression.
bool isCondition(RuleExpression const& rule) {
  return dynamic_cast<Condition const*>(&rule) != nullptr || dynamic_cast<Check const*>(&rule) != nullptr ||
         dynamic_cast<GlobalCheck const*>(&rule) != nullptr;
}

/// The use of an expression, seen from what is around it.
enum class Use { Value, Condition, Operand };

/// Calls `part` with every condition in an expression and with every operand of one, in the order of the text. An
/// operand is a part without `and`, `or`, `not` and `implies`.
void forEachPart(Expression const& expression, Use use, std::function<void(Expression const&)> const& part) {
  Expression const& node = bare(expression);
  bool const isLogic = as<Logic>(node) != nullptr;
  bool const isTruth = use != Use::Value || node.kind() == Kind::Truth;
  if (isTruth && !isWrittenOut(node) && (use != Use::Operand || !isLogic)) part(node);
  auto const operands = node.operands();
  bool const isChoice = as<Choice>(node) != nullptr;
  bool const isQuantifier = as<Quantifier>(node) != nullptr;
  if (auto const* list = as<GuardedList>(node)) {
    for (auto const& item : list->items()) {
      if (item.when) forEachPart(*item.when, Use::Condition, part);
      forEachPart(*item.value, Use::Value, part);
    }
    return;
  }
  for (std::size_t i = 0; i < operands.size(); ++i) {
    bool const isCondition = (isChoice && i == 0) || (isQuantifier && i == 1);
    forEachPart(*operands[i], isLogic ? Use::Operand : isCondition ? Use::Condition : Use::Value, part);
  }
}

}  // namespace

struct OperandRecorder::Impl {
  using Deciding = std::vector<std::pair<Expression const*, bool>>;

  std::map<std::pair<void const*, Expression const*>, Counts> counts;  // by owner
  std::map<RuleExpression const*, Counts> ofPrograms;
  void const* owner = nullptr;  // of the expression that is evaluated

  void count(Expression const& part, bool truth) {
    if (isWrittenOut(part)) return;
    Counts& seen = counts[{owner, &part}];
    ++(truth ? seen.timesTrue : seen.timesFalse);
  }

  /// Evaluates a condition, and counts it with the operands that decided.
  bool ask(Expression const& expression, Frame const& frame) {
    Expression const& condition = bare(expression);
    Deciding deciding;
    bool const truth = decide(condition, frame, deciding);
    bool isCounted = false;
    for (auto const& [part, result] : deciding) {
      count(*part, result);
      isCounted = isCounted || part == &condition;
    }
    if (!isCounted) count(condition, truth);
    return truth;
  }

  /// Returns what `Expression::truth` returns, and adds the operands that decided.
  bool decide(Expression const& expression, Frame const& frame, Deciding& deciding) {
    Expression const& condition = bare(expression);
    auto const* logic = as<Logic>(condition);
    if (logic == nullptr) {
      visitInside(condition, frame);
      bool const truth = condition.truth(frame);
      deciding.emplace_back(&condition, truth);
      return truth;
    }
    auto const operands = logic->operands();
    // `and` ends at the first operand that is false, `or` at the first that is true. `a implies b` is `not a or b`.
    bool const isAnd = logic->op() == Logic::Operator::And;
    std::size_t const begin = deciding.size();
    for (std::size_t i = 0; i < operands.size(); ++i) {
      std::size_t const before = deciding.size();
      bool truth = decide(*operands[i], frame, deciding);
      if (logic->op() == Logic::Operator::Not) return !truth;
      if (logic->op() == Logic::Operator::Implies && i == 0) truth = !truth;
      if (truth == isAnd) continue;
      deciding.erase(deciding.begin() + static_cast<std::ptrdiff_t>(begin),
                     deciding.begin() + static_cast<std::ptrdiff_t>(before));
      return truth;
    }
    return isAnd;
  }

  /// Finds the conditions inside of an expression that is evaluated for its value.
  void visit(Expression const& expression, Frame const& frame) {
    Expression const& node = bare(expression);
    if (node.kind() == Kind::Truth) {
      ask(node, frame);
    } else {
      visitInside(node, frame);
    }
  }

  void visitInside(Expression const& node, Frame const& frame) {
    if (auto const* call = as<NamedCall>(node)) {
      void const* const caller = std::exchange(owner, &call->rule());
      if (call->kind() == Kind::Truth) {
        ask(*call->rule().expression(), frame);
      } else {
        visit(*call->rule().expression(), frame);
      }
      owner = caller;
      return;
    }
    if (auto const* list = as<GuardedList>(node)) {
      for (auto const& item : list->items()) {
        if (!item.when || ask(*item.when, frame)) visit(*item.value, frame);
      }
      return;
    }
    auto const operands = node.operands();
    if (as<Choice>(node) != nullptr) return visit(*operands[ask(*operands[0], frame) ? 1 : 2], frame);
    if (auto const* quantifier = as<Quantifier>(node); quantifier != nullptr && operands.size() == 2) {
      return visitObjects(*quantifier, frame);
    }
    for (Expression const* operand : operands) visit(*operand, frame);
  }

  void visitObjects(Quantifier const& quantifier, Frame const& frame) {
    auto const operands = quantifier.operands();
    visitInside(bare(*operands[0]), frame);
    for (std::string const& path : operands[0]->objects(frame)) {
      bool const holds = quantifier.atObject(frame, path, [&](Frame const& at) { return ask(*operands[1], at); });
      if (holds && quantifier.op() == Quantifier::Operator::Any) return;
      if (!holds && quantifier.op() == Quantifier::Operator::All) return;
    }
  }
};

OperandRecorder::OperandRecorder() : impl_(std::make_unique<Impl>()) {}
OperandRecorder::~OperandRecorder() = default;
OperandRecorder::OperandRecorder(OperandRecorder&&) noexcept = default;
OperandRecorder& OperandRecorder::operator=(OperandRecorder&&) noexcept = default;

void OperandRecorder::evaluate(RuleExpression const& rule, TDFContext const& context, EvalContext* evalContext) {
  Written const written = writtenOf(rule);
  if (written.expression == nullptr) {
    auto const* condition = dynamic_cast<Condition const*>(&rule);
    if (condition == nullptr) return;
    Counts& seen = impl_->ofPrograms[&rule];
    ++(condition->evaluate(context, evalContext) ? seen.timesTrue : seen.timesFalse);
    return;
  }
  Frame const frame{*evalContext->getDB(), context, evalContext};
  impl_->owner = written.owner;
  if (isCondition(rule)) {
    impl_->ask(*written.expression, frame);
  } else {
    impl_->visit(*written.expression, frame);
  }
}

std::vector<OperandRecorder::Part> OperandRecorder::partsOf(RuleExpression const& rule) const {
  std::vector<Part> parts;
  Written const written = writtenOf(rule);
  if (written.expression == nullptr) {
    if (dynamic_cast<Condition const*>(&rule) == nullptr) return parts;
    auto const seen = impl_->ofPrograms.find(&rule);
    Counts const counts = seen == impl_->ofPrograms.end() ? Counts{} : seen->second;
    parts.push_back({rule.sourceText(), counts.timesTrue, counts.timesFalse});
    return parts;
  }
  forEachPart(*written.expression, isCondition(rule) ? Use::Condition : Use::Value, [&](Expression const& part) {
    Range const range = part.range();
    std::string text;
    if (std::size_t{range.offset} + range.length <= written.text.size()) {
      text = written.text.substr(range.offset, range.length);
    }
    auto const seen = impl_->counts.find({written.owner, &part});
    Counts const counts = seen == impl_->counts.end() ? Counts{} : seen->second;
    parts.push_back({std::move(text), counts.timesTrue, counts.timesFalse});
  });
  return parts;
}

void OperandRecorder::add(OperandRecorder const& other) {
  auto const addTo = [](auto& counts, auto const& more) {
    for (auto const& [part, seen] : more) {
      counts[part].timesTrue += seen.timesTrue;
      counts[part].timesFalse += seen.timesFalse;
    }
  };
  addTo(impl_->counts, other.impl_->counts);
  addTo(impl_->ofPrograms, other.impl_->ofPrograms);
}

}  // namespace tarn::rules
