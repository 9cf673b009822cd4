#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/RuleExpressions.h>
#include <tarn/TDFContext.h>

namespace tarn::rules {

/// Records which conditions of rules were true and which were false, and which of their operands have decided that.
/// Measures of coverage are made from it.
///
///     OperandRecorder recorder;
///     recorder.evaluate(*entry->available, TDFContext("/Case/Domain:rotor"), &context);
///     for (auto const& part : recorder.partsOf(*entry->available)) show(part.text, part.timesTrue, part.timesFalse);
///
/// An operand of `and`, `or`, `not` and `implies` decides when the result would not follow from the operands before it.
/// Of `a and b` that holds, both decide; if `a` is false, only `a` does. So an operand that decided both ways was
/// needed both ways.
///
/// The conditions inside of a rule are parts of it too: those of `if`, of the items of a list, and of the functions
/// over sets of objects, which are evaluated for each object. A named check that a rule calls is evaluated with it, and
/// what that finds counts for the named check.
///
/// One thread at a time may use a recorder. The rules that it has evaluated must outlive it. After an evaluation that
/// threw, which no rule of a rule file does, the counts of that evaluation are in part missing.
class TARN_EXPORT OperandRecorder {
 public:
  /// A condition, or an operand of one. A part of a condition that itself has `and`, `or`, `not` or `implies` is not
  /// listed: its operands are.
  struct Part {
    /// As it is written in the rule. "" when it is not known, for a condition of an item of a list.
    std::string text;
    std::size_t timesTrue = 0;
    std::size_t timesFalse = 0;
  };

  OperandRecorder();
  ~OperandRecorder();
  OperandRecorder(OperandRecorder&&) noexcept;
  OperandRecorder& operator=(OperandRecorder&&) noexcept;

  /// Evaluates a rule, and counts. Nothing happens for rules that a program made, except that the result of a
  /// `Condition` is counted. Costs up to the depth of the rule times an evaluation.
  void evaluate(RuleExpression const& rule, TDFContext const& context, EvalContext* evalContext);

  /// The parts of a rule that are true or false, in the order of its text. If the rule is a condition, the first is the
  /// whole rule. Empty for a rule that is no condition and has none in it. Linear in the size of the rule.
  [[nodiscard]] std::vector<Part> partsOf(RuleExpression const& rule) const;

  /// Adds the counts of `other`, which records the same rules.
  void add(OperandRecorder const& other);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tarn::rules
