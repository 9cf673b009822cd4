#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "expression/Issue.h"

namespace tarn::rules {

/// Checks that operands and arguments are of a kind that can be used where they are written. A check that fails adds an
/// issue and parsing goes on, so that all mistakes of an expression are reported together.
class OperandChecks {
 public:
  /// `text` is the text of the whole expression; remedies quote parts of it. Both arguments must stay valid.
  OperandChecks(std::string_view text, std::vector<Issue>& issues) : text_(text), issues_(issues) {}

  void requireCondition(Expression const& operand);
  void requireNumber(Expression const& operand);
  /// A value that is neither a list nor a set of objects.
  void requireScalar(Expression const& operand);
  void requireText(Expression const& operand);
  void requireList(Expression const& operand);
  void requireObjects(Expression const& operand);
  /// An operand of `==` or `!=`.
  void requireComparable(Expression const& operand);
  /// An item of a list that is written out.
  void requireItem(Expression const& item);

 private:
  void add(Expression const& operand, std::string message);
  /// As above, with a fix that writes `replacement` instead of the operand.
  void add(Expression const& operand, std::string message, std::string replacement);
  [[nodiscard]] std::string written(Expression const& operand) const;

  std::string_view text_;
  std::vector<Issue>& issues_;
};

}  // namespace tarn::rules
