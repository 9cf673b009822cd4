#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/TextPlace.h>

namespace tarn::session {

/// The fate of an item of a model that the rules have renamed.
enum class MigrationFate {
  /// It has its new name.
  Renamed,
  /// The parameter was removed: the object has the same value under the new name.
  Removed,
  /// It keeps its old name, because an item of the new name is there.
  Taken,
  /// It keeps its old name: with the new type it would have the name of its own type, which counts as no name.
  NameEqualsType,
  /// Nothing was changed. A value has the former name of an object that was renamed, and perhaps means this object.
  NamesRenamedObject,
  /// The value has the new name of an object that was renamed. The rules compute the allowed values of the parameter:
  /// they do not have the former name any more, and have the new one.
  ValueChanged
};

/// "renamed", "removed", "taken", "name-equals-type", "names-renamed-object" or "value-changed". Valid until the
/// program ends.
[[nodiscard]] TARN_EXPORT std::string_view migrationFateName(MigrationFate fate) noexcept;

/// One item that the rules have renamed, and what became of it.
struct TARN_EXPORT MigrationEntry {
  MigrationFate fate = MigrationFate::Renamed;
  /// The object in the model as it was. For a parameter the object that holds it.
  std::string path;
  /// The parameter, when the entry is about one.
  std::optional<std::string> name;
  /// The name that the item should have: of a parameter, or the last component of the path, such as "Wall:hub". For
  /// `NamesRenamedObject` and `ValueChanged` the path of the renamed object in the model as it was.
  std::string newName;
  /// The value of a parameter, and for `Taken` the value under the new name.
  std::string value;
  std::string otherValue;
  /// For `ValueChanged`.
  std::string newValue;
  /// The rules' reason for the new name; may be empty.
  std::string message;
  /// Where the model text has the item first.
  TextPlace place;
  /// Where the rules have it.
  TextPlace rule;

  /// Whether somebody must look at the item.
  [[nodiscard]] bool isOpen() const noexcept {
    return fate != MigrationFate::Renamed && fate != MigrationFate::Removed && fate != MigrationFate::ValueChanged;
  }
};

/// One sentence about an entry.
[[nodiscard]] TARN_EXPORT std::string sentenceOf(MigrationEntry const& entry);

/// A model under the names of new rules.
struct TARN_EXPORT Migration {
  /// The model text with the new names. Everything else is as it was, byte for byte.
  std::string text;
  /// Objects in the order of paths, each followed by its parameters; at the end values that name renamed objects.
  std::vector<MigrationEntry> entries;

  /// Whether the text differs from the one before.
  [[nodiscard]] bool changesText() const noexcept;
  /// Whether somebody must look at some entry.
  [[nodiscard]] bool isOpen() const noexcept;
};

/// Applies what the rules have renamed to the text of a model: parameters, types of objects, and names of objects; see
/// `ItemHistory` and `ChildAvail::renamedNames`. `text` must be the text of `model`. An item whose own name is known to
/// the rules is never touched. Migrating the result once more changes nothing.
///
/// A value that has the former name of a renamed object gets the new name where the rules leave no doubt: see
/// `MigrationFate::ValueChanged`. Where the text gives such a parameter more than once, or several renamed objects had
/// the name, the value stays.
///
/// Two items that would have the same name both keep their old names, unless both are parameters with the same value.
/// Below an object that keeps a former type nothing is changed, because the rules do not know it.
///
/// Throws a `ParseError` that names line and column if the text is malformed, and what a rule throws. Linear in the
/// length of the text, times the logarithm of the number of objects; and one review of the result if there are values
/// that have former names.
[[nodiscard]] TARN_EXPORT Migration migrate(PhysicsData const& rules, ModelText const& model, std::string_view text);

}  // namespace tarn::session
