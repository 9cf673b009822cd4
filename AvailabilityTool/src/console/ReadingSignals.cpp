// The signals are blocked except during the wait. So a handler runs at one place only, and it only stores its signal.
// No signal can get lost between the check for a signal and the wait for one.
#include "console/ReadingSignals.h"

#include <array>
#include <cerrno>

namespace tarn::tool {

namespace {

constexpr std::array<int, 7> heldSignals = {SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGTSTP, SIGCONT, SIGWINCH};

std::array<volatile std::sig_atomic_t, heldSignals.size()> noted{};

void note(int signal) {
  for (std::size_t i = 0; i < heldSignals.size(); ++i) {
    if (heldSignals[i] == signal) noted[i] = 1;
  }
}

int takeNoted() noexcept {
  for (std::size_t i = 0; i < heldSignals.size(); ++i) {
    if (noted[i] == 0) continue;
    noted[i] = 0;
    return heldSignals[i];
  }
  return 0;
}

void passOver(int /*signal*/) {}

struct sigaction actionOf(void (*handler)(int), int flags) noexcept {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  return action;
}

}  // namespace

ReadingSignals::ReadingSignals() noexcept {
  sigset_t held;
  ::sigemptyset(&held);
  for (int const signal : heldSignals) ::sigaddset(&held, signal);
  ::sigprocmask(SIG_BLOCK, &held, &maskBefore_);
  struct sigaction const action = actionOf(note, 0);
  for (std::size_t i = 0; i < heldSignals.size(); ++i) {
    held_[i].signal = heldSignals[i];
    ::sigaction(heldSignals[i], nullptr, &held_[i].before);
    if (held_[i].before.sa_handler != SIG_IGN) ::sigaction(heldSignals[i], &action, nullptr);
    noted[i] = 0;
  }
}

ReadingSignals::~ReadingSignals() {
  for (Held const& held : held_) ::sigaction(held.signal, &held.before, nullptr);
  ::sigprocmask(SIG_SETMASK, &maskBefore_, nullptr);
}

int ReadingSignals::waitForInput(int descriptor) const noexcept {
  for (;;) {
    if (int const signal = takeNoted(); signal != 0) return signal;
    pollfd input{descriptor, POLLIN, 0};
    if (::ppoll(&input, 1, nullptr, &maskBefore_) >= 0) return takeNoted();
    if (errno != EINTR) return -1;
  }
}

void ReadingSignals::letAct(int signal) const noexcept {
  struct sigaction const byDefault = actionOf(SIG_DFL, 0);
  struct sigaction before {};
  sigset_t alone;
  ::sigemptyset(&alone);
  ::sigaddset(&alone, signal);
  ::sigaction(signal, &byDefault, &before);
  ::raise(signal);
  ::sigprocmask(SIG_UNBLOCK, &alone, nullptr);  // the signal takes effect here
  ::sigprocmask(SIG_BLOCK, &alone, nullptr);
  ::sigaction(signal, &before, nullptr);
}

InterruptGrace::InterruptGrace(Ends ends) noexcept : ends_(ends) {
  ::sigaction(SIGINT, nullptr, &before_);
  allowOne();
}

InterruptGrace::~InterruptGrace() {
  ::sigaction(SIGINT, &before_, nullptr);
}

void InterruptGrace::allowOne() const noexcept {
  if (before_.sa_handler == SIG_IGN) return;
  struct sigaction const action =
      actionOf(passOver, SA_RESTART | (ends_ == Ends::Second ? static_cast<int>(SA_RESETHAND) : 0));
  ::sigaction(SIGINT, &action, nullptr);
}

}  // namespace tarn::tool
