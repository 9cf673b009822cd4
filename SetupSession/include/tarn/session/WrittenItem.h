#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/session/Item.h>
#include <tarn/session/Refused.h>
#include <tarn/session/Session.h>

// Items as users write them: paths that may begin at the object that is edited, of objects that need not be there. All
// user interfaces read such paths with these functions, so they understand the same.

namespace tarn::session {

/// The path from the root of the model: a path without a leading "/" begins at `Session::root`. White space at the ends
/// and a "/" at the end are dropped. "" and "." are the root of the session, "/" is the root of the model. The path is
/// not checked otherwise.
[[nodiscard]] TARN_EXPORT std::string absolutePath(Session const& session, std::string_view text);
/// The same without a session: a path without a leading "/" begins at `root`, an absolute path.
[[nodiscard]] TARN_EXPORT std::string absolutePath(std::string const& root, std::string_view text);

/// An object, or one of its parameters, by an absolute path: everything before the last "/", and the name after it. The
/// item need not be known.
[[nodiscard]] TARN_EXPORT Item paramAt(std::string const& absolutePath);

/// Whether an absolute path means a parameter, where an object is possible too: whether the rules know a parameter of
/// that name. If they know neither, the item that was probably meant decides.
[[nodiscard]] TARN_EXPORT bool meansParam(Session const& session, std::string const& absolutePath);

/// The edit that switches the item at an absolute path on or off: the parameter or the object, as `meansParam` says.
[[nodiscard]] TARN_EXPORT Edit switchEdit(Session const& session, std::string const& absolutePath, bool isOn);

/// The answer of `knownItem`.
struct TARN_EXPORT KnownItem {
  /// Empty when the rules do not know the item.
  std::optional<Item> item;
  /// Why there is no item of this path, with what was probably meant. Also set for an item that the rules know and
  /// whose object is not there.
  std::optional<Refused> refused;
};

/// Reads a path as `Session::resolve` does, and also finds items whose object is not there but could be: a question
/// such as why it is not there needs them. For a type without a name, the item is an object of this type called "new".
[[nodiscard]] TARN_EXPORT KnownItem knownItem(Session const& session, std::string_view text);

}  // namespace tarn::session
