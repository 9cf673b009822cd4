#pragma once

#include <string>
#include <vector>

namespace tarn {

/// The past and the future of a parameter, a child type or an object type at the root, as the rules give them. Walks,
/// editing and the validator do not read it. A review warns of models that use deprecated items and former names.
struct ItemHistory {
  /// For people: why models should no longer use the item, and what to use instead. Empty: the item is not deprecated.
  std::string deprecated;
  /// The names that the item had in earlier versions of the rules, in the same object.
  std::vector<std::string> formerNames;
  /// For people: why the item has another name now. Empty: no reason is given.
  std::string renameMessage;
};

}  // namespace tarn
