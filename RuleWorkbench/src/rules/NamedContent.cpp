// Named rules that are fixed have no source text, so they are evaluated. They read nothing, so an empty model will do.
#include "rules/NamedContent.h"

#include <tarn/DynamicTDF.h>
#include <tarn/EvalContext.h>
#include <tarn/TDFContext.h>

namespace tarn::workbench {

namespace {

bool isFixed(RuleExpression const& rule) {
  RuleReads reads;
  rule.collectReads(reads);
  return rule.sourceText().empty() && !reads.readsModel();
}

}  // namespace

SharedStrings fixedItemsOf(List const& list) {
  if (!isFixed(list)) return {};
  DynamicTDF const model(false);
  EvalContext evaluation(&model);
  return list.evaluate(TDFContext(std::string()), &evaluation);
}

std::string fixedTextOf(TextExpression const& value) {
  if (!isFixed(value)) return {};
  DynamicTDF const model(false);
  EvalContext evaluation(&model);
  return value.evaluate(TDFContext(std::string()), &evaluation);
}

}  // namespace tarn::workbench
