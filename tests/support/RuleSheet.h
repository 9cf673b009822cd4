#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

#include "support/Rules.h"

/// Rules as plain records: what a rule database holds as expressions is data here, so that a test can read the rules by
/// itself and need not believe the library's evaluation. `RuleSheet::fill` makes the database of a sheet.
namespace tarn::test {

/// A parameter that a rule looks at: of its own object, of the parent, of the object `/Case`, which is not edited, or
/// of a zone, which changes while the walk goes through its siblings.
struct LookSheet {
  enum Where { Own, Parent, Case, Zone };
  Where where = Own;
  std::string name;

  [[nodiscard]] std::string objPath(std::string const& own) const {
    if (where == Case) return "/Case";
    if (where == Zone) return "/Case/Domain:rotor/Zone:a";
    return where == Own ? own : own.substr(0, own.rfind('/'));
  }
};

/// Holds while the parameter has that value, or while it has not.
struct ConditionSheet {
  LookSheet look;
  std::string value;
  bool negated = false;
};

/// One of two lists, by a condition.
struct ListSheet {
  ConditionSheet when;
  std::vector<std::string> then;
  std::vector<std::string> otherwise;
};

/// A text, or the value of a parameter.
struct TextSheet {
  std::string fixed;
  std::optional<LookSheet> copyOf;
};

struct ParamSheet {
  std::string name;
  TDFParam::Type type = TDFParam::String;
  bool required = false;
  bool relaxed = false;
  bool contextRule = false;
  std::vector<std::string> contexts;
  std::optional<ConditionSheet> available;
  std::optional<ListSheet> allowed;
  std::optional<ListSheet> subset;
  bool anyValueAllowed = false;
  bool availableWithNoAllowedValues = false;
  bool completeListRequired = false;
  bool fallbackToBlankDefault = false;
  std::optional<TextSheet> byDefault;
  std::vector<std::pair<ConditionSheet, TextSheet>> overrides;
};

struct ChildSheet {
  std::string type;
  bool required = false;
  bool singleton = false;
  bool coupled = false;
  std::vector<std::string> contexts;
  std::optional<ConditionSheet> available;
  std::optional<ListSheet> allowedNames;
  std::vector<std::string> defaultNames;
};

struct ObjectSheet {
  std::string typePath;
  std::vector<ParamSheet> params;
  std::vector<ChildSheet> children;
};

/// A rule that looks at one parameter and keeps its result as long as the evaluation lets it, for all objects from
/// which that is the same parameter. So a state that hands out a result that was kept for too long differs from one
/// that evaluates every rule anew.
template <typename Base, typename Result>
class KeptByLook final : public Base {
 public:
  KeptByLook(LookSheet look, lambda::Function<Result> function)
      : look_(std::move(look)), function_(std::move(function)) {}

  [[nodiscard]] Result evaluate(TDFContext const& context, EvalContext* evalContext) const override {
    EvalCache* const cache = evalContext->getCache();
    if (cache == nullptr) return function_(context, *evalContext->getDB());
    void const* const key = &keys_[look_.objPath(context.objPath())];
    if (auto const* known = cache->find(key)) return std::get<Result>(*known);
    Result result = function_(context, *evalContext->getDB());
    cache->store(key, result);
    return result;
  }

  void collectReads(RuleReads& reads) const override {
    reads.objectSets.emplace_back("/**");
    reads.contextIdentity = true;
  }

 private:
  LookSheet look_;
  lambda::Function<Result> function_;
  mutable std::map<std::string, char> keys_;  // only their addresses count
};

struct RuleSheet {
  std::vector<ObjectSheet> objects;

  [[nodiscard]] ObjectSheet const* find(std::string const& typePath) const {
    for (ObjectSheet const& object : objects) {
      if (object.typePath == typePath) return &object;
    }
    return nullptr;
  }

  void fill(PhysicsData& data) const {
    for (ObjectSheet const& object : objects) {
      Rules rules(data, object.typePath);
      for (ParamSheet const& param : object.params) add(rules, param);
      for (ChildSheet const& child : object.children) add(rules, child);
    }
  }

 private:
  static std::string valueOf(LookSheet const& look, TDFContext const& at, ModelTDF const& model) {
    return model.getParameterValue(look.objPath(at.objPath()), look.name);
  }
  static lambda::Function<bool> function(ConditionSheet const& sheet) {
    return [sheet](TDFContext const& at, ModelTDF const& model) {
      return (valueOf(sheet.look, at, model) == sheet.value) != sheet.negated;
    };
  }
  static std::unique_ptr<Condition> expression(ConditionSheet const& sheet) {
    return std::make_unique<KeptByLook<Condition, bool>>(sheet.look, function(sheet));
  }
  static std::unique_ptr<ListExpression> expression(ListSheet const& sheet) {
    SharedStrings const then(sheet.then);
    SharedStrings const otherwise(sheet.otherwise);
    auto const condition = function(sheet.when);
    return std::make_unique<KeptByLook<ListExpression, SharedStrings>>(
        sheet.when.look,
        [=](TDFContext const& at, ModelTDF const& model) { return condition(at, model) ? then : otherwise; });
  }
  static std::unique_ptr<TextExpression> expression(TextSheet const& sheet) {
    if (!sheet.copyOf) return text(sheet.fixed);
    return std::make_unique<KeptByLook<TextExpression, std::string>>(
        *sheet.copyOf,
        [look = *sheet.copyOf](TDFContext const& at, ModelTDF const& model) { return valueOf(look, at, model); });
  }

  static void add(Rules& rules, ParamSheet const& sheet) {
    rules.param(sheet.name).type(sheet.type).inContexts(sheet.contexts);
    if (sheet.required) rules.required();
    if (sheet.relaxed) rules.relaxed();
    if (sheet.contextRule) rules.contextRule();
    if (sheet.available) rules.availableWhen(expression(*sheet.available));
    if (sheet.allowed) rules.allowed(expression(*sheet.allowed));
    if (sheet.subset) rules.subset(expression(*sheet.subset));
    if (sheet.anyValueAllowed) rules.anyValueAllowed();
    if (sheet.availableWithNoAllowedValues) rules.availableWithNoAllowedValues();
    if (sheet.completeListRequired) rules.completeListRequired();
    if (sheet.fallbackToBlankDefault) rules.fallbackToBlankDefault();
    if (sheet.byDefault) rules.byDefault(expression(*sheet.byDefault));
    for (auto const& [condition, value] : sheet.overrides) {
      rules.overriddenWhen(expression(condition), expression(value));
    }
  }
  static void add(Rules& rules, ChildSheet const& sheet) {
    rules.child(sheet.type).inContexts(sheet.contexts);
    if (sheet.required) rules.required();
    if (sheet.singleton) rules.singleton();
    if (sheet.coupled) rules.coupled();
    if (sheet.available) rules.availableWhen(expression(*sheet.available));
    if (sheet.allowedNames) rules.allowedNames(expression(*sheet.allowedNames));
    if (!sheet.defaultNames.empty()) rules.defaultNames(list(sheet.defaultNames));
  }
};

}  // namespace tarn::test
