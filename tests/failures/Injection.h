#pragma once

#include <cstddef>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include <gtest/gtest.h>

/// Failures in the middle of an operation, at a place that a test chooses.
///
///     forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
///       DynamicTDF model;
///       bool const failed = attempt([&] { model.setParameter("/Case/Domain:rotor", "Motion", "Rotating"); });
///       EXPECT_EQ(model.hasObject("/Case/Domain:rotor"), !failed);
///     });
///
/// repeats the braces. The first time, the first allocation of the attempted operation throws `std::bad_alloc`, then
/// the second, and so on, until the operation succeeds. Then some of these runs are repeated with all allocations
/// failing after the first failure, as they do when memory has really run out.
namespace tarn::test {

/// The kind of call that fails: an allocation anywhere in the program, or a call of `mayFail`.
enum class FailingCall { Allocation, Hook };

/// Thrown by `mayFail`.
struct Interruption : std::runtime_error {
  Interruption() : std::runtime_error("interrupted") {}
};

/// Call this in every part of a test that the library calls and that may fail: a rule, a model, a hook, a stream.
void mayFail();

/// How many allocations of this thread have not been freed.
[[nodiscard]] std::ptrdiff_t liveAllocations() noexcept;

/// One operation that is to fail at one place.
class Attempt {
 public:
  Attempt(FailingCall call, std::size_t passed, bool allBehind) noexcept
      : call_(call), passed_(passed), allBehind_(allBehind) {}

  /// Runs the operation, and returns whether the failure came out of it. To be called once.
  template <class Operation>
  [[nodiscard]] bool operator()(Operation const& operation) {
    Scope scope(*this);
    try {
      operation();
      return false;
    } catch (std::bad_alloc const&) {
      return true;
    } catch (Interruption const&) {
      return true;
    }
  }

  /// Whether the operation came as far as the failure.
  [[nodiscard]] bool wasReached() const noexcept { return reached_; }

 private:
  class Scope {
   public:
    explicit Scope(Attempt& attempt) noexcept;
    ~Scope();
    Scope(Scope const&) = delete;
    Scope& operator=(Scope const&) = delete;

   private:
    Attempt& attempt_;
  };

  FailingCall call_;
  std::size_t passed_;
  bool allBehind_;
  bool reached_ = false;
};

/// Which failures are tried: 1 for each of them, 2 for every second, 3 for every third, and so on. 0 tries no failures.
struct Steps {
  std::size_t alone = 1;
  std::size_t withAllBehind = 4;
};

/// See above. Memory that the braces leave allocated is a leak, and also fails the test.
inline void forEveryFailureOf(FailingCall call, Steps steps, std::function<void(Attempt&)> const& braces) {
  for (bool const allBehind : {false, true}) {
    std::size_t const step = allBehind ? steps.withAllBehind : steps.alone;
    for (std::size_t passed = 0; step != 0; passed += step) {
      SCOPED_TRACE("failure " + std::to_string(passed + 1) + (allBehind ? " and all behind it" : ""));
      // An allocation that is made once in the life of the program, at its first use, is not a leak: the second run
      // does not repeat it.
      Attempt attempt(call, passed, allBehind);
      std::ptrdiff_t const before = liveAllocations();
      braces(attempt);
      if (!testing::Test::HasFailure() && liveAllocations() != before) {
        Attempt again(call, passed, allBehind);
        std::ptrdiff_t const beforeAgain = liveAllocations();
        braces(again);
        EXPECT_EQ(liveAllocations() - beforeAgain, 0) << "allocations are left";
      }
      if (testing::Test::HasFailure()) return;  // one failure is enough to report
      if (!attempt.wasReached()) {
        EXPECT_GT(passed, 0U) << "the operation has nothing that can fail";
        break;
      }
    }
  }
}

inline void forEveryFailureOf(FailingCall call, std::function<void(Attempt&)> const& braces) {
  forEveryFailureOf(call, Steps(), braces);
}

}  // namespace tarn::test
