// Checks of units. A review converts what it can and stays silent about the rest, so the rules must say what they mean.

#include "lint/UnitLint.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <tarn/QuantityType.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "expression/NamedRule.h"
#include "expression/Nodes.h"
#include "lint/ConstantExpression.h"
#include "lint/ValueLint.h"
#include "units/UnitLibrary.h"

namespace tarn::rules {

namespace {

std::string inBrackets(std::string_view units) {
  return "[" + std::string(units.substr(0, 60)) + "]";
}

/// A converted number, without the digits in which a conversion rounds.
std::string shortNumber(double number) {
  std::array<char, 40> buffer{};
  auto const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::general, 12).ptr;
  return {buffer.data(), end};
}

// Quantity types

/// The reasons why units of a type have no conversion, each with the units that it concerns.
class MissingConversions {
 public:
  void add(UnitConversion::Status status, std::string const& units) {
    auto& list = status == UnitConversion::Status::UnknownFrom ? unknown_
                 : status == UnitConversion::Status::Different ? different_
                                                               : notLinear_;
    list += (list.empty() ? "" : ", ") + inBrackets(units);
  }

  [[nodiscard]] std::string text(std::string const& first) const {
    std::string result;
    auto const part = [&](std::string const& units, std::string const& before, std::string const& after) {
      if (units.empty()) return;
      result += (result.empty() ? "" : "; ") + before + units + after;
    };
    part(unknown_, "the units library does not know ", "");
    part(different_, "", " cannot be converted to " + first + ", because it measures something else");
    part(notLinear_, "", " cannot be converted to " + first + " by a factor and an offset");
    return result +
           "; without a conversion a number counts as it stands, so correct the units or write a map of unit "
           "to factor";
  }

 private:
  std::string unknown_;
  std::string different_;
  std::string notLinear_;
};

void checkConversions(LintContext& context, Item const& name, Item const& units) {
  auto const* type = context.data().findQuantityType(name.node->value);
  if (type == nullptr || units.node->kind != YamlNode::Kind::Sequence) return;
  checkTwice(context, units);
  auto const& first = type->units().front();
  MissingConversions missing;
  YamlNode const* place = nullptr;
  for (std::size_t i = 1; i < type->units().size(); ++i) {
    auto const& unit = type->units()[i];
    if (unit.isConvertible) continue;
    auto const status = conversionBetween(unit.text, first.text).status;
    if (status == UnitConversion::Status::UnknownTo) {
      context.warn(
          Code::NoConversion, {units.source, units.node->children.front()},
          "the units library does not know the first unit " + inBrackets(first.text) +
              ", so no unit of this type can be converted to it; correct it, or write a map of unit to factor");
      return;
    }
    missing.add(status, unit.text);
    if (place == nullptr) place = units.node->children[i];
  }
  if (place != nullptr) {
    context.warn(Code::NoConversion, {units.source, place}, missing.text(inBrackets(first.text)));
  }
}

// The units of what is written for a parameter

/// A parameter with a fixed quantity type, and the name of that.
struct Target {
  QuantityType const* type = nullptr;
  std::string name;
};

Target targetOf(LintContext const& context, ParamValueDef const* def) {
  auto const* fixed = def != nullptr ? dynamic_cast<FixedText const*>(def->quantityType.get()) : nullptr;
  if (fixed == nullptr || !TDFParam::isNumericType(def->type)) return {};
  return {context.data().findQuantityType(fixed->text()), fixed->text()};
}

/// The sentence about units that the type does not list, with what to write instead where that is known.
std::string notListed(Target const& target, std::string_view units, std::string const& instead) {
  std::string message = "the quantity type " + inQuotes(target.name) + " does not list the units " + inBrackets(units) +
                        "; it lists " + listedUnits(*target.type);
  if (!instead.empty()) message += "; write " + instead;
  return message;
}

/// The same quantity in the first unit of the type. Empty when the conversion is not known.
std::string inFirstUnit(QuantityType const& type, TDFParam::Quantity const& quantity) {
  auto const conversion = conversionBetween(quantity.units, type.firstUnit());
  if (conversion.status != UnitConversion::Status::Known) return {};
  return shortNumber(quantity.number * conversion.factor + conversion.offset) + " " + inBrackets(type.firstUnit());
}

class FixedTexts {
 public:
  FixedTexts(LintContext& context, Target target, bool isList)
      : context_(context), target_(std::move(target)), isList_(isList) {}

  void checkBound(Item const& item) {
    if (!isFixed(item)) return;
    std::string const& text = item.node->value;
    auto const quantity = TDFParam::asQuantity(text);
    if (!quantity) return;
    if (!quantity->units.empty() || target_.type->find("") != nullptr) {
      checkUnits(item, text);
      return;
    }
    std::string const first = inBrackets(target_.type->firstUnit());
    auto& note = context_.warn(Code::BoundWithoutUnits, item,
                               "the bound " + text.substr(0, 60) + " has no units, so it counts in " + first +
                                   ", the first unit of " + inQuotes(target_.name));
    LintContext::fixText(note, item, text, text + " " + first);
  }

  void checkValue(Item const& item) {
    if (!isFixed(item)) return;
    std::string const& text = item.node->value;
    if (!isList_) {
      checkUnits(item, text);
      return;
    }
    for (auto const& part : StringUtilities::stringToVector(text, ',')) checkUnits(item, part);
  }

  /// The values of a list of `{When, Value}`.
  void checkGuarded(Item const& list) {
    if (!list || list.node->kind != YamlNode::Kind::Sequence) return;
    for (auto const* entry : list.node->children) {
      for (std::size_t i = 0; entry->kind == YamlNode::Kind::Mapping && i + 1 < entry->children.size(); i += 2) {
        if (entry->children[i]->value == "Value") checkValue({list.source, entry->children[i + 1]});
      }
    }
  }

 private:
  [[nodiscard]] static bool isFixed(Item const& item) {
    return item && item.node->kind == YamlNode::Kind::Scalar && !item.node->value.starts_with('=');
  }

  void checkUnits(Item const& item, std::string_view text) {
    auto const quantity = TDFParam::asQuantity(text);
    if (!quantity || quantity->units.empty() || target_.type->find(quantity->units) != nullptr) return;
    std::string const instead = inFirstUnit(*target_.type, *quantity);
    auto& error = context_.warn(Code::UnitsNotListed, item, notListed(target_, quantity->units, instead));
    if (text == item.node->value) LintContext::fixText(error, item, text, instead);
  }

  LintContext& context_;
  Target target_;
  bool isList_;
};

// Quantities in expressions

/// Finds the quantity types of the parts of one expression. It knows which objects a path can name, so it knows more
/// than the evaluation, which goes by the names of parameters.
class QuantityFinder {
 public:
  QuantityFinder(LintContext& context, ExpressionUse const& use) : context_(context), use_(use) {}

  /// The type of the number that the expression gives; null when it has none or it is not known.
  [[nodiscard]] QuantityType const* of(Expression const& expression, Base const& base) {
    if (auto const* parameter = dynamic_cast<ParameterReference const*>(&expression)) {
      return ofParameter(parameter->objectsFrom(base), parameter->name());
    }
    auto const parts = expression.operands();
    if (dynamic_cast<Negation const*>(&expression) != nullptr || dynamic_cast<Kept const*>(&expression) != nullptr) {
      return of(*parts[0], base);
    }
    if (dynamic_cast<Choice const*>(&expression) != nullptr) return common(expression, 1, 3, base);
    auto const* arithmetic = dynamic_cast<Arithmetic const*>(&expression);
    if (arithmetic != nullptr && arithmetic->isSum() && arithmetic->kind() == Kind::Number) {
      return common(expression, 0, arithmetic->numericTerms(), base);
    }
    return expression.quantity();
  }

  [[nodiscard]] std::string const& nameOf(QuantityType const& type) const {
    auto const& all = context_.data().quantityTypes();
    return std::find_if(all.begin(), all.end(), [&](auto const& entry) { return &entry.second == &type; })->first;
  }

  /// Warns of all comparisons and sums of different types in the expression.
  void check(Expression const& expression, Base const& base) {
    if (dynamic_cast<Comparison const*>(&expression) != nullptr) {
      checkAlike(expression, 0, 2, base, "compares");
    } else if (auto const* arithmetic = dynamic_cast<Arithmetic const*>(&expression);
               arithmetic != nullptr && arithmetic->isSum()) {
      checkAlike(expression, 0, arithmetic->numericTerms(), base, "adds");
    }
    auto const parts = expression.operands();
    for (std::size_t i = 0; i < parts.size(); ++i) check(*parts[i], expression.operandBase(i, base));
  }

 private:
  QuantityType const* ofParameter(PathPattern const& objects, std::string const& name) {
    QuantityType const* result = nullptr;
    auto const rules = context_.rulesOf(use_, objects, name);
    for (auto const* def : rules->all) {
      auto const* type = targetOf(context_, def).type;
      if (type == nullptr || (result != nullptr && result != type)) return nullptr;
      result = type;
    }
    return result;
  }

  /// The type of those operands that have one; null when they differ.
  QuantityType const* common(Expression const& expression, std::size_t from, std::size_t to, Base const& base) {
    auto const parts = expression.operands();
    QuantityType const* result = nullptr;
    for (std::size_t i = from; i < to; ++i) {
      auto const* type = of(*parts[i], expression.operandBase(i, base));
      if (type == nullptr) continue;
      if (result != nullptr && result != type) return nullptr;
      result = type;
    }
    return result;
  }

  void checkAlike(Expression const& expression, std::size_t from, std::size_t to, Base const& base,
                  std::string_view verb) {
    auto const parts = expression.operands();
    QuantityType const* first = nullptr;
    for (std::size_t i = from; i < to; ++i) {
      auto const* type = of(*parts[i], expression.operandBase(i, base));
      if (type == nullptr) continue;
      if (first != nullptr && first != type) {
        context_.warn(Code::DifferentQuantities, use_, expression.range(),
                      "this " + std::string(verb) + " quantities of different types: " + inQuotes(nameOf(*first)) +
                          " and " + inQuotes(nameOf(*type)));
        return;
      }
      first = type;
    }
  }

  LintContext& context_;
  ExpressionUse const& use_;
};

/// Checks what the text of an expression ends in, for a parameter with a quantity type: units that are written out, and
/// parameters of another type.
class ResultCheck {
 public:
  ResultCheck(LintContext& context, ExpressionUse const& use, Target target)
      : context_(context), use_(use), target_(std::move(target)), finder_(context, use) {}

  void check(Expression const& expression) {
    auto const parts = expression.operands();
    if (dynamic_cast<Kept const*>(&expression) != nullptr) {
      check(*parts[0]);
    } else if (dynamic_cast<Choice const*>(&expression) != nullptr) {
      check(*parts[1]);
      check(*parts[2]);
    } else if (auto const* literal = dynamic_cast<Literal const*>(&expression)) {
      if (literal->kind() == Kind::Text) checkEnd(literal->rawText(), expression.range());
    } else if (auto const* quantity = dynamic_cast<QuantityLiteral const*>(&expression)) {
      checkEnd("[" + quantity->units() + "]", expression.range());
    } else if (dynamic_cast<Arithmetic const*>(&expression) != nullptr && expression.kind() == Kind::Text) {
      check(*parts.back());
    } else if (dynamic_cast<NamedCall const*>(&expression) != nullptr && readsNothing(expression)) {
      checkEnd(constantText(expression), expression.range());
    } else if (auto const* type = finder_.of(expression, PathPattern()); type != nullptr && type != target_.type) {
      context_.warn(Code::DifferentQuantities, use_, expression.range(),
                    "this is a quantity of the type " + inQuotes(finder_.nameOf(*type)) + ", but the parameter is of " +
                        inQuotes(target_.name));
    }
  }

 private:
  void checkEnd(std::string_view text, Range range) {
    text = StringUtilities::trimmed(text);
    std::size_t const bracket = text.rfind('[');
    if (!text.ends_with(']') || bracket == std::string_view::npos) return;
    auto const units = text.substr(bracket + 1, text.size() - bracket - 2);
    if (target_.type->find(units) != nullptr) return;
    std::string instead;
    for (auto const& unit : target_.type->units()) {
      auto const conversion = conversionBetween(units, unit.text);
      bool const isSame =
          conversion.status == UnitConversion::Status::Known && conversion.factor == 1 && conversion.offset == 0;
      if (isSame) instead = inBrackets(unit.text);
    }
    context_.warn(Code::UnitsNotListed, use_, range, notListed(target_, units, instead));
  }

  LintContext& context_;
  ExpressionUse const& use_;
  Target target_;
  QuantityFinder finder_;
};

/// The bound of a number that has no quantity type. A number without units is compared with bounds without units only.
class PlainBoundCheck {
 public:
  PlainBoundCheck(LintContext& context, ExpressionUse const& use) : context_(context), use_(use) {}

  void check(Expression const& expression) {
    auto const parts = expression.operands();
    if (dynamic_cast<Kept const*>(&expression) != nullptr) {
      check(*parts[0]);
    } else if (dynamic_cast<Choice const*>(&expression) != nullptr) {
      check(*parts[1]);
      check(*parts[2]);
    } else if (auto const* quantity = dynamic_cast<QuantityLiteral const*>(&expression)) {
      warn(expression, quantity->units());
    } else if (auto const* parameter = dynamic_cast<ParameterReference const*>(&expression)) {
      checkParameter(*parameter);
    } else if (dynamic_cast<Arithmetic const*>(&expression) != nullptr && expression.kind() == Kind::Text) {
      check(*parts.back());
    } else if (readsNothing(expression)) {
      std::string const whole = constantText(expression);
      std::string_view const text = StringUtilities::trimmed(whole);
      auto const bracket = text.rfind('[');
      if (text.ends_with(']') && bracket != std::string_view::npos) {
        warn(expression, text.substr(bracket + 1, text.size() - bracket - 2));
      }
    }
  }

 private:
  void checkParameter(ParameterReference const& parameter) {
    auto const rules = context_.rulesOf(use_, parameter.objectsFrom(PathPattern()), parameter.name());
    for (auto const* def : rules->all) {
      auto const target = targetOf(context_, def);
      // A number without units, and a type with numbers without units, can be meant.
      if (target.type == nullptr || target.type->find("") != nullptr) return;
    }
    if (rules->all.empty()) return;
    auto const target = targetOf(context_, rules->all.front());
    report(parameter, inQuotes(parameter.name()) + " is a quantity of the type " + inQuotes(target.name));
  }

  void warn(Expression const& expression, std::string_view units) {
    if (!units.empty()) report(expression, "the bound has the units " + inBrackets(units));
  }

  void report(Expression const& expression, std::string const& why) {
    context_.warn(Code::DifferentQuantities, use_, expression.range(),
                  why + ", but " + inQuotes(use_.entry()) +
                      " has no quantity type, so a number without units is not compared with this bound; give it a "
                      "Quantity Type, or write number(...)");
  }

  LintContext& context_;
  ExpressionUse const& use_;
};

bool isBound(ExpressionUse const& use) {
  return use.attribute == "Lower Bound" || use.attribute == "Upper Bound";
}

bool givesAValue(ExpressionUse const& use) {
  static std::set<std::string_view> const attributes = {"Lower Bound", "Upper Bound", "Default Value",
                                                        "Default Value Check List", "Value Override Check List"};
  return use.kind == EntryKind::Parameter && use.role == Role::Text && attributes.contains(use.attribute);
}

}  // namespace

void checkUnits(LintContext& context) {
  for (auto const& [name, units] : context.rules().quantityTypePlaces()) checkConversions(context, name, units);
  if (context.data().quantityTypes().empty()) return;
  for (auto const* object : context.data().objects()) {
    auto const& places = context.rules().objectPlaces().at(object->typePath()).params;
    for (std::size_t i = 0; i < places.size(); ++i) {
      auto const* def = object->params()[i]->valueDef();
      auto const target = targetOf(context, def);
      if (target.type == nullptr) continue;
      auto const& place = places[i];
      context.setTaken(place.taken);
      auto const at = [&](std::string_view attribute) { return place.attribute(attribute); };
      FixedTexts texts(context, target, TDFParam::isListType(def->type));
      texts.checkBound(at("Lower Bound"));
      texts.checkBound(at("Upper Bound"));
      texts.checkValue(at("Default Value"));
      texts.checkGuarded(at("Default Value Check List"));
      texts.checkGuarded(at("Value Override Check List"));
    }
  }
  context.setTaken({});
}

void checkQuantities(LintContext& context, ExpressionUse const& use) {
  if (context.data().quantityTypes().empty()) return;
  auto const& expression = *use.compiled->expression;
  QuantityFinder(context, use).check(expression, PathPattern());
  if (!givesAValue(use)) return;
  auto const* def = context.data().getParamValueDef(use.typePath(), use.entry(), true);
  auto const target = targetOf(context, def);
  if (target.type != nullptr) {
    ResultCheck(context, use, target).check(expression);
  } else if (isBound(use) && def != nullptr && def->quantityType == nullptr && TDFParam::isNumericType(def->type)) {
    PlainBoundCheck(context, use).check(expression);
  }
}

}  // namespace tarn::rules
