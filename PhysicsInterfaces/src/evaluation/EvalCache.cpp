#include <tarn/EvalCache.h>

#include <tarn/MeasurementSink.h>

namespace tarn {

EvalCache::EvalCache() = default;
EvalCache::~EvalCache() = default;

EvalCache::Result const* EvalCache::find(void const* rule) const {
  if (!enabled_) return nullptr;
  auto const found = results_.find(rule);
  if (found == results_.end()) {
    ++misses_;
    return nullptr;
  }
  ++hits_;
  return &found->second;
}

EvalCache::Result const* EvalCache::store(void const* rule, Result result) {
  if (!enabled_) return nullptr;
  return &results_.insert_or_assign(rule, std::move(result)).first->second;
}

void EvalCache::report() const {
  if (auto* sink = MeasurementSink::get()) sink->cacheReported(hits_, misses_, results_.size());
}

}  // namespace tarn
