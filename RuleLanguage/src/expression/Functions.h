#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <tarn/rules/RuleFunction.h>

#include "expression/Expression.h"

namespace tarn::rules {

class NamedRule;
class RegularExpression;

/// The kind of argument that a function accepts.
enum class Argument {
  Scalar,
  Text,
  Number,
  Condition,
  List,
  Objects,
  ParameterOrObjects,  // `${...}`, which may match many objects, or a set of objects
  Parameters,          // `${...}`, which may match many objects
  CheckName,           // the name of a named check, in quotes
  ListName,            // the name of a named list, in quotes
  ValueName,           // the name of a named value, in quotes; the call has its kind
  Pattern,             // a regular expression
  Branch               // of any kind; all branches of one call must go together, and the call has their kind
};

/// The arguments of a call, as many as its function takes.
using Arguments = std::span<ExpressionPtr const>;

/// A call that the parser has checked, for functions that need a node of their own.
struct CheckedCall {
  Kind kind;
  Range range;
  std::vector<ExpressionPtr> arguments;
  NamedRule const* rule;  // that a CheckName, ListName or ValueName names, else null
  /// That a Pattern is, when it is written out; else null.
  std::shared_ptr<RegularExpression const> pattern;
  /// The name that the call gives to the object under test, or "".
  std::string objectName;
};

/// How a function gets its result: by a plain operation on its arguments, or by a node of its own, where arguments are
/// evaluated elsewhere or not at all.
using Evaluation = std::variant<bool (*)(Arguments, Frame const&), double (*)(Arguments, Frame const&),
                                std::string (*)(Arguments, Frame const&), SharedStrings (*)(Arguments, Frame const&),
                                ExpressionPtr (*)(CheckedCall)>;

/// One row of the table of functions. Parser, evaluation, reads, help and the rule reference use this row and no other
/// list of functions, so a new function is a new row.
struct Function {
  std::string_view name;
  std::string_view group;
  std::string_view signature;
  std::string_view help;
  std::size_t least;
  std::size_t most;
  std::array<Argument, 3> arguments;  // the last one serves all further arguments as well
  Kind result;
  RuleFunction::Cost cost = RuleFunction::Cost::Small;
  /// Without arguments the result is the name, type or path of the context object, so it differs between objects even
  /// though the call reads nothing of the model.
  bool readsContextIdentity = false;
  /// Items of the first so many arguments can be items of the result.
  std::size_t itemsFrom = 0;
  /// The result counts in the unit of the first so many arguments, which are quantities of one type.
  std::size_t quantitiesFrom = 0;
  /// The call can name the object under test: `any(x in set, condition)`.
  bool namesObject = false;
  Evaluation evaluate;

  [[nodiscard]] Argument argument(std::size_t i) const noexcept {
    return arguments[i < arguments.size() ? i : arguments.size() - 1];
  }
};

[[nodiscard]] std::span<Function const> functionTable() noexcept;
/// Null when there is no function of this name.
[[nodiscard]] Function const* findFunction(std::string_view name) noexcept;
/// The names of the functions of a group, as a sentence: "the functions on lists are size, first, ...". The groups
/// count from 0 in the order of the table.
[[nodiscard]] std::string functionsOfGroup(std::size_t group);
/// The names of all functions, in the order of the table.
[[nodiscard]] std::vector<std::string> const& functionNames();
/// The calls that take a `${...}` which may match many objects, as a sentence lists them: "exists(...) and
/// values(...)".
[[nodiscard]] std::string const& callsThatTakeManyParameters();

}  // namespace tarn::rules
