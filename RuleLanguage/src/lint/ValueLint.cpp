// Values that are written out for a parameter. Evaluation takes any text: a default that is not allowed is replaced,
// and a number that cannot be read counts as none. So mistakes are seen only here.

#include "lint/ValueLint.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/QuantityType.h>
#include <tarn/StringUtilities.h>
#include <tarn/rules/RuleFunction.h>

#include "expression/Nodes.h"
#include "lint/ConstantExpression.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

namespace {

/// A kind of value, and the codes of what can be wrong with it.
struct ValueKind {
  std::string_view noun;
  Code notAllowed;
  Code wrongType;
  Code outOfBounds;
};
constexpr ValueKind defaults = {"default", Code::DefaultNotAllowed, Code::DefaultOfWrongType, Code::DefaultOutOfBounds};
constexpr ValueKind overrides = {"override", Code::OverrideNotAllowed, Code::OverrideOfWrongType,
                                 Code::OverrideOutOfBounds};

/// The fault of a value.
struct Fault {
  Code code;
  std::string message;
  std::string instead;  // the right value, where it is known
};

constexpr std::string_view sign = "${";
constexpr char const* noValue = "; to give no value, leave the key out";

/// Whether a text without parameters is an expression: a call of one function, or texts in quotes that are joined.
bool isCallOrJoin(std::string_view text) {
  text = StringUtilities::trimmed(text);
  if (text.size() > 2 && (text.front() == '\'' || text.front() == '"')) {
    std::string const join = std::string(1, text.front()) + " + ";
    return text.find(join) != std::string_view::npos;
  }
  auto const end = text.find('(');
  if (end == std::string_view::npos || !text.ends_with(')')) return false;
  auto const& functions = ruleFunctions();
  return std::any_of(functions.begin(), functions.end(),
                     [&](RuleFunction const& function) { return function.name == text.substr(0, end); });
}

bool looksComputed(std::string_view text) {
  if (text.starts_with('=')) return false;
  auto const begin = text.find(sign);
  bool const hasParameter = begin != std::string_view::npos && text.find('}', begin) != std::string_view::npos;
  return hasParameter || isCallOrJoin(text);
}

/// The expression that a text with parameters in it was probably meant to be. An operator after the first parameter
/// shows that all of it is an expression. Otherwise the parameters are in a text.
std::string asExpression(std::string_view text) {
  text = StringUtilities::trimmed(text);
  if (isCallOrJoin(text)) return std::string(text);
  auto const after = StringUtilities::trimmed(text.substr(text.find('}') + 1));
  if (text.starts_with(sign) &&
      (after.empty() || std::string_view("+-*/").find(after.front()) != std::string_view::npos)) {
    return std::string(text);
  }
  std::string result;
  auto const add = [&](std::string_view part) { result.append(result.empty() ? "" : " + ").append(part); };
  while (!text.empty()) {
    std::size_t const begin = std::min(text.find(sign), text.size());
    std::string quoted = "'";
    for (char const c : text.substr(0, begin)) quoted.append(c == '\'' ? 2 : 1, c);
    if (begin > 0) add(quoted + "'");
    std::size_t const end = std::min(text.find('}', begin), text.size() - 1);
    if (begin < text.size()) add(text.substr(begin, end + 1 - begin));
    text.remove_prefix(std::min(text.size(), begin < text.size() ? end + 1 : begin));
  }
  return result;
}

/// A text that other formats read as the absence of a value.
bool isNull(std::string_view text) {
  static constexpr std::array<std::string_view, 4> nulls = {"null", "Null", "NULL", "~"};
  return std::find(nulls.begin(), nulls.end(), text) != nulls.end();
}

class ValueLint {
 public:
  ValueLint(LintContext& context, ParamValueDef const& def)
      : context_(context), def_(def), allowed_(context.writtenValues(def)) {}

  void checkEntry(EntryPlace const& place) {
    auto const at = [&](std::string_view attribute) { return place.attribute(attribute); };
    checkText(defaults, at("Default Value"));
    checkGuarded(defaults, at("Default Value Check List"));
    checkGuarded(overrides, at("Value Override Check List"));
    if (auto const list = at("Ordered Allowed String List")) checkAllowed(list);
    if (auto const list = at("Subset Allowed String List")) checkSubset(list);
    if (auto const list = at("Unused Allowed String List")) {
      checkTwice(list);
      checkUnused(list);
    }
  }

  /// A required parameter that begins without a value.
  void checkRequired(Item const& required) {
    bool const isGiven = def_.hasDefault() || def_.hasValueOverride();
    if (isGiven || def_.allowedValues != nullptr || TDFParam::elementType(def_.type) == TDFParam::Logical) return;
    context_.warn(
        Code::RequiredWithoutValue, required,
        "this parameter is required, but begins without a value; add a Default Value, or leave it to the user");
  }

  /// The fault of each text that the expression gives unchanged.
  void checkResult(ValueKind const& kind, ExpressionUse const& use, Expression const& expression) {
    auto const parts = expression.operands();
    if (dynamic_cast<Kept const*>(&expression) != nullptr) {
      checkResult(kind, use, *parts[0]);
    } else if (dynamic_cast<Choice const*>(&expression) != nullptr) {
      checkResult(kind, use, *parts[1]);
      checkResult(kind, use, *parts[2]);
    } else if (isWrittenOut(expression)) {
      auto const* literal = dynamic_cast<Literal const*>(&expression);
      std::string const text =
          literal != nullptr && literal->kind() == Kind::Text ? literal->rawText() : constantText(expression);
      if (text.empty()) return;
      for (auto const& value : itemsOf(text)) {
        auto const fault = faultOf(kind, value);
        if (!fault) continue;
        auto& warning = context_.warn(fault->code, use, expression.range(), fault->message);
        setCause(warning, kind, *fault, value);
      }
    } else if (dynamic_cast<Arithmetic const*>(&expression) != nullptr && expression.kind() == Kind::Text) {
      checkEnd(kind, use, *parts.back());
    }
  }

  /// The items of a list of allowed values that is written out in an expression or named by it.
  void checkListed(ExpressionUse const& use, Expression const& list) {
    if (allowed_ == nullptr) return;
    auto const* named = LintContext::namedValues(def_);
    // Items of a shared list are reported where they are written, once for all that use it.
    if (named != nullptr && context_.isKnownAsSound(*named, TDFParam::elementType(def_.type))) return;
    for (auto const& item : *allowed_) {
      auto const fault = typeFault("allowed value", Code::AllowedValueOfWrongType, item);
      if (!fault) continue;
      auto const place = named != nullptr ? context_.placeInList(*named, item) : Item{};
      if (place) {
        context_.warnWithUse(fault->code, place, fault->message, use, list.range());
      } else {
        context_.warn(fault->code, use, list.range(), fault->message);
      }
      return;
    }
    if (named != nullptr) {
      context_.setSound(*named, TDFParam::elementType(def_.type));
      return;
    }
    std::unordered_set<std::string_view> seen;
    seen.reserve(allowed_->size());
    for (auto const& item : *allowed_) {
      if (seen.insert(item).second) continue;
      context_.warn(Code::DuplicateValue, use, list.range(), twice(item));
      return;
    }
  }

  /// The items of a list in a file that are written twice.
  static void checkTwice(LintContext& context, Item const& list) {
    if (list.node->kind != YamlNode::Kind::Sequence) return;
    std::unordered_map<std::string_view, YamlNode const*> seen;
    seen.reserve(list.node->children.size());
    for (auto const* item : list.node->children) {
      if (item->kind != YamlNode::Kind::Scalar) continue;
      auto const [former, isNew] = seen.try_emplace(item->value, item);
      if (isNew) continue;
      auto& warning = context.warn(Code::DuplicateValue, {list.source, item}, twice(item->value));
      DiagnosticList::note(warning, *list.source, former->second->range(), "the first one is here");
    }
  }

  static void checkLooks(LintContext& context, Item const& item, bool isInList) {
    std::string_view const text = item.node->value;
    if (!looksComputed(text)) return;
    if (isInList) {
      context.warn(Code::TextLooksComputed, item,
                   "this item is the text " + inQuotes(text.substr(0, 60)) +
                       ", not a value of the model; a list with computed items is an expression: (" +
                       asExpression(text) + ", 'text')");
      return;
    }
    std::string const expression = "= " + asExpression(text);
    auto& warning = context.warn(
        Code::TextLooksComputed, item,
        "this is the text " + inQuotes(text.substr(0, 60)) + ", not a value of the model" + computedRemedy(text));
    LintContext::fixText(warning, item, text, expression);
  }

 private:
  /// Whether an expression is one value, or the name of one. A value that is computed from several can have other
  /// mistakes.
  [[nodiscard]] static bool isWrittenOut(Expression const& expression) {
    bool const isValue = dynamic_cast<Literal const*>(&expression) != nullptr ||
                         dynamic_cast<QuantityLiteral const*>(&expression) != nullptr ||
                         dynamic_cast<NamedCall const*>(&expression) != nullptr;
    return isValue && readsNothing(expression);
  }

  [[nodiscard]] static std::string twice(std::string_view item) {
    return inQuotes(item) + " is in the list twice; remove one of the two";
  }

  void checkTwice(Item const& list) { checkTwice(context_, list); }

  /// A scalar that is not an expression.
  [[nodiscard]] static bool isText(Item const& item) {
    return item && item.node->kind == YamlNode::Kind::Scalar && !item.node->value.starts_with('=');
  }

  [[nodiscard]] std::vector<std::string> itemsOf(std::string const& text) const {
    return TDFParam::isListType(def_.type) ? StringUtilities::stringToVector(text, ',')
                                           : std::vector<std::string>{text};
  }

  void checkText(ValueKind const& kind, Item const& item) {
    if (!isText(item) || item.node->value.empty()) return;
    std::string const& text = item.node->value;
    if (isText(item) && TDFParam::elementType(def_.type) == TDFParam::String && looksComputed(text) &&
        (allowed_ == nullptr || !allowed_->contains(text))) {
      checkLooks(context_, item, false);
      return;
    }
    if (checkNull(item) || checkQuoted(item)) return;
    checkWritable(kind.noun, item);
    for (auto const& value : itemsOf(text)) {
      auto const fault = faultOf(kind, value);
      if (!fault) continue;
      auto& warning = context_.warn(fault->code, item, fault->message);
      LintContext::fixText(warning, item, value, fault->instead);
      setCause(warning, kind, *fault, value);
    }
  }

  /// A value that a shared list lacks may be missing there.
  void setCause(Diagnostic& warning, ValueKind const& kind, Fault const& fault, std::string const& value) {
    auto const* list = fault.code == kind.notAllowed ? LintContext::namedValues(def_) : nullptr;
    if (list != nullptr) context_.setCauseIsList(warning, *list, value);
  }

  /// The values of a list of `{When, Value}`.
  void checkGuarded(ValueKind const& kind, Item const& list) {
    if (!list || list.node->kind != YamlNode::Kind::Sequence) return;
    for (auto const* entry : list.node->children) {
      for (std::size_t i = 0; entry->kind == YamlNode::Kind::Mapping && i + 1 < entry->children.size(); i += 2) {
        if (entry->children[i]->value == "Value") checkText(kind, {list.source, entry->children[i + 1]});
      }
    }
  }

  /// True when the text of a parameter is, without quotes, the word of another format for no value.
  bool checkNull(Item const& item) {
    bool const isPlain = item.node->style == YamlNode::Style::Plain;
    if (!isPlain || !isNull(item.node->value) || TDFParam::elementType(def_.type) != TDFParam::String) return false;
    if (allowed_ != nullptr && allowed_->contains(item.node->value)) return false;
    context_.warn(Code::NullAsText, item,
                  "this is the text " + inQuotes(item.node->value) + noValue + ", or put the text in quotes");
    return true;
  }

  /// True when the text of a parameter is in quotes that belong to it, as in `"'text'"`.
  bool checkQuoted(Item const& item) {
    std::string_view const text = item.node->value;
    bool const isQuoted =
        text.size() > 1 && text.front() == text.back() && (text.front() == '\'' || text.front() == '"');
    if (!isQuoted || (allowed_ != nullptr && allowed_->contains(item.node->value))) return false;
    auto const inside = text.substr(1, text.size() - 2);
    if (inside.find(text.front()) != std::string_view::npos) return false;
    auto& warning = context_.warn(Code::TextLooksComputed, item,
                                  "the quotes are part of this text; leave them out, as only expressions need them: " +
                                      std::string(inside.substr(0, 60)));
    if (!inside.empty()) LintContext::fixText(warning, item, text, inside);
    return true;
  }

  /// A value is written in one line of a model, and is read without the white space at its ends.
  void checkWritable(std::string_view noun, Item const& item) {
    std::string_view const text = item.node->value;
    auto const trimmed = StringUtilities::trimmed(text);
    bool const hasLineEnd = trimmed.find_first_of("\n\r") != std::string_view::npos;
    if (text.size() == trimmed.size() && !hasLineEnd) return;
    context_.warn(Code::UnwritableValue, item,
                  "model text cannot hold this " + std::string(noun) +
                      (hasLineEnd ? ", because it is of several lines; write it in one line"
                                  : ", because it has white space at its ends; leave that out"));
  }

  /// The end of a text that is computed for a parameter with numbers.
  void checkEnd(ValueKind const& kind, ExpressionUse const& use, Expression const& end) {
    auto const* literal = dynamic_cast<Literal const*>(&end);
    auto const element = TDFParam::elementType(def_.type);
    bool const isNumeric = element == TDFParam::Integer || element == TDFParam::Real;
    if (literal == nullptr || literal->kind() != Kind::Text || !isNumeric || allowed_ != nullptr || isOpen()) return;
    auto const text = StringUtilities::trimmed(literal->rawText());
    if (text.empty() || text.back() == ']' || (text.back() >= '0' && text.back() <= '9') || text.back() == '.') return;
    context_.warn(kind.wrongType, use, end.range(),
                  "this " + std::string(kind.noun) + " ends in " + inQuotes(text) +
                      ", so it is never a number; units are written in brackets: ' [" + std::string(text) + "]'");
  }

  /// Allowed values that are computed, or advice only, may hold what is no number.
  [[nodiscard]] bool isOpen() const {
    return def_.allowedValueKind != ParamValueDef::NoAllowedValues && allowed_ == nullptr && !def_.allowsAnyValue;
  }

  std::optional<Fault> faultOf(ValueKind const& kind, std::string const& value) {
    if (allowed_ != nullptr) {
      // A value that is also among the unused ones is reported there.
      if (allowed_->contains(value)) return std::nullopt;
      auto near = context_.hints().nearest(value, *allowed_);
      std::string message = "the " + std::string(kind.noun) + " " + inQuotes(value) +
                            " is not among the allowed values" +
                            (TDFParam::isListType(def_.type) && value.find(';') != std::string::npos
                                 ? "; the items of a list are divided by commas"
                                 : orAllowed(near, *allowed_));
      return Fault{kind.notAllowed, std::move(message), std::move(near)};
    }
    auto const* advice = dynamic_cast<FixedList const*>(def_.allowedValues.get());
    if (isOpen() || (advice != nullptr && advice->items().contains(value))) return std::nullopt;
    if (auto fault = typeFault(kind.noun, kind.wrongType, value)) return fault;
    return boundFault(kind, value);
  }

  [[nodiscard]] std::optional<Fault> typeFault(std::string_view noun, Code code, std::string const& value) const {
    auto const subject = [&] { return "the " + std::string(noun) + " " + inQuotes(value) + " is not "; };
    switch (TDFParam::elementType(def_.type)) {
      case TDFParam::Logical:
        if (TDFParam::asLogical(value)) return std::nullopt;
        return Fault{code, subject() + "a logical value; write true or false", {}};
      case TDFParam::Integer: {
        auto const quantity = TDFParam::asQuantity(value);
        if (quantity && quantity->number == std::trunc(quantity->number)) return std::nullopt;
        return Fault{
            code,
            subject() + "a whole number" + (quantity ? "; write one, or make the parameter a Real" : remedyFor(value)),
            {}};
      }
      case TDFParam::Real:
        if (TDFParam::asQuantity(value)) return std::nullopt;
        return Fault{code, subject() + "a number" + remedyFor(value), {}};
      default:
        return std::nullopt;
    }
  }

  [[nodiscard]] std::string remedyFor(std::string const& value) const {
    return numberRemedy(context_.data(), def_, value);
  }

  [[nodiscard]] std::optional<Fault> boundFault(ValueKind const& kind, std::string const& value) const {
    auto const element = TDFParam::elementType(def_.type);
    auto const quantity = TDFParam::asQuantity(value);
    if (!quantity || (element != TDFParam::Integer && element != TDFParam::Real)) return std::nullopt;
    // Between reversed bounds there is no value; the bounds are reported.
    if (areReversed()) return std::nullopt;
    std::string const subject = "the " + std::string(kind.noun) + " " + inQuotes(value);
    for (bool const isLower : {true, false}) {
      auto const bound = constantTextOf(isLower ? def_.lowerBound.get() : def_.upperBound.get());
      auto const limit = bound ? TDFParam::asQuantity(*bound) : std::nullopt;
      auto const order = limit ? orderOf(context_.data(), def_, *quantity, *limit) : std::nullopt;
      if (!order) continue;
      if (isLower ? *order < 0 : *order > 0) {
        return Fault{kind.outOfBounds,
                     subject + (isLower ? " is below the lower bound " : " is above the upper bound ") + *bound,
                     {}};
      }
      if (*order == 0 && (isLower ? def_.lowerBoundExcluded : def_.upperBoundExcluded)) {
        return Fault{kind.outOfBounds, subject + " is equal to the bound " + *bound + ", which is excluded", {}};
      }
    }
    return std::nullopt;
  }

  [[nodiscard]] bool areReversed() const {
    // A quantity refers to its text.
    auto const lower = constantTextOf(def_.lowerBound.get());
    auto const upper = constantTextOf(def_.upperBound.get());
    auto const low = lower ? TDFParam::asQuantity(*lower) : std::nullopt;
    auto const high = upper ? TDFParam::asQuantity(*upper) : std::nullopt;
    return low && high && orderOf(context_.data(), def_, *high, *low).value_or(0) < 0;
  }

  /// A value that is both allowed and unused is never allowed.
  void checkUnused(Item const& list) {
    if (allowed_ == nullptr || list.node->kind != YamlNode::Kind::Sequence) return;
    for (auto const* item : list.node->children) {
      if (item->kind != YamlNode::Kind::Scalar || !allowed_->contains(item->value)) continue;
      context_.warn(Code::DuplicateValue, {list.source, item},
                    inQuotes(item->value) +
                        " is also among the allowed values, so it is never allowed; remove it from one of the two");
    }
  }

  void checkAllowed(Item const& list) {
    if (list.node->kind != YamlNode::Kind::Sequence) return;
    for (auto const* child : list.node->children) {
      Item const item{list.source, child};
      if (child->kind != YamlNode::Kind::Scalar) continue;
      checkWritable("allowed value", item);
      if (looksComputed(child->value)) {
        checkLooks(context_, item, true);
      } else if (def_.allowsAnyValue) {
        // A word beside numbers, such as a size that a solver finds itself.
        continue;
      } else if (auto const fault = typeFault("allowed value", Code::AllowedValueOfWrongType, child->value)) {
        context_.warn(fault->code, item, fault->message);
      }
    }
    checkTwice(list);
  }

  void checkSubset(Item const& list) {
    checkTwice(list);
    if (allowed_ == nullptr || list.node->kind != YamlNode::Kind::Sequence) return;
    for (auto const* item : list.node->children) {
      if (item->kind != YamlNode::Kind::Scalar || allowed_->contains(item->value)) continue;
      auto const near = context_.hints().nearest(item->value, *allowed_);
      auto& warning = context_.warn(Code::SubsetNotAllowed, {list.source, item},
                                    "the subset value " + inQuotes(item->value) + " is not among the allowed values" +
                                        orAllowed(near, *allowed_));
      LintContext::fixText(warning, {list.source, item}, item->value, near);
    }
  }

  LintContext& context_;
  ParamValueDef const& def_;
  SharedStrings const* allowed_;  // null when they are not written out
};

/// The part of a text that other languages would replace by a value: `{name()}`, `{0}`, `{}`, `%s`. Empty when there is
/// none.
std::string_view placeholderIn(std::string_view text) {
  for (std::size_t begin = text.find('{'); begin != std::string_view::npos; begin = text.find('{', begin + 1)) {
    auto const end = text.find('}', begin);
    if (end == std::string_view::npos) break;
    auto const inside = text.substr(begin + 1, end - begin - 1);
    // After another sign it repeats a part of a regular expression, which a message may show.
    bool const isAlone = begin == 0 || std::string_view(" '\"(").find(text[begin - 1]) != std::string_view::npos;
    bool const isNumber =
        isAlone && std::all_of(inside.begin(), inside.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (isNumber || isCallOrJoin(inside)) return text.substr(begin, end + 1 - begin);
  }
  for (std::string_view const format : {"%s", "%d"}) {
    auto const at = text.find(format);
    if (at == std::string_view::npos) continue;
    bool const isWord = at + 2 < text.size() && std::isalpha(static_cast<unsigned char>(text[at + 2])) != 0;
    if (!isWord) return text.substr(at, 2);
  }
  return {};
}

/// The messages in a section of checks.
void checkMessagesIn(LintContext& context, SourceText const* source, YamlNode const* checks) {
  forEachIn(checks, [&](YamlNode const& /*name*/, YamlNode const& check) {
    auto const* message = valueIn(check, "Message");
    if (message == nullptr || message->kind != YamlNode::Kind::Scalar) return;
    Item const item{source, message};
    ValueLint::checkLooks(context, item, false);
    if (message->value.starts_with('=') || looksComputed(message->value)) return;
    auto const placeholder = placeholderIn(message->value);
    if (placeholder.empty()) return;
    context.warn(Code::TextLooksComputed, item,
                 "nothing is put in the place of " + inQuotes(placeholder) +
                     "; a message with values is an expression after '=', such as: = 'The object ' + name() + ' is "
                     "wrong.'");
  });
}

}  // namespace

void checkValues(LintContext& context, ParamAvail const& param, ParamValueDef const& def, EntryPlace const& place) {
  ValueLint lint(context, def);
  lint.checkEntry(place);
  if (param.required) lint.checkRequired(place.attribute("Required"));
}

void checkTexts(LintContext& context, ExpressionUse const& use) {
  std::vector<Expression const*> open{use.compiled->expression.get()};
  while (!open.empty()) {
    auto const* part = open.back();
    open.pop_back();
    auto const operands = part->operands();
    open.insert(open.end(), operands.begin(), operands.end());
    auto const* literal = dynamic_cast<Literal const*>(part);
    if (literal == nullptr || literal->kind() != Kind::Text || literal->range().length == 0) continue;
    std::string const& text = literal->rawText();
    if (text.find(sign) == std::string::npos || !looksComputed(text)) continue;
    std::string const instead = asExpression(text);
    bool const isSimple = use.text().substr(literal->range().offset, 1) == "'";
    context.warn(
        Code::TextLooksComputed, use, literal->range(),
        "a value of the model is not put into a text in quotes; write " + instead,
        isSimple ? std::optional(Replacement{literal->range(), instead, "Join the value to the text"}) : std::nullopt);
  }
}

void checkComputedValue(LintContext& context, ExpressionUse const& use) {
  if (use.kind != EntryKind::Parameter || use.typePath().empty()) return;
  bool const isOverride = use.attribute == "Value Override Check List";
  bool const isDefault = use.attribute == "Default Value" || use.attribute == "Default Value Check List";
  bool const isList = use.attribute == "Value List Source";
  bool const isValue = (isOverride || isDefault) && use.role == Role::Text;
  if (!isValue && !isList) return;
  auto const* def = context.data().getParamValueDef(use.typePath(), use.entry(), true);
  if (def == nullptr) return;
  ValueLint lint(context, *def);
  if (isList) {
    lint.checkListed(use, *use.compiled->expression);
  } else {
    lint.checkResult(isOverride ? overrides : defaults, use, *use.compiled->expression);
  }
}

void checkListedNames(LintContext& context, Item const& list) {
  if (list.node->kind != YamlNode::Kind::Sequence) return;
  ValueLint::checkTwice(context, list);
  for (auto const* item : list.node->children) {
    if (item->kind == YamlNode::Kind::Scalar) ValueLint::checkLooks(context, {list.source, item}, true);
  }
}

void checkTwice(LintContext& context, Item const& list) {
  ValueLint::checkTwice(context, list);
}

void checkNamedLists(LintContext& context) {
  for (auto const& [rule, place] : context.rules().namedPlaces()) checkListedNames(context, place.body);
}

void checkMessages(LintContext& context) {
  for (auto const& file : context.rules().files()) {
    checkMessagesIn(context, file.source, valueIn(*file.root, "Global Checks"));
    for (std::string_view const section : {"Objects", "Templates"}) {
      forEachIn(valueIn(*file.root, section), [&](YamlNode const& /*name*/, YamlNode const& body) {
        checkMessagesIn(context, file.source, valueIn(body, "Checks"));
      });
    }
  }
}

std::optional<int> orderOf(PhysicsData const& data, ParamValueDef const& def, TDFParam::Quantity const& a,
                           TDFParam::Quantity const& b) {
  double x = a.number;
  double y = b.number;
  if (a.units != b.units) {
    auto const* name = dynamic_cast<FixedText const*>(def.quantityType.get());
    auto const* type = name != nullptr ? data.findQuantityType(name->text()) : nullptr;
    auto const converted = type != nullptr ? type->inFirstUnit(a) : std::nullopt;
    auto const other = type != nullptr ? type->inFirstUnit(b) : std::nullopt;
    if (!converted || !other) return std::nullopt;
    if (QuantityType::areEqual(*converted, *other)) return 0;
    x = *converted;
    y = *other;
  }
  return x < y ? -1 : x > y ? 1 : 0;
}

std::string orAllowed(std::string_view near, std::vector<std::string> const& items) {
  constexpr std::size_t most = 6;
  if (!near.empty() || items.empty()) return orDidYouMean(near);
  std::string result = "; allowed are ";
  for (std::size_t i = 0; i < items.size() && i < most; ++i) result.append(i == 0 ? "" : ", ").append(items[i]);
  return items.size() > most ? result + ", ..." : result;
}

std::string computedRemedy(std::string_view text) {
  return looksComputed(text) ? "; an expression begins with '=': = " + asExpression(text) : std::string();
}

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A whole number with a prefix of another language, such as 0x1F, 0o17 or 0b101.
std::optional<unsigned long long> asPrefixedNumber(std::string_view text) {
  if (text.size() < 3 || text[0] != '0') return std::nullopt;
  char const kind = StringUtilities::toLower(text[1]);
  int const base = kind == 'x' ? 16 : kind == 'o' ? 8 : kind == 'b' ? 2 : 0;
  unsigned long long number = 0;
  if (base == 0) return std::nullopt;
  auto const end = text.data() + text.size();
  auto const [last, fault] = std::from_chars(text.data() + 2, end, number, base);
  if (fault != std::errc() || last != end) return std::nullopt;
  return number;
}

/// The digits of a number that is written with a separator between groups of three. Empty for any other text.
std::string withoutSeparators(std::string_view text, char separator) {
  std::string_view rest = text;
  std::string digits;
  if (!rest.empty() && (rest.front() == '-' || rest.front() == '+')) {
    digits = rest.front();
    rest.remove_prefix(1);
  }
  std::size_t group = 0;
  std::size_t groups = 0;
  std::size_t i = 0;
  for (; i < rest.size() && (isDigit(rest[i]) || rest[i] == separator); ++i) {
    if (rest[i] != separator) {
      digits += rest[i];
      ++group;
      continue;
    }
    if (group == 0 || group > 3 || (groups > 0 && group != 3)) return {};
    ++groups;
    group = 0;
  }
  if (groups == 0 || group != 3) return {};
  digits += rest.substr(i);
  return TDFParam::asQuantity(digits) ? digits : std::string();
}

/// The remedy for units without brackets after a number.
std::string unitsRemedy(PhysicsData const& data, ParamValueDef const& def, std::string_view number,
                        std::string_view units) {
  std::string const quantity = std::string(number) + " [" + std::string(units) + "]";
  auto const* fixed = dynamic_cast<FixedText const*>(def.quantityType.get());
  if (def.quantityType == nullptr) {
    return "; write " + std::string(number) + ", or " + quantity +
           " and give the parameter a Quantity Type that lists [" + std::string(units) + "]";
  }
  auto const* type = fixed != nullptr ? data.findQuantityType(fixed->text()) : nullptr;
  if (type != nullptr && type->find(units) == nullptr) {
    return "; units are written in brackets, and " + inQuotes(fixed->text()) + " lists " + listedUnits(*type);
  }
  return "; units are written in brackets: " + quantity;
}

}  // namespace

std::string numberRemedy(PhysicsData const& data, ParamValueDef const& def, std::string_view text) {
  text = StringUtilities::trimmed(text);
  if (looksComputed(text)) return computedRemedy(text);
  if (isNull(text)) return noValue;
  bool const isList = TDFParam::isListType(def.type);
  bool const isWhole = TDFParam::elementType(def.type) == TDFParam::Integer;
  std::string const lower = StringUtilities::toLower(std::string(text));
  for (std::string_view const word : {"inf", "infinity", "infinite", "unlimited", "nan", "max", "min", "none", "any"}) {
    if (lower == word || (lower.size() == word.size() + 1 && lower.ends_with(word) && !std::isalpha(lower[0]))) {
      return "; to give no limit or no value, leave the key out";
    }
  }
  if (auto const number = asPrefixedNumber(text)) return "; write it in decimal digits: " + std::to_string(*number);
  if (auto const at = std::min(text.find(" //"), text.find("/*")); at != std::string_view::npos) {
    return "; a comment begins with '#'";
  }
  if (text.size() > 1 && (text.back() == ',' || text.back() == ';') &&
      TDFParam::asQuantity(text.substr(0, text.size() - 1))) {
    return "; leave out the '" + std::string(1, text.back()) + "'";
  }
  if (text.find_first_of("<>=") == 0) return "; write the number alone";
  if (text.find("..") != std::string_view::npos) return "; a range is written as Lower Bound and Upper Bound";
  for (char const separator : {' ', '_', '\''}) {
    if (isList && separator == ' ') continue;
    auto const digits = withoutSeparators(text, separator);
    if (!digits.empty()) return "; write " + digits + ", without signs between the digits";
  }
  std::string several = std::string("; it holds one number; several are the value of ") +
                        (isWhole ? "an Integer List" : "a Real List") + ", divided by commas";
  // A number and units without brackets, or a comma for the decimal point.
  std::size_t const end = std::min(text.find_first_not_of("+-.0123456789eE"), text.size());
  auto const number = StringUtilities::trimmed(text.substr(0, end));
  if (end < text.size() && TDFParam::asNumber(number)) {
    auto const rest = StringUtilities::trimmed(text.substr(end));
    if (rest.front() == ';') return isList ? "; the items of a list are divided by commas" : several;
    if (isDigit(rest.front()) || rest.front() == '-') {
      return isList ? "; the items of a list are divided by commas" : several;
    }
    if (rest.front() == ',' && rest.size() > 1 && TDFParam::asQuantity(rest.substr(1))) {
      std::string const decimal = std::string(number) + "." + std::string(rest.substr(1));
      auto const whole = withoutSeparators(text, ',');
      if (isWhole) return whole.empty() ? "; write one whole number" : "; write " + whole;
      return "; write " + (whole.empty() ? decimal : whole + " or " + decimal);
    }
    if (rest.find_first_of("*/+(") == 0)
      return "; a number that is computed is an expression after '=': = " + std::string(text);
    if (rest.front() == ',') return several;
    auto const first = static_cast<unsigned char>(rest.front());
    bool const areUnits = std::isalpha(first) != 0 || first == '%' || first >= 0x80;
    if (areUnits && rest.find_first_of("[],") == std::string_view::npos) return unitsRemedy(data, def, number, rest);
  }
  return "; write it in digits";
}

}  // namespace tarn::rules
