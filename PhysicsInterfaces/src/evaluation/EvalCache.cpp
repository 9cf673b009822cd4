#include <tarn/EvalCache.h>

#include <tarn/MeasurementSink.h>

namespace tarn {

EvalCache::EvalCache() = default;
EvalCache::~EvalCache() = default;

EvalCache::Result const* EvalCache::find(void const* rule) const {
  if (!enabled_) return nullptr;
  auto const found = results_.find(rule);
  if (found == results_.end() || found->second.generation != generation_) {
    ++misses_;
    return nullptr;
  }
  ++hits_;
  return &found->second.result;
}

/// A list that came out as before `clear` stays the same list: those who compare it with their own copy are done at
/// once, however long it is.
EvalCache::Result const* EvalCache::store(void const* rule, Result result) {
  if (!enabled_) return nullptr;
  if (auto const former = results_.find(rule); former != results_.end()) {
    bool const isSameList = std::holds_alternative<SharedStrings>(result) && former->second.result == result;
    if (!isSameList) former->second.result = std::move(result);
    former->second.generation = generation_;
    return &former->second.result;
  }
  return &results_.insert_or_assign(rule, Kept{std::move(result), generation_}).first->second.result;
}

void EvalCache::report() const {
  if (auto* sink = MeasurementSink::get()) sink->cacheReported(hits_, misses_, results_.size());
}

}  // namespace tarn
