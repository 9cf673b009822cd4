#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Explanation.h>
#include <tarn/Export.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleExpressions.h>
#include <tarn/rules/Diagnostic.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::rules {

/// An expression that is not a part of any rule: a user asks it about a model, or a test of rules does. It is written
/// as in a rule file, and may call the named rules of a rule database.
///
///     auto const parsed = parseQuery("count({Boundary:*}) > 4", *rules);
///     if (!parsed.query) std::cerr << format(parsed.diagnostics);
///     EvalContext context(&model);
///     if (parsed.query->evaluate(TDFContext("/Case/Domain:rotor"), &context).truth) ...
class TARN_EXPORT Query final : public RuleExpression {
 public:
  /// The kind of a result. It is known before an evaluation, from the way the expression is written.
  enum class Kind { Truth, Number, Text, List, Objects };

  struct Result {
    Kind kind = Kind::Truth;
    /// For `Truth`, and for a text that is the value of a parameter: whether it holds as a condition.
    bool truth = false;
    /// For `Number`, and for a text that is the value of a parameter: its number in the first unit of its quantity
    /// type. NaN when it is not a number. 0 for the other kinds.
    double number = 0;
    /// For `Truth` "true" or "false". For `Number` as the language writes numbers: "" when it is not a number. For
    /// `Text` the text. Empty for lists.
    std::string text;
    /// For `List` the items, for `Objects` the paths of the objects.
    std::vector<std::string> items;
  };

  ~Query() override;

  [[nodiscard]] Kind kind() const noexcept;
  /// Evaluates the expression in the context of an object; relative paths start there. Nothing is thrown but
  /// `std::bad_alloc`.
  [[nodiscard]] Result evaluate(TDFContext const& context, EvalContext* evalContext) const;

  void collectReads(RuleReads& reads) const override;
  /// The expression as it was given.
  [[nodiscard]] std::string sourceText() const override;
  [[nodiscard]] Explanation explain(TDFContext const& context, ModelTDF const& model) const override;
  /// As `explain`, with the value of every part: also of operands, branches and objects that did not decide. The reads
  /// are then more than a proof needs, and `Explanation::isMinimal` is false. Parts beyond the limits of `Explanation`
  /// are left out, and of a set or a row of more than 500 only the whole is given.
  [[nodiscard]] Explanation explainAllParts(TDFContext const& context, ModelTDF const& model) const;

  /// Made by `parseQuery`.
  struct Parts;
  explicit Query(std::unique_ptr<Parts const> parts) noexcept;

 private:
  std::unique_ptr<Parts const> parts_;
};

/// The result of `parseQuery`.
struct ParsedQuery {
  /// Null when there are diagnostics.
  std::unique_ptr<Query> query;
  /// Everything that is wrong with the expression, in the order of its text. All are errors.
  std::vector<Diagnostic> diagnostics;
};

/// Parses an expression of any kind. Its named rules, parameters and quantities are those of `rules`, which must
/// outlive the query. Named rules that a program made cannot be called. Diagnostics and places name the text
/// `sourceName`. Only `std::bad_alloc` is thrown. Linear in the length of the text and in the number of rules.
[[nodiscard]] TARN_EXPORT ParsedQuery parseQuery(std::string const& text, PhysicsData const& rules,
                                                 std::string const& sourceName = "<expression>",
                                                 LoadLimits const& limits = {});

}  // namespace tarn::rules
