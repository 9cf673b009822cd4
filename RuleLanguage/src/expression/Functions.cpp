// The table of functions, and the plain operations that evaluate them. An operation gets exactly the arguments that its
// row asks for, already checked for their kinds. Lists keep the order of first appearance.

#include "expression/Functions.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/QuantityType.h>
#include <tarn/StringUtilities.h>

#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// On objects

bool exists(Arguments arguments, Frame const& frame) {
  auto const& asked = *arguments[0];
  if (auto const* parameter = dynamic_cast<ParameterReference const*>(&asked)) return parameter->exists(frame);
  if (auto const* set = dynamic_cast<ObjectSet const*>(&asked)) return set->exists(frame);
  return asked.anyObject(frame, [](std::string const&) { return true; });
}

template <Quantifier::Operator op>
ExpressionPtr quantifier(CheckedCall call) {
  return std::make_unique<Quantifier>(op, call.range, std::move(call.arguments), std::move(call.objectName));
}

SharedStrings names(Arguments arguments, Frame const& frame) {
  auto paths = arguments[0]->objects(frame);
  for (auto& path : paths) path = std::string(PathUtils::lastName(path));
  return paths;
}

SharedStrings paths(Arguments arguments, Frame const& frame) {
  return arguments[0]->objects(frame);
}

SharedStrings values(Arguments arguments, Frame const& frame) {
  return static_cast<ParameterReference const&>(*arguments[0]).values(frame);
}

/// The context object, or the first object of the set; empty when the set is.
std::string path(Arguments arguments, Frame const& frame) {
  if (arguments.empty()) return frame.context.objPath();
  auto found = arguments[0]->objects(frame);
  return found.empty() ? std::string{} : std::move(found.front());
}

std::string name(Arguments arguments, Frame const& frame) {
  return std::string(PathUtils::lastName(path(arguments, frame)));
}

std::string type(Arguments arguments, Frame const& frame) {
  return std::string(PathUtils::lastType(path(arguments, frame)));
}

// On lists

/// Collects texts, each once, in order of first appearance.
class DistinctTexts {
 public:
  explicit DistinctTexts(std::size_t expected) { texts_.reserve(expected); }
  void add(std::string const& text) {
    if (seen_.insert(text).second) texts_.push_back(text);
  }
  std::vector<std::string> take() { return std::move(texts_); }

 private:
  std::vector<std::string> texts_;
  std::unordered_set<std::string> seen_;
};

double size(Arguments arguments, Frame const& frame) {
  return static_cast<double>(arguments[0]->list(frame).size());
}

std::string first(Arguments arguments, Frame const& frame) {
  auto const items = arguments[0]->list(frame);
  return items.empty() ? std::string{} : items.front();
}

std::string join(Arguments arguments, Frame const& frame) {
  auto const items = arguments[0]->list(frame);
  auto const separator = arguments[1]->text(frame);
  std::string result;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) result += separator;
    result += items[i];
  }
  return result;
}

/// The items of all lists, each once.
SharedStrings unite(Arguments arguments, Frame const& frame) {
  auto const first = arguments[0]->list(frame);
  DistinctTexts result(first.size());
  for (auto const& item : first) result.add(item);
  for (auto const& argument : arguments.subspan(1)) {
    auto const next = argument->list(frame);
    for (auto const& item : next) result.add(item);
  }
  return result.take();
}

/// The items of all lists, as often as they are there.
SharedStrings concat(Arguments arguments, Frame const& frame) {
  std::vector<std::string> result;
  for (auto const& argument : arguments) {
    auto const items = argument->list(frame);
    result.insert(result.end(), items.begin(), items.end());
  }
  return result;
}

SharedStrings duplicates(Arguments arguments, Frame const& frame) {
  auto const items = arguments[0]->list(frame);
  std::unordered_map<std::string_view, std::size_t> times;
  for (auto const& item : items) ++times[item];
  std::vector<std::string> result;
  for (auto const& item : items) {
    auto& seen = times[item];
    if (seen > 1) result.push_back(item);
    seen = 0;  // each once, in order of first appearance
  }
  return result;
}

/// The items of the first list that are, or are not, in the second.
template <bool inBoth>
SharedStrings restrict(Arguments arguments, Frame const& frame) {
  auto const first = arguments[0]->list(frame);
  auto const second = arguments[1]->list(frame);
  DistinctTexts result(first.size());
  for (auto const& item : first) {
    if (second.contains(item) == inBoth) result.add(item);
  }
  return result.take();
}

/// All items taken together by `combine`, beginning with the first; not a number when an item is not a number.
template <typename Combine>
double reduce(Arguments arguments, Frame const& frame, double ofNothing, Combine combine) {
  double result = ofNothing;
  bool first = true;
  for (double const number : arguments[0]->numbers(frame)) {
    if (std::isnan(number)) return notANumber;
    result = first ? number : combine(result, number);
    first = false;
  }
  return std::isfinite(result) ? result : notANumber;
}

double min(Arguments arguments, Frame const& frame) {
  return reduce(arguments, frame, notANumber, [](double a, double b) { return std::min(a, b); });
}

double max(Arguments arguments, Frame const& frame) {
  return reduce(arguments, frame, notANumber, [](double a, double b) { return std::max(a, b); });
}

double sum(Arguments arguments, Frame const& frame) {
  return reduce(arguments, frame, 0, [](double a, double b) { return a + b; });
}

// On numbers and texts

double abs(Arguments arguments, Frame const& frame) {
  return std::abs(arguments[0]->number(frame));
}

double floor(Arguments arguments, Frame const& frame) {
  return std::floor(arguments[0]->number(frame));
}

double ceil(Arguments arguments, Frame const& frame) {
  return std::ceil(arguments[0]->number(frame));
}

double round(Arguments arguments, Frame const& frame) {
  return std::round(arguments[0]->number(frame));
}

/// The remainder has the sign of the divisor, so of a positive divisor it is from 0 up: `mod(angle, 360)`. Whole
/// numbers are divided exactly. Others are rounded where they are written and converted, so what differs from a
/// multiple by rounding only is a multiple: `mod(1, 0.1)` is 0.
double mod(Arguments arguments, Frame const& frame) {
  double const a = arguments[0]->number(frame);
  double const b = arguments[1]->number(frame);
  if (b == 0 || !std::isfinite(a) || !std::isfinite(b)) return notANumber;
  bool const areWhole = a == std::trunc(a) && b == std::trunc(b);
  double const quotient = a / b;
  if (!areWhole && QuantityType::areEqual(quotient, std::round(quotient))) return 0;
  double result = std::fmod(a, b);
  if (result != 0 && std::signbit(result) != std::signbit(b)) result += b;
  return result == 0 || result == b ? 0 : result;
}

double number(Arguments arguments, Frame const& frame) {
  return arguments[0]->number(frame);
}

std::string text(Arguments arguments, Frame const& frame) {
  return arguments[0]->text(frame);
}

std::string lower(Arguments arguments, Frame const& frame) {
  return StringUtilities::toLower(arguments[0]->text(frame));
}

std::string upper(Arguments arguments, Frame const& frame) {
  return StringUtilities::toUpper(arguments[0]->text(frame));
}

std::string trim(Arguments arguments, Frame const& frame) {
  return StringUtilities::removeWhitespace(arguments[0]->text(frame));
}

bool startsWith(Arguments arguments, Frame const& frame) {
  std::string buffer;
  std::string otherBuffer;
  return arguments[0]->textIn(frame, buffer).starts_with(arguments[1]->textIn(frame, otherBuffer));
}

bool endsWith(Arguments arguments, Frame const& frame) {
  std::string buffer;
  std::string otherBuffer;
  return arguments[0]->textIn(frame, buffer).ends_with(arguments[1]->textIn(frame, otherBuffer));
}

bool contains(Arguments arguments, Frame const& frame) {
  std::string buffer;
  std::string otherBuffer;
  return arguments[0]->textIn(frame, buffer).find(arguments[1]->textIn(frame, otherBuffer)) != std::string::npos;
}

/// The number of characters of a text in UTF-8. A byte that continues a character is not counted.
double length(Arguments arguments, Frame const& frame) {
  std::string buffer;
  auto const& text = arguments[0]->textIn(frame, buffer);
  return static_cast<double>(
      std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

ExpressionPtr matches(CheckedCall call) {
  return std::make_unique<PatternMatch>(call.range, std::move(call.arguments), std::move(call.pattern));
}

// Choices and named rules

ExpressionPtr choice(CheckedCall call) {
  return std::make_unique<Choice>(call.kind, call.range, std::move(call.arguments));
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): every function of the table takes its call by value
ExpressionPtr namedCall(CheckedCall call) {
  return std::make_unique<NamedCall>(call.kind, call.range, call.rule);
}

using A = Argument;
using Cost = RuleFunction::Cost;
using Op = Quantifier::Operator;

constexpr std::string_view onObjects = "On objects";
constexpr std::string_view onLists = "On lists";
constexpr std::string_view onNumbersAndTexts = "On numbers and texts";
constexpr std::string_view choicesAndNamedRules = "Choices and named rules";

constexpr auto table = std::to_array<Function>({
    {.name = "exists",
     .group = onObjects,
     .signature = "exists(x)",
     .help = "true when the parameter exists, even with an empty value, or when at least one object matches",
     .least = 1,
     .most = 1,
     .arguments = {A::ParameterOrObjects},
     .result = Kind::Truth,
     .evaluate = exists},
    {.name = "count",
     .group = onObjects,
     .signature = "count(set), count(set, condition), count(x in set, condition)",
     .help = "number of objects; with a condition, number of objects for which it holds",
     .least = 1,
     .most = 2,
     .arguments = {A::Objects, A::Condition},
     .result = Kind::Number,
     .cost = Cost::EachObject,
     .namesObject = true,
     .evaluate = quantifier<Op::Count>},
    {.name = "any",
     .group = onObjects,
     .signature = "any(set, condition), any(x in set, condition)",
     .help = "true when the condition holds for at least one object",
     .least = 2,
     .most = 2,
     .arguments = {A::Objects, A::Condition},
     .result = Kind::Truth,
     .cost = Cost::EachObject,
     .namesObject = true,
     .evaluate = quantifier<Op::Any>},
    {.name = "all",
     .group = onObjects,
     .signature = "all(set, condition), all(x in set, condition)",
     .help = "true when the condition holds for every object; also true when there are no objects",
     .least = 2,
     .most = 2,
     .arguments = {A::Objects, A::Condition},
     .result = Kind::Truth,
     .cost = Cost::EachObject,
     .namesObject = true,
     .evaluate = quantifier<Op::All>},
    {.name = "filter",
     .group = onObjects,
     .signature = "filter(set, condition), filter(x in set, condition)",
     .help = "the objects for which the condition holds",
     .least = 2,
     .most = 2,
     .arguments = {A::Objects, A::Condition},
     .result = Kind::Objects,
     .cost = Cost::EachObject,
     .namesObject = true,
     .evaluate = quantifier<Op::Filter>},
    {.name = "names",
     .group = onObjects,
     .signature = "names(set)",
     .help = "list of the names of the objects; the name of a singleton is its type",
     .least = 1,
     .most = 1,
     .arguments = {A::Objects},
     .result = Kind::List,
     .cost = Cost::Items,
     .evaluate = names},
    {.name = "paths",
     .group = onObjects,
     .signature = "paths(set)",
     .help = "list of the paths of the objects",
     .least = 1,
     .most = 1,
     .arguments = {A::Objects},
     .result = Kind::List,
     .cost = Cost::Items,
     .evaluate = paths},
    {.name = "values",
     .group = onObjects,
     .signature = "values(${path})",
     .help = "list of the values of all parameters that match and exist",
     .least = 1,
     .most = 1,
     .arguments = {A::Parameters},
     .result = Kind::List,
     .cost = Cost::Items,
     .quantitiesFrom = 1,
     .evaluate = values},
    {.name = "name",
     .group = onObjects,
     .signature = "name(), name(set)",
     .help = "name of the context object, or of the first object of the set; empty when the set is empty",
     .least = 0,
     .most = 1,
     .arguments = {A::Objects},
     .result = Kind::Text,
     .readsContextIdentity = true,
     .evaluate = name},
    {.name = "type",
     .group = onObjects,
     .signature = "type(), type(set)",
     .help = "type of the context object, or of the first object of the set; empty when the set is empty",
     .least = 0,
     .most = 1,
     .arguments = {A::Objects},
     .result = Kind::Text,
     .readsContextIdentity = true,
     .evaluate = type},
    {.name = "path",
     .group = onObjects,
     .signature = "path(), path(set)",
     .help = "path of the context object, or of the first object of the set; empty when the set is empty",
     .least = 0,
     .most = 1,
     .arguments = {A::Objects},
     .result = Kind::Text,
     .readsContextIdentity = true,
     .evaluate = path},
    {.name = "size",
     .group = onLists,
     .signature = "size(list)",
     .help = "number of items",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::Number,
     .evaluate = size},
    {.name = "first",
     .group = onLists,
     .signature = "first(list)",
     .help = "first item; empty when the list is empty",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::Text,
     .quantitiesFrom = 1,
     .evaluate = first},
    {.name = "join",
     .group = onLists,
     .signature = "join(list, text)",
     .help = "the items as one text, with the given text between them",
     .least = 2,
     .most = 2,
     .arguments = {A::List, A::Text},
     .result = Kind::Text,
     .evaluate = join},
    {.name = "unique",
     .group = onLists,
     .signature = "unique(list)",
     .help = "each item once",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::List,
     .cost = Cost::Items,
     .itemsFrom = 1,
     .quantitiesFrom = 1,
     .evaluate = unite},
    {.name = "union",
     .group = onLists,
     .signature = "union(a, b, ...)",
     .help = "the items of all lists, each once",
     .least = 1,
     .most = RuleFunction::unlimited,
     .arguments = {A::List, A::List, A::List},
     .result = Kind::List,
     .cost = Cost::Items,
     .itemsFrom = RuleFunction::unlimited,
     .quantitiesFrom = RuleFunction::unlimited,
     .evaluate = unite},
    {.name = "concat",
     .group = onLists,
     .signature = "concat(a, b, ...)",
     .help = "the items of all lists, one list after the other, with those that occur more than once",
     .least = 1,
     .most = RuleFunction::unlimited,
     .arguments = {A::List, A::List, A::List},
     .result = Kind::List,
     .cost = Cost::Items,
     .itemsFrom = RuleFunction::unlimited,
     .quantitiesFrom = RuleFunction::unlimited,
     .evaluate = concat},
    {.name = "duplicates",
     .group = onLists,
     .signature = "duplicates(list)",
     .help = "the items that occur more than once, each once",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::List,
     .cost = Cost::Items,
     .itemsFrom = 1,
     .quantitiesFrom = 1,
     .evaluate = duplicates},
    {.name = "intersection",
     .group = onLists,
     .signature = "intersection(a, b)",
     .help = "the items that are in both lists",
     .least = 2,
     .most = 2,
     .arguments = {A::List, A::List},
     .result = Kind::List,
     .cost = Cost::Items,
     .itemsFrom = 2,
     .quantitiesFrom = 2,
     .evaluate = restrict<true>},
    {.name = "difference",
     .group = onLists,
     .signature = "difference(a, b)",
     .help = "the items of the first list that are not in the second",
     .least = 2,
     .most = 2,
     .arguments = {A::List, A::List},
     .result = Kind::List,
     .cost = Cost::Items,
     .itemsFrom = 1,
     .quantitiesFrom = 1,
     .evaluate = restrict<false>},
    {.name = "min",
     .group = onLists,
     .signature = "min(list)",
     .help = "smallest number; not a number when the list is empty or an item is not a number",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = min},
    {.name = "max",
     .group = onLists,
     .signature = "max(list)",
     .help = "largest number; not a number when the list is empty or an item is not a number",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = max},
    {.name = "sum",
     .group = onLists,
     .signature = "sum(list)",
     .help = "sum of the numbers; 0 when the list is empty, not a number when an item is not a number",
     .least = 1,
     .most = 1,
     .arguments = {A::List},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = sum},
    {.name = "abs",
     .group = onNumbersAndTexts,
     .signature = "abs(x)",
     .help = "the number without its sign",
     .least = 1,
     .most = 1,
     .arguments = {A::Number},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = abs},
    {.name = "floor",
     .group = onNumbersAndTexts,
     .signature = "floor(x)",
     .help = "the largest whole number that is not above x",
     .least = 1,
     .most = 1,
     .arguments = {A::Number},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = floor},
    {.name = "ceil",
     .group = onNumbersAndTexts,
     .signature = "ceil(x)",
     .help = "the smallest whole number that is not below x",
     .least = 1,
     .most = 1,
     .arguments = {A::Number},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = ceil},
    {.name = "round",
     .group = onNumbersAndTexts,
     .signature = "round(x)",
     .help = "the nearest whole number; halves are rounded away from zero",
     .least = 1,
     .most = 1,
     .arguments = {A::Number},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = round},
    {.name = "mod",
     .group = onNumbersAndTexts,
     .signature = "mod(x, y)",
     .help = "the remainder of x divided by y, with the sign of y; 0 when x differs from a multiple of y by rounding "
             "only; not a number when y is 0",
     .least = 2,
     .most = 2,
     .arguments = {A::Number, A::Number},
     .result = Kind::Number,
     .quantitiesFrom = 2,
     .evaluate = mod},
    {.name = "number",
     .group = onNumbersAndTexts,
     .signature = "number(x)",
     .help = "the number of a text or of a quantity; not a number when the text is not a number",
     .least = 1,
     .most = 1,
     .arguments = {A::Scalar},
     .result = Kind::Number,
     .quantitiesFrom = 1,
     .evaluate = number},
    {.name = "text",
     .group = onNumbersAndTexts,
     .signature = "text(x)",
     .help = "the value as text. A whole number below 1e15 has no decimal point; any other number is the shortest text "
             "that reads back; not a number gives the empty text",
     .least = 1,
     .most = 1,
     .arguments = {A::Scalar},
     .result = Kind::Text,
     .evaluate = text},
    {.name = "lower",
     .group = onNumbersAndTexts,
     .signature = "lower(x)",
     .help = "the text with the letters A to Z in lower case",
     .least = 1,
     .most = 1,
     .arguments = {A::Text},
     .result = Kind::Text,
     .evaluate = lower},
    {.name = "upper",
     .group = onNumbersAndTexts,
     .signature = "upper(x)",
     .help = "the text with the letters a to z in upper case",
     .least = 1,
     .most = 1,
     .arguments = {A::Text},
     .result = Kind::Text,
     .evaluate = upper},
    {.name = "trim",
     .group = onNumbersAndTexts,
     .signature = "trim(x)",
     .help = "the text without white space at its ends",
     .least = 1,
     .most = 1,
     .arguments = {A::Text},
     .result = Kind::Text,
     .evaluate = trim},
    {.name = "starts_with",
     .group = onNumbersAndTexts,
     .signature = "starts_with(x, y)",
     .help = "true when the text x begins with the text y",
     .least = 2,
     .most = 2,
     .arguments = {A::Text, A::Text},
     .result = Kind::Truth,
     .evaluate = startsWith},
    {.name = "ends_with",
     .group = onNumbersAndTexts,
     .signature = "ends_with(x, y)",
     .help = "true when the text x ends with the text y",
     .least = 2,
     .most = 2,
     .arguments = {A::Text, A::Text},
     .result = Kind::Truth,
     .evaluate = endsWith},
    {.name = "contains",
     .group = onNumbersAndTexts,
     .signature = "contains(x, y)",
     .help = "true when the text x contains the text y",
     .least = 2,
     .most = 2,
     .arguments = {A::Text, A::Text},
     .result = Kind::Truth,
     .evaluate = contains},
    {.name = "matches",
     .group = onNumbersAndTexts,
     .signature = "matches(text, pattern)",
     .help = "true when the whole text matches the regular expression",
     .least = 2,
     .most = 2,
     .arguments = {A::Text, A::Pattern},
     .result = Kind::Truth,
     .evaluate = matches},
    {.name = "length",
     .group = onNumbersAndTexts,
     .signature = "length(text)",
     .help = "number of characters of the text",
     .least = 1,
     .most = 1,
     .arguments = {A::Text},
     .result = Kind::Number,
     .evaluate = length},
    {.name = "if",
     .group = choicesAndNamedRules,
     .signature = "if(condition, a, b)",
     .help = "a when the condition holds, otherwise b. Both are lists, both are sets of objects, or neither is",
     .least = 3,
     .most = 3,
     .arguments = {A::Condition, A::Branch, A::Branch},
     .result = Kind::Value,
     .evaluate = choice},
    {.name = "check",
     .group = choicesAndNamedRules,
     .signature = "check('name')",
     .help = "whether the named check holds in the present context",
     .least = 1,
     .most = 1,
     .arguments = {A::CheckName},
     .result = Kind::Truth,
     .cost = Cost::NamedRule,
     .evaluate = namedCall},
    {.name = "list",
     .group = choicesAndNamedRules,
     .signature = "list('name')",
     .help = "the items of the named list in the present context",
     .least = 1,
     .most = 1,
     .arguments = {A::ListName},
     .result = Kind::List,
     .cost = Cost::NamedRule,
     .evaluate = namedCall},
    {.name = "value",
     .group = choicesAndNamedRules,
     .signature = "value('name')",
     .help = "the named value, a number or a text, in the present context",
     .least = 1,
     .most = 1,
     .arguments = {A::ValueName},
     .result = Kind::Value,
     .cost = Cost::NamedRule,
     .evaluate = namedCall},
});

/// A plain operation returns what its row says.
constexpr bool returnsItsKind(Function const& function) {
  constexpr std::array<Kind, 4> kinds = {Kind::Truth, Kind::Number, Kind::Text, Kind::List};
  std::size_t const alternative = function.evaluate.index();
  return alternative >= kinds.size() || kinds[alternative] == function.result;
}
static_assert(std::all_of(table.begin(), table.end(), returnsItsKind));

}  // namespace

std::span<Function const> functionTable() noexcept {
  return table;
}

Function const* findFunction(std::string_view name) noexcept {
  auto const* const found =
      std::find_if(table.begin(), table.end(), [&](Function const& function) { return function.name == name; });
  return found == table.end() ? nullptr : found;
}

std::string functionsOfGroup(std::size_t group) {
  static constexpr std::array<std::string_view, 3> groups = {onObjects, onLists, onNumbersAndTexts};
  std::string names;
  for (auto const& function : table) {
    if (function.group == groups.at(group)) names.append(names.empty() ? "" : ", ").append(function.name);
  }
  return "the functions " + StringUtilities::toLower(std::string(groups.at(group))) + " are " + names;
}

std::vector<std::string> const& functionNames() {
  static std::vector<std::string> const names = [] {
    std::vector<std::string> result;
    result.reserve(table.size());
    for (auto const& function : table) result.emplace_back(function.name);
    return result;
  }();
  return names;
}

std::string const& callsThatTakeManyParameters() {
  static std::string const calls = [] {
    std::string result;
    for (auto const& function : table) {
      if (function.argument(0) != Argument::ParameterOrObjects && function.argument(0) != Argument::Parameters)
        continue;
      result += (result.empty() ? "" : " and ") + std::string(function.name) + "(...)";
    }
    return result;
  }();
  return calls;
}

std::vector<RuleFunction> const& ruleFunctions() {
  static std::vector<RuleFunction> const descriptions = [] {
    std::vector<RuleFunction> result;
    result.reserve(table.size());
    for (auto const& function : table) {
      result.push_back({function.name, function.group, function.signature, function.help, kindName(function.result),
                        function.least, function.most, function.cost});
    }
    return result;
  }();
  return descriptions;
}

}  // namespace tarn::rules
