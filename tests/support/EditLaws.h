#pragma once

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <tarn/ModelState.h>
#include <tarn/ProvisionalTDF.h>

#include "support/EditResult.h"
#include "support/PlainProvisional.h"
#include "support/RandomRules.h"

/// Laws of every edit of a `ProvisionalTDF`, whatever the rules, the models and the earlier edits. Each law is a plain
/// function that returns the broken law, or "".
///
///     StateSnapshot const before(state);
///     EditResult const result = resultOf(edit, state);
///     std::string const broken = brokenLaw(before, state, result);
namespace tarn::test {

/// All that a user interface shows of a state.
struct StateSnapshot {
  using Strings = std::vector<std::string>;
  using ParamSet = std::set<std::pair<std::string, std::string>>;

  explicit StateSnapshot(ProvisionalTDF const& state)
      : active(state.getActiveTDFState()),
        potentialParams(state.getAvailPotParams().begin(), state.getAvailPotParams().end()),
        potentialObjects(state.getAvailPotObjects().begin(), state.getAvailPotObjects().end()) {
    auto const look = [&](std::string const& path, std::string const& name) {
      allowed[{path, name}] = {state.getAllowedParamValues(path, name), state.getSubsetAllowedParamValues(path, name)};
    };
    for (auto const& [path, params] : active) {
      for (auto const& param : params) look(path, param.first);
    }
    for (auto const& [path, name] : potentialParams) look(path, name);
  }
  friend bool operator==(StateSnapshot const&, StateSnapshot const&) = default;

  [[nodiscard]] bool holds(std::string const& path, std::string const& name) const {
    auto const object = active.find(path);
    return object != active.end() && object->second.contains(name);
  }

  ModelState active;
  ParamSet potentialParams;
  std::set<std::string> potentialObjects;
  std::map<std::pair<std::string, std::string>, std::pair<Strings, Strings>> allowed;
};

namespace laws {

using ParamSet = StateSnapshot::ParamSet;

template <typename Items>
auto setOf(Items const& items) {
  using Item = typename Items::value_type;
  if constexpr (std::is_same_v<Items, ProvisionalTDF::ParamsByObject>) {
    return ParamSet(items.begin(), items.end());
  } else {
    return std::set<Item>(items.begin(), items.end());
  }
}

template <typename Set>
Set without(Set const& a, Set const& b) {
  Set rest;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::inserter(rest, rest.end()));
  return rest;
}

inline bool isPresent(ProvisionalTDF const& state, std::string const& path) {
  return !state.getPathExpansion(path, "").empty();
}

inline bool isProbe(std::string const& path) {
  return path.find("__%%dummy%%__") != std::string::npos;
}

inline std::string brokenByChanges(StateSnapshot const& before, StateSnapshot const& now, ProvisionalTDF const& state) {
  ModelState copy = before.active;
  auto const erase = [&copy](auto const& param) {
    auto const object = copy.find(param.first);
    if (object == copy.end()) return;
    object->second.erase(param.second);
    if (object->second.empty()) copy.erase(object);
  };
  for (auto const& param : state.getNewlyUnavailParams()) erase(param);
  for (auto const& param : state.getNewlyAvailPotParams()) {
    if (!now.holds(param.first, param.second)) erase(param);
  }
  for (auto const* changed : {&state.getNewlyAvailParams(), &state.getModParams()}) {
    for (auto const& [path, name] : *changed) {
      if (now.holds(path, name)) copy[path][name] = state.getParamValue(path, name);
    }
  }
  if (copy != now.active) return "the published changes bring a copy of the former state up to date";

  auto const lost = setOf(state.getNewlyUnavailParams());
  auto const added = setOf(state.getNewlyAvailParams());
  for (std::string const& top : state.getDeletedObjects()) {
    for (auto const& [path, params] : before.active) {
      if (path != top && !path.starts_with(top + '/')) continue;
      for (auto const& param : params) {
        if (!lost.contains({path, param.first})) return "with a deleted object all below it is gone";
      }
    }
  }
  for (auto const& [path, params] : now.active) {
    for (auto const& param : params) {
      if (!before.holds(path, param.first) && !added.contains({path, param.first})) return "new items are reported";
    }
  }
  return {};
}

inline std::string brokenByPotentials(StateSnapshot const& before, StateSnapshot const& now,
                                      ProvisionalTDF const& state) {
  if (setOf(state.getNewlyAvailPotParams()) != without(now.potentialParams, before.potentialParams)) {
    return "the new potential parameters are those that were not potential before";
  }
  if (setOf(state.getNewlyAvailPotObjects()) != without(now.potentialObjects, before.potentialObjects)) {
    return "the new potential objects are those that were not potential before";
  }
  ParamSet gone = without(before.potentialParams, now.potentialParams);
  std::erase_if(gone, [&](auto const& param) { return now.holds(param.first, param.second); });
  if (setOf(state.getNewlyUnavailPotParams()) != gone) {
    return "a potential parameter that is neither potential nor present any more is reported as gone";
  }
  auto goneObjects = without(before.potentialObjects, now.potentialObjects);
  std::erase_if(goneObjects, [&](std::string const& path) { return isPresent(state, path); });
  if (setOf(state.getNewlyUnavailPotObjects()) != goneObjects) {
    return "a potential object that is neither potential nor present any more is reported as gone";
  }
  // The subset on offer may change as well, and of a potential parameter it cannot be asked for.
  auto const told = setOf(state.getModPotParams());
  for (auto const& param : now.potentialParams) {
    if (!before.potentialParams.contains(param)) continue;
    if (before.allowed.at(param) != now.allowed.at(param) && !told.contains(param)) {
      return "a potential parameter with other allowed values is reported";
    }
  }
  for (auto const& [path, name] : now.potentialParams) {
    if (now.holds(path, name)) return "no parameter is present and potential at once";
  }
  for (std::string const& path : now.potentialObjects) {
    if (isPresent(state, path)) return "no object is present and potential at once";
  }
  if (now.potentialParams.size() != state.getAvailPotParams().size()) return "a potential parameter is listed once";
  if (now.potentialObjects.size() != state.getAvailPotObjects().size()) return "a potential object is listed once";
  return {};
}

inline std::string brokenByState(StateSnapshot const& now, ProvisionalTDF const& state) {
  std::string const root = state.getActiveRoot();
  std::set<std::string> seen;
  for (auto const& [path, params] : now.active) {
    if (path != root && !path.starts_with(root + '/')) return "the state lies at the root";
    if (params.empty()) return "an object in the state holds something";
    for (auto const& [name, value] : params) {
      if (state.getParamValue(path, name) != value) return "a value is the same however it is asked for";
    }
    seen.insert(path);
  }
  for (auto const& path : state.getPathExpansion(root + "/**", "")) seen.insert(path);
  for (auto const& param : state.getAvailPotParams()) seen.insert(param.first);
  for (auto const& path : state.getAvailPotObjects()) seen.insert(path);
  for (auto const* list : {&state.getNewlyAvailParams(), &state.getModParams(), &state.getNewlyUnavailParams()}) {
    for (auto const& param : *list) seen.insert(param.first);
  }
  for (auto const& path : state.getDeletedObjects()) seen.insert(path);
  for (auto const& param : state.getModQuantParams()) seen.insert(param.first);
  if (std::any_of(seen.begin(), seen.end(), isProbe)) return "nothing is seen of objects that are only tried";

  auto const all = setOf(state.getEmptyParameters(false));
  if (!without(setOf(state.getEmptyParameters(true)), all).empty()) return "an empty parameter of typed input is empty";
  for (std::string const& path : all) {
    auto const slash = path.rfind('/');
    auto const object = now.active.find(path.substr(0, slash));
    if (object == now.active.end()) return "an empty parameter is present";
    auto const param = object->second.find(path.substr(slash + 1));
    if (param == object->second.end() || !param->second.empty()) return "an empty parameter is present, and empty";
  }
  return {};
}

}  // namespace laws

/// The law that an update of `state`, which was like `before`, breaks.
[[nodiscard]] inline std::string brokenLaw(StateSnapshot const& before, ProvisionalTDF const& state,
                                           EditResult const& result = {}) {
  StateSnapshot const now(state);
  if (result.isUnreadable) return now == before ? "" : "an edit of a path that cannot be read changes nothing";
  std::string broken = laws::brokenByChanges(before, now, state);
  if (broken.empty()) broken = laws::brokenByPotentials(before, now, state);
  return broken.empty() ? laws::brokenByState(now, state) : broken;
}

/// In what two states differ that went through the same updates: all they show and all they published.
[[nodiscard]] inline std::string difference(ProvisionalTDF const& a, ProvisionalTDF const& b) {
  if (StateSnapshot(a) != StateSnapshot(b)) return "two states of the same edits look the same";
  bool const same =
      a.getNewlyAvailParams() == b.getNewlyAvailParams() && a.getModParams() == b.getModParams() &&
      a.getNewlyUnavailParams() == b.getNewlyUnavailParams() && a.getDeletedObjects() == b.getDeletedObjects() &&
      a.getModBoundsParams() == b.getModBoundsParams() && a.getModQuantParams() == b.getModQuantParams() &&
      a.getAvailPotObjects() == b.getAvailPotObjects() && a.getAvailPotParams() == b.getAvailPotParams() &&
      a.getNewlyAvailPotObjects() == b.getNewlyAvailPotObjects() &&
      a.getNewlyAvailPotParams() == b.getNewlyAvailPotParams() &&
      a.getNewlyUnavailPotObjects() == b.getNewlyUnavailPotObjects() &&
      a.getNewlyUnavailPotParams() == b.getNewlyUnavailPotParams() && a.getModPotParams() == b.getModPotParams() &&
      a.getEmptyParameters(false) == b.getEmptyParameters(false);
  return same ? "" : "two states of the same edits publish the same";
}

/// In what a state differs from the plain reading of the same updates.
[[nodiscard]] inline std::string difference(ProvisionalTDF const& state, PlainProvisional const& plain) {
  ModelState const active = plain.activeState();
  if (state.getActiveTDFState() != active) return "the active state is that of the plain reading";
  if (state.getAvailPotObjects() != plain.potentialObjects) {
    return "the potential objects are those of the plain reading";
  }
  auto potential = plain.potentialParams;
  std::stable_sort(potential.begin(), potential.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
  auto const& params = state.getAvailPotParams();
  if (PlainProvisional::Pairs(params.begin(), params.end()) != potential) {
    return "the potential parameters are those of the plain reading";
  }
  if (state.getEmptyParameters(false) != plain.emptyParams ||
      state.getEmptyParameters(true) != plain.emptyTypedParams) {
    return "the empty parameters are those of the plain reading";
  }
  for (char const* below : {"", "/Zone:a", "/Boundary:ab", "/Turbulence"}) {
    for (std::string const& type : RandomCase::types()) {
      std::string const parent = RandomCase::root + below;
      if (state.isUserNamedTypeAvailable(parent, type) != plain.userNamedTypes.contains({parent, type})) {
        return "the types that may be added are those of the plain reading";
      }
    }
  }
  auto const valuesOf = [](auto const& all, std::string const& key) {
    auto const entry = all.find(key);
    return entry != all.end() ? entry->second : StateSnapshot::Strings();
  };
  for (auto const& [path, values] : active) {
    for (auto const& [name, value] : values) {
      std::string const key = path + '/' + name;
      if (state.getAllowedParamValues(path, name) != valuesOf(plain.allowedValues, key) ||
          state.getSubsetAllowedParamValues(path, name) != valuesOf(plain.subsetValues, key)) {
        return "the values on offer are those of the plain reading";
      }
    }
  }
  return {};
}

}  // namespace tarn::test
