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

EvalCache::Result const* EvalCache::store(void const* rule, Result result) {
  if (!enabled_) return nullptr;
  return &results_.insert_or_assign(rule, Kept{std::move(result), generation_}).first->second.result;
}

void EvalCache::report() const {
  if (auto* sink = MeasurementSink::get()) sink->cacheReported(hits_, misses_, results_.size());
}

}  // namespace tarn
