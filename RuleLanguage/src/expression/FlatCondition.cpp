// How the tests of a condition follow each other. An operator makes no test: it decides where those of its operands go.

#include "expression/FlatCondition.h"

#include <utility>

#include <tarn/TDFParam.h>

#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

/// The expression, if it is a parameter of the context object, or null.
ParameterReference const* parameterOfContext(Expression const& expression) {
  auto const* const parameter = dynamic_cast<ParameterReference const*>(&expression);
  return parameter != nullptr && parameter->isOfContext() ? parameter : nullptr;
}

/// The text with which the parameter of a comparison is compared, if it is a parameter of the context object.
struct TextComparison {
  ParameterReference const* parameter = nullptr;
  Literal const* text = nullptr;
};

TextComparison textComparison(Expression const& a, Expression const& b) {
  auto const* const parameter = parameterOfContext(a);
  auto const* const text = dynamic_cast<Literal const*>(&b);
  if (parameter == nullptr || text == nullptr || text->kind() != Kind::Text) return {};
  return {parameter, text};
}

}  // namespace

/// Appends the tests of expressions. A test that is not made yet is known by a label.
class FlatCondition::Maker {
 public:
  explicit Maker(std::vector<Test>& tests) : tests_(tests) {}

  /// The nesting of an expression is limited when it is parsed, so this may recurse.
  void add(Expression const& expression, std::uint32_t ifTrue, std::uint32_t ifFalse) {
    if (auto const* logic = dynamic_cast<Logic const*>(&expression)) {
      addLogic(*logic, ifTrue, ifFalse);
      return;
    }
    Test test;
    test.ifTrue = ifTrue;
    test.ifFalse = ifFalse;
    bool const needsNoNode =
        setParameter(expression, test) || setComparison(expression, test) || setMembership(expression, test);
    if (!needsNoNode) test.node = &expression;
    tests_.push_back(std::move(test));
  }

  /// Replaces the labels by the positions of the tests.
  void resolveLabels() {
    auto const resolve = [&](std::uint32_t& next) {
      if (next < notHolding) next = positions_[next];
    };
    for (Test& test : tests_) {
      resolve(test.ifTrue);
      resolve(test.ifFalse);
    }
  }

 private:
  void addLogic(Logic const& logic, std::uint32_t ifTrue, std::uint32_t ifFalse) {
    auto const operands = logic.operands();
    switch (logic.op()) {
      case Logic::Operator::Not:
        add(*operands[0], ifFalse, ifTrue);
        return;
      case Logic::Operator::Implies: {
        std::uint32_t const second = newLabel();
        add(*operands[0], second, ifTrue);
        place(second);
        add(*operands[1], ifTrue, ifFalse);
        return;
      }
      case Logic::Operator::And:
      case Logic::Operator::Or:
        break;
    }
    bool const isAnd = logic.op() == Logic::Operator::And;
    for (std::size_t i = 0; i + 1 < operands.size(); ++i) {
      std::uint32_t const next = newLabel();
      add(*operands[i], isAnd ? next : ifTrue, isAnd ? ifFalse : next);
      place(next);
    }
    add(*operands.back(), ifTrue, ifFalse);
  }

  // Each of these returns false when the expression is not of its kind.

  static bool setParameter(Expression const& expression, Test& test) {
    auto const* const parameter = parameterOfContext(expression);
    if (parameter == nullptr) return false;
    test.kind = Test::IsTrue;
    test.parameter = parameter->name();
    return true;
  }

  /// A comparison of a parameter with a text.
  static bool setComparison(Expression const& expression, Test& test) {
    auto const* const comparison = dynamic_cast<Comparison const*>(&expression);
    if (comparison == nullptr) return false;
    bool const isEqual = comparison->op() == Comparison::Operator::Equal;
    if (!isEqual && comparison->op() != Comparison::Operator::NotEqual) return false;
    TextComparison found = textComparison(comparison->left(), comparison->right());
    if (found.parameter == nullptr) found = textComparison(comparison->right(), comparison->left());
    if (found.parameter == nullptr) return false;
    test.kind = Test::HasText;
    test.parameter = found.parameter->name();
    test.text = &found.text->rawText();
    if (!isEqual) std::swap(test.ifTrue, test.ifFalse);
    return true;
  }

  /// The question whether a parameter has one of the texts of a list that is written out.
  static bool setMembership(Expression const& expression, Test& test) {
    auto const* const membership = dynamic_cast<Membership const*>(&expression);
    if (membership == nullptr) return false;
    auto const* const parameter = parameterOfContext(membership->item());
    auto const* const list = dynamic_cast<ListLiteral const*>(&membership->items());
    if (parameter == nullptr || list == nullptr || list->fixedItems().empty()) return false;
    test.kind = Test::HasOneOf;
    test.parameter = parameter->name();
    test.texts = &list->fixedItems();
    if (membership->negated()) std::swap(test.ifTrue, test.ifFalse);
    return true;
  }

  [[nodiscard]] std::uint32_t newLabel() {
    positions_.push_back(0);
    return static_cast<std::uint32_t>(positions_.size() - 1);
  }
  void place(std::uint32_t label) { positions_[label] = static_cast<std::uint32_t>(tests_.size()); }

  std::vector<Test>& tests_;
  std::vector<std::uint32_t> positions_;  // by label
};

FlatCondition::FlatCondition(Expression const& condition) {
  Maker maker(tests_);
  maker.add(condition, holding, notHolding);
  maker.resolveLabels();
  tests_.shrink_to_fit();
}

bool FlatCondition::passes(Test const& test, Frame const& frame) {
  switch (test.kind) {
    case Test::IsTrue:
      return TDFParam::asLogical(frame.valueOfContext(test.parameter)).value_or(false);
    case Test::HasText:
      return frame.valueOfContext(test.parameter) == *test.text;
    case Test::HasOneOf:
      return test.texts->contains(frame.valueOfContext(test.parameter));
    case Test::Node:
      return test.node->truth(frame);
  }
  return false;
}

bool FlatCondition::holds(Frame const& frame) const {
  std::uint32_t next = tests_.empty() ? holding : 0;
  while (next < notHolding) {
    Test const& test = tests_[next];
    next = passes(test, frame) ? test.ifTrue : test.ifFalse;
  }
  return next == holding;
}

}  // namespace tarn::rules
