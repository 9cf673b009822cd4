#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "console/LineEditor.h"

namespace tarn::tool {

/// The lines of the editor: from a terminal with editing, from a terminal that cannot move its cursor, or from a pipe
/// or a file.
class EditorInput {
 public:
  EditorInput() = default;
  virtual ~EditorInput() = default;
  EditorInput(EditorInput const&) = delete;
  EditorInput& operator=(EditorInput const&) = delete;

  /// The next command; nothing at the end of the input.
  [[nodiscard]] virtual std::optional<std::string> next(std::string const& prompt) = 0;
  /// The answer to a question; nothing at the end of the input. Only for terminals.
  [[nodiscard]] virtual std::optional<std::string> ask(std::string const& question) = 0;
};

/// Reads the standard input of a person, if it is a terminal. `beforeEnd` is called when a signal such as SIGTERM or
/// SIGHUP is about to end the program, in the course of the program and not within a handler. Ctrl-C drops the line
/// that is being typed, and never ends the program.
[[nodiscard]] std::unique_ptr<EditorInput> terminalInput(LineEditor::Completer completer,
                                                         std::function<void()> beforeEnd);

/// Reads the standard input of a script. Throws a `Failure` if it cannot be read.
[[nodiscard]] std::unique_ptr<EditorInput> scriptInput();

/// Whether a person is there: standard input and output are a terminal.
[[nodiscard]] bool isOnATerminal() noexcept;

}  // namespace tarn::tool
