#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>

namespace tarn::rules {

/// How serious a problem is.
enum class Severity {
  /// The rules are wrong. An error of form keeps them from being loaded. An error that only lint finds does not: the
  /// rules work, but a part of them cannot do what it says.
  Error,
  /// The rules are doubtful.
  Warning,
  /// The rules are right as they stand, but may be read in another way than they are meant.
  Note
};

/// "error", "warning" or "note".
[[nodiscard]] TARN_EXPORT std::string_view severityName(Severity severity) noexcept;

/// A change of a rule file that removes a problem. A program can apply it without asking what it means: replace the
/// characters from `line`, `column` up to `endLine`, `endColumn` of `source` by `text`.
struct TARN_EXPORT DiagnosticFix {
  /// The effect of the change, as a menu would name it: "Replace 'exist' by 'exists'".
  std::string title;
  std::string source;
  std::size_t line = 1;
  std::size_t column = 1;
  std::size_t endLine = 1;
  std::size_t endColumn = 1;
  /// The replacement, exactly as the file must contain it: with the quotes and escapes of YAML.
  std::string text;
};

/// A problem in a rule file: its position, what is wrong, and what to write instead where that is known.
///
/// Positions: lines and columns count from 1. A column counts characters, not bytes. `line` and `column` give the first
/// character, `endLine` and `endColumn` the position after the last one, so a problem of one character ends one column
/// after it begins. A problem of no characters (something is missing) ends where it begins. All four numbers are 0 when
/// the problem concerns the whole file.
struct TARN_EXPORT Diagnostic {
  /// The file, named as it was given to the loader.
  std::string source;
  std::size_t line = 1;
  std::size_t column = 1;
  std::size_t endLine = 1;
  std::size_t endColumn = 1;
  Severity severity = Severity::Error;
  /// The kind of problem: one of the names in `diagnosticCodes`. A code keeps its meaning from release to release,
  /// while messages get better. So programs compare codes, and people read messages.
  std::string code;
  /// One sentence. It ends with what to write instead when there is a near match or a common mistake.
  std::string message;

  /// The text of line `line`, for display. If the line is very long, only the part around `column` is kept.
  /// `sourceColumn` is the column where that part begins.
  std::string sourceLine;
  std::size_t sourceColumn = 1;

  /// A further position that belongs to the problem: for example, where a name was given first.
  struct Note {
    std::string source;
    std::size_t line = 1;
    std::size_t column = 1;
    std::size_t endLine = 1;
    std::size_t endColumn = 1;
    std::string message;
    std::string sourceLine;
    std::size_t sourceColumn = 1;
  };
  std::vector<Note> notes;

  /// How many places of the rules have this problem for this one reason: 1 when it is the only one. Beyond 1 the
  /// message ends with the number, and notes show the first further places that are written elsewhere.
  std::size_t affected = 1;

  /// A change of the file that removes the problem. Empty when the right change is not known for certain, or needs more
  /// than one replacement.
  std::optional<DiagnosticFix> fix;
};

/// A kind of problem, as the rule reference lists it.
struct TARN_EXPORT DiagnosticCode {
  /// The value of `Diagnostic::code`: lower case words with hyphens, such as "unknown-key".
  std::string_view name;
  /// The severity of every diagnostic with this code, unless `LintOptions::severities` says otherwise.
  Severity severity;
  /// One sentence about all diagnostics with this code.
  std::string_view meaning;
  /// Lint does not report it unless `LintOptions::severities` gives it a severity.
  bool isOffByDefault = false;
  /// Rules with this problem can be loaded: only lint finds it. Its severity can be set, and rule files can accept it.
  bool isOfLint = false;
};

/// All codes, each name once. The span is valid until the program ends.
[[nodiscard]] TARN_EXPORT std::span<DiagnosticCode const> diagnosticCodes() noexcept;

/// Whether rules with this problem cannot be loaded. False for a warning, for a note, and for an error that only lint
/// finds.
[[nodiscard]] TARN_EXPORT bool preventsLoading(Diagnostic const& diagnostic) noexcept;

/// The diagnostic as text for people; every line ends with a line feed:
///
///     flow.rules.yaml:34:20: error: unknown function 'exist'; did you mean 'exists'?
///        34 |         Available: exist(${Roughness})
///           |                    ^~~~~
///
/// The marks reach to the end of the problem, or cover one character when it ends on a later line. The notes follow in
/// the same form. A long source line is shown in part. Code and fix are not shown.
[[nodiscard]] TARN_EXPORT std::string format(Diagnostic const& diagnostic);

/// All diagnostics as text, one after the other.
[[nodiscard]] TARN_EXPORT std::string format(std::vector<Diagnostic> const& diagnostics);

}  // namespace tarn::rules
