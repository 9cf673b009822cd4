#include "session/PresentTypes.h"

#include <algorithm>
#include <string_view>

#include <tarn/DynamicTDF.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>

namespace tarn::session {

PresentTypes::PresentTypes(RuledState const& state, std::string const& root) {
  if (!state.hasObject(root)) return;
  std::vector<std::string_view> ruled;
  for (ObjDependDef const* object : state.rules().objects()) ruled.emplace_back(object->typePath());
  std::sort(ruled.begin(), ruled.end());
  auto const prepare = [&](Type& type, std::string const& object) {
    type.rules = state.rulesOfObject(object);
    std::string const prefix = PathUtils::typePathOf(object) + '/';
    auto const next = std::lower_bound(ruled.begin(), ruled.end(), prefix);
    type.hasRulesBelow = next != ruled.end() && next->starts_with(prefix);
  };

  DynamicTDF const& tree = state.state().getActiveTree();
  prepare(top_, root);
  std::vector<std::pair<std::string, Type*>> open = {{root, &top_}};
  std::vector<std::string> children;
  for (std::size_t number = 0; !open.empty(); ++number) {
    auto [path, type] = std::move(open.back());
    open.pop_back();
    bool const isListed = type->hasRulesBelow && tree.getChildObjectPaths(path, children);
    if (++type->count <= Refused::mostPaths) type->first.emplace_back(number, std::move(path));
    if (!isListed) continue;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      std::string_view const name = PathUtils::lastType(*child);
      auto known = type->below.find(name);
      if (known == type->below.end()) {
        known = type->below.emplace(name, Type()).first;
        prepare(known->second, *child);
      }
      open.emplace_back(std::move(*child), &known->second);
    }
  }
}

std::vector<PresentTypes::Type const*> PresentTypes::withRules() const {
  std::vector<Type const*> types;
  std::vector<Type const*> open = {&top_};
  while (!open.empty()) {
    Type const& type = *open.back();
    open.pop_back();
    if (type.rules != nullptr) types.push_back(&type);
    for (auto const& [name, below] : type.below) open.push_back(&below);
  }
  return types;
}

}  // namespace tarn::session
