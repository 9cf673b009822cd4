#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <tarn/Export.h>

namespace tarn::rules {

enum class Severity { Error, Warning };

/// Something that is wrong, or doubtful, at a place in a rule file.
struct TARN_EXPORT Diagnostic {
  /// The file, as it was named to the loader.
  std::string source;
  /// From 1; the column counts characters, not bytes. Both are 0 when the diagnostic is about the file as a whole.
  std::size_t line = 1;
  std::size_t column = 1;
  Severity severity = Severity::Error;
  /// One sentence, with what to write instead where there is a near match or a usual mistake.
  std::string message;

  /// The text of the line, for display, and how many characters of it from `column` the diagnostic is about, at
  /// least 1. Of a very long line only the part around `column` is kept; `sourceColumn` is where that begins.
  std::string sourceLine;
  std::size_t sourceColumn = 1;
  std::size_t length = 1;

  /// A further place that belongs to it: where a name was given first, for example.
  struct Note {
    std::string source;
    std::size_t line = 1;
    std::size_t column = 1;
    std::string message;
    std::string sourceLine;
    std::size_t sourceColumn = 1;
    std::size_t length = 1;
  };
  std::vector<Note> notes;
};

/// The diagnostic as people read it, each line ended:
///
///     flow.rules.yaml:34:20: error: unknown function 'exist'; did you mean 'exists'?
///        34 |         Available: exist(${Roughness})
///           |                    ^~~~~
///
/// Its notes follow in the same form. A long source line is shown in part.
[[nodiscard]] TARN_EXPORT std::string format(Diagnostic const& diagnostic);

/// All of them, one behind the other.
[[nodiscard]] TARN_EXPORT std::string format(std::vector<Diagnostic> const& diagnostics);

}  // namespace tarn::rules
