#include "expression/Habits.h"

#include <algorithm>
#include <array>
#include <span>

#include <tarn/StringUtilities.h>

namespace tarn::rules {

namespace {

/// Words with one purpose, separated by blanks, and what serves it here.
struct Row {
  std::string_view words;
  std::string_view instead;
};

bool hasWord(std::string_view words, std::string_view word) {
  for (std::size_t begin = 0; begin < words.size();) {
    std::size_t const end = std::min(words.find(' ', begin), words.size());
    if (words.substr(begin, end - begin) == word) return true;
    begin = end + 1;
  }
  return false;
}

/// The letters and digits of a word in lower case: one form for `Min Value`, `min_value` and `minValue`.
std::string bare(std::string_view word) {
  std::string result;
  for (char const c : word) {
    if (c != ' ' && c != '_' && c != '-') result += StringUtilities::toLower(c);
  }
  return result;
}

Row const* rowOf(std::span<Row const> rows, std::string_view word) {
  std::string const form = bare(word);
  auto const found = std::find_if(rows.begin(), rows.end(), [&](Row const& row) { return hasWord(row.words, form); });
  return form.empty() || found == rows.end() ? nullptr : &*found;
}

constexpr auto functions = std::to_array<Row>({
    {"len length strlen nchar sizeof cardinality", "length(text) and size(list)"},
    {"substr substring mid left right slice", "starts_with(x, y), ends_with(x, y) and matches(text, pattern)"},
    {"indexof index instr strpos includes", "contains(x, y) and the operator in"},
    {"regex regexp match like test rematch regexmatch", "matches(text, pattern)"},
    {"startswith beginswith", "starts_with(x, y)"},
    {"endswith", "ends_with(x, y)"},
    {"str string tostring format sprintf printf", "text(x) and the operator +"},
    {"int integer float real double tonumber toint tofloat parse val", "number(x), floor(x) and round(x)"},
    {"tolower lcase lowercase downcase", "lower(x)"},
    {"toupper ucase uppercase upcase", "upper(x)"},
    {"strip trimmed ltrim rtrim", "trim(x)"},
    {"iif ifelse ifthenelse cond case switch choose when ternary", "if(condition, a, b)"},
    {"isnull isempty empty defined isdefined isset isblank present notnull has coalesce ifnull nvl",
     "exists(x) and the comparison with ''"},
    {"average avg mean", "sum(list) / size(list)"},
    {"sqrt pow power exp log ln log10 sin cos tan sign",
     "abs(x), min(list), max(list), sum(list), mod(a, b) and the operators + - * /"},
    {"ceiling trunc truncate fix", "floor(x), ceil(x) and round(x)"},
    {"modulo remainder rem fmod", "mod(a, b)"},
    {"unless", "the operators not and implies"},
    {"every forall foreach", "all(set, condition)"},
    {"some anyof", "any(set, condition)"},
    {"countif countwhere numberof", "count(set, condition)"},
    {"where select find map", "filter(set, condition), names(set) and values(${path})"},
    {"distinct dedup uniq", "unique(list)"},
    {"append push merge extend cat concatenate", "concat(list, ...), union(a, b, ...) and the operator +"},
    {"intersect", "intersection(a, b)"},
    {"except minus subtract setdiff", "difference(a, b)"},
    {"get getvalue param parameter valueof read", "${Name}"},
    {"parent ancestor owner self this", "{..}, {^Type} and {@}"},
    {"children descendants child", "{Type:*} and {**}"},
});

// In the following tables a text that begins with ';' is the end of a sentence; any other is the right word.

constexpr auto values = std::to_array<Row>({
    {"true yes on", "true"},
    {"false no off", "false"},
    {"null nil none undefined",
     "; a parameter that is absent reads as ''; write not exists(${Name}), or compare it with ''"},
});

constexpr auto operators = std::to_array<Row>({
    {"eq equals is", "=="},
    {"ne neq isnot notequals", "!="},
    {"lt", "<"},
    {"le lte", "<="},
    {"gt", ">"},
    {"ge gte", ">="},
    {"div", "/"},
    {"between", "; write a <= x and x <= b"},
    {"like matches rlike regexp", "; write matches(text, pattern), contains(x, y) or starts_with(x, y)"},
    {"includes has", "; write contains(x, y) for a text, or y in list"},
    {"mod rem", "; write mod(a, b)"},
    {"xor", "; compare the two truth values with '!='"},
    {"then else if unless when", "; a choice is written if(condition, a, b)"},
});

/// Types of other languages. The words are in the form that `bare` gives.
constexpr auto types = std::to_array<Row>({
    {"bool boolean flag switch yesno", "Logical"},
    {"float double number numeric decimal floating float64 double64", "Real"},
    {"int long short unsigned uint whole count int32 int64", "Integer"},
    {"text str char varchar word name file path", "String"},
    {"enum enumeration choice select option options combo oneof dropdown list array",
     "; a choice is a String with an Ordered Allowed String List, and a list is a String List, Integer List or so"},
    {"strings texts", "String List"},
    {"floats reals numbers vector vec3", "Real List"},
    {"ints integers", "Integer List"},
    {"date time datetime timestamp", "; write it as a String with a Pattern"},
});

// Keys. The words are in the form that `bare` gives.

constexpr auto parameterKeys = std::to_array<Row>({
    {"min minimum minvalue lower lowerlimit minlimit", "Lower Bound"},
    {"max maximum maxvalue upper upperlimit maxlimit", "Upper Bound"},
    {"default value initial initialvalue", "Default Value"},
    {"defaults conditionaldefault", "Default Value Check List"},
    {"override overrides fixedvalue constant", "Value Override Check List"},
    {"type datatype valuetype", "Parameter Type"},
    {"options values choices enum allowed allowedvalues validvalues oneof items", "Ordered Allowed String List"},
    {"unit units quantity dimension", "Quantity Type"},
    {"visible enabled if when condition dependson showif visibleif active availability", "Available"},
    {"mandatory optional", "Required"},
    {"help comment tooltip info doc documentation desc", "Description"},
    {"regex regexp", "Pattern"},
    {"title caption displayname", "Label"},
    {"section category tab", "Group"},
    {"expert", "Advanced"},
});

constexpr auto childKeys = std::to_array<Row>({
    {"min minimum mincount minoccurs atleast", "Minimum Count"},
    {"max maximum maxcount maxoccurs atmost", "Maximum Count"},
    {"single unique", "Singleton"},
    {"names options values choices allowed", "Allowed Names"},
    {"default defaults defaultname", "Default Names"},
    {"visible enabled if when condition dependson showif visibleif active availability", "Available"},
    {"mandatory optional", "Required"},
    {"help comment tooltip info doc documentation desc", "Description"},
    {"title caption displayname", "Label"},
    {"section category tab", "Group"},
    {"expert", "Advanced"},
});

constexpr auto objectKeys = std::to_array<Row>({
    {"params properties attributes fields options variables", "Parameters"},
    {"child objects components elements", "Children"},
    {"constraints validations validation rules asserts", "Checks"},
    {"help comment doc documentation desc", "Description"},
    {"extends inherits base template templates", "Use"},
});

constexpr auto fileKeys = std::to_array<Row>({
    {"version ruledatabaseversion", "Rule Database"},
    {"roots root", "Pertinent Roots"},
    {"units quantities dimensions", "Quantity Types"},
    {"enums enumerations enum", "Lists"},
    {"conditions predicates", "Checks"},
    {"types classes entities", "Objects"},
    {"constraints validations validation rules", "Global Checks"},
    {"constants variables", "Values"},
    {"template definitions defs", "Templates"},
});

constexpr auto checkKeys = std::to_array<Row>({
    {"condition assert expression expr test rule", "Check"},
    {"text error msg description", "Message"},
    {"severity priority type", "Level"},
    {"if available", "When"},
});

constexpr auto guardedKeys = std::to_array<Row>({
    {"if condition case check", "When"},
    {"then default defaultvalue result name", "Value"},
});

std::span<Row const> keysAt(KeyPlace place) {
  switch (place) {
    case KeyPlace::File:
      return fileKeys;
    case KeyPlace::Object:
      return objectKeys;
    case KeyPlace::Parameter:
      return parameterKeys;
    case KeyPlace::Child:
      return childKeys;
    case KeyPlace::Check:
      return checkKeys;
    case KeyPlace::GuardedItem:
      return guardedKeys;
    case KeyPlace::Other:
      break;
  }
  return {};
}

std::optional<WordAdvice> adviceIn(std::span<Row const> rows, std::string_view word) {
  auto const* row = rowOf(rows, word);
  if (row == nullptr) return std::nullopt;
  return row->instead.starts_with(';') ? WordAdvice{{}, row->instead} : WordAdvice{row->instead, {}};
}

}  // namespace

std::string_view callsInsteadOf(std::string_view function) {
  auto const* row = rowOf(functions, function);
  return row == nullptr ? std::string_view() : row->instead;
}

std::optional<WordAdvice> adviceForValue(std::string_view word) {
  return adviceIn(values, word);
}

std::optional<WordAdvice> adviceForOperator(std::string_view word) {
  return adviceIn(operators, word);
}

std::optional<WordAdvice> adviceForType(std::string_view word) {
  // `list[str]` and its like are lists of some kind.
  bool const isOfElements = word.find_first_of("[<(") != std::string_view::npos;
  return adviceIn(types, isOfElements ? "list" : word);
}

std::string keyInsteadOf(std::string_view key, KeyPlace place, std::vector<std::string> const& keys) {
  auto const* row = rowOf(keysAt(place), key);
  if (row == nullptr || std::find(keys.begin(), keys.end(), row->instead) == keys.end()) return {};
  return std::string(row->instead);
}

}  // namespace tarn::rules
