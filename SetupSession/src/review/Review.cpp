// Runs the validator and the judges on one model. Each run creates them anew: nothing of one model can affect
// the next, or a model on another thread.
#include <tarn/session/Review.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include <tarn/BetaLoggingController.h>
#include <tarn/DynamicTDF.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/PertinentRoots.h>

#include "review/FindingPlaces.h"
#include "review/FindingsLogger.h"
#include "review/RepeatedParameters.h"
#include "review/ReviewJudge.h"
#include "review/ReviewWalk.h"
#include "review/UnknownNames.h"

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
  FindingsLogger logger(rules, findings);
  BetaLoggingController beta;
  PhysicsValidator2 validator(&rules);
  validator.setLogger(&logger);
  validator.setFaultObserver(&logger);
  validator.setBetaLoggingController(&beta);
  findings.status = validator.validate(phases, model, roots);
}

void walk(PhysicsData const& rules, ModelState const& model, std::vector<std::string> const& roots,
          std::vector<Finding>& findings) {
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
  EvalContext evaluation(&tree, &cache);
  ReviewContext context = {rules, tree, evaluation, findings};
  ReviewWalk walk(context, makeReviewJudges());
  for (std::string const& root : roots) walk.from(root);
}

// Null when there is something to review.
char const* nothingToReview(PhysicsData const& rules, ModelState const& model, std::vector<std::string> const& roots) {
  if (!roots.empty()) return nullptr;
  if (model.empty()) return "There is nothing to review: the model is empty.";
  if (rules.getPertinentGlobalCheckRoots().empty()) {
    return "There is nothing to review: the rules look at no object, because they have no Pertinent Roots.";
  }
  return "There is nothing to review: the model has no object of a type that the rules look at.";
}

bool comesBefore(Finding const& a, Finding const& b) noexcept {
  return a.kind() < b.kind();
}

}  // namespace

Review::Review(PhysicsData const& rules, ReviewOptions options) : rules_(&rules), options_(std::move(options)) {}

Findings Review::judge(ModelState const& model) const {
  Findings findings;
  std::copy_if(options_.roots.begin(), options_.roots.end(), std::back_inserter(findings.missingRoots),
               [&model](std::string const& root) { return !holdsObject(model, root); });
  if (!findings.missingRoots.empty()) return findings;

  std::vector<std::string> const roots =
      options_.roots.empty() ? PertinentRoots(*rules_).objectsIn(model) : options_.roots;
  if (char const* const reason = nothingToReview(*rules_, model, roots)) {
    findings.list.push_back(makeFinding(FindingCode::NothingToReview, "", reason));
    findings.list.back().expected.allowed = rules_->getPertinentGlobalCheckRoots();
  }
  if (!options_.onlyValidator) {
    UnknownNames::Result unknown = UnknownNames(*rules_).find(model, options_.roots);
    findings.list.insert(findings.list.end(), std::make_move_iterator(unknown.names.begin()),
                         std::make_move_iterator(unknown.names.end()));
    findings.objectsPassedOver = unknown.objectsPassedOver;
  }
  // The validator throws for parameters at the root of the model.
  ModelState withoutRoot;
  if (model.contains("")) {
    withoutRoot = model;
    withoutRoot.erase("");
  }
  ModelState const& objects = model.contains("") ? withoutRoot : model;
  validate(*rules_, options_.phases, objects, roots, findings);
  if (!options_.onlyValidator) walk(*rules_, objects, roots, findings.list);
  std::stable_sort(findings.list.begin(), findings.list.end(), comesBefore);
  return findings;
}

Findings Review::judge(ModelText const& text) const {
  Findings findings = judge(text.state());
  if (!findings.missingRoots.empty()) return findings;
  // `Findings::list` begins with the kind of these.
  std::vector<Finding> repeated = findRepeatedParameters(*rules_, options_.roots, text);
  auto const begin = std::find_if_not(findings.list.begin(), findings.list.end(),
                                      [](Finding const& one) { return one.code == FindingCode::NothingToReview; });
  findings.list.insert(begin, std::make_move_iterator(repeated.begin()), std::make_move_iterator(repeated.end()));
  locateFindings(text, findings);
  return findings;
}

}  // namespace tarn::session
