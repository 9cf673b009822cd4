// Expressions outside of rule files. They go the way of an expression in a rule: parsed, bound to the quantity types of
// the rules, evaluated in the form that their kind suggests. The named rules that they may call are found in the
// finished rule database.

#include <tarn/rules/Query.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include <tarn/ObjDependDef.h>
#include <tarn/PathPattern.h>
#include <tarn/PathUtils.h>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"
#include "expression/Explainer.h"
#include "expression/Expression.h"
#include "expression/NamedRule.h"
#include "expression/Parser.h"
#include "expression/Quantities.h"

namespace tarn::rules {

struct Query::Parts {
  std::string source;
  ExpressionPtr expression;
};

namespace {

Query::Kind kindOf(rules::Kind kind) noexcept {
  switch (kind) {
    case rules::Kind::Truth:
      return Query::Kind::Truth;
    case rules::Kind::Number:
      return Query::Kind::Number;
    case rules::Kind::List:
      return Query::Kind::List;
    case rules::Kind::Objects:
      return Query::Kind::Objects;
    case rules::Kind::Text:
    case rules::Kind::Value:
      break;
  }
  return Query::Kind::Text;
}

Form formOf(Query::Kind kind) noexcept {
  switch (kind) {
    case Query::Kind::Truth:
      return Form::Truth;
    case Query::Kind::Number:
      return Form::Number;
    case Query::Kind::List:
      return Form::List;
    case Query::Kind::Objects:
      return Form::Objects;
    case Query::Kind::Text:
      break;
  }
  return Form::Text;
}

bool hasType(PhysicsData const& rules, std::string_view type) {
  auto const& roots = rules.getPertinentGlobalCheckRoots();
  if (std::find(roots.begin(), roots.end(), type) != roots.end()) return true;
  return std::any_of(rules.objects().begin(), rules.objects().end(), [&](ObjDependDef const* object) {
    return PathUtils::lastType(object->typePath()) == type || object->findChild(type) != nullptr;
  });
}

NamedRules namedRulesOf(PhysicsData const& rules) {
  NamedRules named;
  named.isType = [&rules](std::string_view type) { return hasType(rules, type); };
  named.isParameter = [&rules](std::string_view name) {
    auto const& objects = rules.objects();
    return std::any_of(objects.begin(), objects.end(),
                       [&](ObjDependDef const* object) { return object->findParam(name) != nullptr; });
  };
  for (std::string const& name : rules.getCheckNames()) {
    if (auto const* check = dynamic_cast<NamedCheck const*>(rules.getCheck(name, true))) named.checks[name] = check;
  }
  for (std::string const& name : rules.getListNames()) {
    if (auto const* list = dynamic_cast<NamedList const*>(rules.getList(name, true))) named.lists[name] = list;
  }
  for (std::string const& name : rules.getValueNames()) {
    if (auto const* value = dynamic_cast<NamedValue const*>(rules.findValue(name))) named.values[name] = value;
  }
  return named;
}

/// Has the problems of one expression as diagnostics about its text.
class Report {
 public:
  Report(std::string const& sourceName, std::string const& text, LoadLimits const& limits)
      : source_(sourceName, text), list_(limits.errors) {}

  void add(Issue issue) {
    Diagnostic& diagnostic = list_.add(issue.code, source_, rangeOf(issue.range), std::move(issue.message));
    if (!issue.fix) return;
    DiagnosticList::fix(diagnostic, source_, rangeOf(issue.fix->range), std::move(issue.fix->text),
                        std::move(issue.fix->title));
  }
  [[nodiscard]] std::vector<Diagnostic> take() { return list_.take({source_.name()}, true); }

 private:
  [[nodiscard]] SourceRange rangeOf(Range const& range) const {
    return {source_.placeOf(range.offset), source_.placeOf(std::size_t{range.offset} + range.length)};
  }

  SourceText source_;
  DiagnosticList list_;
};

}  // namespace

Query::Query(std::unique_ptr<Parts const> parts) noexcept : parts_(std::move(parts)) {}
Query::~Query() = default;

Query::Kind Query::kind() const noexcept {
  return kindOf(parts_->expression->kind());
}

Query::Result Query::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  Expression const& expression = *parts_->expression;
  Frame const frame{*evalContext->getDB(), context, evalContext};
  Result result;
  result.kind = kind();
  bool const isValue = expression.kind() == rules::Kind::Value;
  if (result.kind == Kind::Truth || isValue) result.truth = expression.truth(frame);
  if (result.kind == Kind::Number || isValue) result.number = expression.number(frame);
  if (result.kind == Kind::List) {
    result.items = expression.list(frame).vector();
  } else if (result.kind == Kind::Objects) {
    result.items = expression.objects(frame);
  } else {
    result.text = expression.text(frame);
  }
  return result;
}

void Query::collectReads(RuleReads& reads) const {
  parts_->expression->collectReads(reads, PathPattern());
}

std::string Query::sourceText() const {
  return parts_->source;
}

Explanation Query::explain(TDFContext const& context, ModelTDF const& model) const {
  return rules::explain({*parts_->expression, parts_->source, rulePlace()}, formOf(kind()), context, model);
}

Explanation Query::explainAllParts(TDFContext const& context, ModelTDF const& model) const {
  return rules::explainAllParts({*parts_->expression, parts_->source, rulePlace()}, formOf(kind()), context, model);
}

ParsedQuery parseQuery(std::string const& text, PhysicsData const& rules, std::string const& sourceName,
                       LoadLimits const& limits) {
  Report report(sourceName, text, limits);
  auto parsed =
      parseExpression(text, Role::Any, namedRulesOf(rules), &rules, {limits.expressionLength, limits.expressionDepth});
  for (Issue& issue : parsed.issues) report.add(std::move(issue));
  if (parsed.expression) {
    QuantityIndex const index(rules);
    for (Issue& issue : QuantityBinding(index).bind(*parsed.expression)) report.add(std::move(issue));
  }
  ParsedQuery result;
  result.diagnostics = report.take();
  if (!result.diagnostics.empty()) return result;
  auto parts = std::make_unique<Query::Parts>(Query::Parts{text, std::move(parsed.expression)});
  result.query = std::make_unique<Query>(std::move(parts));
  result.query->setRulePlace(RulePlace(std::make_shared<std::string const>(sourceName), 1, 1));
  return result;
}

}  // namespace tarn::rules
