#pragma once

#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/Session.h>

namespace CLI {
class App;
}

namespace tarn::tool {

/// One edit of a command line, as it was given: `--set`, "Motion=Rotating".
struct EditArgument {
  enum class Option { Set, On, Off, Add, Remove, Copy, Rename };
  Option option = Option::Set;
  /// The path, with "=" and the value after it for `Set`.
  std::string text;
  /// For `Copy` and `Rename`.
  std::string newName;

  friend bool operator==(EditArgument const&, EditArgument const&) = default;
};

/// Adds the options of all edits to a command.
void addEditOptions(CLI::App& command);

/// The edits of a command that was parsed, in the order in which they were given, whatever their options. Throws a
/// `CLI::ValidationError` that names the first one that cannot be read.
[[nodiscard]] std::vector<EditArgument> editArguments(CLI::App const& command);

/// The edit of a session that an argument means. A path without a "/" in front starts at the object that the session
/// edits. The rules say whether `--on` and `--off` mean an object or a parameter. It is not judged here whether the
/// edit is possible: the session does that.
[[nodiscard]] Edit editOf(EditArgument const& argument, session::Session const& session);

/// The arguments that mean an edit, as a shell takes them: `--set '/Case/Flow Regime=Laminar'`.
[[nodiscard]] std::string argumentText(Edit const& edit);

}  // namespace tarn::tool
