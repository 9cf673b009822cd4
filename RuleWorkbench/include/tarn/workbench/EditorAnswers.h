#pragma once

#include <compare>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/rules/Diagnostic.h>

// The answers of `EditedRules` to the questions of an editor.

namespace tarn::workbench {

/// A position in a file. Both numbers count from 0, and `byte` counts bytes from the beginning of the line.
struct EditorPosition {
  std::size_t line = 0;
  std::size_t byte = 0;
  friend auto operator<=>(EditorPosition const&, EditorPosition const&) = default;
};

/// The text from `begin` up to, but not including, `end`.
struct EditorRange {
  EditorPosition begin;
  EditorPosition end;
  friend bool operator==(EditorRange const&, EditorRange const&) = default;
};

struct TARN_EXPORT EditorLocation {
  std::string file;
  EditorRange range;
};

/// Replace `range` of `file` by `text`.
struct TARN_EXPORT EditorChange {
  std::string file;
  EditorRange range;
  std::string text;
};

/// A problem in a file. `rules::Diagnostic` describes what is not described here.
struct TARN_EXPORT EditorDiagnostic {
  struct Note {
    EditorLocation location;
    std::string message;
  };
  struct Fix {
    std::string title;
    EditorChange change;
  };

  EditorRange range;
  rules::Severity severity = rules::Severity::Error;
  std::string code;
  std::string message;
  std::vector<Note> notes;
  std::optional<Fix> fix;
};

/// The diagnostics of each file. A file without diagnostics has an empty list.
using EditorDiagnostics = std::map<std::string, std::vector<EditorDiagnostic>>;

/// The kinds of things that have names in rule files and that an editor shows. The numbers are part of the interface.
enum class EditorItemKind : int {
  Section = 0,
  ObjectType = 1,
  Parameter = 2,
  Child = 3,
  ObjectCheck = 4,
  GlobalCheck = 5,
  NamedCheck = 6,
  NamedList = 7,
  NamedValue = 8,
  Template = 9,
  QuantityType = 10,
  Test = 11,
  Key = 12,
  Value = 13,
  Function = 14,
  Word = 15
};

/// A proposal for what to write at the cursor.
struct TARN_EXPORT EditorCompletion {
  std::string label;
  EditorItemKind kind = EditorItemKind::Word;
  /// A few words about the item, or "".
  std::string detail;
  /// Markdown, or "".
  std::string documentation;
  /// The text to replace, on the line of the cursor and around it, and the text to write there.
  EditorRange replaced;
  std::string text;
};

/// The answer to "what is this?".
struct TARN_EXPORT EditorHover {
  EditorRange range;
  std::string markdown;
};

/// An item of a file, with the items that are written inside.
struct TARN_EXPORT EditorSymbol {
  std::string name;
  EditorItemKind kind = EditorItemKind::Section;
  std::string detail;
  /// The whole item, and its name within.
  EditorRange range;
  EditorRange nameRange;
  std::vector<EditorSymbol> children;
};

/// An item of any file, found by a part of its name.
struct TARN_EXPORT EditorFoundSymbol {
  std::string name;
  EditorItemKind kind = EditorItemKind::Section;
  /// The object type or template that has it, or "".
  std::string container;
  EditorLocation location;
};

/// Lines that can be folded into the first one. Both count from 0.
struct EditorFold {
  std::size_t firstLine = 0;
  std::size_t lastLine = 0;
};

/// The kinds of parts of expressions that an editor can colour. The numbers are part of the interface.
enum class EditorTokenKind : int {
  Function = 0,
  Keyword = 1,
  Number = 2,
  Text = 3,
  Parameter = 4,
  Objects = 5,
  Variable = 6,
  Operator = 7
};

/// A part of an expression, on one line.
struct EditorToken {
  EditorPosition position;
  std::size_t bytes = 0;
  EditorTokenKind kind = EditorTokenKind::Text;
};

/// The answer to a request for another name.
struct TARN_EXPORT EditorRename {
  /// Why the name cannot be changed; "" when it can.
  std::string refusal;
  /// All changes, by file and in the order of positions. They do not overlap.
  std::vector<EditorChange> changes;
};

/// The name at a position that can be changed, and where it is written.
struct TARN_EXPORT EditorName {
  EditorRange range;
  std::string name;
};

}  // namespace tarn::workbench
