#pragma once

#include <poll.h>
#include <csignal>

namespace tarn::tool {

/// The signals that matter to a program that waits for keys while the terminal is in its editing mode. While an object
/// exists, these signals are held until `waitForInput`, which returns them one by one. So they never interrupt other
/// code. Signals that the program was started to ignore stay ignored. There can be one object at a time.
class ReadingSignals {
 public:
  ReadingSignals() noexcept;
  ~ReadingSignals();
  ReadingSignals(ReadingSignals const&) = delete;
  ReadingSignals& operator=(ReadingSignals const&) = delete;

  /// Waits until the descriptor has input or has ended, and returns 0, or until there is a signal, and returns its
  /// number. Negative if it cannot wait.
  [[nodiscard]] int waitForInput(int descriptor) const noexcept;

  /// Lets the signal have its default effect, such as stopping or ending the program.
  void letAct(int signal) const noexcept;

 private:
  struct Held {
    int signal;
    struct sigaction before;
  };
  Held held_[7];
  sigset_t maskBefore_{};
};

/// Handles the interrupt key while the program works. The first signal after `allowOne` is ignored, so that the work is
/// finished; the next one ends the program, or is ignored too. The destructor restores the previous state.
class InterruptGrace {
 public:
  enum class Ends { Second, Never };

  explicit InterruptGrace(Ends ends = Ends::Second) noexcept;
  ~InterruptGrace();
  InterruptGrace(InterruptGrace const&) = delete;
  InterruptGrace& operator=(InterruptGrace const&) = delete;

  void allowOne() const noexcept;

 private:
  Ends const ends_;
  struct sigaction before_ {};
};

}  // namespace tarn::tool
