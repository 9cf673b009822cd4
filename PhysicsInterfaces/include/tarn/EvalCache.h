#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <variant>
#include <vector>

#include <tarn/Export.h>
#include <tarn/SharedStrings.h>

namespace tarn {

/// Keeps the results of rule expressions that do not depend on their context object. While the cache is enabled, such
/// an expression is evaluated once, and its result is used again.
///
/// A cache belongs to one unchanged model. If the model that the rules read changes, make a new cache or call `clear`.
/// If it changes for a while only, disable the cache for that time: the results that it holds are used again when it is
/// enabled. A cache starts disabled. It is for one thread.
///
/// The evaluation of an expression calls `find` first. If that gives nothing, it evaluates the expression and calls
/// `store` for it. Derive from this class to learn which results are used, and where their evaluation begins and ends.
class TARN_EXPORT EvalCache {
 public:
  using Result = std::variant<bool, double, std::string, SharedStrings>;

  EvalCache();
  EvalCache(EvalCache const&) = delete;
  EvalCache& operator=(EvalCache const&) = delete;
  virtual ~EvalCache();

  void enable(bool on) noexcept { enabled_ = on; }
  [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }

  /// The result that is stored for the expression at the address `rule`, or null. Always null while disabled. Valid
  /// until `clear`, or as long as the cache.
  [[nodiscard]] virtual Result const* find(void const* rule) const;
  /// Stores a result and returns it. While disabled, stores nothing and returns null.
  virtual Result const* store(void const* rule, Result result);

  /// Removes all results, in constant time. Their memory is used again for later results of the same expressions.
  void clear() noexcept { ++generation_; }

  /// Passes the counts to the `MeasurementSink` of the thread, if there is one.
  void report() const;

 private:
  /// A result, and which `clear` it came after.
  struct Kept {
    void const* rule;
    Result result;
    std::uint64_t generation;
  };

  /// The result of the rule, from whichever `clear`, or null.
  [[nodiscard]] Kept* look(void const* rule) const noexcept;
  [[nodiscard]] std::size_t firstSlotOf(void const* rule) const noexcept;
  void grow();

  bool enabled_ = false;
  std::uint64_t generation_ = 0;
  mutable std::size_t hits_ = 0;
  mutable std::size_t misses_ = 0;
  std::deque<Kept> results_;  // they do not move
  // Where each result is, in slots that are found by its rule. The number of slots is a power of two, and half of them
  // are null. Conditions ask so often that the division by a prime number of `std::unordered_map` would be noticed.
  std::vector<Kept*> slots_;
};

}  // namespace tarn
