#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/session/Finding.h>

namespace tarn::session {

/// Finds everything in a model that the rules do not know: above all mistyped names. A validator that follows the rules
/// never visits these items.
///
/// A parameter is unknown when the rules of its object have no entry for it. An object is unknown when the rules of its
/// parent have no child entry for its type, or when its form does not fit the entry: a singleton type must come without
/// a name, any other type with a name. Availability and values do not matter; a value may be empty. Objects that exist
/// only because a deeper path implies them are judged too. Nothing below an unknown object is reported. An object whose
/// type has an entry in its parent but no rules of its own is known, and everything in it is unknown.
///
/// An item under a name that it had in earlier rules is reported as renamed. A child whose name was renamed is reported
/// too, and is known.
///
/// Objects at the root of the model whose type is not pertinent do not concern the rules. They are only counted, unless
/// their type is similar to a pertinent one: then they are reported as misspelt. A parameter at the root itself is
/// unknown.
class UnknownNames {
 public:
  struct Result {
    /// In the order of the model.
    std::vector<Finding> names;
    /// Number of objects at the root of the model that were only counted.
    std::size_t objectsPassedOver = 0;
  };

  /// `rules` must outlive the analysis.
  explicit UnknownNames(PhysicsData const& rules) noexcept : rules_(&rules) {}

  /// Judges all of `model` if `roots` is empty. Otherwise it judges what is at and below the objects `roots`; these
  /// objects and everything above them count as known. The paths of `model` and `roots` must be readable by `TDFPath`
  /// and in its canonical form. May run on several threads at once.
  ///
  /// Time is linear in the length of the model's paths plus the number of its parameters. The search for similar names
  /// is limited to 500,000 comparisons per call; names after that are reported without a proposal.
  [[nodiscard]] Result find(ModelState const& model, std::vector<std::string> const& roots = {}) const;

 private:
  PhysicsData const* rules_;
};

}  // namespace tarn::session
