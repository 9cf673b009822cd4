#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/PhysicsData.h>

#include "diagnostics/NearMatch.h"
#include "expression/Expression.h"
#include "expression/Issue.h"
#include "expression/NamedRule.h"

namespace tarn::rules {

/// The form of result that the user of an expression needs. Numbers and truth values convert to text; text does not
/// convert to a condition. `Any` takes every form.
enum class Role { Condition, Text, List, Any };

/// The checks, lists and values that expressions may call.
struct NamedRules {
  std::map<std::string, NamedCheck const*, std::less<>> checks;
  std::map<std::string, NamedList const*, std::less<>> lists;
  std::map<std::string, NamedValue const*, std::less<>> values;
  /// Whether the rules have an object type of that name, so that nothing else may have it. Empty: there are none.
  std::function<bool(std::string_view)> isType;
  /// The same of parameters. It is only asked for messages.
  std::function<bool(std::string_view)> isParameter;
  mutable HintBudget hints;
};

struct ParserLimits {
  std::size_t length = 100'000;
  std::size_t depth = 200;
};

/// A call of a named rule, and its position in the text.
struct RuleCall {
  NamedRule const* rule;
  Range range;
};

struct ParsedExpression {
  ExpressionPtr expression;   // null when there are issues
  std::vector<Issue> issues;  // in the order of their positions; a syntax error ends parsing
  std::vector<RuleCall> calls;
  std::size_t depth = 0;       // levels of nesting, without those of called rules
  bool hasQuantities = false;  // a quantity with its units is written out in it
};

/// Parses and checks an expression: syntax, names and arguments, kinds of operands. Named rules are looked up in
/// `named` and need not be bound yet. `data` is the database that will own the expression; it gives the declared types
/// of parameters and may be null. Linear in the length of the text.
[[nodiscard]] ParsedExpression parseExpression(std::string_view text, Role role, NamedRules const& named,
                                               PhysicsData const* data, ParserLimits const& limits);

}  // namespace tarn::rules
