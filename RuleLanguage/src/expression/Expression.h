#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/PathPattern.h>
#include <tarn/QuantityType.h>
#include <tarn/RuleReads.h>
#include <tarn/SharedStrings.h>
#include <tarn/TDFContext.h>

namespace tarn::rules {

class QuantityBinding;

/// The kind of an expression's result. A `Value` is text that its user may read as a number, truth value or list: a
/// parameter, or a choice between results of different kinds.
enum class Kind : std::uint8_t { Truth, Number, Text, List, Value, Objects };

[[nodiscard]] std::string_view kindName(Kind kind) noexcept;

/// A run of bytes in the text of an expression. Every node of every rule has one for as long as the rules live, so it
/// is kept small; longer texts are refused.
struct Range {
  static constexpr std::size_t longestText = std::numeric_limits<std::uint32_t>::max();

  constexpr Range() = default;
  /// The end of the run must not lie beyond `longestText`.
  constexpr Range(std::size_t begin, std::size_t size)
      : offset(static_cast<std::uint32_t>(begin)), length(static_cast<std::uint32_t>(size)) {}

  std::uint32_t offset = 0;
  std::uint32_t length = 0;
};

/// An object to which a quantifier gives a name while it tests that object.
struct NamedObject {
  std::string_view name;
  TDFContext const& object;
  NamedObject const* outer;  // the next name further out, or null
};

/// The model and the context that an expression is evaluated with.
struct Frame {
  ModelTDF const& model;
  TDFContext const& context;
  EvalContext* evalContext;
  /// The names that are known here, the innermost first. Null when there are none.
  NamedObject const* names = nullptr;

  /// The value of a parameter of the context object, "" when it has none.
  [[nodiscard]] std::string const& valueOfContext(std::string const& name) const;
};

/// The objects in whose contexts a part of an expression is evaluated, seen from the owner of the rule. Every path of
/// the part is seen from there. A `PathPattern` alone is a base without names; the default is the owner itself.
struct Base {
  /// The objects that a name can mean.
  struct Name {
    PathPattern objects;
    std::shared_ptr<Name const> outer;
  };

  Base() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a pattern is a base without names
  Base(PathPattern objects) : context(std::move(objects)) {}

  PathPattern context;
  std::shared_ptr<Name const> names = nullptr;  // the innermost first
};

/// The object at which a path in an expression begins, unless it is absolute: the context object, or an object that a
/// quantifier around the path has named.
class PathOrigin {
 public:
  /// The context object.
  PathOrigin() = default;
  /// The object that is named by the quantifier `level` names further out; 0 is the innermost.
  explicit PathOrigin(std::size_t level) noexcept : depth_(level + 1) {}

  [[nodiscard]] bool isNamed() const noexcept { return depth_ != 0; }
  /// How many names around the path must be known.
  [[nodiscard]] std::size_t depth() const noexcept { return depth_; }
  [[nodiscard]] TDFContext const& in(Frame const& frame) const noexcept {
    if (depth_ == 0) return frame.context;
    auto const* named = frame.names;
    for (std::size_t i = 1; i < depth_; ++i) named = named->outer;
    return named->object;
  }
  [[nodiscard]] PathPattern const& in(Base const& base) const noexcept {
    if (depth_ == 0) return base.context;
    auto const* named = base.names.get();
    for (std::size_t i = 1; i < depth_; ++i) named = named->outer.get();
    return named->objects;
  }

 private:
  std::size_t depth_ = 0;
};

/// A path in an expression, for tools that need what is read and where that is written.
struct PathUse {
  PathPattern pattern;    // seen from the owner of the rule
  std::string parameter;  // empty for a set of objects
  Range range;            // in the expression that holds the path
};

/// The inputs that the result of an expression depends on, apart from the model.
struct Dependence {
  bool context = false;   // the object in whose context it is evaluated
  bool owner = false;     // the object that owns the rule
  bool costly = false;    // the result is worth keeping: getting it visits objects, makes lists or calls a named rule
  std::size_t names = 0;  // named objects: how many of the names around the expression, up to the outermost it uses

  void add(Dependence const& other) noexcept {
    context |= other.context;
    owner |= other.owner;
    costly |= other.costly;
    names = std::max(names, other.names);
  }
  [[nodiscard]] bool isContextFree() const noexcept { return !context && !owner && names == 0; }
};

/// A question about one object.
using ObjectQuestion = std::function<bool(std::string const& path)>;

/// A node of a parsed expression. Its user asks for the result in the form that it needs. For example, comparing a
/// parameter with a text reads the model's own string and makes no copy. A form that a node does not have itself comes
/// from another form by the language's conversions. The parser refuses expressions in which a form makes no sense, so
/// such a form is never asked for.
///
/// Evaluation throws nothing itself. A text that is not a number is a NaN as a number.
class Expression {
 public:
  Expression(Kind kind, Range range) : range_(range), kind_(kind) {}
  Expression(Expression const&) = delete;
  Expression& operator=(Expression const&) = delete;
  virtual ~Expression() = default;

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  /// The part of the rule's source text that this node was made from. It stays known while the rules live, so that an
  /// explanation can show the text beside the value.
  [[nodiscard]] Range range() const noexcept { return range_; }

  /// As a condition: a value that is neither true nor false does not hold.
  [[nodiscard]] virtual bool truth(Frame const& frame) const;
  /// As a logical value; nothing for a present text that is neither true nor false.
  [[nodiscard]] virtual std::optional<bool> logical(Frame const& frame) const;
  [[nodiscard]] virtual double number(Frame const& frame) const;
  [[nodiscard]] virtual std::string text(Frame const& frame) const;
  [[nodiscard]] virtual SharedStrings list(Frame const& frame) const;
  [[nodiscard]] virtual std::vector<std::string> objects(Frame const& frame) const;
  /// The numbers of the items of the list form. An item that is not a number is a NaN.
  [[nodiscard]] virtual std::vector<double> numbers(Frame const& frame) const;

  /// True when `holds` returns true for one of the objects. It is called for them in order, and not after that.
  [[nodiscard]] virtual bool anyObject(Frame const& frame, ObjectQuestion const& holds) const;

  /// The text form. It is copied to `buffer` only when it does not exist as a string elsewhere. The reference is valid
  /// until the model or `buffer` changes.
  [[nodiscard]] virtual std::string const& textIn(Frame const& frame, std::string& buffer) const;

  /// The dependence of the result, including operands and called rules. Named rules must be bound.
  [[nodiscard]] virtual Dependence dependence() const = 0;

  /// Adds every path in the expression as seen from `base`, without those of called rules.
  virtual void collectPaths(std::vector<PathUse>& paths, Base const& base) const;
  /// Adds everything that an evaluation may read as seen from `base`, including called rules.
  virtual void collectReads(RuleReads& reads, Base const& base) const = 0;

  /// Gives this node and its operands their quantity types. Called once, when all rules are read and before the first
  /// evaluation.
  virtual void bind(QuantityBinding& binding);
  /// Tells the quantities that are written out in this number, and that have no type yet, that they are of this type.
  virtual void assume(QuantityType const& /*type*/, QuantityBinding& /*binding*/) {}

  /// The quantity type in whose first unit the number form counts; null when it has none, or it is not known before an
  /// evaluation. Known once the node is bound.
  [[nodiscard]] QuantityType const* quantity() const noexcept { return quantity_; }
  /// The same, or the type that the number most likely has.
  [[nodiscard]] virtual QuantityType const* likelyQuantity() const noexcept { return quantity_; }
  /// Whether the number form may be the result of a conversion, which rounds.
  [[nodiscard]] bool isConverted() const noexcept { return isConverted_; }

  /// The operands, for tools that look for patterns in an expression.
  [[nodiscard]] virtual std::vector<Expression const*> operands() const { return {}; }
  /// The base of operand `i` when this node has `base`.
  [[nodiscard]] virtual Base operandBase(std::size_t /*i*/, Base const& base) const { return base; }

 protected:
  void setQuantity(QuantityType const* type, bool isConverted) noexcept {
    quantity_ = type;
    isConverted_ = isConverted;
  }
  /// The number of a text of this node, converted when the quantity type is known.
  [[nodiscard]] double numberOf(std::string_view text) const noexcept;

 private:
  Range range_;
  Kind kind_;
  bool isConverted_ = false;
  QuantityType const* quantity_ = nullptr;
};

using ExpressionPtr = std::unique_ptr<Expression>;

/// The number as the language writes it: without a decimal point when it is whole and below 1e15, otherwise the
/// shortest text that reads back, and "" for not-a-number.
[[nodiscard]] std::string numberText(double number);
/// The number of a text or, without the units, of a quantity; NaN when the text is neither.
[[nodiscard]] double textNumber(std::string_view text) noexcept;

}  // namespace tarn::rules
