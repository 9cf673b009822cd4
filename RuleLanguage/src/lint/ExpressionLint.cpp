// Checks of single expressions: paths that the rules do not define, comparisons that can never be true, conditions that
// can never hold, and computed names that no object can have.

#include "lint/ExpressionLint.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "expression/Nodes.h"
#include "lint/EntryLint.h"

namespace tarn::rules {

namespace {

/// A model in which nothing exists, for expressions that read nothing.
class EmptyModel final : public ModelTDF {
 public:
  bool hasObject(std::string const& /*path*/) const override { return false; }
  bool hasParameter(std::string const& /*paramPath*/) const override { return false; }
  bool hasParameter(std::string const& /*objPath*/, std::string const& /*name*/) const override { return false; }
  std::string const& getObjectName(std::string const& /*path*/) const override { return empty_; }
  std::string const& getObjectType(std::string const& /*path*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*paramPath*/) const override { return empty_; }
  std::string const& getParameterValue(std::string const& /*objPath*/, std::string const& /*name*/) const override {
    return empty_;
  }
  bool getParamValueAsList(std::string const& /*paramPath*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParamValueAsList(std::string const& /*objPath*/, std::string const& /*name*/,
                           std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getParameterNames(std::string const& /*path*/, std::vector<std::string>& /*out*/) const override {
    return false;
  }
  bool getChildObjectPaths(std::string const& /*path*/, std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getChildObjectNamesByType(std::string const& /*path*/, std::string const& /*type*/,
                                 std::vector<std::string>& out) const override {
    return out.clear(), false;
  }
  bool getChildObjectPathsByType(std::string const& /*path*/, std::string const& /*type*/,
                                 std::vector<std::string>& out) const override {
    return out.clear(), false;
  }

 private:
  std::string empty_;
};

bool readsNothing(Expression const& expression) {
  RuleReads reads;
  expression.collectReads(reads, PathPattern());
  return !reads.readsModel() && !reads.contextIdentity;
}

/// The text of an expression from which ranges count.
std::string_view textOf(ExpressionUse const& use) {
  return std::string_view(use.item.node->value).substr(use.skipped);
}

/// A fix that writes `near` instead of the component `word` of a path in the expression. Nothing when there is no near
/// match, or when the component is not written exactly once as it is meant.
std::optional<Replacement> componentFix(ExpressionUse const& use, Range path, std::string_view word,
                                        std::string_view near) {
  if (near.empty() || near.find_first_of("\\*{}^@/:") != std::string_view::npos) return std::nullopt;
  std::string_view const written = textOf(use).substr(path.offset, path.length);
  std::size_t const at = written.find(word);
  if (at == std::string_view::npos || written.find(word, at + 1) != std::string_view::npos) return std::nullopt;
  auto const isBoundary = [&](std::size_t i) {
    return std::string_view("{}/: ").find(written[i]) != std::string_view::npos;
  };
  std::size_t const end = at + word.size();
  if (at == 0 || end >= written.size() || !isBoundary(at - 1) || !isBoundary(end)) return std::nullopt;
  return Replacement{
      {path.offset + at, word.size()}, std::string(near), "Replace " + inQuotes(word) + " by " + inQuotes(near)};
}

// A path that the rules do not define

/// A type in a path that leads nowhere, and the type that was probably meant.
struct NearType {
  std::string type;
  std::string near;
};

/// The first type of the pattern that leads nowhere.
NearType nearObject(LintContext& context, ExpressionUse const& use, PathPattern const& pattern) {
  if (use.named != nullptr && !pattern.isAbsolute()) return {};
  auto const& steps = pattern.steps();
  if (!pattern.isAbsolute() && pattern.start() != PathPattern::Start::Context) return {};
  std::set<std::string> current = {pattern.isAbsolute() ? std::string{} : use.typePath};
  for (auto const& step : steps) {
    if (step.kind != PathPattern::StepKind::Child && step.kind != PathPattern::StepKind::ChildrenOfType) return {};
    std::set<std::string> next;
    for (auto const& path : current) {
      if (auto child = path + "/" + step.type; context.types().knows(child)) next.insert(std::move(child));
    }
    if (next.empty()) {
      std::vector<std::string> candidates;
      for (auto const& path : current) {
        auto const& types = context.types().childTypes(path);
        if (context.hints().take(types.size())) candidates.insert(candidates.end(), types.begin(), types.end());
      }
      return {step.type, context.hints().nearest(step.type, candidates)};
    }
    current = std::move(next);
  }
  return {};
}

void checkPaths(LintContext& context, ExpressionUse const& use) {
  std::vector<PathUse> paths;
  use.compiled->expression->collectPaths(paths, PathPattern());
  for (auto const& path : paths) {
    auto const resolved = context.resolve(use, path.pattern);
    auto const& named = *resolved;
    if (named.empty()) {
      auto const [type, near] = nearObject(context, use, path.pattern);
      context.warn(Code::UnknownObjectPath, use, path.range,
                   "the rules define no object at this path" + orDidYouMean(near),
                   componentFix(use, path.range, type, near));
      continue;
    }
    if (path.parameter.empty()) continue;
    bool const known = std::any_of(named.begin(), named.end(), [&](std::string const& typePath) {
      auto const* object = context.data().getObjDependDef(typePath, true);
      // A child without rules of its own is reported elsewhere. The root has no parameters.
      if (object == nullptr) return !typePath.empty();
      return object->findParam(path.parameter) != nullptr;
    });
    if (known) continue;
    std::vector<std::string> candidates;
    for (auto const& typePath : named) {
      auto const* object = context.data().getObjDependDef(typePath, true);
      if (object == nullptr || !context.hints().take(object->params().size())) continue;
      for (auto const& param : object->params()) candidates.push_back(param->name);
    }
    std::string const where =
        named.size() == 1 && use.named == nullptr && !named.begin()->empty() ? " of " + *named.begin() : std::string{};
    auto const near = context.hints().nearest(path.parameter, candidates);
    context.warn(Code::UnknownParameter, use, path.range,
                 "the rules define no parameter " + inQuotes(path.parameter) + where + orDidYouMean(near),
                 componentFix(use, path.range, path.parameter, near));
  }
}

// A parameter compared with a value that it can never have

/// A value that an expression compares a parameter with.
struct ComparedValue {
  ParameterReference const* parameter;
  PathPattern objects;  // seen from the owner of the rule
  std::string text;
  std::optional<double> number;  // when it was written as a number
  bool isLiteral;                // `range` is the value alone
  Range range;
};

void addCompared(Expression const& one, Expression const& other, PathPattern const& base,
                 std::vector<ComparedValue>& out) {
  auto const* parameter = dynamic_cast<ParameterReference const*>(&one);
  auto const* literal = dynamic_cast<Literal const*>(&other);
  if (parameter == nullptr || literal == nullptr || literal->kind() == Kind::Truth) return;
  ComparedValue value{
      parameter, parameter->objectPattern().seenFrom(base), literal->rawText(), std::nullopt, true, literal->range()};
  if (literal->kind() == Kind::Number) {
    EmptyModel const model;
    TDFContext const root{std::string{}};
    EvalContext evalContext(&model);
    value.number = literal->number(Frame{model, root, &evalContext});
    value.text = numberText(*value.number);
  }
  out.push_back(std::move(value));
}

void collectCompared(Expression const& expression, PathPattern const& base, std::vector<ComparedValue>& out) {
  if (auto const* comparison = dynamic_cast<Comparison const*>(&expression)) {
    auto const op = comparison->op();
    if (op == Comparison::Operator::Equal || op == Comparison::Operator::NotEqual) {
      addCompared(comparison->left(), comparison->right(), base, out);
      addCompared(comparison->right(), comparison->left(), base, out);
    }
  } else if (auto const* membership = dynamic_cast<Membership const*>(&expression)) {
    auto const* parameter = dynamic_cast<ParameterReference const*>(&membership->item());
    auto const* list = dynamic_cast<ListLiteral const*>(&membership->items());
    if (parameter != nullptr && list != nullptr) {
      for (auto const& item : list->fixedItems()) {
        out.push_back({parameter, parameter->objectPattern().seenFrom(base), item, std::nullopt, false, list->range()});
      }
    }
  }
  auto const parts = expression.operands();
  for (std::size_t i = 0; i < parts.size(); ++i) {
    collectCompared(*parts[i], expression.operandBase(i, base), out);
  }
}

/// Why a parameter can never have a value; `reason` is empty when it can.
struct Impossible {
  std::string reason;
  std::string near;  // the value that was probably meant
};

/// Whether `def` rules out that its parameter ever equals the value. An absent parameter equals the empty text, so that
/// is always possible.
Impossible impossible(LintContext& context, ParamValueDef const& def, ComparedValue const& value) {
  if (value.text.empty() || TDFParam::isListType(def.type)) return {};
  bool const fixed = def.allowedValueKind == ParamValueDef::FixedAllowedValues && !def.allowsAnyValue;
  if (fixed) {
    auto const* list = dynamic_cast<FixedList const*>(def.allowedValues.get());
    if (list == nullptr) return {};
    auto const equals = [&](std::string const& item) {
      return value.number
                 ? TDFParam::asQuantity(item).has_value() && TDFParam::asQuantity(item)->number == *value.number
                 : item == value.text;
    };
    if (def.unusedValues.contains(value.text)) return {" is known but never allowed", {}};
    auto const& items = list->items();
    if (std::any_of(items.begin(), items.end(), equals)) return {};
    return {" is not among its allowed values", context.hints().nearest(value.text, items)};
  }
  if (def.allowedValueKind != ParamValueDef::NoAllowedValues || value.number) return {};
  if (def.type == TDFParam::Logical && !TDFParam::asLogical(value.text)) return {" is not a logical value", {}};
  if ((def.type == TDFParam::Integer || def.type == TDFParam::Real) && !TDFParam::asQuantity(value.text)) {
    return {" is not a number", {}};
  }
  return {};
}

/// The same for every parameter that the compared path can name. Possible when one of them can have the value.
Impossible impossible(LintContext& context, ExpressionUse const& use, ComparedValue const& value) {
  Impossible result;
  auto const resolved = context.resolve(use, value.objects);
  for (auto const& typePath : *resolved) {
    auto const* def = context.data().getParamValueDef(typePath, value.parameter->name(), true);
    if (def == nullptr) continue;
    result = impossible(context, *def, value);
    if (result.reason.empty()) return {};
  }
  return result;
}

/// A fix that writes `near` instead of the text that the range covers with its quotes.
std::optional<Replacement> textFix(ExpressionUse const& use, ComparedValue const& value, std::string const& near) {
  if (near.empty() || !value.isLiteral || value.number) return std::nullopt;
  char const quote = textOf(use)[value.range.offset];
  std::string text(1, quote);
  for (char const c : near) text.append(c == quote ? 2 : 1, c);
  return Replacement{value.range, text + quote, "Replace " + inQuotes(value.text) + " by " + inQuotes(near)};
}

void checkComparisons(LintContext& context, ExpressionUse const& use) {
  std::vector<ComparedValue> compared;
  collectCompared(*use.compiled->expression, PathPattern(), compared);
  for (auto const& value : compared) {
    auto const [reason, near] = impossible(context, use, value);
    if (reason.empty()) continue;
    context.warn(Code::ImpossibleValue, use, value.range,
                 "the parameter " + inQuotes(value.parameter->name()) + " can never be " + inQuotes(value.text) +
                     ": it" + reason + orDidYouMean(near),
                 textFix(use, value, near));
  }
}

// A condition that can never hold

bool evaluate(Expression const& expression) {
  EmptyModel const model;
  TDFContext const root{std::string{}};
  EvalContext evalContext(&model);
  return expression.truth(Frame{model, root, &evalContext});
}

/// True when two of the conditions, which must all hold, compare one parameter with different texts.
bool contradicts(std::vector<Expression const*> const& parts) {
  std::map<std::string, std::set<std::string>> wanted;
  for (auto const* part : parts) {
    auto const* comparison = dynamic_cast<Comparison const*>(part);
    if (comparison == nullptr || comparison->op() != Comparison::Operator::Equal) continue;
    for (bool const swapped : {false, true}) {
      auto const& one = swapped ? comparison->right() : comparison->left();
      auto const& other = swapped ? comparison->left() : comparison->right();
      auto const* parameter = dynamic_cast<ParameterReference const*>(&one);
      auto const* literal = dynamic_cast<Literal const*>(&other);
      if (parameter == nullptr || literal == nullptr || literal->kind() != Kind::Text) continue;
      auto& texts = wanted[parameter->objectPattern().text() + "\n" + parameter->name()];
      texts.insert(literal->rawText());
      if (texts.size() > 1) return true;
    }
  }
  return false;
}

/// True when the form of the condition shows that it can never hold.
bool neverHolds(Expression const& expression) {
  if (readsNothing(expression)) return !evaluate(expression);
  auto const* logic = dynamic_cast<Logic const*>(&expression);
  if (logic == nullptr) {
    if (dynamic_cast<Kept const*>(&expression) != nullptr) return neverHolds(*expression.operands().front());
    auto const* membership = dynamic_cast<Membership const*>(&expression);
    auto const* list = membership != nullptr ? dynamic_cast<ListLiteral const*>(&membership->items()) : nullptr;
    return list != nullptr && !membership->negated() && list->operands().empty() && list->fixedItems().empty();
  }
  auto const parts = logic->operands();
  switch (logic->op()) {
    case Logic::Operator::And:
      return std::any_of(parts.begin(), parts.end(), [](auto const* part) { return neverHolds(*part); }) ||
             contradicts(parts);
    case Logic::Operator::Or:
      return std::all_of(parts.begin(), parts.end(), [](auto const* part) { return neverHolds(*part); });
    default:
      return false;
  }
}

void checkCondition(LintContext& context, ExpressionUse const& use) {
  if (use.role != Role::Condition) return;
  auto const& expression = *use.compiled->expression;
  if (neverHolds(expression)) {
    context.warn(Code::NeverHolds, use, expression.range(), "this condition can never hold");
  }
}

// Computed names that no object can have

/// Checks the parts of an expression for names that are written out: the whole text, the items of lists, and the texts
/// that are joined to a name. A part whose text is computed says nothing.
class NameCheck {
 public:
  NameCheck(LintContext& context, ExpressionUse const& use) : context_(context), use_(use) {}

  void checkList(Expression const& list) {
    if (auto const* literal = dynamic_cast<ListLiteral const*>(&list)) {
      for (auto const& item : literal->fixedItems()) checkName(item, list.range());
      for (auto const* item : literal->operands()) checkText(*item);
    } else if (dynamic_cast<Kept const*>(&list) != nullptr) {
      checkList(*list.operands().front());
    } else if (dynamic_cast<Choice const*>(&list) != nullptr) {
      checkList(*list.operands()[1]);
      checkList(*list.operands()[2]);
    } else if (auto const* named = dynamic_cast<NamedCall const*>(&list)) {
      if (auto const* name = context_.impossibleNameIn(named->rule())) checkName(*name, list.range());
    } else if (auto const* call = dynamic_cast<FunctionCall const*>(&list)) {
      auto const arguments = call->operands();
      for (std::size_t i = 0; i < arguments.size() && i < call->function().itemsFrom; ++i) checkList(*arguments[i]);
    }
  }

  void checkText(Expression const& text) {
    if (auto const* literal = dynamic_cast<Literal const*>(&text)) {
      if (literal->kind() == Kind::Text) checkName(literal->rawText(), text.range());
    } else if (dynamic_cast<Kept const*>(&text) != nullptr) {
      checkText(*text.operands().front());
    } else if (dynamic_cast<Choice const*>(&text) != nullptr) {
      checkText(*text.operands()[1]);
      checkText(*text.operands()[2]);
    } else if (dynamic_cast<Arithmetic const*>(&text) != nullptr && text.kind() == Kind::Text) {
      for (auto const* part : text.operands()) {
        auto const* joined = dynamic_cast<Literal const*>(part);
        if (joined == nullptr || joined->rawText().find_first_of("/:") == std::string::npos) continue;
        context_.warn(Code::ImpossibleName, use_, part->range(), "the name of an object cannot contain '/' or ':'");
      }
    }
  }

 private:
  void checkName(std::string const& name, Range range) {
    auto const problem = problemOfName(name, use_.entry);
    if (problem) context_.warn(problem->code, use_, range, problem->message);
  }

  LintContext& context_;
  ExpressionUse const& use_;
};

void checkNames(LintContext& context, ExpressionUse const& use) {
  if (use.kind != EntryKind::Child || (use.attribute != "Allowed Names" && use.attribute != "Default Names")) return;
  NameCheck check(context, use);
  if (use.role == Role::List) check.checkList(*use.compiled->expression);
  if (use.role == Role::Text) check.checkText(*use.compiled->expression);
}

}  // namespace

void checkExpression(LintContext& context, ExpressionUse const& use) {
  checkPaths(context, use);
  checkComparisons(context, use);
  checkCondition(context, use);
  checkNames(context, use);
}

}  // namespace tarn::rules
