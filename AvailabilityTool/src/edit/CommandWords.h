#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tarn::tool {

/// The commands of the editor.
enum class Word {
  Set,
  On,
  Off,
  Add,
  Remove,
  Copy,
  Rename,
  Show,
  List,
  Go,
  Find,
  Mine,
  Waiting,
  Diff,
  Why,
  How,
  Try,
  Effects,
  Findings,
  Undo,
  Redo,
  Save,
  Help,
  Quit
};

struct CommandInfo {
  Word word;
  std::string_view name;
  /// The arguments: "PATH = VALUE". In brackets if it can be left out.
  std::string_view arguments;
  /// One line.
  std::string_view meaning;
  /// More lines, for `help NAME`. Each ends with a line end.
  std::string_view details;
};

/// All commands, in the order in which `help` lists them.
[[nodiscard]] std::span<CommandInfo const> allCommands() noexcept;
[[nodiscard]] CommandInfo const& infoOf(Word word) noexcept;

/// Whether the command changes the model, and can be tried.
[[nodiscard]] bool isEdit(Word word) noexcept;

/// Whether the command cannot be without arguments.
[[nodiscard]] bool needsArguments(Word word) noexcept;

/// A word that is no command: a sentence, and the names of the commands that were probably meant, possibly none.
struct UnknownWord {
  std::string sentence;
  std::vector<std::string_view> meant;
};

/// Finds the command that a user typed. With `mayShorten`, the beginning of a name will do if no other command begins
/// with it. Case matters as little as possible: "Set" is "set".
[[nodiscard]] std::variant<Word, UnknownWord> findCommand(std::string_view typed, bool mayShorten);

/// A line, divided at the first blank: "set", "/Case/Flow Regime = Laminar". Without white space at the ends.
struct DividedLine {
  std::string_view word;
  std::string_view rest;
};
[[nodiscard]] DividedLine divide(std::string_view line) noexcept;

}  // namespace tarn::tool
