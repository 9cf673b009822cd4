#pragma once

#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/PhysicsData.h>

namespace tarn::session {

/// A value that does not fit the declaration of its parameter.
struct ValueFault {
  /// Path of the object that holds the parameter.
  std::string path;
  /// Name of the parameter.
  std::string name;
  /// The whole value, also when only one item of a list is wrong.
  std::string value;
  /// One sentence.
  std::string message;
};

/// Finds values that are not of their declared type, or that are outside their bounds. A validator compares values with
/// allowed values only; it never reads them as numbers.
///
/// An Integer must be a whole number and a Real a number, each with or without units. A Logical must read as true or
/// false. A String may be anything. A list is judged item by item, without the white space at the ends of an item. A
/// text that is now among the allowed values of the parameter is of the right type: "automatic" for a Real, say. A
/// number must be within the evaluated bounds; a value equal to a bound is within. A bound is compared only with
/// numbers in the same units.
///
/// Every present parameter that the walk visits is judged, even when it is not available or its validation is relaxed.
/// Objects that are not available are not walked. At most one fault is reported per parameter, the first.
class TARN_EXPORT ValueFaults {
 public:
  /// `rules` must outlive the analysis.
  explicit ValueFaults(PhysicsData const& rules) noexcept : rules_(&rules) {}

  /// Walks the model of `context` from each of `roots` in turn. Returns the faults in the order of the walk. Throws
  /// what a rule throws. May run on several threads at once, each with its own `context`.
  [[nodiscard]] std::vector<ValueFault> find(std::vector<std::string> const& roots, EvalContext& context) const;

 private:
  PhysicsData const* rules_;
};

}  // namespace tarn::session
