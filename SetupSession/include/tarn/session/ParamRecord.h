#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/RulePlace.h>
#include <tarn/TDFParam.h>
#include <tarn/session/Item.h>
#include <tarn/session/Waiting.h>

namespace tarn::session {

/// Where the value of a present parameter comes from. The numbers are part of the interface.
enum class Origin : int {
  /// The parameter is not present.
  None = 0,
  /// An edit of this session.
  User = 1,
  /// The model that was opened.
  Model = 2,
  /// The default of the rules, or the first value on offer when the rules give no default that is allowed.
  Default = 3,
  /// An override of the rules that is in force.
  Override = 4,
  /// An override that was in force earlier, and whose value stayed.
  FormerOverride = 5,
  /// A list to which the rules have added the values that were missing.
  CompletedList = 6
};

/// "user", "model", "default", "override", "former override", "completed list", or "none". Valid until the program
/// ends.
[[nodiscard]] TARN_EXPORT std::string_view originName(Origin origin) noexcept;

/// Everything about one parameter of one object, as it is now.
struct TARN_EXPORT ParamRecord {
  std::string path;
  std::string name;
  /// As the rules describe it; "" when they do not.
  std::string description;
  /// For user interfaces: the group under which the rules show the parameter, the name to show instead of `name`, and
  /// whether it is folded. "" when the rules give none.
  std::string group;
  std::string label;
  bool advanced = false;
  TDFParam::Type type = TDFParam::String;
  bool required = false;

  /// The parameter is in the result.
  bool present = false;
  /// The parameter is not present, and the user can switch it on or give it a value.
  bool offered = false;
  /// The parameter is present or on offer.
  [[nodiscard]] bool available() const noexcept { return present || offered; }
  /// The `Reason` of the rule, when the parameter is not available. "" when it gives none.
  std::string reason;
  /// The user's decision: switched on, or switched off. Empty without one.
  std::optional<bool> decision;

  /// The value when the parameter is present. "" means that it still needs one.
  std::optional<std::string> value;
  Origin origin = Origin::None;
  /// The step that gave the value, for `Origin::User`.
  std::size_t step = 0;
  /// The request of the user or the model that is not in force.
  std::optional<Waiting> waiting;
  /// The value in the model that was opened. Empty when it has none.
  std::optional<std::string> valueInModel;

  /// The value that the parameter would have without a value of the user or the model. Empty when the rules give none.
  std::optional<std::string> defaultValue;
  /// The bounds as the rules give them: "0 [m]". Empty for no bound. A text that is not a number limits nothing.
  std::optional<std::string> lowerBound;
  std::optional<std::string> upperBound;
  /// A value that is equal to the bound is outside.
  bool lowerBoundExcluded = false;
  bool upperBoundExcluded = false;
  /// How the value is outside of its bounds: "is below its lower bound 0 [m]". "" if it is inside, or if there is none.
  /// Such a value is in force, and the review has a finding about it.
  std::string outOfBounds;
  /// The quantity type and its units; the first unit is taken when a value has none. "" and empty without one.
  std::string quantityType;
  std::vector<std::string> units;
  /// The allowed values and the subset on offer. `hasAllowedValues` is false when any value will do.
  ParamAllowedValues allowed;
  /// A list value must contain all allowed values.
  bool completeListRequired = false;

  /// Where the rules write the parameter. Not known for rules that a program made.
  RulePlace rule;
};

}  // namespace tarn::session
