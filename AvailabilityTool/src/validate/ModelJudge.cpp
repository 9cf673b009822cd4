// Brings the validator and the tool's own analyses together on one model. Each is made afresh for a model, so that
// nothing that one remembers of a model can reach the next, nor that on another thread.
#include "validate/ModelJudge.h"

#include <algorithm>
#include <set>
#include <string_view>

#include <tarn/BetaLoggingController.h>
#include <tarn/DynamicTDF.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/PathUtils.h>

#include "analyses/UnknownNames.h"
#include "analyses/ValueFaults.h"
#include "cli/Failure.h"
#include "reports/FindingsLogger.h"

namespace tarn::tool {

namespace {

// The path of the object at the root that `path` belongs to.
std::string_view topOf(std::string_view path) noexcept {
  return path.substr(0, path.find('/', 1));
}

// Whether the model holds the object, were it only because something stands below it.
bool holdsObject(ModelState const& model, std::string const& path) {
  if (model.contains(path)) return true;
  auto const below = model.lower_bound(path + '/');
  return below != model.end() && below->first.starts_with(path + '/');
}

}  // namespace

ModelJudge::ModelJudge(PhysicsData const& rules, JudgeOptions options) : rules_(rules), options_(std::move(options)) {}

Findings ModelJudge::judge(ModelState model) const {
  Findings findings;
  std::vector<std::string> const roots = rootsIn(model);
  if (!options_.onlyValidator) {
    UnknownNames::Result unknown = UnknownNames(rules_).find(model, options_.roots);
    findings.unknown = std::move(unknown.names);
    findings.objectsPassedOver = unknown.objectsPassedOver;
  }
  model.erase("");  // parameters of no object: the validator has no place for them
  validate(model, roots, findings);
  if (!options_.onlyValidator) judgeValues(model, roots, findings);
  return findings;
}

std::vector<std::string> ModelJudge::rootsIn(ModelState const& model) const {
  if (!options_.roots.empty()) {
    for (std::string const& root : options_.roots) {
      if (!holdsObject(model, root)) {
        throw Failure("the model has no object \"" + root + "\"; give --root the path of one that it has");
      }
    }
    return options_.roots;
  }
  std::set<std::string, PathUtils::PathOrder> tops;
  std::string_view last;
  for (auto const& [path, parameters] : model) {
    std::string_view const top = topOf(path);
    if (top == last || !isPertinent(path)) continue;
    last = top;
    tops.emplace(top);
  }
  return {tops.begin(), tops.end()};
}

void ModelJudge::validate(ModelState const& model, std::vector<std::string> const& roots, Findings& findings) const {
  FindingsLogger logger(findings);
  BetaLoggingController beta;
  PhysicsValidator2 validator(&rules_);
  validator.setLogger(&logger);
  validator.setBetaLoggingController(&beta);
  findings.status = validator.validate(options_.phases, model, roots);
}

void ModelJudge::judgeValues(ModelState const& model, std::vector<std::string> const& roots, Findings& findings) const {
  // The model as the validator has it: pertinent objects only, and no parameters without a value.
  DynamicTDF tree(false);
  for (auto begin = model.begin(); begin != model.end();) {
    auto const end = std::find_if(begin, model.end(), [this](auto const& entry) { return !isPertinent(entry.first); });
    tree.update(begin, end, true);
    begin = std::find_if(end, model.end(), [this](auto const& entry) { return isPertinent(entry.first); });
  }
  EvalCache cache;
  cache.enable(true);
  EvalContext context(&tree, &cache);
  findings.values = ValueFaults(rules_).find(roots, context);
}

bool ModelJudge::isPertinent(std::string const& path) const {
  std::string_view const type = PathUtils::lastType(topOf(path));
  std::vector<std::string> const& types = rules_.getPertinentGlobalCheckRoots();
  return std::find(types.begin(), types.end(), type) != types.end();
}

}  // namespace tarn::tool
