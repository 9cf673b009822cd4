// Walk order: a walk decides the parameters of an object in the order of the rules, then its children in their order,
// each with everything below it. A rule that reads what comes later sees the state from before the edit.
//
// Each read of an expression is compared with the rule once. Where the order of two entries of one object decides, the
// read is entered into the order of these entries. Advice is computed from it when all reads are known.

#include "lint/OrderLint.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>

#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

/// As much of a long circle is shown.
constexpr std::size_t mostHops = 6;

/// The part of the expression that reads a parameter or, when `parameter` is empty, a set of objects. For a read of a
/// named rule that is the whole expression.
Range rangeOf(ExpressionUse const& use, PathPattern const& objects, std::string_view parameter) {
  std::vector<PathUse> paths;
  use.compiled->expression->collectPaths(paths, PathPattern());
  std::string const pattern = objects.text();
  PathUse const* alike = nullptr;
  for (auto const& path : paths) {
    if (path.parameter != parameter) continue;
    if (path.pattern.text() == pattern) return path.range;
    if (alike == nullptr) alike = &path;
  }
  return alike != nullptr ? alike->range : use.compiled->expression->range();
}

/// Attributes whose result makes no sense when it depends on the parameter's own value. An override may depend on it:
/// it can replace one value by another.
bool isOfItself(std::string_view attribute) {
  return attribute == "Available" || attribute == "Default Value" || attribute == "Default Value Check List" ||
         attribute == "Lower Bound" || attribute == "Upper Bound";
}

std::string nounOf(std::string_view attribute) {
  if (attribute == "Available") return "availability";
  if (attribute == "Lower Bound") return "lower bound";
  return attribute == "Upper Bound" ? "upper bound" : "default";
}

/// A review evaluates such an expression after all walks, when everything is decided.
bool isForReview(ExpressionUse const& use) {
  return use.kind == EntryKind::Check || use.attribute == "Minimum Count" || use.attribute == "Maximum Count";
}

/// "'a', 'b' and 'c'"
std::string listed(std::vector<std::string> const& names) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) text += i + 1 == names.size() ? " and " : ", ";
    text += inQuotes(names[i]);
  }
  return text;
}

}  // namespace

OrderLint::OrderLint(LintContext& context, LintExtent extent) : context_(context), extent_(extent) {
  for (auto const& use : context.rules().uses()) {
    if (!use.typePath().empty() && !isForReview(use)) collect(use);
  }
}

// Collecting

void OrderLint::collect(ExpressionUse const& use) {
  auto const* object = context_.data().getObjDependDef(use.typePath(), true);
  if (object == nullptr) return;
  RuleReads reads;
  addReads(*use.compiled->expression, PathPattern(), reads);
  if (reads.parameters.empty() && reads.objectSets.empty()) return;
  for (auto const& read : reads.parameters) collectParameter(use, *object, read);
  for (auto const& set : reads.objectSets) collectSet(use, set);
}

void OrderLint::addReads(Expression const& expression, Base const& base, RuleReads& reads) {
  auto const operands = expression.operands();
  if (!operands.empty()) {
    for (std::size_t i = 0; i < operands.size(); ++i) addReads(*operands[i], expression.operandBase(i, base), reads);
    return;
  }
  auto const* call = dynamic_cast<NamedCall const*>(&expression);
  bool const isSeenFromOwner =
      base.names == nullptr && base.context.start() == PathPattern::Start::Context && base.context.steps().empty();
  if (call == nullptr || !isSeenFromOwner || call->rule().expression() == nullptr) {
    expression.collectReads(reads, base);
    return;
  }
  auto known = readsOfNamed_.find(&call->rule());
  if (known == readsOfNamed_.end()) {
    RuleReads found;
    addReads(*call->rule().expression(), base, found);
    // Each read once, so that chains of calls do not multiply them.
    std::set<std::string> seen;
    std::erase_if(found.parameters, [&](RuleReads::Parameter const& read) {
      return !seen.insert(read.objects.text() + "\n" + read.name).second;
    });
    std::erase_if(found.objectSets, [&](PathPattern const& set) { return !seen.insert(set.text()).second; });
    known = readsOfNamed_.emplace(&call->rule(), std::move(found)).first;
  }
  auto const& found = known->second;
  reads.parameters.insert(reads.parameters.end(), found.parameters.begin(), found.parameters.end());
  reads.objectSets.insert(reads.objectSets.end(), found.objectSets.begin(), found.objectSets.end());
}

void OrderLint::collectParameter(ExpressionUse const& use, ObjDependDef const& object,
                                 RuleReads::Parameter const& read) {
  auto const resolved = context_.resolve(use, read.objects);
  auto const& named = *resolved;
  bool const isOwn = read.objects.start() != PathPattern::Start::Root && read.objects.steps().empty() &&
                     named.size() == 1 && *named.begin() == use.typePath();
  std::vector<Relation> relations;
  bool isLate = !named.empty();
  for (auto const& typePath : named) {
    auto const* target = context_.data().getObjDependDef(typePath, true);
    if (target == nullptr || target->findParam(read.name) == nullptr) {
      isLate = false;
      continue;
    }
    auto const relation = isOwn ? toOwnParameter(use, object, read.name) : toObject(use, typePath);
    addRead(relation, named.size() == 1, use, read.objects, read.name);
    isLate = isLate && relation.isLater;
    relations.push_back(relation);
  }
  if (!isLate) return;
  LateRead late{rangeOf(use, read.objects, read.name), "the value of " + inQuotes(read.name), false,
                std::move(relations)};
  noteLateReader(late);
  late.isOfItself = isOwn && use.kind != EntryKind::Child && use.entry() == read.name;
  late_[&use].push_back(std::move(late));
}

void OrderLint::collectSet(ExpressionUse const& use, PathPattern const& set) {
  // The types that are late for one reason make one warning.
  std::vector<std::pair<LateRead, std::vector<std::string>>> groups;
  for (auto const& typePath : context_.types().resolve(set, use.typePath())) {
    if (!isDecidedByRules(typePath)) continue;
    auto const relation = toObject(use, typePath);
    addRead(relation, true, use, set, {});
    if (!relation.isLater) continue;
    auto group = std::find_if(groups.begin(), groups.end(),
                              [&](auto const& one) { return one.first.relations.front().list == relation.list; });
    if (group == groups.end()) group = groups.insert(group, {LateRead{rangeOf(use, set, {}), {}, false, {}}, {}});
    group->first.relations.push_back(relation);
    group->second.emplace_back(PathUtils::lastType(typePath));
  }
  for (auto& [late, types] : groups) {
    constexpr std::size_t mostTypes = 3;
    std::string const more = types.size() > mostTypes ? ", ..." : "";
    types.resize(std::min(types.size(), mostTypes));
    bool const isOne = types.size() == 1;
    noteLateReader(late);
    late.what = (isOne ? "the objects of type " : "the objects of the types ") + listed(types) + more;
    late_[&use].push_back(std::move(late));
  }
}

void OrderLint::noteLateReader(LateRead const& late) {
  auto const& relation = late.relations.front();
  if (late.relations.size() > 1 || relation.list == nullptr) return;
  auto& readers = relation.list->lateReaders[relation.read];
  if (readers.empty() || readers.back() != relation.reader) readers.push_back(relation.reader);
}

void OrderLint::addRead(Relation const& relation, bool isCertain, ExpressionUse const& use, PathPattern const& objects,
                        std::string_view parameter) {
  if (relation.list == nullptr) return;
  relation.list->order.addRead(relation.reader, relation.read, isCertain, reasons_.size());
  reasons_.push_back({&use, objects, std::string(parameter), relation.reader, relation.read});
}

OrderLint::Relation OrderLint::toOwnParameter(ExpressionUse const& use, ObjDependDef const& object,
                                              std::string const& name) {
  if (use.kind == EntryKind::Child) return {};
  if (name == use.entry()) return {isOfItself(use.attribute)};
  auto const& positions = context_.positionsOf(object).params;
  std::size_t const read = EntryPositions::indexIn(positions, name);
  std::size_t const reader = EntryPositions::indexIn(positions, use.entry());
  return {read > reader, &listOf(object, false), reader, read};
}

/// Whether a walk visits objects of type path `target` only after the rule. When both are below children of the same
/// type, that is not known, and the answer is no.
OrderLint::Relation OrderLint::toObject(ExpressionUse const& use, std::string const& target) {
  std::string reader = use.typePath();
  if (use.kind == EntryKind::Child) reader += "/" + use.entry();
  std::size_t common = 0;
  std::size_t i = 0;
  for (; i < reader.size() && i < target.size() && reader[i] == target[i]; ++i) {
    if (reader[i] == '/') common = i;
  }
  bool const readerEnds = i == reader.size();
  bool const targetEnds = i == target.size();
  // The reader's own children, or what the child rule itself decides.
  if (readerEnds && (targetEnds || target[i] == '/')) return {target.size() > use.typePath().size()};
  if (targetEnds && reader[i] == '/') return {};
  auto const* object = context_.data().getObjDependDef(reader.substr(0, common), true);
  if (object == nullptr) return {};
  auto const& children = context_.positionsOf(*object).children;
  auto const indexOf = [&](std::string const& path) {
    return EntryPositions::indexIn(children, path.substr(common + 1, path.find('/', common + 1) - common - 1));
  };
  std::size_t const at = indexOf(reader);
  std::size_t const read = indexOf(target);
  if (at == children.size() || read == children.size()) return {};
  return {read > at, &listOf(*object, true), at, read};
}

bool OrderLint::isDecidedByRules(std::string const& typePath) const {
  auto const* parent = context_.data().getObjDependDef(std::string(PathUtils::parentOf(typePath)), true);
  auto const* child = parent != nullptr ? parent->findChild(std::string(PathUtils::lastType(typePath))) : nullptr;
  return child != nullptr && (child->singleton || child->allowedNamesSource != nullptr);
}

// Lists

OrderLint::List& OrderLint::listOf(ObjDependDef const& object, bool areChildren) {
  auto const known = lists_.find({&object, areChildren});
  if (known != lists_.end()) return known->second;
  std::size_t const size = areChildren ? object.children().size() : object.params().size();
  auto& list =
      lists_.emplace(std::pair(&object, areChildren), List{&object, areChildren, EntryOrder(size)}).first->second;
  for (Entry entry = 0; entry < size; ++entry) {
    auto const* place = placeOf(list, entry);
    if (place != nullptr) list.order.setHome(entry, {place->section.node, place->taken.node, place->use.node});
  }
  if (areChildren) return list;  // contexts depend on parameters alone
  bool hasContexts = std::any_of(object.children().begin(), object.children().end(),
                                 [](auto const& child) { return !child->contexts.empty(); });
  for (Entry entry = 0; entry < size; ++entry) {
    auto const& param = *object.params()[entry];
    if (param.contextRule) list.order.addContextRule(entry);
    if (!param.contexts.empty()) list.order.addWithContext(entry);
    hasContexts = hasContexts || !param.contexts.empty();
  }
  if (hasContexts) list.order.keepContextRules();
  return list;
}

EntryPlace const* OrderLint::placeOf(List const& list, Entry entry) const {
  auto const& places = context_.rules().objectPlaces().at(list.object->typePath());
  return list.areChildren ? &places.children[entry] : &places.params[entry];
}

std::string const& OrderLint::nameOf(List const& list, Entry entry) {
  return list.areChildren ? list.object->children()[entry]->type : list.object->params()[entry]->name;
}

// Advice

/// The parameters of an object are read in their order by rules of this object only, and its children by all rules
/// below it.
bool OrderLint::isComplete(List const& list) const noexcept {
  return extent_ == LintExtent::All || (extent_ == LintExtent::Objects && !list.areChildren);
}

OrderLint::Advice OrderLint::adviceFor(ExpressionUse const& use, LateRead const& late) {
  auto const first = std::find_if(late.relations.begin(), late.relations.end(),
                                  [](Relation const& one) { return one.list != nullptr; });
  if (first == late.relations.end()) {
    return {use.kind == EntryKind::Child
                ? "; no order of the entries changes that, because this rule comes before the children that it is about"
                : "; no order of the entries changes that, because the parameters of an object come before its "
                  "children",
            {},
            {},
            {}};
  }
  auto& list = *first->list;
  if (!isComplete(list)) return {std::string(adviceFollows), {}, {}, {}};
  auto& order = list.order;
  Entry const reader = first->reader;
  Entry read = first->read;
  std::size_t count = 0;
  for (auto const& relation : late.relations) {
    if (relation.list != &list) continue;
    if (order.isCircle(reader, relation.read)) {
      return adviceOfCircle(list, order.shortestCircle(reader, relation.read, totalSteps_));
    }
    read = std::max(read, relation.read);
    ++count;
  }
  if (count == 1 && late.relations.size() == 1) {
    if (auto const move = moveBeforeAll(list, read)) {
      auto advice = adviceOf(list, *move);
      advice.cause = "late " + list.object->typePath() + "/" + nameOf(list, read) + (list.areChildren ? "/" : "");
      return advice;
    }
  }
  // One move of the reader for everything that it reads too early, if there is one.
  auto const moveAfter = [&](Entry last) {
    auto found = order.moveDown(reader, last, totalSteps_);
    // Something that is read must not move along.
    bool const isInVain = found && std::any_of(late.relations.begin(), late.relations.end(), [&](Relation const& one) {
                            auto const& moved = found->entries;
                            return one.list == &list && std::find(moved.begin(), moved.end(), one.read) != moved.end();
                          });
    return isInVain ? std::nullopt : found;
  };
  auto move = moveAfter(order.lastRead(reader, read));
  if (!move) move = moveAfter(read);
  if (move && move->entries.size() == 1) return adviceOf(list, *move);
  if (count == 1) {
    auto const up = order.moveUp(reader, read, totalSteps_);
    if (up && (!move || up->entries.size() < move->entries.size())) return adviceOf(list, *up);
  }
  return move ? adviceOf(list, *move) : Advice{};
}

std::optional<EntryOrder::Move> OrderLint::moveBeforeAll(List& list, Entry read) {
  auto const [known, isNew] = list.movesBeforeAll.try_emplace(read);
  auto& move = known->second;
  if (!isNew) return move;
  auto& readers = list.lateReaders.at(read);
  std::erase_if(readers, [&](Entry reader) { return list.order.isCircle(reader, read); });
  std::sort(readers.begin(), readers.end());
  readers.erase(std::unique(readers.begin(), readers.end()), readers.end());
  if (readers.size() < 2) return move;
  move = list.order.moveUp(readers.front(), read, totalSteps_);
  if (move && move->entries.size() > readers.size()) move.reset();
  return move;
}

OrderLint::Advice OrderLint::adviceOf(List const& list, EntryOrder::Move const& move) const {
  Advice advice;
  std::vector<std::string> names;
  for (Entry const entry : move.entries) {
    names.push_back(nameOf(list, entry));
    if (auto const* place = placeOf(list, entry)) advice.notes.emplace_back(place->name, "move this entry");
  }
  auto const* anchor = placeOf(list, move.anchor);
  std::string const side = move.isAfter ? "after " : "before ";
  advice.text = "; move ";
  if (list.areChildren) advice.text += names.size() == 1 ? "the child " : "the children ";
  advice.text += listed(names);
  if (list.areChildren) advice.text += " of " + list.object->typePath();
  if (names.size() > 1) advice.text += ", in this order,";
  advice.text += " to just " + side;
  if (move.isUse && anchor != nullptr) {
    advice.text += "the Use of " + inQuotes(anchor->taken.node->value);
    advice.notes.emplace_back(anchor->use, "to just " + side + "this");
  } else {
    advice.text += inQuotes(nameOf(list, move.anchor));
    if (anchor != nullptr) advice.notes.emplace_back(anchor->name, "to just " + side + "this entry");
  }
  return advice;
}

OrderLint::Advice OrderLint::adviceOfCircle(List const& list, std::vector<std::size_t> circle) const {
  Advice advice;
  advice.text = "; no order of the entries changes that, because they read each other in a circle";
  for (std::size_t i = 0; i < circle.size(); ++i) {
    if (i == mostHops && circle.size() > mostHops + 1) {
      advice.text += ", and so on over " + std::to_string(circle.size() - i) + " more";
      break;
    }
    auto const& reason = reasons_[circle[i]];
    advice.text += i == 0 ? ": " : i + 1 == circle.size() ? ", and " : ", ";
    advice.text += inQuotes(nameOf(list, reason.reader)) + " reads " + inQuotes(nameOf(list, reason.read));
  }
  auto sorted = circle;
  std::sort(sorted.begin(), sorted.end());
  for (std::size_t const reason : sorted) advice.cause += "circle " + std::to_string(reason);
  circle.resize(std::min(circle.size(), mostHops));
  if (!circle.empty()) circle.erase(circle.begin());  // the first hop is what the warning is about
  advice.circle = std::move(circle);
  return advice;
}

void OrderLint::check(ExpressionUse const& use) {
  auto const found = late_.find(&use);
  if (found == late_.end()) return;
  for (auto const& late : found->second) {
    if (late.isOfItself) {
      context_.warn(Code::DependsOnItself, use, late.range,
                    "the " + nounOf(use.attribute) + " of " + inQuotes(use.entry()) + " depends on its own value");
      continue;
    }
    auto const advice = adviceFor(use, late);
    bool const isValue = late.what.starts_with("the value");
    auto& warning = context_.warn(Code::ReadsLaterDecision, use, late.range,
                                  late.what +
                                      (isValue ? " is decided later in the same walk, so this reads the value from "
                                                 "before the edit"
                                               : " are decided later in the same walk, so this sees the objects from "
                                                 "before the edit") +
                                      advice.text);
    // The reads of one circle are reported once.
    if (!advice.cause.empty()) context_.setCause(advice.cause);
    for (auto const& [item, message] : advice.notes) {
      DiagnosticList::note(warning, *item.source, item.node->range(), message);
    }
    for (std::size_t const index : advice.circle) {
      auto const& reason = reasons_[index];
      auto const& item = reason.use->item;
      auto const range = rangeOf(*reason.use, reason.objects, reason.parameter);
      auto const place = rangeInScalar(*item.source, *item.node, reason.use->skipped + range.offset, range.length);
      DiagnosticList::note(
          warning, *item.source, place,
          "it is read here, in " + std::string(reason.use->attribute) + " of " + inQuotes(reason.use->entry()));
    }
  }
}

}  // namespace tarn::rules
