// Runs the validator and the other analyses on one model. Each run creates them anew: nothing of one model can affect
// the next, or a model on another thread.
#include <tarn/session/ModelJudge.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <tarn/BetaLoggingController.h>
#include <tarn/DynamicTDF.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/PertinentRoots.h>

#include "review/FindingsLogger.h"

namespace tarn::session {

namespace {

// Whether the model holds the object, possibly only because a deeper path implies it.
bool holdsObject(ModelState const& model, std::string const& path) {
  if (model.contains(path)) return true;
  auto const below = model.lower_bound(path + '/');
  return below != model.end() && below->first.starts_with(path + '/');
}

void validate(PhysicsData const& rules, PhysicsValidator2::ValType phases, ModelState const& model,
              std::vector<std::string> const& roots, Findings& findings) {
  FindingsLogger logger(findings);
  BetaLoggingController beta;
  PhysicsValidator2 validator(&rules);
  validator.setLogger(&logger);
  validator.setBetaLoggingController(&beta);
  findings.status = validator.validate(phases, model, roots);
}

void judgeValues(PhysicsData const& rules, ModelState const& model, std::vector<std::string> const& roots,
                 Findings& findings) {
  // The same tree that the validator sees: only pertinent objects, and no parameters without a value.
  DynamicTDF tree(false);
  PertinentRoots const types(rules);
  auto const pertinent = [&types](auto const& entry) { return types.covers(entry.first); };
  for (auto begin = model.begin(); begin != model.end();) {
    auto const end = std::find_if_not(begin, model.end(), pertinent);
    tree.update(begin, end, true);
    begin = std::find_if(end, model.end(), pertinent);
  }
  EvalCache cache;
  cache.enable(true);
  EvalContext context(&tree, &cache);
  findings.values = ValueFaults(rules).find(roots, context);
}

}  // namespace

ModelJudge::ModelJudge(PhysicsData const& rules, JudgeOptions options) : rules_(&rules), options_(std::move(options)) {}

Findings ModelJudge::judge(ModelState model) const {
  Findings findings;
  std::copy_if(options_.roots.begin(), options_.roots.end(), std::back_inserter(findings.missingRoots),
               [&model](std::string const& root) { return !holdsObject(model, root); });
  if (!findings.missingRoots.empty()) return findings;

  std::vector<std::string> const roots =
      options_.roots.empty() ? PertinentRoots(*rules_).objectsIn(model) : options_.roots;
  if (!options_.onlyValidator) {
    UnknownNames::Result unknown = UnknownNames(*rules_).find(model, options_.roots);
    findings.unknown = std::move(unknown.names);
    findings.objectsPassedOver = unknown.objectsPassedOver;
  }
  model.erase("");  // the validator throws for parameters at the root of the model
  validate(*rules_, options_.phases, model, roots, findings);
  if (!options_.onlyValidator) judgeValues(*rules_, model, roots, findings);
  return findings;
}

}  // namespace tarn::session
