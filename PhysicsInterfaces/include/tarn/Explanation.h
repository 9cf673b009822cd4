#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelRead.h>
#include <tarn/RulePlace.h>

namespace tarn {

/// Why an expression had its result: a tree of its parts with their values, and what was read. Made by
/// `RuleExpression::explain`. Plain data: it refers to nothing, and is limited in size.
///
/// A tree holds the parts that decided, and leaves out the others. For example, `a and b` that does not hold has the
/// operand that failed; `a and b` that holds has both. So the parts are enough for the result, whatever is true of
/// everything else. Parts that are marked `alsoFails` are the exception. They are not needed for the result, but fail
/// as well: the second false operand of the `and` above.
struct TARN_EXPORT Explanation {
  enum class Operation {
    /// Not looked into: an expression that a program made, or one that is too large.
    Opaque,
    Literal,
    /// The value of one parameter.
    Parameter,
    /// A set of objects.
    Objects,
    Not,
    And,
    Or,
    Implies,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    In,
    NotIn,
    Exists,
    Any,
    All,
    Count,
    Filter,
    /// `if`, or an item of a list: its condition, then the value chosen. The truth is that of the condition.
    Choice,
    /// A named check, list or value; the child is its expression.
    NamedRule,
    /// A call of another function; the children are its arguments.
    Function,
    Arithmetic,
    ListOfItems
  };

  /// The result of a part.
  struct Result {
    enum class Kind { Truth, Number, Text, List, Objects };
    Kind kind = Kind::Truth;
    /// For `Truth`; for a parameter, what it is as a condition.
    bool truth = false;
    /// For `Number`, and for a parameter: NaN when it is not a number. In the first unit of its quantity type.
    double number = 0;
    /// The value as text: of a parameter as the model gives it, of a quantity as it is written. Cut off at
    /// `ModelRead::maxValue`.
    std::string text;
    /// The first `maxItems` items, or paths of objects.
    std::vector<std::string> items;
    std::size_t itemCount = 0;

    static constexpr std::size_t maxItems = 20;
  };

  /// A text that parts are ranges of: the rule itself, or a named rule that it calls.
  struct Source {
    std::string text;
    RulePlace place;
    /// The name of a named rule; "" for the rule itself.
    std::string name;
  };

  struct Node {
    Operation operation = Operation::Opaque;
    /// The name of the function or named rule.
    std::string name;
    /// The part is `length` bytes at `offset` of the text of `sources[source]`. With length 0 it is not known where the
    /// part is written.
    std::size_t source = 0;
    std::size_t offset = 0;
    std::size_t length = 0;
    /// The object in whose context the part was evaluated.
    std::string context;
    Result result;
    /// The part was not needed for the result, but it fails like the part that decided.
    bool alsoFails = false;
    /// Number of operands of `And` and `Or`, or of objects that a set function looked at. `agreeing` of them
    /// gave what the node gave: in an `and` that fails, the operands that fail. Objects that were not looked at,
    /// because the result was known before, are in neither number.
    std::size_t total = 0;
    std::size_t agreeing = 0;
    /// The set has more objects than `total`. Those after the ones that decided were not looked at, because the set is
    /// large (more than 500 objects). Then at least `agreeing` objects agree.
    bool isCutShort = false;
    /// Indices in `reads` of what the part itself read, without its children.
    std::vector<std::size_t> reads;
    /// Indices in `nodes`, each larger than that of this node. In the order of the text, or of the objects.
    std::vector<std::size_t> children;
  };

  /// At most so many nodes and reads are kept, and no node is deeper.
  static constexpr std::size_t maxNodes = 2000;
  static constexpr std::size_t maxReads = 1000;
  static constexpr std::size_t maxDepth = 100;

  std::vector<Source> sources;
  /// The first is the whole expression. Empty only in an explanation that was not made.
  std::vector<Node> nodes;
  /// Everything that the nodes name as read, each fact once.
  std::vector<ModelRead> reads;
  /// Nothing is missing that was needed for the result. False when there was too much to keep.
  bool isComplete = true;
  /// None of the reads that were needed can be left out. False when it would have cost too much to find out.
  bool isMinimal = true;

  /// The text of a part, "" when that is not known. Valid as long as this.
  [[nodiscard]] std::string_view textOf(Node const& node) const noexcept;
  /// For each of `reads`, whether it was needed for the result. Linear in the size of this.
  [[nodiscard]] std::vector<bool> neededReads() const;
};

}  // namespace tarn
