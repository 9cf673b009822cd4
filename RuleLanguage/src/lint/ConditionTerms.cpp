// From conditions to formulas. Connectives, named checks and `if` are taken apart. Everything else is evaluated by the
// expression itself, once for each value that its parameter can have, so that it means here what it means in a model.

#include "lint/ConditionTerms.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

#include <tarn/PathUtils.h>
#include <tarn/QuantityType.h>
#include <tarn/TDFParam.h>

#include "expression/NamedRule.h"
#include "lint/ConstantExpression.h"
#include "lint/ValueModel.h"

namespace tarn::rules {

namespace {

/// A parameter with more allowed values is only known by those that conditions name and one more.
constexpr std::size_t fewValues = 16;
/// With more values in pairs, a comparison of two parameters is not looked into.
constexpr std::size_t mostPairs = 256;

bool isConstant(Expression const& expression) {
  if (as<Literal>(expression) != nullptr) return true;
  if (as<ParameterReference>(expression) != nullptr) return false;
  return expression.kind() != Kind::Objects && readsNothing(expression);
}

template <typename Value>
void addOnce(std::vector<Value>& values, Value const& value) {
  if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
}

/// Numbers between, below and above the given ones, and these themselves. With `isWhole` only whole ones are added.
std::vector<double> withNeighbours(std::vector<double> numbers, bool isWhole) {
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  std::vector<double> result;
  auto const add = [&](double low, double high) {
    double const number = isWhole ? std::floor(low) + 1 : low + (high - low) / 2;
    if (low < number && number < high) result.push_back(number);
  };
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    double const number = numbers[i];
    if (i == 0) result.push_back(isWhole ? std::ceil(number) - 1 : number - std::max(1.0, std::abs(number)));
    if (i > 0) add(numbers[i - 1], number);
    if (!isWhole || number == std::floor(number)) result.push_back(number);
    if (i + 1 == numbers.size()) {
      result.push_back(isWhole ? std::floor(number) + 1 : number + std::max(1.0, std::abs(number)));
    }
  }
  return result;
}

/// The list that a membership asks, when its items are written out: null otherwise.
SharedStrings const* fixedItemsOf(Expression const& list) {
  if (auto const* literal = as<ListLiteral>(list)) {
    if (literal->operands().empty()) return &literal->fixedItems();
  } else if (as<Kept>(list) != nullptr) {
    return fixedItemsOf(*list.operands().front());
  } else if (auto const* call = as<NamedCall>(list)) {
    if (call->rule().expression() != nullptr) return fixedItemsOf(*call->rule().expression());
  }
  return nullptr;
}

/// A bound, in the first unit of the quantity type. Nothing when it depends on a model, or cannot be compared.
std::optional<double> boundOf(PhysicsData const& data, ParamValueDef const& def, TextExpression const* bound) {
  auto const text = constantTextOf(bound);
  auto const quantity = text ? TDFParam::asQuantity(*text) : std::nullopt;
  if (!quantity) return std::nullopt;
  if (def.quantityType == nullptr) return quantity->units.empty() ? std::optional(quantity->number) : std::nullopt;
  auto const* fixed = dynamic_cast<FixedText const*>(def.quantityType.get());
  auto const* type = fixed != nullptr ? data.findQuantityType(fixed->text()) : nullptr;
  return type != nullptr ? type->inFirstUnit(*quantity) : std::nullopt;
}

/// The range of a parameter that can hold any number between its bounds.
std::optional<NumberRange> numberRangeOf(PhysicsData const& data, ParamValueDef const& def) {
  if (def.type != TDFParam::Integer && def.type != TDFParam::Real) return std::nullopt;
  if (def.allowedValueKind != ParamValueDef::NoAllowedValues || !def.overrideChecks.empty()) return std::nullopt;
  // Units that only the default has are right in a model, and a number with them is not compared with the bounds.
  if (def.quantityType == nullptr && def.hasDefault()) {
    auto const text = def.defaultChecks.empty() ? constantTextOf(def.defaultValue.get()) : std::nullopt;
    auto const quantity = text ? TDFParam::asQuantity(*text) : std::nullopt;
    if (!quantity || !quantity->units.empty()) return std::nullopt;
  }
  NumberRange range;
  range.low = boundOf(data, def, def.lowerBound.get());
  range.high = boundOf(data, def, def.upperBound.get());
  // Reversed bounds are reported where they are written.
  if ((!range.low && !range.high) || (range.low && range.high && *range.low >= *range.high)) return std::nullopt;
  range.isLowExcluded = def.lowerBoundExcluded;
  range.isHighExcluded = def.upperBoundExcluded;
  auto const low = range.low ? constantTextOf(def.lowerBound.get()).value_or("") : std::string();
  auto const high = range.high ? constantTextOf(def.upperBound.get()).value_or("") : std::string();
  if (range.low && range.high && !range.isLowExcluded && !range.isHighExcluded) {
    range.text = "is from " + low + " to " + high;
  } else {
    if (range.low) range.text = (range.isLowExcluded ? "is above " : "is at least ") + low;
    if (range.low && range.high) range.text += " and ";
    if (range.high) range.text += (range.isHighExcluded ? "is below " : "is at most ") + high;
  }
  return range;
}

bool isExists(Expression const& part) {
  auto const* call = as<FunctionCall>(part);
  return call != nullptr && call->function().name == "exists";
}

}  // namespace

std::string representative(PhysicsData const& data, std::string const& typePath, char number) {
  std::string path;
  std::string types;
  for (std::size_t begin = 0; begin < typePath.size();) {
    std::size_t const end = std::min(typePath.find('/', begin + 1), typePath.size());
    std::string const type = typePath.substr(begin + 1, end - begin - 1);
    auto const* parent = data.getObjDependDef(types, true);
    auto const* child = parent != nullptr ? parent->findChild(type) : nullptr;
    types += "/" + type;
    path += "/" + type;
    // An object at the root of a model can have a name, whatever the rules say of it.
    if (child == nullptr || !child->singleton) path.append(":").push_back(number);
    begin = end;
  }
  return path;
}

ConditionScope const* ConditionTerms::keep(ConditionScope const& scope) {
  for (auto const& known : scopes_) {
    if (known->context == scope.context && known->owner == scope.owner) return known.get();
  }
  return scopes_.emplace_back(std::make_unique<ConditionScope>(scope)).get();
}

ConditionFormula::Node ConditionTerms::add(Expression const& condition, std::string_view source,
                                           ConditionScope const& scope) {
  return addPart(condition, source, keep(scope));
}

std::shared_ptr<ClosedValues const> ValuesOfRules::closedOf(ParamAvail const* entry) {
  auto const [known, isNew] = closed_.try_emplace(entry);
  if (!isNew) return known->second;
  auto const* def = entry->valueDef();
  auto const* list = def != nullptr ? dynamic_cast<FixedList const*>(def->allowedValues.get()) : nullptr;
  bool const isClosed = list != nullptr && def->allowedValueKind == ParamValueDef::FixedAllowedValues &&
                        !def->allowsAnyValue && !TDFParam::isListType(def->type) && !entry->validationRelaxed;
  if (!isClosed) return nullptr;
  auto const closed = std::make_shared<ClosedValues>();
  auto& values = closed->texts;
  for (auto const& item : list->items()) {
    if (!def->unusedValues.contains(item)) values.push_back(item);
  }
  // An override counts as it is, allowed or not.
  for (auto const& guarded : def->overrideChecks) {
    auto const* fixed = dynamic_cast<FixedText const*>(guarded.value.get());
    if (fixed == nullptr) return nullptr;
    addOnce(values, fixed->text());
  }
  bool const canBeBlank = def->fallbackToBlankDefault || def->availableWithNoAllowedValues || def->subset != nullptr;
  if (canBeBlank) addOnce(values, std::string());
  if (values.empty()) return nullptr;
  closed->set.insert(values.begin(), values.end());
  return known->second = closed;
}

std::shared_ptr<NumberRange const> ValuesOfRules::rangeOf(ParamAvail const* entry) {
  auto const [known, isNew] = ranges_.try_emplace(entry);
  auto const* def = entry->validationRelaxed ? nullptr : entry->valueDef();
  if (!isNew || def == nullptr) return known->second;
  if (auto range = numberRangeOf(data_, *def)) {
    known->second = std::make_shared<NumberRange const>(std::move(*range));
  }
  return known->second;
}

std::size_t ConditionTerms::parameter(std::string const& path, std::string const& name) {
  Parameter const* sibling = nullptr;
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    if (parameters_[i].path != path) continue;
    if (parameters_[i].name == name) return i;
    sibling = &parameters_[i];
  }
  Parameter made;
  made.path = path;
  made.name = name;
  made.variable = formula_.addVariable();
  made.object = sibling != nullptr ? sibling->object : data_.getObjDependDef(PathUtils::typePathOf(path), true);
  if (made.object != nullptr) made.entry = made.object->findParam(name);
  if (made.entry != nullptr) {
    made.values = known_.closedOf(made.entry);
    if (made.values == nullptr) made.range = known_.rangeOf(made.entry);
  }
  parameters_.push_back(std::move(made));
  questions_.emplace_back();
  return parameters_.size() - 1;
}

void ConditionTerms::setOpen(std::size_t parameter) {
  parameters_[parameter].values.reset();
  parameters_[parameter].range.reset();
  parameters_[parameter].isAlwaysThere = false;
}

bool ConditionTerms::hasAbsent(std::vector<std::size_t> const& values) const {
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    std::size_t const value = values[parameters_[i].variable];
    if (value != ConditionFormula::anyValue && !values_[i][value].isThere) return true;
  }
  return false;
}

bool ConditionTerms::readsRootAlone() const {
  return std::none_of(parameters_.begin(), parameters_.end(),
                      [](Parameter const& one) { return one.path.starts_with(unknownObject); });
}

std::optional<std::vector<std::size_t>> ConditionTerms::parametersOf(Expression const& part,
                                                                     ConditionScope const& scope) {
  std::vector<std::size_t> found;
  std::vector<Expression const*> open{&part};
  while (!open.empty()) {
    auto const* one = open.back();
    open.pop_back();
    if (auto const* reference = as<ParameterReference>(*one)) {
      // The object that a name means is only known in an evaluation.
      if (reference->origin().isNamed()) return std::nullopt;
      auto const& pattern = reference->objectPattern();
      switch (pattern.start()) {
        case PathPattern::Start::Context:
        case PathPattern::Start::Root:
        case PathPattern::Start::Nearest:
        case PathPattern::Start::Owner:
          break;
        default:
          return std::nullopt;
      }
      if (!pattern.isSingle()) return std::nullopt;
      if (pattern.start() == PathPattern::Start::Context && pattern.steps().empty()) {
        addOnce(found, parameter(scope.context, reference->name()));
        continue;
      }
      std::string path;
      // Above the root there is nothing, so the parameter is absent. That is left open.
      if (!pattern.resolve(TDFContext(scope.context, scope.owner), path)) return std::nullopt;
      addOnce(found, parameter(path, reference->name()));
      continue;
    }
    if (as<FunctionCall>(*one) != nullptr) {
      auto const& function = as<FunctionCall>(*one)->function();
      if (function.readsContextIdentity) return std::nullopt;
    } else if (auto const* call = as<NamedCall>(*one)) {
      if (call->kind() == Kind::List && fixedItemsOf(*call) != nullptr) continue;
      return std::nullopt;
    } else if (as<Literal>(*one) == nullptr && as<QuantityLiteral>(*one) == nullptr &&
               as<ListLiteral>(*one) == nullptr && as<Comparison>(*one) == nullptr && as<Membership>(*one) == nullptr &&
               as<Logic>(*one) == nullptr && as<Arithmetic>(*one) == nullptr && as<Negation>(*one) == nullptr &&
               as<Choice>(*one) == nullptr && as<Kept>(*one) == nullptr) {
      return std::nullopt;
    }
    auto const operands = one->operands();
    open.insert(open.end(), operands.begin(), operands.end());
  }
  return found;
}

ConditionFormula::Node ConditionTerms::addLogic(Logic const& logic, std::string_view source,
                                                ConditionScope const* scope) {
  std::vector<ConditionFormula::Node> parts;
  for (auto const* part : logic.operands()) {
    parts.push_back(addPart(*part, source, scope));
    if (callDepth_ == 0) operands_.push_back({part, parts.back()});
  }
  switch (logic.op()) {
    case Logic::Operator::Not:
      return formula_.negation(parts.front());
    case Logic::Operator::And:
      return formula_.conjunction(parts);
    case Logic::Operator::Or:
      return formula_.disjunction(parts);
    case Logic::Operator::Implies:
      parts.front() = formula_.negation(parts.front());
      return formula_.disjunction(parts);
  }
  return formula_.constant(true);
}

ConditionFormula::Node ConditionTerms::addPart(Expression const& part, std::string_view source,
                                               ConditionScope const* scope) {
  if (++size_ > mostParts) return formula_.constant(true);
  if (as<Kept>(part) != nullptr) return addPart(*part.operands().front(), source, scope);
  if (auto const* logic = as<Logic>(part)) return addLogic(*logic, source, scope);
  if (auto const* call = as<NamedCall>(part)) {
    auto const* body = call->rule().expression();
    bool const isNear = callDepth_ < mostCallLevels;
    if (part.kind() == Kind::Truth && body != nullptr && isNear && isLookedInto_(call->rule())) {
      for (auto const& called : called_) {
        if (called.rule == &call->rule() && called.scope == scope) return called.node;
      }
      ++callDepth_;
      auto const node = addPart(*body, call->rule().source(), scope);
      --callDepth_;
      called_.push_back({&call->rule(), scope, node});
      return node;
    }
    return addOpaque(part, source, scope);
  }
  if (as<Choice>(part) != nullptr) {
    auto const operands = part.operands();
    auto const when = addPart(*operands[0], source, scope);
    auto const then = addPart(*operands[1], source, scope);
    auto const otherwise = addPart(*operands[2], source, scope);
    return formula_.disjunction(formula_.conjunction(when, then),
                                formula_.conjunction(formula_.negation(when), otherwise));
  }
  if (isConstant(part)) {
    return formula_.constant(constantTruth(part));
  }
  if (auto const term = addTermComparison(part, source, scope)) return *term;
  auto const read = parametersOf(part, *scope);
  if (!read || read->empty() || read->size() > 2) return addOpaque(part, source, scope);

  auto const operands = part.operands();
  bool isKnown = read->size() == 1;
  auto kind = Atom::Kind::Expression;
  if (auto const* reference = as<ParameterReference>(part)) {
    questions_[read->front()].asksTruth = true;
    isKnown &= reference != nullptr;
  } else if (as<Comparison>(part) != nullptr) {
    // A parameter with a constant, or with itself. A text that is a number is equal to itself in more ways.
    if (read->size() == 1 && !isConstant(*operands[0]) && !isConstant(*operands[1])) {
      addOnce(questions_[read->front()].numbers, 1.0);
    }
    for (auto const* operand : operands) {
      if (as<ParameterReference>(*operand) != nullptr) continue;
      if (!isConstant(*operand)) {
        isKnown = false;
        break;
      }
      for (std::size_t const i : *read) {
        if (operand->kind() == Kind::Truth) questions_[i].asksTruth = true;
        // A number outside the range of a parameter cannot be one of its texts.
        bool const isOfRange = operand->kind() == Kind::Number && parameters_[i].range;
        if (!isOfRange) addOnce(questions_[i].texts, constantText(*operand));
        double const number = constantNumber(*operand);
        if (!std::isnan(number)) addOnce(questions_[i].numbers, number);
      }
    }
  } else if (as<Membership>(part) != nullptr) {
    auto const* items = fixedItemsOf(*operands[1]);
    isKnown &= items != nullptr && as<ParameterReference>(*operands[0]) != nullptr;
    if (isKnown) {
      for (auto const& item : *items) addOnce(questions_[read->front()].texts, item);
    }
  } else {
    isKnown &= isExists(part) && as<ParameterReference>(*operands.front()) != nullptr;
    kind = Atom::Kind::Exists;
  }
  if (!isKnown) {
    // Anything can be asked of parameters of which all values are known.
    std::size_t pairs = 1;
    for (std::size_t const i : *read) {
      if (!parameters_[i].values) return addOpaque(part, source, scope);
      pairs *= parameters_[i].values->texts.size() + 2;
    }
    if (pairs > mostPairs) return addOpaque(part, source, scope);
    for (std::size_t const i : *read) questions_[i].needsAllValues = true;
    kind = Atom::Kind::Expression;
  }
  std::vector<ConditionFormula::Variable> variables;
  for (std::size_t const i : *read) variables.push_back(parameters_[i].variable);
  auto const node = formula_.addAtom(variables);
  atoms_.push_back({kind, node, &part, scope, *read});
  return node;
}

ConditionFormula::Node ConditionTerms::addOpaque(Expression const& part, std::string_view source,
                                                 ConditionScope const* scope) {
  std::string key(source.substr(std::min<std::size_t>(part.range().offset, source.size()), part.range().length));
  // Without its text a part is like no other.
  if (key.empty()) key = "\n" + std::to_string(opaque_.size());
  key += "\n" + scope->context + "\n" + scope->owner;
  for (auto const& [known, node] : opaque_) {
    if (known == key) return node;
  }
  auto const node = formula_.addAtom(formula_.addVariable(2));
  formula_.setTable(node, {false, true});
  opaque_.emplace_back(std::move(key), node);
  return node;
}

std::optional<ConditionFormula::Node> ConditionTerms::addTermComparison(Expression const& part, std::string_view source,
                                                                        ConditionScope const* scope) {
  auto const operands = part.operands();
  bool const isComparison = as<Comparison>(part) != nullptr;
  auto const* membership = as<Membership>(part);
  if (!isComparison && membership == nullptr) return std::nullopt;
  bool const isSwapped = isComparison && isConstant(*operands[0]);
  auto const& one = *operands[isSwapped ? 1 : 0];
  auto const& other = *operands[isSwapped ? 0 : 1];
  if (one.kind() != Kind::Number && one.kind() != Kind::Text) return std::nullopt;
  bool const isNumber = one.kind() == Kind::Number;
  std::vector<double> numbers;
  std::vector<std::string> texts;
  if (isComparison) {
    if (!isConstant(other) || other.kind() == Kind::Truth) return std::nullopt;
    if (!isNumber && other.kind() != Kind::Text) return std::nullopt;
    auto const op = as<Comparison>(part)->op();
    bool const isOrder = op != Comparison::Operator::Equal && op != Comparison::Operator::NotEqual;
    if (!isNumber && isOrder) return std::nullopt;
    if (isNumber) {
      double const number = constantNumber(other);
      if (std::isnan(number)) return std::nullopt;
      numbers.push_back(number);
    } else {
      texts.push_back(constantText(other));
    }
  } else {
    auto const* items = isNumber ? nullptr : fixedItemsOf(*operands[1]);
    if (items == nullptr) return std::nullopt;
    texts.assign(items->begin(), items->end());
  }
  // Parameters of few values are evaluated with each of them, which shows more.
  if (auto const read = parametersOf(one, *scope); read && !read->empty()) {
    if (std::all_of(read->begin(), read->end(), [&](std::size_t i) { return parameters_[i].values != nullptr; })) {
      return std::nullopt;
    }
  }
  std::string key(source.substr(std::min<std::size_t>(one.range().offset, source.size()), one.range().length));
  if (key.empty()) return std::nullopt;
  key += "\n" + scope->context + "\n" + scope->owner;
  auto term = std::find_if(terms_.begin(), terms_.end(), [&](Term const& known) { return known.key == key; });
  if (term == terms_.end()) {
    auto const* quantifier = as<Quantifier>(one);
    auto const* call = as<FunctionCall>(one);
    bool const isCount =
        isNumber && (quantifier != nullptr ||
                     (call != nullptr && (call->function().name == "size" || call->function().name == "length")));
    terms_.push_back({key, isNumber, isCount});
    term = terms_.end() - 1;
    term->variable = formula_.addVariable();
  }
  for (double const number : numbers) addOnce(term->numbers, number);
  for (auto const& text : texts) addOnce(term->texts, text);
  auto const node = formula_.addAtom(term->variable);
  Atom atom{Atom::Kind::Term, node, &part, scope};
  atom.term = static_cast<std::size_t>(term - terms_.begin());
  atoms_.push_back(std::move(atom));
  return node;
}

ConditionFormula::Node ConditionTerms::addExists(std::string const& path, std::string const& name) {
  std::size_t const i = parameter(path, name);
  auto const node = formula_.addAtom(parameters_[i].variable);
  atoms_.push_back({Atom::Kind::Exists, node, nullptr, nullptr, {i}});
  return node;
}

ConditionFormula::Node ConditionTerms::addHasOneOf(std::string const& path, std::string const& name,
                                                   std::vector<std::string> const& values) {
  std::size_t const i = parameter(path, name);
  for (auto const& value : values) addOnce(questions_[i].contexts, value);
  auto const node = formula_.addAtom(parameters_[i].variable);
  atoms_.push_back({Atom::Kind::HasOneOf, node, nullptr, nullptr, {i}, &values});
  return node;
}

std::vector<ConditionTerms::Value> ConditionTerms::closedValues(Parameter const& parameter,
                                                                Questions const& questions) const {
  std::vector<Value> values;
  auto const& texts = parameter.values->texts;
  bool const needsAll = questions.needsAllValues || questions.asksTruth || !questions.numbers.empty();
  if (needsAll || texts.size() <= fewValues) {
    for (auto const& text : texts) values.push_back({text});
    return values;
  }
  // Those that are asked for, and one that is not.
  std::unordered_set<std::string_view> asked;
  for (auto const* named : {&questions.texts, &questions.contexts}) {
    for (auto const& text : *named) {
      if (asked.insert(text).second && parameter.values->set.contains(text)) values.push_back({text});
    }
  }
  auto const other =
      std::find_if(texts.begin(), texts.end(), [&](std::string const& text) { return !asked.contains(text); });
  if (other != texts.end()) values.push_back({*other});
  return values;
}

std::vector<ConditionTerms::Value> ConditionTerms::valuesOf(std::size_t index) const {
  auto const& parameter = parameters_[index];
  auto const& questions = questions_[index];
  std::vector<Value> values;
  auto const addText = [&](std::string const& text) {
    for (auto const& known : values) {
      if (known.text == text) return;
    }
    values.push_back({text});
  };
  bool const asksForm = questions.asksTruth || !questions.numbers.empty();
  if (parameter.values && (!asksForm || parameter.values->texts.size() <= mostTriedValues)) {
    values = closedValues(parameter, questions);
    // A value that the parameter can never have is reported where it is compared. It must not make more findings.
    for (auto const& text : questions.texts) {
      if (!text.empty()) addText(text);
    }
  } else {
    auto const* def = parameter.entry != nullptr ? parameter.entry->valueDef() : nullptr;
    bool const isRelaxed = parameter.entry != nullptr && parameter.entry->validationRelaxed;
    bool const isPlain = def != nullptr && !isRelaxed && def->overrideChecks.empty() &&
                         def->allowedValueKind == ParamValueDef::NoAllowedValues;
    bool const isLogical = isPlain && def->type == TDFParam::Logical;
    bool const isWhole = isPlain && def->type == TDFParam::Integer && def->quantityType == nullptr;
    bool const isNumeric = isPlain && (def->type == TDFParam::Integer || def->type == TDFParam::Real);
    addText("");
    for (auto const& text : questions.texts) addText(text);
    for (auto const& text : questions.contexts) addText(text);
    auto const& range = parameter.range;
    if (questions.asksTruth || isLogical) {
      for (char const* text : {"true", "false", "1", "0", "TRUE", "FALSE"}) {
        bool const isDigit = text[0] == '1' || text[0] == '0';
        if (isDigit && range && !range->holds(text[0] - '0')) continue;
        if (!isNumeric || isDigit) addText(text);
      }
    }
    if (!isLogical) {
      auto numbers = questions.numbers;
      if (range && range->low) numbers.push_back(*range->low);
      if (range && range->high) numbers.push_back(*range->high);
      for (double const number : withNeighbours(std::move(numbers), isWhole)) {
        if (range && !range->holds(number)) continue;
        std::string const text = numberText(number);
        addText(text);
        // The same number, written in another way.
        addText(text.find_first_of(".e") != std::string::npos ? text + " " : text + ".0");
      }
      if (isNumeric) {
        constexpr double other = 7.25e6;
        if (!range || range->holds(other)) addText("7.25e6");
      } else {
        addText("\1 any other text");
      }
    }
  }
  if (!parameter.isAlwaysThere) values.push_back({"", false});
  return values;
}

void ConditionTerms::fillTable(Atom const& atom) {
  auto const& first = values_[atom.parameters.front()];
  std::vector<bool> table;
  if (atom.kind == Atom::Kind::Exists) {
    for (auto const& value : first) table.push_back(value.isThere);
  } else if (atom.kind == Atom::Kind::HasOneOf) {
    for (auto const& value : first) {
      table.push_back(value.isThere &&
                      std::find(atom.values->begin(), atom.values->end(), value.text) != atom.values->end());
    }
  } else {
    ValueModel model;
    for (std::size_t const i : atom.parameters)
      model.parameters().push_back({parameters_[i].path, parameters_[i].name, {}});
    TDFContext const context(atom.scope->context, atom.scope->owner);
    EvalContext evalContext(&model);
    Frame const frame{model, context, &evalContext};
    auto const set = [&](std::size_t i, Value const& value) {
      model.parameters()[i].value = value.text;
      model.parameters()[i].isThere = value.isThere;
    };
    for (auto const& value : first) {
      set(0, value);
      if (atom.parameters.size() == 1) {
        table.push_back(atom.expression->truth(frame));
        continue;
      }
      for (auto const& other : values_[atom.parameters[1]]) {
        set(1, other);
        table.push_back(atom.expression->truth(frame));
      }
    }
  }
  formula_.setTable(atom.node, table);
}

void ConditionTerms::fillTerm(Atom const& atom) {
  auto const& term = terms_[atom.term];
  std::vector<bool> table;
  auto const operands = atom.expression->operands();
  if (!term.isNumber) {
    auto const* membership = as<Membership>(*atom.expression);
    auto const holds = [&](std::string const* text) {
      if (membership != nullptr) {
        bool const isIn = text != nullptr && fixedItemsOf(membership->items())->contains(*text);
        return isIn != membership->negated();
      }
      auto const& other = isConstant(*operands[0]) ? *operands[0] : *operands[1];
      bool const isEqual = text != nullptr && constantText(other) == *text;
      return isEqual == (as<Comparison>(*atom.expression)->op() == Comparison::Operator::Equal);
    };
    for (auto const& text : term.texts) table.push_back(holds(&text));
    table.push_back(holds(nullptr));
  } else {
    auto const& comparison = dynamic_cast<Comparison const&>(*atom.expression);
    bool const isSwapped = isConstant(*operands[0]);
    double const constant = constantNumber(*operands[isSwapped ? 0 : 1]);
    auto const holds = [&](double number) {
      double const a = isSwapped ? constant : number;
      double const b = isSwapped ? number : constant;
      switch (comparison.op()) {
        case Comparison::Operator::Equal:
          return a == b;
        case Comparison::Operator::NotEqual:
          return !(a == b);
        case Comparison::Operator::Less:
          return a < b;
        case Comparison::Operator::LessEqual:
          return a <= b;
        case Comparison::Operator::Greater:
          return a > b;
        case Comparison::Operator::GreaterEqual:
          return a >= b;
      }
      return false;
    };
    for (double const number : withNeighbours(term.numbers, term.isCount)) {
      if (!term.isCount || number >= 0) table.push_back(holds(number));
    }
    if (!term.isCount) table.push_back(holds(std::numeric_limits<double>::quiet_NaN()));
    // All counts can be negative only where constants are.
    if (table.empty()) table.push_back(holds(0));
  }
  formula_.setSize(term.variable, table.size());
  formula_.setTable(atom.node, table);
}

void ConditionTerms::finish() {
  values_.clear();
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    values_.push_back(valuesOf(i));
    formula_.setSize(parameters_[i].variable, values_[i].size());
  }
  for (auto const& atom : atoms_) {
    if (atom.kind == Atom::Kind::Term) {
      fillTerm(atom);
    } else {
      fillTable(atom);
    }
  }
}

}  // namespace tarn::rules
