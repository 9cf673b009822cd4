// The run of a validation: which part of the model counts, whether it has changed since the last call, the two phases,
// and the check to which a hook of the walk leads.
//
// A repeated call is cheap because of one text, that of the objects which count. While the text is the same, the tree,
// the status and the content of the logger belong together. `reset` is the only place where they change.
//
// PhysicsValidator2.Checks.cpp holds the checks, PhysicsValidator2.MissingObjects.cpp the treatment of absent required
// objects, ValidationMessages the wording.

#include "validation/PhysicsValidator2Impl.h"

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

#include "tree/DynamicTDFStateLoad.h"
#include "validation/PVModelTDF.h"
#include "validation/RootFilter.h"
#include "validation/StateText.h"

namespace tarn {

namespace {

constexpr bool skipEmptyValues = true;

}  // namespace

/// The objects that live as long as one run. They are entered in the validator for that time.
class [[gnu::visibility("hidden")]] PhysicsValidator2::Impl::Run {
 public:
  explicit Run(Impl & validator) : validator_(validator), view_(&validator.filteredTree_), context_(&view_, &cache_) {
    validator_.setEvaluationCache(&cache_);
    validator_.currentView_ = &view_;
    // Messages must reach the controller that is asked for them, even if another one is attached to the database.
    context_.setBetaLoggingController(validator_.betaController_);
  }
  ~Run() {
    validator_.unsetEvaluationCache();
    validator_.currentView_ = nullptr;
    validator_.currentReader_ = nullptr;
    // Discard the messages of a rule that threw, so the next run does not report them.
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
  Impl& validator_;
  PVModelTDF view_;
  EvalCache cache_;
  EvalContext context_;
};

PhysicsValidator2::Impl::Impl(PhysicsValidator2& self, PhysicsData const& rules)
    : self_(self),
      roots_(rules),
      // The trees are only loaded and read, and a log of a large load costs more than the load.
      filteredTree_(false),
      missingTree_(false) {
  for (std::string const& name : rules.getGlobalCheckNames()) {
    globalChecks_.emplace_back(name, rules.getGlobalCheck(name, true));
  }
}

PhysicsValidator2::ValStatus PhysicsValidator2::Impl::doValidate(ValType type, ModelState const& state,
                                                                 std::vector<std::string> const& roots,
                                                                 bool useStateAsGiven) {
  Run run(*this);
  // When an exception ended a run in the treatment of absent objects, their group is still open.
  if (missingRecord_.isOpen()) resetMissingObjMode();
  reset(state, useStateAsGiven);

  if ((type & ValDependency) != 0 && !dependencyChecksDone_) {
    OperationTimer const timer("Physics dependency checks");
    for (std::string const& root : roots) self_.analyse(root, run.context());
    if (logger_->hasDependencyErrors()) status_ = status_ | ValDependencyErrors;
    dependencyChecksDone_ = true;
    run.cache().report();
  }

  if ((type & ValGlobal) != 0 && !globalChecksDone_) {
    run.cache().enable(false);
    OperationTimer const timer("Physics global checks");
    evaluateGlobalChecks(run.context());
    if (logger_->hasGlobalErrors()) status_ = status_ | ValGlobalErrors;
    globalChecksDone_ = true;
  }
  return status_;
}

void PhysicsValidator2::Impl::evaluateGlobalChecks(EvalContext* evalContext) {
  for (auto const& [name, check] : globalChecks_) {
    auto const [passed, message] = check->evaluate(evalContext);
    if (passed) continue;
    observe({.kind = PhysicsFault::GlobalCheckFailed, .item = name, .message = message.message});
    logger_->logGlobalError(message);
  }
}

void PhysicsValidator2::Impl::reset(ModelState const& state, bool useStateAsGiven) {
  // This comes first, so that nothing has changed when it throws.
  if (!useStateAsGiven && state.contains(""))
    throw std::out_of_range("the model holds parameters of no object: give them the path of one");
  // While the model is taken over it counts as unknown: after a failure the next call must not take half a model for
  // the whole one.
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

/// Makes text and tree those of the part of `state` that counts, in one pass, and returns whether the text has changed.
/// A value that is empty after cleaning does not enter the tree: for rules and checks there is no such parameter,
/// although the text has its line. Without `isKnown`, text and tree do not belong to one state, and every text counts
/// as changed.
bool PhysicsValidator2::Impl::takeState(ModelState const& state, bool useStateAsGiven, bool isKnown) {
  if (!isKnown) lastState_ = {};
  RootFilter filter(roots_, useStateAsGiven);
  StateText text(lastState_);
  // An object with unchanged lines is in the tree unchanged. While no line differs, the next such object is the next
  // one of the tree too and need not be looked for. An object without parameters has no line, so only the tree shows
  // whether it is there.
  DynamicTDFStateLoad load(filteredTree_, skipEmptyValues);
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

void PhysicsValidator2::Impl::loadFilteredTree(ModelState const& state, bool useStateAsGiven) {
  RootFilter filter(roots_, useStateAsGiven);
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

void PhysicsValidator2::Impl::setEvaluationCache(EvalCache* cache) {
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

void PhysicsValidator2::Impl::unsetEvaluationCache() noexcept {
  useEvalCache_ = false;
  evalCache_ = nullptr;
}

// The hooks. In a placeholder all of them lead to the treatment of absent objects, and nothing is reported. After each
// entry the beta messages that its evaluation gathered are discarded.

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::onBeginObject(ObjBeginInfo const* info) {
  if (missingMode_ == MissingOff && missingRecord_.matches(info->getObjPath())) {
    missingMode_ = MissingProbing;
    if (useEvalCache_) evalCache_->enable(false);
  }
  if (missingMode_ == MissingOff) {
    // A parameter that is absent and not required is no finding. In a placeholder every parameter is absent, and there
    // the question is whether any would be available, so its walk is not narrowed.
    self_.limitParams(ParamScope::PresentOrRequired);
    currentObject_ = info->getObject();
    currentReader_ = currentObject_.readerIn(filteredTree_);
  }
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::onParamCheck(ParamAvailInfo const* info) {
  HandlerStatus status = Continue;
  if (missingMode_ != MissingOff) {
    status = checkParamMissingObj(info);
  } else if (!info->hasValidationRelaxed()) {
    status = info->isAvailable() ? checkAvailableParam(info) : checkUnavailableParam(info);
  }
  clearBetaMessages();
  return status;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::onChildCheck(ChildAvailInfo const* info) {
  HandlerStatus status = Continue;
  if (missingMode_ != MissingOff) {
    status = checkChildMissingObj(info);
  } else if (!info->hasValidationRelaxed()) {
    status = info->isAvailable() ? checkAvailableChild(info) : checkUnavailableChild(info);
  }
  clearBetaMessages();
  return status;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::Impl::onEndObject(std::string const& objPath) {
  return missingMode_ == MissingOff ? Continue : endObjectMissingObj(objPath);
}

PhysicsValidator2::PhysicsValidator2(PhysicsData const* rules)
    : DependencyAnalyser(rules), impl_(std::make_unique<Impl>(*this, *rules)) {}

PhysicsValidator2::~PhysicsValidator2() = default;

PhysicsValidator2::ValStatus PhysicsValidator2::validate(ValType type, ModelState const& state,
                                                         std::vector<std::string> const& roots) {
  if (impl_->logger_ == nullptr) return ValStatusClean;
  return impl_->doValidate(type, state, roots, false);
}

void PhysicsValidator2::setLogger(PhysicsErrorLogger* logger) noexcept {
  impl_->logger_ = logger;
}

void PhysicsValidator2::setFaultObserver(PhysicsFaultObserver* observer) noexcept {
  impl_->observer_ = observer;
}

void PhysicsValidator2::setBetaLoggingController(BetaLoggingController* controller) noexcept {
  impl_->betaController_ = controller;
}

std::vector<std::string> PhysicsValidator2::getPertinentRootLevelTypes() const {
  return {impl_->roots_.types().begin(), impl_->roots_.types().end()};
}

void PhysicsValidator2::dumpDB() const {
  printModelState(impl_->isStateKnown_ ? impl_->filteredTree_.getState("") : ModelState(), std::cout);
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onBeginObject(ObjBeginInfo const* info) {
  return impl_->onBeginObject(info);
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onBeginParam(std::string const& /*objPath*/,
                                                                 std::string const& /*name*/) {
  return Continue;
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onParamCheck(ParamAvailInfo const* info) {
  return impl_->onParamCheck(info);
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onChildCheck(ChildAvailInfo const* info) {
  return impl_->onChildCheck(info);
}

PhysicsValidator2::HandlerStatus PhysicsValidator2::onEndObject(std::string const& objPath, bool /*required*/) {
  return impl_->onEndObject(objPath);
}

}  // namespace tarn
