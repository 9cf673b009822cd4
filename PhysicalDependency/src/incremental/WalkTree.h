#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/ObjDependDef.h>
#include <tarn/PotentialUpdateData.h>

#include "incremental/ReaderIndex.h"
#include "tree/PathHash.h"

namespace tarn {

/// The properties of the entries of one object type. Each is found out when it is asked for first, right after the
/// visit that has touched the rules of the entry.
class EntryTraits {
 public:
  explicit EntryTraits(ObjDependDef const* rules);

  /// Whether the entry may read things that nobody can follow. Its visit then runs in every walk.
  [[nodiscard]] bool isUnfollowed(std::uint32_t entry);
  /// The entries that are live only in some contexts, in ascending order.
  [[nodiscard]] std::vector<std::uint32_t> const& inContexts();

 private:
  enum class Known : std::uint8_t { NotAsked, IsFollowed, IsUnfollowed };

  ObjDependDef const* rules_;
  std::vector<Known> known_;
  std::optional<std::vector<std::uint32_t>> inContexts_;
};

/// An object of a walk that is followed. Its visits are the entries of its rules: the parameters, then the children.
struct WalkObject {
  using Entry = std::uint32_t;

  WalkObject(std::string objPath, ObjDependDef const* objRules, EntryTraits* objTraits, WalkObject* parentObject);
  WalkObject(WalkObject const&) = delete;
  WalkObject& operator=(WalkObject const&) = delete;
  ~WalkObject();

  [[nodiscard]] Entry numParams() const noexcept {
    return rules == nullptr ? 0 : static_cast<Entry>(rules->params().size());
  }
  [[nodiscard]] Entry numEntries() const noexcept { return static_cast<Entry>(entries.size()); }

  /// The first marked entry from `from` on, or `numEntries`.
  [[nodiscard]] Entry nextMarked(Entry from) const noexcept;
  [[nodiscard]] bool isClean() const noexcept { return markCount == 0 && !hasDirtyChildren(); }
  [[nodiscard]] bool isMarked(Entry entry) const noexcept;
  /// Returns whether it was not marked.
  bool mark(Entry entry) noexcept;
  void markAll() noexcept;
  void unmark(Entry entry) noexcept;
  void unmarkAll() noexcept;

  [[nodiscard]] bool hasDirtyChildren() const noexcept {
    return ownExtras != nullptr && !ownExtras->dirtyChildren.empty();
  }
  /// The first child with marks from `from` on, or null.
  [[nodiscard]] WalkObject* nextDirtyChild(std::uint64_t from) const noexcept;
  /// The child has no marks any more.
  void forgetDirty(WalkObject const& child) noexcept;

  /// The value of the last context rule parameter before the entry.
  [[nodiscard]] std::string const& contextBefore(Entry entry) const;

  /// The position of an object among all children of its parent.
  using ChildKey = std::uint64_t;
  [[nodiscard]] static ChildKey childKey(Entry entry, std::uint32_t place) noexcept {
    return ChildKey{entry} << 32U | place;
  }
  [[nodiscard]] ChildKey ownKey() const noexcept { return childKey(childEntry, place); }

  /// The bits of `outputs`: the lists to which a visit has added something.
  static constexpr unsigned Offered = 1;
  static constexpr unsigned Empty = 2;
  static constexpr unsigned EmptyTyped = 4;
  static constexpr unsigned OffersName = 8;
  static constexpr unsigned OffersObjects = 16;

  std::string const path;
  std::uint64_t const pathHash;
  ObjDependDef const* const rules;
  EntryTraits* const traits;
  WalkObject* const parent;
  Entry childEntry = 0;     // the entry of the parent that it belongs to
  std::uint32_t place = 0;  // ascends among the children of an entry, in the order of the walk
  std::uint32_t depth = 0;
  std::uint32_t handle = 0;
  bool isRequired = false;
  bool isCoupled = false;
  /// It is mirrored: the walk does not enter it, and has no visits in it.
  bool isSkipped = false;
  /// Its begin has to run too: it is new, or was deleted since.
  bool isNew = true;
  /// The number of its own offers and of those below it.
  std::uint32_t offers = 0;
  std::uint32_t markCount = 0;
  std::uint32_t nextPlace = 0;  // of its next new child

  struct EntryState {
    ReaderIndex::Reads reads = ReaderIndex::nothing;
    std::uint8_t outputs = 0;
  };
  std::vector<EntryState> entries;
  /// A bit an entry. Most objects have few entries.
  std::uint64_t firstMarks = 0;
  std::unique_ptr<std::uint64_t[]> moreMarks;

  /// The state that few objects have.
  struct Extras {
    /// Where the offer of a parameter is listed, by entry. Empty while the object offers none.
    std::vector<PotentialUpdateData::Params::iterator> offerAt;
    Entry endOfOffers = 0;  // no parameter from this entry on is offered
    /// By child entry; only those that offer objects.
    std::map<Entry, std::vector<std::string>> offeredObjects;
    /// The values of the context rule parameters that are present, by entry.
    std::map<Entry, std::string> contextValues;
    /// The children with marks in them or below them.
    std::map<ChildKey, WalkObject*> dirtyChildren;
  };
  std::unique_ptr<Extras> ownExtras;
  [[nodiscard]] Extras& extras() {
    if (ownExtras == nullptr) ownExtras = std::make_unique<Extras>();
    return *ownExtras;
  }

  /// In the order of their keys.
  std::vector<std::unique_ptr<WalkObject>> children;
  /// The range of those that belong to one entry.
  using Children = std::vector<std::unique_ptr<WalkObject>>::iterator;
  [[nodiscard]] std::pair<Children, Children> childrenOf(Entry entry) noexcept;
  /// The next object whose path has the same bucket.
  WalkObject* nextInBucket = nullptr;
  /// Objects that could not come back are linked until the walk is forgotten.
  std::unique_ptr<WalkObject> nextLost;

  [[nodiscard]] std::uint64_t& marksAt(std::size_t word) noexcept {
    return word == 0 ? firstMarks : moreMarks[word - 1];
  }
};

/// A visit by its place.
struct VisitRef {
  WalkObject const* object = nullptr;
  WalkObject::Entry entry = 0;
};

/// Returns whether the walk reaches `a` before `b`. Proportional to the depth.
[[nodiscard]] bool comesBefore(VisitRef a, VisitRef b) noexcept;

/// The objects of a walk that is followed.
class WalkTree {
 public:
  WalkTree();
  WalkTree(WalkTree const&) = delete;
  WalkTree& operator=(WalkTree const&) = delete;
  ~WalkTree();

  [[nodiscard]] WalkObject* root() const noexcept { return root_.get(); }
  WalkObject& makeRoot(std::string path, ObjDependDef const* rules);
  /// A new object, all of it marked. It is not among the children of its parent yet.
  std::unique_ptr<WalkObject> makeChild(WalkObject& parent, WalkObject::Entry entry, std::string path,
                                        ObjDependDef const* rules);
  /// Takes an object and everything below it out of the look-ups.
  void unlist(WalkObject& top) noexcept;
  /// Undoes that. When memory runs out it throws, and the tree must be cleared.
  void relist(WalkObject& top);

  /// The objects whose path has this hash. Mostly one or none.
  template <class Visit>
  void forEachAt(PathHash const& path, Visit visit) const {
    if (buckets_.empty()) return;
    std::uint64_t const hash = path.value();
    for (WalkObject* at = buckets_[bucketOf(hash)]; at != nullptr; at = at->nextInBucket) {
      if (at->pathHash == hash) visit(*at);
    }
  }
  [[nodiscard]] WalkObject* byHandle(std::uint32_t handle) const noexcept { return byHandle_[handle]; }

  /// Marks a visit, so that a walk reaches it. Returns false when memory ran out.
  [[nodiscard]] bool mark(WalkObject& object, WalkObject::Entry entry) noexcept;
  [[nodiscard]] bool markAll(WalkObject& object) noexcept;
  /// Lets the objects above know that there are marks. Returns false when memory ran out.
  [[nodiscard]] static bool noteDirty(WalkObject& object) noexcept;

  void clear() noexcept;

 private:
  EntryTraits* traitsOf(ObjDependDef const* rules);
  void list(WalkObject& object);

  [[nodiscard]] std::size_t bucketOf(std::uint64_t hash) const noexcept { return hash & (buckets_.size() - 1); }
  void grow();

  std::unordered_map<ObjDependDef const*, EntryTraits> traits_;
  std::vector<WalkObject*> buckets_;
  std::size_t listed_ = 0;
  std::vector<WalkObject*> byHandle_;
  std::vector<std::uint32_t> freeHandles_;
  std::unique_ptr<WalkObject> root_;
};

/// The next object of a walk over `top` and everything below it, parents before children. Null after the last one.
[[nodiscard]] WalkObject* nextBelow(WalkObject const& top, WalkObject& object) noexcept;

/// Calls `visit` with `top` and everything below it, parents before children. Takes no memory.
template <class Visit>
void forEachObject(WalkObject& top, Visit visit) {
  for (WalkObject* object = &top; object != nullptr; object = nextBelow(top, *object)) visit(*object);
}

}  // namespace tarn
