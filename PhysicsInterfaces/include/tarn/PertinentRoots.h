#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

class PhysicsData;

/// Says which objects of a model count for validation: those whose topmost object has one of the types that
/// `PhysicsData::getPertinentGlobalCheckRoots` lists. All code that selects objects by the roots of a rule database
/// uses this class, so the selection is the same everywhere.
///
///     PertinentRoots const roots(*rules);     // the rules look at "Case"
///     roots.hasType("Case");                  // true
///     roots.covers("/Case/Domain:rotor");     // true
///     roots.covers("/CaseStudy");             // false: whole types are compared
///     roots.objectsIn(model);                 // {"/Case"}
///
/// The types are copied. Roots that are added to the database later are not seen.
class TARN_EXPORT PertinentRoots {
 public:
  using Types = std::set<std::string, std::less<>>;

  explicit PertinentRoots(PhysicsData const& rules);

  /// Sorted, each once. Valid as long as this object.
  [[nodiscard]] Types const& types() const noexcept { return types_; }

  [[nodiscard]] bool hasType(std::string_view type) const { return types_.contains(type); }

  /// Returns whether the topmost object of `path` has a pertinent type. False for the empty path, which names no object
  /// at the root. The path is not checked otherwise.
  [[nodiscard]] bool covers(std::string_view path) const { return !path.empty() && hasType(typeAtRoot(path)); }

  /// Returns the paths of the topmost objects that count and that the state implies, each once, in the order of
  /// `PathUtils::comparePaths`. These are the roots from which the whole model is validated. Linear in the state.
  [[nodiscard]] std::vector<std::string> objectsIn(ModelState const& state) const;

  /// Returns the type of the topmost object of `path`: the text after the leading "/" up to the first "/" or ":".
  /// "Case" for "/Case:pump/Domain:rotor", "" for "/" and for "". Valid as long as the text that `path` views.
  [[nodiscard]] static std::string_view typeAtRoot(std::string_view path) noexcept;

 private:
  Types types_;
};

}  // namespace tarn
