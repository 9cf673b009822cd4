#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/ObjDependDef.h>
#include <tarn/session/Refused.h>

#include "session/RuledState.h"

namespace tarn::session {

/// The types of the present objects at and below an object, and how many objects each type has. Linear in the number of
/// objects. It makes only the path of each object: the rules of a type are looked up once, and the children of an
/// object are listed only if there are rules for some of them.
class PresentTypes {
 public:
  struct Type {
    /// Null for a type without rules.
    ObjDependDef const* rules = nullptr;
    std::size_t count = 0;
    /// The paths of the first objects, up to `Refused::mostPaths`, each with its number in the order of the model.
    std::vector<std::pair<std::size_t, std::string>> first;
    bool hasRulesBelow = false;
    std::map<std::string, Type, std::less<>> below;
  };

  /// Keeps no reference to the state.
  PresentTypes(RuledState const& state, std::string const& root);

  /// The types that have rules. Valid as long as this.
  [[nodiscard]] std::vector<Type const*> withRules() const;

 private:
  Type top_;
};

}  // namespace tarn::session
