#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <tarn/ObjDependDef.h>
#include <tarn/PotentialUpdateData.h>

#include "incremental/ReaderIndex.h"
#include "tree/PathHash.h"

namespace tarn {

/// What the entries of one object type mean for all objects of that type.
struct EntryTraits {
  /// Entries that may read things which nobody can follow. Their visits run in every walk.
  std::vector<std::uint32_t> unfollowed;
  /// Entries that are live only in some contexts.
  std::vector<std::uint32_t> inContexts;
};

/// An object of a walk that is followed. Its visits are the entries of its rules: the parameters, then the children.
struct WalkObject {
  using Entry = std::uint32_t;

  WalkObject(std::string objPath, ObjDependDef const* objRules, EntryTraits const* objTraits, WalkObject* parentObject);
  WalkObject(WalkObject const&) = delete;
  WalkObject& operator=(WalkObject const&) = delete;
  ~WalkObject();

  [[nodiscard]] Entry numParams() const noexcept { return paramEntries; }
  [[nodiscard]] Entry numEntries() const noexcept { return static_cast<Entry>(outputs.size()); }

  /// The first marked entry from `from` on, or `numEntries`.
  [[nodiscard]] Entry nextMarked(Entry from) const noexcept;
  [[nodiscard]] bool isClean() const noexcept { return markCount == 0 && dirtyChildren.empty(); }
  /// Returns whether it was not marked.
  bool mark(Entry entry) noexcept;
  void markAll() noexcept;
  void unmark(Entry entry) noexcept;
  void unmarkAll() noexcept;

  /// The value of the last context rule parameter before the entry.
  [[nodiscard]] std::string const& contextBefore(Entry entry) const;

  /// The position of an object among all children of its parent.
  using ChildKey = std::uint64_t;
  [[nodiscard]] static ChildKey childKey(Entry entry, std::uint32_t place) noexcept {
    return ChildKey{entry} << 32U | place;
  }
  [[nodiscard]] ChildKey ownKey() const noexcept { return childKey(childEntry, place); }

  /// What a visit has published: the bits of `outputs`.
  static constexpr unsigned Offered = 1;
  static constexpr unsigned Empty = 2;
  static constexpr unsigned EmptyTyped = 4;
  static constexpr unsigned OffersName = 8;
  static constexpr unsigned OffersObjects = 16;

  std::string const path;
  ObjDependDef const* const rules;
  EntryTraits const* const traits;
  WalkObject* const parent;
  Entry childEntry = 0;     // the entry of the parent that it belongs to
  std::uint32_t place = 0;  // ascends among the children of an entry, in the order of the walk
  std::uint32_t depth = 0;
  std::uint32_t handle = 0;
  Entry const paramEntries;
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

  std::vector<ReaderIndex::Reads> reads;  // by entry
  std::vector<std::uint8_t> outputs;      // by entry
  std::vector<std::uint64_t> marks;       // a bit an entry
  /// Where the offer of a parameter is listed, by entry. Empty while the object offers none.
  std::vector<PotentialUpdateData::Params::iterator> offerAt;
  Entry endOfOffers = 0;  // no parameter from this entry on is offered
  /// By child entry; only those that offer objects.
  std::map<Entry, std::vector<std::string>> offeredObjects;
  /// The values of the context rule parameters that are present, by entry.
  std::map<Entry, std::string> contextValues;
  /// In the order of their keys.
  std::vector<std::unique_ptr<WalkObject>> children;
  /// The children with marks in them or below them.
  std::map<ChildKey, WalkObject*> dirtyChildren;
};

/// A visit by its place.
struct VisitRef {
  WalkObject const* object = nullptr;
  WalkObject::Entry entry = 0;
};

/// Returns whether the walk comes to `a` before `b`. Proportional to the depth.
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
    auto const [first, last] = byPath_.equal_range(static_cast<std::uint64_t>(path.value()));
    for (auto at = first; at != last; ++at) visit(*at->second);
  }
  [[nodiscard]] WalkObject* byHandle(std::uint32_t handle) const noexcept { return byHandle_[handle]; }

  /// Marks a visit, so that a walk comes to it. Returns false when memory ran out.
  [[nodiscard]] bool mark(WalkObject& object, WalkObject::Entry entry) noexcept;
  [[nodiscard]] bool markAll(WalkObject& object) noexcept;

  void clear() noexcept;

 private:
  [[nodiscard]] static bool noteDirty(WalkObject& object) noexcept;
  EntryTraits const* traitsOf(ObjDependDef const* rules);
  void list(WalkObject& object);

  struct AsItIs {
    std::size_t operator()(std::uint64_t hash) const noexcept { return static_cast<std::size_t>(hash); }
  };

  std::unordered_map<ObjDependDef const*, EntryTraits> traits_;
  std::unordered_multimap<std::uint64_t, WalkObject*, AsItIs> byPath_;
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
