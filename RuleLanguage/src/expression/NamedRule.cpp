#include "expression/NamedRule.h"

#include "expression/Nodes.h"

namespace tarn::rules {

void NamedRule::bind(ExpressionPtr expression, std::string source) {
  dependence_ = expression->dependence();
  expression_ = keepContextFreeParts(std::move(expression));
  source_ = std::move(source);
}

bool NamedCheck::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  return rule_.expression()->truth(Frame{*evalContext->getDB(), context, evalContext});
}

void NamedCheck::collectReads(RuleReads& reads) const {
  rule_.expression()->collectReads(reads, PathPattern());
}

std::vector<std::string> NamedList::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  return rule_.expression()->list(Frame{*evalContext->getDB(), context, evalContext}).vector();
}

void NamedList::collectReads(RuleReads& reads) const {
  rule_.expression()->collectReads(reads, PathPattern());
}

}  // namespace tarn::rules
