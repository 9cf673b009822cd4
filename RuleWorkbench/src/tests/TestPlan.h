#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/ModelText.h>
#include <tarn/TextPlace.h>

// A test as it is read from its file: what to do, and what to expect, each with its place.

namespace tarn::workbench {

struct PlacedText {
  std::string text;
  TextPlace place;
};

/// A request of a step, before the rules have said whether its path is that of an object or of a parameter.
struct PlannedEdit {
  enum class Kind { Set, SwitchOn, SwitchOff, Add, Remove, Copy, Rename };
  Kind kind = Kind::Set;
  PlacedText path;
  /// The value, or the new name.
  std::string text;
};

struct Expectation {
  enum class Kind {
    Value,
    Present,
    Absent,
    OnOffer,
    Waiting,
    Required,
    Optional,
    Allowed,
    Default,
    LowerBound,
    UpperBound,
    Reason,
    Findings,
    FailedChecks
  };
  Kind kind = Kind::Value;
  /// The path that it is about. Empty for findings of the whole model.
  PlacedText path;
  /// The expected values; for lists in their order.
  std::vector<std::string> values;
  /// For `Allowed`: any value will do.
  bool isAny = false;
};

/// Whether the edits of a step should be refused.
struct ExpectedRefusal {
  bool isRefused = false;
  /// The name of the code; "" for any.
  std::string code;
  TextPlace place;
};

struct PlannedStep {
  TextPlace place;
  std::vector<PlannedEdit> edits;
  std::optional<ExpectedRefusal> refusal;
  std::vector<Expectation> expectations;
};

struct PlannedEvaluation {
  PlacedText at;
  PlacedText expression;
  /// One text, or the items of a list.
  std::vector<std::string> gives;
  bool givesList = false;
  TextPlace givesPlace;
};

struct TestPlan {
  std::string name;
  TextPlace place;
  /// Null for an empty model.
  std::shared_ptr<ModelText const> model;
  std::optional<PlacedText> root;
  std::vector<PlannedStep> steps;
  std::vector<PlannedEvaluation> evaluations;
};

}  // namespace tarn::workbench
