#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <vector>

#include <tarn/EvalCache.h>

#include "incremental/ReadRecorder.h"
#include "incremental/ReaderIndex.h"
#include "journal/Journal.h"

namespace tarn {

/// The results that rules keep while walks are followed. A result has reads of its own. It holds, also from one walk to
/// the next, until one of them changes. A user of the result reads one fact, and not everything behind it, even for a
/// list of all objects that every object asks for.
class RecordedResults final : public EvalCache {
 public:
  RecordedResults(ReadRecorder& recorder, ReaderIndex& readers) : recorder_(recorder), readers_(readers) {}

  [[nodiscard]] Result const* find(void const* rule) const override;
  Result const* store(void const* rule, Result result) override;

  /// The group of its readers in the index; their item is the place of the result.
  static constexpr std::uint32_t group = static_cast<std::uint32_t>(-1);
  [[nodiscard]] static Fact factOfResult(std::uint32_t place) noexcept { return mixedFact(FactKind::Kept, place, 0); }

  /// Drops a result. Returns false when it does not hold anyway.
  bool drop(std::uint32_t place) noexcept;
  /// From now on, changes are recorded; null ends that.
  void recordIn(Journal* journal) noexcept { journal_ = journal; }
  /// A change could not be recorded.
  [[nodiscard]] bool isLost() const noexcept { return isLost_; }
  void forgetAll() noexcept;

 private:
  struct Kept {
    Result result;
    bool holds = false;
    ReaderIndex::Reads reads = ReaderIndex::nothing;
  };

  struct Former;

  ReadRecorder& recorder_;
  ReaderIndex& readers_;
  Journal* journal_ = nullptr;
  bool isLost_ = false;
  std::unordered_map<void const*, std::uint32_t> places_;
  std::deque<Kept> kept_;
  std::vector<Fact> reads_;  // of the result that is stored
};

}  // namespace tarn
