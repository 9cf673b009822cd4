#pragma once

namespace tarn {

/// Why a `ProvisionalTDF` refused an edit. When several reasons hold, the first of this list is given.
///
/// The numbers are part of the interface. Later versions may add reasons at the end.
enum class Refusal : int {
  /// The state has not been initialised, so there is nothing to edit. All kinds.
  NotInitialised = 0,
  /// The path is neither the active root nor below it. All kinds.
  OutsideActiveRoot = 1,
  /// The active root itself cannot be duplicated or renamed.
  IsActiveRoot = 2,
  /// There is no such object. Removing: neither in the guide nor in the active state. Duplicating and renaming: not in
  /// the active state.
  NoSuchObject = 3,
  /// The last component of the path has no name. Adding, removing, duplicating and renaming work on named objects only.
  NotNamed = 4,
  /// The new name is empty, or holds "/" or ":". Duplicating and renaming.
  NameUnreadable = 5,
  /// The new name equals the type. That would be the path of the singleton. Adding, duplicating and renaming.
  NameEqualsType = 6,
  /// The name belongs to a present object, possibly to the edited object itself. Duplicating and renaming.
  NameTaken = 7,
  /// The object was asked for already: the guide holds it, even if the rules do not let it be present. Adding.
  AlreadyAskedFor = 8,
  /// The object is present only because the rules ask for it. Removing has no effect on it. Renaming cannot remove the
  /// original, but the copy has been asked for and shows up with the next walk.
  StandsByTheRules = 9
};

}  // namespace tarn
