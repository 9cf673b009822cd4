// Any bytes as an expression of a rule, as a condition, as a text and as a list: it is loaded, or refused with
// diagnostics. An expression that loads is evaluated at several objects of one model. The result is the same with and
// without a cache. The expression reads only parameters that it reports as reads. A result that depends on no object is
// the same at all of them. The source of the expression loads again as the same expression.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleReads.h>
#include <tarn/rules/RuleFunction.h>
#include <tarn/rules/RuleLoader.h>

#include "fuzz/support/Laws.h"
#include "support/MapModel.h"
#include "support/ModelView.h"

namespace {

using tarn::fuzz::require;
using tarn::test::MapModel;
using tarn::test::ModelView;
using tarn::test::Question;

constexpr std::string_view rules = R"yaml(Rule Database: 1
Lists:
  two-equation models: [k-epsilon, SST]
  moving parts: = names(filter({/Case/Domain:*}, ${Motion} == 'Rotating'))
Values:
  limit: 1.50
  label: 'Rot[a-z]+'
  speed of the rotor: = ${/Case/Domain:rotor/Speed} / value('limit')
Checks:
  domain turns: ${^Domain/Motion} == 'Rotating'
  energy: ${/Case/Energy Equation}
Objects:
  /Case:
    Parameters:
      Energy Equation: {Parameter Type: Logical}
      Maximum Speed: {Parameter Type: Real}
  /Case/Domain:
    Parameters:
      Motion: {Parameter Type: String}
      Speed: {Parameter Type: Real}
      Blades: {Parameter Type: Integer}
      Fluids: {Parameter Type: String List}
      Lengths: {Parameter Type: Real List}
      Periodic: {Parameter Type: Logical}
      Tested: {Parameter Type: String, )yaml";

/// A pump.
MapModel const pump{
    {"/Case", {{"Flow Regime", "Turbulent"}, {"Energy Equation", "true"}, {"Maximum Speed", "25 [m/s]"}}},
    {"/Case/Domain:rotor",
     {{"Motion", "Rotating"},
      {"Speed", "12.5 [m/s]"},
      {"Blades", "3"},
      {"Fluids", "Water, Air ,Oil,Water"},
      {"Lengths", "3, 1 [m] ,2.5"},
      {"Periodic", "Yes"},
      {"Title", ""}}},
    {"/Case/Domain:rotor/Boundary:in", {{"Kind", "Inlet"}, {"Flow", "4"}}},
    {"/Case/Domain:rotor/Boundary:out", {{"Kind", "Outlet"}, {"Flow", "1e300"}}},
    {"/Case/Domain:rotor/Turbulence", {{"Model", "SST"}}},
    {"/Case/Domain:stator", {{"Motion", "Stationary"}, {"Speed", "fast"}}},
    {"/Case/Domain:stator/Boundary:in", {{"Kind", ""}, {"Flow", "-0"}}}};

std::array<std::string, 5> const places = {"/Case/Domain:rotor", "/Case/Domain:stator", "/Case",
                                           "/Case/Domain:rotor/Boundary:in", ""};

/// Each byte as the character of that number, in UTF-8: a rule file holds no other bytes.
std::string utf8(std::string_view bytes) {
  std::string text;
  for (char const c : bytes) {
    auto const byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | (byte >> 6));
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

/// A double-quoted scalar of a text that `utf8` made.
std::string scalarOf(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string scalar = "\"";
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto byte = static_cast<unsigned char>(text[i]);
    if (byte >= 0x80) byte = static_cast<unsigned char>((byte << 6) | (static_cast<unsigned char>(text[++i]) & 0x3F));
    if (byte < 0x20 || byte >= 0x7F) {
      scalar += "\\x";
      scalar += digits[byte >> 4];
      scalar += digits[byte & 0xF];
    } else {
      if (byte == '"' || byte == '\\') scalar += '\\';
      scalar += static_cast<char>(byte);
    }
  }
  return scalar + '"';
}

/// A way of using an expression in a rule.
struct Role {
  std::string_view attribute;
  std::string_view before;
};
constexpr std::array<Role, 3> roles = {Role{"Available", ""}, Role{"Default Value", "= "},
                                       Role{"Value List Source", ""}};

/// The rules with the expression in one role, or null when it is refused.
class Loaded {
 public:
  Loaded(Role const& role, std::string const& expression) {
    tarn::rules::LoadLimits limits;
    limits.expressionLength = 2'000;
    limits.expressionDepth = 40;
    std::string const file = std::string(rules) + std::string(role.attribute) + ": " +
                             scalarOf(std::string(role.before) + expression) + "}\n";
    try {
      data_ = tarn::rules::parseRules(file, "fuzz", limits);
    } catch (tarn::rules::RuleError const& error) {
      require(!error.diagnostics().empty() && !format(error.diagnostics()).empty(), "a refusal says why", expression);
      return;
    }
    auto const* object = data_->getObjDependDef("/Case/Domain", true);
    condition_ = object->findParam("Tested")->available.get();
    text_ = object->findValueDef("Tested")->defaultValue.get();
    list_ = object->findValueDef("Tested")->allowedValues.get();
  }

  [[nodiscard]] tarn::RuleExpression const* expression() const {
    if (condition_ != nullptr) return condition_;
    if (text_ != nullptr) return text_;
    return list_;
  }

  [[nodiscard]] std::string evaluate(tarn::TDFContext const& context, tarn::EvalContext& evaluation) const {
    if (condition_ != nullptr) return condition_->evaluate(context, &evaluation) ? "true" : "false";
    if (text_ != nullptr) return text_->evaluate(context, &evaluation);
    std::string items;
    for (std::string const& item : list_->evaluate(context, &evaluation)) items += item + '\n';
    return items;
  }

 private:
  std::unique_ptr<tarn::PhysicsData> data_;
  tarn::Condition const* condition_ = nullptr;
  tarn::TextExpression const* text_ = nullptr;
  tarn::ListExpression const* list_ = nullptr;
};

/// Objects of objects of objects: that is only slow.
bool isDeep(std::string_view expression) {
  using tarn::rules::RuleFunction;
  int loops = 0;
  for (RuleFunction const& function : tarn::rules::ruleFunctions()) {
    if (function.cost != RuleFunction::Cost::EachObject && function.cost != RuleFunction::Cost::NamedRule) continue;
    for (auto at = expression.find(function.name); at != std::string_view::npos;
         at = expression.find(function.name, at + 1)) {
      ++loops;
    }
  }
  return loops > 4;
}

bool isTold(tarn::RuleReads const& reads, tarn::TDFContext const& context, MapModel const& model,
            std::string const& objPath, std::string const& name) {
  for (auto const& read : reads.parameters) {
    if (read.name != name) continue;
    if (read.objects.isSingle()) {
      std::string one;
      if (read.objects.resolve(context, one) && one == objPath) return true;
    } else {
      for (std::string const& path : read.objects.expand(context, model)) {
        if (path == objPath) return true;
      }
    }
  }
  return false;
}

void checkReads(tarn::RuleReads const& reads, std::string const& expression) {
  for (auto const& read : reads.parameters) {
    require(!read.name.empty() && read.name.find('/') == std::string::npos, "a parameter that is read has a name",
            expression);
    if (std::string const text = read.objects.text(); !text.empty()) {
      require(tarn::PathPattern(text).text() == text, "what is read prints back to itself", expression);
    }
  }
}

std::vector<std::string> results(Loaded const& loaded, std::string const& expression) {
  std::set<std::pair<std::string, std::string>> asked;
  ModelView const model(pump, [&](Question question, std::string const& objPath, std::string const& name) {
    if (question == Question::HasParameter || question == Question::ParameterValue ||
        question == Question::ParameterValueAsList) {
      asked.emplace(objPath, name);
    }
  });
  tarn::RuleReads reads;
  loaded.expression()->collectReads(reads);
  checkReads(reads, expression);

  std::vector<std::string> all;
  tarn::EvalCache cache;
  cache.enable(true);
  for (std::string const& place : places) {
    tarn::TDFContext const context(place);
    tarn::EvalContext plain(&model);
    asked.clear();
    all.push_back(loaded.evaluate(context, plain));
    for (auto const& [objPath, name] : asked) {
      require(isTold(reads, context, pump, objPath, name), "only reported parameters are read: " + objPath + '/' + name,
              expression);
    }
    tarn::EvalContext cached(&model, &cache);
    for (int i = 0; i < 2; ++i) {
      require(loaded.evaluate(context, cached) == all.back(), "a cache changes nothing", expression);
    }
    require(!reads.isContextFree() || all.back() == all.front(),
            "a result that depends on no object is the same at all of them", expression);
  }
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static bool const loads = Loaded(roles.front(), "${Motion} == 'Rotating'").expression() != nullptr;
  require(loads, "the rules around the expression load", rules);
  std::string const expression = utf8(tarn::fuzz::textOf(data, size));
  if (isDeep(expression)) return 0;
  for (Role const& role : roles) {
    Loaded const loaded(role, expression);
    if (loaded.expression() == nullptr) continue;
    auto const all = results(loaded, expression);
    std::string const source = loaded.expression()->sourceText();
    if (source.empty()) continue;
    Loaded const again(role, source);
    require(again.expression() != nullptr, "the source of an expression loads", expression);
    require(again.expression()->sourceText() == source, "the source of an expression is its source", expression);
    require(results(again, source) == all, "the source of an expression is that expression", expression);
  }
  return 0;
}
