#pragma once

#include <optional>
#include <string>

#include <tarn/Export.h>
#include <tarn/session/Item.h>

namespace tarn::session {

/// Why something that was asked for is not in force. The numbers are part of the interface.
enum class WaitingReason : int {
  /// The rules do not make the parameter available now, or no objects of this type, or none of this name.
  NotAvailable = 0,
  /// The object that holds the item is not present.
  ObjectNotPresent = 1,
  /// The user has switched the item off.
  SwitchedOff = 2,
  /// The value is not among the values that are allowed now.
  ValueNotAllowed = 3,
  /// The rules have replaced the value, because another value is in force by an override.
  Overridden = 4,
  /// The rules know no such item. The model asks for it.
  NotInTheRules = 5
};

/// Something that was asked for, is kept, and is not in force. It comes into force by itself when the rules allow it.
struct TARN_EXPORT Waiting {
  Item item;
  /// The value that waits. Empty for an object, and for a parameter that was switched on without a value.
  std::optional<std::string> value;
  WaitingReason reason = WaitingReason::NotAvailable;
  /// The text that the rule gives as its `Reason`. "" when it gives none, and when the rule is not the cause.
  std::string ruleReason;
  /// The object that must be present first, for `ObjectNotPresent`: the highest one that is missing.
  std::string missingObject;

  friend bool operator==(Waiting const&, Waiting const&) = default;
};

}  // namespace tarn::session
