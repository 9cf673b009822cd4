#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/PathHash.h"
#include "tree/ShortTexts.h"

namespace tarn {

/// Values by names that are stored elsewhere, in byte order of the names.
///
/// Most objects have a handful of parameters, and a few have a hundred thousand. So the entries are stored next to each
/// other in chunks of limited size. A small table has one chunk, which costs nothing besides its entries. In a large
/// table an insertion moves at most one chunk. A reference to a value is valid until an entry of the table is added or
/// erased.
///
/// A search in a large table goes by the order of the names. A table that was loaded and is mostly read can have an
/// index, see `makeIndex`, which is a few times as fast.
template <class Value>
class NameTable {
 public:
  class Entry {
   public:
    Entry(std::string const& pooledName, Value&& initial) : value(std::move(initial)), name_(&pooledName) {}
    [[nodiscard]] std::string const& name() const noexcept { return *name_; }

    Value value;

   private:
    std::string const* name_;
  };

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using difference_type = std::ptrdiff_t;
    using value_type = Entry;
    using pointer = Entry const*;
    using reference = Entry const&;

    [[nodiscard]] Entry const& operator*() const noexcept { return table_->chunk(chunk_)[place_]; }
    [[nodiscard]] Entry const* operator->() const noexcept { return &**this; }
    Iterator& operator++() noexcept {
      if (++place_ == table_->chunk(chunk_).size()) {
        ++chunk_;
        place_ = 0;
      }
      return *this;
    }
    friend bool operator==(Iterator const& a, Iterator const& b) noexcept = default;

   private:
    friend class NameTable;
    Iterator(NameTable const* table, std::size_t chunk, std::size_t place) noexcept
        : table_(table), chunk_(chunk), place_(place) {}

    NameTable const* table_;
    std::size_t chunk_;
    std::size_t place_;
  };

  [[nodiscard]] bool empty() const noexcept { return first_.empty(); }
  [[nodiscard]] std::size_t size() const noexcept {
    std::size_t size = first_.size();
    if (others_ != nullptr) {
      for (Chunk const& chunk : others_->chunks) size += chunk.size();
    }
    return size;
  }
  [[nodiscard]] Iterator begin() const noexcept { return empty() ? end() : Iterator(this, 0, 0); }
  [[nodiscard]] Iterator end() const noexcept { return Iterator(this, chunkCount(), 0); }

  /// Returns null when there is no such entry.
  [[nodiscard]] Value* find(std::string_view name) noexcept {
    // A few names mostly differ in size already, so comparing each is faster than searching by order.
    constexpr std::size_t few = 12;
    if (first_.size() > few || others_ != nullptr) return findAmongMany(name);
    for (Entry& entry : first_) {
      if (sameText(entry.name(), name)) return &entry.value;
    }
    return nullptr;
  }
  [[nodiscard]] Value const* find(std::string_view name) const noexcept {
    return const_cast<NameTable*>(this)->find(name);
  }

  /// Returns the end when there is no such entry.
  [[nodiscard]] Iterator at(std::string_view name) noexcept {
    std::size_t const number = chunkOf(name);
    Chunk& own = chunk(number);
    auto const place = placeIn(own, name);
    if (place == own.end() || place->name() != name) return end();
    return Iterator(this, number, static_cast<std::size_t>(place - own.begin()));
  }
  [[nodiscard]] Value& valueAt(Iterator place) noexcept { return chunk(place.chunk_)[place.place_].value; }

  struct Others;

  /// Where an insertion put its entry, so that `takeBack` can restore the table exactly.
  struct Inserted {
    std::size_t chunk = 0;
    std::size_t place = 0;
    /// The chunk that was split to make room.
    std::optional<std::size_t> split;
  };

  /// An entry that was taken out, with the memory that it leaves empty, so that `putBack` needs none.
  struct Erased {
    Entry entry;
    std::size_t chunk;
    std::size_t place;
    /// The chunk itself, if this was its only entry and the table has others.
    std::vector<Entry> emptied;
    /// The list of the other chunks, if none is left in it.
    std::unique_ptr<Others> others;
  };

  /// Makes look-ups of a large table take constant time, until an entry is added or erased. Linear in the size. Does
  /// nothing for a small table, and for one that has its index.
  void makeIndex() {
    if (others_ == nullptr || !others_->index.empty() || chunkCount() > mostIndexedChunks) return;
    std::vector<std::uint32_t> index(std::bit_ceil(2 * size()), noPlace);
    for (std::size_t number = 0; number < chunkCount(); ++number) {
      Chunk const& own = chunk(number);
      for (std::size_t place = 0; place < own.size(); ++place) {
        std::size_t const hash = hashOf(own[place].name());
        std::size_t slot = hash & (index.size() - 1);
        while (index[slot] != noPlace) slot = (slot + 1) & (index.size() - 1);
        index[slot] = tagOf(hash) | static_cast<std::uint32_t>(number * chunkLimit + place);
      }
    }
    others_->index = std::move(index);
  }

  /// Adds an entry. The table must not have one of that name. `pooledName` must outlive the table.
  Inserted insert(std::string const& pooledName, Value&& value) {
    dropIndex();
    Inserted inserted;
    inserted.chunk = chunkOf(pooledName);
    if (chunk(inserted.chunk).size() == chunkLimit) {
      split(inserted.chunk);
      inserted.split = inserted.chunk;
      inserted.chunk = chunkOf(pooledName);
    }
    Chunk& own = chunk(inserted.chunk);
    // Grows in small steps, because there are very many small tables and few of them become large. After a split there
    // is room, so this cannot leave half an insertion.
    if (own.size() == own.capacity()) own.reserve(own.size() + std::max<std::size_t>(2, own.size() / 2));
    auto const place = own.emplace(placeIn(own, pooledName), pooledName, std::move(value));
    inserted.place = static_cast<std::size_t>(place - own.begin());
    return inserted;
  }

  /// Undoes an insertion. Later changes must have been undone.
  void takeBack(Inserted const& inserted) noexcept {
    dropIndex();
    Chunk& own = chunk(inserted.chunk);
    own.erase(own.begin() + static_cast<std::ptrdiff_t>(inserted.place));
    if (!inserted.split) return;
    Chunk& lower = chunk(*inserted.split);
    Chunk& upper = chunk(*inserted.split + 1);
    // A chunk that was split has room for all that it held.
    lower.insert(lower.end(), std::make_move_iterator(upper.begin()), std::make_move_iterator(upper.end()));
    others_->chunks.erase(others_->chunks.begin() + static_cast<std::ptrdiff_t>(*inserted.split));
    if (others_->chunks.empty()) others_.reset();
  }

  /// Makes room for `count` entries in an empty table.
  void reserve(std::size_t count) { first_.reserve(std::min(count, chunkLimit)); }

  Erased takeOut(Iterator place) noexcept {
    dropIndex();
    Chunk& own = chunk(place.chunk_);
    auto const entry = own.begin() + static_cast<std::ptrdiff_t>(place.place_);
    Erased erased{std::move(*entry), place.chunk_, place.place_, {}, nullptr};
    own.erase(entry);
    if (!own.empty() || others_ == nullptr) return erased;
    erased.emptied = std::move(own);
    if (place.chunk_ == 0) first_ = std::move(others_->chunks.front());
    auto const removed = std::max<std::size_t>(place.chunk_, 1) - 1;
    others_->chunks.erase(others_->chunks.begin() + static_cast<std::ptrdiff_t>(removed));
    if (others_->chunks.empty()) erased.others = std::move(others_);
    return erased;
  }

  /// Undoes a `takeOut`. Later changes must have been undone. Each chunk then has the memory that it had, so
  /// nothing is allocated.
  void putBack(Erased&& erased) noexcept {
    dropIndex();
    if (erased.emptied.capacity() != 0) {
      if (erased.others != nullptr) others_ = std::move(erased.others);
      if (erased.chunk == 0) {
        others_->chunks.insert(others_->chunks.begin(), std::move(first_));
        first_ = std::move(erased.emptied);
      } else {
        others_->chunks.insert(others_->chunks.begin() + static_cast<std::ptrdiff_t>(erased.chunk - 1),
                               std::move(erased.emptied));
      }
    }
    Chunk& own = chunk(erased.chunk);
    own.insert(own.begin() + static_cast<std::ptrdiff_t>(erased.place), std::move(erased.entry));
  }

  /// Returns the position of the entry that followed an erased one.
  [[nodiscard]] Iterator after(Erased const& erased) const noexcept {
    if (erased.chunk >= chunkCount()) return end();
    if (erased.place < chunk(erased.chunk).size()) return Iterator(this, erased.chunk, erased.place);
    return erased.chunk + 1 >= chunkCount() ? end() : Iterator(this, erased.chunk + 1, 0);
  }

 private:
  using Chunk = std::vector<Entry>;
  static constexpr std::size_t chunkLimit = 128;

  // The index. An element is eight bits of the hash and the place of an entry, or `noPlace`.
  static constexpr unsigned bitsOfPlace = 24;
  static constexpr std::uint32_t noPlace = ~std::uint32_t{0};
  static constexpr std::size_t mostIndexedChunks = (std::size_t{1} << bitsOfPlace) / chunkLimit - 1;

  [[nodiscard]] static std::size_t hashOf(std::string_view name) noexcept { return PathHash(name).value(); }
  [[nodiscard]] static std::uint32_t tagOf(std::size_t hash) noexcept {
    return static_cast<std::uint32_t>(hash >> (64U - 8U)) << bitsOfPlace;
  }

  /// Not inline, so that a search among few is short.
  [[nodiscard, gnu::noinline]] Value* findAmongMany(std::string_view name) noexcept {
    if (others_ != nullptr && !others_->index.empty()) return findIndexed(name);
    Chunk& own = chunk(chunkOf(name));
    auto const place = placeIn(own, name);
    return place != own.end() && place->name() == name ? &place->value : nullptr;
  }

  [[nodiscard]] Value* findIndexed(std::string_view name) noexcept {
    std::vector<std::uint32_t> const& index = others_->index;
    std::size_t const hash = hashOf(name);
    std::uint32_t const tag = tagOf(hash);
    for (std::size_t slot = hash & (index.size() - 1); index[slot] != noPlace; slot = (slot + 1) & (index.size() - 1)) {
      std::uint32_t const place = index[slot] ^ tag;
      if (place >> bitsOfPlace != 0) continue;
      Entry& entry = chunk(place / chunkLimit)[place % chunkLimit];
      if (sameText(entry.name(), name)) return &entry.value;
    }
    return nullptr;
  }

  void dropIndex() noexcept {
    if (others_ != nullptr) others_->index.clear();
  }

  [[nodiscard]] std::size_t chunkCount() const noexcept { return others_ == nullptr ? 1 : 1 + others_->chunks.size(); }
  [[nodiscard]] Chunk const& chunk(std::size_t i) const noexcept { return i == 0 ? first_ : others_->chunks[i - 1]; }
  [[nodiscard]] Chunk& chunk(std::size_t i) noexcept { return i == 0 ? first_ : others_->chunks[i - 1]; }

  /// Returns the number of the chunk that holds an entry of that name or would hold it.
  [[nodiscard]] std::size_t chunkOf(std::string_view name) const noexcept {
    if (others_ == nullptr) return 0;
    auto const behind = std::upper_bound(others_->chunks.begin(), others_->chunks.end(), name,
                                         [](std::string_view a, Chunk const& b) { return a < b.front().name(); });
    return static_cast<std::size_t>(behind - others_->chunks.begin());
  }

  [[nodiscard]] static typename Chunk::iterator placeIn(Chunk& chunk, std::string_view name) noexcept {
    // A load inserts in order.
    if (chunk.empty() || chunk.back().name() < name) return chunk.end();
    return std::lower_bound(chunk.begin(), chunk.end(), name,
                            [](Entry const& a, std::string_view b) { return a.name() < b; });
  }

  /// Splits a chunk in two. The lower one keeps its position. Names that are inserted in order leave full chunks.
  void split(std::size_t number) {
    std::size_t const kept = number + 1 == chunkCount() ? chunkLimit - 1 : chunkLimit / 2;
    Chunk upper;
    upper.reserve(chunkLimit);
    if (others_ == nullptr) {
      // The list is never empty, even if memory runs out here.
      auto others = std::make_unique<Others>();
      others->chunks.push_back(std::move(upper));
      others_ = std::move(others);
    } else {
      others_->chunks.insert(others_->chunks.begin() + static_cast<std::ptrdiff_t>(number), std::move(upper));
    }
    Chunk& lower = chunk(number);
    Chunk& added = chunk(number + 1);
    added.insert(added.end(), std::make_move_iterator(lower.begin() + static_cast<std::ptrdiff_t>(kept)),
                 std::make_move_iterator(lower.end()));
    lower.erase(lower.begin() + static_cast<std::ptrdiff_t>(kept), lower.end());
  }

  // In order. No chunk is empty except the first one of an empty table.
  Chunk first_;
  /// Null while one chunk is enough.
  std::unique_ptr<Others> others_;
};

/// The chunks after the first one, with the index of all.
template <class Value>
struct NameTable<Value>::Others {
  std::vector<Chunk> chunks;
  /// By hash, with linear probing. Empty when the table has no index.
  std::vector<std::uint32_t> index;
};

}  // namespace tarn
