#pragma once

#include <span>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

#include <tarn/Explanation.h>
#include <tarn/PathPattern.h>
#include <tarn/PhysicsData.h>

#include "expression/Expression.h"
#include "expression/Functions.h"
#include "expression/Quantities.h"

// The kinds of nodes of a parsed expression. The rule reference says what each one means.

namespace tarn::rules {

/// The expression as a node of one kind; null when it is of another kind. The same as a `dynamic_cast`, many times as
/// fast, and only for kinds that nothing derives from.
template <typename Node>
[[nodiscard]] Node const* as(Expression const& expression) {
  static_assert(std::is_final_v<Node>);
  return typeid(expression) == typeid(Node) ? static_cast<Node const*>(&expression) : nullptr;
}

class NamedRule;

/// Wraps the largest costly context-free parts of `expression` in `Kept`. Named rules must be bound. A set of objects
/// is not kept by itself, because its paths would be copied out of the cache each time.
[[nodiscard]] ExpressionPtr keepContextFreeParts(ExpressionPtr expression);

/// Takes the place of a part that has an error, so that parsing can go on. It is never evaluated.
class FaultyPart final : public Expression {
 public:
  using Expression::Expression;
  [[nodiscard]] Dependence dependence() const override { return {}; }
  void collectReads(RuleReads& /*reads*/, Base const& /*base*/) const override {}
};

/// A text, number or truth value as written.
class Literal final : public Expression {
 public:
  Literal(Range range, std::string text) : Expression(Kind::Text, range), text_(std::move(text)) {}
  Literal(Range range, double number) : Expression(Kind::Number, range), number_(number) {}
  /// A number whose text is what was written: `1.50`.
  Literal(Range range, double number, std::string written)
      : Expression(Kind::Number, range), text_(std::move(written)), number_(number) {}
  Literal(Range range, bool truth) : Expression(Kind::Truth, range), truth_(truth) {}

  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::string text(Frame const& frame) const override;
  [[nodiscard]] std::string const& textIn(Frame const& frame, std::string& buffer) const override;
  [[nodiscard]] Dependence dependence() const override { return {}; }
  void collectReads(RuleReads& /*reads*/, Base const& /*base*/) const override {}

  [[nodiscard]] std::string const& rawText() const noexcept { return text_; }

 private:
  std::string text_;
  double number_ = 0;
  bool truth_ = false;
};

/// A quantity as written: `500 [ms]`. As a text it is what is written. As a number it counts in the first unit of its
/// quantity type, which is that of the numbers it is taken together with.
class QuantityLiteral final : public Expression {
 public:
  QuantityLiteral(Range range, double number, std::string units, std::string text)
      : Expression(Kind::Number, range), number_(number), units_(std::move(units)), text_(std::move(text)) {}

  [[nodiscard]] double number(Frame const& /*frame*/) const override { return number_; }
  [[nodiscard]] std::string text(Frame const& /*frame*/) const override { return text_; }
  [[nodiscard]] std::string const& textIn(Frame const& /*frame*/, std::string& /*buffer*/) const override {
    return text_;
  }
  [[nodiscard]] Dependence dependence() const override { return {}; }
  void collectReads(RuleReads& /*reads*/, Base const& /*base*/) const override {}

  void bind(QuantityBinding& binding) override { binding.open(*this); }
  void assume(QuantityType const& type, QuantityBinding& binding) override;
  [[nodiscard]] std::string const& units() const noexcept { return units_; }
  /// Gives a literal without a type the conversion on which all types that list its units agree.
  void settle(QuantityBinding& binding);

 private:
  void convert(QuantityUnit const& unit);

  double number_;  // in the first unit once it is settled
  std::string units_;
  std::string text_;
  bool settled_ = false;
};

/// A list that is written out. Its items are texts or values.
class ListLiteral final : public Expression {
 public:
  ListLiteral(Range range, std::vector<ExpressionPtr> items);

  [[nodiscard]] SharedStrings list(Frame const& frame) const override;
  [[nodiscard]] Dependence dependence() const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  [[nodiscard]] std::vector<Expression const*> operands() const override;
  [[nodiscard]] std::vector<double> numbers(Frame const& frame) const override;
  void bind(QuantityBinding& binding) override;
  /// The items, when all of them are texts that are written out; otherwise empty.
  [[nodiscard]] SharedStrings const& fixedItems() const noexcept { return fixed_; }

 private:
  std::vector<ExpressionPtr> items_;  // empty when all are literals: then the list is in `fixed_`
  SharedStrings fixed_;
};

/// A list in which an item counts only while its condition holds.
class GuardedList final : public Expression {
 public:
  struct Item {
    ExpressionPtr value;
    ExpressionPtr when;  // null: always
    /// The texts that the ranges of both belong to, for explanations.
    Explanation::Source valueSource;
    Explanation::Source whenSource;
  };
  explicit GuardedList(std::vector<Item> items) : Expression(Kind::List, {}), items_(std::move(items)) {}

  [[nodiscard]] SharedStrings list(Frame const& frame) const override;
  [[nodiscard]] Dependence dependence() const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  [[nodiscard]] std::vector<Expression const*> operands() const override;
  // Its parts are written in different places, so each is bound by itself.
  [[nodiscard]] std::vector<Item> const& items() const noexcept { return items_; }

 private:
  std::vector<Item> items_;
};

/// `${path/Name}`.
class ParameterReference final : public Expression {
 public:
  /// `objects` begins at `origin`.
  ParameterReference(Range range, PathOrigin origin, PathPattern objects, std::string name, PhysicsData const* data)
      : Expression(Kind::Value, range),
        origin_(origin),
        objects_(std::move(objects)),
        name_(std::move(name)),
        data_(data) {
    local_ = !origin_.isNamed() && objects_.start() == PathPattern::Start::Context && objects_.steps().empty();
    fixed_ = objects_.isSingle() && objects_.isAbsolute() && objects_.resolve(TDFContext(std::string{}), fixedPath_);
  }

  [[nodiscard]] std::optional<bool> logical(Frame const& frame) const override;
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::string text(Frame const& frame) const override;
  [[nodiscard]] std::string const& textIn(Frame const& frame, std::string& buffer) const override;
  /// The numbers of the items of a list parameter.
  [[nodiscard]] std::vector<double> numbers(Frame const& frame) const override;
  [[nodiscard]] Dependence dependence() const override;
  void collectPaths(std::vector<PathUse>& paths, Base const& base) const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  void bind(QuantityBinding& binding) override;
  [[nodiscard]] QuantityType const* likelyQuantity() const noexcept override {
    return mixed_ != nullptr ? mixed_->likely : quantity();
  }

  /// The numbers of all parameters that the path matches and the model has.
  [[nodiscard]] std::vector<double> numbersOfAll(Frame const& frame) const;
  /// Whether the two values are equal as quantities. Nothing when the two parameters are not of one quantity type, or a
  /// value cannot be converted.
  [[nodiscard]] std::optional<bool> equalQuantities(Frame const& frame, std::string const& value,
                                                    ParameterReference const& other,
                                                    std::string const& otherValue) const;

  /// True when one of the objects that the path matches has the parameter.
  [[nodiscard]] bool exists(Frame const& frame) const;
  /// The values of all parameters that the path matches and the model has.
  [[nodiscard]] std::vector<std::string> values(Frame const& frame) const;
  /// The type that the rules declare for the parameter as seen from the frame; nothing when they declare none.
  [[nodiscard]] std::optional<TDFParam::Type> declaredType(Frame const& frame) const;

  [[nodiscard]] PathOrigin origin() const noexcept { return origin_; }
  /// From the origin.
  [[nodiscard]] PathPattern const& objectPattern() const noexcept { return objects_; }
  /// All objects whose parameter may be read, seen from the owner of the rule.
  [[nodiscard]] PathPattern objectsFrom(Base const& base) const { return objects_.seenFrom(origin_.in(base)); }
  /// Equal for two references in one context exactly when they are written alike. Blanks and escapes do not count.
  [[nodiscard]] std::string spelling() const {
    return std::to_string(origin_.depth()) + "\n" + objects_.text() + "\n" + name_;
  }
  /// True when the parameter is one of the context object itself.
  [[nodiscard]] bool isOfContext() const noexcept { return local_; }
  [[nodiscard]] std::string const& name() const noexcept { return name_; }

 private:
  /// The path of the object, or null when there is none. A path that has to be made is put into `buffer`.
  [[nodiscard]] std::string const* objectPath(Frame const& frame, std::string& buffer) const;
  /// Calls `each` with the path of every object that the path matches and that has the parameter.
  template <typename Each>
  void forEachPresent(Frame const& frame, Each each) const {
    auto const visit = [&](std::string const& path) {
      if (frame.model.hasParameter(path, name_)) each(path);
    };
    if (objects_.isSingle()) {
      std::string buffer;
      if (auto const* path = objectPath(frame, buffer)) visit(*path);
    } else {
      for (auto const& path : objects_.expand(origin_.in(frame), frame.model)) visit(path);
    }
  }
  /// The value rule of the parameter in the object at `path`, or null.
  [[nodiscard]] ParamValueDef const* valueRule(std::string const& path) const;
  /// The quantity type of the parameter in the object at `path`, or null.
  [[nodiscard]] QuantityType const* quantityAt(Frame const& frame, std::string const& path) const;

  PathOrigin origin_;
  PathPattern objects_;
  std::string name_;
  PhysicsData const* data_;
  std::string fixedPath_;
  bool local_ = false;  // of the context object itself
  bool fixed_ = false;  // of the object at fixedPath_, whatever the context
  // The types of all parameters of this name, when they differ. Null otherwise: then `quantity` holds for all.
  std::shared_ptr<ParameterQuantity const> mixed_;
};

/// `{pattern}`, or the name of an object alone.
class ObjectSet final : public Expression {
 public:
  /// `pattern` begins at `origin`.
  ObjectSet(Range range, PathOrigin origin, PathPattern pattern)
      : Expression(Kind::Objects, range), origin_(origin), pattern_(std::move(pattern)) {}

  [[nodiscard]] std::vector<std::string> objects(Frame const& frame) const override;
  [[nodiscard]] bool anyObject(Frame const& frame, ObjectQuestion const& holds) const override;
  [[nodiscard]] Dependence dependence() const override;
  void collectPaths(std::vector<PathUse>& paths, Base const& base) const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  /// True when at least one object matches.
  [[nodiscard]] bool exists(Frame const& frame) const;
  [[nodiscard]] PathOrigin origin() const noexcept { return origin_; }
  /// From the origin.
  [[nodiscard]] PathPattern const& pattern() const noexcept { return pattern_; }
  /// All objects that may be in the set, seen from the owner of the rule.
  [[nodiscard]] PathPattern objectsFrom(Base const& base) const { return pattern_.seenFrom(origin_.in(base)); }

 private:
  PathOrigin origin_;
  PathPattern pattern_;
};

/// A node with operands. It depends on and reads what its operands do.
class Operation : public Expression {
 public:
  Operation(Kind kind, Range range, std::vector<ExpressionPtr> operands)
      : Expression(kind, range), operands_(std::move(operands)) {}

  [[nodiscard]] Dependence dependence() const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  [[nodiscard]] std::vector<Expression const*> operands() const override;
  /// Binds the operands, and then the node itself by `bindResult`.
  void bind(QuantityBinding& binding) final;

 protected:
  /// Gives the node its quantity type. The operands have theirs.
  virtual void bindResult(QuantityBinding& /*binding*/) {}
  /// The type of a number that is one of the operands `from` up to, not including, `to`, or a sum of them. Quantities
  /// that are written out among them take that type.
  void unify(std::size_t from, std::size_t to, QuantityBinding& binding);
  void assumeAll(std::size_t from, std::size_t to, QuantityType const& type, QuantityBinding& binding);

  [[nodiscard]] Expression const& operand(std::size_t i) const { return *operands_[i]; }
  [[nodiscard]] std::size_t size() const noexcept { return operands_.size(); }
  [[nodiscard]] std::span<ExpressionPtr const> all() const noexcept { return operands_; }

 private:
  friend ExpressionPtr keepContextFreeParts(ExpressionPtr expression);
  std::vector<ExpressionPtr> operands_;
};

/// `not`, `and`, `or`, `implies`.
class Logic final : public Operation {
 public:
  enum class Operator { Not, And, Or, Implies };
  Logic(Operator op, Range range, std::vector<ExpressionPtr> operands)
      : Operation(Kind::Truth, range, std::move(operands)), operator_(op) {}
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] Operator op() const noexcept { return operator_; }

 private:
  Operator operator_;
};

/// `==`, `!=` and the order comparisons.
class Comparison final : public Operation {
 public:
  enum class Operator { Equal, NotEqual, Less, LessEqual, Greater, GreaterEqual };
  Comparison(Operator op, Range range, std::vector<ExpressionPtr> operands);
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] Operator op() const noexcept { return operator_; }
  [[nodiscard]] Expression const& left() const { return operand(0); }
  [[nodiscard]] Expression const& right() const { return operand(1); }

 private:
  enum class Mode { Truth, Number, Text, Parameters };
  void bindResult(QuantityBinding& binding) override;
  [[nodiscard]] bool equal(Frame const& frame) const;
  [[nodiscard]] bool equalNumbers(double a, double b) const noexcept;

  Operator operator_;
  Mode mode_;
  bool isTolerant_ = false;  // a side is converted, so equal numbers may differ by rounding
};

/// `in` and `not in`.
class Membership final : public Operation {
 public:
  Membership(bool negated, Range range, std::vector<ExpressionPtr> operands)
      : Operation(Kind::Truth, range, std::move(operands)), negated_(negated) {}
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] bool negated() const noexcept { return negated_; }
  [[nodiscard]] Expression const& item() const { return operand(0); }
  [[nodiscard]] Expression const& items() const { return operand(1); }

 private:
  bool negated_;
};

/// A chain of `+` and `-`, or of `*` and `/`, evaluated from the left. After the first term that makes the sum a text,
/// all terms are joined as texts.
class Arithmetic final : public Operation {
 public:
  /// `operators[i]` is the operator before operand `i`; the first one is ignored. The first `numeric` operands are
  /// added as numbers; the others are joined to the sum as texts.
  Arithmetic(Kind kind, Range range, std::vector<ExpressionPtr> operands, std::string operators, std::size_t numeric)
      : Operation(kind, range, std::move(operands)), operators_(std::move(operators)), numeric_(numeric) {}
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::string text(Frame const& frame) const override;
  void assume(QuantityType const& type, QuantityBinding& binding) override;
  /// Whether terms are added, and how many of them as numbers.
  [[nodiscard]] bool isSum() const noexcept { return operators_.front() == '+'; }
  [[nodiscard]] std::size_t numericTerms() const noexcept { return numeric_; }
  /// Whether operand `i` divides what is before it.
  [[nodiscard]] bool isDivisor(std::size_t i) const noexcept { return operators_[i] == '/'; }

 private:
  void bindResult(QuantityBinding& binding) override;

  std::string operators_;
  std::size_t numeric_;
};

/// Unary `-`.
class Negation final : public Operation {
 public:
  Negation(Range range, std::vector<ExpressionPtr> operands) : Operation(Kind::Number, range, std::move(operands)) {}
  [[nodiscard]] double number(Frame const& frame) const override { return -operand(0).number(frame); }
  void assume(QuantityType const& type, QuantityBinding& binding) override { assumeAll(0, 1, type, binding); }

 private:
  void bindResult(QuantityBinding& binding) override { unify(0, 1, binding); }
};

/// `if(c, a, b)`: returns the chosen branch in the form that is asked for.
class Choice final : public Operation {
 public:
  using Operation::Operation;
  [[nodiscard]] bool truth(Frame const& frame) const override { return chosen(frame).truth(frame); }
  [[nodiscard]] std::optional<bool> logical(Frame const& frame) const override { return chosen(frame).logical(frame); }
  [[nodiscard]] double number(Frame const& frame) const override { return chosen(frame).number(frame); }
  [[nodiscard]] std::string text(Frame const& frame) const override { return chosen(frame).text(frame); }
  [[nodiscard]] std::string const& textIn(Frame const& frame, std::string& buffer) const override {
    return chosen(frame).textIn(frame, buffer);
  }
  [[nodiscard]] SharedStrings list(Frame const& frame) const override { return chosen(frame).list(frame); }
  [[nodiscard]] std::vector<std::string> objects(Frame const& frame) const override {
    return chosen(frame).objects(frame);
  }
  [[nodiscard]] std::vector<double> numbers(Frame const& frame) const override { return chosen(frame).numbers(frame); }
  void assume(QuantityType const& type, QuantityBinding& binding) override { assumeAll(1, 3, type, binding); }

 private:
  void bindResult(QuantityBinding& binding) override { unify(1, 3, binding); }
  [[nodiscard]] Expression const& chosen(Frame const& frame) const {
    return operand(0).truth(frame) ? operand(1) : operand(2);
  }
};

/// `count`, `any`, `all` and `filter`: a set of objects and a condition that is evaluated in the context of each
/// object. `count` can do without a condition. The object under test can have a name in the condition.
class Quantifier final : public Operation {
 public:
  enum class Operator { Count, Any, All, Filter };
  /// `name` is empty when the object under test has no name.
  Quantifier(Operator op, Range range, std::vector<ExpressionPtr> operands, std::string name);
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::vector<std::string> objects(Frame const& frame) const override;
  [[nodiscard]] bool anyObject(Frame const& frame, ObjectQuestion const& holds) const override;
  [[nodiscard]] Dependence dependence() const override;
  [[nodiscard]] Base operandBase(std::size_t i, Base const& base) const override;

  [[nodiscard]] Operator op() const noexcept { return operator_; }
  /// The name of the object under test, or "".
  [[nodiscard]] std::string const& objectName() const noexcept { return name_; }
  /// Calls `ask` with the frame in which the condition is evaluated for the object at `path`, and returns its answer.
  template <typename Ask>
  auto atObject(Frame const& frame, std::string const& path, Ask ask) const {
    TDFContext const context(path, frame.context.ownerPath());
    NamedObject const named{name_, context, frame.names};
    return ask(Frame{frame.model, context, frame.evalContext, name_.empty() ? frame.names : &named});
  }

 private:
  [[nodiscard]] bool holds(Frame const& frame, std::string const& path) const;

  Operator operator_;
  std::string name_;
};

/// A call of a function that is a plain operation on its arguments.
class FunctionCall final : public Operation {
 public:
  FunctionCall(Function const& function, Range range, std::vector<ExpressionPtr> arguments)
      : Operation(function.result, range, std::move(arguments)), function_(&function) {}
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::string text(Frame const& frame) const override;
  [[nodiscard]] SharedStrings list(Frame const& frame) const override;
  [[nodiscard]] Dependence dependence() const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  [[nodiscard]] std::vector<double> numbers(Frame const& frame) const override;
  void assume(QuantityType const& type, QuantityBinding& binding) override;
  [[nodiscard]] Function const& function() const noexcept { return *function_; }

 private:
  void bindResult(QuantityBinding& binding) override;

  Function const* function_;
};

/// `matches(text, pattern)`. A pattern that is written out was read with the rules. A computed one is read at each
/// evaluation; when it is not a regular expression, nothing matches it.
class PatternMatch final : public Operation {
 public:
  /// `pattern` is null when it is computed.
  PatternMatch(Range range, std::vector<ExpressionPtr> arguments, std::shared_ptr<RegularExpression const> pattern)
      : Operation(Kind::Truth, range, std::move(arguments)), pattern_(std::move(pattern)) {}
  [[nodiscard]] bool truth(Frame const& frame) const override;
  /// Null when it is computed.
  [[nodiscard]] RegularExpression const* pattern() const noexcept { return pattern_.get(); }

 private:
  std::shared_ptr<RegularExpression const> pattern_;
};

/// `check('name')`, `list('name')` and `value('name')`.
class NamedCall final : public Expression {
 public:
  NamedCall(Kind kind, Range range, NamedRule const* rule) : Expression(kind, range), rule_(rule) {}
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] std::optional<bool> logical(Frame const& frame) const override;
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::string text(Frame const& frame) const override;
  [[nodiscard]] std::string const& textIn(Frame const& frame, std::string& buffer) const override;
  [[nodiscard]] SharedStrings list(Frame const& frame) const override;
  [[nodiscard]] Dependence dependence() const override;
  void collectReads(RuleReads& reads, Base const& base) const override;
  [[nodiscard]] std::vector<double> numbers(Frame const& frame) const override;
  void bind(QuantityBinding& binding) override;
  [[nodiscard]] NamedRule const& rule() const noexcept { return *rule_; }

 private:
  /// The call has every form of the called expression. A check or list has only the one of its kind.
  [[nodiscard]] bool isValue() const noexcept { return kind() != Kind::Truth && kind() != Kind::List; }

  NamedRule const* rule_;
};

/// A part whose result is the same in every context of a walk. It is kept in the cache of the evaluation.
class Kept final : public Operation {
 public:
  /// `part` contains the one expression whose result is kept.
  Kept(Kind kind, Range range, std::vector<ExpressionPtr> part) : Operation(kind, range, std::move(part)) {}
  [[nodiscard]] bool truth(Frame const& frame) const override;
  [[nodiscard]] std::optional<bool> logical(Frame const& frame) const override { return truth(frame); }
  [[nodiscard]] double number(Frame const& frame) const override;
  [[nodiscard]] std::string text(Frame const& frame) const override;
  [[nodiscard]] SharedStrings list(Frame const& frame) const override;
  void assume(QuantityType const& type, QuantityBinding& binding) override { assumeAll(0, 1, type, binding); }

 private:
  void bindResult(QuantityBinding& binding) override { unify(0, 1, binding); }

  template <typename Result, typename Evaluate>
  Result kept(Frame const& frame, Evaluate evaluate) const;
};

}  // namespace tarn::rules
