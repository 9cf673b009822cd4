// The run of a validation: what of the model counts, whether it has changed since the last call, the two phases, and
// which check a hook of the walk goes to.
//
// All that makes a repeated call cheap hangs on one text, that of the objects which count. While it is the same, tree,
// status and the logger's contents belong together; `reset` is the only place where they change.
//
// The checks stand in PhysicsValidator2.Checks.cpp, the treatment of absent required objects in
// PhysicsValidator2.MissingObjects.cpp, the wording in ValidationMessages.

#include <tarn/PhysicsValidator2.h>

#include <iostream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <tarn/BetaLoggingController.h>
#include <tarn/BoolFromEnvironment.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/GlobalCheck.h>
#include <tarn/OperationTimer.h>
#include <tarn/PhysicsData.h>
#include <tarn/PhysicsErrorLogger.h>
#include <tarn/printModelState.h>

#include "tree/DynamicTDFObjectAt.h"
#include "tree/DynamicTDFStateLoad.h"
#include "validation/MissingObjRecord.h"
#include "validation/PVModelTDF.h"
#include "validation/RootFilter.h"
#include "validation/StateText.h"

namespace tarn {

namespace {

constexpr bool skipEmptyValues = true;

}  // namespace

/// What lives as long as one run, and what of the validator points at it.
class [[gnu::visibility("hidden")]] PhysicsValidator2::Run {
 public:
  explicit Run(PhysicsValidator2 & validator)
      : validator_(validator),
        view_(&validator.filteredTree_),
        object_(validator.filteredTree_),
        context_(&view_, &cache_) {
    validator_.setEvaluationCache(&cache_);
    validator_.currentView_ = &view_;
    validator_.currentObject_ = &object_;
    // Messages must reach the controller that is asked for them, whatever is attached to the database.
    context_.setBetaLoggingController(validator_.betaController_);
  }
  ~Run() {
    validator_.unsetEvaluationCache();
    validator_.currentObject_ = nullptr;
    validator_.currentView_ = nullptr;
    // What a rule gathered that failed is not the next run's.
    validator_.clearBetaMessages();
  }
  Run(Run const&) = delete;
  Run& operator=(Run const&) = delete;

  [[nodiscard]] EvalCache& cache() noexcept {
    return cache_;
  }
  [[nodiscard]] EvalContext* context() noexcept {
    return &context_;
  }

 private:
  PhysicsValidator2& validator_;
  PVModelTDF view_;
  DynamicTDF::ObjectAt object_;
  EvalCache cache_;
  EvalContext context_;
};

PhysicsValidator2::PhysicsValidator2(PhysicsData const* rules)
    : DependencyAnalyser(rules),
      rootTypes_(rules->getPertinentGlobalCheckRoots().begin(), rules->getPertinentGlobalCheckRoots().end()),
      // The trees are only ever loaded and read, and a log of a large load costs more than the load.
      filteredTree_(false),
      missingTree_(false),
      missingRecord_(std::make_unique<MissingObjRecord>()) {
  for (std::string const& name : rules->getGlobalCheckNames())
    globalChecks_.push_back(rules->getGlobalCheck(name, true));
}

PhysicsValidator2::~PhysicsValidator2() = default;

PhysicsValidator2::ValStatus PhysicsValidator2::validate(ValType type, ModelState const& state,
                                                         std::vector<std::string> const& roots) {
  if (logger_ == nullptr) return ValStatusClean;
  return doValidate(type, state, roots, false);
}

void PhysicsValidator2::setLogger(PhysicsErrorLogger* logger) noexcept {
  logger_ = logger;
}

void PhysicsValidator2::setBetaLoggingController(BetaLoggingController* controller) noexcept {
  betaController_ = controller;
}

std::vector<std::string> PhysicsValidator2::getPertinentRootLevelTypes() const {
  return {rootTypes_.begin(), rootTypes_.end()};
}

void PhysicsValidator2::dumpDB() const {
  printModelState(isStateKnown_ ? filteredTree_.getState("") : ModelState(), std::cout);
}

PhysicsValidator2::ValStatus PhysicsValidator2::doValidate(ValType type, ModelState const& state,
                                                           std::vector<std::string> const& roots,
                                                           bool useStateAsGiven) {
  Run run(*this);
  // After a run that an exception ended in the treatment of absent objects, their group is still open.
  if (missingRecord_->isOpen()) resetMissingObjMode();
  reset(state, useStateAsGiven);

  if ((type & ValDependency) != 0 && !dependencyChecksDone_) {
    OperationTimer const timer("Physics dependency checks");
    for (std::string const& root : roots) analyse(root, run.context());
    if (logger_->hasDependencyErrors()) status_ = static_cast<ValStatus>(status_ | ValDependencyErrors);
    dependencyChecksDone_ = true;
    run.cache().report();
  }

  if ((type & ValGlobal) != 0 && !globalChecksDone_) {
    run.cache().enable(false);
    OperationTimer const timer("Physics global checks");
    evaluateGlobalChecks(run.context());
    if (logger_->hasGlobalErrors()) status_ = static_cast<ValStatus>(status_ | ValGlobalErrors);
    globalChecksDone_ = true;
  }
  return status_;
}

void PhysicsValidator2::evaluateGlobalChecks(EvalContext* evalContext) {
  for (GlobalCheck const* const check : globalChecks_) {
    auto const [passed, message] = check->evaluate(evalContext);
    if (!passed) logger_->logGlobalError(message);
  }
}

void PhysicsValidator2::reset(ModelState const& state, bool useStateAsGiven) {
  // Before anything is changed.
  if (!useStateAsGiven && state.contains(""))
    throw std::out_of_range("the model holds parameters of no object: give them the path of one");
  // Half a model must not be taken for the whole one by the next call.
  if (!takeState(state, useStateAsGiven, std::exchange(isStateKnown_, false))) {
    isStateKnown_ = true;
    return;
  }
  status_ = ValStatusClean;
  dependencyChecksDone_ = false;
  globalChecksDone_ = false;
  logger_->reset();
  isStateKnown_ = true;
}

/// Makes text and tree those of the part of `state` that counts, in one go over it, and returns whether the text was
/// another. A value that is empty once it is cleaned does not enter the tree: for the rules and the checks there is no
/// such parameter, though its line stands in the text. Unless `isKnown`, text and tree are not those of one state, and
/// every text is another.
bool PhysicsValidator2::takeState(ModelState const& state, bool useStateAsGiven, bool isKnown) {
  if (!isKnown) lastStateText_.clear();
  RootFilter filter(rootTypes_, useStateAsGiven);
  StateText text(lastStateText_);
  // An object whose lines are as they were is in the tree as it was. It is even known which object of the tree the next
  // such one is, when both have been found at the same object and no line differed since. Of an object without
  // parameters only the tree tells.
  DynamicTDF::StateLoad load(filteredTree_, skipEmptyValues);
  bool hasSameObjects = isKnown;
  bool standAtSameObject = true;
  for (auto const& [path, values] : state) {
    if (!filter.counts(path)) continue;
    bool const agrees = text.add(path, values) && !values.empty();
    if (!hasSameObjects) continue;
    if (!agrees) {
      hasSameObjects = load.take(path, values);
      standAtSameObject = false;
    } else if (!standAtSameObject) {
      hasSameObjects = load.keep(path);
      standAtSameObject = true;
    } else {
      load.keepNext();
    }
  }
  if (!text.finish() && isKnown) return false;
  if (!hasSameObjects || !load.isComplete()) loadFilteredTree(state, useStateAsGiven);
  return true;
}

void PhysicsValidator2::loadFilteredTree(ModelState const& state, bool useStateAsGiven) {
  RootFilter filter(rootTypes_, useStateAsGiven);
  std::vector<DynamicTDF::StateRange> stretches;
  bool within = false;
  for (auto object = state.begin(); object != state.end(); ++object) {
    if (!filter.counts(object->first)) {
      within = false;
    } else if (within) {
      stretches.back().end = std::next(object);
    } else {
      stretches.push_back({object, std::next(object)});
      within = true;
    }
  }
  filteredTree_.initialise(stretches, skipEmptyValues);
}

void PhysicsValidator2::setEvaluationCache(EvalCache* cache) {
  if (BoolFromEnvironment("TARN_PHYSVAL_DONTUSECACHE")) {
    unsetEvaluationCache();
    return;
  }
  evalCache_ = cache;
  if (cache != nullptr) {
    cache->enable(true);
    useEvalCache_ = true;
  }
}

void PhysicsValidator2::unsetEvaluationCache() noexcept {
  useEvalCache_ = false;
  evalCache_ = nullptr;
}

// The hooks. While a placeholder is walked everything goes to the treatment of absent objects; only then is nothing
// said. What the evaluation of one rule gathered for the beta controller is dropped before the next.

PhysicsValidator2::HandlerStatus PhysicsValidator2::onBeginObject(ObjBeginInfo const* info) {
  if (missingMode_ == MissingOff && missingRecord_->matches(info->getObjPath())) {
    missingMode_ = MissingProbing;
    if (useEvalCache_) evalCache_->enable(false);
  }
  if (missingMode_ == MissingOff) {
    // Of what is absent and not required there is nothing to say. Only in a placeholder everything is absent, and there
    // the question is whether anything would be available.
    limitParams(ParamScope::PresentOrRequired);
    currentObject_->moveTo(info->getObjPath());
  }
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onBeginParam(std::string const& /*objPath*/,
                                                                 std::string const& /*name*/) {
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onParamCheck(ParamAvailInfo const* info) {
  HandlerStatus status = Continue;
  if (missingMode_ != MissingOff) {
    status = checkParamMissingObj(info);
  } else if (!info->hasValidationRelaxed()) {
    status = info->isAvailable() ? checkAvailableParam(info) : checkUnavailableParam(info);
  }
  clearBetaMessages();
  return status;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onChildCheck(ChildAvailInfo const* info) {
  HandlerStatus status = Continue;
  if (missingMode_ != MissingOff) {
    status = checkChildMissingObj(info);
  } else if (!info->hasValidationRelaxed()) {
    status = info->isAvailable() ? checkAvailableChild(info) : checkUnavailableChild(info);
  }
  clearBetaMessages();
  return status;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onEndObject(std::string const& objPath, bool /*required*/) {
  return missingMode_ == MissingOff ? Continue : endObjectMissingObj(objPath);
}

}  // namespace tarn
