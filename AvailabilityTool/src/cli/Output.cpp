// What can go wrong with the standard streams. Without these steps a closed pipe would end the process by a signal, and
// with standard output closed its descriptor would be given to a model file.
#include "cli/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>
#include <string>
#include <system_error>

#include "cli/Failure.h"

namespace tarn::tool {

void flushResults(std::ostream& out) {
  if (out) errno = 0;  // else it is of the write that failed before
  out.flush();
  if (out) return;
  int const error = errno;
  std::string const why = error ? ": " + std::generic_category().message(error) : "";
  throw Failure("the standard output cannot be written" + why +
                "; let its reader read to the end, or write to a file on a disk that has room");
}

void prepareStandardStreams() noexcept {
  std::signal(SIGPIPE, SIG_IGN);
  for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free descriptor is the one that was found closed. Output opened for reading only fails on writing.
    int const opened = ::open("/dev/null", descriptor == STDERR_FILENO ? O_WRONLY : O_RDONLY);
    if (opened == -1) return;
  }
  std::ios_base::sync_with_stdio(false);
}

}  // namespace tarn::tool
