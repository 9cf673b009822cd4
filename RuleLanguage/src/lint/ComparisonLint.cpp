// Comparisons with values that are written out. The values that a parameter can hold are known from its type and from
// its allowed values when those are written out too; names and types of objects are known from the child rules. Where
// any of this is computed, or is the user's choice, there is no warning.

#include "lint/ComparisonLint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/QuantityType.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "expression/CompiledRules.h"
#include "expression/Nodes.h"
#include "expression/Quantities.h"
#include "lint/ConstantExpression.h"
#include "lint/ValueLint.h"

namespace tarn::rules {

namespace {

/// A value that something is compared with.
struct Wanted {
  std::string text;
  std::optional<double> number;  // when it is written as a number
};

/// Why something never has a value.
struct Impossible {
  std::string subject;
  std::string reason;
  std::string near;  // the value that was probably meant
  std::string remedy = orDidYouMean(near);
  NamedRule const* list = nullptr;  // the named list that lacks the value
};

/// Nothing when the value is possible.
using Judgement = std::optional<Impossible>;

Expression const& withoutKept(Expression const& expression) {
  return dynamic_cast<Kept const*>(&expression) != nullptr ? *expression.operands().front() : expression;
}

/// The text of an expression that is a text in quotes; null for any other.
std::string const* writtenText(Expression const& expression) {
  auto const* literal = dynamic_cast<Literal const*>(&expression);
  return literal != nullptr && literal->kind() == Kind::Text ? &literal->rawText() : nullptr;
}

std::string inLetters(std::string_view function, std::string_view text) {
  return function == "lower" ? StringUtilities::toLower(std::string(text))
                             : StringUtilities::toUpper(std::string(text));
}

class ComparisonLint {
 public:
  ComparisonLint(LintContext& context, ExpressionUse const& use) : context_(context), use_(use) {}

  void run() {
    struct Part {
      Expression const* expression;
      Base base;  // the objects in whose context it is evaluated
    };
    std::vector<Part> parts{{use_.compiled->expression.get(), Base()}};
    while (!parts.empty()) {
      Part const part = std::move(parts.back());
      parts.pop_back();
      check(*part.expression, part.base);
      checkTruths(*part.expression, part.base);
      auto const operands = part.expression->operands();
      for (std::size_t i = operands.size(); i-- > 0;) {
        parts.push_back({operands[i], part.expression->operandBase(i, part.base)});
      }
    }
    auto const& whole = *use_.compiled->expression;
    if (use_.role == Role::Condition) checkTruth(whole, Base());
    checkOwner();
  }

 private:
  using TypePaths = LintContext::TypePaths;

  void check(Expression const& expression, Base const& base) {
    if (auto const* comparison = dynamic_cast<Comparison const*>(&expression)) {
      auto const op = comparison->op();
      bool const isEquality = op == Comparison::Operator::Equal || op == Comparison::Operator::NotEqual;
      checkSides(comparison->left(), comparison->right(), isEquality, base);
      checkSides(comparison->right(), comparison->left(), isEquality, base);
    } else if (auto const* membership = dynamic_cast<Membership const*>(&expression)) {
      checkMembership(*membership, base);
    } else if (auto const* call = dynamic_cast<FunctionCall const*>(&expression)) {
      checkCall(*call, base);
    } else if (auto const* arithmetic = dynamic_cast<Arithmetic const*>(&expression)) {
      checkDivision(*arithmetic);
    }
  }

  // Parameters as conditions

  /// The operands of an expression that are conditions.
  void checkTruths(Expression const& expression, Base const& base) {
    auto const operands = expression.operands();
    auto const checkOperand = [&](std::size_t i) { checkTruth(*operands[i], expression.operandBase(i, base)); };
    if (dynamic_cast<Logic const*>(&expression) != nullptr) {
      for (std::size_t i = 0; i < operands.size(); ++i) checkOperand(i);
    } else if (dynamic_cast<Choice const*>(&expression) != nullptr) {
      checkOperand(0);
    } else if (dynamic_cast<Quantifier const*>(&expression) != nullptr && operands.size() == 2) {
      checkOperand(1);
    }
  }

  /// A condition that is a parameter holds only for the texts of the logical value true.
  void checkTruth(Expression const& condition, Base const& base) {
    auto const* parameter = dynamic_cast<ParameterReference const*>(&withoutKept(condition));
    if (parameter == nullptr) return;
    auto const rules = rulesOf(*parameter, base);
    if (rules->all.empty()) return;
    auto const isTruth = [](std::string const& item) { return TDFParam::asLogical(item).has_value(); };
    for (auto const* def : rules->all) {
      if (TDFParam::elementType(def->type) == TDFParam::Logical) return;
      auto const* items = dynamic_cast<FixedList const*>(def->allowedValues.get());
      if (items != nullptr && std::any_of(items->items().begin(), items->items().end(), isTruth)) return;
    }
    auto const type = rules->all.front()->type;
    bool const isNumber = TDFParam::isNumericType(type) && !TDFParam::isListType(type);
    std::string const path(use_.text().substr(parameter->range().offset, parameter->range().length));
    context_.warn(Code::NotLogical, use_, parameter->range(),
                  inQuotes(parameter->name()) + " is of type " + std::string(TDFParam::typeName(type)) +
                      ", so as a condition it holds only when its value is " +
                      (isNumber ? "1; " : "true, yes, on or 1; ") +
                      (isNumber ? "compare it with a number: " + path + " != 0"
                                : "compare it with a text, or write exists(" + path + ")"));
  }

  // What something can be

  using Rules = std::shared_ptr<LintContext::RulesOfParameter const>;

  [[nodiscard]] Rules rulesOf(ParameterReference const& parameter, Base const& base) {
    return context_.rulesOf(use_, parameter.objectsFrom(base), parameter.name());
  }

  /// Whether an override, which counts as it is written, has an item for which `holds` is true. A computed one may.
  template <typename Holds>
  static bool mayOverride(ParamValueDef const& def, Holds holds) {
    return std::any_of(def.overrideChecks.begin(), def.overrideChecks.end(), [&](auto const& entry) {
      auto const text = constantTextOf(entry.value.get());
      if (!text) return true;
      auto const items = TDFParam::isListType(def.type) ? StringUtilities::stringToVector(*text, ',')
                                                        : std::vector<std::string>{*text};
      return std::any_of(items.begin(), items.end(), holds);
    });
  }

  /// Whether a rule keeps its parameter, or an item of it when it is of a list type, from having the value.
  Judgement judgeByRule(ParamValueDef const& def, Wanted const& wanted) {
    auto const isWanted = [&](std::string const& item) {
      auto const quantity = wanted.number ? TDFParam::asQuantity(item) : std::nullopt;
      return wanted.number ? quantity && quantity->number == *wanted.number : item == wanted.text;
    };
    if (mayOverride(def, isWanted)) return {};
    if (auto const* items = context_.writtenValues(def)) {
      if (def.unusedValues.contains(wanted.text)) return Impossible{{}, " is known but never allowed", {}};
      if (std::any_of(items->begin(), items->end(), isWanted)) return {};
      auto near = context_.hints().nearest(wanted.text, *items);
      auto remedy = orAllowed(near, *items);
      return Impossible{
          {}, " is not among its allowed values", std::move(near), std::move(remedy), LintContext::namedValues(def)};
    }
    if (def.allowedValueKind != ParamValueDef::NoAllowedValues) return {};
    switch (TDFParam::elementType(def.type)) {
      case TDFParam::Logical:
        if (TDFParam::asLogical(wanted.text)) return {};
        return Impossible{{}, " is not a logical value", {}};
      case TDFParam::Integer:
      case TDFParam::Real:
        return judgeNumber(def, wanted);
      default:
        return {};
    }
  }

  Judgement judgeNumber(ParamValueDef const& def, Wanted const& wanted) {
    auto const quantity = TDFParam::asQuantity(wanted.text);
    if (!wanted.number && !quantity) return Impossible{{}, " is not a number", {}};
    if (auto const* type = quantityTypeOf(def);
        !wanted.number && type != nullptr && !quantity->units.empty() && type->find(quantity->units) == nullptr) {
      return Impossible{{}, " has units that its quantity type does not list; it lists " + listedUnits(*type), {}};
    }
    bool const isWhole = !wanted.number || *wanted.number == std::trunc(*wanted.number);
    if (TDFParam::elementType(def.type) == TDFParam::Integer && !def.quantityType && !isWhole) {
      return Impossible{{}, " is not a whole number", {}};
    }
    return {};
  }

  /// The quantity type of a parameter, when it is written out.
  [[nodiscard]] QuantityType const* quantityTypeOf(ParamValueDef const& def) const {
    auto const* fixed = dynamic_cast<FixedText const*>(def.quantityType.get());
    return fixed != nullptr ? context_.data().findQuantityType(fixed->text()) : nullptr;
  }

  /// An absent parameter equals the empty text, so that is always possible.
  Judgement judgeParameter(ParameterReference const& parameter, Base const& base, Wanted const& wanted, bool asItem) {
    if (wanted.text.empty()) return {};
    Judgement result;
    auto const rules = rulesOf(parameter, base);
    for (auto const* def : rules->all) {
      bool const isList = TDFParam::isListType(def->type);
      if (isList && wanted.number) return {};
      // The text of a list is compared whole, and a single value is read as a list by dividing it at its commas.
      if (isList != asItem && (isList || wanted.text.find(',') == std::string::npos)) {
        if (!isList) {
          auto const* items = context_.writtenValues(*def);
          auto const divides = [](std::string const& item) { return item.find(',') != std::string::npos; };
          if (items != nullptr && std::any_of(items->begin(), items->end(), divides)) return {};
        } else if (!(result = judgeItems(*def, wanted))) {
          return {};
        } else {
          result->subject = "an item of the parameter " + inQuotes(parameter.name());
          continue;
        }
      }
      result = judgeByRule(*def, wanted);
      if (!result) return {};
      result->subject =
          (asItem && isList ? "an item of the parameter " : "the parameter ") + inQuotes(parameter.name());
    }
    return result;
  }

  /// The first item of a list, written as one text, that a rule keeps its parameter from having.
  Judgement judgeItems(ParamValueDef const& def, Wanted const& wanted) {
    for (auto const& item : StringUtilities::stringToVector(wanted.text, ',')) {
      if (auto result = judgeByRule(def, {item, {}})) {
        result->near.clear();  // it does not replace the whole text
        return result;
      }
    }
    return {};
  }

  /// The types of the objects that a set can hold; null when that is not known.
  TypePaths typesOf(Expression const& set, Base const& base) {
    auto const& bare = withoutKept(set);
    if (auto const* objects = dynamic_cast<ObjectSet const*>(&bare)) {
      return context_.resolve(use_, objects->objectsFrom(base));
    }
    if (dynamic_cast<Quantifier const*>(&bare) != nullptr) return typesOf(*bare.operands().front(), base);
    return nullptr;
  }

  /// Adds the names that the rules allow a child, also those that count only under a condition. False when not all are
  /// written out.
  static bool addPossibleNames(ChildAvail const& child, std::vector<std::string>& names) {
    if (auto const* list = dynamic_cast<FixedList const*>(child.allowedNamesSource.get())) {
      names.insert(names.end(), list->items().begin(), list->items().end());
      return true;
    }
    auto const* computed = dynamic_cast<CompiledNames const*>(child.allowedNamesSource.get());
    if (computed == nullptr) return false;
    if (auto const* guarded = dynamic_cast<GuardedList const*>(&withoutKept(computed->expression()))) {
      for (auto const& item : guarded->items()) {
        if (!readsNothing(*item.value)) return false;
        names.push_back(constantText(*item.value));
      }
      return true;
    }
    if (!readsNothing(computed->expression())) return false;
    auto const list = constantList(computed->expression());
    names.insert(names.end(), list.begin(), list.end());
    return true;
  }

  Judgement judgeName(TypePaths const& typePaths, std::string const& text) {
    if (typePaths == nullptr || typePaths->empty() || text.empty()) return {};
    std::vector<std::string> names;
    bool areSingletons = true;
    for (auto const& typePath : *typePaths) {
      auto const* parent = context_.data().getObjDependDef(std::string(PathUtils::parentOf(typePath)), true);
      std::string const type(PathUtils::lastType(typePath));
      auto const* child = parent != nullptr ? parent->findChild(type) : nullptr;
      if (child == nullptr) return {};
      if (child->singleton) {
        names.push_back(type);
        continue;
      }
      areSingletons = false;
      if (!addPossibleNames(*child, names)) return {};
    }
    if (std::find(names.begin(), names.end(), text) != names.end()) return {};
    auto near = context_.hints().nearest(text, names);
    auto remedy = orAllowed(near, names);
    return Impossible{"the name of the object",
                      areSingletons ? " is a singleton, whose name is its type" : " is not among the allowed names",
                      std::move(near), std::move(remedy)};
  }

  Judgement judgeType(TypePaths const& typePaths, std::string const& text) {
    if (typePaths == nullptr || typePaths->empty() || text.empty()) return {};
    std::set<std::string> types;
    for (auto const& typePath : *typePaths) types.emplace(PathUtils::lastType(typePath));
    if (types.contains(text)) return {};
    auto near = context_.hints().nearest(text, {types.begin(), types.end()});
    if (types.size() == 1) {
      return Impossible{"the type of the object", " is always " + inQuotes(*types.begin()), std::move(near), {}};
    }
    return Impossible{"the type of the object", " is not among the types that the path can name", std::move(near)};
  }

  /// Whether the text form of `expression` can be the value.
  Judgement judge(Expression const& expression, Base const& base, Wanted const& wanted) {
    auto const& bare = withoutKept(expression);
    if (auto const* parameter = dynamic_cast<ParameterReference const*>(&bare)) {
      return judgeParameter(*parameter, base, wanted, false);
    }
    auto const* call = dynamic_cast<FunctionCall const*>(&bare);
    if (call == nullptr || wanted.number) return {};
    auto const arguments = call->operands();
    auto const& name = call->function().name;
    auto const types = [&] {
      return arguments.empty() ? context_.resolve(use_, base.context) : typesOf(*arguments.front(), base);
    };
    if (name == "name") return judgeName(types(), wanted.text);
    if (name == "type") return judgeType(types(), wanted.text);
    if (name == "first") return wanted.text.empty() ? std::nullopt : judgeItem(*arguments.front(), base, wanted.text);
    if ((name == "lower" || name == "upper") && inLetters(name, wanted.text) != wanted.text) {
      return Impossible{"this text", name == "lower" ? " has no upper case letters" : " has no lower case letters",
                        inLetters(name, wanted.text)};
    }
    return {};
  }

  /// Whether an item of a list can be the text.
  Judgement judgeItem(Expression const& list, Base const& base, std::string const& text) {
    auto const& bare = withoutKept(list);
    if (auto const* parameter = dynamic_cast<ParameterReference const*>(&bare)) {
      return judgeParameter(*parameter, base, {text, {}}, true);
    }
    if (auto const* written = dynamic_cast<ListLiteral const*>(&bare)) {
      auto const& items = written->fixedItems();
      if (items.empty() || items.contains(text)) return {};
      return Impossible{"an item of this list", " is not among those that are written out",
                        context_.hints().nearest(text, items)};
    }
    if (auto const* named = dynamic_cast<NamedCall const*>(&bare)) {
      auto const* rule = named->rule().expression();
      auto const* written = rule != nullptr ? dynamic_cast<ListLiteral const*>(rule) : nullptr;
      return written != nullptr ? judgeItem(*written, base, text) : std::nullopt;
    }
    auto const* call = dynamic_cast<FunctionCall const*>(&bare);
    if (call == nullptr) return {};
    auto const arguments = call->operands();
    auto const& function = call->function();
    if (function.name == "values") {
      auto const* parameter = dynamic_cast<ParameterReference const*>(arguments.front());
      return parameter != nullptr ? judgeParameter(*parameter, base, {text, {}}, false) : std::nullopt;
    }
    if (function.name == "names") return judgeName(typesOf(*arguments.front(), base), text);
    Judgement result;
    for (std::size_t i = 0; i < arguments.size() && i < function.itemsFrom; ++i) {
      auto found = judgeItem(*arguments[i], base, text);
      if (!found) return {};
      if (!result) result = std::move(found);
    }
    return result;
  }

  // Reports

  void warnImpossible(Impossible const& found, std::string const& text, Range range, bool isLiteral) {
    auto& warning =
        context_.warn(Code::ImpossibleValue, use_, range,
                      found.subject + " can never be " + inQuotes(text) + ": it" + found.reason + found.remedy,
                      isLiteral ? textFix(range, text, found.near) : std::nullopt);
    if (found.list != nullptr) context_.setCauseIsList(warning, *found.list, text);
  }

  /// A fix that writes `near` instead of the text that the range covers with its quotes.
  [[nodiscard]] std::optional<Replacement> textFix(Range range, std::string const& text,
                                                   std::string const& near) const {
    if (near.empty()) return std::nullopt;
    char const quote = use_.text()[range.offset];
    std::string written(1, quote);
    for (char const c : near) written.append(c == quote ? 2 : 1, c);
    return Replacement{range, written + quote, "Replace " + inQuotes(text) + " by " + inQuotes(near)};
  }

  // Comparisons

  void checkSides(Expression const& one, Expression const& other, bool isEquality, Base const& base) {
    auto const* literal = dynamic_cast<Literal const*>(&other);
    auto const* parameter = dynamic_cast<ParameterReference const*>(&one);
    if (!isEquality) {
      if (parameter != nullptr && other.kind() == Kind::Number) checkOrder(*parameter, other, base);
      return;
    }
    if (literal == nullptr || literal->kind() == Kind::Truth) return;
    if (one.kind() == Kind::Number && literal->kind() == Kind::Text) {
      checkNumber(*literal);
      return;
    }
    Wanted wanted{literal->rawText(), {}};
    if (literal->kind() == Kind::Number) {
      wanted.number = constantNumber(*literal);
      wanted.text = numberText(*wanted.number);
    }
    if (auto const found = judge(one, base, wanted)) {
      warnImpossible(*found, wanted.text, literal->range(), !wanted.number);
    } else if (parameter != nullptr && !wanted.text.empty()) {
      checkForm(*parameter, wanted, *literal, base);
    }
  }

  /// A number that is compared with a text. A number that cannot be computed is the empty text.
  void checkNumber(Literal const& literal) {
    std::string const& text = literal.rawText();
    if (text.empty()) return;
    if (!TDFParam::asQuantity(text)) {
      context_.warn(Code::ImpossibleValue, use_, literal.range(),
                    "a number can never be " + inQuotes(text) + "; compare it with a number");
      return;
    }
    std::string const instead(StringUtilities::trimmed(text));
    context_.warn(Code::ComparedAsWritten, use_, literal.range(),
                  "this compares a number as text, so the same number written in another way is not equal; write " +
                      instead + " without quotes",
                  Replacement{literal.range(), instead, "Replace " + inQuotes(text) + " by " + instead});
  }

  /// The rules of a parameter when there are some, all are of one type and none limits the values; otherwise null.
  Rules freeRulesOf(ParameterReference const& parameter, Base const& base) {
    auto rules = rulesOf(parameter, base);
    return rules->areFree && !rules->all.empty() ? rules : nullptr;
  }

  /// Values that are equal as what they are, but not as they are written.
  void checkForm(ParameterReference const& parameter, Wanted const& wanted, Literal const& literal, Base const& base) {
    auto const rules = freeRulesOf(parameter, base);
    if (rules == nullptr) return;
    auto const type = rules->all.front()->type;
    auto const warn = [&](std::string const& message, std::string const& instead) {
      std::optional<Replacement> fix;
      if (!instead.empty()) {
        auto const written = use_.text().substr(literal.range().offset, literal.range().length);
        fix = Replacement{literal.range(), instead, "Replace " + std::string(written) + " by " + instead};
      }
      context_.warn(Code::ComparedAsWritten, use_, literal.range(), message, fix);
    };
    std::string const subject = "this compares the value of " + inQuotes(parameter.name());
    if (type == TDFParam::Logical) {
      auto const truth = TDFParam::asLogical(wanted.text);
      if (!truth) return;
      std::string const instead = *truth ? "true" : "false";
      warn(subject +
               (wanted.number ? " as a number, so 'true' is not equal to 1 and 'false' not to 0; write "
                              : " as text, so 'yes', 'on' and '1' are not equal to 'true'; write ") +
               instead + (wanted.number ? "" : " without quotes"),
           instead);
    } else if ((type == TDFParam::Real || type == TDFParam::Integer) && !wanted.number) {
      auto const quantity = TDFParam::asQuantity(wanted.text);
      if (!quantity || (type == TDFParam::Integer && quantity->units.empty())) return;
      bool const areListed =
          quantity->units.empty() || std::all_of(rules->all.begin(), rules->all.end(),
                                                 [&](auto const* def) { return quantityTypeOf(*def) != nullptr; });
      std::string const instead =
          areListed ? std::string(StringUtilities::trimmed(wanted.text)) : numberText(quantity->number);
      warn(subject + " as text, so the same " + (quantity->units.empty() ? "number" : "quantity") +
               " written in another way is not equal; write " + instead + " without quotes",
           instead);
    }
  }

  void checkOrder(ParameterReference const& parameter, Expression const& other, Base const& base) {
    auto const rules = rulesOf(parameter, base);
    if (rules->all.empty()) return;
    auto const isNumber = [](std::string const& item) { return TDFParam::asQuantity(item).has_value(); };
    bool const none = std::all_of(rules->all.begin(), rules->all.end(), [&](auto const* def) {
      auto const* items = TDFParam::isListType(def->type) ? nullptr : context_.writtenValues(*def);
      return items != nullptr && std::none_of(items->begin(), items->end(), isNumber) && !mayOverride(*def, isNumber);
    });
    if (none) {
      context_.warn(Code::ImpossibleValue, use_, parameter.range(),
                    "this comparison never holds: no allowed value of " + inQuotes(parameter.name()) + " is a number");
      return;
    }
    auto const free = freeRulesOf(parameter, base);
    if (free == nullptr || free->all.front()->type != TDFParam::Logical ||
        dynamic_cast<Literal const*>(&other) == nullptr) {
      return;
    }
    context_.warn(Code::ComparedAsWritten, use_, parameter.range(),
                  "this compares the value of " + inQuotes(parameter.name()) +
                      " as a number, which 'true' and 'false' are not; write it alone, or with 'not'");
  }

  void checkMembership(Membership const& membership, Base const& base) {
    auto const& items = withoutKept(membership.items());
    auto const& item = withoutKept(membership.item());
    if (auto const* text = writtenText(item)) {
      if (readsNothing(items)) return;
      if (auto const found = judgeItem(items, base, *text)) warnImpossible(*found, *text, item.range(), true);
      return;
    }
    if (auto const* list = dynamic_cast<ListLiteral const*>(&items)) {
      for (auto const& wanted : list->fixedItems()) {
        if (auto const found = judge(item, base, {wanted, {}})) warnImpossible(*found, wanted, list->range(), false);
      }
      checkFormInList(item, *list, base);
      return;
    }
    auto const* named = dynamic_cast<NamedCall const*>(&items);
    auto const* rule = named != nullptr ? named->rule().expression() : nullptr;
    auto const* list = rule != nullptr ? dynamic_cast<ListLiteral const*>(rule) : nullptr;
    if (list == nullptr || list->fixedItems().empty()) return;
    // A list that many rules share may hold more than one of them needs, but not only that.
    Judgement found;
    for (auto const& wanted : list->fixedItems()) {
      found = judge(item, base, {wanted, {}});
      if (!found) return;
    }
    context_.warn(Code::ImpossibleValue, use_, items.range(), found->subject + " can never be an item of this list");
  }

  void checkFormInList(Expression const& item, ListLiteral const& list, Base const& base) {
    auto const* parameter = dynamic_cast<ParameterReference const*>(&item);
    if (parameter == nullptr) return;
    auto const rules = freeRulesOf(*parameter, base);
    if (rules == nullptr) return;
    auto const type = rules->all.front()->type;
    if (type != TDFParam::Real && type != TDFParam::Integer) return;
    for (auto const& text : list.fixedItems()) {
      auto const quantity = TDFParam::asQuantity(text);
      if (!quantity || (type == TDFParam::Integer && quantity->units.empty())) continue;
      context_.warn(Code::ComparedAsWritten, use_, list.range(),
                    "'in' compares texts, so the same quantity written in another way is not in the list; compare " +
                        inQuotes(parameter->name()) + " with each number by '=='");
      return;
    }
  }

  void checkCall(FunctionCall const& call, Base const& base) {
    if (call.function().name == "mod") checkDivisor(*call.operands()[1]);
    checkParts(call, base);
  }

  /// `contains(x, 'text')` and its kin.
  void checkParts(FunctionCall const& call, Base const& base) {
    struct Row {
      std::string_view function;
      bool (*holds)(std::string_view text, std::string_view part);
      std::string_view verb;
    };
    static constexpr std::array<Row, 3> rows = {{
        {"contains",
         [](std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; },
         " can never contain "},
        {"starts_with", [](std::string_view text, std::string_view part) { return text.starts_with(part); },
         " can never begin with "},
        {"ends_with", [](std::string_view text, std::string_view part) { return text.ends_with(part); },
         " can never end with "},
    }};
    auto const row =
        std::find_if(rows.begin(), rows.end(), [&](Row const& one) { return one.function == call.function().name; });
    if (row == rows.end()) return;
    auto const arguments = call.operands();
    auto const* parameter = dynamic_cast<ParameterReference const*>(&withoutKept(*arguments[0]));
    auto const* part = writtenText(*arguments[1]);
    if (parameter == nullptr || part == nullptr || part->empty()) return;
    auto const rules = rulesOf(*parameter, base);
    bool const never = !rules->all.empty() && std::all_of(rules->all.begin(), rules->all.end(), [&](auto const* def) {
      auto const* items = context_.writtenValues(*def);
      // The text of a list has separators between its items.
      if (items == nullptr || (TDFParam::isListType(def->type) && part->find_first_of(", ") != std::string::npos))
        return false;
      auto const holds = [&](std::string const& item) { return row->holds(item, *part); };
      return std::none_of(items->begin(), items->end(), holds) && !mayOverride(*def, holds);
    });
    if (!never) return;
    context_.warn(Code::ImpossibleValue, use_, arguments[1]->range(),
                  "the parameter " + inQuotes(parameter->name()) + std::string(row->verb) + inQuotes(*part) +
                      ": none of its allowed values does");
  }

  void checkDivision(Arithmetic const& arithmetic) {
    auto const operands = arithmetic.operands();
    for (std::size_t i = 1; i < operands.size(); ++i) {
      if (arithmetic.isDivisor(i)) checkDivisor(*operands[i]);
    }
  }

  void checkDivisor(Expression const& divisor) {
    if (!readsNothing(divisor) || constantNumber(divisor) != 0) return;
    context_.warn(Code::DivisionByZero, use_, divisor.range(), "this divides by 0, so the result is never a number");
  }

  /// A global check is evaluated at the root of the model, which has neither a name nor parameters.
  void checkOwner() {
    if (!use_.typePath().empty() || use_.named != nullptr) return;
    std::vector<PathUse> paths;
    use_.compiled->expression->collectPaths(paths, PathPattern());
    for (auto const& path : paths) {
      // The paths inside a quantifier begin at the owner too when its set does.
      bool const isWritten = use_.text().substr(path.range.offset, path.range.length).find('@') < path.range.length;
      if (path.pattern.start() != PathPattern::Start::Owner || !isWritten) continue;
      context_.warn(Code::OwnerInGlobalCheck, use_, path.range,
                    "a global check belongs to no object, so '@' is the root of the model; write a path that begins "
                    "with '/', or move the check into the Checks of an object");
    }
  }

  LintContext& context_;
  ExpressionUse const& use_;
};

}  // namespace

void checkComparisons(LintContext& context, ExpressionUse const& use) {
  ComparisonLint(context, use).run();
}

}  // namespace tarn::rules
