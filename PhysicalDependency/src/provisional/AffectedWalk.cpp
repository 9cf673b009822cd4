// The walk keeps the open objects on a stack of its own, like the walk of everything, and calls the same hooks with the
// same records. It differs in how it moves: from one marked visit to the next.

#include "provisional/AffectedWalk.h"

#include <algorithm>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include <tarn/DynamicTDF.h>
#include <tarn/ObjDependency.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDFDB.h>
#include <tarn/TDFPath.h>

#include "analysis/AvailInfoAdapters.h"
#include "journal/JournaledWrites.h"
#include "provisional/KeepingResults.h"
#include "provisional/ProvisionalFacts.h"

namespace tarn {

namespace {

std::string childPath(WalkObject const& parent, std::string const& type, bool isSingleton, std::string const& name) {
  std::string path;
  path.reserve(parent.path.size() + type.size() + name.size() + 2);
  path.append(parent.path).append(1, '/').append(type);
  if (!isSingleton) path.append(1, ':').append(name);
  return path;
}

}  // namespace

/// An object whose end has not been visited yet.
struct AffectedWalk::OpenObject {
  OpenObject(WalkObject& walkObject, EvalContext* context, PhysicsData const* rules)
      : object(walkObject), cursor(walkObject.path, walkObject.rules, context, rules) {}

  WalkObject& object;
  ObjDependency cursor;
  /// The walk has passed all entries before this one, and all children before that one.
  WalkObject::Entry nextEntry = 0;
  WalkObject::ChildKey nextChild = 0;
};

/// New objects until they are among the children of their parent. Then the list is emptied.
struct AffectedWalk::NewChildren {
  explicit NewChildren(WalkTree& walkTree) noexcept : tree(walkTree) {}
  NewChildren(NewChildren const&) = delete;
  NewChildren& operator=(NewChildren const&) = delete;
  ~NewChildren() {
    for (auto const& object : objects) {
      object->parent->forgetDirty(*object);
      tree.unlist(*object);
    }
  }

  WalkTree& tree;
  std::vector<std::unique_ptr<WalkObject>> objects;
};

/// The step that takes the children of an entry back.
struct AffectedWalk::FormerChildren {
  void operator()() noexcept {
    try {
      if (!walk->marks_.isLost()) walk->restoreChildren(*this);
    } catch (...) {
      walk->marks_.lose();
    }
    // Steps that are still to be undone refer to those that could not come back.
    for (auto& child : dropped) {
      if (child != nullptr) walk->keepLost(std::move(child));
    }
  }

  AffectedWalk* walk;
  WalkObject* parent;
  WalkObject::Entry entry;
  std::vector<WalkObject*> order;
  std::vector<std::unique_ptr<WalkObject>> dropped;
};

void AffectedWalk::attach(ProvisionalTDFDB const& view, ModelTDF const& base) noexcept {
  forget();
  view_ = &view;
  context_.reset();
  model_.reset();
  // A derived class may answer otherwise than its tree.
  base_ = typeid(base) == typeid(DynamicTDF) ? dynamic_cast<DynamicTDF const*>(&base) : nullptr;
}

void AffectedWalk::run(std::string const& root) {
  KeepingResults const results(marks_.results);
  beginWalk(root);
  std::vector<std::unique_ptr<OpenObject>> stack;
  open(stack, *marks_.tree.root());
  while (step(stack)) {
  }
  if (base_ != nullptr) baseRevision_ = base_->getRevision();
}

void AffectedWalk::beginWalk(std::string const& root) {
  if (isFollowing()) {
    // The host may have changed the base model without notice.
    if (base_ == nullptr || base_->getRevision() != baseRevision_) marks_.onOutside();
    return;
  }
  if (model_ == nullptr) {
    auto model = std::make_unique<RecordedModel>(*view_, marks_.recorder);
    context_ = std::make_unique<EvalContext>(model.get(), &marks_.results);
    model_ = std::move(model);
  }
  std::string const path = TDFPath(root).getFullPath();
  marks_.tree.makeRoot(path, rules_.getObjDependDef(PathUtils::typePathOf(path), true));
  facts_.follow(&marks_);
}

void AffectedWalk::complete() noexcept {
  dropped_.clear();
  if (marks_.isLost() || facts_.hasAmbiguousPaths()) forget();
}

void AffectedWalk::abandon() noexcept {
  facts_.listings().abandon(marks_.tree.root(), {marks_.object(), marks_.entry()});
  forget();
}

void AffectedWalk::forget() noexcept {
  facts_.follow(nullptr);
  marks_.clear();
  dropped_.clear();
  while (lost_ != nullptr) lost_ = std::move(lost_->nextLost);
  result_ = {};
}

void AffectedWalk::open(std::vector<std::unique_ptr<OpenObject>>& stack, WalkObject& object) {
  stack.push_back(std::make_unique<OpenObject>(object, context_.get(), &rules_));
  if (!object.isNew) return;
  marks_.recordMarks(object);
  object.isNew = false;
  ObjBeginInfoAdapter const info(object.path, stack.back()->cursor, object.isRequired, object.isCoupled);
  object.isSkipped = handler_.onBeginObject(&info) == DependencyAnalyser::SkipObject;
  if (object.isSkipped) object.unmarkAll();
}

/// Runs the next marked visit, enters the next object with one, or ends an object. Returns false after the last one.
bool AffectedWalk::step(std::vector<std::unique_ptr<OpenObject>>& stack) {
  OpenObject& top = *stack.back();
  WalkObject& object = top.object;
  WalkObject::Entry const entry = object.nextMarked(top.nextEntry);
  WalkObject* const child = object.nextDirtyChild(top.nextChild);
  if (entry < object.numEntries() && (child == nullptr || WalkObject::childKey(entry, 0) <= child->ownKey())) {
    // A visit comes before the children of its entry.
    top.nextEntry = entry + 1;
    top.nextChild = std::max(top.nextChild, WalkObject::childKey(entry, 0));
    visit(top, entry);
  } else if (child != nullptr) {
    top.nextEntry = std::max(top.nextEntry, child->childEntry + 1);
    top.nextChild = child->ownKey() + 1;
    open(stack, *child);
  } else {
    endObject(object);
    stack.pop_back();
  }
  return !stack.empty();
}

void AffectedWalk::endObject(WalkObject& object) {
  facts_.setEndingObject(&object);
  handler_.onEndObject(object.path, object.isRequired);
  facts_.setEndingObject(nullptr);
  if (object.parent != nullptr && object.isClean() && !object.isNew) object.parent->forgetDirty(object);
}

void AffectedWalk::visit(OpenObject& open, WalkObject::Entry entry) {
  WalkObject& object = open.object;
  result_ = {};
  facts_.collectInto(&result_);
  marks_.beginVisit(object, entry);
  if (entry < object.numParams()) {
    visitParam(open, entry);
  } else {
    visitChildren(open, entry);
  }
  marks_.endVisit();
  facts_.collectInto(nullptr);
  facts_.listings().set(object, entry, result_);
  if (object.traits->isUnfollowed(entry)) marks_.markVisit(object, entry);
}

void AffectedWalk::visitParam(OpenObject& open, WalkObject::Entry entry) {
  WalkObject& object = open.object;
  ObjDependency& cursor = open.cursor;
  cursor.goToParam(entry, object.contextBefore(entry));
  ParamAllowedValues allowed;
  bool const isAvailable = cursor.isParamAvailable(allowed);
  ParamAvailInfoAdapter const info(object.path, isAvailable, cursor, allowed);
  handler_.onParamCheck(&info);
  if (!cursor.isParamContextRule()) return;
  std::string const& name = cursor.getParamName();
  bool const isPresent = isAvailable && view_->hasParameter(object.path, name);
  setContextValue(object, entry, isPresent ? &view_->getParameterValue(object.path, name) : nullptr);
}

/// The value of a context rule parameter is read only by what comes after it in the same object. Null for none.
void AffectedWalk::setContextValue(WalkObject& object, WalkObject::Entry entry, std::string const* value) {
  auto& values = object.extras().contextValues;
  auto const known = values.find(entry);
  bool const isSame = value == nullptr ? known == values.end() : known != values.end() && known->second == *value;
  if (isSame) return;
  Journal* const journal = facts_.listings().recording();
  if (value == nullptr) {
    journaled::Erasing(journal, values).erase(known);
  } else {
    auto const place = journaled::emplace(journal, values, entry, std::string()).first;
    journaled::assign(journal, place->second, std::string(*value));
  }
  auto const& inContexts = object.traits->inContexts();
  for (auto at = std::upper_bound(inContexts.begin(), inContexts.end(), entry); at != inContexts.end(); ++at) {
    marks_.markVisit(object, *at);
  }
}

void AffectedWalk::visitChildren(OpenObject& open, WalkObject::Entry entry) {
  WalkObject& object = open.object;
  ObjDependency& cursor = open.cursor;
  cursor.goToChild(entry - object.numParams(), object.contextBefore(entry));
  std::vector<std::string> names;
  {
    ObjDependency::AllowedNameData nameData;
    bool const isAvailable = cursor.isChildAvailable(nameData);
    ChildAvailInfoAdapter const info(object.path, isAvailable, cursor, nameData);
    handler_.onChildCheck(&info);
    if (isAvailable && cursor.isChildSingleton()) {
      if (view_->hasObject(childPath(object, cursor.getChildType(), true, {}))) names.emplace_back();
    } else if (isAvailable) {
      view_->getChildObjectNamesByType(object.path, cursor.getChildType(), names);
    }
  }
  if (handler_.isTrying()) {
    // The tried object is the last one, and normally the only one.
    if (names.size() != 1) marks_.lose();
    std::string const tried = childPath(object, cursor.getChildType(), false, names.back());
    names.pop_back();
    // The tried object marks nothing. So results that rules keep do not hold while it exists, nor those made then
    // afterwards.
    bool const areKept = marks_.results.isEnabled();
    marks_.results.enable(false);
    handler_.walkTried(tried, context_.get());
    marks_.results.enable(areKept);
  }
  setChildren(object, entry, cursor.getChildType(), cursor.isChildSingleton(), names);
}

/// Makes the children of an entry those with these names, in this order. Those that stay in their order are kept. All
/// after a new one are new, too: such an object was deleted and made again.
void AffectedWalk::setChildren(WalkObject& object, WalkObject::Entry entry, std::string const& type, bool isSingleton,
                               std::vector<std::string> const& names) {
  auto& children = object.children;
  auto const [begin, end] = object.childrenOf(entry);
  auto const isNamed = [&object, &type, isSingleton](std::unique_ptr<WalkObject> const& child,
                                                     std::string const& name) {
    std::size_t const beforeName = object.path.size() + type.size() + 2;
    return isSingleton || (child->path.size() == beforeName + name.size() && child->path.ends_with(name));
  };
  if (std::equal(begin, end, names.begin(), names.end(), isNamed)) return;

  // First all that can fail. The objects stay where they are until then.
  std::vector<WalkObject*> former;
  std::unordered_map<std::string_view, std::size_t> placeOf;
  for (auto child = begin; child != end; ++child) {
    placeOf.emplace((*child)->path, former.size());
    former.push_back(child->get());
  }
  std::size_t kept = 0;  // of the names
  std::vector<bool> isKept(former.size());
  for (std::size_t next = 0; kept < names.size(); ++kept) {
    auto const known = placeOf.find(childPath(object, type, isSingleton, names[kept]));
    if (known == placeOf.end() || known->second < next) break;
    next = known->second + 1;
    isKept[known->second] = true;
  }
  FormerChildren* record = nullptr;
  if (Journal* const journal = facts_.listings().recording()) {
    // Before the children, because their reads come back after they have.
    for (std::size_t i = 0; i < former.size(); ++i) {
      if (!isKept[i]) marks_.recordReads(*former[i]);
    }
    record = &journal->add(FormerChildren{this, &object, entry, former, {}});
  }
  NewChildren made(marks_.tree);
  made.objects.reserve(names.size() - kept);
  // Such an object is found under another path than the one under which the walk enters it.
  if (!isSingleton && std::find(names.begin(), names.end(), type) != names.end()) marks_.lose();
  for (std::size_t i = kept; i < names.size(); ++i) {
    made.objects.push_back(newChild(object, entry, childPath(object, type, isSingleton, names[i])));
  }
  for (std::size_t i = 0; i < former.size(); ++i) {
    if (!isKept[i]) facts_.listings().removeAll(*former[i]);
  }
  std::vector<std::unique_ptr<WalkObject>>& dropped = record != nullptr ? record->dropped : dropped_;
  dropped.reserve(dropped.size() + former.size());
  auto const offset = begin - children.begin();
  children.reserve(children.size() + made.objects.size());

  auto const first = children.begin() + offset;
  auto const last = first + static_cast<std::ptrdiff_t>(former.size());
  auto place = first;
  for (auto child = first; child != last; ++child) {
    if (isKept[static_cast<std::size_t>(child - first)]) {
      if (place != child) *place = std::move(*child);
      ++place;
    } else {
      removeFromTree(**child);
      dropped.push_back(std::move(*child));
    }
  }
  place = children.erase(place, last);
  children.insert(place, std::make_move_iterator(made.objects.begin()), std::make_move_iterator(made.objects.end()));
  made.objects.clear();
}

std::unique_ptr<WalkObject> AffectedWalk::newChild(WalkObject& parent, WalkObject::Entry entry,
                                                   std::string const& path) {
  ChildAvail const& rules = *parent.rules->children()[entry - parent.numParams()];
  (void)TDFPath(path);  // throws for a path that cannot be read
  auto child = marks_.tree.makeChild(parent, entry, path,
                                     rules_.getObjDependDef(parent.rules->typePath() + '/' + rules.type, true));
  child->isRequired = rules.required;
  child->isCoupled = rules.coupled || rules.allowedNamesSource != nullptr;
  return child;
}

/// Takes an object out of the walk. It may come back.
void AffectedWalk::removeFromTree(WalkObject& top) noexcept {
  top.parent->forgetDirty(top);
  forEachObject(top, [this](WalkObject& object) {
    for (WalkObject::EntryState& entry : object.entries) marks_.readers.clearReads(entry.reads);
  });
  marks_.tree.unlist(top);
}

/// Children that were there before come back. Children that were not there go; the lists do not refer to them any more.
void AffectedWalk::restoreChildren(FormerChildren& former) {
  // First all that can fail. The objects stay where they are until then.
  auto& children = former.parent->children;
  children.reserve(children.size() + former.dropped.size());
  auto const [begin, end] = former.parent->childrenOf(former.entry);
  std::unordered_map<WalkObject const*, std::unique_ptr<WalkObject>*> owners;
  std::vector<std::unique_ptr<WalkObject>> before;
  std::vector<std::unique_ptr<WalkObject>> gone;
  std::vector<WalkObject*> back;
  before.reserve(former.order.size());
  gone.reserve(static_cast<std::size_t>(end - begin));
  back.reserve(former.dropped.size());
  for (auto child = begin; child != end; ++child) owners.emplace(child->get(), &*child);
  for (auto& child : former.dropped) {
    owners.emplace(child.get(), &child);
    back.push_back(child.get());
  }

  for (WalkObject const* const child : former.order) before.push_back(std::move(*owners.find(child)->second));
  for (auto child = begin; child != end; ++child) {
    if (*child != nullptr) gone.push_back(std::move(*child));
  }
  for (auto const& child : gone) removeFromTree(*child);
  auto const place = children.erase(begin, end);
  children.insert(place, std::make_move_iterator(before.begin()), std::make_move_iterator(before.end()));
  for (WalkObject* const child : back) {
    marks_.tree.relist(*child);
    bool const isDirty = !child->isClean() || child->isNew;
    if (isDirty && !WalkTree::noteDirty(*child)) marks_.lose();
  }
}

void AffectedWalk::keepLost(std::unique_ptr<WalkObject> object) noexcept {
  object->nextLost = std::move(lost_);
  lost_ = std::move(object);
}

void AffectedWalk::checkRollback() noexcept {
  if (marks_.isLost()) forget();
}

}  // namespace tarn
