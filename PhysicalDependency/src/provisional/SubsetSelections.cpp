// The memory of selected values, and how it widens the subset on offer. Callers have already checked that a value may
// be selected.

#include "provisional/SubsetSelections.h"

#include "journal/JournaledWrites.h"
#include "provisional/ValueLists.h"

namespace tarn {

bool SubsetSelections::SubsetSelection::add(std::string const& value, Journal* journal) {
  if (seen.contains(value)) return false;
  auto const write = [&] {
    values.push_back(value);
    try {
      seen.insert(value);
    } catch (...) {
      values.pop_back();
      throw;
    }
  };
  Journal::perform(journal, write, [this]() noexcept { takeBack(); });
  return true;
}

void SubsetSelections::SubsetSelection::takeBack() noexcept {
  seen.erase(values.back());
  values.pop_back();
}

bool SubsetSelections::rememberSubsetValue(std::string const& objPath, std::string const& name,
                                           std::string const& value, Journal* journal) {
  return getSubsetSelection(objPath, name, journal).add(value, journal);
}

bool SubsetSelections::rememberSubsetValues(std::string const& objPath, std::string const& name,
                                            std::vector<std::string> const& values, Journal* journal) {
  if (values.empty()) return false;
  SubsetSelection& selection = getSubsetSelection(objPath, name, journal);
  bool areNew = false;
  for (std::string const& value : values) areNew = selection.add(value, journal) || areNew;
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
                                                                        std::string const& name, Journal* journal) {
  ParamKey const key{objPath, name};
  auto const present = selections_.find(key);
  if (present != selections_.end()) return present->second;
  return journaled::emplace(journal, selections_, key.text(), SubsetSelection()).first->second;
}

}  // namespace tarn
