#pragma once

#include <string>

#include <tarn/Explanation.h>
#include <tarn/ModelTDF.h>
#include <tarn/RulePlace.h>
#include <tarn/TDFContext.h>

#include "expression/Expression.h"

namespace tarn::rules {

/// The form in which the result of an expression is explained.
enum class Form { Truth, Number, Text, List, Objects };

/// The expression and where it is written.
struct ExplainedRule {
  Expression const& expression;
  std::string const& source;
  RulePlace const& place;
};

/// Evaluates the expression on `model` and explains the result, see `Explanation`.
[[nodiscard]] Explanation explain(ExplainedRule const& rule, Form form, TDFContext const& context,
                                  ModelTDF const& model);
/// The same with all parts, also those that did not decide.
[[nodiscard]] Explanation explainAllParts(ExplainedRule const& rule, Form form, TDFContext const& context,
                                          ModelTDF const& model);

}  // namespace tarn::rules
