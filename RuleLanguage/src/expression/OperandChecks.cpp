// The kinds of operands. A parameter, and a choice between different kinds, is a "value" that can be used as a truth
// value, number, text or list. A computed text can be used as a number too; a text that is written out cannot, because
// that is a mistake.

#include "expression/OperandChecks.h"

#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "diagnostics/NearMatch.h"
#include "expression/NamedRule.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

/// A part that is written out, or the name of a text that is.
bool isLiteral(Expression const& expression) {
  if (auto const* call = dynamic_cast<NamedCall const*>(&expression)) return call->rule().fixedText() != nullptr;
  return dynamic_cast<Literal const*>(&expression) != nullptr ||
         dynamic_cast<QuantityLiteral const*>(&expression) != nullptr;
}

std::string needed(std::string_view what, Expression const& operand) {
  return std::string(what) + " is needed here, not " + std::string(kindName(operand.kind()));
}

}  // namespace

void OperandChecks::add(Expression const& operand, std::string message) {
  issues_.push_back({operand.range(), std::move(message), Code::WrongOperandKind});
}

void OperandChecks::add(Expression const& operand, std::string message, std::string replacement) {
  std::string title = "Replace " + inQuotes(written(operand)) + " by " + inQuotes(replacement);
  issues_.push_back({operand.range(), std::move(message), Code::WrongOperandKind,
                     Replacement{operand.range(), std::move(replacement), std::move(title)}});
}

std::string OperandChecks::written(Expression const& operand) const {
  return std::string(text_.substr(operand.range().offset, operand.range().length));
}

void OperandChecks::requireCondition(Expression const& operand) {
  if (operand.kind() == Kind::Truth || operand.kind() == Kind::Value) return;
  std::string message = needed("a condition", operand);
  if (operand.kind() == Kind::Objects) {
    message += "; write exists(...) or any(...)";
  } else if (operand.kind() == Kind::List) {
    message += "; write size(...) > 0, or compare with 'in'";
  } else if (auto const* literal = dynamic_cast<Literal const*>(&operand);
             literal != nullptr && operand.kind() == Kind::Text && literal->rawText().find("${") != std::string::npos) {
    message += "; an expression has no quotes around it";
  } else {
    message += "; compare it with something";
  }
  add(operand, std::move(message));
}

void OperandChecks::requireNumber(Expression const& operand) {
  bool const computedText = operand.kind() == Kind::Text && !isLiteral(operand);
  if (operand.kind() == Kind::Number || operand.kind() == Kind::Value || computedText) return;
  std::string message = needed("a number", operand);
  if (operand.kind() == Kind::Objects) {
    add(operand, message + "; write count(...) for how many there are", "count(" + written(operand) + ")");
  } else if (operand.kind() == Kind::List) {
    add(operand, message + "; write size(...) for how many there are", "size(" + written(operand) + ")");
  } else if (auto const* literal = dynamic_cast<Literal const*>(&operand);
             literal != nullptr && operand.kind() == Kind::Text && TDFParam::asQuantity(literal->rawText())) {
    std::string instead(StringUtilities::trimmed(literal->rawText()));
    message += "; write " + instead + " without quotes";
    add(operand, std::move(message), std::move(instead));
  } else {
    auto const* call = dynamic_cast<NamedCall const*>(&operand);
    if (call != nullptr && call->rule().fixedText() != nullptr) {
      message += "; " + inQuotes(call->rule().name()) + " is the text " +
                 inQuotes(call->rule().fixedText()->substr(0, 60)) + ", and a value that is computed begins with '='";
    }
    add(operand, std::move(message));
  }
}

void OperandChecks::requireScalar(Expression const& operand) {
  if (operand.kind() != Kind::List && operand.kind() != Kind::Objects) return;
  std::string message = needed("a single value", operand);
  if (operand.kind() == Kind::Objects) message += "; write ${...} for the value of a parameter";
  add(operand, std::move(message));
}

void OperandChecks::requireText(Expression const& operand) {
  if (operand.kind() == Kind::Truth) {
    add(operand, "a text is needed here, not a truth value; write text(...)", "text(" + written(operand) + ")");
  } else {
    requireScalar(operand);
  }
}

void OperandChecks::requireList(Expression const& operand) {
  if (operand.kind() == Kind::List || operand.kind() == Kind::Value) return;
  std::string message = needed("a list", operand);
  if (operand.kind() == Kind::Objects) {
    add(operand, message + "; write names(...) or paths(...)");
  } else if (operand.kind() == Kind::Text && isLiteral(operand)) {
    std::string list = "(" + written(operand) + ",)";
    message += "; a list with one item is written " + list;
    add(operand, std::move(message), std::move(list));
  } else {
    add(operand, std::move(message));
  }
}

void OperandChecks::requireObjects(Expression const& operand) {
  if (operand.kind() == Kind::Objects) return;
  std::string message = needed("a set of objects", operand);
  if (dynamic_cast<ParameterReference const*>(&operand) != nullptr) {
    add(operand, message + "; write {...} without the '$'", written(operand).substr(1));
  } else {
    add(operand, std::move(message));
  }
}

void OperandChecks::requireComparable(Expression const& operand) {
  if (operand.kind() == Kind::List) {
    add(operand, "a list cannot be compared; use 'in', or size(difference(a, b)) == 0");
  } else {
    requireScalar(operand);
  }
}

void OperandChecks::requireItem(Expression const& item) {
  if (item.kind() == Kind::Text || item.kind() == Kind::Value) return;
  std::string message = "a list contains texts, not " + std::string(kindName(item.kind()));
  if (isLiteral(item)) {
    std::string text = inQuotes(written(item));
    message += "; write " + text;
    add(item, std::move(message), std::move(text));
  } else if (item.kind() == Kind::Number || item.kind() == Kind::Truth) {
    add(item, message + "; write text(...)", "text(" + written(item) + ")");
  } else {
    add(item, std::move(message));
  }
}

}  // namespace tarn::rules
