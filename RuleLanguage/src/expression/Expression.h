#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/RuleReads.h>
#include <tarn/SharedStrings.h>
#include <tarn/TDFContext.h>

namespace tarn::rules {

/// What an expression gives. `Value` is a text whose meaning is decided by its use: a parameter, or a choice between
/// things of different kinds.
enum class Kind { Truth, Number, Text, List, Value, Objects };

[[nodiscard]] std::string_view kindName(Kind kind) noexcept;

/// A run of bytes in the text of an expression.
struct Range {
  std::size_t offset = 0;
  std::size_t length = 0;
};

/// What an evaluation works on.
struct Frame {
  ModelTDF const& model;
  TDFContext const& context;
  EvalContext* evalContext;
};

/// A path as it stands in an expression, for tools that look at what is read and where that was written.
struct PathUse {
  PathPattern pattern;    // seen from the owner of the rule
  std::string parameter;  // empty for a set of objects
  Range range;            // in the expression that holds the path
};

/// What the result of an expression hangs on beside the model.
struct Dependence {
  bool context = false;  // on the object in whose context it is evaluated
  bool owner = false;    // on the object that owns the rule
  bool costly = false;   // it is worth keeping: it goes over objects or calls a named rule

  void add(Dependence const& other) noexcept {
    context |= other.context;
    owner |= other.owner;
    costly |= other.costly;
  }
  [[nodiscard]] bool isContextFree() const noexcept { return !context && !owner; }
};

/// Something that an object is asked.
using ObjectQuestion = std::function<bool(std::string const& path)>;

/// A node of a parsed expression. It evaluates itself in the form in which its user wants the result, so that a
/// comparison of a parameter with a text, for example, looks at the model's own string and makes no copy. What a node
/// cannot give as such comes from another form by the language's conversions; forms that make no sense for a kind are
/// never asked for, since the parser refuses such expressions.
///
/// Evaluation never throws of itself. A number that is none is a NaN.
class Expression {
 public:
  Expression(Kind kind, Range range) : kind_(kind), range_(range) {}
  Expression(Expression const&) = delete;
  Expression& operator=(Expression const&) = delete;
  virtual ~Expression() = default;

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] Range range() const noexcept { return range_; }

  /// As a condition: what is neither true nor false does not hold.
  [[nodiscard]] virtual bool truth(Frame const& frame) const;
  /// As a logical value; nothing for a present text that is none.
  [[nodiscard]] virtual std::optional<bool> logical(Frame const& frame) const;
  [[nodiscard]] virtual double number(Frame const& frame) const;
  [[nodiscard]] virtual std::string text(Frame const& frame) const;
  [[nodiscard]] virtual SharedStrings list(Frame const& frame) const;
  [[nodiscard]] virtual std::vector<std::string> objects(Frame const& frame) const;

  /// Whether `holds` does for one of the objects. They are asked about in their order and no further than needed.
  [[nodiscard]] virtual bool anyObject(Frame const& frame, ObjectQuestion const& holds) const;

  /// The text form without a copy where the text is at hand, else made in `buffer`. Valid until the model changes or
  /// `buffer` does.
  [[nodiscard]] virtual std::string const& textIn(Frame const& frame, std::string& buffer) const;

  /// The dependence of the whole, its operands and what it calls included. Named rules must be bound.
  [[nodiscard]] virtual Dependence dependence() const = 0;

  /// Adds every path in it, those of called rules excepted, as seen from `base`.
  virtual void collectPaths(std::vector<PathUse>& paths, PathPattern const& base) const;
  /// Adds what an evaluation may read, called rules included, as seen from `base`.
  virtual void collectReads(RuleReads& reads, PathPattern const& base) const = 0;

  /// The operands, for tools that look for patterns in an expression.
  [[nodiscard]] virtual std::vector<Expression const*> operands() const { return {}; }
  /// Where operand `i` is evaluated, when the whole is evaluated at `base`.
  [[nodiscard]] virtual PathPattern operandBase(std::size_t /*i*/, PathPattern const& base) const { return base; }

 private:
  Kind kind_;
  Range range_;
};

using ExpressionPtr = std::unique_ptr<Expression>;

/// The number as the language writes it: without a decimal point when it is whole and below 1e15, else the shortest
/// text that reads back; "" for not-a-number.
[[nodiscard]] std::string numberText(double number);
/// The number that a text stands for, a quantity's units left aside; NaN when it is none.
[[nodiscard]] double textNumber(std::string_view text) noexcept;

}  // namespace tarn::rules
