#include "serve/TerminationSignals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace tarn::tool {

namespace {

sigset_t terminating() {
  sigset_t set;
  ::sigemptyset(&set);
  ::sigaddset(&set, SIGINT);
  ::sigaddset(&set, SIGTERM);
  return set;
}

}  // namespace

TerminationSignals::TerminationSignals() {
  sigset_t const set = terminating();
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  (void)std::signal(SIGPIPE, SIG_IGN);
  descriptor_ = ::signalfd(-1, &set, SFD_CLOEXEC);
  if (descriptor_ == -1) throw std::system_error(errno, std::generic_category(), "signals cannot be awaited");
}

TerminationSignals::~TerminationSignals() {
  ::close(descriptor_);
}

TerminationSignals::Event TerminationSignals::wait(int input, int milliseconds) const {
  std::array<pollfd, 2> descriptors{{{descriptor_, POLLIN, 0}, {input, POLLIN, 0}}};
  int const count = ::poll(descriptors.data(), descriptors.size(), milliseconds);
  if (count <= 0) return Event::None;
  if (descriptors[0].revents != 0) return Event::Terminate;
  return Event::Input;
}

}  // namespace tarn::tool
