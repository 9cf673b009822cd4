#pragma once

#include <set>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>

#include "provisional/ActivityDecisions.h"
#include "provisional/SubsetSelections.h"

namespace tarn {

/// The user's requests of all updates so far. Walks read them, and add what the rules settle permanently.
struct Intent {
  /// The values and objects that were asked for. Nobody reads its log, which would grow with every edit.
  DynamicTDF guide{false};
  ActivityDecisions decisions;
  SubsetSelections selections;
  /// Parent path, "/" and type of the required named types whose default names were dealt with. Keeps its entries when
  /// the parent goes, so that an object that the user has removed does not come back as a default.
  std::set<std::string> defaultNamesApplied;
  /// Those of them that were dealt with since the last update that was completed.
  std::vector<std::string> defaultNamesOfUpdate;
  /// Cleared for good when the object starts as a copy of another one.
  bool hasBaseObject = true;
};

}  // namespace tarn
