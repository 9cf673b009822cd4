// Words for rules. Each node gives a clause or a noun. The depth of an expression is limited by the parser, so this may
// recurse.
#include <tarn/rules/Words.h>

#include <string_view>
#include <utility>

#include "expression/CompiledRules.h"
#include "expression/NamedRule.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

/// Longer lists stay as they are written.
constexpr std::size_t mostItems = 8;

std::string quoted(std::string_view text) {
  std::string result = "'";
  result += text;
  result += '\'';
  return result;
}

std::string_view verbOf(Comparison::Operator op) {
  switch (op) {
    case Comparison::Operator::Equal:
      return " is ";
    case Comparison::Operator::NotEqual:
      return " is not ";
    case Comparison::Operator::Less:
      return " is less than ";
    case Comparison::Operator::LessEqual:
      return " is at most ";
    case Comparison::Operator::Greater:
      return " is more than ";
    case Comparison::Operator::GreaterEqual:
      break;
  }
  return " is at least ";
}

class Words {
 public:
  explicit Words(std::string_view source) : source_(source) {}

  /// A clause that is true or false.
  [[nodiscard]] std::string clause(Expression const& node) const {
    if (auto const* kept = dynamic_cast<Kept const*>(&node)) return clause(*kept->operands().front());
    if (auto const* logic = dynamic_cast<Logic const*>(&node)) return ofLogic(*logic);
    if (auto const* comparison = dynamic_cast<Comparison const*>(&node)) {
      return side(comparison->left()) + std::string(verbOf(comparison->op())) + side(comparison->right());
    }
    if (auto const* membership = dynamic_cast<Membership const*>(&node)) return ofMembership(*membership);
    if (auto const* quantifier = dynamic_cast<Quantifier const*>(&node)) return ofQuantifier(*quantifier);
    if (auto const* call = dynamic_cast<FunctionCall const*>(&node); call && call->function().name == "exists") {
      return ofExists(*call, false);
    }
    if (auto const* call = dynamic_cast<NamedCall const*>(&node))
      return "the check " + quoted(call->rule().name()) + " holds";
    if (dynamic_cast<Literal const*>(&node) != nullptr) return written(node) == "true" ? "always" : "never";
    return noun(node) + " is true";
  }

  /// A value, a list or a set of objects.
  [[nodiscard]] std::string noun(Expression const& node) const {
    if (auto const* kept = dynamic_cast<Kept const*>(&node)) return noun(*kept->operands().front());
    // Objects that the rule has named stay as they are written: only the name says which is meant.
    if (auto const* parameter = dynamic_cast<ParameterReference const*>(&node)) {
      return parameter->origin().isNamed() ? written(node) : ofParameter(*parameter);
    }
    if (auto const* set = dynamic_cast<ObjectSet const*>(&node)) {
      return set->origin().isNamed() ? written(node) : ofSet(*set);
    }
    if (auto const* quantifier = dynamic_cast<Quantifier const*>(&node)) return ofQuantifier(*quantifier);
    if (auto const* list = dynamic_cast<GuardedList const*>(&node)) return ofGuardedList(*list);
    if (auto const* choice = dynamic_cast<Choice const*>(&node)) {
      auto const parts = choice->operands();
      return noun(*parts[1]) + " if " + clause(*parts[0]) + ", otherwise " + noun(*parts[2]);
    }
    if (auto const* call = dynamic_cast<NamedCall const*>(&node)) {
      return (call->kind() == Kind::List ? "the list " : "the value ") + quoted(call->rule().name());
    }
    return written(node);
  }

 private:
  /// A value beside an operator, in brackets where it could be read in two ways.
  [[nodiscard]] std::string side(Expression const& node) const {
    Expression const* inner = &node;
    while (auto const* kept = dynamic_cast<Kept const*>(inner)) inner = kept->operands().front();
    return dynamic_cast<Choice const*>(inner) != nullptr ? '(' + noun(*inner) + ')' : noun(*inner);
  }

  [[nodiscard]] std::string written(Expression const& node) const {
    return std::string(source_.substr(node.range().offset, node.range().length));
  }

  /// An operand of a logical operator, in brackets where the words could be read in two ways.
  [[nodiscard]] std::string operandOf(Expression const& node, Logic::Operator outer) const {
    Expression const* inner = &node;
    while (auto const* kept = dynamic_cast<Kept const*>(inner)) inner = kept->operands().front();
    auto const* logic = dynamic_cast<Logic const*>(inner);
    bool const isClear = logic == nullptr || logic->op() == outer || isNegatedTest(*logic);
    auto const* quantifier = dynamic_cast<Quantifier const*>(inner);
    if (isClear && quantifier == nullptr) return clause(*inner);
    return '(' + clause(*inner) + ')';
  }

  /// Whether the node is the negation of a clause that has a word for it.
  [[nodiscard]] static bool isNegatedTest(Logic const& logic) {
    return logic.op() == Logic::Operator::Not && dynamic_cast<Logic const*>(logic.operands().front()) == nullptr;
  }

  [[nodiscard]] std::string ofLogic(Logic const& logic) const {
    auto const parts = logic.operands();
    switch (logic.op()) {
      case Logic::Operator::Not:
        return negated(*parts[0]);
      case Logic::Operator::Implies:
        return "if " + operandOf(*parts[0], logic.op()) + ", then " + operandOf(*parts[1], logic.op());
      case Logic::Operator::And:
      case Logic::Operator::Or:
        break;
    }
    std::string text;
    for (auto const* part : parts) {
      if (!text.empty()) text += logic.op() == Logic::Operator::And ? ", and " : ", or ";
      text += operandOf(*part, logic.op());
    }
    return text;
  }

  [[nodiscard]] std::string negated(Expression const& node) const {
    if (auto const* kept = dynamic_cast<Kept const*>(&node)) return negated(*kept->operands().front());
    if (auto const* call = dynamic_cast<FunctionCall const*>(&node); call && call->function().name == "exists") {
      return ofExists(*call, true);
    }
    if (auto const* call = dynamic_cast<NamedCall const*>(&node)) {
      return "the check " + quoted(call->rule().name()) + " does not hold";
    }
    if (dynamic_cast<ParameterReference const*>(&node) != nullptr) return noun(node) + " is not true";
    bool const isLogic = dynamic_cast<Logic const*>(&node) != nullptr;
    return "it is not so that " + (isLogic ? '(' + clause(node) + ')' : clause(node));
  }

  [[nodiscard]] std::string ofExists(FunctionCall const& call, bool isNegated) const {
    Expression const& what = *call.operands().front();
    if (what.kind() == Kind::Objects) {
      return (isNegated ? "there is none of " : "there is at least one of ") + noun(what);
    }
    return noun(what) + (isNegated ? " is absent" : " is present");
  }

  [[nodiscard]] std::string ofMembership(Membership const& membership) const {
    std::string const verb = membership.negated() ? " is not " : " is ";
    auto const* list = dynamic_cast<ListLiteral const*>(&membership.items());
    if (list == nullptr || list->fixedItems().empty() || list->fixedItems().size() > mostItems) {
      return noun(membership.item()) + verb + "in " + noun(membership.items());
    }
    std::string items;
    std::size_t const count = list->fixedItems().size();
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) items += i + 1 < count ? ", " : membership.negated() ? " nor " : " or ";
      items += quoted(*(list->fixedItems().begin() + static_cast<std::ptrdiff_t>(i)));
    }
    bool const isNeither = membership.negated() && count > 1;
    return noun(membership.item()) + (isNeither ? " is neither " : verb) + items;
  }

  [[nodiscard]] std::string ofQuantifier(Quantifier const& quantifier) const {
    auto const parts = quantifier.operands();
    std::string set = noun(*parts[0]);
    if (!quantifier.objectName().empty()) set += " (each called " + quantifier.objectName() + ')';
    switch (quantifier.op()) {
      case Quantifier::Operator::Count:
        return "the number of " + set + (parts.size() > 1 ? " for which (" + clause(*parts[1]) + ')' : "");
      case Quantifier::Operator::Any:
        return "for at least one of " + set + ", " + clause(*parts[1]);
      case Quantifier::Operator::All:
        return "for each of " + set + ", " + clause(*parts[1]);
      case Quantifier::Operator::Filter:
        break;
    }
    return "those of " + set + " for which (" + clause(*parts[1]) + ')';
  }

  [[nodiscard]] std::string ofGuardedList(GuardedList const& list) const {
    std::string text;
    for (auto const& item : list.items()) {
      if (!text.empty()) text += "; ";
      text += Words(item.valueSource.text).noun(*item.value);
      if (item.when) text += " while " + Words(item.whenSource.text).clause(*item.when);
    }
    return text;
  }

  [[nodiscard]] static std::string ofParameter(ParameterReference const& parameter) {
    if (parameter.isOfContext()) return parameter.name();
    return parameter.name() + " of " + place(parameter.objectPattern());
  }

  [[nodiscard]] static std::string ofSet(ObjectSet const& set) {
    auto const& steps = set.pattern().steps();
    if (set.pattern().start() == PathPattern::Start::Context && steps.size() == 1 &&
        steps[0].kind == PathPattern::StepKind::ChildrenOfType) {
      return "the " + steps[0].type + " objects in it";
    }
    return place(set.pattern());
  }

  [[nodiscard]] static std::string place(PathPattern const& pattern) {
    auto const& steps = pattern.steps();
    if (pattern.start() == PathPattern::Start::Context && steps.size() == 1 &&
        steps[0].kind == PathPattern::StepKind::Parent) {
      return "the object above it";
    }
    if (steps.empty() && pattern.start() == PathPattern::Start::Owner) return "the object that has the rule";
    if (steps.empty() && pattern.start() == PathPattern::Start::Nearest) return "the nearest " + pattern.startType();
    return pattern.text();
  }

  std::string_view source_;
};

}  // namespace

std::string inWords(RuleExpression const& rule) {
  auto const asClause = [](auto const& one) { return Words(one.compiled().source).clause(one.expression()); };
  auto const asNoun = [](auto const& one) { return Words(one.compiled().source).noun(one.expression()); };
  if (auto const* condition = dynamic_cast<CompiledCondition const*>(&rule)) return asClause(*condition);
  if (auto const* check = dynamic_cast<CompiledGlobalCheck const*>(&rule)) return asClause(*check);
  if (auto const* text = dynamic_cast<CompiledText const*>(&rule)) return asNoun(*text);
  if (auto const* type = dynamic_cast<CompiledQuantityType const*>(&rule)) return asNoun(*type);
  if (auto const* list = dynamic_cast<CompiledList const*>(&rule)) return asNoun(*list);
  if (auto const* names = dynamic_cast<CompiledNames const*>(&rule)) return asNoun(*names);
  auto const ofNamed = [](NamedRule const& named, bool isCheck) {
    Words const words(named.source());
    return isCheck ? words.clause(*named.expression()) : words.noun(*named.expression());
  };
  if (auto const* check = dynamic_cast<NamedCheck const*>(&rule)) return ofNamed(check->rule(), true);
  if (auto const* list = dynamic_cast<NamedList const*>(&rule); list && !list->rule().source().empty()) {
    return ofNamed(list->rule(), false);
  }
  if (auto const* value = dynamic_cast<NamedValue const*>(&rule); value && !value->rule().source().empty()) {
    return ofNamed(value->rule(), false);
  }
  return {};
}

TextExpression const* messageOf(GlobalCheck const& check) noexcept {
  auto const* written = dynamic_cast<CompiledGlobalCheck const*>(&check);
  return written != nullptr ? &written->message() : nullptr;
}

}  // namespace tarn::rules
