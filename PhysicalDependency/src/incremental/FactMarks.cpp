#include "incremental/FactMarks.h"

#include <algorithm>
#include <utility>

#include <tarn/PathUtils.h>

namespace tarn {

namespace {

Fact anyChange() noexcept {
  return factOf(FactKind::Any, PathHash());
}

}  // namespace

/// Takes the reads of a visit back.
struct FactMarks::FormerReads {
  void operator()() noexcept {
    // The walk is forgotten after the rollback, and the object may have left the tree.
    if (marks->isLost()) return;
    try {
      marks->readers.setReads({object->handle, entry}, object->entries[entry].reads, reads);
    } catch (...) {
      marks->isLost_ = true;
    }
  }

  FactMarks* marks;
  WalkObject* object;
  WalkObject::Entry entry;
  std::vector<Fact> reads;
};

/// Takes all marks of an object back.
struct FactMarks::FormerMarks {
  void operator()() noexcept {
    object->unmarkAll();
    object->isNew = isNew;
    for (WalkObject::Entry const entry : entries) object->mark(entry);
    if (!object->isClean() && !WalkTree::noteDirty(*object)) marks->isLost_ = true;
  }

  FactMarks* marks;
  WalkObject* object;
  bool isNew;
  std::vector<WalkObject::Entry> entries;
};

void FactMarks::recordReads(WalkObject& object, WalkObject::Entry entry) {
  journal_->add(FormerReads{this, &object, entry, readers.factsOf(object.entries[entry].reads)});
}

void FactMarks::recordReads(WalkObject& top) {
  if (journal_ == nullptr) return;
  forEachObject(top, [this](WalkObject& object) {
    for (WalkObject::Entry entry = 0; entry < object.numEntries(); ++entry) {
      if (object.entries[entry].reads != ReaderIndex::nothing) recordReads(object, entry);
    }
  });
}

void FactMarks::recordMarks(WalkObject& object) {
  if (journal_ == nullptr) return;
  FormerMarks former{this, &object, object.isNew, {}};
  for (auto entry = object.nextMarked(0); entry < object.numEntries(); entry = object.nextMarked(entry + 1)) {
    former.entries.push_back(entry);
  }
  journal_->add(std::move(former));
}

void FactMarks::markAll(WalkObject& object) noexcept {
  try {
    recordMarks(object);
  } catch (...) {
    isLost_ = true;
  }
  if (!tree.markAll(object)) isLost_ = true;
}

void FactMarks::beginVisit(WalkObject& object, WalkObject::Entry entry) {
  if (journal_ != nullptr && object.isMarked(entry)) {
    journal_->add([this, &object, entry]() noexcept {
      if (!tree.mark(object, entry)) isLost_ = true;
    });
  }
  object.unmark(entry);
  object_ = &object;
  entry_ = entry;
  changed_.clear();
  recorder.begin();
}

void FactMarks::endVisit() {
  recorder.end();
  WalkObject& object = *object_;
  object_ = nullptr;
  std::vector<Fact>& reads = recorder.uniqueReads();
  bool const hasReadChange = std::any_of(changed_.begin(), changed_.end(), [&reads](Fact fact) {
    return std::binary_search(reads.begin(), reads.end(), fact);
  });
  if (hasReadChange) markVisit(object, entry_);
  if (reads.size() > maxReads) {
    reads.assign(1, anyChange());
    isAnyRead_ = true;
  }
  if (journal_ != nullptr) recordReads(object, entry_);
  readers.setReads({object.handle, entry_}, object.entries[entry_].reads, reads);
}

/// The name of a parameter may hold a "/", so each of them may divide the key. The running visit may have tried the
/// object of the item.
void FactMarks::onOwnFact(std::string_view key) noexcept {
  if (isRollingBack_) return;
  for (std::size_t slash = key.find('/'); slash != std::string_view::npos; slash = key.find('/', slash + 1)) {
    markParam(PathHash(key.substr(0, slash)), key.substr(slash + 1), Self::IsMarked);
  }
  markAbove(key);
  if (isMuted_) repeatVisit();
}

/// Marks the visit that decides on the object at `path`. If the walk has not come so far down, it may have tried an
/// object on the way, so that the visit which did that is concerned.
void FactMarks::markAbove(std::string_view path) noexcept {
  while (!path.empty()) {
    std::string_view const parent = PathUtils::parentOf(path);
    PathHash const hash(parent);
    markChildren(hash, PathUtils::lastType(path), Self::IsMarked);
    bool isWalked = false;
    tree.forEachAt(hash, [&isWalked](WalkObject&) { isWalked = true; });
    if (isWalked) return;
    path = parent;
  }
}

void FactMarks::repeatVisit() noexcept {
  if (object_ != nullptr) markVisit(*object_, entry_);
}

void FactMarks::markVisit(WalkObject& object, WalkObject::Entry entry) noexcept {
  if (object.isSkipped) return;
  if (entry >= object.numEntries()) {
    isLost_ = true;
    return;
  }
  if (object.isMarked(entry)) return;
  try {
    if (journal_ != nullptr) journal_->add([&object, entry]() noexcept { object.unmark(entry); });
  } catch (...) {
    isLost_ = true;
  }
  if (!tree.mark(object, entry)) isLost_ = true;
}

void FactMarks::clear() noexcept {
  tree.clear();
  readers.clear();
  results.forgetAll();
  recorder.end();
  object_ = nullptr;
  changed_.clear();
  pending_.clear();
  isMuted_ = false;
  isLost_ = false;
  isAnyRead_ = false;
  isRollingBack_ = false;
  recordIn(nullptr);
}

/// Marks all readers of a fact. A kept result that has read it does not hold any more, so its readers are concerned,
/// too, and so on.
void FactMarks::change(Fact fact) noexcept {
  try {
    pending_.push_back(fact);
    while (!pending_.empty()) {
      Fact const changed = pending_.back();
      pending_.pop_back();
      if (object_ != nullptr) changed_.push_back(changed);
      readers.forEachReader(changed, [this](ReaderIndex::Reader reader) { markReader(reader); });
    }
  } catch (...) {
    isLost_ = true;
  }
}

void FactMarks::changeAny() noexcept {
  if (isAnyRead_) change(anyChange());
}

/// Whether it is the parameter of the running visit. Most changes are.
bool FactMarks::isOwnParam(PathHash const& object, std::string_view name) const noexcept {
  return object_ != nullptr && object_->pathHash == object.value() && entry_ < object_->numParams() &&
         object_->rules->params()[entry_]->name == name;
}

void FactMarks::markReader(ReaderIndex::Reader reader) noexcept {
  if (reader.group == RecordedResults::group) {
    if (results.drop(reader.item)) {
      try {
        pending_.push_back(RecordedResults::factOfResult(reader.item));
      } catch (...) {
        isLost_ = true;
      }
    }
    return;
  }
  markVisit(*tree.byHandle(reader.group), reader.item);
}

void FactMarks::markParam(PathHash const& object, std::string_view name, Self self) noexcept {
  tree.forEachAt(object, [&](WalkObject& found) {
    if (found.rules == nullptr) return;
    std::size_t const place = found.rules->placeOfParam(name);
    if (place != ObjDependDef::noPlace) markItem(found, static_cast<WalkObject::Entry>(place), self);
  });
}

void FactMarks::markChildren(PathHash const& object, std::string_view type, Self self) noexcept {
  tree.forEachAt(object, [&](WalkObject& found) {
    if (found.rules == nullptr) return;
    std::size_t const place = found.rules->placeOfChild(type);
    if (place == ObjDependDef::noPlace) return;
    markItem(found, found.numParams() + static_cast<WalkObject::Entry>(place), self);
  });
}

/// While an object is tried, only what happens to it and below it is nobody's business. The others that can change then
/// are above it.
bool FactMarks::isMutedFor(PathHash const& object) const noexcept {
  if (isRollingBack_) return true;
  if (!isMuted_ || object_ == nullptr) return false;
  for (WalkObject const* above = object_; above != nullptr; above = above->parent) {
    if (above->pathHash == object.value()) return false;
  }
  return true;
}

void FactMarks::recordSafely(Fact fact) noexcept {
  try {
    recorder.record(fact);
  } catch (...) {
    isLost_ = true;
  }
}

void FactMarks::markItem(WalkObject& object, WalkObject::Entry entry, Self self) noexcept {
  if (self == Self::IsLeftOut && &object == object_ && entry == entry_) return;
  markVisit(object, entry);
}

// The changes of the trees.

void FactMarks::Active::onParamSetChange(PathHash const& object, std::string_view name) noexcept {
  if (marks_.isMuted_ || marks_.isRollingBack_) return;
  marks_.change(factOf(FactKind::ParamNames, object));
  onParamChange(object, name);
}

void FactMarks::Active::onParamChange(PathHash const& object, std::string_view name) noexcept {
  if (marks_.isMuted_ || marks_.isRollingBack_) return;
  marks_.change(factOf(FactKind::Param, object, name));
  marks_.changeAny();
  if (!marks_.isOwnParam(object, name)) marks_.markParam(object, name, Self::IsLeftOut);
}

/// An object that is deleted, or comes back, is walked as a new one. Its content is gone, and the visits in it wrote
/// that.
void FactMarks::Active::onObjectSetChange(PathHash const& parent, std::string_view type,
                                          PathHash const& object) noexcept {
  if (marks_.isMutedFor(object)) return;
  marks_.change(factOf(FactKind::Object, object));
  marks_.change(factOf(FactKind::Children, parent, type));
  marks_.change(factOf(FactKind::AllChildren, parent));
  marks_.changeAny();
  marks_.markChildren(parent, type, Self::IsLeftOut);
  marks_.tree.forEachAt(object, [this](WalkObject& found) { marks_.markAll(found); });
}

void FactMarks::Guide::onParamSetChange(PathHash const& object, std::string_view name) noexcept {
  if (!marks_.isMuted_ && !marks_.isRollingBack_) marks_.markParam(object, name, Self::IsMarked);
}

void FactMarks::Guide::onParamChange(PathHash const& object, std::string_view name) noexcept {
  if (!marks_.isMuted_ && !marks_.isRollingBack_) marks_.markParam(object, name, Self::IsMarked);
}

/// A value for a tried object is taken away with that object. The objects above it that were missing remain.
void FactMarks::Guide::onObjectSetChange(PathHash const& parent, std::string_view type,
                                         PathHash const& object) noexcept {
  if (marks_.isRollingBack_) return;
  if (marks_.isMutedFor(object)) {
    marks_.recordSafely(factOf(FactKind::GuideObject, PathHash(marks_.object_->path)));
    return;
  }
  marks_.change(factOf(FactKind::GuideObject, object));
  marks_.markChildren(parent, type, Self::IsMarked);
}

}  // namespace tarn
