#include "incremental/RecordedResults.h"

#include <utility>
#include <variant>

namespace tarn {

/// Takes a result back.
struct RecordedResults::Former {
  void operator()() noexcept {
    Kept& kept = results->kept_[place];
    std::swap(kept.result, result);
    kept.holds = holds;
    try {
      results->readers_.setReads({group, place}, kept.reads, reads);
    } catch (...) {
      results->isLost_ = true;
    }
  }

  RecordedResults* results;
  std::uint32_t place;
  Result result;
  bool holds;
  std::vector<Fact> reads;
};

EvalCache::Result const* RecordedResults::find(void const* rule) const {
  if (!isEnabled()) return nullptr;
  auto const place = places_.find(rule);
  if (place != places_.end() && kept_[place->second].holds) {
    recorder_.record(factOfResult(place->second));
    return &kept_[place->second].result;
  }
  recorder_.openKept(rule);
  return nullptr;
}

EvalCache::Result const* RecordedResults::store(void const* rule, Result result) {
  if (!isEnabled()) return nullptr;
  auto const [entry, isNew] = places_.try_emplace(rule, static_cast<std::uint32_t>(kept_.size()));
  std::uint32_t const place = entry->second;
  if (place == kept_.size()) kept_.emplace_back();
  Kept& kept = kept_[place];
  if (journal_ != nullptr) {
    journal_->add(Former{this, place, kept.result, kept.holds, readers_.factsOf(kept.reads)});
  }
  // A list that came out as before stays the same list: those who compare it with their own copy are done at once.
  bool const isSameList = std::holds_alternative<SharedStrings>(result) && kept.result == result;
  if (!isSameList) kept.result = std::move(result);
  if (recorder_.closeKept(rule, reads_)) {
    readers_.setReads({group, place}, kept.reads, reads_);
    kept.holds = true;
    recorder_.record(factOfResult(place));
  }
  return &kept.result;
}

bool RecordedResults::drop(std::uint32_t place) noexcept {
  if (!kept_[place].holds) return false;
  if (journal_ != nullptr) {
    try {
      journal_->add([this, place]() noexcept { kept_[place].holds = true; });
    } catch (...) {
      isLost_ = true;
    }
  }
  kept_[place].holds = false;
  return true;
}

void RecordedResults::forgetAll() noexcept {
  isLost_ = false;
  for (Kept& kept : kept_) {
    kept.holds = false;
    kept.reads = ReaderIndex::nothing;
  }
}

}  // namespace tarn
