#include "expression/NamedRule.h"

#include "expression/Explainer.h"
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

Explanation NamedCheck::explain(TDFContext const& context, ModelTDF const& model) const {
  return rules::explain({*rule_.expression(), rule_.source(), rulePlace()}, Form::Truth, context, model);
}

std::vector<std::string> NamedList::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  return rule_.expression()->list(Frame{*evalContext->getDB(), context, evalContext}).vector();
}

void NamedList::collectReads(RuleReads& reads) const {
  rule_.expression()->collectReads(reads, PathPattern());
}

Explanation NamedList::explain(TDFContext const& context, ModelTDF const& model) const {
  return rules::explain({*rule_.expression(), rule_.source(), rulePlace()}, Form::List, context, model);
}

std::string NamedValue::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  return rule_.expression()->text(Frame{*evalContext->getDB(), context, evalContext});
}

void NamedValue::collectReads(RuleReads& reads) const {
  rule_.expression()->collectReads(reads, PathPattern());
}

Explanation NamedValue::explain(TDFContext const& context, ModelTDF const& model) const {
  return rules::explain({*rule_.expression(), rule_.source(), rulePlace()}, Form::Text, context, model);
}

}  // namespace tarn::rules
