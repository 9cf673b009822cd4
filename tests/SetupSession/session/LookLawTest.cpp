// A second reading of allowed values, subsets, defaults, bounds and quantity types. Random parameters are described as
// plain data. The data is written as a rule file for the session, and read here by a few lines that know what the keys
// mean. After any edits both must give the same answers.
#include <algorithm>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

namespace tarn::session {
namespace {

using Texts = std::vector<std::string>;
/// The values that are present.
using Values = std::map<std::string, std::string>;

std::string nameOf(std::size_t param) {
  return "P" + std::to_string(param);
}

/// A condition of rules: its text, and what it means.
struct Condition {
  enum class Kind { Equals, Exists, Not, And, Or } kind = Kind::Exists;
  std::string param;
  std::string value;
  std::vector<Condition> parts;

  [[nodiscard]] std::string text() const {
    switch (kind) {
      case Kind::Equals:
        return "${" + param + "} == '" + value + "'";
      case Kind::Exists:
        return "exists(${" + param + "})";
      case Kind::Not:
        return "not (" + parts[0].text() + ")";
      case Kind::And:
        return "(" + parts[0].text() + ") and (" + parts[1].text() + ")";
      case Kind::Or:
        return "(" + parts[0].text() + ") or (" + parts[1].text() + ")";
    }
    return {};
  }
  [[nodiscard]] bool holds(Values const& values) const {
    auto const found = values.find(param);
    switch (kind) {
      case Kind::Equals:
        return (found == values.end() ? std::string() : found->second) == value;
      case Kind::Exists:
        return found != values.end();
      case Kind::Not:
        return !parts[0].holds(values);
      case Kind::And:
        return parts[0].holds(values) && parts[1].holds(values);
      case Kind::Or:
        return parts[0].holds(values) || parts[1].holds(values);
    }
    return false;
  }
};

struct When {
  Condition condition;
  std::string value;
};

/// A text of the rules that is fixed, depends on a condition, or is the value of another parameter.
struct Computed {
  std::string fixed;
  std::optional<Condition> condition;
  std::string otherwise;
  std::string param;

  [[nodiscard]] std::string text() const {
    if (!param.empty()) return "\"= ${" + param + "}\"";
    if (!condition) return '"' + fixed + '"';
    return "\"= if(" + condition->text() + ", '" + fixed + "', '" + otherwise + "')\"";
  }
  [[nodiscard]] std::string in(Values const& values) const {
    if (!param.empty()) return values.contains(param) ? values.at(param) : std::string();
    return !condition || condition->holds(values) ? fixed : otherwise;
  }
};

struct Param {
  bool isNumber = false;
  bool isList = false;
  bool isRequired = false;
  std::optional<Condition> available;
  // Texts
  Texts allowed;
  std::optional<std::pair<Condition, Texts>> otherAllowed;  // the list is computed, and is this one otherwise
  std::map<std::string, Condition> checks;
  std::set<std::string> unused;
  std::optional<Texts> subset;
  bool allowsAny = false;
  bool isBlankOtherwise = false;
  // All
  std::vector<When> defaults;
  std::optional<std::string> defaultValue;
  std::optional<Computed> lower;
  std::optional<Computed> upper;
  std::optional<Computed> quantityType;
};

std::string listed(Texts const& texts, std::string const& quote) {
  std::string list;
  for (std::string const& text : texts) list += (list.empty() ? "" : ", ") + quote + text + quote;
  return list;
}

std::string rulesOf(std::vector<Param> const& params) {
  std::string text =
      "Rule Database: 1\nPertinent Roots: [Case]\nQuantity Types:\n  Length: {Units: [m, mm]}\n  Mass: {Units: [kg]}\n"
      "Objects:\n  /Case:\n    Parameters:\n";
  for (std::size_t i = 0; i < params.size(); ++i) {
    Param const& param = params[i];
    auto const add = [&](std::string const& key, std::string const& value) {
      text += "        " + key + ": " + value + '\n';
    };
    text += "      " + nameOf(i) + ":\n";
    add("Parameter Type", param.isNumber ? "Real" : param.isList ? "String List" : "String");
    if (param.isRequired) add("Required", "yes");
    if (param.available) add("Available", '"' + param.available->text() + '"');
    if (param.otherAllowed) {
      add("Value List Source", "\"if(" + param.otherAllowed->first.text() + ", (" + listed(param.allowed, "'") +
                                   "), (" + listed(param.otherAllowed->second, "'") + "))\"");
    } else if (!param.allowed.empty()) {
      add("Ordered Allowed String List", '[' + listed(param.allowed, "") + ']');
    }
    if (!param.checks.empty()) {
      add("Allowed String List Checks", "");
      for (auto const& [value, check] : param.checks) text += "          " + value + ": \"" + check.text() + "\"\n";
    }
    if (!param.unused.empty()) {
      add("Unused Allowed String List", '[' + listed({param.unused.begin(), param.unused.end()}, "") + ']');
    }
    if (param.subset) add("Subset Allowed String List", '[' + listed(*param.subset, "") + ']');
    if (param.allowsAny) add("Allows Any Value", "yes");
    if (param.isBlankOtherwise) add("Fallback To Blank Default", "yes");
    if (!param.defaults.empty()) {
      add("Default Value Check List", "");
      for (When const& when : param.defaults) {
        text += "          - {When: \"" + when.condition.text() + "\", Value: \"" + when.value + "\"}\n";
      }
    }
    if (param.defaultValue) add("Default Value", '"' + *param.defaultValue + '"');
    if (param.lower) add("Lower Bound", param.lower->text());
    if (param.upper) add("Upper Bound", param.upper->text());
    if (param.quantityType) add("Quantity Type", param.quantityType->text());
  }
  return text;
}

bool contains(Texts const& texts, std::string const& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

Texts allowedIn(Param const& param, Values const& values) {
  bool const isOther = param.otherAllowed && !param.otherAllowed->first.holds(values);
  Texts allowed;
  for (std::string const& value : isOther ? param.otherAllowed->second : param.allowed) {
    auto const check = param.checks.find(value);
    bool const isWithdrawn = check != param.checks.end() && !check->second.holds(values);
    if (!isWithdrawn && !param.unused.contains(value)) allowed.push_back(value);
  }
  return allowed;
}

Texts subsetIn(Param const& param, Texts const& allowed) {
  Texts subset;
  for (std::string const& value : *param.subset) {
    if (contains(allowed, value)) subset.push_back(value);
  }
  return subset;
}

Texts itemsOf(std::string const& list) {
  Texts items;
  for (std::size_t begin = 0; begin < list.size();) {
    std::size_t const end = std::min(list.find(',', begin), list.size());
    items.push_back(list.substr(begin, end - begin));
    begin = end + 1;
  }
  return items;
}

/// The default, "" for none. `onOffer` are the values that a list of allowed values offers.
std::string defaultIn(Param const& param, Values const& values, Texts const& allowed, Texts const& onOffer) {
  std::optional<std::string> given = param.defaultValue;
  for (auto when = param.defaults.rbegin(); when != param.defaults.rend(); ++when) {
    if (when->condition.holds(values)) given = when->value;
  }
  if (param.allowed.empty()) return given.value_or("");
  if (given) {
    // Blank is no value of a list of allowed values.
    Texts left;
    for (std::string const& item : param.isList ? itemsOf(*given) : Texts{*given}) {
      if (param.allowsAny || contains(allowed, item)) left.push_back(item);
    }
    bool const wasBlankList = param.isList && given->empty();
    if (!left.empty() || wasBlankList) {
      std::string text;
      for (std::string const& item : left) text += (text.empty() ? "" : ",") + item;
      return text;
    }
  }
  return param.isBlankOtherwise || onOffer.empty() ? "" : onOffer.front();
}

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool isOneOf(std::size_t count) { return below(count) == 0; }
  std::string letter() { return std::string(1, static_cast<char>('a' + below(4))); }
  std::string number() {
    Texts const numbers = {"1 [m]", "2 [m]", "30 [mm]", "-5 [m]", "7", "0"};
    return numbers[below(numbers.size())];
  }
  std::string letters() {
    std::string text = letter();
    while (isOneOf(2)) text += "," + letter();
    return text;
  }

  /// A condition on the parameters before `end`. So what the rules have read is what is there now.
  Condition condition(std::size_t end, std::size_t depth = 2) {
    std::size_t const kind = below(depth == 0 ? 2 : 5);
    if (kind < 2) {
      return {kind == 0 ? Condition::Kind::Equals : Condition::Kind::Exists, nameOf(below(end)), letter(), {}};
    }
    if (kind == 2) return {Condition::Kind::Not, {}, {}, {condition(end, depth - 1)}};
    return {kind == 3 ? Condition::Kind::And : Condition::Kind::Or,
            {},
            {},
            {condition(end, depth - 1), condition(end, depth - 1)}};
  }

  Computed computed(std::size_t end, std::string fixed, std::string otherwise) {
    Computed text = {std::move(fixed), std::nullopt, std::move(otherwise), {}};
    if (isOneOf(2)) text.condition = condition(end);
    return text;
  }

  std::vector<Param> params(std::size_t count) {
    std::vector<Param> params;
    for (std::size_t i = 0; i < count; ++i) params.push_back(param(params));
    return params;
  }

  Edit edit(std::vector<Param> const& params) {
    std::size_t const i = below(params.size());
    switch (below(8)) {
      case 0:
        return Edit::activateParam("/Case", nameOf(i));
      case 1:
        return Edit::deactivateParam("/Case", nameOf(i));
      default:
        return Edit::setParam("/Case", nameOf(i),
                              params[i].isNumber ? number()
                              : params[i].isList ? letters()
                                                 : letter());
    }
  }

 private:
  Texts someLetters() {
    Texts letters = {"a", "b", "c", "d"};
    std::shuffle(letters.begin(), letters.end(), random_);
    letters.resize(1 + below(4));
    return letters;
  }

  Param param(std::vector<Param> const& before) {
    std::size_t const end = before.size();
    Param param;
    param.isRequired = isOneOf(2);
    param.isNumber = isOneOf(3);
    if (end > 0 && isOneOf(3)) param.available = condition(end);
    if (param.isNumber) {
      addNumber(param, before);
    } else {
      addTexts(param, end);
    }
    while (end > 0 && isOneOf(3)) {
      param.defaults.push_back({condition(end), param.isNumber ? number() : param.isList ? letters() : letter()});
    }
    if (!isOneOf(3)) param.defaultValue = param.isNumber ? number() : param.isList ? letters() : letter();
    return param;
  }

  void addNumber(Param& param, std::vector<Param> const& before) {
    std::size_t const end = before.size();
    if (isOneOf(2)) param.quantityType = end > 0 ? computed(end, "Length", "Mass") : Computed{"Length", {}, {}, {}};
    for (std::optional<Computed>* bound : {&param.lower, &param.upper}) {
      if (isOneOf(3)) continue;
      *bound = end > 0 ? computed(end, number(), number()) : Computed{number(), {}, {}, {}};
      for (std::size_t i = 0; i < end; ++i) {
        if (before[i].isNumber && isOneOf(2)) (*bound)->param = nameOf(i);
      }
    }
  }

  void addTexts(Param& param, std::size_t end) {
    param.isList = isOneOf(4);
    if (isOneOf(6)) return;
    param.allowed = someLetters();
    if (end > 0 && isOneOf(3)) {
      // A list of one item would be a text.
      auto const atLeastTwo = [&] {
        Texts letters = someLetters();
        while (letters.size() < 2) letters = someLetters();
        return letters;
      };
      param.allowed = atLeastTwo();
      param.otherAllowed = {condition(end), atLeastTwo()};
    }
    if (end > 0) {
      for (std::string const& value : param.allowed) {
        if (isOneOf(4)) param.checks.emplace(value, condition(end));
      }
    }
    if (isOneOf(5)) param.unused.insert(letter());
    if (isOneOf(4)) param.subset = someLetters();
    param.allowsAny = isOneOf(6);
    param.isBlankOtherwise = isOneOf(3);
  }

  std::mt19937 random_;
};

class LookLaw {
 public:
  LookLaw(Session& session, std::vector<Param> const& params) : session_(session), params_(params) {}

  void expectAnswers() {
    Values values;
    for (std::size_t i = 0; i < params_.size(); ++i) {
      auto const record = session_.lookParam("/Case", nameOf(i));
      ASSERT_TRUE(record);
      if (record->present) values.emplace(nameOf(i), record->value.value_or(""));
    }
    for (std::size_t i = 0; i < params_.size(); ++i) expectAnswer(i, values);
  }

  /// Values that the user has selected stay on offer.
  void note(Edit const& edit) {
    if (edit.kind != Edit::Kind::SetParam) return;
    for (std::string const& item : itemsOf(edit.value)) selected_.insert({edit.name, item});
  }

  std::size_t checked = 0;
  std::size_t withdrawn = 0;

 private:
  void expectAnswer(std::size_t i, Values const& values) {
    SCOPED_TRACE(nameOf(i));
    Param const& param = params_[i];
    ParamRecord const record = *session_.lookParam("/Case", nameOf(i));
    ++checked;
    if (param.available && !param.available->holds(values)) {
      EXPECT_FALSE(record.available());
      ++withdrawn;
    }
    Texts allowed;
    Texts onOffer;
    EXPECT_EQ(record.allowed.hasAllowedValues, !param.allowed.empty());
    if (!param.allowed.empty()) {
      allowed = allowedIn(param, values);
      EXPECT_EQ(record.allowed.allowedValues.vector(), allowed);
      EXPECT_EQ(record.allowed.allowsAnyValue, param.allowsAny);
      onOffer = allowed;
    }
    EXPECT_EQ(record.allowed.hasSubset, param.subset.has_value());
    if (param.subset) {
      onOffer = subsetIn(param, allowed);
      Texts const& subset = record.allowed.subsetValues.vector();
      ASSERT_GE(subset.size(), onOffer.size());
      EXPECT_TRUE(std::equal(onOffer.begin(), onOffer.end(), subset.begin()));
      for (std::size_t k = onOffer.size(); k < subset.size(); ++k) {
        EXPECT_TRUE(contains(allowed, subset[k]) && selected_.contains({nameOf(i), subset[k]})) << subset[k];
      }
      onOffer = subset;
    }
    std::string const expected = defaultIn(param, values, allowed, onOffer);
    EXPECT_EQ(record.defaultValue.value_or(""), expected);
    auto const textOf = [&](std::optional<Computed> const& text) { return text ? text->in(values) : std::string(); };
    EXPECT_EQ(record.lowerBound.value_or(""), textOf(param.lower));
    EXPECT_EQ(record.upperBound.value_or(""), textOf(param.upper));
    std::string const quantityType = textOf(param.quantityType);
    EXPECT_EQ(record.quantityType, quantityType);
    EXPECT_EQ(record.units, quantityType == "Length" ? (Texts{"m", "mm"})
                            : quantityType == "Mass" ? Texts{"kg"}
                                                     : Texts{});
    // A value that is present keeps to the list.
    if (param.allowed.empty() || param.allowsAny || !record.present) return;
    for (std::string const& item : param.isList ? itemsOf(*record.value) : Texts{*record.value}) {
      EXPECT_TRUE(item.empty() || contains(allowed, item)) << item;
    }
  }

  Session& session_;
  std::vector<Param> const& params_;
  std::set<std::pair<std::string, std::string>> selected_;
};

TEST(SessionLaw, RecordsOfParametersSayWhatTheirRulesMean) {
  std::size_t checked = 0;
  std::size_t withdrawn = 0;
  for (unsigned seed = 1; seed <= 150; ++seed) {
    Generator generator(seed);
    std::vector<Param> const params = generator.params(8);
    std::string const text = rulesOf(params);
    auto const rules = tarn::rules::parseRules(text);
    auto const opened = Session::open(*rules, ModelState{{"/Case", {}}});
    ASSERT_NE(opened.session, nullptr) << text;
    LookLaw law(*opened.session, params);
    std::string history;
    for (int step = 0; step < 12; ++step) {
      SCOPED_TRACE("seed " + std::to_string(seed) + '\n' + text + history);
      law.expectAnswers();
      if (testing::Test::HasFailure()) return;
      if (generator.isOneOf(6)) {
        (void)opened.session->undo();
        history += "undo\n";
      } else if (generator.isOneOf(6)) {
        (void)opened.session->redo();
        history += "redo\n";
      } else {
        Edit const edit = generator.edit(params);
        law.note(edit);
        (void)opened.session->edit(edit);
        history += edit.name + " = " + edit.value + '\n';
      }
    }
    checked += law.checked;
    withdrawn += law.withdrawn;
  }
  EXPECT_GT(checked, 10'000U);
  EXPECT_GT(withdrawn, 500U);
}

}  // namespace
}  // namespace tarn::session
