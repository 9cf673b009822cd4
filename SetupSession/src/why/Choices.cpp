#include "why/Choices.h"

#include <algorithm>
#include <utility>

#include <tarn/TDFParam.h>

namespace tarn::session {

std::vector<std::string> Choices::values(Item const& param) const {
  ParamRules const rules = state_.rulesOfParam(param.path, *param.name);
  if (!rules) return {};
  ParamAllowedValues const allowed = state_.allowedValues(rules, param.path);
  std::vector<std::string> values;
  auto const add = [&](std::string const& value) {
    if (std::find(values.begin(), values.end(), value) == values.end()) values.push_back(value);
  };
  std::string const byDefault = state_.defaultValue(rules, param.path, allowed);
  if (!byDefault.empty()) add(byDefault);
  if (allowed.hasAllowedValues) {
    for (std::string const& value : allowed.allowedValues) add(value);
  } else if (rules.value->type == TDFParam::Logical) {
    add("true");
    add("false");
  }
  return values;
}

std::vector<std::string> Choices::otherValues(Item const& param) const {
  std::vector<std::string> others = values(param);
  if (std::string const* const present = state_.value(param.path, *param.name)) std::erase(others, *present);
  return others;
}

bool Choices::isFree(Item const& param) const {
  ParamRules const rules = state_.rulesOfParam(param.path, *param.name);
  if (!rules || rules.value->type == TDFParam::Logical) return false;
  return rules.value->allowedValueKind == ParamValueDef::NoAllowedValues || rules.value->allowsAnyValue;
}

std::string Choices::freeName(std::string const& parent, std::string_view type) const {
  std::string const prefix = parent + '/' + std::string(type) + ':';
  std::size_t number = 1;
  std::string name;
  do {
    name = "new" + std::to_string(number++);
  } while (state_.hasObject(prefix + name) || state_.state().getGuideTree().hasObject(prefix + name));
  return name;
}

std::vector<std::string> Choices::namedChildren(std::string const& parent, std::string const& type) const {
  std::vector<std::string> children;
  state_.state().getActiveTree().getChildObjectPathsByType(parent, type, children);
  std::erase_if(children, [](std::string const& path) { return !isNamedObject(path); });
  return children;
}

}  // namespace tarn::session
