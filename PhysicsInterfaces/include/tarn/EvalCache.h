#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <variant>

#include <tarn/Export.h>
#include <tarn/SharedStrings.h>

namespace tarn {

/// Results of rule expressions that do not depend on the object in whose context they are evaluated. While it is
/// enabled, such an expression is evaluated once and its result handed out again.
///
/// A cache belongs to one unchanged model. Whoever changes the model that the rules read makes a new cache, calls
/// `clear`, or disables the cache for as long as the model looks different. Results that were stored before a pause are
/// handed out again after it. A cache starts disabled. It serves one thread.
class TARN_EXPORT EvalCache {
 public:
  using Result = std::variant<bool, double, std::string, SharedStrings>;

  EvalCache();
  EvalCache(EvalCache const&) = delete;
  EvalCache& operator=(EvalCache const&) = delete;
  ~EvalCache();

  void enable(bool on) noexcept { enabled_ = on; }
  [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }

  /// The result stored for the expression at `rule`, or null. Always null while disabled. Valid until `clear`
  /// or the end of the cache.
  [[nodiscard]] Result const* find(void const* rule) const;
  /// Stores a result and returns it. Does nothing but return null while disabled.
  Result const* store(void const* rule, Result result);

  /// Forgets all results. Costs the same however many there are; their memory is used again for later results of the
  /// same expressions.
  void clear() noexcept { ++generation_; }

  /// Hands the counts of the run to the `MeasurementSink` of the thread, if there is one.
  void report() const;

 private:
  /// A result, and which `clear` it came after.
  struct Kept {
    Result result;
    std::uint64_t generation;
  };

  bool enabled_ = false;
  std::uint64_t generation_ = 0;
  mutable std::size_t hits_ = 0;
  mutable std::size_t misses_ = 0;
  std::unordered_map<void const*, Kept> results_;
};

}  // namespace tarn
