#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/PhysicsData.h>

#include "diagnostics/Codes.h"
#include "expression/Expression.h"
#include "expression/NamedRule.h"
#include "expression/NearMatch.h"

namespace tarn::rules {

/// A change of an expression's text that removes an issue: what to write in `range` instead, and a title for a menu.
struct Replacement {
  Range range;
  std::string text;
  std::string title;
};

/// A problem in an expression, and its position in the text.
struct Issue {
  Range range;
  std::string message;
  Code code = Code::InvalidExpression;
  std::optional<Replacement> fix = std::nullopt;
};

/// What an expression is to give. A text is had from numbers and truth values as well; a condition is not had from a
/// text.
enum class Role { Condition, Text, List };

/// The checks and lists that expressions may call.
struct NamedRules {
  std::map<std::string, NamedCheck*, std::less<>> checks;
  std::map<std::string, NamedList*, std::less<>> lists;
  mutable HintBudget hints;
};

struct ParserLimits {
  std::size_t length = 100'000;
  std::size_t depth = 200;
};

/// A call of a named rule, and where it stands.
struct RuleCall {
  NamedRule const* rule;
  Range range;
};

struct ParsedExpression {
  ExpressionPtr expression;   // null when there are issues
  std::vector<Issue> issues;  // in order of place; a fault of syntax ends the parsing
  std::vector<RuleCall> calls;
  std::size_t depth = 0;  // levels of nesting, called rules left aside
};

/// Parses and checks an expression: syntax, names and arguments, kinds of operands. Named rules are looked up in
/// `named` and may still be unbound. `data` is the database that the expression will live in, for declared types; it
/// may be null.
[[nodiscard]] ParsedExpression parseExpression(std::string_view text, Role role, NamedRules const& named,
                                               PhysicsData const* data, ParserLimits const& limits);

}  // namespace tarn::rules
