#include "lint/UnusedLint.h"

#include <string>
#include <unordered_set>
#include <vector>

#include "expression/NamedRule.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

void checkNamedRules(LintContext& context) {
  std::unordered_set<NamedRule const*> called;
  std::vector<Expression const*> open;
  for (auto const& use : context.rules().uses()) {
    open.push_back(use.compiled->expression.get());
    while (!open.empty()) {
      auto const* part = open.back();
      open.pop_back();
      if (auto const* call = as<NamedCall>(*part)) called.insert(&call->rule());
      auto const operands = part->operands();
      open.insert(open.end(), operands.begin(), operands.end());
    }
  }
  for (auto const& [rule, place] : context.rules().namedPlaces()) {
    if (called.contains(rule) || place.isCalledInTemplate || context.isMeant(*rule)) continue;
    context.warn(Code::UnusedName, place.name,
                 "no rule uses " + inQuotes(rule->name()) + "; remove it, unless a program evaluates it by its name");
  }
}

void checkQuantityTypes(LintContext& context) {
  std::unordered_set<std::string> used;
  std::unordered_set<std::string_view> known;
  for (auto const& [name, units] : context.rules().quantityTypePlaces()) known.insert(name.node->value);
  for (auto const* object : context.data().objects()) {
    for (auto const& param : object->params()) {
      auto const* type = param->valueDef() != nullptr ? param->valueDef()->quantityType.get() : nullptr;
      if (type == nullptr) continue;
      auto const* fixed = dynamic_cast<FixedText const*>(type);
      // A computed type can be any of them. So can one that is misspelled, which is reported there.
      if (fixed == nullptr || !known.contains(fixed->text())) return;
      used.insert(fixed->text());
    }
  }
  // Objects that use a template have its parameters. A template that none uses is reported itself.
  for (auto const& file : context.rules().files()) {
    auto const* templates = valueIn(*file.root, "Templates");
    forEachIn(templates, [&](YamlNode const& /*name*/, YamlNode const& body) {
      forEachIn(valueIn(body, "Parameters"), [&](YamlNode const& /*parameter*/, YamlNode const& attributes) {
        if (auto const* type = valueIn(attributes, "Quantity Type")) used.insert(type->value);
      });
    });
  }
  for (auto const& [name, units] : context.rules().quantityTypePlaces()) {
    if (used.contains(name.node->value)) continue;
    context.warn(Code::UnusedName, name,
                 "no parameter has the quantity type " + inQuotes(name.node->value) + "; remove it, or use it");
  }
}

void checkTemplates(LintContext& context) {
  for (auto const& one : context.rules().templatePlaces()) {
    if (one.timesUsed > 0) continue;
    context.warn(Code::UnusedName, one.name,
                 "no object and no template uses " + inQuotes(one.name.node->value) + "; remove it, or use it");
  }
}

}  // namespace

void checkUnused(LintContext& context) {
  checkNamedRules(context);
  checkQuantityTypes(context);
  checkTemplates(context);
}

}  // namespace tarn::rules
