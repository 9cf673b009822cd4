#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <tarn/rules/Diagnostic.h>

// The one list of all kinds of problems. `Code` is what the loader, the parser and lint write; the table below gives
// each code its public name, its severity and its meaning. The rule reference lists the same rows, and a test compares
// the two. A name is a promise to programs that compare codes: add names, but never give one another meaning.

namespace tarn::rules {

enum class Code : std::uint8_t {
  // Files
  UnreadableFile,
  NoRuleFiles,
  EmptyFile,
  TooManyErrors,
  LimitExceeded,
  // YAML
  YamlEncoding,
  YamlSyntax,
  SeveralDocuments,
  UnknownAnchor,
  RecursiveAlias,
  // The form of a rule file
  MissingVersion,
  UnknownVersion,
  WrongKind,
  NotYesOrNo,
  UnknownKey,
  MissingKey,
  DuplicateKey,
  DuplicateName,
  ConflictingKeys,
  InvalidName,
  InvalidTypePath,
  UnknownParameterType,
  NotAListType,
  NoUnits,
  InvalidUnits,
  InvalidConversion,
  NoUnitDefinitions,
  InvalidPattern,
  InvalidCount,
  UnknownLevel,
  MissingReason,
  CircularCall,
  // Expressions
  ExpressionSyntax,
  UnknownWord,
  UnknownFunction,
  UnknownNamedRule,
  WrongArgumentCount,
  WrongOperandKind,
  InvalidPath,
  SeveralParameters,
  UnitsOfNoType,
  UnitsOfAnotherType,
  AmbiguousUnits,
  // Lint
  UnknownRootType,
  UnknownObjectPath,
  UnknownParameter,
  ImpossibleValue,
  NeverHolds,
  DependsOnItself,
  ReadsLaterDecision,
  UnreachableType,
  MissingObjectEntry,
  NoEffect,
  ImpossibleName,
  NameEqualsType,
  UnknownAllowedValue,
  DefaultNotAllowed,
  DefaultOfWrongType,
  DefaultOutOfBounds,
  BoundNotANumber,
  BoundsReversed,
  UnknownQuantityType,
  NeverLive,
  MissingRoots,
  NoConversion,
  UnitsNotListed,
  BoundWithoutUnits,
  DifferentQuantities,
  RequiresNothing,
  NeverAdded,
  CountsReversed,
  DefaultNotMatching,
  PatternMatchesEmpty,
  UnknownCode,
  NeedlessAcceptance,
  AlwaysHolds,
  UnreachableEntry,
  UnusedName,
  AnalysisGivenUp,
};

/// Lint alone finds this code and those after it.
inline constexpr Code firstLintCode = Code::UnknownRootType;

struct CodeRow {
  Code code;
  DiagnosticCode info;
};

inline constexpr auto codeTable = std::to_array<CodeRow>({
    {Code::UnreadableFile,
     {"unreadable-file", Severity::Error, "A file or folder cannot be read, or is larger than the limit."}},
    {Code::NoRuleFiles,
     {"no-rule-files", Severity::Error, "A folder holds no rule files, or no file was named at all."}},
    {Code::EmptyFile, {"empty-file", Severity::Error, "A file holds no rules."}},
    {Code::TooManyErrors, {"too-many-errors", Severity::Error, "There are more errors than are kept."}},
    {Code::LimitExceeded,
     {"limit-exceeded", Severity::Error, "A file, an expression or a chain of named rules is beyond a limit."}},

    {Code::YamlEncoding,
     {"yaml-encoding", Severity::Error, "A file is not text in UTF-8, or holds a control character."}},
    {Code::YamlSyntax, {"yaml-syntax", Severity::Error, "A file is not YAML."}},
    {Code::SeveralDocuments, {"several-documents", Severity::Error, "A file holds more than one YAML document."}},
    {Code::UnknownAnchor, {"unknown-anchor", Severity::Error, "An alias names an anchor that no line before it has."}},
    {Code::RecursiveAlias, {"recursive-alias", Severity::Error, "An alias is part of what it refers to."}},

    {Code::MissingVersion, {"missing-version", Severity::Error, "A file has no key 'Rule Database'."}},
    {Code::UnknownVersion, {"unknown-version", Severity::Error, "A file has a version that this library cannot read."}},
    {Code::WrongKind,
     {"wrong-kind", Severity::Error, "A single value, a list or a map is written where another of them is needed."}},
    {Code::NotYesOrNo, {"not-yes-or-no", Severity::Error, "A value is neither yes nor no."}},
    {Code::UnknownKey, {"unknown-key", Severity::Error, "A map has a key that the format does not know."}},
    {Code::MissingKey, {"missing-key", Severity::Error, "A map lacks a key that it must have."}},
    {Code::DuplicateKey, {"duplicate-key", Severity::Error, "A map has the same key twice."}},
    {Code::DuplicateName,
     {"duplicate-name", Severity::Error,
      "A parameter, child type, named rule, global check or quantity type exists twice."}},
    {Code::ConflictingKeys,
     {"conflicting-keys", Severity::Error, "A map has two keys of which only one may be given."}},
    {Code::InvalidName, {"invalid-name", Severity::Error, "A name is empty, or has characters that it must not have."}},
    {Code::InvalidTypePath, {"invalid-type-path", Severity::Error, "A key under Objects is not an object type path."}},
    {Code::UnknownParameterType,
     {"unknown-parameter-type", Severity::Error, "A parameter has a type that does not exist."}},
    {Code::NotAListType,
     {"not-a-list-type", Severity::Error, "A parameter has an attribute that only list types can have."}},
    {Code::NoUnits, {"no-units", Severity::Error, "A quantity type lists no units."}},
    {Code::InvalidUnits,
     {"invalid-units", Severity::Error,
      "The text of a unit is too long, or holds a bracket, which no value can have."}},
    {Code::InvalidConversion,
     {"invalid-conversion", Severity::Error,
      "The factor or the offset of a unit is not a number, the factor is zero, or the first unit has a conversion."}},
    {Code::NoUnitDefinitions,
     {"no-unit-definitions", Severity::Error, "The units library cannot read its definitions of units."}},
    {Code::InvalidPattern, {"invalid-pattern", Severity::Error, "A pattern is not a regular expression."}},
    {Code::InvalidCount, {"invalid-count", Severity::Error, "A count of children is not a whole number from 0 on."}},
    {Code::UnknownLevel, {"unknown-level", Severity::Error, "The level of a check is neither Error nor Warning."}},
    {Code::MissingReason, {"missing-reason", Severity::Error, "A finding is accepted without a reason."}},
    {Code::CircularCall, {"circular-call", Severity::Error, "Named rules call each other in a circle."}},

    {Code::ExpressionSyntax,
     {"expression-syntax", Severity::Error, "An expression does not follow the grammar of the language."}},
    {Code::UnknownWord,
     {"unknown-word", Severity::Error,
      "A word in an expression is not an operator or a function, and is not written as a text or a path."}},
    {Code::UnknownFunction,
     {"unknown-function", Severity::Error, "An expression calls a function that does not exist."}},
    {Code::UnknownNamedRule,
     {"unknown-named-rule", Severity::Error, "An expression calls a named check or list that does not exist."}},
    {Code::WrongArgumentCount,
     {"wrong-argument-count", Severity::Error, "A function is called with too few or too many arguments."}},
    {Code::WrongOperandKind,
     {"wrong-operand-kind", Severity::Error, "An operand or argument is of a kind that cannot be used there."}},
    {Code::InvalidPath, {"invalid-path", Severity::Error, "A path in an expression cannot be read."}},
    {Code::SeveralParameters,
     {"several-parameters", Severity::Error,
      "A path that can match several parameters is used where one value is needed."}},
    {Code::UnitsOfNoType,
     {"units-of-no-type", Severity::Error, "An expression has a quantity whose units no quantity type lists."}},
    {Code::UnitsOfAnotherType,
     {"units-of-another-type", Severity::Error,
      "An expression takes a quantity together with one of a quantity type that does not list its units."}},
    {Code::AmbiguousUnits,
     {"ambiguous-units", Severity::Error,
      "An expression has a quantity whose units several quantity types convert differently, and does not show which "
      "one "
      "is meant."}},

    {Code::UnknownRootType,
     {"unknown-root-type", Severity::Warning, "Pertinent Roots names a type that has no rules."}},
    {Code::UnknownObjectPath,
     {"unknown-object-path", Severity::Warning, "The rules define no object at the path that an expression reads."}},
    {Code::UnknownParameter,
     {"unknown-parameter", Severity::Warning, "The rules do not define the parameter that an expression reads."}},
    {Code::ImpossibleValue,
     {"impossible-value", Severity::Warning, "A parameter is compared with a value that it can never have."}},
    {Code::NeverHolds, {"never-holds", Severity::Warning, "A condition can never hold."}},
    {Code::DependsOnItself,
     {"depends-on-itself", Severity::Warning, "The availability of a parameter depends on its own value."}},
    {Code::ReadsLaterDecision,
     {"reads-later-decision", Severity::Warning, "A rule reads something that is decided later in the same walk."}},
    {Code::UnreachableType,
     {"unreachable-type", Severity::Warning, "No child rule leads to an object type that has rules."}},
    {Code::MissingObjectEntry, {"missing-object-entry", Severity::Warning, "A child type has no entry under Objects."}},
    {Code::NoEffect, {"no-effect", Severity::Warning, "A key has no effect where it is written."}},
    {Code::ImpossibleName, {"impossible-name", Severity::Warning, "No object can have a name that the rules give."}},
    {Code::NameEqualsType,
     {"name-equals-type", Severity::Warning, "The rules give an object the name of its own type."}},
    {Code::UnknownAllowedValue,
     {"unknown-allowed-value", Severity::Warning, "A key of a map from allowed values is not an allowed value."}},
    {Code::DefaultNotAllowed, {"default-not-allowed", Severity::Warning, "A default is not among the allowed values."}},
    {Code::DefaultOfWrongType,
     {"default-of-wrong-type", Severity::Warning, "A default is not of the type of its parameter."}},
    {Code::DefaultOutOfBounds,
     {"default-out-of-bounds", Severity::Warning, "A default is below the lower or above the upper bound."}},
    {Code::BoundNotANumber, {"bound-not-a-number", Severity::Warning, "A bound is not a number."}},
    {Code::BoundsReversed, {"bounds-reversed", Severity::Warning, "The upper bound is below the lower bound."}},
    {Code::UnknownQuantityType,
     {"unknown-quantity-type", Severity::Warning, "A parameter has a quantity type that is not under Quantity Types."}},
    {Code::NeverLive,
     {"never-live", Severity::Warning, "The context of an entry can never occur, so the entry is never live."}},
    {Code::MissingRoots,
     {"missing-roots", Severity::Error, "No file names Pertinent Roots, so no model can be judged."}},
    {Code::NoConversion,
     {"no-conversion", Severity::Warning, "Units of a quantity type cannot be converted to its first unit."}},
    {Code::UnitsNotListed,
     {"units-not-listed", Severity::Error,
      "A bound, default or override is given in units that the quantity type of its parameter does not list."}},
    {Code::BoundWithoutUnits,
     {"bound-without-units", Severity::Note,
      "A bound of a quantity has no units, so it counts in the first unit of the quantity type."}},
    {Code::DifferentQuantities,
     {"different-quantities", Severity::Warning,
      "Quantities of different types are compared or added, or one is the bound, default or override of the other."}},
    {Code::RequiresNothing,
     {"requires-nothing", Severity::Warning,
      "A child type is required, but its names are free and it has no minimum count, so no child need exist."}},
    {Code::NeverAdded,
     {"never-added", Severity::Warning,
      "A child type with free names is neither required nor coupled, so no edit can add such a child."}},
    {Code::CountsReversed,
     {"counts-reversed", Severity::Warning, "The maximum count of a child type is below its minimum count."}},
    {Code::DefaultNotMatching,
     {"default-not-matching", Severity::Warning, "A default does not match the pattern of its parameter."}},
    {Code::PatternMatchesEmpty,
     {"pattern-matches-empty-text", Severity::Note, "A pattern matches the empty text too."}},
    {Code::UnknownCode,
     {"unknown-code", Severity::Error, "A code that is accepted does not exist, or cannot be accepted."}},
    {Code::NeedlessAcceptance,
     {"needless-acceptance", Severity::Warning, "A finding is accepted that lint does not make there."}},
    {Code::AlwaysHolds, {"always-holds", Severity::Warning, "A condition that is written out always holds."}},
    {Code::UnreachableEntry,
     {"unreachable-entry", Severity::Warning,
      "An entry of a list is never reached, because earlier ones always apply."}},
    {Code::UnusedName,
     {"unused-name", Severity::Warning, "A named rule or a quantity type is defined, but nothing uses it."}},
    {Code::AnalysisGivenUp,
     {"analysis-given-up", Severity::Note,
      "A condition is too complex for lint to find out whether it always or never holds."}},
});

static_assert(
    [] {
      for (std::size_t i = 0; i < codeTable.size(); ++i) {
        if (codeTable[i].code != static_cast<Code>(i)) return false;
      }
      return true;
    }(),
    "the rows are in the order of the enumerators, and no row is missing between them");

/// The row of a code by its public name, as `diagnosticCodes` has it. Null when there is none.
[[nodiscard]] DiagnosticCode const* findCode(std::string_view name) noexcept;

[[nodiscard]] constexpr DiagnosticCode const& infoOf(Code code) noexcept {
  return codeTable[static_cast<std::size_t>(code)].info;
}

}  // namespace tarn::rules
