#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/TextPlace.h>
#include <tarn/session/Finding.h>

namespace tarn::workbench {

/// The ways in which an item of the rules can differ. The numbers are part of the interface.
enum class ChangeKind : int { Came = 0, Went = 1, Renamed = 2, Changed = 3 };

/// "came", "went", "renamed" or "changed". Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view changeKindName(ChangeKind kind) noexcept;

/// An attribute with other contents: the key as rule files write it, and what was and is there. Expressions begin with
/// "=" or, where the rules want an expression, are as they are written. "" for an attribute that is not given.
struct TARN_EXPORT AttributeChange {
  std::string attribute;
  std::string before;
  std::string after;
};

/// An item of the rules that differs between two rule databases.
struct TARN_EXPORT RuleChange {
  ChangeKind kind = ChangeKind::Changed;
  /// "object type", "parameter", "child type", "check", "global check", "named check", "named list", "named value",
  /// "quantity type" or "root type".
  std::string item;
  /// How the new rules name it, for an item that went the old ones: "/Case/Domain/Motion" for a parameter of a domain.
  std::string name;
  /// How the old rules name it, when it was renamed.
  std::string formerName;
  /// For `Renamed` and `Changed`, in the order of the rule reference.
  std::vector<AttributeChange> attributes;
  /// Where it is written. Not known for an item that the rules do not have.
  TextPlace before;
  TextPlace after;
};

/// Compares two rule databases. An item that has another name counts as renamed when the new rules list the old name
/// among its former names, and as one that went and another that came otherwise. Everything that the records have is
/// compared, also texts for people, such as descriptions and labels. Templates are compared by what objects take from
/// them. Quantity types and named rules come first; then the object types, each followed by its entries, in the order
/// of the new rules; then what went with its whole object type; global checks last.
///
/// Linear in the size of both, times the logarithm of the number of items.
[[nodiscard]] TARN_EXPORT std::vector<RuleChange> compareRules(PhysicsData const& before, PhysicsData const& after);

/// A difference in what a user meets in an editor. `what` is "value", "offered", "default", "allowed values", "lower
/// bound", "upper bound", "units", "objects" or "objects on offer".
struct TARN_EXPORT EditedDifference {
  /// "/Case/Domain:rotor/Motion", or for objects the parent and the type.
  std::string item;
  std::string what;
  /// Not set where there is none.
  std::optional<std::string> before;
  std::optional<std::string> after;
};

/// How two rule databases treat a model.
struct TARN_EXPORT ModelComparison {
  /// Findings of a review under only one of the two. Findings are the same if code, path and sentence are.
  std::vector<session::Finding> findingsGone;
  std::vector<session::Finding> findingsNew;
  /// Differences after the model was opened for editing.
  std::vector<EditedDifference> edited;
  /// Why the model cannot be opened for editing. "" when it can.
  std::string notOpenedBefore;
  std::string notOpenedAfter;

  [[nodiscard]] bool isSame() const noexcept {
    return findingsGone.empty() && findingsNew.empty() && edited.empty() && notOpenedBefore == notOpenedAfter;
  }
};

/// Reviews a model, and opens it for editing, under two rule databases. The model must have no malformed lines.
[[nodiscard]] TARN_EXPORT ModelComparison compareModel(PhysicsData const& before, PhysicsData const& after,
                                                       ModelText const& model);

}  // namespace tarn::workbench
