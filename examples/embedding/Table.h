#pragma once

#include <iostream>
#include <map>
#include <string>
#include <utility>

#include <tarn/ProvisionalTDF.h>

/// The contents of a window: the parameters of the edited object with their values.
class Table {
 public:
  using Cell = std::pair<std::string, std::string>;  // object path and name

  /// Applies the changes of the last edit. Deletions come first: a parameter that was removed and added in one edit, as
  /// when an object is replaced by another of the same name, is in both lists and is present in the end. A parameter
  /// that has become potential is reported as potential and not as unavailable.
  void refresh(tarn::ProvisionalTDF const& object) {
    for (auto const& cell : object.getNewlyUnavailParams()) cells_.erase(cell);
    for (auto const& [path, name] : object.getNewlyAvailPotParams()) cells_.erase({path, name});
    for (auto const* changed : {&object.getNewlyAvailParams(), &object.getModParams()}) {
      for (auto const& cell : *changed) cells_[cell] = object.getParamValue(cell.first, cell.second);
    }
  }

  void print(std::ostream& out) const {
    for (auto const& [cell, value] : cells_) out << cell.first << '/' << cell.second << " = " << value << '\n';
  }

  [[nodiscard]] std::map<Cell, std::string> const& cells() const noexcept { return cells_; }

 private:
  std::map<Cell, std::string> cells_;
};
