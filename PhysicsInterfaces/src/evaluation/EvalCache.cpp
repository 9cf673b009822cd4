#include <tarn/EvalCache.h>

#include <tarn/MeasurementSink.h>

namespace tarn {

EvalCache::EvalCache() = default;
EvalCache::~EvalCache() = default;

EvalCache::Result const* EvalCache::find(void const* rule) const {
  if (!enabled_) return nullptr;
  Kept const* const kept = look(rule);
  if (kept == nullptr || kept->generation != generation_) {
    ++misses_;
    return nullptr;
  }
  ++hits_;
  return &kept->result;
}

/// A list that came out as before `clear` stays the same list: those who compare it with their own copy are done at
/// once, however long it is.
EvalCache::Result const* EvalCache::store(void const* rule, Result result) {
  if (!enabled_) return nullptr;
  if (Kept* const former = look(rule)) {
    bool const isSameList = std::holds_alternative<SharedStrings>(result) && former->result == result;
    if (!isSameList) former->result = std::move(result);
    former->generation = generation_;
    return &former->result;
  }
  if (2 * (results_.size() + 1) > slots_.size()) grow();
  results_.push_back({rule, std::move(result), generation_});
  std::size_t slot = firstSlotOf(rule);
  while (slots_[slot] != nullptr) slot = (slot + 1) & (slots_.size() - 1);
  slots_[slot] = &results_.back();
  return &results_.back().result;
}

EvalCache::Kept* EvalCache::look(void const* rule) const noexcept {
  if (slots_.empty()) return nullptr;
  for (std::size_t slot = firstSlotOf(rule); slots_[slot] != nullptr; slot = (slot + 1) & (slots_.size() - 1)) {
    if (slots_[slot]->rule == rule) return slots_[slot];
  }
  return nullptr;
}

std::size_t EvalCache::firstSlotOf(void const* rule) const noexcept {
  constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15U;
  std::uint64_t const mixed = reinterpret_cast<std::uintptr_t>(rule) * multiplier;
  return (mixed ^ mixed >> 32U) & (slots_.size() - 1);
}

void EvalCache::grow() {
  constexpr std::size_t leastSlots = 16;
  std::vector<Kept*> slots(slots_.empty() ? leastSlots : 2 * slots_.size());
  slots.swap(slots_);
  for (Kept* const kept : slots) {
    if (kept == nullptr) continue;
    std::size_t slot = firstSlotOf(kept->rule);
    while (slots_[slot] != nullptr) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = kept;
  }
}

void EvalCache::report() const {
  if (auto* sink = MeasurementSink::get()) sink->cacheReported(hits_, misses_, results_.size());
}

}  // namespace tarn
