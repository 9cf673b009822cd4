// The objects of a followed walk and the marks in them. An object with a mark in it or below it is known to its parent,
// so a walk finds the next mark without passing over what is unmarked.

#include "incremental/WalkTree.h"

#include <algorithm>
#include <bit>
#include <utility>

#include <tarn/ChildAvail.h>
#include <tarn/ParamAvail.h>
#include <tarn/ParamValueDef.h>
#include <tarn/RuleExpressions.h>

namespace tarn {

namespace {

constexpr WalkObject::Entry bitsOfWord = 64;

WalkObject::Entry entriesOf(ObjDependDef const* rules) noexcept {
  return rules == nullptr ? 0 : static_cast<WalkObject::Entry>(rules->params().size() + rules->children().size());
}

template <class Expression>
bool isUnknown(std::unique_ptr<Expression> const& expression) {
  return expression != nullptr && expression->readsUnknown();
}

bool isUnknown(std::vector<ParamValueDef::GuardedText> const& texts) {
  return std::any_of(texts.begin(), texts.end(),
                     [](auto const& text) { return isUnknown(text.when) || isUnknown(text.value); });
}

bool readsUnknown(ParamAvail const& entry) {
  if (isUnknown(entry.available)) return true;
  ParamValueDef const* const value = entry.valueDef();
  if (value == nullptr) return false;
  bool const isAnyCheckUnknown = std::any_of(value->allowedValueChecks.begin(), value->allowedValueChecks.end(),
                                             [](auto const& check) { return isUnknown(check.second); });
  return isAnyCheckUnknown || isUnknown(value->allowedValues) || isUnknown(value->subset) ||
         isUnknown(value->defaultValue) || isUnknown(value->defaultChecks) || isUnknown(value->overrideChecks) ||
         isUnknown(value->lowerBound) || isUnknown(value->upperBound) || isUnknown(value->quantityType);
}

bool readsUnknown(ChildAvail const& entry) {
  return isUnknown(entry.available) || isUnknown(entry.allowedNamesSource) || isUnknown(entry.defaultNamesSource);
}

/// A position in the walk below some object: a visit of the object, or what is below one of its child visits.
struct Position {
  WalkObject const* object;
  WalkObject::Entry entry;
  bool isBelow = false;
  std::uint32_t place = 0;

  void climb() noexcept {
    entry = object->childEntry;
    place = object->place;
    isBelow = true;
    object = object->parent;
  }
};

}  // namespace

EntryTraits::EntryTraits(ObjDependDef const* rules) : rules_(rules), known_(entriesOf(rules), Known::NotAsked) {}

bool EntryTraits::isUnfollowed(std::uint32_t entry) {
  Known& known = known_[entry];
  if (known == Known::NotAsked) {
    std::size_t const numParams = rules_->params().size();
    bool const isUnfollowed = entry < numParams ? readsUnknown(*rules_->params()[entry])
                                                : readsUnknown(*rules_->children()[entry - numParams]);
    known = isUnfollowed ? Known::IsUnfollowed : Known::IsFollowed;
  }
  return known == Known::IsUnfollowed;
}

std::vector<std::uint32_t> const& EntryTraits::inContexts() {
  if (!inContexts_) {
    std::vector<std::uint32_t> found;
    std::uint32_t entry = 0;
    auto const add = [&found, &entry](auto const& rules) {
      if (!rules->contexts.empty()) found.push_back(entry);
      ++entry;
    };
    std::for_each(rules_->params().begin(), rules_->params().end(), add);
    std::for_each(rules_->children().begin(), rules_->children().end(), add);
    inContexts_ = std::move(found);
  }
  return *inContexts_;
}

WalkObject::WalkObject(std::string objPath, ObjDependDef const* objRules, EntryTraits* objTraits,
                       WalkObject* parentObject)
    : path(std::move(objPath)),
      pathHash(PathHash(path).value()),
      rules(objRules),
      traits(objTraits),
      parent(parentObject),
      depth(parentObject == nullptr ? 0 : parentObject->depth + 1),
      entries(entriesOf(objRules)) {
  if (numEntries() > bitsOfWord) moreMarks = std::make_unique<std::uint64_t[]>((numEntries() - 1) / bitsOfWord);
  markAll();
}

/// Leaves go first: destroying the children as a whole would recurse for every level.
WalkObject::~WalkObject() {
  for (WalkObject* at = this; at != this || !children.empty();) {
    if (at->children.empty()) {
      at = at->parent;
      at->children.pop_back();
    } else if (at->children.back() == nullptr) {
      at->children.pop_back();
    } else {
      at = at->children.back().get();
    }
  }
}

WalkObject::Entry WalkObject::nextMarked(Entry from) const noexcept {
  if (markCount == 0 || from >= numEntries()) return numEntries();
  std::size_t const words = (numEntries() + bitsOfWord - 1) / bitsOfWord;
  std::size_t word = from / bitsOfWord;
  auto const marksOf = [this](std::size_t at) { return at == 0 ? firstMarks : moreMarks[at - 1]; };
  std::uint64_t bits = marksOf(word) & ~std::uint64_t{0} << from % bitsOfWord;
  while (bits == 0) {
    if (++word == words) return numEntries();
    bits = marksOf(word);
  }
  return static_cast<Entry>(word * bitsOfWord) + static_cast<Entry>(std::countr_zero(bits));
}

bool WalkObject::isMarked(Entry entry) const noexcept {
  std::uint64_t const word = entry < bitsOfWord ? firstMarks : moreMarks[entry / bitsOfWord - 1];
  return (word >> entry % bitsOfWord & 1U) != 0;
}

bool WalkObject::mark(Entry entry) noexcept {
  std::uint64_t& word = marksAt(entry / bitsOfWord);
  std::uint64_t const bit = std::uint64_t{1} << entry % bitsOfWord;
  if ((word & bit) != 0) return false;
  word |= bit;
  ++markCount;
  return true;
}

void WalkObject::markAll() noexcept {
  Entry rest = numEntries();
  for (std::size_t word = 0; rest != 0; ++word) {
    Entry const bits = std::min(rest, bitsOfWord);
    marksAt(word) = ~std::uint64_t{0} >> (bitsOfWord - bits);
    rest -= bits;
  }
  markCount = numEntries();
}

void WalkObject::unmark(Entry entry) noexcept {
  std::uint64_t& word = marksAt(entry / bitsOfWord);
  std::uint64_t const bit = std::uint64_t{1} << entry % bitsOfWord;
  if ((word & bit) == 0) return;
  word &= ~bit;
  --markCount;
}

void WalkObject::unmarkAll() noexcept {
  for (Entry entry = 0; entry < numEntries(); entry += bitsOfWord) marksAt(entry / bitsOfWord) = 0;
  markCount = 0;
}

WalkObject* WalkObject::nextDirtyChild(std::uint64_t from) const noexcept {
  if (ownExtras == nullptr) return nullptr;
  auto const child = ownExtras->dirtyChildren.lower_bound(from);
  return child == ownExtras->dirtyChildren.end() ? nullptr : child->second;
}

void WalkObject::forgetDirty(WalkObject const& child) noexcept {
  if (ownExtras != nullptr) ownExtras->dirtyChildren.erase(child.ownKey());
}

std::pair<WalkObject::Children, WalkObject::Children> WalkObject::childrenOf(Entry entry) noexcept {
  auto const isBefore = [](std::unique_ptr<WalkObject> const& child, Entry e) { return child->childEntry < e; };
  auto const begin = std::lower_bound(children.begin(), children.end(), entry, isBefore);
  return {begin, std::lower_bound(begin, children.end(), entry + 1, isBefore)};
}

std::string const& WalkObject::contextBefore(Entry entry) const {
  static std::string const none;
  if (ownExtras == nullptr) return none;
  auto const after = ownExtras->contextValues.lower_bound(entry);
  return after == ownExtras->contextValues.begin() ? none : std::prev(after)->second;
}

bool comesBefore(VisitRef a, VisitRef b) noexcept {
  Position first{a.object, a.entry};
  Position second{b.object, b.entry};
  while (first.object->depth > second.object->depth) first.climb();
  while (second.object->depth > first.object->depth) second.climb();
  while (first.object != second.object) {
    first.climb();
    second.climb();
  }
  if (first.entry != second.entry) return first.entry < second.entry;
  if (first.isBelow != second.isBelow) return second.isBelow;
  return first.place < second.place;
}

WalkObject* nextBelow(WalkObject const& top, WalkObject& object) noexcept {
  if (!object.children.empty()) return object.children.front().get();
  for (WalkObject* at = &object; at != &top; at = at->parent) {
    auto const& siblings = at->parent->children;
    auto const next =
        std::upper_bound(siblings.begin(), siblings.end(), at->ownKey(),
                         [](WalkObject::ChildKey key, auto const& sibling) { return key < sibling->ownKey(); });
    if (next != siblings.end()) return next->get();
  }
  return nullptr;
}

WalkTree::WalkTree() = default;

WalkTree::~WalkTree() {
  clear();
}

WalkObject& WalkTree::makeRoot(std::string path, ObjDependDef const* rules) {
  root_ = std::make_unique<WalkObject>(std::move(path), rules, traitsOf(rules), nullptr);
  root_->isRequired = true;
  list(*root_);
  return *root_;
}

std::unique_ptr<WalkObject> WalkTree::makeChild(WalkObject& parent, WalkObject::Entry entry, std::string path,
                                                ObjDependDef const* rules) {
  auto made = std::make_unique<WalkObject>(std::move(path), rules, traitsOf(rules), &parent);
  made->childEntry = entry;
  made->place = parent.nextPlace++;
  list(*made);
  try {
    parent.extras().dirtyChildren.emplace(made->ownKey(), made.get());
  } catch (...) {
    unlist(*made);
    throw;
  }
  return made;
}

void WalkTree::unlist(WalkObject& top) noexcept {
  forEachObject(top, [this](WalkObject& object) {
    WalkObject** at = &buckets_[bucketOf(object.pathHash)];
    while (*at != &object) at = &(*at)->nextInBucket;
    *at = object.nextInBucket;
    --listed_;
    byHandle_[object.handle] = nullptr;
    freeHandles_.push_back(object.handle);
  });
}

void WalkTree::relist(WalkObject& top) {
  forEachObject(top, [this](WalkObject& object) { list(object); });
}

bool WalkTree::mark(WalkObject& object, WalkObject::Entry entry) noexcept {
  return !object.mark(entry) || noteDirty(object);
}

bool WalkTree::markAll(WalkObject& object) noexcept {
  object.markAll();
  object.isNew = true;
  return noteDirty(object);
}

/// The children that are known to be dirty have parents that are.
bool WalkTree::noteDirty(WalkObject& object) noexcept {
  try {
    for (WalkObject* at = &object; at->parent != nullptr; at = at->parent) {
      if (!at->parent->extras().dirtyChildren.emplace(at->ownKey(), at).second) break;
    }
    return true;
  } catch (...) {
    return false;
  }
}

EntryTraits* WalkTree::traitsOf(ObjDependDef const* rules) {
  return &traits_.try_emplace(rules, rules).first->second;
}

/// Fails before it has changed anything, or not at all.
void WalkTree::list(WalkObject& object) {
  if (listed_ == buckets_.size()) grow();
  if (freeHandles_.empty()) {
    object.handle = static_cast<std::uint32_t>(byHandle_.size());
    // There is room for every handle, so that taking objects out cannot fail.
    if (freeHandles_.capacity() <= byHandle_.size()) freeHandles_.reserve(2 * byHandle_.size() + 1);
    byHandle_.push_back(&object);
  } else {
    object.handle = freeHandles_.back();
    freeHandles_.pop_back();
    byHandle_[object.handle] = &object;
  }
  WalkObject*& bucket = buckets_[bucketOf(object.pathHash)];
  object.nextInBucket = bucket;
  bucket = &object;
  ++listed_;
}

void WalkTree::grow() {
  constexpr std::size_t atFirst = 16;
  std::vector<WalkObject*> former(buckets_.empty() ? atFirst : buckets_.size() * 2);
  former.swap(buckets_);
  for (WalkObject* object : former) {
    while (object != nullptr) {
      WalkObject* const next = std::exchange(object->nextInBucket, buckets_[bucketOf(object->pathHash)]);
      buckets_[bucketOf(object->pathHash)] = object;
      object = next;
    }
  }
}

void WalkTree::clear() noexcept {
  buckets_.clear();
  listed_ = 0;
  byHandle_.clear();
  freeHandles_.clear();
  root_.reset();
  traits_.clear();  // the host may add rules before the next start
}

}  // namespace tarn
