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

#include "validation/MissingObjRecord.h"
#include "validation/PVModelTDF.h"

namespace tarn {

/// The part of a state that counts, as the stretches of the caller's map that it consists of: one for each root type,
/// so that a large model is neither copied nor gone through entry by entry again.
struct [[gnu::visibility("hidden")]] PhysicsValidator2::FilteredState {
  std::vector<DynamicTDF::StateRange> stretches;

  /// Makes `text` the text of this state, and returns whether it was another. The text is a line for each parameter, in
  /// map order; objects without parameters give none.
  bool updateText(std::string & text) const;
};

/// Compares for as long as the two agree and writes only from there on: a large model is most often the same as before.
bool PhysicsValidator2::FilteredState::updateText(std::string& text) const {
  std::string_view left = text;  // behind what agrees
  bool same = true;
  auto const take = [&left](std::string_view piece) {
    if (!left.starts_with(piece)) return false;
    left.remove_prefix(piece.size());
    return true;
  };
  auto const takeByte = [&left](char byte) {
    if (left.empty() || left.front() != byte) return false;
    left.remove_prefix(1);
    return true;
  };
  for (DynamicTDF::StateRange const& stretch : stretches) {
    for (auto object = stretch.begin; object != stretch.end; ++object) {
      std::string const& path = object->first;
      for (auto const& [name, value] : object->second) {
        if (same) {
          std::size_t const agreed = text.size() - left.size();
          same = take(path) && takeByte('/') && take(name) && takeByte('=') && take(value) && takeByte('\n');
          if (same) continue;
          text.resize(agreed);
        }
        text.append(path).append(1, '/').append(name).append(1, '=').append(value).append(1, '\n');
      }
    }
  }
  if (!same) return true;
  bool const wasLonger = !left.empty();
  text.resize(text.size() - left.size());
  return wasLonger;
}

/// What lives as long as one run, and what of the validator points at it.
class [[gnu::visibility("hidden")]] PhysicsValidator2::Run {
 public:
  explicit Run(PhysicsValidator2 & validator)
      : validator_(validator), view_(&validator.filteredTree_), context_(&view_, &cache_) {
    validator_.currentView_ = &view_;
    validator_.setEvaluationCache(&cache_);
    // Messages must reach the controller that is asked for them, whatever is attached to the database.
    context_.setBetaLoggingController(validator_.betaController_);
  }
  ~Run() {
    validator_.unsetEvaluationCache();
    validator_.currentView_ = nullptr;
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
  printModelState(filteredTree_.getState(""), std::cout);
}

PhysicsValidator2::ValStatus PhysicsValidator2::doValidate(ValType type, ModelState const& state,
                                                           std::vector<std::string> const& roots,
                                                           bool useStateAsGiven) {
  Run run(*this);
  // After a run that an exception ended within a placeholder, its group is still open.
  resetMissingObjMode();
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
  FilteredState filtered;
  if (useStateAsGiven) {
    filtered.stretches.push_back({state.begin(), state.end()});
  } else {
    getFilteredState(state, filtered);
  }

  try {
    if (!filtered.updateText(lastStateText_)) return;
    status_ = ValStatusClean;
    dependencyChecksDone_ = false;
    globalChecksDone_ = false;
    logger_->reset();
    loadFilteredTree(filtered);
  } catch (...) {
    // Half a model must not be taken for the whole one by the next call.
    lastStateText_.clear();
    loadFilteredTree({});
    throw;
  }
}

void PhysicsValidator2::getFilteredState(ModelState const& in, FilteredState& out) const {
  out.stretches.clear();
  bool within = false;
  for (auto object = in.begin(); object != in.end(); ++object) {
    std::string_view const path = object->first;
    std::size_t const typeEnd = path.find_first_of("/:", 1);
    // Throws for the empty path: it has no leading "/".
    std::string_view const rootType = path.substr(1, typeEnd == std::string_view::npos ? typeEnd : typeEnd - 1);
    if (!rootTypes_.contains(rootType)) {
      within = false;
    } else if (within) {
      out.stretches.back().end = std::next(object);
    } else {
      out.stretches.push_back({object, std::next(object)});
      within = true;
    }
  }
}

/// A value that is empty once it is cleaned does not enter the tree: for the rules and the checks there is no such
/// parameter, though its line stands in the text.
void PhysicsValidator2::loadFilteredTree(FilteredState const& state) {
  constexpr bool skipEmpty = true;
  filteredTree_.initialise(state.stretches, skipEmpty);
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
  // Of what is absent and not required there is nothing to say. Only in a placeholder everything is absent, and there
  // the question is whether anything would be available.
  if (missingMode_ == MissingOff) limitParams(ParamScope::PresentOrRequired);
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
