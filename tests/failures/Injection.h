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
/// goes through the braces again and again: the first time, the first allocation that the attempted operation makes
/// throws `std::bad_alloc`, then the second, and so on, until the operation has got through. Then some of that once
/// more, with all allocations failing behind the first that does, as they do when memory is really at an end.
namespace tarn::test {

/// What fails: an allocation anywhere in the program, or what calls `mayFail`.
enum class FailingCall { Allocation, Hook };

/// Thrown by `mayFail`.
struct Interruption : std::runtime_error {
  Interruption() : std::runtime_error("interrupted") {}
};

/// To be called by whatever of a test the library calls and may fail: a rule, a model, a hook, a stream.
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

/// Which failures are tried: each first, second, third one, and so on. 0 is none.
struct Steps {
  std::size_t alone = 1;
  std::size_t withAllBehind = 4;
};

/// See above. What the braces leave allocated is a leak, and fails the test as well.
inline void forEveryFailureOf(FailingCall call, Steps steps, std::function<void(Attempt&)> const& braces) {
  for (bool const allBehind : {false, true}) {
    std::size_t const step = allBehind ? steps.withAllBehind : steps.alone;
    for (std::size_t passed = 0; step != 0; passed += step) {
      SCOPED_TRACE("failure " + std::to_string(passed + 1) + (allBehind ? " and all behind it" : ""));
      // What is made once in the life of the program, at its first use, is no leak: the second time it is there.
      Attempt attempt(call, passed, allBehind);
      std::ptrdiff_t const before = liveAllocations();
      braces(attempt);
      if (!testing::Test::HasFailure() && liveAllocations() != before) {
        Attempt again(call, passed, allBehind);
        std::ptrdiff_t const beforeAgain = liveAllocations();
        braces(again);
        EXPECT_EQ(liveAllocations() - beforeAgain, 0) << "allocations are left";
      }
      if (testing::Test::HasFailure()) return;  // one place tells enough
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
