#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

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
  CircularCall,
  // Expressions
  InvalidExpression,
  // Lint
  Doubtful,
  ImpossibleComputedName,
};

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
    {Code::CircularCall, {"circular-call", Severity::Error, "Named rules call each other in a circle."}},

    {Code::InvalidExpression, {"invalid-expression", Severity::Error, "An expression cannot be read."}},

    {Code::Doubtful, {"doubtful", Severity::Warning, "A rule can be loaded but is doubtful."}},
    {Code::ImpossibleComputedName,
     {"impossible-computed-name", Severity::Warning, "A computed list of names has a text that cannot be a name."}},
});

static_assert(
    [] {
      for (std::size_t i = 0; i < codeTable.size(); ++i) {
        if (codeTable[i].code != static_cast<Code>(i)) return false;
      }
      return true;
    }(),
    "the rows stand in the order of the enumerators, and none is missing between them");

[[nodiscard]] constexpr DiagnosticCode const& infoOf(Code code) noexcept {
  return codeTable[static_cast<std::size_t>(code)].info;
}

}  // namespace tarn::rules
