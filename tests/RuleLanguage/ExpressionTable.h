#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/EvalCache.h>
#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

#include "support/MapModel.h"

namespace tarn::rules::test {

using tarn::test::MapModel;

/// A rule file's double-quoted scalar of `text`.
inline std::string yamlText(std::string_view text) {
  std::string result = "\"";
  for (char const c : text) {
    if (c == '"' || c == '\\') result += '\\';
    if (c == '\n') {
      result += "\\n";
    } else {
      result += c;
    }
  }
  return result + '"';
}

/// A list as tables write it: "[a, b]".
inline std::string listText(std::vector<std::string> const& items) {
  std::string text = "[";
  for (auto const& item : items) text += (text.size() > 1 ? ", " : "") + item;
  return text + "]";
}

/// Tables of expressions and their results, one line a case, over the model of a pump:
///
///     expectTexts({{"1 + 2", "3"}, {"${Motion}", "Rotating"}});
///     expectLists({{"('b', 'a')", "[b, a]"}});
///
/// Every expression is loaded from a rule file, in which it belongs to `/Case/Domain`, and is evaluated in the context
/// of
/// `/Case/Domain:rotor` three times: without a cache, with one, and again from that one. All must agree.
class ExpressionTable : public testing::Test {
 protected:
  using Table = std::vector<std::pair<std::string, std::string>>;

  void expectTexts(Table const& table) {
    std::string file = header();
    file += "  /Case/Domain:\n    Parameters:\n" + declarations_;
    for (std::size_t i = 0; i < table.size(); ++i) {
      file += "      Case " + std::to_string(i) +
              ": {Parameter Type: String, Default Value: " + yamlText("= " + table[i].first) + "}\n";
    }
    auto const data = load(file);
    if (!data) return;
    for (std::size_t i = 0; i < table.size(); ++i) {
      auto const* def = data->getParamValueDef("/Case/Domain", "Case " + std::to_string(i), true);
      expectAlike(table[i], [&](EvalContext* evaluation) {
        return def->evaluateDefault(data->getRules(), context_, evaluation);
      });
    }
  }

  void expectLists(Table const& table) {
    std::string file = header();
    file += "  /Case/Domain:\n    Parameters:\n" + declarations_;
    for (std::size_t i = 0; i < table.size(); ++i) {
      file += "      Case " + std::to_string(i) +
              ": {Parameter Type: String, Value List Source: " + yamlText(table[i].first) + "}\n";
    }
    auto const data = load(file);
    if (!data) return;
    for (std::size_t i = 0; i < table.size(); ++i) {
      auto const* def = data->getParamValueDef("/Case/Domain", "Case " + std::to_string(i), true);
      expectAlike(table[i], [&](EvalContext* evaluation) {
        return listText(def->evaluateAllowedValues(data->getRules(), context_, evaluation).allowedValues.vector());
      });
    }
  }

  /// Named checks and lists that the expressions may call: whole sections of the file.
  std::string sections_;
  /// Parameters of `/Case/Domain` that the rules declare, each a line of the file.
  std::string declarations_;
  TDFContext context_{"/Case/Domain:rotor"};
  MapModel model_{{"/Case", {{"Flow Regime", "Turbulent"}, {"Energy Equation", "true"}, {"Maximum Speed", "25 [m/s]"}}},
                  {"/Case/Domain:rotor",
                   {{"Motion", "Rotating"},
                    {"Material", "Water"},
                    {"Speed", "12.5 [m/s]"},
                    {"Blades", "3"},
                    {"Fluids", "Water, Air ,Oil,Water"},
                    {"Lengths", "3, 1 [m] ,2.5"},
                    {"Periodic", "Yes"},
                    {"Heated", "off"},
                    {"Title", ""},
                    {"Padded", "  Water "}}},
                  {"/Case/Domain:rotor/Boundary:in", {{"Kind", "Inlet"}, {"Flow", "4"}}},
                  {"/Case/Domain:rotor/Boundary:out", {{"Kind", "Outlet"}, {"Flow", "3"}}},
                  {"/Case/Domain:rotor/Boundary:shroud", {{"Kind", ""}}},
                  {"/Case/Domain:rotor/Motion Frame", {{"Axis", "z"}}},
                  {"/Case/Domain:stator", {{"Motion", "Stationary"}, {"Material", "Air"}}},
                  {"/Case/Domain:stator/Boundary:in", {{"Kind", "Inlet"}, {"Flow", "2"}}},
                  {"/Library/Material:Water at 25 C", {{"Density", "997 [kg m^-3]"}}},
                  {"/Library/Material:a}b*", {{"Density", "1"}}}};

 private:
  [[nodiscard]] std::string header() const {
    return "Rule Database: 1\n" + sections_ + "Objects:\n  /Case: {Parameters: {}}\n";
  }

  static std::unique_ptr<PhysicsData> load(std::string const& file) {
    try {
      return parseRules(file);
    } catch (RuleError const& error) {
      ADD_FAILURE() << format(error.diagnostics());
      return nullptr;
    }
  }

  template <typename Evaluate>
  void expectAlike(std::pair<std::string, std::string> const& line, Evaluate evaluate) {
    EvalContext plain(&model_);
    EXPECT_EQ(evaluate(&plain), line.second) << line.first;
    EvalCache cache;
    cache.enable(true);
    EvalContext cached(&model_, &cache);
    EXPECT_EQ(evaluate(&cached), line.second) << "with a cache: " << line.first;
    EXPECT_EQ(evaluate(&cached), line.second) << "from the cache: " << line.first;
  }
};

/// The errors of a rule file as people read them; "" when there are none.
inline std::string errorsOf(std::string const& text, LoadLimits const& limits = {}) {
  try {
    (void)parseRules(text, "flow.rules.yaml", limits);
  } catch (RuleError const& error) {
    return format(error.diagnostics());
  }
  return {};
}

/// The faults of an expression in the role of a condition, each as "column+length: message" with the column counted in
/// the expression from 1; "" when there are none. A check 'rotating' may be called; `sections` can add lists.
inline std::string conditionFault(std::string const& expression, std::string const& sections = {},
                                  LoadLimits const& limits = {}) {
  // An expression with characters that double quotes would escape is written as a block, so that columns stay the same.
  bool const block = expression.find_first_of("\"\\") != std::string::npos;
  std::string const before = block ? "    " : "  tested: \"";
  std::string file = "Rule Database: 1\n" + sections + "Checks:\n  rotating: true\n";
  file += block ? "  tested: |-\n" + before + expression : "  tested: " + yamlText(expression);
  std::string all;
  try {
    (void)parseRules(file + "\n", "<rules>", limits);
  } catch (RuleError const& error) {
    for (auto const& one : error.diagnostics()) {
      if (!all.empty()) all += "\n";
      all += std::to_string(one.column - before.size()) + "+" +
             std::to_string(std::max<std::size_t>(1, one.endColumn - one.column)) + ": " + one.message;
    }
  }
  return all;
}

}  // namespace tarn::rules::test
