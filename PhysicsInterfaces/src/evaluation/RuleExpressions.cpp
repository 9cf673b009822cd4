#include <tarn/RuleExpressions.h>

namespace tarn {

RuleExpression::~RuleExpression() = default;

void RuleExpression::collectReads(RuleReads& reads) const {
  reads.unknown = true;
}

std::string RuleExpression::sourceText() const {
  return {};
}

std::string FixedText::evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const {
  return text_;
}

void FixedText::collectReads(RuleReads& /*reads*/) const {}

SharedStrings FixedList::evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const {
  return items_;
}

void FixedList::collectReads(RuleReads& /*reads*/) const {}

}  // namespace tarn
