#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "incremental/Fact.h"

namespace tarn {

/// Which readers read which facts, to be asked in both directions. A reader is a visit of a walk, or a result that
/// rules keep. A read takes 24 bytes, and a fact that is read about 24 more.
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
  [[nodiscard]] std::vector<Fact> factsOf(Reads reads) const;

  /// Calls `visit` with each reader of the fact. It must not change this index.
  template <class Visit>
  void forEachReader(Fact fact, Visit visit) const {
    std::uint32_t const place = find(fact);
    if (place == nothing) return;
    for (Reads at = facts_[place].first; at != nothing; at = links_[at].nextOfFact) visit(links_[at].reader);
  }

  void clear() noexcept;

 private:
  /// A fact that is read, in a chain of those with the same bucket.
  struct ReadFact {
    Fact fact;
    Reads first;
    std::uint32_t nextInBucket;
  };
  struct Link {
    Reader reader;
    std::uint32_t fact;
    Reads nextOfFact;
    Reads previousOfFact;
    Reads nextOfReader;
  };

  [[nodiscard]] std::uint32_t& usedOfKind(Fact fact) noexcept {
    return usedOfKind_[static_cast<std::size_t>(kindOf(fact))];
  }
  [[nodiscard]] std::size_t bucketOf(Fact fact) const noexcept { return fact & (buckets_.size() - 1); }
  [[nodiscard]] std::uint32_t find(Fact fact) const noexcept;
  std::uint32_t findOrAdd(Fact fact);
  void remove(std::uint32_t place) noexcept;
  void grow();
  Reads newLink();

  // Deques, because they neither move what they hold nor take more memory than that when they grow.
  std::deque<ReadFact> facts_;
  std::deque<Link> links_;
  std::vector<std::uint32_t> buckets_;
  std::size_t used_ = 0;
  /// Many changes are of a kind that no rule reads. They are not looked up.
  std::array<std::uint32_t, std::size_t{1} << bitsOfFactKind> usedOfKind_{};
  std::uint32_t firstFreeFact_ = nothing;  // linked by nextInBucket
  Reads firstFreeLink_ = nothing;          // linked by nextOfReader
};

}  // namespace tarn
