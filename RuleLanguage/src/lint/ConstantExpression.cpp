#include "lint/ConstantExpression.h"

#include <string>
#include <vector>

#include <tarn/EvalContext.h>

#include "expression/CompiledRules.h"
#include "expression/Nodes.h"
#include "lint/ValueModel.h"

namespace tarn::rules {

namespace {

/// Calls `question` with a frame in which nothing can be read.
template <typename Question>
auto inNothing(Question question) {
  ValueModel const model;
  TDFContext const root{std::string{}};
  EvalContext evalContext(&model);
  return question(Frame{model, root, &evalContext});
}

}  // namespace

bool readsNothing(Expression const& expression) {
  // Not by the reads: the names around a part of an expression are not known here.
  std::vector<Expression const*> open{&expression};
  while (!open.empty()) {
    auto const* part = open.back();
    open.pop_back();
    if (as<Literal>(*part) != nullptr) continue;
    if (as<ParameterReference>(*part) != nullptr || as<ObjectSet>(*part) != nullptr) {
      return false;
    }
    auto const* call = as<FunctionCall>(*part);
    if (call != nullptr && call->function().readsContextIdentity) return false;
    if (as<NamedCall>(*part) != nullptr) {
      RuleReads reads;
      part->collectReads(reads, PathPattern());
      if (reads.readsModel() || reads.contextIdentity) return false;
    }
    auto const operands = part->operands();
    open.insert(open.end(), operands.begin(), operands.end());
  }
  return true;
}

bool constantTruth(Expression const& expression) {
  return inNothing([&](Frame const& frame) { return expression.truth(frame); });
}

double constantNumber(Expression const& expression) {
  return inNothing([&](Frame const& frame) { return expression.number(frame); });
}

SharedStrings constantList(Expression const& expression) {
  return inNothing([&](Frame const& frame) { return expression.list(frame); });
}

std::string constantText(Expression const& expression) {
  auto const* literal = as<Literal>(expression);
  if (literal != nullptr && literal->kind() == Kind::Text) return literal->rawText();
  return inNothing([&](Frame const& frame) { return expression.text(frame); });
}

std::optional<std::string> constantTextOf(TextExpression const* rule) {
  if (auto const* fixed = dynamic_cast<FixedText const*>(rule)) return fixed->text();
  auto const* computed = dynamic_cast<CompiledText const*>(rule);
  if (computed == nullptr || !readsNothing(computed->expression())) return std::nullopt;
  return constantText(computed->expression());
}

}  // namespace tarn::rules
