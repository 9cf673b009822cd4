#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "incremental/Fact.h"

namespace tarn {

/// Which readers read which facts, to be asked in both directions. A reader is a visit of a walk, or a result that
/// rules keep.
class ReaderIndex {
 public:
  struct Reader {
    std::uint32_t group;
    std::uint32_t item;
  };
  /// The reads of one reader. The owner of the reader keeps it; it is `nothing` at the start.
  using Reads = std::uint32_t;
  static constexpr Reads nothing = static_cast<Reads>(-1);

  /// Replaces what the reader reads. The facts must not repeat.
  void setReads(Reader reader, Reads& reads, std::vector<Fact> const& facts);
  void clearReads(Reads& reads) noexcept;

  /// Calls `visit` with each reader of the fact. It must not change this index.
  template <class Visit>
  void forEachReader(Fact fact, Visit visit) const {
    auto const place = readersOf_.find(fact);
    if (place == readersOf_.end()) return;
    for (Reads at = place->second.first; at != nothing; at = links_[at].nextOfFact) visit(links_[at].reader);
  }

  void clear() noexcept;

 private:
  struct Readers {
    Fact fact;
    Reads first = nothing;
  };
  struct Link {
    Reader reader;
    Readers* readers;
    Reads nextOfFact;
    Reads previousOfFact;
    Reads nextOfReader;
  };
  /// A fact is a hash already.
  struct AsItIs {
    std::size_t operator()(Fact fact) const noexcept { return static_cast<std::size_t>(fact); }
  };

  Reads newLink();

  std::unordered_map<Fact, Readers, AsItIs> readersOf_;
  std::vector<Link> links_;
  Reads firstFree_ = nothing;  // linked by nextOfReader
};

}  // namespace tarn
