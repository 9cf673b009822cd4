// The one list of codes. A new code gets its line here and its example in docs/findings.md.
#include <tarn/session/Finding.h>

#include <algorithm>
#include <array>

namespace tarn::session {

namespace {

using Code = FindingCode;
using Kind = FindingKind;

constexpr std::array codes = {
    FindingCodeInfo{Code::NothingToReview, "nothing-to-review", Kind::Model, Severity::Error,
                    "The model is empty, or it has no object that the rules look at."},
    FindingCodeInfo{Code::ConflictingValues, "conflicting-values", Kind::Model, Severity::Error,
                    "The model text gives a parameter more than once, with different values."},
    FindingCodeInfo{Code::RepeatedParameter, "repeated-parameter", Kind::Model, Severity::Warning,
                    "The model text gives a parameter more than once, with the same value."},
    FindingCodeInfo{Code::MissingParameter, "missing-parameter", Kind::Dependency, Severity::Error,
                    "A required parameter is available and absent."},
    FindingCodeInfo{Code::ParameterNotAvailable, "parameter-not-available", Kind::Dependency, Severity::Error,
                    "A parameter is present although its rule withdraws it."},
    FindingCodeInfo{Code::ValueNotAllowed, "value-not-allowed", Kind::Dependency, Severity::Error,
                    "A value, or an item of a list, is not among the values that are allowed now."},
    FindingCodeInfo{Code::MissingObject, "missing-object", Kind::Dependency, Severity::Error,
                    "A required object is absent, and it would have an available parameter."},
    FindingCodeInfo{Code::ObjectNotAvailable, "object-not-available", Kind::Dependency, Severity::Error,
                    "An object is present although its rule withdraws objects of its type."},
    FindingCodeInfo{Code::ObjectNameNotAllowed, "object-name-not-allowed", Kind::Dependency, Severity::Error,
                    "The name of an object is not among the names that are allowed now."},
    FindingCodeInfo{Code::GlobalCheckFailed, "global-check-failed", Kind::Global, Severity::Error,
                    "A check of the whole model failed."},
    FindingCodeInfo{Code::UnknownParameter, "unknown-parameter", Kind::UnknownName, Severity::Error,
                    "The rules of the object have no such parameter."},
    FindingCodeInfo{Code::UnknownObject, "unknown-object", Kind::UnknownName, Severity::Error,
                    "The rules of the parent have no such type of objects."},
    FindingCodeInfo{Code::ObjectNameMissing, "object-name-missing", Kind::UnknownName, Severity::Error,
                    "An object has no name although objects of its type have names."},
    FindingCodeInfo{Code::ObjectNameNotExpected, "object-name-not-expected", Kind::UnknownName, Severity::Error,
                    "An object has a name although there is only one object of its type."},
    FindingCodeInfo{Code::NotANumber, "not-a-number", Kind::Value, Severity::Error,
                    "The value of an Integer or a Real is not a number."},
    FindingCodeInfo{Code::NotAWholeNumber, "not-a-whole-number", Kind::Value, Severity::Error,
                    "The value of an Integer is not a whole number."},
    FindingCodeInfo{Code::NotALogical, "not-a-logical", Kind::Value, Severity::Error,
                    "The value of a Logical is neither true nor false."},
    FindingCodeInfo{Code::BelowLowerBound, "below-lower-bound", Kind::Value, Severity::Error,
                    "A number is below its lower bound."},
    FindingCodeInfo{Code::AboveUpperBound, "above-upper-bound", Kind::Value, Severity::Error,
                    "A number is above its upper bound."},
    FindingCodeInfo{Code::UnitsNotListed, "units-not-listed", Kind::Value, Severity::Error,
                    "A number is in units that its quantity type does not list."},
    FindingCodeInfo{Code::UnitsNotExpected, "units-not-expected", Kind::Value, Severity::Error,
                    "A number has units although its parameter is not a quantity."},
    FindingCodeInfo{Code::UnitsAssumed, "units-assumed", Kind::Value, Severity::Warning,
                    "A quantity has no units, so it is taken in the first units of its type."},
    FindingCodeInfo{Code::PatternNotMatched, "pattern-not-matched", Kind::Value, Severity::Error,
                    "A text does not match the pattern of its parameter."},
    FindingCodeInfo{Code::TooFewObjects, "too-few-objects", Kind::Count, Severity::Error,
                    "An object has fewer children of a type than it needs."},
    FindingCodeInfo{Code::TooManyObjects, "too-many-objects", Kind::Count, Severity::Error,
                    "An object has more children of a type than it may have."},
    FindingCodeInfo{Code::InvalidCount, "invalid-count", Kind::Count, Severity::Error,
                    "The rules compute a number of children that is not a number."},
    FindingCodeInfo{Code::ObjectCheckFailed, "object-check-failed", Kind::ObjectCheck, Severity::Error,
                    "A check of an object failed."},
    FindingCodeInfo{Code::RenamedParameter, "renamed-parameter", Kind::History, Severity::Warning,
                    "A parameter has a name that it had in earlier rules, so its value does not count."},
    FindingCodeInfo{Code::RenamedObject, "renamed-object", Kind::History, Severity::Warning,
                    "An object has a type that is called differently now, so the object does not count."},
    FindingCodeInfo{Code::RenamedName, "renamed-name", Kind::History, Severity::Warning,
                    "An object has a name that it had in earlier rules."},
    FindingCodeInfo{Code::DeprecatedParameter, "deprecated-parameter", Kind::History, Severity::Warning,
                    "A parameter is present that models should no longer use."},
    FindingCodeInfo{Code::DeprecatedObject, "deprecated-object", Kind::History, Severity::Warning,
                    "An object is present that models should no longer use."},
    FindingCodeInfo{Code::BetaMessage, "beta-message", Kind::Beta, Severity::Note,
                    "A feature may be used but has been tested less; this is not a finding."},
};

static_assert(std::is_sorted(codes.begin(), codes.end(),
                             [](auto const& a, auto const& b) { return a.code < b.code; }) &&
                  codes.size() == static_cast<std::size_t>(Code::BetaMessage) + 1,
              "the codes are in the order of FindingCode, each once");

}  // namespace

std::span<FindingCodeInfo const> findingCodes() noexcept {
  return codes;
}

FindingCodeInfo const& describe(FindingCode code) noexcept {
  return codes[static_cast<std::size_t>(code)];
}

std::string_view severityName(Severity severity) noexcept {
  constexpr std::array<std::string_view, 3> names = {"error", "warning", "note"};
  return names[static_cast<std::size_t>(severity)];
}

}  // namespace tarn::session
