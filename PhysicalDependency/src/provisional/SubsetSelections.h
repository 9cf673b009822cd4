#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include <tarn/ParamAllowedValues.h>

#include "provisional/ParamKey.h"

namespace tarn {

/// Remembers what was ever selected for parameters of which only a subset of the allowed values is on offer. Rules that
/// narrow the subset later would otherwise take from the user a value that is in use; with the memory it stays on offer
/// for as long as it is allowed at all. Nothing is ever forgotten.
class SubsetSelections {
 public:
  void rememberSubsetValue(std::string const& objPath, std::string const& name, std::string const& value);
  void rememberSubsetValues(std::string const& objPath, std::string const& name,
                            std::vector<std::string> const& values);

  /// What was selected, in the order of first selection; empty when nothing was. Valid until more is remembered.
  [[nodiscard]] std::vector<std::string> const& getSubsetSelectionValues(std::string const& objPath,
                                                                         std::string const& name) const;

  /// `allowed` with the values of `selected` that are allowed but outside the subset put behind those of the subset, in
  /// byte order. `allowed` as it is when there are none, and when any value is allowed: then a subset keeps nothing
  /// out.
  [[nodiscard]] static ParamAllowedValues widenAllowedSubset(std::vector<std::string> const& selected,
                                                             ParamAllowedValues const& allowed);

 private:
  struct SubsetSelection {
    std::vector<std::string> values;
    std::unordered_set<std::string> seen;  // the same, for membership

    void add(std::string const& value);
  };

  SubsetSelection& getSubsetSelection(std::string const& objPath, std::string const& name);

  std::map<std::string, SubsetSelection, ParamKeyOrder> selections_;
};

}  // namespace tarn
