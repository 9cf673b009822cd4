#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/SharedStrings.h>
#include <tarn/TextPlace.h>

namespace tarn::session {

/// How bad a finding is. A model with errors is wrong. A warning is about something that is probably not meant. A note
/// is information only; only beta messages are notes.
enum class Severity { Error, Warning, Note };

/// The kinds of findings, in the order in which `Findings::list` has them.
enum class FindingKind {
  /// The model text as a whole: nothing to review, a parameter given twice.
  Model,
  /// The validator's verdict on one object: something is missing or out of place.
  Dependency,
  /// A global check that failed.
  Global,
  /// A name that the rules do not know.
  UnknownName,
  /// A value that does not fit the declaration of its parameter.
  Value,
  /// The number of children of a type.
  Count,
  /// A check of an object that failed.
  ObjectCheck,
  /// An item that the rules have renamed or that they call deprecated.
  History,
  /// A remark of the rule authors about something that is not released yet. Such remarks are not findings.
  Beta
};

/// A stable code for each fault. `describe` gives the name of a code, its kind and its meaning.
enum class FindingCode {
  NothingToReview,
  ConflictingValues,
  RepeatedParameter,
  MissingParameter,
  ParameterNotAvailable,
  ValueNotAllowed,
  MissingObject,
  ObjectNotAvailable,
  ObjectNameNotAllowed,
  GlobalCheckFailed,
  UnknownParameter,
  UnknownObject,
  ObjectNameMissing,
  ObjectNameNotExpected,
  NotANumber,
  NotAWholeNumber,
  NotALogical,
  BelowLowerBound,
  AboveUpperBound,
  UnitsNotListed,
  UnitsNotExpected,
  UnitsAssumed,
  PatternNotMatched,
  TooFewObjects,
  TooManyObjects,
  InvalidCount,
  ObjectCheckFailed,
  RenamedParameter,
  RenamedObject,
  RenamedName,
  DeprecatedParameter,
  DeprecatedObject,
  BetaMessage
};

/// A code of a finding, as docs/findings.md lists it.
struct TARN_EXPORT FindingCodeInfo {
  FindingCode code;
  /// Lower case words with hyphens, such as "missing-parameter". A name keeps its meaning from release to release,
  /// while sentences get better. So programs compare names, and people read sentences.
  std::string_view name;
  FindingKind kind;
  /// The usual severity. The rules can lower that of a check to a warning.
  Severity severity;
  /// One sentence about all findings with this code.
  std::string_view meaning;
};

/// All codes, in the order of `FindingKind`. The span is valid until the program ends.
[[nodiscard]] TARN_EXPORT std::span<FindingCodeInfo const> findingCodes() noexcept;

/// The entry of `code` in `findingCodes`. Constant time.
[[nodiscard]] TARN_EXPORT FindingCodeInfo const& describe(FindingCode code) noexcept;

/// "error", "warning" or "note". Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view severityName(Severity severity) noexcept;

/// The remedy: values, bounds and names that would be right. Fields that do not apply are empty.
struct TARN_EXPORT Expected {
  /// The values, or the names of children, that are allowed now, in the order of the rules.
  SharedStrings allowed;
  /// The bounds that are in force, as the rules give them: "0 [m]". Both are set when the parameter has both.
  std::optional<std::string> lowerBound;
  std::optional<std::string> upperBound;
  /// A value that is equal to the bound is outside.
  bool lowerBoundExcluded = false;
  bool upperBoundExcluded = false;
  /// The units that the parameter can have; the first is taken when the value has none.
  std::vector<std::string> units;
  /// The least and the greatest number of children.
  std::optional<std::size_t> minimumCount;
  std::optional<std::size_t> maximumCount;
  /// The regular expression that the value must match.
  std::optional<std::string> pattern;
  /// The known or allowed name or value that is most similar to the wrong one; the present name of an item that was
  /// renamed.
  std::optional<std::string> nearMatch;
  /// A text that can replace the whole value: "12 [m]" for "12 m".
  std::optional<std::string> value;
};

/// One thing that is wrong with a model, as data and as a sentence.
struct TARN_EXPORT Finding {
  FindingCode code = FindingCode::NothingToReview;
  Severity severity = Severity::Error;
  /// The object that the finding is about. For a missing object or a number of children it is the parent. For a beta
  /// message it is the path of the item. "" when the finding is about the whole model, or about its root.
  std::string path;
  /// The parameter, when the finding is about one.
  std::optional<std::string> name;
  /// The type of the children, when the finding is about children of one type.
  std::optional<std::string> type;
  /// The name of the check that failed.
  std::optional<std::string> check;
  /// The whole value of the parameter, as the model gives it.
  std::optional<std::string> value;
  /// The parts that are wrong: the items of a list value that are not allowed, or the names of children that are
  /// missing, renamed, not allowed or not available. Empty when the whole value, or a child without a name, is wrong.
  std::vector<std::string> wrong;
  /// Not set when nothing is known but the sentence.
  Expected expected;
  /// Where the item is written in the model text. For an item that the model lacks, where its object is first
  /// mentioned. A parameter that is given more than once has all its places, in order. Empty for a model that was not
  /// read from text, and for findings about the whole model.
  std::vector<TextPlace> places;
  /// Where the rule is written. Not known for rules that a program made, and where there is no rule.
  TextPlace rule;
  /// One sentence, or more.
  std::string message;

  [[nodiscard]] FindingKind kind() const noexcept { return describe(code).kind; }
};

}  // namespace tarn::session
