// Follows the parts of an expression whose items become items of its result. Lists that are compared with, or taken
// away, are no names and are left alone.

#include "lint/ComputedNames.h"

#include <string>
#include <utility>
#include <vector>

#include "expression/NearMatch.h"
#include "expression/Nodes.h"
#include "yaml/ScalarText.h"

namespace tarn::rules {

namespace {

/// A text that becomes a name.
struct NameText {
  std::string text;
  Range range;
};

void collect(Expression const& expression, std::vector<NameText>& names) {
  // The depth of an expression is limited when it is parsed.
  if (auto const* literal = dynamic_cast<Literal const*>(&expression)) {
    if (literal->kind() == Kind::Text) names.push_back({literal->rawText(), literal->range()});
    return;
  }
  if (auto const* list = dynamic_cast<ListLiteral const*>(&expression)) {
    for (auto const& item : list->fixedItems()) names.push_back({item, list->range()});
    for (auto const* item : list->operands()) collect(*item, names);
    return;
  }
  auto const parts = expression.operands();
  if (dynamic_cast<Choice const*>(&expression) != nullptr) {
    for (std::size_t i = 1; i < parts.size(); ++i) collect(*parts[i], names);
  } else if (dynamic_cast<Kept const*>(&expression) != nullptr) {
    for (auto const* part : parts) collect(*part, names);
  } else if (auto const* call = dynamic_cast<FunctionCall const*>(&expression); call != nullptr) {
    if (call->kind() != Kind::List) return;
    std::size_t const taken = call->function().name == "difference" ? 1 : parts.size();
    for (std::size_t i = 0; i < taken && i < parts.size(); ++i) {
      if (parts[i]->kind() == Kind::List) collect(*parts[i], names);
    }
  }
}

}  // namespace

void warnOfComputedNames(RuleIndex const& rules, DiagnosticList& diagnostics) {
  for (auto const& use : rules.uses()) {
    if (!use.ofChild || use.role == Role::Condition) continue;
    if (use.attribute != "Allowed Names" && use.attribute != "Default Names") continue;
    std::vector<NameText> names;
    collect(*use.compiled->expression, names);
    for (auto const& name : names) {
      if (canBeObjectName(name.text)) continue;
      auto const range =
          rangeInScalar(*use.item.source, *use.item.node, use.skipped + name.range.offset, name.range.length);
      diagnostics.add(Code::ImpossibleComputedName, *use.item.source, range,
                      name.text.empty() ? "the empty text is dropped from these names: an object name cannot be empty"
                                        : inQuotes(name.text) +
                                              " is dropped from these names: an object name cannot contain '/' or ':'");
    }
  }
}

}  // namespace tarn::rules
