// The memory of selected values, and how it widens the subset on offer. Callers have already checked that a value may
// be selected.

#include "provisional/SubsetSelections.h"

#include "provisional/ValueLists.h"

namespace tarn {

bool SubsetSelections::SubsetSelection::add(std::string const& value) {
  auto const [place, isNew] = seen.insert(value);
  if (!isNew) return false;
  try {
    values.push_back(value);
  } catch (...) {
    seen.erase(place);  // otherwise it would count as remembered
    throw;
  }
  return true;
}

bool SubsetSelections::rememberSubsetValue(std::string const& objPath, std::string const& name,
                                           std::string const& value) {
  return getSubsetSelection(objPath, name).add(value);
}

bool SubsetSelections::rememberSubsetValues(std::string const& objPath, std::string const& name,
                                            std::vector<std::string> const& values) {
  if (values.empty()) return false;
  SubsetSelection& selection = getSubsetSelection(objPath, name);
  bool areNew = false;
  for (std::string const& value : values) areNew = selection.add(value) || areNew;
  return areNew;
}

std::vector<std::string> const& SubsetSelections::getSubsetSelectionValues(std::string const& objPath,
                                                                           std::string const& name) const {
  static std::vector<std::string> const none;
  auto const selection = selections_.find(ParamKey{objPath, name});
  return selection == selections_.end() ? none : selection->second.values;
}

ParamAllowedValues SubsetSelections::widenAllowedSubset(std::vector<std::string> const& selected,
                                                        ParamAllowedValues const& allowed) {
  if (selected.empty() || allowed.allowsAnyValue) return allowed;
  std::vector<std::string> extra = sortedDifference(selected, allowed.subsetValues);
  // A selection that the rules have since struck from the full list is not brought back.
  keepAllowedOnly(allowed.allowedValues, extra);
  if (extra.empty()) return allowed;
  std::vector<std::string> subset = allowed.subsetValues;
  subset.insert(subset.end(), extra.begin(), extra.end());
  return {allowed.allowedValues, std::move(subset)};
}

SubsetSelections::SubsetSelection& SubsetSelections::getSubsetSelection(std::string const& objPath,
                                                                        std::string const& name) {
  ParamKey const key{objPath, name};
  auto const place = selections_.lower_bound(key);
  if (place != selections_.end() && !selections_.key_comp()(key, place->first)) return place->second;
  return selections_.emplace_hint(place, key.text(), SubsetSelection())->second;
}

}  // namespace tarn
