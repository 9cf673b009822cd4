// How nodes are evaluated. Sets of objects are distinct from the start, because patterns expand to distinct paths.

#include "expression/Nodes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <tarn/EvalCache.h>
#include <tarn/PathUtils.h>
#include <tarn/TDFParam.h>

#include "expression/NamedRule.h"

namespace tarn::rules {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::vector<Expression const*> pointers(std::vector<ExpressionPtr> const& owned) {
  std::vector<Expression const*> result;
  result.reserve(owned.size());
  for (auto const& expression : owned) result.push_back(expression.get());
  return result;
}

Dependence dependenceOf(PathPattern const& pattern) {
  Dependence result;
  result.context = pattern.start() == PathPattern::Start::Context || pattern.start() == PathPattern::Start::Nearest;
  result.owner = pattern.start() == PathPattern::Start::Owner;
  result.costly = !pattern.isSingle();
  return result;
}

}  // namespace

// Literal

bool Literal::truth(Frame const& frame) const {
  return kind() == Kind::Truth ? truth_ : logical(frame).value_or(false);
}

double Literal::number(Frame const& frame) const {
  return kind() == Kind::Number ? number_ : Expression::number(frame);
}

std::string Literal::text(Frame const& frame) const {
  return kind() == Kind::Text ? text_ : Expression::text(frame);
}

std::string const& Literal::textIn(Frame const& frame, std::string& buffer) const {
  return kind() == Kind::Text ? text_ : Expression::textIn(frame, buffer);
}

// ListLiteral

ListLiteral::ListLiteral(Range range, std::vector<ExpressionPtr> items) : Expression(Kind::List, range) {
  auto const isFixedText = [](ExpressionPtr const& item) {
    return dynamic_cast<Literal const*>(item.get()) != nullptr;
  };
  if (std::all_of(items.begin(), items.end(), isFixedText)) {
    std::vector<std::string> texts;
    texts.reserve(items.size());
    for (auto const& item : items) texts.push_back(static_cast<Literal const&>(*item).rawText());
    fixed_ = std::move(texts);
  } else {
    items_ = std::move(items);
  }
}

SharedStrings ListLiteral::list(Frame const& frame) const {
  if (items_.empty()) return fixed_;
  std::vector<std::string> texts;
  texts.reserve(items_.size());
  for (auto const& item : items_) texts.push_back(item->text(frame));
  return texts;
}

Dependence ListLiteral::dependence() const {
  Dependence result;
  for (auto const& item : items_) result.add(item->dependence());
  return result;
}

void ListLiteral::collectReads(RuleReads& reads, PathPattern const& base) const {
  for (auto const& item : items_) item->collectReads(reads, base);
}

std::vector<Expression const*> ListLiteral::operands() const {
  return pointers(items_);
}

// GuardedList

SharedStrings GuardedList::list(Frame const& frame) const {
  std::vector<std::string> texts;
  for (auto const& item : items_) {
    if (!item.when || item.when->truth(frame)) texts.push_back(item.value->text(frame));
  }
  return texts;
}

Dependence GuardedList::dependence() const {
  Dependence result;
  for (auto const* part : operands()) result.add(part->dependence());
  return result;
}

void GuardedList::collectReads(RuleReads& reads, PathPattern const& base) const {
  for (auto const* part : operands()) part->collectReads(reads, base);
}

std::vector<Expression const*> GuardedList::operands() const {
  std::vector<Expression const*> result;
  for (auto const& item : items_) {
    result.push_back(item.value.get());
    if (item.when) result.push_back(item.when.get());
  }
  return result;
}

// ParameterReference

std::string const* ParameterReference::objectPath(Frame const& frame, std::string& buffer) const {
  if (local_) return &frame.context.objPath();
  if (fixed_) return &fixedPath_;
  return objects_.resolve(frame.context, buffer) ? &buffer : nullptr;
}

std::string const& ParameterReference::textIn(Frame const& frame, std::string& buffer) const {
  auto const* path = objectPath(frame, buffer);
  if (path == nullptr) {
    buffer.clear();
    return buffer;
  }
  return frame.model.getParameterValue(*path, name_);
}

std::string ParameterReference::text(Frame const& frame) const {
  std::string buffer;
  return textIn(frame, buffer);
}

std::optional<bool> ParameterReference::logical(Frame const& frame) const {
  std::string buffer;
  auto const& value = textIn(frame, buffer);
  // An absent parameter reads as false; a present one without a value is neither true nor false.
  if (value.empty()) return exists(frame) ? std::nullopt : std::optional(false);
  return TDFParam::asLogical(value);
}

bool ParameterReference::exists(Frame const& frame) const {
  if (objects_.isSingle()) {
    std::string buffer;
    auto const* path = objectPath(frame, buffer);
    return path != nullptr && frame.model.hasParameter(*path, name_);
  }
  auto const paths = objects_.expand(frame.context, frame.model);
  return std::any_of(paths.begin(), paths.end(),
                     [&](std::string const& path) { return frame.model.hasParameter(path, name_); });
}

std::vector<std::string> ParameterReference::values(Frame const& frame) const {
  std::vector<std::string> result;
  auto const take = [&](std::string const& path) {
    if (frame.model.hasParameter(path, name_)) result.push_back(frame.model.getParameterValue(path, name_));
  };
  if (objects_.isSingle()) {
    std::string buffer;
    if (auto const* path = objectPath(frame, buffer)) take(*path);
  } else {
    for (auto const& path : objects_.expand(frame.context, frame.model)) take(path);
  }
  return result;
}

std::optional<TDFParam::Type> ParameterReference::declaredType(Frame const& frame) const {
  std::string buffer;
  auto const* path = objectPath(frame, buffer);
  if (path == nullptr || data_ == nullptr) return std::nullopt;
  auto const* def = data_->getParamValueDef(PathUtils::typePathOf(*path), name_, true);
  return def != nullptr ? std::optional(def->type) : std::nullopt;
}

Dependence ParameterReference::dependence() const {
  Dependence result = dependenceOf(objects_);
  // A choice for the whole model is read in every object. Looking it up costs more than remembering it.
  result.costly |= result.isContextFree();
  return result;
}

void ParameterReference::collectPaths(std::vector<PathUse>& paths, PathPattern const& base) const {
  paths.push_back({objects_.seenFrom(base), name_, range()});
}

void ParameterReference::collectReads(RuleReads& reads, PathPattern const& base) const {
  reads.parameters.push_back({objects_.seenFrom(base), name_});
}

// ObjectSet

std::vector<std::string> ObjectSet::objects(Frame const& frame) const {
  return pattern_.expand(frame.context, frame.model);
}

bool ObjectSet::anyObject(Frame const& frame, ObjectQuestion const& holds) const {
  return pattern_.findIf(frame.context, frame.model, holds);
}

bool ObjectSet::exists(Frame const& frame) const {
  if (!pattern_.isSingle()) return anyObject(frame, [](std::string const&) { return true; });
  std::string path;
  return pattern_.resolve(frame.context, path) && frame.model.hasObject(path);
}

Dependence ObjectSet::dependence() const {
  return dependenceOf(pattern_);
}

void ObjectSet::collectPaths(std::vector<PathUse>& paths, PathPattern const& base) const {
  paths.push_back({pattern_.seenFrom(base), {}, range()});
}

void ObjectSet::collectReads(RuleReads& reads, PathPattern const& base) const {
  reads.objectSets.push_back(pattern_.seenFrom(base));
}

// Operation

Dependence Operation::dependence() const {
  Dependence result;
  for (auto const& operand : operands_) result.add(operand->dependence());
  return result;
}

void Operation::collectReads(RuleReads& reads, PathPattern const& base) const {
  for (std::size_t i = 0; i < operands_.size(); ++i) operands_[i]->collectReads(reads, operandBase(i, base));
}

std::vector<Expression const*> Operation::operands() const {
  return pointers(operands_);
}

// Logic

bool Logic::truth(Frame const& frame) const {
  switch (operator_) {
    case Operator::Not:
      return !operand(0).truth(frame);
    case Operator::And:
      for (std::size_t i = 0; i < size(); ++i) {
        if (!operand(i).truth(frame)) return false;
      }
      return true;
    case Operator::Or:
      for (std::size_t i = 0; i < size(); ++i) {
        if (operand(i).truth(frame)) return true;
      }
      return false;
    case Operator::Implies:
      return !operand(0).truth(frame) || operand(1).truth(frame);
  }
  return false;
}

// Comparison

Comparison::Comparison(Operator op, Range range, std::vector<ExpressionPtr> operands)
    : Operation(Kind::Truth, range, std::move(operands)), operator_(op) {
  Kind const a = left().kind();
  Kind const b = right().kind();
  auto const either = [&](Kind kind) { return a == kind || b == kind; };
  if (a == Kind::Value && b == Kind::Value) {
    mode_ = Mode::Parameters;
  } else if (either(Kind::Truth)) {
    mode_ = Mode::Truth;
  } else if (either(Kind::Number)) {
    mode_ = Mode::Number;
  } else {
    mode_ = Mode::Text;
  }
}

bool Comparison::equal(Frame const& frame) const {
  switch (mode_) {
    case Mode::Truth: {
      auto const a = left().logical(frame);
      auto const b = right().logical(frame);
      return a && b && *a == *b;
    }
    case Mode::Number:
      return left().number(frame) == right().number(frame);
    case Mode::Text:
    case Mode::Parameters:
      break;
  }
  std::string leftBuffer;
  std::string rightBuffer;
  auto const& a = left().textIn(frame, leftBuffer);
  auto const& b = right().textIn(frame, rightBuffer);
  if (mode_ == Mode::Parameters) {
    auto const* leftParameter = dynamic_cast<ParameterReference const*>(&left());
    auto const* rightParameter = dynamic_cast<ParameterReference const*>(&right());
    if (leftParameter != nullptr && rightParameter != nullptr) {
      auto type = leftParameter->declaredType(frame);
      if (!type) type = rightParameter->declaredType(frame);
      if (type) return TDFParam::valuesEqual(*type, a, b);
    }
  }
  return a == b;
}

bool Comparison::truth(Frame const& frame) const {
  switch (operator_) {
    case Operator::Equal:
      return equal(frame);
    case Operator::NotEqual:
      return !equal(frame);
    case Operator::Less:
      return left().number(frame) < right().number(frame);
    case Operator::LessEqual:
      return left().number(frame) <= right().number(frame);
    case Operator::Greater:
      return left().number(frame) > right().number(frame);
    case Operator::GreaterEqual:
      return left().number(frame) >= right().number(frame);
  }
  return false;
}

// Membership

bool Membership::truth(Frame const& frame) const {
  std::string buffer;
  return items().list(frame).contains(item().textIn(frame, buffer)) != negated_;
}

// Arithmetic

double Arithmetic::number(Frame const& frame) const {
  if (kind() != Kind::Number) return Expression::number(frame);
  double result = operand(0).number(frame);
  for (std::size_t i = 1; i < numeric_; ++i) {
    double const next = operand(i).number(frame);
    switch (operators_[i]) {
      case '+':
        result += next;
        break;
      case '-':
        result -= next;
        break;
      case '*':
        result *= next;
        break;
      default:
        result = next == 0 ? notANumber : result / next;
    }
    if (!std::isfinite(result)) return notANumber;
  }
  return result;
}

std::string Arithmetic::text(Frame const& frame) const {
  if (kind() == Kind::Number) return numberText(number(frame));
  std::string result;
  if (numeric_ > 1) {
    double sum = operand(0).number(frame);
    for (std::size_t i = 1; i < numeric_; ++i) {
      sum += operators_[i] == '+' ? operand(i).number(frame) : -operand(i).number(frame);
    }
    result = numberText(std::isfinite(sum) ? sum : notANumber);
  }
  std::string buffer;
  for (std::size_t i = numeric_ > 1 ? numeric_ : 0; i < size(); ++i) result += operand(i).textIn(frame, buffer);
  return result;
}

// Quantifier

Quantifier::Quantifier(Operator op, Range range, std::vector<ExpressionPtr> operands)
    : Operation(op == Operator::Count    ? Kind::Number
                : op == Operator::Filter ? Kind::Objects
                                         : Kind::Truth,
                range, std::move(operands)),
      operator_(op) {}

bool Quantifier::holds(Frame const& frame, std::string const& path) const {
  TDFContext const context(path, frame.context.ownerPath());
  return operand(1).truth(Frame{frame.model, context, frame.evalContext});
}

bool Quantifier::truth(Frame const& frame) const {
  if (kind() != Kind::Truth) return Expression::truth(frame);
  bool const wanted = operator_ == Operator::Any;
  return operand(0).anyObject(frame, [&](std::string const& path) { return holds(frame, path) == wanted; }) == wanted;
}

double Quantifier::number(Frame const& frame) const {
  if (kind() != Kind::Number) return Expression::number(frame);
  auto const paths = operand(0).objects(frame);
  if (size() == 1) return static_cast<double>(paths.size());
  return static_cast<double>(
      std::count_if(paths.begin(), paths.end(), [&](std::string const& path) { return holds(frame, path); }));
}

std::vector<std::string> Quantifier::objects(Frame const& frame) const {
  auto paths = operand(0).objects(frame);
  std::erase_if(paths, [&](std::string const& path) { return !holds(frame, path); });
  return paths;
}

bool Quantifier::anyObject(Frame const& frame, ObjectQuestion const& asked) const {
  return operand(0).anyObject(frame, [&](std::string const& path) { return holds(frame, path) && asked(path); });
}

Dependence Quantifier::dependence() const {
  Dependence result = operand(0).dependence();
  result.costly = true;
  // The condition is evaluated once per object, with that object as context. So the result depends on the condition's
  // owner but not on its context.
  if (size() > 1) result.owner |= operand(1).dependence().owner;
  return result;
}

namespace {

/// All objects that a set expression can name, as one pattern seen from `base`.
PathPattern patternOf(Expression const& set, PathPattern const& base) {
  if (auto const* objects = dynamic_cast<ObjectSet const*>(&set)) return objects->pattern().seenFrom(base);
  auto const parts = set.operands();
  // A filter names objects of its set. A choice between sets can name more than one pattern can say: take everything.
  if (dynamic_cast<Quantifier const*>(&set) != nullptr) return patternOf(*parts.front(), base);
  return PathPattern("/**");
}

}  // namespace

PathPattern Quantifier::operandBase(std::size_t i, PathPattern const& base) const {
  return i == 0 ? base : patternOf(operand(0), base);
}

// FunctionCall
//
// A function gives one form of result; the language's conversions give the others.

bool FunctionCall::truth(Frame const& frame) const {
  auto const* evaluate = std::get_if<bool (*)(Arguments, Frame const&)>(&function_->evaluate);
  return evaluate != nullptr ? (*evaluate)(all(), frame) : Expression::truth(frame);
}

double FunctionCall::number(Frame const& frame) const {
  auto const* evaluate = std::get_if<double (*)(Arguments, Frame const&)>(&function_->evaluate);
  return evaluate != nullptr ? (*evaluate)(all(), frame) : Expression::number(frame);
}

std::string FunctionCall::text(Frame const& frame) const {
  auto const* evaluate = std::get_if<std::string (*)(Arguments, Frame const&)>(&function_->evaluate);
  return evaluate != nullptr ? (*evaluate)(all(), frame) : Expression::text(frame);
}

SharedStrings FunctionCall::list(Frame const& frame) const {
  auto const* evaluate = std::get_if<SharedStrings (*)(Arguments, Frame const&)>(&function_->evaluate);
  return evaluate != nullptr ? (*evaluate)(all(), frame) : Expression::list(frame);
}

Dependence FunctionCall::dependence() const {
  Dependence result = Operation::dependence();
  result.context |= function_->readsContextIdentity && size() == 0;
  result.costly |= function_->cost != RuleFunction::Cost::Small;
  return result;
}

void FunctionCall::collectReads(RuleReads& reads, PathPattern const& base) const {
  Operation::collectReads(reads, base);
  bool const ofContext = function_->readsContextIdentity && size() == 0;
  // Inside a quantifier over absolute paths the context is one of those objects, whatever object owns the rule.
  if (ofContext && !base.isAbsolute()) reads.contextIdentity = true;
}

// NamedCall

bool NamedCall::truth(Frame const& frame) const {
  return kind() == Kind::Truth ? rule_->expression()->truth(frame) : Expression::truth(frame);
}

SharedStrings NamedCall::list(Frame const& frame) const {
  return rule_->expression()->list(frame);
}

Dependence NamedCall::dependence() const {
  return rule_->dependence();
}

void NamedCall::collectReads(RuleReads& reads, PathPattern const& base) const {
  rule_->expression()->collectReads(reads, base);
}

// Kept

template <typename Result, typename Evaluate>
Result Kept::kept(Frame const& frame, Evaluate evaluate) const {
  auto* cache = frame.evalContext != nullptr ? frame.evalContext->getCache() : nullptr;
  if (cache == nullptr || !cache->isEnabled()) return evaluate();
  if (auto const* known = cache->find(this)) return std::get<Result>(*known);
  return std::get<Result>(*cache->store(this, evaluate()));
}

bool Kept::truth(Frame const& frame) const {
  if (kind() != Kind::Truth) return Expression::truth(frame);
  return kept<bool>(frame, [&] { return operand(0).truth(frame); });
}

double Kept::number(Frame const& frame) const {
  if (kind() != Kind::Number) return Expression::number(frame);
  return kept<double>(frame, [&] { return operand(0).number(frame); });
}

std::string Kept::text(Frame const& frame) const {
  if (kind() != Kind::Text) return Expression::text(frame);
  return kept<std::string>(frame, [&] { return operand(0).text(frame); });
}

SharedStrings Kept::list(Frame const& frame) const {
  if (kind() != Kind::List) return Expression::list(frame);
  return kept<SharedStrings>(frame, [&] { return operand(0).list(frame); });
}

ExpressionPtr keepContextFreeParts(ExpressionPtr expression) {
  auto const dependence = expression->dependence();
  if (!dependence.costly) return expression;
  bool const canBeKept = expression->kind() != Kind::Objects && expression->kind() != Kind::Value;
  if (dependence.isContextFree() && canBeKept) {
    Kind const kind = expression->kind();
    Range const range = expression->range();
    std::vector<ExpressionPtr> part;
    part.push_back(std::move(expression));
    return std::make_unique<Kept>(kind, range, std::move(part));
  }
  if (auto* operation = dynamic_cast<Operation*>(expression.get())) {
    for (auto& operand : operation->operands_) operand = keepContextFreeParts(std::move(operand));
  }
  return expression;
}

}  // namespace tarn::rules
