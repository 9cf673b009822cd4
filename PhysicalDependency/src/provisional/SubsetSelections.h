#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include <tarn/ParamAllowedValues.h>

#include "journal/Journal.h"
#include "provisional/ParamKey.h"

namespace tarn {

/// Remembers all values that were selected for parameters that offer only a subset of their allowed values. When rules
/// narrow the subset later, a value that is in use stays on offer as long as it is allowed at all. Nothing is ever
/// forgotten.
class SubsetSelections {
 public:
  /// Both return whether there was anything new to remember. New values are recorded in `journal`, unless that is null.
  bool rememberSubsetValue(std::string const& objPath, std::string const& name, std::string const& value,
                           Journal* journal = nullptr);
  bool rememberSubsetValues(std::string const& objPath, std::string const& name, std::vector<std::string> const& values,
                            Journal* journal = nullptr);

  /// The selected values, in the order of first selection. Empty when nothing was. Valid until more is remembered.
  [[nodiscard]] std::vector<std::string> const& getSubsetSelectionValues(std::string const& objPath,
                                                                         std::string const& name) const;

  /// `allowed` with a wider subset: the values of `selected` that are allowed but outside the subset follow those of
  /// the subset, in byte order. Returns `allowed` unchanged when there are no such values, and when any value is
  /// allowed, because a subset excludes nothing then.
  [[nodiscard]] static ParamAllowedValues widenAllowedSubset(std::vector<std::string> const& selected,
                                                             ParamAllowedValues const& allowed);

 private:
  struct SubsetSelection {
    std::vector<std::string> values;
    std::unordered_set<std::string> seen;  // the same, for membership

    bool add(std::string const& value, Journal* journal);
    void takeBack() noexcept;
  };

  SubsetSelection& getSubsetSelection(std::string const& objPath, std::string const& name, Journal* journal);

  std::map<std::string, SubsetSelection, ParamKeyOrder> selections_;
};

}  // namespace tarn
