#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/SharedStrings.h>

namespace tarn::session {

/// Why an edit was refused. The numbers and the names of `refusalName` are part of the interface. Later versions may
/// add codes at the end.
enum class RefusalCode : int {
  /// The path, or the new name, is not one that a model can have.
  Unreadable = 0,
  /// The path is outside of the object that is edited.
  OutsideRoot = 1,
  /// The object that is edited cannot be copied, renamed, removed or switched off.
  IsRoot = 2,
  /// The rules know no such object, or there is no object of that name.
  UnknownObject = 3,
  /// The rules know no such parameter in this object.
  UnknownParameter = 4,
  /// The value is not a number, not a whole number, or not a logical value.
  WrongType = 5,
  /// The units cannot be converted to those of the parameter.
  UnknownUnits = 6,
  /// The parameter is available, and the value is not among its allowed values.
  ValueNotAllowed = 7,
  /// An override of the rules fixes the value.
  FixedByTheRules = 8,
  /// The name is that of another object, present or waiting.
  NameTaken = 9,
  /// The rules do not allow this name for objects of the type.
  NameNotAllowed = 10,
  /// Objects of the type have no name: there is at most one.
  NotNamed = 11,
  /// Objects of the type need a name.
  NameMissing = 12,
  /// The item is required, or stands only by the rules, so it cannot be switched off or removed.
  StandsByTheRules = 13,
  /// The object is taken from the model as it is. The rules do not make it a part of what is edited.
  NotEditable = 14,
  /// A rule failed with an exception.
  RuleFailed = 15,
  /// The session has as many steps as it can have.
  TooManySteps = 16
};

/// Lower case words with hyphens, such as "unknown-parameter". Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view refusalName(RefusalCode code) noexcept;
/// The names of all codes, in the order of their numbers. Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::span<std::string_view const> refusalNames() noexcept;

/// Why an edit was refused, and what would have worked.
struct TARN_EXPORT Refused {
  RefusalCode code = RefusalCode::Unreadable;
  /// The index of the refused edit among the edits that were given.
  std::size_t index = 0;
  /// The edit as it was given.
  Edit edit;
  /// One sentence for the user, without the proposal.
  std::string sentence;
  /// The nearest edit that is possible: with the name or the value that was probably meant, with the number in units
  /// that are known, with a name that is free. Empty when there is none.
  std::optional<Edit> nearest;
  /// The values, names or units that are possible now, in the order of the rules. When the name of a parameter is right
  /// and its object is not, the paths of the first `mostPaths` parameters of that name, in the order of the model.
  /// Empty when anything would do, and when nothing would.
  SharedStrings possible;
  /// How many paths there are in all, when `possible` leaves some out. 0 when it leaves out none.
  std::size_t possibleCount = 0;

  static constexpr std::size_t mostPaths = 20;

  friend bool operator==(Refused const& a, Refused const& b) {
    return a.code == b.code && a.index == b.index && a.edit == b.edit && a.sentence == b.sentence &&
           a.nearest == b.nearest && a.possible == b.possible && a.possibleCount == b.possibleCount;
  }
};

}  // namespace tarn::session
