#include <tarn/RuleExpressions.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include <tarn/Check.h>
#include <tarn/List.h>
#include <tarn/RecordingModel.h>

namespace tarn {

namespace {

void setResult(Explanation::Result& result, bool holds) {
  result.kind = Explanation::Result::Kind::Truth;
  result.truth = holds;
}

void setResult(Explanation::Result& result, std::string const& text) {
  result.kind = Explanation::Result::Kind::Text;
  result.text = text.substr(0, ModelRead::maxValue);
}

void setResult(Explanation::Result& result, SharedStrings const& items) {
  result.kind = Explanation::Result::Kind::List;
  result.itemCount = items.size();
  auto const kept = static_cast<std::ptrdiff_t>(std::min(items.size(), Explanation::Result::maxItems));
  result.items.assign(items.begin(), items.begin() + kept);
}

/// One node that read everything.
template <typename Evaluated>
Explanation explainAsWhole(Evaluated const& expression, TDFContext const& context, ModelTDF const& model) {
  RecordingModel recording(model, Explanation::maxReads);
  EvalContext evalContext(&recording);
  Explanation result;
  Explanation::Node node;
  setResult(node.result, expression.evaluate(context, &evalContext));
  node.context = context.objPath();
  std::string source = expression.sourceText();
  node.length = source.size();
  result.sources.push_back({std::move(source), expression.rulePlace(), {}});
  for (std::size_t i = 0; i < recording.reads().size(); ++i) node.reads.push_back(i);
  result.reads = recording.reads();
  result.isComplete = !recording.isOverfull();
  result.nodes.push_back(std::move(node));
  return result;
}

}  // namespace

RuleExpression::~RuleExpression() = default;

void RuleExpression::collectReads(RuleReads& reads) const {
  reads.unknown = true;
}

bool RuleExpression::readsUnknown() const {
  RuleReads reads;
  collectReads(reads);
  return reads.unknown;
}

std::string RuleExpression::sourceText() const {
  return {};
}

Explanation RuleExpression::explain(TDFContext const& context, ModelTDF const& /*model*/) const {
  Explanation result;
  result.sources.push_back({sourceText(), rulePlace_, {}});
  result.nodes.emplace_back().context = context.objPath();
  result.isComplete = false;
  return result;
}

Explanation Condition::explain(TDFContext const& context, ModelTDF const& model) const {
  return explainAsWhole(*this, context, model);
}

Explanation TextExpression::explain(TDFContext const& context, ModelTDF const& model) const {
  return explainAsWhole(*this, context, model);
}

Explanation ListExpression::explain(TDFContext const& context, ModelTDF const& model) const {
  return explainAsWhole(*this, context, model);
}

Explanation Check::explain(TDFContext const& context, ModelTDF const& model) const {
  return explainAsWhole(*this, context, model);
}

Explanation List::explain(TDFContext const& context, ModelTDF const& model) const {
  return explainAsWhole(*this, context, model);
}

std::string FixedText::evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const {
  return text_;
}

void FixedText::collectReads(RuleReads& /*reads*/) const {}

Explanation FixedText::explain(TDFContext const& context, ModelTDF const& model) const {
  Explanation result = TextExpression::explain(context, model);
  result.nodes.front().operation = Explanation::Operation::Literal;
  return result;
}

SharedStrings FixedList::evaluate(TDFContext const& /*context*/, EvalContext* /*evalContext*/) const {
  return items_;
}

void FixedList::collectReads(RuleReads& /*reads*/) const {}

Explanation FixedList::explain(TDFContext const& context, ModelTDF const& model) const {
  Explanation result = ListExpression::explain(context, model);
  result.nodes.front().operation = Explanation::Operation::Literal;
  return result;
}

}  // namespace tarn
