#pragma once

#include <poll.h>
#include <csignal>

namespace tarn::tool {

/// Signals that concern a program that waits for keys with the terminal in a mode of its own. While an object lives
/// they do not act but are held until `waitForInput`, which tells of them one by one; so nothing happens at an odd
/// moment. What the program was started to ignore stays ignored. One object at a time.
class ReadingSignals {
 public:
  ReadingSignals() noexcept;
  ~ReadingSignals();
  ReadingSignals(ReadingSignals const&) = delete;
  ReadingSignals& operator=(ReadingSignals const&) = delete;

  /// Waits until the descriptor has input or has ended, and returns 0; or until there is a signal, and returns that.
  /// Negative when it cannot wait.
  [[nodiscard]] int waitForInput(int descriptor) const noexcept;

  /// Has the signal do to the program what it does by default: to stop it, to end it.
  void letAct(int signal) const noexcept;

 private:
  struct Held {
    int signal;
    struct sigaction before;
  };
  Held held_[7];
  sigset_t maskBefore_{};
};

/// Signals of the interrupt key while the program works. The first from `allowOne` on is passed over, so that the work
/// is finished; the next ends the program. When the object goes, all is as before.
class InterruptGrace {
 public:
  InterruptGrace() noexcept;
  ~InterruptGrace();
  InterruptGrace(InterruptGrace const&) = delete;
  InterruptGrace& operator=(InterruptGrace const&) = delete;

  void allowOne() const noexcept;

 private:
  struct sigaction before_ {};
};

}  // namespace tarn::tool
