// Walk order: a walk decides the parameters of an object in the order of the rules, then its children in their order,
// each with everything below it. A rule that reads what comes later sees the state from before the edit.

#include "lint/OrderLint.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>

namespace tarn::rules {

namespace {

/// The first part of the expression that names each parameter and, under the empty text, a set of objects.
std::map<std::string, Range> rangesOf(ExpressionUse const& use) {
  std::vector<PathUse> paths;
  use.compiled->expression->collectPaths(paths, PathPattern());
  std::map<std::string, Range> ranges;
  for (auto const& path : paths) ranges.try_emplace(path.parameter, path.range);
  return ranges;
}

bool isLaterParameter(LintContext& context, ObjDependDef const& object, ExpressionUse const& use,
                      std::string const& name) {
  if (use.kind == EntryKind::Child) return false;
  if (name == use.entry) return use.attribute == "Available";
  auto const& positions = context.positionsOf(object).params;
  return EntryPositions::indexIn(positions, name) > EntryPositions::indexIn(positions, use.entry);
}

/// True when a walk visits objects of type path `target` only after the rule. When both are below children of the same
/// type, that is not known, and the answer is false.
bool isLaterObject(LintContext& context, ExpressionUse const& use, std::string const& target) {
  std::string reader = use.typePath;
  if (use.kind == EntryKind::Child) reader += "/" + use.entry;
  std::size_t common = 0;
  std::size_t i = 0;
  for (; i < reader.size() && i < target.size() && reader[i] == target[i]; ++i) {
    if (reader[i] == '/') common = i;
  }
  bool const readerEnds = i == reader.size();
  bool const targetEnds = i == target.size();
  if (readerEnds && (targetEnds || target[i] == '/')) {
    // The reader's own children, or what the child rule itself decides.
    return target.size() > use.typePath.size();
  }
  if (targetEnds && reader[i] == '/') return false;
  auto const parent = reader.substr(0, common);
  if (parent.size() + 1 > target.size()) return false;
  auto const typeBelow = [&](std::string const& path) {
    return path.substr(common + 1, path.find('/', common + 1) - common - 1);
  };
  auto const* object = context.data().getObjDependDef(parent, true);
  if (object == nullptr) return false;
  auto const& children = context.positionsOf(*object).children;
  auto const at = EntryPositions::indexIn(children, typeBelow(target));
  // A parameter of the parent itself comes before all of its children.
  if (use.kind != EntryKind::Child && use.typePath == parent) return at < children.size();
  return at < children.size() && at > EntryPositions::indexIn(children, typeBelow(reader));
}

bool isDecidedByRules(LintContext const& context, std::string const& typePath) {
  auto const* parent = context.data().getObjDependDef(std::string(PathUtils::parentOf(typePath)), true);
  auto const* child = parent != nullptr ? parent->findChild(std::string(PathUtils::lastType(typePath))) : nullptr;
  return child != nullptr && (child->singleton || child->allowedNamesSource != nullptr);
}

/// A review evaluates such an expression after all walks, when everything is decided.
bool isForReview(ExpressionUse const& use) {
  return use.kind == EntryKind::Check || use.attribute == "Minimum Count" || use.attribute == "Maximum Count";
}

}  // namespace

void checkOrder(LintContext& context, ExpressionUse const& use) {
  if (use.typePath.empty() || isForReview(use)) return;
  auto const* object = context.data().getObjDependDef(use.typePath, true);
  if (object == nullptr) return;
  RuleReads reads;
  use.compiled->expression->collectReads(reads, PathPattern());
  auto const ranges = rangesOf(use);
  auto const rangeOf = [&](std::string const& parameter) {
    auto const found = ranges.find(parameter);
    return found == ranges.end() ? use.compiled->expression->range() : found->second;
  };
  for (auto const& read : reads.parameters) {
    auto const named = context.types().resolve(read.objects, use.typePath);
    bool const own = read.objects.start() != PathPattern::Start::Root && read.objects.steps().empty() &&
                     named == std::set<std::string>{use.typePath};
    bool const allLater = !named.empty() && std::all_of(named.begin(), named.end(), [&](std::string const& typePath) {
      auto const* target = context.data().getObjDependDef(typePath, true);
      if (target == nullptr || target->findParam(read.name) == nullptr) return false;
      return own ? isLaterParameter(context, *object, use, read.name) : isLaterObject(context, use, typePath);
    });
    if (!allLater) continue;
    if (own && use.kind != EntryKind::Child && use.entry == read.name) {
      context.warn(Code::DependsOnItself, use, rangeOf(read.name),
                   "the availability of " + inQuotes(read.name) + " depends on its own value");
    } else {
      context.warn(Code::ReadsLaterDecision, use, rangeOf(read.name),
                   "the value of " + inQuotes(read.name) +
                       " is decided later in the same walk, so this reads the value from before the edit");
    }
  }
  for (auto const& set : reads.objectSets) {
    for (auto const& typePath : context.types().resolve(set, use.typePath)) {
      if (!isDecidedByRules(context, typePath) || !isLaterObject(context, use, typePath)) continue;
      context.warn(Code::ReadsLaterDecision, use, rangeOf({}),
                   "the objects of type " + inQuotes(PathUtils::lastType(typePath)) +
                       " are decided later in the same walk, so this sees the objects from before the edit");
      break;
    }
  }
}

}  // namespace tarn::rules
