#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/ShortTexts.h"

namespace tarn {

/// Values by names that are stored elsewhere, in byte order of the names.
///
/// Most objects have a handful of parameters, and a few have a hundred thousand. So the entries are stored next to each
/// other in chunks of limited size. A small table has one chunk, which costs nothing besides its entries. In a large
/// table an insertion moves at most one chunk. A reference to a value is valid until an entry of the table is added or
/// erased.
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
      for (Chunk const& chunk : *others_) size += chunk.size();
    }
    return size;
  }
  [[nodiscard]] Iterator begin() const noexcept { return empty() ? end() : Iterator(this, 0, 0); }
  [[nodiscard]] Iterator end() const noexcept { return Iterator(this, chunkCount(), 0); }

  /// Returns null when there is no such entry.
  [[nodiscard]] Value* find(std::string_view name) noexcept {
    // A few names mostly differ in size already, so comparing each is faster than searching by order.
    constexpr std::size_t few = 12;
    if (first_.size() <= few && others_ == nullptr) {
      for (Entry& entry : first_) {
        if (sameText(entry.name(), name)) return &entry.value;
      }
      return nullptr;
    }
    Chunk& chunk = chunkOf(name);
    auto const place = placeIn(chunk, name);
    return place != chunk.end() && place->name() == name ? &place->value : nullptr;
  }
  [[nodiscard]] Value const* find(std::string_view name) const noexcept {
    return const_cast<NameTable*>(this)->find(name);
  }

  [[nodiscard]] Value& valueAt(Iterator place) noexcept { return chunk(place.chunk_)[place.place_].value; }

  /// Adds an entry. The table must not have one of that name. `pooledName` must outlive the table.
  void insert(std::string const& pooledName, Value&& value) {
    Chunk& chunk = chunkOf(pooledName);
    if (chunk.size() == chunkLimit) {
      split(chunk);
      insert(pooledName, std::move(value));
      return;
    }
    // Grows in small steps, because there are very many small tables and few of them become large.
    if (chunk.size() == chunk.capacity()) chunk.reserve(chunk.size() + std::max<std::size_t>(2, chunk.size() / 2));
    chunk.emplace(placeIn(chunk, pooledName), pooledName, std::move(value));
  }

  /// Makes room for `count` entries in an empty table.
  void reserve(std::size_t count) { first_.reserve(std::min(count, chunkLimit)); }

  /// Returns whether there was such an entry.
  bool erase(std::string_view name) noexcept {
    Chunk& chunk = chunkOf(name);
    auto const place = placeIn(chunk, name);
    if (place == chunk.end() || place->name() != name) return false;
    chunk.erase(place);
    dropIfEmpty(chunk);
    return true;
  }
  /// Returns the position after the erased one.
  Iterator erase(Iterator place) noexcept {
    Chunk& own = chunk(place.chunk_);
    own.erase(own.begin() + static_cast<std::ptrdiff_t>(place.place_));
    if (place.place_ < own.size()) return place;
    bool const isLast = place.chunk_ + 1 == chunkCount();
    bool const drops = own.empty() && others_ != nullptr;
    dropIfEmpty(own);
    if (isLast) return end();
    return Iterator(this, drops ? place.chunk_ : place.chunk_ + 1, 0);
  }

 private:
  using Chunk = std::vector<Entry>;
  static constexpr std::size_t chunkLimit = 128;

  [[nodiscard]] std::size_t chunkCount() const noexcept { return others_ == nullptr ? 1 : 1 + others_->size(); }
  [[nodiscard]] Chunk const& chunk(std::size_t i) const noexcept { return i == 0 ? first_ : (*others_)[i - 1]; }
  [[nodiscard]] Chunk& chunk(std::size_t i) noexcept { return i == 0 ? first_ : (*others_)[i - 1]; }

  /// Returns the chunk that holds an entry of that name or would hold it.
  [[nodiscard]] Chunk& chunkOf(std::string_view name) noexcept {
    if (others_ == nullptr) return first_;
    auto const behind = std::upper_bound(others_->begin(), others_->end(), name,
                                         [](std::string_view a, Chunk const& b) { return a < b.front().name(); });
    return behind == others_->begin() ? first_ : *std::prev(behind);
  }

  [[nodiscard]] static typename Chunk::iterator placeIn(Chunk& chunk, std::string_view name) noexcept {
    // A load inserts in order.
    if (chunk.empty() || chunk.back().name() < name) return chunk.end();
    return std::lower_bound(chunk.begin(), chunk.end(), name,
                            [](Entry const& a, std::string_view b) { return a.name() < b; });
  }

  /// Splits a chunk in two. The lower one keeps its position. Names that are inserted in order leave full chunks.
  void split(Chunk& full) {
    std::size_t const number = &full == &first_ ? 0 : static_cast<std::size_t>(&full - others_->data()) + 1;
    std::size_t const kept = number + 1 == chunkCount() ? chunkLimit - 1 : chunkLimit / 2;
    Chunk upper;
    upper.reserve(chunkLimit);
    if (others_ == nullptr) {
      // The list is never empty, even if memory runs out here.
      auto others = std::make_unique<std::vector<Chunk>>();
      others->push_back(std::move(upper));
      others_ = std::move(others);
    } else {
      others_->insert(others_->begin() + static_cast<std::ptrdiff_t>(number), std::move(upper));
    }
    Chunk& lower = chunk(number);
    Chunk& added = chunk(number + 1);
    added.insert(added.end(), std::make_move_iterator(lower.begin() + static_cast<std::ptrdiff_t>(kept)),
                 std::make_move_iterator(lower.end()));
    lower.erase(lower.begin() + static_cast<std::ptrdiff_t>(kept), lower.end());
  }

  void dropIfEmpty(Chunk& chunk) noexcept {
    if (!chunk.empty() || others_ == nullptr) return;
    if (&chunk == &first_) {
      first_ = std::move(others_->front());
      others_->erase(others_->begin());
    } else {
      others_->erase(others_->begin() + (&chunk - others_->data()));
    }
    if (others_->empty()) others_.reset();
  }

  // In order. No chunk is empty except the first one of an empty table.
  Chunk first_;
  /// Null while one chunk is enough.
  std::unique_ptr<std::vector<Chunk>> others_;
};

}  // namespace tarn
