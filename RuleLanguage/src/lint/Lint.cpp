// Warnings: rules that can be loaded but are doubtful. Every check stays silent where the rules leave room for being
// right, because warnings that are often wrong are not read.

#include "lint/Lint.h"

#include <set>
#include <string>
#include <string_view>

#include "diagnostics/NearMatch.h"
#include "lint/ComparisonLint.h"
#include "lint/ConditionLint.h"
#include "lint/EntryLint.h"
#include "lint/ExpressionLint.h"
#include "lint/HistoryLint.h"
#include "lint/LintContext.h"
#include "lint/OrderLint.h"
#include "lint/UnitLint.h"
#include "lint/UnusedLint.h"
#include "lint/ValueLint.h"

namespace tarn::rules {

namespace {

/// Without root types validation looks at nothing, and says of every model that there is nothing to review.
void checkThatThereAreRoots(LintContext& context) {
  auto const& objects = context.rules().objectPlaces();
  if (!context.rules().rootPlaces().empty() || objects.empty()) return;
  auto const& [path, places] = *objects.begin();
  std::string const root = path.substr(1, path.find('/', 1) - 1);
  context.warn(Code::MissingRoots, places.name,
               "no file has Pertinent Roots, so no model can be judged; add 'Pertinent Roots: [" + root + "]'");
}

void checkRoots(LintContext& context) {
  checkThatThereAreRoots(context);
  auto const& roots = context.rules().rootPlaces();
  std::set<std::string_view> listed;
  for (auto const& [root, place] : roots) listed.insert(root);
  for (auto const& [root, place] : roots) {
    if (context.data().getObjDependDef("/" + root, true) != nullptr) continue;
    auto const near = context.hints().nearest(root, context.types().childTypes(""));
    auto& warning = context.warn(Code::UnknownRootType, place,
                                 "there are no rules for the root type " + inQuotes(root) + orDidYouMean(near));
    if (!listed.contains(near)) LintContext::fixText(warning, place, root, near);
  }
}

}  // namespace

void addWarnings(RuleIndex const& rules, PhysicsData const& data, DiagnosticList& diagnostics, LintExtent extent) {
  LintContext context(rules, data, diagnostics);
  OrderLint order(context, extent);
  SoundConditions sound;
  for (auto const& use : rules.uses()) {
    order.check(use);
    if (sound.contains(use)) continue;
    std::size_t const warningsBefore = context.warningCount();
    checkExpression(context, use);
    checkComparisons(context, use);
    checkComputedValue(context, use);
    checkTexts(context, use);
    checkQuantities(context, use);
    if (context.warningCount() == warningsBefore) sound.add(use);
  }
  checkConditions(context);
  checkEntries(context);
  checkUnits(context);
  if (extent == LintExtent::All) checkUnused(context);
  checkNamedLists(context);
  checkMessages(context);
  checkHistory(context);
  checkRoots(context);
}

}  // namespace tarn::rules
