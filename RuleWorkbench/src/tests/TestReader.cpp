// From YAML to the plan of each test. `docs/rule-tests.md` describes the form of the files.
#include "tests/TestReader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include <tarn/Error.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Finding.h>
#include <tarn/session/Refused.h>

#include "diagnostics/NearMatch.h"
#include "yaml/ScalarText.h"

namespace tarn::workbench {

using rules::Code;
using rules::inQuotes;
using rules::Key;
using rules::orDidYouMean;
using rules::YamlNode;

namespace {

enum class FileKey { Version, Tests };
constexpr auto fileKeys = std::to_array<Key<FileKey>>({{"Rule Tests", FileKey::Version}, {"Tests", FileKey::Tests}});

enum class TestKey { Model, Root, Expect, Steps, Evaluate };
constexpr auto testKeys = std::to_array<Key<TestKey>>({{"Model", TestKey::Model},
                                                       {"Root", TestKey::Root},
                                                       {"Expect", TestKey::Expect},
                                                       {"Steps", TestKey::Steps},
                                                       {"Evaluate", TestKey::Evaluate}});

enum class ModelKey { File };
constexpr auto modelKeys = std::to_array<Key<ModelKey>>({{"File", ModelKey::File}});

/// The edits of a step; nothing means the expectations.
using StepKey = std::optional<PlannedEdit::Kind>;
using EditKind = PlannedEdit::Kind;
constexpr auto stepKeys = std::to_array<Key<StepKey>>({{"Set", EditKind::Set},
                                                       {"Switch On", EditKind::SwitchOn},
                                                       {"Switch Off", EditKind::SwitchOff},
                                                       {"Add", EditKind::Add},
                                                       {"Remove", EditKind::Remove},
                                                       {"Copy", EditKind::Copy},
                                                       {"Rename", EditKind::Rename},
                                                       {"Expect", std::nullopt}});

/// The expectations about items; nothing means whether the edits are refused.
using ExpectKey = std::optional<Expectation::Kind>;
using Kind = Expectation::Kind;
constexpr auto expectKeys = std::to_array<Key<ExpectKey>>({{"Value", Kind::Value},
                                                           {"Present", Kind::Present},
                                                           {"Absent", Kind::Absent},
                                                           {"On Offer", Kind::OnOffer},
                                                           {"Waiting", Kind::Waiting},
                                                           {"Required", Kind::Required},
                                                           {"Optional", Kind::Optional},
                                                           {"Allowed", Kind::Allowed},
                                                           {"Default", Kind::Default},
                                                           {"Lower Bound", Kind::LowerBound},
                                                           {"Upper Bound", Kind::UpperBound},
                                                           {"Reason", Kind::Reason},
                                                           {"Refused", std::nullopt},
                                                           {"Findings", Kind::Findings},
                                                           {"Failed Checks", Kind::FailedChecks}});

enum class EvaluateKey { At, Expression, Gives };
constexpr auto evaluateKeys = std::to_array<Key<EvaluateKey>>(
    {{"At", EvaluateKey::At}, {"Expression", EvaluateKey::Expression}, {"Gives", EvaluateKey::Gives}});

}  // namespace

TestReader::TestReader(rules::SourceText const& source, std::filesystem::path folder, bool isIncomplete,
                       rules::DiagnosticList& diagnostics)
    : MapReader(diagnostics), source_(source), folder_(std::move(folder)), isIncomplete_(isIncomplete) {}

void TestReader::read(YamlNode const& root, std::vector<TestPlan>& tests) {
  if (valueIn(root, "Rule Tests") == nullptr && valueIn(root, "Rule Database") != nullptr) {
    error(Code::WrongKind, at(&root),
          "this is a file of rules, not of tests; give the rules after --rules, and here files that begin with "
          "'Rule Tests: 1'");
    return;
  }
  bool versionGiven = false;
  forEachKnown(at(&root), "a file of rule tests", fileKeys, [&](FileKey key, Item const&, Item const& value) {
    if (key == FileKey::Version) {
      versionGiven = true;
      auto const version = scalar(value, "the version");
      if (version && *version != "1") {
        error(Code::UnknownVersion, value,
              "unknown format version " + inQuotes(version->substr(0, 60)) + "; this program reads version 1");
      }
      return;
    }
    forEach(value, "Tests", [&](Item const& name, Item const& body) {
      if (!isName(name, "the name of a test")) return;
      std::size_t const errorsBefore = diagnostics_.errorCount();
      TestPlan test;
      readTest(name, body, test);
      if (diagnostics_.errorCount() == errorsBefore) tests.push_back(std::move(test));
    });
  });
  if (!versionGiven && rules::canHoldKeys(root) && !isMisspelled("Rule Tests", root)) {
    error(Code::MissingKey, at(&root), "the key 'Rule Tests' is missing; begin the file with 'Rule Tests: 1'");
  }
}

void TestReader::readTest(Item const& name, Item const& body, TestPlan& test) {
  test.name = name.node->value;
  test.place = name.place();
  bool expectsSomething = false;
  forEachKnown(body, "a test", testKeys, [&](TestKey key, Item const& keyItem, Item const& value) {
    switch (key) {
      case TestKey::Model:
        readModel(value, test);
        break;
      case TestKey::Root:
        if (scalar(value, "the object to edit")) test.root = placed(value);
        break;
      case TestKey::Expect: {
        expectsSomething = true;
        PlannedStep step;
        step.place = keyItem.place();
        readExpect(value, step);
        if (step.refusal) {
          error(Code::MissingKey, value, "'Refused' belongs to a step with edits, and here nothing is edited");
        }
        test.steps.insert(test.steps.begin(), std::move(step));  // before the edits, wherever it is written
        break;
      }
      case TestKey::Steps:
        expectsSomething = true;
        readSteps(value, test);
        break;
      case TestKey::Evaluate:
        expectsSomething = true;
        readEvaluate(value, test);
        break;
    }
  });
  // A part that is not YAML was reported, and may have what is missing here.
  if (isIncomplete_ || expectsSomething || (!rules::canHoldKeys(*body.node) && !rules::isNothing(*body.node))) return;
  for (char const* key : {"Expect", "Steps", "Evaluate"}) {
    if (isMisspelled(key, *body.node)) return;
  }
  error(Code::MissingKey, name, "the test expects nothing; give it 'Expect', 'Steps' or 'Evaluate'");
}

void TestReader::readModel(Item const& item, TestPlan& test) {
  if (item.node->kind == YamlNode::Kind::Scalar) return readModelText(item, test);
  bool hasFile = false;
  forEachKnown(item, "a model", modelKeys, [&](ModelKey, Item const&, Item const& value) {
    hasFile = true;
    if (scalar(value, "the path of a model")) readModelFile(value, test);
  });
  if (!hasFile && rules::canHoldKeys(*item.node) && !isMisspelled("File", *item.node)) {
    error(Code::MissingKey, item, "the model has no 'File'");
  }
}

void TestReader::readModelText(Item const& item, TestPlan& test) {
  std::string const& text = item.node->value;
  auto model = std::make_shared<ModelText>(source_.name(), text);
  std::size_t line = 1;
  std::size_t begin = 0;
  rules::ScalarWalk walk;
  for (ModelText::Fault const& fault : model->faults()) {
    for (; line < fault.line; ++line) begin = text.find('\n', begin) + 1;
    std::string_view const rest = std::string_view(text).substr(begin);
    std::string_view const whole = rest.substr(0, rest.find('\n'));
    std::size_t const skipped = rules::characterOffset(whole, fault.column - 1);
    auto const range = rangeInScalar(source_, *item.node, begin + skipped, whole.size() - skipped, &walk);
    diagnostics_.add(Code::UnreadableFile, source_, range, "the model cannot be read: " + fault.reason);
  }
  test.model = std::move(model);
}

void TestReader::readModelFile(Item const& item, TestPlan& test) {
  auto const path = folder_ / item.node->value;
  auto& known = models_[path];
  if (!known) {
    try {
      known = std::make_shared<ModelText const>(ModelText::read(path.string()));
    } catch (Error const& failure) {
      models_.erase(path);
      error(Code::UnreadableFile, item, "cannot read the model: " + failure.getMessage());
      return;
    }
  }
  for (ModelText::Fault const& fault : known->faults()) {
    error(Code::UnreadableFile, item,
          "the model cannot be read: " + path.string() + ':' + std::to_string(fault.line) + ':' +
              std::to_string(fault.column) + ": " + fault.reason);
  }
  test.model = known;
}

void TestReader::readSteps(Item const& item, TestPlan& test) {
  if (item.node->kind != YamlNode::Kind::Sequence) {
    error(Code::WrongKind, item,
          "'Steps' must be a list of maps, but this is " + std::string(rules::kindText(*item.node)) +
              "; begin each step with '- '");
    return;
  }
  for (YamlNode const* child : item.node->children) {
    PlannedStep step;
    step.place = at(child).place();
    readStep(at(child), step);
    test.steps.push_back(std::move(step));
  }
}

void TestReader::readStep(Item const& item, PlannedStep& step) {
  bool hasKeys = false;
  forEachKnown(item, "a step", stepKeys, [&](StepKey edit, Item const&, Item const& value) {
    hasKeys = true;
    if (edit) return readEdits(*edit, value, step);
    readExpect(value, step);
  });
  if (step.refusal && step.edits.empty()) {
    error(Code::MissingKey, item, "'Refused' needs an edit in the same step, and there is none");
  }
  if (!hasKeys && rules::isNothing(*item.node)) error(Code::WrongKind, item, "the step is empty");
}

template <typename Each>
void TestReader::forEachPath(Item const& item, Each each) {
  if (item.node->kind == YamlNode::Kind::Mapping) {
    (void)texts(item, true);  // says what is wrong
    return;
  }
  if (item.node->kind == YamlNode::Kind::Scalar) {
    if (isName(item, "a path")) each(item);
    return;
  }
  for (YamlNode const* child : item.node->children) {
    if (scalar(at(child), "an item of this list") && isName(at(child), "a path")) each(at(child));
  }
}

void TestReader::readEdits(PlannedEdit::Kind kind, Item const& item, PlannedStep& step) {
  bool const hasText =
      kind == PlannedEdit::Kind::Set || kind == PlannedEdit::Kind::Copy || kind == PlannedEdit::Kind::Rename;
  if (!hasText) {
    forEachPath(item, [&](Item const& path) { step.edits.push_back({kind, placed(path), {}}); });
    return;
  }
  std::string_view const what = kind == PlannedEdit::Kind::Set    ? "Set"
                                : kind == PlannedEdit::Kind::Copy ? "Copy"
                                                                  : "Rename";
  forEach(item, what, [&](Item const& path, Item const& text) {
    auto const given = scalar(text, kind == PlannedEdit::Kind::Set ? "a value" : "the new name");
    if (given && isName(path, "a path")) step.edits.push_back({kind, placed(path), std::string(*given)});
  });
}

void TestReader::readExpect(Item const& item, PlannedStep& step) {
  forEachKnown(item, "an expectation", expectKeys, [&](ExpectKey kind, Item const&, Item const& value) {
    if (!kind) return readRefused(value, step);
    switch (*kind) {
      case Kind::Value:
      case Kind::Default:
      case Kind::LowerBound:
      case Kind::UpperBound:
      case Kind::Reason:
        return readTextsByPath(*kind, value, step);
      case Kind::Present:
      case Kind::Absent:
      case Kind::OnOffer:
      case Kind::Waiting:
      case Kind::Required:
      case Kind::Optional:
        return readPaths(*kind, value, step);
      case Kind::Allowed:
        return readAllowed(value, step);
      case Kind::Findings:
      case Kind::FailedChecks:
        return readFindings(*kind, value, step);
    }
  });
}

void TestReader::readTextsByPath(Expectation::Kind kind, Item const& item, PlannedStep& step) {
  forEach(item, "this expectation", [&](Item const& path, Item const& value) {
    auto const text = scalar(value, "what is expected");
    if (text && isName(path, "a path")) step.expectations.push_back({kind, placed(path), {std::string(*text)}});
  });
}

void TestReader::readPaths(Expectation::Kind kind, Item const& item, PlannedStep& step) {
  forEachPath(item, [&](Item const& path) { step.expectations.push_back({kind, placed(path), {}}); });
}

void TestReader::readAllowed(Item const& item, PlannedStep& step) {
  forEach(item, "Allowed", [&](Item const& path, Item const& value) {
    if (!isName(path, "a path")) return;
    if (value.node->kind == YamlNode::Kind::Scalar && value.node->value == "any") {
      step.expectations.push_back({Expectation::Kind::Allowed, placed(path), {}, true});
    } else if (auto values = texts(value, false)) {
      step.expectations.push_back({Expectation::Kind::Allowed, placed(path), std::move(*values)});
    }
  });
}

void TestReader::readRefused(Item const& item, PlannedStep& step) {
  auto const text = scalar(item, "yes, no, or the code of a refusal");
  if (!text) return;
  ExpectedRefusal refusal;
  refusal.place = item.place();
  if (auto const given = StringUtilities::asYesNo(*text)) {
    refusal.isRefused = *given;
  } else {
    auto const names = session::refusalNames();
    if (std::find(names.begin(), names.end(), *text) == names.end()) {
      auto const near =
          StringUtilities::nearMatch(std::string(*text), std::vector<std::string>(names.begin(), names.end()));
      auto& diagnostic = error(
          Code::UnknownCode, item,
          "this must be yes, no, or the code of a refusal, not " + inQuotes(text->substr(0, 60)) + orDidYouMean(near));
      if (!near.empty()) fixText(diagnostic, item, near);
      return;
    }
    refusal.isRefused = true;
    refusal.code = *text;
  }
  step.refusal = std::move(refusal);
}

std::vector<std::string> TestReader::findingCodesOf(Expectation::Kind kind, Item const& item) {
  std::vector<std::string> codes;
  if (item.node->kind == YamlNode::Kind::Scalar && item.node->value == "none") return codes;
  forEachPath(item, [&](Item const& code) {
    std::vector<std::string> known;
    for (auto const& info : session::findingCodes()) {
      if (info.kind != session::FindingKind::Beta) known.emplace_back(info.name);
    }
    if (kind == Kind::FailedChecks) {  // the names of checks are the rules' own
      codes.push_back(code.node->value);
      return;
    }
    std::string const& name = code.node->value;
    if (std::find(known.begin(), known.end(), name) != known.end()) {
      codes.push_back(name);
      return;
    }
    auto const near = StringUtilities::nearMatch(name, known);
    auto& diagnostic = error(
        Code::UnknownCode, code,
        "there is no finding with the code " + inQuotes(std::string_view(name).substr(0, 60)) + orDidYouMean(near));
    if (!near.empty()) fixText(diagnostic, code, near);
  });
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  return codes;
}

void TestReader::readFindings(Expectation::Kind kind, Item const& item, PlannedStep& step) {
  if (item.node->kind != YamlNode::Kind::Mapping) {
    step.expectations.push_back({kind, {{}, item.place()}, findingCodesOf(kind, item)});
    return;
  }
  forEach(item, "this expectation", [&](Item const& path, Item const& codes) {
    if (!isName(path, "a path")) return;
    step.expectations.push_back({kind, placed(path), findingCodesOf(kind, codes)});
  });
}

void TestReader::readEvaluate(Item const& item, TestPlan& test) {
  if (item.node->kind != YamlNode::Kind::Sequence) return readEvaluation(item, test);
  for (YamlNode const* child : item.node->children) readEvaluation(at(child), test);
}

void TestReader::readEvaluation(Item const& item, TestPlan& test) {
  PlannedEvaluation evaluation;
  bool hasExpression = false;
  bool hasGives = false;
  forEachKnown(item, "an evaluation", evaluateKeys, [&](EvaluateKey key, Item const&, Item const& value) {
    switch (key) {
      case EvaluateKey::At:
        if (scalar(value, "the path of an object")) evaluation.at = placed(value);
        break;
      case EvaluateKey::Expression:
        hasExpression = true;
        if (scalar(value, "an expression")) evaluation.expression = {value.node->value, value.placeOfExpression(0)};
        break;
      case EvaluateKey::Gives:
        hasGives = true;
        evaluation.givesPlace = value.place();
        evaluation.givesList = value.node->kind == YamlNode::Kind::Sequence;
        if (auto given = texts(value, true)) evaluation.gives = std::move(*given);
        break;
    }
  });
  for (auto const& [key, isGiven] : {std::pair{"Expression", hasExpression}, std::pair{"Gives", hasGives}}) {
    if (!isGiven && rules::canHoldKeys(*item.node) && !isMisspelled(key, *item.node)) {
      error(Code::MissingKey, item, std::string("the evaluation has no '") + key + "'");
    }
  }
  test.evaluations.push_back(std::move(evaluation));
}

}  // namespace tarn::workbench
