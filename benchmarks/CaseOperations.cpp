// Runs the case as a host would, for all programs that measure it: the logger of the library keeps the findings, and
// every getter is read after each edit. The workload defines the expected results.
#include "CaseOperations.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

#include "Measure.h"
#include "support/FullWalks.h"

namespace tarn::benchmarks {

namespace {

std::vector<std::string> const roots = {"/Case"};

std::string text(EditCounts const& counts) {
  return std::to_string(counts.parameters) + " parameters, " + std::to_string(counts.added) + " added, " +
         std::to_string(counts.removed) + " removed, " + std::to_string(counts.modified) + " modified, " +
         std::to_string(counts.potential) + " potential";
}

void require(bool holds, CaseWorkload const& workload, std::string const& what) {
  if (holds) return;
  throw std::runtime_error("case of " + std::to_string(workload.domains()) + " domains: " + what +
                           "; times of it would mean nothing");
}

void requireCounts(EditCounts const& found, EditCounts const& expected, CaseWorkload const& workload,
                   std::string const& what) {
  require(found == expected, workload, what + " gives " + text(found) + ", and not " + text(expected));
}

}  // namespace

std::string caseRulesFile() {
  return std::string(TARN_SOURCE_DIR) + "/benchmarks/case.rules.yaml";
}

std::unique_ptr<PhysicsData> loadCaseRules() {
  return rules::loadRules({caseRulesFile()});
}

EditCounts readAllGetters(ProvisionalTDF const& state, std::string const& editedObject,
                          std::string const& editedParameter) {
  EditCounts counts;
  counts.added = state.getNewlyAvailParams().size();
  counts.removed = state.getNewlyUnavailParams().size();
  for (auto const& [object, name] : state.getModParams()) {
    counts.modified += object != editedObject || name != editedParameter;
  }
  counts.potential = state.getAvailPotParams().size() + state.getAvailPotObjects().size();
  // Getters that the case does not need are also read, since their cost counts.
  std::size_t const others = state.getActiveTDFState().size() + state.getDeletedObjects().size() +
                             state.getModBoundsParams().size() + state.getModQuantParams().size() +
                             state.getNewlyAvailPotObjects().size() + state.getNewlyAvailPotParams().size() +
                             state.getNewlyUnavailPotObjects().size() + state.getNewlyUnavailPotParams().size() +
                             state.getModPotParams().size() + state.getEmptyParameters(false).size() +
                             state.getEmptyParameters(true).size();
  if (others == 0) throw std::logic_error("an edited case has no state");
  return counts;
}

ModelState inOrder(ModelState const& model) {
  ModelState built;
  for (auto const& [path, values] : model) {
    built.emplace_hint(built.end(), path, ObjectState(values.begin(), values.end()));
  }
  return built;
}

RepeatedValidation::RepeatedValidation(PhysicsData const* rules, ModelState const& model)
    : validator_(rules), model_(inOrder(model)), notes_(model_.at("/Case/Domain:d0").at("Notes")) {
  validator_.setLogger(&logger_);
}

void RepeatedValidation::validateChanged() {
  notes_ = notes_ == "one" ? "other" : "one";
  validateUnchanged();
}

void RepeatedValidation::validateUnchanged() {
  validator_.validate(PhysicsValidator2::ValAll, model_, roots);
}

std::vector<std::string> RepeatedValidation::findings() const {
  std::vector<std::string> paths;
  for (auto const& error : logger_.getDependencyErrors()) paths.push_back(error.path);
  std::sort(paths.begin(), paths.end());
  return paths;
}

RepeatedEditing::RepeatedEditing(PhysicsData const* rules, CaseWorkload const& workload, ModelState const& model,
                                 Updates updates)
    : base_(false) {
  base_.initialise(model.begin(), model.end());
  for (std::size_t domain = 0; domain < workload.domains(); ++domain) {
    inlets_.push_back(workload.inletOf(workload.domains() / 2 + domain));
  }
  double const before = heapBytes();
  state_ = std::make_unique<ProvisionalTDF>(rules, roots.front());
  test::forceFullWalks(*state_, updates == Updates::Full);
  startTime_ = timed([&] { state_->initialise(&base_, {}); });
  bytes_ = heapBytes() - before;
  parameters_ = CaseWorkload::countParameters(state_->getActiveTDFState());
}

EditCounts RepeatedEditing::editOneBoundary() {
  std::string const& inlet = inlets_[edits_ / 2 % inlets_.size()];
  return edit(inlet, "Kind", edits_++ % 2 ? "Inlet" : "Wall");
}

EditCounts RepeatedEditing::editWholeCase() {
  return edit(roots.front(), "Flow Regime", edits_++ % 2 ? "Turbulent" : "Laminar");
}

EditCounts RepeatedEditing::tryOneBoundary() {
  ProvisionalTDF::Mark const before = state_->mark();
  EditCounts const counts = edit(inlets_[tries_++ % inlets_.size()], "Kind", "Wall");
  state_->rollback(before);
  return counts;
}

EditCounts RepeatedEditing::tryWholeCase() {
  ProvisionalTDF::Mark const before = state_->mark();
  EditCounts const counts = edit(roots.front(), "Flow Regime", "Laminar");
  state_->rollback(before);
  return counts;
}

EditCounts RepeatedEditing::edit(std::string const& object, std::string const& parameter, std::string const& value) {
  state_->activeSetParam(object, parameter, value);
  return readAllGetters(*state_, object, parameter);
}

void checkCounts(CaseWorkload const& workload, PhysicsData const* rules) {
  TDFChangeFile const read({}, {CaseWorkload::modelText(workload.valid())}, TDFChangeFile::Strict);
  require(read.toModelState() == workload.valid(), workload, "model text does not read back as the model");

  RepeatedValidation sound(rules, workload.valid());
  sound.validateChanged();
  require(sound.findings().empty() && sound.globalFindings().empty(), workload, "something is found in the sound case");
  RepeatedValidation faulty(rules, workload.faulty());
  faulty.validateChanged();
  require(faulty.findings() == workload.findings() && faulty.globalFindings().empty(), workload,
          std::to_string(faulty.findings().size()) + " findings in the faulty case, and not those " +
              std::to_string(workload.findings().size()) + " that it was made with");
  RepeatedValidation inletless(rules, workload.withoutInlets());
  inletless.validateChanged();
  require(inletless.findings().empty() && inletless.globalFindings().size() == 1, workload,
          "the case without inlets does not break one rule of the case as a whole");

  for (Mistake const& mistake : workload.mistakes()) {
    RepeatedValidation validation(rules, workload.with(mistake));
    validation.validateChanged();
    // The validator leaves bounds to others.
    require(validation.findings().empty() == mistake.isOfBounds, workload, "wrongly judged is " + mistake.what);
  }

  RepeatedEditing editing(rules, workload, workload.valid());
  for (CaseEdit const& edit : editsOf(workload, Editing::Guided)) {
    EditCounts found = editing.edit(edit.object, edit.parameter, edit.value);
    found.parameters = CaseWorkload::countParameters(editing.state().getActiveTDFState());
    requireCounts(found, edit.expected, workload, edit.what);
  }
  RepeatedEditing bare(rules, workload, workload.bare());
  EditCounts found = readAllGetters(bare.state(), "", "");
  found.parameters = CaseWorkload::countParameters(bare.state().getActiveTDFState());
  requireCounts(found, countsFromBare(workload), workload, "the bare case");
}

}  // namespace tarn::benchmarks
