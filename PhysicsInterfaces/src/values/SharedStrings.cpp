// An immutable list of strings with one shared body. A long list gets an index at the first call of `contains`. If two
// threads make that call at once, each makes an index. A compare-exchange keeps one of them, and the other is deleted.
// A thread that reads the pointer always sees a complete index.
#include <tarn/SharedStrings.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <unordered_set>
#include <utility>

namespace tarn {

namespace {

using Index = std::unordered_set<std::string_view>;

// Up to this size, comparing the items one by one is faster than hashing.
constexpr std::size_t searchedItems = 16;

/// A number that no other body ever has: an address may be used again.
std::uint64_t nextId() noexcept {
  static std::atomic<std::uint64_t> next{1};
  return next.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

struct SharedStrings::Body {
  explicit Body(std::vector<std::string> given) : items(std::move(given)) {}
  Body(Body const&) = delete;
  Body& operator=(Body const&) = delete;
  ~Body() { std::unique_ptr<Index const>(index.load(std::memory_order_acquire)).reset(); }

  [[nodiscard]] Index const& getIndex() const {
    if (Index const* const made = index.load(std::memory_order_acquire)) return *made;
    auto fresh = std::make_unique<Index const>(items.begin(), items.end());
    Index const* expected = nullptr;
    if (index.compare_exchange_strong(expected, fresh.get(), std::memory_order_acq_rel, std::memory_order_acquire)) {
      return *fresh.release();  // owned by `index` from here on
    }
    return *expected;
  }

  std::vector<std::string> const items;
  mutable std::atomic<Index const*> index{
      nullptr};  // null until the first call of `contains`; its views point into `items`

  std::uint64_t const id = nextId();
  // The last answer of `containsAll`: twice the id of the other body, plus one when all its items are here. One word,
  // so that threads never read half an answer.
  mutable std::atomic<std::uint64_t> lastAnswer{0};
};

SharedStrings::SharedStrings(std::vector<std::string> items)
    : body_(items.empty() ? nullptr : std::make_shared<Body const>(std::move(items))) {}

SharedStrings::SharedStrings(std::initializer_list<std::string> items)
    : SharedStrings(std::vector<std::string>(items)) {}

std::vector<std::string> const& SharedStrings::items() const noexcept {
  static std::vector<std::string> const none;
  return body_ ? body_->items : none;
}

bool SharedStrings::contains(std::string_view item) const {
  if (!body_) return false;
  if (body_->items.size() <= searchedItems) {
    return std::find(body_->items.begin(), body_->items.end(), item) != body_->items.end();
  }
  return body_->getIndex().contains(item);
}

bool SharedStrings::containsAll(SharedStrings const& other) const {
  if (!other.body_ || body_ == other.body_) return true;
  if (!body_) return false;
  std::uint64_t const known = body_->lastAnswer.load(std::memory_order_relaxed);
  if (known >> 1 == other.body_->id) return (known & 1) != 0;
  bool const answer =
      std::all_of(other.begin(), other.end(), [this](std::string const& item) { return contains(item); });
  body_->lastAnswer.store(other.body_->id << 1 | std::uint64_t{answer}, std::memory_order_relaxed);
  return answer;
}

bool operator==(SharedStrings const& a, SharedStrings const& b) noexcept {
  return a.body_ == b.body_ || a.vector() == b.vector();
}

}  // namespace tarn
