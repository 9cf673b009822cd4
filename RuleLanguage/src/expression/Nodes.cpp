// How nodes are evaluated. Sets of objects are distinct from the start, because patterns expand to distinct paths.

#include "expression/Nodes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <tarn/EvalCache.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "diagnostics/NearMatch.h"
#include "expression/NamedRule.h"
#include "patterns/RegularExpression.h"

namespace tarn::rules {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::vector<Expression const*> pointers(std::vector<ExpressionPtr> const& owned) {
  std::vector<Expression const*> result;
  result.reserve(owned.size());
  for (auto const& expression : owned) result.push_back(expression.get());
  return result;
}

Dependence dependenceOf(PathOrigin origin, PathPattern const& pattern) {
  Dependence result;
  result.costly = !pattern.isSingle();
  if (origin.isNamed()) {
    result.names = origin.depth();
    return result;
  }
  result.context = pattern.start() == PathPattern::Start::Context || pattern.start() == PathPattern::Start::Nearest;
  result.owner = pattern.start() == PathPattern::Start::Owner;
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
  return kind() == Kind::Text || !text_.empty() ? text_ : Expression::text(frame);
}

std::string const& Literal::textIn(Frame const& frame, std::string& buffer) const {
  return kind() == Kind::Text || !text_.empty() ? text_ : Expression::textIn(frame, buffer);
}

// QuantityLiteral

void QuantityLiteral::convert(QuantityUnit const& unit) {
  if (unit.isConvertible) number_ = number_ * unit.factor + unit.offset;
  settled_ = true;
}

void QuantityLiteral::assume(QuantityType const& type, QuantityBinding& binding) {
  if (settled_) return;
  if (auto const* unit = type.find(units_)) {
    setQuantity(&type, type.hasConversions());
    convert(*unit);
    return;
  }
  settled_ = true;
  binding.report({range(),
                  "the quantity type " + inQuotes(binding.index().nameOf(type)) + " does not list the units [" +
                      units_.substr(0, 60) + "]; it lists " + listedUnits(type),
                  Code::UnitsOfAnotherType});
}

void QuantityLiteral::settle(QuantityBinding& binding) {
  if (settled_) return;
  QuantityUnit const* unit = nullptr;
  QuantityType const* first = nullptr;
  bool isConverted = false;
  for (auto const& [name, type] : binding.index().data().quantityTypes()) {
    auto const* found = type.find(units_);
    if (found == nullptr) continue;
    isConverted |= type.hasConversions();
    bool const differs = unit != nullptr && (found->isConvertible != unit->isConvertible ||
                                             found->factor != unit->factor || found->offset != unit->offset);
    if (differs) {
      binding.report({range(),
                      "it is not known which quantity type this is of: " + inQuotes(binding.index().nameOf(*first)) +
                          " and " + inQuotes(name) + " convert [" + units_.substr(0, 60) +
                          "] differently; write the number in the unit in which the other numbers count",
                      Code::AmbiguousUnits});
      settled_ = true;
      return;
    }
    if (unit == nullptr) first = &type;
    unit = found;
  }
  if (unit == nullptr) {
    binding.report({range(), "no quantity type lists the units [" + units_.substr(0, 60) + "]", Code::UnitsOfNoType});
    settled_ = true;
    return;
  }
  setQuantity(nullptr, isConverted);
  convert(*unit);
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

std::vector<double> ListLiteral::numbers(Frame const& frame) const {
  if (items_.empty()) return Expression::numbers(frame);
  std::vector<double> result;
  result.reserve(items_.size());
  for (auto const& item : items_) result.push_back(item->number(frame));
  return result;
}

void ListLiteral::bind(QuantityBinding& binding) {
  for (auto const& item : items_) item->bind(binding);
}

Dependence ListLiteral::dependence() const {
  Dependence result;
  for (auto const& item : items_) result.add(item->dependence());
  return result;
}

void ListLiteral::collectReads(RuleReads& reads, Base const& base) const {
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

void GuardedList::collectReads(RuleReads& reads, Base const& base) const {
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
  return objects_.resolve(origin_.in(frame), buffer) ? &buffer : nullptr;
}

std::string const& ParameterReference::textIn(Frame const& frame, std::string& buffer) const {
  if (local_) return frame.valueOfContext(name_);
  auto const* path = objectPath(frame, buffer);
  if (path == nullptr) {
    buffer.clear();
    return buffer;
  }
  return frame.model.getParameterValue(*path, name_);
}

ParamValueDef const* ParameterReference::valueRule(std::string const& path) const {
  return data_ != nullptr ? data_->getParamValueDef(PathUtils::typePathOf(path), name_, true) : nullptr;
}

QuantityType const* ParameterReference::quantityAt(Frame const& frame, std::string const& path) const {
  if (DeterminingQuantityType::isActive()) return nullptr;
  if (mixed_ == nullptr) return quantity();
  auto const* rule = valueRule(path);
  auto const found = mixed_->each.find(rule);
  if (found == mixed_->each.end()) return nullptr;
  if (found->second != nullptr) return found->second;
  return data_->findQuantityType(rule->evaluateQuantityType(data_->getRules(), TDFContext(path), frame.evalContext));
}

namespace {

/// The number of a value of a parameter whose quantity type `type` gives. It is asked only when there are units to
/// convert, because a value without them counts as it stands.
template <typename Type>
double convertedNumber(std::string_view value, Type type) {
  auto const parsed = TDFParam::asQuantity(value);
  if (!parsed) return notANumber;
  if (parsed->units.empty()) return parsed->number;
  QuantityType const* const known = type();
  return known != nullptr ? known->numberOf(*parsed) : parsed->number;
}

}  // namespace

double ParameterReference::number(Frame const& frame) const {
  std::string buffer;
  auto const* path = objectPath(frame, buffer);
  if (path == nullptr) return notANumber;
  return convertedNumber(frame.model.getParameterValue(*path, name_), [&] { return quantityAt(frame, *path); });
}

std::vector<double> ParameterReference::numbers(Frame const& frame) const {
  std::string buffer;
  auto const* path = objectPath(frame, buffer);
  auto const items = list(frame);
  std::vector<double> result;
  result.reserve(items.size());
  for (auto const& item : items) {
    result.push_back(convertedNumber(item, [&] { return path != nullptr ? quantityAt(frame, *path) : nullptr; }));
  }
  return result;
}

std::vector<double> ParameterReference::numbersOfAll(Frame const& frame) const {
  std::vector<double> result;
  forEachPresent(frame, [&](std::string const& path) {
    result.push_back(
        convertedNumber(frame.model.getParameterValue(path, name_), [&] { return quantityAt(frame, path); }));
  });
  return result;
}

std::optional<bool> ParameterReference::equalQuantities(Frame const& frame, std::string const& value,
                                                        ParameterReference const& other,
                                                        std::string const& otherValue) const {
  // Almost no parameter is a quantity. For those nothing is looked up.
  auto const mayHaveType = [](ParameterReference const& one) {
    return one.quantity() != nullptr || one.mixed_ != nullptr;
  };
  if (!mayHaveType(*this) || !mayHaveType(other)) return std::nullopt;
  std::string buffer;
  auto const* path = objectPath(frame, buffer);
  auto const* type = path != nullptr ? quantityAt(frame, *path) : nullptr;
  if (type == nullptr) return std::nullopt;
  auto const* rule = valueRule(*path);
  bool const isList = rule != nullptr && TDFParam::isListType(rule->type);
  auto const* otherPath = other.objectPath(frame, buffer);
  if (otherPath == nullptr || other.quantityAt(frame, *otherPath) != type) return std::nullopt;

  auto const itemsOf = [&](std::string const& text) {
    return isList ? StringUtilities::stringToVector(text, ',') : std::vector<std::string>{text};
  };
  auto const items = itemsOf(value);
  auto const otherItems = itemsOf(otherValue);
  if (items.size() != otherItems.size()) return std::nullopt;
  bool equal = true;
  for (std::size_t i = 0; i < items.size(); ++i) {
    auto const a = TDFParam::asQuantity(items[i]);
    auto const b = TDFParam::asQuantity(otherItems[i]);
    auto const x = a ? type->inFirstUnit(*a) : std::nullopt;
    auto const y = b ? type->inFirstUnit(*b) : std::nullopt;
    if (!x || !y) return std::nullopt;
    equal = equal && QuantityType::areEqual(*x, *y);
  }
  return equal;
}

void ParameterReference::bind(QuantityBinding& binding) {
  auto known = binding.index().of(name_);
  if (known == nullptr) return;
  if (known->sure != nullptr) {
    setQuantity(known->sure, known->sure->hasConversions());
    return;
  }
  if (fixed_) {
    // The object type is known, so its rule decides, unless that computes the type.
    auto const found = known->each.find(valueRule(fixedPath_));
    if (found == known->each.end()) return;
    if (found->second != nullptr) {
      setQuantity(found->second, found->second->hasConversions());
      return;
    }
  }
  setQuantity(nullptr, true);
  mixed_ = std::move(known);
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
  auto const paths = objects_.expand(origin_.in(frame), frame.model);
  return std::any_of(paths.begin(), paths.end(),
                     [&](std::string const& path) { return frame.model.hasParameter(path, name_); });
}

std::vector<std::string> ParameterReference::values(Frame const& frame) const {
  std::vector<std::string> result;
  forEachPresent(frame, [&](std::string const& path) { result.push_back(frame.model.getParameterValue(path, name_)); });
  return result;
}

std::optional<TDFParam::Type> ParameterReference::declaredType(Frame const& frame) const {
  std::string buffer;
  auto const* path = objectPath(frame, buffer);
  auto const* def = path != nullptr ? valueRule(*path) : nullptr;
  return def != nullptr ? std::optional(def->type) : std::nullopt;
}

Dependence ParameterReference::dependence() const {
  Dependence result = dependenceOf(origin_, objects_);
  // A choice for the whole model is read in every object. Looking it up costs more than remembering it.
  result.costly |= result.isContextFree();
  return result;
}

void ParameterReference::collectPaths(std::vector<PathUse>& paths, Base const& base) const {
  paths.push_back({objectsFrom(base), name_, range()});
}

void ParameterReference::collectReads(RuleReads& reads, Base const& base) const {
  reads.parameters.push_back({objectsFrom(base), name_});
}

// ObjectSet

std::vector<std::string> ObjectSet::objects(Frame const& frame) const {
  return pattern_.expand(origin_.in(frame), frame.model);
}

bool ObjectSet::anyObject(Frame const& frame, ObjectQuestion const& holds) const {
  return pattern_.findIf(origin_.in(frame), frame.model, holds);
}

bool ObjectSet::exists(Frame const& frame) const {
  if (!pattern_.isSingle()) return anyObject(frame, [](std::string const&) { return true; });
  std::string path;
  return pattern_.resolve(origin_.in(frame), path) && frame.model.hasObject(path);
}

Dependence ObjectSet::dependence() const {
  return dependenceOf(origin_, pattern_);
}

void ObjectSet::collectPaths(std::vector<PathUse>& paths, Base const& base) const {
  // A name alone is no path: its objects are those of the quantifier's set.
  if (origin_.isNamed() && pattern_.steps().empty()) return;
  paths.push_back({objectsFrom(base), {}, range()});
}

void ObjectSet::collectReads(RuleReads& reads, Base const& base) const {
  reads.objectSets.push_back(objectsFrom(base));
}

// Operation

Dependence Operation::dependence() const {
  Dependence result;
  for (auto const& operand : operands_) result.add(operand->dependence());
  return result;
}

void Operation::collectReads(RuleReads& reads, Base const& base) const {
  for (std::size_t i = 0; i < operands_.size(); ++i) operands_[i]->collectReads(reads, operandBase(i, base));
}

std::vector<Expression const*> Operation::operands() const {
  return pointers(operands_);
}

void Operation::bind(QuantityBinding& binding) {
  for (auto const& operand : operands_) operand->bind(binding);
  bindResult(binding);
}

void Operation::unify(std::size_t from, std::size_t to, QuantityBinding& binding) {
  QuantityType const* sure = nullptr;
  QuantityType const* likely = nullptr;
  bool differ = false;
  bool isConverted = false;
  for (std::size_t i = from; i < to; ++i) {
    auto const& operand = *operands_[i];
    isConverted |= operand.isConverted();
    if (auto const* type = operand.quantity()) {
      differ |= sure != nullptr && sure != type;
      sure = type;
    } else if (operand.isConverted()) {
      // A type that only an evaluation shows: the result's type is not known before that either.
      differ = true;
    }
    if (likely == nullptr) likely = operand.likelyQuantity();
  }
  if (likely != nullptr) assumeAll(from, to, *likely, binding);
  setQuantity(differ ? nullptr : sure, isConverted);
}

void Operation::assumeAll(std::size_t from, std::size_t to, QuantityType const& type, QuantityBinding& binding) {
  for (std::size_t i = from; i < to; ++i) operands_[i]->assume(type, binding);
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

void Comparison::bindResult(QuantityBinding& binding) {
  unify(0, 2, binding);
  isTolerant_ = left().isConverted() || right().isConverted();
  setQuantity(nullptr, false);
}

bool Comparison::equalNumbers(double a, double b) const noexcept {
  return a == b || (isTolerant_ && QuantityType::areEqual(a, b));
}

bool Comparison::equal(Frame const& frame) const {
  switch (mode_) {
    case Mode::Truth: {
      auto const a = left().logical(frame);
      auto const b = right().logical(frame);
      return a && b && *a == *b;
    }
    case Mode::Number:
      return equalNumbers(left().number(frame), right().number(frame));
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
      if (a == b) return true;
      if (auto const known = leftParameter->equalQuantities(frame, a, *rightParameter, b)) return *known;
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
    default:
      break;
  }
  double const a = left().number(frame);
  double const b = right().number(frame);
  switch (operator_) {
    case Operator::Less:
      return a < b && !equalNumbers(a, b);
    case Operator::LessEqual:
      return a <= b || equalNumbers(a, b);
    case Operator::Greater:
      return a > b && !equalNumbers(a, b);
    default:
      return a >= b || equalNumbers(a, b);
  }
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

void Arithmetic::assume(QuantityType const& type, QuantityBinding& binding) {
  if (kind() != Kind::Number) return;
  if (isSum()) {
    assumeAll(0, numeric_, type, binding);
    return;
  }
  // In a product at most one factor is a quantity of the type of the product: the others are plain numbers, or the
  // quantities that are written out are of types that are not known here.
  if (isConverted()) return;
  assumeAll(0, 1, type, binding);
  for (std::size_t i = 1; i < size(); ++i) {
    if (operators_[i] == '*') assumeAll(i, i + 1, type, binding);
  }
}

void Arithmetic::bindResult(QuantityBinding& binding) {
  if (isSum()) {
    unify(0, numeric_, binding);
    if (kind() != Kind::Number) setQuantity(nullptr, isConverted());
    return;
  }
  // A product counts in the unit of its one quantity, the others being plain numbers.
  QuantityType const* type = nullptr;
  std::size_t quantities = 0;
  bool isConverted = false;
  for (std::size_t i = 0; i < size(); ++i) {
    isConverted |= operand(i).isConverted();
    if (operand(i).quantity() == nullptr && !operand(i).isConverted()) continue;
    ++quantities;
    type = operators_[i] == '*' ? operand(i).quantity() : nullptr;
  }
  setQuantity(quantities == 1 ? type : nullptr, isConverted);
}

// Quantifier

Quantifier::Quantifier(Operator op, Range range, std::vector<ExpressionPtr> operands, std::string name)
    : Operation(op == Operator::Count    ? Kind::Number
                : op == Operator::Filter ? Kind::Objects
                                         : Kind::Truth,
                range, std::move(operands)),
      operator_(op),
      name_(std::move(name)) {}

bool Quantifier::holds(Frame const& frame, std::string const& path) const {
  return atObject(frame, path, [&](Frame const& at) { return operand(1).truth(at); });
}

bool Quantifier::truth(Frame const& frame) const {
  if (kind() != Kind::Truth) return Expression::truth(frame);
  bool const wanted = operator_ == Operator::Any;
  return operand(0).anyObject(frame, [&](std::string const& path) { return holds(frame, path) == wanted; }) == wanted;
}

double Quantifier::number(Frame const& frame) const {
  if (kind() != Kind::Number) return Expression::number(frame);
  std::size_t count = 0;
  (void)operand(0).anyObject(frame, [&](std::string const& path) {
    if (size() == 1 || holds(frame, path)) ++count;
    return false;
  });
  return static_cast<double>(count);
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
  if (size() == 1) return result;
  // The condition is evaluated once per object, with that object as context. So the result depends on the condition's
  // owner but not on its context, and on the names around it but not on its own.
  auto const condition = operand(1).dependence();
  result.owner |= condition.owner;
  std::size_t const own = name_.empty() ? 0 : 1;
  result.names = std::max(result.names, condition.names - std::min(own, condition.names));
  return result;
}

namespace {

/// All objects that a set expression can name, as one pattern seen from `base`.
PathPattern patternOf(Expression const& set, Base const& base) {
  if (auto const* objects = dynamic_cast<ObjectSet const*>(&set)) return objects->objectsFrom(base);
  auto const parts = set.operands();
  // A filter names objects of its set. A choice between sets can name more than one pattern can say: take everything.
  if (dynamic_cast<Quantifier const*>(&set) != nullptr) return patternOf(*parts.front(), base);
  return PathPattern("/**");
}

}  // namespace

Base Quantifier::operandBase(std::size_t i, Base const& base) const {
  if (i == 0) return base;
  Base result = patternOf(operand(0), base);
  result.names =
      name_.empty() ? base.names : std::make_shared<Base::Name const>(Base::Name{result.context, base.names});
  return result;
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

void FunctionCall::collectReads(RuleReads& reads, Base const& base) const {
  Operation::collectReads(reads, base);
  bool const ofContext = function_->readsContextIdentity && size() == 0;
  // Inside a quantifier over absolute paths the context is one of those objects, whatever object owns the rule.
  if (ofContext && !base.context.isAbsolute()) reads.contextIdentity = true;
}

std::vector<double> FunctionCall::numbers(Frame const& frame) const {
  // The parameters that a path matches may be of different quantity types.
  if (function_->argument(0) == Argument::Parameters) {
    return static_cast<ParameterReference const&>(operand(0)).numbersOfAll(frame);
  }
  return Expression::numbers(frame);
}

void FunctionCall::assume(QuantityType const& type, QuantityBinding& binding) {
  assumeAll(0, std::min(size(), function_->quantitiesFrom), type, binding);
}

void FunctionCall::bindResult(QuantityBinding& binding) {
  unify(0, std::min(size(), function_->quantitiesFrom), binding);
}

// PatternMatch

bool PatternMatch::truth(Frame const& frame) const {
  std::string buffer;
  auto const& text = operand(0).textIn(frame, buffer);
  if (pattern_ != nullptr) return pattern_->matchesWhole(text);
  RegularExpression const computed(operand(1).text(frame));
  return computed.fault().empty() && computed.matchesWhole(text);
}

// NamedCall

std::vector<double> NamedCall::numbers(Frame const& frame) const {
  return rule_->expression()->numbers(frame);
}

void NamedCall::bind(QuantityBinding& /*binding*/) {
  auto const* called = rule_->expression();
  if (called != nullptr) setQuantity(called->quantity(), called->isConverted());
}

bool NamedCall::truth(Frame const& frame) const {
  return kind() == Kind::List ? Expression::truth(frame) : rule_->expression()->truth(frame);
}

std::optional<bool> NamedCall::logical(Frame const& frame) const {
  return isValue() ? rule_->expression()->logical(frame) : Expression::logical(frame);
}

double NamedCall::number(Frame const& frame) const {
  return isValue() ? rule_->expression()->number(frame) : Expression::number(frame);
}

std::string NamedCall::text(Frame const& frame) const {
  return isValue() ? rule_->expression()->text(frame) : Expression::text(frame);
}

std::string const& NamedCall::textIn(Frame const& frame, std::string& buffer) const {
  return isValue() ? rule_->expression()->textIn(frame, buffer) : Expression::textIn(frame, buffer);
}

SharedStrings NamedCall::list(Frame const& frame) const {
  return rule_->expression()->list(frame);
}

Dependence NamedCall::dependence() const {
  return rule_->dependence();
}

void NamedCall::collectReads(RuleReads& reads, Base const& base) const {
  rule_->expression()->collectReads(reads, base);
}

// Kept

template <typename Result, typename Evaluate>
Result Kept::kept(Frame const& frame, Evaluate evaluate) const {
  auto* cache = frame.evalContext != nullptr ? frame.evalContext->getCache() : nullptr;
  if (cache == nullptr || !cache->isEnabled() || DeterminingQuantityType::isActive()) return evaluate();
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
