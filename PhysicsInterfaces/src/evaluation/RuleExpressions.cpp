#include <tarn/RuleExpressions.h>

namespace tarn {

RuleExpression::~RuleExpression() = default;

void RuleExpression::collectReads(RuleReads& /*reads*/) const {}

std::string RuleExpression::sourceText() const {
  return {};
}

std::string FixedText::evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const {
  return text_;
}

SharedStrings FixedList::evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const {
  return items_;
}

}  // namespace tarn
